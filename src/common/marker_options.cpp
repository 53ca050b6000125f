// The marker option pages' shared mechanism: see marker_options.h.
#include "common/marker_options.h"

#include <cstdio>
#include <iterator>

#include "common/menu_rows.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "widgets/image.h"

namespace {

constexpr const char* HIGHLIGHT = "image_recoil_menu_sel";
constexpr const char* TYPE_LABEL = "pip_reticle_type";
constexpr const char* TYPE_VALUE = "label_reticle_type";
constexpr const char* COLOR_LABEL = "label_reticle_color";
constexpr const char* COLOR_SWATCH = "image_reticle_color";

void draw_row1(const marker_page_t& page, widget_t* value) {
  const bool on = *page.row1_field != 0;
  if (page.row1_text_on != NULL) {
    widget_set_tr_text(value, on ? page.row1_text_on : page.row1_text_off);
  } else {
    image_set_image(value, on ? "switch_large_on" : "switch_large_off");
  }
}

void draw_type(const marker_page_t& page, widget_t* value) {
  char text[8];
  tk_snprintf(text, sizeof(text), "%d", static_cast<uint8_t>(*page.type_field) + 1);
  widget_set_text_utf8(value, text);
}

// A colour outside the table leaves the swatch as the layout draws it.
void draw_color(const marker_page_t& page, widget_t* swatch) {
  const uint8_t color = static_cast<uint8_t>(*page.color_field);
  if (color < std::size(MARKER_COLORS)) {
    widget_set_style_color(swatch, "normal:bg_color", MARKER_COLORS[color]);
  }
}

// +1, past `max` (or from a value already beyond it) back to 0.
char step_wrapping(char value, char max) {
  const int next = static_cast<uint8_t>(value) + 1;
  return static_cast<char>(next > max ? 0 : next);
}

}  // namespace

void marker_visit_child(const marker_page_t& page, widget_t* child) {
  if (child == NULL || child->name == NULL) return;
  if (tk_str_eq(child->name, page.row1_label)) {
    widget_set_state(child, WIDGET_STATE_FOCUSED);
  } else if (tk_str_eq(child->name, page.row1_value)) {
    draw_row1(page, child);
  } else if (tk_str_eq(child->name, TYPE_VALUE)) {
    draw_type(page, child);
  } else if (tk_str_eq(child->name, COLOR_SWATCH)) {
    draw_color(page, child);
  }
}

void marker_paint_focus(widget_t* win, const marker_page_t& page, int row) {
  if (row < 1 || row > MARKER_ROW_COUNT) return;
  const char* const labels[MARKER_ROW_COUNT] = {page.row1_label, TYPE_LABEL, COLOR_LABEL};
  menu_focus_one_of(win, labels, row - 1);
}

uint8_t marker_step(widget_t* win, uint8_t row, uint32_t key) {
  int next = row;
  if (key == GUI_KEY_PHOTO_S) next = row >= MARKER_ROW_COUNT ? 1 : row + 1;
  if (key == GUI_KEY_RANGE_S) next = row <= 1 ? MARKER_ROW_COUNT : row - 1;
  widget_move_resize(widget_lookup(win, HIGHLIGHT, TRUE), 0, (next - 1) * MENU_ROW_HEIGHT,
                     MARKER_ROW_WIDTH, MENU_ROW_HEIGHT);
  return static_cast<uint8_t>(next);
}

void marker_act(widget_t* win, const marker_page_t& page, uint8_t row) {
  switch (row) {
    case 1:
      // Continuous measuring is stopped before the range mode changes under it.
      if (page.row1_stops_continuous_ranging && stUIStatus.s8RangeMode == RANGE_COUTINUTE_SEND) {
        GUI_SEND_DISTANCE_FUNCTION_MSG(1, RANGE_COUTINUTE_SEND_STOP);
      }
      *page.row1_field = *page.row1_field != 0 ? 0 : page.row1_on;
      GUI_SEND_BASIC_FUNCTION_MSG(page.row1_command);
      draw_row1(page, widget_lookup(win, page.row1_value, TRUE));
      break;
    case 2:
      *page.type_field = step_wrapping(*page.type_field, page.type_max);
      draw_type(page, widget_lookup(win, TYPE_VALUE, TRUE));
      stUIStatus.s8ReticleTypeColorChoose = MARKER_CHOOSE_TYPE;
      GUI_SEND_RETICLE_MSG(page.reticle_command);
      break;
    case 3:
      *page.color_field =
          step_wrapping(*page.color_field, static_cast<char>(std::size(MARKER_COLORS) - 1));
      draw_color(page, widget_lookup(win, COLOR_SWATCH, TRUE));
      stUIStatus.s8ReticleTypeColorChoose = MARKER_CHOOSE_COLOR;
      GUI_SEND_RETICLE_MSG(page.reticle_command);
      break;
    default: break;
  }
}
