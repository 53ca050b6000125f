// A page under test, driven the way the device drives it: the real layout opened by name through
// the navigator, frames from the "device" on the link's receive queue (private keys per test
// process), screen events through event_distrubution, keys through the main loop, timers on the
// test clock. Frames the UI sends are read back from its send queue.
//
// Every test area that drives pages derives its fixture from PageTest:
//   class SettingsTest : public page_test::PageTest {};
//   TEST_F(SettingsTest, ...) { open("Zavo_Settings"); key(GUI_KEY_FUCTION_S);
//                               EXPECT_EQ(decoded(sent_frames()), ...); }
#ifndef SCOPE_TESTS_COMMON_PAGE_FIXTURE_H
#define SCOPE_TESTS_COMMON_PAGE_FIXTURE_H

#include <gtest/gtest.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/statfs.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "common/common_function.h"
#include "common/navigator.h"
#include "common/records_lock.h"
#include "common/status_records.h"
#include "framedec.h"
#include "home_scene.h"
#include "msg/msg.h"
#include "msg/msghandler.h"
#include "tk_testing.h"

namespace page_test {

using Frames = std::vector<std::vector<uint8_t>>;

struct Box {
  int x, y, w, h;
  bool operator==(const Box& o) const = default;
};
inline std::ostream& operator<<(std::ostream& os, const Box& b) {
  return os << "(" << b.x << ", " << b.y << ", " << b.w << ", " << b.h << ")";
}

// Free space the fake media volume (an 8 GiB card) reports, in MiB.
inline uint64_t g_free_mib = 4000;

inline int fake_statfs(const char*, struct statfs* out) {
  std::memset(out, 0, sizeof(*out));
  out->f_bsize = 4096;
  out->f_blocks = 8ull * 1024 * 1024 * 1024 / 4096;
  out->f_bavail = g_free_mib * 256;
  out->f_bfree = out->f_bavail;
  return 0;
}

// A frame as the device application sends it: header, length, type, command, sub-command,
// reserved, values, checksum, trailer.
inline std::vector<uint8_t> device_frame(uint8_t type, uint8_t command, uint8_t sub,
                                         const std::vector<uint8_t>& values) {
  return framedec::build(type, command, sub, values);
}

// Runs `f` with standard output captured and returns what it printed.
template <typename F>
std::string printed(F&& f) {
  fflush(stdout);
  ::testing::internal::CaptureStdout();
  f();
  fflush(stdout);
  return ::testing::internal::GetCapturedStdout();
}

// Each frame decoded as the device reads it ("BASIC  BASIC_USB_TYPE  value=1"), blanks collapsed.
inline std::vector<std::string> decoded(const Frames& frames) {
  std::vector<std::string> lines;
  for (const auto& f : frames)
    lines.push_back(framedec::normalize(framedec::decode(f, framedec::Direction::FROM_UI)));
  return lines;
}

class PageTest : public ::testing::Test {
 protected:
  // Queue keys of the fixture's link: key_base + 2 * (process id); areas may pick their own base.
  explicit PageTest(int key_base = 0x5C000000) : key_base_(key_base) {}

  void SetUp() override {
    g_free_mib = 4000;
    Get_StorageData_set_statfs(fake_statfs);
    ASSERT_TRUE(home_scene_start(key_base_));
    int send_key = 0, recv_key = 0;
    Inf_GetMsgKeys(&send_key, &recv_key);
    send_q_ = msgget(send_key, 0);
    recv_q_ = msgget(recv_key, 0);
    ASSERT_GE(send_q_, 0);
    ASSERT_GE(recv_q_, 0);
    home_scene_records();
  }

  void TearDown() override {
    home_scene_stop();
    Get_StorageData_set_statfs(nullptr);
    tk_testing_reset();
  }

  // Opens a page by name through the navigator (its init runs with `ctx`) and runs the open
  // sequence; the page becomes win_. What the opening sent goes to init_frames_.
  widget_t* open(const char* name, void* ctx = nullptr) {
    navigator_to_with_context(name, ctx);
    tk_testing_advance(0);
    win_ = widget_child(window_manager(), name);
    init_frames_ = sent_frames();
    return win_;
  }
  // The window now on top (after a page opened another).
  widget_t* top() const { return window_manager_get_top_window(window_manager()); }
  std::string top_name() const {
    widget_t* t = top();
    return t != nullptr && t->name != nullptr ? t->name : "";
  }

  widget_t* w(const char* name) const { return widget_lookup(win_, name, TRUE); }
  bool shown(const char* name) const {
    widget_t* widget = w(name);
    return widget != nullptr && widget->visible;
  }
  Box box(const char* name) const {
    widget_t* widget = w(name);
    if (widget == nullptr) return {-9999, -9999, -9999, -9999};
    return {widget->x, widget->y, widget->w, widget->h};
  }
  std::string text(const char* name) const {
    char buf[256] = {0};
    widget_get_text_utf8(w(name), buf, sizeof(buf));
    return buf;
  }
  std::string image(const char* name) const {
    const char* v = widget_get_prop_str(w(name), "image", "");
    return v != nullptr ? v : "";
  }
  std::string state(const char* name) const {
    widget_t* widget = w(name);
    return widget != nullptr && widget->state != nullptr ? widget->state : "";
  }
  // A style colour as the painter resolves it; 0x12345678 when there is none.
  uint32_t color(const char* name, const char* prop = "bg_color") const {
    uint32_t c = 0x12345678;
    return tk_testing_style_color(w(name), prop, &c) ? c : 0x12345678;
  }

  // A key pressed and released through the main loop (the device's button frames end so).
  void key(uint32_t code) { tk_testing_key_hit(code); }
  // Runs the test clock.
  void advance(uint32_t ms) { tk_testing_advance(ms); }
  void screen_event(int offset) { home_scene_raise(offset); }

  // Sends a frame from the "device" on the UI's receive queue and waits until the listener
  // thread has handled it and the UI thread has run what it handed over.
  void from_device(const std::vector<uint8_t>& frame) {
    Inf_MsgEvent m{};
    m.msg_type = MSG_RECV_TYPE;
    m.msg_text.type = MSG_TYPE_FRAMED;
    m.msg_text.command = 0xFF;
    m.msg_text.length = static_cast<uint32_t>(frame.size());
    std::memcpy(m.msg_text.context, frame.data(), frame.size());
    const uint64_t before = Inf_MsgReceivedCount();
    ASSERT_EQ(msgsnd(recv_q_, &m, MSG_TEXT_SIZE, 0), 0);
    // This thread holds the shared records (it is the user interface thread): it lets the
    // listener have them while it waits.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (Inf_MsgReceivedCount() == before && std::chrono::steady_clock::now() < deadline) {
      records_sleep_ms(0);
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    ASSERT_GT(Inf_MsgReceivedCount(), before) << "the listener never took the frame";
    home_scene_settle();
  }

  // Frames the UI has sent since the last call (contexts cut to their length).
  Frames sent_frames() {
    Frames frames;
    Inf_MsgEvent m{};
    while (msgrcv(send_q_, &m, MSG_TEXT_SIZE, MSG_SEND_TYPE, IPC_NOWAIT) >= 0) {
      frames.emplace_back(m.msg_text.context, m.msg_text.context + m.msg_text.length);
    }
    return frames;
  }
  // The frames sent since the last call, decoded as the device reads them.
  std::vector<std::string> sent() { return decoded(sent_frames()); }
  // Of `frames`, those with this type, command and sub-command (bytes 2, 3, 4).
  static Frames matching(const Frames& frames, uint8_t type, uint8_t command, uint8_t sub) {
    Frames out;
    for (const auto& f : frames) {
      if (f.size() > 4 && f[2] == type && f[3] == command && f[4] == sub) out.push_back(f);
    }
    return out;
  }

  int key_base_;
  int send_q_ = -1;
  int recv_q_ = -1;
  widget_t* win_ = nullptr;
  Frames init_frames_;
};

}  // namespace page_test

#endif  // SCOPE_TESTS_COMMON_PAGE_FIXTURE_H
