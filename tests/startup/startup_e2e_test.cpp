// The whole program: inf_menu started headless as the board starts it, with the device simulator
// on a private pair of queues and a temporary device tree, the toolkit clock 20 times faster so
// the 5 s boot logo passes in a quarter of a second. Everything is observed from outside: the
// simulator's decoded frames, the UI's printed lines and the files of the tree. Every wait is for
// a line or an answer, with a deadline generous enough for a loaded machine and the sanitizers.
#include <sys/ipc.h>
#include <sys/msg.h>

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
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

  // The simulator, then the UI with `args` and `env` added to its own variables.
  void start_both(std::vector<std::string> args = {}, std::vector<std::string> env = {}) {
    const std::string keys =
        "SCOPE_MSG_KEYS=" + std::to_string(keys_[0]) + "," + std::to_string(keys_[1]);
    ASSERT_TRUE(sim_.start(DEVSIM_PATH, {"--no-schedule"}, {keys}, at("/devsim.log")));
    ASSERT_TRUE(sim_.wait_for("(to the UI) open", kDeadline)) << sim_.output();
    env.insert(env.end(),
               {keys, "SCOPE_UI_ROOT=" + root_.string(), "TK_HEADLESS=1", "TK_TIME_SCALE=20"});
    ASSERT_TRUE(ui_.start(INF_MENU_PATH, args, env, at("/inf_menu.log")));
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

// Width and height of a PNG file from its header; 0 x 0 when it cannot be read.
std::pair<uint32_t, uint32_t> png_size(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  unsigned char header[24] = {0};
  if (!in.read(reinterpret_cast<char*>(header), sizeof(header))) return {0, 0};
  auto be32 = [&](int at) {
    return static_cast<uint32_t>(header[at] << 24 | header[at + 1] << 16 | header[at + 2] << 8 |
                                 header[at + 3]);
  };
  return {be32(16), be32(20)};
}

TEST_F(StartUp, ScreenWidthAndHeightComeFromTheCommandLine) {
  struct Case {
    std::vector<std::string> args;
    uint32_t w, h;
    const char* printed;
  };
  const Case cases[] = {
      {{"640", "480"}, 640, 480, ""},
      {{"800"}, 800, 1024, ""},  // the height stays 1024
      {{"wide", "-5", "arg"},
       1280,
       1024,
       "inf_menu: bad screen size <wide>, using 1280\ninf_menu: bad screen size <-5>, using "
       "1024\n"},
  };
  for (const Case& c : cases) {
    // The screen is written once the observation screen is up, and the program ends.
    const std::string shot = at("/screen.png");
    std::filesystem::remove(shot);
    start_both(c.args, {"TK_SCREENSHOT=" + shot, "TK_SCREENSHOT_AFTER_MS=500"});
    EXPECT_TRUE(ui_.wait_until([&](const std::string&) { return std::filesystem::exists(shot); },
                               kDeadline))
        << ui_.output();
    EXPECT_TRUE(ui_.wait_for("application_exit", kDeadline)) << ui_.output();
    EXPECT_EQ(png_size(shot), std::make_pair(c.w, c.h)) << c.args[0];
    EXPECT_NE(ui_.output().find(c.printed), std::string::npos) << ui_.output();
    ui_.stop();
    sim_.stop();
    remove_queues();
  }
}

TEST_F(StartUp, AFailedQueueStartIsPrintedAndTheUIRunsOnWithoutTheLink) {
  // The UI's send queue exists already and refuses this user (mode 0; a root test runs the UI as
  // nobody, whom the mode applies to), so opening it fails.
  const int refused = msgget(keys_[0], IPC_CREAT | IPC_EXCL | 0);
  ASSERT_NE(refused, -1);
  std::filesystem::permissions(root_, std::filesystem::perms::all);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root_))
    std::filesystem::permissions(entry.path(), std::filesystem::perms::all);
  std::vector<std::string> env = {
      "SCOPE_MSG_KEYS=" + std::to_string(keys_[0]) + "," + std::to_string(keys_[1]),
      "SCOPE_UI_ROOT=" + root_.string(), "TK_HEADLESS=1"};
  if (geteuid() == 0) {
    ASSERT_TRUE(ui_.start("/usr/bin/setpriv",
                          {"--reuid=65534", "--regid=65534", "--clear-groups", INF_MENU_PATH}, env,
                          at("/inf_menu.log")));
  } else {
    ASSERT_TRUE(ui_.start(INF_MENU_PATH, {}, env, at("/inf_menu.log")));
  }
  // The failure is printed, the ready frame cannot go out, and the program goes on to the
  // observation screen, which waits for the device's records (its wait has no time-out).
  ASSERT_TRUE(ui_.wait_for("enter Zavo_home_page_1!!!", kDeadline)) << ui_.output();
  const std::string out = ui_.output();
  const size_t init = out.find("<MsgEvent> init msg client event!\n");
  const size_t failed = out.find("[ERROR] msg get error!\n");
  EXPECT_LT(init, failed) << out;
  EXPECT_LT(failed, out.find("[ERROR] send msg event failed!\nUi to App Send failed\n")) << out;
  EXPECT_EQ(out.find("MsgEventListen"), npos) << out;
  // Still running a second later: nothing crashed or ended.
  EXPECT_FALSE(ui_.wait_for("application_exit", std::chrono::seconds(1))) << ui_.output();
  EXPECT_FALSE(ui_.ended()) << ui_.output();
  ui_.stop();
  msgctl(refused, IPC_RMID, nullptr);
  EXPECT_EQ(msgget(keys_[1], 0), -1) << "the receive queue was never created";
}

TEST_F(StartUp, APageNamedAtStartOpensOverTheObservationScreenAndAnUnknownNameChangesNothing) {
  // The compass page, which no menu row opens: it comes up above the boot logo, takes the keys
  // (OK on its first row switches the compass) and its power key leaves to the observation
  // screen, the logo having closed alone meanwhile.
  start_both({}, {"SCOPE_OPEN_PAGE=Zavo_compass_menu"});
  ASSERT_TRUE(ui_.wait_for("name  =============Zavo_compass_menu", kDeadline)) << ui_.output();
  EXPECT_LT(ui_.output().find("name  =============Boot_logo"),
            ui_.output().find("name  =============Zavo_compass_menu"));
  sim_.send_line("press function");
  EXPECT_TRUE(sim_.wait_for("33:compass_switch", kDeadline)) << sim_.output();
  sim_.send_line("press power");
  EXPECT_TRUE(home_screen_reached()) << sim_.output();
  EXPECT_EQ(ui_.output().find("condition("), npos) << ui_.output();
  ui_.stop();
  sim_.stop();
  remove_queues();

  // A name that is no page: the toolkit's line, and the scope starts as it always does.
  start_both({}, {"SCOPE_OPEN_PAGE=Zavo_nowhere"});
  EXPECT_TRUE(ui_.wait_for("no layout file", kDeadline)) << ui_.output();
  EXPECT_TRUE(home_screen_reached()) << sim_.output();
}

}  // namespace
