// Start-up and the main loop, system information, assets and locale.
#ifndef TK_BASE_MAIN_LOOP_H
#define TK_BASE_MAIN_LOOP_H

#include "base/widget.h"

BEGIN_C_DECLS

typedef enum _app_type_t {
  APP_MOBILE = 0,
  APP_SIMULATOR = 1,
  APP_DESKTOP = 2,
  APP_CONSOLE = 3
} app_type_t;

/* The main loop (opaque). */
typedef struct _main_loop_t main_loop_t;

/* Creates the timer and idle managers, assets, locale ("en_US"), window manager and main loop;
 * `w` x `h` is the screen. `app_root` is resolved as described in the README. The calling
 * thread becomes the user interface thread. */
ret_t tk_init(wh_t w, wh_t h, app_type_t app_type, const char* app_name, const char* app_root);
/* Registers the extension widget kinds (none beyond the basic ones in this host). */
ret_t tk_ext_widgets_init(void);
/* Installs the cached "default" style as the global theme. */
ret_t tk_init_assets(void);
/* Runs the main loop until tk_quit. */
ret_t tk_run(void);
/* Schedules a 0 ms timer that stops the loop: tk_run returns after the current step. */
ret_t tk_quit(void);
ret_t tk_quit_ex(uint32_t delay_ms);
ret_t tk_deinit(void);
main_loop_t* main_loop(void);

/* ---- system information ---- */
typedef struct _system_info_t {
  uint32_t lcd_w;
  uint32_t lcd_h;
  uint32_t lcd_orientation;
  float_t device_pixel_ratio;
  const char* default_font;
  app_type_t app_type;
  const char* app_name;
  const char* app_root;
  const char* country;
  const char* language;
} system_info_t;

system_info_t* system_info(void);
ret_t system_info_set_default_font(system_info_t* info, const char* default_font);

/* ---- assets ---- */
typedef enum _asset_type_t {
  ASSET_TYPE_NONE = 0,
  ASSET_TYPE_FONT = 1,
  ASSET_TYPE_IMAGE = 2,
  ASSET_TYPE_STYLE = 3,
  ASSET_TYPE_UI = 4,
  ASSET_TYPE_XML = 5,
  ASSET_TYPE_STRINGS = 6,
  ASSET_TYPE_SCRIPT = 7,
  ASSET_TYPE_FLOW = 8,
  ASSET_TYPE_DATA = 9
} asset_type_t;

typedef struct _assets_manager_t assets_manager_t;

assets_manager_t* assets_manager(void);
/* Selects the asset directory of later loads and drops cached styles; open windows keep theirs. */
ret_t assets_manager_set_theme(assets_manager_t* am, const char* theme);
/* Loads the asset and releases it; only styles, fonts and strings stay cached. */
ret_t assets_manager_preload(assets_manager_t* am, asset_type_t type, const char* name);

/* ---- locale ---- */
typedef struct _locale_info_t {
  char language[3];
  char country[3];
  emitter_t* emitter;
} locale_info_t;

locale_info_t* locale_info(void);
/* NULL arguments mean "en"/"US". Does nothing when unchanged; otherwise loads the strings of the
 * new locale, re-translates every tr_text in every open window and fires EVT_LOCALE_CHANGED. */
ret_t locale_info_change(locale_info_t* locale_info, const char* language, const char* country);
/* The translation of `text`, or `text` itself when there is none. */
const char* locale_info_tr(locale_info_t* locale_info, const char* text);

END_C_DECLS

#endif /* TK_BASE_MAIN_LOOP_H */
