// "Zavo_updata": the firmware upgrade, opened by the device link at the device's start notice.
// The page shows one picture per state ("image_updata_<state>") with its text, and moves the
// state once for every report of the device (screen event 8249):
//
//   0  checking: card and battery decide, the result is sent (UPDATA_CHECK)
//      1 card full, 2 battery low, 3 both (final)   4 checks passed, looking for the firmware
//   4  -> 6 firmware found, confirm?   5 no firmware (final)
//   6  OK -> 7 installing (confirmation 0)   power -> cancelled, restart (confirmation 1)
//   7  -> 8 step 1 done   9 failed (final)
//   8  -> 10 step 2 done  11 failed (final)
//   10 -> 12 step 3 done  13 failed (final)
//   12 -> 14 done: a long power press shuts the scope down
//
// OK in a final state shows the restart picture and asks the device to reboot 3 s later.
#include <array>
#include <cstdio>

#include "common/common_function.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/Zavo_menus.h"
#include "pages/system_pages.h"
#include "widgets/image.h"

// ---- state ----

int16_t Zavo_updata_index = 0;

namespace {

constexpr int STATE_COUNT = 15;      // 0..14
constexpr int RESTART_PICTURE = 15;  // shown once a restart is on its way
constexpr int BATTERY_EDGE = 730;  // the upgrade needs more than this; exactly this decides nothing
constexpr uint32_t REBOOT_DELAY_MS = 3000;

constexpr int STATE_CHECKING = 0, STATE_CHECKED = 4, STATE_CONFIRM = 6, STATE_INSTALLING = 7,
              STATE_DONE = 14;

// One step of the table: in state `from`, the reported s8Updata_state `report` leads to `to`
// (report -1: any report).
struct step_t {
  int from;
  int report;
  int to;
};
constexpr std::array<step_t, 9> STEPS = {{
    {4, 0, 6},
    {4, 1, 5},
    {7, 2, 8},
    {7, 3, 9},
    {8, 4, 10},
    {8, 5, 11},
    {10, 6, 12},
    {10, 7, 13},
    {12, -1, 14},
}};

constexpr bool is_final(int state) {
  return state == 1 || state == 2 || state == 3 || state == 5 || state == 9 || state == 11 ||
         state == 13;
}

// The text under each picture (string keys), the restart last.
constexpr std::array<const char*, STATE_COUNT + 1> STATE_TEXTS = {
    "menus_updata_0",  "menus_updata_1",  "menus_updata_2",  "menus_updata_3",
    "menus_updata_4",  "menus_updata_5",  "menus_updata_6",  "menus_updata_7",
    "menus_updata_8",  "menus_updata_9",  "menus_updata_10", "menus_updata_11",
    "menus_updata_12", "menus_updata_13", "menus_updata_14", "menus_updata_15",
};

// The key the state waits for (string keys): none but patience, OK to restart after a final
// state, OK or power in state 6, a long power press when done.
const char* keys_text(int picture) {
  if (picture == STATE_CONFIRM) return "menus_updata_keys_confirm";
  if (picture == STATE_DONE) return "menus_updata_keys_done";
  if (is_final(picture)) return "menus_updata_keys_restart";
  return "menus_updata_keys_wait";
}

uint32_t timer_id_reboot;  // the reboot request after a final state
bool restarting;           // the restart picture shows: the device restarts, nothing more here

void show_picture(widget_t* win, int picture) {
  char name[32];
  tk_snprintf(name, sizeof(name), "image_updata_%d", picture);
  printf("updata_image_name ======%s\n", name);
  image_set_image(widget_lookup(win, "image_updata", TRUE), name);
  widget_set_tr_text(widget_lookup(win, "label_updata", TRUE), STATE_TEXTS[picture]);
  widget_set_tr_text(widget_lookup(win, "label_updata_keys", TRUE), keys_text(picture));
}

// State 0: the card and the battery decide whether the upgrade may go on. A battery of exactly
// 730 decides nothing (the state stays 0); the check is sent in every case.
int check_card_and_battery() {
  uint32_t used = 0;
  uint32_t total = 0;
  const bool card_full = Get_StorageData(&used, &total) == 1;
  const int battery = stUIStatus.s16BatteryValue;
  int next = STATE_CHECKING;
  if (battery > BATTERY_EDGE) {
    next = card_full ? 1 : STATE_CHECKED;
    stUIStatus.s8Updata_check = card_full ? 1 : 0;
  } else if (battery < BATTERY_EDGE) {
    next = card_full ? 3 : 2;
    stUIStatus.s8Updata_check = card_full ? 1 : 2;
  }
  GUI_SEND_UPDATA_MSG(UPDATA_CHECK);
  return next;
}

int next_state(int state) {
  if (state == STATE_CHECKING) return check_card_and_battery();
  const int report = static_cast<unsigned char>(stUIStatus.s8Updata_state);
  for (const step_t& step : STEPS) {
    if (step.from == state && (step.report < 0 || step.report == report)) return step.to;
  }
  printf("Zavo_updata: upgrade report %d does not move state %d; waiting\n", report, state);
  return state;
}

ret_t on_updata_report(void* ctx, event_t* e) {
  (void)e;
  return Zavo_updata_index_switch(static_cast<widget_t*>(ctx));
}

ret_t on_reboot(const timer_info_t* timer) {
  (void)timer;
  timer_id_reboot = 0;
  GUI_SEND_BASIC_FUNCTION_MSG(BASIC_REBOOT);
  return RET_REMOVE;
}

void show_restart(widget_t* win) {
  restarting = true;
  show_picture(win, RESTART_PICTURE);
}

void send_confirmation(char declined) {
  stUIStatus.s8Updata_confirm = declined;
  GUI_SEND_UPDATA_MSG(UPDATA_CONFIRM);
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  const int state = Zavo_updata_index;
  switch (evt->key) {
    case GUI_KEY_FUCTION_S:
      if (restarting) break;  // the restart is on its way: asked once
      if (is_final(state)) {
        show_restart(win);
        timer_id_reboot = widget_add_timer(win, on_reboot, REBOOT_DELAY_MS);
      } else if (state == STATE_CONFIRM) {
        Zavo_updata_index = STATE_INSTALLING;
        show_picture(win, STATE_INSTALLING);
        send_confirmation(0);
      }
      break;
    case GUI_KEY_POWER_S:
      if (timer_id_reboot != 0) break;  // the reboot request is about to go out
      if (!restarting && state == STATE_CONFIRM) {
        show_restart(win);  // the device restarts after a declined upgrade
        send_confirmation(1);
      } else if (restarting || state == STATE_CHECKING || state == STATE_DONE || is_final(state)) {
        back_to_home();  // nothing runs on the device: the scope may be used again
      } else {
        printf("Zavo_updata: the upgrade is running (state %d), the power key waits\n", state);
      }
      break;
    case GUI_KEY_POWER_L:
      if (state == STATE_DONE) {
        widget_t* top = window_manager_get_top_window(window_manager());
        tk_snprintf(stUIStatus.temp_window, sizeof(stUIStatus.temp_window), "%s",
                    top != NULL && top->name != NULL ? top->name : "");
        navigator_to("Zavo_SHUT_DOWN");
      }
      break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_updata_index_switch(widget_t* win) {
  if (win == NULL) return RET_BAD_PARAMS;
  const int state = Zavo_updata_index;
  if (state < 0 || state >= STATE_COUNT) {
    printf("Zavo_updata: state %d is outside 0..14, starting over at 0\n", state);
    Zavo_updata_index = STATE_CHECKING;
  }
  Zavo_updata_index = static_cast<int16_t>(next_state(Zavo_updata_index));
  if (!restarting) show_picture(win, Zavo_updata_index);
  return RET_OK;
}

ret_t Zavo_updata_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  Zavo_updata_index = STATE_CHECKING;
  stUIStatus.s8Updata_check = 5;
  timer_id_reboot = 0;
  restarting = false;
  show_picture(win, Zavo_updata_index);
  widget_on(window_manager(), EVT_USER_START + int{SCREEN_EVT_UPDATA}, on_updata_report, win);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
