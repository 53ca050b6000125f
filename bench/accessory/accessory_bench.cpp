// Speed of opening an accessory page: the window loaded from its layout by name, the page's init
// drawing it from the records, and the first frame painted over the observation screen.
// Target: each page open with its first frame within 5 ms.
#include <benchmark/benchmark.h>

#include <cstdlib>

#include "common/navigator.h"
#include "common/status_records.h"
#include "home_scene.h"
#include "tk_testing.h"

namespace {

constexpr const char* PAGES[] = {
    "Zavo_lrf_menu",
    "Zavo_Laser_menu",
    "Zavo_PIP_menu",
    "Zavo_compass_menu",
    "Zavo_compass_1",
    "Zavo_level_correction",
    "Zavo_vertical_correction",
    "Zavo_Anemometer",
    "Zavo_wind",
    "Zavo_Recoil_menu",
    "Zavo_Magnetic_declination",
};

void open_home() {
  static bool started = false;
  if (started) return;
  started = true;
  if (!home_scene_start(0x5E100000)) std::exit(1);
  std::atexit(home_scene_stop);
  home_scene_records();
  stDevStatus.s8CompassSwitch = 1;
  stUIStatus.s8WindSwitch = 1;
  home_scene_open();
  tk_testing_paint();
}

void BM_OpenPageToFirstFrame(benchmark::State& state) {
  open_home();
  const char* page = PAGES[state.range(0)];
  state.SetLabel(page);
  for (auto _ : state) {
    navigator_to(page);
    tk_testing_advance(0);  // the open sequence
    benchmark::DoNotOptimize(tk_testing_paint());
    state.PauseTiming();
    navigator_back();
    tk_testing_advance(0);
    tk_testing_paint();
    state.ResumeTiming();
  }
}
BENCHMARK(BM_OpenPageToFirstFrame)
    ->DenseRange(0, std::size(PAGES) - 1)
    ->Unit(benchmark::kMillisecond);

}  // namespace
