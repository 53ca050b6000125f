// Whole-record loads (type 16): settings, zeroing data and ballistic profiles, their bounds, the
// first-start marker, and the ready flag that opens the gate of the status events.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "link_fixture.h"

namespace linktest {
namespace {

std::string captured() {
  std::fflush(stdout);
  return testing::internal::GetCapturedStdout();
}

template <typename T>
std::vector<uint8_t> bytes_of(const T& record) {
  const auto* p = reinterpret_cast<const uint8_t*>(&record);
  return std::vector<uint8_t>(p, p + sizeof(T));
}

Info_ballistics sample_profile(double length, int16_t zero) {
  Info_ballistics p;
  std::memset(&p, 0, sizeof(p));
  p.ballistics_sw = 1;
  p.unit = MRAD;
  p.target.range = 300;
  p.gun.bullet.length = length;
  p.gun.bullet.velocity = 790;
  p.gun.scope.zeroRange = zero;
  p.gun.direction = RIGHT;
  return p;
}

class Records : public LinkTest {};

TEST_F(Records, SettingsLoadCopiesTheWholeRecord) {
  Inf_DevStatus s;
  std::memset(&s, 0, sizeof(s));
  s.s8ReticleType = 3;
  s.s16ReticlePositionX = -12;
  s.s16CompassMagnetic = -125;
  s.s8RecoilSensitivity = 2;
  s.s8BallisticGroup = 4;
  testing::internal::CaptureStdout();
  deliver(frame(16, BASIC_PARAM, 0, bytes_of(s)));
  std::string out = captured();
  EXPECT_EQ(std::memcmp(&stDevStatus, &s, sizeof(s)), 0);
  EXPECT_NE(out.find("stDevStatus.s8RecoilSensitivity ======= 2\n\n\n\n\n"), std::string::npos)
      << out;
  pump();
  EXPECT_TRUE(log_.events().empty()) << "a settings load raises no event";
}

TEST_F(Records, AShortLoadLeavesTheTailZero) {
  std::memset(&stDevStatus, 0x33, sizeof(stDevStatus));
  deliver(frame(16, BASIC_PARAM, 0, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
  const auto* raw = reinterpret_cast<const uint8_t*>(&stDevStatus);
  for (size_t i = 0; i < sizeof(stDevStatus); ++i) {
    EXPECT_EQ(raw[i], i < 10 ? i + 1 : 0) << "byte " << i;
  }
}

TEST_F(Records, ZeroingLoadIsBoundedByItsRecord) {
  Inf_IR_Cursor z;
  std::memset(&z, 0, sizeof(z));
  z.u8CurrentGroup = 2;
  z.group[2].u8CurrentZero = 3;
  z.group[2].zero[3].u16IrCursorDistance = 274;
  z.group[2].zero[3].s8IrCursorCurrentX = 655;
  std::vector<uint8_t> values = bytes_of(z);
  values.resize(240, 0xEE);  // 28 bytes more than the record
  testing::internal::CaptureStdout();
  deliver(frame(16, RETICLE_PARAM, 0, values));
  std::string out = captured();
  EXPECT_EQ(std::memcmp(&IR_Cursor, &z, sizeof(z)), 0);
  EXPECT_NE(out.find("parameter_func: zeroing payload of 240 bytes cut to the record's 212\n"),
            std::string::npos)
      << out;
}

TEST_F(Records, ProfileLoadFillsTheNamedEntryOnly) {
  Info_ballistics p = sample_profile(1.24, 100);
  testing::internal::CaptureStdout();
  deliver(frame(16, BALLISTIC_PARM, 2, bytes_of(p)));
  std::string out = captured();
  EXPECT_EQ(std::memcmp(&info[2], &p, sizeof(p)), 0);
  EXPECT_EQ(info[1].gun.bullet.length, 0.0);
  EXPECT_EQ(info[3].gun.bullet.length, 0.0);
  EXPECT_NE(out.find("info.gun.bullet.length  ======1.24\n"), std::string::npos) << out;
  EXPECT_EQ(stUIStatus.event_distrubut_reday, 0) << "only profile 4 completes the start-up";
}

TEST_F(Records, ProfileIndexAboveFourIsRejected) {
  Info_ballistics p = sample_profile(1.5, 100);
  Info_ballistics before[5];
  std::memcpy(before, info, sizeof(info));
  for (uint8_t command : {uint8_t(BALLISTIC_PARM), uint8_t(BALLISTIC_PARM_midway)}) {
    for (uint8_t index : {uint8_t(5), uint8_t(255)}) {
      testing::internal::CaptureStdout();
      deliver(frame(16, command, index, bytes_of(p)));
      std::string out = captured();
      EXPECT_NE(out.find("parameter_func: profile index " + std::to_string(index) +
                         " is outside 0..4, frame dropped\n"),
                std::string::npos)
          << out;
    }
  }
  EXPECT_EQ(std::memcmp(before, info, sizeof(info)), 0);
  EXPECT_EQ(stDevStatus.s8BallisticGroup, 0);
  EXPECT_EQ(stUIStatus.event_distrubut_reday, 0);
  pump();
  EXPECT_TRUE(log_.events().empty());
}

TEST_F(Records, TheFifthProfileOpensTheGateOfStatusEvents) {
  const std::vector<uint8_t> compass = {0, 90, 0};
  deliver(frame(6, 0, COMPASS_AZIMUTH_ANGLE, compass));
  for (uint8_t i = 0; i < 4; ++i) {
    deliver(frame(16, BALLISTIC_PARM, i, bytes_of(sample_profile(1.0 + i, 100))));
  }
  deliver(frame(6, 0, COMPASS_AZIMUTH_ANGLE, compass));
  pump();
  EXPECT_EQ(stUIStatus.event_distrubut_reday, 0);
  EXPECT_TRUE(log_.events().empty());

  deliver(frame(16, BALLISTIC_PARM, 4, bytes_of(sample_profile(5.0, 100))));
  EXPECT_EQ(stUIStatus.event_distrubut_reday, 1);
  deliver(frame(6, 0, COMPASS_AZIMUTH_ANGLE, compass));
  pump();
  EXPECT_EQ(log_.events(), std::vector<int>{8202});
  for (int i = 0; i < 5; ++i)
    EXPECT_EQ(info[i].gun.bullet.length, 1.0 + i);
}

TEST_F(Records, TheReadyFrameClosesTheGateAgain) {
  stUIStatus.event_distrubut_reday = 1;
  GUI_SEND_UI_READY_MSG(0);
  EXPECT_EQ(stUIStatus.event_distrubut_reday, 0);
  std::vector<Frame> sent = sent_frames();
  ASSERT_EQ(sent.size(), 1u);
  EXPECT_EQ(framedec::hex(sent[0]), "aa 07 08 00 00 00 00 b9 eb aa");
}

TEST_F(Records, FirstStartMarkerIsReadAndRemoved) {
  const std::string marker = root_ + "/usrdata/release/first_language.txt";
  std::ofstream(marker) << "1\n";
  testing::internal::CaptureStdout();
  deliver(frame(16, BALLISTIC_PARM, 0, bytes_of(sample_profile(1.0, 100))));
  std::string out = captured();
  EXPECT_NE(out.find("####################first_language_file exit!\n"), std::string::npos) << out;
  EXPECT_EQ(stUIStatus.s8FirstLanguageFlag, 1);
  EXPECT_FALSE(std::filesystem::exists(marker));

  // The next profiles of the same start find no marker; the first start stays known.
  testing::internal::CaptureStdout();
  deliver(frame(16, BALLISTIC_PARM, 1, bytes_of(sample_profile(1.0, 100))));
  out = captured();
  EXPECT_NE(out.find("#############first_language_file not exit!\n"), std::string::npos) << out;
  EXPECT_EQ(stUIStatus.s8FirstLanguageFlag, 1);
}

TEST_F(Records, WithoutAMarkerItIsNotAFirstStart) {
  testing::internal::CaptureStdout();
  for (uint8_t i = 0; i < 5; ++i) {
    deliver(frame(16, BALLISTIC_PARM, i, bytes_of(sample_profile(1.0, 100))));
  }
  std::string out = captured();
  EXPECT_NE(out.find("#############first_language_file not exit!\n"), std::string::npos) << out;
  EXPECT_EQ(out.find("####################first_language_file exit!"), std::string::npos);
  EXPECT_EQ(stUIStatus.s8FirstLanguageFlag, 0);
}

TEST_F(Records, AMarkerThatCannotBeRemovedIsReported) {
  // A directory of that name exists but cannot be removed while it holds a file.
  const std::string marker = root_ + "/usrdata/release/first_language.txt";
  std::filesystem::create_directories(marker);
  std::ofstream(marker + "/keep") << "x";
  testing::internal::CaptureStdout();
  deliver(frame(16, BALLISTIC_PARM, 0, bytes_of(sample_profile(1.0, 100))));
  std::string out = captured();
  EXPECT_NE(out.find("Error: file remove  "), std::string::npos) << out;
  EXPECT_EQ(stUIStatus.s8FirstLanguageFlag, 1);
}

TEST_F(Records, MidwayLoadSwitchesTheProfileAndShowsTheTip) {
  use_windows({"Zavo_home_page_1", "Zavo_tip_ballistic"});
  open_window("Zavo_home_page_1");
  stUIStatus.s8InterfaceState = INTERFACE_OBSERVE;
  info[0].ballistics_sw = 1;
  Info_ballistics p = sample_profile(1.3, 200);
  p.ballistics_sw = 0;  // the load of profile 3 leaves profile 0's switch alone
  deliver(frame(16, BALLISTIC_PARM_midway, 3, bytes_of(p)));
  EXPECT_EQ(stDevStatus.s8BallisticGroup, 3);
  EXPECT_EQ(std::memcmp(&info[3], &p, sizeof(p)), 0);
  EXPECT_STREQ(stUIStatus.temp_window, "Zavo_home_page_1");
  EXPECT_EQ(sent_decoded(),
            std::vector<std::string>{"BALLISTIC BALLISTIC_OPEN_CALCU item=0 value=1"});
  pump();
  EXPECT_EQ(top_window(), "Zavo_tip_ballistic");
  EXPECT_EQ(log_.events(), (std::vector<int>{8240, 8244}));

  // A second load while the tip shows: no second tip, and no answer while ranging.
  stUIStatus.s8RangeMode = 3;
  log_.clear();
  deliver(frame(16, BALLISTIC_PARM_midway, 1, bytes_of(p)));
  pump();
  EXPECT_EQ(stDevStatus.s8BallisticGroup, 1);
  EXPECT_TRUE(sent_frames().empty());
  EXPECT_EQ(tk_testing_window_names(),
            (std::vector<std::string>{"Zavo_home_page_1", "Zavo_tip_ballistic"}));
  EXPECT_EQ(log_.events(), std::vector<int>{8244});
}

TEST_F(Records, MidwayLoadsInAMenuShowNoTip) {
  use_windows({"Zavo_tip_ballistic"});
  open_window("Zavo_menu1");
  stUIStatus.s8InterfaceState = INTERFACE_MENU;
  deliver(frame(16, BALLISTIC_PARM_midway, 2, bytes_of(sample_profile(1.1, 100))));
  pump();
  EXPECT_EQ(top_window(), "Zavo_menu1");
  EXPECT_EQ(stDevStatus.s8BallisticGroup, 2);
}

TEST_F(Records, TwoMidwayLoadsBeforeTheUIThreadRunsShowOneTip) {
  // The link sees its own pending navigation as the window on top.
  use_windows({"Zavo_home_page_1", "Zavo_tip_ballistic"});
  open_window("Zavo_home_page_1");
  stUIStatus.s8InterfaceState = INTERFACE_OBSERVE;
  deliver(frame(16, BALLISTIC_PARM_midway, 1, bytes_of(sample_profile(1.1, 100))));
  deliver(frame(16, BALLISTIC_PARM_midway, 2, bytes_of(sample_profile(1.2, 100))));
  pump();
  EXPECT_EQ(tk_testing_window_names(),
            (std::vector<std::string>{"Zavo_home_page_1", "Zavo_tip_ballistic"}));
  EXPECT_STREQ(stUIStatus.temp_window, "Zavo_home_page_1");
}

TEST_F(Records, AGroupByteOutOfRangeNeverIndexesTheProfiles) {
  Inf_DevStatus s;
  std::memset(&s, 0, sizeof(s));
  s.s8BallisticGroup = 9;
  deliver(frame(16, BASIC_PARAM, 0, bytes_of(s)));
  EXPECT_EQ(current_ballistic_profile(), nullptr);
  testing::internal::CaptureStdout();
  for (uint8_t index = BALLISTIC_BULLET_INFO; index <= BALLISTIC_TARGET_INFO; ++index) {
    GUI_SEND_BALLISTIC_PARM_MSG(index, 0);
  }
  std::string out = captured();
  EXPECT_NE(out.find("GUI_SEND_BALLISTIC_PARM_MSG: profile 9 is outside 0..4, nothing sent\n"),
            std::string::npos)
      << out;
  EXPECT_TRUE(sent_frames().empty());
  // What does not read the current profile still goes out.
  GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 4);
  EXPECT_EQ(sent_decoded(),
            std::vector<std::string>{"BALLISTIC BALLISTIC_OPEN_CALCU item=4 value=9"});
}

}  // namespace
}  // namespace linktest
