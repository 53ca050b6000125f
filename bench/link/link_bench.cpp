// Throughput of the device link's inbound path against the machine's raw queue throughput.
//
//   BM_RawQueue        a thread msgsnd()s 520-byte messages, this thread msgrcv()s them: the
//                      physical limit of a System V queue on this machine.
//   BM_LinkInbound     a thread sends checksummed status frames as the device does; the UI's
//                      listener receives, checks and dispatches them, writes the records and
//                      queues the screen events, while this thread runs the UI side (the gate
//                      that lets the listener have the records, the drain and the dispatch of
//                      every event) as a main loop woken by each post. Fails if a frame is lost
//                      or dropped, an event is dropped, or the toolkit's queue overflows.
//   BM_LinkInboundWithUI  the same with a main-loop pass every 8 ms (the board's pace).
//   BM_Dispatch        uiOperationControl on one frame in-process: the dispatch alone.
//
// The link prints a line for most frames; during the measured part standard output goes to
// /dev/null, as a board's console would swallow it.
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "common/status_records.h"
#include "framedec.h"
#include "msg/msg.h"
#include "msg/msghandler.h"
#include "tk_testing.h"

namespace {

constexpr int BATCH = 20000;

// A mix of the readings a device sends back to back.
std::vector<Inf_MsgEvent> status_messages() {
  auto f = [](uint8_t type, uint8_t command, uint8_t sub, std::vector<uint8_t> values) {
    return framedec::build(type, command, sub, values);
  };
  const std::vector<std::vector<uint8_t>> frames = {
      f(15, 0, 0, {0xbc, 0x02}),              // battery
      f(6, 0, 0, {0, 90, 0}),                 // azimuth
      f(6, 0, 1, {1, 3, 0}),                  // pitch
      f(6, 0, 2, {0, 1, 0}),                  // cant
      f(0, 0, 38, {0x76, 0x11}),              // wind
      f(4, 2, 0, {0, 0x0c, 0xca}),            // distance
      f(1, 0, 16, {0xc8, 0x00}),              // zoom
      f(22, 3, 1, {0x10, 0x00}),              // reticle x
      f(25, 2, 0, {1}),                       // GG save result
      f(23, 0, 2, {1, 2, 3, 4, 0, 0, 0, 0}),  // playback position
  };
  std::vector<Inf_MsgEvent> out;
  for (const auto& frame : frames) {
    Inf_MsgEvent e;
    std::memset(&e, 0, sizeof(e));
    e.msg_type = MSG_RECV_TYPE;
    e.msg_text.type = MSG_TYPE_FRAMED;
    e.msg_text.length = static_cast<uint32_t>(frame.size());
    std::memcpy(e.msg_text.context, frame.data(), frame.size());
    out.push_back(e);
  }
  return out;
}

// Standard output to /dev/null for the measured part, back for the report.
struct QuietStdout {
  int saved = -1;
  QuietStdout() {
    std::fflush(stdout);
    saved = dup(STDOUT_FILENO);
    int null = open("/dev/null", O_WRONLY);
    dup2(null, STDOUT_FILENO);
    close(null);
  }
  ~QuietStdout() {
    std::fflush(stdout);
    dup2(saved, STDOUT_FILENO);
    close(saved);
  }
};

void BM_RawQueue(benchmark::State& state) {
  const int q = msgget(IPC_PRIVATE, IPC_CREAT | 0600);
  if (q == -1) {
    state.SkipWithError("msgget failed");
    return;
  }
  const std::vector<Inf_MsgEvent> messages = status_messages();
  Inf_MsgEvent buffer;
  for (auto _ : state) {
    std::thread sender([&] {
      for (int i = 0; i < BATCH; ++i) {
        msgsnd(q, &messages[i % messages.size()], MSG_TEXT_SIZE, 0);
      }
    });
    for (int i = 0; i < BATCH; ++i)
      msgrcv(q, &buffer, MSG_TEXT_SIZE, MSG_RECV_TYPE, 0);
    sender.join();
  }
  benchmark::DoNotOptimize(buffer);
  state.SetItemsProcessed(state.iterations() * BATCH);
  msgctl(q, IPC_RMID, nullptr);
}
BENCHMARK(BM_RawQueue)->UseRealTime()->Unit(benchmark::kMillisecond);

int device_queue = -1;

void init_link() {
  static bool done = false;
  if (done) return;
  done = true;
  const int send_key = 0x4D000000 | ((getpid() & 0x7FFFFF) << 1);
  const std::string keys = std::to_string(send_key) + "," + std::to_string(send_key + 1);
  setenv(MSG_KEYS_ENV, keys.c_str(), 1);
  setenv("TK_HEADLESS", "1", 1);
  tk_testing_init();
  QuietStdout quiet;
  if (Inf_InitMsgEvent(msgEventCallback) != 0) std::abort();
  device_queue = msgget(send_key + 1, 0);
  std::atexit([] {
    QuietStdout quiet_exit;
    Inf_DeinitMsgEvent();
  });
  stUIStatus.event_distrubut_reday = 1;  // status events are raised, as after start-up
}

// Sends BATCH frames from a device thread and runs the UI side until the listener has handled
// them and every event is dispatched: a main-loop pass whenever there is work, or (`ui_paced`)
// one every 8 ms.
void run_inbound(benchmark::State& state, bool ui_paced) {
  init_link();
  const std::vector<Inf_MsgEvent> messages = status_messages();
  const Inf_LinkStats before = Inf_GetLinkStats();
  uint64_t sent = 0;
  {
    QuietStdout quiet;
    for (auto _ : state) {
      const uint64_t target = Inf_MsgReceivedCount() + BATCH;
      std::thread device([&] {
        for (int i = 0; i < BATCH; ++i) {
          msgsnd(device_queue, &messages[i % messages.size()], MSG_TEXT_SIZE, 0);
        }
      });
      while (Inf_MsgReceivedCount() < target) {
        tk_testing_advance(0);
        if (ui_paced) std::this_thread::sleep_for(std::chrono::milliseconds(8));
      }
      device.join();
      while (!Inf_LinkIsIdle())
        tk_testing_advance(0);
      sent += BATCH;
    }
  }
  const Inf_LinkStats after = Inf_GetLinkStats();
  if (after.frames_received - before.frames_received != sent ||
      after.frames_dropped != before.frames_dropped ||
      after.events_dropped != before.events_dropped ||
      after.events_dispatched - before.events_dispatched !=
          after.events_raised - before.events_raised ||
      tk_testing_queue_overflows() != 0) {
    state.SkipWithError("frames lost or dropped, events dropped, or the toolkit queue overflowed");
  }
  state.counters["events_dispatched"] =
      benchmark::Counter(static_cast<double>(after.events_dispatched - before.events_dispatched),
                         benchmark::Counter::kAvgIterations);
  state.counters["events_raised"] =
      benchmark::Counter(static_cast<double>(after.events_raised - before.events_raised),
                         benchmark::Counter::kAvgIterations);
  state.SetItemsProcessed(static_cast<int64_t>(sent));
}

void BM_LinkInbound(benchmark::State& state) {
  run_inbound(state, false);
}
BENCHMARK(BM_LinkInbound)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_LinkInboundWithUI(benchmark::State& state) {
  run_inbound(state, true);
}
BENCHMARK(BM_LinkInboundWithUI)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_Dispatch(benchmark::State& state) {
  init_link();
  std::vector<Inf_MsgEvent> messages = status_messages();
  size_t i = 0;
  {
    QuietStdout quiet;
    for (auto _ : state) {
      Inf_MsgText& text = messages[i++ % messages.size()].msg_text;
      uiOperationControl(text.context, text.length);
      if ((i & 255) == 0) {  // the events of 256 frames fit the hand-off
        state.PauseTiming();
        while (!Inf_LinkIsIdle())
          tk_testing_advance(0);
        state.ResumeTiming();
      }
    }
    while (!Inf_LinkIsIdle())
      tk_testing_advance(0);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Dispatch);

}  // namespace
