// tkdemo: the toolkit's demo window. Shows colour words, text in several scripts, images by
// draw type and moving progress bars, and prints the code of each key pressed. Honours the
// toolkit's environment (TK_HEADLESS, TK_SCREENSHOT, TK_SCREENSHOT_AFTER_MS,
// TK_SCREENSHOT_EVERY_MS, TK_BACKDROP, TK_TIME_SCALE). Escape quits.
#include <sys/stat.h>

#include <cstdio>

#include "awtk.h"

namespace {

// The colour words of the swatches, red in the low byte and alpha in the high byte.
struct Swatch {
  const char* name;
  uint32_t word;
};
constexpr Swatch kSwatches[] = {
    {"swatch_red", 0xFF0011FF},   {"swatch_green", 0xFF00FF00}, {"swatch_blue", 0xFFFF0000},
    {"swatch_white", 0xFFFFFFFF}, {"swatch_black", 0xFF000001},
};

widget_t* s_win = nullptr;

bool is_dir(const char* path) {
  struct stat st {};
  return stat(path, &st) == 0 && S_ISDIR(st.st_mode);
}

// The resources of the checkout: ./res when started from its top, else the source tree's.
const char* resource_root() {
  if (is_dir("./res/assets")) return "./res";
  return TKDEMO_RES_DIR;
}

ret_t on_key_down(void* ctx, event_t* e) {
  key_event_t* key = key_event_cast(e);
  if (key == nullptr) return RET_OK;
  char text[64];
  if (key->key >= 32 && key->key < 127) {
    tk_snprintf(text, sizeof(text), "key %u '%c'", key->key, static_cast<char>(key->key));
  } else {
    tk_snprintf(text, sizeof(text), "key %u (0x%X)", key->key, key->key);
  }
  widget_set_text_utf8(widget_lookup(s_win, "last_key", TRUE), text);
  if (key->key == TK_KEY_ESCAPE) tk_quit();
  return RET_OK;
}

ret_t on_tick(const timer_info_t* timer) {
  widget_t* bar = widget_lookup(s_win, "progress", TRUE);
  widget_t* vbar = widget_lookup(s_win, "progress_vertical", TRUE);
  int32_t v = (widget_get_value_int(bar) + 1) % 101;
  widget_set_value_int(bar, v);
  widget_set_value_int(vbar, 100 - v);
  return RET_REPEAT;
}

}  // namespace

int main(int argc, char* argv[]) {
  if (tk_init(1280, 1024, APP_DESKTOP, "tkdemo", resource_root()) != RET_OK) return 1;
  assets_manager_set_theme(assets_manager(), "default");
  assets_manager_preload(assets_manager(), ASSET_TYPE_STYLE, "default");
  tk_init_assets();

  s_win = window_open("tk_demo");
  if (s_win == nullptr) {
    fprintf(stderr, "tkdemo: the window tk_demo cannot be opened\n");
    tk_deinit();
    return 1;
  }
  for (const Swatch& s : kSwatches) {
    widget_set_style_color(widget_lookup(s_win, s.name, TRUE), "normal:bg_color", s.word);
  }
  widget_on(s_win, EVT_KEY_DOWN, on_key_down, nullptr);
  timer_add(on_tick, nullptr, 100);

  tk_run();
  tk_deinit();
  return 0;
}
