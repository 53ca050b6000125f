// "Zavo_Settings": the scope's system settings, eight rows with the 60-pixel highlight: external
// video and auto shutter (switches), date and time, factory reset, USB mode (cycles USB1, USB2,
// USB3), information, SD card, exit. The switches follow the device's reports (event 8241).
#include <array>
#include <cstdio>

#include "common/common_function.h"
#include "common/menu_rows.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/Zavo_menus.h"
#include "pages/system_pages.h"
#include "widgets/image.h"

// ---- state ----

uint8_t Zavo_setting_index = 1;

namespace {

constexpr int ROW_VIDEO = 1, ROW_SHUTTER = 2, ROW_TIME = 3, ROW_RESET = 4, ROW_USB = 5,
              ROW_INFO = 6, ROW_SDCARD = 7, ROW_EXIT = 8;

constexpr std::array<const char*, 8> ROW_LABELS = {
    "label_External_video", "label_shutter", "label_Time", "label_Reset", "label_USB",
    "label_Info",           "label_SD_card", "label_Exit",
};
constexpr menu_rows_t ROWS{"image_setting_sel", 336, ROW_LABELS};

// "label_USB_value" by s8UsbMode 0, 1, 2.
constexpr std::array<const char*, 3> USB_MODES = {"USB1", "USB2", "USB3"};

constexpr uint32_t RECORD_TIP_MS = 2000;
uint32_t timer_id_record_tip;  // hides "view_tip_record"

widget_t* find(widget_t* win, const char* name) {
  return widget_lookup(win, name, TRUE);
}

const char* switch_image(char on) {
  return on == 1 ? "switch_small_on" : "switch_small_off";
}

void show_usb_mode(widget_t* win) {
  const unsigned mode = static_cast<unsigned char>(stUIStatus.s8UsbMode);
  if (mode < USB_MODES.size()) widget_set_text_utf8(find(win, "label_USB_value"), USB_MODES[mode]);
}

void focus_row(widget_t* win, int row) {
  menu_rows_focus(win, ROWS, row);
  widget_set_visible(find(win, "view_bg_USB"), row == ROW_USB ? TRUE : FALSE);
}

// ---- rows ----

ret_t on_record_tip_end(const timer_info_t* timer) {
  widget_set_visible(find(static_cast<widget_t*>(timer->ctx), "view_tip_record"), FALSE);
  timer_id_record_tip = 0;
  return RET_REMOVE;
}

// The clock is not set while a recording runs (its file times would jump).
void open_date_editor(widget_t* win) {
  if (stUIStatus.s8RecordingState == 1) {
    widget_set_visible(find(win, "view_tip_record"), TRUE);
    if (timer_id_record_tip == 0) {
      timer_id_record_tip = widget_add_timer(win, on_record_tip_end, RECORD_TIP_MS);
    }
    return;
  }
  navigator_to("Zavo_DataTime");
}

void leave_usb_mode(widget_t* win) {
  if (stUIStatus.s8UsbMode != 1) return;
  stUIStatus.s8UsbMode = 0;
  GUI_SEND_BASIC_FUNCTION_MSG(BASIC_USB_TYPE);
  show_usb_mode(win);
}

void confirm_row(widget_t* win) {
  switch (Zavo_setting_index) {
    case ROW_VIDEO:
      stDevStatus.s8VideoOut = stDevStatus.s8VideoOut == 1 ? 0 : 1;
      GUI_SEND_BASIC_FUNCTION_MSG(BASIC_CVBS_MODE);
      image_set_image(find(win, "image_ExternVideo_switch"), switch_image(stDevStatus.s8VideoOut));
      break;
    case ROW_SHUTTER:
      leave_usb_mode(win);
      stDevStatus.s8AutoShutter = stDevStatus.s8AutoShutter == 1 ? 0 : 1;
      GUI_SEND_INFRARED_MSG(INFRARED_AUTOSHUTTER);
      image_set_image(find(win, "image_shutter_switch"), switch_image(stDevStatus.s8AutoShutter));
      break;
    case ROW_TIME: open_date_editor(win); break;
    case ROW_RESET: navigator_to("Zavo_Reset"); break;
    case ROW_USB:
      stUIStatus.s8UsbMode =
          static_cast<char>((static_cast<unsigned char>(stUIStatus.s8UsbMode) + 1) % 3);
      show_usb_mode(win);
      GUI_SEND_BASIC_FUNCTION_MSG(BASIC_USB_TYPE);
      break;
    case ROW_INFO: navigator_to("Zavo_Info"); break;
    case ROW_SDCARD: navigator_to("Zavo_SDcard"); break;
    case ROW_EXIT: navigator_back(); break;
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
      Zavo_setting_index = static_cast<uint8_t>(menu_rows_step(ROWS, evt->key, Zavo_setting_index));
      focus_row(win, Zavo_setting_index);
      break;
    case GUI_KEY_FUCTION_S: confirm_row(win); break;
    case GUI_KEY_FUCTION_L: navigator_back(); break;
    case GUI_KEY_POWER_S: back_to_home(); break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t on_setting_Init(void* ctx, event_t* e) {
  (void)e;
  widget_t* win = static_cast<widget_t*>(ctx);
  image_set_image(find(win, "image_ExternVideo_switch"), switch_image(stDevStatus.s8VideoOut));
  image_set_image(find(win, "image_shutter_switch"), switch_image(stDevStatus.s8AutoShutter));
  show_usb_mode(win);
  return RET_OK;
}

ret_t Zavo_Settings_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  timer_id_record_tip = 0;
  Zavo_setting_index = 1;
  focus_row(win, Zavo_setting_index);
  on_setting_Init(win, NULL);
  widget_on(window_manager(), EVT_USER_START + int{SCREEN_EVT_SHUTTER}, on_setting_Init, win);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
