// What the code under test prints, and a temporary device tree (SCOPE_UI_ROOT) for one test,
// removed afterwards.
#ifndef SCOPE_TESTS_STARTUP_TREE_FIXTURE_H
#define SCOPE_TESTS_STARTUP_TREE_FIXTURE_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

// Runs `fn` and returns what it printed on standard output.
template <typename Fn>
std::string printed_by(Fn fn) {
  ::testing::internal::CaptureStdout();
  fn();
  fflush(stdout);
  return ::testing::internal::GetCapturedStdout();
}

class DeviceTreeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/scope-tree-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    root_ = pattern;
    setenv("SCOPE_UI_ROOT", pattern, 1);
  }
  void TearDown() override {
    unsetenv("SCOPE_UI_ROOT");
    std::filesystem::remove_all(root_);
  }

  // Host path of the device path `device` ("/usrdata/...") inside the tree.
  std::string at(const std::string& device) const { return root_.string() + device; }
  void write(const std::string& device, const std::string& content) const {
    std::filesystem::create_directories(std::filesystem::path(at(device)).parent_path());
    std::ofstream(at(device), std::ios::binary) << content;
  }
  std::string read(const std::string& device) const {
    std::stringstream text;
    text << std::ifstream(at(device), std::ios::binary).rdbuf();
    return text.str();
  }

  std::filesystem::path root_;
};

#endif  // SCOPE_TESTS_STARTUP_TREE_FIXTURE_H
