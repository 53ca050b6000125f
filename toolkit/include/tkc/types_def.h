// Basic types, result codes and the argument-check macros of the toolkit's C API.
#ifndef TK_TYPES_DEF_H
#define TK_TYPES_DEF_H

#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <wchar.h>
#include <assert.h>

#ifdef __cplusplus
#define BEGIN_C_DECLS extern "C" {
#define END_C_DECLS }
#else
#define BEGIN_C_DECLS
#define END_C_DECLS
#endif

#if defined(__cplusplus) || !defined(__GNUC__)
typedef uint8_t bool_t;
#else
typedef _Bool bool_t;
#endif

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

typedef int32_t xy_t;
typedef int32_t wh_t;

#ifdef WITH_DOUBLE_FLOAT
typedef long double float_t;
#else
/* Same as <math.h>'s float_t on every target where __FLT_EVAL_METHOD__ is 0. */
typedef float float_t;
#endif

#define TK_INVALID_ID 0u

/* Result of almost every call. The numbering is part of the API: callers compare names and
 * tables are ordered by them. */
typedef enum _ret_t {
  RET_OK = 0,
  RET_OOM,
  RET_FAIL,
  RET_NOT_IMPL,
  RET_QUIT,
  RET_FOUND,
  RET_BUSY,
  RET_REMOVE,
  RET_REPEAT,
  RET_NOT_FOUND,
  RET_DONE,
  RET_STOP,
  RET_SKIP,
  RET_CONTINUE,
  RET_OBJECT_CHANGED,
  RET_ITEMS_CHANGED,
  RET_BAD_PARAMS,
  RET_TIMEOUT,
  RET_CRC,
  RET_IO,
  RET_EOS,
  RET_NOT_MODIFIED,
  RET_NO_PERMISSION,
  RET_INVALID_ADDR,
  RET_EXCEED_RANGE,
  RET_MAX_NR
} ret_t;

typedef ret_t (*tk_visit_t)(void* ctx, const void* data);
typedef ret_t (*tk_destroy_t)(void* data);
typedef int (*tk_compare_t)(const void* a, const void* b);

#ifndef tk_min
#define tk_min(a, b) ((a) < (b) ? (a) : (b))
#endif
#ifndef tk_max
#define tk_max(a, b) ((a) > (b) ? (a) : (b))
#endif
#ifndef tk_abs
#define tk_abs(a) ((a) < 0 ? -(a) : (a))
#endif
#ifndef ARRAY_SIZE
#define ARRAY_SIZE(a) (sizeof(a) / sizeof(a[0]))
#endif

/* NULL-safe string comparison: two NULLs are equal, one NULL is unequal. */
#define tk_str_eq(s1, s2) \
  (((s1) != NULL && (s2) != NULL && *(s1) == *(s2)) ? strcmp((s1), (s2)) == 0 : ((s1) == (s2)))
#define tk_str_ieq(s1, s2) \
  (((s1) != NULL && (s2) != NULL) ? strcasecmp((s1), (s2)) == 0 : ((s1) == (s2)))

#include "tkc/log.h"

/* ENSURE evaluates its expression in every build; it asserts only without NDEBUG. */
#ifdef NDEBUG
#define ENSURE(p) (void)(p)
#define return_if_fail(p) \
  if (!(p)) {             \
    return;               \
  }
#define break_if_fail(p) \
  if (!(p)) {            \
    break;               \
  }
#define continue_if_fail(p) \
  if (!(p)) {               \
    continue;               \
  }
#define goto_error_if_fail(p) \
  if (!(p)) {                 \
    goto error;               \
  }
#define return_value_if_fail(p, value) \
  if (!(p)) {                          \
    return (value);                    \
  }
#define return_ret_if_fail(p) \
  {                           \
    ret_t ret__ = (p);        \
    if (RET_OK != ret__) {    \
      return ret__;           \
    }                         \
  }
#else
#define ENSURE(p) assert(p)
#define return_if_fail(p)                                                  \
  if (!(p)) {                                                              \
    log_warn("%s:%d condition(" #p ") failed!\n", __FUNCTION__, __LINE__); \
    return;                                                                \
  }
#define break_if_fail(p)                                                   \
  if (!(p)) {                                                              \
    log_warn("%s:%d condition(" #p ") failed!\n", __FUNCTION__, __LINE__); \
    break;                                                                 \
  }
#define continue_if_fail(p)                                                \
  if (!(p)) {                                                              \
    log_warn("%s:%d condition(" #p ") failed!\n", __FUNCTION__, __LINE__); \
    continue;                                                              \
  }
#define goto_error_if_fail(p)                                              \
  if (!(p)) {                                                              \
    log_warn("%s:%d condition(" #p ") failed!\n", __FUNCTION__, __LINE__); \
    goto error;                                                            \
  }
#define return_value_if_fail(p, value)                                     \
  if (!(p)) {                                                              \
    log_warn("%s:%d condition(" #p ") failed!\n", __FUNCTION__, __LINE__); \
    return (value);                                                        \
  }
#define return_ret_if_fail(p)                                        \
  {                                                                  \
    ret_t ret__ = (p);                                               \
    if (RET_OK != ret__) {                                           \
      log_warn("%s:%d " #p " != RET_OK!\n", __FUNCTION__, __LINE__); \
      return ret__;                                                  \
    }                                                                \
  }
#endif

/* Prints the failed condition in every build. */
#define log_if_fail(p)                                                     \
  if (!(p)) {                                                              \
    log_warn("%s:%d condition(" #p ") failed!\n", __FUNCTION__, __LINE__); \
  }

#endif /* TK_TYPES_DEF_H */
