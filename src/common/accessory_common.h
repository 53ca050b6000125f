// Small pieces shared by the compass, wind meter and recoil pages: switch images, texts by
// widget name, and the read-outs written the way the observation screen writes them.
#ifndef SCOPE_COMMON_ACCESSORY_COMMON_H
#define SCOPE_COMMON_ACCESSORY_COMMON_H

#include <cstddef>
#include <cstdint>

#include "awtk.h"

// "switch_large_on" or "switch_large_off" on the image widget `name` of `win`.
void accessory_show_switch(widget_t* win, const char* name, bool on);
// Plain text (not translated) on the widget `name` of `win`, replacing any translated text.
void accessory_set_text(widget_t* win, const char* name, const char* text);
// A translated text by its key on the widget `name` of `win` (follows language changes).
void accessory_set_tr(widget_t* win, const char* name, const char* key);

// Wind speed from millimetres per second as the observation screen writes it: "%.1f mph" of
// speed x 2.237 x 0.001, rounded to single precision first.
void accessory_format_mph(char* out, size_t size, int16_t speed_mm_s);
// The same speed in metres per second: "%.1f m/s".
void accessory_format_m_s(char* out, size_t size, int16_t speed_mm_s);
// Azimuth in whole degrees 0..359 with its compass point: "251° W".
void accessory_format_azimuth(char* out, size_t size, int16_t azimuth);
// A signed angle in whole degrees: "+3°", "-12°", "+0°".
void accessory_format_signed_degrees(char* out, size_t size, int16_t degrees);
// The magnetic declination, kept in tenths of a degree: "+1.5°", "-12.5°", "0.0°".
void accessory_format_declination(char* out, size_t size, int16_t tenths);

#endif  // SCOPE_COMMON_ACCESSORY_COMMON_H
