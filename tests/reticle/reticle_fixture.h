// The observation screen's overlay under test. The real layout is opened by name: either through
// the navigator, so that the home page's init draws it (subscriptions included), or bare, so that
// one overlay function at a time can be called on it as the init and the subscription table do.
// Screen events go through event_distrubution, device frames through the link's receive queue
// (private queue keys per test process), timers on the test clock.
#ifndef SCOPE_TESTS_RETICLE_RETICLE_FIXTURE_H
#define SCOPE_TESTS_RETICLE_RETICLE_FIXTURE_H

#include <gtest/gtest.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "common/Zavo_reticle_zoom.h"
#include "common/common_function.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msg.h"
#include "msg/msghandler.h"
#include "pages/Zavo_home_page_1_overlay.h"
#include "tk_testing.h"

namespace reticle_test {

inline int plenty_of_space(const char*, struct statfs* out) {
  std::memset(out, 0, sizeof(*out));
  out->f_bsize = 4096;
  out->f_blocks = 8ull * 1024 * 1024 * 1024 / 4096;
  out->f_bavail = 4000ull * 256;
  out->f_bfree = out->f_bavail;
  return 0;
}

// A frame as the device application sends it.
inline std::vector<uint8_t> device_frame(uint8_t type, uint8_t command, uint8_t sub,
                                         std::vector<uint8_t> values) {
  std::vector<uint8_t> f = {0xAA, 0, type, command, sub, 0};
  f.insert(f.end(), values.begin(), values.end());
  f[1] = static_cast<uint8_t>(f.size());
  uint8_t sum = 0;
  for (uint8_t b : f)
    sum = static_cast<uint8_t>(sum + b);
  f.push_back(sum);
  f.push_back(0xEB);
  f.push_back(0xAA);
  return f;
}

struct Box {
  int x, y, w, h;
  bool operator==(const Box& o) const = default;
};
inline std::ostream& operator<<(std::ostream& os, const Box& b) {
  return os << "(" << b.x << ", " << b.y << ", " << b.w << ", " << b.h << ")";
}

class ReticleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const int base = 0x5D000000 + (static_cast<int>(getpid()) & 0xFFFFF) * 2;
    const std::string keys = std::to_string(base) + "," + std::to_string(base + 1);
    setenv(MSG_KEYS_ENV, keys.c_str(), 1);
    int send_key = 0, recv_key = 0;
    Inf_GetMsgKeys(&send_key, &recv_key);
    ASSERT_EQ(send_key, base);

    tk_testing_init();
    Get_StorageData_set_statfs(plenty_of_space);
    ASSERT_EQ(Inf_InitMsgEvent(msgEventCallback), 0);
    send_q_ = msgget(send_key, 0);
    recv_q_ = msgget(recv_key, 0);
    ASSERT_GE(send_q_, 0);
    ASSERT_GE(recv_q_, 0);

    std::memset(&stDevStatus, 0, sizeof(stDevStatus));
    std::memset(&stUIStatus, 0, sizeof(stUIStatus));
    std::memset(&IR_Cursor, 0, sizeof(IR_Cursor));
    std::memset(&result_ball, 0, sizeof(result_ball));
    std::memset(info, 0, sizeof(info));
    stUIStatus.event_distrubut_reday = 1;  // the first full status has arrived
    stUIStatus.s8IRZoom = 100;
    stDevStatus.s8ReticleSwitch = 1;
    set_cursor(640, 512);
    stDevStatus.s16RangeOffsetX = 640;
    stDevStatus.s16RangeOffsetY = 512;
    stDevStatus.s16LaserIndicatX = 640;
    stDevStatus.s16LaserIndicatY = 512;
  }

  void TearDown() override {
    Inf_DeinitMsgEvent();
    Get_StorageData_set_statfs(nullptr);
    tk_testing_reset();
  }

  // Every zero of every group at (x, y).
  static void set_cursor(int16_t x, int16_t y) {
    for (auto& group : IR_Cursor.group) {
      for (auto& zero : group.zero) {
        zero.s8IrCursorCurrentX = x;
        zero.s8IrCursorCurrentY = y;
      }
    }
  }

  // The observation screen through the navigator: its init draws the overlay.
  void open_home() {
    ASSERT_EQ(navigator_to("Zavo_home_page_1"), RET_OK);
    tk_testing_advance(0);
    win_ = widget_child(window_manager(), "Zavo_home_page_1");
    ASSERT_NE(win_, nullptr);
    drain_sent();
  }

  // The bare layout, no init: the overlay functions are called one by one.
  void open_layout() {
    win_ = window_open("Zavo_home_page_1");
    ASSERT_NE(win_, nullptr);
    tk_testing_advance(0);
  }

  widget_t* w(const char* name) const { return widget_lookup(win_, name, TRUE); }
  Box box(const char* name) const {
    widget_t* widget = w(name);
    if (widget == nullptr) return {-9999, -9999, -9999, -9999};
    return {widget->x, widget->y, widget->w, widget->h};
  }
  bool shown(const char* name) const {
    widget_t* widget = w(name);
    return widget != nullptr && widget->visible;
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
  uint32_t color(const char* name, const char* prop) const {
    uint32_t c = 0x12345678;
    if (!tk_testing_style_color(w(name), prop, &c)) return 0x12345678;
    return c;
  }
  uint32_t bg(const char* name) const { return color(name, "bg_color"); }

  // Raises screen event EVT_USER_START + offset as the device link does and runs it.
  void screen_event(int offset) {
    event_distrubution(EVT_USER_START + offset);
    settle();
  }

  // A frame from the "device" on the UI's receive queue, handled by the listener and the UI.
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
    settle();
  }

  // The electronic zoom as the device reports it (type 1, INFRARED_ZOOM, hundredths).
  void zoom_report(int16_t hundredths) {
    const auto v = static_cast<uint16_t>(hundredths);
    from_device(
        device_frame(1, 0, INFRARED_ZOOM, {static_cast<uint8_t>(v), static_cast<uint8_t>(v >> 8)}));
  }

  // A ballistic solution (type 27): moaV and moaH as two little-endian floats.
  void solution_report(float moa_v, float moa_h) {
    std::vector<uint8_t> values(8);
    std::memcpy(values.data(), &moa_v, 4);
    std::memcpy(values.data() + 4, &moa_h, 4);
    from_device(device_frame(27, 0, 0, values));
  }

  void settle() {
    for (int i = 0; i < 8; ++i) {
      tk_testing_advance(0);
      if (Inf_LinkIsIdle()) break;
    }
  }

  void drain_sent() {
    Inf_MsgEvent m{};
    while (msgrcv(send_q_, &m, MSG_TEXT_SIZE, MSG_SEND_TYPE, IPC_NOWAIT) >= 0) {
    }
  }

  int send_q_ = -1;
  int recv_q_ = -1;
  widget_t* win_ = nullptr;
};

// Runs `f` with standard output captured and returns what it printed.
template <typename F>
std::string printed(F&& f) {
  fflush(stdout);
  ::testing::internal::CaptureStdout();
  f();
  fflush(stdout);
  return ::testing::internal::GetCapturedStdout();
}

}  // namespace reticle_test

#endif  // SCOPE_TESTS_RETICLE_RETICLE_FIXTURE_H
