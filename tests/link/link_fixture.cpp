#include "link_fixture.h"

#include <sys/ipc.h>
#include <sys/msg.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <thread>

#include "base/keys.h"

namespace linktest {

void private_keys(int* send_key, int* recv_key) {
  const int pid = static_cast<int>(getpid());
  *send_key = 0x4C000000 | ((pid & 0x7FFFFF) << 1);
  *recv_key = *send_key + 1;
}

void EventLog::attach() {
  for (int offset = 0; offset < 128; ++offset) {
    widget_on(window_manager(), EVT_USER_START + offset, on_event, this);
  }
}

size_t EventLog::count(int event) const {
  size_t n = 0;
  for (int e : events_)
    n += e == event ? 1 : 0;
  return n;
}

ret_t EventLog::on_event(void* ctx, event_t* e) {
  static_cast<EventLog*>(ctx)->events_.push_back(static_cast<int>(e->type));
  return RET_OK;
}

void LinkTest::SetUp() {
  private_keys(&send_key_, &recv_key_);
  const std::string keys = std::to_string(send_key_) + "," + std::to_string(recv_key_);
  setenv(MSG_KEYS_ENV, keys.c_str(), 1);

  root_ =
      (std::filesystem::temp_directory_path() / ("link-test-" + std::to_string(getpid()))).string();
  std::filesystem::create_directories(root_ + "/usrdata/release");
  setenv("SCOPE_UI_ROOT", root_.c_str(), 1);

  tk_testing_init();
  std::memset(&stDevStatus, 0, sizeof(stDevStatus));
  std::memset(&stUIStatus, 0, sizeof(stUIStatus));
  std::memset(&IR_Cursor, 0, sizeof(IR_Cursor));
  std::memset(&result_ball, 0, sizeof(result_ball));
  std::memset(info, 0, sizeof(info));

  // Queues left over by a crashed run of a process with the same id start empty again.
  for (int key : {send_key_, recv_key_}) {
    int id = msgget(key, 0);
    if (id != -1) msgctl(id, IPC_RMID, nullptr);
  }
  ASSERT_EQ(Inf_InitMsgEvent(msgEventCallback), 0);
  device_in_ = msgget(send_key_, 0);
  device_out_ = msgget(recv_key_, 0);
  ASSERT_NE(device_in_, -1);
  ASSERT_NE(device_out_, -1);
  delivered_ = Inf_MsgReceivedCount();
  log_.attach();
  widget_on(window_manager(), EVT_KEY_DOWN, on_key, this);
  widget_on(window_manager(), EVT_KEY_UP, on_key, this);
}

void LinkTest::TearDown() {
  Inf_DeinitMsgEvent();
  std::error_code ec;
  std::filesystem::remove_all(root_, ec);
}

void LinkTest::wait_received(uint64_t target) {
  // The listener is a real thread: wait (in real time, briefly) until it has handled them.
  auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (Inf_MsgReceivedCount() < target) {
    ASSERT_LT(std::chrono::steady_clock::now(), deadline) << "the listener did not take the frames";
    std::this_thread::sleep_for(std::chrono::microseconds(50));
  }
}

void LinkTest::deliver_raw(const Frame& bytes, uint8_t text_type) {
  Inf_MsgEvent event;
  std::memset(&event, 0, sizeof(event));
  event.msg_type = MSG_RECV_TYPE;
  event.msg_text.type = text_type;
  event.msg_text.length = static_cast<uint32_t>(bytes.size());
  std::memcpy(event.msg_text.context, bytes.data(), bytes.size());
  deliver_message(event, MSG_TEXT_SIZE);
}

void LinkTest::deliver_message(const Inf_MsgEvent& event, size_t size) {
  ASSERT_EQ(msgsnd(device_out_, &event, size, 0), 0);
  delivered_++;
  wait_received(delivered_);
}

void LinkTest::deliver(const Frame& f) {
  deliver_raw(f);
}

void LinkTest::deliver_all(const std::vector<Frame>& frames) {
  for (const Frame& f : frames) {
    Inf_MsgEvent event;
    std::memset(&event, 0, sizeof(event));
    event.msg_type = MSG_RECV_TYPE;
    event.msg_text.type = MSG_TYPE_FRAMED;
    event.msg_text.length = static_cast<uint32_t>(f.size());
    std::memcpy(event.msg_text.context, f.data(), f.size());
    // Blocking send: the listener drains the queue while the test fills it.
    ASSERT_EQ(msgsnd(device_out_, &event, MSG_TEXT_SIZE, 0), 0);
    delivered_++;
  }
  wait_received(delivered_);
}

std::vector<Frame> LinkTest::sent_frames() {
  std::vector<Frame> frames;
  for (;;) {
    Inf_MsgEvent event;
    ssize_t got = msgrcv(device_in_, &event, MSG_TEXT_SIZE, MSG_SEND_TYPE, IPC_NOWAIT);
    if (got < 0) break;
    EXPECT_EQ(got, static_cast<ssize_t>(MSG_TEXT_SIZE));
    EXPECT_EQ(event.msg_text.type, 1);
    EXPECT_EQ(event.msg_text.command, 0xFF);
    frames.emplace_back(event.msg_text.context, event.msg_text.context + event.msg_text.length);
  }
  return frames;
}

std::vector<std::string> LinkTest::sent_decoded() {
  std::vector<std::string> out;
  for (const Frame& f : sent_frames()) {
    out.push_back(framedec::normalize(framedec::decode(f, framedec::Direction::FROM_UI)));
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

ret_t LinkTest::on_key(void* ctx, event_t* e) {
  auto* self = static_cast<LinkTest*>(ctx);
  key_event_t* k = key_event_cast(e);
  if (k != nullptr) {
    self->keys_.push_back({e->type == EVT_KEY_DOWN, k->key});
    self->key_windows_.push_back(top_window());
  }
  return RET_OK;
}

std::string LinkTest::top_window() {
  widget_t* top = window_manager_get_top_window(window_manager());
  return top != nullptr && top->name != nullptr ? top->name : "";
}

void LinkTest::use_windows(std::initializer_list<const char*> names) {
  const std::string res = root_ + "/res";
  const std::string ui = res + "/assets/default/raw/ui";
  std::filesystem::create_directories(ui);
  for (const char* name : names) {
    FILE* f = std::fopen((ui + "/" + name + ".xml").c_str(), "w");
    ASSERT_NE(f, nullptr);
    std::fprintf(f, "<window name=\"%s\" x=\"0\" y=\"0\" w=\"1280\" h=\"1024\"/>\n", name);
    std::fclose(f);
  }
  tk_testing_set_app_root(res.c_str());
}

widget_t* LinkTest::open_window(const char* name) {
  std::string xml =
      std::string("<window name=\"") + name + "\" x=\"0\" y=\"0\" w=\"1280\" h=\"1024\"/>";
  widget_t* win = tk_testing_open_xml(name, xml.c_str());
  EXPECT_NE(win, nullptr);
  tk_testing_advance(0);
  return win;
}

Frame frame(uint8_t type, uint8_t command, uint8_t sub, std::vector<uint8_t> values) {
  return framedec::build(type, command, sub, values);
}

Frame key(uint8_t button) {
  return framedec::build(7, 0, 0, std::vector<uint8_t>{button});
}

}  // namespace linktest
