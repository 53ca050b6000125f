// The device link's outbound side: the frame builders and every GUI_SEND_* sender.
#include "msg/msghandler.h"
#include "msg/msghandler_internal.h"

#include <cstdio>
#include <cstring>

#include <array>
#include <mutex>

#include "awtk.h"
#include "common/records_lock.h"
#include "common/status_records.h"

using namespace msghandler_internal;

namespace {

constexpr uint8_t SUB_NONE = 0xFF;  // sub-command byte of frames that carry none

// ---------------------------------------------------------------------------------------------
// Shared float buffer: a float overlaid on its four bytes. It also keeps the last float sent,
// which BALLISTIC_BULLET_INFO sends again for items past the bullet's fields. The inbound
// solution goes through it too; a lock keeps the two threads from tearing it.
// ---------------------------------------------------------------------------------------------
union {
  float f;
  uint8_t bytes[4];
} data;
std::mutex data_lock;

uint32_t timer_id_shutter = 0;

}  // namespace

namespace msghandler_internal {

// The inbound ballistic solution's floats.
float frame_float(const uint8_t* p) {
  std::lock_guard<std::mutex> guard(data_lock);
  for (int i = 0; i < 4; ++i)
    data.bytes[i] = p[i];
  return data.f;
}

void reset_senders() {
  timer_id_shutter = 0;
}

}  // namespace msghandler_internal

// =============================================================================================
// Outbound: frame builders
// =============================================================================================

int32_t Msgtext_Ui_To_App(uint8_t type, int32_t length, const uint8_t* frame) {
  if (Inf_SendMsgEvent(type, 0xFF, frame, length) != 0) {
    std::puts("Ui to App Send failed");
    return -1;
  }
  std::printf("InfMsgEvent_Ui_To_App:  ");
  for (int i = 0; i < length; ++i)
    std::printf("[%02x] ", frame[i]);
  std::printf("\n");
  return 1;
}

namespace {

// Lays out header, L, the given bytes 2..L-1, checksum and trailer, and sends the frame.
int32_t send_frame(const uint8_t* body, int body_size) {
  std::array<uint8_t, 3 + 255> frame{};
  const int L = 2 + body_size;
  frame[0] = FRAME_HEADER;
  frame[1] = static_cast<uint8_t>(L);
  std::memcpy(frame.data() + 2, body, static_cast<size_t>(body_size));
  frame[L] = check_num(frame.data(), L + 3);
  frame[L + 1] = FRAME_END_SEC;
  frame[L + 2] = FRAME_END_FIR;
  return Msgtext_Ui_To_App(1, L + 3, frame.data());
}

}  // namespace

int32_t BasicFunctionHandlerToApp(const uint8_t* bytes) {
  const uint8_t body[5] = {bytes[0], bytes[1], bytes[2], 0, bytes[3]};
  return send_frame(body, sizeof(body));
}

int32_t InfHandlerToApp(const uint8_t* bytes) {
  const uint8_t body[6] = {bytes[0], bytes[1], bytes[2], 0, bytes[3], bytes[4]};
  return send_frame(body, sizeof(body));
}

int32_t cliponPositionHandlerToApp(const uint8_t* bytes) {
  const uint8_t body[8] = {bytes[0], bytes[1], bytes[2], 0, bytes[3], bytes[4], bytes[5], bytes[6]};
  return send_frame(body, sizeof(body));
}

int32_t VideoFrameHandlerToApp(const uint8_t* bytes) {
  uint8_t body[12] = {bytes[0], 1, bytes[1], 0};
  std::memcpy(body + 4, bytes + 2, 8);
  return send_frame(body, sizeof(body));
}

int32_t UIreadyToApp(uint8_t type, uint8_t value) {
  const uint8_t body[5] = {type, 0, 0, 0, value};
  return send_frame(body, sizeof(body));
}

// =============================================================================================
// Outbound: senders. Each reads the record field named by its index at the time of the call.
// =============================================================================================

namespace {

uint8_t byte_of(char c) {
  return static_cast<uint8_t>(c);
}

void send_basic(uint8_t index, uint8_t value) {
  const uint8_t bytes[4] = {0, 0, index, value};
  BasicFunctionHandlerToApp(bytes);
}

ret_t on_timer_ui_to_app(const timer_info_t* timer) {
  (void)timer;
  send_basic(BASIC_VIDEO_MODE, byte_of(stDevStatus.s8VideoMode));
  return RET_REMOVE;
}

void start_video_mode_timer() {
  timer_add(on_timer_ui_to_app, nullptr, 100);
}

ret_t on_timer_shutter_close(const timer_info_t* timer) {
  (void)timer;
  stUIStatus.s8ShutterState = 0;
  timer_id_shutter = 0;
  event_distrubution(EV_SHUTTER);
  return RET_REMOVE;
}

void start_shutter_timer() {
  // One shutter timer at a time: a second press while it runs does not start another.
  if (timer_id_shutter == 0) timer_id_shutter = timer_add(on_timer_shutter_close, nullptr, 500);
}

}  // namespace

int32_t GUI_SEND_BASIC_FUNCTION_MSG(uint8_t index) {
  switch (index) {
    case BASIC_VIDEO_MODE:
      event_distrubution(EV_RETICLE_SWITCH);
      event_distrubution(EV_ZOOM);
      // The picture-in-picture mode decides the magnification too (3: shown at 1.00).
      event_distrubution(EV_ZOOM_CHANGED);
      run_on_ui_thread(start_video_mode_timer);
      break;
    case BASIC_INFO_DISPLAY_MODE: send_basic(index, byte_of(stDevStatus.s8ConciseMode)); break;
    case BASIC_SCREEN_LIGHT: send_basic(index, byte_of(stDevStatus.s8ScreenBrightness)); break;
    case BASIC_CVBS_MODE: send_basic(index, byte_of(stDevStatus.s8VideoOut)); break;
    case BASIC_RESET_MODE:
    case BASIC_STORAGE_FORMAT:
    case BASIC_SHUT_DOWN:
    case BASIC_REBOOT: send_basic(index, 1); break;
    case BASIC_AUTO_SCREEN:
      send_basic(index, byte_of(stUIStatus.s8InterfaceState));
      event_distrubution(EV_STANDBY);
      break;
    case 16: send_basic(index, byte_of(stDevStatus.s8Language)); break;
    case 17: send_basic(index, byte_of(stDevStatus.s8SortType)); break;
    case BASIC_USB_TYPE: send_basic(index, byte_of(stUIStatus.s8UsbMode)); break;
    case 19: send_basic(index, byte_of(stUIStatus.s8PowerSwitch)); break;
    case 21: send_basic(index, byte_of(stDevStatus.s8UseMode)); break;
    case BASIC_LASER_SWITCH:
      send_basic(index, byte_of(stUIStatus.s8LaserSwitch));
      event_distrubution(EV_LASER_SWITCH);
      break;
    case 23: send_basic(index, byte_of(stDevStatus.s8FillLightSwitch)); break;
    case 24: send_basic(index, byte_of(stDevStatus.s8FillLightBright)); break;
    case BASIC_MICRO:
      send_basic(index, byte_of(stDevStatus.s8MicroSwitch));
      event_distrubution(EV_MICRO_SWITCH);
      break;
    case 30: {
      // The one basic frame whose command byte is not 0.
      const uint8_t bytes[4] = {0, 30, SUB_NONE, 0};
      BasicFunctionHandlerToApp(bytes);
      break;
    }
    case 33:
      send_basic(index, byte_of(stDevStatus.s8CompassSwitch));
      event_distrubution(EV_COMPASS_SWITCH);
      break;
    case BASIC_WIND_SWITCH:
      stUIStatus.s16WindSpeed = 0;
      send_basic(index, byte_of(stUIStatus.s8WindSwitch));
      event_distrubution(EV_WIND);
      break;
    case 35: send_basic(index, byte_of(stUIStatus.s8WindCountSwitch)); break;
    case BASIC_RANGE_TYPE: send_basic(index, byte_of(stDevStatus.s8RangeType)); break;
    case 37:
      send_basic(index, byte_of(stDevStatus.s8DistanceUint));
      event_distrubution(EV_DISTANCE);
      break;
    case BASIC_MENU_LEVEL: send_basic(index, byte_of(stUIStatus.s8CurrentMenu)); break;
    default: break;  // 1..5, 9, 10, 15, 20, 25, 27..29, 31, 38 and above 39 send nothing
  }
  return 0;
}

int32_t GUI_SEND_CLIPON_POSITION_MSG(uint8_t index) {
  if (index != 20) return 0;
  uint8_t bytes[7] = {0, 0, 20};
  put_le16(bytes + 3, stDevStatus.s16CliponPositionX);
  put_le16(bytes + 5, stDevStatus.s16CliponPositionY);
  cliponPositionHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_PARAM_FUNCTION_MSG(uint8_t index) {
  if (index != SAVE_ALLPARAM) return 0;
  const uint8_t bytes[4] = {16, SAVE_ALLPARAM, 0, 0};
  BasicFunctionHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_INFRARED_MSG(uint8_t index) {
  uint8_t bytes[5] = {1, INFRARED_BASIC, index, 0, 0};
  switch (index) {
    case INFRARED_CORRECT:
      bytes[1] = INFRARED_CORRECT_TYPE;
      bytes[2] = 0;
      bytes[3] = byte_of(stDevStatus.s8CorrectType);
      InfHandlerToApp(bytes);
      stUIStatus.s8ShutterState = 1;
      event_distrubution(EV_SHUTTER);
      run_on_ui_thread(start_shutter_timer);
      if (u8(stUIStatus.s8Irfreeze) == 1) event_distrubution(EV_FREEZE);
      return 0;
    case INFRARED_LIGHT: bytes[3] = byte_of(stDevStatus.s8IrBrightness); break;
    case INFRARED_CONTRACT: bytes[3] = byte_of(stDevStatus.s8IrContrast); break;
    case INFRARED_ENHANCE: bytes[3] = byte_of(stDevStatus.s8IrEnchance); break;
    case INFRARED_POLARITY:
      bytes[3] = byte_of(stDevStatus.s8IrPolarity);
      InfHandlerToApp(bytes);
      event_distrubution(EV_POLARITY);
      return 0;
    case INFRARED_CORRECT_TYPE_CHOOSE: bytes[3] = byte_of(stDevStatus.s8CorrectType); break;
    case INFRARED_LIGHTPAOTECT: bytes[3] = byte_of(stDevStatus.s8Stronglight_protect); break;
    case INFRARED_SCENE: bytes[3] = byte_of(stDevStatus.s8IrScene); break;
    case INFRARED_FREEZE: bytes[3] = byte_of(stUIStatus.s8Irfreeze); break;
    case INFRARED_HOTTRACK: bytes[3] = byte_of(stDevStatus.s8HotTrack); break;
    case INFRARED_AUTOSHUTTER: bytes[3] = byte_of(stDevStatus.s8AutoShutter); break;
    case INFRARED_ZOOM: put_le16(bytes + 3, stUIStatus.s8IRZoom); break;
    default: return 0;  // INFRARED_BRIGHTLIGHT, 7, INFRARED_TEMPERATURE, 14, 15 and others
  }
  InfHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_VISI_MSG(uint8_t index) {
  uint8_t bytes[5] = {2, index, SUB_NONE, 0, 0};
  switch (index) {
    case VISI_LIGHT: bytes[3] = byte_of(stDevStatus.s8VisiBrightness); break;
    case VISI_CONTRACT: bytes[3] = byte_of(stDevStatus.s8VisiContrast); break;
    case VISI_ZOOM: bytes[3] = byte_of(stUIStatus.s8VisiZoom); break;
    case VISI_MODE: bytes[3] = byte_of(stUIStatus.s8VisiMode); break;
    default: return 0;
  }
  visiHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_WIFI_MSG(uint8_t index) {
  if (index != WIFI_SWITCH) return 0;
  const uint8_t bytes[4] = {5, WIFI_SWITCH, SUB_NONE, byte_of(stUIStatus.s8WifiSwitch)};
  wifiHandlerToApp(bytes);
  event_distrubution(EV_WIFI_SWITCH);
  return 0;
}

int32_t GUI_SEND_COMPASS_MSG(uint8_t index) {
  if (index != 0) return 0;
  const int declination = stDevStatus.s16CompassMagnetic;
  const int magnitude = declination < 0 ? -declination : declination;
  uint8_t bytes[7] = {6, COMPASS_OFFESET_PARAM, 0, static_cast<uint8_t>(declination < 0 ? 1 : 0)};
  put_le16(bytes + 4, magnitude / 10);
  bytes[6] = static_cast<uint8_t>(magnitude % 10);
  commpassHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_COMPASS_CORRECT(uint8_t index) {
  static constexpr const char* PRINTED[] = {"horizontal start!", "horizontal stop!",
                                            "vertical start!", "vertical stop!"};
  if (index > COMPASS_VERTICAL_STOP) return 0;
  std::puts(PRINTED[index]);
  const uint8_t bytes[4] = {6, COMPASS_CORRECT, index, 0};
  commpassCorrectToApp(bytes);
  return 0;
}

int32_t GUI_SEND_UI_READY_MSG(uint8_t value) {
  // Cleared before the frame leaves: the device's answer may arrive at once.
  stUIStatus.event_distrubut_reday = 0;
  UIreadyToApp(8, value);
  return 0;
}

int32_t GUI_SEND_FUSION_MSG(uint8_t index) {
  uint8_t bytes[5] = {20, index, SUB_NONE, 0, 0};
  switch (index) {
    case FUSION_CONTRACT: bytes[3] = byte_of(stDevStatus.s8FuContrast); break;
    case FUSION_MODE: bytes[3] = byte_of(stDevStatus.s8FuMode); break;
    case FUSION_ZOOM: bytes[3] = byte_of(stUIStatus.s8FuZoom); break;
    default: return 0;
  }
  fusionHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_FUSION_POSITION_MSG(uint8_t index) {
  if (index != FUSION_POSITION) return 0;
  uint8_t bytes[7] = {20, FUSION_POSITION, SUB_NONE};
  put_le16(bytes + 3, stDevStatus.s16FushionX);
  put_le16(bytes + 5, stDevStatus.s16FushionY);
  fusionPositionHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_PIP_MSG(uint8_t index) {
  if (index != PIP_MODE) return 0;
  const uint8_t bytes[5] = {21, PIP_MODE, SUB_NONE, byte_of(stDevStatus.s8PipMode), 0};
  pipHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_RETICLE_MSG(uint8_t index) {
  uint8_t bytes[4] = {22, index, SUB_NONE, 0};
  const uint8_t choose = byte_of(stUIStatus.s8ReticleTypeColorChoose);
  switch (index) {
    case RETICLE_COLOR:
      bytes[3] = byte_of(stDevStatus.s8ReticleColour);
      reticleHandlerToApp(bytes);
      event_distrubution(EV_RETICLE_COLOR);
      break;
    case RETICLE_SWITCH:
      bytes[3] = byte_of(stDevStatus.s8ReticleSwitch);
      reticleHandlerToApp(bytes);
      event_distrubution(EV_RETICLE_SWITCH);
      break;
    case RETICLE_TYPE:
      bytes[3] = byte_of(stDevStatus.s8ReticleType);
      event_distrubution(EV_RETICLE_TYPE);
      event_distrubution(EV_ZOOM);
      reticleHandlerToApp(bytes);
      break;
    case RETICLE_MENU_SWITCH:
      bytes[3] = byte_of(stDevStatus.s8ReticleMenuSwitch);
      event_distrubution(EV_RETICLE_MENU_SWITCH);
      reticleHandlerToApp(bytes);
      break;
    case RETICLE_LIGHT:
      bytes[3] = byte_of(stDevStatus.s8ReticleBrightness);
      reticleHandlerToApp(bytes);
      event_distrubution(EV_RETICLE_LIGHT);
      break;
    case RETICLE_GROUP:
      bytes[3] = IR_Cursor.u8CurrentGroup;
      event_distrubution(EV_RETICLE_MOVE);
      records_sleep_ms(1);
      event_distrubution(EV_BALLISTIC_PROFILE);
      records_sleep_ms(1);
      event_distrubution(EV_ZOOM);
      event_distrubution(EV_BALLISTIC_RESULT);
      reticleHandlerToApp(bytes);
      break;
    case RETICLE_ZERO: {
      const unsigned group = IR_Cursor.u8CurrentGroup;
      if (group >= 5) {
        std::printf("GUI_SEND_RETICLE_MSG: reticle group %u is outside 0..4, nothing sent\n",
                    group);
        return 0;
      }
      bytes[3] = IR_Cursor.group[group].u8CurrentZero;
      event_distrubution(EV_RETICLE_MOVE);
      records_sleep_ms(1);
      event_distrubution(EV_BALLISTIC_PROFILE);
      records_sleep_ms(1);
      event_distrubution(EV_ZOOM);
      reticleHandlerToApp(bytes);
      break;
    }
    case RETICLE_LASER_POSITION:
      bytes[2] = choose;
      bytes[3] =
          byte_of(choose == 3 ? stDevStatus.s8LaserReticleColor : stDevStatus.s8LaserReticleType);
      event_distrubution(EV_LASER_RETICLE);
      reticleHandlerToApp(bytes);
      break;
    case RETICLE_RANGE_POSITION:
      bytes[2] = choose;
      bytes[3] =
          byte_of(choose == 3 ? stDevStatus.s8RangeReticleColor : stDevStatus.s8RangeReticleType);
      event_distrubution(EV_RANGE_RETICLE);
      reticleHandlerToApp(bytes);
      break;
    case RETICLE_ENTER_RETICLE_MOVE:
      bytes[3] = byte_of(stUIStatus.s8Enter_reticle_move);
      event_distrubution(EV_ZOOM);
      event_distrubution(EV_RETICLE_MOVE);
      reticleHandlerToApp(bytes);
      break;
    case RETICLE_PIP_EVENT:
      bytes[2] = choose;
      bytes[3] =
          byte_of(choose == 3 ? stDevStatus.s8PIPReticleColor : stDevStatus.s8PIPReticleType);
      event_distrubution(EV_PIP_RETICLE);
      reticleHandlerToApp(bytes);
      break;
    default:  // RETICLE_POSITION and RETICLE_DISTANCE go through GUI_SEND_RETICLE_POSITION_MSG
      break;
  }
  return 0;
}

int32_t GUI_SEND_RETICLE_POSITION_MSG(uint8_t index) {
  uint8_t bytes[7] = {22, index, SUB_NONE};
  switch (index) {
    case RETICLE_POSITION:
    case RETICLE_DISTANCE: {
      const unsigned group = IR_Cursor.u8CurrentGroup;
      const unsigned zero = group < 5 ? IR_Cursor.group[group].u8CurrentZero : 0;
      if (group >= 5 || zero >= 5) {
        std::printf(
            "GUI_SEND_RETICLE_POSITION_MSG: zero %u of group %u does not exist, nothing "
            "sent\n",
            zero, group);
        return 0;
      }
      const Inf_Cursor_Zero& z = IR_Cursor.group[group].zero[zero];
      if (index == RETICLE_DISTANCE) {
        uint8_t distance[5] = {22, RETICLE_DISTANCE, SUB_NONE};
        put_le16(distance + 3, z.u16IrCursorDistance);
        reticleDistanceHandlerToApp(distance);
        event_distrubution(EV_ZOOM);
        return 0;
      }
      put_le16(bytes + 3, z.s8IrCursorCurrentX);
      put_le16(bytes + 5, z.s8IrCursorCurrentY);
      reticlePositionHandlerToApp(bytes);
      event_distrubution(EV_RETICLE_MOVE);
      return 0;
    }
    case RETICLE_LASER_POSITION:
      put_le16(bytes + 3, stDevStatus.s16LaserIndicatX);
      put_le16(bytes + 5, stDevStatus.s16LaserIndicatY);
      reticlePositionHandlerToApp(bytes);
      event_distrubution(EV_LASER_MARKER_MOVE);
      return 0;
    case RETICLE_RANGE_POSITION:
      put_le16(bytes + 3, stDevStatus.s16RangeOffsetX);
      put_le16(bytes + 5, stDevStatus.s16RangeOffsetY);
      reticlePositionHandlerToApp(bytes);
      event_distrubution(EV_RANGE_MARKER_MOVE);
      return 0;
    case RETICLE_BACK_RETICLE_ZERO_CHILD: event_distrubution(EV_RETICLE_ZERO_BACK); return 0;
    default: return 0;
  }
}

int32_t GUI_SEND_TAP_VIDEO_MSG(uint8_t command, uint8_t sub, const char* name) {
  if (command > TAP_TOTAL_TIME) return 0;
  const size_t n = name != nullptr ? std::strlen(name) : 0;
  if (n > TAP_NAME_MAX) {
    std::printf("GUI_SEND_TAP_VIDEO_MSG: file name of %zu bytes is longer than %zu, nothing sent\n",
                n, TAP_NAME_MAX);
    return 0;
  }
  // type, command, sub, 0, then the name and its NUL (a lone NUL without a name).
  std::array<uint8_t, 4 + TAP_NAME_MAX + 1> body{};
  body[0] = 23;
  body[1] = command;
  body[2] = sub;
  if (n > 0) std::memcpy(body.data() + 4, name, n);
  send_frame(body.data(), static_cast<int>(4 + n + 1));
  return 0;
}

int32_t GUI_SEND_VIDEO_FRAME_MSG(uint8_t index) {
  if (index != TAP_REWIND_FORWARD) return 0;
  const uint64_t frames = stUIStatus.u64VideoForwardFrames;
  uint8_t bytes[10] = {23, TAP_REWIND_FORWARD};
  for (int i = 0; i < 8; ++i)
    bytes[2 + i] = static_cast<uint8_t>(frames >> (8 * i));
  VideoFrameHandlerToApp(bytes);
  std::printf("\n\n\n send frams = %ld!\n", static_cast<long>(frames));
  return 0;
}

int32_t GUI_SEND_BLIND_MSG(uint8_t index) {
  uint8_t bytes[4] = {24, index, 0, 0};
  switch (index) {
    case BLIND_CURSOR_SWITCH: bytes[3] = byte_of(stUIStatus.s8BlindSwitch); break;
    case BLIND_MOVE_POSITION: bytes[3] = byte_of(stUIStatus.s8BlindPosition); break;
    case BLIND_REPAIR: bytes[3] = byte_of(stUIStatus.s8BlindType); break;
    case BLIND_SAVE:
      bytes[2] = SUB_NONE;
      bytes[3] = 1;
      break;
    case BLIND_MOVE_TENPOSITION: bytes[3] = byte_of(stUIStatus.s8BlindTenPosition); break;
    default: return 0;
  }
  blindHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_GG_MSG(uint8_t index) {
  if (index > GG_SAVE) return 0;
  const uint8_t bytes[4] = {25, index, SUB_NONE, 0};
  ggHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_UPDATA_MSG(uint8_t index) {
  uint8_t bytes[4] = {26, index, SUB_NONE, 0};
  switch (index) {
    case UPDATA_CONFIRM: bytes[3] = byte_of(stUIStatus.s8Updata_confirm); break;
    case UPDATA_CHECK: bytes[3] = byte_of(stUIStatus.s8Updata_check); break;
    default: return 0;
  }
  updataHandlerToApp(bytes);
  return 0;
}

namespace {

// Stores `value` as a float in the shared buffer and writes its four bytes, little-endian.
void put_float(uint8_t* out, double value) {
  std::lock_guard<std::mutex> guard(data_lock);
  data.f = static_cast<float>(value);
  std::memcpy(out, data.bytes, 4);
}

void put_last_float(uint8_t* out) {
  std::lock_guard<std::mutex> guard(data_lock);
  std::memcpy(out, data.bytes, 4);
}

}  // namespace

int32_t GUI_SEND_BALLISTIC_PARM_MSG(uint8_t index, uint8_t item) {
  if (index > BALLISTIC_TARGET_INFO) return 0;
  uint8_t bytes[7] = {27, index, item, 0, 0, 0, 0};
  uint8_t* value = bytes + 3;

  if (index == BALLISTIC_OPEN_CALCU) {
    switch (item) {
      case 0:  // always the first profile's switch
        value[0] = info[0].ballistics_sw;
        event_distrubution(EV_BALLISTIC_RESULT);
        break;
      case 1: value[0] = 1; break;
      case 2:
        value[0] = byte_of(stDevStatus.s8BallisticReticle);
        event_distrubution(EV_BALLISTIC_RETICLE);
        break;
      case 3:
        value[0] = byte_of(stDevStatus.s8BallisticReticleColor);
        event_distrubution(EV_BALLISTIC_COLOR);
        break;
      case 4:
        value[0] = byte_of(stDevStatus.s8BallisticGroup);
        event_distrubution(EV_BALLISTIC_PROFILE);
        break;
      default: break;
    }
    reticlePositionHandlerToApp(bytes);
    return 0;
  }

  const Info_ballistics* p = current_ballistic_profile();
  if (p == nullptr) {
    std::printf("GUI_SEND_BALLISTIC_PARM_MSG: profile %d is outside 0..%d, nothing sent\n",
                u8(stDevStatus.s8BallisticGroup), PROFILE_LAST);
    return 0;
  }
  const Info_bullet& bullet = p->gun.bullet;

  switch (index) {
    case BALLISTIC_BULLET_INFO:
      switch (item) {
        case 0: put_float(value, bullet.length); break;
        case 1: put_float(value, bullet.diameter); break;
        case 2: put_float(value, bullet.weight); break;
        case 3: put_float(value, bullet.ballisticsCoef); break;
        case 4: put_float(value, static_cast<double>(bullet.dragFunction)); break;
        case 5: put_float(value, bullet.velocity); break;
        default: put_last_float(value); break;
      }
      break;
    case BALLISTIC_TWIST_INFO:
      if (item == 0) put_float(value, p->gun.riflingRange);
      if (item == 1) value[0] = static_cast<uint8_t>(p->gun.direction);
      break;
    case BALLISTIC_ZEROWEATHER_LENSOFFSET:
      switch (item) {
        case 0: value[0] = static_cast<uint8_t>(bullet.isOpenAtmosphere); break;
        case 1: put_float(value, bullet.atmosphere.temperature); break;
        case 2: put_float(value, bullet.atmosphere.barometer); break;
        case 3: put_float(value, bullet.atmosphere.relative_humidity); break;
        case 4: value[0] = static_cast<uint8_t>(bullet.zeroOffsetUnit); break;
        case 5: put_float(value, bullet.zeroOffsetVerticalMOA); break;
        case 6: put_float(value, bullet.zeroOffsetHorizontalMOA); break;
        case 7: put_float(value, bullet.zeroOffsetVerticalMRAD); break;
        case 8: put_float(value, bullet.zeroOffsetHorizontalMRAD); break;
        default: break;
      }
      break;
    case BALLISTIC_WEATHER:
      switch (item) {
        case 0: put_float(value, p->atmosphere.temperature); break;
        case 1: put_float(value, p->atmosphere.barometer); break;
        case 2: put_float(value, p->atmosphere.relative_humidity); break;
        default: break;
      }
      break;
    case BALLISTIC_LENS_INFO:
      if (item == 0) put_float(value, p->gun.scope.sightHeightOverBore);
      if (item == 1) {
        put_le16(value, p->gun.scope.zeroRange);
        put_le16(value + 2, p->gun.scope.zeroRange_yard);
        event_distrubution(EV_BALLISTIC_PROFILE);
      }
      break;
    case BALLISTIC_WIND_INFO:
      if (item == 0) put_float(value, p->wind.angle);
      if (item == 1) put_float(value, p->wind.speed);
      break;
    case BALLISTIC_TARGET_INFO:
      if (item == 0) {
        put_le16(value, p->target.range);
        put_le16(value + 2, p->target.range_yard);
      }
      if (item == 1) put_float(value, p->target.shootingAngle);
      break;
    default: break;
  }
  reticlePositionHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_RECOIL_MSG(uint8_t index) {
  uint8_t bytes[4] = {28, index, SUB_NONE, 0};
  switch (index) {
    case RECOIL_SWITCH: bytes[3] = byte_of(stDevStatus.s8RecoilState); break;
    case RECOIL_BEFORE: bytes[3] = byte_of(stDevStatus.s8RecoilBefore); break;
    case RECOIL_AFTER: bytes[3] = byte_of(stDevStatus.s8RecoilAfter); break;
    case RECOIL_SENSITIVITY: bytes[3] = byte_of(stDevStatus.s8RecoilSensitivity); break;
    case RECOIL_BREAKOUT: bytes[3] = 1; break;
    default: return 0;
  }
  recoilHandlerToApp(bytes);
  event_distrubution(EV_RECOIL_SWITCH);
  return 0;
}

int32_t GUI_SEND_DISTANCE_FUNCTION_MSG(uint8_t a, uint8_t b) {
  stUIStatus.s8RangeMode = static_cast<char>(b);
  const uint8_t bytes[4] = {4, 7, a, b};
  BasicFunctionHandlerToApp(bytes);
  return 0;
}
