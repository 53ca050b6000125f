// Frame building, checking and decoding for the device simulator and the tests.
#include "framedec.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>

#include "common/status_records.h"
#include "msg/msghandler.h"

namespace framedec {

namespace {

// The values of a seek (eight bytes of a frame number), not a NUL-terminated name of eight.
bool seek_values(const uint8_t* v, int n) {
  if (n != 8) return false;
  const bool name = v[7] == 0 && std::find(v, v + 7, 0) == v + 7;
  return !name;
}

struct Name {
  int value;
  const char* name;
};

#define N(x) \
  { x, #x }

constexpr Name TYPE_NAMES[] = {
    {0, "BASIC"},   {1, "INFRARED"}, {2, "VISI"},       {4, "RANGE"},    {5, "WIFI"},
    {6, "COMPASS"}, {7, "KEY"},      {8, "UI_READY"},   {15, "BATTERY"}, {16, "PARAM"},
    {20, "FUSION"}, {21, "PIP"},     {22, "RETICLE"},   {23, "TAP"},     {24, "BLIND"},
    {25, "GG"},     {26, "UPDATA"},  {27, "BALLISTIC"}, {28, "RECOIL"},  {29, "WIND"},
};

// Basic-function indices: the named ones, and a word for the bare numbers.
constexpr Name BASIC_NAMES[] = {
    N(BASIC_VIDEO_MODE),
    N(BASIC_AXIS_MODE),
    N(BASIC_AMMO_MODE),
    N(BASIC_WEAPON_MODE),
    N(BASIC_BALLISTICS_CURSOR),
    N(BASIC_CURSOR_MODE),
    N(BASIC_INFO_DISPLAY_MODE),
    N(BASIC_SCREEN_LIGHT),
    N(BASIC_CVBS_MODE),
    N(BASIC_COMMU_MODE),
    N(BASIC_TIME_MODE),
    N(BASIC_RESET_MODE),
    N(BASIC_STORAGE_FORMAT),
    N(BASIC_SHUT_DOWN),
    N(BASIC_AUTO_SCREEN),
    {16, "16:language"},
    {17, "17:sort_type"},
    N(BASIC_USB_TYPE),
    {19, "19:power"},
    {20, "20:clipon_position"},
    {21, "21:use_mode"},
    N(BASIC_LASER_SWITCH),
    {23, "23:fill_light"},
    {24, "24:fill_light_bright"},
    {25, "25:light_overheat"},
    N(BASIC_MICRO),
    {30, "30:marker_move_done"},
    N(BASIC_REBOOT),
    {33, "33:compass_switch"},
    N(BASIC_WIND_SWITCH),
    {35, "35:wind_count"},
    N(BASIC_RANGE_TYPE),
    {37, "37:distance_unit"},
    {38, "38:wind_speed"},
    N(BASIC_MENU_LEVEL),
};

constexpr Name INFRARED_NAMES[] = {
    N(INFRARED_CORRECT),     N(INFRARED_LIGHT),        N(INFRARED_CONTRACT),
    N(INFRARED_ENHANCE),     N(INFRARED_POLARITY),     N(INFRARED_CORRECT_TYPE_CHOOSE),
    N(INFRARED_BRIGHTLIGHT), N(INFRARED_LIGHTPAOTECT), N(INFRARED_SCENE),
    N(INFRARED_FREEZE),      N(INFRARED_TEMPERATURE),  N(INFRARED_HOTTRACK),
    N(INFRARED_AUTOSHUTTER), N(INFRARED_ZOOM),
};

constexpr Name VISI_NAMES[] = {N(VISI_LIGHT), N(VISI_CONTRACT), N(VISI_FOG),
                               N(VISI_ZOOM),  N(VISI_ENHANCE),  N(VISI_MODE)};

constexpr Name COMPASS_COMMAND_NAMES[] = {
    N(COMPASS_SEND_STANDARD),     N(COMPASS_OFFESET_PARAM),     N(COMPASS_STANDARDING),
    N(COMPASS_STANDARDING_SCORE), N(COMPASS_STANDARDING_POINT), N(COMPASS_PRODUCT_TYPE),
    N(COMPASS_CORRECT),           N(COMPASS_IR_CORRECT)};

constexpr Name COMPASS_CORRECT_NAMES[] = {N(COMPASS_HORIZONTAL_START), N(COMPASS_HORIZONTAL_STOP),
                                          N(COMPASS_VERTICAL_START), N(COMPASS_VERTICAL_STOP),
                                          N(COMPASS_CORRECT_INTERRUPT)};

constexpr Name COMPASS_ANGLE_NAMES[] = {N(COMPASS_AZIMUTH_ANGLE), N(COMPASS_PITCH_ANGLE),
                                        N(COMPASS_SLANT_ANGLE)};

constexpr Name PARAM_NAMES[] = {N(BASIC_PARAM), N(RETICLE_PARAM), N(BALLISTIC_PARM),
                                N(SAVE_ALLPARAM), N(BALLISTIC_PARM_midway)};

constexpr Name FUSION_NAMES[] = {N(FUSION_LIGHT), N(FUSION_CONTRACT), N(FUSION_MODE),
                                 N(FUSION_ZOOM), N(FUSION_POSITION)};

constexpr Name PIP_NAMES[] = {N(PIP_MODE), N(PIP_ZOOM)};

constexpr Name RETICLE_NAMES[] = {N(RETICLE_COLOR),          N(RETICLE_SWITCH),
                                  N(RETICLE_TYPE),           N(RETICLE_POSITION),
                                  N(RETICLE_MENU_SWITCH),    N(RETICLE_LIGHT),
                                  N(RETICLE_GROUP),          N(RETICLE_ZERO),
                                  N(RETICLE_LASER_POSITION), N(RETICLE_RANGE_POSITION),
                                  N(RETICLE_DISTANCE),       N(RETICLE_ENTER_RETICLE_MOVE),
                                  N(RETICLE_PIP_EVENT),      N(RETICLE_BACK_RETICLE_ZERO_CHILD)};

constexpr Name TAP_NAMES[] = {N(TAP_PICTURE_RECORD), N(TAP_REPLAY), N(TAP_PROCESS),
                              N(TAP_REWIND_FORWARD), N(TAP_TOTAL_TIME)};
constexpr Name TAP_RECORD_NAMES[] = {N(TAP_RECORD_START), N(TAP_RECORD_STOP), N(TAP_TAKE_PICTURE)};
constexpr Name TAP_REPLAY_NAMES[] = {N(TAP_REPLAY_PAUSE), N(TAP_REPLAY_CONTINUE),
                                     N(TAP_REPLAY_STOP), N(TAP_REPLAY_START),
                                     N(TAP_REPLAY_VEDIO_TOTAL_TIME)};

constexpr Name BLIND_NAMES[] = {N(BLIND_CURSOR_SWITCH), N(BLIND_MOVE_POSITION), N(BLIND_REPAIR),
                                N(BLIND_SAVE), N(BLIND_MOVE_TENPOSITION)};

constexpr Name GG_NAMES[] = {N(GG_CLEAR), N(GG_GET), N(GG_SAVE)};

constexpr Name UPDATA_IN_NAMES[] = {N(UPDATA_STATE), N(UPDATA_RESULT), N(UPDATA_START_NOTICE)};
constexpr Name UPDATA_OUT_NAMES[] = {N(UPDATA_CONFIRM), N(UPDATA_CHECK)};

constexpr Name BALLISTIC_NAMES[] = {N(BALLISTIC_OPEN_CALCU), N(BALLISTIC_BULLET_INFO),
                                    N(BALLISTIC_TWIST_INFO), N(BALLISTIC_ZEROWEATHER_LENSOFFSET),
                                    N(BALLISTIC_WEATHER),    N(BALLISTIC_LENS_INFO),
                                    N(BALLISTIC_WIND_INFO),  N(BALLISTIC_TARGET_INFO)};

constexpr Name RECOIL_NAMES[] = {N(RECOIL_SWITCH), N(RECOIL_BEFORE), N(RECOIL_AFTER),
                                 N(RECOIL_SENSITIVITY), N(RECOIL_BREAKOUT)};

constexpr Name BATTERY_NAMES[] = {N(BATTERY_VALUE), N(BATTERY_TYPE)};

constexpr Name BUTTON_NAMES[] = {
    N(KEY_FOCUS_UP_S),    N(KEY_FOCUS_UP_L),       N(KEY_FOCUS_UP_L_POP),  N(KEY_FOCUS_DOWN_S),
    N(KEY_FOCUS_DOWN_L),  N(KEY_FOCUS_DOWN_L_POP), N(KEY_POWER_S),         N(KEY_POWER_L),
    N(KEY_POWER_L_POP),   N(KEY_PHOTO_S),          N(KEY_PHOTO_L),         N(KEY_PHOTO_L_POP),
    N(KEY_FUCTION_S),     N(KEY_FUCTION_L),        N(KEY_FUCTION_L_POP),   N(KEY_RANGE_S),
    N(KEY_RANGE_L),       N(KEY_RANGE_L_POP),      N(KEY_PHOTO_FUCTION_S), N(KEY_RANGE_FUCTION_S),
    N(KEY_RANGE_PHOTO_S), N(KEY_UP_POWER_L)};

#undef N

struct Alias {
  const char* alias;
  uint8_t button;
};

constexpr Alias BUTTON_ALIASES[] = {
    {"up", KEY_FOCUS_UP_S},
    {"up-long", KEY_FOCUS_UP_L},
    {"up-pop", KEY_FOCUS_UP_L_POP},
    {"down", KEY_FOCUS_DOWN_S},
    {"down-long", KEY_FOCUS_DOWN_L},
    {"down-pop", KEY_FOCUS_DOWN_L_POP},
    {"power", KEY_POWER_S},
    {"power-long", KEY_POWER_L},
    {"power-pop", KEY_POWER_L_POP},
    {"photo", KEY_PHOTO_S},
    {"photo-long", KEY_PHOTO_L},
    {"photo-pop", KEY_PHOTO_L_POP},
    {"function", KEY_FUCTION_S},
    {"function-long", KEY_FUCTION_L},
    {"function-pop", KEY_FUCTION_L_POP},
    {"ok", KEY_FUCTION_S},
    {"ok-long", KEY_FUCTION_L},
    {"ok-pop", KEY_FUCTION_L_POP},
    {"range", KEY_RANGE_S},
    {"range-long", KEY_RANGE_L},
    {"range-pop", KEY_RANGE_L_POP},
    {"photo+function", KEY_PHOTO_FUCTION_S},
    {"range+function", KEY_RANGE_FUCTION_S},
    {"range+photo", KEY_RANGE_PHOTO_S},
    {"up+power", KEY_UP_POWER_L},
};

template <size_t n>
const char* find(const Name (&table)[n], int value) {
  for (const Name& entry : table) {
    if (entry.value == value) return entry.name;
  }
  return nullptr;
}

// The name, or the number when the code has none.
template <size_t n>
std::string name_or_number(const Name (&table)[n], int value) {
  const char* name = find(table, value);
  return name != nullptr ? std::string(name) : std::to_string(value);
}

int16_t le16(const uint8_t* p) {
  return static_cast<int16_t>(p[0] | (p[1] << 8));
}
uint64_t le64(const uint8_t* p) {
  uint64_t v = 0;
  for (int i = 7; i >= 0; --i)
    v = (v << 8) | p[i];
  return v;
}
float lefloat(const uint8_t* p) {
  float f;
  std::memcpy(&f, p, 4);
  return f;
}

std::string format_float(float f) {
  char buffer[32];
  std::snprintf(buffer, sizeof(buffer), "%g", static_cast<double>(f));
  return buffer;
}

std::string join(const std::string& family, const std::string& command, const std::string& rest) {
  std::string out = family + "  " + command;
  if (!rest.empty()) out += "  " + rest;
  return out;
}

std::string value_of(int v) {
  return "value=" + std::to_string(v);
}

// The fields every frame has: type, command, sub-command, the values and their count, and the
// type's name ("" when it has none).
struct Parts {
  int type;
  int cmd;
  int sub;
  const uint8_t* v;
  int nvalues;
  std::string family;
};

// Items of a ballistic frame that carry a float (the others carry bytes or 16-bit pairs).
bool ballistic_item_is_float(int index, int item) {
  switch (index) {
    case BALLISTIC_BULLET_INFO: return true;
    case BALLISTIC_TWIST_INFO: return item == 0;
    case BALLISTIC_ZEROWEATHER_LENSOFFSET:
      return (item >= 1 && item <= 3) || (item >= 5 && item <= 8);
    case BALLISTIC_WEATHER: return item <= 2;
    case BALLISTIC_LENS_INFO: return item == 0;
    case BALLISTIC_WIND_INFO: return item <= 1;
    case BALLISTIC_TARGET_INFO: return item == 1;
    default: return false;
  }
}

std::string decode_from_ui(const Parts& parts) {
  const auto& [type, cmd, sub, v, nvalues, family] = parts;

  switch (type) {
    case 0:
      if (cmd == 30) return join(family, name_or_number(BASIC_NAMES, 30), value_of(v[0]));
      if (sub == 20 && nvalues >= 4) {
        return join(family, name_or_number(BASIC_NAMES, 20),
                    "x=" + std::to_string(le16(v)) + " y=" + std::to_string(le16(v + 2)));
      }
      return join(family, name_or_number(BASIC_NAMES, sub), value_of(v[0]));
    case 1:
      if (cmd == INFRARED_CORRECT_TYPE) return join(family, "INFRARED_CORRECT", value_of(v[0]));
      if (sub == INFRARED_ZOOM) return join(family, "INFRARED_ZOOM", value_of(le16(v)));
      return join(family, name_or_number(INFRARED_NAMES, sub), value_of(v[0]));
    case 2: return join(family, name_or_number(VISI_NAMES, cmd), value_of(v[0]));
    case 4:
      if (cmd == 7) return join(family, sub == 0 ? "SWITCH" : "MEASURE", value_of(v[0]));
      break;
    case 5:
      return join(family, cmd == WIFI_SWITCH ? "WIFI_SWITCH" : std::to_string(cmd), value_of(v[0]));
    case 6:
      if (cmd == COMPASS_OFFESET_PARAM) {
        int tenths = le16(v + 1) * 10 + v[3];
        if (v[0] != 0) tenths = -tenths;
        return join(family, "COMPASS_OFFESET_PARAM", "declination=" + std::to_string(tenths));
      }
      if (cmd == COMPASS_CORRECT) {
        return join(family, "COMPASS_CORRECT", name_or_number(COMPASS_CORRECT_NAMES, sub));
      }
      return join(family, name_or_number(COMPASS_COMMAND_NAMES, cmd), value_of(v[0]));
    case 8: return join(family, value_of(v[0]), "");
    case 16: return join(family, name_or_number(PARAM_NAMES, cmd), "");
    case 20:
      if (cmd == FUSION_POSITION) {
        return join(family, "FUSION_POSITION",
                    "x=" + std::to_string(le16(v)) + " y=" + std::to_string(le16(v + 2)));
      }
      return join(family, name_or_number(FUSION_NAMES, cmd), value_of(v[0]));
    case 21: return join(family, name_or_number(PIP_NAMES, cmd), value_of(v[0]));
    case 22: {
      const std::string command = name_or_number(RETICLE_NAMES, cmd);
      if (nvalues >= 4 && (cmd == RETICLE_POSITION || cmd == RETICLE_LASER_POSITION ||
                           cmd == RETICLE_RANGE_POSITION)) {
        return join(family, command,
                    "x=" + std::to_string(le16(v)) + " y=" + std::to_string(le16(v + 2)));
      }
      if (cmd == RETICLE_DISTANCE)
        return join(family, command, "distance=" + std::to_string(le16(v)));
      if (cmd == RETICLE_LASER_POSITION || cmd == RETICLE_RANGE_POSITION ||
          cmd == RETICLE_PIP_EVENT) {
        return join(family, command, "sub=" + std::to_string(sub) + " " + value_of(v[0]));
      }
      return join(family, command, value_of(v[0]));
    }
    case 23: {
      if (cmd == 1 && sub == TAP_REWIND_FORWARD && seek_values(v, nvalues)) {
        return join(family, "TAP_REWIND_FORWARD", "frames=" + std::to_string(le64(v)));
      }
      std::string what;
      if (cmd == TAP_PICTURE_RECORD)
        what = name_or_number(TAP_RECORD_NAMES, sub);
      else if (cmd == TAP_REPLAY)
        what = name_or_number(TAP_REPLAY_NAMES, sub);
      else
        what = "sub=" + std::to_string(sub);
      std::string name(reinterpret_cast<const char*>(v),
                       strnlen(reinterpret_cast<const char*>(v), static_cast<size_t>(nvalues)));
      if (!name.empty()) what += " name=\"" + name + "\"";
      return join(family, name_or_number(TAP_NAMES, cmd), what);
    }
    case 24: return join(family, name_or_number(BLIND_NAMES, cmd), value_of(v[0]));
    case 25: return join(family, name_or_number(GG_NAMES, cmd), "");
    case 26: return join(family, name_or_number(UPDATA_OUT_NAMES, cmd), value_of(v[0]));
    case 27: {
      const std::string command = name_or_number(BALLISTIC_NAMES, cmd);
      std::string rest = "item=" + std::to_string(sub) + " ";
      if (ballistic_item_is_float(cmd, sub)) {
        rest += "value=" + format_float(lefloat(v));
      } else if ((cmd == BALLISTIC_LENS_INFO && sub == 1) ||
                 (cmd == BALLISTIC_TARGET_INFO && sub == 0)) {
        rest += "m=" + std::to_string(le16(v)) + " yd=" + std::to_string(le16(v + 2));
      } else {
        rest += value_of(v[0]);
      }
      return join(family, command, rest);
    }
    case 28: return join(family, name_or_number(RECOIL_NAMES, cmd), value_of(v[0]));
    default: break;
  }
  return "";
}

std::string decode_to_ui(const Parts& parts) {
  const auto& [type, cmd, sub, v, nvalues, family] = parts;

  switch (type) {
    case 0:
      if (sub == 38) return join(family, "WIND_SPEED", value_of(le16(v)));
      if (sub == BASIC_MENU_LEVEL) return join(family, "BASIC_MENU_LEVEL", "query");
      if (sub == 25) return join(family, "LIGHT_OVERHEAT", value_of(v[0]));
      break;
    case 1:
      if (sub == INFRARED_BRIGHTLIGHT) return join(family, "INFRARED_BRIGHTLIGHT", value_of(v[0]));
      if (sub == INFRARED_ZOOM) return join(family, "INFRARED_ZOOM", value_of(le16(v)));
      break;
    case 4:
      if (cmd == 2) {
        if (v[0] == RANGE_RETURN_FAIL) return join(family, "DISTANCE", "failed");
        return join(family, "DISTANCE", value_of(v[1] * 256 + v[2]));
      }
      break;
    case 5:
      if (cmd == WIFI_CONNECT) return join(family, "WIFI_CONNECT", value_of(v[0]));
      break;
    case 6:
      if (cmd == 0) {
        int value = v[1] + v[2] * 256;
        if (sub != COMPASS_AZIMUTH_ANGLE && v[0] != 0) value = -value;
        return join(family, name_or_number(COMPASS_ANGLE_NAMES, sub), value_of(value));
      }
      break;
    case 7: {
      const char* name = button_name(v[0]);
      return join(family, name != nullptr ? name : std::to_string(v[0]), "");
    }
    case 15:
      if (sub == BATTERY_VALUE) return join(family, "BATTERY_VALUE", value_of(le16(v)));
      if (sub == BATTERY_TYPE) return join(family, "BATTERY_TYPE", value_of(v[0]));
      break;
    case 16: {
      std::string rest;
      if (cmd == BALLISTIC_PARM || cmd == BALLISTIC_PARM_midway) {
        rest = "profile=" + std::to_string(sub) + " ";
      }
      rest += "bytes=" + std::to_string(nvalues);
      return join(family, name_or_number(PARAM_NAMES, cmd), rest);
    }
    case 22: {
      const char* axis = sub == 1 ? "x=" : sub == 2 ? "y=" : "value=";
      return join(family, name_or_number(RETICLE_NAMES, cmd), axis + std::to_string(le16(v)));
    }
    case 23:
      if (sub == TAP_PROCESS)
        return join(family, "TAP_PROCESS", "frames=" + std::to_string(le64(v)));
      if (sub == TAP_TOTAL_TIME) {
        return join(family, "TAP_TOTAL_TIME",
                    "frames=" + std::to_string(le64(v)) +
                        " rate=" + std::to_string(static_cast<uint16_t>(le16(v + 8))));
      }
      break;
    case 24:
      if (cmd == BLIND_SAVE) return join(family, "BLIND_SAVE", value_of(v[0]));
      break;
    case 25: return join(family, name_or_number(GG_NAMES, cmd), value_of(v[0]));
    case 26: return join(family, name_or_number(UPDATA_IN_NAMES, cmd), value_of(v[0]));
    case 27:
      return join(family, "SOLUTION",
                  "moaV=" + format_float(lefloat(v)) + " moaH=" + format_float(lefloat(v + 4)));
    case 28: return join(family, "TRIGGERED", "");
    case 29: return join(family, "CONNECT", value_of(v[0]));
    default: break;
  }
  return "";
}

}  // namespace

uint8_t checksum(std::span<const uint8_t> frame) {
  if (frame.size() < 2) return 0;
  const size_t L = frame[1];
  unsigned sum = 0;
  for (size_t i = 0; i < L && i < frame.size(); ++i)
    sum += frame[i];
  return static_cast<uint8_t>(sum & 0xFF);
}

FrameError check(std::span<const uint8_t> frame) {
  if (frame.size() < 2) return FrameError::TOO_SHORT;
  const size_t L = frame[1];
  if (frame.size() < L + 3) return FrameError::TOO_SHORT;
  if (frame[0] != 0xAA) return FrameError::HEADER;
  if (frame[L] != checksum(frame)) return FrameError::CHECKSUM;
  if (frame[L + 1] != 0xEB) return FrameError::END_SEC;
  if (frame[L + 2] != 0xAA) return FrameError::END_FIR;
  if (L < 6) return FrameError::LENGTH;
  return FrameError::OK;
}

const char* error_name(FrameError error) {
  switch (error) {
    case FrameError::OK: return "OK";
    case FrameError::TOO_SHORT: return "TOO_SHORT";
    case FrameError::HEADER: return "HEADER";
    case FrameError::CHECKSUM: return "CHECKSUM";
    case FrameError::END_SEC: return "END_SEC";
    case FrameError::END_FIR: return "END_FIR";
    case FrameError::LENGTH: return "LENGTH";
  }
  return "?";
}

std::vector<uint8_t> build(uint8_t type, uint8_t command, uint8_t sub,
                           std::span<const uint8_t> values) {
  const size_t count = values.size() > 249 ? 249 : values.size();
  const size_t L = 6 + count;
  std::vector<uint8_t> frame(L + 3, 0);
  frame[0] = 0xAA;
  frame[1] = static_cast<uint8_t>(L);
  frame[2] = type;
  frame[3] = command;
  frame[4] = sub;
  frame[5] = 0;
  for (size_t i = 0; i < count; ++i)
    frame[6 + i] = values[i];
  frame[L] = checksum(frame);
  frame[L + 1] = 0xEB;
  frame[L + 2] = 0xAA;
  return frame;
}

std::string hex(std::span<const uint8_t> bytes) {
  std::string out;
  char buffer[4];
  for (size_t i = 0; i < bytes.size(); ++i) {
    std::snprintf(buffer, sizeof(buffer), "%02x", bytes[i]);
    if (i > 0) out += ' ';
    out += buffer;
  }
  return out;
}

std::optional<std::vector<uint8_t>> parse_hex(std::string_view text) {
  std::vector<uint8_t> out;
  int high = -1;
  for (char c : text) {
    if (std::isspace(static_cast<unsigned char>(c)) || c == ',') {
      if (high >= 0) return std::nullopt;  // a lone nibble
      continue;
    }
    int nibble;
    if (c >= '0' && c <= '9')
      nibble = c - '0';
    else if (c >= 'a' && c <= 'f')
      nibble = c - 'a' + 10;
    else if (c >= 'A' && c <= 'F')
      nibble = c - 'A' + 10;
    else
      return std::nullopt;
    if (high < 0) {
      high = nibble;
    } else {
      out.push_back(static_cast<uint8_t>(high * 16 + nibble));
      high = -1;
    }
  }
  if (high >= 0) return std::nullopt;
  return out;
}

std::string decode(std::span<const uint8_t> frame, Direction direction) {
  FrameError error = check(frame);
  if (error != FrameError::OK) return std::string("BAD FRAME (") + error_name(error) + ")";
  const int L = frame[1];
  const char* name = type_name(frame[2]);
  const Parts parts{frame[2], frame[3], frame[4], frame.data() + 6, L - 6, name ? name : ""};
  std::string text = direction == Direction::FROM_UI ? decode_from_ui(parts) : decode_to_ui(parts);
  if (!text.empty()) return text;
  // A frame this decoder has no name for: show its raw fields.
  std::string out = name != nullptr ? name : "TYPE_" + std::to_string(frame[2]);
  out += "  cmd=" + std::to_string(frame[3]) + "  sub=" + std::to_string(frame[4]);
  if (L > 6) out += "  values=" + hex(frame.subspan(6, static_cast<size_t>(L - 6)));
  return out;
}

const char* type_name(uint8_t type) {
  return find(TYPE_NAMES, type);
}
const char* button_name(uint8_t button) {
  return find(BUTTON_NAMES, button);
}

std::optional<uint8_t> button_from_name(std::string_view name) {
  for (const Name& entry : BUTTON_NAMES) {
    if (name == entry.name) return static_cast<uint8_t>(entry.value);
  }
  for (const Alias& alias : BUTTON_ALIASES) {
    if (name == alias.alias) return alias.button;
  }
  if (!name.empty() && name.size() <= 3) {
    int value = 0;
    for (char c : name) {
      if (c < '0' || c > '9') return std::nullopt;
      value = value * 10 + (c - '0');
    }
    if (value < KEY_NULL_MAX) return static_cast<uint8_t>(value);
  }
  return std::nullopt;
}

bool is_seek_frame(std::span<const uint8_t> frame) {
  return frame.size() == 17 && frame[1] == 14 && frame[2] == 23 && frame[3] == 1 &&
         frame[4] == TAP_REWIND_FORWARD && seek_values(frame.data() + 6, 8);
}

std::string normalize(std::string_view text) {
  std::string out;
  bool blank = false;
  for (char c : text) {
    if (std::isspace(static_cast<unsigned char>(c))) {
      blank = !out.empty();
      continue;
    }
    if (blank) out += ' ';
    blank = false;
    out += c;
  }
  return out;
}

}  // namespace framedec
