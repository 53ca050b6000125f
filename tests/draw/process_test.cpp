// The toolkit's environment honoured by a whole program: tkdemo started with no display draws
// headless, writes the screenshot asked for and quits; a backdrop shows under its transparent
// window; bad values get a clear line.
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

// The current environment without the display variables and without TK_*, plus `extra`.
std::vector<std::string> child_env(const std::vector<std::string>& extra) {
  std::vector<std::string> env;
  for (char** e = environ; *e != nullptr; ++e) {
    std::string v = *e;
    if (v.starts_with("DISPLAY=") || v.starts_with("WAYLAND_DISPLAY=") || v.starts_with("TK_"))
      continue;
    env.push_back(v);
  }
  env.insert(env.end(), extra.begin(), extra.end());
  return env;
}

// Real time passes for the child process; this process only waits for it.
void pause_ms(int ms) {
  std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

pid_t spawn_demo(const std::vector<std::string>& extra, const std::string& output) {
  std::vector<std::string> env = child_env(extra);
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

// Waits up to `limit_ms` of real time for the process to end; kills it if it does not.
ChildRun wait_demo(pid_t pid, const std::string& output, int limit_ms) {
  ChildRun run;
  for (int waited = 0; waited < limit_ms; waited += 10) {
    int status = 0;
    if (waitpid(pid, &status, WNOHANG) == pid) {
      run.exited = true;
      run.status = status;
      break;
    }
    pause_ms(10);
  }
  if (!run.exited) {
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
  }
  run.output = read_text_file(output);
  return run;
}

ChildRun run_demo(const std::vector<std::string>& extra, const std::string& output) {
  pid_t pid = spawn_demo(extra, output);
  EXPECT_GT(pid, 0);
  if (pid <= 0) return {};
  return wait_demo(pid, output, 60000);
}

std::string fresh(const std::string& name) {
  std::string path = scratch_dir() + "/" + name;
  fs::remove(path);
  return path;
}

}  // namespace

TEST(DrawProcess, NoDisplayDrawsHeadlessWritesTheScreenshotAndQuits) {
  std::string shot = fresh("tkdemo_headless.png");
  ChildRun run =
      run_demo({"TK_SCREENSHOT=" + shot, "TK_SCREENSHOT_AFTER_MS=400", "TK_TIME_SCALE=20"},
               fresh("tkdemo_headless.log"));
  ASSERT_TRUE(run.exited) << run.output;
  EXPECT_TRUE(WIFEXITED(run.status) && WEXITSTATUS(run.status) == 0) << run.output;
  tk::draw::Pixmap pic;
  std::string error;
  ASSERT_TRUE(tk::draw::load_picture(shot, pic, error)) << error << "\n" << run.output;
  EXPECT_EQ(pic.w, 1280);
  EXPECT_EQ(pic.h, 1024);
  // The demo's red swatch, set with the colour word 0xFF0011FF, at (48..168, 120..190).
  EXPECT_EQ(pic.at(100, 150), kRed);
  EXPECT_EQ(pic.at(390, 150), kBlue);
  // The missing image of the demo is named once on its output.
  EXPECT_NE(run.output.find("!!!Asset [name=tk_demo_no_such_image type=image] not exist!!!"),
            std::string::npos)
      << run.output;
}

TEST(DrawProcess, BackdropShowsWhereTheWindowIsTransparent) {
  std::string back = write_fixture(tk::draw::Pixmap(8, 8, kGreen), "backdrop_green.png");
  std::string shot = fresh("tkdemo_backdrop.png");
  ChildRun run = run_demo({"TK_HEADLESS=1", "TK_BACKDROP=" + back, "TK_SCREENSHOT=" + shot,
                           "TK_SCREENSHOT_AFTER_MS=100", "TK_TIME_SCALE=20"},
                          fresh("tkdemo_backdrop.log"));
  ASSERT_TRUE(run.exited) << run.output;
  tk::draw::Pixmap pic;
  std::string error;
  ASSERT_TRUE(tk::draw::load_picture(shot, pic, error)) << error;
  // Between the title bar (to y 80) and the colour panel (from x 24, y 100).
  EXPECT_EQ(pic.at(10, 90), kGreen);
  EXPECT_EQ(pic.at(100, 150), kRed);
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

TEST(DrawProcess, BadEnvironmentValuesAreNamedAndDefaultsUsed) {
  std::string shot = fresh("tkdemo_badenv.png");
  ChildRun run = run_demo({"TK_HEADLESS=1", "TK_SCREENSHOT=" + shot, "TK_SCREENSHOT_AFTER_MS=soon",
                           "TK_BACKDROP=/nonexistent/video.png", "TK_TIME_SCALE=20"},
                          fresh("tkdemo_badenv.log"));
  ASSERT_TRUE(run.exited) << run.output;
  EXPECT_NE(
      run.output.find("TK_SCREENSHOT_AFTER_MS=\"soon\" is not a number of milliseconds; ignored"),
      std::string::npos)
      << run.output;
  EXPECT_NE(run.output.find("backdrop /nonexistent/video.png cannot be read"), std::string::npos)
      << run.output;
  EXPECT_TRUE(fs::exists(shot));
}
