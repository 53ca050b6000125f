// The device link's protocol: frame check and inbound dispatch. The hand-off to the UI thread is
// in msghandler_ui.cpp, the frame builders and senders in msghandler_send.cpp; what they share is
// in msghandler_internal.h.
#include "msg/msghandler.h"
#include "msg/msghandler_internal.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

#include <array>
#include <atomic>
#include <string>

#include "awtk.h"
#include "common/device_path.h"
#include "common/records_lock.h"
#include "common/status_records.h"

using namespace msghandler_internal;

namespace {

// Window names the dispatch looks at.
constexpr const char* HOME_WINDOW = "Zavo_home_page_1";
constexpr const char* UPDATA_WINDOW = "Zavo_updata";
constexpr const char* SHUT_DOWN_WINDOW = "Zavo_SHUT_DOWN";
constexpr const char* TIP_BALLISTIC_WINDOW = "Zavo_tip_ballistic";
constexpr const char* FIRST_LANGUAGE_FILE = "/usrdata/release/first_language.txt";

constexpr int RANGE_MEASURING = 3;  // s8RangeMode while continuous measuring runs

// Messages given to uiOperationControl, and those it dropped.
std::atomic<uint64_t> frames_received{0};
std::atomic<uint64_t> frames_dropped{0};

// Whether a firmware-update start notice came before: 0 none yet, 2 seen.
int16_t updata_notice_flag = 0;

}  // namespace

// ---------------------------------------------------------------------------------------------
// Frame counters and the update notice, for Inf_GetLinkStats and Inf_LinkReset.
// ---------------------------------------------------------------------------------------------
namespace msghandler_internal {

void reset_inbound() {
  frames_received.store(0);
  frames_dropped.store(0);
  updata_notice_flag = 0;
}

void read_frame_counts(Inf_LinkStats& st) {
  st.frames_received = frames_received.load(std::memory_order_relaxed);
  st.frames_dropped = frames_dropped.load(std::memory_order_relaxed);
}

}  // namespace msghandler_internal

// =============================================================================================
// Frame check
// =============================================================================================

uint8_t check_num(const uint8_t* bytes, int count) {
  unsigned sum = 0;
  for (int i = 0; i < count - 3; ++i)
    sum += bytes[i];
  return static_cast<uint8_t>(sum & 0xFF);
}

int32_t Protocol_parse(const uint8_t* frame) {
  const int L = frame[1];
  if (frame[0] != FRAME_HEADER) {
    std::puts("CMD_HEADER_0 ERROR");
    return -1;
  }
  if (frame[L] != check_num(frame, L + 3)) {
    std::puts("CMD_END_CHECK ERROR");
    return -1;
  }
  if (frame[L + 1] != FRAME_END_SEC) {
    std::puts("CMD_END_SEC ERROR");
    return -1;
  }
  if (frame[L + 2] != FRAME_END_FIR) {
    std::puts("CMD_END_FIR ERROR");
    return -1;
  }
  // A frame shorter than its fixed part would make the value count (L - 6) negative.
  if (L < 6) {
    std::printf("CMD_LENGTH ERROR: L=%d is below 6, frame dropped\n", L);
    return -1;
  }
  return 0;
}

// =============================================================================================
// Inbound handlers (listener thread): records first, then the screen event.
// =============================================================================================

namespace {

bool is_ready() {
  return stUIStatus.event_distrubut_reday != 0;
}

void basic_func(const uint8_t* frame) {
  switch (frame[4]) {
    case 38:  // wind speed
      stUIStatus.s16WindSpeed = le16(frame + 6);
      event_distrubution(EV_WIND);
      break;
    case BASIC_MENU_LEVEL:  // which screen is shown: answered at once
      stUIStatus.s8CurrentMenu = (top_window_name() == HOME_WINDOW) ? 0 : 1;
      GUI_SEND_BASIC_FUNCTION_MSG(BASIC_MENU_LEVEL);
      break;
    case 25:  // fill light over-temperature
      stUIStatus.s8LightOverheat = static_cast<char>(frame[6]);
      event_distrubution(EV_LIGHT_OVERHEAT);
      break;
    default: break;
  }
}

void IrInfo_func(const uint8_t* frame) {
  switch (frame[4]) {
    case INFRARED_BRIGHTLIGHT:
      stUIStatus.s8IrBrightLight = static_cast<char>(frame[6]);
      event_distrubution(EV_BRIGHT_LIGHT);
      break;
    case INFRARED_ZOOM:
      stUIStatus.s8IRZoom = le16(frame + 6);
      std::printf("stUIStatus.s8IRZoom = %d\n", stUIStatus.s8IRZoom);
      if (is_ready()) {
        event_distrubution(EV_ZOOM);
        event_distrubution(EV_ZOOM_CHANGED);
      }
      break;
    default: break;
  }
}

void RabgeValueRefressh_func(const uint8_t* frame) {
  if (frame[3] != 2) return;
  if (frame[6] == RANGE_RETURN_SUCCESE) {
    // The distance is the one big-endian value of the protocol.
    stUIStatus.s16Distance = static_cast<int16_t>(frame[7] * 256 + frame[8]);
    std::printf("stUIStatus.s16Distance==============%d\n", stUIStatus.s16Distance);
  } else if (frame[6] == RANGE_RETURN_FAIL) {
    std::puts("===============测距返回失败");
    stUIStatus.s16Distance = 0;
  }
  if (u8(stDevStatus.s8RangeType) != RANGE_CONTINUOUS || u8(stUIStatus.s8RangeMode) != 0) {
    event_distrubution(EV_DISTANCE);
  }
}

void wifi_func(const uint8_t* frame) {
  if (frame[3] != WIFI_CONNECT) return;
  stUIStatus.s8WifiConnection = static_cast<char>(frame[6]);
  event_distrubution(EV_WIFI_CONNECTION);
}

void compass_func(const uint8_t* frame) {
  if (frame[3] != 0) return;
  const int magnitude = frame[7] + frame[8] * 256;
  const int signed_value = frame[6] != 0 ? -magnitude : magnitude;
  switch (frame[4]) {
    case COMPASS_AZIMUTH_ANGLE:
      stUIStatus.s16CompassAzimuth = static_cast<int16_t>(magnitude);
      if (is_ready()) event_distrubution(EV_COMPASS_AZIMUTH);
      break;
    case COMPASS_PITCH_ANGLE:
      stUIStatus.s16CompassPitch = static_cast<int16_t>(signed_value);
      if (is_ready()) event_distrubution(EV_COMPASS_PITCH);
      break;
    case COMPASS_SLANT_ANGLE:
      stUIStatus.s16CompassSlant = static_cast<int16_t>(signed_value);
      if (is_ready()) event_distrubution(EV_COMPASS_SLANT);
      break;
    default: break;
  }
}

// ---- keys ----

struct KeyRow {
  const char* printed;
  uint8_t code;  // 0: nothing posted
  bool down;
  bool up;
};

constexpr std::array<KeyRow, KEY_NULL_MAX> KEY_TABLE = {{
    {"up short", GUI_KEY_FOCUS_UP_S, true, true},
    {"up long", GUI_KEY_FOCUS_UP_L, true, false},
    {"up long pop", GUI_KEY_FOCUS_UP_L, false, true},
    {"down short", GUI_KEY_FOCUS_DOWN_S, true, true},
    {"down long", GUI_KEY_FOCUS_DOWN_L, true, false},
    {"down long pop", GUI_KEY_FOCUS_DOWN_L, false, true},
    {"power short", GUI_KEY_POWER_S, true, true},
    {"power long", GUI_KEY_POWER_L, true, true},
    {"power long pop", GUI_KEY_POWER_L_POP, true, true},
    {"photo short", GUI_KEY_PHOTO_S, true, true},
    {"photo long", GUI_KEY_PHOTO_L, true, true},
    {"photo long pop", GUI_KEY_PHOTO_L_POP, true, true},
    {"fuction short", GUI_KEY_FUCTION_S, true, true},
    {"fuction long", GUI_KEY_FUCTION_L, true, true},
    {"fuction long pop", GUI_KEY_FUCTION_L_POP, true, true},
    {"range short", GUI_KEY_RANGE_S, true, true},
    {"range long", GUI_KEY_RANGE_L, true, true},
    {"range long POP", GUI_KEY_RANGE_L_POP, true, true},
    {"range fuction short", GUI_KEY_PHOTO_FUCTION_S, true, true},
    {"range fuction short", 0, false, false},
    {"range photo short", 0, false, false},
    {"up down long pop", 0, false, false},
}};

void power_short_rule() {
  if (top_window_name() == HOME_WINDOW && u8(stUIStatus.s8InterfaceState) == INTERFACE_OBSERVE) {
    // A recording runs: the observation screen keeps s8RecordingState at 1 exactly while its
    // recording clock ticks.
    if (u8(stUIStatus.s8RecordingState) == 1) {
      event_distrubution(EV_RECORD_TIP);
      return;
    }
    stUIStatus.s8InterfaceState = INTERFACE_AOD;
    GUI_SEND_BASIC_FUNCTION_MSG(BASIC_AUTO_SCREEN);
    if (u8(stUIStatus.s8LaserSwitch) == 1) {
      stUIStatus.s8LaserSwitch = 0;
      GUI_SEND_BASIC_FUNCTION_MSG(BASIC_LASER_SWITCH);
    }
    if (u8(stUIStatus.s8RangeMode) == RANGE_MEASURING) GUI_SEND_DISTANCE_FUNCTION_MSG(1, 0);
    return;
  }
  GUI_SEND_PARAM_FUNCTION_MSG(SAVE_ALLPARAM);
}

void power_long_rule() {
  std::string top = top_window_name();
  if (top == "Zavo_format_restart" || top == "Zavo_Restoring" || top == UPDATA_WINDOW) return;
  store_temp_window(top);
  Inf_LinkNavigate(SHUT_DOWN_WINDOW);
}

void key_func(uint8_t button) {
  if (button >= KEY_NULL_MAX) return;
  const KeyRow& row = KEY_TABLE[button];
  std::puts(row.printed);

  switch (button) {
    case KEY_POWER_S: power_short_rule(); break;
    case KEY_POWER_L: power_long_rule(); break;
    case KEY_RANGE_FUCTION_S:  // laser toggle
      if (top_window_name() == UPDATA_WINDOW) return;
      stUIStatus.s8LaserSwitch = u8(stUIStatus.s8LaserSwitch) == 0 ? 1 : 0;
      GUI_SEND_BASIC_FUNCTION_MSG(BASIC_LASER_SWITCH);
      return;
    case KEY_RANGE_PHOTO_S:  // shutter
      if (top_window_name() == UPDATA_WINDOW) return;
      if (u8(stUIStatus.s8UsbMode) == 1) {
        stUIStatus.s8UsbMode = 0;
        GUI_SEND_BASIC_FUNCTION_MSG(BASIC_USB_TYPE);
      }
      GUI_SEND_INFRARED_MSG(INFRARED_CORRECT);
      return;
    case KEY_UP_POWER_L:  // ballistic calculator, always the first profile
      if (top_window_name() == UPDATA_WINDOW) return;
      info[0].ballistics_sw = info[0].ballistics_sw == 0 ? 1 : 0;
      GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 0);
      if (info[0].ballistics_sw == 1 && u8(stUIStatus.s8RangeMode) != RANGE_MEASURING) {
        GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 0);
      }
      return;
    default: break;
  }

  if (row.code != 0) mail_key(row.code, row.down, row.up);

  if (button == KEY_FUCTION_L) GUI_SEND_PARAM_FUNCTION_MSG(SAVE_ALLPARAM);
}

void key_message(const uint8_t* frame) {
  std::puts("receive key message!");
  const uint8_t button = frame[6];
  if ((button == KEY_POWER_S || button == KEY_POWER_L) &&
      u8(stUIStatus.s8InterfaceState) == INTERFACE_AOD && top_window_name() == HOME_WINDOW) {
    // The dark screen only wakes up.
    stUIStatus.s8InterfaceState = INTERFACE_OBSERVE;
    GUI_SEND_BASIC_FUNCTION_MSG(BASIC_AUTO_SCREEN);
    return;
  }
  key_func(button);
}

void battery_func(const uint8_t* frame) {
  switch (frame[4]) {
    case BATTERY_VALUE:
      stUIStatus.s16BatteryValue = le16(frame + 6);
      std::printf("battery is %d\n", stUIStatus.s16BatteryValue);
      if (is_ready()) event_distrubution(EV_BATTERY);
      break;
    case BATTERY_TYPE:
      stUIStatus.s8BatteryType = static_cast<char>(frame[6]);
      if (is_ready()) {
        event_distrubution(EV_BATTERY_TYPE);
        event_distrubution(EV_BATTERY);
      }
      break;
    default: break;
  }
}

// Clears the record and copies the frame's values into it, never past its end.
void load_record(void* record, size_t size, const uint8_t* values, int count, const char* what) {
  std::memset(record, 0, size);
  size_t n = static_cast<size_t>(count);
  if (n > size) {
    std::printf("parameter_func: %s payload of %zu bytes cut to the record's %zu\n", what, n, size);
    n = size;
  }
  std::memcpy(record, values, n);
}

bool profile_index_ok(int index) {
  if (index <= PROFILE_LAST) return true;
  std::printf("parameter_func: profile index %d is outside 0..%d, frame dropped\n", index,
              PROFILE_LAST);
  return false;
}

void first_language_check() {
  std::string path = device_path(FIRST_LANGUAGE_FILE);
  if (access(path.c_str(), F_OK) == 0) {
    std::puts("####################first_language_file exit!");
    stUIStatus.s8FirstLanguageFlag = 1;
    if (std::remove(path.c_str()) != 0)
      std::printf("Error: file remove  %s\n", std::strerror(errno));
  } else {
    // Every profile load asks again, and the first one of a first start has already taken the
    // marker: the flag keeps its value (0 from start) so that the boot logo, opened once all
    // five profiles are in, still sees the first start.
    std::puts("#############first_language_file not exit!");
  }
}

void parameter_func(const uint8_t* frame) {
  const int count = frame[1] - 6;
  const uint8_t* values = frame + 6;
  const int index = frame[4];
  switch (frame[3]) {
    case BASIC_PARAM:
      load_record(&stDevStatus, sizeof(stDevStatus), values, count, "settings");
      std::printf("stDevStatus.s8RecoilSensitivity ======= %d\n\n\n\n\n",
                  stDevStatus.s8RecoilSensitivity);
      break;
    case RETICLE_PARAM: load_record(&IR_Cursor, sizeof(IR_Cursor), values, count, "zeroing"); break;
    case BALLISTIC_PARM_midway: {
      if (!profile_index_ok(index)) return;
      stDevStatus.s8BallisticGroup = static_cast<char>(index);
      load_record(&info[index], sizeof(info[index]), values, count, "ballistic profile");
      if (info[0].ballistics_sw == 1 && u8(stUIStatus.s8RangeMode) != RANGE_MEASURING) {
        GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 0);
      }
      std::string top = top_window_name();
      if (top != TIP_BALLISTIC_WINDOW && u8(stUIStatus.s8InterfaceState) == INTERFACE_OBSERVE) {
        store_temp_window(top);
        Inf_LinkNavigate(TIP_BALLISTIC_WINDOW);
      }
      event_distrubution(EV_BALLISTIC_PROFILE);
      break;
    }
    case BALLISTIC_PARM:
      if (!profile_index_ok(index)) return;
      load_record(&info[index], sizeof(info[index]), values, count, "ballistic profile");
      std::printf("info.gun.bullet.length  ======%.02f\n", info[index].gun.bullet.length);
      first_language_check();
      if (index == PROFILE_LAST) stUIStatus.event_distrubut_reday = 1;
      break;
    default: break;
  }
}

void Reticle_PositionSet_func(const uint8_t* frame) {
  const int16_t value = le16(frame + 6);
  const int axis = frame[4];  // 1: x, 2: y
  switch (frame[3]) {
    case RETICLE_POSITION:
      if (axis == 1) stDevStatus.s16ReticlePositionX = value;
      if (axis == 2) stDevStatus.s16ReticlePositionY = value;
      std::printf("stDevStatus.s16ReticlePositionX=== %d stDevStatus.s16ReticlePositionY===%d\n",
                  stDevStatus.s16ReticlePositionX, stDevStatus.s16ReticlePositionY);
      event_distrubution(EV_RETICLE_POSITION);
      break;
    case RETICLE_LASER_POSITION:
      if (axis == 1) stDevStatus.s16LaserIndicatX = value;
      if (axis == 2) stDevStatus.s16LaserIndicatY = value;
      std::printf("stDevStatus.s16LaserIndicatX=== %d stDevStatus.s16LaserIndicatY===%d\n",
                  stDevStatus.s16LaserIndicatX, stDevStatus.s16LaserIndicatY);
      event_distrubution(EV_LASER_MARKER_MOVE);
      break;
    case RETICLE_RANGE_POSITION:
      if (axis == 1) stDevStatus.s16RangeOffsetX = value;
      if (axis == 2) stDevStatus.s16RangeOffsetY = value;
      std::printf("stDevStatus.s16RangeOffsetX=== %d stDevStatus.s16RangeOffsetY===%d\n",
                  stDevStatus.s16RangeOffsetX, stDevStatus.s16RangeOffsetY);
      event_distrubution(EV_RANGE_MARKER_MOVE);
      break;
    default: break;
  }
}

void tap_func(const uint8_t* frame) {
  switch (frame[4]) {
    case TAP_PROCESS: {
      const uint64_t frames = le64(frame + 6);
      stUIStatus.u64VideoCurrentFrames = frames;
      stUIStatus.u64VideoForwardFrames = frames;
      std::printf("\n\n\n get frams = %ld!\n", static_cast<long>(frames));
      event_distrubution(EV_PLAY_POSITION);
      break;
    }
    case TAP_TOTAL_TIME: {
      stUIStatus.u64VideoTotalFrames = le64(frame + 6);
      const uint16_t rate = static_cast<uint16_t>(frame[14] | (frame[15] << 8));
      if (rate != 0) stUIStatus.u8VideoCurrentFrames = rate;
      event_distrubution(EV_PLAY_LENGTH);
      break;
    }
    default: break;
  }
}

void blind_func(const uint8_t* frame) {
  if (frame[3] == BLIND_SAVE) stUIStatus.s8BlindSaveStatus = static_cast<char>(frame[6]);
}

void gg_func(const uint8_t* frame) {
  switch (frame[3]) {
    case GG_CLEAR:
      stUIStatus.s8GGClearStatus = static_cast<char>(frame[6]);
      event_distrubution(EV_GG_CLEAR);
      break;
    case GG_GET:
      stUIStatus.s8GGGetStatus = static_cast<char>(frame[6]);
      event_distrubution(EV_GG_GET);
      break;
    case GG_SAVE:
      stUIStatus.s8GGSaveStatus = static_cast<char>(frame[6]);
      event_distrubution(EV_GG_SAVE);
      break;
    default: break;
  }
}

void updata_func(const uint8_t* frame) {
  switch (frame[3]) {
    case UPDATA_STATE: stUIStatus.s8Updata_state = static_cast<char>(frame[6]); break;
    case UPDATA_RESULT: stUIStatus.s8Updata_result = static_cast<char>(frame[6]); break;
    case UPDATA_START_NOTICE:
      if (updata_notice_flag == 0) {
        updata_notice_flag = 2;
        if (u8(stUIStatus.s8BlindSwitch) != 0) {
          stUIStatus.s8BlindSwitch = 0;
          GUI_SEND_BLIND_MSG(BLIND_CURSOR_SWITCH);
        }
        Inf_LinkNavigate(UPDATA_WINDOW);
        records_sleep_ms(1000);
      } else {
        stUIStatus.s8Updata_check = 3;
        GUI_SEND_UPDATA_MSG(UPDATA_CHECK);
      }
      break;
    default: break;
  }
  event_distrubution(EV_UPDATA);
}

void ballistic_func(const uint8_t* frame) {
  result_ball.moaV = frame_float(frame + 6);
  result_ball.moaH = frame_float(frame + 10);
  event_distrubution(EV_BALLISTIC_RESULT);
}

void wind_info_func(const uint8_t* frame) {
  stUIStatus.wind_connect_state = static_cast<char>(frame[6]);
  std::printf("stUIStatus.wind_connect_state = %d\n", stUIStatus.wind_connect_state);
}

}  // namespace

void uiOperationControl(uint8_t* frame, uint32_t length) {
  (void)length;  // the frame carries its own length
  if (Protocol_parse(frame) != 0 || frame[2] > FRAME_TYPE_MAX) {
    frames_dropped.fetch_add(1, std::memory_order_relaxed);
    return;
  }
  switch (frame[2]) {
    case 0: basic_func(frame); break;
    case 1: IrInfo_func(frame); break;
    case 4: RabgeValueRefressh_func(frame); break;
    case 5: wifi_func(frame); break;
    case 6: compass_func(frame); break;
    case 7: key_message(frame); break;
    case 15: battery_func(frame); break;
    case 16: parameter_func(frame); break;
    case 22: Reticle_PositionSet_func(frame); break;
    case 23: tap_func(frame); break;
    case 24: blind_func(frame); break;
    case 25: gg_func(frame); break;
    case 26: updata_func(frame); break;
    case 27: ballistic_func(frame); break;
    case 28: event_distrubution(EV_RECOIL_TRIGGERED); break;
    case 29: wind_info_func(frame); break;
    default: break;
  }
}

void msgEventCallback(Inf_MsgText* text, void* ctx) {
  (void)ctx;
  if (text->type != MSG_TYPE_FRAMED) return;
  frames_received.fetch_add(1, std::memory_order_relaxed);
  uiOperationControl(text->context, text->length);
  mail_kick();
}
