// Message-queue transport: the two System V queues, the listener thread and the send routine.
//
// The listener thread "MsgEventListen" blocks on the receive queue and hands every message of
// type 4 to the callback (msghandler's inbound dispatch), holding the shared records while the
// callback applies it (common/records_lock.h). Sends go out on the send queue with IPC_NOWAIT
// from whichever thread calls, one system call each, so no lock is taken for them.
#include "msg/msg.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <pthread.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <atomic>

#include "common/records_lock.h"

namespace {

constexpr int MSG_QUEUE_FLAGS = IPC_CREAT | 0777;
constexpr size_t MSG_CONTEXT_SIZE = sizeof(Inf_MsgText::context);

// The link's single state record. The identifiers start invalid so that a send before
// Inf_InitMsgEvent fails cleanly instead of landing on queue 0.
Inf_MsgNode node = {-1, -1, nullptr};

std::atomic<uint64_t> received_count{0};
thread_local bool listener_thread = false;

InfMsgEventCallback load_callback() {
  return __atomic_load_n(&node.callback, __ATOMIC_ACQUIRE);
}

void store_callback(InfMsgEventCallback callback) {
  __atomic_store_n(&node.callback, callback, __ATOMIC_RELEASE);
}

// The queue identifiers are read by the listener and by senders on any thread while the link
// may be closed on another: each is read and written as one word.
int32_t load_id(const int32_t* id) {
  return __atomic_load_n(id, __ATOMIC_ACQUIRE);
}

void store_id(int32_t* id, int32_t value) {
  __atomic_store_n(id, value, __ATOMIC_RELEASE);
}

}  // namespace

int32_t Inf_InitMsgEvent(InfMsgEventCallback callback) {
  std::puts("<MsgEvent> init msg client event!");
  // The thread that starts the link is the user interface thread: it holds the shared records
  // from now on, and the listener takes them frame by frame.
  records_claim();

  int send_key = 0;
  int recv_key = 0;
  Inf_GetMsgKeys(&send_key, &recv_key);

  int smsgid = msgget(send_key, MSG_QUEUE_FLAGS);
  if (smsgid == -1) {
    std::puts("[ERROR] msg get error!");
    return -1;
  }
  int rmsgid = msgget(recv_key, MSG_QUEUE_FLAGS);
  if (rmsgid == -1) {
    std::puts("[ERROR] msg get error!");
    return -1;
  }

  store_id(&node.smsgid, smsgid);
  store_id(&node.rmsgid, rmsgid);
  store_callback(callback);

  pthread_t thread;
  if (pthread_create(&thread, nullptr, PthreadMsgEventListen, &node) != 0) {
    std::puts("<MsgEvent> PthreadMsgEventListen create error!\r");
    Inf_DeinitMsgEvent();
    return -1;
  }
  pthread_detach(thread);
  return 0;
}

int32_t Inf_SendMsgEvent(uint8_t type, uint8_t command, const uint8_t* data, int32_t length) {
  if (length < 0 || static_cast<size_t>(length) > MSG_CONTEXT_SIZE) {
    std::printf("[ERROR] send msg event: length %d is outside 0..%zu, nothing sent\n", length,
                MSG_CONTEXT_SIZE);
    return -1;
  }

  Inf_MsgEvent event;
  event.msg_type = MSG_SEND_TYPE;
  event.msg_text.type = type;
  event.msg_text.command = command;
  event.msg_text.length = static_cast<uint32_t>(length);
  // The context is zeroed in every case (also without data), so no stack garbage leaves the
  // process and the bytes past `length` are zero as the device application expects.
  std::memset(event.msg_text.context, 0, sizeof(event.msg_text.context));
  if (data != nullptr) std::memcpy(event.msg_text.context, data, static_cast<size_t>(length));
  std::memset(reinterpret_cast<uint8_t*>(&event.msg_text) + 2, 0, 2);  // padding

  if (msgsnd(load_id(&node.smsgid), &event, MSG_TEXT_SIZE, IPC_NOWAIT) < 0) {
    std::puts("[ERROR] send msg event failed!");
    return -1;
  }
  return 0;
}

int32_t Inf_DeinitMsgEvent(void) {
  std::puts("<MsgEvent> deinit msg client event!");
  const int32_t smsgid = load_id(&node.smsgid);
  const int32_t rmsgid = load_id(&node.rmsgid);
  if (smsgid != -1) msgctl(smsgid, IPC_RMID, nullptr);
  if (rmsgid != -1) msgctl(rmsgid, IPC_RMID, nullptr);
  store_id(&node.smsgid, -1);
  store_id(&node.rmsgid, -1);
  store_callback(nullptr);
  // A listener still waiting for the records goes through, finds no callback and stops with
  // its queue.
  records_disclaim();
  return 0;
}

namespace {

// Hands one received message to the callback with the shared records held.
void apply(Inf_MsgEvent& buffer) {
  records_enter();
  // Read under the records: a link closed meanwhile has no callback any more.
  InfMsgEventCallback callback = load_callback();
  if (callback != nullptr) callback(&buffer.msg_text, nullptr);
  received_count.fetch_add(1, std::memory_order_release);
  records_leave();
}

}  // namespace

void* PthreadMsgEventListen(void* arg) {
  prctl(PR_SET_NAME, "MsgEventListen");
  listener_thread = true;
  Inf_MsgNode* self = static_cast<Inf_MsgNode*>(arg);
  const int rmsgid = load_id(&self->rmsgid);

  Inf_MsgEvent buffer;
  for (;;) {
    // A fresh buffer for every message: a short message never shows the previous one's bytes.
    std::memset(&buffer, 0, sizeof(buffer));
    ssize_t got = msgrcv(rmsgid, &buffer, MSG_TEXT_SIZE, MSG_RECV_TYPE, 0);
    if (got < 0) {
      // A failed receive never reaches the callback: it would re-run a stale buffer.
      if (errno == EINTR) continue;
      if (errno == EIDRM || errno == EINVAL) {
        std::puts("<MsgEvent> receive queue removed, listener stops");
        return nullptr;
      }
      std::printf("[ERROR] receive msg event failed: %s\n", std::strerror(errno));
      usleep(10 * 1000);
      continue;
    }
    apply(buffer);
    // Messages already waiting are applied in the same turn of the records (one pass of the
    // user interface thread lets a whole burst in); then the user interface thread takes them
    // back. No pause between messages: the blocking receive already yields when the queue is
    // empty, and a sleep here (even 10 us, which Linux rounds up to its timer slack) would cap
    // the link far below the device's burst rate.
    for (;;) {
      std::memset(&buffer, 0, sizeof(buffer));
      if (msgrcv(rmsgid, &buffer, MSG_TEXT_SIZE, MSG_RECV_TYPE, IPC_NOWAIT) < 0) break;
      apply(buffer);
    }
    records_listener_idle();
  }
}

uint64_t Inf_MsgReceivedCount(void) {
  return received_count.load(std::memory_order_acquire);
}

bool Inf_OnListenerThread(void) {
  return listener_thread;
}
