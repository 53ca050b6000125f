// The magnetic declination page on the digit editor: the stored tenths shown as digits, a digit
// selected and changed with the keys, the value saved and sent on function held, and leaving
// without saving.
#include <string>
#include <vector>

#include "accessory_fixture.h"
#include "common/digit_editor.h"

namespace {

using accessory_test::AccessoryTest;
using accessory_test::Box;
using accessory_test::Frames;
using Lines = std::vector<std::string>;

class DeclinationTest : public AccessoryTest {
 protected:
  std::string digits() {
    return text("label_declination_sign") + text("label_declination_two") +
           text("label_declination_one") + text("label_declination_point") +
           text("label_declination_point1");
  }
  void keys(std::initializer_list<uint32_t> codes) {
    for (uint32_t k : codes)
      key(k);
  }
};

TEST_F(DeclinationTest, TheStoredTenthsAreShownAsSignAndDigits) {
  struct Case {
    int16_t tenths;
    const char* shown;
  } cases[] = {{47, "+04.7"}, {-125, "-12.5"}, {0, "+00.0"}, {999, "+99.9"},
               {-1, "-00.1"}, {5000, "+90.0"}};  // beyond the digits: the leading one holds at 9
  for (const Case& c : cases) {
    stDevStatus.s16CompassMagnetic = c.tenths;
    open("Zavo_Magnetic_declination");
    EXPECT_EQ(digits(), c.shown) << c.tenths;
    EXPECT_FALSE(shown("view_declination_sel"));
    EXPECT_FALSE(shown("view_declination_arrow"));
    EXPECT_EQ(state("label_declination"), "focused");
  }
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(DeclinationTest, DigitsAreSelectedChangedAndSavedThenSent) {
  stDevStatus.s16CompassMagnetic = 47;
  open("Zavo_Magnetic_declination");
  keys({GUI_KEY_RANGE_S, GUI_KEY_PHOTO_S});  // browsing: nothing to change
  EXPECT_EQ(digits(), "+04.7");
  key(GUI_KEY_FUCTION_S);
  EXPECT_TRUE(shown("view_declination_sel"));
  EXPECT_EQ(box("view_declination_sel"), (Box{-2, 4, 20, 40})) << "around the sign";
  EXPECT_EQ(state("label_declination_sign"), "focused");
  key(GUI_KEY_RANGE_S);
  EXPECT_EQ(digits(), "-04.7");
  EXPECT_TRUE(shown("view_declination_arrow"));
  EXPECT_EQ(box("view_declination_arrow"), (Box{2, -3, 12, 54}));
  EXPECT_EQ(image("image_declination_up"), "hold_menu_arrow_up_sel");
  keys({GUI_KEY_FUCTION_S, GUI_KEY_RANGE_S, GUI_KEY_RANGE_S});  // tens 0 -> 2
  keys({GUI_KEY_FUCTION_S, GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S,
        GUI_KEY_PHOTO_S});  // units 4 -> 9 (down, wrapping)
  EXPECT_EQ(image("image_declination_down"), "hold_menu_arrow_down_sel");
  keys({GUI_KEY_FUCTION_S, GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S,
        GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S});  // tenths 7 -> 1
  EXPECT_EQ(box("view_declination_sel"), (Box{62, 4, 20, 40})) << "around the tenths";
  EXPECT_EQ(digits(), "-29.1");
  EXPECT_EQ(stDevStatus.s16CompassMagnetic, 47) << "nothing saved before function held";
  EXPECT_TRUE(sent_frames().empty());
  key(GUI_KEY_FUCTION_L);
  EXPECT_EQ(stDevStatus.s16CompassMagnetic, -291);
  const Frames frames = sent_frames();
  ASSERT_EQ(frames.size(), 1u);
  EXPECT_EQ(page_test::decoded(frames), Lines{"COMPASS COMPASS_OFFESET_PARAM declination=-291"});
  EXPECT_EQ(framedec::hex(frames[0]), "aa 0a 06 01 00 00 01 1d 00 01 da eb aa");
  EXPECT_FALSE(shown("view_declination_sel"));
  EXPECT_FALSE(shown("view_declination_arrow"));
  EXPECT_EQ(top_name(), "Zavo_Magnetic_declination") << "saving stays on the page";
}

TEST_F(DeclinationTest, FunctionWalksTheDigitsRoundAndANegativeZeroSavesAsZero) {
  stDevStatus.s16CompassMagnetic = 0;
  open("Zavo_Magnetic_declination");
  const int frame_x[] = {-2, 14, 30, 62, -2};
  for (int x : frame_x) {
    key(GUI_KEY_FUCTION_S);
    EXPECT_EQ(box("view_declination_sel").x, x);
  }
  key(GUI_KEY_RANGE_S);  // the sign again: "-" over zeros
  EXPECT_EQ(digits(), "-00.0");
  key(GUI_KEY_FUCTION_L);
  EXPECT_EQ(stDevStatus.s16CompassMagnetic, 0);
  EXPECT_EQ(sent(), Lines{"COMPASS COMPASS_OFFESET_PARAM declination=0"});
  EXPECT_EQ(digits(), "+00.0");
}

TEST_F(DeclinationTest, LeavingWhileEditingSavesNothing) {
  stDevStatus.s16CompassMagnetic = 47;
  open_over_home("Zavo_Magnetic_declination");
  keys({GUI_KEY_FUCTION_S, GUI_KEY_RANGE_S});
  key(GUI_KEY_POWER_S);
  advance(0);
  EXPECT_EQ(top_name(), "Zavo_home_page_1");
  EXPECT_EQ(stDevStatus.s16CompassMagnetic, 47);
  EXPECT_TRUE(sent_frames().empty());
  // Opened again, it browses the stored value.
  open("Zavo_Magnetic_declination");
  EXPECT_EQ(digits(), "+04.7");
  keys({GUI_KEY_RANGE_S, GUI_KEY_PHOTO_S});
  EXPECT_EQ(digits(), "+04.7");
}

TEST_F(DeclinationTest, TheCompassPageOpensItAndShowsTheSavedValueOnReturn) {
  stDevStatus.s16CompassMagnetic = 0;
  open("Zavo_compass_menu");
  act_on_row(3);
  advance(0);
  ASSERT_EQ(top_name(), "Zavo_Magnetic_declination");
  win_ = top();
  keys({GUI_KEY_FUCTION_S, GUI_KEY_FUCTION_S, GUI_KEY_RANGE_S, GUI_KEY_FUCTION_L});
  EXPECT_EQ(stDevStatus.s16CompassMagnetic, 100);
  compass(37, 0, 0);
  EXPECT_EQ(text("label_declination_azimuth"), "037\xC2\xB0 NE");
  key(GUI_KEY_FUCTION_L);
  advance(0);
  ASSERT_EQ(top_name(), "Zavo_compass_menu");
  win_ = top();
  EXPECT_EQ(text("label_compass_declination_value"), "+10.0\xC2\xB0");
}

}  // namespace
