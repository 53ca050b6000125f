// Which backend a run uses: chosen from the environment, since the application's command line
// is fixed.
#include <cstdlib>
#include <string>

#include "draw/backends.h"
#include "tk_internal.h"

namespace tk {

// TK_HEADLESS set (to anything but "0"), or no DISPLAY nor WAYLAND_DISPLAY: frames in memory;
// otherwise a window, falling back to headless when none can be opened.
std::unique_ptr<Backend> backend_create(int32_t lcd_w, int32_t lcd_h) {
  auto set = [](const char* var) {
    const char* v = getenv(var);
    return v != nullptr && *v != '\0';
  };
  const char* forced = getenv("TK_HEADLESS");
  bool headless = forced != nullptr && *forced != '\0' && std::string(forced) != "0";
  if (!headless && !set("DISPLAY") && !set("WAYLAND_DISPLAY")) headless = true;
  if (!headless) {
    if (auto b = draw::sdl_backend_create(lcd_w, lcd_h)) return b;
    log_error("no window: drawing headless\n");
  }
  return draw::headless_backend_create(lcd_w, lcd_h);
}

}  // namespace tk
