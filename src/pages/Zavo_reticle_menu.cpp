// "Zavo_reticle_menu": the observation reticle's settings as a bar of icons. The focused icon
// shows its "_sel" image, its panel and its title: shape (8 types), colour (8), brightness (3),
// then the zero alignment and the exit. With the reticle hidden the focus stays where it is and
// the icons of what it would change are dimmed.
#include <cstdint>

#include "common/common_function.h"
#include "common/menu_rows.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/Zavo_reticle_pages.h"
#include "pages/page_list.h"
#include "widgets/image.h"

uint8_t Zavo_reticle_index = 2;
uint8_t Zavo_reticle_type = 1;
uint8_t Zavo_reticle_color = 1;
uint8_t Zavo_reticle_light = 1;
uint8_t Zavo_reticle_group = 1;
uint8_t Zavo_reticle_switch = 1;

namespace {

enum { ROW_DISPLAY = 1, ROW_TYPE, ROW_COLOR, ROW_BRIGHTNESS, ROW_ZERO, ROW_EXIT };
// The display row stays in the layout and the OK handler, but the keys never focus it.
constexpr int FIRST_FOCUSABLE_ROW = ROW_TYPE;
constexpr int LAST_ROW = ROW_EXIT;
constexpr int TYPE_COUNT = 8;
constexpr int COLOR_COUNT = 8;
constexpr int LIGHT_COUNT = 3;

// Rows 1..6, then the group icon, which no row selects.
constexpr icon_row_t ICON_ROWS[] = {
    {"image_reticle_display", "Zavo_reticle_display_def", "Zavo_reticle_display_sel"},
    {"image_reticle_type", "Zavo_reticle_type_def", "Zavo_reticle_type_sel"},
    {"image_reticle_color", "Zavo_reticle_color_def", "Zavo_reticle_color_sel"},
    {"image_reticle_brightness", "Zavo_reticle_brightness_def", "Zavo_reticle_brightness_sel"},
    {"image_reticle_zero", "Zavo_reticle_zero_def", "Zavo_reticle_zero_sel"},
    {"image_reticle_exit", "Zavo_reticle_exit_def", "Zavo_reticle_exit_sel"},
    {"image_reticle_group", "Zavo_reticle_group_def", "Zavo_reticle_group_sel"},
};
// The panel and the title each row shows (null: none); the group's stay hidden.
constexpr const char* PANELS[] = {"view_menu_display",    "view_menu_type", "view_menu_color",
                                  "view_menu_brightness", nullptr,          nullptr,
                                  "view_menu_group"};
constexpr const char* TITLES[] = {"view_title_display",    "view_title_type", "view_title_color",
                                  "view_title_brightness", "view_title_zero", nullptr,
                                  "view_title_group"};
constexpr const char* TYPE_LABELS[] = {"label_type1", "label_type2", "label_type3", "label_type4",
                                       "label_type5", "label_type6", "label_type7", "label_type8"};
constexpr const char* BRIGHT_LABELS[] = {"label_bright1", "label_bright2", "label_bright3"};
// The icons of what a hidden reticle makes moot.
constexpr const char* DIMMED_ICONS[] = {"image_reticle_type", "image_reticle_brightness",
                                        "image_reticle_group", "image_reticle_zero",
                                        "image_reticle_color"};
constexpr uint8_t OPACITY_SHOWN = 255;
constexpr uint8_t OPACITY_DIMMED = 80;
// The colour frame around swatch c (1..8).
constexpr int COLOR_X0 = 16;
constexpr int COLOR_PITCH = 63;
constexpr int COLOR_Y = 10;
constexpr int COLOR_SIZE = 48;
// s8ReticleTypeColorChoose before a colour change and before a type change.
constexpr char CHOOSE_COLOR = 3;
constexpr char CHOOSE_TYPE = 4;

uint8_t setting(char value) {
  return static_cast<uint8_t>(value);
}

// One up from `value`, back to 1 after `count`.
uint8_t next_of(uint8_t value, int count) {
  return static_cast<uint8_t>(value >= count ? 1 : value + 1);
}

// ---- drawing ----

void on_reticle_display(widget_t* win, int row) {
  icon_rows_select(win, ICON_ROWS, row - 1);
  show_only_one_of(win, PANELS, row - 1);
  show_only_one_of(win, TITLES, row - 1);
}

void on_reticle_menu_display(widget_t* win) {
  const uint8_t opacity = stDevStatus.s8ReticleSwitch == 1 ? OPACITY_SHOWN : OPACITY_DIMMED;
  for (const char* name : DIMMED_ICONS)
    widget_set_opacity(widget_lookup(win, name, TRUE), opacity);
}

void draw_switch(widget_t* win) {
  image_set_image(widget_lookup(win, "image_menu_switch", TRUE),
                  stDevStatus.s8ReticleSwitch == 1 ? "switch_large_on" : "switch_large_off");
}

void draw_type(widget_t* win) {
  menu_focus_one_of(win, TYPE_LABELS, Zavo_reticle_type - 1);
}

void draw_brightness(widget_t* win) {
  menu_focus_one_of(win, BRIGHT_LABELS, Zavo_reticle_light - 1);
}

void draw_color(widget_t* win) {
  if (Zavo_reticle_color < 1 || Zavo_reticle_color > COLOR_COUNT) return;
  widget_move_resize(widget_lookup(win, "view_color_sel", TRUE),
                     (Zavo_reticle_color - 1) * COLOR_PITCH + COLOR_X0, COLOR_Y, COLOR_SIZE,
                     COLOR_SIZE);
}

// ---- OK on a row ----

void on_ok(widget_t* win) {
  switch (Zavo_reticle_index) {
    case ROW_DISPLAY:
      stDevStatus.s8ReticleSwitch = stDevStatus.s8ReticleSwitch == 1 ? 0 : 1;
      Zavo_reticle_switch = setting(stDevStatus.s8ReticleSwitch);
      draw_switch(win);
      on_reticle_menu_display(win);
      GUI_SEND_RETICLE_MSG(RETICLE_SWITCH);
      break;
    case ROW_TYPE:
      Zavo_reticle_type = next_of(Zavo_reticle_type, TYPE_COUNT);
      draw_type(win);
      stDevStatus.s8ReticleType = static_cast<char>(Zavo_reticle_type - 1);
      stUIStatus.s8ReticleTypeColorChoose = CHOOSE_TYPE;
      GUI_SEND_RETICLE_MSG(RETICLE_TYPE);
      break;
    case ROW_COLOR:
      Zavo_reticle_color = next_of(Zavo_reticle_color, COLOR_COUNT);
      draw_color(win);
      stDevStatus.s8ReticleColour = static_cast<char>(Zavo_reticle_color - 1);
      stUIStatus.s8ReticleTypeColorChoose = CHOOSE_COLOR;
      GUI_SEND_RETICLE_MSG(RETICLE_COLOR);
      break;
    case ROW_BRIGHTNESS:
      Zavo_reticle_light = next_of(Zavo_reticle_light, LIGHT_COUNT);
      draw_brightness(win);
      stDevStatus.s8ReticleBrightness = static_cast<char>(Zavo_reticle_light - 1);
      GUI_SEND_RETICLE_MSG(RETICLE_LIGHT);
      break;
    case ROW_ZERO:
      navigator_back();
      navigator_to("Zavo_reticle_move");
      break;
    case ROW_EXIT:
      navigator_back();
      navigator_to("Zavo_menu1");
      GUI_SEND_PARAM_FUNCTION_MSG(SAVE_ALLPARAM);
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
      if (stDevStatus.s8ReticleSwitch != 1) break;
      Zavo_reticle_index = static_cast<uint8_t>(
          Zavo_reticle_index >= LAST_ROW ? FIRST_FOCUSABLE_ROW : Zavo_reticle_index + 1);
      on_reticle_display(win, Zavo_reticle_index);
      break;
    case GUI_KEY_RANGE_S:
      if (stDevStatus.s8ReticleSwitch != 1) break;
      Zavo_reticle_index = static_cast<uint8_t>(
          Zavo_reticle_index <= FIRST_FOCUSABLE_ROW ? LAST_ROW : Zavo_reticle_index - 1);
      on_reticle_display(win, Zavo_reticle_index);
      break;
    case GUI_KEY_FUCTION_S: on_ok(win); break;
    case GUI_KEY_FUCTION_L:
      navigator_back();
      navigator_to("Zavo_menu1");
      break;
    case GUI_KEY_POWER_S: window_manager_back_to(window_manager(), "Zavo_home_page_1"); break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_reticle_menu_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  Zavo_reticle_type = static_cast<uint8_t>(setting(stDevStatus.s8ReticleType) + 1);
  Zavo_reticle_color = static_cast<uint8_t>(setting(stDevStatus.s8ReticleColour) + 1);
  Zavo_reticle_light = static_cast<uint8_t>(setting(stDevStatus.s8ReticleBrightness) + 1);
  Zavo_reticle_group = static_cast<uint8_t>(IR_Cursor.u8CurrentGroup + 1);
  Zavo_reticle_switch = setting(stDevStatus.s8ReticleSwitch);
  draw_switch(win);
  draw_type(win);
  draw_color(win);
  draw_brightness(win);
  on_reticle_display(win, Zavo_reticle_index);
  on_reticle_menu_display(win);
  return RET_OK;
}
