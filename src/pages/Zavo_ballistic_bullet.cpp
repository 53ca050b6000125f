// "Zavo_ballistic_bullet": the bullet and barrel of the current ballistic profile, seven rows.
//
//   1 ballistic coefficient   2 drag model   3 muzzle velocity   4 twist rate
//   5 bullet length   6 bullet diameter   7 bullet weight
//
// The number rows are edited with the digit editor (OK selects a digit, up/down change it, back
// saves and sends); the drag model toggles between G1 and G7. Back while browsing returns to the
// ballistic menu with its bullet row focused.
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

enum {
  ROW_COEF = 1,
  ROW_MODEL = 2,
  ROW_VELOCITY = 3,
  ROW_TWIST = 4,
  ROW_LENGTH = 5,
  ROW_DIAMETER = 6,
  ROW_WEIGHT = 7,
};

int hold_menu_index = ROW_COEF;
int edit_mode = EDIT_BROWSE;
int edit_index = 0;

// One digit buffer per number row (rows 1, 3..7) and the drag model's own byte.
std::array<std::array<uint8_t, DIGITS_MAX>, 8> bitval{};
uint8_t model_bitval = 0;

// ---- rows ----

constexpr const char* ROW_LABELS[] = {"label_coef",      "label_model",  "label_velocity",
                                      "label_twistrate", "label_length", "label_diameter",
                                      "label_weight"};
constexpr menu_rows_t BULLET_ROWS{"hightlight", 544, ROW_LABELS};

// The coefficient keeps the units digit it was loaded with: only the four decimals are selected.
constexpr digit_t COEF_DIGITS[] = {{"label_coef_one", 16, 9},
                                   {"label_coef_point1", 32, 9},
                                   {"label_coef_point2", 48, 9},
                                   {"label_coef_point3", 64, 9},
                                   {"label_coef_point4", 80, 9}};
constexpr digit_number_t COEF_NUMBER[] = {{0, 5, 10000.0, false, true}};

constexpr digit_t VELOCITY_DIGITS[] = {{"label_velocity_four", 0, 9},
                                       {"label_velocity_three", 16, 9},
                                       {"label_velocity_two", 32, 9},
                                       {"label_velocity_one", 48, 9}};
constexpr digit_number_t VELOCITY_NUMBER[] = {{0, 4, 1.0, false, true}};

constexpr digit_t TWIST_DIGITS[] = {{"label_twistrate_two", 0, 9},
                                    {"label_twistrate_one", 16, 9},
                                    {"label_twistrate_point1", 48, 9},
                                    {"label_twistrate_point2", 64, 9}};
constexpr digit_number_t TWIST_NUMBER[] = {{0, 4, 100.0, false, true}};

// Length and diameter: units, then three decimals (the label names are the layout's own).
constexpr digit_t LENGTH_DIGITS[] = {{"label_length_two", 0, 9},
                                     {"label_length_one", 32, 9},
                                     {"label_length_point1", 48, 9},
                                     {"label_length_point2", 64, 9}};
constexpr digit_t DIAMETER_DIGITS[] = {{"label_diameter_two", 0, 9},
                                       {"label_diameter_one", 32, 9},
                                       {"label_diameter_point1", 48, 9},
                                       {"label_diameter_point2", 64, 9}};
constexpr digit_number_t THREE_DECIMALS[] = {{0, 4, 1000.0, false, true}};

// A whole-number weight of three digits; a larger stored weight shows its last three.
constexpr digit_t WEIGHT_DIGITS[] = {
    {"label_weight_two", 0, 9}, {"label_weight_one", 16, 9}, {"label_weight_point1", 32, 9}};
constexpr digit_number_t WEIGHT_NUMBER[] = {{0, 3, 1.0, false, false}};

constexpr profile_value_row_t COEF{
    "label_coef",
    {COEF_DIGITS, COEF_NUMBER, "view_coef_arrow", "image_coef_up", "image_coef_down",
     "view_coef_sel", 1, 4},
    [](const Info_ballistics& p) { return p.gun.bullet.ballisticsCoef; },
    [](Info_ballistics& p, double v) { p.gun.bullet.ballisticsCoef = v; },
    NO_LOWER_LIMIT,
    NO_UPPER_LIMIT,
    "set val = %0.4f\n",
    "save info.gun.bullet.ballisticsCoef = %0.4f\n",
    BALLISTIC_BULLET_INFO,
    3};

constexpr profile_value_row_t VELOCITY{
    "label_velocity",
    {VELOCITY_DIGITS, VELOCITY_NUMBER, "view_velocity_arrow", "image_velocity_up",
     "image_velocity_down", "view_velocity_sel", 0, 3},
    [](const Info_ballistics& p) { return p.gun.bullet.velocity; },
    [](Info_ballistics& p, double v) { p.gun.bullet.velocity = v; },
    NO_LOWER_LIMIT,
    NO_UPPER_LIMIT,
    nullptr,
    "save info[stDevStatus.s8BallisticGroup].gun.bullet.velocity = %f\n",
    BALLISTIC_BULLET_INFO,
    5};

constexpr profile_value_row_t TWIST{
    "label_twistrate",
    {TWIST_DIGITS, TWIST_NUMBER, "view_twistrate_arrow", "image_twistrate_up",
     "image_twistrate_down", "view_twistrate_sel", 0, 3},
    [](const Info_ballistics& p) { return p.gun.riflingRange; },
    [](Info_ballistics& p, double v) { p.gun.riflingRange = v; },
    NO_LOWER_LIMIT,
    NO_UPPER_LIMIT,
    nullptr,
    "save info[stDevStatus.s8BallisticGroup].gun.riflingRange = %f\n",
    BALLISTIC_TWIST_INFO,
    0};

constexpr profile_value_row_t LENGTH{
    "label_length",
    {LENGTH_DIGITS, THREE_DECIMALS, "view_length_arrow", "image_length_up", "image_length_down",
     "view_length_sel", 0, 3},
    [](const Info_ballistics& p) { return p.gun.bullet.length; },
    [](Info_ballistics& p, double v) { p.gun.bullet.length = v; },
    NO_LOWER_LIMIT,
    5.0,
    nullptr,
    "save info[stDevStatus.s8BallisticGroup].gun.bullet.length = %f\n",
    BALLISTIC_BULLET_INFO,
    0};

constexpr profile_value_row_t DIAMETER{
    "label_diameter",
    {DIAMETER_DIGITS, THREE_DECIMALS, "view_diameter_arrow", "image_diameter_up",
     "image_diameter_down", "view_diameter_sel", 0, 3},
    [](const Info_ballistics& p) { return p.gun.bullet.diameter; },
    [](Info_ballistics& p, double v) { p.gun.bullet.diameter = v; },
    NO_LOWER_LIMIT,
    1.0,
    nullptr,
    "save info[stDevStatus.s8BallisticGroup].gun.bullet.diameter = %f\n",
    BALLISTIC_BULLET_INFO,
    1};

constexpr profile_value_row_t WEIGHT{
    "label_weight",
    {WEIGHT_DIGITS, WEIGHT_NUMBER, "view_weight_arrow", "image_weight_up", "image_weight_down",
     "view_weight_sel", 0, 2},
    [](const Info_ballistics& p) { return p.gun.bullet.weight; },
    [](Info_ballistics& p, double v) { p.gun.bullet.weight = v; },
    NO_LOWER_LIMIT,
    500.0,
    nullptr,
    "save info[stDevStatus.s8BallisticGroup].gun.bullet.weight = %f\n",
    BALLISTIC_BULLET_INFO,
    2};

// The number rows by row index (row 2, the drag model, has none).
constexpr const profile_value_row_t* VALUE_ROWS[] = {nullptr, &COEF,   nullptr,   &VELOCITY,
                                                     &TWIST,  &LENGTH, &DIAMETER, &WEIGHT};

// Drag model names by dragFunction; any other value shows "G1". The page toggles G1 and G7.
constexpr const char* DRAG_MODELS[] = {"G1", "G2", "G5", "G6", "G7", "G8", "GI", "GS", "GC"};
constexpr uint8_t DRAG_G1 = 0;
constexpr uint8_t DRAG_G7 = 4;

const profile_value_row_t* value_row(int row) {
  return row >= 0 && row < static_cast<int>(std::size(VALUE_ROWS)) ? VALUE_ROWS[row] : nullptr;
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

widget_t* find(widget_t* win, const char* name) {
  return widget_lookup(win, name, TRUE);
}

void on_update_submenu(widget_t* win, int index) {
  menu_focus_one_of(win, ROW_LABELS, -1);
  widget_t* highlight = find(win, "hightlight");
  widget_set_visible(highlight, index < 8);
  if (index < 8) menu_rows_focus(win, BULLET_ROWS, index);
}

void on_set_lablemode(widget_t* win, int model) {
  const char* name = model >= 0 && model < static_cast<int>(std::size(DRAG_MODELS))
                         ? DRAG_MODELS[model]
                         : DRAG_MODELS[DRAG_G1];
  widget_set_text_utf8(find(win, "label_model_setval"), name);
}

// Display: the model loaded into its byte (a value beyond a byte is held at 255, shown "G1").
void show_mode(widget_t* win) {
  const int32_t model = ballistic_profile_shown().gun.bullet.dragFunction;
  std::printf("info[stDevStatus.s8BallisticGroup].gun.bullet.dragFunction init = %d\n", model);
  if (model < 0 || model > 255) {
    std::printf("drag model %d is not a model number: shown as G1\n", model);
    model_bitval = 255;
  } else {
    model_bitval = static_cast<uint8_t>(model);
  }
  widget_set_visible(find(win, "view_mode_sel"), FALSE);
  widget_set_state(find(win, "label_model_setval"), WIDGET_STATE_NORMAL);
  on_set_lablemode(win, model_bitval);
}

void toggle_mode(widget_t* win) {
  model_bitval = model_bitval != DRAG_G1 ? DRAG_G1 : DRAG_G7;
  widget_set_visible(find(win, "view_mode_sel"), TRUE);
  widget_set_state(find(win, "label_model_setval"), WIDGET_STATE_FOCUSED);
  on_set_lablemode(win, model_bitval);
}

void save_mode(widget_t* win) {
  widget_set_visible(find(win, "view_mode_sel"), FALSE);
  widget_set_state(find(win, "label_model_setval"), WIDGET_STATE_NORMAL);
  Info_ballistics* p = current_ballistic_profile();
  if (p == nullptr) {
    std::puts("label_model: no current ballistic profile, nothing saved");
    return;
  }
  p->gun.bullet.dragFunction = model_bitval;
  std::printf("save info[stDevStatus.s8BallisticGroup].gun.bullet.dragFunction = %d\n",
              p->gun.bullet.dragFunction);
  GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_BULLET_INFO, 4);
}

void draw_rows(widget_t* win) {
  for (int row = ROW_COEF; row <= ROW_WEIGHT; ++row) {
    if (const profile_value_row_t* r = value_row(row)) profile_row_show(win, *r, bitval[row]);
  }
  show_mode(win);
}

// ---- keys ----

void key_ok(widget_t* win) {
  if (hold_menu_index == ROW_MODEL) {
    edit_mode = EDIT_CHANGING;
    toggle_mode(win);
    return;
  }
  const profile_value_row_t* r = value_row(hold_menu_index);
  if (r == nullptr) return;
  edit_index = digit_next_index(r->digits, edit_mode, edit_index);
  edit_mode = EDIT_SELECTED;
  profile_row_update(win, *r, bitval[hold_menu_index], edit_mode, edit_index, GUI_KEY_FUCTION_S);
}

void key_back(widget_t* win) {
  if (edit_mode == EDIT_BROWSE) {
    navigator_back();
    navigator_to_with_context("Zavo_ballistic_menu",
                              reinterpret_cast<void*>(intptr_t{MENU_HOLD_BALLISTIC_BULLET}));
    return;
  }
  edit_mode = EDIT_BROWSE;
  if (hold_menu_index == ROW_MODEL) {
    save_mode(win);
  } else if (const profile_value_row_t* r = value_row(hold_menu_index)) {
    profile_row_update(win, *r, bitval[hold_menu_index], edit_mode, edit_index, GUI_KEY_FUCTION_L);
  }
}

void key_up_down(widget_t* win, int key) {
  if (edit_mode == EDIT_BROWSE) {
    hold_menu_index = getIndexVal(key, ROW_COEF, ROW_WEIGHT, hold_menu_index, 0);
    on_update_submenu(win, hold_menu_index);
    return;
  }
  const profile_value_row_t* r = value_row(hold_menu_index);
  if (r == nullptr) return;  // the drag model only toggles with OK
  edit_mode = EDIT_CHANGING;
  profile_row_update(win, *r, bitval[hold_menu_index], edit_mode, edit_index, key);
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

ret_t Zavo_ballistic_bullet_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  widget_foreach(win, visit_init_child, win);
  edit_mode = EDIT_BROWSE;
  edit_index = 0;
  hold_menu_index = ROW_COEF;
  on_update_submenu(win, hold_menu_index);
  draw_rows(win);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
