// reticle_gallery: pictures of the reticle alignment pages over the observation screen (the zero
// list over the reticle menu, the distance editor, the alignment page with its preview mark, the
// reticle menu on each panel, the marker pages and the blind-pixel pages) for docs/screens/.
//
//   reticle_gallery BACKDROP.png OUTPUT_DIR
#include <array>

#include "common/navigator.h"
#include "common/status_records.h"
#include "gallery_pages.h"
#include "msg/msghandler.h"
#include "pages/page_list.h"
#include "tk_testing.h"

namespace {

void keys(std::initializer_list<int> codes) {
  for (int code : codes)
    tk_testing_key_hit(static_cast<uint32_t>(code));
}

// Zeros of the field scope's group: a little lower and to the right the farther they are.
void zeros() {
  for (int k = 0; k < 5; ++k) {
    Inf_Cursor_Zero& z = IR_Cursor.group[0].zero[k];
    z.u16IrCursorDistance = static_cast<int16_t>(91 * (k + 1));
    z.u16IrCursorDistanceYD = static_cast<int16_t>(100 * (k + 1));
    z.s8IrCursorCurrentX = static_cast<int16_t>(640 + 2 * k);
    z.s8IrCursorCurrentY = static_cast<int16_t>(512 + 6 * k * k);
  }
}

void reticle_menu_on(int row) {
  Zavo_reticle_index = static_cast<uint8_t>(row);
}

const std::array<page_shot, 14> SHOTS = {{
    {"reticle_zero_list", "Zavo_reticle_menu", zeros,
     [] {
       navigator_to("Zavo_reticle_zero");
       tk_testing_advance(0);
       keys({GUI_KEY_PHOTO_S});
     }},
    {"reticle_zero_distance", "Zavo_reticle_zero_child", zeros,
     [] {
       keys({GUI_KEY_FUCTION_S, GUI_KEY_FUCTION_S, GUI_KEY_RANGE_S, GUI_KEY_RANGE_S});
     }},
    // Zero C moved 24 pixels right at 2.00x: the preview mark stays on where the aim point was.
    {"reticle_move_preview", "Zavo_reticle_move",
     [] {
       zeros();
       stUIStatus.s8IRZoom = 200;
     },
     [] {
       keys({GUI_KEY_PHOTO_S, GUI_KEY_FUCTION_S});
       for (int i = 0; i < 24; ++i)
         keys({GUI_KEY_PHOTO_S});
     }},
    {"reticle_move_frozen", "Zavo_reticle_move", zeros,
     [] {
       keys(
           {GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S, GUI_KEY_FUCTION_S});
     }},
    {"reticle_menu_type", "Zavo_reticle_menu", [] { reticle_menu_on(2); }, nullptr},
    {"reticle_menu_colour", "Zavo_reticle_menu",
     [] {
       reticle_menu_on(3);
       stDevStatus.s8ReticleColour = 5;
     },
     nullptr},
    {"reticle_menu_brightness", "Zavo_reticle_menu", [] { reticle_menu_on(4); }, nullptr},
    {"reticle_menu_zero", "Zavo_reticle_menu", [] { reticle_menu_on(5); }, nullptr},
    {"reticle_menu_display", "Zavo_reticle_menu", [] { reticle_menu_on(1); },
     [] { keys({GUI_KEY_FUCTION_S}); }},
    {"reticle_range_marker", "Zavo_range_move", nullptr,
     [] {
       keys({GUI_KEY_PHOTO_S, GUI_KEY_FUCTION_L});
     }},
    {"reticle_laser_marker", "Zavo_laser_move", nullptr,
     [] {
       keys({GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S, GUI_KEY_FUCTION_L, GUI_KEY_RANGE_S});
     }},
    {"reticle_pixel_cursor", "Zavo_pixel_menu", nullptr, nullptr},
    {"reticle_pixel_options", "Zavo_pixel_menu", nullptr,
     [] {
       keys({GUI_KEY_FUCTION_S, GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S});
     }},
    {"reticle_pixel_save", "Zavo_pixel_menu", nullptr,
     [] {
       keys({GUI_KEY_FUCTION_S, GUI_KEY_RANGE_S, GUI_KEY_RANGE_S, GUI_KEY_FUCTION_S});
       tk_testing_advance(3000);
     }},
}};

}  // namespace

int main(int argc, char** argv) {
  return page_gallery_main(argc, argv, "reticle_gallery", SHOTS);
}
