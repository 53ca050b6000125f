// The device simulator's own parts: the frame decoder, the ballistic model, the device's answers
// and the scenario language.
#include <gtest/gtest.h>

#include <cstring>

#include "device_model.h"
#include "framedec.h"
#include "msg/msghandler.h"
#include "script.h"

namespace {

using devsim::Frame;

TEST(FrameDecoder, BuildsAndChecksFrames) {
  Frame f = framedec::build(16, 3, 0, std::vector<uint8_t>{0});
  EXPECT_EQ(framedec::hex(f), "aa 07 10 03 00 00 00 c4 eb aa");
  EXPECT_EQ(framedec::check(f), framedec::FrameError::OK);
  Frame bad = f;
  bad[7] ^= 1;
  EXPECT_EQ(framedec::check(bad), framedec::FrameError::CHECKSUM);
  bad = f;
  bad[0] = 0;
  EXPECT_EQ(framedec::check(bad), framedec::FrameError::HEADER);
  bad = f;
  bad[8] = 0;
  EXPECT_EQ(framedec::check(bad), framedec::FrameError::END_SEC);
  bad = f;
  bad[9] = 0;
  EXPECT_EQ(framedec::check(bad), framedec::FrameError::END_FIR);
  EXPECT_EQ(framedec::check(Frame{0xaa, 0x07, 0x10}), framedec::FrameError::TOO_SHORT);
  EXPECT_EQ(framedec::check(Frame{0xaa, 0x02, 0xac, 0xeb, 0xaa}), framedec::FrameError::LENGTH);
  EXPECT_EQ(framedec::decode(bad, framedec::Direction::FROM_UI), "BAD FRAME (END_FIR)");
}

TEST(FrameDecoder, NamesFramesInBothDirections) {
  using framedec::Direction;
  auto out = [](std::vector<uint8_t> bytes) { return framedec::decode(bytes, Direction::FROM_UI); };
  auto in = [](std::vector<uint8_t> bytes) { return framedec::decode(bytes, Direction::TO_UI); };
  EXPECT_EQ(out(framedec::build(22, RETICLE_TYPE, 0xFF, std::vector<uint8_t>{3})),
            "RETICLE  RETICLE_TYPE  value=3");
  EXPECT_EQ(in(devsim::key_frame(KEY_RANGE_S)), "KEY  KEY_RANGE_S");
  EXPECT_EQ(in(devsim::distance_frame(12345)), "RANGE  DISTANCE  value=12345");
  EXPECT_EQ(in(devsim::distance_frame(-1)), "RANGE  DISTANCE  failed");
  EXPECT_EQ(in(devsim::compass_frame(COMPASS_PITCH_ANGLE, -12)),
            "COMPASS  COMPASS_PITCH_ANGLE  value=-12");
  EXPECT_EQ(in(devsim::battery_frame(700)), "BATTERY  BATTERY_VALUE  value=700");
  EXPECT_EQ(in(devsim::video_total_frame(900, 300)), "TAP  TAP_TOTAL_TIME  frames=900 rate=300");
  EXPECT_EQ(in(devsim::solution_frame({6.5, -0.25})), "BALLISTIC  SOLUTION  moaV=6.5 moaH=-0.25");
  // The same type byte means another thing the other way.
  EXPECT_EQ(out(framedec::build(4, 7, 1, std::vector<uint8_t>{3})), "RANGE  MEASURE  value=3");
  EXPECT_EQ(out(framedec::build(6, 1, 0, std::vector<uint8_t>{1, 12, 0, 5})),
            "COMPASS  COMPASS_OFFESET_PARAM  declination=-125");
  // Codes without a name show their numbers.
  EXPECT_EQ(out(framedec::build(9, 1, 2, std::vector<uint8_t>{7})),
            "TYPE_9  cmd=1  sub=2  values=07");
  EXPECT_EQ(framedec::normalize("  RETICLE  RETICLE_TYPE   value=3 "),
            "RETICLE RETICLE_TYPE value=3");
}

TEST(FrameDecoder, KnowsEveryButtonKeyAndScreenEvent) {
  for (int b = 0; b < KEY_NULL_MAX; ++b) {
    const char* name = framedec::button_name(static_cast<uint8_t>(b));
    ASSERT_NE(name, nullptr) << b;
    EXPECT_EQ(framedec::button_from_name(name), b) << name;
  }
  EXPECT_EQ(framedec::button_name(KEY_NULL_MAX), nullptr);
  EXPECT_EQ(framedec::button_from_name("range+photo"), KEY_RANGE_PHOTO_S);
  EXPECT_EQ(framedec::button_from_name("ok-long"), KEY_FUCTION_L);
  EXPECT_EQ(framedec::button_from_name("22"), std::nullopt);
  EXPECT_EQ(framedec::button_from_name("sideways"), std::nullopt);
  EXPECT_STREQ(framedec::gui_key_name(GUI_KEY_FUCTION_S), "GUI_KEY_FUCTION_S");
  EXPECT_STREQ(framedec::screen_event_name(8207), "SCREEN_EVT_BATTERY");
  EXPECT_STREQ(framedec::screen_event_name(8257), "SCREEN_EVT_LASER_RETICLE");
  EXPECT_EQ(framedec::screen_event_name(8192), nullptr);
}

TEST(FrameDecoder, ParsesHex) {
  EXPECT_EQ(framedec::parse_hex("aa 07 10"), (std::vector<uint8_t>{0xaa, 0x07, 0x10}));
  EXPECT_EQ(framedec::parse_hex("AA0710"), (std::vector<uint8_t>{0xaa, 0x07, 0x10}));
  EXPECT_EQ(framedec::parse_hex("aa 7 10"), std::nullopt);
  EXPECT_EQ(framedec::parse_hex("zz"), std::nullopt);
}

TEST(DeviceBallistics, AimPointMovesWithRange) {
  const Info_ballistics p = devsim::default_profile(0);
  EXPECT_NEAR(devsim::solve(p, 100).moaV, 0.0, 0.01) << "no hold at the zero range";
  EXPECT_LT(devsim::solve(p, 75).moaV, 0.0) << "between the two zeros the path is above the line";
  EXPECT_GT(devsim::solve(p, 10).moaV, 0.0) << "at the muzzle the bore is below the sight";
  double previous = 0;
  for (int range = 150; range <= 1000; range += 50) {
    const devsim::Solution s = devsim::solve(p, range);
    EXPECT_GT(s.moaV, previous) << range;
    previous = s.moaV;
  }
  // A .308 zeroed at 100 m holds about 1.8 mrad (6 MOA) at 300 m.
  EXPECT_NEAR(devsim::solve(p, 300).moaV, 6.0, 1.0);
  EXPECT_GT(devsim::solve(p, 600).moaH, devsim::solve(p, 300).moaH);
  Info_ballistics calm = p;
  calm.wind.speed = 0;
  EXPECT_DOUBLE_EQ(devsim::solve(calm, 500).moaH, 0.0);
  Info_ballistics slow = p;
  slow.gun.bullet.velocity = 600;
  EXPECT_GT(devsim::solve(slow, 500).moaV, devsim::solve(p, 500).moaV);
  Info_ballistics thin_air = p;
  thin_air.atmosphere.barometer = 80;
  EXPECT_LT(devsim::solve(thin_air, 800).moaV, devsim::solve(p, 800).moaV);
}

struct Recorder {
  std::vector<Frame> sent;
  std::vector<std::string> printed;
  devsim::Device device{[this](const Frame& f) { sent.push_back(f); },
                        [this](const std::string& s) { printed.push_back(s); }};
};

TEST(DeviceModel, AnswersTheReadyFrameWithTheStartUpRecords) {
  Recorder r;
  r.device.set_schedule(false);
  r.device.on_frame(framedec::build(8, 0, 0, std::vector<uint8_t>{0}));
  ASSERT_EQ(r.sent.size(), 8u);
  EXPECT_EQ(framedec::decode(r.sent[0], framedec::Direction::TO_UI),
            "PARAM  BASIC_PARAM  bytes=74");
  EXPECT_EQ(framedec::decode(r.sent[1], framedec::Direction::TO_UI),
            "PARAM  RETICLE_PARAM  bytes=212");
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(framedec::decode(r.sent[2 + i], framedec::Direction::TO_UI),
              "PARAM  BALLISTIC_PARM  profile=" + std::to_string(i) + " bytes=240");
  }
  EXPECT_EQ(r.sent[7], devsim::zoom_frame(100));
}

TEST(DeviceModel, RangingSingleAndContinuous) {
  Recorder r;
  r.device.set_schedule(false);
  r.device.set_target_decimetres(4500);
  r.device.tick(1000);
  r.device.on_frame(framedec::build(4, 7, 1, std::vector<uint8_t>{RANGE_SEND}));
  ASSERT_EQ(r.sent.size(), 1u);
  const int dm = r.sent[0][7] * 256 + r.sent[0][8];
  EXPECT_NEAR(dm, 4500, 3);
  r.sent.clear();
  r.device.on_frame(framedec::build(4, 7, 1, std::vector<uint8_t>{RANGE_COUTINUTE_SEND}));
  r.device.tick(1499);
  r.device.tick(1500);
  r.device.tick(2000);
  EXPECT_EQ(r.sent.size(), 3u);
  r.device.on_frame(framedec::build(4, 7, 1, std::vector<uint8_t>{RANGE_COUTINUTE_SEND_STOP}));
  r.device.tick(5000);
  EXPECT_EQ(r.sent.size(), 3u);
  r.device.on_frame(framedec::build(4, 7, 0, std::vector<uint8_t>{RANGE_CLOSE}));
  r.device.on_frame(framedec::build(4, 7, 1, std::vector<uint8_t>{RANGE_SEND}));
  EXPECT_EQ(framedec::decode(r.sent.back(), framedec::Direction::TO_UI), "RANGE  DISTANCE  failed");
}

TEST(DeviceModel, CalculatorAnswersWithTheSolutionOfTheHeldProfile) {
  Recorder r;
  r.device.set_schedule(false);
  r.device.on_frame(framedec::build(27, BALLISTIC_OPEN_CALCU, 0, std::vector<uint8_t>{1, 0, 0, 0}));
  ASSERT_EQ(r.sent.size(), 1u);
  float moa_v;
  std::memcpy(&moa_v, r.sent[0].data() + 6, 4);
  EXPECT_NEAR(moa_v, devsim::solve(devsim::default_profile(0), 300).moaV, 1e-4);
  // The UI changes the muzzle velocity: the device holds it and answers again.
  const float velocity = 700.0f;
  std::vector<uint8_t> v(4);
  std::memcpy(v.data(), &velocity, 4);
  r.device.on_frame(framedec::build(27, BALLISTIC_BULLET_INFO, 5, v));
  EXPECT_EQ(r.device.profile(0).gun.bullet.velocity, 700.0);
  ASSERT_EQ(r.sent.size(), 2u);
  float slower;
  std::memcpy(&slower, r.sent[1].data() + 6, 4);
  EXPECT_GT(slower, moa_v);
  // Calculator off: no more answers.
  r.device.on_frame(framedec::build(27, BALLISTIC_OPEN_CALCU, 0, std::vector<uint8_t>{0, 0, 0, 0}));
  r.device.on_frame(framedec::build(27, BALLISTIC_BULLET_INFO, 5, v));
  EXPECT_EQ(r.sent.size(), 2u);
}

TEST(DeviceModel, VideoLengthFollowsTheFileName) {
  Recorder r;
  const std::string name = "VID_0001.mp4";
  std::vector<uint8_t> v(name.begin(), name.end());
  v.push_back(0);
  r.device.on_frame(framedec::build(23, TAP_REPLAY, TAP_REPLAY_VEDIO_TOTAL_TIME, v));
  r.device.on_frame(framedec::build(23, TAP_REPLAY, TAP_REPLAY_VEDIO_TOTAL_TIME, v));
  ASSERT_EQ(r.sent.size(), 2u);
  EXPECT_EQ(r.sent[0], r.sent[1]);
  EXPECT_EQ(r.sent[0][4], TAP_TOTAL_TIME);
}

TEST(DeviceScript, ParsesCommandsAndRejectsBadLines) {
  std::string error;
  auto c = devsim::parse_command("send 15 0 0 0xbc 2", &error);
  ASSERT_TRUE(c) << error;
  EXPECT_EQ(c->op, devsim::Op::SEND);
  EXPECT_EQ(c->numbers, (std::vector<int>{15, 0, 0, 0xbc, 2}));
  c = devsim::parse_command("expect   RETICLE  RETICLE_TYPE value=3", &error);
  ASSERT_TRUE(c);
  EXPECT_EQ(c->text, "RETICLE RETICLE_TYPE value=3");
  c = devsim::parse_command("long power", &error);
  ASSERT_TRUE(c);
  EXPECT_EQ(c->numbers, std::vector<int>{KEY_POWER_L});
  c = devsim::parse_command("release range", &error);
  ASSERT_TRUE(c);
  EXPECT_EQ(c->numbers, std::vector<int>{KEY_RANGE_L_POP});
  EXPECT_FALSE(devsim::parse_command("# a comment", &error));
  EXPECT_TRUE(error.empty());
  EXPECT_FALSE(devsim::parse_command("send 300 0 0", &error));
  EXPECT_EQ(error, "send takes bytes 0..255");
  EXPECT_FALSE(devsim::parse_command("press sideways", &error));
  EXPECT_EQ(error, "unknown button \"sideways\"");
  EXPECT_FALSE(devsim::parse_command("long photo+function", &error));
  EXPECT_FALSE(devsim::parse_command("warp 9", &error));
  EXPECT_EQ(error, "unknown command \"warp\"");
  EXPECT_FALSE(devsim::parse_command("frame aa 0", &error));
  EXPECT_FALSE(devsim::parse_command("wait -5", &error));
}

TEST(DeviceScript, RunnerWaitsExpectsAndTimesOut) {
  Recorder r;
  std::vector<std::string> printed;
  devsim::Actions actions{[&](const Frame& f) { r.sent.push_back(f); },
                          [&](const std::string& s) { printed.push_back(s); }, &r.device, nullptr};
  std::vector<devsim::Command> script;
  std::string error;
  for (const char* line : {"press power", "wait 100", "timeout 50", "expect PARAM SAVE_ALLPARAM",
                           "expect BASIC BASIC_SHUT_DOWN value=1"}) {
    script.push_back(*devsim::parse_command(line, &error));
  }
  devsim::Runner runner(script, actions);
  std::vector<devsim::Received> received;
  EXPECT_EQ(runner.step(0, received), devsim::Runner::State::RUNNING);
  ASSERT_EQ(r.sent.size(), 1u);
  EXPECT_EQ(runner.step(99, received), devsim::Runner::State::RUNNING);
  received.push_back({{}, "PARAM SAVE_ALLPARAM"});
  EXPECT_EQ(runner.step(100, received), devsim::Runner::State::RUNNING);
  EXPECT_EQ(runner.step(149, received), devsim::Runner::State::RUNNING);
  received.push_back({{}, "BASIC BASIC_SHUT_DOWN value=0"});
  EXPECT_EQ(runner.step(150, received), devsim::Runner::State::FAILED);
  ASSERT_FALSE(printed.empty());
  EXPECT_NE(printed.back().find("expected \"BASIC BASIC_SHUT_DOWN value=1\" within 50 ms"),
            std::string::npos)
      << printed.back();
}

}  // namespace
