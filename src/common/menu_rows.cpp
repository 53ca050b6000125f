// Menu rows with the 60-pixel highlight: see menu_rows.h.
#include "common/menu_rows.h"

#include "msg/msghandler.h"
#include "widgets/image.h"

void menu_rows_focus(widget_t* win, const menu_rows_t& rows, int row) {
  const int count = static_cast<int>(rows.labels.size());
  if (win == NULL || row < 1 || row > count) return;
  widget_move_resize(widget_lookup(win, rows.highlight, TRUE), 0, (row - 1) * MENU_ROW_HEIGHT,
                     rows.width, MENU_ROW_HEIGHT);
  menu_focus_one_of(win, rows.labels, row - 1);
}

int menu_rows_step(const menu_rows_t& rows, int key, int row) {
  const int count = static_cast<int>(rows.labels.size());
  if (key == GUI_KEY_PHOTO_S) return row >= count ? 1 : row + 1;
  if (key == GUI_KEY_RANGE_S) return row <= 1 ? count : row - 1;
  return row;
}

void menu_focus_one_of(widget_t* win, std::span<const char* const> names, int index) {
  if (win == NULL) return;
  for (size_t i = 0; i < names.size(); ++i) {
    const bool focused = static_cast<int>(i) == index;
    widget_set_state(widget_lookup(win, names[i], TRUE),
                     focused ? WIDGET_STATE_FOCUSED : WIDGET_STATE_NORMAL);
  }
}

void icon_rows_select(widget_t* win, std::span<const icon_row_t> rows, int index) {
  if (win == NULL) return;
  for (size_t i = 0; i < rows.size(); ++i) {
    const bool selected = static_cast<int>(i) == index;
    image_set_image(widget_lookup(win, rows[i].widget, TRUE),
                    selected ? rows[i].image_sel : rows[i].image_def);
  }
}

void show_only_one_of(widget_t* win, std::span<const char* const> names, int index) {
  if (win == NULL) return;
  for (size_t i = 0; i < names.size(); ++i) {
    if (names[i] == NULL) continue;
    widget_set_visible(widget_lookup(win, names[i], TRUE), static_cast<int>(i) == index);
  }
}
