// The UI's link and the device simulator as two processes over real queues (private keys).
// This test process is the UI side: its listener thread, its drain on the test clock. devsim runs
// a scenario and exits 0 only if every frame it expected from the UI came.
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

#include "device_model.h"
#include "link_fixture.h"

extern char** environ;

namespace linktest {
namespace {

class EndToEnd : public LinkTest {
 protected:
  // Starts devsim on `script` with this test's queue keys; its output goes to `log_path_`.
  pid_t start_devsim(const std::string& script) {
    const std::string script_path = root_ + "/scenario.txt";
    std::ofstream(script_path) << script;
    log_path_ = root_ + "/devsim.log";
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, log_path_.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    std::string exe = DEVSIM_PATH;
    char* argv[] = {exe.data(), const_cast<char*>("--no-schedule"), const_cast<char*>("--script"),
                    const_cast<char*>(script_path.c_str()), nullptr};
    pid_t pid = -1;
    EXPECT_EQ(posix_spawn(&pid, exe.c_str(), &actions, nullptr, argv, environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    return pid;
  }

  // Runs the UI thread until devsim exits; its exit status, or -1 after a time-out.
  int run_until_exit(pid_t pid) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    for (;;) {
      int status = 0;
      pid_t done = waitpid(pid, &status, WNOHANG);
      if (done == pid) return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
      if (std::chrono::steady_clock::now() > deadline) {
        kill(pid, SIGTERM);
        waitpid(pid, &status, 0);
        return -1;
      }
      tk_testing_advance(5);
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }

  std::string devsim_log() {
    std::ifstream in(log_path_);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
  }

  std::string log_path_;
};

TEST_F(EndToEnd, StartUpQueryShutterAndCalculator) {
  open_window("Zavo_home_page_1");
  stUIStatus.s8InterfaceState = INTERFACE_OBSERVE;
  pid_t pid = start_devsim(
      "timeout 10000\n"
      "expect UI_READY value=0\n"
      "# the device answers the ready frame with its records on its own\n"
      "query\n"
      "expect BASIC BASIC_MENU_LEVEL value=0\n"
      "press range+photo\n"
      "expect INFRARED INFRARED_CORRECT value=1\n"
      "press up+power\n"
      "expect BALLISTIC BALLISTIC_OPEN_CALCU item=0 value=1\n"
      "expect BALLISTIC BALLISTIC_OPEN_CALCU item=0 value=1\n");
  ASSERT_GT(pid, 0);
  GUI_SEND_UI_READY_MSG(0);
  const int status = run_until_exit(pid);
  const std::string log = devsim_log();
  ASSERT_EQ(status, 0) << log;
  EXPECT_NE(log.find("<- UI_READY  value=0   [aa 07 08 00 00 00 00 b9 eb aa]"), std::string::npos)
      << log;
  EXPECT_NE(log.find("PASS: "), std::string::npos);

  // The start-up records arrived whole and the UI became ready.
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (result_ball.moaV == 0 && std::chrono::steady_clock::now() < deadline) {
    tk_testing_advance(5);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  pump();
  EXPECT_EQ(stUIStatus.event_distrubut_reday, 1);
  Inf_DevStatus settings = devsim::default_settings();
  EXPECT_EQ(std::memcmp(&stDevStatus, &settings, sizeof(settings)), 0);
  Inf_IR_Cursor zeroing = devsim::default_zeroing();
  EXPECT_EQ(std::memcmp(&IR_Cursor, &zeroing, sizeof(zeroing)), 0);
  for (int i = 0; i < 5; ++i) {
    Info_ballistics p = devsim::default_profile(i);
    if (i == 0) p.ballistics_sw = 1;  // switched on by the calculator buttons
    EXPECT_EQ(std::memcmp(&info[i], &p, sizeof(p)), 0) << "profile " << i;
  }
  // The shutter closed and reopened on the UI's timer.
  tk_testing_advance(600);
  pump();
  EXPECT_EQ(stUIStatus.s8ShutterState, 0);
  EXPECT_EQ(log_.count(8241), 2u);
  // The device's solution for its own profile at the target's 300 m.
  const devsim::Solution expected = devsim::solve(devsim::default_profile(0), 300);
  EXPECT_NEAR(result_ball.moaV, expected.moaV, 1e-4);
  EXPECT_NEAR(result_ball.moaH, expected.moaH, 1e-4);
  EXPECT_GT(result_ball.moaV, 3.0);
}

TEST_F(EndToEnd, ADeviceScenarioFailsOnAMissingFrame) {
  open_window("Zavo_menu1");
  pid_t pid = start_devsim(
      "timeout 300\n"
      "press KEY_FUCTION_L\n"
      "expect PARAM SAVE_ALLPARAM\n"
      "expect BASIC BASIC_SHUT_DOWN value=1\n");
  ASSERT_GT(pid, 0);
  const int status = run_until_exit(pid);
  const std::string log = devsim_log();
  EXPECT_EQ(status, 1) << log;
  EXPECT_NE(log.find("script line 3: got PARAM SAVE_ALLPARAM"), std::string::npos) << log;
  EXPECT_NE(
      log.find("FAIL script line 4: expected \"BASIC BASIC_SHUT_DOWN value=1\" within 300 ms"),
      std::string::npos)
      << log;
  pump();
  EXPECT_EQ(keys(), hit(56));
}

}  // namespace
}  // namespace linktest
