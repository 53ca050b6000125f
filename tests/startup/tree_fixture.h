// A temporary device tree (SCOPE_UI_ROOT) for one test, removed afterwards, with small helpers
// to write and read its files and to capture what the code under test prints.
#ifndef SCOPE_TESTS_STARTUP_TREE_FIXTURE_H
#define SCOPE_TESTS_STARTUP_TREE_FIXTURE_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

class DeviceTreeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/scope-tree-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    root_ = pattern;
    setenv("SCOPE_UI_ROOT", root_.c_str(), 1);
  }
  void TearDown() override {
    unsetenv("SCOPE_UI_ROOT");
    std::filesystem::remove_all(root_);
  }

  // Absolute host path of the device path `device` ("/usrdata/...") inside the tree.
  std::string at(const std::string& device) const { return root_.string() + device; }

  void write(const std::string& device, const std::string& content) const {
    std::filesystem::create_directories(std::filesystem::path(at(device)).parent_path());
    std::ofstream(at(device), std::ios::binary) << content;
  }

  std::string read(const std::string& device) const {
    std::ifstream in(at(device), std::ios::binary);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
  }

  std::filesystem::path root_;
};

// Runs `fn` and returns what it printed on standard output.
template <typename Fn>
std::string printed_by(Fn fn) {
  ::testing::internal::CaptureStdout();
  fn();
  fflush(stdout);
  return ::testing::internal::GetCapturedStdout();
}

#endif  // SCOPE_TESTS_STARTUP_TREE_FIXTURE_H
