// accessory_gallery: pictures of the accessory pages (range finder, laser and picture-in-picture
// options, compass and its calibration, wind meter and wind, recoil-activated video) over the
// observation screen, for docs/screens/ (the `gallery` target).
//
//   accessory_gallery BACKDROP.png OUTPUT_DIR
#include <array>

#include "common/compass_calibration.h"
#include "common/status_records.h"
#include "gallery_pages.h"
#include "home_scene.h"
#include "msg/msghandler.h"
#include "tk_testing.h"

namespace {

void keys(std::initializer_list<uint32_t> codes) {
  for (uint32_t code : codes) {
    tk_testing_key_hit(code);
    tk_testing_advance(0);
  }
}

void compass(int azimuth, int pitch, int cant) {
  stUIStatus.s16CompassAzimuth = static_cast<int16_t>(azimuth);
  stUIStatus.s16CompassPitch = static_cast<int16_t>(pitch);
  stUIStatus.s16CompassSlant = static_cast<int16_t>(cant);
  home_scene_raise(SCREEN_EVT_COMPASS_AZIMUTH);
  home_scene_raise(SCREEN_EVT_COMPASS_PITCH);
  home_scene_raise(SCREEN_EVT_COMPASS_SLANT);
}

void wind(int mm_s) {
  stUIStatus.s16WindSpeed = static_cast<int16_t>(mm_s);
  home_scene_raise(SCREEN_EVT_WIND);
}

const std::array<page_shot, 13> SHOTS = {{
    {"accessory_lrf", "Zavo_lrf_menu",
     [] {
       stDevStatus.s8RangeType = RANGE_CONTINUOUS;
       stDevStatus.s8RangeReticleType = 1;
       stDevStatus.s8RangeReticleColor = 2;
     },
     [] { keys({GUI_KEY_PHOTO_S}); }},
    {"accessory_laser", "Zavo_Laser_menu",
     [] {
       stUIStatus.s8LaserSwitch = 1;
       stDevStatus.s8LaserReticleColor = 1;
     },
     [] { keys({GUI_KEY_RANGE_S}); }},
    {"accessory_pip", "Zavo_PIP_menu", [] { stDevStatus.s8PIPReticleType = 1; }, nullptr},
    {"accessory_compass", "Zavo_compass_menu",
     [] {
       stDevStatus.s16CompassMagnetic = 47;
       calibration_reset();
     },
     [] { compass(251, 3, -1); }},
    {"accessory_compass_calibration", "Zavo_compass_1",
     [] {
       calibration_reset();
       stUIStatus.s16CompassAzimuth = 0;
     },
     [] {
       // The level turn done a moment ago; the vertical turn is next.
       keys({GUI_KEY_FUCTION_S, GUI_KEY_FUCTION_S});
       for (int azimuth = 30; azimuth < 360; azimuth += 30)
         compass(azimuth, 0, 0);
       keys({GUI_KEY_FUCTION_L, GUI_KEY_PHOTO_S});
     }},
    {"accessory_declination", "Zavo_Magnetic_declination",
     [] {
       stDevStatus.s16CompassMagnetic = 47;
       stUIStatus.s16CompassAzimuth = 256;
     },
     [] {
       // The units digit being changed: function twice to reach it, then range (up).
       keys({GUI_KEY_FUCTION_S, GUI_KEY_FUCTION_S, GUI_KEY_FUCTION_S, GUI_KEY_RANGE_S});
     }},
    {"accessory_level_correction", "Zavo_level_correction", [] { calibration_reset(); },
     [] {
       keys({GUI_KEY_FUCTION_S});
       for (int azimuth = 0; azimuth <= 150; azimuth += 30)
         compass(azimuth, 2, -1);
     }},
    {"accessory_vertical_correction", "Zavo_vertical_correction", [] { calibration_reset(); },
     nullptr},
    {"accessory_anemometer", "Zavo_Anemometer",
     [] {
       stUIStatus.s8WindSwitch = 1;
       stUIStatus.wind_connect_state = 1;
     },
     [] { wind(4470); }},
    {"accessory_wind", "Zavo_wind",
     [] {
       stUIStatus.s8WindSwitch = 1;
       stUIStatus.wind_connect_state = 1;
     },
     [] {
       for (int mm_s : {3800, 4470, 5200, 4100})
         wind(mm_s);
     }},
    {"accessory_wind_not_connected", "Zavo_wind",
     [] {
       stUIStatus.s8WindSwitch = 1;
       stUIStatus.wind_connect_state = 0;
     },
     nullptr},
    {"accessory_recoil", "Zavo_Recoil_menu",
     [] {
       stDevStatus.s8RecoilState = 1;
       stDevStatus.s8RecoilBefore = 5;
       stDevStatus.s8RecoilAfter = 10;
       stDevStatus.s8RecoilSensitivity = 1;
     },
     [] {
       keys({GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S});
     }},
    {"accessory_recoil_german", "Zavo_Recoil_menu",
     [] {
       stDevStatus.s8RecoilState = 0;
       stDevStatus.s8RecoilBefore = 10;
       stDevStatus.s8RecoilAfter = 20;
       stDevStatus.s8RecoilSensitivity = 2;
       locale_info_change(locale_info(), "de", "DE");
     },
     nullptr},
}};

}  // namespace

int main(int argc, char** argv) {
  return page_gallery_main(argc, argv, "accessory_gallery", SHOTS);
}
