// The digit editor: see digit_editor.h.
#include "common/digit_editor.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "common/common_function.h"
#include "msg/msghandler.h"

namespace {

// 10^e for the small exponents a row uses (at most 15: DIGIT_NUMBER_LIMIT).
constexpr uint64_t pow10u(int e) {
  uint64_t p = 1;
  for (int i = 0; i < e; ++i)
    p *= 10;
  return p;
}

bool number_fits(const digit_number_t& number, size_t size) {
  const int magnitude = number.count - (number.sign ? 1 : 0);
  return magnitude >= 1 && magnitude <= 15 && number.first + number.count <= size;
}

widget_t* find(widget_t* win, const char* name) {
  return name != NULL ? widget_lookup(win, name, TRUE) : NULL;
}

void set_label_states(widget_t* win, const digit_row_t& row, int focused) {
  for (size_t i = 0; i < row.digits.size(); ++i) {
    widget_set_state(find(win, row.digits[i].label),
                     static_cast<int>(i) == focused ? WIDGET_STATE_FOCUSED : WIDGET_STATE_NORMAL);
  }
}

void show_digit(widget_t* win, const digit_row_t& row, std::span<const uint8_t> bitval, int index) {
  char text[8];
  digit_text(row, bitval, index, text, sizeof(text));
  widget_set_text_utf8(find(win, row.digits[index].label), text);
}

bool index_ok(const digit_row_t& row, std::span<const uint8_t> bitval, int index) {
  return index >= 0 && index < static_cast<int>(row.digits.size()) &&
         index < static_cast<int>(bitval.size());
}

}  // namespace

bool digit_split(const digit_number_t& number, double value, std::span<uint8_t> bitval) {
  if (!number_fits(number, bitval.size())) {
    std::printf("digit_split: %d digits from %d do not fit a buffer of %zu\n", number.count,
                number.first, bitval.size());
    return false;
  }
  uint8_t* d = bitval.data() + number.first;
  const int magnitude = number.count - (number.sign ? 1 : 0);
  if (number.sign) {
    *d++ = value < 0 ? 1 : 0;  // false for NaN
  }
  const uint64_t nines = pow10u(magnitude) - 1;

  // |value x scale| rounded half away from zero. The conversion to an integer is defined only
  // for a finite value in range, so NaN, the infinities and anything too large are caught first.
  const double scaled = std::fabs(value * number.scale);
  uint64_t n = 0;
  bool ok = true;
  if (std::isnan(scaled)) {
    std::printf("digit_split: value %g is not a number, shown as zeros\n", value);
    ok = false;
  } else if (scaled >= DIGIT_NUMBER_LIMIT) {
    std::printf("digit_split: value %g is out of range, shown as nines\n", value);
    n = nines;
    ok = false;
  } else {
    n = static_cast<uint64_t>(std::round(scaled));
  }

  const uint64_t lead_place = pow10u(magnitude - 1);
  if (number.saturate) {
    d[0] = static_cast<uint8_t>(std::min<uint64_t>(n / lead_place, 9));
  } else {
    std::printf("tmp=%llu\n", static_cast<unsigned long long>(n));
    d[0] = static_cast<uint8_t>((n / lead_place) % 10);
  }
  for (int i = 1; i < magnitude; ++i)
    d[i] = static_cast<uint8_t>((n / pow10u(magnitude - 1 - i)) % 10);
  return ok;
}

bool digit_split_row(const digit_row_t& row, std::span<const double> values,
                     std::span<uint8_t> bitval) {
  if (!values.empty()) std::printf("paraval = %f \n", values[0]);
  bool ok = true;
  for (size_t i = 0; i < row.numbers.size() && i < values.size(); ++i)
    ok = digit_split(row.numbers[i], values[i], bitval) && ok;
  return ok;
}

double digit_compose(const digit_number_t& number, std::span<const uint8_t> bitval) {
  if (!number_fits(number, bitval.size())) return 0.0;
  const uint8_t* d = bitval.data() + number.first;
  const bool negative = number.sign && d[0] == 1;
  if (number.sign) ++d;
  const int magnitude = number.count - (number.sign ? 1 : 0);
  // Each digit times its place value, most significant first: with a scale of 100 the places are
  // 10, 1, 0.1, 0.01 (each quotient is the correctly rounded decimal fraction).
  double value = 0.0;
  for (int i = 0; i < magnitude; ++i)
    value += d[i] * (static_cast<double>(pow10u(magnitude - 1 - i)) / number.scale);
  if (negative) value = -value;
  return value + 0.0;  // -0 + 0 is +0: a "-000" is saved as 0
}

void digit_text(const digit_row_t& row, std::span<const uint8_t> bitval, int index, char* out,
                size_t size) {
  if (size == 0) return;
  out[0] = '\0';
  if (!index_ok(row, bitval, index)) return;
  for (const digit_number_t& number : row.numbers) {
    if (number.sign && number.first == index) {
      std::snprintf(out, size, "%s", bitval[index] == 1 ? "-" : "+");
      return;
    }
  }
  std::snprintf(out, size, "%d", bitval[index]);
}

void digit_row_show(widget_t* win, const digit_row_t& row, std::span<const uint8_t> bitval) {
  if (win == NULL) return;
  for (size_t i = 0; i < row.digits.size() && i < bitval.size(); ++i)
    show_digit(win, row, bitval, static_cast<int>(i));
}

void digit_row_browse(widget_t* win, const digit_row_t& row, std::span<const uint8_t> bitval) {
  if (win == NULL) return;
  widget_set_visible(find(win, row.arrow), FALSE);
  widget_set_visible(find(win, row.frame), FALSE);
  set_label_states(win, row, -1);
  digit_row_show(win, row, bitval);
}

void digit_row_select(widget_t* win, const digit_row_t& row, int index) {
  if (win == NULL || index < 0 || index >= static_cast<int>(row.digits.size())) return;
  set_label_states(win, row, index);
  widget_set_visible(find(win, row.arrow), FALSE);
  widget_t* frame = find(win, row.frame);
  widget_move_resize(frame, row.digits[index].x + DIGIT_FRAME_DX, DIGIT_FRAME_Y, DIGIT_FRAME_W,
                     DIGIT_FRAME_H);
  widget_set_visible(frame, TRUE);
}

void digit_row_change(widget_t* win, const digit_row_t& row, std::span<uint8_t> bitval, int index,
                      int key) {
  if (win == NULL || !index_ok(row, bitval, index)) return;
  set_label_states(win, row, index);
  widget_t* arrow = find(win, row.arrow);
  widget_move_resize(arrow, row.digits[index].x + DIGIT_ARROW_DX, DIGIT_ARROW_Y, DIGIT_ARROW_W,
                     DIGIT_ARROW_H);
  widget_set_visible(arrow, TRUE);
  const bool up = key == GUI_KEY_RANGE_S;
  image_set_image(find(win, row.arrow_up), up ? DIGIT_ARROW_UP_SEL : DIGIT_ARROW_UP_DEF);
  image_set_image(find(win, row.arrow_down), up ? DIGIT_ARROW_DOWN_DEF : DIGIT_ARROW_DOWN_SEL);

  bitval[index] =
      static_cast<uint8_t>(getIndexVal(key, 0, digit_max(row, bitval, index), bitval[index], 1));
  std::printf("edit_mode = %d\n", EDIT_CHANGING);
  std::printf("bit[%d] = %d\n", index, bitval[index]);
  show_digit(win, row, bitval, index);
}

int digit_next_index(const digit_row_t& row, int edit_mode, int edit_index) {
  if (edit_mode == EDIT_BROWSE) return row.first;
  return getIndexVal_cycle(row.first, row.last, edit_index);
}

int digit_max(const digit_row_t& row, std::span<const uint8_t> bitval, int index) {
  if (!index_ok(row, bitval, index)) return 0;
  if (row.hold_rest_at_leading_max && index > 0 && !row.digits.empty() &&
      bitval[0] == row.digits[0].max) {
    return 0;
  }
  return row.digits[index].max;
}
