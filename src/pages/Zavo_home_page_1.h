// "Zavo_home_page_1": the observation screen, a transparent window drawn over the thermal video.
//
// It shows the device's state as icons and read-outs (battery, card, recording clock, photo
// flash, Wi-Fi, microphone, USB power, over-temperature, shutter, colour map, standby, recoil
// video, range, wind, compass, zero group) and turns the front-panel keys into commands while no
// menu is open. Every icon is a view of stDevStatus / stUIStatus: the device link raises a screen
// event, the subscribed handler below re-reads the records and redraws. The reticle, aim point
// and markers drawn in the same window are declared in Zavo_home_page_1_overlay.h.
//
// Status handlers take (window, event) and ignore the event, so calling one at any time with a
// null event is harmless: it only redraws from the records.
#ifndef SCOPE_PAGES_ZAVO_HOME_PAGE_1_H
#define SCOPE_PAGES_ZAVO_HOME_PAGE_1_H

#include <cstdint>

#include "awtk.h"

// The recording clock.
typedef struct {
  int32_t hour;  // elapsed recording time, split
  int32_t minute;
  int32_t second;
  char status;          // 1 while a recording runs; mirrored into stUIStatus.s8RecordingState
  int32_t timer_id;     // the timer that ticks the clock
  int64_t time_start;   // time_now_s() when recording began
  int64_t time_record;  // seconds at the last tick; 0 when stopped
} record;

extern record record_status;
// Battery percentage of the last battery refresh, 0..100, for other readers (the page shows an
// icon only).
extern int16_t percent_battery;
// Id of the recoil-video (RAV) blink timer while it runs, else 0. Written by the observation
// screen only; the menus and the shut-down countdown read it.
extern uint32_t timer_id_RAV;

ret_t Zavo_home_page_1_init(widget_t* win, void* ctx);

// ---- status handlers, subscribed to the screen events at init ----
ret_t on_Zavo_battery_display(void* ctx, event_t* e);
ret_t on_Zavo_battery_type_display(void* ctx, event_t* e);
ret_t on_status_mic_display(void* ctx, event_t* e);
ret_t on_Reticle_Value_display(void* ctx, event_t* e);
ret_t on_status_RAV_switch(void* ctx, event_t* e);
ret_t on_status_RAV_display(void* ctx, event_t* e);
ret_t on_standby_display(void* ctx, event_t* e);
ret_t on_Zavo_WIFI_Switch(void* ctx, event_t* e);
ret_t on_Zavo_BrightLight_event(void* ctx, event_t* e);
ret_t Zavo_shutter_Open(void* ctx, event_t* e);
ret_t on_Zavo_ColorMap_Switch(void* ctx, event_t* e);
ret_t on_Zavo_temper_remind_event(void* ctx, event_t* e);
ret_t on_Tip_Record_display(void* ctx, event_t* e);
ret_t on_Zavo_laser_switch_event(void* ctx, event_t* e);
ret_t on_range_ui_back(void* ctx, event_t* e);
ret_t on_WindValue_Refresh_event(void* ctx, event_t* e);
ret_t on_RangeValue_Refresh_event(void* ctx, event_t* e);
ret_t on_reticle_group_zero_change(void* ctx, event_t* e);

// ---- shared by the page's own files (status handlers and timers in Zavo_home_page_1_status.cpp,
// subscriptions, keys and init in Zavo_home_page_1.cpp) ----
ret_t on_Zavo_compass_display(void* ctx, event_t* e);
ret_t on_RangeValue_Reset_event(void* ctx, event_t* e);
ret_t on_cal_storage_callback(void* ctx, event_t* e);
// Compass values into the three read-outs, then their visibility.
ret_t on_Zavo_compass_value(void* ctx, event_t* e);
// Starts the 60 s storage check on the window.
void home_storage_check_start(widget_t* win);
// Recording: start (clock at 00:00:00, timer, start command) and stop (timer removed, clock
// hidden, stop command); both mirror the state into stUIStatus.s8RecordingState.
void home_record_start(widget_t* win);
void home_record_stop(widget_t* win);
// Tips: storage full (3000 ms, may overlap), range finder off and battery too low for the range
// finder (2000 ms each, one timer at a time), photo flash (1000 ms, may overlap).
void home_tip_sdfull_show(widget_t* win);
void home_tip_open_range_show(widget_t* win);
void home_tip_forbid_range_show(widget_t* win);
void home_photo_flash_show(widget_t* win);
// Forgets the timers of a previous home window (they died with it), then restarts the recording
// clock on the new window when a recording runs.
void home_timers_reset(void);
void home_record_resume(widget_t* win);
// Forgets the page's timers (without removing them), blink state and recording clock, as before
// the first home window: for a toolkit that has dropped every timer at once (a test harness's
// reset).
void home_state_forget(void);

#endif  // SCOPE_PAGES_ZAVO_HOME_PAGE_1_H
