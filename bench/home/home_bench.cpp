// Speed of the observation screen's status path: a battery event re-reads the record, changes
// the battery icon (and checks the shut-down rule), and the screen repaints what changed.
// Target: one battery event with its redraw within 1 ms.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "common/common_function.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msg.h"
#include "msg/msghandler.h"
#include "pages/Zavo_home_page_1.h"
#include "tk_testing.h"

namespace {

// The observation screen, opened once on private queues in a field state (every read-out
// shown) and kept for all the benchmarks.
void open_home() {
  static bool started = false;
  if (started) return;
  started = true;
  int base = 0x5E000000 + (static_cast<int>(getpid()) & 0xFFFFF) * 2;
  std::string keys = std::to_string(base) + "," + std::to_string(base + 1);
  setenv(MSG_KEYS_ENV, keys.c_str(), 1);
  setenv("TK_HEADLESS", "1", 1);
  tk_testing_init();
  Inf_InitMsgEvent(msgEventCallback);
  std::atexit([] { Inf_DeinitMsgEvent(); });
  std::memset(&stDevStatus, 0, sizeof(stDevStatus));
  std::memset(&stUIStatus, 0, sizeof(stUIStatus));
  stUIStatus.event_distrubut_reday = 1;
  stUIStatus.s8IRZoom = 100;
  stDevStatus.s8CompassSwitch = 1;
  stDevStatus.s8RangeSwitch = 1;
  stUIStatus.s8WifiSwitch = 1;
  navigator_to("Zavo_home_page_1");
  tk_testing_advance(0);
  tk_testing_paint();
}

// Alternates between a three-bar and a four-bar battery so that every event changes the icon.
int16_t next_battery(int64_t i) {
  return (i & 1) ? 790 : 740;
}

// The handler and the repaint: the event dispatched on the window manager as the UI thread's
// idle does it, then the paint of the dirty region.
void BM_BatteryEventHandlerAndRedraw(benchmark::State& state) {
  open_home();
  int64_t i = 0;
  int64_t painted = 0;
  for (auto _ : state) {
    stUIStatus.s16BatteryValue = next_battery(i++);
    event_t e = event_init(EVT_USER_START + SCREEN_EVT_BATTERY, NULL);
    widget_dispatch(window_manager(), &e);
    painted += tk_testing_paint() ? 1 : 0;
  }
  // 1 when every event repainted the icon.
  state.counters["painted"] = static_cast<double>(painted) / static_cast<double>(i);
}
BENCHMARK(BM_BatteryEventHandlerAndRedraw)->Unit(benchmark::kMicrosecond);

// The same through the device link's hand-off: event_distrubution from the caller, then one
// main-loop step (queued request, idle dispatch, paint).
void BM_BatteryEventThroughTheLink(benchmark::State& state) {
  open_home();
  int64_t i = 0;
  uint64_t paints_before = tk_testing_paint_count();
  for (auto _ : state) {
    stUIStatus.s16BatteryValue = next_battery(i++);
    event_distrubution(EVT_USER_START + SCREEN_EVT_BATTERY);
    tk_testing_advance(0);
    benchmark::DoNotOptimize(tk_testing_paint());
  }
  state.counters["painted"] =
      static_cast<double>(tk_testing_paint_count() - paints_before) / static_cast<double>(i);
}
BENCHMARK(BM_BatteryEventThroughTheLink)->Unit(benchmark::kMicrosecond);

}  // namespace
