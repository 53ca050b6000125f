// The device link's hand-off to the user interface thread.
//
// Inbound frames arrive on the listener thread. A handler writes the shared records first and
// then raises a screen event, posts a key or asks for a navigation; those three go through one
// ordered mailbox that the UI thread drains, so no widget is touched off the UI thread and the
// order of effects is the order the handler issued them. Every raised event is delivered once:
// the mailbox is bounded, and the listener is let in to add more (the records' gate) only while
// the mailbox holds less than one drain pass.
#include "msg/msghandler.h"
#include "msg/msghandler_internal.h"

#include <cstdio>

#include <algorithm>
#include <atomic>
#include <deque>
#include <mutex>
#include <string>

#include "awtk.h"
#include "main_loop/main_loop_simple.h"
#include "common/navigator.h"
#include "common/records_lock.h"
#include "common/status_records.h"

using namespace msghandler_internal;

namespace {

// ---------------------------------------------------------------------------------------------
// The mailbox: listener -> UI thread, in order.
// ---------------------------------------------------------------------------------------------
enum class MailKind : uint8_t { EVENT, NAVIGATE, KEY, CALL };

struct MailItem {
  MailKind kind = MailKind::EVENT;
  int event = 0;             // EVENT: the event number
  uint8_t code = 0;          // KEY: the key code
  bool down = false;         // KEY: post a press
  bool up = false;           // KEY: post a release (after the press when both)
  void (*call)() = nullptr;  // CALL: UI-thread work
  std::string name;          // NAVIGATE: the window name
};

struct Mailbox {
  std::mutex lock;
  std::deque<MailItem> items;
  int events = 0;
  int keys = 0;
  int navigations = 0;  // queued or running
  std::string last_navigation;
  int scheduled = 0;  // drains requested and not started yet
  int running = 0;    // drains executing and able to look at the mailbox again
  Inf_LinkStats stats{};
};

Mailbox mailbox;
// Set when the toolkit refused a drain request: the next inbound frame asks again.
std::atomic<bool> drain_retry{false};

std::mutex run_status_lock;

ret_t on_idle(const idle_info_t* idle);

// Asks the UI thread for a drain through the toolkit's cross-thread queue. The caller has
// counted it in `scheduled`.
void request_drain() {
  ret_t ret = idle_queue(on_idle, nullptr);
  std::lock_guard<std::mutex> guard(mailbox.lock);
  mailbox.stats.drain_requests++;
  if (ret != RET_OK) {
    mailbox.scheduled--;
    mailbox.stats.drain_request_failures++;
    drain_retry.store(true, std::memory_order_relaxed);
    std::printf(
        "[ERROR] device link: the toolkit queue refused the drain request (%d); "
        "retrying with the next message\n",
        static_cast<int>(ret));
  }
}

// Appends under the lock (the caller fills `item`), then asks for a drain if none will run.
template <typename Fill>
void mail_append(Fill&& fill) {
  bool schedule = false;
  {
    std::lock_guard<std::mutex> guard(mailbox.lock);
    if (!fill()) return;
    if (mailbox.scheduled == 0 && mailbox.running == 0) {
      mailbox.scheduled++;
      schedule = true;
    }
  }
  if (schedule) request_drain();
}

void mail_event(int event) {
  mail_append([event] {
    Inf_LinkStats& st = mailbox.stats;
    st.events_raised++;
    if (mailbox.events >= LINK_EVENT_CAPACITY) {
      st.events_dropped++;
      std::printf(
          "[ERROR] device link: %d screen events wait for the UI thread, event %d dropped "
          "(%llu dropped so far)\n",
          mailbox.events, event, static_cast<unsigned long long>(st.events_dropped));
      std::fflush(stdout);
      return false;
    }
    mailbox.events++;
    MailItem item;
    item.kind = MailKind::EVENT;
    item.event = event;
    mailbox.items.push_back(std::move(item));
    return true;
  });
}

// The records' gate stays shut while a whole drain pass waits: the listener applies no further
// frame until the UI thread has taken them, so a flood from the device waits on its queue.
bool mailbox_full() {
  std::lock_guard<std::mutex> guard(mailbox.lock);
  return mailbox.items.size() >= static_cast<size_t>(LINK_ITEMS_PER_PASS);
}
[[maybe_unused]] const bool gate_limit_set = (records_set_gate_limit(mailbox_full), true);

void mail_call(void (*call)()) {
  mail_append([call] {
    MailItem item;
    item.kind = MailKind::CALL;
    item.call = call;
    mailbox.items.push_back(std::move(item));
    return true;
  });
}

int item_key_posts(const MailItem& item) {
  return (item.down ? 1 : 0) + (item.up ? 1 : 0);
}

// The drain, on the UI thread. Items run in order. Keys are posted in batches of at most
// LINK_KEY_POSTS_PER_PASS; after a batch the next pass is queued behind the keys with idle_queue,
// so the next item runs only after the keys have been delivered and the link never holds more
// than one batch plus one request in the toolkit's queue.
ret_t on_idle(const idle_info_t* idle) {
  (void)idle;
  std::unique_lock<std::mutex> lk(mailbox.lock);
  mailbox.scheduled--;
  mailbox.running++;
  // A pass takes what was there when it began: items that arrive meanwhile wait for the next
  // pass, so a steady stream from the listener never keeps one pass going.
  const size_t budget = std::min<size_t>(mailbox.items.size(), LINK_ITEMS_PER_PASS);
  size_t handled = 0;
  int key_posts = 0;
  while (!mailbox.items.empty() && handled < budget) {
    const MailItem& front = mailbox.items.front();
    if (key_posts > 0 && front.kind != MailKind::KEY) break;
    if (front.kind == MailKind::KEY &&
        key_posts + item_key_posts(front) > LINK_KEY_POSTS_PER_PASS) {
      break;
    }

    MailItem item = std::move(mailbox.items.front());
    mailbox.items.pop_front();
    handled++;

    if (item.kind == MailKind::KEY) {
      mailbox.keys--;
      lk.unlock();
      int failed = 0;
      if (item.down && main_loop_post_key_event(main_loop(), TRUE, item.code) != RET_OK) failed++;
      if (item.up && main_loop_post_key_event(main_loop(), FALSE, item.code) != RET_OK) failed++;
      lk.lock();
      key_posts += item_key_posts(item);
      mailbox.stats.key_posts += item_key_posts(item);
      mailbox.stats.key_posts_failed += failed;
      if (failed > 0)
        std::printf("[ERROR] device link: key %d lost, toolkit queue full\n", item.code);
      continue;
    }

    if (item.kind == MailKind::EVENT) mailbox.events--;

    // Page code runs now and may block in a nested main loop (a modal dialog). While it runs
    // this drain does not count as running, and a continuation is armed when items remain, so
    // the mailbox keeps draining inside the nested loop.
    mailbox.running--;
    bool arm = !mailbox.items.empty() && mailbox.scheduled == 0;
    if (arm) mailbox.scheduled++;
    lk.unlock();
    if (arm && idle_add(on_idle, nullptr) == TK_INVALID_ID) {
      std::lock_guard<std::mutex> guard(mailbox.lock);
      mailbox.scheduled--;
    }

    switch (item.kind) {
      case MailKind::EVENT: {
        event_t e = event_init(static_cast<uint32_t>(item.event), nullptr);
        widget_dispatch(window_manager(), &e);
        break;
      }
      case MailKind::NAVIGATE: navigator_to(item.name.c_str()); break;
      case MailKind::CALL: item.call(); break;
      case MailKind::KEY: break;
    }

    lk.lock();
    mailbox.running++;
    if (item.kind == MailKind::EVENT) mailbox.stats.events_dispatched++;
    if (item.kind == MailKind::NAVIGATE) {
      mailbox.stats.navigations++;
      if (--mailbox.navigations == 0) mailbox.last_navigation.clear();
    }
  }

  mailbox.running--;
  if (mailbox.items.empty() || mailbox.scheduled > 0) return RET_REMOVE;
  mailbox.scheduled++;
  if (key_posts > 0) {
    lk.unlock();
    ret_t ret = idle_queue(on_idle, nullptr);
    std::lock_guard<std::mutex> guard(mailbox.lock);
    mailbox.stats.drain_requests++;
    if (ret == RET_OK) return RET_REMOVE;
    mailbox.stats.drain_request_failures++;
  }
  return RET_REPEAT;  // run again on the next idle pass; stays counted in `scheduled`
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Hand-off calls of the inbound handlers and the senders.
// ---------------------------------------------------------------------------------------------
namespace msghandler_internal {

// Called after each inbound frame: a drain request that failed earlier is retried here.
void mail_kick() {
  if (!drain_retry.load(std::memory_order_relaxed)) return;
  drain_retry.store(false, std::memory_order_relaxed);
  bool schedule = false;
  {
    std::lock_guard<std::mutex> guard(mailbox.lock);
    if (!mailbox.items.empty() && mailbox.scheduled == 0 && mailbox.running == 0) {
      mailbox.scheduled++;
      schedule = true;
    }
  }
  if (schedule) request_drain();
}

void mail_key(uint8_t code, bool down, bool up) {
  mail_append([code, down, up] {
    if (mailbox.keys >= LINK_KEY_CAPACITY) {
      mailbox.stats.keys_dropped++;
      std::printf(
          "[ERROR] device link: %d key presses wait for the UI thread, key %d dropped "
          "(%llu dropped so far)\n",
          mailbox.keys, code, static_cast<unsigned long long>(mailbox.stats.keys_dropped));
      return false;
    }
    mailbox.keys++;
    mailbox.stats.keys_queued++;
    MailItem item;
    item.kind = MailKind::KEY;
    item.code = code;
    item.down = down;
    item.up = up;
    mailbox.items.push_back(std::move(item));
    return true;
  });
}

// Runs UI-thread-only work: in place on the UI thread, through the mailbox from the listener.
void run_on_ui_thread(void (*call)()) {
  if (Inf_OnListenerThread()) {
    mail_call(call);
  } else {
    call();
  }
}

std::string top_window_name() {
  {
    std::lock_guard<std::mutex> guard(mailbox.lock);
    if (mailbox.navigations > 0) return mailbox.last_navigation;
  }
  widget_t* top = window_manager_get_top_window(window_manager());
  if (top == nullptr || top->name == nullptr) return std::string();
  return std::string(top->name);
}

void store_temp_window(const std::string& name) {
  tk_snprintf(stUIStatus.temp_window, sizeof(stUIStatus.temp_window), "%s", name.c_str());
}

}  // namespace msghandler_internal

// =============================================================================================
// Hand-off interface
// =============================================================================================

void event_distrubution(int event) {
  mail_event(event);
}

void Inf_LinkNavigate(const char* name) {
  if (name == nullptr || *name == '\0') return;
  std::string target(name);
  mail_append([&target] {
    if (mailbox.navigations >= LINK_NAVIGATION_CAPACITY) {
      mailbox.stats.navigations_dropped++;
      std::printf("[ERROR] device link: %d navigations wait for the UI thread, \"%s\" dropped\n",
                  mailbox.navigations, target.c_str());
      return false;
    }
    mailbox.navigations++;
    mailbox.last_navigation = target;
    MailItem item;
    item.kind = MailKind::NAVIGATE;
    item.name = std::move(target);
    mailbox.items.push_back(std::move(item));
    return true;
  });
}

void Inf_LinkReset(void) {
  {
    std::lock_guard<std::mutex> guard(mailbox.lock);
    mailbox.items.clear();
    mailbox.events = 0;
    mailbox.keys = 0;
    mailbox.navigations = 0;
    mailbox.last_navigation.clear();
    mailbox.scheduled = 0;
    mailbox.running = 0;
    mailbox.stats = Inf_LinkStats{};
  }
  drain_retry.store(false);
  reset_inbound();
  reset_senders();
}

Inf_LinkStats Inf_GetLinkStats(void) {
  std::lock_guard<std::mutex> guard(mailbox.lock);
  Inf_LinkStats st = mailbox.stats;
  read_frame_counts(st);
  return st;
}

bool Inf_LinkIsIdle(void) {
  std::lock_guard<std::mutex> guard(mailbox.lock);
  return mailbox.items.empty() && mailbox.scheduled == 0 && mailbox.running == 0;
}

int Set_RunStatusPara(int cmd, int value) {
  (void)value;
  std::lock_guard<std::mutex> guard(run_status_lock);
  std::printf("error no set runcmd  %x\n", cmd);
  return 1;
}

int Get_RunStatusPara(int cmd) {
  std::lock_guard<std::mutex> guard(run_status_lock);
  std::printf("error no get runcmd [%x]\n", cmd);
  return 0;
}

void uiEventNotif(int type, void* data_ptr) {
  (void)type;
  (void)data_ptr;
}
