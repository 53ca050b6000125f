// The senders: byte-exact frames for every family, the dump line, their screen events and extra
// effects, and sending while the device does not read.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <tuple>

#include "link_fixture.h"

namespace linktest {
namespace {

std::string captured() {
  std::fflush(stdout);
  return testing::internal::GetCapturedStdout();
}

class Outbound : public LinkTest {
 protected:
  // The one frame the last sender call sent, in hex ("" when none, a failure when more).
  std::string one_frame() {
    std::vector<Frame> sent = sent_frames();
    EXPECT_LE(sent.size(), 1u);
    return sent.empty() ? "" : framedec::hex(sent[0]);
  }
  std::vector<int> events() {
    pump();
    std::vector<int> e = log_.events();
    log_.clear();
    return e;
  }
};

TEST_F(Outbound, SaveAllFrameAndItsDumpLine) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(GUI_SEND_PARAM_FUNCTION_MSG(SAVE_ALLPARAM), 0);
  std::string out = captured();
  EXPECT_EQ(one_frame(), "aa 07 10 03 00 00 00 c4 eb aa");
  EXPECT_NE(
      out.find("InfMsgEvent_Ui_To_App:  [aa] [07] [10] [03] [00] [00] [00] [c4] [eb] [aa] \n"),
      std::string::npos)
      << out;
  for (uint8_t other : {0, 1, 2, 4, 255})
    GUI_SEND_PARAM_FUNCTION_MSG(other);
  EXPECT_EQ(one_frame(), "");
}

TEST_F(Outbound, FrameBuildersLayOutTheirBytes) {
  const uint8_t basic[4] = {0x01, 0x02, 0x03, 0x04};
  EXPECT_EQ(BasicFunctionHandlerToApp(basic), 1);
  EXPECT_EQ(one_frame(), "aa 07 01 02 03 00 04 bb eb aa");
  const uint8_t inf[5] = {0x01, 0x02, 0x03, 0x04, 0x05};
  InfHandlerToApp(inf);
  EXPECT_EQ(one_frame(), "aa 08 01 02 03 00 04 05 c1 eb aa");
  const uint8_t pos[7] = {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07};
  cliponPositionHandlerToApp(pos);
  EXPECT_EQ(one_frame(), "aa 0a 01 02 03 00 04 05 06 07 d0 eb aa");
  const uint8_t video[10] = {0x17, 0x03, 1, 2, 3, 4, 5, 6, 7, 8};
  VideoFrameHandlerToApp(video);
  EXPECT_EQ(one_frame(), "aa 0e 17 01 03 00 01 02 03 04 05 06 07 08 f7 eb aa");
  UIreadyToApp(8, 1);
  EXPECT_EQ(one_frame(), "aa 07 08 00 00 00 01 ba eb aa");
  // The per-family names send through the same builders.
  updataHandlerToApp(basic);
  EXPECT_EQ(one_frame(), "aa 07 01 02 03 00 04 bb eb aa");
  visiHandlerToApp(inf);
  EXPECT_EQ(one_frame(), "aa 08 01 02 03 00 04 05 c1 eb aa");
  reticlePositionHandlerToApp(pos);
  EXPECT_EQ(one_frame(), "aa 0a 01 02 03 00 04 05 06 07 d0 eb aa");
}

TEST_F(Outbound, BasicFunctionValuesComeFromTheRecords) {
  stDevStatus.s8ConciseMode = 1;
  stDevStatus.s8ScreenBrightness = 7;
  stDevStatus.s8VideoOut = 1;
  stDevStatus.s8Language = 3;
  stDevStatus.s8SortType = 2;
  stUIStatus.s8UsbMode = 2;
  stUIStatus.s8PowerSwitch = 1;
  stDevStatus.s8UseMode = 1;
  stDevStatus.s8FillLightSwitch = 1;
  stDevStatus.s8FillLightBright = 4;
  stUIStatus.s8WindCountSwitch = 1;
  stDevStatus.s8RangeType = 1;
  stUIStatus.s8CurrentMenu = 1;
  const std::vector<std::pair<int, std::string>> rows = {
      {6, "BASIC BASIC_INFO_DISPLAY_MODE value=1"},
      {7, "BASIC BASIC_SCREEN_LIGHT value=7"},
      {8, "BASIC BASIC_CVBS_MODE value=1"},
      {11, "BASIC BASIC_RESET_MODE value=1"},
      {12, "BASIC BASIC_STORAGE_FORMAT value=1"},
      {13, "BASIC BASIC_SHUT_DOWN value=1"},
      {16, "BASIC 16:language value=3"},
      {17, "BASIC 17:sort_type value=2"},
      {18, "BASIC BASIC_USB_TYPE value=2"},
      {19, "BASIC 19:power value=1"},
      {21, "BASIC 21:use_mode value=1"},
      {23, "BASIC 23:fill_light value=1"},
      {24, "BASIC 24:fill_light_bright value=4"},
      {30, "BASIC 30:marker_move_done value=0"},
      {32, "BASIC BASIC_REBOOT value=1"},
      {35, "BASIC 35:wind_count value=1"},
      {36, "BASIC BASIC_RANGE_TYPE value=1"},
      {39, "BASIC BASIC_MENU_LEVEL value=1"},
  };
  for (const auto& [index, text] : rows) {
    GUI_SEND_BASIC_FUNCTION_MSG(static_cast<uint8_t>(index));
    EXPECT_EQ(sent_decoded(), std::vector<std::string>{text}) << index;
  }
  EXPECT_TRUE(events().empty());
  // Index 30 is the one basic frame whose command byte is not 0.
  GUI_SEND_BASIC_FUNCTION_MSG(30);
  EXPECT_EQ(one_frame(), "aa 07 00 1e ff 00 00 ce eb aa");
}

TEST_F(Outbound, BasicFunctionIndicesThatSendNothing) {
  for (int index : {1, 2, 3, 4, 5, 9, 10, 15, 20, 25, 27, 28, 29, 31, 38, 40, 200, 255}) {
    GUI_SEND_BASIC_FUNCTION_MSG(static_cast<uint8_t>(index));
  }
  EXPECT_TRUE(sent_frames().empty());
  EXPECT_TRUE(events().empty());
}

TEST_F(Outbound, BasicFunctionEvents) {
  stUIStatus.s8InterfaceState = INTERFACE_OBSERVE;
  GUI_SEND_BASIC_FUNCTION_MSG(BASIC_AUTO_SCREEN);
  EXPECT_EQ(one_frame(), "aa 07 00 00 0e 00 01 c0 eb aa");
  EXPECT_EQ(events(), std::vector<int>{8253});

  stUIStatus.s8LaserSwitch = 1;
  GUI_SEND_BASIC_FUNCTION_MSG(BASIC_LASER_SWITCH);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"BASIC BASIC_LASER_SWITCH value=1"});
  EXPECT_EQ(events(), std::vector<int>{8229});

  stDevStatus.s8MicroSwitch = 1;
  GUI_SEND_BASIC_FUNCTION_MSG(BASIC_MICRO);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"BASIC BASIC_MICRO value=1"});
  EXPECT_EQ(events(), std::vector<int>{8245});

  stDevStatus.s8CompassSwitch = 1;
  GUI_SEND_BASIC_FUNCTION_MSG(33);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"BASIC 33:compass_switch value=1"});
  EXPECT_EQ(events(), std::vector<int>{8228});

  stUIStatus.s8WindSwitch = 1;
  stUIStatus.s16WindSpeed = 4470;
  GUI_SEND_BASIC_FUNCTION_MSG(BASIC_WIND_SWITCH);
  EXPECT_EQ(stUIStatus.s16WindSpeed, 0);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"BASIC BASIC_WIND_SWITCH value=1"});
  EXPECT_EQ(events(), std::vector<int>{8243});

  stDevStatus.s8DistanceUint = DISTANCE_YD;
  GUI_SEND_BASIC_FUNCTION_MSG(37);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"BASIC 37:distance_unit value=1"});
  EXPECT_EQ(events(), std::vector<int>{8222});
}

TEST_F(Outbound, VideoModeIsSent100MillisecondsLater) {
  stDevStatus.s8VideoMode = 1;
  GUI_SEND_BASIC_FUNCTION_MSG(BASIC_VIDEO_MODE);
  EXPECT_EQ(events(), (std::vector<int>{8194, 8227}));
  EXPECT_EQ(one_frame(), "");
  tk_testing_advance(99);
  EXPECT_EQ(one_frame(), "");
  stDevStatus.s8VideoMode = 2;  // the value at the time the timer fires goes out
  tk_testing_advance(1);
  EXPECT_EQ(one_frame(), "aa 07 00 00 00 00 02 b3 eb aa");
  tk_testing_advance(1000);
  EXPECT_EQ(one_frame(), "") << "the timer runs once";
}

TEST_F(Outbound, ClipOnPosition) {
  stDevStatus.s16CliponPositionX = -3;
  stDevStatus.s16CliponPositionY = 300;
  GUI_SEND_CLIPON_POSITION_MSG(20);
  EXPECT_EQ(one_frame(), "aa 0a 00 00 14 00 fd ff 2c 01 f1 eb aa");
  GUI_SEND_CLIPON_POSITION_MSG(21);
  EXPECT_EQ(one_frame(), "");
}

TEST_F(Outbound, InfraredValuesComeFromTheRecords) {
  stDevStatus.s8IrBrightness = 6;
  stDevStatus.s8IrContrast = 4;
  stDevStatus.s8IrEnchance = 2;
  stDevStatus.s8IrPolarity = 3;
  stDevStatus.s8CorrectType = 1;
  stDevStatus.s8Stronglight_protect = 1;
  stDevStatus.s8IrScene = 2;
  stUIStatus.s8Irfreeze = 1;
  stDevStatus.s8HotTrack = 1;
  stDevStatus.s8AutoShutter = 1;
  stUIStatus.s8IRZoom = 400;
  const std::vector<std::pair<int, std::string>> rows = {
      {INFRARED_LIGHT, "aa 08 01 01 01 00 06 00 bb eb aa"},
      {INFRARED_CONTRACT, "aa 08 01 01 02 00 04 00 ba eb aa"},
      {INFRARED_ENHANCE, "aa 08 01 01 03 00 02 00 b9 eb aa"},
      {INFRARED_CORRECT_TYPE_CHOOSE, "aa 08 01 01 05 00 01 00 ba eb aa"},
      {INFRARED_LIGHTPAOTECT, "aa 08 01 01 08 00 01 00 bd eb aa"},
      {INFRARED_SCENE, "aa 08 01 01 09 00 02 00 bf eb aa"},
      {INFRARED_FREEZE, "aa 08 01 01 0a 00 01 00 bf eb aa"},
      {INFRARED_HOTTRACK, "aa 08 01 01 0c 00 01 00 c1 eb aa"},
      {INFRARED_AUTOSHUTTER, "aa 08 01 01 0d 00 01 00 c2 eb aa"},
      {INFRARED_ZOOM, "aa 08 01 01 10 00 90 01 55 eb aa"},
  };
  for (const auto& [index, hex] : rows) {
    GUI_SEND_INFRARED_MSG(static_cast<uint8_t>(index));
    EXPECT_EQ(one_frame(), hex) << index;
  }
  EXPECT_TRUE(events().empty());
  GUI_SEND_INFRARED_MSG(INFRARED_POLARITY);
  EXPECT_EQ(one_frame(), "aa 08 01 01 04 00 03 00 bb eb aa");
  EXPECT_EQ(events(), std::vector<int>{8230});
  for (int index : {int(INFRARED_BRIGHTLIGHT), 7, int(INFRARED_TEMPERATURE), 14, 15, 17, 255}) {
    GUI_SEND_INFRARED_MSG(static_cast<uint8_t>(index));
  }
  EXPECT_EQ(one_frame(), "");
}

TEST_F(Outbound, ShutterTimerClearsTheStateOnce) {
  stDevStatus.s8CorrectType = 1;
  GUI_SEND_INFRARED_MSG(INFRARED_CORRECT);
  EXPECT_EQ(one_frame(), "aa 08 01 0f 00 00 01 00 c3 eb aa");
  EXPECT_EQ(stUIStatus.s8ShutterState, 1);
  EXPECT_EQ(events(), std::vector<int>{8241});
  tk_testing_advance(300);
  GUI_SEND_INFRARED_MSG(INFRARED_CORRECT);  // a second press while the timer runs
  EXPECT_EQ(events(), std::vector<int>{8241});
  tk_testing_advance(199);
  EXPECT_EQ(stUIStatus.s8ShutterState, 1);
  tk_testing_advance(1);
  EXPECT_EQ(stUIStatus.s8ShutterState, 0);
  EXPECT_EQ(events(), std::vector<int>{8241});
  tk_testing_advance(1000);
  EXPECT_TRUE(events().empty()) << "one timer, one reopening";
  sent_frames();
}

TEST_F(Outbound, VisibleFusionAndPictureInPicture) {
  stDevStatus.s8VisiBrightness = 3;
  stDevStatus.s8VisiContrast = 4;
  stUIStatus.s8VisiZoom = 2;
  stUIStatus.s8VisiMode = 1;
  const std::vector<std::pair<int, std::string>> visi = {
      {VISI_LIGHT, "VISI VISI_LIGHT value=3"},
      {VISI_CONTRACT, "VISI VISI_CONTRACT value=4"},
      {VISI_ZOOM, "VISI VISI_ZOOM value=2"},
      {VISI_MODE, "VISI VISI_MODE value=1"},
  };
  for (const auto& [index, text] : visi) {
    GUI_SEND_VISI_MSG(static_cast<uint8_t>(index));
    EXPECT_EQ(sent_decoded(), std::vector<std::string>{text});
  }
  GUI_SEND_VISI_MSG(VISI_LIGHT);
  EXPECT_EQ(one_frame(), "aa 08 02 00 ff 00 03 00 b6 eb aa");
  GUI_SEND_VISI_MSG(VISI_FOG);
  GUI_SEND_VISI_MSG(VISI_ENHANCE);
  EXPECT_EQ(one_frame(), "");

  stDevStatus.s8FuContrast = 5;
  stDevStatus.s8FuMode = 2;
  stUIStatus.s8FuZoom = 3;
  GUI_SEND_FUSION_MSG(FUSION_CONTRACT);
  GUI_SEND_FUSION_MSG(FUSION_MODE);
  GUI_SEND_FUSION_MSG(FUSION_ZOOM);
  GUI_SEND_FUSION_MSG(FUSION_LIGHT);
  GUI_SEND_FUSION_MSG(FUSION_POSITION);
  EXPECT_EQ(sent_decoded(),
            (std::vector<std::string>{"FUSION FUSION_CONTRACT value=5",
                                      "FUSION FUSION_MODE value=2", "FUSION FUSION_ZOOM value=3"}));
  stDevStatus.s16FushionX = 10;
  stDevStatus.s16FushionY = -10;
  GUI_SEND_FUSION_POSITION_MSG(FUSION_POSITION);
  EXPECT_EQ(one_frame(), "aa 0a 14 04 ff 00 0a 00 f6 ff ca eb aa");
  GUI_SEND_FUSION_POSITION_MSG(0);
  EXPECT_EQ(one_frame(), "");

  stDevStatus.s8PipMode = 2;
  GUI_SEND_PIP_MSG(PIP_MODE);
  EXPECT_EQ(one_frame(), "aa 08 15 00 ff 00 02 00 c8 eb aa");
  GUI_SEND_PIP_MSG(PIP_ZOOM);
  EXPECT_EQ(one_frame(), "");
}

TEST_F(Outbound, WifiAndCompass) {
  stUIStatus.s8WifiSwitch = 1;
  GUI_SEND_WIFI_MSG(WIFI_SWITCH);
  EXPECT_EQ(one_frame(), "aa 07 05 00 ff 00 01 b6 eb aa");
  EXPECT_EQ(events(), std::vector<int>{8232});
  GUI_SEND_WIFI_MSG(WIFI_CONNECT);
  EXPECT_EQ(one_frame(), "");

  stDevStatus.s16CompassMagnetic = -125;  // -12.5 degrees: sign 1, 12, 5
  GUI_SEND_COMPASS_MSG(0);
  EXPECT_EQ(one_frame(), "aa 0a 06 01 00 00 01 0c 00 05 cd eb aa");
  stDevStatus.s16CompassMagnetic = 3001;
  GUI_SEND_COMPASS_MSG(0);
  EXPECT_EQ(one_frame(), "aa 0a 06 01 00 00 00 2c 01 01 e9 eb aa");
  GUI_SEND_COMPASS_MSG(1);
  EXPECT_EQ(one_frame(), "");

  testing::internal::CaptureStdout();
  for (uint8_t i = 0; i <= 4; ++i)
    GUI_SEND_COMPASS_CORRECT(i);
  std::string out = captured();
  EXPECT_EQ(sent_decoded(),
            (std::vector<std::string>{"COMPASS COMPASS_CORRECT COMPASS_HORIZONTAL_START",
                                      "COMPASS COMPASS_CORRECT COMPASS_HORIZONTAL_STOP",
                                      "COMPASS COMPASS_CORRECT COMPASS_VERTICAL_START",
                                      "COMPASS COMPASS_CORRECT COMPASS_VERTICAL_STOP"}));
  const size_t a = out.find("horizontal start!\n");
  const size_t b = out.find("horizontal stop!\n");
  const size_t c = out.find("vertical start!\n");
  const size_t d = out.find("vertical stop!\n");
  ASSERT_NE(d, std::string::npos) << out;
  EXPECT_TRUE(a < b && b < c && c < d) << out;
}

TEST_F(Outbound, ReticleTable) {
  stDevStatus.s8ReticleColour = 2;
  stDevStatus.s8ReticleSwitch = 1;
  stDevStatus.s8ReticleType = 3;
  stDevStatus.s8ReticleMenuSwitch = 1;
  stDevStatus.s8ReticleBrightness = 8;
  IR_Cursor.u8CurrentGroup = 2;
  IR_Cursor.group[2].u8CurrentZero = 4;
  stUIStatus.s8Enter_reticle_move = 1;

  GUI_SEND_RETICLE_MSG(RETICLE_COLOR);
  EXPECT_EQ(one_frame(), "aa 07 16 00 ff 00 02 c8 eb aa");
  EXPECT_EQ(events(), std::vector<int>{8234});
  GUI_SEND_RETICLE_MSG(RETICLE_SWITCH);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"RETICLE RETICLE_SWITCH value=1"});
  EXPECT_EQ(events(), std::vector<int>{8194});
  GUI_SEND_RETICLE_MSG(RETICLE_TYPE);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"RETICLE RETICLE_TYPE value=3"});
  EXPECT_EQ(events(), (std::vector<int>{8238, 8227}));
  GUI_SEND_RETICLE_MSG(RETICLE_MENU_SWITCH);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"RETICLE RETICLE_MENU_SWITCH value=1"});
  EXPECT_EQ(events(), std::vector<int>{8217});
  GUI_SEND_RETICLE_MSG(RETICLE_LIGHT);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"RETICLE RETICLE_LIGHT value=8"});
  EXPECT_EQ(events(), std::vector<int>{8235});
  GUI_SEND_RETICLE_MSG(RETICLE_GROUP);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"RETICLE RETICLE_GROUP value=2"});
  EXPECT_EQ(events(), (std::vector<int>{8223, 8244, 8227, 8240}));
  GUI_SEND_RETICLE_MSG(RETICLE_ZERO);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"RETICLE RETICLE_ZERO value=4"});
  EXPECT_EQ(events(), (std::vector<int>{8223, 8244, 8227}));
  GUI_SEND_RETICLE_MSG(RETICLE_ENTER_RETICLE_MOVE);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"RETICLE RETICLE_ENTER_RETICLE_MOVE value=1"});
  EXPECT_EQ(events(), (std::vector<int>{8227, 8223}));

  for (int index : {int(RETICLE_POSITION), int(RETICLE_DISTANCE), 13, 254, 255}) {
    GUI_SEND_RETICLE_MSG(static_cast<uint8_t>(index));
  }
  EXPECT_EQ(one_frame(), "");
  EXPECT_TRUE(events().empty());
}

TEST_F(Outbound, MarkerPatternsAndColoursFollowTheChooser) {
  stDevStatus.s8LaserReticleType = 2;
  stDevStatus.s8LaserReticleColor = 5;
  stDevStatus.s8RangeReticleType = 1;
  stDevStatus.s8RangeReticleColor = 6;
  stDevStatus.s8PIPReticleType = 4;
  stDevStatus.s8PIPReticleColor = 7;
  stUIStatus.s8ReticleTypeColorChoose = 3;  // a colour change
  GUI_SEND_RETICLE_MSG(RETICLE_LASER_POSITION);
  EXPECT_EQ(one_frame(), "aa 07 16 08 03 00 05 d7 eb aa");
  GUI_SEND_RETICLE_MSG(RETICLE_RANGE_POSITION);
  EXPECT_EQ(sent_decoded(),
            std::vector<std::string>{"RETICLE RETICLE_RANGE_POSITION sub=3 value=6"});
  GUI_SEND_RETICLE_MSG(RETICLE_PIP_EVENT);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"RETICLE RETICLE_PIP_EVENT sub=3 value=7"});
  EXPECT_EQ(events(), (std::vector<int>{8257, 8256, 8255}));
  stUIStatus.s8ReticleTypeColorChoose = 4;  // a pattern change
  GUI_SEND_RETICLE_MSG(RETICLE_LASER_POSITION);
  GUI_SEND_RETICLE_MSG(RETICLE_RANGE_POSITION);
  GUI_SEND_RETICLE_MSG(RETICLE_PIP_EVENT);
  EXPECT_EQ(sent_decoded(),
            (std::vector<std::string>{"RETICLE RETICLE_LASER_POSITION sub=4 value=2",
                                      "RETICLE RETICLE_RANGE_POSITION sub=4 value=1",
                                      "RETICLE RETICLE_PIP_EVENT sub=4 value=4"}));
}

TEST_F(Outbound, PositionsAndZeroDistance) {
  IR_Cursor.u8CurrentGroup = 1;
  IR_Cursor.group[1].u8CurrentZero = 2;
  IR_Cursor.group[1].zero[2].s8IrCursorCurrentX = 650;
  IR_Cursor.group[1].zero[2].s8IrCursorCurrentY = 630;
  IR_Cursor.group[1].zero[2].u16IrCursorDistance = 274;
  stDevStatus.s16LaserIndicatX = -1;
  stDevStatus.s16LaserIndicatY = 2;
  stDevStatus.s16RangeOffsetX = 100;
  stDevStatus.s16RangeOffsetY = 200;

  GUI_SEND_RETICLE_POSITION_MSG(RETICLE_POSITION);
  EXPECT_EQ(one_frame(), "aa 0a 16 03 ff 00 8a 02 76 02 d0 eb aa");
  EXPECT_EQ(events(), std::vector<int>{8223});
  GUI_SEND_RETICLE_POSITION_MSG(RETICLE_LASER_POSITION);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"RETICLE RETICLE_LASER_POSITION x=-1 y=2"});
  EXPECT_EQ(events(), std::vector<int>{8226});
  GUI_SEND_RETICLE_POSITION_MSG(RETICLE_RANGE_POSITION);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"RETICLE RETICLE_RANGE_POSITION x=100 y=200"});
  EXPECT_EQ(events(), std::vector<int>{8225});
  GUI_SEND_RETICLE_POSITION_MSG(RETICLE_DISTANCE);
  EXPECT_EQ(one_frame(), "aa 08 16 0a ff 00 12 01 e4 eb aa");
  EXPECT_EQ(events(), std::vector<int>{8227});
  GUI_SEND_RETICLE_POSITION_MSG(RETICLE_BACK_RETICLE_ZERO_CHILD);
  EXPECT_EQ(one_frame(), "");
  EXPECT_EQ(events(), std::vector<int>{8239});

  IR_Cursor.u8CurrentGroup = 7;
  testing::internal::CaptureStdout();
  GUI_SEND_RETICLE_POSITION_MSG(RETICLE_POSITION);
  GUI_SEND_RETICLE_MSG(RETICLE_ZERO);
  std::string out = captured();
  EXPECT_EQ(one_frame(), "");
  EXPECT_NE(out.find("does not exist, nothing sent"), std::string::npos) << out;
  EXPECT_NE(out.find("GUI_SEND_RETICLE_MSG: reticle group 7 is outside 0..4, nothing sent"),
            std::string::npos)
      << out;
}

TEST_F(Outbound, TapVideoCarriesTheFileName) {
  GUI_SEND_TAP_VIDEO_MSG(TAP_PICTURE_RECORD, TAP_TAKE_PICTURE, nullptr);
  EXPECT_EQ(one_frame(), "aa 07 17 00 02 00 00 ca eb aa");
  GUI_SEND_TAP_VIDEO_MSG(TAP_REPLAY, TAP_REPLAY_START, "a.mp4");
  EXPECT_EQ(one_frame(), "aa 0c 17 01 03 00 61 2e 6d 70 34 00 71 eb aa");
  GUI_SEND_TAP_VIDEO_MSG(TAP_REPLAY, TAP_REPLAY_VEDIO_TOTAL_TIME, "VID_0001.mp4");
  EXPECT_EQ(
      sent_decoded(),
      std::vector<std::string>{"TAP TAP_REPLAY TAP_REPLAY_VEDIO_TOTAL_TIME name=\"VID_0001.mp4\""});

  const std::string longest(TAP_NAME_MAX, 'x');
  GUI_SEND_TAP_VIDEO_MSG(TAP_REPLAY, TAP_REPLAY_START, longest.c_str());
  std::vector<Frame> sent = sent_frames();
  ASSERT_EQ(sent.size(), 1u);
  EXPECT_EQ(sent[0].size(), 258u);
  EXPECT_EQ(sent[0][1], 255);
  EXPECT_EQ(sent[0][254], 0);
  EXPECT_EQ(framedec::check(sent[0]), framedec::FrameError::OK);

  testing::internal::CaptureStdout();
  GUI_SEND_TAP_VIDEO_MSG(TAP_REPLAY, TAP_REPLAY_START, (longest + "y").c_str());
  GUI_SEND_TAP_VIDEO_MSG(5, 0, nullptr);
  std::string out = captured();
  EXPECT_NE(out.find("GUI_SEND_TAP_VIDEO_MSG: file name of 249 bytes is longer than 248, nothing "
                     "sent\n"),
            std::string::npos)
      << out;
  EXPECT_EQ(one_frame(), "");
}

TEST_F(Outbound, VideoSeek) {
  stUIStatus.u64VideoForwardFrames = 0x0102030405ull;
  testing::internal::CaptureStdout();
  GUI_SEND_VIDEO_FRAME_MSG(TAP_REWIND_FORWARD);
  std::string out = captured();
  EXPECT_EQ(one_frame(), "aa 0e 17 01 03 00 05 04 03 02 01 00 00 00 e2 eb aa");
  EXPECT_NE(out.find("\n\n\n send frams = 4328719365!\n"), std::string::npos) << out;
  GUI_SEND_VIDEO_FRAME_MSG(TAP_PROCESS);
  EXPECT_EQ(one_frame(), "");
}

TEST_F(Outbound, BlindGGUpdateRecoilAndRange) {
  stUIStatus.s8BlindSwitch = 1;
  stUIStatus.s8BlindPosition = 3;
  stUIStatus.s8BlindType = 1;
  stUIStatus.s8BlindTenPosition = 2;
  for (uint8_t i = 0; i <= 5; ++i)
    GUI_SEND_BLIND_MSG(i);
  std::vector<Frame> blind = sent_frames();
  ASSERT_EQ(blind.size(), 5u);
  EXPECT_EQ(framedec::hex(blind[0]), "aa 07 18 00 00 00 01 ca eb aa");
  EXPECT_EQ(framedec::hex(blind[1]), "aa 07 18 01 00 00 03 cd eb aa");
  EXPECT_EQ(framedec::hex(blind[2]), "aa 07 18 02 00 00 01 cc eb aa");
  EXPECT_EQ(framedec::hex(blind[3]), "aa 07 18 03 ff 00 01 cc eb aa");
  EXPECT_EQ(framedec::hex(blind[4]), "aa 07 18 04 00 00 02 cf eb aa");

  for (uint8_t i = 0; i <= 3; ++i)
    GUI_SEND_GG_MSG(i);
  EXPECT_EQ(sent_decoded(), (std::vector<std::string>{"GG GG_CLEAR", "GG GG_GET", "GG GG_SAVE"}));

  stUIStatus.s8Updata_confirm = 1;
  stUIStatus.s8Updata_check = 2;
  for (uint8_t i = 0; i <= 3; ++i)
    GUI_SEND_UPDATA_MSG(i);
  std::vector<Frame> updata = sent_frames();
  ASSERT_EQ(updata.size(), 2u);
  EXPECT_EQ(framedec::hex(updata[0]), "aa 07 1a 01 ff 00 01 cc eb aa");
  EXPECT_EQ(framedec::hex(updata[1]), "aa 07 1a 02 ff 00 02 ce eb aa");

  stDevStatus.s8RecoilState = 1;
  stDevStatus.s8RecoilBefore = 5;
  stDevStatus.s8RecoilAfter = 10;
  stDevStatus.s8RecoilSensitivity = 2;
  for (uint8_t i = 0; i <= 7; ++i)
    GUI_SEND_RECOIL_MSG(i);
  EXPECT_EQ(sent_decoded(), (std::vector<std::string>{
                                "RECOIL RECOIL_SWITCH value=1", "RECOIL RECOIL_BEFORE value=5",
                                "RECOIL RECOIL_AFTER value=10", "RECOIL RECOIL_SENSITIVITY value=2",
                                "RECOIL RECOIL_BREAKOUT value=1"}));
  EXPECT_EQ(events(), std::vector<int>{8250});  // five raises before the UI thread ran: one event

  GUI_SEND_DISTANCE_FUNCTION_MSG(1, 3);
  EXPECT_EQ(stUIStatus.s8RangeMode, 3);
  EXPECT_EQ(one_frame(), "aa 07 04 07 01 00 03 c0 eb aa");
  GUI_SEND_DISTANCE_FUNCTION_MSG(0, 1);
  EXPECT_EQ(stUIStatus.s8RangeMode, 1);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"RANGE SWITCH value=1"});
}

TEST_F(Outbound, BallisticParameters) {
  stDevStatus.s8BallisticGroup = 1;
  Info_ballistics& p = info[1];
  p.gun.bullet.length = 1.24;
  p.gun.bullet.diameter = 0.308;
  p.gun.bullet.weight = 175;
  p.gun.bullet.ballisticsCoef = 0.505;
  p.gun.bullet.dragFunction = 4;
  p.gun.bullet.velocity = 790;
  p.gun.riflingRange = 10;
  p.gun.direction = RIGHT;
  p.gun.bullet.isOpenAtmosphere = 1;
  p.gun.bullet.atmosphere.temperature = -5;
  p.gun.bullet.atmosphere.barometer = 98.5f;
  p.gun.bullet.atmosphere.relative_humidity = 40;
  p.gun.bullet.zeroOffsetUnit = MRAD;
  p.gun.bullet.zeroOffsetVerticalMRAD = 0.3;
  p.atmosphere.temperature = 21;
  p.atmosphere.barometer = 97;
  p.atmosphere.relative_humidity = 60;
  p.gun.scope.sightHeightOverBore = 4.5;
  p.gun.scope.zeroRange = 100;
  p.gun.scope.zeroRange_yard = 109;
  p.wind.angle = 90;
  p.wind.speed = 3.5;
  p.target.range = 300;
  p.target.range_yard = 328;
  p.target.shootingAngle = -10;

  const std::vector<std::tuple<int, int, std::string>> rows = {
      {1, 0, "BALLISTIC BALLISTIC_BULLET_INFO item=0 value=1.24"},
      {1, 1, "BALLISTIC BALLISTIC_BULLET_INFO item=1 value=0.308"},
      {1, 2, "BALLISTIC BALLISTIC_BULLET_INFO item=2 value=175"},
      {1, 3, "BALLISTIC BALLISTIC_BULLET_INFO item=3 value=0.505"},
      {1, 4, "BALLISTIC BALLISTIC_BULLET_INFO item=4 value=4"},
      {1, 5, "BALLISTIC BALLISTIC_BULLET_INFO item=5 value=790"},
      {1, 9, "BALLISTIC BALLISTIC_BULLET_INFO item=9 value=790"},  // the last float again
      {2, 0, "BALLISTIC BALLISTIC_TWIST_INFO item=0 value=10"},
      {2, 1, "BALLISTIC BALLISTIC_TWIST_INFO item=1 value=1"},
      {3, 0, "BALLISTIC BALLISTIC_ZEROWEATHER_LENSOFFSET item=0 value=1"},
      {3, 1, "BALLISTIC BALLISTIC_ZEROWEATHER_LENSOFFSET item=1 value=-5"},
      {3, 2, "BALLISTIC BALLISTIC_ZEROWEATHER_LENSOFFSET item=2 value=98.5"},
      {3, 3, "BALLISTIC BALLISTIC_ZEROWEATHER_LENSOFFSET item=3 value=40"},
      {3, 4, "BALLISTIC BALLISTIC_ZEROWEATHER_LENSOFFSET item=4 value=1"},
      {3, 7, "BALLISTIC BALLISTIC_ZEROWEATHER_LENSOFFSET item=7 value=0.3"},
      {4, 0, "BALLISTIC BALLISTIC_WEATHER item=0 value=21"},
      {4, 1, "BALLISTIC BALLISTIC_WEATHER item=1 value=97"},
      {4, 2, "BALLISTIC BALLISTIC_WEATHER item=2 value=60"},
      {5, 0, "BALLISTIC BALLISTIC_LENS_INFO item=0 value=4.5"},
      {5, 1, "BALLISTIC BALLISTIC_LENS_INFO item=1 m=100 yd=109"},
      {6, 0, "BALLISTIC BALLISTIC_WIND_INFO item=0 value=90"},
      {6, 1, "BALLISTIC BALLISTIC_WIND_INFO item=1 value=3.5"},
      {7, 0, "BALLISTIC BALLISTIC_TARGET_INFO item=0 m=300 yd=328"},
      {7, 1, "BALLISTIC BALLISTIC_TARGET_INFO item=1 value=-10"},
  };
  for (const auto& [index, item, text] : rows) {
    GUI_SEND_BALLISTIC_PARM_MSG(static_cast<uint8_t>(index), static_cast<uint8_t>(item));
    EXPECT_EQ(sent_decoded(), std::vector<std::string>{text}) << index << "/" << item;
  }
  EXPECT_EQ(events(), std::vector<int>{8244});  // only the zero ranges raise an event

  // Bytes: a float little-endian in bytes 6..9 (790.0f = 0x44458000).
  GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_BULLET_INFO, 5);
  EXPECT_EQ(one_frame(), "aa 0a 1b 01 05 00 00 80 45 44 de eb aa");
  // Other items of an index carry four zero bytes; an index above 7 sends nothing.
  GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_WEATHER, 3);
  EXPECT_EQ(one_frame(), "aa 0a 1b 04 03 00 00 00 00 00 d6 eb aa");
  GUI_SEND_BALLISTIC_PARM_MSG(8, 0);
  GUI_SEND_BALLISTIC_PARM_MSG(255, 0);
  EXPECT_EQ(one_frame(), "");
}

TEST_F(Outbound, BallisticSwitchesAndTheirEvents) {
  info[0].ballistics_sw = 1;
  info[3].ballistics_sw = 0;
  stDevStatus.s8BallisticGroup = 3;
  stDevStatus.s8BallisticReticle = 1;
  stDevStatus.s8BallisticReticleColor = 5;
  GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 0);
  EXPECT_EQ(one_frame(), "aa 0a 1b 00 00 00 01 00 00 00 d0 eb aa");
  EXPECT_EQ(events(), std::vector<int>{8240});
  GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 1);
  EXPECT_EQ(sent_decoded(),
            std::vector<std::string>{"BALLISTIC BALLISTIC_OPEN_CALCU item=1 value=1"});
  EXPECT_TRUE(events().empty());
  GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 2);
  EXPECT_EQ(events(), std::vector<int>{8251});
  GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 3);
  EXPECT_EQ(events(), std::vector<int>{8252});
  GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 4);
  EXPECT_EQ(events(), std::vector<int>{8244});
  GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 9);
  EXPECT_EQ(sent_decoded(),
            (std::vector<std::string>{"BALLISTIC BALLISTIC_OPEN_CALCU item=2 value=1",
                                      "BALLISTIC BALLISTIC_OPEN_CALCU item=3 value=5",
                                      "BALLISTIC BALLISTIC_OPEN_CALCU item=4 value=3",
                                      "BALLISTIC BALLISTIC_OPEN_CALCU item=9 value=0"}));
}

TEST_F(Outbound, AFullQueueFailsAtOnceWithTheDesignedLines) {
  // The device does not read: the UI's send queue fills up; later sends fail without waiting.
  const uint8_t save_all[10] = {0xaa, 0x07, 0x10, 0x03, 0x00, 0x00, 0x00, 0xc4, 0xeb, 0xaa};
  int sent = 0;
  testing::internal::CaptureStdout();
  while (sent < 100000 && Msgtext_Ui_To_App(1, 10, save_all) == 1)
    ++sent;
  std::string out = captured();
  EXPECT_GT(sent, 0);
  EXPECT_LT(sent, 100000);
  EXPECT_NE(out.find("[ERROR] send msg event failed!\nUi to App Send failed\n"), std::string::npos)
      << out.substr(out.size() > 400 ? out.size() - 400 : 0);

  stUIStatus.s8LaserSwitch = 1;
  testing::internal::CaptureStdout();
  EXPECT_EQ(GUI_SEND_BASIC_FUNCTION_MSG(BASIC_LASER_SWITCH), 0);
  out = captured();
  EXPECT_NE(out.find("[ERROR] send msg event failed!\nUi to App Send failed\n"), std::string::npos);
  EXPECT_EQ(stUIStatus.s8LaserSwitch, 1) << "the record keeps the new value";
  EXPECT_EQ(events(), std::vector<int>{8229});

  // Once the device reads again, sending works.
  EXPECT_EQ(sent_frames().size(), static_cast<size_t>(sent));
  GUI_SEND_PARAM_FUNCTION_MSG(SAVE_ALLPARAM);
  EXPECT_EQ(one_frame(), "aa 07 10 03 00 00 00 c4 eb aa");
}

TEST_F(Outbound, TransportRefusesLengthsBeyondTheContext) {
  uint8_t big[600] = {};
  testing::internal::CaptureStdout();
  EXPECT_EQ(Inf_SendMsgEvent(1, 0xFF, big, 513), -1);
  EXPECT_EQ(Inf_SendMsgEvent(1, 0xFF, big, -1), -1);
  std::string out = captured();
  EXPECT_NE(out.find("[ERROR] send msg event: length 513 is outside 0..512, nothing sent\n"),
            std::string::npos)
      << out;
  EXPECT_TRUE(sent_frames().empty());
  // Without data the header goes out with a zeroed context.
  EXPECT_EQ(Inf_SendMsgEvent(1, 0xFF, nullptr, 7), 0);
  std::vector<Frame> frames = sent_frames();
  ASSERT_EQ(frames.size(), 1u);
  EXPECT_EQ(frames[0], Frame(7, 0));
}

}  // namespace
}  // namespace linktest
