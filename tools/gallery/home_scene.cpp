// The observation screen driven on the host toolkit: see home_scene.h.
#include "home_scene.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msg.h"
#include "msg/msghandler.h"
#include "pages/Zavo_home_page_1.h"
#include "tk_testing.h"

bool home_scene_start(int key_base) {
  const int send_key = key_base + (static_cast<int>(getpid()) & 0xFFFFF) * 2;
  const std::string keys = std::to_string(send_key) + "," + std::to_string(send_key + 1);
  setenv(MSG_KEYS_ENV, keys.c_str(), 1);
  setenv("TK_HEADLESS", "1", 1);
  tk_testing_init();
  // The toolkit has just dropped every idle and timer: the link's hand-off starts afresh too.
  Inf_LinkReset();
  if (Inf_InitMsgEvent(msgEventCallback) != 0) {
    std::fprintf(stderr, "home_scene: the device link cannot start on queues %s\n", keys.c_str());
    return false;
  }
  return true;
}

void home_scene_stop(void) {
  Inf_DeinitMsgEvent();
}

void home_scene_records(void) {
  std::memset(&stDevStatus, 0, sizeof(stDevStatus));
  std::memset(&stUIStatus, 0, sizeof(stUIStatus));
  std::memset(&IR_Cursor, 0, sizeof(IR_Cursor));
  std::memset(&result_ball, 0, sizeof(result_ball));
  std::memset(info, 0, sizeof(info));
  home_state_forget();
  stUIStatus.event_distrubut_reday = 1;
  stUIStatus.s8IRZoom = 100;
  for (auto& group : IR_Cursor.group) {
    for (auto& zero : group.zero) {
      zero.s8IrCursorCurrentX = 640;
      zero.s8IrCursorCurrentY = 512;
    }
  }
  stDevStatus.s16RangeOffsetX = 640;
  stDevStatus.s16RangeOffsetY = 512;
  stDevStatus.s16LaserIndicatX = 640;
  stDevStatus.s16LaserIndicatY = 512;
}

widget_t* home_scene_open(void) {
  if (navigator_to("Zavo_home_page_1") != RET_OK) return NULL;
  tk_testing_advance(0);
  return widget_child(window_manager(), "Zavo_home_page_1");
}

void home_scene_settle(void) {
  for (int i = 0; i < 8; ++i) {
    tk_testing_advance(0);
    if (Inf_LinkIsIdle()) break;
  }
}

void home_scene_raise(int offset) {
  event_distrubution(EVT_USER_START + offset);
  home_scene_settle();
}
