// "Zavo_ballistic_weather": the atmosphere of the current ballistic profile, three rows edited
// with the digit editor: 1 temperature (a sign digit, -40..122), 2 air pressure (at most 100.0),
// 3 relative humidity (at most 100: while its hundreds digit is 1 the others stay 0). Back while
// browsing returns to the ballistic menu, whose focus then starts on row 1.
#include <array>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "common/ballistic_rows.h"
#include "common/common_function.h"
#include "common/digit_editor.h"
#include "common/menu_rows.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/page_list.h"

namespace {

// ---- page state ----

enum { ROW_TEMP = 1, ROW_PRESS = 2, ROW_HUMI = 3 };

int hold_menu_index = ROW_TEMP;
int edit_mode = EDIT_BROWSE;
int edit_index = 0;
std::array<std::array<uint8_t, DIGITS_MAX>, 4> bitval{};

// ---- rows ----

constexpr const char* ROW_LABELS[] = {"label_temp", "label_press", "label_humi"};
constexpr menu_rows_t WEATHER_ROWS{"hightlight", 544, ROW_LABELS};

// Sign ("-" / "+"), hundreds, tens, units ("label_temp_point" carries the units).
constexpr digit_t TEMP_DIGITS[] = {{"label_temp_sign", 0, 1},
                                   {"label_temp_two", 16, 9},
                                   {"label_temp_one", 32, 9},
                                   {"label_temp_point", 48, 9}};
constexpr digit_number_t TEMP_NUMBER[] = {{0, 4, 1.0, true, true}};

// Hundreds, tens, units, tenths; the frame skips the decimal point between units and tenths.
constexpr digit_t PRESS_DIGITS[] = {{"label_press_three", 0, 9},
                                    {"label_press_two", 16, 9},
                                    {"label_press_one", 32, 9},
                                    {"label_press_point1", 64, 9}};
constexpr digit_number_t PRESS_NUMBER[] = {{0, 4, 10.0, false, true}};

// Hundreds (0..1), tens, units.
constexpr digit_t HUMI_DIGITS[] = {
    {"label_humi_three", 0, 1}, {"label_humi_two", 16, 9}, {"label_humi_one", 32, 9}};
constexpr digit_number_t HUMI_NUMBER[] = {{0, 3, 1.0, false, true}};

constexpr profile_value_row_t TEMP{
    "label_temp",
    {TEMP_DIGITS, TEMP_NUMBER, "view_temp_arrow", "image_temp_up", "image_temp_down",
     "view_temp_sel", 0, 3},
    [](const Info_ballistics& p) { return static_cast<double>(p.atmosphere.temperature); },
    [](Info_ballistics& p, double v) { p.atmosphere.temperature = static_cast<float>(v); },
    -40.0,
    122.0,
    nullptr,
    "save info[stDevStatus.s8BallisticGroup].atmosphere.temperature = %f\n",
    BALLISTIC_WEATHER,
    0};

constexpr profile_value_row_t PRESS{
    "label_press",
    {PRESS_DIGITS, PRESS_NUMBER, "view_press_arrow", "image_press_up", "image_press_down",
     "view_press_sel", 0, 3},
    [](const Info_ballistics& p) { return static_cast<double>(p.atmosphere.barometer); },
    [](Info_ballistics& p, double v) { p.atmosphere.barometer = static_cast<float>(v); },
    NO_LOWER_LIMIT,
    100.0,
    "set val = %0.1f\n",
    "save info[stDevStatus.s8BallisticGroup].environment.barometer = %0.1f\n",
    BALLISTIC_WEATHER,
    1};

constexpr profile_value_row_t HUMI{
    "label_humi",
    {HUMI_DIGITS, HUMI_NUMBER, "view_humi_arrow", "image_humi_up", "image_humi_down",
     "view_humi_sel", 0, 2, true},
    [](const Info_ballistics& p) { return static_cast<double>(p.atmosphere.relative_humidity); },
    [](Info_ballistics& p, double v) { p.atmosphere.relative_humidity = static_cast<float>(v); },
    NO_LOWER_LIMIT,
    100.0,
    "set val = %0.2f\n",
    "save info[stDevStatus.s8BallisticGroup].atmosphere.relative_humidity = %f\n",
    BALLISTIC_WEATHER,
    2};

constexpr const profile_value_row_t* VALUE_ROWS[] = {nullptr, &TEMP, &PRESS, &HUMI};

const profile_value_row_t& value_row(int row) {
  return *VALUE_ROWS[row >= ROW_TEMP && row <= ROW_HUMI ? row : ROW_TEMP];
}

// ---- visit_init_child ----

ret_t visit_init_child(void* ctx, const void* iter) {
  widget_t* child = static_cast<widget_t*>(const_cast<void*>(iter));
  (void)ctx;
  const char* type = widget_get_type(child);
  if (child->name != NULL && type != NULL && std::string_view(type) == "label") {
    widget_set_state(child, WIDGET_STATE_NORMAL);
  }
  return RET_OK;
}

// ---- drawing ----

void on_update_submenu(widget_t* win, int index) {
  menu_rows_focus(win, WEATHER_ROWS, index);
}

void draw_rows(widget_t* win) {
  for (int row = ROW_TEMP; row <= ROW_HUMI; ++row)
    profile_row_show(win, value_row(row), bitval[row]);
}

// ---- keys ----

void key_ok(widget_t* win) {
  const profile_value_row_t& r = value_row(hold_menu_index);
  edit_index = digit_next_index(r.digits, edit_mode, edit_index);
  edit_mode = EDIT_SELECTED;
  profile_row_update(win, r, bitval[hold_menu_index], edit_mode, edit_index, GUI_KEY_FUCTION_S);
}

void key_back(widget_t* win) {
  if (edit_mode == EDIT_BROWSE) {
    navigator_back();
    navigator_to_with_context("Zavo_ballistic_menu",
                              reinterpret_cast<void*>(intptr_t{MENU_HOLD_BALLISTIC_WEATHER}));
    return;
  }
  edit_mode = EDIT_BROWSE;
  profile_row_update(win, value_row(hold_menu_index), bitval[hold_menu_index], edit_mode,
                     edit_index, GUI_KEY_FUCTION_L);
}

void key_up_down(widget_t* win, int key) {
  if (edit_mode == EDIT_BROWSE) {
    hold_menu_index = getIndexVal(key, ROW_TEMP, ROW_HUMI, hold_menu_index, 0);
    on_update_submenu(win, hold_menu_index);
    return;
  }
  edit_mode = EDIT_CHANGING;
  profile_row_update(win, value_row(hold_menu_index), bitval[hold_menu_index], edit_mode,
                     edit_index, key);
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_POWER_S: navigator_back_to_home(); break;
    case GUI_KEY_FUCTION_S: key_ok(win); break;
    case GUI_KEY_FUCTION_L: key_back(win); break;
    case GUI_KEY_RANGE_S:
    case GUI_KEY_PHOTO_S: key_up_down(win, evt->key); break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_ballistic_weather_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  widget_foreach(win, visit_init_child, win);
  edit_mode = EDIT_BROWSE;
  edit_index = 0;
  hold_menu_index = ROW_TEMP;
  on_update_submenu(win, hold_menu_index);
  draw_rows(win);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
