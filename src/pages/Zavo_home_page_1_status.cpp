// The observation screen's status side: icons and read-outs redrawn from the shared records, the
// storage check, the recording clock, the tips and the blinking icons, each with its timer.
//
// Timer discipline: a tip or blink that must not run twice keeps its timer id in a file-scope
// variable, 0 meaning none, and clears it in its own callback; a second trigger while the id is
// set starts nothing. Timers added on the window die with it; the few plain timers find the home
// window by name on every tick, so they never touch a closed window.
#include <array>
#include <cstdio>

#include "common/common_function.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/Zavo_home_page_1.h"

// ---- state ----

record record_status;
int16_t percent_battery;
// The recoil-video blink; the menus read it (a blink in progress refuses the file browser and
// makes the shut-down stop the recoil recording first).
uint32_t timer_id_RAV;

namespace {

uint32_t timer_id_range_1;      // range-finder-off tip
uint32_t timer_id_range_2;      // battery-too-low-for-the-range-finder tip
uint32_t timer_id_record_1;     // recording tip
uint32_t timer_id_image_wind;   // wind meter blink
uint32_t timer_id_temp_remind;  // over-temperature blink
int16_t Rav_count;              // RAV blink ticks
bool rav_phase;                 // current blink phases
bool temp_phase;
bool wind_phase;

constexpr const char* HOME_WINDOW = "Zavo_home_page_1";

// Icon of "image_Zavo_battery" by raw battery value; the steps are the icon's own thresholds.
const char* battery_image(int16_t v) {
  if (v >= 771) return "Zavo_battery4";
  if (v >= 731) return "Zavo_battery3";
  if (v >= 668) return "Zavo_battery2";
  if (v >= 601) return "Zavo_battery1";
  return "Zavo_battery0";
}

// Colour-map icon by stDevStatus.s8IrPolarity.
constexpr std::array<const char*, 5> COLORMAP_IMAGES = {
    "Zavo_status_whitehot", "Zavo_status_blackhot", "Zavo_status_redface",
    "Zavo_status_redhot",   "Zavo_status_greenhot",
};

// Letter of the current zero of a group: zero 0 "A" .. zero 4 "E".
constexpr std::array<const char*, 5> ZERO_LETTERS = {"A", "B", "C", "D", "E"};

// Windows on top of which a low battery must not open the shut-down page: a restore or a format
// in progress, or the shut-down page itself.
constexpr std::array<const char*, 3> SHUTDOWN_BLOCKERS = {"Zavo_Restoring", "Zavo_format_restart",
                                                          "Zavo_SHUT_DOWN"};

widget_t* find(widget_t* win, const char* name) {
  return widget_lookup(win, name, TRUE);
}

void set_visible(widget_t* win, const char* name, bool visible) {
  widget_set_visible(find(win, name), visible ? TRUE : FALSE);
}

void set_text(widget_t* win, const char* name, const char* text) {
  widget_set_text_utf8(find(win, name), text);
}

widget_t* as_window(void* ctx) {
  return static_cast<widget_t*>(ctx);
}

ret_t show_when(void* ctx, const char* name, bool visible) {
  set_visible(as_window(ctx), name, visible);
  return RET_OK;
}

// The open home window, or null. Plain timers (not bound to a widget) look it up on each tick.
widget_t* home_window() {
  return widget_child(window_manager(), HOME_WINDOW);
}

const char* top_window_name() {
  widget_t* top = window_manager_get_top_window(window_manager());
  return top != NULL ? top->name : NULL;
}

// Wind speed text: millimetres per second to miles per hour, computed in double and rounded to
// single precision before formatting.
void write_wind_speed(widget_t* win, int16_t speed_mm_s) {
  char text[32];
  float mph = static_cast<float>(speed_mm_s * 2.237 * 0.001);
  tk_snprintf(text, sizeof(text), "%.1f mph", mph);
  set_text(win, "label_WindValue", text);
}

// ---- timer callbacks ----

ret_t on_cal_storage(const timer_info_t* timer) {
  on_cal_storage_callback(timer->ctx, NULL);
  return RET_REPEAT;
}

ret_t on_Zavo_record_start(const timer_info_t* timer) {
  widget_t* win = as_window(timer->ctx);
  int64_t elapsed = static_cast<int64_t>(time_now_s()) - record_status.time_start;
  record_status.time_record = elapsed;
  record_status.hour = static_cast<int32_t>(elapsed / 3600);
  record_status.minute = static_cast<int32_t>((elapsed - record_status.hour * 3600LL) / 60);
  record_status.second = static_cast<int32_t>(elapsed % 60);
  char text[32];
  tk_snprintf(text, sizeof(text), "%02d", record_status.second);
  set_text(win, "second", text);
  tk_snprintf(text, sizeof(text), "%02d", record_status.minute);
  set_text(win, "minute", text);
  tk_snprintf(text, sizeof(text), "%02d", record_status.hour);
  set_text(win, "hour", text);
  return RET_REPEAT;
}

ret_t on_photo_disappear(const timer_info_t* timer) {
  set_visible(as_window(timer->ctx), "Zavo_image_photo", false);
  return RET_REMOVE;
}

ret_t on_view_tip_sdfull_off(const timer_info_t* timer) {
  set_visible(as_window(timer->ctx), "view_tip_sdfull", false);
  return RET_REMOVE;
}

ret_t on_tip_record_display_off(const timer_info_t* timer) {
  (void)timer;
  widget_t* win = home_window();
  if (win != NULL) set_visible(win, "view_tip_record", false);
  timer_id_record_1 = 0;
  return RET_REMOVE;
}

ret_t on_label_open_range_display(const timer_info_t* timer) {
  set_visible(as_window(timer->ctx), "view_tip_open_range", false);
  timer_id_range_1 = 0;
  return RET_REMOVE;
}

ret_t on_label_lowbattery_range_display(const timer_info_t* timer) {
  set_visible(as_window(timer->ctx), "view_tip_forbid_range", false);
  timer_id_range_2 = 0;
  return RET_REMOVE;
}

ret_t on_image_Rnage_display(const timer_info_t* timer) {
  (void)timer;
  widget_t* win = home_window();
  if (win != NULL) set_visible(win, "image_Rnage", true);
  return RET_REMOVE;
}

ret_t on_image_Wind_flash(const timer_info_t* timer) {
  (void)timer;
  widget_t* win = home_window();
  if (win == NULL) return RET_REPEAT;
  if (stUIStatus.wind_connect_state == 0) {
    // No meter connected: the icon blinks and the speed reads 0.0 mph.
    wind_phase = !wind_phase;
    set_visible(win, "image_Wind", wind_phase);
    stUIStatus.s16WindSpeed = 0;
    write_wind_speed(win, 0);
  } else {
    set_visible(win, "image_Wind", true);
  }
  return RET_REPEAT;
}

ret_t on_timer_temper_remind(const timer_info_t* timer) {
  (void)timer;
  widget_t* win = home_window();
  temp_phase = !temp_phase;
  if (win != NULL) set_visible(win, "image_Zavo_temp", temp_phase);
  return RET_REPEAT;
}

ret_t on_RAV_end(const timer_info_t* timer) {
  widget_t* win = as_window(timer->ctx);
  Rav_count += 1;
  rav_phase = !rav_phase;
  set_visible(win, "image_Zavo_RAV", rav_phase);
  // About (s8RecoilAfter + 2) x 5 s: the post-trigger recording time plus a margin.
  if (Rav_count <= (static_cast<uint8_t>(stDevStatus.s8RecoilAfter) + 2) * 10) return RET_REPEAT;
  Rav_count = 0;
  timer_id_RAV = 0;
  set_visible(win, "image_Zavo_RAV", stDevStatus.s8RecoilState != 0);
  return RET_REMOVE;
}

}  // namespace

// ---- status handlers ----

ret_t on_Zavo_battery_display(void* ctx, event_t* e) {
  widget_t* win = as_window(ctx);
  int16_t v = stUIStatus.s16BatteryValue;
  int32_t percent = (v - 570) * 100 / 230;
  percent_battery = static_cast<int16_t>(percent > 100 ? 100 : (percent < 0 ? 0 : percent));
  image_set_image(find(win, "image_Zavo_battery"), battery_image(v));

  if (v <= GUI_BATTERY_SHUT_DOWN && timer_id_RAV == 0) {
    const char* top = top_window_name();
    for (const char* blocker : SHUTDOWN_BLOCKERS) {
      if (tk_str_eq(top, blocker)) return RET_OK;  // asked again at the next battery report
    }
    stUIStatus.low_battery_shutdown = 2;
    navigator_to("Zavo_SHUT_DOWN");
  }
  return RET_OK;
}

// ---- the simple icons: each shown exactly while one field holds ----

ret_t on_Zavo_battery_type_display(void* ctx, event_t* e) {
  return show_when(ctx, "image_Zavo_usb_connect", stUIStatus.s8BatteryType == 1);
}

ret_t on_status_mic_display(void* ctx, event_t* e) {
  return show_when(ctx, "image_Zavo_mic", stDevStatus.s8MicroSwitch == 1);
}

ret_t on_Reticle_Value_display(void* ctx, event_t* e) {
  return show_when(ctx, "label_reticle_value", stDevStatus.s8ReticleMenuSwitch != 0);
}

ret_t on_status_RAV_switch(void* ctx, event_t* e) {
  return show_when(ctx, "image_Zavo_RAV", stDevStatus.s8RecoilState != 0);
}

ret_t on_standby_display(void* ctx, event_t* e) {
  return show_when(ctx, "view_standby", stUIStatus.s8InterfaceState == INTERFACE_AOD);
}

ret_t on_Zavo_WIFI_Switch(void* ctx, event_t* e) {
  return show_when(ctx, "image_Zavo_wifi", stUIStatus.s8WifiSwitch == 1);
}

// The shutter icon has two writers on purpose: strong-light protection shows it, and so does a
// closed shutter; the last event wins.
ret_t on_Zavo_BrightLight_event(void* ctx, event_t* e) {
  return show_when(ctx, "image_Zavo_shutter", stUIStatus.s8IrBrightLight == 1);
}

ret_t Zavo_shutter_Open(void* ctx, event_t* e) {
  return show_when(ctx, "image_Zavo_shutter", stUIStatus.s8ShutterState != 0);
}

// ---- the other status handlers ----

ret_t on_status_RAV_display(void* ctx, event_t* e) {
  if (timer_id_RAV != 0) {
    timer_remove(timer_id_RAV);
    Rav_count = 0;
  }
  timer_id_RAV = widget_add_timer(as_window(ctx), on_RAV_end, 500);
  return RET_OK;
}

ret_t on_Zavo_ColorMap_Switch(void* ctx, event_t* e) {
  uint8_t polarity = static_cast<uint8_t>(stDevStatus.s8IrPolarity);
  if (polarity < COLORMAP_IMAGES.size()) {
    image_set_image(find(as_window(ctx), "image_Zavo_colormap"), COLORMAP_IMAGES[polarity]);
  }
  return RET_OK;
}

// Once reported, the over-temperature warning blinks until the program ends.
ret_t on_Zavo_temper_remind_event(void* ctx, event_t* e) {
  if (timer_id_temp_remind == 0) timer_id_temp_remind = timer_add(on_timer_temper_remind, ctx, 500);
  return RET_OK;
}

// A second event while the tip shows does not extend it.
ret_t on_Tip_Record_display(void* ctx, event_t* e) {
  set_visible(as_window(ctx), "view_tip_record", true);
  if (timer_id_record_1 == 0) timer_id_record_1 = timer_add(on_tip_record_display_off, ctx, 2000);
  return RET_OK;
}

ret_t on_Zavo_laser_switch_event(void* ctx, event_t* e) {
  widget_t* win = as_window(ctx);
  printf("stUIStatus.s8LaserSwitch ====%d\n", stUIStatus.s8LaserSwitch);
  if (stUIStatus.s16BatteryValue < GUI_BATTERY_TIP && stUIStatus.s8BatteryType == 0) {
    home_tip_forbid_range_show(win);
  }
  set_visible(win, "image_reticle_laser", stUIStatus.s8LaserSwitch != 0);
  return RET_OK;
}

ret_t on_range_ui_back(void* ctx, event_t* e) {
  widget_t* win = as_window(ctx);
  bool on = stDevStatus.s8RangeSwitch != 0;
  set_visible(win, "Range", on);
  set_visible(win, "image_reticle_range", on);
  return RET_OK;
}

ret_t on_WindValue_Refresh_event(void* ctx, event_t* e) {
  widget_t* win = as_window(ctx);
  if (stUIStatus.s8WindSwitch != 1) {
    set_visible(win, "Zavo_wind", false);
    if (timer_id_image_wind != 0) {
      timer_remove(timer_id_image_wind);
      timer_id_image_wind = 0;
      stUIStatus.wind_connect_state = 0;
    }
    return RET_OK;
  }
  set_visible(win, "Zavo_wind", true);
  if (stUIStatus.wind_connect_state == 0 && timer_id_image_wind == 0) {
    timer_id_image_wind = timer_add(on_image_Wind_flash, ctx, 500);
  }
  write_wind_speed(win, stUIStatus.s16WindSpeed);
  return RET_OK;
}

ret_t on_RangeValue_Refresh_event(void* ctx, event_t* e) {
  widget_t* win = as_window(ctx);
  // Decimetres to whole metres. The frame carries the distance as an unsigned 16-bit number, so
  // it is read unsigned: 40000 dm is 4000 m, not a negative distance.
  uint16_t metres = static_cast<uint16_t>(static_cast<uint16_t>(stUIStatus.s16Distance) * 0.1);
  char text[32];
  if (stDevStatus.s8DistanceUint == DISTANCE_M) {
    tk_snprintf(text, sizeof(text), "%d m", metres);
  } else {
    // Yards from the already truncated metres.
    tk_snprintf(text, sizeof(text), "%d yd", static_cast<int32_t>(metres * 1.093));
  }
  set_text(win, "label_RngeValue", text);
  // Continuous measuring: the marker blinks off once per new reading.
  if (stDevStatus.s8RangeType == RANGE_CONTINUOUS && stUIStatus.s8RangeMode == 3) {
    set_visible(win, "image_Rnage", false);
    timer_add(on_image_Rnage_display, ctx, 500);
  }
  return RET_OK;
}

ret_t on_RangeValue_Reset_event(void* ctx, event_t* e) {
  set_text(as_window(ctx), "label_RngeValue",
           stDevStatus.s8DistanceUint != 0 ? "---- yd" : "---- m");
  return RET_OK;
}

// Pitch stays visible while a menu covers the screen (the occlusion flag); azimuth and cant hide.
ret_t on_Zavo_compass_display(void* ctx, event_t* e) {
  widget_t* win = as_window(ctx);
  bool on = stDevStatus.s8CompassSwitch != 0;
  bool occluded = stUIStatus.s8CompassTempOcclusion != 0;
  set_visible(win, "compass_azimuth", on && !occluded);
  set_visible(win, "compass_pitch", on);
  set_visible(win, "compass_slant", on && !occluded);
  return RET_OK;
}

// Compass angles in whole degrees: azimuth 0..359 with its compass point, pitch and cant signed.
ret_t on_Zavo_compass_value(void* ctx, event_t* e) {
  static constexpr std::array<const char*, 8> POINTS = {"N", "NE", "E", "SE", "S", "SW", "W", "NW"};
  widget_t* win = as_window(ctx);
  locale_info_t* locale = locale_info();
  int32_t azimuth = ((stUIStatus.s16CompassAzimuth % 360) + 360) % 360;
  char text[48];
  tk_snprintf(text, sizeof(text), "%s %03d\xC2\xB0 %s", locale_info_tr(locale, "home_compass_az"),
              azimuth, POINTS[((azimuth * 2 + 45) / 90) % 8]);
  set_text(win, "compass_azimuth", text);
  tk_snprintf(text, sizeof(text), "%s %+d\xC2\xB0", locale_info_tr(locale, "home_compass_pitch"),
              stUIStatus.s16CompassPitch);
  set_text(win, "compass_pitch", text);
  tk_snprintf(text, sizeof(text), "%s %+d\xC2\xB0", locale_info_tr(locale, "home_compass_cant"),
              stUIStatus.s16CompassSlant);
  set_text(win, "compass_slant", text);
  return on_Zavo_compass_display(ctx, e);
}

// "D2 100y": letter of the current zero, profile number, and the profile's zero range, always in
// yards with a "y" whatever the distance unit.
ret_t on_reticle_group_zero_change(void* ctx, event_t* e) {
  uint8_t group = IR_Cursor.u8CurrentGroup;
  uint8_t zero = group < 5 ? IR_Cursor.group[group].u8CurrentZero : 0;
  uint8_t profile = static_cast<uint8_t>(stDevStatus.s8BallisticGroup);
  int32_t zero_range =
      profile < BALLISTIC_PROFILE_COUNT ? info[profile].gun.scope.zeroRange_yard : 0;
  char text[32];
  tk_snprintf(text, sizeof(text), "%s%d %dy", zero < ZERO_LETTERS.size() ? ZERO_LETTERS[zero] : "A",
              profile + 1, zero_range);
  set_text(as_window(ctx), "label_reticle_value", text);
  return RET_OK;
}

// Storage: a full card switches recoil recording off, shows the card icon and stops a running
// recording with the storage-full tip; a low card only shows the icon. A read error counts as
// free space.
ret_t on_cal_storage_callback(void* ctx, event_t* e) {
  widget_t* win = as_window(ctx);
  uint32_t used = 0;
  uint32_t total = 0;
  int32_t result = Get_StorageData(&used, &total);
  if (result != 1) {
    set_visible(win, "image_Zavo_sd_full", result == 2);
    return RET_OK;
  }
  if (stDevStatus.s8RecoilState == 1) {
    stDevStatus.s8RecoilState = 0;
    GUI_SEND_RECOIL_MSG(RECOIL_SWITCH);
  }
  set_visible(win, "image_Zavo_sd_full", true);
  if (record_status.status == 1) {
    home_tip_sdfull_show(win);
    home_record_stop(win);
  }
  return RET_OK;
}

// ---- helpers shared with the key handler ----

void home_storage_check_start(widget_t* win) {
  widget_add_timer(win, on_cal_storage, 60000);
}

void home_record_start(widget_t* win) {
  record_status.hour = 0;
  record_status.minute = 0;
  record_status.second = 0;
  record_status.status = 1;
  set_text(win, "hour", "00");
  set_text(win, "minute", "00");
  set_text(win, "second", "00");
  set_visible(win, "video_view", true);
  record_status.time_start = static_cast<int64_t>(time_now_s());
  record_status.timer_id = static_cast<int32_t>(widget_add_timer(win, on_Zavo_record_start, 200));
  GUI_SEND_TAP_VIDEO_MSG(TAP_PICTURE_RECORD, TAP_RECORD_START, NULL);
  stUIStatus.s8RecordingState = record_status.status;
}

void home_record_stop(widget_t* win) {
  if (record_status.timer_id != 0) widget_remove_timer(win, record_status.timer_id);
  record_status.timer_id = 0;
  record_status.time_record = 0;
  set_visible(win, "video_view", false);
  record_status.status = 0;
  GUI_SEND_TAP_VIDEO_MSG(TAP_PICTURE_RECORD, TAP_RECORD_STOP, NULL);
  stUIStatus.s8RecordingState = record_status.status;
}

void home_tip_sdfull_show(widget_t* win) {
  set_visible(win, "view_tip_sdfull", true);
  widget_add_timer(win, on_view_tip_sdfull_off, 3000);
}

void home_tip_open_range_show(widget_t* win) {
  if (timer_id_range_1 != 0) return;
  set_visible(win, "view_tip_open_range", true);
  timer_id_range_1 = widget_add_timer(win, on_label_open_range_display, 2000);
}

void home_tip_forbid_range_show(widget_t* win) {
  if (timer_id_range_2 != 0) return;
  set_visible(win, "view_tip_forbid_range", true);
  timer_id_range_2 = widget_add_timer(win, on_label_lowbattery_range_display, 2000);
}

void home_photo_flash_show(widget_t* win) {
  set_visible(win, "Zavo_image_photo", true);
  widget_add_timer(win, on_photo_disappear, 1000);
}

// A new home window starts with none of the previous window's timers: those were bound to the
// old window and died with it (or will, once it is destroyed). A recording that was running
// keeps its clock on the new window.
void home_timers_reset(void) {
  for (uint32_t* id : {&timer_id_range_1, &timer_id_range_2, &timer_id_RAV}) {
    if (*id != 0) timer_remove(*id);
    *id = 0;
  }
  Rav_count = 0;
  if (record_status.timer_id != 0) timer_remove(static_cast<uint32_t>(record_status.timer_id));
  record_status.timer_id = 0;
}

// Restarts the recording clock on `win` when a recording runs (see home_timers_reset).
void home_record_resume(widget_t* win) {
  if (record_status.status != 1) return;
  set_visible(win, "video_view", true);
  record_status.timer_id = static_cast<int32_t>(widget_add_timer(win, on_Zavo_record_start, 200));
  stUIStatus.s8RecordingState = record_status.status;
}

// Back to the state of a process that has not opened the page yet: timer ids forgotten (not
// removed: their timers are already gone), blink phases and counts, the recording clock and the
// battery percentage. The scope never needs this; a test harness that resets the whole toolkit
// between cases does, so that no case inherits another's timers.
void home_state_forget(void) {
  for (uint32_t* id : {&timer_id_range_1, &timer_id_range_2, &timer_id_record_1, &timer_id_RAV,
                       &timer_id_image_wind, &timer_id_temp_remind}) {
    *id = 0;
  }
  Rav_count = 0;
  rav_phase = false;
  temp_phase = false;
  wind_phase = false;
  record_status = record{};
  percent_battery = 0;
}
