// The shared parts of the settings and system pages: see system_pages.h.
#include "pages/system_pages.h"

#include <cstdio>

#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/Zavo_home_page_1.h"
#include "widgets/image.h"

void back_to_home(void) {
  window_manager_back_to(window_manager(), HOME_WINDOW_NAME);
}

// ---- two-button confirmation ----

void confirm_buttons_show(widget_t* win, const confirm_buttons_t& buttons, uint8_t index) {
  if (win == NULL) return;
  const bool left = index == 1;
  image_set_image(widget_lookup(win, buttons.left, TRUE),
                  left ? "Zavo_btn_left_sel" : "Zavo_btn_left_def");
  image_set_image(widget_lookup(win, buttons.right, TRUE),
                  left ? "Zavo_btn_right_def" : "Zavo_btn_right_sel");
}

confirm_key_t confirm_buttons_key(widget_t* win, const confirm_buttons_t& buttons, int key,
                                  uint8_t* index) {
  switch (key) {
    case GUI_KEY_PHOTO_S:
    case GUI_KEY_RANGE_S:
      *index = *index == 1 ? 0 : 1;
      confirm_buttons_show(win, buttons, *index);
      return CONFIRM_MOVED;
    case GUI_KEY_FUCTION_S: return *index == 1 ? CONFIRM_OK : CONFIRM_CANCEL;
    default: return CONFIRM_NONE;
  }
}

// ---- progress screens ----

void stop_recording_first(void) {
  if (stUIStatus.s8RecordingState != 1) return;
  // The observation screen keeps the recording clock: stopping through it stops the clock too.
  widget_t* home = widget_child(window_manager(), HOME_WINDOW_NAME);
  if (home != NULL) {
    home_record_stop(home);
  } else {
    GUI_SEND_TAP_VIDEO_MSG(TAP_PICTURE_RECORD, TAP_RECORD_STOP, NULL);
    stUIStatus.s8RecordingState = 0;
  }
}

void progress_screen_begin(void) {
  stop_recording_first();
  GUI_SEND_PARAM_FUNCTION_MSG(SAVE_ALLPARAM);
}
