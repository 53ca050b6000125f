// The toolkit's environment honoured by a whole program: tkdemo started with no display draws
// headless over the backdrop, writes the screenshot asked for and quits, or rewrites it
// periodically; bad values get a clear line.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "draw/png_io.h"
#include "draw_test_util.h"

extern char** environ;

using namespace drawtest;
namespace fs = std::filesystem;

namespace {

struct ChildRun {
  bool exited = false;
  int status = -1;
  std::string output;
};

// Starts tkdemo with the current environment less the display variables and TK_*, plus
// `extra`; its output goes to the file `output`.
pid_t spawn_demo(const std::vector<std::string>& extra, const std::string& output) {
  std::vector<std::string> env(extra);
  for (char** e = environ; *e != nullptr; ++e) {
    std::string v = *e;
    if (!v.starts_with("DISPLAY=") && !v.starts_with("WAYLAND_DISPLAY=") && !v.starts_with("TK_"))
      env.push_back(v);
  }
  std::vector<char*> envp;
  for (auto& s : env)
    envp.push_back(s.data());
  envp.push_back(nullptr);
  posix_spawn_file_actions_t fa;
  posix_spawn_file_actions_init(&fa);
  posix_spawn_file_actions_addopen(&fa, 1, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_adddup2(&fa, 1, 2);
  std::string exe = TKDEMO_PATH;
  char* argv[] = {exe.data(), nullptr};
  pid_t pid = -1;
  int rc = posix_spawn(&pid, exe.c_str(), &fa, nullptr, argv, envp.data());
  posix_spawn_file_actions_destroy(&fa);
  return rc == 0 ? pid : -1;
}

// Real time passes for the child process; this process only waits for it.
void pause_ms(int ms) {
  std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

// Runs tkdemo to its end (killed after a minute of real time).
ChildRun run_demo(const std::vector<std::string>& extra, const std::string& output) {
  ChildRun run;
  pid_t pid = spawn_demo(extra, output);
  EXPECT_GT(pid, 0);
  for (int waited = 0; pid > 0 && !run.exited && waited < 60000; waited += 10) {
    run.exited = waitpid(pid, &run.status, WNOHANG) == pid;
    if (!run.exited) pause_ms(10);
  }
  if (pid > 0 && !run.exited) {
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
  }
  run.output = read_text_file(output);
  return run;
}

std::string fresh(const std::string& name) {
  std::string path = scratch_dir() + "/" + name;
  fs::remove(path);
  return path;
}

}  // namespace

TEST(DrawProcess, NoDisplayDrawsHeadlessOverTheBackdropWritesTheScreenshotAndQuits) {
  std::string back = write_fixture(tk::draw::Pixmap(8, 8, kGreen), "backdrop_green.png");
  std::string shot = fresh("tkdemo_headless.png");
  // A bad value is named and ignored (the other variables still count).
  ChildRun run =
      run_demo({"TK_SCREENSHOT=" + shot, "TK_SCREENSHOT_AFTER_MS=400",
                "TK_SCREENSHOT_EVERY_MS=soon", "TK_TIME_SCALE=20", "TK_BACKDROP=" + back},
               fresh("tkdemo_headless.log"));
  ASSERT_TRUE(run.exited) << run.output;
  EXPECT_TRUE(WIFEXITED(run.status) && WEXITSTATUS(run.status) == 0) << run.output;
  tk::draw::Pixmap pic;
  std::string error;
  ASSERT_TRUE(tk::draw::load_picture(shot, pic, error)) << error << "\n" << run.output;
  EXPECT_EQ(pic.w * 10000 + pic.h, 1280 * 10000 + 1024);
  // The demo's red swatch, set with the colour word 0xFF0011FF, at (48..168, 120..190); the
  // backdrop between the title bar (to y 80) and the colour panel (from x 24, y 100).
  EXPECT_EQ(pic.at(100, 150), kRed);
  EXPECT_EQ(pic.at(390, 150), kBlue);
  EXPECT_EQ(pic.at(10, 90), kGreen);
  // The missing image of the demo and the bad value are named on its output.
  for (const char* line : {"!!!Asset [name=tk_demo_no_such_image type=image] not exist!!!",
                           "TK_SCREENSHOT_EVERY_MS=\"soon\" is not a number of milliseconds; "
                           "ignored"}) {
    EXPECT_NE(run.output.find(line), std::string::npos) << line << " in\n" << run.output;
  }
}

TEST(DrawProcess, PeriodicScreenshotIsAlwaysAWholePicture) {
  std::string shot = fresh("tkdemo_every.png");
  std::string log = fresh("tkdemo_every.log");
  pid_t pid = spawn_demo(
      {"TK_HEADLESS=1", "TK_SCREENSHOT=" + shot, "TK_SCREENSHOT_EVERY_MS=50", "TK_TIME_SCALE=10"},
      log);
  ASSERT_GT(pid, 0);
  // The program keeps running and rewriting the file (its progress bars move); read it
  // meanwhile: every read finds a whole picture, and the file changes between reads.
  int good_reads = 0;
  std::set<fs::file_time_type> versions;
  for (int waited = 0; waited < 30000 && (good_reads < 5 || versions.size() < 2); waited += 20) {
    pause_ms(20);
    std::error_code ec;
    auto stamp = fs::last_write_time(shot, ec);
    if (ec) continue;
    tk::draw::Pixmap pic;
    std::string error;
    bool whole = tk::draw::load_picture(shot, pic, error);
    EXPECT_TRUE(whole) << error;
    if (!whole) break;
    EXPECT_EQ(pic.w, 1280);
    versions.insert(stamp);
    ++good_reads;
  }
  int status = 0;
  EXPECT_EQ(waitpid(pid, &status, WNOHANG), 0) << "tkdemo ended on its own";
  kill(pid, SIGKILL);
  waitpid(pid, nullptr, 0);
  EXPECT_GE(versions.size(), 2u) << read_text_file(log);
  EXPECT_EQ(good_reads, 5) << read_text_file(log);
}
