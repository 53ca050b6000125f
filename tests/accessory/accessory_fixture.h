// The accessory pages under test: opened by name through the navigator, over the observation
// screen when a test leaves them, with the device's frames built as the simulated device builds
// them. Every case starts with no compass calibration run.
#ifndef SCOPE_TESTS_ACCESSORY_ACCESSORY_FIXTURE_H
#define SCOPE_TESTS_ACCESSORY_ACCESSORY_FIXTURE_H

#include "common/compass_calibration.h"
#include "device_model.h"
#include "page_fixture.h"
#include "pages/accessory_pages.h"
#include "pages/page_list.h"

namespace accessory_test {

using page_test::Box;
using page_test::Frames;

class AccessoryTest : public page_test::PageTest {
 protected:
  void SetUp() override {
    PageTest::SetUp();
    calibration_reset();
  }

  // The observation screen first, then the page on top of it (as the menus open them).
  widget_t* open_over_home(const char* name) {
    EXPECT_NE(home_scene_open(), nullptr);
    sent_frames();
    return open(name);
  }

  // The compass angles as the device reports them (events follow on the UI thread).
  void compass(int azimuth, int pitch, int cant) {
    from_device(devsim::compass_frame(COMPASS_AZIMUTH_ANGLE, azimuth));
    from_device(devsim::compass_frame(COMPASS_PITCH_ANGLE, pitch));
    from_device(devsim::compass_frame(COMPASS_SLANT_ANGLE, cant));
  }
  void wind(int mm_s) { from_device(devsim::wind_frame(mm_s)); }
  void wind_connected(bool connected) {
    from_device(page_test::device_frame(29, 0, 0, {static_cast<uint8_t>(connected ? 1 : 0)}));
  }

  // Function on `row` after moving there with the photo key from row 1.
  void act_on_row(int row) {
    for (int i = 1; i < row; ++i)
      key(GUI_KEY_PHOTO_S);
    key(GUI_KEY_FUCTION_S);
  }
};

}  // namespace accessory_test

#endif  // SCOPE_TESTS_ACCESSORY_ACCESSORY_FIXTURE_H
