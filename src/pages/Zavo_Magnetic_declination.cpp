// "Zavo_Magnetic_declination": the magnetic declination, the angle between magnetic and true
// north that the device adds to the azimuth it reports. One row edited with the digit editor: a
// sign digit and three digits in tenths of a degree (-99.9 to +99.9, east positive), kept in
// `s16CompassMagnetic`. Function selects the sign and then each digit in turn, range and photo
// change the selected digit, function held saves the value and sends it; function held while
// browsing goes back one page, power returns to the observation screen (discarding an edit).
// Below the row: the azimuth the device reports, so the effect of a saved value shows.
#include <array>
#include <cstdint>
#include <cstdio>

#include "common/accessory_common.h"
#include "common/common_function.h"
#include "common/digit_editor.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/accessory_pages.h"
#include "pages/page_list.h"

// The edit state of the row (a DIGIT_EDIT_MODE) and the selected digit.
int declination_edit_mode = EDIT_BROWSE;
int declination_edit_index = 0;

namespace {

// Sign, tens, units and (after the decimal point) tenths of a degree.
std::array<uint8_t, DIGITS_MAX> bitval{};

constexpr digit_t DIGITS[] = {{"label_declination_sign", 0, 1},
                              {"label_declination_two", 16, 9},
                              {"label_declination_one", 32, 9},
                              {"label_declination_point1", 64, 9}};
// The digits spell the value in tenths: -125 is "-", 1, 2, 5, shown "-12.5".
constexpr digit_number_t NUMBER[] = {{0, 4, 1.0, true, true}};
constexpr digit_row_t ROW{DIGITS,
                          NUMBER,
                          "view_declination_arrow",
                          "image_declination_up",
                          "image_declination_down",
                          "view_declination_sel",
                          0,
                          3};

// ---- drawing ----

void draw_stored(widget_t* win) {
  const double tenths = stDevStatus.s16CompassMagnetic;
  digit_split_row(ROW, std::span<const double>(&tenths, 1), bitval);
  digit_row_browse(win, ROW, bitval);
}

void draw_azimuth(widget_t* win) {
  char text[32];
  accessory_format_azimuth(text, sizeof(text), stUIStatus.s16CompassAzimuth);
  accessory_set_text(win, "label_declination_azimuth", text);
}

ret_t on_compass_azimuth(void* ctx, event_t* e) {
  (void)e;
  draw_azimuth(static_cast<widget_t*>(ctx));
  return RET_OK;
}

// ---- keys ----

// Function held while editing: the digits become the record's value, then it is sent.
void save(widget_t* win) {
  const double tenths = digit_compose(NUMBER[0], bitval);
  stDevStatus.s16CompassMagnetic = static_cast<int16_t>(tenths);
  std::printf("save s16CompassMagnetic = %d\n", stDevStatus.s16CompassMagnetic);
  GUI_SEND_COMPASS_MSG(0);
  declination_edit_mode = EDIT_BROWSE;
  draw_stored(win);
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_POWER_S: window_manager_back_to(window_manager(), "Zavo_home_page_1"); break;
    case GUI_KEY_FUCTION_L:
      if (declination_edit_mode == EDIT_BROWSE) {
        navigator_back();
      } else {
        save(win);
      }
      break;
    case GUI_KEY_FUCTION_S:
      declination_edit_index = digit_next_index(ROW, declination_edit_mode, declination_edit_index);
      declination_edit_mode = EDIT_SELECTED;
      digit_row_select(win, ROW, declination_edit_index);
      break;
    case GUI_KEY_PHOTO_S:
    case GUI_KEY_RANGE_S:
      // One row: up and down only change a selected digit.
      if (declination_edit_mode == EDIT_BROWSE) break;
      declination_edit_mode = EDIT_CHANGING;
      digit_row_change(win, ROW, bitval, declination_edit_index, evt->key);
      break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_Magnetic_declination_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  declination_edit_mode = EDIT_BROWSE;
  declination_edit_index = 0;
  widget_set_state(widget_lookup(win, "label_declination", TRUE), WIDGET_STATE_FOCUSED);
  draw_stored(win);
  draw_azimuth(win);
  widget_on(window_manager(), EVT_USER_START + int{SCREEN_EVT_COMPASS_AZIMUTH}, on_compass_azimuth,
            win);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
