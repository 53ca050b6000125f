// The simulated device's part in reticle alignment and blind-pixel repair: it keeps the zeros'
// aim points and distances, the range and laser marker offsets and the reticle settings the UI
// sends (so that a start-up record or a restarted UI shows them as moved), prints each move
// decoded, follows the image freeze, and answers a blind-pixel save after a configurable delay,
// or never.
#include <cstdio>
#include <string>

#include "device_model.h"
#include "framedec.h"
#include "msg/msghandler.h"

namespace devsim {

namespace {

constexpr int RETICLE_CENTRE = 640;  // the UI shows aim points as offsets from (640, 640)
constexpr int SENSOR_W = 640;        // the blind-pixel cursor moves over the sensor's pixels
constexpr int SENSOR_H = 512;
constexpr uint8_t SAVE_DONE = 1;  // s8BlindSaveStatus reported after a save (2 while pending)

int16_t le16(const uint8_t* p) {
  return static_cast<int16_t>(p[0] | (p[1] << 8));
}

std::string signed_text(int v) {
  return (v >= 0 ? "+" : "") + std::to_string(v);
}

char zero_letter(int zero) {
  return zero >= 0 && zero < 5 ? static_cast<char>('A' + zero) : '?';
}

int clamp(int v, int lo, int hi) {
  return v < lo ? lo : v > hi ? hi : v;
}

}  // namespace

void Device::on_reticle(const Frame& f) {
  const int cmd = f[3];
  const int sub = f[4];
  const uint8_t* v = f.data() + 6;
  const bool pair = f[1] >= 10;  // two 16-bit values: a position
  const unsigned group = zeroing_.u8CurrentGroup;
  Inf_Cursor_Group* g = group < 5 ? &zeroing_.group[group] : nullptr;
  const int zero = g != nullptr ? g->u8CurrentZero : -1;
  Inf_Cursor_Zero* z = g != nullptr && zero < 5 ? &g->zero[zero] : nullptr;
  const std::string which =
      std::string("zero ") + zero_letter(zero) + " of group " + std::to_string(group + 1);

  switch (cmd) {
    case RETICLE_POSITION: {
      if (!pair || z == nullptr) break;
      z->s8IrCursorCurrentX = le16(v);
      z->s8IrCursorCurrentY = le16(v + 2);
      print_("device: reticle " + which + " at x=" + std::to_string(z->s8IrCursorCurrentX) +
             " y=" + std::to_string(z->s8IrCursorCurrentY) + " (offset " +
             signed_text(z->s8IrCursorCurrentX - RETICLE_CENTRE) + ", " +
             signed_text(z->s8IrCursorCurrentY - RETICLE_CENTRE) + ")");
      break;
    }
    case RETICLE_RANGE_POSITION:
    case RETICLE_LASER_POSITION: {
      const bool range = cmd == RETICLE_RANGE_POSITION;
      const char* what = range ? "range marker" : "laser marker";
      if (!pair) {
        // One value: the marker's colour (sub 3) or shape.
        char& field =
            range ? (sub == 3 ? settings_.s8RangeReticleColor : settings_.s8RangeReticleType)
                  : (sub == 3 ? settings_.s8LaserReticleColor : settings_.s8LaserReticleType);
        field = static_cast<char>(v[0]);
        print_(std::string("device: ") + what + (sub == 3 ? " colour " : " shape ") +
               std::to_string(v[0]));
        break;
      }
      int16_t& x = range ? settings_.s16RangeOffsetX : settings_.s16LaserIndicatX;
      int16_t& y = range ? settings_.s16RangeOffsetY : settings_.s16LaserIndicatY;
      const int dx = le16(v) - x;
      const int dy = le16(v + 2) - y;
      x = le16(v);
      y = le16(v + 2);
      print_(std::string("device: ") + what + " at x=" + std::to_string(x) + " y=" +
             std::to_string(y) + " (moved " + signed_text(dx) + ", " + signed_text(dy) + ")");
      break;
    }
    case RETICLE_DISTANCE: {
      if (z == nullptr) break;
      z->u16IrCursorDistance = le16(v);
      z->u16IrCursorDistanceYD = static_cast<int16_t>(static_cast<int>(le16(v) * 1.0936));
      print_("device: " + which + " zeroed at " + std::to_string(z->u16IrCursorDistance) + " m (" +
             std::to_string(z->u16IrCursorDistanceYD) + " yd)");
      break;
    }
    case RETICLE_ZERO:
      if (g == nullptr || v[0] >= 5) break;
      g->u8CurrentZero = v[0];
      print_(std::string("device: zero ") + zero_letter(v[0]) + " of group " +
             std::to_string(group + 1) + " in use");
      break;
    case RETICLE_GROUP:
      if (v[0] >= 5) break;
      zeroing_.u8CurrentGroup = v[0];
      print_("device: reticle group " + std::to_string(v[0] + 1) + " in use");
      break;
    case RETICLE_SWITCH:
      settings_.s8ReticleSwitch = static_cast<char>(v[0]);
      print_(std::string("device: reticle ") + (v[0] != 0 ? "shown" : "hidden"));
      break;
    case RETICLE_TYPE:
      settings_.s8ReticleType = static_cast<char>(v[0]);
      print_("device: reticle shape " + std::to_string(v[0] + 1));
      break;
    case RETICLE_COLOR:
      settings_.s8ReticleColour = static_cast<char>(v[0]);
      print_("device: reticle colour " + std::to_string(v[0] + 1));
      break;
    case RETICLE_LIGHT:
      settings_.s8ReticleBrightness = static_cast<char>(v[0]);
      print_("device: reticle brightness " + std::to_string(v[0] + 1));
      break;
    case RETICLE_MENU_SWITCH: settings_.s8ReticleMenuSwitch = static_cast<char>(v[0]); break;
    default: break;
  }
}

void Device::on_blind(const Frame& f) {
  const int cmd = f[3];
  const int value = f[6];
  static const char* const WAY[] = {"up", "down", "left", "right"};
  switch (cmd) {
    case BLIND_CURSOR_SWITCH:
      blind_on_ = value != 0;
      print_(std::string("device: blind-pixel cursor ") + (blind_on_ ? "on" : "off") + " at (" +
             std::to_string(blind_x_) + ", " + std::to_string(blind_y_) + ")");
      break;
    case BLIND_MOVE_POSITION:
    case BLIND_MOVE_TENPOSITION: {
      if (value > 3) break;
      const int step = cmd == BLIND_MOVE_POSITION ? 1 : 10;
      const int dx = value == 2 ? -step : value == 3 ? step : 0;
      const int dy = value == 0 ? -step : value == 1 ? step : 0;
      blind_x_ = clamp(blind_x_ + dx, 0, SENSOR_W - 1);
      blind_y_ = clamp(blind_y_ + dy, 0, SENSOR_H - 1);
      print_(std::string("device: blind-pixel cursor ") + WAY[value] + " " + std::to_string(step) +
             " -> (" + std::to_string(blind_x_) + ", " + std::to_string(blind_y_) + ")" +
             (blind_on_ ? "" : " (cursor off)"));
      break;
    }
    case BLIND_REPAIR:
      if (value == 1) {
        blind_marked_++;
        print_("device: pixel (" + std::to_string(blind_x_) + ", " + std::to_string(blind_y_) +
               ") marked for repair");
      } else {
        print_("device: automatic blind-pixel repair");
      }
      break;
    case BLIND_SAVE:
      if (blind_save_delay_ms_ < 0) {
        print_("device: saving " + std::to_string(blind_marked_) +
               " repaired pixel(s); the save will not be reported");
        break;
      }
      blind_saving_ = true;
      blind_save_at_ms_ = now_ms_ + static_cast<uint64_t>(blind_save_delay_ms_);
      print_("device: saving " + std::to_string(blind_marked_) +
             " repaired pixel(s); reported in " + std::to_string(blind_save_delay_ms_) + " ms");
      break;
    default: break;
  }
}

void Device::on_infrared(const Frame& f) {
  if (f[3] == INFRARED_CORRECT_TYPE) {
    // A shutter correction reads the sensor afresh: a frozen picture is live again.
    if (frozen_) print_("device: shutter correction, the picture is live again");
    frozen_ = false;
    return;
  }
  if (f[3] == INFRARED_BASIC && f[4] == INFRARED_FREEZE) {
    frozen_ = f[6] != 0;
    print_(std::string("device: picture ") + (frozen_ ? "frozen" : "live"));
  }
}

void Device::tick_reticle(uint64_t now_ms) {
  if (!blind_saving_ || now_ms < blind_save_at_ms_) return;
  blind_saving_ = false;
  blind_marked_ = 0;
  const uint8_t status[1] = {SAVE_DONE};
  send_(framedec::build(24, BLIND_SAVE, 0, status));
  print_("device: blind pixels saved");
}

}  // namespace devsim
