// The observation screen under test: the common page fixture (tests/common/page_fixture.h) with
// the screen opened by name, the compass on, and the device's battery and solution reports.
#ifndef SCOPE_TESTS_HOME_HOME_FIXTURE_H
#define SCOPE_TESTS_HOME_HOME_FIXTURE_H

#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "pages/Zavo_home_page_1_zoom.h"
#include "page_fixture.h"
#include "pages/Zavo_home_page_1.h"
#include "pages/Zavo_home_page_1_overlay.h"

namespace home_test {

using page_test::Box;
using page_test::device_frame;
using page_test::fake_statfs;
using page_test::Frames;
using page_test::g_free_mib;
using page_test::printed;

class HomeTest : public page_test::PageTest {
 protected:
  void SetUp() override {
    PageTest::SetUp();
    stDevStatus.s8CompassSwitch = 1;
  }
  void TearDown() override {
    if (!menus_root_.empty()) {
      tk_testing_set_app_root(app_root_.c_str());
      std::error_code ec;
      std::filesystem::remove_all(menus_root_, ec);
    }
    PageTest::TearDown();
  }

  // Points the toolkit at a resource tree made of links to the real one, in which the two menus
  // the function keys open either have a layout (their own, or a plain full-screen window while
  // their page is still to come) or none at all, so that the navigator refuses them.
  void use_menus(bool present) {
    namespace fs = std::filesystem;
    if (menus_root_.empty()) app_root_ = system_info()->app_root;
    menus_root_ = (fs::temp_directory_path() / ("home-menus-" + std::to_string(getpid()))).string();
    fs::remove_all(menus_root_);
    const fs::path real = fs::absolute(fs::path(app_root_) / "assets/default/raw");
    const fs::path raw = fs::path(menus_root_) / "assets/default/raw";
    fs::create_directories(raw / "ui");
    for (const auto& entry : fs::directory_iterator(real)) {
      if (entry.path().filename() != "ui")
        fs::create_symlink(entry.path(), raw / entry.path().filename());
    }
    for (const auto& entry : fs::directory_iterator(real / "ui"))
      fs::create_symlink(entry.path(), raw / "ui" / entry.path().filename());
    for (const char* menu : {"Zavo_menu1", "Zavo_shortcut_menu"}) {
      const fs::path layout = raw / "ui" / (std::string(menu) + ".xml");
      if (!present) {
        fs::remove(layout);
      } else if (!fs::exists(layout)) {
        std::ofstream(layout) << "<window name=\"" << menu
                              << "\" x=\"0\" y=\"0\" w=\"1280\" h=\"1024\"/>\n";
      }
    }
    tk_testing_set_app_root(menus_root_.c_str());
  }

  // Opens the observation screen through the navigator (its init runs); what init sent goes to
  // init_frames_.
  void open_home() {
    win_ = home_scene_open();
    ASSERT_NE(win_, nullptr);
    init_frames_ = sent_frames();
  }

  // Battery report: type 15, sub-command 0, the raw value little-endian.
  void battery_report(int16_t value) {
    const auto v = static_cast<uint16_t>(value);
    from_device(device_frame(15, 0, 0, {static_cast<uint8_t>(v), static_cast<uint8_t>(v >> 8)}));
  }
  // A ballistic solution (type 27): moaV and moaH as two little-endian floats.
  void solution_report(float moa_v, float moa_h) {
    std::vector<uint8_t> values(8);
    std::memcpy(values.data(), &moa_v, 4);
    std::memcpy(values.data() + 4, &moa_h, 4);
    from_device(device_frame(27, 0, 0, values));
  }

  std::string app_root_;    // the resource tree before use_menus
  std::string menus_root_;  // the tree use_menus made
};

}  // namespace home_test

#endif  // SCOPE_TESTS_HOME_HOME_FIXTURE_H
