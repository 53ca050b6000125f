// The digit editor: a number edited one decimal digit at a time with four keys, as the ballistic
// pages (wind, zero distance, sight height, bullet, weather) and the magnetic declination do.
//
// A row of the editor is constexpr data: its digit labels with their x positions inside the
// row's group view, the numbers those digits spell (scale, sign digit, leading-digit rule), the
// arrow view with its two images, the selection frame, and the range of digits the user may
// select. The page keeps the edit state (`edit_mode`, `edit_index`) and one digit buffer
// (`bitval`, one byte per digit, most significant first) per row, and calls:
//
//   digit_split_row(ROW, values, bitval);             // stored value(s) -> digits
//   digit_row_browse(win, ROW, bitval);               // edit state 0: digits shown, no frame
//   edit_index = digit_next_index(ROW, edit_mode, edit_index);  // OK key
//   digit_row_select(win, ROW, edit_index);           // edit state 1: the frame on a digit
//   digit_row_change(win, ROW, bitval, edit_index, key);  // edit state 2: arrows, digit +-1
//   double v = digit_compose(ROW.numbers[0], bitval); // digits -> value, on save
//
// A signed value (the magnetic declination in tenths of a degree, the temperature) has a sign
// digit first: 1 is negative, shown "-", 0 positive, shown "+"; its `max` is 1.
#ifndef SCOPE_COMMON_DIGIT_EDITOR_H
#define SCOPE_COMMON_DIGIT_EDITOR_H

#include <cstdint>
#include <span>

#include "awtk.h"

// The edit states of a digit row.
enum DIGIT_EDIT_MODE {
  EDIT_BROWSE = 0,    // browsing rows: the digits show the stored value
  EDIT_SELECTED = 1,  // a digit is selected: the frame surrounds it
  EDIT_CHANGING = 2,  // the selected digit is being changed: the arrows beside it
};

// Most digits a row holds (the wind row: three of speed, three of direction).
inline constexpr int DIGITS_MAX = 6;

// Geometry of the frame and the arrows, relative to the digit's x inside its group.
inline constexpr int DIGIT_FRAME_DX = -2;
inline constexpr int DIGIT_FRAME_Y = 4;
inline constexpr int DIGIT_FRAME_W = 20;
inline constexpr int DIGIT_FRAME_H = 40;
inline constexpr int DIGIT_ARROW_DX = 2;
inline constexpr int DIGIT_ARROW_Y = -3;
inline constexpr int DIGIT_ARROW_W = 12;
inline constexpr int DIGIT_ARROW_H = 54;

// Images of the two arrows: the one pointing the way the digit moved is "_sel".
inline constexpr const char* DIGIT_ARROW_UP_SEL = "hold_menu_arrow_up_sel";
inline constexpr const char* DIGIT_ARROW_UP_DEF = "hold_menu_arrow_up_def";
inline constexpr const char* DIGIT_ARROW_DOWN_SEL = "hold_menu_arrow_down_sel";
inline constexpr const char* DIGIT_ARROW_DOWN_DEF = "hold_menu_arrow_down_def";

// One digit of a row.
struct digit_t {
  const char* label;  // the label showing it
  int16_t x;          // where the frame and arrows are placed for it, inside the row's group
  uint8_t max;        // it runs 0..max and wraps: 9, or 1 for a sign digit or a capped leading one
};

// How a run of digits spells a number. The digits (sign digit excepted) are the decimal places
// of n = round(|value| x scale), half away from zero: a scale of 100 gives two decimals.
struct digit_number_t {
  uint8_t first;  // index of its first digit in the row
  uint8_t count;  // its digits, the sign digit included
  double scale;   // value x scale is the whole number the magnitude digits spell
  bool sign;      // the first digit is a sign digit: 1 when the value is negative
  // A number too large for the digits: true holds the leading digit at 9 and shows the others
  // as remainders (123.4 in "d.d.d" reads 9, 3, 4); false shows only the last digits (750 in
  // two digits reads 5, 0), and the split prints "tmp=<n>".
  bool saturate;
};

struct digit_row_t {
  std::span<const digit_t> digits;
  std::span<const digit_number_t> numbers;  // one, or two (wind: speed, then direction)
  const char* arrow;                        // the view holding the two arrows
  const char* arrow_up;                     // its up image
  const char* arrow_down;                   // its down image
  const char* frame;                        // the selection frame
  uint8_t first;                            // the digits the user may select: first..last
  uint8_t last;
  // While digit 0 stands at its max, every other digit is held to 0 (humidity: 100 at most).
  bool hold_rest_at_leading_max = false;
};

// The largest magnitude, after scaling, that a split takes as it is; at or above it (and for an
// infinity) the digits show all nines.
inline constexpr double DIGIT_NUMBER_LIMIT = 1e15;

// Splits `value` into the digits of `number` (bitval[first .. first + count)). A value the
// digits cannot spell is saturated: NaN shows zeros, an infinity or a magnitude at or above
// DIGIT_NUMBER_LIMIT shows nines; either prints one line naming the value. Returns false for
// such a value, true otherwise.
bool digit_split(const digit_number_t& number, double value, std::span<uint8_t> bitval);

// Splits the row's numbers from `values` (one per number), after the line "paraval = <values[0]>".
// False when any value had to be saturated.
bool digit_split_row(const digit_row_t& row, std::span<const double> values,
                     std::span<uint8_t> bitval);

// The value the digits of `number` spell: sum of digit x its place value, negated when the sign
// digit is 1 (a negative zero comes back as 0).
double digit_compose(const digit_number_t& number, std::span<const uint8_t> bitval);

// The text of digit `index`: "-" / "+" for a sign digit, else "%d".
void digit_text(const digit_row_t& row, std::span<const uint8_t> bitval, int index, char* out,
                size_t size);

// Edit state 0: the arrows and the frame hidden, every digit label "normal" and showing its digit.
void digit_row_browse(widget_t* win, const digit_row_t& row, std::span<const uint8_t> bitval);

// Every digit label written from the buffer (no state change).
void digit_row_show(widget_t* win, const digit_row_t& row, std::span<const uint8_t> bitval);

// Edit state 1: the arrows hidden, the frame at (x - 2, 4), 20 x 40, around digit `index`, that
// digit's label "focused" and the others "normal".
void digit_row_select(widget_t* win, const digit_row_t& row, int index);

// Edit state 2: the arrows at (x + 2, -3), 12 x 54, beside digit `index`, the up arrow selected
// for GUI_KEY_RANGE_S and the down arrow for any other key; the digit stepped with getIndexVal
// (up adds one, down takes one, wrapping inside 0..max) and redrawn; its label "focused".
// Prints "edit_mode = 2" and "bit[<index>] = <digit>". An index outside the row changes nothing.
void digit_row_change(widget_t* win, const digit_row_t& row, std::span<uint8_t> bitval, int index,
                      int key);

// The digit the OK key selects: the row's first selectable digit when browsing, else the next
// one (after the last, the first again).
int digit_next_index(const digit_row_t& row, int edit_mode, int edit_index);

// The highest value digit `index` may take now (its max, or 0 while held by the leading digit).
int digit_max(const digit_row_t& row, std::span<const uint8_t> bitval, int index);

#endif  // SCOPE_COMMON_DIGIT_EDITOR_H
