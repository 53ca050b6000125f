// The reticle zeros of IR_Cursor as the zeroing and alignment pages use them: the current group
// and zero, the distance in both units, the zero's letter and the aim point's offsets.
#ifndef SCOPE_COMMON_RETICLE_ZEROING_H
#define SCOPE_COMMON_RETICLE_ZEROING_H

#include <cstdint>

#include "common/status_records.h"

inline constexpr int RETICLE_ZERO_COUNT = 5;
// The aim point is stored as screen pixels; the pages show it as offsets from this centre.
inline constexpr int RETICLE_CENTRE = 640;

// The current group of IR_Cursor, or null (with a line) when u8CurrentGroup is outside 0..4.
Inf_Cursor_Group* reticle_current_group(void);
// Zero `index` of the current group, or null (with a line) when the group or the index is
// outside 0..4.
Inf_Cursor_Zero* reticle_zero(int index);

// The zero's letter: 0..4 -> 'A'..'E'; '?' for anything else.
char reticle_zero_letter(int index);

// Conversions of a whole distance, truncated: yards to metres by 0.9144 and metres to yards by
// 1.0936 (300 yd -> 274 m, 300 m -> 328 yd).
int16_t reticle_yards_to_metres(int yards);
int16_t reticle_metres_to_yards(int metres);

#endif  // SCOPE_COMMON_RETICLE_ZEROING_H
