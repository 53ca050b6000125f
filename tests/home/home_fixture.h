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
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "common/common_function.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msg.h"
#include "msg/msghandler.h"
#include "pages/Zavo_home_page_1.h"
#include "tk_testing.h"

namespace home_test {

// Free space the fake media volume reports, in MiB (a 8 GiB card).
inline uint64_t g_free_mib = 4000;

inline int fake_statfs(const char*, struct statfs* out) {
  std::memset(out, 0, sizeof(*out));
  out->f_bsize = 4096;
  out->f_blocks = 8ull * 1024 * 1024 * 1024 / 4096;
  out->f_bavail = g_free_mib * 256;
  out->f_bfree = out->f_bavail;
  return 0;
}

// One frame as the device application sends it: header, length, type, command, sub-command,
// reserved, values, checksum, trailer.
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

class HomeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    // Private queues for this process, so parallel tests and a running UI never meet.
    int base = 0x5C000000 + (static_cast<int>(getpid()) & 0xFFFFF) * 2;
    std::string keys = std::to_string(base) + "," + std::to_string(base + 1);
    setenv(MSG_KEYS_ENV, keys.c_str(), 1);
    Inf_GetMsgKeys(&send_key_, &recv_key_);
    ASSERT_EQ(send_key_, base);

    tk_testing_init();
    g_free_mib = 4000;
    Get_StorageData_set_statfs(fake_statfs);
    ASSERT_EQ(Inf_InitMsgEvent(msgEventCallback), 0);
    send_q_ = msgget(send_key_, 0);
    recv_q_ = msgget(recv_key_, 0);
    ASSERT_GE(send_q_, 0);
    ASSERT_GE(recv_q_, 0);

    std::memset(&stDevStatus, 0, sizeof(stDevStatus));
    std::memset(&stUIStatus, 0, sizeof(stUIStatus));
    std::memset(&IR_Cursor, 0, sizeof(IR_Cursor));
    std::memset(&result_ball, 0, sizeof(result_ball));
    std::memset(info, 0, sizeof(info));
    std::memset(&record_status, 0, sizeof(record_status));
    // The first full status has arrived: the home page's init does not wait.
    stUIStatus.event_distrubut_reday = 1;
    stUIStatus.s8IRZoom = 100;
    for (auto& group : IR_Cursor.group) {
      for (auto& zero : group.zero) {
        zero.s8IrCursorCurrentX = 640;
        zero.s8IrCursorCurrentY = 512;
      }
    }
    stDevStatus.s16RangeOffsetX = 640;
    stDevStatus.s16RangeOffsetY = 512;
    stDevStatus.s16LaserIndicatX = 640;
    stDevStatus.s16LaserIndicatY = 512;
    stDevStatus.s8CompassSwitch = 1;
  }

  void TearDown() override {
    Inf_DeinitMsgEvent();
    Get_StorageData_set_statfs(nullptr);
    tk_testing_reset();
  }

  // Opens the observation screen through the navigator (its init runs) and lets it open.
  void open_home() {
    ASSERT_EQ(navigator_to("Zavo_home_page_1"), RET_OK);
    tk_testing_advance(0);
    win_ = widget_child(window_manager(), "Zavo_home_page_1");
    ASSERT_NE(win_, nullptr);
    sent_frames();  // forget what init sent
  }

  widget_t* w(const char* name) const { return widget_lookup(win_, name, TRUE); }
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

  // Raises screen event EVT_USER_START + offset as the device link does and runs it.
  void screen_event(int offset) {
    event_distrubution(EVT_USER_START + offset);
    settle();
  }

  // Sends a frame from the "device" on the UI's receive queue and waits until the listener
  // thread has handled it and the UI thread has run what it handed over.
  void from_device(const std::vector<uint8_t>& frame) {
    Inf_MsgEvent m{};
    m.msg_type = MSG_RECV_TYPE;
    m.msg_text.type = MSG_TYPE_FRAMED;
    m.msg_text.command = 0xFF;
    m.msg_text.length = static_cast<uint32_t>(frame.size());
    std::memcpy(m.msg_text.context, frame.data(), frame.size());
    uint64_t before = Inf_MsgReceivedCount();
    ASSERT_EQ(msgsnd(recv_q_, &m, MSG_TEXT_SIZE, 0), 0);
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (Inf_MsgReceivedCount() == before && std::chrono::steady_clock::now() < deadline) {
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    ASSERT_GT(Inf_MsgReceivedCount(), before) << "the listener never took the frame";
    settle();
  }

  // Battery report: type 15, sub-command 0, the raw value little-endian.
  void battery_report(int16_t value) {
    auto v = static_cast<uint16_t>(value);
    from_device(device_frame(15, 0, 0, {static_cast<uint8_t>(v), static_cast<uint8_t>(v >> 8)}));
  }

  void settle() {
    for (int i = 0; i < 8; ++i) {
      tk_testing_advance(0);
      if (Inf_LinkIsIdle()) break;
    }
  }

  // Frames the UI has sent since the last call (contexts cut to their length).
  std::vector<std::vector<uint8_t>> sent_frames() {
    std::vector<std::vector<uint8_t>> frames;
    Inf_MsgEvent m{};
    while (msgrcv(send_q_, &m, MSG_TEXT_SIZE, MSG_SEND_TYPE, IPC_NOWAIT) >= 0) {
      frames.emplace_back(m.msg_text.context, m.msg_text.context + m.msg_text.length);
    }
    return frames;
  }

  // Of `frames`, those with this type, command and sub-command (bytes 2, 3, 4).
  static std::vector<std::vector<uint8_t>> matching(const std::vector<std::vector<uint8_t>>& frames,
                                                    uint8_t type, uint8_t command, uint8_t sub) {
    std::vector<std::vector<uint8_t>> out;
    for (const auto& f : frames) {
      if (f.size() > 4 && f[2] == type && f[3] == command && f[4] == sub) out.push_back(f);
    }
    return out;
  }

  int send_key_ = 0;
  int recv_key_ = 0;
  int send_q_ = -1;
  int recv_q_ = -1;
  widget_t* win_ = nullptr;
};

}  // namespace home_test

#endif  // SCOPE_TESTS_HOME_HOME_FIXTURE_H
