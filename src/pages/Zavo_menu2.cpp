// "Zavo_menu2": the second half of the main menu, six icon rows (microphone, recoil video, wind
// meter, settings, pixel repair, laser). Stepping past either end replaces this page with the
// first half ("Zavo_menu1"). The microphone and the wind meter toggle in place; the other rows
// open their pages by name. Each row has its own title widget, shown alone.
#include <array>
#include <cstdio>
#include <cstring>

#include "common/common_function.h"
#include "common/menu_rows.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/Zavo_menus.h"
#include "pages/page_list.h"
#include "pages/system_pages.h"
#include "widgets/image.h"

// ---- state ----

uint8_t Zavo_menu2_index = 1;
uint8_t Zavo_menu2_max_index = 6;

namespace {

constexpr int ROW_COUNT = 6;
constexpr int ROW_MICRO = 1, ROW_RAV = 2, ROW_WIND = 3, ROW_SETTINGS = 4, ROW_PIXEL = 5,
              ROW_LASER = 6;

constexpr std::array<icon_row_t, ROW_COUNT> ROWS = {{
    {"image_Zavo_menu_micro", "Zavo_menu_mic_def", "Zavo_menu_mic_sel"},
    {"image_Zavo_menu_RAV", "Zavo_menu_rav_def", "Zavo_menu_rav_sel"},
    {"image_Zavo_menu_Anemometer", "Zavo_menu_wind_def", "Zavo_menu_wind_sel"},
    {"image_Zavo_menu_settings", "Zavo_menu_set_def", "Zavo_menu_set_sel"},
    {"image_Zavo_menu_pixel", "Zavo_menu_pixel_def", "Zavo_menu_pixel_sel"},
    {"image_Zavo_menu_laser", "Zavo_menu_laser_def", "Zavo_menu_laser_sel"},
}};

constexpr std::array<const char*, ROW_COUNT> TITLES = {
    "Zavo_menu2_title_micro",   "Zavo_menu2_title_RAV",   "Zavo_menu2_title_Anemometer",
    "Zavo_menu2_title_setting", "Zavo_menu2_title_pixel", "Zavo_menu2_title_laser",
};

// The switch shown beside a row: only the microphone and the wind-meter rows have one.
constexpr std::array<const char*, ROW_COUNT> SWITCHES = {
    "image_micro_switch", NULL, "image_anem_switch", NULL, NULL, NULL,
};

bool named(const widget_t* widget, const char* name) {
  return widget->name != NULL && strcmp(widget->name, name) == 0;
}

widget_t* find(widget_t* win, const char* name) {
  return widget_lookup(win, name, TRUE);
}

const char* switch_image(char on) {
  return on == 1 ? "switch_large_on" : "switch_large_off";
}

// ---- init ----

// Rows 1 and 6 start selected when the menu opens on them. The microphone title shows on row 1;
// on any other row the laser title shows until the first key.
ret_t visit_init_child(void* ctx, const void* iter) {
  (void)ctx;
  widget_t* child = static_cast<widget_t*>(const_cast<void*>(iter));
  if (child->name == NULL) return RET_OK;
  const uint8_t index = Zavo_menu2_index;
  for (int row = 1; row <= ROW_COUNT; ++row) {
    const icon_row_t& r = ROWS[row - 1];
    if (named(child, r.widget)) {
      const bool selected = index == row && (row == ROW_MICRO || row == ROW_LASER);
      image_set_image(child, selected ? r.image_sel : r.image_def);
      return RET_OK;
    }
    if (named(child, TITLES[row - 1])) {
      const bool visible = row == ROW_MICRO   ? index == ROW_MICRO
                           : row == ROW_LASER ? index != ROW_MICRO
                                              : false;
      widget_set_visible(child, visible ? TRUE : FALSE);
      return RET_OK;
    }
  }
  if (named(child, "image_micro_switch")) {
    image_set_image(child, switch_image(stDevStatus.s8MicroSwitch));
    widget_set_visible(child, index == ROW_MICRO ? TRUE : FALSE);
  } else if (named(child, "image_anem_switch")) {
    image_set_image(child, switch_image(stUIStatus.s8WindSwitch));
    widget_set_visible(child, FALSE);
  }
  return RET_OK;
}

// ---- keys ----

void open_first_half(uint8_t row) {
  Zavo_menu1_index = row;
  navigator_to("Zavo_menu1");
  navigator_close("Zavo_menu2");
}

void confirm_row(widget_t* win) {
  switch (Zavo_menu2_index) {
    case ROW_MICRO:
      stDevStatus.s8MicroSwitch = stDevStatus.s8MicroSwitch == 1 ? 0 : 1;
      image_set_image(find(win, "image_micro_switch"), switch_image(stDevStatus.s8MicroSwitch));
      GUI_SEND_BASIC_FUNCTION_MSG(BASIC_MICRO);
      break;
    case ROW_RAV: navigator_to("Zavo_Recoil_menu"); break;
    case ROW_WIND:
      stUIStatus.s8WindSwitch = stUIStatus.s8WindSwitch == 1 ? 0 : 1;
      image_set_image(find(win, "image_anem_switch"), switch_image(stUIStatus.s8WindSwitch));
      GUI_SEND_BASIC_FUNCTION_MSG(BASIC_WIND_SWITCH);
      break;
    case ROW_SETTINGS: navigator_to("Zavo_Settings"); break;
    case ROW_PIXEL:
      navigator_close("Zavo_menu2");
      navigator_to("Zavo_pixel_menu");
      break;
    case ROW_LASER: navigator_to("Zavo_Laser_menu"); break;
    default: break;
  }
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_PHOTO_S:
      Zavo_menu2_index = static_cast<uint8_t>(Zavo_menu2_index + 1);
      if (Zavo_menu2_index > Zavo_menu2_max_index) open_first_half(1);
      on_menu2_display(win, Zavo_menu2_index);
      break;
    case GUI_KEY_RANGE_S:
      Zavo_menu2_index = static_cast<uint8_t>(Zavo_menu2_index - 1);
      if (Zavo_menu2_index == 0) open_first_half(ROW_COUNT);
      on_menu2_display(win, Zavo_menu2_index);
      break;
    case GUI_KEY_FUCTION_S: confirm_row(win); break;
    case GUI_KEY_FUCTION_L:
    case GUI_KEY_POWER_S: back_to_home(); break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t on_menu2_display(widget_t* win, uint8_t index) {
  if (win == NULL || index < 1 || index > ROW_COUNT) return RET_OK;
  icon_rows_select(win, ROWS, index - 1);
  show_only_one_of(win, SWITCHES, index - 1);
  show_only_one_of(win, TITLES, index - 1);
  return RET_OK;
}

ret_t Zavo_menu2_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  widget_foreach(win, visit_init_child, win);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  puts("Zavo_menu2_init----------------end");
  return RET_OK;
}
