// The senders: byte-exact frames for every family, the dump line, their screen events and extra
// effects, and sending while the device does not read.
#include <algorithm>
#include <cctype>
#include <cstring>
#include <functional>
#include <ranges>
#include <string_view>

#include "link_fixture.h"

namespace linktest {
namespace {

using Sender = int32_t (*)(uint8_t);
using framedec::Direction;

// Calls `f` with each index in turn; every sender returns 0.
std::function<void()> each(Sender f, std::vector<int> indices) {
  return [=] {
    for (int i : indices)
      EXPECT_EQ(f(static_cast<uint8_t>(i)), 0) << i;
  };
}

std::function<void()> ballistic(int index, std::vector<int> items) {
  return [=] {
    for (int item : items)
      GUI_SEND_BALLISTIC_PARM_MSG(static_cast<uint8_t>(index), static_cast<uint8_t>(item));
  };
}

// Every field a sender reads holds a value of its own; the fields not named are zero.
// clang-format off
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
void fill_records() {
  stDevStatus = {.s8UseMode = 1, .s8ConciseMode = 1, .s8IrPolarity = 3, .s8IrBrightness = 6,
      .s8IrContrast = 4, .s8CorrectType = 1, .s8IrEnchance = 2, .s8IrScene = 2,
      .s8Stronglight_protect = 1, .s8VisiBrightness = 3, .s8VisiContrast = 4, .s8FuMode = 2,
      .s8FuContrast = 5, .s8PipMode = 2, .s8ReticleMenuSwitch = 1, .s8ReticleColour = 2,
      .s8ReticleSwitch = 1, .s8ReticleBrightness = 8, .s8ReticleType = 3, .s16RangeOffsetX = 100,
      .s16RangeOffsetY = 200, .s16LaserIndicatX = -1, .s16LaserIndicatY = 2, .s8VideoOut = 1,
      .s8ScreenBrightness = 7, .s8Language = 3, .s8SortType = 2, .s8FillLightSwitch = 1,
      .s8FillLightBright = 4, .s16FushionX = 10, .s16FushionY = -10,
      .s16CompassMagnetic = -125,  // -12.5 degrees: sign 1, 12, 5
      .s16CliponPositionX = -3, .s16CliponPositionY = 300, .s8DistanceUint = 1, .s8RangeType = 1,
      .s8CompassSwitch = 1, .s8HotTrack = 1, .s8AutoShutter = 1, .s8RecoilBefore = 5,
      .s8RecoilAfter = 10, .s8RecoilState = 1, .s8MicroSwitch = 1, .s8BallisticReticle = 1,
      .s8RecoilSensitivity = 2, .s8RangeReticleType = 1, .s8RangeReticleColor = 6,
      .s8PIPReticleType = 4, .s8PIPReticleColor = 7, .s8LaserReticleType = 2,
      .s8LaserReticleColor = 5, .s8BallisticReticleColor = 5, .s8BallisticGroup = 1};
  stUIStatus = {.s8IRZoom = 400, .s8VisiZoom = 2, .s8VisiMode = 1, .s8FuZoom = 3, .s8WifiSwitch = 1,
      .s8UsbMode = 2, .s8PowerSwitch = 1, .s8LaserSwitch = 1, .s8BlindSwitch = 1,
      .s8BlindPosition = 3, .s8BlindTenPosition = 2, .s8BlindType = 1,
      .u64VideoForwardFrames = 0x0102030405ull, .s8InterfaceState = 1, .s16WindSpeed = 4470,
      .s8Irfreeze = 1, .s8Enter_reticle_move = 1, .s8WindSwitch = 1, .s8WindCountSwitch = 1,
      .s8Updata_confirm = 1, .s8Updata_check = 2, .s8CurrentMenu = 1,
      .s8ReticleTypeColorChoose = 3};
  IR_Cursor.u8CurrentGroup = 1;
  IR_Cursor.group[1].u8CurrentZero = 2;
  IR_Cursor.group[1].zero[2] = {274, 300, 650, 630};
  info[0].ballistics_sw = 1;
  Info_ballistics& p = info[1];
  p.gun.bullet = {1.24, 0.308, 175, 0.505, 4, 790, {0, 98.5f, -5, 40}, 1, MRAD, 1.5, -2.25, 0.3, -0.75};
  p.gun.scope = {100, 109, 4.5, MOA, 0, 0};
  p.gun.riflingRange = 10;
  p.gun.direction = RIGHT;
  p.atmosphere = {0, 97, 21, 60};
  p.wind = {90, 3.5};
  p.target = {300, 328, -10};
}
#pragma GCC diagnostic pop
// clang-format on

class Outbound : public LinkTest {};

struct Row {
  std::function<void()> call;
  // Each frame sent, ", " between two: the whole frame in hex ("aa 07 ..."), its decoded text
  // ("BASIC ..."), or in hex its bytes from the type to the checksum (type command sub 0 values).
  std::string frames;
  std::vector<int> events = {};
};

TEST_F(Outbound, EverySenderFramesTheFieldsItsIndexNames) {
  fill_records();
  // clang-format off
  const Row rows[] = {
      {each(GUI_SEND_PARAM_FUNCTION_MSG, {3, 0, 1, 2, 4, 255}), "aa 07 10 03 00 00 00 c4 eb aa"},
      {each(GUI_SEND_BASIC_FUNCTION_MSG,
            {6, 7, 8, 11, 12, 13, 16, 17, 18, 19, 21, 23, 24, 30, 32, 35, 36, 39}),
       "00 00 06 00 01, 00 00 07 00 07, 00 00 08 00 01, 00 00 0b 00 01, 00 00 0c 00 01, "
       "00 00 0d 00 01, 00 00 10 00 03, 00 00 11 00 02, 00 00 12 00 02, 00 00 13 00 01, "
       "00 00 15 00 01, 00 00 17 00 01, 00 00 18 00 04, 00 1e ff 00 00, 00 00 20 00 01, "
       "00 00 23 00 01, 00 00 24 00 01, 00 00 27 00 01"},
      {each(GUI_SEND_BASIC_FUNCTION_MSG,
            {1, 2, 3, 4, 5, 9, 10, 15, 20, 25, 27, 28, 29, 31, 38, 40, 255}), ""},
      {each(GUI_SEND_BASIC_FUNCTION_MSG, {14, 22, 26, 33, 34, 37}),
       "00 00 0e 00 01, 00 00 16 00 01, 00 00 1a 00 01, 00 00 21 00 01, 00 00 22 00 01, "
       "00 00 25 00 01", {8253, 8229, 8245, 8228, 8243, 8222}},
      {each(GUI_SEND_CLIPON_POSITION_MSG, {20, 21}), "aa 0a 00 00 14 00 fd ff 2c 01 f1 eb aa"},
      {each(GUI_SEND_INFRARED_MSG, {1, 2, 3, 5, 8, 9, 10, 12, 13, 16, 6, 7, 11, 14, 15, 17, 255}),
       "01 01 01 00 06 00, 01 01 02 00 04 00, 01 01 03 00 02 00, 01 01 05 00 01 00, "
       "01 01 08 00 01 00, 01 01 09 00 02 00, 01 01 0a 00 01 00, 01 01 0c 00 01 00, "
       "01 01 0d 00 01 00, aa 08 01 01 10 00 90 01 55 eb aa"},
      {each(GUI_SEND_INFRARED_MSG, {INFRARED_POLARITY}), "01 01 04 00 03 00", {8230}},
      {each(GUI_SEND_VISI_MSG, {0, 1, 3, 5, 2, 4}),
       "aa 08 02 00 ff 00 03 00 b6 eb aa, 02 01 ff 00 04 00, 02 03 ff 00 02 00, 02 05 ff 00 01 00"},
      {each(GUI_SEND_FUSION_MSG, {1, 2, 3, 0, 4}),
       "14 01 ff 00 05 00, 14 02 ff 00 02 00, 14 03 ff 00 03 00"},
      {each(GUI_SEND_FUSION_POSITION_MSG, {4, 0}), "aa 0a 14 04 ff 00 0a 00 f6 ff ca eb aa"},
      {each(GUI_SEND_PIP_MSG, {0, 1}), "aa 08 15 00 ff 00 02 00 c8 eb aa"},
      {each(GUI_SEND_WIFI_MSG, {0, 7}), "aa 07 05 00 ff 00 01 b6 eb aa", {8232}},
      {each(GUI_SEND_COMPASS_MSG, {0, 1}), "aa 0a 06 01 00 00 01 0c 00 05 cd eb aa"},
      {[] { stDevStatus.s16CompassMagnetic = 3001;
            each(GUI_SEND_COMPASS_MSG, {0})();
            each(GUI_SEND_COMPASS_CORRECT, {0, 1, 2, 3, 4})(); },
       "06 01 00 00 00 2c 01 01, 06 06 00 00 00, 06 06 01 00 00, 06 06 02 00 00, 06 06 03 00 00"},
      {each(GUI_SEND_RETICLE_MSG, {0, 1, 2, 4, 5}),
       "aa 07 16 00 ff 00 02 c8 eb aa, 16 01 ff 00 01, 16 02 ff 00 03, 16 04 ff 00 01, "
       "16 05 ff 00 08",
       {8234, 8194, 8238, 8227, 8217, 8235}},
      {each(GUI_SEND_RETICLE_MSG, {6}), "16 06 ff 00 01", {8223, 8244, 8227, 8240}},
      {each(GUI_SEND_RETICLE_MSG, {7}), "16 07 ff 00 02", {8223, 8244, 8227}},
      {each(GUI_SEND_RETICLE_MSG, {11}), "16 0b ff 00 01", {8227, 8223}},
      {each(GUI_SEND_RETICLE_MSG, {8, 9, 12}), "16 08 03 00 05, 16 09 03 00 06, 16 0c 03 00 07",
       {8257, 8256, 8255}},
      {[] { stUIStatus.s8ReticleTypeColorChoose = 4;  // a pattern change
            each(GUI_SEND_RETICLE_MSG, {8, 9, 12, 3, 10, 13, 254, 255})(); },
       "16 08 04 00 02, 16 09 04 00 01, 16 0c 04 00 04", {8257, 8256, 8255}},
      {each(GUI_SEND_RETICLE_POSITION_MSG, {3, 8, 9, 10, 254, 0, 255}),
       "aa 0a 16 03 ff 00 8a 02 76 02 d0 eb aa, 16 08 ff 00 ff ff 02 00, 16 09 ff 00 64 00 c8 00, "
       "aa 08 16 0a ff 00 12 01 e4 eb aa", {8223, 8226, 8225, 8227, 8239}},
      {[] { GUI_SEND_TAP_VIDEO_MSG(TAP_PICTURE_RECORD, TAP_TAKE_PICTURE, nullptr);
            GUI_SEND_TAP_VIDEO_MSG(TAP_REPLAY, TAP_REPLAY_START, "a.mp4");
            GUI_SEND_TAP_VIDEO_MSG(5, 0, nullptr);
            each(GUI_SEND_VIDEO_FRAME_MSG, {3, 2})(); },
       "aa 07 17 00 02 00 00 ca eb aa, aa 0c 17 01 03 00 61 2e 6d 70 34 00 71 eb aa, "
       "aa 0e 17 01 03 00 05 04 03 02 01 00 00 00 e2 eb aa"},
      {each(GUI_SEND_BLIND_MSG, {0, 1, 2, 3, 4, 5}),
       "aa 07 18 00 00 00 01 ca eb aa, 18 01 00 00 03, 18 02 00 00 01, 18 03 ff 00 01, "
       "18 04 00 00 02"},
      {each(GUI_SEND_GG_MSG, {0, 1, 2, 3}), "19 00 ff 00 00, 19 01 ff 00 00, 19 02 ff 00 00"},
      {each(GUI_SEND_UPDATA_MSG, {0, 1, 2, 3}), "aa 07 1a 01 ff 00 01 cc eb aa, 1a 02 ff 00 02"},
      {each(GUI_SEND_RECOIL_MSG, {0, 1, 2, 3, 4, 5, 6, 7}),  // one raise for each frame
       "1c 00 ff 00 01, 1c 01 ff 00 05, 1c 02 ff 00 0a, 1c 03 ff 00 02, 1c 06 ff 00 01",
       {8250, 8250, 8250, 8250, 8250}},
      {[] { GUI_SEND_DISTANCE_FUNCTION_MSG(1, 3); }, "aa 07 04 07 01 00 03 c0 eb aa"},
      {ballistic(0, {0, 1, 9}),
       "aa 0a 1b 00 00 00 01 00 00 00 d0 eb aa, 1b 00 01 00 01 00 00 00, 1b 00 09 00 00 00 00 00",
       {8240}},
      {ballistic(0, {2, 3, 4}),
       "1b 00 02 00 01 00 00 00, 1b 00 03 00 05 00 00 00, 1b 00 04 00 01 00 00 00",
       {8251, 8252, 8244}},
      // Floats as 32-bit little-endian (790.0f = 0x44458000); bullet item 9 resends the last one.
      {ballistic(1, {0, 1, 2, 3, 4, 5, 9}),
       "BALLISTIC BALLISTIC_BULLET_INFO item=0 value=1.24, "
       "BALLISTIC BALLISTIC_BULLET_INFO item=1 value=0.308, "
       "BALLISTIC BALLISTIC_BULLET_INFO item=2 value=175, "
       "BALLISTIC BALLISTIC_BULLET_INFO item=3 value=0.505, "
       "BALLISTIC BALLISTIC_BULLET_INFO item=4 value=4, aa 0a 1b 01 05 00 00 80 45 44 de eb aa, "
       "1b 01 09 00 00 80 45 44"},
      {ballistic(2, {0, 1}),
       "BALLISTIC BALLISTIC_TWIST_INFO item=0 value=10, 1b 02 01 00 01 00 00 00"},
      // Items 5..8 carry the four zero offsets, each its own (vertical and horizontal MOA, then
      // MRAD); item 9 is none of them.
      {ballistic(3, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}),
       "1b 03 00 00 01 00 00 00, BALLISTIC BALLISTIC_ZEROWEATHER_LENSOFFSET item=1 value=-5, "
       "BALLISTIC BALLISTIC_ZEROWEATHER_LENSOFFSET item=2 value=98.5, "
       "BALLISTIC BALLISTIC_ZEROWEATHER_LENSOFFSET item=3 value=40, 1b 03 04 00 01 00 00 00, "
       "BALLISTIC BALLISTIC_ZEROWEATHER_LENSOFFSET item=5 value=1.5, "
       "BALLISTIC BALLISTIC_ZEROWEATHER_LENSOFFSET item=6 value=-2.25, "
       "BALLISTIC BALLISTIC_ZEROWEATHER_LENSOFFSET item=7 value=0.3, "
       "aa 0a 1b 03 08 00 00 00 40 bf d9 eb aa, 1b 03 09 00 00 00 00 00"},
      {ballistic(4, {0, 1, 2, 3}),  // item 0 is the temperature; other items: four zero bytes
       "BALLISTIC BALLISTIC_WEATHER item=0 value=21, BALLISTIC BALLISTIC_WEATHER item=1 value=97, "
       "BALLISTIC BALLISTIC_WEATHER item=2 value=60, 1b 04 03 00 00 00 00 00"},
      {ballistic(5, {0, 1}),
       "BALLISTIC BALLISTIC_LENS_INFO item=0 value=4.5, 1b 05 01 00 64 00 6d 00", {8244}},
      {ballistic(6, {0, 1}),
       "BALLISTIC BALLISTIC_WIND_INFO item=0 value=90, "
       "BALLISTIC BALLISTIC_WIND_INFO item=1 value=3.5"},
      {ballistic(7, {0, 1}),
       "1b 07 00 00 2c 01 48 01, BALLISTIC BALLISTIC_TARGET_INFO item=1 value=-10"},
      {ballistic(8, {0}), ""},
      {ballistic(255, {0}), ""},
  };
  // clang-format on
  for (const Row& row : rows) {
    row.call();
    std::vector<std::string> want;
    for (const auto part : std::views::split(std::string_view(row.frames), std::string_view(", ")))
      want.emplace_back(part.begin(), part.end());
    std::vector<std::string> got;
    for (const Frame& f : sent_frames()) {
      EXPECT_EQ(framedec::check(f), framedec::FrameError::OK);
      // Shown the way the expected text of the same frame is written.
      const std::string like = got.size() < want.size() ? want[got.size()] : "aa ";
      got.push_back(like.starts_with("aa ") ? framedec::hex(f)
                    : std::isupper(like[0])
                        ? framedec::normalize(framedec::decode(f, Direction::FROM_UI))
                        : framedec::hex(Frame(f.begin() + 2, f.begin() + f[1])));
    }
    EXPECT_EQ(got, row.frames.empty() ? std::vector<std::string>{} : want);
    EXPECT_EQ(take_events(), row.events) << row.frames;
  }
  EXPECT_EQ(stUIStatus.s16WindSpeed, 0) << "the wind switch clears the speed";
  EXPECT_EQ(stUIStatus.s8RangeMode, 3) << "the range sender sets the mode";
}

TEST_F(Outbound, VideoModeIsSent100MillisecondsLater) {
  stDevStatus.s8VideoMode = 1;
  GUI_SEND_BASIC_FUNCTION_MSG(BASIC_VIDEO_MODE);
  EXPECT_EQ(take_events(), (std::vector<int>{8194, 8227, 8248}));
  tk_testing_advance(99);
  EXPECT_TRUE(sent_frames().empty());
  stDevStatus.s8VideoMode = 2;  // the value at the time the timer fires goes out
  tk_testing_advance(1);
  EXPECT_EQ(sent(true), std::vector<std::string>{"aa 07 00 00 00 00 02 b3 eb aa"});
  tk_testing_advance(1000);
  EXPECT_TRUE(sent_frames().empty()) << "the timer runs once";
}

TEST_F(Outbound, PrintedLinesAndRefusals) {
  stUIStatus.u64VideoForwardFrames = 0x0102030405ull;
  IR_Cursor.u8CurrentGroup = 7;
  const std::string longest(TAP_NAME_MAX, 'x');
  const std::string out = output_of([&] {
    for (uint8_t i = 0; i <= 3; ++i)
      GUI_SEND_COMPASS_CORRECT(i);
    GUI_SEND_VIDEO_FRAME_MSG(TAP_REWIND_FORWARD);
    GUI_SEND_RETICLE_POSITION_MSG(RETICLE_POSITION);
    GUI_SEND_RETICLE_MSG(RETICLE_ZERO);
    GUI_SEND_TAP_VIDEO_MSG(TAP_REPLAY, TAP_REPLAY_START, (longest + "y").c_str());
    GUI_SEND_TAP_VIDEO_MSG(TAP_REPLAY, TAP_REPLAY_START, longest.c_str());
  });
  for (const char* line :
       {"horizontal start!\n", "horizontal stop!\n", "vertical start!\n", "vertical stop!\n",
        "\n\n\n send frams = 4328719365!\n", "zero 0 of group 7 does not exist, nothing sent\n",
        "GUI_SEND_RETICLE_MSG: reticle group 7 is outside 0..4, nothing sent\n",
        "GUI_SEND_TAP_VIDEO_MSG: file name of 249 bytes is longer than 248, nothing sent\n"}) {
    EXPECT_NE(out.find(line), std::string::npos) << line << " in " << out;
  }
  const std::vector<Frame> sent = sent_frames();
  ASSERT_EQ(sent.size(), 6u);  // four calibration frames, the seek, the longest name
  EXPECT_EQ(sent[5].size(), 258u);
  EXPECT_EQ(sent[5][254], 0);
  EXPECT_EQ(framedec::check(sent[5]), framedec::FrameError::OK);
}

TEST_F(Outbound, AFullQueueFailsAtOnceWithTheDesignedLines) {
  // The device does not read: the UI's send queue fills up; later sends fail without waiting.
  const uint8_t save_all[10] = {0xaa, 0x07, 0x10, 0x03, 0x00, 0x00, 0x00, 0xc4, 0xeb, 0xaa};
  int sent = 0;
  std::string out = output_of([&] {
    while (sent < 100000 && Msgtext_Ui_To_App(1, 10, save_all) == 1)
      ++sent;
  });
  EXPECT_GT(sent, 0);
  EXPECT_LT(sent, 100000);
  EXPECT_NE(out.find("[ERROR] send msg event failed!\nUi to App Send failed\n"), std::string::npos);

  stUIStatus.s8LaserSwitch = 1;
  out = output_of([] { EXPECT_EQ(GUI_SEND_BASIC_FUNCTION_MSG(BASIC_LASER_SWITCH), 0); });
  EXPECT_NE(out.find("[ERROR] send msg event failed!\nUi to App Send failed\n"), std::string::npos);
  EXPECT_EQ(stUIStatus.s8LaserSwitch, 1) << "the record keeps the new value";
  EXPECT_EQ(take_events(), std::vector<int>{8229});

  // Once the device reads again, sending works: the frame goes out and its dump line follows.
  EXPECT_EQ(sent_frames().size(), static_cast<size_t>(sent));
  out = output_of([] { GUI_SEND_PARAM_FUNCTION_MSG(SAVE_ALLPARAM); });
  EXPECT_EQ(out, "InfMsgEvent_Ui_To_App:  [aa] [07] [10] [03] [00] [00] [00] [c4] [eb] [aa] \n");
  EXPECT_EQ(sent_frames().size(), 1u);

  // The transport refuses a length beyond the context; without data the context goes zeroed.
  uint8_t big[600] = {};
  out = output_of([&] {
    EXPECT_EQ(Inf_SendMsgEvent(1, 0xFF, big, 513), -1);
    EXPECT_EQ(Inf_SendMsgEvent(1, 0xFF, big, -1), -1);
  });
  EXPECT_NE(out.find("[ERROR] send msg event: length 513 is outside 0..512, nothing sent\n"),
            std::string::npos);
  EXPECT_EQ(Inf_SendMsgEvent(1, 0xFF, nullptr, 7), 0);
  EXPECT_EQ(sent_frames(), std::vector<Frame>{Frame(7, 0)});
}

}  // namespace
}  // namespace linktest
