// "Zavo_Recoil_menu": recoil-activated video. The recoil of a shot starts a recording that keeps
// some seconds from before the shot and goes on for some seconds after it. Four rows: the switch,
// the seconds before, the seconds after and the trigger's sensitivity; each change is written to
// the settings record and sent as its recoil command.
#include <array>
#include <span>

#include "common/accessory_common.h"
#include "common/common_function.h"
#include "common/menu_rows.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/accessory_pages.h"
#include "pages/page_list.h"

// Selected row, 1..4; every opening starts on row 1.
uint8_t Zavo_Recoil_index = 1;

namespace {

constexpr const char* ROW_LABELS[] = {"label_recoil_switch", "label_recoil_before",
                                      "label_recoil_after", "label_recoil_sensitivity"};
constexpr menu_rows_t ROWS{"image_recoil_menu_sel", 560, ROW_LABELS};

// The offered seconds; a stored value between two steps moves to the next one up.
constexpr std::array<int, 4> BEFORE_SECONDS = {0, 5, 10, 15};
constexpr std::array<int, 6> AFTER_SECONDS = {5, 10, 15, 20, 25, 30};
// Sensitivity 0..2, by the text shown.
constexpr std::array<const char*, 3> SENSITIVITY_TEXTS = {
    "acc_sensitivity_low", "acc_sensitivity_medium", "acc_sensitivity_high"};

// The first offered value above `current`; past the last, the first.
char next_seconds(char current, std::span<const int> offered) {
  const int value = static_cast<uint8_t>(current);
  for (int s : offered) {
    if (s > value) return static_cast<char>(s);
  }
  return static_cast<char>(offered.front());
}

void draw_seconds(widget_t* win, const char* name, char seconds) {
  char text[16];
  tk_snprintf(text, sizeof(text), "%d s", static_cast<uint8_t>(seconds));
  accessory_set_text(win, name, text);
}

// A sensitivity the device stored outside 0..2 shows as its number until it is stepped.
void draw_sensitivity(widget_t* win) {
  const uint8_t level = static_cast<uint8_t>(stDevStatus.s8RecoilSensitivity);
  if (level < SENSITIVITY_TEXTS.size()) {
    accessory_set_tr(win, "label_recoil_sensitivity_value", SENSITIVITY_TEXTS[level]);
    return;
  }
  char text[8];
  tk_snprintf(text, sizeof(text), "%d", level);
  accessory_set_text(win, "label_recoil_sensitivity_value", text);
}

void draw_all(widget_t* win) {
  accessory_show_switch(win, "image_recoil_switch", stDevStatus.s8RecoilState != 0);
  draw_seconds(win, "label_recoil_before_value", stDevStatus.s8RecoilBefore);
  draw_seconds(win, "label_recoil_after_value", stDevStatus.s8RecoilAfter);
  draw_sensitivity(win);
}

ret_t visit_init_child(void* ctx, const void* iter) {
  (void)ctx;
  const widget_t* child = static_cast<const widget_t*>(iter);
  if (child->name != NULL && tk_str_eq(child->name, ROW_LABELS[0])) {
    widget_set_state(const_cast<widget_t*>(child), WIDGET_STATE_FOCUSED);
  }
  return RET_OK;
}

// Function on a row: the field first, then its command, then the row redrawn.
void act(widget_t* win, uint8_t row) {
  switch (row) {
    case 1:
      stDevStatus.s8RecoilState = stDevStatus.s8RecoilState != 0 ? 0 : 1;
      GUI_SEND_RECOIL_MSG(RECOIL_SWITCH);
      break;
    case 2:
      stDevStatus.s8RecoilBefore = next_seconds(stDevStatus.s8RecoilBefore, BEFORE_SECONDS);
      GUI_SEND_RECOIL_MSG(RECOIL_BEFORE);
      break;
    case 3:
      stDevStatus.s8RecoilAfter = next_seconds(stDevStatus.s8RecoilAfter, AFTER_SECONDS);
      GUI_SEND_RECOIL_MSG(RECOIL_AFTER);
      break;
    case 4: {
      const uint8_t level = static_cast<uint8_t>(stDevStatus.s8RecoilSensitivity);
      stDevStatus.s8RecoilSensitivity =
          static_cast<char>(level + 1u < SENSITIVITY_TEXTS.size() ? level + 1 : 0);
      GUI_SEND_RECOIL_MSG(RECOIL_SENSITIVITY);
      break;
    }
    default: return;
  }
  draw_all(win);
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_POWER_S: window_manager_back_to(window_manager(), "Zavo_home_page_1"); break;
    case GUI_KEY_FUCTION_L: navigator_back(); break;
    case GUI_KEY_PHOTO_S:
    case GUI_KEY_RANGE_S:
      Zavo_Recoil_index = static_cast<uint8_t>(menu_rows_step(ROWS, evt->key, Zavo_Recoil_index));
      menu_rows_focus(win, ROWS, Zavo_Recoil_index);
      break;
    case GUI_KEY_FUCTION_S: act(win, Zavo_Recoil_index); break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_Recoil_menu_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  Zavo_Recoil_index = 1;
  widget_foreach(win, visit_init_child, win);
  draw_all(win);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
