// The menus and the system pages: the two halves of the main menu ("Zavo_menu1", "Zavo_menu2"),
// the image shortcut menu ("Zavo_shortcut_menu"), the settings page ("Zavo_Settings") and the
// system pages it leads to or that the device link opens (date and time, card and format,
// factory reset, information, shut-down countdown, firmware upgrade, USB).
//
// Each page is its own module (src/pages/<window>.cpp); what other modules read or set is
// declared here. The variables outlive the page windows, so a menu reopens on its row.
#ifndef SCOPE_PAGES_ZAVO_MENUS_H
#define SCOPE_PAGES_ZAVO_MENUS_H

#include <cstdint>

#include "awtk.h"

// ---- the main menu: twelve rows over two pages that replace each other ----
// Zavo_menu1_index (rows 1..6 of the first half) is declared in page_list.h: the observation
// screen sets it before it opens the menu.
extern uint8_t Zavo_menu2_index;      // row of the second half, 1..6
extern uint8_t Zavo_menu2_max_index;  // last row of the second half: 6, never changed
// Hidden entry to the marker alignment pages: 1 while the long press that started it is held.
extern int32_t enter_laser_move_menu;
extern int32_t enter_range_move_menu;

// Redraws a half for `index` (1..6; any other index changes nothing).
ret_t on_menu1_display(widget_t* win, uint8_t index);
ret_t on_menu2_display(widget_t* win, uint8_t index);

// ---- the image shortcut menu ----
extern uint8_t Zavo_menu_index;      // item 1..5: scene, palette, brightness, contrast, enhancement
extern uint8_t colormap_menu_num;    // palette position 1..5 (= s8IrPolarity + 1)
extern uint8_t brightness_menu_num;  // 1..10
extern uint8_t contract_menu_num;    // 1..10
extern uint8_t enchance_menu_num;    // 1..5

// ---- settings ----
extern uint8_t Zavo_setting_index;  // row 1..8
// Redraws the settings switches and the USB mode from the records; bound to screen event 8241.
ret_t on_setting_Init(void* ctx, event_t* e);

// ---- date and time editor ----
extern uint8_t Zavo_TimeDate_index;  // field 1..5: year, month, day, hour, minute

// ---- the two-button pages: 0 = cancel (right), 1 = OK (left) ----
extern uint8_t Zavo_SDcard_index;
extern uint8_t Zavo_format_index;
extern uint8_t Zavo_reset_index;

// ---- shut-down countdown ----
// Ticks of the countdown. Zeroed by a cancel, by the shut-down command and when the countdown
// window goes away any other way, never by the page's init.
extern uint8_t back_count;

// ---- firmware upgrade ----
extern int16_t Zavo_updata_index;  // state 0..14; its picture is "image_updata_<state>"
// Moves the upgrade state after a report of the device (screen event 8249), see Zavo_updata.cpp.
ret_t Zavo_updata_index_switch(widget_t* win);

#endif  // SCOPE_PAGES_ZAVO_MENUS_H
