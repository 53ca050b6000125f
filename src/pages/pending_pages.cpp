// Pages whose own module is not written yet. Each gets the common page init with a visitor that
// prepares nothing, so the page table is whole and such a window (once it has a layout) opens
// and shows its layout as it stands. A page's own module takes its line out of this list.
#include <cstdint>

#include "common/common_function.h"
#include "pages/page_list.h"

#define PENDING_PAGE_LIST(X)    \
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
  X(Zavo_SHUT_DOWN)             \
  X(Zavo_file_video)            \
  X(Zavo_file_video_1)          \
  X(Zavo_compass_menu)          \
  X(Zavo_compass_1)             \
  X(Zavo_pixel_save)            \
  X(Zavo_pixel_child)           \
  X(Zavo_reticle_zero)          \
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

namespace {

ret_t visit_nothing(void* ctx, const void* iter) {
  (void)ctx;
  (void)iter;
  return RET_OK;
}

}  // namespace

#define PENDING_PAGE_INIT(name)                            \
  ret_t name##_init(widget_t* win, void* ctx) {            \
    (void)ctx;                                             \
    log_return_value_if_fail(win != NULL, RET_BAD_PARAMS); \
    widget_foreach(win, visit_nothing, win);               \
    return RET_OK;                                         \
  }
PENDING_PAGE_LIST(PENDING_PAGE_INIT)
#undef PENDING_PAGE_INIT

// Set by the home screen before it opens "Zavo_menu1"; it moves with that page's module.
uint8_t Zavo_menu1_index = 0;
