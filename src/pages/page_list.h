// The scope's pages: one window name per line, each bound to its `<name>_init`.
//
// The navigator's page table and the declarations below are generated from PAGE_LIST, so adding
// a page is one line here, its layout (ui/<name>.xml) and its module src/pages/<name>.cpp.
#ifndef SCOPE_PAGES_PAGE_LIST_H
#define SCOPE_PAGES_PAGE_LIST_H

#include <cstdint>

#include "awtk.h"

// Window names, spelt as the layouts name them ("bullistic" and "updata" on purpose), in the
// order of the page table.
#define PAGE_LIST(X)            \
  X(Zavo_Laser_menu)            \
  X(Zavo_lrf_menu)              \
  X(Zavo_PIP_menu)              \
  X(Zavo_laser_move)            \
  X(Zavo_range_move)            \
  X(Zavo_updata)                \
  X(Zavo_tip_ballistic)         \
  X(Zavo_wind)                  \
  X(Zavo_bullistic_lens)        \
  X(Zavo_ballistic_bullet)      \
  X(Zavo_ballistic_zeroweather) \
  X(Zavo_ballistic_weather)     \
  X(Zavo_ballistic_menu)        \
  X(Zavo_Recoil_menu)           \
  X(Zavo_home_page)             \
  X(Zavo_SHUT_DOWN)             \
  X(Zavo_Init)                  \
  X(Boot_logo)                  \
  X(Zavo_file_video)            \
  X(Zavo_file_video_1)          \
  X(Zavo_compass_menu)          \
  X(Zavo_compass_1)             \
  X(Zavo_pixel_save)            \
  X(Zavo_pixel_child)           \
  X(Zavo_reticle_zero)          \
  X(Zavo_home_page_1)           \
  X(Zavo_reticle_move)          \
  X(Zavo_reticle_zero_child)    \
  X(Zavo_reticle_menu)          \
  X(Zavo_file_image)            \
  X(Zavo_file_menu)             \
  X(Zavo_Magnetic_declination)  \
  X(Zavo_vertical_correction)   \
  X(Zavo_level_correction)      \
  X(Zavo_pixel_menu)            \
  X(Zavo_Anemometer)            \
  X(Zavo_format_restart)        \
  X(Zavo_formatting)            \
  X(Zavo_Restoring)             \
  X(Zavo_SDcard)                \
  X(Zavo_Info)                  \
  X(Zavo_USB)                   \
  X(Zavo_Reset)                 \
  X(Zavo_DataTime)              \
  X(Zavo_Settings)              \
  X(Zavo_menu2)                 \
  X(Zavo_menu1)                 \
  X(Zavo_shortcut_menu)

#define PAGE_INIT_DECLARATION(name) ret_t name##_init(widget_t* win, void* ctx);
PAGE_LIST(PAGE_INIT_DECLARATION)
#undef PAGE_INIT_DECLARATION

#define PAGE_COUNT_ONE(name) +1
inline constexpr int PAGE_COUNT = 0 PAGE_LIST(PAGE_COUNT_ONE);
#undef PAGE_COUNT_ONE
static_assert(PAGE_COUNT == 48);

// Row of the first main menu to select when "Zavo_menu1" opens; the home screen sets it before
// opening the menu.
extern uint8_t Zavo_menu1_index;

// Row of the reticle menu to focus when "Zavo_reticle_menu" opens (2, the reticle type); the main
// menu sets it before opening the page.
extern uint8_t Zavo_reticle_index;

#endif  // SCOPE_PAGES_PAGE_LIST_H
