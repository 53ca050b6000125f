// What every accessory page shares: it opens by name with every widget it looks up, sends nothing
// by opening, and leaves by the same keys (function held: one page back; power: the observation
// screen).
#include <string>
#include <vector>

#include "accessory_fixture.h"

namespace {

using accessory_test::AccessoryTest;

constexpr const char* PAGES[] = {
    "Zavo_lrf_menu",
    "Zavo_Laser_menu",
    "Zavo_PIP_menu",
    "Zavo_compass_menu",
    "Zavo_compass_1",
    "Zavo_level_correction",
    "Zavo_vertical_correction",
    "Zavo_Anemometer",
    "Zavo_wind",
    "Zavo_Recoil_menu",
    "Zavo_Magnetic_declination",
};

class AccessoryPagesTest : public AccessoryTest {};

TEST_F(AccessoryPagesTest, EachOpensByNameWithEveryWidgetItUsesAndSendsNothing) {
  for (const char* name : PAGES) {
    open(name);
    ASSERT_NE(win_, nullptr) << name;
    EXPECT_EQ(top_name(), name);
    EXPECT_TRUE(init_frames_.empty()) << name;
    // Every key a page knows, on every row, finds its widgets too.
    for (uint32_t k : {GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S, GUI_KEY_RANGE_S, GUI_KEY_FOCUS_UP_S})
      key(k);
    EXPECT_EQ(tk_testing_failed_lookups(), 0u) << name;
  }
}

TEST_F(AccessoryPagesTest, HeldFunctionGoesBackOnePageAndPowerToTheObservationScreen) {
  for (const char* name : PAGES) {
    // Under each page another page, as a menu would leave it.
    const char* under = std::string(name) == "Zavo_wind" ? "Zavo_Recoil_menu" : "Zavo_wind";
    open_over_home(under);
    open(name);
    key(GUI_KEY_FUCTION_L);
    EXPECT_EQ(top_name(), under) << name;
    open(name);
    key(GUI_KEY_POWER_S);
    advance(0);
    EXPECT_EQ(top_name(), "Zavo_home_page_1") << name;
    EXPECT_EQ(tk_testing_window_names(), std::vector<std::string>{"Zavo_home_page_1"}) << name;
  }
  EXPECT_TRUE(sent_frames().empty());
}

TEST_F(AccessoryPagesTest, KeysWithoutAMeaningOnAPageDoNothing) {
  for (const char* name : PAGES) {
    open(name);
    for (uint32_t k : {GUI_KEY_FOCUS_UP_S, GUI_KEY_FOCUS_DOWN_S, GUI_KEY_PHOTO_L, GUI_KEY_RANGE_L,
                       GUI_KEY_POWER_L_POP})
      key(k);
    EXPECT_EQ(top_name(), name);
    EXPECT_TRUE(sent_frames().empty()) << name;
  }
}

}  // namespace
