// Rows of the ballistic pages that edit one number of the current ballistic profile with the
// digit editor: where the number lives, the limits applied on saving, the lines printed and the
// frame that tells the device. The bullet and weather pages are tables of such rows; the
// ballistic menu uses one for the sight height.
//
//   constexpr profile_value_row_t WEIGHT{"label_weight", WEIGHT_DIGITS, get_weight, set_weight,
//       NO_LOWER_LIMIT, 500.0, nullptr, "save ... weight = %f\n", BALLISTIC_BULLET_INFO, 2};
//   profile_row_update(win, WEIGHT, bitval, edit_mode, edit_index, key);
#ifndef SCOPE_COMMON_BALLISTIC_ROWS_H
#define SCOPE_COMMON_BALLISTIC_ROWS_H

#include <cstdint>
#include <limits>
#include <span>

#include "awtk.h"
#include "common/digit_editor.h"
#include "common/status_records.h"

inline constexpr double NO_LOWER_LIMIT = -std::numeric_limits<double>::infinity();
inline constexpr double NO_UPPER_LIMIT = std::numeric_limits<double>::infinity();

struct profile_value_row_t {
  const char* focus;  // the row's caption label
  digit_row_t digits;
  double (*get)(const Info_ballistics& profile);
  void (*set)(Info_ballistics& profile, double value);
  double low;            // a saved value below is raised to it
  double high;           // a saved value above is lowered to it
  const char* set_log;   // printed with the value the digits spell (null: nothing)
  const char* save_log;  // printed with the value stored
  uint8_t msg_index;     // GUI_SEND_BALLISTIC_PARM_MSG(msg_index, msg_sub) after saving
  uint8_t msg_sub;
};

// The current profile, info[stDevStatus.s8BallisticGroup]; while the group is outside 0..4 (a
// settings record may carry anything) a zeroed profile, after a line naming the group.
const Info_ballistics& ballistic_profile_shown(void);

// Display mode: the stored value split into the row's digits, shown, frame and arrows hidden.
void profile_row_show(widget_t* win, const profile_value_row_t& row, std::span<uint8_t> bitval);

// Save: the value the digits spell ("set_log"), held inside low..high (the digits split again
// from the limit and shown when it applied), stored in the current profile ("save_log"), the
// frame sent; the row back in display mode. Without a current profile nothing is stored or sent
// (one line).
void profile_row_save(widget_t* win, const profile_value_row_t& row, std::span<uint8_t> bitval);

// One call per key, as every digit row of the ballistic pages takes it: in edit state 0 the back
// key (GUI_KEY_FUCTION_L) saves and any other key redraws from the profile; in state 1 the frame
// goes to digit `edit_index`; in state 2 that digit changes by the key.
void profile_row_update(widget_t* win, const profile_value_row_t& row, std::span<uint8_t> bitval,
                        int edit_mode, int edit_index, int key);

#endif  // SCOPE_COMMON_BALLISTIC_ROWS_H
