// "Zavo_pixel_child": the repair options over the blind-pixel cursor: repair the pixel under the
// cursor, automatic repair, save the repaired pixels, exit. The back key is not handled here.
#include "common/blind_pixel.h"
#include "common/common_function.h"
#include "common/menu_rows.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/page_list.h"

namespace {

constexpr const char* PIX_LABELS[] = {"label_repair", "label_auto", "label_save", "label_exit"};
constexpr menu_rows_t PIX_ROWS{"image_pix_sel", 208, PIX_LABELS};
enum { ROW_REPAIR = 1, ROW_AUTO, ROW_SAVE, ROW_EXIT };
constexpr char REPAIR_MANUAL = 1;
constexpr char REPAIR_AUTO = 0;

int Zavo_pix_index = ROW_REPAIR;

void repair(char type) {
  stUIStatus.s8BlindType = type;
  GUI_SEND_BLIND_MSG(BLIND_REPAIR);
  navigator_back();
}

void on_ok() {
  switch (Zavo_pix_index) {
    case ROW_REPAIR: repair(REPAIR_MANUAL); break;
    case ROW_AUTO: repair(REPAIR_AUTO); break;
    case ROW_SAVE:
      // The save page marks the save pending before the device is asked, so that an answer
      // arriving at once is not overwritten by the page's start.
      navigator_to("Zavo_pixel_save");
      GUI_SEND_BLIND_MSG(BLIND_SAVE);
      break;
    case ROW_EXIT:
      blind_pixel_cursor_off();
      navigator_back();
      navigator_back();
      blind_pixel_reticle_back();
      break;
    default: break;
  }
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_PHOTO_S:
    case GUI_KEY_RANGE_S:
      Zavo_pix_index = menu_rows_step(PIX_ROWS, evt->key, Zavo_pix_index);
      menu_rows_focus(win, PIX_ROWS, Zavo_pix_index);
      break;
    case GUI_KEY_FUCTION_S: on_ok(); break;
    case GUI_KEY_POWER_S:
      blind_pixel_cursor_off();
      window_manager_back_to(window_manager(), "Zavo_home_page_1");
      blind_pixel_reticle_back();
      break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_pixel_child_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  Zavo_pix_index = ROW_REPAIR;
  menu_rows_focus(win, PIX_ROWS, Zavo_pix_index);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
