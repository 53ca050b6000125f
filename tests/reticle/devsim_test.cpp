// The simulated device's reticle and blind-pixel part: what it keeps, what it prints, when it
// reports a save; and the pages driven against it in-process, its frames going to the UI through
// the link's receive queue and the UI's frames coming back from the send queue.
#include <algorithm>
#include <cstring>

#include "device_model.h"
#include "framedec.h"
#include "reticle_fixture.h"
#include "script.h"

namespace {

using devsim::Device;
using devsim::Frame;
using reticle_test::ReticleTest;
using Names = std::vector<std::string>;

// The device model on its own: frames it sends and lines it prints are kept.
struct Bench {
  std::vector<Frame> out;
  Names lines;
  Device device{[this](const Frame& f) { out.push_back(f); },
                [this](const std::string& s) { lines.push_back(s); }};
  Bench() { device.set_schedule(false); }  // no sensor readings in between
  void from_ui(uint8_t type, uint8_t cmd, uint8_t sub, std::vector<uint8_t> values) {
    device.on_frame(framedec::build(type, cmd, sub, values));
  }
  static std::vector<uint8_t> pair(int x, int y) {
    return {static_cast<uint8_t>(x & 0xFF), static_cast<uint8_t>((x >> 8) & 0xFF),
            static_cast<uint8_t>(y & 0xFF), static_cast<uint8_t>((y >> 8) & 0xFF)};
  }
  // The zeroing record of the start-up records, as the UI loads it.
  Inf_IR_Cursor startup_zeroing() {
    out.clear();
    device.send_startup_records();
    Inf_IR_Cursor z{};
    for (const Frame& f : out) {
      if (f[2] == 16 && f[3] == RETICLE_PARAM) std::memcpy(&z, f.data() + 6, sizeof(z));
    }
    return z;
  }
  Inf_DevStatus startup_settings() {
    out.clear();
    device.send_startup_records();
    Inf_DevStatus s{};
    for (const Frame& f : out) {
      if (f[2] == 16 && f[3] == BASIC_PARAM) std::memcpy(&s, f.data() + 6, sizeof(s));
    }
    return s;
  }
};

TEST(DevsimReticle, KeepsTheZerosAimPointsAndDistancesAndPrintsEachMove) {
  Bench b;
  b.from_ui(22, RETICLE_ZERO, 0xFF, {2});  // zero C of group 1
  b.from_ui(22, RETICLE_POSITION, 0xFF, Bench::pair(650, 630));
  b.from_ui(22, RETICLE_DISTANCE, 0xFF, {0x12, 0x01, 0});  // 274 m
  EXPECT_EQ(b.lines, (Names{"device: zero C of group 1 in use",
                            "device: reticle zero C of group 1 at x=650 y=630 (offset +10, -10)",
                            "device: zero C of group 1 zeroed at 274 m (299 yd)"}));
  const Inf_IR_Cursor z = b.startup_zeroing();
  EXPECT_EQ(z.group[0].u8CurrentZero, 2);
  EXPECT_EQ(z.group[0].zero[2].s8IrCursorCurrentX, 650);
  EXPECT_EQ(z.group[0].zero[2].s8IrCursorCurrentY, 630);
  EXPECT_EQ(z.group[0].zero[2].u16IrCursorDistance, 274);
  EXPECT_EQ(z.group[0].zero[1].s8IrCursorCurrentX, 640) << "the other zeros stay";
}

TEST(DevsimReticle, KeepsTheMarkerOffsetsAndTheReticleSettings) {
  Bench b;
  b.from_ui(22, RETICLE_RANGE_POSITION, 0xFF, Bench::pair(645, 500));
  b.from_ui(22, RETICLE_LASER_POSITION, 0xFF, Bench::pair(600, 512));
  b.from_ui(22, RETICLE_TYPE, 0xFF, {4});
  b.from_ui(22, RETICLE_SWITCH, 0xFF, {0});
  EXPECT_EQ(b.lines, (Names{"device: range marker at x=645 y=500 (moved +5, -12)",
                            "device: laser marker at x=600 y=512 (moved -40, +0)",
                            "device: reticle shape 5", "device: reticle hidden"}));
  const Inf_DevStatus s = b.startup_settings();
  EXPECT_EQ(s.s16RangeOffsetX, 645);
  EXPECT_EQ(s.s16RangeOffsetY, 500);
  EXPECT_EQ(s.s16LaserIndicatX, 600);
  EXPECT_EQ(s.s8ReticleType, 4);
  EXPECT_EQ(s.s8ReticleSwitch, 0);
}

TEST(DevsimReticle, TheBlindCursorMovesOverTheSensorAndASaveIsReportedAfterItsDelay) {
  Bench b;
  b.device.set_blind_save_delay(1500);
  b.device.tick(1000);
  b.from_ui(24, BLIND_CURSOR_SWITCH, 0, {1});
  b.from_ui(24, BLIND_MOVE_POSITION, 0, {3});
  b.from_ui(24, BLIND_MOVE_TENPOSITION, 0, {0});
  b.from_ui(24, BLIND_REPAIR, 0, {1});
  for (int i = 0; i < 40; ++i)
    b.from_ui(24, BLIND_MOVE_TENPOSITION, 0, {0});  // stops at the sensor's edge
  b.from_ui(24, BLIND_SAVE, 0xFF, {1});
  EXPECT_EQ(b.device.blind_cursor().y, 0);
  EXPECT_EQ(b.lines[0], "device: blind-pixel cursor on at (320, 256)");
  EXPECT_EQ(b.lines[1], "device: blind-pixel cursor right 1 -> (321, 256)");
  EXPECT_EQ(b.lines[2], "device: blind-pixel cursor up 10 -> (321, 246)");
  EXPECT_EQ(b.lines[3], "device: pixel (321, 246) marked for repair");
  EXPECT_EQ(b.lines.back(), "device: saving 1 repaired pixel(s); reported in 1500 ms");
  b.device.tick(2499);
  EXPECT_TRUE(b.out.empty());
  b.device.tick(2500);
  ASSERT_EQ(b.out.size(), 1u);
  EXPECT_EQ(framedec::normalize(framedec::decode(b.out[0], framedec::Direction::TO_UI)),
            "BLIND BLIND_SAVE value=1");
  b.device.tick(9000);
  EXPECT_EQ(b.out.size(), 1u);
}

TEST(DevsimReticle, InNeverModeASaveIsNotReportedAndTheCommandLanguageSetsTheMode) {
  struct Case {
    const char* line;
    bool ok;
    int ms;
  } cases[] = {{"blind-save never", true, -1},
               {"blind-save 300", true, 300},
               {"blind-save", false, 0},
               {"blind-save -5", false, 0},
               {"blind-save soon", false, 0}};
  for (const Case& c : cases) {
    std::string error;
    auto cmd = devsim::parse_command(c.line, &error);
    EXPECT_EQ(cmd.has_value(), c.ok) << c.line << ": " << error;
    if (cmd) {
      EXPECT_EQ(cmd->numbers, std::vector<int>{c.ms}) << c.line;
    }
  }
  Bench b;
  devsim::Actions actions{[&b](const Frame& f) { b.out.push_back(f); },
                          [&b](const std::string& s) { b.lines.push_back(s); },
                          &b.device,
                          {},
                          {}};
  std::string error;
  devsim::execute(*devsim::parse_command("blind-save never", &error), actions);
  b.from_ui(24, BLIND_SAVE, 0xFF, {1});
  b.device.tick(600000);
  EXPECT_TRUE(b.out.empty());
  EXPECT_EQ(b.lines.back(), "device: saving 0 repaired pixel(s); the save will not be reported");
}

TEST(DevsimReticle, FollowsTheFreezeAndAShutterCorrectionEndsIt) {
  Bench b;
  b.from_ui(1, INFRARED_BASIC, INFRARED_FREEZE, {1, 0});
  EXPECT_TRUE(b.device.frozen());
  b.from_ui(1, INFRARED_CORRECT_TYPE, 0, {1, 0});
  EXPECT_FALSE(b.device.frozen());
  EXPECT_EQ(b.lines, (Names{"device: picture frozen",
                            "device: shutter correction, the picture is live again"}));
}

// ---- the pages against the device model ----

class DevsimPagesTest : public ReticleTest {
 protected:
  // Hands what the UI sent to the device, the device's frames to the UI, and runs the device's
  // clock with the toolkit's.
  void pump() {
    for (const auto& f : sent_frames())
      device_.on_frame(f);
    device_.tick(tk_testing_now());
    std::vector<Frame> out;
    out.swap(to_ui_);
    for (const Frame& f : out)
      from_device(f);
  }
  void key_and_pump(int code) {
    key(static_cast<uint32_t>(code));
    pump();
  }
  std::vector<Frame> to_ui_;
  Names lines_;
  Device device_{[this](const Frame& f) { to_ui_.push_back(f); },
                 [this](const std::string& s) { lines_.push_back(s); }};
};

TEST_F(DevsimPagesTest, TheSavePageLeavesAtTheFirstLookAfterTheDeviceReportsTheSave) {
  device_.set_blind_save_delay(1200);
  device_.tick(tk_testing_now());
  open_over_home("Zavo_pixel_menu");
  pump();
  key_and_pump(GUI_KEY_FUCTION_S);
  key_and_pump(GUI_KEY_RANGE_S);
  key_and_pump(GUI_KEY_RANGE_S);
  key_and_pump(GUI_KEY_FUCTION_S);  // save
  for (int t = 0; t < 30 && windows().back() == "Zavo_pixel_save"; ++t) {
    advance(100);
    pump();
  }
  // Reported after 1.2 s; the page looks every 500 ms: it leaves at 1.5 s.
  EXPECT_EQ(windows(), (Names{"Zavo_home_page_1"}));
  EXPECT_NE(std::find(lines_.begin(), lines_.end(), "device: blind pixels saved"), lines_.end());
  EXPECT_FALSE(device_.blind_cursor().on);
}

TEST_F(DevsimPagesTest, TheDeviceKeepsTheAlignedZeroForTheNextStartUp) {
  device_.set_schedule(false);
  device_.send_startup_records();  // the UI's records are the device's: zero A at (640, 512)
  pump();
  open_over_home("Zavo_reticle_move");
  EXPECT_EQ(text("label_y_value"), "-128");
  key_and_pump(GUI_KEY_PHOTO_S);
  key_and_pump(GUI_KEY_FUCTION_S);  // x
  key_and_pump(GUI_KEY_PHOTO_S);    // +1
  key(GUI_KEY_PHOTO_L);
  advance(1000);  // +10, +10
  key(GUI_KEY_PHOTO_L_POP);
  pump();
  EXPECT_EQ(lines_.back(), "device: reticle zero A of group 1 at x=661 y=512 (offset +21, -128)");
  // A UI started again gets the moved zero from the device.
  IR_Cursor = Inf_IR_Cursor{};
  device_.send_startup_records();
  pump();
  EXPECT_EQ(IR_Cursor.group[0].zero[0].s8IrCursorCurrentX, 661);
  EXPECT_EQ(IR_Cursor.group[0].zero[0].s8IrCursorCurrentY, 512);
}

}  // namespace
