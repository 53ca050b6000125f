// The reticle colours: the toolkit colour words of the reticle, the aim-point marks and the PIP
// ring by their settings. The observation screen draws with them; the reticle alignment page
// shows its preview mark in the reticle's colour.
#ifndef SCOPE_COMMON_RETICLE_COLORS_H
#define SCOPE_COMMON_RETICLE_COLORS_H

#include <array>
#include <cstdint>

// Toolkit colour words: alpha in the top byte, red in the low byte.
inline constexpr uint32_t RETICLE_COLOR_WHITE = 0xFFFFFFFF;
inline constexpr uint32_t RETICLE_COLOR_BLACK = 0xFF000001;  // red component 1, not 0: kept so
inline constexpr uint32_t RETICLE_COLOR_RED = 0xFF0011FF;
inline constexpr uint32_t RETICLE_COLOR_GREEN = 0xFF00FF00;
inline constexpr uint32_t RETICLE_COLOR_NONE = 0x00000000;  // fully transparent

// First colour of every element, by s8ReticleColour 0..7.
inline constexpr std::array<uint32_t, 8> kReticleFirstColor = {
    RETICLE_COLOR_WHITE, RETICLE_COLOR_BLACK, RETICLE_COLOR_RED,   RETICLE_COLOR_GREEN,
    RETICLE_COLOR_WHITE, RETICLE_COLOR_WHITE, RETICLE_COLOR_BLACK, RETICLE_COLOR_RED,
};
// Second colour of the centre marks for the two-colour schemes 4..7 (entry = scheme - 4).
inline constexpr std::array<uint32_t, 4> kReticleSecondColor = {
    RETICLE_COLOR_BLACK,
    RETICLE_COLOR_RED,
    RETICLE_COLOR_WHITE,
    RETICLE_COLOR_WHITE,
};
// Colour of the aim-point marks and the PIP reticle ring by their colour setting 0..2.
inline constexpr std::array<uint32_t, 3> kMarkColor = {
    RETICLE_COLOR_WHITE,
    RETICLE_COLOR_RED,
    RETICLE_COLOR_GREEN,
};

#endif  // SCOPE_COMMON_RETICLE_COLORS_H
