// Speed of the observation screen's status path: a battery event re-reads the record, changes
// the battery icon (and checks the shut-down rule), and the screen repaints what changed.
// Target: one battery event with its redraw within 1 ms.
#include <benchmark/benchmark.h>

#include <cstdlib>

#include "common/status_records.h"
#include "home_scene.h"
#include "msg/msghandler.h"
#include "tk_testing.h"

namespace {

// The observation screen, opened once on private queues in a field state (every read-out
// shown) and kept for all the benchmarks.
void open_home() {
  static bool started = false;
  if (started) return;
  started = true;
  if (!home_scene_start(0x5E000000)) std::exit(1);
  std::atexit(home_scene_stop);
  home_scene_records();
  stDevStatus.s8CompassSwitch = 1;
  stDevStatus.s8RangeSwitch = 1;
  stUIStatus.s8WifiSwitch = 1;
  home_scene_open();
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
    event_t e = event_init(EVT_USER_START + int{SCREEN_EVT_BATTERY}, NULL);
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
    event_distrubution(EVT_USER_START + int{SCREEN_EVT_BATTERY});
    tk_testing_advance(0);
    benchmark::DoNotOptimize(tk_testing_paint());
  }
  state.counters["painted"] =
      static_cast<double>(tk_testing_paint_count() - paints_before) / static_cast<double>(i);
}
BENCHMARK(BM_BatteryEventThroughTheLink)->Unit(benchmark::kMicrosecond);

}  // namespace
