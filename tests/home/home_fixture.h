// The observation screen under test, driven the way the device drives it: the real layout opened
// by name through the navigator, frames from the "device" on the link's receive queue (private
// keys per test process), screen events through event_distrubution, keys through the main loop,
// timers on the test clock. Frames the UI sends are read back from its send queue.
#ifndef SCOPE_TESTS_HOME_HOME_FIXTURE_H
#define SCOPE_TESTS_HOME_HOME_FIXTURE_H

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

#include "common/Zavo_reticle_zoom.h"
#include "common/common_function.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "home_scene.h"
#include "msg/msg.h"
#include "msg/msghandler.h"
#include "pages/Zavo_home_page_1.h"
#include "pages/Zavo_home_page_1_overlay.h"
#include "tk_testing.h"

namespace home_test {

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
  const size_t n = values.size() + 6;  // the bytes the checksum covers
  std::vector<uint8_t> f(n + 3, 0);
  f[0] = 0xAA;
  f[1] = static_cast<uint8_t>(n);
  f[2] = type;
  f[3] = command;
  f[4] = sub;
  std::copy(values.begin(), values.end(), f.begin() + 6);
  for (size_t i = 0; i < n; ++i)
    f[n] = static_cast<uint8_t>(f[n] + f[i]);
  f[n + 1] = 0xEB;
  f[n + 2] = 0xAA;
  return f;
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

class HomeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    g_free_mib = 4000;
    Get_StorageData_set_statfs(fake_statfs);
    ASSERT_TRUE(home_scene_start(0x5C000000));
    int send_key = 0, recv_key = 0;
    Inf_GetMsgKeys(&send_key, &recv_key);
    send_q_ = msgget(send_key, 0);
    recv_q_ = msgget(recv_key, 0);
    ASSERT_GE(send_q_, 0);
    ASSERT_GE(recv_q_, 0);
    home_scene_records();
    stDevStatus.s8CompassSwitch = 1;
  }

  void TearDown() override {
    home_scene_stop();
    Get_StorageData_set_statfs(nullptr);
    tk_testing_reset();
  }

  // Opens the observation screen through the navigator (its init runs); what init sent goes to
  // init_frames_.
  void open_home() {
    win_ = home_scene_open();
    ASSERT_NE(win_, nullptr);
    init_frames_ = sent_frames();
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
    char buf[128] = {0};
    widget_get_text_utf8(w(name), buf, sizeof(buf));
    return buf;
  }
  std::string image(const char* name) const {
    const char* v = widget_get_prop_str(w(name), "image", "");
    return v != nullptr ? v : "";
  }
  // A style colour as the painter resolves it; 0x12345678 when there is none.
  uint32_t color(const char* name, const char* prop = "bg_color") const {
    uint32_t c = 0x12345678;
    return tk_testing_style_color(w(name), prop, &c) ? c : 0x12345678;
  }

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
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (Inf_MsgReceivedCount() == before && std::chrono::steady_clock::now() < deadline) {
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    ASSERT_GT(Inf_MsgReceivedCount(), before) << "the listener never took the frame";
    home_scene_settle();
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

  // Frames the UI has sent since the last call (contexts cut to their length).
  Frames sent_frames() {
    Frames frames;
    Inf_MsgEvent m{};
    while (msgrcv(send_q_, &m, MSG_TEXT_SIZE, MSG_SEND_TYPE, IPC_NOWAIT) >= 0) {
      frames.emplace_back(m.msg_text.context, m.msg_text.context + m.msg_text.length);
    }
    return frames;
  }
  // Of `frames`, those with this type, command and sub-command (bytes 2, 3, 4).
  static Frames matching(const Frames& frames, uint8_t type, uint8_t command, uint8_t sub) {
    Frames out;
    for (const auto& f : frames) {
      if (f.size() > 4 && f[2] == type && f[3] == command && f[4] == sub) out.push_back(f);
    }
    return out;
  }

  int send_q_ = -1;
  int recv_q_ = -1;
  widget_t* win_ = nullptr;
  Frames init_frames_;
};

}  // namespace home_test

#endif  // SCOPE_TESTS_HOME_HOME_FIXTURE_H
