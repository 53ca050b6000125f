// The whole program: inf_menu started headless as the board starts it, with the device simulator
// on a private pair of queues and a temporary device tree, the toolkit clock 20 times faster so
// the 5 s boot logo passes in a quarter of a second. Everything is observed from outside: the
// simulator's decoded frames, the UI's printed lines and the files of the tree.
#include <sys/ipc.h>
#include <sys/msg.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "child_process.h"
#include "tree_fixture.h"

namespace {

using namespace std::chrono_literals;

constexpr auto kDeadline = 30s;  // generous: the machine is shared and the sanitizer build slow

int occurrences(const std::string& text, const std::string& what) {
  int n = 0;
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
    ++n;
  return n;
}

class StartUp : public DeviceTreeTest {
 protected:
  void SetUp() override {
    DeviceTreeTest::SetUp();
    const int base = 0x5E000000 + (getpid() & 0xFFFF) * 2;
    send_key_ = base;
    recv_key_ = base + 1;
    keys_ = std::to_string(send_key_) + "," + std::to_string(recv_key_);

    write("/usrdata/release/language.json",
          R"({"DEFAULT LANGUAGE": "German", "LANGUAGES": ["English", "German", "French"]})");
    write("/usrdata/release/first_language.txt", "first start\n");
    write("/tmp/apps.version", "PN:\t [ZVT35-6401]\nSW:\t [V3.1.4.0]\n");
    std::filesystem::create_directories(at("/usrdata/media"));
  }

  void TearDown() override {
    ui_.stop();
    sim_.stop();
    for (int key : {send_key_, recv_key_}) {
      const int id = msgget(key, 0);
      if (id >= 0) msgctl(id, IPC_RMID, nullptr);
    }
    DeviceTreeTest::TearDown();
  }

  void start_both() {
    std::string error;
    ASSERT_TRUE(sim_.start(DEVSIM_PATH, {"--no-schedule"}, {{"SCOPE_MSG_KEYS", keys_}}, &error))
        << error;
    ASSERT_TRUE(sim_.wait_for("(to the UI) open", kDeadline)) << sim_.output();
    ASSERT_TRUE(ui_.start(INF_MENU_PATH, {},
                          {{"SCOPE_MSG_KEYS", keys_},
                           {"SCOPE_UI_ROOT", root_.string()},
                           {"TK_HEADLESS", "1"},
                           {"TK_TIME_SCALE", "20"}},
                          &error))
        << error;
  }

  // Asks the UI which screen is up, query after query, until the answer to one of ours is "the
  // home screen" or the deadline passes. The simulator asks once by itself after the records;
  // answers are counted so that only the answer to the last query sent is read.
  bool home_screen_reached() {
    const std::string answer = "device: the UI shows ";
    const auto deadline = std::chrono::steady_clock::now() + kDeadline;
    int asked = 1;  // the simulator's own query
    while (std::chrono::steady_clock::now() < deadline) {
      sim_.send_line("query");
      ++asked;
      if (!sim_.wait_until(
              [&](const std::string& out) { return occurrences(out, answer) >= asked; },
              kDeadline)) {
        return false;
      }
      const std::string& out = sim_.output();
      if (out.compare(out.rfind(answer) + answer.size(), 15, "the home screen") == 0) return true;
      sim_.wait_until([](const std::string&) { return false; }, 50ms);  // ask again shortly
    }
    return false;
  }

  int send_key_ = 0, recv_key_ = 0;
  std::string keys_;
  ChildProcess sim_, ui_;
};

TEST_F(StartUp, ReachesTheObservationScreenThroughTheBootLogoInTheConfiguredLanguage) {
  start_both();

  // The ready frame reached the device application.
  ASSERT_TRUE(sim_.wait_for("<- UI_READY  value=0", kDeadline)) << sim_.output();

  // The start-up records were taken: settings, then the five ballistic profiles, the first of
  // which finds the first-start marker.
  ASSERT_TRUE(ui_.wait_until(
      [](const std::string& out) {
        return occurrences(out, "info.gun.bullet.length  ======") == 5;
      },
      kDeadline))
      << ui_.output();
  EXPECT_NE(ui_.output().find("stDevStatus.s8RecoilSensitivity ======="), std::string::npos);
  EXPECT_NE(ui_.output().find("####################first_language_file exit!"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(at("/usrdata/release/first_language.txt")));

  // The boot logo opens above the observation screen, in the default language of the first start,
  // and the device application is told the language.
  ASSERT_TRUE(ui_.wait_for("change language to German!", kDeadline)) << ui_.output();
  const std::string& out = ui_.output();
  const size_t home_done = out.find("Zavo_home_page_1 INIT END!");
  const size_t logo = out.find("name  =============Boot_logo");
  ASSERT_NE(home_done, std::string::npos) << out;
  ASSERT_NE(logo, std::string::npos) << out;
  EXPECT_LT(home_done, logo);
  EXPECT_NE(out.find("s_stCustConfig->s8DefaultLanguage = 3!\n"), std::string::npos) << out;
  EXPECT_NE(out.find("s_stCustConfig->s8LangList[1]: 3\n"), std::string::npos) << out;
  EXPECT_TRUE(sim_.wait_for("<- BASIC  16:language  value=3", kDeadline)) << sim_.output();

  // After the logo's 5 s the observation screen is the top window.
  EXPECT_TRUE(home_screen_reached()) << sim_.output();

  // The version line was printed and appended after the device parts' lines.
  const std::string versions = read("/tmp/apps.version");
  ASSERT_EQ(versions.rfind("PN:\t [ZVT35-6401]\nSW:\t [V3.1.4.0]\nUI:\t <inf_menu>\t (", 0), 0u)
      << versions;
  const std::string line = versions.substr(versions.find("UI:"));
  EXPECT_NE(line.find(") ["), std::string::npos) << line;
  EXPECT_NE(line.find("] on {"), std::string::npos) << line;
  EXPECT_EQ(line.substr(line.size() - 2), "}\n") << line;
  EXPECT_NE(out.find(line.substr(0, line.size() - 1) + ".\n"), std::string::npos) << out;

  EXPECT_EQ(out.find("condition("), std::string::npos) << "a check failed during start-up:\n"
                                                       << out;
}

TEST_F(StartUp, WithoutFirstStartTheDevicesLanguageStays) {
  std::filesystem::remove(at("/usrdata/release/first_language.txt"));
  start_both();
  // The simulator's stored language is English: the default of language.json is not applied.
  ASSERT_TRUE(ui_.wait_for("change language to English!", kDeadline)) << ui_.output();
  EXPECT_NE(ui_.output().find("#############first_language_file not exit!"), std::string::npos);
  EXPECT_TRUE(home_screen_reached()) << sim_.output();
  EXPECT_EQ(sim_.output().find("16:language"), std::string::npos) << sim_.output();
}

}  // namespace
