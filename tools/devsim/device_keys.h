// The simulator's terminal keys: which of the scope's buttons each key presses, and which long
// presses stay held until the key is pressed again.
#ifndef SCOPE_TOOLS_DEVSIM_DEVICE_KEYS_H
#define SCOPE_TOOLS_DEVSIM_DEVICE_KEYS_H

#include <cstdint>
#include <set>
#include <span>
#include <vector>

namespace devsim {

// One row of the key map: a terminal key, the scope's button (or the long press and its
// release), what it does on the observation screen and what it does in the menus.
struct KeyBinding {
  char key;
  uint8_t button;
  uint8_t release;  // for a long press: its release; KEY_NULL_MAX for a short press
  // A long press that stays held until its key is pressed again (or space): for the buttons
  // whose hold time matters (photo and range held 7 s, the power countdown). The other long
  // presses are pressed and released at once, so every press of the key acts.
  bool held;
  const char* name;
  const char* on_picture;
  const char* in_menus;
};

std::span<const KeyBinding> key_map();

// The buttons that the terminal key `key` sends, in order (none for a key without a button).
// `held` holds the keys whose long press is being held; space releases all of them.
std::vector<uint8_t> key_buttons(char key, std::set<char>* held);

}  // namespace devsim

#endif  // SCOPE_TOOLS_DEVSIM_DEVICE_KEYS_H
