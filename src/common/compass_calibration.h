// The compass calibration: two turns of the scope, each started and stopped on the device.
//
//   level turn     held level, turned once round through the full circle of azimuth
//                  (COMPASS_HORIZONTAL_START ... COMPASS_HORIZONTAL_STOP)
//   vertical turn  turned once round in the vertical plane, pointing from straight down to
//                  straight up (COMPASS_VERTICAL_START ... COMPASS_VERTICAL_STOP)
//
// The device reports no progress of its own, only the compass angles, so a turn's progress is
// how much of its circle the reported angles have covered: twelve sectors of 30 degrees of
// azimuth for the level turn, twelve of 15 degrees of elevation (-90..+90) for the vertical
// turn. When every sector has been seen the turn is complete and its stop is sent; a turn
// stopped before is interrupted.
//
// The step pages "Zavo_level_correction" and "Zavo_vertical_correction" share one mechanism with
// their turn as data; "Zavo_compass_1" lists both turns with their outcome.
#ifndef SCOPE_COMMON_COMPASS_CALIBRATION_H
#define SCOPE_COMMON_COMPASS_CALIBRATION_H

#include <cstdint>

#include "awtk.h"

enum calibration_turn_t { CALIBRATION_LEVEL = 0, CALIBRATION_VERTICAL = 1 };
inline constexpr int CALIBRATION_TURNS = 2;
inline constexpr int CALIBRATION_SECTORS = 12;

enum calibration_outcome_t {
  CALIBRATION_NOT_RUN = 0,  // not run since the scope started
  CALIBRATION_RUNNING,
  CALIBRATION_DONE,         // every sector seen, stop sent
  CALIBRATION_INTERRUPTED,  // stopped before the turn was complete
};

// Text keys of an outcome ("acc_cal_not_run", ...).
const char* calibration_outcome_text(calibration_outcome_t outcome);

// ---- the turns (state kept for the whole run) ----
calibration_outcome_t calibration_outcome(calibration_turn_t turn);
// Percentage of the turn's sectors seen, 0..100.
int calibration_progress(calibration_turn_t turn);
// Sends the turn's start, forgets the sectors and counts the angle the scope points at now.
void calibration_start(calibration_turn_t turn);
// Counts the current compass angles into a running turn; a turn that becomes complete sends its
// stop and is done. True when this reading completed it.
bool calibration_feed(calibration_turn_t turn);
// Ends a running turn early: its stop is sent and it is interrupted. Nothing when not running.
void calibration_interrupt(calibration_turn_t turn);
// Every turn back to "not run" (a fresh start of the program; tests).
void calibration_reset(void);

// ---- the step page of one turn ----
// Widgets (the same on both step pages): "image_calibration_sel" (highlight), "label_cal_action"
// (the one row: "Start" or "Stop"), "label_cal_state" (its value: the outcome),
// "progress_calibration" and "label_cal_progress" (the sectors seen), "label_cal_azimuth",
// "label_cal_pitch", "label_cal_slant" (the angles the device reports).

// Draws the step page of `turn` from the turn's state and the compass angles.
void calibration_page_draw(widget_t* win, calibration_turn_t turn);
// Subscribes the page to the three compass angle events and installs its keys: function starts
// or stops the turn; function held and power leave (interrupting a running turn).
void calibration_page_init(widget_t* win, calibration_turn_t turn);

#endif  // SCOPE_COMMON_COMPASS_CALIBRATION_H
