// The UI's link and the device simulator as two processes over real queues (private keys).
// This test process is the UI side: its listener thread, its drain on the test clock. devsim runs
// a scenario and exits 0 only if every frame it expected from the UI came.
#include <sys/wait.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

#include "device_model.h"
#include "link_fixture.h"

namespace linktest {
namespace {

class EndToEnd : public LinkTest {
 protected:
  // Runs devsim on `script` (with this test's queue keys, at most 30 s) while this thread runs
  // the UI thread; returns its exit status and its output in `log`. `then` runs once it started.
  template <typename F>
  int run_devsim(const std::string& script, std::string* log, F&& then) {
    std::ofstream(root_ + "/scenario.txt") << script;
    const std::string command = std::string("timeout 30 ") + DEVSIM_PATH +
                                " --no-schedule --trace --script " + root_ + "/scenario.txt > " +
                                root_ + "/devsim.log 2>&1 < /dev/null";
    std::atomic<bool> done{false};
    int status = -1;
    std::thread devsim([&] {
      status = std::system(command.c_str());
      done = true;
    });
    then();
    while (!done) {
      tk_testing_advance(5);
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    devsim.join();
    std::stringstream s;
    s << std::ifstream(root_ + "/devsim.log").rdbuf();
    *log = s.str();
    return status != -1 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
};

TEST_F(EndToEnd, StartUpQueryShutterAndCalculator) {
  open_window("Zavo_home_page_1");
  stUIStatus.s8InterfaceState = INTERFACE_OBSERVE;
  std::string log;
  const int status = run_devsim(
      "timeout 10000\n"
      "expect UI_READY value=0\n"
      "# the device answers the ready frame with its records on its own\n"
      "query\n"
      "expect BASIC BASIC_MENU_LEVEL value=0\n"
      "wait 50\n"
      "press range+photo\n"
      "expect INFRARED INFRARED_CORRECT value=1\n"
      "press up+power\n"
      "expect BALLISTIC BALLISTIC_OPEN_CALCU item=0 value=1\n"
      "expect BALLISTIC BALLISTIC_OPEN_CALCU item=0 value=1\n",
      &log, [] { GUI_SEND_UI_READY_MSG(0); });
  ASSERT_EQ(status, 0) << log;
  EXPECT_NE(log.find("<- UI_READY  value=0   [aa 07 08 00 00 00 00 b9 eb aa]"), std::string::npos)
      << log;
  EXPECT_NE(log.find("PASS: "), std::string::npos);

  // The start-up records arrived whole and the UI became ready; the device's answer to the
  // calculator is its own solution for its profile at the target's 300 m.
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (result_ball.moaV == 0 && std::chrono::steady_clock::now() < deadline) {
    tk_testing_advance(5);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  tk_testing_advance(600);  // the shutter reopens on the UI's timer
  pump();
  EXPECT_EQ(stUIStatus.event_distrubut_reday, 1);
  const Inf_DevStatus settings = devsim::default_settings();
  EXPECT_EQ(std::memcmp(&stDevStatus, &settings, sizeof(settings)), 0);
  const Inf_IR_Cursor zeroing = devsim::default_zeroing();
  EXPECT_EQ(std::memcmp(&IR_Cursor, &zeroing, sizeof(zeroing)), 0);
  for (int i = 0; i < 5; ++i) {
    Info_ballistics p = devsim::default_profile(i);
    if (i == 0) p.ballistics_sw = 1;  // switched on by the calculator buttons
    EXPECT_EQ(std::memcmp(&info[i], &p, sizeof(p)), 0) << "profile " << i;
  }
  EXPECT_EQ(stUIStatus.s8IRZoom, 100);
  EXPECT_EQ(stUIStatus.s8ShutterState, 0);
  EXPECT_EQ(std::count(log_.begin(), log_.end(), 8241), 2);
  const devsim::Solution expected = devsim::solve(devsim::default_profile(0), 300);
  EXPECT_NEAR(result_ball.moaV, expected.moaV, 1e-4);
  EXPECT_NEAR(result_ball.moaH, expected.moaH, 1e-4);
}

TEST_F(EndToEnd, ADeviceScenarioFailsOnAMissingFrame) {
  open_window("Zavo_menu1");
  std::string log;
  const int status = run_devsim(
      "timeout 300\n"
      "press KEY_FUCTION_L\n"
      "expect PARAM SAVE_ALLPARAM\n"
      "expect BASIC BASIC_SHUT_DOWN value=1\n",
      &log, [] {});
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
