// Shared pieces of the accessory pages: see accessory_common.h.
#include "common/accessory_common.h"

#include <array>
#include <cstdlib>

#include "widgets/image.h"

void accessory_show_switch(widget_t* win, const char* name, bool on) {
  image_set_image(widget_lookup(win, name, TRUE), on ? "switch_large_on" : "switch_large_off");
}

void accessory_set_text(widget_t* win, const char* name, const char* text) {
  widget_t* label = widget_lookup(win, name, TRUE);
  widget_set_tr_text(label, NULL);  // a language change must not bring back an older text
  widget_set_text_utf8(label, text);
}

void accessory_set_tr(widget_t* win, const char* name, const char* key) {
  widget_set_tr_text(widget_lookup(win, name, TRUE), key);
}

void accessory_format_mph(char* out, size_t size, int16_t speed_mm_s) {
  const float mph = static_cast<float>(speed_mm_s * 2.237 * 0.001);
  tk_snprintf(out, size, "%.1f mph", mph);
}

void accessory_format_m_s(char* out, size_t size, int16_t speed_mm_s) {
  tk_snprintf(out, size, "%.1f m/s", speed_mm_s * 0.001);
}

void accessory_format_azimuth(char* out, size_t size, int16_t azimuth) {
  static constexpr std::array<const char*, 8> POINTS = {"N", "NE", "E", "SE", "S", "SW", "W", "NW"};
  const int degrees = ((azimuth % 360) + 360) % 360;
  tk_snprintf(out, size, "%03d\xC2\xB0 %s", degrees, POINTS[((degrees * 2 + 45) / 90) % 8]);
}

void accessory_format_signed_degrees(char* out, size_t size, int16_t degrees) {
  tk_snprintf(out, size, "%+d\xC2\xB0", degrees);
}

void accessory_format_declination(char* out, size_t size, int16_t tenths) {
  const int magnitude = std::abs(static_cast<int>(tenths));
  const char* sign = tenths > 0 ? "+" : (tenths < 0 ? "-" : "");
  tk_snprintf(out, size, "%s%d.%d\xC2\xB0", sign, magnitude / 10, magnitude % 10);
}
