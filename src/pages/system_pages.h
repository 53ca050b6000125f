// What the settings and system pages share: the two-button confirmation (card, format, factory
// reset), the progress screens that send one delayed command (format, factory reset), stopping a
// running recording first, and leaving to the observation screen.
#ifndef SCOPE_PAGES_SYSTEM_PAGES_H
#define SCOPE_PAGES_SYSTEM_PAGES_H

#include <cstdint>

#include "awtk.h"

inline constexpr const char* HOME_WINDOW_NAME = "Zavo_home_page_1";

// Closes every page above the observation screen.
void back_to_home(void);

// ---- two-button confirmation ----
// Two image buttons side by side: the action on the left (index 1) and Cancel on the right
// (index 0, the choice at entry). The selected button shows "Zavo_btn_left_sel" or
// "Zavo_btn_right_sel", the other its "_def" image.
struct confirm_buttons_t {
  const char* left;   // image widget of the action ("image_Format", "image_OK")
  const char* right;  // image widget of Cancel ("image_Cancel")
};

enum confirm_key_t {
  CONFIRM_NONE,    // not a key of the buttons: the page handles it
  CONFIRM_MOVED,   // photo or range toggled the choice (redrawn)
  CONFIRM_OK,      // confirm with the action chosen
  CONFIRM_CANCEL,  // confirm with Cancel chosen
};

void confirm_buttons_show(widget_t* win, const confirm_buttons_t& buttons, uint8_t index);
// GUI_KEY_PHOTO_S and GUI_KEY_RANGE_S toggle *index and redraw; GUI_KEY_FUCTION_S answers OK or
// CANCEL after *index; any other key is CONFIRM_NONE.
confirm_key_t confirm_buttons_key(widget_t* win, const confirm_buttons_t& buttons, int key,
                                  uint8_t* index);

// ---- progress screens ----
// Stops a running recording the way the observation screen does (its clock stops, the stop
// command goes out); nothing when none runs.
void stop_recording_first(void);

// The start of a progress screen that hands the work to the device: a running recording
// stopped, then all settings saved. The page then sends its command from a one-shot timer.
void progress_screen_begin(void);

#endif  // SCOPE_PAGES_SYSTEM_PAGES_H
