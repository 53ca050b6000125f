// The device simulator's ballistic side: every ballistic frame applied to its own profiles with
// a printed line, a solution after each change while the calculator is on, the mid-way load; and
// the whole loop in one process: a wind edited on the ballistic menu moves the aim point of the
// observation screen through the simulator's answer.
#include <cstring>
#include <string>
#include <vector>

#include "ballistic_fixture.h"
#include "device_model.h"
#include "framedec.h"

namespace {

using ballistic_test::BACK;
using ballistic_test::BallisticTest;
using ballistic_test::DOWN;
using ballistic_test::OK;
using ballistic_test::UP;

// The simulator with what it sends and prints kept.
struct Simulator {
  std::vector<devsim::Frame> sent;
  std::vector<std::string> printed;
  devsim::Device device{[this](const devsim::Frame& f) { sent.push_back(f); },
                        [this](const std::string& line) { printed.push_back(line); }};
  Simulator() { device.set_schedule(false); }

  // A frame as the UI sends it: BALLISTIC index, item, four value bytes.
  void ballistic(uint8_t index, uint8_t item, std::vector<uint8_t> value) {
    device.on_frame(framedec::build(27, index, item, value));
  }
  size_t solutions() const {
    size_t n = 0;
    for (const auto& f : sent)
      n += f[2] == 27 ? 1 : 0;
    return n;
  }
};

std::vector<uint8_t> f32(float x) {
  std::vector<uint8_t> v(4);
  std::memcpy(v.data(), &x, 4);
  return v;
}

TEST(DevsimBallistics, EveryFrameIsAppliedPrintedAndAnsweredWhileTheCalculatorIsOn) {
  Simulator sim;
  struct Case {
    uint8_t index, item;
    std::vector<uint8_t> value;
    const char* line;
    bool (*check)(const devsim::Device&);
  } cases[] = {
      {BALLISTIC_OPEN_CALCU,
       0,
       {1, 0, 0, 0},
       "device: ballistics_sw (calculator, kept in profile 1) = 1",
       [](const devsim::Device& d) { return d.profile(0).ballistics_sw == 1; }},
      {BALLISTIC_OPEN_CALCU,
       4,
       {2, 0, 0, 0},
       "device: s8BallisticGroup = 2",
       [](const devsim::Device& d) { return d.current_profile() == 2; }},
      {BALLISTIC_WIND_INFO, 0, f32(270), "device: profile 3 wind.angle = 270",
       [](const devsim::Device& d) { return d.profile(2).wind.angle == 270; }},
      {BALLISTIC_LENS_INFO,
       1,
       {200, 0, 218, 0},
       "device: profile 3 gun.scope.zeroRange = 200 m, 218 yd",
       [](const devsim::Device& d) { return d.profile(2).gun.scope.zeroRange_yard == 218; }},
      {BALLISTIC_LENS_INFO, 0, f32(5), "device: profile 3 gun.scope.sightHeightOverBore = 5",
       [](const devsim::Device& d) { return d.profile(2).gun.scope.sightHeightOverBore == 5; }},
      {BALLISTIC_BULLET_INFO, 2, f32(500), "device: profile 3 gun.bullet.weight = 500",
       [](const devsim::Device& d) { return d.profile(2).gun.bullet.weight == 500; }},
      {BALLISTIC_BULLET_INFO, 4, f32(4), "device: profile 3 gun.bullet.dragFunction = 4",
       [](const devsim::Device& d) { return d.profile(2).gun.bullet.dragFunction == 4; }},
      {BALLISTIC_TWIST_INFO, 0, f32(11.25f), "device: profile 3 gun.riflingRange = 11.25",
       [](const devsim::Device& d) { return d.profile(2).gun.riflingRange == 11.25; }},
      {BALLISTIC_WEATHER, 0, f32(-40), "device: profile 3 atmosphere.temperature = -40",
       [](const devsim::Device& d) { return d.profile(2).atmosphere.temperature == -40; }},
      {BALLISTIC_WEATHER, 2, f32(100), "device: profile 3 atmosphere.relative_humidity = 100",
       [](const devsim::Device& d) { return d.profile(2).atmosphere.relative_humidity == 100; }},
  };
  for (const Case& c : cases) {
    const size_t before = sim.solutions();
    sim.printed.clear();
    sim.ballistic(c.index, c.item, c.value);
    ASSERT_EQ(sim.printed.size(), 1u) << c.line;
    EXPECT_EQ(sim.printed[0], c.line);
    EXPECT_TRUE(c.check(sim.device)) << c.line;
    EXPECT_EQ(sim.solutions(), before + 1) << c.line << ": a solution after the change";
  }
  // The other profiles kept theirs.
  EXPECT_EQ(sim.device.profile(1).wind.angle, 90);
  // "Calculate now" answers; a group outside 0..4 is refused; an unknown item is ignored.
  sim.printed.clear();
  sim.ballistic(BALLISTIC_OPEN_CALCU, 1, {1, 0, 0, 0});
  sim.ballistic(BALLISTIC_OPEN_CALCU, 4, {9, 0, 0, 0});
  sim.ballistic(BALLISTIC_WIND_INFO, 7, {0, 0, 0, 0});
  EXPECT_EQ(sim.printed, (std::vector<std::string>{"device: solution requested",
                                                   "device: s8BallisticGroup = 9 refused",
                                                   "device: ballistic index 6 item 7 ignored"}));
  EXPECT_EQ(sim.device.current_profile(), 2);
  // Calculator off: changes are applied and printed, no solution follows.
  sim.ballistic(BALLISTIC_OPEN_CALCU, 0, {0, 0, 0, 0});
  const size_t off = sim.solutions();
  sim.ballistic(BALLISTIC_WIND_INFO, 1, f32(8));
  EXPECT_EQ(sim.device.profile(2).wind.speed, 8);
  EXPECT_EQ(sim.solutions(), off);
}

TEST(DevsimBallistics, AMidwayLoadSendsTheProfileAndMakesItCurrent) {
  Simulator sim;
  sim.device.select_profile(3);
  ASSERT_EQ(sim.sent.size(), 1u);
  EXPECT_EQ(sim.sent[0][2], 16);
  EXPECT_EQ(sim.sent[0][3], BALLISTIC_PARM_midway);
  EXPECT_EQ(sim.sent[0][4], 3);
  EXPECT_EQ(sim.sent[0][1], 6 + sizeof(Info_ballistics));
  EXPECT_EQ(sim.device.current_profile(), 3);
  EXPECT_EQ(sim.printed.back(), "device: profile 4 loaded mid-way");
}

// The UI and the simulator in one process: the UI's frames go to the simulator, its answers back
// through the UI's receive queue.
class DevsimLoopTest : public BallisticTest {
 protected:
  void relay() {
    for (const auto& f : sent_frames())
      sim_.device.on_frame(f);
    std::vector<devsim::Frame> answers;
    answers.swap(sim_.sent);
    for (const auto& f : answers)
      from_device(f);
  }
  Simulator sim_;
};

TEST_F(DevsimLoopTest, AWindEditedOnTheMenuMovesTheAimPoint) {
  sim_.device.send_startup_records();
  relay();
  ASSERT_EQ(stUIStatus.event_distrubut_reday, 1);
  ASSERT_NE(home_scene_open(), nullptr);
  widget_t* home = top();
  relay();
  open("Zavo_ballistic_menu");
  keys({OK});  // the calculator on: the device answers with its solution
  relay();
  const double hold_right = result_ball.moaH;
  const int aim_x = widget_lookup(home, "image_point", TRUE)->x;
  EXPECT_GT(hold_right, 0.1);  // a 3 m/s wind from 90 degrees

  // Wind from 270: hundreds 0 -> 2, tens 9 -> 7.
  keys({DOWN, DOWN, DOWN, DOWN, OK, UP, UP, OK, DOWN, DOWN, BACK});
  EXPECT_EQ(info[0].wind.angle, 270);
  relay();
  EXPECT_EQ(sim_.device.profile(0).wind.angle, 270);
  EXPECT_NEAR(result_ball.moaH, -hold_right, 0.01);
  EXPECT_LT(widget_lookup(home, "image_point", TRUE)->x, aim_x);
}

}  // namespace
