// Profile value rows of the ballistic pages: see ballistic_rows.h.
#include "common/ballistic_rows.h"

#include <cstdio>

#include "msg/msghandler.h"

const Info_ballistics& ballistic_profile_shown(void) {
  static const Info_ballistics none{};
  const Info_ballistics* profile = current_ballistic_profile();
  if (profile != nullptr) return *profile;
  std::printf("ballistic profile %d is outside 0..%d: its values show as 0\n",
              static_cast<unsigned char>(stDevStatus.s8BallisticGroup),
              BALLISTIC_PROFILE_COUNT - 1);
  return none;
}

void profile_row_show(widget_t* win, const profile_value_row_t& row, std::span<uint8_t> bitval) {
  const double values[] = {row.get(ballistic_profile_shown())};
  digit_split_row(row.digits, values, bitval);
  digit_row_browse(win, row.digits, bitval);
}

void profile_row_save(widget_t* win, const profile_value_row_t& row, std::span<uint8_t> bitval) {
  Info_ballistics* profile = current_ballistic_profile();
  if (profile == nullptr) {
    std::printf("%s: ballistic profile %d is outside 0..%d, nothing saved\n", row.focus,
                static_cast<unsigned char>(stDevStatus.s8BallisticGroup),
                BALLISTIC_PROFILE_COUNT - 1);
    digit_row_browse(win, row.digits, bitval);
    return;
  }
  double value = digit_compose(row.digits.numbers[0], bitval);
  if (row.set_log != nullptr) std::printf(row.set_log, value);
  bool limited = false;
  if (value < row.low) {
    value = row.low;
    limited = true;
  }
  if (value > row.high) {
    value = row.high;
    limited = true;
  }
  row.set(*profile, value);
  if (limited) {
    const double values[] = {row.get(*profile)};
    digit_split_row(row.digits, values, bitval);
  }
  digit_row_browse(win, row.digits, bitval);
  std::printf(row.save_log, row.get(*profile));
  GUI_SEND_BALLISTIC_PARM_MSG(row.msg_index, row.msg_sub);
}

void profile_row_update(widget_t* win, const profile_value_row_t& row, std::span<uint8_t> bitval,
                        int edit_mode, int edit_index, int key) {
  switch (edit_mode) {
    case EDIT_BROWSE:
      if (key == GUI_KEY_FUCTION_L) {
        profile_row_save(win, row, bitval);
      } else {
        profile_row_show(win, row, bitval);
      }
      break;
    case EDIT_SELECTED: digit_row_select(win, row.digits, edit_index); break;
    case EDIT_CHANGING: digit_row_change(win, row.digits, bitval, edit_index, key); break;
    default: break;
  }
}
