// Logging, strings, wide strings, colours, events and time of the toolkit's C API.
#include <algorithm>
#include <cctype>
#include <climits>
#include <cmath>
#include <cstdarg>
#include <cstring>
#include <string>
#include <string_view>

#include "tk_core.h"

namespace {

tk_log_level_t s_log_level = LOG_LEVEL_DEBUG;
tk_log_hook_t s_log_hook = nullptr;
void* s_log_hook_ctx = nullptr;

}  // namespace

extern "C" {

ret_t log_set_log_level(tk_log_level_t log_level) {
  s_log_level = log_level;
  return RET_OK;
}

tk_log_level_t log_get_log_level(void) {
  return s_log_level;
}

ret_t log_notify(tk_log_level_t level, const char* format, ...) {
  if (format == nullptr) return RET_BAD_PARAMS;
  va_list ap;
  va_start(ap, format);
  tk::log_capture(level, format, ap);
  va_end(ap);
  if (s_log_hook != nullptr) {
    va_start(ap, format);
    s_log_hook(s_log_hook_ctx, level, format, ap);
    va_end(ap);
  }
  return RET_OK;
}

ret_t log_set_hook(tk_log_hook_t log, void* ctx) {
  s_log_hook = log;
  s_log_hook_ctx = ctx;
  return RET_OK;
}

/* ---- strings ---- */

int tk_snprintf(char* str, size_t size, const char* format, ...) {
  if (str == nullptr || format == nullptr) return 0;
  va_list ap;
  va_start(ap, format);
  int ret = vsnprintf(str, size, format, ap);
  va_end(ap);
  return ret;
}

int32_t tk_atoi(const char* str) {
  if (str == nullptr) {
    log_warn("%s:%d condition(str != NULL) failed!\n", __FUNCTION__, __LINE__);
    return 0;
  }
  const char* p = str;
  while (isspace(static_cast<unsigned char>(*p)))
    p++;
  int base = 10;
  bool neg = false;
  if (*p == '#') {
    base = 16;
    p++;
  } else {
    if (*p == '-' || *p == '+') {
      neg = (*p == '-');
      p++;
    }
    if (p[0] == '0' && (p[1] == 'x' || p[1] == 'X')) {
      base = 16;
      p += 2;
    } else if (p[0] == '0' && (p[1] == 'b' || p[1] == 'B')) {
      base = 2;
      p += 2;
    }
  }
  // No second sign (strtoull would take one); strtoull saturates at its maximum.
  unsigned long long v = (*p == '-' || *p == '+') ? 0 : strtoull(p, nullptr, base);
  if (neg) return v >= uint64_t{1} << 31 ? INT32_MIN : -static_cast<int32_t>(v);
  return v > INT32_MAX ? INT32_MAX : static_cast<int32_t>(v);
}

bool_t tk_atob(const char* str) {
  if (str == nullptr || *str == '\0' || *str == 'f' || *str == 'F') return FALSE;
  if (strcmp(str, "0") == 0) return FALSE;
  return TRUE;
}

double tk_atof(const char* str) {
  if (str == nullptr) return 0;
  return strtod(str, nullptr);
}

char* tk_strdup(const char* str) {
  if (str == nullptr) return nullptr;
  return strdup(str);
}

char* tk_strncpy(char* dst, const char* src, size_t n) {
  if (dst == nullptr || src == nullptr) return dst;
  size_t len = strnlen(src, n);
  memcpy(dst, src, len);
  dst[len] = '\0';
  return dst;
}

/* ---- UTF-8 <-> wchar_t (UCS-4 on Linux) ---- */

char* tk_utf8_from_utf16(const wchar_t* in, char* out, uint32_t size) {
  if (out == nullptr || size == 0) return out;
  uint32_t o = 0;
  if (in != nullptr) {
    for (; *in != 0; in++) {
      uint32_t c = static_cast<uint32_t>(*in);
      char buf[4];
      uint32_t n;
      if (c < 0x80) {
        buf[0] = static_cast<char>(c);
        n = 1;
      } else if (c < 0x800) {
        buf[0] = static_cast<char>(0xC0 | (c >> 6));
        buf[1] = static_cast<char>(0x80 | (c & 0x3F));
        n = 2;
      } else if (c < 0x10000) {
        buf[0] = static_cast<char>(0xE0 | (c >> 12));
        buf[1] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        buf[2] = static_cast<char>(0x80 | (c & 0x3F));
        n = 3;
      } else {
        if (c > 0x10FFFF) c = 0xFFFD;
        buf[0] = static_cast<char>(0xF0 | (c >> 18));
        buf[1] = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        buf[2] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        buf[3] = static_cast<char>(0x80 | (c & 0x3F));
        n = 4;
      }
      if (o + n >= size) break;
      memcpy(out + o, buf, n);
      o += n;
    }
  }
  out[o] = '\0';
  return out;
}

wchar_t* tk_utf8_to_utf16(const char* in, wchar_t* out, uint32_t size) {
  if (out == nullptr || size == 0) return out;
  uint32_t o = 0;
  const unsigned char* p = reinterpret_cast<const unsigned char*>(in);
  while (p != nullptr && *p != 0 && o + 1 < size) {
    uint32_t c = *p;
    int extra = 0;
    if (c < 0x80) {
      extra = 0;
    } else if ((c & 0xE0) == 0xC0) {
      c &= 0x1F;
      extra = 1;
    } else if ((c & 0xF0) == 0xE0) {
      c &= 0x0F;
      extra = 2;
    } else if ((c & 0xF8) == 0xF0) {
      c &= 0x07;
      extra = 3;
    } else {
      c = 0xFFFD;  // stray continuation or invalid lead byte
    }
    p++;
    for (int i = 0; i < extra; i++) {
      if ((*p & 0xC0) != 0x80) {
        c = 0xFFFD;
        break;
      }
      c = (c << 6) | (*p & 0x3F);
      p++;
    }
    out[o++] = static_cast<wchar_t>(c);
  }
  out[o] = 0;
  return out;
}

/* ---- wstr_t ---- */

wstr_t* wstr_init(wstr_t* str, uint32_t capacity) {
  if (str == nullptr) return nullptr;
  memset(str, 0, sizeof(*str));
  str->extendable = TRUE;
  if (capacity > 0) {
    str->str = static_cast<wchar_t*>(calloc(capacity + 1, sizeof(wchar_t)));
    str->capacity = str->str != nullptr ? capacity : 0;
  }
  return str;
}

ret_t wstr_set(wstr_t* str, const wchar_t* text) {
  if (str == nullptr) return RET_BAD_PARAMS;
  size_t len = text != nullptr ? wcslen(text) : 0;
  if (str->str == nullptr || str->capacity < len) {
    wchar_t* p = static_cast<wchar_t*>(realloc(str->str, (len + 1) * sizeof(wchar_t)));
    if (p == nullptr) return RET_OOM;
    str->str = p;
    str->capacity = static_cast<uint32_t>(len);
  }
  if (len > 0) memcpy(str->str, text, len * sizeof(wchar_t));
  str->str[len] = 0;
  str->size = static_cast<uint32_t>(len);
  return RET_OK;
}

ret_t wstr_set_utf8(wstr_t* str, const char* text) {
  if (str == nullptr) return RET_BAD_PARAMS;
  size_t n = text != nullptr ? strlen(text) : 0;
  std::wstring buf(n + 1, L'\0');
  tk_utf8_to_utf16(text != nullptr ? text : "", buf.data(), static_cast<uint32_t>(n + 1));
  return wstr_set(str, buf.c_str());
}

ret_t wstr_get_utf8(wstr_t* str, char* text, uint32_t size) {
  if (str == nullptr || text == nullptr) return RET_BAD_PARAMS;
  tk_utf8_from_utf16(str->str, text, size);
  return RET_OK;
}

ret_t wstr_reset(wstr_t* str) {
  if (str == nullptr) return RET_BAD_PARAMS;
  free(str->str);
  str->str = nullptr;
  str->size = 0;
  str->capacity = 0;
  return RET_OK;
}

/* ---- colours ---- */

color_t color_init(uint8_t r, uint8_t g, uint8_t b, uint8_t a) {
  color_t c;
  c.rgba.r = r;
  c.rgba.g = g;
  c.rgba.b = b;
  c.rgba.a = a;
  return c;
}

}  // extern "C"

namespace {

struct NamedColor {
  const char* name;
  uint32_t rgb;
};

// CSS colour names (as 0xRRGGBB).
constexpr NamedColor kNamedColors[] = {
    {"aliceblue", 0xF0F8FF},
    {"antiquewhite", 0xFAEBD7},
    {"aqua", 0x00FFFF},
    {"aquamarine", 0x7FFFD4},
    {"azure", 0xF0FFFF},
    {"beige", 0xF5F5DC},
    {"bisque", 0xFFE4C4},
    {"black", 0x000000},
    {"blanchedalmond", 0xFFEBCD},
    {"blue", 0x0000FF},
    {"blueviolet", 0x8A2BE2},
    {"brown", 0xA52A2A},
    {"burlywood", 0xDEB887},
    {"cadetblue", 0x5F9EA0},
    {"chartreuse", 0x7FFF00},
    {"chocolate", 0xD2691E},
    {"coral", 0xFF7F50},
    {"cornflowerblue", 0x6495ED},
    {"cornsilk", 0xFFF8DC},
    {"crimson", 0xDC143C},
    {"cyan", 0x00FFFF},
    {"darkblue", 0x00008B},
    {"darkcyan", 0x008B8B},
    {"darkgoldenrod", 0xB8860B},
    {"darkgray", 0xA9A9A9},
    {"darkgreen", 0x006400},
    {"darkgrey", 0xA9A9A9},
    {"darkkhaki", 0xBDB76B},
    {"darkmagenta", 0x8B008B},
    {"darkolivegreen", 0x556B2F},
    {"darkorange", 0xFF8C00},
    {"darkorchid", 0x9932CC},
    {"darkred", 0x8B0000},
    {"darksalmon", 0xE9967A},
    {"darkseagreen", 0x8FBC8F},
    {"darkslateblue", 0x483D8B},
    {"darkslategray", 0x2F4F4F},
    {"darkslategrey", 0x2F4F4F},
    {"darkturquoise", 0x00CED1},
    {"darkviolet", 0x9400D3},
    {"deeppink", 0xFF1493},
    {"deepskyblue", 0x00BFFF},
    {"dimgray", 0x696969},
    {"dimgrey", 0x696969},
    {"dodgerblue", 0x1E90FF},
    {"firebrick", 0xB22222},
    {"floralwhite", 0xFFFAF0},
    {"forestgreen", 0x228B22},
    {"fuchsia", 0xFF00FF},
    {"gainsboro", 0xDCDCDC},
    {"ghostwhite", 0xF8F8FF},
    {"gold", 0xFFD700},
    {"goldenrod", 0xDAA520},
    {"gray", 0x808080},
    {"green", 0x008000},
    {"greenyellow", 0xADFF2F},
    {"grey", 0x808080},
    {"honeydew", 0xF0FFF0},
    {"hotpink", 0xFF69B4},
    {"indianred", 0xCD5C5C},
    {"indigo", 0x4B0082},
    {"ivory", 0xFFFFF0},
    {"khaki", 0xF0E68C},
    {"lavender", 0xE6E6FA},
    {"lavenderblush", 0xFFF0F5},
    {"lawngreen", 0x7CFC00},
    {"lemonchiffon", 0xFFFACD},
    {"lightblue", 0xADD8E6},
    {"lightcoral", 0xF08080},
    {"lightcyan", 0xE0FFFF},
    {"lightgoldenrodyellow", 0xFAFAD2},
    {"lightgray", 0xD3D3D3},
    {"lightgreen", 0x90EE90},
    {"lightgrey", 0xD3D3D3},
    {"lightpink", 0xFFB6C1},
    {"lightsalmon", 0xFFA07A},
    {"lightseagreen", 0x20B2AA},
    {"lightskyblue", 0x87CEFA},
    {"lightslategray", 0x778899},
    {"lightslategrey", 0x778899},
    {"lightsteelblue", 0xB0C4DE},
    {"lightyellow", 0xFFFFE0},
    {"lime", 0x00FF00},
    {"limegreen", 0x32CD32},
    {"linen", 0xFAF0E6},
    {"magenta", 0xFF00FF},
    {"maroon", 0x800000},
    {"mediumaquamarine", 0x66CDAA},
    {"mediumblue", 0x0000CD},
    {"mediumorchid", 0xBA55D3},
    {"mediumpurple", 0x9370DB},
    {"mediumseagreen", 0x3CB371},
    {"mediumslateblue", 0x7B68EE},
    {"mediumspringgreen", 0x00FA9A},
    {"mediumturquoise", 0x48D1CC},
    {"mediumvioletred", 0xC71585},
    {"midnightblue", 0x191970},
    {"mintcream", 0xF5FFFA},
    {"mistyrose", 0xFFE4E1},
    {"moccasin", 0xFFE4B5},
    {"navajowhite", 0xFFDEAD},
    {"navy", 0x000080},
    {"oldlace", 0xFDF5E6},
    {"olive", 0x808000},
    {"olivedrab", 0x6B8E23},
    {"orange", 0xFFA500},
    {"orangered", 0xFF4500},
    {"orchid", 0xDA70D6},
    {"palegoldenrod", 0xEEE8AA},
    {"palegreen", 0x98FB98},
    {"paleturquoise", 0xAFEEEE},
    {"palevioletred", 0xDB7093},
    {"papayawhip", 0xFFEFD5},
    {"peachpuff", 0xFFDAB9},
    {"peru", 0xCD853F},
    {"pink", 0xFFC0CB},
    {"plum", 0xDDA0DD},
    {"powderblue", 0xB0E0E6},
    {"purple", 0x800080},
    {"red", 0xFF0000},
    {"rosybrown", 0xBC8F8F},
    {"royalblue", 0x4169E1},
    {"saddlebrown", 0x8B4513},
    {"salmon", 0xFA8072},
    {"sandybrown", 0xF4A460},
    {"seagreen", 0x2E8B57},
    {"seashell", 0xFFF5EE},
    {"sienna", 0xA0522D},
    {"silver", 0xC0C0C0},
    {"skyblue", 0x87CEEB},
    {"slateblue", 0x6A5ACD},
    {"slategray", 0x708090},
    {"slategrey", 0x708090},
    {"snow", 0xFFFAFA},
    {"springgreen", 0x00FF7F},
    {"steelblue", 0x4682B4},
    {"tan", 0xD2B48C},
    {"teal", 0x008080},
    {"thistle", 0xD8BFD8},
    {"tomato", 0xFF6347},
    {"turquoise", 0x40E0D0},
    {"violet", 0xEE82EE},
    {"wheat", 0xF5DEB3},
    {"white", 0xFFFFFF},
    {"whitesmoke", 0xF5F5F5},
    {"yellow", 0xFFFF00},
    {"yellowgreen", 0x9ACD32},
};

uint8_t clamp_byte(long v) {
  return static_cast<uint8_t>(v < 0 ? 0 : (v > 255 ? 255 : v));
}

bool parse_hex_digits(std::string_view s, uint32_t* out) {
  uint32_t v = 0;
  for (char ch : s) {
    int d;
    if (ch >= '0' && ch <= '9')
      d = ch - '0';
    else if (ch >= 'a' && ch <= 'f')
      d = ch - 'a' + 10;
    else if (ch >= 'A' && ch <= 'F')
      d = ch - 'A' + 10;
    else
      return false;
    v = v * 16 + static_cast<uint32_t>(d);
  }
  *out = v;
  return true;
}

}  // namespace

extern "C" color_t color_parse(const char* str) {
  color_t c = color_init(0, 0, 0, 0);
  if (str == nullptr) return c;
  std::string s(str);
  while (!s.empty() && isspace(static_cast<unsigned char>(s.back())))
    s.pop_back();
  size_t b = 0;
  while (b < s.size() && isspace(static_cast<unsigned char>(s[b])))
    b++;
  s = s.substr(b);
  if (!s.empty() && s[0] == '#') {
    std::string_view hex(s);
    hex.remove_prefix(1);
    uint32_t v;
    if (hex.size() == 6 && parse_hex_digits(hex, &v)) {
      return color_init((v >> 16) & 0xFF, (v >> 8) & 0xFF, v & 0xFF, 0xFF);
    }
    if (hex.size() == 8 && parse_hex_digits(hex, &v)) {
      return color_init((v >> 24) & 0xFF, (v >> 16) & 0xFF, (v >> 8) & 0xFF, v & 0xFF);
    }
    return c;
  }
  if (s.rfind("rgba(", 0) == 0 || s.rfind("rgb(", 0) == 0) {
    bool alpha = s[3] == 'a';
    const char* p = s.c_str() + (alpha ? 5 : 4);
    char* end = nullptr;
    long r = strtol(p, &end, 10);
    if (*end == ',') end++;
    long g = strtol(end, &end, 10);
    if (*end == ',') end++;
    long bl = strtol(end, &end, 10);
    double a = 1.0;
    if (alpha) {
      if (*end == ',') end++;
      a = strtod(end, &end);
    }
    return color_init(clamp_byte(r), clamp_byte(g), clamp_byte(bl),
                      clamp_byte(std::lround(std::clamp(a, 0.0, 1.0) * 255.0)));
  }
  if (s.rfind("linear-gradient(", 0) == 0) {
    // Only the first colour stop is kept as the solid colour.
    size_t open = s.find('(');
    std::string inner = s.substr(open + 1);
    size_t pos = inner.find('#');
    size_t rgb = inner.find("rgb");
    if (rgb != std::string::npos && (pos == std::string::npos || rgb < pos)) {
      size_t close = inner.find(')', rgb);
      return color_parse(inner.substr(rgb, close - rgb + 1).c_str());
    }
    if (pos != std::string::npos) {
      size_t e = pos + 1;
      while (e < inner.size() && isxdigit(static_cast<unsigned char>(inner[e])))
        e++;
      return color_parse(inner.substr(pos, e - pos).c_str());
    }
    return c;
  }
  std::string lower;
  for (char ch : s)
    lower.push_back(static_cast<char>(tolower(static_cast<unsigned char>(ch))));
  if (lower == "transparent") return c;
  for (const auto& nc : kNamedColors) {
    if (lower == nc.name) {
      return color_init((nc.rgb >> 16) & 0xFF, (nc.rgb >> 8) & 0xFF, nc.rgb & 0xFF, 0xFF);
    }
  }
  return c;
}

extern "C" {

rect_t rect_init(xy_t x, xy_t y, wh_t w, wh_t h) {
  rect_t r{x, y, w, h};
  return r;
}

/* ---- events ---- */

event_t event_init(uint32_t type, void* target) {
  event_t e;
  memset(&e, 0, sizeof(e));
  e.type = type;
  e.size = sizeof(event_t);
  e.time = time_now_ms();
  e.target = target;
  return e;
}

key_event_t* key_event_cast(event_t* event) {
  if (event == nullptr) return nullptr;
  if (event->type < EVT_KEY_DOWN || event->type > EVT_KEY_UP_BEFORE_CHILDREN) return nullptr;
  if (event->size != sizeof(key_event_t)) return nullptr;
  return reinterpret_cast<key_event_t*>(event);
}

window_event_t* window_event_cast(event_t* event) {
  if (event == nullptr) return nullptr;
  if (event->type != EVT_WINDOW_WILL_OPEN && event->type != EVT_WINDOW_OPEN &&
      event->type != EVT_WINDOW_CLOSE) {
    return nullptr;
  }
  if (event->size != sizeof(window_event_t)) return nullptr;
  return reinterpret_cast<window_event_t*>(event);
}

value_change_event_t* value_change_event_cast(event_t* event) {
  if (event == nullptr || event->size != sizeof(value_change_event_t)) return nullptr;
  if (event->type != EVT_VALUE_WILL_CHANGE && event->type != EVT_VALUE_CHANGED &&
      event->type != EVT_VALUE_CHANGING) {
    return nullptr;
  }
  return reinterpret_cast<value_change_event_t*>(event);
}

event_t* key_event_init(key_event_t* event, uint32_t type, widget_t* target, int32_t key) {
  if (event == nullptr) return nullptr;
  memset(event, 0, sizeof(*event));
  event->e = event_init(type, target);
  event->e.size = sizeof(key_event_t);
  event->key = static_cast<uint32_t>(key);
  return &event->e;
}

event_t* window_event_init(window_event_t* event, uint32_t type, widget_t* target,
                           widget_t* window) {
  if (event == nullptr) return nullptr;
  memset(event, 0, sizeof(*event));
  event->e = event_init(type, target);
  event->e.size = sizeof(window_event_t);
  event->window = window;
  return &event->e;
}

}  // extern "C"

namespace tk {

void log_capture(tk_log_level_t level, const char* format, va_list ap) {
  Global& gl = g();
  if (!gl.capture_log) return;
  char buf[1024];
  va_list copy;
  va_copy(copy, ap);
  vsnprintf(buf, sizeof(buf), format, copy);
  va_end(copy);
  std::lock_guard<std::mutex> lock(gl.log_mutex);
  static const char* const kLevels[] = {"debug", "info", "warn", "error"};
  std::string line = std::string(kLevels[level & 3]) + ": " + buf;
  while (!line.empty() && line.back() == '\n')
    line.pop_back();
  gl.log_lines.push_back(std::move(line));
}

}  // namespace tk

// The numbers of toolkit version 1.7.1 that page code and the device link rely on.
static_assert(RET_OK == 0 && RET_FAIL == 2 && RET_REMOVE == 7 && RET_REPEAT == 8 &&
              RET_STOP == 11 && RET_BAD_PARAMS == 16 && RET_MAX_NR == 25);
static_assert(EVT_DESTROY == 12);
static_assert(EVT_FOCUS == 272 && EVT_BLUR == 273);
static_assert(EVT_KEY_DOWN == 0x112 && EVT_KEY_LONG_PRESS == 275 &&
              EVT_KEY_DOWN_BEFORE_CHILDREN == 276);
static_assert(EVT_KEY_UP == 0x116 && EVT_KEY_UP_BEFORE_CHILDREN == 279);
static_assert(EVT_LOCALE_CHANGED == 290);
static_assert(EVT_WINDOW_LOAD == 296 && EVT_WIDGET_LOAD == 297 && EVT_WINDOW_WILL_OPEN == 298);
static_assert(EVT_WINDOW_OPEN == 0x12b && EVT_WINDOW_TO_BACKGROUND == 300 &&
              EVT_WINDOW_TO_FOREGROUND == 301);
static_assert(EVT_WINDOW_CLOSE == 0x12e && EVT_REQUEST_CLOSE_WINDOW == 0x12f &&
              EVT_TOP_WINDOW_CHANGED == 304);
static_assert(EVT_REQ_START == 0x1000 && EVT_USER_START == 0x2000);
static_assert(LOG_LEVEL_DEBUG == 0 && LOG_LEVEL_ERROR == 3);
static_assert(APP_MOBILE == 0 && APP_CONSOLE == 3);
static_assert(ASSET_TYPE_STYLE == 3 && ASSET_TYPE_UI == 4 && ASSET_TYPE_STRINGS == 6);
static_assert(DIALOG_QUIT_OK == 1 && DIALOG_QUIT_CANCEL == 2 && DIALOG_QUIT_OTHER == 3);
static_assert(ALIGN_H_CENTER == 1 && ALIGN_H_LEFT == 2 && ALIGN_V_MIDDLE == 1 && ALIGN_V_TOP == 2);
static_assert(TK_KEY_0 == 48 && TK_KEY_A == 65 && TK_KEY_a == 97 && TK_KEY_q == 113);
static_assert(sizeof(bool_t) == 1 && sizeof(wchar_t) == 4 && sizeof(color_t) == 4);
// The public widget fields in the toolkit's order (pages read them directly).
static_assert(offsetof(widget_t, x) == 0 && offsetof(widget_t, h) == 12);
static_assert(offsetof(widget_t, name) < offsetof(widget_t, tr_text) &&
              offsetof(widget_t, tr_text) < offsetof(widget_t, enable) &&
              offsetof(widget_t, enable) < offsetof(widget_t, visible) &&
              offsetof(widget_t, visible) < offsetof(widget_t, state) &&
              offsetof(widget_t, state) < offsetof(widget_t, opacity) &&
              offsetof(widget_t, opacity) < offsetof(widget_t, text) &&
              offsetof(widget_t, text) < offsetof(widget_t, parent) &&
              offsetof(widget_t, parent) < offsetof(widget_t, children) &&
              offsetof(widget_t, children) < offsetof(widget_t, emitter) &&
              offsetof(widget_t, emitter) < offsetof(widget_t, vt) &&
              offsetof(widget_t, vt) < offsetof(widget_t, host));
