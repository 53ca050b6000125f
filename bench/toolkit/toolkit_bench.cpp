// Speed of the toolkit paths every page leans on: looking a widget up by name, fanning a user
// event out on the window manager, and delivering a posted key through the main loop.
#include <benchmark/benchmark.h>

#include <string>

#include "awtk.h"
#include "main_loop/main_loop_simple.h"
#include "tk_testing.h"

namespace {

// A window of 500 widgets: 50 views of 9 labels each (500 with the views), names unique.
std::string big_window_xml() {
  std::string xml = "<window name=\"big\">";
  for (int v = 0; v < 50; v++) {
    xml += "<view name=\"view_" + std::to_string(v) + "\" x=\"0\" y=\"0\" w=\"100\" h=\"100\">";
    for (int l = 0; l < 9; l++) {
      xml += "<label name=\"label_" + std::to_string(v) + "_" + std::to_string(l) +
             "\" x=\"1\" y=\"1\" w=\"10\" h=\"10\"/>";
    }
    xml += "</view>";
  }
  return xml + "</window>";
}

void BM_WidgetLookupIn500(benchmark::State& state) {
  tk_testing_init();
  widget_t* win = tk_testing_open_xml("big", big_window_xml().c_str());
  tk_testing_advance(0);
  // The last widget in document order: the whole tree is walked.
  const char* name = "label_49_8";
  for (auto _ : state) {
    benchmark::DoNotOptimize(widget_lookup(win, name, TRUE));
  }
  if (widget_lookup(win, name, TRUE) == nullptr) state.SkipWithError("lookup failed");
  tk_testing_reset();
}
BENCHMARK(BM_WidgetLookupIn500);

int g_hits = 0;
ret_t on_user(void*, event_t*) {
  g_hits++;
  return RET_OK;
}

void BM_UserEventTo50Subscribers(benchmark::State& state) {
  tk_testing_init();
  widget_t* wm = window_manager();
  for (int i = 0; i < 50; i++)
    widget_on(wm, EVT_USER_START + 3, on_user, nullptr);
  g_hits = 0;
  for (auto _ : state) {
    event_t e = event_init(EVT_USER_START + 3, nullptr);
    widget_dispatch(wm, &e);
  }
  if (g_hits != 50 * static_cast<int>(state.iterations())) state.SkipWithError("lost handlers");
  tk_testing_reset();
}
BENCHMARK(BM_UserEventTo50Subscribers);

int g_keys = 0;
ret_t on_key(void*, event_t*) {
  g_keys++;
  return RET_OK;
}

// main_loop_post_key_event, then one main-loop pass that routes it to the top window's handler.
void BM_PostedKeyToHandler(benchmark::State& state) {
  tk_testing_init();
  widget_t* win = tk_testing_open_xml("big", big_window_xml().c_str());
  tk_testing_advance(0);
  widget_on(win, EVT_KEY_DOWN, on_key, nullptr);
  g_keys = 0;
  bool pressed = true;
  for (auto _ : state) {
    main_loop_post_key_event(main_loop(), pressed, 57);
    tk_testing_advance(0);
    pressed = !pressed;
  }
  if (g_keys != static_cast<int>((state.iterations() + 1) / 2)) state.SkipWithError("lost keys");
  tk_testing_reset();
}
BENCHMARK(BM_PostedKeyToHandler);

}  // namespace
