// The observation screen under test: the common page fixture (tests/common/page_fixture.h) with
// the screen opened by name, the compass on, and the device's battery and solution reports.
#ifndef SCOPE_TESTS_HOME_HOME_FIXTURE_H
#define SCOPE_TESTS_HOME_HOME_FIXTURE_H

#include <cstring>
#include <vector>

#include "common/Zavo_reticle_zoom.h"
#include "page_fixture.h"
#include "pages/Zavo_home_page_1.h"
#include "pages/Zavo_home_page_1_overlay.h"

namespace home_test {

using page_test::Box;
using page_test::device_frame;
using page_test::fake_statfs;
using page_test::Frames;
using page_test::g_free_mib;
using page_test::printed;

class HomeTest : public page_test::PageTest {
 protected:
  void SetUp() override {
    PageTest::SetUp();
    stDevStatus.s8CompassSwitch = 1;
  }

  // Opens the observation screen through the navigator (its init runs); what init sent goes to
  // init_frames_.
  void open_home() {
    win_ = home_scene_open();
    ASSERT_NE(win_, nullptr);
    init_frames_ = sent_frames();
  }

  // Battery report: type 15, sub-command 0, the raw value little-endian.
  void battery_report(int16_t value) {
    const auto v = static_cast<uint16_t>(value);
    from_device(device_frame(15, 0, 0, {static_cast<uint8_t>(v), static_cast<uint8_t>(v >> 8)}));
  }
  // A ballistic solution (type 27): moaV and moaH as two little-endian floats.
  void solution_report(float moa_v, float moa_h) {
    std::vector<uint8_t> values(8);
    std::memcpy(values.data(), &moa_v, 4);
    std::memcpy(values.data() + 4, &moa_h, 4);
    from_device(device_frame(27, 0, 0, values));
  }
};

}  // namespace home_test

#endif  // SCOPE_TESTS_HOME_HOME_FIXTURE_H
