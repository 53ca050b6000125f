// The whole program: inf_menu started headless as the board starts it, with the device simulator
// on a private pair of queues and a temporary device tree, the toolkit clock 20 times faster so
// the 5 s boot logo passes in a quarter of a second. Everything is observed from outside: the
// simulator's decoded frames, the UI's printed lines and the files of the tree. Every wait is for
// a line or an answer, with a deadline generous enough for a loaded machine and the sanitizers.
#include <sys/ipc.h>
#include <sys/msg.h>

#include <chrono>
#include <filesystem>
#include <regex>
#include <string>
#include <thread>

#include "child_process.h"
#include "tree_fixture.h"

namespace {

using namespace std::chrono_literals;

constexpr auto kDeadline = 30s;

class StartUp : public DeviceTreeTest {
 protected:
  void SetUp() override {
    DeviceTreeTest::SetUp();
    write("/usrdata/release/language.json",
          R"({"DEFAULT LANGUAGE": "German", "LANGUAGES": ["English", "German", "French"]})");
    write("/usrdata/release/first_language.txt", "first start\n");
    write("/tmp/apps.version", "PN:\t [ZVT35-6401]\nSW:\t [V3.1.4.0]\n");
    std::filesystem::create_directories(at("/usrdata/media"));
    remove_queues();  // left behind by a run that was killed, with old frames in them
  }
  void TearDown() override {
    ui_.stop();
    sim_.stop();
    remove_queues();
    DeviceTreeTest::TearDown();
  }
  void remove_queues() {
    for (int key : keys_)
      msgctl(msgget(key, 0), IPC_RMID, nullptr);
  }

  void start_both() {
    const std::string keys =
        "SCOPE_MSG_KEYS=" + std::to_string(keys_[0]) + "," + std::to_string(keys_[1]);
    ASSERT_TRUE(sim_.start(DEVSIM_PATH, {"--no-schedule"}, {keys}, at("/devsim.log")));
    ASSERT_TRUE(sim_.wait_for("(to the UI) open", kDeadline)) << sim_.output();
    ASSERT_TRUE(
        ui_.start(INF_MENU_PATH, {},
                  {keys, "SCOPE_UI_ROOT=" + root_.string(), "TK_HEADLESS=1", "TK_TIME_SCALE=20"},
                  at("/inf_menu.log")));
  }

  // Asks the UI which screen is up, query after query, until one answer is the home screen. The
  // simulator asks once by itself after the start-up records, before the boot logo may be up:
  // that answer is let pass first, so only answers to queries sent from here count.
  bool home_screen_reached() {
    const std::string answer = "device: the UI shows ";
    if (!sim_.wait_for(answer, kDeadline)) return false;
    for (const auto deadline = std::chrono::steady_clock::now() + kDeadline;
         std::chrono::steady_clock::now() < deadline; std::this_thread::sleep_for(50ms)) {
      const size_t from = sim_.output().size();
      sim_.send_line("query");
      if (!sim_.wait_until([&](const std::string& out) { return out.find(answer, from) != npos; },
                           kDeadline)) {
        return false;
      }
      const std::string out = sim_.output();
      if (out.compare(out.find(answer, from) + answer.size(), 15, "the home screen") == 0)
        return true;
    }
    return false;
  }

  static constexpr size_t npos = std::string::npos;
  const int keys_[2] = {0x5E000000 + (getpid() & 0xFFFF) * 2, 0x5E000001 + (getpid() & 0xFFFF) * 2};
  ChildProcess sim_, ui_;
};

TEST_F(StartUp, ReachesTheObservationScreenThroughTheBootLogoInTheConfiguredLanguage) {
  start_both();
  // The ready frame reached the device application.
  ASSERT_TRUE(sim_.wait_for("<- UI_READY  value=0", kDeadline)) << sim_.output();

  // The start-up records were taken: settings, then the five ballistic profiles, the first of
  // which finds (and removes) the first-start marker.
  ASSERT_TRUE(ui_.wait_for("change language to German!", kDeadline)) << ui_.output();
  const std::string out = ui_.output();
  const std::regex profile("info\\.gun\\.bullet\\.length  ======");
  const auto profiles = std::distance(std::sregex_iterator(out.begin(), out.end(), profile), {});
  EXPECT_EQ(profiles, 5) << out;
  EXPECT_NE(out.find("stDevStatus.s8RecoilSensitivity ======="), npos);
  EXPECT_NE(out.find("####################first_language_file exit!"), npos);
  EXPECT_FALSE(std::filesystem::exists(at("/usrdata/release/first_language.txt")));

  // The boot logo opens once the observation screen has its records, in the first start's
  // default language, which the device application is told.
  const size_t home_done = out.find("Zavo_home_page_1 INIT END!");
  EXPECT_LT(home_done, out.find("name  =============Boot_logo")) << out;
  EXPECT_TRUE(sim_.wait_for("<- BASIC  16:language  value=3", kDeadline)) << sim_.output();

  // After the logo's 5 s the observation screen is the top window.
  EXPECT_TRUE(home_screen_reached()) << sim_.output();

  // The version line was appended after the device parts' lines, and printed.
  const std::string versions = read("/tmp/apps.version");
  EXPECT_TRUE(std::regex_match(versions,
                               std::regex("PN:\t \\[ZVT35-6401\\]\nSW:\t \\[V3.1.4.0\\]\n"
                                          "UI:\t <inf_menu>\t \\(.+,.+\\) \\[.+\\] on \\{.+\\}\n")))
      << versions;
  const size_t ui = versions.find("UI:");
  EXPECT_NE(out.find(versions.substr(ui, versions.size() - 1 - ui) + ".\n"), npos) << out;
  EXPECT_EQ(out.find("condition("), npos) << "a check failed during start-up:\n" << out;
}

}  // namespace
