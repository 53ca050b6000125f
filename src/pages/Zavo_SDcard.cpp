// "Zavo_SDcard": the card's use (used and total size, a bar) and the choice to format it: the
// Format button (left) opens the format confirmation, Cancel (right, chosen at entry) goes back.
#include <cstdio>

#include "common/common_function.h"
#include "common/navigator.h"
#include "msg/msghandler.h"
#include "pages/Zavo_menus.h"
#include "pages/system_pages.h"
#include "widgets/progress_bar.h"

// ---- state ----

uint8_t Zavo_SDcard_index = 0;

namespace {

constexpr confirm_buttons_t BUTTONS{"image_Format", "image_Cancel"};

widget_t* find(widget_t* win, const char* name) {
  return widget_lookup(win, name, TRUE);
}

// "Used 1.2G" and "Total 7.5G" (the captions translated), the bar at used / total. A card that
// cannot be read shows "--" and an empty bar.
void show_storage(widget_t* win) {
  uint32_t used = 0;
  uint32_t total = 0;
  const int32_t state = Get_StorageData(&used, &total);
  const char* used_caption = locale_info_tr(locale_info(), "menus_sd_used");
  const char* total_caption = locale_info_tr(locale_info(), "menus_sd_total");
  char text[64];
  if (state < 0 || total == 0) {
    printf("Zavo_SDcard: the card cannot be read (state %d, %u of %u)\n", state, used, total);
    tk_snprintf(text, sizeof(text), "%s --", used_caption);
    widget_set_text_utf8(find(win, "label_storage_used"), text);
    tk_snprintf(text, sizeof(text), "%s --", total_caption);
    widget_set_text_utf8(find(win, "label_storage_total"), text);
    progress_bar_set_value(find(win, "progress_bar"), 0);
    return;
  }
  tk_snprintf(text, sizeof(text), "%s %.1fG", used_caption, used / 100.0);
  widget_set_text_utf8(find(win, "label_storage_used"), text);
  tk_snprintf(text, sizeof(text), "%s %.1fG", total_caption, total / 100.0);
  widget_set_text_utf8(find(win, "label_storage_total"), text);
  progress_bar_set_value(find(win, "progress_bar"), static_cast<double>(used) / total * 100);
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  switch (confirm_buttons_key(win, BUTTONS, evt->key, &Zavo_SDcard_index)) {
    case CONFIRM_OK: navigator_to("Zavo_formatting"); break;
    case CONFIRM_CANCEL: navigator_back(); break;
    case CONFIRM_MOVED: break;
    case CONFIRM_NONE:
      // The long function key does nothing here, unlike on the pages after it.
      if (evt->key == GUI_KEY_POWER_S) back_to_home();
      break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_SDcard_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  show_storage(win);
  Zavo_SDcard_index = 0;
  confirm_buttons_show(win, BUTTONS, Zavo_SDcard_index);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
