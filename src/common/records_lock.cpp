// The one lock over the shared records: see records_lock.h.
//
// One small state, guarded by its own mutex, says who may touch the records: the user interface
// thread (`ui_holds`), the listener (`listener_in`), or, while the user interface thread sleeps
// or has closed the link, nobody. In the gate the user interface thread waits until the
// listener gives the records back between two frames. A thread that takes the records over waits on
// the condition variable until the other has let go, so every write of one thread happens before
// every read of the other.
#include "common/records_lock.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>

#include "awtk.h"

namespace {

// A listener whose request for the gate the toolkit refused (its queue was full) asks again
// after this long; so does one whose gate stayed shut because the hand-off was full.
constexpr auto RETRY = std::chrono::milliseconds(10);

struct Records {
  std::mutex lock;
  std::condition_variable changed;
  std::thread::id owner;          // the user interface thread; none before records_claim
  bool ui_holds = false;          // the user interface thread holds the records
  bool listener_in = false;       // a listener applies a frame
  int listeners_waiting = 0;      // listeners in records_enter, not in yet
  bool gate_requested = false;    // a gate idle waits in the toolkit's queue
  bool gate_open = false;         // the user interface thread waits in the gate
  bool gate_limited = false;      // and the hand-off's limit applies
  int gate_frames = 0;            // frames applied since the gate opened
  bool refusal_reported = false;  // one line per run of refused gate requests
};

Records records;
// The hand-off's limit. Constant-initialised, so it may be set during static initialisation.
std::atomic<bool (*)()> gate_full{nullptr};
thread_local bool listener_holds = false;

bool is_owner(const Records& r) {
  return r.owner == std::this_thread::get_id();
}

bool gate_shut() {
  bool (*full)() = gate_full.load();
  return full != nullptr && full();
}

// Lets a listener that waits apply the frames waiting on its queue, then takes the records
// back. The listener hands them back itself, between two frames (records_leave), once it has
// nothing more (records_listener_idle), has applied RECORDS_GATE_FRAMES, or (when `limited`)
// the hand-off is full. On the user interface thread holding the records; else nothing.
void yield(bool limited) {
  std::unique_lock<std::mutex> lk(records.lock);
  if (!is_owner(records) || !records.ui_holds || records.listeners_waiting == 0) return;
  records.ui_holds = false;
  records.gate_open = true;
  records.gate_limited = limited;
  records.gate_frames = 0;
  records.changed.notify_all();
  records.changed.wait(lk, [] { return records.ui_holds; });
  records.gate_open = false;
}

// Under the lock: the listener is out; gives the records back to the user interface thread
// waiting in the gate.
void close_gate() {
  if (records.gate_open && !records.listener_in) records.ui_holds = true;
}

// The gate, on the user interface thread: one per request of a waiting listener.
ret_t on_gate(const idle_info_t* idle) {
  (void)idle;
  {
    std::lock_guard<std::mutex> guard(records.lock);
    records.gate_requested = false;
  }
  // While the hand-off is full the gate stays shut: the listener asks again a little later,
  // after the drain has made room.
  if (!gate_shut()) yield(true);
  return RET_REMOVE;
}

}  // namespace

void records_claim(void) {
  std::unique_lock<std::mutex> lk(records.lock);
  if (is_owner(records) && records.ui_holds) return;
  records.changed.wait(lk, [] { return !records.listener_in; });
  records.owner = std::this_thread::get_id();
  records.ui_holds = true;
  // A gate asked of an earlier toolkit (a test's reset dropped its queue) will never run.
  records.gate_requested = false;
}

void records_disclaim(void) {
  std::lock_guard<std::mutex> guard(records.lock);
  if (!is_owner(records)) return;
  records.ui_holds = false;
  records.owner = std::thread::id();
  records.changed.notify_all();
}

void records_enter(void) {
  std::unique_lock<std::mutex> lk(records.lock);
  records.listeners_waiting++;
  while (records.ui_holds || records.listener_in) {
    if (records.ui_holds && !records.gate_requested) {
      records.gate_requested = true;
      lk.unlock();
      const ret_t ret = idle_queue(on_gate, nullptr);
      lk.lock();
      if (ret != RET_OK) {
        records.gate_requested = false;
        if (!records.refusal_reported) {
          std::printf(
              "[ERROR] device link: the toolkit queue refused the listener's request for the "
              "records (%d); asking again every %d ms\n",
              static_cast<int>(ret), static_cast<int>(RETRY.count()));
        }
        records.refusal_reported = true;
      } else {
        records.refusal_reported = false;
      }
    }
    records.changed.wait_for(lk, RETRY);
  }
  records.listeners_waiting--;
  records.listener_in = true;
  listener_holds = true;
}

void records_leave(void) {
  std::lock_guard<std::mutex> guard(records.lock);
  records.listener_in = false;
  listener_holds = false;
  if (records.gate_open) {
    records.gate_frames++;
    bool (*full)() = records.gate_limited ? gate_full.load() : nullptr;
    if (records.gate_frames >= RECORDS_GATE_FRAMES || (full != nullptr && full())) close_gate();
    // Inside an open gate the user interface thread waits only for the records to come back:
    // waking it after every frame would cost two thread switches a frame for nothing.
    if (!records.ui_holds) return;
  }
  records.changed.notify_all();
}

void records_listener_idle(void) {
  std::lock_guard<std::mutex> guard(records.lock);
  close_gate();
  records.changed.notify_all();
}

void records_sleep_ms(uint32_t ms) {
  if (listener_holds) {
    // The rest of the frame waits: the user interface thread runs meanwhile.
    records_leave();
    records_listener_idle();
    sleep_ms(ms);
    records_enter();
    return;
  }
  if (!records_held()) {
    sleep_ms(ms);
    return;
  }
  // A listener already waiting applies what it has first, so that even a sleep the test clock
  // makes instant lets it in. The hand-off's limit does not apply: nothing drains it while this
  // thread sleeps.
  yield(false);
  {
    std::lock_guard<std::mutex> guard(records.lock);
    records.ui_holds = false;
    records.changed.notify_all();
  }
  sleep_ms(ms);
  std::unique_lock<std::mutex> lk(records.lock);
  records.changed.wait(lk, [] { return !records.listener_in; });
  records.ui_holds = true;
}

bool records_held(void) {
  if (listener_holds) return true;
  std::lock_guard<std::mutex> guard(records.lock);
  return is_owner(records) && records.ui_holds;
}

void records_set_gate_limit(bool (*full)(void)) {
  gate_full.store(full);
}
