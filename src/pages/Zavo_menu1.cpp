// "Zavo_menu1": the first half of the main menu, six icon rows (PIP, Wi-Fi, file browser, range
// finder, reticle, ballistic calculator). Stepping past either end replaces this page with the
// second half ("Zavo_menu2"), so the twelve rows form one circle and only one half is ever open.
// Wi-Fi toggles in place; the other rows open their pages by name. Holding photo or range for
// 7 s on the range-finder row opens the hidden laser or range-marker alignment page.
#include <array>
#include <cstdio>
#include <cstring>

#include "common/common_function.h"
#include "common/menu_rows.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/Zavo_home_page_1.h"
#include "pages/Zavo_menus.h"
#include "pages/page_list.h"
#include "pages/system_pages.h"
#include "widgets/image.h"

// ---- state ----

uint8_t Zavo_menu1_index = 0;
int32_t enter_laser_move_menu = 0;
int32_t enter_range_move_menu = 0;

namespace {

constexpr int ROW_COUNT = 6;
constexpr int ROW_PIP = 1, ROW_WIFI = 2, ROW_FILE = 3, ROW_LRF = 4, ROW_RETICLE = 5,
              ROW_BALLISTIC = 6;

constexpr std::array<icon_row_t, ROW_COUNT> ROWS = {{
    {"image_Zavo_menu_PIP", "Zavo_menu_pip_def", "Zavo_menu_pip_sel"},
    {"image_Zavo_menu_WIFI", "Zavo_menu_wifi_def", "Zavo_menu_wifi_sel"},
    {"image_Zavo_menu_file", "Zavo_menu_file_def", "Zavo_menu_file_sel"},
    {"image_Zavo_menu_lrf", "Zavo_menu_lrf_def", "Zavo_menu_lrf_sel"},
    {"image_Zavo_menu_reticle", "Zavo_menu_reticle_def", "Zavo_menu_reticle_sel"},
    {"image_Zavo_menu_ballistic", "Zavo_menu_ballistic_def", "Zavo_menu_ballistic_sel"},
}};

// The title of each row: its image and its text (a string key; the English texts are "PIP",
// "Wi-Fi", "File", "LRF", "Reticle" and "Ballistic Calc").
struct row_title {
  const char* image;
  const char* text;
};
constexpr std::array<row_title, ROW_COUNT> TITLES = {{
    {"Zavo_title_pip", "menus_title_pip"},
    {"Zavo_title_wifi", "menus_title_wifi"},
    {"Zavo_title_file", "menus_title_file"},
    {"Zavo_title_lrf", "menus_title_lrf"},
    {"Zavo_title_reticle", "menus_title_reticle"},
    {"Zavo_title_ballistic", "menus_title_ballistic"},
}};

constexpr uint32_t HIDDEN_ENTRY_MS = 7000;
constexpr uint32_t RECORD_TIP_MS = 2000;

uint32_t timer_id_laser_move;  // hidden entry to "Zavo_laser_move"
uint32_t timer_id_range_move;  // hidden entry to "Zavo_range_move"
uint32_t timer_id_record;      // hides "view_tip_record"

bool named(const widget_t* widget, const char* name) {
  return widget->name != NULL && strcmp(widget->name, name) == 0;
}

widget_t* find(widget_t* win, const char* name) {
  return widget_lookup(win, name, TRUE);
}

const char* switch_image(char on) {
  return on == 1 ? "switch_large_on" : "switch_large_off";
}

void show_title(widget_t* win, uint8_t index) {
  const row_title& title = TITLES[index - 1];
  image_set_image(find(win, "image_menu1_title"), title.image);
  widget_set_tr_text(find(win, "label_menu1_title"), title.text);
}

// ---- init ----

// Rows 1, 5 and 6 start selected when the menu opens on them; the Wi-Fi, file and range-finder
// rows always start not selected, and the title is filled only for rows 1, 3, 5 and 6 (rows 2
// and 4 keep the layout's title until the first key).
ret_t visit_init_child(void* ctx, const void* iter) {
  widget_t* win = static_cast<widget_t*>(ctx);
  widget_t* child = static_cast<widget_t*>(const_cast<void*>(iter));
  if (child->name == NULL) return RET_OK;
  for (int row = 1; row <= ROW_COUNT; ++row) {
    const icon_row_t& r = ROWS[row - 1];
    if (!named(child, r.widget)) continue;
    const bool selected =
        Zavo_menu1_index == row && (row == ROW_PIP || row == ROW_RETICLE || row == ROW_BALLISTIC);
    image_set_image(child, selected ? r.image_sel : r.image_def);
    return RET_OK;
  }
  if (named(child, "image_WIFI_switch")) {
    widget_set_visible(child, FALSE);
    image_set_image(child, switch_image(stUIStatus.s8WifiSwitch));
  } else if (named(child, "bg_menu_lrf")) {
    widget_set_visible(child, FALSE);
  } else if (named(child, "label_menu1_title")) {
    const uint8_t i = Zavo_menu1_index;
    if (i == ROW_PIP || i == ROW_FILE || i == ROW_RETICLE || i == ROW_BALLISTIC) show_title(win, i);
  }
  return RET_OK;
}

// ---- keys ----

void open_second_half(uint8_t row) {
  Zavo_menu2_index = row;
  navigator_to("Zavo_menu2");
  navigator_close("Zavo_menu1");
}

ret_t on_record_tip_end(const timer_info_t* timer) {
  widget_set_visible(find(static_cast<widget_t*>(timer->ctx), "view_tip_record"), FALSE);
  timer_id_record = 0;
  return RET_REMOVE;
}

// The file browser is refused while a recording or a recoil video runs; a running continuous
// range measurement is stopped before it opens.
void open_file_browser(widget_t* win) {
  if (stUIStatus.s8RecordingState == 1 || timer_id_RAV != 0) {
    widget_set_visible(find(win, "view_tip_record"), TRUE);
    if (timer_id_record == 0)
      timer_id_record = widget_add_timer(win, on_record_tip_end, RECORD_TIP_MS);
    return;
  }
  if (stUIStatus.s8RangeMode == 3) GUI_SEND_DISTANCE_FUNCTION_MSG(1, RANGE_COUTINUTE_SEND_STOP);
  navigator_to("Zavo_file_menu");
}

void confirm_row(widget_t* win) {
  switch (Zavo_menu1_index) {
    case ROW_PIP: navigator_to("Zavo_PIP_menu"); break;
    case ROW_WIFI:
      stUIStatus.s8WifiSwitch = stUIStatus.s8WifiSwitch == 0 ? 1 : 0;
      image_set_image(find(win, "image_WIFI_switch"), switch_image(stUIStatus.s8WifiSwitch));
      GUI_SEND_WIFI_MSG(WIFI_SWITCH);
      break;
    case ROW_FILE: open_file_browser(win); break;
    case ROW_LRF: navigator_to("Zavo_lrf_menu"); break;
    case ROW_RETICLE:
      navigator_back();
      Zavo_reticle_index = 2;
      navigator_to("Zavo_reticle_menu");
      break;
    case ROW_BALLISTIC: navigator_to("Zavo_ballistic_menu"); break;
    default: break;
  }
}

// The hidden entry: the long press must still be held when the 7 s timer fires. The timer lives
// on this window, so leaving the menu cancels it.
struct hidden_entry {
  uint32_t* timer_id;
  int32_t* held;
  const char* page;
};
const hidden_entry LASER_ENTRY{&timer_id_laser_move, &enter_laser_move_menu, "Zavo_laser_move"};
const hidden_entry RANGE_ENTRY{&timer_id_range_move, &enter_range_move_menu, "Zavo_range_move"};

ret_t on_hidden_entry(const hidden_entry& entry) {
  const bool held = *entry.held == 1;
  *entry.held = 0;
  *entry.timer_id = 0;
  if (held) {
    navigator_back();
    navigator_to(entry.page);
  }
  return RET_REMOVE;
}
ret_t on_laser_move_entry(const timer_info_t*) {
  return on_hidden_entry(LASER_ENTRY);
}
ret_t on_range_move_entry(const timer_info_t*) {
  return on_hidden_entry(RANGE_ENTRY);
}

void hidden_entry_hold(widget_t* win, const hidden_entry& entry, timer_func_t on_timer) {
  if (Zavo_menu1_index != ROW_LRF || *entry.timer_id != 0) return;
  *entry.timer_id = widget_add_timer(win, on_timer, HIDDEN_ENTRY_MS);
  *entry.held = 1;
}

void hidden_entry_release(widget_t* win, const hidden_entry& entry) {
  if (*entry.timer_id != 0) widget_remove_timer(win, *entry.timer_id);
  *entry.timer_id = 0;
  *entry.held = 0;
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_PHOTO_S:
      Zavo_menu1_index = static_cast<uint8_t>(Zavo_menu1_index + 1);
      if (Zavo_menu1_index == ROW_COUNT + 1) open_second_half(1);
      on_menu1_display(win, Zavo_menu1_index);
      break;
    case GUI_KEY_RANGE_S:
      Zavo_menu1_index = static_cast<uint8_t>(Zavo_menu1_index - 1);
      if (Zavo_menu1_index == 0) open_second_half(Zavo_menu2_max_index);
      on_menu1_display(win, Zavo_menu1_index);
      break;
    case GUI_KEY_FUCTION_S: confirm_row(win); break;
    case GUI_KEY_FUCTION_L:
    case GUI_KEY_POWER_S: back_to_home(); break;
    case GUI_KEY_PHOTO_L: hidden_entry_hold(win, LASER_ENTRY, on_laser_move_entry); break;
    case GUI_KEY_PHOTO_L_POP: hidden_entry_release(win, LASER_ENTRY); break;
    case GUI_KEY_RANGE_L: hidden_entry_hold(win, RANGE_ENTRY, on_range_move_entry); break;
    case GUI_KEY_RANGE_L_POP: hidden_entry_release(win, RANGE_ENTRY); break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t on_menu1_display(widget_t* win, uint8_t index) {
  if (win == NULL || index < 1 || index > ROW_COUNT) return RET_OK;
  icon_rows_select(win, ROWS, index - 1);
  widget_set_visible(find(win, "image_WIFI_switch"), index == ROW_WIFI ? TRUE : FALSE);
  widget_set_visible(find(win, "bg_menu_lrf"), FALSE);
  show_title(win, index);
  return RET_OK;
}

ret_t Zavo_menu1_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  // A new window: the timers of an earlier one died with it.
  timer_id_laser_move = timer_id_range_move = timer_id_record = 0;
  enter_laser_move_menu = enter_range_move_menu = 0;
  widget_foreach(win, visit_init_child, win);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  puts("Zavo_menu1_init----------------end");
  return RET_OK;
}
