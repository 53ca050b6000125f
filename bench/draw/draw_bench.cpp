// Drawing speed on a screen shaped like the observation screen: a transparent window over the
// backdrop (the live video) holding 300 small views (reticle lines), 40 labels and 20 images.
//   BM_FullRedraw       everything repainted (a window opened, the screen invalidated)
//   BM_UnchangedFrame   a step with nothing dirty
//   BM_OneLabelChanged  one label gets new text (rendered anew) and is repainted
//   BM_ZoomStep         every reticle line moves (the reticle re-laid out for a zoom step)
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

#include "draw/screen.h"
#include "tk_testing.h"

namespace {

constexpr int kViews = 300;
constexpr int kLabels = 40;
constexpr int kImages = 20;

widget_t* s_win = nullptr;

// The observation-like window, built once per process.
widget_t* screen_window() {
  if (s_win != nullptr) return s_win;
  setenv("TK_HEADLESS", "1", 1);
  tk_testing_init();
  std::string xml = "<window name=\"tk_bench\">\n";
  for (int i = 0; i < kViews; ++i) {
    // Alternating short horizontal and vertical lines around the centre, like reticle marks.
    int x = 340 + (i % 30) * 20;
    int y = 262 + (i / 30) * 50;
    bool horizontal = i % 2 == 0;
    xml += "<view name=\"v" + std::to_string(i) + "\" x=\"" + std::to_string(x) + "\" y=\"" +
           std::to_string(y) + "\" w=\"" + (horizontal ? "16" : "2") + "\" h=\"" +
           (horizontal ? "2" : "16") + "\" style.normal.bg_color=\"#FF2020\"/>\n";
  }
  for (int i = 0; i < kLabels; ++i) {
    int x = 20 + (i % 4) * 310;
    int y = 20 + (i / 4) * 98;
    xml += "<label name=\"l" + std::to_string(i) + "\" x=\"" + std::to_string(x) + "\" y=\"" +
           std::to_string(y) + "\" w=\"200\" h=\"36\" text=\"" + std::to_string(100 + i) +
           " m\" style.normal.text_color=\"#FFFFFF\" style.normal.font_size=\"26\"/>\n";
  }
  for (int i = 0; i < kImages; ++i) {
    int x = 230 + (i % 10) * 80;
    int y = i < 10 ? 10 : 940;
    xml += "<image name=\"i" + std::to_string(i) + "\" x=\"" + std::to_string(x) + "\" y=\"" +
           std::to_string(y) + "\" w=\"64\" h=\"64\" image=\"tk_demo_reticle\" draw_type=\"" +
           (i % 2 == 0 ? "scale_auto" : "center") + "\"/>\n";
  }
  xml += "</window>\n";
  s_win = tk_testing_open_xml("tk_bench", xml.c_str());
  tk_testing_advance(0);
  tk_testing_paint();
  return s_win;
}

// False (and the benchmark skipped) when the window could not be made or painted nothing.
bool ready(benchmark::State& state) {
  if (screen_window() == nullptr || tk::draw::screen().frame.empty()) {
    state.SkipWithError("the benchmark window could not be opened");
    return false;
  }
  return true;
}

void BM_FullRedraw(benchmark::State& state) {
  if (!ready(state)) return;
  const tk::draw::Pixmap& frame = tk::draw::screen().frame;
  for (auto _ : state) {
    tk::draw::paint_rects({{0, 0, frame.w, frame.h}});
    benchmark::DoNotOptimize(frame.px.data());
  }
}
BENCHMARK(BM_FullRedraw)->Unit(benchmark::kMillisecond);

void BM_UnchangedFrame(benchmark::State& state) {
  if (!ready(state)) return;
  tk_testing_paint();
  for (auto _ : state) {
    benchmark::DoNotOptimize(tk_testing_paint());
  }
}
BENCHMARK(BM_UnchangedFrame)->Unit(benchmark::kMicrosecond);

void BM_OneLabelChanged(benchmark::State& state) {
  if (!ready(state)) return;
  widget_t* label = widget_lookup(screen_window(), "l17", TRUE);
  tk_testing_paint();
  int value = 0;
  char text[32];
  for (auto _ : state) {
    // A new distance every time, so the text is rendered, not taken from the cache.
    tk_snprintf(text, sizeof(text), "%d m", 1000 + (value++ % 100000));
    widget_set_text_utf8(label, text);
    benchmark::DoNotOptimize(tk_testing_paint());
  }
}
BENCHMARK(BM_OneLabelChanged)->Unit(benchmark::kMicrosecond);

void BM_ZoomStep(benchmark::State& state) {
  if (!ready(state)) return;
  widget_t* win = screen_window();
  tk_testing_paint();
  int step = 0;
  for (auto _ : state) {
    int d = (step++ % 2 == 0) ? 1 : -1;
    for (int i = 0; i < kViews; ++i) {
      widget_t* v = widget_get_child(win, i);
      widget_move(v, v->x + d * ((i % 30) - 15) / 4, v->y + d * ((i / 30) - 5) / 2);
    }
    benchmark::DoNotOptimize(tk_testing_paint());
  }
}
BENCHMARK(BM_ZoomStep)->Unit(benchmark::kMillisecond);

}  // namespace
