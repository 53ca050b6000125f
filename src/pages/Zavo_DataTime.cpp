// "Zavo_DataTime": the date and time editor. Five fields (year, month, day, hour, minute) with a
// frame and two arrows on the focused one; range increases the field, photo decreases it, each
// wrapping; function moves to the next field, and after the minute sets the hardware clock and
// the system clock and closes. Seconds are shown, not edited.
#include <array>
#include <cstdio>
#include <ctime>

#include "common/common_function.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/Zavo_menus.h"
#include "pages/system_pages.h"
#include "widgets/image.h"

// ---- state ----

uint8_t Zavo_TimeDate_index = 1;

namespace {

int32_t year = 2023;
uint8_t month = 1;
uint8_t day = 1;
uint8_t hour = 0;
uint8_t minute = 0;
uint8_t second = 0;

constexpr int FIELD_COUNT = 5;
constexpr int FIELD_YEAR = 1, FIELD_MONTH = 2, FIELD_DAY = 3, FIELD_HOUR = 4, FIELD_MINUTE = 5;
constexpr int YEAR_MIN = 2023, YEAR_MAX = 2099;

struct field_t {
  const char* label;
  rect_t frame;   // "view_sel"
  rect_t arrows;  // "view_arrow"
};
constexpr std::array<field_t, FIELD_COUNT> FIELDS = {{
    {"label_year", {152, 150, 34, 43}, {159, 130, 20, 82}},
    {"label_month", {202, 150, 34, 43}, {209, 130, 18, 68}},
    {"label_day", {256, 150, 34, 43}, {263, 130, 18, 68}},
    {"label_hour", {328, 150, 34, 43}, {335, 130, 18, 68}},
    {"label_minute", {378, 150, 34, 43}, {385, 130, 18, 68}},
}};

widget_t* find(widget_t* win, const char* name) {
  return widget_lookup(win, name, TRUE);
}

void set_number(widget_t* win, const char* name, const char* format, int value) {
  char text[16];
  tk_snprintf(text, sizeof(text), format, value);
  widget_set_text_utf8(find(win, name), text);
}

// The last day of `m` in `y`: every fourth year has a 29 February.
int last_day(int y, int m) {
  switch (m) {
    case 4:
    case 6:
    case 9:
    case 11: return 30;
    case 2: return y % 4 == 0 ? 29 : 28;
    default: return 31;
  }
}

void show_fields(widget_t* win) {
  set_number(win, "label_year", "%d", year % 100);
  set_number(win, "label_month", "%02d", month);
  set_number(win, "label_day", "%02d", day);
  set_number(win, "label_hour", "%02d", hour);
  set_number(win, "label_minute", "%02d", minute);
  set_number(win, "label_second", "%02d", second);
}

void focus_field(widget_t* win, int field, int previous) {
  const field_t& f = FIELDS[field - 1];
  widget_move_resize(find(win, "view_sel"), f.frame.x, f.frame.y, f.frame.w, f.frame.h);
  widget_move_resize(find(win, "view_arrow"), f.arrows.x, f.arrows.y, f.arrows.w, f.arrows.h);
  if (previous >= 1 && previous <= FIELD_COUNT) {
    widget_set_state(find(win, FIELDS[previous - 1].label), WIDGET_STATE_NORMAL);
  }
  widget_set_state(find(win, f.label), WIDGET_STATE_FOCUSED);
}

// ---- editing ----

// One step up (delta +1) or down (-1), wrapping from max to min and from min to max.
int wrap_step(int value, int delta, int min, int max) {
  const int next = value + delta;
  if (delta > 0) return next > max ? min : next;
  return next < min ? max : next;
}

void step_field(int field, int delta) {
  switch (field) {
    case FIELD_YEAR: year = wrap_step(year, delta, YEAR_MIN, YEAR_MAX); break;
    case FIELD_MONTH: month = static_cast<uint8_t>(wrap_step(month, delta, 1, 12)); break;
    case FIELD_DAY:
      day = static_cast<uint8_t>(wrap_step(day, delta, 1, last_day(year, month)));
      break;
    case FIELD_HOUR: hour = static_cast<uint8_t>((hour + 24 + delta) % 24); break;
    case FIELD_MINUTE: minute = static_cast<uint8_t>((minute + 60 + delta) % 60); break;
    default: break;
  }
}

// Sets both clocks. A day that the month does not have (31 February after the month changed)
// is set as the month's last day, so that the two clocks agree.
void apply_time() {
  const int last = last_day(year, month);
  if (day > last) {
    printf("Zavo_DataTime: %d-%02d has no day %d, the clock is set to day %d\n", year, month, day,
           last);
    day = static_cast<uint8_t>(last);
  }
  if (rtc_set_time(hour, minute, second, year, month, day) == 0) {
    puts("rtc time_set_successful!");
  }
  if (sys_set_time(hour, minute, second, year, month, day) == 0) {
    puts("sys time_set_successful!");
  }
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_RANGE_S:
      image_set_image(find(win, "image_arrow_up"), "Zavo_stepper_up_sel");
      image_set_image(find(win, "image_arrow_down"), "Zavo_stepper_down_def");
      step_field(Zavo_TimeDate_index, +1);
      show_fields(win);
      break;
    case GUI_KEY_PHOTO_S:
      image_set_image(find(win, "image_arrow_up"), "Zavo_stepper_up_def");
      image_set_image(find(win, "image_arrow_down"), "Zavo_stepper_down_sel");
      step_field(Zavo_TimeDate_index, -1);
      show_fields(win);
      break;
    case GUI_KEY_FUCTION_S: {
      const int previous = Zavo_TimeDate_index;
      Zavo_TimeDate_index = static_cast<uint8_t>(previous >= FIELD_COUNT ? 1 : previous + 1);
      focus_field(win, Zavo_TimeDate_index, previous);
      if (previous >= FIELD_COUNT) {
        apply_time();
        navigator_back();
      }
      break;
    }
    case GUI_KEY_FUCTION_L: navigator_back(); break;
    case GUI_KEY_POWER_S: back_to_home(); break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_DataTime_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  struct tm* now = NULL;
  sys_get_time(&now);
  if (now != NULL) {
    year = now->tm_year + 1900;
    month = static_cast<uint8_t>(now->tm_mon + 1);
    day = static_cast<uint8_t>(now->tm_mday);
    hour = static_cast<uint8_t>(now->tm_hour);
    minute = static_cast<uint8_t>(now->tm_min);
    second = static_cast<uint8_t>(now->tm_sec);
  }
  show_fields(win);
  Zavo_TimeDate_index = FIELD_YEAR;
  for (const field_t& f : FIELDS)
    widget_set_state(find(win, f.label), WIDGET_STATE_NORMAL);
  focus_field(win, Zavo_TimeDate_index, 0);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
