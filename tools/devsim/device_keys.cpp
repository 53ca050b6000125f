#include "device_keys.h"

#include "msg/msghandler.h"

namespace devsim {

namespace {

// Lower case: a short press. Upper case: a long press; photo, range and power stay held until
// the same key again (or space) releases them.
constexpr uint8_t SHORT = KEY_NULL_MAX;
constexpr KeyBinding KEYS[] = {
    {'c', KEY_PHOTO_S, SHORT, false, "photo", "start/stop recording", "next row, value down"},
    {'r', KEY_RANGE_S, SHORT, false, "range", "measure the distance", "previous row, value up"},
    {'f', KEY_FUCTION_S, SHORT, false, "function", "image menu", "confirm, toggle, step value"},
    {'p', KEY_POWER_S, SHORT, false, "power", "screen off / on", "back to the picture"},
    {'u', KEY_FOCUS_UP_S, SHORT, false, "up", "focus (device)", "-"},
    {'d', KEY_FOCUS_DOWN_S, SHORT, false, "down", "focus (device)", "-"},
    {'C', KEY_PHOTO_L, KEY_PHOTO_L_POP, true, "photo held", "take a photo",
     "7 s on LRF row: laser alignment"},
    {'R', KEY_RANGE_L, KEY_RANGE_L_POP, true, "range held", "range finder on/off",
     "7 s on LRF row: range marker"},
    {'F', KEY_FUCTION_L, KEY_FUCTION_L_POP, false, "function held", "main menu", "back one page"},
    {'P', KEY_POWER_L, KEY_POWER_L_POP, true, "power held", "shut-down countdown",
     "countdown; release cancels"},
    {'U', KEY_FOCUS_UP_L, KEY_FOCUS_UP_L_POP, false, "up held", "focus (device)", "-"},
    {'D', KEY_FOCUS_DOWN_L, KEY_FOCUS_DOWN_L_POP, false, "down held", "focus (device)", "-"},
    {'1', KEY_PHOTO_FUCTION_S, SHORT, false, "photo+function", "(device)", "-"},
    {'2', KEY_RANGE_FUCTION_S, SHORT, false, "range+function", "laser on/off", "laser on/off"},
    {'3', KEY_RANGE_PHOTO_S, SHORT, false, "range+photo", "shutter (calibration)", "shutter"},
    {'4', KEY_UP_POWER_L, SHORT, false, "up+power held", "ballistic calculator", "calculator"},
};

}  // namespace

std::span<const KeyBinding> key_map() {
  return KEYS;
}

std::vector<uint8_t> key_buttons(char key, std::set<char>* held) {
  std::vector<uint8_t> out;
  if (key == ' ') {
    for (const KeyBinding& k : KEYS) {
      if (held->count(k.key) != 0) out.push_back(k.release);
    }
    held->clear();
    return out;
  }
  for (const KeyBinding& k : KEYS) {
    if (k.key != key) continue;
    if (k.release == SHORT) {
      out.push_back(k.button);
    } else if (!k.held) {
      out.push_back(k.button);
      out.push_back(k.release);
    } else if (held->erase(key) != 0) {
      out.push_back(k.release);
    } else {
      held->insert(key);
      out.push_back(k.button);
    }
    break;
  }
  return out;
}

}  // namespace devsim
