// The ballistic pages under test: the common page fixture with a profile in the records, keys
// pressed through the main loop one after the other, the digits of a row read back as text, and
// the frames of GUI_SEND_BALLISTIC_PARM_MSG decoded as the device reads them.
#ifndef SCOPE_TESTS_BALLISTIC_BALLISTIC_FIXTURE_H
#define SCOPE_TESTS_BALLISTIC_BALLISTIC_FIXTURE_H

#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

#include "page_fixture.h"

namespace ballistic_test {

using page_test::Box;
using page_test::printed;

inline constexpr uint32_t UP = GUI_KEY_RANGE_S;
inline constexpr uint32_t DOWN = GUI_KEY_PHOTO_S;
inline constexpr uint32_t OK = GUI_KEY_FUCTION_S;
inline constexpr uint32_t BACK = GUI_KEY_FUCTION_L;
inline constexpr uint32_t HOME = GUI_KEY_POWER_S;

// A .308 load: what the pages start from unless a case changes it.
inline Info_ballistics field_profile() {
  Info_ballistics p{};
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
  p.atmosphere.temperature = 15;
  p.atmosphere.barometer = 98.6f;
  p.atmosphere.relative_humidity = 65;
  return p;
}

class BallisticTest : public page_test::PageTest {
 protected:
  void SetUp() override {
    PageTest::SetUp();
    for (auto& p : info)
      p = field_profile();
    info[0].ballistics_sw = 1;
    stDevStatus.s8BallisticGroup = 1;
    stDevStatus.s8DistanceUint = DISTANCE_M;
  }
  void TearDown() override {
    EXPECT_EQ(tk_testing_failed_lookups(), 0u);
    PageTest::TearDown();
  }

  // The observation screen first (as on the scope), then `page` over it.
  widget_t* open_over_home(const char* page, void* ctx = nullptr) {
    // A fresh stack: whatever an earlier step left open goes first.
    for (const std::string& name : tk_testing_window_names())
      window_manager_close_window_force(window_manager(),
                                        widget_child(window_manager(), name.c_str()));
    advance(0);
    const char distance = stDevStatus.s8DistanceUint;
    if (home_scene_open() == nullptr) return nullptr;
    stDevStatus.s8DistanceUint = distance;  // the home screen forces yards
    sent_frames();
    return open(page, ctx);
  }

  // Keys one after the other, each run through the main loop.
  void keys(std::initializer_list<uint32_t> codes) {
    for (uint32_t code : codes) {
      key(code);
      advance(0);
    }
  }
  // OK `ok` times, then up `ups` times (or down for a negative count): a digit set by its keys.
  void ok_then_step(int ok, int ups) {
    for (int i = 0; i < ok; ++i)
      keys({OK});
    for (int i = 0; i < (ups < 0 ? -ups : ups); ++i)
      keys({ups < 0 ? DOWN : UP});
  }

  // The texts of the labels, joined.
  std::string digits(std::initializer_list<const char*> labels) const {
    std::string out;
    for (const char* l : labels)
      out += text(l);
    return out;
  }
  // The ballistic frames sent since the last call, decoded.
  std::vector<std::string> ballistic_sent() {
    std::vector<std::string> out;
    for (const std::string& line : sent()) {
      if (line.rfind("BALLISTIC ", 0) == 0) out.push_back(line);
    }
    return out;
  }

  Info_ballistics& profile() {
    return info[static_cast<unsigned char>(stDevStatus.s8BallisticGroup)];
  }
};

}  // namespace ballistic_test

#endif  // SCOPE_TESTS_BALLISTIC_BALLISTIC_FIXTURE_H
