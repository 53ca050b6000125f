// The application around the toolkit: theme and assets, start and exit.
#include "application.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "common/common_function.h"
#include "common/navigator.h"
#include "embedded.h"
#include "msg/msghandler.h"

namespace {

ret_t assets_init_internal(const char* theme) {
  assets_manager_t* am = assets_manager();
  log_return_value_if_fail(theme != NULL && am != NULL, RET_BAD_PARAMS);
  assets_manager_set_theme(am, theme);
  assets_manager_preload(am, ASSET_TYPE_STYLE, "default");
  assets_manager_preload(am, ASSET_TYPE_FONT, "default");
  return tk_init_assets();
}

}  // namespace

ret_t assets_init(void) {
  return assets_init_internal("default");
}

bool_t assets_has_theme(const char* name) {
  log_return_value_if_fail(name != NULL, FALSE);
  return strcmp(name, "default") == 0;
}

ret_t assets_set_global_theme(const char* name) {
  return widget_set_theme(window_manager(), name);
}

ret_t application_init(const char* arg) {
  (void)arg;
  Inf_InitEmbeddedFunction();
  GUI_SEND_UI_READY_MSG(0);
  const ret_t ret = navigator_to("Zavo_home_page_1");

  // The observation screen's init has waited for the device's records, first-start flag
  // included: the boot logo now opens above it in the configured language.
  Inf_GetCustomConfigs(&s_stCustConfig);
  navigator_to("Boot_logo");

  // On a desktop, SCOPE_OPEN_PAGE=<window> opens that page above the logo: when the logo's time
  // is up it closes alone and the page stays over the observation screen. It is the way to try
  // the pages no menu row leads to (the compass and wind pages, the zero list). The board never
  // sets it; an unknown name gets the toolkit's "no layout file" line and the scope starts as
  // usual.
  const char* page = std::getenv("SCOPE_OPEN_PAGE");
  if (page != NULL && page[0] != '\0') navigator_to(page);
  return ret;
}

ret_t application_exit(void) {
  Inf_DeinitEmbeddedFunction();
  log_debug("application_exit\n");
  puts("application_exit");
  return RET_OK;
}
