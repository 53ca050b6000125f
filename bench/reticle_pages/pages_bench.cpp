// Speed of the reticle alignment pages. Targets: one fast-move tick (the value stepped, the
// record written, the frame sent, the label redrawn) within 0.5 ms; each page opened over the
// observation screen with its first frame painted within 5 ms.
//
// Everything runs through the main loop on the test clock: the tick is the page's 500 ms timer
// firing and the repaint of what it changed. The tick alone is measured with the page by itself;
// "OverObservationScreen" adds what the observation screen underneath does in the same step for
// the event the sender raised (the alignment moves the whole reticle area, which repaints most of
// the screen). The pages' diagnostic lines go to /dev/null; the frames they send are read back,
// outside the timing, as the device reads them.
#include <benchmark/benchmark.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>

#include "common/navigator.h"
#include "common/status_records.h"
#include "home_scene.h"
#include "msg/msg.h"
#include "msg/msghandler.h"
#include "pages/page_list.h"
#include "tk_testing.h"

namespace {

// The pages' printf diagnostics to /dev/null; the report (std::cout) where standard output went.
void quiet_diagnostics() {
  static std::ofstream report;
  const int saved = dup(STDOUT_FILENO);
  if (saved < 0) return;
  fflush(stdout);
  report.open("/dev/fd/" + std::to_string(saved), std::ios::out | std::ios::app);
  if (!report.is_open() || freopen("/dev/null", "w", stdout) == nullptr) return;
  std::cout.rdbuf(report.rdbuf());
}

int g_send_queue = -1;

// Reads what the UI sent, as the device does; the number of frames.
int drain() {
  Inf_MsgEvent m{};
  int n = 0;
  while (msgrcv(g_send_queue, &m, MSG_TEXT_SIZE, MSG_SEND_TYPE, IPC_NOWAIT) >= 0)
    n++;
  return n;
}

// The observation screen (unless `alone`) on private queues in a field state, then `page` on
// top, painted.
void open_scene(const char* page, bool alone = false) {
  static bool started = false;
  if (!started) {
    quiet_diagnostics();
    if (!home_scene_start(0x5D000000)) std::exit(1);
    std::atexit(home_scene_stop);
    int send_key = 0, recv_key = 0;
    Inf_GetMsgKeys(&send_key, &recv_key);
    g_send_queue = msgget(send_key, 0);
    started = true;
  }
  tk_testing_reset();
  home_scene_records();
  stDevStatus.s8RangeSwitch = 1;
  stDevStatus.s8RangeType = RANGE_CONTINUOUS;
  stUIStatus.s8RangeMode = 3;
  stUIStatus.s8LaserSwitch = 1;
  if (!alone && home_scene_open() == NULL) std::exit(1);
  if (page != nullptr) {
    navigator_to(page);
    tk_testing_advance(0);
  }
  tk_testing_paint();
  drain();
}

// One tick of a held-key move: the held key is pressed again outside the timing (which starts
// the tick count afresh and turns the move round, so that every tick changes the value and its
// label), then the clock runs to the tick.
void run_ticks(benchmark::State& state) {
  int64_t sent = 0;
  int64_t i = 0;
  for (auto _ : state) {
    state.PauseTiming();
    sent += drain();
    tk_testing_key_hit((i++ & 1) ? GUI_KEY_RANGE_L : GUI_KEY_PHOTO_L);
    state.ResumeTiming();
    tk_testing_advance(500);
  }
  sent += drain();
  // 1 when every tick sent its frame.
  state.counters["frames"] = static_cast<double>(sent) / static_cast<double>(i);
}

void BM_ReticleAlignmentFastMoveTick(benchmark::State& state, bool alone) {
  open_scene("Zavo_reticle_move", alone);
  tk_testing_key_hit(GUI_KEY_PHOTO_S);
  tk_testing_key_hit(GUI_KEY_FUCTION_S);  // x is edited
  run_ticks(state);
}
BENCHMARK_CAPTURE(BM_ReticleAlignmentFastMoveTick, Alone, true)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_ReticleAlignmentFastMoveTick, OverObservationScreen, false)
    ->Unit(benchmark::kMicrosecond);

void BM_RangeMarkerFastMoveTick(benchmark::State& state, bool alone) {
  open_scene("Zavo_range_move", alone);
  run_ticks(state);
}
BENCHMARK_CAPTURE(BM_RangeMarkerFastMoveTick, Alone, true)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_RangeMarkerFastMoveTick, OverObservationScreen, false)
    ->Unit(benchmark::kMicrosecond);

void BM_BlindPixelFastMoveTick(benchmark::State& state, bool alone) {
  open_scene("Zavo_pixel_menu", alone);
  run_ticks(state);
}
BENCHMARK_CAPTURE(BM_BlindPixelFastMoveTick, OverObservationScreen, false)
    ->Unit(benchmark::kMicrosecond);

// Opening a page by name over the observation screen: layout loaded, init run, the open
// sequence, layout and the first paint. The page is closed again outside the timing.
void BM_PageOpenWithFirstFrame(benchmark::State& state, const char* page) {
  open_scene(nullptr);
  for (auto _ : state) {
    navigator_to(page);
    tk_testing_advance(0);
    benchmark::DoNotOptimize(tk_testing_paint());
    state.PauseTiming();
    navigator_close(page);
    tk_testing_advance(0);
    tk_testing_paint();
    drain();
    state.ResumeTiming();
  }
}
// For reference: a window with nothing on it ("Zavo_home_page", an empty transparent layout),
// which repaints the observation screen under it and nothing else.
BENCHMARK_CAPTURE(BM_PageOpenWithFirstFrame, empty_window, "Zavo_home_page")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_PageOpenWithFirstFrame, Zavo_reticle_zero, "Zavo_reticle_zero")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_PageOpenWithFirstFrame, Zavo_reticle_zero_child, "Zavo_reticle_zero_child")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_PageOpenWithFirstFrame, Zavo_reticle_move, "Zavo_reticle_move")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_PageOpenWithFirstFrame, Zavo_range_move, "Zavo_range_move")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_PageOpenWithFirstFrame, Zavo_laser_move, "Zavo_laser_move")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_PageOpenWithFirstFrame, Zavo_reticle_menu, "Zavo_reticle_menu")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_PageOpenWithFirstFrame, Zavo_pixel_menu, "Zavo_pixel_menu")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_PageOpenWithFirstFrame, Zavo_pixel_child, "Zavo_pixel_child")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_PageOpenWithFirstFrame, Zavo_pixel_save, "Zavo_pixel_save")
    ->Unit(benchmark::kMillisecond);

}  // namespace
