// A column of menu rows, 60 pixels each: a highlight bar on the focused row and the focused row's
// label in the "focused" state, the other labels "normal". Pages describe their rows as constexpr
// data and keep only what is their own (values, switches, actions):
//
//   constexpr const char* SETTING_LABELS[] = {"label_External_video", ..., "label_Exit"};
//   constexpr menu_rows_t SETTING_ROWS{"image_setting_sel", 336, SETTING_LABELS};
//   Zavo_setting_index = menu_rows_step(SETTING_ROWS, key, Zavo_setting_index);
//   menu_rows_focus(win, SETTING_ROWS, Zavo_setting_index);
#ifndef SCOPE_COMMON_MENU_ROWS_H
#define SCOPE_COMMON_MENU_ROWS_H

#include <span>

#include "awtk.h"

inline constexpr int MENU_ROW_HEIGHT = 60;

struct menu_rows_t {
  const char* highlight;                // the bar moved to (0, (row - 1) x 60)
  wh_t width;                           // the bar's width; its height is one row
  std::span<const char* const> labels;  // the focus label of rows 1..n
};

// Moves the bar onto `row` (1-based), sizes it width x 60, sets the row's label "focused" and the
// others "normal". A row outside 1..n changes nothing.
void menu_rows_focus(widget_t* win, const menu_rows_t& rows, int row);

// The row a key leads to: GUI_KEY_PHOTO_S the next (after the last comes the first),
// GUI_KEY_RANGE_S the previous (before the first comes the last); any other key keeps `row`.
int menu_rows_step(const menu_rows_t& rows, int key, int row);

// Sets exactly one of `names` (the one at 0-based `index`) to "focused", the others "normal";
// an index outside the list leaves them all "normal". For value rows such as "1".."5".
void menu_focus_one_of(widget_t* win, std::span<const char* const> names, int index);

// ---- icon rows ----
// A menu whose rows are icons: each row's image widget shows its "_def" image, the selected one
// its "_sel" image. Pages give the rows as a constexpr table:
//   constexpr icon_row_t MENU2_ROWS[] = {{"image_Zavo_menu_micro", "Zavo_menu_mic_def",
//                                         "Zavo_menu_mic_sel"}, ...};
struct icon_row_t {
  const char* widget;     // the image widget of the row
  const char* image_def;  // its image when not selected
  const char* image_sel;  // its image when selected
};

// Row `index` (0-based) shows its selected image, every other row its not-selected image; an
// index outside the table selects none.
void icon_rows_select(widget_t* win, std::span<const icon_row_t> rows, int index);

// Shows the widget at 0-based `index` of `names` and hides the others (a null entry stands for
// "nothing to show" on that row); an index outside the list hides them all. For the panels,
// titles and highlights that only the selected row shows.
void show_only_one_of(widget_t* win, std::span<const char* const> names, int index);

#endif  // SCOPE_COMMON_MENU_ROWS_H
