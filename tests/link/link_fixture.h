// Test fixture of the device link: the UI's real link on private queues, the test thread as the
// user interface thread (test clock), and the device's end of both queues in the test.
//
// Frames reach the UI the way the device sends them (msgsnd on the receive queue, picked up by
// the listener thread); frames the UI sends are read back from its send queue. Screen events
// are recorded from the window manager, keys from a window opened on top.
#ifndef SCOPE_TESTS_LINK_LINK_FIXTURE_H
#define SCOPE_TESTS_LINK_LINK_FIXTURE_H

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
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

struct KeySeen {
  bool down;
  uint32_t key;
  bool operator==(const KeySeen& o) const { return down == o.down && key == o.key; }
};

// A press and its release, as the pages receive them.
inline std::vector<KeySeen> hit(uint32_t key) {
  return {{true, key}, {false, key}};
}

// Private queue keys of this test process (each test case runs in its own process).
void private_keys(int* send_key, int* recv_key);

// Every screen event that reaches the window manager, in order.
class EventLog {
 public:
  void attach();  // subscribes to EVT_USER_START + 0 .. 127
  const std::vector<int>& events() const { return events_; }
  void clear() { events_.clear(); }
  size_t count(int event) const;

 private:
  static ret_t on_event(void* ctx, event_t* e);
  std::vector<int> events_;
};

class LinkTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // ---- the device's end ----
  // Sends `frame` to the UI as the device does and waits until the listener has handled it.
  void deliver(const Frame& frame);
  // Same for many frames, sent back to back; waits for all.
  void deliver_all(const std::vector<Frame>& frames);
  // Sends raw message bytes as the context, with the given Inf_MsgText.type.
  void deliver_raw(const Frame& bytes, uint8_t text_type = MSG_TYPE_FRAMED);
  // Sends a whole queue message of `size` bytes (520 normally) and waits for the listener.
  void deliver_message(const Inf_MsgEvent& event, size_t size);
  // Frames the UI sent since the last call, decoded; and raw.
  std::vector<std::string> sent_decoded();
  std::vector<Frame> sent_frames();

  // ---- the UI thread ----
  // Runs the main loop until the link has nothing left for the UI thread.
  void pump();
  // Opens an empty window named `name` on top (without its page init).
  widget_t* open_window(const char* name);
  // Writes minimal layouts of these windows into a private resource tree, so navigator_to
  // opens them whatever the product's layouts hold.
  void use_windows(std::initializer_list<const char*> names);
  // Name of the window on top now ("" when none).
  static std::string top_window();
  // Keys that reached the window manager (the end of every key's path), and the name of the
  // window on top when each arrived.
  std::vector<KeySeen> keys() const { return keys_; }
  std::vector<std::string> key_windows() const { return key_windows_; }

  EventLog log_;
  int send_key_ = 0;
  int recv_key_ = 0;
  int device_in_ = -1;   // the UI's send queue, read by the device
  int device_out_ = -1;  // the UI's receive queue, written by the device
  std::string root_;     // SCOPE_UI_ROOT of this test
  std::vector<KeySeen> keys_;
  std::vector<std::string> key_windows_;

 private:
  void wait_received(uint64_t target);
  static ret_t on_key(void* ctx, event_t* e);
  uint64_t delivered_ = 0;
};

// Shorthands for frames the device sends.
Frame frame(uint8_t type, uint8_t command, uint8_t sub, std::vector<uint8_t> values = {});
Frame key(uint8_t button);

}  // namespace linktest

#endif  // SCOPE_TESTS_LINK_LINK_FIXTURE_H
