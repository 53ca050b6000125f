// "Boot_logo": the start-up logo. It opens above the observation screen once the device
// application has sent its records, applies the configured language (the default language of
// language.json on the first start), and after 5 s brings the observation screen of the device's
// use mode to the top, closing itself.
#include "pages/Boot_logo.h"

#include <cstdint>
#include <cstdio>

#include "common/common_function.h"
#include "common/navigator.h"
#include "msg/msghandler.h"

namespace {

// How long the logo stays up.
constexpr uint32_t BOOT_LOGO_MS = 5000;
// Basic function that carries stDevStatus.s8Language to the device application.
constexpr uint8_t BASIC_LANGUAGE_INDEX = 16;

ret_t visit_init_child(void* ctx, const void* iter) {
  (void)ctx;
  (void)iter;
  return RET_OK;
}

// Prints the language configuration read from language.json, as bytes.
void print_language_config(void) {
  printf("s_stCustConfig->s8DefaultLanguage = %d!\n",
         static_cast<uint8_t>(s_stCustConfig.s8DefaultLanguage));
  for (int i = 0; i < 4; ++i) {
    printf("s_stCustConfig->s8LangList[%d]: %d\n", i,
           static_cast<uint8_t>(s_stCustConfig.s8LangList[i]));
  }
}

ret_t on_open_home_page(const timer_info_t* timer) {
  widget_t* logo = static_cast<widget_t*>(timer->ctx);
  // Every picture starts at 1x. The thermal zoom is kept in hundredths by every reader of it (the
  // zoom read-out, the reticle geometry, the device's zoom frames), so 1x is 100: a literal 1
  // would read as 0.01x, showing "0.0X" and shrinking the reticle to a point. The visible and
  // fusion zooms count whole steps.
  stUIStatus.s8IRZoom = 100;
  stUIStatus.s8VisiZoom = 1;
  stUIStatus.s8FuZoom = 1;
  widget_t* wm = window_manager();
  if (window_manager_get_top_window(wm) == logo) {
    navigator_switch_to(stDevStatus.s8UseMode != 0 ? "clipon_home_page" : "observe_home_page",
                        TRUE);
  } else {
    // A page opened above the logo meanwhile (shut-down, update): it stays on top, above the
    // observation screen, and only the logo goes.
    window_manager_close_window_force(wm, logo);
  }
  return RET_REMOVE;
}

}  // namespace

ret_t Boot_logo_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  widget_foreach(win, visit_init_child, win);
  widget_add_timer(win, on_open_home_page, BOOT_LOGO_MS);

  // First start: the customer's default language becomes the device's language, which the
  // device application stores like every other setting.
  if (stUIStatus.s8FirstLanguageFlag == 1) {
    stDevStatus.s8Language = s_stCustConfig.s8DefaultLanguage;
    GUI_SEND_BASIC_FUNCTION_MSG(BASIC_LANGUAGE_INDEX);
  }
  print_language_config();

  const uint8_t language = static_cast<uint8_t>(stDevStatus.s8Language);
  if (language < language_table.size()) {
    change_locale(language_table[language].locale);
    puts(language_table[language].message);
  }
  return RET_OK;
}
