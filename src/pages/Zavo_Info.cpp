// "Zavo_Info": the device's identification, read from the version file the device application
// writes at boot (part number, serial number, the two detectors), and the interface's own
// version.
#include <array>
#include <cstdio>
#include <cstring>
#include <string>

#include "common/common_function.h"
#include "common/device_path.h"
#include "common/navigator.h"
#include "msg/msghandler.h"
#include "pages/system_pages.h"

namespace {

constexpr const char* VERSION_FILE = "/tmp/apps.version";
constexpr const char* INTERFACE_VERSION = "V1.2.8";

// The value labels of the first four entries of the version table.
constexpr std::array<const char*, 4> VALUE_LABELS = {"PN_value", "SN_value", "FPA1_value",
                                                     "FPA2_value"};

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  (void)ctx;
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_FUCTION_S:
    case GUI_KEY_FUCTION_L: navigator_back(); break;
    case GUI_KEY_POWER_S: back_to_home(); break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_Info_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  // Read afresh: a file that is gone or lacks an entry shows it empty, never an older value.
  std::memset(Zavo_verArr, 0, sizeof(Zavo_verArr));
  const std::string path = device_path(VERSION_FILE);
  if (get_version(path.c_str()) != 0) {
    printf("Zavo_Info: no identification read from %s\n", path.c_str());
  }
  for (size_t i = 0; i < VALUE_LABELS.size(); ++i) {
    char text[32];
    tk_snprintf(text, sizeof(text), "%s", Zavo_verArr[i]);
    widget_set_text_utf8(widget_lookup(win, VALUE_LABELS[i], TRUE), text);
  }
  widget_set_text_utf8(widget_lookup(win, "SW_value", TRUE), INTERFACE_VERSION);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
