// The marker option pages: the range finder ("Zavo_lrf_menu"), the laser ("Zavo_Laser_menu") and
// picture-in-picture ("Zavo_PIP_menu"). All three have the same three rows (a switch or mode,
// the marker type, the marker colour), the same widgets and keys; a page is one marker_page_t
// row of data and its own row index.
//
//   row 1  the page's own switch or mode, its value widget, a basic-function command
//   row 2  "pip_reticle_type" / "label_reticle_type": the marker type, shown 1-based
//   row 3  "label_reticle_color" / "image_reticle_color": the colour swatch
//
// The highlight bar "image_recoil_menu_sel" moves by 60 pixels a row, 336 wide.
#ifndef SCOPE_COMMON_MARKER_OPTIONS_H
#define SCOPE_COMMON_MARKER_OPTIONS_H

#include <cstdint>

#include "awtk.h"

inline constexpr int MARKER_ROW_COUNT = 3;
inline constexpr wh_t MARKER_ROW_WIDTH = 336;

// The marker colours by index: white, red, green (toolkit colour words, red in the low byte).
inline constexpr uint32_t MARKER_COLORS[] = {0xFFFFFFFF, 0xFF0011FF, 0xFF00FF00};

// Which reticle the device's type/colour command concerns (s8ReticleTypeColorChoose).
inline constexpr char MARKER_CHOOSE_COLOR = 3;
inline constexpr char MARKER_CHOOSE_TYPE = 4;

struct marker_page_t {
  const char* row1_label;     // the row 1 caption that takes the focus state
  const char* row1_value;     // the row 1 value: a label (row1_text_on set) or a switch image
  const char* row1_text_on;   // text key shown when the row 1 field is non-zero; null: image
  const char* row1_text_off;  // text key shown when it is zero
  char* row1_field;           // the switch or mode field
  char row1_on;               // the value switching on writes (switching off writes 0)
  uint8_t row1_command;       // GUI_SEND_BASIC_FUNCTION_MSG index sent after the change
  bool row1_stops_continuous_ranging;  // stop continuous measuring before the change
  char* type_field;
  char type_max;  // types 0..type_max
  char* color_field;
  uint8_t reticle_command;  // GUI_SEND_RETICLE_MSG index sent after a type or colour change
};

// Prepares one named child of the page's window from the records (visit_init_child's work):
// row 1 label focused, row 1 value, type number, colour swatch.
void marker_visit_child(const marker_page_t& page, widget_t* child);

// Focus painting: the row's label "focused", the other two "normal"; a row outside 1..3 changes
// nothing. Does not move the highlight bar.
void marker_paint_focus(widget_t* win, const marker_page_t& page, int row);

// The row GUI_KEY_PHOTO_S (next) or GUI_KEY_RANGE_S (previous) leads to from `row`, wrapping
// within 1..3, with the highlight bar moved onto it. Focus painting is the caller's next step.
uint8_t marker_step(widget_t* win, uint8_t row, uint32_t key);

// GUI_KEY_FUCTION_S on `row`: the record field changes first, then its command is sent and the
// row's value widget redrawn. A row outside 1..3 does nothing.
void marker_act(widget_t* win, const marker_page_t& page, uint8_t row);

#endif  // SCOPE_COMMON_MARKER_OPTIONS_H
