// Logging with levels. The log_* macros check the level first, hand the message to the hook
// (log_notify) and print it unchanged on standard output: no prefix, no level, no newline added.
#ifndef TK_LOG_H
#define TK_LOG_H

#include <stdarg.h>
#include <stdio.h>

#include "tkc/types_def.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef enum _tk_log_level_t {
  LOG_LEVEL_DEBUG = 0,
  LOG_LEVEL_INFO = 1,
  LOG_LEVEL_WARN = 2,
  LOG_LEVEL_ERROR = 3
} tk_log_level_t;

typedef ret_t (*tk_log_hook_t)(void* ctx, tk_log_level_t level, const char* format, va_list ap);

/* Returns RET_OK. The initial level is LOG_LEVEL_DEBUG. */
ret_t log_set_log_level(tk_log_level_t log_level);
tk_log_level_t log_get_log_level(void);
/* Forwards the message to the hook set with log_set_hook (if any). */
ret_t log_notify(tk_log_level_t level, const char* format, ...);
ret_t log_set_hook(tk_log_hook_t log, void* ctx);

#ifdef __cplusplus
}
#endif

#define TK_LOG_AT_(level, format, ...)            \
  do {                                            \
    if (log_get_log_level() <= (level)) {         \
      log_notify((level), format, ##__VA_ARGS__); \
      printf(format, ##__VA_ARGS__);              \
      fflush(stdout);                             \
    }                                             \
  } while (0)

#define log_debug(format, ...) TK_LOG_AT_(LOG_LEVEL_DEBUG, format, ##__VA_ARGS__)
#define log_info(format, ...) TK_LOG_AT_(LOG_LEVEL_INFO, format, ##__VA_ARGS__)
#define log_warn(format, ...) TK_LOG_AT_(LOG_LEVEL_WARN, format, ##__VA_ARGS__)
#define log_error(format, ...) TK_LOG_AT_(LOG_LEVEL_ERROR, format, ##__VA_ARGS__)

#endif /* TK_LOG_H */
