// The wind meter and wind pages: the meter's switch and averaging frames, the connection and the
// speed following the device, and the statistics of the readings.
#include <string>
#include <vector>

#include "accessory_fixture.h"

namespace {

using accessory_test::AccessoryTest;
using accessory_test::Frames;
using Lines = std::vector<std::string>;

class WindTest : public AccessoryTest {};

TEST_F(WindTest, TheMetersStateIsOffNotConnectedOrConnected) {
  struct Case {
    char on, connected;
    const char* shown;
  } cases[] = {{0, 0, "Off"}, {0, 1, "Off"}, {1, 0, "Not connected"}, {1, 1, "Connected"}};
  for (const Case& c : cases) {
    stUIStatus.s8WindSwitch = c.on;
    stUIStatus.wind_connect_state = c.connected;
    for (const char* page : {"Zavo_Anemometer", "Zavo_wind"}) {
      open(page);
      EXPECT_EQ(
          text(std::string(page) == "Zavo_wind" ? "label_wind_state" : "label_anemometer_state"),
          c.shown)
          << page;
    }
  }
}

TEST_F(WindTest, TheConnectionFollowsTheDeviceWithinHalfASecond) {
  stUIStatus.s8WindSwitch = 1;
  open("Zavo_Anemometer");
  EXPECT_EQ(text("label_anemometer_state"), "Not connected");
  wind_connected(true);
  advance(500);
  EXPECT_EQ(text("label_anemometer_state"), "Connected");
  wind_connected(false);
  advance(500);
  EXPECT_EQ(text("label_anemometer_state"), "Not connected");
  // The timer goes with the page.
  key(GUI_KEY_FUCTION_L);
  advance(0);
  EXPECT_EQ(timer_id_anemometer, 0u);
  advance(2000);
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(WindTest, TheSpeedFollowsTheDevicesReadingsInMilesPerHour) {
  stUIStatus.s8WindSwitch = 1;
  stUIStatus.wind_connect_state = 1;
  open("Zavo_Anemometer");
  EXPECT_EQ(text("label_anemometer_speed"), "0.0 mph");
  struct Case {
    int mm_s;
    const char *mph, *m_s;
  } cases[] = {{4470, "10.0 mph", "4.5 m/s"},
               {1000, "2.2 mph", "1.0 m/s"},
               {12000, "26.8 mph", "12.0 m/s"},
               {0, "0.0 mph", "0.0 m/s"}};
  for (const Case& c : cases) {
    wind(c.mm_s);
    EXPECT_EQ(text("label_anemometer_speed"), c.mph);
  }
  open("Zavo_wind");
  for (const Case& c : cases) {
    wind(c.mm_s);
    EXPECT_EQ(text("label_wind_speed"), c.mph);
    EXPECT_EQ(text("label_wind_speed_ms"), c.m_s);
  }
}

TEST_F(WindTest, SwitchAndAveragingAreWrittenToBothCopiesThenSent) {
  stUIStatus.s16WindSpeed = 4470;
  open_over_home("Zavo_Anemometer");
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(stUIStatus.s8WindSwitch, 1);
  EXPECT_EQ(stUIStatus.s8AnemometerSwitch, 1);
  EXPECT_EQ(image("image_anemometer_switch"), "switch_large_on");
  const Frames on = sent_frames();
  ASSERT_EQ(on.size(), 1u);
  EXPECT_EQ(framedec::hex(on[0]), "aa 07 00 00 22 00 01 d4 eb aa");
  advance(0);
  // Switching clears the old reading; the observation screen shows its wind group.
  EXPECT_EQ(text("label_anemometer_speed"), "0.0 mph");
  widget_t* home = widget_child(window_manager(), "Zavo_home_page_1");
  EXPECT_TRUE(widget_lookup(home, "Zavo_wind", TRUE)->visible);
  EXPECT_EQ(text("label_anemometer_state"), "Not connected");

  key(GUI_KEY_PHOTO_S);
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(stUIStatus.s8WindCountSwitch, 1);
  EXPECT_EQ(stUIStatus.s8AnemometeCountSwitch, 1);
  EXPECT_EQ(image("image_anemometer_average"), "switch_large_on");
  EXPECT_EQ(sent(), Lines{"BASIC 35:wind_count value=1"});
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(sent(), Lines{"BASIC 35:wind_count value=0"});
  key(GUI_KEY_RANGE_S);
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(sent(), Lines{"BASIC BASIC_WIND_SWITCH value=0"});
  EXPECT_EQ(stUIStatus.s8AnemometerSwitch, 0);
  EXPECT_EQ(text("label_anemometer_state"), "Off");
}

TEST_F(WindTest, TheWindPageCountsConnectedReadingsUntilReset) {
  stUIStatus.s8WindSwitch = 1;
  stUIStatus.wind_connect_state = 1;
  open("Zavo_wind");
  EXPECT_EQ(text("label_wind_readings"), "0");
  EXPECT_EQ(text("label_wind_average"), "--");
  EXPECT_EQ(text("label_wind_gust"), "--");
  for (int mm_s : {3800, 4470, 5200})
    wind(mm_s);
  EXPECT_EQ(text("label_wind_readings"), "3");
  EXPECT_EQ(text("label_wind_average"), "10.0 mph");  // 4490 mm/s
  EXPECT_EQ(text("label_wind_gust"), "11.6 mph");
  // Readings while the meter is not connected are not counted.
  wind_connected(false);
  wind(9000);
  EXPECT_EQ(text("label_wind_readings"), "3");
  EXPECT_EQ(text("label_wind_gust"), "11.6 mph");
  // Row 2 resets.
  act_on_row(2);
  EXPECT_EQ(text("label_wind_readings"), "0");
  EXPECT_EQ(text("label_wind_average"), "--");
  EXPECT_TRUE(sent_frames().empty()) << "the statistics are the page's own";
}

TEST_F(WindTest, TheWindPageOpensTheMeterAndShowsItsSwitchOnReturn) {
  stUIStatus.wind_connect_state = 1;
  open("Zavo_wind");
  EXPECT_EQ(text("label_wind_meter_value"), "Off");
  key(GUI_KEY_FUCTION_S);
  advance(0);
  ASSERT_EQ(top_name(), "Zavo_Anemometer");
  win_ = top();
  key(GUI_KEY_FUCTION_S);  // the meter on, on the meter's page
  EXPECT_EQ(sent(), Lines{"BASIC BASIC_WIND_SWITCH value=1"});
  key(GUI_KEY_FUCTION_L);
  advance(0);
  ASSERT_EQ(top_name(), "Zavo_wind");
  win_ = top();
  EXPECT_EQ(text("label_wind_meter_value"), "On");
  EXPECT_EQ(text("label_wind_readings"), "0") << "the cleared speed is not a reading";
}

}  // namespace
