// The simulated device's side of the accessory pages: the turn its user makes during a compass
// calibration, the declination on the azimuth it reports, the wind meter's connection and
// readings, the recoil settings and the shot; and a calibration run from the page with the
// simulated device answering on the real queues.
#include <string>
#include <vector>

#include "accessory_fixture.h"
#include "script.h"

namespace {

using accessory_test::AccessoryTest;
using devsim::Frame;
using Lines = std::vector<std::string>;

std::string to_ui(const Frame& f) {
  return framedec::normalize(framedec::decode(f, framedec::Direction::TO_UI));
}

struct Device {
  std::vector<Frame> sent;
  Lines printed;
  devsim::Device device{[this](const Frame& f) { sent.push_back(f); },
                        [this](const std::string& line) { printed.push_back(line); }};
  Device() { device.set_schedule(false); }
  void on(uint8_t type, uint8_t command, uint8_t sub, std::vector<uint8_t> values) {
    device.on_frame(framedec::build(type, command, sub, values));
  }
  Lines decoded() {
    Lines out;
    for (const Frame& f : sent)
      out.push_back(to_ui(f));
    sent.clear();
    return out;
  }
};

TEST(DeviceAccessories, TheLevelTurnReportsAFullCircleUntilTheUiStopsIt) {
  Device d;
  d.device.tick(1000);
  d.on(6, COMPASS_CORRECT, COMPASS_HORIZONTAL_START, {0});
  Lines azimuths;
  for (uint64_t t = 1000; t < 1000 + 12 * 250; t += 250) {
    d.device.tick(t);
    const Lines frames = d.decoded();
    ASSERT_EQ(frames.size(), 3u) << "azimuth, elevation and cant at " << t;
    azimuths.push_back(frames[0]);
  }
  EXPECT_EQ(azimuths.front(), "COMPASS COMPASS_AZIMUTH_ANGLE value=0");
  EXPECT_EQ(azimuths[1], "COMPASS COMPASS_AZIMUTH_ANGLE value=30");
  EXPECT_EQ(azimuths.back(), "COMPASS COMPASS_AZIMUTH_ANGLE value=330");
  d.device.tick(1000 + 11 * 250 + 100);  // not yet the next step
  EXPECT_TRUE(d.decoded().empty());
  d.on(6, COMPASS_CORRECT, COMPASS_HORIZONTAL_STOP, {0});
  EXPECT_EQ(d.printed.back(), "device: compass calibration, level turn applied (12 of 12 sectors)");
  EXPECT_FALSE(d.device.compass_calibrating());
  d.device.tick(9000);
  EXPECT_TRUE(d.decoded().empty()) << "no turn, no schedule: nothing";
}

TEST(DeviceAccessories, AVerticalTurnStoppedEarlyLeavesTheCalibrationAsItWas) {
  Device d;
  d.on(6, COMPASS_CORRECT, COMPASS_VERTICAL_START, {0});
  for (uint64_t t = 0; t < 3 * 250; t += 250)
    d.device.tick(t);
  const Lines frames = d.decoded();
  EXPECT_EQ(frames[1], "COMPASS COMPASS_PITCH_ANGLE value=-90");
  EXPECT_EQ(frames[4], "COMPASS COMPASS_PITCH_ANGLE value=-75");
  EXPECT_EQ(frames[7], "COMPASS COMPASS_PITCH_ANGLE value=-60");
  // A horizontal stop does not end a vertical turn.
  d.on(6, COMPASS_CORRECT, COMPASS_HORIZONTAL_STOP, {0});
  EXPECT_TRUE(d.device.compass_calibrating());
  d.on(6, COMPASS_CORRECT, COMPASS_VERTICAL_STOP, {0});
  EXPECT_EQ(d.printed.back(),
            "device: compass calibration, vertical turn stopped early (3 of 12 sectors), "
            "calibration unchanged");
}

TEST(DeviceAccessories, TheDeclinationIsStoredAndAddedToTheReportedAzimuth) {
  Device d;
  d.on(6, COMPASS_OFFESET_PARAM, 0, {0, 4, 0, 7});  // +4.7 degrees
  EXPECT_EQ(d.device.settings().s16CompassMagnetic, 47);
  EXPECT_EQ(d.printed.back(), "device: magnetic declination +4.7 deg");
  d.on(6, COMPASS_CORRECT, COMPASS_HORIZONTAL_START, {0});
  d.device.tick(0);
  EXPECT_EQ(d.decoded()[0], "COMPASS COMPASS_AZIMUTH_ANGLE value=5");
  d.on(6, COMPASS_OFFESET_PARAM, 0, {1, 12, 0, 5});  // -12.5
  EXPECT_EQ(d.device.settings().s16CompassMagnetic, -125);
  d.device.tick(250);
  EXPECT_EQ(d.decoded()[0], "COMPASS COMPASS_AZIMUTH_ANGLE value=17");  // 30 - 12.5, rounded
}

TEST(DeviceAccessories, TheWindMeterConnectsAfterSwitchingOnAndReportsWhileConnected) {
  Device d;
  d.device.set_schedule(true);  // battery and compass readings come too: only wind is looked at
  auto wind_lines = [&d] {
    Lines out;
    for (const std::string& line : d.decoded()) {
      if (line.rfind("WIND", 0) == 0 || line.rfind("BASIC WIND_SPEED", 0) == 0) out.push_back(line);
    }
    return out;
  };
  d.device.send_startup_records();  // the UI came up: the first readings go at once
  EXPECT_TRUE(wind_lines().empty()) << "the first readings hold none from a meter that is off";
  d.device.tick(0);
  d.decoded();
  d.device.tick(2000);
  EXPECT_TRUE(wind_lines().empty()) << "no wind reading while the meter is off";
  d.on(0, 0, BASIC_WIND_SWITCH, {1});
  d.device.tick(3000);
  EXPECT_TRUE(wind_lines().empty()) << "still connecting";
  d.device.tick(3500);
  EXPECT_EQ(wind_lines(), (Lines{"WIND CONNECT value=1", "BASIC WIND_SPEED value=3000"}));
  EXPECT_TRUE(d.device.wind_meter_connected());
  d.device.tick(4000);
  EXPECT_EQ(wind_lines().size(), 1u) << "a reading every 2 s";
  d.on(0, 0, BASIC_WIND_SWITCH, {0});
  EXPECT_EQ(wind_lines(), Lines{"WIND CONNECT value=0"});
  d.device.tick(6000);
  EXPECT_TRUE(wind_lines().empty()) << "a reading from a meter that is off";
}

TEST(DeviceAccessories, AveragingReportsTheMeanOfTheLastFiveSamples) {
  // Two meters with the same samples, one averaging: its readings are the other's running mean.
  auto readings_of = [](bool averaging) {
    Device d;
    d.device.set_schedule(true);
    d.device.tick(0);
    d.on(0, 0, BASIC_WIND_SWITCH, {1});
    if (averaging) d.on(0, 0, BASIC_WIND_COUNT, {1});
    std::vector<int> readings;
    for (uint64_t t = 1500; t <= 1500 + 2000 * 9; t += 2000) {
      d.device.tick(t);
      for (const Frame& f : d.sent) {
        if (f[2] == 0 && f[4] == 38) readings.push_back(f[6] | (f[7] << 8));
      }
      d.sent.clear();
    }
    return readings;
  };
  const std::vector<int> raw = readings_of(false);
  const std::vector<int> mean = readings_of(true);
  ASSERT_EQ(raw.size(), mean.size());
  ASSERT_GE(raw.size(), 8u);
  for (size_t i = 0; i < raw.size(); ++i) {
    const size_t first = i >= 4 ? i - 4 : 0;
    int sum = 0;
    for (size_t j = first; j <= i; ++j)
      sum += raw[j];
    EXPECT_EQ(mean[i], sum / static_cast<int>(i - first + 1)) << "reading " << i;
  }
  EXPECT_NE(raw, mean);
}

TEST(DeviceAccessories, RecoilSettingsAreAppliedAndAShotFiresOnlyWhenOn) {
  Device d;
  d.on(28, RECOIL_SWITCH, 0xFF, {1});
  d.on(28, RECOIL_BEFORE, 0xFF, {10});
  d.on(28, RECOIL_SENSITIVITY, 0xFF, {0});
  EXPECT_EQ(d.device.settings().s8RecoilBefore, 10);
  EXPECT_EQ(d.printed.back(), "device: recoil video on, 10 s before, 10 s after, sensitivity low");
  d.device.shot();
  EXPECT_EQ(d.decoded(), Lines{"RECOIL TRIGGERED"});
  d.on(28, RECOIL_SWITCH, 0xFF, {0});
  d.device.shot();
  EXPECT_TRUE(d.decoded().empty());
  EXPECT_EQ(d.printed.back(), "device: a shot; recoil video is off");
  std::string error;
  const auto command = devsim::parse_command("shot", &error);
  ASSERT_TRUE(command.has_value()) << error;
  EXPECT_EQ(command->op, devsim::Op::SHOT);
}

// The page and the simulated device together: frames from the UI go to the device, the
// device's frames come back on the UI's receive queue, the device's clock steps 250 ms.
class CalibrationWithDevice : public AccessoryTest {
 protected:
  void run(Device& d, uint64_t until_ms) {
    for (uint64_t t = now_; t <= until_ms; t += 250) {
      for (const auto& f : sent_frames())
        d.device.on_frame(f);
      d.device.tick(t);
      for (const Frame& f : d.sent)
        from_device(f);
      d.sent.clear();
      advance(250);
      now_ = t + 250;
    }
    for (const auto& f : sent_frames())
      d.device.on_frame(f);
  }
  uint64_t now_ = 0;
};

TEST_F(CalibrationWithDevice, BothTurnsCompleteWithTheSimulatedUserTurningTheScope) {
  Device d;
  open_over_home("Zavo_level_correction");
  key(GUI_KEY_FUCTION_S);
  run(d, 4000);
  EXPECT_EQ(text("label_cal_state"), "Done");
  EXPECT_EQ(d.printed.back(), "device: compass calibration, level turn applied (12 of 12 sectors)");
  open("Zavo_vertical_correction");
  key(GUI_KEY_FUCTION_S);
  run(d, 8000);
  EXPECT_EQ(text("label_cal_state"), "Done");
  EXPECT_EQ(d.printed.back(),
            "device: compass calibration, vertical turn applied (12 of 12 sectors)");
}

}  // namespace
