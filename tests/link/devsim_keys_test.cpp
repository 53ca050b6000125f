// The simulator's terminal keys: the buttons each key sends to the scope.
#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "device_keys.h"
#include "msg/msghandler.h"

namespace {

using Buttons = std::vector<uint8_t>;

// Function held opens the main menu on the picture and goes back a page in the menus, so typing
// F twice must be two long presses (menu, then back), not a press and its release.
TEST(DevsimKeys, FunctionHeldActsOnEveryPress) {
  std::set<char> held;
  EXPECT_EQ(devsim::key_buttons('F', &held), (Buttons{KEY_FUCTION_L, KEY_FUCTION_L_POP}));
  EXPECT_EQ(devsim::key_buttons('F', &held), (Buttons{KEY_FUCTION_L, KEY_FUCTION_L_POP}));
  EXPECT_TRUE(held.empty());
  EXPECT_EQ(devsim::key_buttons('U', &held), (Buttons{KEY_FOCUS_UP_L, KEY_FOCUS_UP_L_POP}));
  EXPECT_EQ(devsim::key_buttons('D', &held), (Buttons{KEY_FOCUS_DOWN_L, KEY_FOCUS_DOWN_L_POP}));
  EXPECT_TRUE(held.empty());
}

// Photo, range and power held stay down until the key again: the 7 s holds on the LRF row, the
// winding in the video player and the shut-down countdown depend on when they are released.
TEST(DevsimKeys, PhotoRangePowerStayHeldUntilReleased) {
  std::set<char> held;
  EXPECT_EQ(devsim::key_buttons('P', &held), (Buttons{KEY_POWER_L}));
  EXPECT_EQ(devsim::key_buttons('c', &held), (Buttons{KEY_PHOTO_S}));
  EXPECT_EQ(devsim::key_buttons('P', &held), (Buttons{KEY_POWER_L_POP}));
  EXPECT_EQ(devsim::key_buttons('C', &held), (Buttons{KEY_PHOTO_L}));
  EXPECT_EQ(devsim::key_buttons('R', &held), (Buttons{KEY_RANGE_L}));
  EXPECT_EQ(held, (std::set<char>{'C', 'R'}));
  // Space releases every held button, in the order of the key map.
  EXPECT_EQ(devsim::key_buttons(' ', &held), (Buttons{KEY_PHOTO_L_POP, KEY_RANGE_L_POP}));
  EXPECT_TRUE(held.empty());
  EXPECT_TRUE(devsim::key_buttons(' ', &held).empty());
}

TEST(DevsimKeys, ShortPressesAndUnknownKeys) {
  std::set<char> held;
  EXPECT_EQ(devsim::key_buttons('f', &held), (Buttons{KEY_FUCTION_S}));
  EXPECT_EQ(devsim::key_buttons('p', &held), (Buttons{KEY_POWER_S}));
  EXPECT_EQ(devsim::key_buttons('4', &held), (Buttons{KEY_UP_POWER_L}));
  EXPECT_TRUE(devsim::key_buttons('x', &held).empty());
  EXPECT_TRUE(held.empty());
}

}  // namespace
