// Speed of a zoom change on the observation screen: the zoom step, the relayout of the selected
// reticle shape, the range and laser markers, the aim point and its hold marks, and the repaint
// of what moved. Target: one zoom change with its redraw within 4 ms.
//
// The handler's diagnostic lines go to /dev/null, so their formatting is counted but no terminal.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>

#include "common/status_records.h"
#include "home_scene.h"
#include "msg/msghandler.h"
#include "pages/Zavo_home_page_1_overlay.h"
#include "tk_testing.h"

namespace {

// Sends the page's printf diagnostics to /dev/null while the benchmark's own report (std::cout)
// keeps going where standard output went.
void quiet_diagnostics() {
  static std::ofstream report;
  const int saved = dup(STDOUT_FILENO);
  if (saved < 0) return;
  fflush(stdout);
  // Append: reopening through /dev/fd must not truncate a log file standard output went to.
  report.open("/dev/fd/" + std::to_string(saved), std::ios::out | std::ios::app);
  if (!report.is_open() || freopen("/dev/null", "w", stdout) == nullptr) return;
  std::cout.rdbuf(report.rdbuf());
}

// The observation screen open on private queues with reticle `type`, a ballistic solution and
// both markers shown, painted once.
widget_t* open_home(int type, bool pip) {
  static bool started = false;
  if (!started) {
    quiet_diagnostics();
    if (!home_scene_start(0x5F000000)) std::exit(1);
    std::atexit(home_scene_stop);
    started = true;
  }
  tk_testing_reset();
  home_scene_records();
  stDevStatus.s8ReticleType = static_cast<char>(type);
  stDevStatus.s8VideoMode = pip ? 3 : 0;
  stDevStatus.s8RangeSwitch = 1;
  stUIStatus.s8LaserSwitch = 1;
  stDevStatus.s8BallisticReticle = 3;  // the hold marks that move with the zoom
  stDevStatus.s16RangeOffsetX = 660;
  stDevStatus.s16RangeOffsetY = 500;
  stDevStatus.s16LaserIndicatX = 620;
  stDevStatus.s16LaserIndicatY = 530;
  result_ball.moveX = 6;
  result_ball.moveY = -25;
  info[0].ballistics_sw = 1;
  widget_t* win = home_scene_open();
  tk_testing_paint();
  return win;
}

// Steps the zoom 1.00 -> 1.25 -> ... -> 4.00 and back, so that every change moves everything.
int16_t next_zoom(int64_t i) {
  const int64_t step = i % 24;
  return static_cast<int16_t>(100 + 25 * (step < 12 ? step + 1 : 24 - step - 1));
}

// The zoom handler called as the screen event's subscription calls it, then the repaint.
void BM_ZoomChangeAndRedraw(benchmark::State& state) {
  widget_t* win = open_home(static_cast<int>(state.range(0)), false);
  int64_t i = 0;
  for (auto _ : state) {
    stUIStatus.s8IRZoom = next_zoom(i++);
    on_Zavo_All_Reticle_zoom(win, NULL);
    benchmark::DoNotOptimize(tk_testing_paint());
  }
  state.SetLabel(std::string("reticle type ") + std::to_string(state.range(0)));
}
BENCHMARK(BM_ZoomChangeAndRedraw)->DenseRange(0, 7)->Unit(benchmark::kMicrosecond);

// The same through the device link's hand-off: event_distrubution, one main-loop step (queued
// request, idle dispatch on the window manager, paint).
void BM_ZoomEventThroughTheLink(benchmark::State& state) {
  open_home(static_cast<int>(state.range(0)), false);
  int64_t i = 0;
  for (auto _ : state) {
    stUIStatus.s8IRZoom = next_zoom(i++);
    event_distrubution(EVT_USER_START + int{SCREEN_EVT_ZOOM});
    tk_testing_advance(0);
    benchmark::DoNotOptimize(tk_testing_paint());
  }
  state.SetLabel(std::string("reticle type ") + std::to_string(state.range(0)));
}
BENCHMARK(BM_ZoomEventThroughTheLink)->Arg(3)->Arg(7)->Unit(benchmark::kMicrosecond);

// With the picture-in-picture view on: the main marks stay at zoom 1, the PIP aim point moves.
void BM_ZoomChangeWithPipAndRedraw(benchmark::State& state) {
  widget_t* win = open_home(7, true);
  int64_t i = 0;
  for (auto _ : state) {
    stUIStatus.s8IRZoom = next_zoom(i++);
    on_Zavo_All_Reticle_zoom(win, NULL);
    benchmark::DoNotOptimize(tk_testing_paint());
  }
}
BENCHMARK(BM_ZoomChangeWithPipAndRedraw)->Unit(benchmark::kMicrosecond);

// The relayout alone, no paint: the share of the geometry.
void BM_ZoomRelayoutOnly(benchmark::State& state) {
  widget_t* win = open_home(7, false);
  int64_t i = 0;
  for (auto _ : state) {
    stUIStatus.s8IRZoom = next_zoom(i++);
    on_Zavo_All_Reticle_zoom(win, NULL);
  }
  tk_testing_paint();
}
BENCHMARK(BM_ZoomRelayoutOnly)->Unit(benchmark::kMicrosecond);

}  // namespace
