// Screenshots asked for through the environment, for any program built on the toolkit:
// TK_SCREENSHOT names the PNG; TK_SCREENSHOT_AFTER_MS writes it once after that many ms of
// toolkit time and quits; TK_SCREENSHOT_EVERY_MS rewrites it (atomically) at that period
// whenever the frame changed. With neither, the picture is written after 1000 ms.
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <string>

#include "draw/backends.h"
#include "draw/png_io.h"
#include "draw/screen.h"
#include "tk_internal.h"

namespace tk::draw {

namespace {

constexpr long kDefaultAfterMs = 1000;

struct EnvShot {
  bool started = false;
  std::string path;
  bool write_and_quit = false;  // the AFTER_MS timer has fired
  bool write_periodic = false;  // the EVERY_MS timer has fired
  uint64_t written_paints = UINT64_MAX;
  bool quitting = false;
};

EnvShot s_shot;

// A non-negative number of milliseconds from the environment; -1 when unset or invalid (an
// invalid value is reported).
long env_ms(const char* var) {
  const char* s = getenv(var);
  if (s == nullptr || *s == '\0') return -1;
  errno = 0;
  char* end = nullptr;
  long v = strtol(s, &end, 10);
  if (errno != 0 || end == s || *end != '\0' || v < 0 || v > INT_MAX) {
    log_error("%s=\"%s\" is not a number of milliseconds; ignored\n", var, s);
    return -1;
  }
  return v;
}

ret_t on_after(const timer_info_t*) {
  s_shot.write_and_quit = true;
  return RET_REMOVE;
}

ret_t on_every(const timer_info_t*) {
  s_shot.write_periodic = true;
  return RET_REPEAT;
}

void write_frame() {
  std::string error;
  if (!save_png(screen().frame, s_shot.path, error)) {
    log_error("TK_SCREENSHOT: cannot write %s: %s\n", s_shot.path.c_str(), error.c_str());
    return;
  }
  s_shot.written_paints = screen().paints;
}

void start() {
  s_shot.started = true;
  const char* path = getenv("TK_SCREENSHOT");
  if (path == nullptr || *path == '\0') return;
  s_shot.path = path;
  long after = env_ms("TK_SCREENSHOT_AFTER_MS");
  long every = env_ms("TK_SCREENSHOT_EVERY_MS");
  if (after < 0 && every <= 0) after = kDefaultAfterMs;
  if (every > 0) timer_add(on_every, nullptr, static_cast<uint32_t>(every));
  if (after >= 0) timer_add(on_after, nullptr, static_cast<uint32_t>(after));
}

}  // namespace

void screenshot_env_on_paint() {
  if (!s_shot.started) start();
  if (s_shot.path.empty() || s_shot.quitting) return;
  if (s_shot.write_periodic) {
    s_shot.write_periodic = false;
    if (screen().paints != s_shot.written_paints) write_frame();
  }
  if (s_shot.write_and_quit) {
    s_shot.write_and_quit = false;
    write_frame();
    s_shot.quitting = true;
    tk_quit();
  }
}

void screenshot_env_reset() {
  s_shot = EnvShot();
}

}  // namespace tk::draw
