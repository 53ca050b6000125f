#include "link_fixture.h"

#include "common/records_lock.h"

#include <sys/ipc.h>
#include <sys/msg.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>

namespace linktest {

Frame frame(uint8_t type, uint8_t command, uint8_t sub, std::vector<uint8_t> values) {
  return framedec::build(type, command, sub, values);
}

Frame key(uint8_t button) {
  return frame(7, 0, 0, {button});
}

std::vector<uint8_t> le16(int v) {
  return {static_cast<uint8_t>(v & 0xFF), static_cast<uint8_t>((v >> 8) & 0xFF)};
}

Inf_MsgEvent message(const Frame& f, uint8_t text_type) {
  Inf_MsgEvent event;
  std::memset(&event, 0, sizeof(event));
  event.msg_type = MSG_RECV_TYPE;
  event.msg_text.type = text_type;
  event.msg_text.length = static_cast<uint32_t>(f.size());
  if (!f.empty()) std::memcpy(event.msg_text.context, f.data(), f.size());
  return event;
}

void LinkTest::SetUp() {
  // Private queue keys of this process; every case starts on empty queues.
  const int send_key = 0x4C000000 | ((static_cast<int>(getpid()) & 0x7FFFFF) << 1);
  setenv(MSG_KEYS_ENV, (std::to_string(send_key) + "," + std::to_string(send_key + 1)).c_str(), 1);
  for (int k : {send_key, send_key + 1}) {
    const int id = msgget(k, 0);
    if (id != -1) msgctl(id, IPC_RMID, nullptr);
  }
  root_ =
      (std::filesystem::temp_directory_path() / ("link-test-" + std::to_string(getpid()))).string();
  std::filesystem::create_directories(root_ + "/usrdata/release");
  setenv("SCOPE_UI_ROOT", root_.c_str(), 1);

  tk_testing_init();
  Inf_LinkReset();
  std::memset(&stDevStatus, 0, sizeof(stDevStatus));
  std::memset(&stUIStatus, 0, sizeof(stUIStatus));
  std::memset(&IR_Cursor, 0, sizeof(IR_Cursor));
  std::memset(&result_ball, 0, sizeof(result_ball));
  std::memset(info, 0, sizeof(info));

  ASSERT_EQ(Inf_InitMsgEvent(msgEventCallback), 0);
  device_in_ = msgget(send_key, 0);
  device_out_ = msgget(send_key + 1, 0);
  ASSERT_NE(device_in_, -1);
  ASSERT_NE(device_out_, -1);
  delivered_ = Inf_MsgReceivedCount();
  for (int offset = 0; offset < 128; ++offset)
    widget_on(window_manager(), EVT_USER_START + offset, on_event, this);
  widget_on(window_manager(), EVT_KEY_DOWN, on_event, this);
  widget_on(window_manager(), EVT_KEY_UP, on_event, this);
}

void LinkTest::TearDown() {
  Inf_DeinitMsgEvent();
  std::error_code ec;
  std::filesystem::remove_all(root_, ec);
}

ret_t LinkTest::on_event(void* ctx, event_t* e) {
  auto* self = static_cast<LinkTest*>(ctx);
  const int type = static_cast<int>(e->type);
  if (type == EVT_KEY_DOWN || type == EVT_KEY_UP) {
    const uint32_t code = key_event_cast(e)->key;
    self->log_.push_back(type == EVT_KEY_DOWN ? press_of(code) : release_of(code));
    self->key_windows_.push_back(top_window());
    return RET_OK;
  }
  self->log_.push_back(type);
  auto reader = self->readers_.find(type);
  if (reader != self->readers_.end()) self->seen_[type].push_back(reader->second());
  return RET_OK;
}

void LinkTest::deliver_all(const std::vector<Frame>& frames) {
  // The listener is a real thread. The test thread is the user interface thread and holds the
  // shared records: while it waits for the queue to take a frame, and then for the listener to
  // handle them all, it lets the listener have them (as the main loop's gate does, without
  // running the main loop). On any other thread this is a plain wait.
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  for (const Frame& f : frames) {
    const Inf_MsgEvent event = message(f);
    while (msgsnd(device_out_, &event, MSG_TEXT_SIZE, IPC_NOWAIT) != 0) {
      ASSERT_EQ(errno, EAGAIN);
      ASSERT_LT(std::chrono::steady_clock::now(), deadline) << "the queue stayed full";
      records_sleep_ms(0);
      std::this_thread::sleep_for(std::chrono::microseconds(50));
    }
    delivered_++;
  }
  while (Inf_MsgReceivedCount() < delivered_) {
    ASSERT_LT(std::chrono::steady_clock::now(), deadline) << "the listener did not take the frames";
    records_sleep_ms(0);
    std::this_thread::sleep_for(std::chrono::microseconds(50));
  }
}

void LinkTest::deliver_message(const Inf_MsgEvent& event, size_t size) {
  ASSERT_EQ(msgsnd(device_out_, &event, size, 0), 0);
  delivered_++;
  deliver_all({});
}

std::vector<Frame> LinkTest::sent_frames() {
  std::vector<Frame> frames;
  Inf_MsgEvent event;
  while (msgrcv(device_in_, &event, MSG_TEXT_SIZE, MSG_SEND_TYPE, IPC_NOWAIT) >= 0) {
    EXPECT_EQ(event.msg_text.type, 1);
    EXPECT_EQ(event.msg_text.command, 0xFF);
    frames.emplace_back(event.msg_text.context, event.msg_text.context + event.msg_text.length);
  }
  return frames;
}

std::vector<std::string> LinkTest::sent(bool hex) {
  std::vector<std::string> out;
  for (const Frame& f : sent_frames()) {
    out.push_back(hex ? framedec::hex(f)
                      : framedec::normalize(framedec::decode(f, framedec::Direction::FROM_UI)));
  }
  return out;
}

void LinkTest::pump() {
  for (int i = 0; i < 100000; ++i) {
    tk_testing_advance(0);
    if (Inf_LinkIsIdle() && tk_testing_queue_length() == 0) return;
  }
  FAIL() << "the link did not settle";
}

std::vector<int> LinkTest::logged(bool events) const {
  std::vector<int> out;
  for (int item : log_)
    if ((item > 0) == events) out.push_back(item);
  return out;
}

std::vector<int> LinkTest::take_events() {
  pump();
  std::vector<int> out = events();
  log_.clear();
  return out;
}

std::string LinkTest::top_window() {
  widget_t* top = window_manager_get_top_window(window_manager());
  return top != nullptr && top->name != nullptr ? top->name : "";
}

void LinkTest::use_windows(std::initializer_list<const char*> names) {
  const std::string res = root_ + "/res";
  std::filesystem::create_directories(res + "/assets/default/raw/ui");
  for (const char* name : names) {
    std::ofstream(res + "/assets/default/raw/ui/" + name + ".xml")
        << "<window name=\"" << name << "\" x=\"0\" y=\"0\" w=\"1280\" h=\"1024\"/>\n";
  }
  tk_testing_set_app_root(res.c_str());
}

widget_t* LinkTest::open_window(const char* name) {
  const std::string xml =
      std::string("<window name=\"") + name + "\" x=\"0\" y=\"0\" w=\"1280\" h=\"1024\"/>";
  widget_t* win = tk_testing_open_xml(name, xml.c_str());
  EXPECT_NE(win, nullptr);
  tk_testing_advance(0);
  return win;
}

}  // namespace linktest
