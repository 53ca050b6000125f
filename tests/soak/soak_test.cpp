// The soak run in the test suite: one round of the scenario that `make soak` runs ten times, and
// the pieces of the simulator's language it relies on.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>

#include "common/status_records.h"
#include "framedec.h"
#include "msg/msghandler.h"
#include "script.h"
#include "soak_session.h"
#include "tk_testing.h"

namespace {

bool has(const std::vector<std::string>& names, const char* name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

TEST(Soak, OneRoundOfTheScenarioLeavesTheUiAsItFoundIt) {
  SoakOptions options;
  options.scenario = SOAK_SCENARIO;
  options.rounds = 1;
  const SoakFigures f = soak_run(options);
  const std::string report = soak_report(f);
  EXPECT_TRUE(f.passed) << report;
  // The session covered what it claims.
  EXPECT_GE(f.simulated_ms, 10u * 60 * 1000) << report;
  EXPECT_GE(f.keys, 700u) << report;
  EXPECT_GT(f.hostile, 0u) << report;
  EXPECT_GE(f.dropped_by_ui, f.hostile * 3 / 4) << report;  // the rest: refused as too short
  EXPECT_GT(f.frames_from_ui, 200u) << report;
  // Afterwards: the which-screen query answered, nothing left behind, nothing lost.
  EXPECT_TRUE(f.answered_query) << report;
  EXPECT_EQ(f.timers_after, f.timers_before) << report;
  EXPECT_EQ(f.widgets_after, f.widgets_before) << report;
  EXPECT_EQ(f.idles_after, f.idles_before) << report;
  EXPECT_EQ(f.queue_overflows, 0u) << report;
  EXPECT_LE(f.queue_high_water, 20u) << report;
  EXPECT_EQ(f.lost_in_link, 0u) << report;
  EXPECT_EQ(f.events_dispatched, f.events_raised) << report;
  EXPECT_EQ(f.restarts + f.power_offs, 0) << report;
  // Pages reached by keys from every main menu row, and those only the device opens.
  EXPECT_GE(f.pages_reached.size(), 20u) << report;
  for (const char* page : {"Zavo_menu1", "Zavo_menu2", "Zavo_shortcut_menu", "Zavo_Settings",
                           "Zavo_SHUT_DOWN", "Zavo_updata", "Zavo_tip_ballistic"}) {
    EXPECT_TRUE(has(f.pages_reached, page)) << page << "\n" << report;
  }
}

TEST(SoakLanguage, TheSoakCommandsParseAndBadOnesAreNamed) {
  std::string error;
  auto keys = devsim::parse_command("keys 40 7", &error);
  ASSERT_TRUE(keys.has_value()) << error;
  EXPECT_EQ(keys->op, devsim::Op::KEYS);
  EXPECT_EQ(keys->numbers, (std::vector<int>{40, 7}));
  ASSERT_TRUE(devsim::parse_command("silent 8000", &error).has_value()) << error;
  ASSERT_TRUE(devsim::parse_command("hostile 6 3", &error).has_value()) << error;
  ASSERT_TRUE(devsim::parse_command("home", &error).has_value()) << error;

  EXPECT_FALSE(devsim::parse_command("keys 40", &error).has_value());
  EXPECT_EQ(error, "\"keys\" takes 2 argument(s)");
  EXPECT_FALSE(devsim::parse_command("keys -1 3", &error).has_value());
  EXPECT_EQ(error, "\"keys\" takes a count and a seed, neither negative");
  EXPECT_FALSE(devsim::parse_command("silent -5", &error).has_value());
  EXPECT_EQ(error, "a time cannot be negative");
  EXPECT_FALSE(devsim::parse_command("home now", &error).has_value());
  EXPECT_EQ(error, "\"home\" takes 0 argument(s)");
}

TEST(SoakLanguage, TheWalkIsRepeatableAndNeverConfirmsWhatCannotBeUndone) {
  auto walk = [](uint64_t seed, const std::string& screen, int n) {
    std::vector<devsim::WalkMove> moves;
    for (int i = 0; i < n; ++i)
      moves.push_back(devsim::next_walk_move(&seed, screen));
    return moves;
  };
  const auto a = walk(11, "Zavo_menu1", 500);
  const auto b = walk(11, "Zavo_menu1", 500);
  const auto c = walk(12, "Zavo_menu1", 500);
  auto same = [](const auto& x, const auto& y) {
    return std::equal(x.begin(), x.end(), y.begin(), y.end(), [](const auto& m, const auto& n) {
      return m.button == n.button && m.release == n.release && m.hold_ms == n.hold_ms;
    });
  };
  EXPECT_TRUE(same(a, b));
  EXPECT_FALSE(same(a, c));

  auto buttons = [](const std::vector<devsim::WalkMove>& moves) {
    std::set<uint8_t> out;
    for (const auto& m : moves)
      out.insert(m.button);
    return out;
  };
  // Elsewhere every kind of button comes, holds of power end before the countdown does.
  const auto free_walk = walk(5, "Zavo_menu2", 5000);
  EXPECT_EQ(buttons(free_walk).size(), 16u);
  for (const auto& m : free_walk) {
    if (m.button == KEY_POWER_L) {
      EXPECT_LE(m.hold_ms, 1800u);
    }
    if (m.release == KEY_NULL_MAX) {
      EXPECT_EQ(m.hold_ms, 0u);
    }
  }
  // On the card's and the reset's confirmations no function press; on the upgrade neither
  // function nor a power hold.
  for (const char* page : {"Zavo_SDcard", "Zavo_Reset"}) {
    const auto on_page = buttons(walk(5, page, 5000));
    EXPECT_EQ(on_page.count(KEY_FUCTION_S), 0u) << page;
    EXPECT_EQ(on_page.count(KEY_PHOTO_S), 1u) << page;
  }
  const auto on_upgrade = buttons(walk(5, "Zavo_updata", 5000));
  EXPECT_EQ(on_upgrade.count(KEY_FUCTION_S), 0u);
  EXPECT_EQ(on_upgrade.count(KEY_POWER_L), 0u);
  EXPECT_EQ(on_upgrade.count(KEY_POWER_S), 1u);
}

// Every hostile frame goes through the UI's frame check and dispatch and changes no record.
TEST(SoakLanguage, HostileFramesAreRepeatableAndChangeNothingInTheUi) {
  const auto frames = devsim::hostile_frames(2000, 99);
  ASSERT_EQ(frames.size(), 2000u);
  EXPECT_EQ(frames, devsim::hostile_frames(2000, 99));
  EXPECT_NE(frames, devsim::hostile_frames(2000, 100));

  tk_testing_init();
  std::memset(&stUIStatus, 0, sizeof(stUIStatus));
  std::memset(&stDevStatus, 0, sizeof(stDevStatus));
  stUIStatus.event_distrubut_reday = 1;
  stUIStatus.s16BatteryValue = 790;
  const Inf_UIStatus ui_before = stUIStatus;
  const Inf_DevStatus dev_before = stDevStatus;
  int malformed = 0;
  for (const auto& f : frames) {
    uint8_t message[512] = {0};
    std::memcpy(message, f.data(), std::min(f.size(), sizeof(message)));
    malformed += framedec::check(f) != framedec::FrameError::OK || (f.size() > 2 && f[2] > 29);
    const Inf_UIStatus before_one = stUIStatus;
    uiOperationControl(message, static_cast<uint32_t>(f.size()));
    EXPECT_EQ(std::memcmp(&stUIStatus, &before_one, sizeof(before_one)), 0) << framedec::hex(f);
  }
  EXPECT_GT(malformed, 1500);
  EXPECT_EQ(std::memcmp(&stUIStatus, &ui_before, sizeof(ui_before)), 0);
  EXPECT_EQ(std::memcmp(&stDevStatus, &dev_before, sizeof(dev_before)), 0);
  EXPECT_EQ(tk_testing_idle_count(), 0u);  // no screen event raised
  EXPECT_EQ(tk_testing_queue_length(), 0u);
  tk_testing_reset();
}

}  // namespace
