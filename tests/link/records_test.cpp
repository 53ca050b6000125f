// Whole-record loads (type 16): settings, zeroing data and ballistic profiles, their bounds, the
// first-start marker, and the ready flag that opens the gate of the status events.
#include <cstring>
#include <filesystem>
#include <fstream>

#include "link_fixture.h"

namespace linktest {
namespace {

template <typename T>
std::vector<uint8_t> bytes_of(const T& record) {
  const auto* p = reinterpret_cast<const uint8_t*>(&record);
  return std::vector<uint8_t>(p, p + sizeof(T));
}

std::vector<uint8_t> profile(double length) {
  Info_ballistics p;
  std::memset(&p, 0, sizeof(p));
  p.ballistics_sw = 1;
  p.unit = MRAD;
  p.gun.bullet.length = length;
  p.gun.scope.zeroRange = 100;
  p.gun.direction = RIGHT;
  return bytes_of(p);
}

class Records : public LinkTest {};

TEST_F(Records, LoadsFillTheirRecordAndNeverWritePastIt) {
  // A short load leaves the tail zero, not at the previous values.
  deliver(frame(16, BASIC_PARAM, 0, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
  const auto* raw = reinterpret_cast<const uint8_t*>(&stDevStatus);
  for (size_t i = 0; i < sizeof(stDevStatus); ++i)
    EXPECT_EQ(raw[i], i < 10 ? i + 1 : 0) << "byte " << i;

  // The longest frame (L = 255) is accepted and cut to the record; nothing past it changes.
  std::vector<uint8_t> values(249);
  for (size_t i = 0; i < values.size(); ++i)
    values[i] = static_cast<uint8_t>(i + 1);
  stUIStatus.s16BatteryValue = 333;
  std::string out = output_of([&] { deliver(frame(16, BASIC_PARAM, 0, values)); });
  EXPECT_NE(out.find("parameter_func: settings payload of 249 bytes cut to the record's 74\n"
                     "stDevStatus.s8RecoilSensitivity ======= 66\n\n\n\n\n"),
            std::string::npos)
      << out;
  EXPECT_EQ(std::memcmp(&stDevStatus, values.data(), sizeof(stDevStatus)), 0);
  EXPECT_EQ(stUIStatus.s16BatteryValue, 333);

  Inf_IR_Cursor z;
  std::memset(&z, 0, sizeof(z));
  z.group[2].zero[3].u16IrCursorDistance = 274;
  values = bytes_of(z);
  values.resize(240, 0xEE);
  out = output_of([&] { deliver(frame(16, RETICLE_PARAM, 0, values)); });
  EXPECT_EQ(std::memcmp(&IR_Cursor, &z, sizeof(z)), 0);
  EXPECT_NE(out.find("parameter_func: zeroing payload of 240 bytes cut to the record's 212\n"),
            std::string::npos);

  out = output_of([&] { deliver(frame(16, BALLISTIC_PARM, 2, profile(1.24))); });
  EXPECT_EQ(bytes_of(info[2]), profile(1.24));
  EXPECT_EQ(info[1].gun.bullet.length, 0.0);
  EXPECT_NE(out.find("info.gun.bullet.length  ======1.24\n"), std::string::npos) << out;
  EXPECT_TRUE(take_events().empty()) << "these loads raise no event";
}

TEST_F(Records, ProfileIndicesAboveFourNeverIndexTheProfiles) {
  for (uint8_t command : {uint8_t(BALLISTIC_PARM), uint8_t(BALLISTIC_PARM_midway)}) {
    for (uint8_t index : {uint8_t(5), uint8_t(255)}) {
      const std::string out = output_of([&] { deliver(frame(16, command, index, profile(1.5))); });
      EXPECT_NE(out.find("parameter_func: profile index " + std::to_string(index) +
                         " is outside 0..4, frame dropped\n"),
                std::string::npos)
          << out;
    }
  }
  for (const Info_ballistics& p : info)
    EXPECT_EQ(p.gun.bullet.length, 0.0);
  EXPECT_EQ(stDevStatus.s8BallisticGroup, 0);
  EXPECT_TRUE(take_events().empty());
  EXPECT_TRUE(sent_frames().empty());

  // A settings load may carry any group byte; out of range it never indexes `info`.
  stDevStatus.s8BallisticGroup = 9;
  EXPECT_EQ(current_ballistic_profile(), nullptr);
  const std::string out = output_of([] {
    for (uint8_t index = BALLISTIC_BULLET_INFO; index <= BALLISTIC_TARGET_INFO; ++index)
      GUI_SEND_BALLISTIC_PARM_MSG(index, 0);
  });
  EXPECT_NE(out.find("GUI_SEND_BALLISTIC_PARM_MSG: profile 9 is outside 0..4, nothing sent\n"),
            std::string::npos);
  EXPECT_TRUE(sent_frames().empty());
  GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 4);  // reads no profile: still goes out
  EXPECT_EQ(sent(), std::vector<std::string>{"BALLISTIC BALLISTIC_OPEN_CALCU item=4 value=9"});
}

TEST_F(Records, TheFifthProfileOpensTheGateOfStatusEvents) {
  const std::vector<Frame> status = {
      frame(6, 0, COMPASS_PITCH_ANGLE, {1, 12, 0}), frame(1, 0, INFRARED_ZOOM, le16(250)),
      frame(15, 0, BATTERY_TYPE, {1}), frame(15, 0, BATTERY_VALUE, le16(700))};
  const std::string out = output_of([&] { deliver_all(status); });
  EXPECT_NE(out.find("stUIStatus.s8IRZoom = 250\nbattery is 700\n"), std::string::npos) << out;
  EXPECT_EQ(stUIStatus.s16CompassPitch, -12);
  EXPECT_EQ(stUIStatus.s8IRZoom, 250);
  EXPECT_EQ(stUIStatus.s8BatteryType, 1);
  EXPECT_EQ(stUIStatus.s16BatteryValue, 700);
  for (uint8_t i = 0; i < 4; ++i)
    deliver(frame(16, BALLISTIC_PARM, i, profile(1.0 + i)));
  deliver_all(status);
  EXPECT_EQ(stUIStatus.event_distrubut_reday, 0);
  EXPECT_TRUE(take_events().empty());

  deliver(frame(16, BALLISTIC_PARM, 4, profile(5.0)));
  EXPECT_EQ(stUIStatus.event_distrubut_reday, 1);
  deliver_all(status);
  EXPECT_EQ(take_events(), (std::vector<int>{8203, 8227, 8248, 8213, 8207, 8207}));
  for (int i = 0; i < 5; ++i)
    EXPECT_EQ(info[i].gun.bullet.length, 1.0 + i);

  // The ready frame closes the gate again before it leaves.
  GUI_SEND_UI_READY_MSG(0);
  EXPECT_EQ(stUIStatus.event_distrubut_reday, 0);
  EXPECT_EQ(sent(true), std::vector<std::string>{"aa 07 08 00 00 00 00 b9 eb aa"});
}

TEST_F(Records, FirstStartMarkerIsReadAndRemoved) {
  const std::string marker = root_ + "/usrdata/release/first_language.txt";
  std::string out = output_of([&] { deliver(frame(16, BALLISTIC_PARM, 0, profile(1.0))); });
  EXPECT_NE(out.find("#############first_language_file not exit!\n"), std::string::npos) << out;
  EXPECT_EQ(stUIStatus.s8FirstLanguageFlag, 0);

  std::ofstream(marker) << "1\n";
  out = output_of([&] { deliver(frame(16, BALLISTIC_PARM, 1, profile(1.0))); });
  EXPECT_NE(out.find("####################first_language_file exit!\n"), std::string::npos) << out;
  EXPECT_EQ(stUIStatus.s8FirstLanguageFlag, 1);
  EXPECT_FALSE(std::filesystem::exists(marker));
  // The next profiles of the same start find no marker; the first start stays known.
  deliver(frame(16, BALLISTIC_PARM, 2, profile(1.0)));
  EXPECT_EQ(stUIStatus.s8FirstLanguageFlag, 1);

  // A marker that cannot be removed (a directory holding a file) is reported.
  std::filesystem::create_directories(marker);
  std::ofstream(marker + "/keep") << "x";
  out = output_of([&] { deliver(frame(16, BALLISTIC_PARM, 3, profile(1.0))); });
  EXPECT_NE(out.find("Error: file remove  "), std::string::npos) << out;
}

TEST_F(Records, MidwayLoadSwitchesTheProfileAndShowsTheTipOnce) {
  use_windows({"Zavo_home_page_1", "Zavo_tip_ballistic"});
  open_window("Zavo_home_page_1");
  stUIStatus.s8InterfaceState = INTERFACE_OBSERVE;
  info[0].ballistics_sw = 1;
  std::vector<uint8_t> p = profile(1.3);
  p[0] = 0;  // the load of profile 3 leaves profile 0's switch alone
  deliver(frame(16, BALLISTIC_PARM_midway, 3, p));
  EXPECT_EQ(stDevStatus.s8BallisticGroup, 3);
  EXPECT_EQ(bytes_of(info[3]), p);
  EXPECT_STREQ(stUIStatus.temp_window, "Zavo_home_page_1");
  EXPECT_EQ(sent(), std::vector<std::string>{"BALLISTIC BALLISTIC_OPEN_CALCU item=0 value=1"});
  // A second load before the UI thread ran: the link reads its pending tip as the top window.
  stUIStatus.s8RangeMode = 3;
  deliver(frame(16, BALLISTIC_PARM_midway, 1, p));
  EXPECT_TRUE(sent_frames().empty()) << "no answer while ranging continuously";
  EXPECT_EQ(take_events(), (std::vector<int>{8240, 8244, 8244})) << "one profile event each load";
  EXPECT_EQ(stDevStatus.s8BallisticGroup, 1);
  EXPECT_EQ(tk_testing_window_names(),
            (std::vector<std::string>{"Zavo_home_page_1", "Zavo_tip_ballistic"}));
  EXPECT_STREQ(stUIStatus.temp_window, "Zavo_home_page_1");

  // In a menu no tip opens.
  stUIStatus.s8InterfaceState = INTERFACE_MENU;
  open_window("Zavo_menu1");
  deliver(frame(16, BALLISTIC_PARM_midway, 2, p));
  EXPECT_EQ(take_events(), std::vector<int>{8244});
  EXPECT_EQ(top_window(), "Zavo_menu1");
  EXPECT_EQ(stDevStatus.s8BallisticGroup, 2);
}

}  // namespace
}  // namespace linktest
