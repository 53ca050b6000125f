// "Zavo_home_page_1": the observation screen. This file binds the screen events to the handlers,
// handles the front-panel keys and builds the page; the status handlers and their timers are in
// Zavo_home_page_1_status.cpp, the reticle, markers and aim point in the overlay files.
#include "pages/Zavo_home_page_1.h"

#include <array>
#include <cstdio>
#include <span>

#include "common/common_function.h"
#include "common/navigator.h"
#include "common/records_lock.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/Zavo_file_menu.h"
#include "pages/Zavo_home_page_1_overlay.h"
#include "pages/page_list.h"

namespace {

// ---- screen-event subscriptions ----

// One row: when the layout holds a child of this name, `handler` is subscribed to the screen
// event EVT_USER_START + offset on the window manager, with the home window as context. A name
// standing in several rows registers all of them.
struct subscription {
  const char* child;
  int offset;
  event_func_t handler;
};

constexpr std::array<subscription, 32> SUBSCRIPTIONS = {{
    {"view_reticle_shoot", SCREEN_EVT_RETICLE_SWITCH, on_Zavo_Reticle_switch},
    {"lable_Zavo_battery_value", SCREEN_EVT_BATTERY, on_Zavo_battery_display},
    {"image_Zavo_usb_connect", SCREEN_EVT_BATTERY_TYPE, on_Zavo_battery_type_display},
    {"label_reticle_value", SCREEN_EVT_RETICLE_MENU_SWITCH, on_Reticle_Value_display},
    {"label_RngeValue", SCREEN_EVT_DISTANCE, on_RangeValue_Refresh_event},
    {"view_reticle_shoot", SCREEN_EVT_RETICLE_MOVE, on_reticle_move},
    {"image_reticle_range", SCREEN_EVT_RANGE_MARKER_MOVE, on_Zavo_RangeReticle_move},
    {"image_reticle_laser", SCREEN_EVT_LASER_MARKER_MOVE, on_Zavo_laserReticle_move},
    {"view_reticle_shoot", SCREEN_EVT_ZOOM, on_Zavo_All_Reticle_zoom},
    {"image_reticle_laser", SCREEN_EVT_LASER_SWITCH, on_Zavo_laser_switch_event},
    {"image_Zavo_colormap", SCREEN_EVT_POLARITY, on_Zavo_ColorMap_Switch},
    {"image_Zavo_wifi", SCREEN_EVT_WIFI_SWITCH, on_Zavo_WIFI_Switch},
    {"view_reticle_shoot", SCREEN_EVT_RETICLE_COLOR, on_reticle_color},
    {"view_reticle_shoot", SCREEN_EVT_RETICLE_LIGHT, on_reticle_light},
    {"image_Zavo_shutter", SCREEN_EVT_BRIGHT_LIGHT, on_Zavo_BrightLight_event},
    {"image_Zavo_temp", SCREEN_EVT_TEMPERATURE_REMIND, on_Zavo_temper_remind_event},
    {"view_reticle_shoot", SCREEN_EVT_RETICLE_TYPE, on_reticle_type},
    {"image_point", SCREEN_EVT_BALLISTIC_RESULT, on_TOBRAN_ballistics_result_update},
    {"image_Zavo_shutter", SCREEN_EVT_SHUTTER, Zavo_shutter_Open},
    {"image_bg_Rnage", SCREEN_EVT_RANGE_SWITCH, on_range_ui_back},
    {"Zavo_wind", SCREEN_EVT_WIND, on_WindValue_Refresh_event},
    {"label_reticle_value", SCREEN_EVT_BALLISTIC_PROFILE, on_reticle_group_zero_change},
    {"image_Zavo_mic", SCREEN_EVT_MICRO_SWITCH, on_status_mic_display},
    {"image_Zavo_RAV", SCREEN_EVT_RECOIL_TRIGGERED, on_status_RAV_display},
    {"view_tip_record", SCREEN_EVT_RECORD_TIP, on_Tip_Record_display},
    {"image_Zavo_RAV", SCREEN_EVT_RECOIL_SWITCH, on_status_RAV_switch},
    {"image_point", SCREEN_EVT_BALLISTIC_RETICLE, ballistics_reticle_type},
    {"image_point", SCREEN_EVT_BALLISTIC_COLOR, ballistics_reticle_color},
    {"view_standby", SCREEN_EVT_STANDBY, on_standby_display},
    {"view_pip_reticle", SCREEN_EVT_PIP_RETICLE, on_pip_reticle_change},
    {"image_reticle_range", SCREEN_EVT_RANGE_RETICLE, on_range_reticle_change},
    {"image_reticle_laser", SCREEN_EVT_LASER_RETICLE, on_laser_reticle_change},
}};

// The compass read-outs follow the compass angles and the compass switch as well, so that the
// values the device reports are shown and the read-outs appear and disappear with the switch.
constexpr std::array<subscription, 4> COMPASS_SUBSCRIPTIONS = {{
    {"compass_azimuth", SCREEN_EVT_COMPASS_AZIMUTH, on_Zavo_compass_value},
    {"compass_pitch", SCREEN_EVT_COMPASS_PITCH, on_Zavo_compass_value},
    {"compass_slant", SCREEN_EVT_COMPASS_SLANT, on_Zavo_compass_value},
    {"compass_azimuth", SCREEN_EVT_COMPASS_SWITCH, on_Zavo_compass_display},
}};

ret_t visit_init_child(void* ctx, const void* iter) {
  const widget_t* child = static_cast<const widget_t*>(iter);
  if (child->name == NULL) return RET_OK;
  for (const auto& table : {std::span<const subscription>(SUBSCRIPTIONS),
                            std::span<const subscription>(COMPASS_SUBSCRIPTIONS)}) {
    for (const subscription& row : table) {
      if (tk_str_eq(child->name, row.child)) {
        widget_on(window_manager(), EVT_USER_START + row.offset, row.handler, ctx);
      }
    }
  }
  return RET_OK;
}

// Back on top after a menu: the compass read-outs hidden while the menu covered them return.
ret_t on_home_to_foreground(void* ctx, event_t* e) {
  stUIStatus.s8CompassTempOcclusion = 0;
  return on_Zavo_compass_display(ctx, e);
}

// ---- keys ----

// Photo (long photo key): refused with the storage-full tip on a full card.
void key_take_photo(widget_t* win) {
  uint32_t used = 0;
  uint32_t total = 0;
  if (Get_StorageData(&used, &total) == 1) {
    home_tip_sdfull_show(win);
    return;
  }
  home_photo_flash_show(win);
  GUI_SEND_TAP_VIDEO_MSG(TAP_PICTURE_RECORD, TAP_TAKE_PICTURE, NULL);
}

// Recording (short photo key) toggles; starting is refused with the tip on a full card.
void key_toggle_recording(widget_t* win) {
  if (record_status.status == 1) {
    home_record_stop(win);
    return;
  }
  uint32_t used = 0;
  uint32_t total = 0;
  if (Get_StorageData(&used, &total) == 1) {
    home_tip_sdfull_show(win);
    return;
  }
  home_record_start(win);
}

// Short range key: measure (single), or start / stop continuous measuring; with the finder off,
// the tip that it is off.
void key_range_measure(widget_t* win) {
  if (stDevStatus.s8RangeSwitch != 1) {
    home_tip_open_range_show(win);
    return;
  }
  if (stDevStatus.s8RangeType == RANGE_SINGLE) {
    GUI_SEND_DISTANCE_FUNCTION_MSG(1, RANGE_SEND);
    on_RangeValue_Reset_event(win, NULL);
  } else if (stDevStatus.s8RangeType == RANGE_CONTINUOUS) {
    GUI_SEND_DISTANCE_FUNCTION_MSG(
        1, stUIStatus.s8RangeMode == 3 ? RANGE_COUTINUTE_SEND_STOP : RANGE_COUTINUTE_SEND);
  }
}

// Long range key: switches the range finder off, or on unless the battery is too low for it.
void key_range_switch(widget_t* win) {
  printf("stDevStatus.s8RangeSwitch=====%d\n", stDevStatus.s8RangeSwitch);
  if (stDevStatus.s8RangeSwitch != 0) {
    if (stUIStatus.s8RangeMode == 3) GUI_SEND_DISTANCE_FUNCTION_MSG(1, RANGE_COUTINUTE_SEND_STOP);
    GUI_SEND_DISTANCE_FUNCTION_MSG(0, RANGE_CLOSE);
    return;
  }
  printf("stUIStatus.s16BatteryValue====%d", stUIStatus.s16BatteryValue);
  // Refused unless on external power (battery type 1); the laser refresh tests type 0 instead.
  if (stUIStatus.s16BatteryValue < GUI_BATTERY_TIP && stUIStatus.s8BatteryType != 1) {
    home_tip_forbid_range_show(win);
    return;
  }
  GUI_SEND_DISTANCE_FUNCTION_MSG(0, RANGE_OPEN);
  on_RangeValue_Reset_event(win, NULL);
}

// Opens a menu above the screen, the compass read-outs hidden under it until the screen is back
// on top. When no window opens above the screen (the navigator refused: no layout, a bad name),
// the screen stays as it was: read-outs, occlusion flag and the menu's starting row.
void open_menu(widget_t* win, const char* name, uint8_t menu1_index) {
  const char occlusion = stUIStatus.s8CompassTempOcclusion;
  const uint8_t index = Zavo_menu1_index;
  stUIStatus.s8CompassTempOcclusion = 1;
  on_Zavo_compass_display(win, NULL);
  Zavo_menu1_index = menu1_index;
  navigator_to(name);
  if (window_manager_get_top_window(window_manager()) != win) return;
  stUIStatus.s8CompassTempOcclusion = occlusion;
  Zavo_menu1_index = index;
  on_Zavo_compass_display(win, NULL);
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  printf("evt->key=%d!!!!\\\n", evt->key);
  switch (evt->key) {
    case GUI_KEY_PHOTO_L: key_take_photo(win); break;
    case GUI_KEY_PHOTO_S: key_toggle_recording(win); break;
    case GUI_KEY_FUCTION_S: open_menu(win, "Zavo_shortcut_menu", Zavo_menu1_index); break;
    case GUI_KEY_FUCTION_L: open_menu(win, "Zavo_menu1", 1); break;
    case GUI_KEY_RANGE_S: key_range_measure(win); break;
    case GUI_KEY_RANGE_L: key_range_switch(win); break;
    default: break;
  }
  return RET_OK;
}

// ---- drawing everything from the records ----

void draw_all(widget_t* win) {
  on_Zavo_RangeReticle_move(win, NULL);
  on_Zavo_laserReticle_move(win, NULL);
  on_reticle_type(win, NULL);
  on_reticle_color(win, NULL);
  on_reticle_light(win, NULL);
  on_reticle_move(win, NULL);
  on_Zavo_Reticle_switch(win, NULL);
  on_Zavo_ColorMap_Switch(win, NULL);
  widget_set_visible(widget_lookup(win, "image_Zavo_enchane", TRUE),
                     stDevStatus.s8IrEnchance == 1 ? TRUE : FALSE);
  on_Zavo_All_Reticle_zoom(win, NULL);
  on_Zavo_battery_type_display(win, NULL);
  on_Zavo_battery_display(win, NULL);
  on_cal_storage_callback(win, NULL);
  on_WindValue_Refresh_event(win, NULL);
  on_reticle_group_zero_change(win, NULL);
  on_status_mic_display(win, NULL);
  on_Reticle_Value_display(win, NULL);
  on_status_RAV_switch(win, NULL);
  ballistics_reticle_color(win, NULL);
  ballistics_reticle_type(win, NULL);
  on_range_ui_back(win, NULL);
  get_file_list_info();  // the media catalogue, for the file browser
  on_laser_reticle_change(win, NULL);
  on_range_reticle_change(win, NULL);
  on_pip_reticle_change(win, NULL);
  // The Wi-Fi icon and the compass read-outs too, so that they show the device's state from the
  // start instead of waiting for their first event.
  on_Zavo_WIFI_Switch(win, NULL);
  on_Zavo_compass_value(win, NULL);
}

}  // namespace

ret_t Zavo_home_page_1_init(widget_t* win, void* ctx) {
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);

  puts("enter Zavo_home_page_1!!!");
  widget_foreach(win, visit_init_child, win);

  stUIStatus.s8CurrentMenu = 0;
  GUI_SEND_BASIC_FUNCTION_MSG(BASIC_MENU_LEVEL);
  // A placeholder until the device reports; a level it has already reported stays.
  if (stUIStatus.s8BatteryReported == 0) stUIStatus.s16BatteryValue = 600;

  // The screen must not draw stale settings: wait, without a time-out, until the device link
  // has delivered the first full status. The records are released while it sleeps, so that
  // the listener can store them.
  while (stUIStatus.event_distrubut_reday == 0)
    records_sleep_ms(100);

  // Forced whatever the device reported.
  stDevStatus.s8ReticleMenuSwitch = 1;
  stDevStatus.s8ReticleSwitch = 1;
  stDevStatus.s8DistanceUint = DISTANCE_YD;

  home_timers_reset();
  home_storage_check_start(win);
  draw_all(win);
  home_record_resume(win);

  GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 1);

  stUIStatus.s8InterfaceState = INTERFACE_OBSERVE;
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  widget_on(win, EVT_WINDOW_TO_FOREGROUND, on_home_to_foreground, win);
  puts("Zavo_home_page_1 INIT END!");
  return RET_OK;
}
