// Speed of the menus, on the host toolkit in the state of a scope in the field:
// - moving past the end of one half of the main menu: the key through the main loop, the other
//   half opened (its init), the first closed, and the first frame painted. Target: 5 ms.
// - one step of an image-menu value: the key, the record, the frame to the device, the value row
//   and the bar redrawn and painted. Target: 1 ms.
#include <benchmark/benchmark.h>
#include <sys/msg.h>

#include <cstdlib>

#include "common/navigator.h"
#include "common/status_records.h"
#include "home_scene.h"
#include "msg/msg.h"
#include "msg/msghandler.h"
#include "pages/Zavo_menus.h"
#include "pages/page_list.h"
#include "tk_testing.h"

namespace {

int send_queue = -1;

// The observation screen, opened once on private queues and kept for all the benchmarks.
void open_home() {
  static bool started = false;
  if (started) return;
  started = true;
  if (!home_scene_start(0x5D000000)) std::exit(1);
  std::atexit(home_scene_stop);
  home_scene_records();
  stDevStatus.s8CompassSwitch = 1;
  stUIStatus.s8WifiSwitch = 1;
  stDevStatus.s8IrBrightness = 5;
  home_scene_open();
  int send_key = 0, recv_key = 0;
  Inf_GetMsgKeys(&send_key, &recv_key);
  send_queue = msgget(send_key, 0);
  tk_testing_paint();
}

// What the device would read, so that the UI's sends never meet a full queue.
void device_reads() {
  Inf_MsgEvent m;
  while (msgrcv(send_queue, &m, MSG_TEXT_SIZE, 0, IPC_NOWAIT) >= 0) {
  }
}

const char* top_name() {
  widget_t* top = window_manager_get_top_window(window_manager());
  return top != NULL ? top->name : "";
}

void BM_MenuHalvesSwitch(benchmark::State& state) {
  open_home();
  Zavo_menu1_index = 6;
  navigator_to("Zavo_menu1");
  tk_testing_advance(0);
  tk_testing_paint();
  int64_t switches = 0;
  for (auto _ : state) {
    // Row 6 of the first half, next: row 1 of the second; row 1 of the second, previous: row 6
    // of the first.
    const bool first = top_name()[9] == '1';
    tk_testing_key_hit(first ? GUI_KEY_PHOTO_S : GUI_KEY_RANGE_S);  // key, open, close, paint
    tk_testing_advance(0);
    benchmark::DoNotOptimize(tk_testing_paint());
    switches += top_name()[9] == (first ? '2' : '1') ? 1 : 0;
  }
  // 1 when every key replaced one half with the other.
  state.counters["switched"] =
      static_cast<double>(switches) / static_cast<double>(state.iterations());
  window_manager_back_to(window_manager(), "Zavo_home_page_1");
  tk_testing_advance(0);
}
BENCHMARK(BM_MenuHalvesSwitch)->Unit(benchmark::kMicrosecond);

void BM_ShortcutValueStep(benchmark::State& state) {
  open_home();
  navigator_to("Zavo_shortcut_menu");
  tk_testing_advance(0);
  tk_testing_key_hit(GUI_KEY_PHOTO_S);
  tk_testing_key_hit(GUI_KEY_PHOTO_S);  // brightness
  tk_testing_advance(0);
  tk_testing_paint();
  device_reads();
  int64_t i = 0;
  const uint64_t paints_before = tk_testing_paint_count();
  for (auto _ : state) {
    tk_testing_key_hit(GUI_KEY_FUCTION_S);  // runs the key, the layout and the paint
    benchmark::DoNotOptimize(tk_testing_paint());
    if ((++i & 15) == 0) device_reads();
  }
  // 1 when every step repainted the frame.
  state.counters["painted"] =
      static_cast<double>(tk_testing_paint_count() - paints_before) / static_cast<double>(i);
  window_manager_back_to(window_manager(), "Zavo_home_page_1");
  tk_testing_advance(0);
}
BENCHMARK(BM_ShortcutValueStep)->Unit(benchmark::kMicrosecond);

}  // namespace
