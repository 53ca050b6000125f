// Globals of the reticle alignment pages ("Zavo_reticle_zero", "Zavo_reticle_zero_child",
// "Zavo_reticle_move", "Zavo_reticle_menu"): the state other modules may read or set. The rest
// of each page's state is file-scope in its module. Zavo_reticle_index, which the main menu sets,
// is declared with the page table (pages/page_list.h).
#ifndef SCOPE_PAGES_ZAVO_RETICLE_PAGES_H
#define SCOPE_PAGES_ZAVO_RETICLE_PAGES_H

#include <cstdint>

#include "awtk.h"

// Zero list: the focused row, 1..5 a zero, 6 exit.
extern uint8_t Zavo_reticle_zero_index;
// Distance editor: the focused row, 1 distance, 2 alignment, 3 exit.
extern uint8_t Zavo_reticle_zero_child_index;
// Distance editor: the highest hundreds digit, 9 in yards and 8 in metres (999 yd, 899 m).
extern int16_t hundred_max_index;

// Alignment page: whether the up and down keys edit x or y.
extern bool_t partition_move_x_enable;
extern bool_t partition_move_y_enable;

// Reticle menu: one-based copies of the settings it edits.
extern uint8_t Zavo_reticle_type;   // 1..8
extern uint8_t Zavo_reticle_color;  // 1..8
extern uint8_t Zavo_reticle_light;  // 1..3
extern uint8_t Zavo_reticle_group;  // IR_Cursor.u8CurrentGroup + 1
extern uint8_t Zavo_reticle_switch;

#endif  // SCOPE_PAGES_ZAVO_RETICLE_PAGES_H
