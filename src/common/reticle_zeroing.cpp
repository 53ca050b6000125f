// The reticle zeros of IR_Cursor: see reticle_zeroing.h.
#include "common/reticle_zeroing.h"

#include <cstdio>

Inf_Cursor_Group* reticle_current_group(void) {
  const unsigned group = IR_Cursor.u8CurrentGroup;
  if (group >= RETICLE_ZERO_COUNT) {
    std::printf("reticle group %u is outside 0..4\n", group);
    return nullptr;
  }
  return &IR_Cursor.group[group];
}

Inf_Cursor_Zero* reticle_zero(int index) {
  Inf_Cursor_Group* group = reticle_current_group();
  if (group == nullptr) return nullptr;
  if (index < 0 || index >= RETICLE_ZERO_COUNT) {
    std::printf("reticle zero %d is outside 0..4\n", index);
    return nullptr;
  }
  return &group->zero[index];
}

char reticle_zero_letter(int index) {
  return index >= 0 && index < RETICLE_ZERO_COUNT ? static_cast<char>('A' + index) : '?';
}

int16_t reticle_yards_to_metres(int yards) {
  return static_cast<int16_t>(static_cast<int>(yards * 0.9144));
}

int16_t reticle_metres_to_yards(int metres) {
  return static_cast<int16_t>(static_cast<int>(metres * 1.0936));
}
