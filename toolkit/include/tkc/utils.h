// Small value types and helpers of the toolkit's C API: strings, wide strings, dynamic arrays,
// generic values, objects, colours, rectangles, time and sleeping.
#ifndef TK_UTILS_H
#define TK_UTILS_H

#include "tkc/types_def.h"

BEGIN_C_DECLS

/* ---- wide strings (wchar_t is 4 bytes on Linux) ---- */
typedef struct _wstr_t {
  uint32_t size;
  uint32_t capacity;
  wchar_t* str;
  bool_t extendable;
} wstr_t;

wstr_t* wstr_init(wstr_t* str, uint32_t capacity);
ret_t wstr_set_utf8(wstr_t* str, const char* text);
ret_t wstr_get_utf8(wstr_t* str, char* text, uint32_t size);
ret_t wstr_set(wstr_t* str, const wchar_t* text);
/* Frees the buffer and sets the string back to empty. */
ret_t wstr_reset(wstr_t* str);

/* Conversions; both return `out`, which is always NUL-terminated within `size`. */
char* tk_utf8_from_utf16(const wchar_t* in, char* out, uint32_t size);
wchar_t* tk_utf8_to_utf16(const char* in, wchar_t* out, uint32_t size);

/* ---- dynamic array of pointers ---- */
typedef struct _darray_t {
  uint32_t size;
  uint32_t capacity;
  void** elms;
  tk_destroy_t destroy;
  tk_compare_t compare;
} darray_t;

/* ---- generic value ---- */
typedef enum _value_type_t {
  VALUE_TYPE_INVALID = 0,
  VALUE_TYPE_BOOL,
  VALUE_TYPE_INT8,
  VALUE_TYPE_UINT8,
  VALUE_TYPE_INT16,
  VALUE_TYPE_UINT16,
  VALUE_TYPE_INT32,
  VALUE_TYPE_UINT32,
  VALUE_TYPE_INT64,
  VALUE_TYPE_UINT64,
  VALUE_TYPE_POINTER,
  VALUE_TYPE_FLOAT,
  VALUE_TYPE_FLOAT32,
  VALUE_TYPE_DOUBLE,
  VALUE_TYPE_STRING,
  VALUE_TYPE_WSTRING
} value_type_t;

typedef struct _value_t {
  union {
    bool_t b;
    int8_t i8;
    uint8_t u8;
    int16_t i16;
    uint16_t u16;
    int32_t i32;
    uint32_t u32;
    int64_t i64;
    uint64_t u64;
    float_t f;
    float f32;
    double f64;
    void* ptr;
    const char* str;
    const wchar_t* wstr;
  } value;
  uint32_t type : 8;
  uint32_t free_handle : 1;
} value_t;

/* ---- objects (only the header that timer_info_t and idle_info_t embed) ---- */
typedef struct _tk_object_t {
  int32_t ref_count;
  char* name;
  const void* vt;
  bool_t visiting;
} tk_object_t;

/* ---- colours: the numeric word is 0xAABBGGRR on little-endian targets ---- */
typedef struct _rgba_t {
  uint8_t r;
  uint8_t g;
  uint8_t b;
  uint8_t a;
} rgba_t;

typedef union _color_t {
  rgba_t rgba;
  uint32_t color;
} color_t;

color_t color_init(uint8_t r, uint8_t g, uint8_t b, uint8_t a);
/* "#RRGGBB", "#RRGGBBAA", "rgb(r,g,b)", "rgba(r,g,b,a)" (a from 0 to 1) and colour names.
 * Anything else (including "#RGB") gives transparent black. */
color_t color_parse(const char* str);

/* ---- rectangles ---- */
typedef struct _point_t {
  xy_t x;
  xy_t y;
} point_t;

typedef struct _rect_t {
  xy_t x;
  xy_t y;
  wh_t w;
  wh_t h;
} rect_t;

rect_t rect_init(xy_t x, xy_t y, wh_t w, wh_t h);

/* ---- strings and numbers ---- */
/* Plain vsnprintf; returns 0 when `str` or `format` is NULL. */
int tk_snprintf(char* str, size_t size, const char* format, ...);
/* "0x..." and "#..." are hex, "0b..." binary, otherwise decimal; clamped to int32. NULL gives 0. */
int32_t tk_atoi(const char* str);
/* Empty, "f...", "F..." and "0" are false; everything else is true. */
bool_t tk_atob(const char* str);
double tk_atof(const char* str);
char* tk_strdup(const char* str);
char* tk_strncpy(char* dst, const char* src, size_t n);

/* ---- time ---- */
/* Milliseconds of the toolkit's clock: monotonic, near 0 at start (see TK_TIME_SCALE and the
 * test clock in tk_testing.h). Not calendar time. */
uint64_t time_now_ms(void);
uint64_t time_now_s(void);
uint64_t time_now_us(void);
/* On the user interface thread under the test clock this advances the clock by `ms` without
 * running timers; elsewhere under the test clock it waits until the clock has moved `ms` on (at
 * most `ms` of real time); with the real clock it sleeps `ms` (divided by TK_TIME_SCALE). */
void sleep_ms(uint32_t ms);

END_C_DECLS

#endif /* TK_UTILS_H */
