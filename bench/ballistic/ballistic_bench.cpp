// Speed of the ballistic pages over the observation screen. Targets (Release): a page opened by
// name with its first frame drawn within 5 ms; one digit changed by a key, through the main loop,
// with its redraw within 1 ms.
//
// The pages' diagnostic lines go to /dev/null, so their formatting is counted but no terminal.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <iostream>
#include <string>

#include "common/navigator.h"
#include "common/status_records.h"
#include "home_scene.h"
#include "msg/msghandler.h"
#include "tk_testing.h"

namespace {

constexpr const char* PAGES[] = {"Zavo_ballistic_menu", "Zavo_ballistic_bullet",
                                 "Zavo_ballistic_weather", "Zavo_tip_ballistic"};

// Sends the pages' printf diagnostics to /dev/null while the benchmark's own report (std::cout)
// keeps going where standard output went (appending, so a log file is not truncated).
void quiet_diagnostics() {
  static std::ofstream report;
  const int saved = dup(STDOUT_FILENO);
  if (saved < 0) return;
  fflush(stdout);
  report.open("/dev/fd/" + std::to_string(saved), std::ios::out | std::ios::app);
  if (!report.is_open() || freopen("/dev/null", "w", stdout) == nullptr) return;
  std::cout.rdbuf(report.rdbuf());
}

// The observation screen in a field state with a full profile, opened once on private queues.
void open_home() {
  static bool started = false;
  if (started) return;
  started = true;
  quiet_diagnostics();
  if (!home_scene_start(0x5D000000)) std::exit(1);
  std::atexit(home_scene_stop);
  home_scene_records();
  info[0].ballistics_sw = 1;
  for (Info_ballistics& p : info) {
    p.wind.speed = 3.5;
    p.wind.angle = 90;
    p.gun.scope.zeroRange = 100;
    p.gun.scope.zeroRange_yard = 109;
    p.gun.scope.sightHeightOverBore = 4.5;
    p.gun.bullet.ballisticsCoef = 0.505;
    p.gun.bullet.velocity = 790;
    p.gun.riflingRange = 11.25;
    p.gun.bullet.length = 1.24;
    p.gun.bullet.diameter = 0.308;
    p.gun.bullet.weight = 175;
    p.atmosphere.temperature = 15;
    p.atmosphere.barometer = 98.6f;
    p.atmosphere.relative_humidity = 65;
  }
  home_scene_open();
  tk_testing_paint();
}

// Every window above the observation screen closed (a page a benchmark left open would be
// painted under the next one).
void only_home() {
  for (const std::string& name : tk_testing_window_names()) {
    if (name != "Zavo_home_page_1") {
      window_manager_close_window_force(window_manager(),
                                        widget_child(window_manager(), name.c_str()));
    }
  }
  tk_testing_advance(0);
  tk_testing_paint();
}

void keys(std::initializer_list<uint32_t> codes) {
  for (uint32_t code : codes) {
    tk_testing_key_hit(code);
    tk_testing_advance(0);
  }
}

// The page opened by name over the observation screen (its init, the open sequence, layout) and
// the whole frame painted; the previous instance is closed first (single instance) outside the
// timing.
void BM_PageOpenAndFirstFrame(benchmark::State& state) {
  open_home();
  const char* page = PAGES[state.range(0)];
  state.SetLabel(page);
  only_home();
  for (auto _ : state) {
    state.PauseTiming();
    if (widget_t* old = widget_child(window_manager(), page)) {
      window_manager_close_window_force(window_manager(), old);
      tk_testing_advance(0);
    }
    tk_testing_paint();
    state.ResumeTiming();
    navigator_to(page);
    tk_testing_advance(0);
    benchmark::DoNotOptimize(tk_testing_paint());
  }
}
BENCHMARK(BM_PageOpenAndFirstFrame)->DenseRange(0, 3)->Unit(benchmark::kMicrosecond);

// One digit changed by the up key (posted, dispatched, the digit and its arrows redrawn), on the
// menu's wind direction, the bullet's coefficient and the weather's temperature.
void BM_DigitChangeAndRedraw(benchmark::State& state) {
  open_home();
  const char* page = PAGES[state.range(0)];
  state.SetLabel(page);
  only_home();
  navigator_to(page);
  tk_testing_advance(0);
  if (state.range(0) == 0)
    keys({GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S});
  keys({GUI_KEY_FUCTION_S, GUI_KEY_FUCTION_S});
  tk_testing_paint();
  const uint64_t paints_before = tk_testing_paint_count();
  int64_t n = 0;
  for (auto _ : state) {
    tk_testing_key_hit(GUI_KEY_RANGE_S);
    tk_testing_advance(0);
    benchmark::DoNotOptimize(tk_testing_paint());
    ++n;
  }
  state.counters["paints"] =
      static_cast<double>(tk_testing_paint_count() - paints_before) / static_cast<double>(n);
}
BENCHMARK(BM_DigitChangeAndRedraw)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);

}  // namespace
