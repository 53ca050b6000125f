// inf_menu: the scope's user interface process.
//   inf_menu [width [height [argument]]]
// Screen 1280 x 1024 unless given; the third argument is handed to application_init.
#include <cstdio>

#include "application.h"
#include "awtk.h"

namespace {

constexpr wh_t SCREEN_W = 1280;
constexpr wh_t SCREEN_H = 1024;

// A screen side from the command line; the default, with a message, when it is not a positive
// number.
wh_t screen_side(const char* arg, wh_t fallback) {
  const int32_t value = tk_atoi(arg);
  if (value > 0) return value;
  printf("inf_menu: bad screen size <%s>, using %d\n", arg, fallback);
  return fallback;
}

}  // namespace

int main(int argc, char* argv[]) {
  // Line by line even into a log file or a pipe: the log then holds every line up to a crash,
  // in the order the user interface and listener threads printed them.
  setvbuf(stdout, NULL, _IOLBF, 0);
  printf("%s:%d\n", "main", __LINE__);
  wh_t width = SCREEN_W;
  wh_t height = SCREEN_H;
  if (argc >= 2) width = screen_side(argv[1], SCREEN_W);
  if (argc >= 3) height = screen_side(argv[2], SCREEN_H);

  tk_init(width, height, APP_MOBILE, "inf_menu", "./res");
  system_info_set_default_font(system_info(), "default");
  assets_init();
  tk_ext_widgets_init();

  log_set_log_level(LOG_LEVEL_DEBUG);
  log_info("Build at: %s %s\n", __DATE__, __TIME__);
  window_manager_set_cursor(window_manager(), "cursor");
  // Chinese until the boot logo applies the configured language.
  locale_info_change(locale_info(), "zh", "CN");

  application_init(argc >= 4 ? argv[3] : NULL);
  tk_run();
  application_exit();
  return 0;
}
