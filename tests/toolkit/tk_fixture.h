// Shared fixture of the toolkit tests: the toolkit under the test clock, pointed at a temporary
// resource tree the test writes layouts, styles and strings into, and an event recorder.
#ifndef TESTS_TOOLKIT_FIXTURE_H
#define TESTS_TOOLKIT_FIXTURE_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "awtk.h"
#include "main_loop/main_loop_simple.h"
#include "tk_testing.h"

using Names = std::vector<std::string>;

class ToolkitTest : public ::testing::Test {
 protected:
  void SetUp() override {
    tk_testing_init();
    char tmpl[] = "/tmp/tk_test_XXXXXX";
    root_ = mkdtemp(tmpl);
    for (const char* sub : {"ui", "styles", "strings"}) {
      std::filesystem::create_directories(root_ + "/assets/default/raw/" + sub);
    }
    // The base theme of the project, so style tests see the real default.xml.
    std::filesystem::copy_file("res/assets/default/raw/styles/default.xml",
                               root_ + "/assets/default/raw/styles/default.xml");
    tk_testing_set_app_root(root_.c_str());
    tk_testing_capture_log(true);
    events_.clear();
  }

  void TearDown() override {
    tk_testing_reset();
    std::filesystem::remove_all(root_);
  }

  void write(const std::string& rel, const std::string& text) {
    std::ofstream(root_ + "/assets/default/raw/" + rel) << text;
  }
  void write_ui(const std::string& name, const std::string& xml) {
    write("ui/" + name + ".xml", xml);
  }
  // A plain window layout named `name`, with extra root attributes and children.
  void write_window(const std::string& name, const std::string& attrs = "",
                    const std::string& body = "") {
    write_ui(name, "<window name=\"" + name + "\" " + attrs + ">" + body + "</window>");
  }
  void write_dialog(const std::string& name) {
    write_ui(name, "<dialog name=\"" + name + "\" w=\"200\" h=\"100\"/>");
  }

  // Opens and runs the open sequence.
  widget_t* open(const char* name) {
    widget_t* w = window_open(name);
    tk_testing_advance(0);
    return w;
  }

  static std::string event_name(uint32_t type) {
    switch (type) {
      case EVT_WINDOW_WILL_OPEN: return "will_open";
      case EVT_WINDOW_OPEN: return "open";
      case EVT_WINDOW_TO_BACKGROUND: return "to_background";
      case EVT_WINDOW_TO_FOREGROUND: return "to_foreground";
      case EVT_WINDOW_CLOSE: return "close";
      case EVT_TOP_WINDOW_CHANGED: return "top_changed";
      case EVT_DESTROY: return "destroy";
      case EVT_KEY_DOWN: return "key_down";
      case EVT_KEY_UP: return "key_up";
      case EVT_KEY_DOWN_BEFORE_CHILDREN: return "key_down_before";
      case EVT_KEY_LONG_PRESS: return "long_press";
      default: return std::to_string(type);
    }
  }

  // Records "<widget name>:<event>[:<window of a window_event_t>][:<key>]" and returns the
  // ret_t that ctx points to (RET_OK without one).
  static ret_t record(void* ctx, event_t* e) {
    widget_t* w = static_cast<widget_t*>(e->target);
    std::string line = w == window_manager() ? "wm" : (w->name ? w->name : "?");
    line.append(":").append(event_name(e->type));
    widget_t* win =
        e->size == sizeof(window_event_t) ? reinterpret_cast<window_event_t*>(e)->window : nullptr;
    if (win != nullptr) line.append(":").append(win->name);
    if (key_event_t* ke = key_event_cast(e)) line.append(":").append(std::to_string(ke->key));
    events_.push_back(line);
    return ctx == nullptr ? RET_OK : *static_cast<ret_t*>(ctx);
  }

  static void watch(widget_t* w, std::initializer_list<uint32_t> types) {
    for (uint32_t t : types)
      widget_on(w, t, record, nullptr);
  }
  static void watch_window_events(widget_t* w) {
    watch(w, {EVT_WINDOW_WILL_OPEN, EVT_WINDOW_OPEN, EVT_WINDOW_TO_BACKGROUND,
              EVT_WINDOW_TO_FOREGROUND, EVT_WINDOW_CLOSE, EVT_TOP_WINDOW_CHANGED});
  }

  // The recorded events joined by spaces, then forgotten.
  static std::string take_events() {
    std::string s;
    for (const std::string& e : events_)
      s += (s.empty() ? "" : " ") + e;
    events_.clear();
    return s;
  }

  static Names stack_names() { return tk_testing_window_names(); }
  static std::string text(widget_t* w) {
    char buf[256];
    widget_get_text_utf8(w, buf, sizeof(buf));
    return buf;
  }

  std::string root_;
  static inline std::vector<std::string> events_;
};

#endif  // TESTS_TOOLKIT_FIXTURE_H
