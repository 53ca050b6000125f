// Pictures of the ballistic pages for docs/screens/: the menu browsing, a wind digit being
// changed, the calculator off, the bullet and weather pages, and the notice of a profile the
// device loaded.
#include <array>

#include "common/status_records.h"
#include "gallery_pages.h"
#include "msg/msghandler.h"
#include "tk_testing.h"

namespace {

// A .308 load in profile 2 with the calculator on, a light wind from the right.
void field_profile() {
  stDevStatus.s8BallisticGroup = 1;
  stDevStatus.s8BallisticReticle = 2;
  stDevStatus.s8BallisticReticleColor = 1;
  stDevStatus.s8DistanceUint = DISTANCE_M;
  info[0].ballistics_sw = 1;
  Info_ballistics& p = info[1];
  p.wind.speed = 3.5;
  p.wind.angle = 90;
  p.gun.scope.zeroRange = 100;
  p.gun.scope.zeroRange_yard = 109;
  p.gun.scope.sightHeightOverBore = 4.5;
  p.gun.bullet.ballisticsCoef = 0.505;
  p.gun.bullet.dragFunction = 0;
  p.gun.bullet.velocity = 790;
  p.gun.riflingRange = 11.25;
  p.gun.bullet.length = 1.24;
  p.gun.bullet.diameter = 0.308;
  p.gun.bullet.weight = 175;
  p.atmosphere.temperature = -5;
  p.atmosphere.barometer = 98.6f;
  p.atmosphere.relative_humidity = 65;
}

void keys(std::initializer_list<uint32_t> codes) {
  for (uint32_t code : codes) {
    tk_testing_key_hit(code);
    tk_testing_advance(0);
  }
}

constexpr uint32_t UP = GUI_KEY_RANGE_S;
constexpr uint32_t DOWN = GUI_KEY_PHOTO_S;
constexpr uint32_t OK = GUI_KEY_FUCTION_S;

const std::array<page_shot, 8> SHOTS = {{
    {"ballistic_menu", "Zavo_ballistic_menu", field_profile,
     [] {
       keys({DOWN, DOWN, DOWN, DOWN});
     }},
    {"ballistic_menu_editing", "Zavo_ballistic_menu", field_profile,
     [] {
       keys({DOWN, DOWN, DOWN, DOWN, OK, OK, UP, UP});
     }},
    {"ballistic_menu_off",
     "Zavo_ballistic_menu",
     [] {
       field_profile();
       info[0].ballistics_sw = 0;
     },
     {}},
    {"ballistic_bullet", "Zavo_ballistic_bullet", field_profile,
     [] {
       keys({DOWN, DOWN, OK, OK, DOWN});
     }},
    {"ballistic_weather", "Zavo_ballistic_weather", field_profile, [] { keys({OK}); }},
    {"ballistic_tip", "Zavo_tip_ballistic", field_profile, {}},
    {"ballistic_zeroweather", "Zavo_ballistic_zeroweather", field_profile, {}},
    {"ballistic_lens", "Zavo_bullistic_lens", field_profile, {}},
}};

}  // namespace

int main(int argc, char** argv) {
  return page_gallery_main(argc, argv, "ballistic_gallery", SHOTS);
}
