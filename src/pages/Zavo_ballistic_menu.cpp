// "Zavo_ballistic_menu": ten rows over the observation screen.
//
//   1 calculator switch   2 profile   3 aim-mark type   4 aim-mark colour   5 wind
//   6 zero distance   7 bullet (page)   8 sight height   9 weather (page)   10 confirm
//
// Rows 5, 6 and 8 are edited in place with the digit editor: OK selects a digit (and the next),
// up/down change it, back saves the row and tells the device. Every other change is written to
// the record and sent at once. With the calculator off the focus stays on row 1.
#include "pages/Zavo_ballistic_menu.h"

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

DeviceInfo_ballistics deviceinfo = {};

double mrad2Moa(double mrad) {
  return mrad * MOA_PER_MRAD;
}

double moa2Mrad(double moa) {
  return moa / MOA_PER_MRAD;
}

namespace {

// ---- page state ----

enum {
  ROW_SWITCH = 1,
  ROW_PROFILE = 2,
  ROW_TYPE = 3,
  ROW_COLOR = 4,
  ROW_WIND = 5,
  ROW_ZERO = 6,
  ROW_BULLET = 7,
  ROW_SCOPE = 8,
  ROW_WEATHER = 9,
  ROW_OK = 10,
};

int hold_menu_index = ROW_SWITCH;
int edit_mode = EDIT_BROWSE;
int edit_index = 0;
double temp_data = 0;  // the zero distance while it is composed from its digits

std::array<uint8_t, 6> bitval_wind{};
std::array<uint8_t, 4> bitval_zero{};
std::array<uint8_t, 4> bitval_scope{};

// ---- rows ----

// Focus labels of rows 1..9 (row 10 is "view_OK"), under the 544-pixel highlight "hightlight".
constexpr const char* ROW_LABELS[] = {"label_ballistic_switch",
                                      "label_ballistic_profile",
                                      "label_type",
                                      "label_reticle_color",
                                      "label_wind",
                                      "label_zero_distance",
                                      "label_bullet",
                                      "label_scope",
                                      "label_weather"};
constexpr menu_rows_t MENU_ROWS{"hightlight", 544, ROW_LABELS};

constexpr const char* AIM_TYPES[] = {"view_type1", "view_type2", "view_type3", "view_type4",
                                     "view_type5"};
// White, red, green: the aim mark's colours 0..2.
constexpr uint32_t AIM_COLORS[] = {0xFFFFFFFF, 0xFF0011FF, 0xFF00FF00};

// Wind: speed tens, units, tenths (the labels named "winddir"), then direction hundreds, tens,
// units (named "windrate"). Only the direction is edited here.
constexpr digit_t WIND_DIGITS[] = {{"label_winddir_two", 0, 9},    {"label_winddir_one", 16, 9},
                                   {"label_windir_point1", 48, 9}, {"label_windrate_three", 176, 9},
                                   {"label_windrate_two", 192, 9}, {"label_windrate_one", 208, 9}};
constexpr digit_number_t WIND_NUMBERS[] = {{0, 3, 10.0, false, true}, {3, 3, 1.0, false, true}};
constexpr digit_row_t WIND_ROW{WIND_DIGITS,
                               WIND_NUMBERS,
                               "view_wind_arrow",
                               "image_wind_up",
                               "image_wind_down",
                               "view_wind_sel",
                               3,
                               5};
constexpr double WIND_SPEED_MAX = 40.0;
constexpr double WIND_ANGLE_MAX = 359.0;

// Zero distance in metres or yards; the thousands digit is shown but never selected.
constexpr digit_t ZERO_DIGITS[] = {{"label_zero_dist_four", 0, 9},
                                   {"label_zero_dist_three", 16, 9},
                                   {"label_zero_dist_two", 32, 9},
                                   {"label_zero_dist_one", 48, 9}};
constexpr digit_number_t ZERO_NUMBER[] = {{0, 4, 1.0, false, true}};
constexpr digit_row_t ZERO_ROW{ZERO_DIGITS,
                               ZERO_NUMBER,
                               "view_zero_dist_arrow",
                               "image_zero_dist_up",
                               "image_zero_dist_down",
                               "view_zero_dist_sel",
                               1,
                               3};
constexpr double ZERO_RANGE_MAX = 999.0;
constexpr double METRES_PER_YARD = 0.9144;
constexpr double YARDS_PER_METRE = 1.0936;

// Sight height over the bore, two decimals, at most 5.00.
constexpr digit_t SCOPE_DIGITS[] = {{"label_scope_two", 0, 9},
                                    {"label_scope_one", 16, 9},
                                    {"label_scope_point1", 48, 9},
                                    {"label_scope_point2", 64, 9}};
constexpr digit_number_t SCOPE_NUMBER[] = {{0, 4, 100.0, false, true}};
constexpr profile_value_row_t SCOPE_ROW{
    "label_scope",
    {SCOPE_DIGITS, SCOPE_NUMBER, "view_scope_arrow", "image_scope_up", "image_scope_down",
     "view_scope_sel", 0, 3},
    [](const Info_ballistics& p) { return p.gun.scope.sightHeightOverBore; },
    [](Info_ballistics& p, double v) { p.gun.scope.sightHeightOverBore = v; },
    NO_LOWER_LIMIT,
    5.0,
    "set val = %0.2f\n",
    "save sightHeightOverBore = %0.2f\n",
    BALLISTIC_LENS_INFO,
    0};

// ---- visit_init_child ----

// Every caption and digit starts "normal"; the rows are drawn from the records after the visit.
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

widget_t* find(widget_t* win, const char* name) {
  return widget_lookup(win, name, TRUE);
}

// Row focus: the highlight under rows 1..9, "view_OK" focused on row 10. The switch image follows
// the calculator switch (kept in the first profile whatever profile is current); with it off,
// rows 2..9 and the confirm row are shown disabled.
void on_update_submenu(widget_t* win, int index) {
  menu_focus_one_of(win, ROW_LABELS, -1);
  widget_set_state(find(win, "view_OK"), WIDGET_STATE_NORMAL);
  widget_set_state(find(win, "label_OK"), WIDGET_STATE_NORMAL);
  widget_t* highlight = find(win, "hightlight");
  if (index <= ROW_WEATHER) {
    widget_set_visible(highlight, TRUE);
    menu_rows_focus(win, MENU_ROWS, index);
  } else {
    widget_set_visible(highlight, FALSE);
    widget_set_state(find(win, "view_OK"), WIDGET_STATE_FOCUSED);
  }
  const bool on = info[0].ballistics_sw == 1;
  image_set_image(find(win, "ballistic_switch"), on ? "switch_small_on" : "switch_small_off");
  if (!on) {
    for (int row = ROW_PROFILE; row <= ROW_WEATHER; ++row)
      widget_set_state(find(win, ROW_LABELS[row - 1]), WIDGET_STATE_DISABLE);
    widget_set_state(find(win, "label_OK"), WIDGET_STATE_DISABLE);
  }
}

void on_ballistic_reticle_display(widget_t* win) {
  const int type = static_cast<unsigned char>(stDevStatus.s8BallisticReticle);
  if (type < static_cast<int>(std::size(AIM_TYPES))) show_only_one_of(win, AIM_TYPES, type);
}

void on_ballistic_reticle_color_display(widget_t* win) {
  const unsigned color = static_cast<unsigned char>(stDevStatus.s8BallisticReticleColor);
  if (color < std::size(AIM_COLORS)) {
    widget_set_style_color(find(win, "image_reticle_color"), "normal:bg_color", AIM_COLORS[color]);
  }
}

void on_ballistic_group_display(widget_t* win) {
  char text[8];
  std::snprintf(text, sizeof(text), "%d",
                static_cast<unsigned char>(stDevStatus.s8BallisticGroup) + 1);
  widget_set_text_utf8(find(win, "label_ballistic_profile_vlaue"), text);
}

// ---- the three digit rows ----

void show_wind(widget_t* win) {
  const Info_ballistics& p = ballistic_profile_shown();
  const double values[] = {p.wind.speed, p.wind.angle};
  digit_split_row(WIND_ROW, values, bitval_wind);
  digit_row_browse(win, WIND_ROW, bitval_wind);
}

// Speed at most 40.0, direction at most 359; the digits are split again only when one was held.
void save_wind(widget_t* win) {
  Info_ballistics* p = current_ballistic_profile();
  if (p == nullptr) {
    std::puts("save wind: no current ballistic profile, nothing saved");
    digit_row_browse(win, WIND_ROW, bitval_wind);
    return;
  }
  double speed = digit_compose(WIND_NUMBERS[0], bitval_wind);
  double angle = digit_compose(WIND_NUMBERS[1], bitval_wind);
  std::printf("set windspeed = %0.1f\n", speed);
  std::printf("set winddir = %f\n", angle);
  bool limited = false;
  if (speed > WIND_SPEED_MAX) {
    speed = WIND_SPEED_MAX;
    limited = true;
  }
  if (angle > WIND_ANGLE_MAX) {
    angle = WIND_ANGLE_MAX;
    limited = true;
  }
  p->wind.speed = speed;
  p->wind.angle = angle;
  if (limited) {
    const double values[] = {p->wind.speed, p->wind.angle};
    digit_split_row(WIND_ROW, values, bitval_wind);
  }
  digit_row_browse(win, WIND_ROW, bitval_wind);
  std::printf("save wind = %f from %f\n", p->wind.speed, p->wind.angle);
}

// Split from the yard value with "yd" in yard mode, else from the metre value with "m".
void show_zero(widget_t* win) {
  const Info_ballistics& p = ballistic_profile_shown();
  const bool yards = stDevStatus.s8DistanceUint == DISTANCE_YD;
  const double values[] = {
      static_cast<double>(yards ? p.gun.scope.zeroRange_yard : p.gun.scope.zeroRange)};
  digit_split_row(ZERO_ROW, values, bitval_zero);
  digit_row_browse(win, ZERO_ROW, bitval_zero);
  widget_set_text_utf8(find(win, "label_zero_dist_unit"), yards ? "yd" : "m");
}

// At most 999; a held value is shown with the unit "yd" whatever the unit setting (as the device
// application's own menu does). The other unit is derived and truncated.
void save_zero(widget_t* win) {
  Info_ballistics* p = current_ballistic_profile();
  if (p == nullptr) {
    std::puts("save zerorange: no current ballistic profile, nothing saved");
    digit_row_browse(win, ZERO_ROW, bitval_zero);
    return;
  }
  temp_data = digit_compose(ZERO_NUMBER[0], bitval_zero);
  bool limited = false;
  if (temp_data > ZERO_RANGE_MAX) {
    temp_data = ZERO_RANGE_MAX;
    limited = true;
    const double values[] = {temp_data};
    digit_split_row(ZERO_ROW, values, bitval_zero);
  }
  const auto whole = static_cast<int16_t>(temp_data);
  int16_t converted = 0;
  if (stDevStatus.s8DistanceUint == DISTANCE_YD) {
    p->gun.scope.zeroRange_yard = whole;
    converted = static_cast<int16_t>(whole * METRES_PER_YARD);
    p->gun.scope.zeroRange = converted;
  } else {
    p->gun.scope.zeroRange = whole;
    converted = static_cast<int16_t>(whole * YARDS_PER_METRE);
    p->gun.scope.zeroRange_yard = converted;
  }
  digit_row_browse(win, ZERO_ROW, bitval_zero);
  if (limited) widget_set_text_utf8(find(win, "label_zero_dist_unit"), "yd");
  std::printf("save zerorange = %0.1f\n", static_cast<double>(converted));
}

void show_scope(widget_t* win) {
  profile_row_show(win, SCOPE_ROW, bitval_scope);
}

// The scope row sends its own frame on saving; the table below sends for the other two.
void save_scope(widget_t* win) {
  profile_row_save(win, SCOPE_ROW, bitval_scope);
}

struct menu_digit_row {
  int row;
  const digit_row_t* digits;
  uint8_t* bitval;
  size_t size;
  void (*show)(widget_t* win);
  void (*save)(widget_t* win);
  bool send_after_save;  // false: the save sends
  uint8_t msg_index;
  uint8_t msg_sub;
};

const menu_digit_row DIGIT_ROWS[] = {
    {ROW_WIND, &WIND_ROW, bitval_wind.data(), bitval_wind.size(), show_wind, save_wind, true,
     BALLISTIC_WIND_INFO, 0},
    {ROW_ZERO, &ZERO_ROW, bitval_zero.data(), bitval_zero.size(), show_zero, save_zero, true,
     BALLISTIC_LENS_INFO, 1},
    {ROW_SCOPE, &SCOPE_ROW.digits, bitval_scope.data(), bitval_scope.size(), show_scope, save_scope,
     false, BALLISTIC_LENS_INFO, 0},
};

const menu_digit_row* digit_row_of(int row) {
  for (const menu_digit_row& r : DIGIT_ROWS) {
    if (r.row == row) return &r;
  }
  return nullptr;
}

// One digit row by edit state, as on_update_wind, on_update_zerodistance and on_update_scope:
// state 0 redraws from the profile, or saves and sends when the key is back; 1 selects the digit;
// 2 changes it by the key.
void on_update_digit_row(widget_t* win, const menu_digit_row& r, int mode, int index, int key) {
  switch (mode) {
    case EDIT_BROWSE:
      if (key != GUI_KEY_FUCTION_L) {
        r.show(win);
        break;
      }
      r.save(win);
      if (r.send_after_save) GUI_SEND_BALLISTIC_PARM_MSG(r.msg_index, r.msg_sub);
      break;
    case EDIT_SELECTED: digit_row_select(win, *r.digits, index); break;
    case EDIT_CHANGING:
      digit_row_change(win, *r.digits, std::span<uint8_t>(r.bitval, r.size), index, key);
      break;
    default: break;
  }
}

void draw_digit_rows(widget_t* win) {
  for (const menu_digit_row& r : DIGIT_ROWS)
    r.show(win);
}

// ---- keys ----

void key_back(widget_t* win) {
  const menu_digit_row* r = digit_row_of(hold_menu_index);
  if (edit_mode != EDIT_BROWSE && r != nullptr) {
    edit_mode = EDIT_BROWSE;
    on_update_digit_row(win, *r, edit_mode, edit_index, GUI_KEY_FUCTION_L);
  } else {
    navigator_back();
  }
  std::printf("edit_index = %d\n", edit_index);
}

void key_ok(widget_t* win) {
  switch (hold_menu_index) {
    case ROW_SWITCH:
      info[0].ballistics_sw = info[0].ballistics_sw == 1 ? 0 : 1;
      on_update_submenu(win, hold_menu_index);
      GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 0);
      if (info[0].ballistics_sw == 1 && stUIStatus.s8RangeMode != RANGE_COUTINUTE_SEND) {
        GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 1);
      }
      break;
    case ROW_PROFILE:
      stDevStatus.s8BallisticGroup = static_cast<char>(
          (static_cast<unsigned char>(stDevStatus.s8BallisticGroup) + 1) % BALLISTIC_PROFILE_COUNT);
      GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 4);
      on_ballistic_group_display(win);
      draw_digit_rows(win);
      GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 1);
      break;
    case ROW_TYPE:
      stDevStatus.s8BallisticReticle = static_cast<char>(
          (static_cast<unsigned char>(stDevStatus.s8BallisticReticle) + 1) % std::size(AIM_TYPES));
      GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 2);
      on_ballistic_reticle_display(win);
      break;
    case ROW_COLOR:
      stDevStatus.s8BallisticReticleColor =
          static_cast<char>((static_cast<unsigned char>(stDevStatus.s8BallisticReticleColor) + 1) %
                            std::size(AIM_COLORS));
      GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 3);
      on_ballistic_reticle_color_display(win);
      break;
    case ROW_WIND:
    case ROW_ZERO:
    case ROW_SCOPE: {
      const menu_digit_row* r = digit_row_of(hold_menu_index);
      edit_index = digit_next_index(*r->digits, edit_mode, edit_index);
      edit_mode = EDIT_SELECTED;
      on_update_digit_row(win, *r, edit_mode, edit_index, GUI_KEY_FUCTION_S);
      break;
    }
    case ROW_BULLET:
      navigator_back();
      navigator_to("Zavo_ballistic_bullet");
      break;
    case ROW_WEATHER:
      navigator_back();
      navigator_to("Zavo_ballistic_weather");
      break;
    case ROW_OK:
      GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 1);
      navigator_back();
      break;
    default: break;
  }
}

// Browsing with the calculator on: the focus moves (down to the next row, wrapping 10 -> 1).
// Editing: the selected digit changes. With the calculator off, browsing keys do nothing.
void key_up_down(widget_t* win, int key) {
  if (edit_mode == EDIT_BROWSE) {
    if (info[0].ballistics_sw != 1) return;
    hold_menu_index = getIndexVal(key, ROW_SWITCH, ROW_OK, hold_menu_index, 0);
    on_update_submenu(win, hold_menu_index);
    std::printf("hold_menu_index = %d\n", hold_menu_index);
    return;
  }
  const menu_digit_row* r = digit_row_of(hold_menu_index);
  if (r == nullptr) return;
  edit_mode = EDIT_CHANGING;
  on_update_digit_row(win, *r, edit_mode, edit_index, key);
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_FUCTION_L: key_back(win); break;
    case GUI_KEY_POWER_S: navigator_back_to_home(); break;
    case GUI_KEY_FUCTION_S: key_ok(win); break;
    case GUI_KEY_RANGE_S:
    case GUI_KEY_PHOTO_S: key_up_down(win, evt->key); break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

// ctx: the page returned from (UI_LAST_MENU as a pointer-sized integer); the bullet page's return
// puts the focus back on its row, any other lands on row 1.
ret_t Zavo_ballistic_menu_init(widget_t* win, void* ctx) {
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  const int ret_menu_index = static_cast<int>(reinterpret_cast<intptr_t>(ctx));
  std::printf("ret_menu_index = %d\n", ret_menu_index);
  widget_foreach(win, visit_init_child, win);

  hold_menu_index = ret_menu_index == MENU_HOLD_BALLISTIC_BULLET ? ROW_BULLET : ROW_SWITCH;
  edit_mode = EDIT_BROWSE;
  edit_index = 0;
  on_update_submenu(win, hold_menu_index);
  draw_digit_rows(win);
  on_ballistic_reticle_display(win);
  on_ballistic_reticle_color_display(win);
  on_ballistic_group_display(win);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
