// The menus and system pages under test: the common page fixture with the observation screen
// open underneath (the menus open over it and go back to it), the buttons of the scope sent as
// the device sends them, and a device tree of the test's own for the clock and version files.
#ifndef SCOPE_TESTS_MENUS_MENUS_FIXTURE_H
#define SCOPE_TESTS_MENUS_MENUS_FIXTURE_H

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "page_fixture.h"
#include "pages/Zavo_home_page_1.h"
#include "pages/Zavo_menus.h"
#include "pages/page_list.h"
#include "pages/system_pages.h"

namespace menus_test {

using page_test::device_frame;
using page_test::Frames;
using page_test::g_free_mib;
using page_test::printed;
using Lines = std::vector<std::string>;

class MenusTest : public page_test::PageTest {
 protected:
  void SetUp() override {
    PageTest::SetUp();
    // Page state that outlives windows, as a fresh process has it.
    back_count = 0;
    Zavo_menu1_index = 1;
    Zavo_menu2_index = 1;
    stUIStatus.s16BatteryValue = 780;
    tk_testing_capture_log(true);
    home_ = home_scene_open();
    ASSERT_NE(home_, nullptr);
    stUIStatus.s16BatteryValue = 780;  // the home screen starts from a placeholder
    sent_frames();
    tk_testing_clear_failed_lookups();
  }

  void TearDown() override {
    if (!tree_.empty()) {
      unsetenv("SCOPE_UI_ROOT");
      std::filesystem::remove_all(tree_);
    }
    PageTest::TearDown();
  }

  // A button of the scope, as the device sends it (type 7): through the link's key rules.
  void button(uint8_t which) { from_device(device_frame(7, 0, 0, {which})); }

  // Back to the observation screen alone, with a fresh mark in the log (a case of a table).
  void restart_at_home() {
    back_to_home();
    advance(0);
    mark_log();
  }

  // Several keys through the main loop.
  void keys(std::initializer_list<uint32_t> codes) {
    for (uint32_t code : codes)
      key(code);
  }

  // The open windows, bottom to top.
  Lines windows() const { return tk_testing_window_names(); }

  // Whether the page `name` was asked for: it is on top, or (its module and layout belong to
  // another part of the scope and are not there yet) the toolkit named its missing layout.
  // Only the log since the last mark_log() counts.
  bool requested(const std::string& name) const {
    if (top_name() == name) return true;
    const Lines log = tk_testing_log_lines();
    const std::string file = "/raw/ui/" + name + ".xml";
    return std::any_of(
        log.begin() + std::min(log_mark_, log.size()), log.end(),
        [&](const std::string& line) { return line.find(file) != std::string::npos; });
  }
  void mark_log() { log_mark_ = tk_testing_log_lines().size(); }

  // A device tree of this test's own (SCOPE_UI_ROOT): tmp/, dev/rtc0 (a plain file).
  std::filesystem::path device_tree() {
    if (tree_.empty()) {
      char dir[] = "/tmp/menus_test.XXXXXX";
      tree_ = mkdtemp(dir);
      std::filesystem::create_directories(tree_ / "tmp");
      std::filesystem::create_directories(tree_ / "dev");
      std::ofstream(tree_ / "dev" / "rtc0").flush();
      setenv("SCOPE_UI_ROOT", tree_.c_str(), 1);
    }
    return tree_;
  }
  static std::string read(const std::filesystem::path& path) {
    std::ifstream in(path);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
  }

  // The frames sent since the last call that decode as `what` (e.g. "BASIC BASIC_REBOOT").
  static Lines with_prefix(const Lines& lines, const std::string& what) {
    Lines out;
    for (const auto& l : lines) {
      if (l.rfind(what, 0) == 0) out.push_back(l);
    }
    return out;
  }

  widget_t* home_ = nullptr;
  size_t log_mark_ = 0;
  std::filesystem::path tree_;
};

}  // namespace menus_test

#endif  // SCOPE_TESTS_MENUS_MENUS_FIXTURE_H
