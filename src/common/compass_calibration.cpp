// The compass calibration turns and their step page: see compass_calibration.h.
#include "common/compass_calibration.h"

#include <array>
#include <bitset>
#include <cstdio>

#include "common/accessory_common.h"
#include "common/menu_rows.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "widgets/progress_bar.h"

namespace {

struct turn_state_t {
  calibration_outcome_t outcome = CALIBRATION_NOT_RUN;
  std::bitset<CALIBRATION_SECTORS> seen;
};

std::array<turn_state_t, CALIBRATION_TURNS> turns;

struct turn_commands_t {
  uint8_t start;
  uint8_t stop;
};
constexpr std::array<turn_commands_t, CALIBRATION_TURNS> COMMANDS = {{
    {COMPASS_HORIZONTAL_START, COMPASS_HORIZONTAL_STOP},
    {COMPASS_VERTICAL_START, COMPASS_VERTICAL_STOP},
}};

// The sector the current compass angles put the scope in for this turn.
int sector_now(calibration_turn_t turn) {
  if (turn == CALIBRATION_LEVEL) {
    const int azimuth = ((stUIStatus.s16CompassAzimuth % 360) + 360) % 360;
    return azimuth / (360 / CALIBRATION_SECTORS);
  }
  int pitch = stUIStatus.s16CompassPitch;
  if (pitch < -90) pitch = -90;
  if (pitch > 89) pitch = 89;  // straight up belongs to the top sector
  return (pitch + 90) / (180 / CALIBRATION_SECTORS);
}

turn_state_t& state_of(calibration_turn_t turn) {
  return turns[turn == CALIBRATION_VERTICAL ? 1 : 0];
}

}  // namespace

const char* calibration_outcome_text(calibration_outcome_t outcome) {
  switch (outcome) {
    case CALIBRATION_RUNNING: return "acc_cal_running";
    case CALIBRATION_DONE: return "acc_cal_done";
    case CALIBRATION_INTERRUPTED: return "acc_cal_interrupted";
    default: return "acc_cal_not_run";
  }
}

calibration_outcome_t calibration_outcome(calibration_turn_t turn) {
  return state_of(turn).outcome;
}

int calibration_progress(calibration_turn_t turn) {
  return static_cast<int>(state_of(turn).seen.count()) * 100 / CALIBRATION_SECTORS;
}

void calibration_start(calibration_turn_t turn) {
  turn_state_t& s = state_of(turn);
  s.seen.reset();
  s.outcome = CALIBRATION_RUNNING;
  GUI_SEND_COMPASS_CORRECT(COMMANDS[turn].start);
  s.seen.set(sector_now(turn));
}

bool calibration_feed(calibration_turn_t turn) {
  turn_state_t& s = state_of(turn);
  if (s.outcome != CALIBRATION_RUNNING) return false;
  s.seen.set(sector_now(turn));
  if (!s.seen.all()) return false;
  s.outcome = CALIBRATION_DONE;
  GUI_SEND_COMPASS_CORRECT(COMMANDS[turn].stop);
  return true;
}

void calibration_interrupt(calibration_turn_t turn) {
  turn_state_t& s = state_of(turn);
  if (s.outcome != CALIBRATION_RUNNING) return;
  s.outcome = CALIBRATION_INTERRUPTED;
  GUI_SEND_COMPASS_CORRECT(COMMANDS[turn].stop);
}

void calibration_reset(void) {
  turns = {};
}

// ---- the step page ----

namespace {

constexpr const char* ROW_LABELS[] = {"label_cal_action"};
constexpr menu_rows_t ROWS{"image_calibration_sel", 560, ROW_LABELS};

// The turn a step page runs, kept on its window.
calibration_turn_t turn_of(widget_t* win) {
  return widget_get_prop_int(win, "calibration_turn", CALIBRATION_LEVEL) == CALIBRATION_VERTICAL
             ? CALIBRATION_VERTICAL
             : CALIBRATION_LEVEL;
}

ret_t on_compass_angle(void* ctx, event_t* e) {
  (void)e;
  widget_t* win = static_cast<widget_t*>(ctx);
  const calibration_turn_t turn = turn_of(win);
  calibration_feed(turn);
  calibration_page_draw(win, turn);
  return RET_OK;
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  const calibration_turn_t turn = turn_of(win);
  switch (evt->key) {
    case GUI_KEY_POWER_S:
      calibration_interrupt(turn);
      window_manager_back_to(window_manager(), "Zavo_home_page_1");
      break;
    case GUI_KEY_FUCTION_L:
      calibration_interrupt(turn);
      navigator_back();
      break;
    case GUI_KEY_FUCTION_S:
      if (calibration_outcome(turn) == CALIBRATION_RUNNING) {
        calibration_interrupt(turn);
      } else {
        calibration_start(turn);
      }
      calibration_page_draw(win, turn);
      break;
    default: break;  // one row: up and down have nowhere to go
  }
  return RET_OK;
}

// A page closed any other way than by its keys still ends its turn, so that the device is never
// left calibrating.
ret_t on_page_destroy(void* ctx, event_t* e) {
  (void)e;
  calibration_interrupt(turn_of(static_cast<widget_t*>(ctx)));
  return RET_OK;
}

}  // namespace

void calibration_page_draw(widget_t* win, calibration_turn_t turn) {
  const calibration_outcome_t outcome = calibration_outcome(turn);
  const int progress = calibration_progress(turn);
  accessory_set_tr(win, "label_cal_action",
                   outcome == CALIBRATION_RUNNING ? "acc_cal_stop" : "acc_cal_start");
  accessory_set_tr(win, "label_cal_state", calibration_outcome_text(outcome));
  progress_bar_set_value(widget_lookup(win, "progress_calibration", TRUE), progress);
  char text[32];
  tk_snprintf(text, sizeof(text), "%d %%", progress);
  accessory_set_text(win, "label_cal_progress", text);
  accessory_format_azimuth(text, sizeof(text), stUIStatus.s16CompassAzimuth);
  accessory_set_text(win, "label_cal_azimuth", text);
  accessory_format_signed_degrees(text, sizeof(text), stUIStatus.s16CompassPitch);
  accessory_set_text(win, "label_cal_pitch", text);
  accessory_format_signed_degrees(text, sizeof(text), stUIStatus.s16CompassSlant);
  accessory_set_text(win, "label_cal_slant", text);
}

void calibration_page_init(widget_t* win, calibration_turn_t turn) {
  widget_set_prop_int(win, "calibration_turn", turn);
  menu_rows_focus(win, ROWS, 1);
  calibration_page_draw(win, turn);
  for (int offset :
       {SCREEN_EVT_COMPASS_AZIMUTH, SCREEN_EVT_COMPASS_PITCH, SCREEN_EVT_COMPASS_SLANT}) {
    widget_on(window_manager(), EVT_USER_START + offset, on_compass_angle, win);
  }
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  widget_on(win, EVT_DESTROY, on_page_destroy, win);
}
