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
#include <span>
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
constexpr const char* USB_WINDOW = "Zavo_USB";
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
//
// A handler sees the frame's bytes 0 .. L-1 (header to the last value byte) and reads no byte
// beyond: before it reads a value it checks that the frame carries it. A frame too short for
// what its handler reads is ignored with one line and changes nothing.
// =============================================================================================

namespace {

constexpr size_t VALUES = 6;  // offset of the first value byte

bool is_ready() {
  return stUIStatus.event_distrubut_reday != 0;
}

// True when `f` carries `count` value bytes; otherwise the one line for a short frame.
bool carries(FrameBytes f, size_t count, const char* handler) {
  const size_t have = f.size() - VALUES;
  if (have >= count) return true;
  std::printf("%s: frame type %u command %u sub %u carries %zu of its %zu value bytes; ignored\n",
              handler, f[2], f[3], f[4], have, count);
  return false;
}

// Values of a frame that carries them (see carries): little-endian, one deliberate exception.
uint8_t value8(FrameBytes f, size_t index) {
  return f[VALUES + index];
}
int16_t value16(FrameBytes f, size_t index) {
  return static_cast<int16_t>(f[VALUES + index] | (f[VALUES + index + 1] << 8));
}
uint64_t value64(FrameBytes f, size_t index) {
  uint64_t v = 0;
  for (size_t i = 8; i-- > 0;)
    v = (v << 8) | f[VALUES + index + i];
  return v;
}

void basic_func(FrameBytes f) {
  switch (f[4]) {
    case 38:  // wind speed
      if (!carries(f, 2, "basic_func")) return;
      stUIStatus.s16WindSpeed = value16(f, 0);
      event_distrubution(EV_WIND);
      break;
    case BASIC_MENU_LEVEL:  // which screen is shown: answered at once
      stUIStatus.s8CurrentMenu = (top_window_name() == HOME_WINDOW) ? 0 : 1;
      GUI_SEND_BASIC_FUNCTION_MSG(BASIC_MENU_LEVEL);
      break;
    case 25:  // fill light over-temperature
      if (!carries(f, 1, "basic_func")) return;
      stUIStatus.s8LightOverheat = static_cast<char>(value8(f, 0));
      event_distrubution(EV_LIGHT_OVERHEAT);
      break;
    default: break;
  }
}

void IrInfo_func(FrameBytes f) {
  switch (f[4]) {
    case INFRARED_BRIGHTLIGHT:
      if (!carries(f, 1, "IrInfo_func")) return;
      stUIStatus.s8IrBrightLight = static_cast<char>(value8(f, 0));
      event_distrubution(EV_BRIGHT_LIGHT);
      break;
    case INFRARED_ZOOM:
      if (!carries(f, 2, "IrInfo_func")) return;
      stUIStatus.s8IRZoom = value16(f, 0);
      std::printf("stUIStatus.s8IRZoom = %d\n", stUIStatus.s8IRZoom);
      if (is_ready()) {
        event_distrubution(EV_ZOOM);
        event_distrubution(EV_ZOOM_CHANGED);
      }
      break;
    default: break;
  }
}

void RabgeValueRefressh_func(FrameBytes f) {
  if (f[3] != 2) return;
  if (!carries(f, 1, "RabgeValueRefressh_func")) return;
  if (value8(f, 0) == RANGE_RETURN_SUCCESE) {
    if (!carries(f, 3, "RabgeValueRefressh_func")) return;
    // The distance is the one big-endian value of the protocol.
    stUIStatus.s16Distance = static_cast<int16_t>(value8(f, 1) * 256 + value8(f, 2));
    std::printf("stUIStatus.s16Distance==============%d\n", stUIStatus.s16Distance);
  } else if (value8(f, 0) == RANGE_RETURN_FAIL) {
    std::puts("===============测距返回失败");
    stUIStatus.s16Distance = 0;
  }
  if (u8(stDevStatus.s8RangeType) != RANGE_CONTINUOUS || u8(stUIStatus.s8RangeMode) != 0) {
    event_distrubution(EV_DISTANCE);
  }
}

void wifi_func(FrameBytes f) {
  if (f[3] != WIFI_CONNECT) return;
  if (!carries(f, 1, "wifi_func")) return;
  stUIStatus.s8WifiConnection = static_cast<char>(value8(f, 0));
  event_distrubution(EV_WIFI_CONNECTION);
}

void compass_func(FrameBytes f) {
  if (f[3] != 0) return;
  if (f[4] > COMPASS_SLANT_ANGLE) return;
  if (!carries(f, 3, "compass_func")) return;  // sign byte, then the magnitude
  const int magnitude = value8(f, 1) + value8(f, 2) * 256;
  const int signed_value = value8(f, 0) != 0 ? -magnitude : magnitude;
  switch (f[4]) {
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

void key_message(FrameBytes f) {
  std::puts("receive key message!");
  if (!carries(f, 1, "key_message")) return;
  const uint8_t button = value8(f, 0);
  if ((button == KEY_POWER_S || button == KEY_POWER_L) &&
      u8(stUIStatus.s8InterfaceState) == INTERFACE_AOD && top_window_name() == HOME_WINDOW) {
    // The dark screen only wakes up.
    stUIStatus.s8InterfaceState = INTERFACE_OBSERVE;
    GUI_SEND_BASIC_FUNCTION_MSG(BASIC_AUTO_SCREEN);
    return;
  }
  key_func(button);
}

void battery_func(FrameBytes f) {
  switch (f[4]) {
    case BATTERY_VALUE:
      if (!carries(f, 2, "battery_func")) return;
      stUIStatus.s16BatteryValue = value16(f, 0);
      stUIStatus.s8BatteryReported = 1;
      std::printf("battery is %d\n", stUIStatus.s16BatteryValue);
      if (is_ready()) event_distrubution(EV_BATTERY);
      break;
    case BATTERY_TYPE:
      if (!carries(f, 1, "battery_func")) return;
      stUIStatus.s8BatteryType = static_cast<char>(value8(f, 0));
      if (is_ready()) {
        event_distrubution(EV_BATTERY_TYPE);
        event_distrubution(EV_BATTERY);
      }
      // USB power (a computer) while the scope is in USB mode 1: the USB screen shows until the
      // connection ends (it closes itself then).
      if (u8(stUIStatus.s8BatteryType) == 1 && u8(stUIStatus.s8UsbMode) == 1 &&
          top_window_name() != USB_WINDOW) {
        Inf_LinkNavigate(USB_WINDOW);
      }
      break;
    default: break;
  }
}

// Clears the record and copies the frame's values into it, never past its end.
void load_record(void* record, size_t size, std::span<const uint8_t> values, const char* what) {
  std::memset(record, 0, size);
  size_t n = values.size();
  if (n > size) {
    std::printf("parameter_func: %s payload of %zu bytes cut to the record's %zu\n", what, n, size);
    n = size;
  }
  std::memcpy(record, values.data(), n);
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

// A record load copies the L - 6 value bytes the frame carries, however many (none included).
void parameter_func(FrameBytes f) {
  const std::span<const uint8_t> values = f.subspan(VALUES);
  const int index = f[4];
  switch (f[3]) {
    case BASIC_PARAM:
      load_record(&stDevStatus, sizeof(stDevStatus), values, "settings");
      std::printf("stDevStatus.s8RecoilSensitivity ======= %d\n\n\n\n\n",
                  stDevStatus.s8RecoilSensitivity);
      break;
    case RETICLE_PARAM: load_record(&IR_Cursor, sizeof(IR_Cursor), values, "zeroing"); break;
    case BALLISTIC_PARM_midway: {
      if (!profile_index_ok(index)) return;
      stDevStatus.s8BallisticGroup = static_cast<char>(index);
      load_record(&info[index], sizeof(info[index]), values, "ballistic profile");
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
      load_record(&info[index], sizeof(info[index]), values, "ballistic profile");
      std::printf("info.gun.bullet.length  ======%.02f\n", info[index].gun.bullet.length);
      first_language_check();
      if (index == PROFILE_LAST) stUIStatus.event_distrubut_reday = 1;
      break;
    default: break;
  }
}

void Reticle_PositionSet_func(FrameBytes f) {
  if (f[3] != RETICLE_POSITION && f[3] != RETICLE_LASER_POSITION &&
      f[3] != RETICLE_RANGE_POSITION) {
    return;
  }
  if (!carries(f, 2, "Reticle_PositionSet_func")) return;
  const int16_t value = value16(f, 0);
  const int axis = f[4];  // 1: x, 2: y
  switch (f[3]) {
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

void tap_func(FrameBytes f) {
  switch (f[4]) {
    case TAP_PROCESS: {
      if (!carries(f, 8, "tap_func")) return;
      const uint64_t frames = value64(f, 0);
      stUIStatus.u64VideoCurrentFrames = frames;
      stUIStatus.u64VideoForwardFrames = frames;
      std::printf("\n\n\n get frams = %ld!\n", static_cast<long>(frames));
      event_distrubution(EV_PLAY_POSITION);
      break;
    }
    case TAP_TOTAL_TIME: {
      if (!carries(f, 8, "tap_func")) return;
      stUIStatus.u64VideoTotalFrames = value64(f, 0);
      // The frame rate divisor is optional: only a frame that carries it (L of 16 or more) and
      // says something other than 0 changes it.
      if (f.size() >= VALUES + 10) {
        const uint16_t rate = static_cast<uint16_t>(value16(f, 8));
        if (rate != 0) stUIStatus.u8VideoCurrentFrames = rate;
      }
      event_distrubution(EV_PLAY_LENGTH);
      break;
    }
    default: break;
  }
}

void blind_func(FrameBytes f) {
  if (f[3] != BLIND_SAVE) return;
  if (!carries(f, 1, "blind_func")) return;
  stUIStatus.s8BlindSaveStatus = static_cast<char>(value8(f, 0));
}

void gg_func(FrameBytes f) {
  if (f[3] > GG_SAVE) return;
  if (!carries(f, 1, "gg_func")) return;
  const char status = static_cast<char>(value8(f, 0));
  switch (f[3]) {
    case GG_CLEAR:
      stUIStatus.s8GGClearStatus = status;
      event_distrubution(EV_GG_CLEAR);
      break;
    case GG_GET:
      stUIStatus.s8GGGetStatus = status;
      event_distrubution(EV_GG_GET);
      break;
    case GG_SAVE:
      stUIStatus.s8GGSaveStatus = status;
      event_distrubution(EV_GG_SAVE);
      break;
    default: break;
  }
}

void updata_func(FrameBytes f) {
  switch (f[3]) {
    case UPDATA_STATE:
      if (!carries(f, 1, "updata_func")) return;
      stUIStatus.s8Updata_state = static_cast<char>(value8(f, 0));
      break;
    case UPDATA_RESULT:
      if (!carries(f, 1, "updata_func")) return;
      stUIStatus.s8Updata_result = static_cast<char>(value8(f, 0));
      break;
    case UPDATA_START_NOTICE:
      if (updata_notice_flag == 0) {
        updata_notice_flag = 2;
        if (u8(stUIStatus.s8BlindSwitch) != 0) {
          stUIStatus.s8BlindSwitch = 0;
          GUI_SEND_BLIND_MSG(BLIND_CURSOR_SWITCH);
        }
        Inf_LinkNavigate(UPDATA_WINDOW);
        // The update page opens meanwhile: the records are released while the listener waits.
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

void ballistic_func(FrameBytes f) {
  if (!carries(f, 8, "ballistic_func")) return;
  result_ball.moaV = frame_float(f.subspan(VALUES, 4).data());
  result_ball.moaH = frame_float(f.subspan(VALUES + 4, 4).data());
  event_distrubution(EV_BALLISTIC_RESULT);
}

void wind_info_func(FrameBytes f) {
  if (!carries(f, 1, "wind_info_func")) return;
  stUIStatus.wind_connect_state = static_cast<char>(value8(f, 0));
  std::printf("stUIStatus.wind_connect_state = %d\n", stUIStatus.wind_connect_state);
}

}  // namespace

void uiOperationControl(uint8_t* frame, uint32_t length) {
  (void)length;  // the frame carries its own length
  if (Protocol_parse(frame) != 0 || frame[2] > FRAME_TYPE_MAX) {
    frames_dropped.fetch_add(1, std::memory_order_relaxed);
    return;
  }
  uiOperationDispatch(FrameBytes(frame, frame[1]));
}

void uiOperationDispatch(FrameBytes f) {
  switch (f[2]) {
    case 0: basic_func(f); break;
    case 1: IrInfo_func(f); break;
    case 4: RabgeValueRefressh_func(f); break;
    case 5: wifi_func(f); break;
    case 6: compass_func(f); break;
    case 7: key_message(f); break;
    case 15: battery_func(f); break;
    case 16: parameter_func(f); break;
    case 22: Reticle_PositionSet_func(f); break;
    case 23: tap_func(f); break;
    case 24: blind_func(f); break;
    case 25: gg_func(f); break;
    case 26: updata_func(f); break;
    case 27: ballistic_func(f); break;
    case 28: event_distrubution(EV_RECOIL_TRIGGERED); break;
    case 29: wind_info_func(f); break;
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
