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
using framedec::Direction;

std::string to_ui(const Frame& f) {
  return framedec::decode(f, Direction::TO_UI);
}
std::string from_ui(uint8_t type, uint8_t command, uint8_t sub, std::vector<uint8_t> values) {
  return framedec::decode(framedec::build(type, command, sub, values), Direction::FROM_UI);
}

TEST(FrameDecoder, ChecksAndNamesFrames) {
  const Frame f = framedec::build(16, 3, 0, std::vector<uint8_t>{0});
  EXPECT_EQ(framedec::parse_hex("AA0710 03 00 00 00 c4 eb aa"), f);
  EXPECT_EQ(framedec::parse_hex("aa 7 10"), std::nullopt);
  const std::pair<int, const char*> broken[] = {{0, "BAD FRAME (HEADER)"},
                                                {7, "BAD FRAME (CHECKSUM)"},
                                                {8, "BAD FRAME (END_SEC)"},
                                                {9, "BAD FRAME (END_FIR)"},
                                                {10, "BAD FRAME (TOO_SHORT)"}};
  for (const auto& [at, text] : broken) {
    Frame bad = f;
    if (at < 10) bad[at] ^= 1;
    if (at == 10) bad.pop_back();
    EXPECT_EQ(to_ui(bad), text);
  }
  EXPECT_EQ(to_ui({0xaa, 0x02, 0xac, 0xeb, 0xaa}), "BAD FRAME (LENGTH)");
  // The same type byte means another thing each way; unnamed codes show their numbers.
  EXPECT_EQ(to_ui(devsim::distance_frame(12345)), "RANGE  DISTANCE  value=12345");
  EXPECT_EQ(to_ui(devsim::distance_frame(-1)), "RANGE  DISTANCE  failed");
  EXPECT_EQ(from_ui(4, 7, 1, {3}), "RANGE  MEASURE  value=3");
  EXPECT_EQ(to_ui(devsim::compass_frame(COMPASS_PITCH_ANGLE, -12)),
            "COMPASS  COMPASS_PITCH_ANGLE  value=-12");
  EXPECT_EQ(from_ui(6, 1, 0, {1, 12, 0, 5}), "COMPASS  COMPASS_OFFESET_PARAM  declination=-125");
  EXPECT_EQ(to_ui(devsim::solution_frame({6.5, -0.25})),
            "BALLISTIC  SOLUTION  moaV=6.5 moaH=-0.25");
  EXPECT_EQ(from_ui(9, 1, 2, {7}), "TYPE_9  cmd=1  sub=2  values=07");
  for (int b = 0; b < KEY_NULL_MAX; ++b)
    EXPECT_EQ(framedec::button_from_name(framedec::button_name(static_cast<uint8_t>(b))), b);
  EXPECT_EQ(framedec::button_from_name("22"), std::nullopt);
}

TEST(DeviceBallistics, AimPointMovesWithRange) {
  const Info_ballistics p = devsim::default_profile(0);
  EXPECT_NEAR(devsim::solve(p, 100).moaV, 0.0, 0.01) << "no hold at the zero range";
  EXPECT_LT(devsim::solve(p, 75).moaV, 0.0) << "between the two zeros the path is above the line";
  for (int range = 150; range <= 1000; range += 50)
    EXPECT_GT(devsim::solve(p, range).moaV, devsim::solve(p, range - 50).moaV) << range;
  // A .308 zeroed at 100 m holds about 1.8 mrad (6 MOA) at 300 m.
  EXPECT_NEAR(devsim::solve(p, 300).moaV, 6.0, 1.0);
  EXPECT_GT(devsim::solve(p, 600).moaH, devsim::solve(p, 300).moaH) << "wind drift grows";
  Info_ballistics thin_air = p;
  thin_air.atmosphere.barometer = 80;
  EXPECT_LT(devsim::solve(thin_air, 800).moaV, devsim::solve(p, 800).moaV);
}

struct Recorder {
  std::vector<Frame> sent;
  devsim::Device device{[this](const Frame& f) { sent.push_back(f); }, [](const std::string&) {}};
  void on(uint8_t type, uint8_t command, uint8_t sub, std::vector<uint8_t> values) {
    device.on_frame(framedec::build(type, command, sub, values));
  }
};

TEST(DeviceModel, AnswersTheReadyFrameWithTheStartUpRecordsAndFirstReadings) {
  Recorder r;
  r.on(8, 0, 0, {0});
  // (type command sub) of each: settings, zeroing, profiles 0..4, the zoom, battery type and
  // level, the three compass angles; no wind, the meter being off.
  std::string heads;
  for (const Frame& f : r.sent)
    heads += framedec::hex(Frame(f.begin() + 2, f.begin() + 5)) + ", ";
  EXPECT_EQ(heads,
            "10 00 00, 10 01 00, 10 02 00, 10 02 01, 10 02 02, 10 02 03, 10 02 04, 01 00 10, "
            "0f 00 01, 0f 00 00, 06 00 00, 06 00 01, 06 00 02, ");
  EXPECT_EQ(to_ui(r.sent[1]), "PARAM  RETICLE_PARAM  bytes=212");
  EXPECT_EQ(to_ui(r.sent[7]), "INFRARED  INFRARED_ZOOM  value=100");
  // Without the schedule the records end with the zoom.
  Recorder quiet;
  quiet.device.set_schedule(false);
  quiet.device.send_startup_records();
  EXPECT_EQ(quiet.sent.size(), 8u);
}

TEST(DeviceModel, RangingSingleAndContinuous) {
  Recorder r;
  r.device.set_schedule(false);
  r.device.set_target_decimetres(4500);
  r.device.tick(1000);
  r.on(4, 7, 1, {RANGE_SEND});
  ASSERT_EQ(r.sent.size(), 1u);
  EXPECT_NEAR(r.sent[0][7] * 256 + r.sent[0][8], 4500, 3);
  r.on(4, 7, 1, {RANGE_COUTINUTE_SEND});
  for (uint64_t t : {1499, 1500, 2000})
    r.device.tick(t);
  EXPECT_EQ(r.sent.size(), 4u);
  r.on(4, 7, 1, {RANGE_COUTINUTE_SEND_STOP});
  r.device.tick(5000);
  EXPECT_EQ(r.sent.size(), 4u);
  r.on(4, 7, 0, {RANGE_CLOSE});
  r.on(4, 7, 1, {RANGE_SEND});
  EXPECT_EQ(to_ui(r.sent.back()), "RANGE  DISTANCE  failed");
}

TEST(DeviceModel, CalculatorAnswersWithTheSolutionOfTheHeldProfile) {
  Recorder r;
  r.device.set_schedule(false);
  auto moa_v = [&r] {
    float v;
    std::memcpy(&v, r.sent.back().data() + 6, 4);
    return v;
  };
  r.on(27, BALLISTIC_OPEN_CALCU, 0, {1, 0, 0, 0});
  ASSERT_EQ(r.sent.size(), 1u);
  const float at_790 = moa_v();
  EXPECT_NEAR(at_790, devsim::solve(devsim::default_profile(0), 300).moaV, 1e-4);
  // The UI changes the muzzle velocity: the device holds it and answers again.
  const float velocity = 700.0f;
  std::vector<uint8_t> v(4);
  std::memcpy(v.data(), &velocity, 4);
  r.on(27, BALLISTIC_BULLET_INFO, 5, v);
  EXPECT_EQ(r.device.profile(0).gun.bullet.velocity, 700.0);
  ASSERT_EQ(r.sent.size(), 2u);
  EXPECT_GT(moa_v(), at_790);
  r.on(27, BALLISTIC_OPEN_CALCU, 0, {0, 0, 0, 0});  // calculator off: no more answers
  r.on(27, BALLISTIC_BULLET_INFO, 5, v);
  EXPECT_EQ(r.sent.size(), 2u);

  // A video is answered the same way each time (no card here: it has no frames).
  const std::string name = "VID_0001.mp4";
  std::vector<uint8_t> bytes(name.begin(), name.end());
  bytes.push_back(0);
  r.on(23, TAP_REPLAY, TAP_REPLAY_VEDIO_TOTAL_TIME, bytes);
  r.on(23, TAP_REPLAY, TAP_REPLAY_VEDIO_TOTAL_TIME, bytes);
  ASSERT_EQ(r.sent.size(), 4u);
  EXPECT_EQ(r.sent[2], r.sent[3]);
  EXPECT_EQ(r.sent[2][4], TAP_TOTAL_TIME);
}

TEST(DeviceScript, ParsesCommandsAndRejectsBadLines) {
  std::string error;
  EXPECT_EQ(devsim::parse_command("send 15 0 0 0xbc 2", &error)->numbers,
            (std::vector<int>{15, 0, 0, 0xbc, 2}));
  EXPECT_EQ(devsim::parse_command("expect   RETICLE  RETICLE_TYPE value=3", &error)->text,
            "RETICLE RETICLE_TYPE value=3");
  EXPECT_EQ(devsim::parse_command("long power", &error)->numbers, std::vector<int>{KEY_POWER_L});
  EXPECT_EQ(devsim::parse_command("release ok", &error)->numbers,
            std::vector<int>{KEY_FUCTION_L_POP});
  EXPECT_FALSE(devsim::parse_command("# a comment", &error));
  EXPECT_TRUE(error.empty());
  const std::pair<const char*, const char*> bad[] = {
      {"send 300 0 0", "send takes bytes 0..255"},
      {"press sideways", "unknown button \"sideways\""},
      {"long photo+function", "unknown button \"photo+function\""},
      {"warp 9", "unknown command \"warp\""},
      {"frame aa 0", "\"frame\" needs hex bytes (at most 512)"},
      {"wait -5", "a time cannot be negative"},
  };
  for (const auto& [line, message] : bad) {
    EXPECT_FALSE(devsim::parse_command(line, &error)) << line;
    EXPECT_EQ(error, message);
  }
}

}  // namespace
