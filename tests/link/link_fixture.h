// Test fixture of the device link: the UI's real link on private queues, the test thread as the
// user interface thread (test clock), and the device's end of both queues in the test.
//
// Frames reach the UI the way the device sends them (msgsnd on the receive queue, picked up by
// the listener thread); frames the UI sends are read back from its send queue. Screen events and
// keys are logged, in the order the window manager receives them.
#ifndef SCOPE_TESTS_LINK_LINK_FIXTURE_H
#define SCOPE_TESTS_LINK_LINK_FIXTURE_H

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "awtk.h"
#include "common/status_records.h"
#include "framedec.h"
#include "msg/msg.h"
#include "msg/msghandler.h"
#include "tk_testing.h"

namespace linktest {

using Frame = std::vector<uint8_t>;

// Keys in the log: -(code * 2 + 1) for a press, -(code * 2) for a release; events stay positive.
constexpr int press_of(uint32_t code) {
  return -static_cast<int>(code * 2 + 1);
}
constexpr int release_of(uint32_t code) {
  return -static_cast<int>(code * 2);
}
inline std::vector<int> hit(uint32_t code) {
  return {press_of(code), release_of(code)};
}

// Frames the device sends, and the message that carries one.
Frame frame(uint8_t type, uint8_t command, uint8_t sub, std::vector<uint8_t> values = {});
Frame key(uint8_t button);
std::vector<uint8_t> le16(int v);
Inf_MsgEvent message(const Frame& f, uint8_t text_type = MSG_TYPE_FRAMED);

// What `f` printed on standard output.
template <typename F>
std::string output_of(F&& f) {
  testing::internal::CaptureStdout();
  f();
  std::fflush(stdout);
  return testing::internal::GetCapturedStdout();
}

class LinkTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // ---- the device's end ----
  // Sends the frames to the UI as the device does (back to back) and waits until the listener
  // has handled them all.
  void deliver_all(const std::vector<Frame>& frames);
  void deliver(const Frame& f) { deliver_all({f}); }
  void deliver_message(const Inf_MsgEvent& event, size_t size = MSG_TEXT_SIZE);
  // Frames the UI sent since the last call: raw, or decoded (blanks collapsed) or in hex.
  std::vector<Frame> sent_frames();
  std::vector<std::string> sent(bool hex = false);

  // ---- the UI thread ----
  // Runs the main loop until the link has nothing left for the UI thread.
  void pump();
  // The screen events (true), or the keys, of the log.
  std::vector<int> logged(bool events) const;
  std::vector<int> events() const { return logged(true); }
  std::vector<int> keys() const { return logged(false); }
  // Pumps, returns the events of the log and clears it.
  std::vector<int> take_events();
  // Opens an empty window named `name` on top (without its page init).
  widget_t* open_window(const char* name);
  // Writes minimal layouts of these windows into a private resource tree, so navigator_to
  // opens them whatever the product's layouts hold.
  void use_windows(std::initializer_list<const char*> names);
  // Name of the window on top now ("" when none).
  static std::string top_window();

  std::vector<int> log_;
  std::vector<std::string> key_windows_;  // the window on top when each key arrived
  // For an event of readers_, seen_ holds what its reader returned at each dispatch: the value
  // its page would see.
  std::map<int, int (*)()> readers_;
  std::map<int, std::vector<int>> seen_;
  int device_out_ = -1;  // the UI's receive queue, written by the device
  std::string root_;     // SCOPE_UI_ROOT of this test

 private:
  static ret_t on_event(void* ctx, event_t* e);
  int device_in_ = -1;  // the UI's send queue, read by the device
  uint64_t delivered_ = 0;
};

}  // namespace linktest

#endif  // SCOPE_TESTS_LINK_LINK_FIXTURE_H
