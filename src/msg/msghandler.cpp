// The device link's protocol: frame check, inbound dispatch, the hand-off to the UI thread, and
// the outbound frame builders and senders.
//
// Inbound frames arrive on the listener thread. A handler writes the shared records first and
// then raises a screen event, posts a key or asks for a navigation; those three go through one
// ordered mailbox that the UI thread drains, so no widget is touched off the UI thread and the
// order of effects is the order the handler issued them.
#include "msg/msghandler.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>

#include "awtk.h"
#include "main_loop/main_loop_simple.h"
#include "common/device_path.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "pages/Zavo_home_page_1.h"

namespace {

// ---------------------------------------------------------------------------------------------
// Screen event numbers raised by the link (EVT_USER_START + offset).
// ---------------------------------------------------------------------------------------------
constexpr int screen_event(SCREEN_EVENT offset) {
  return static_cast<int>(EVT_USER_START) + static_cast<int>(offset);
}

constexpr int EV_RETICLE_SWITCH = screen_event(SCREEN_EVT_RETICLE_SWITCH);            // 8194
constexpr int EV_RETICLE_POSITION = screen_event(SCREEN_EVT_RETICLE_POSITION);        // 8197
constexpr int EV_COMPASS_AZIMUTH = screen_event(SCREEN_EVT_COMPASS_AZIMUTH);          // 8202
constexpr int EV_COMPASS_PITCH = screen_event(SCREEN_EVT_COMPASS_PITCH);              // 8203
constexpr int EV_COMPASS_SLANT = screen_event(SCREEN_EVT_COMPASS_SLANT);              // 8204
constexpr int EV_PLAY_POSITION = screen_event(SCREEN_EVT_PLAY_POSITION);              // 8205
constexpr int EV_PLAY_LENGTH = screen_event(SCREEN_EVT_PLAY_LENGTH);                  // 8206
constexpr int EV_BATTERY = screen_event(SCREEN_EVT_BATTERY);                          // 8207
constexpr int EV_WIFI_CONNECTION = screen_event(SCREEN_EVT_WIFI_CONNECTION);          // 8211
constexpr int EV_BATTERY_TYPE = screen_event(SCREEN_EVT_BATTERY_TYPE);                // 8213
constexpr int EV_RETICLE_MENU_SWITCH = screen_event(SCREEN_EVT_RETICLE_MENU_SWITCH);  // 8217
constexpr int EV_LIGHT_OVERHEAT = screen_event(SCREEN_EVT_LIGHT_OVERHEAT);            // 8218
constexpr int EV_GG_CLEAR = screen_event(SCREEN_EVT_GG_CLEAR);                        // 8219
constexpr int EV_GG_GET = screen_event(SCREEN_EVT_GG_GET);                            // 8220
constexpr int EV_GG_SAVE = screen_event(SCREEN_EVT_GG_SAVE);                          // 8221
constexpr int EV_DISTANCE = screen_event(SCREEN_EVT_DISTANCE);                        // 8222
constexpr int EV_RETICLE_MOVE = screen_event(SCREEN_EVT_RETICLE_MOVE);                // 8223
constexpr int EV_RANGE_MARKER_MOVE = screen_event(SCREEN_EVT_RANGE_MARKER_MOVE);      // 8225
constexpr int EV_LASER_MARKER_MOVE = screen_event(SCREEN_EVT_LASER_MARKER_MOVE);      // 8226
constexpr int EV_ZOOM = screen_event(SCREEN_EVT_ZOOM);                                // 8227
constexpr int EV_COMPASS_SWITCH = screen_event(SCREEN_EVT_COMPASS_SWITCH);            // 8228
constexpr int EV_LASER_SWITCH = screen_event(SCREEN_EVT_LASER_SWITCH);                // 8229
constexpr int EV_POLARITY = screen_event(SCREEN_EVT_POLARITY);                        // 8230
constexpr int EV_WIFI_SWITCH = screen_event(SCREEN_EVT_WIFI_SWITCH);                  // 8232
constexpr int EV_RETICLE_COLOR = screen_event(SCREEN_EVT_RETICLE_COLOR);              // 8234
constexpr int EV_RETICLE_LIGHT = screen_event(SCREEN_EVT_RETICLE_LIGHT);              // 8235
constexpr int EV_BRIGHT_LIGHT = screen_event(SCREEN_EVT_BRIGHT_LIGHT);                // 8236
constexpr int EV_RETICLE_TYPE = screen_event(SCREEN_EVT_RETICLE_TYPE);                // 8238
constexpr int EV_RETICLE_ZERO_BACK = screen_event(SCREEN_EVT_RETICLE_ZERO_BACK);      // 8239
constexpr int EV_BALLISTIC_RESULT = screen_event(SCREEN_EVT_BALLISTIC_RESULT);        // 8240
constexpr int EV_SHUTTER = screen_event(SCREEN_EVT_SHUTTER);                          // 8241
constexpr int EV_WIND = screen_event(SCREEN_EVT_WIND);                                // 8243
constexpr int EV_BALLISTIC_PROFILE = screen_event(SCREEN_EVT_BALLISTIC_PROFILE);      // 8244
constexpr int EV_MICRO_SWITCH = screen_event(SCREEN_EVT_MICRO_SWITCH);                // 8245
constexpr int EV_RECOIL_TRIGGERED = screen_event(SCREEN_EVT_RECOIL_TRIGGERED);        // 8246
constexpr int EV_RECORD_TIP = screen_event(SCREEN_EVT_RECORD_TIP);                    // 8247
constexpr int EV_ZOOM_CHANGED = screen_event(SCREEN_EVT_ZOOM_CHANGED);                // 8248
constexpr int EV_UPDATA = screen_event(SCREEN_EVT_UPDATA);                            // 8249
constexpr int EV_RECOIL_SWITCH = screen_event(SCREEN_EVT_RECOIL_SWITCH);              // 8250
constexpr int EV_BALLISTIC_RETICLE = screen_event(SCREEN_EVT_BALLISTIC_RETICLE);      // 8251
constexpr int EV_BALLISTIC_COLOR = screen_event(SCREEN_EVT_BALLISTIC_COLOR);          // 8252
constexpr int EV_STANDBY = screen_event(SCREEN_EVT_STANDBY);                          // 8253
constexpr int EV_FREEZE = screen_event(SCREEN_EVT_FREEZE);                            // 8254
constexpr int EV_PIP_RETICLE = screen_event(SCREEN_EVT_PIP_RETICLE);                  // 8255
constexpr int EV_RANGE_RETICLE = screen_event(SCREEN_EVT_RANGE_RETICLE);              // 8256
constexpr int EV_LASER_RETICLE = screen_event(SCREEN_EVT_LASER_RETICLE);              // 8257

static_assert(EV_BATTERY == 8207 && EV_DISTANCE == 8222 && EV_UPDATA == 8249);
static_assert(EV_LASER_RETICLE == 8257 && EV_RETICLE_SWITCH == 8194);

// Window names the dispatch looks at.
constexpr const char* HOME_WINDOW = "Zavo_home_page_1";
constexpr const char* UPDATA_WINDOW = "Zavo_updata";
constexpr const char* SHUT_DOWN_WINDOW = "Zavo_SHUT_DOWN";
constexpr const char* TIP_BALLISTIC_WINDOW = "Zavo_tip_ballistic";
constexpr const char* FIRST_LANGUAGE_FILE = "/usrdata/release/first_language.txt";

constexpr uint8_t SUB_NONE = 0xFF;  // sub-command byte of frames that carry none
constexpr int RANGE_MEASURING = 3;  // s8RangeMode while continuous measuring runs
constexpr int PROFILE_LAST = BALLISTIC_PROFILE_COUNT - 1;

// Bytes of the shared records are compared as unsigned codes whatever the signedness of char.
inline int u8(char c) {
  return static_cast<unsigned char>(c);
}
inline int16_t le16(const uint8_t* p) {
  return static_cast<int16_t>(p[0] | (p[1] << 8));
}
inline uint64_t le64(const uint8_t* p) {
  uint64_t v = 0;
  for (int i = 7; i >= 0; --i)
    v = (v << 8) | p[i];
  return v;
}
inline void put_le16(uint8_t* p, int v) {
  p[0] = static_cast<uint8_t>(v & 0xFF);
  p[1] = static_cast<uint8_t>((v >> 8) & 0xFF);
}

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

constexpr int FOLD_RANGE = 256;  // event numbers EVT_USER_START .. +255 fold while pending

struct Mailbox {
  std::mutex lock;
  std::deque<MailItem> items;
  std::array<bool, FOLD_RANGE> event_pending{};
  int unfoldable_events = 0;
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
std::atomic<uint64_t> frames_received{0};
std::atomic<uint64_t> frames_dropped{0};

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

void mail_event(int event) {
  mail_append([event] {
    Inf_LinkStats& st = mailbox.stats;
    st.events_raised++;
    int slot = event - EVT_USER_START;
    bool foldable = slot >= 0 && slot < FOLD_RANGE;
    if (foldable && mailbox.event_pending[slot]) {
      st.events_folded++;
      return false;
    }
    if (!foldable) {
      if (mailbox.unfoldable_events >= LINK_EVENT_CAPACITY) {
        st.events_dropped++;
        std::printf("[ERROR] device link: %d events wait for the UI thread, event %d dropped\n",
                    mailbox.unfoldable_events, event);
        return false;
      }
      mailbox.unfoldable_events++;
    } else {
      mailbox.event_pending[slot] = true;
    }
    MailItem item;
    item.kind = MailKind::EVENT;
    item.event = event;
    mailbox.items.push_back(std::move(item));
    return true;
  });
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

void mail_call(void (*call)()) {
  mail_append([call] {
    MailItem item;
    item.kind = MailKind::CALL;
    item.call = call;
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

    if (item.kind == MailKind::EVENT) {
      int slot = item.event - EVT_USER_START;
      if (slot >= 0 && slot < FOLD_RANGE) {
        mailbox.event_pending[slot] = false;
      } else {
        mailbox.unfoldable_events--;
      }
    }

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

// ---------------------------------------------------------------------------------------------
// Shared float buffer: a float overlaid on its four bytes. It also keeps the last float sent,
// which BALLISTIC_BULLET_INFO sends again for items past the bullet's fields. The inbound
// solution goes through it too; a lock keeps the two threads from tearing it.
// ---------------------------------------------------------------------------------------------
union {
  float f;
  uint8_t bytes[4];
} data;
std::mutex data_lock;

std::mutex run_status_lock;

// Whether a firmware-update start notice came before: 0 none yet, 2 seen.
int16_t updata_notice_flag = 0;

uint32_t timer_id_shutter = 0;

}  // namespace

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
    mailbox.event_pending.fill(false);
    mailbox.unfoldable_events = 0;
    mailbox.keys = 0;
    mailbox.navigations = 0;
    mailbox.last_navigation.clear();
    mailbox.scheduled = 0;
    mailbox.running = 0;
    mailbox.stats = Inf_LinkStats{};
  }
  drain_retry.store(false);
  frames_received.store(0);
  frames_dropped.store(0);
  updata_notice_flag = 0;
  timer_id_shutter = 0;
}

Inf_LinkStats Inf_GetLinkStats(void) {
  std::lock_guard<std::mutex> guard(mailbox.lock);
  Inf_LinkStats st = mailbox.stats;
  st.frames_received = frames_received.load(std::memory_order_relaxed);
  st.frames_dropped = frames_dropped.load(std::memory_order_relaxed);
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

// =============================================================================================
// Frame check
// =============================================================================================

uint8_t check_num(const uint8_t* bytes, int count) {
  unsigned sum = 0;
  for (int i = 0; i < count - 3; ++i)
    sum += bytes[i];
  return static_cast<uint8_t>(sum & 0xFF);
}

int32_t Protocol_parse(const uint8_t* frame) {
  const int L = frame[1];
  if (frame[0] != FRAME_HEADER) {
    std::puts("CMD_HEADER_0 ERROR");
    return -1;
  }
  if (frame[L] != check_num(frame, L + 3)) {
    std::puts("CMD_END_CHECK ERROR");
    return -1;
  }
  if (frame[L + 1] != FRAME_END_SEC) {
    std::puts("CMD_END_SEC ERROR");
    return -1;
  }
  if (frame[L + 2] != FRAME_END_FIR) {
    std::puts("CMD_END_FIR ERROR");
    return -1;
  }
  // A frame shorter than its fixed part would make the value count (L - 6) negative.
  if (L < 6) {
    std::printf("CMD_LENGTH ERROR: L=%d is below 6, frame dropped\n", L);
    return -1;
  }
  return 0;
}

// =============================================================================================
// Inbound handlers (listener thread): records first, then the screen event.
// =============================================================================================

namespace {

bool is_ready() {
  return stUIStatus.event_distrubut_reday != 0;
}

void basic_func(const uint8_t* frame) {
  switch (frame[4]) {
    case 38:  // wind speed
      stUIStatus.s16WindSpeed = le16(frame + 6);
      event_distrubution(EV_WIND);
      break;
    case BASIC_MENU_LEVEL:  // which screen is shown: answered at once
      stUIStatus.s8CurrentMenu = (top_window_name() == HOME_WINDOW) ? 0 : 1;
      GUI_SEND_BASIC_FUNCTION_MSG(BASIC_MENU_LEVEL);
      break;
    case 25:  // fill light over-temperature
      stUIStatus.s8LightOverheat = static_cast<char>(frame[6]);
      event_distrubution(EV_LIGHT_OVERHEAT);
      break;
    default: break;
  }
}

void IrInfo_func(const uint8_t* frame) {
  switch (frame[4]) {
    case INFRARED_BRIGHTLIGHT:
      stUIStatus.s8IrBrightLight = static_cast<char>(frame[6]);
      event_distrubution(EV_BRIGHT_LIGHT);
      break;
    case INFRARED_ZOOM:
      stUIStatus.s8IRZoom = le16(frame + 6);
      std::printf("stUIStatus.s8IRZoom = %d\n", stUIStatus.s8IRZoom);
      if (is_ready()) {
        event_distrubution(EV_ZOOM);
        event_distrubution(EV_ZOOM_CHANGED);
      }
      break;
    default: break;
  }
}

void RabgeValueRefressh_func(const uint8_t* frame) {
  if (frame[3] != 2) return;
  if (frame[6] == RANGE_RETURN_SUCCESE) {
    // The distance is the one big-endian value of the protocol.
    stUIStatus.s16Distance = static_cast<int16_t>(frame[7] * 256 + frame[8]);
    std::printf("stUIStatus.s16Distance==============%d\n", stUIStatus.s16Distance);
  } else if (frame[6] == RANGE_RETURN_FAIL) {
    std::puts("===============测距返回失败");
    stUIStatus.s16Distance = 0;
  }
  if (u8(stDevStatus.s8RangeType) != RANGE_CONTINUOUS || u8(stUIStatus.s8RangeMode) != 0) {
    event_distrubution(EV_DISTANCE);
  }
}

void wifi_func(const uint8_t* frame) {
  if (frame[3] != WIFI_CONNECT) return;
  stUIStatus.s8WifiConnection = static_cast<char>(frame[6]);
  event_distrubution(EV_WIFI_CONNECTION);
}

void compass_func(const uint8_t* frame) {
  if (frame[3] != 0) return;
  const int magnitude = frame[7] + frame[8] * 256;
  const int signed_value = frame[6] != 0 ? -magnitude : magnitude;
  switch (frame[4]) {
    case COMPASS_AZIMUTH_ANGLE:
      stUIStatus.s16CompassAzimuth = static_cast<int16_t>(magnitude);
      if (is_ready()) event_distrubution(EV_COMPASS_AZIMUTH);
      break;
    case COMPASS_PITCH_ANGLE:
      stUIStatus.s16CompassPitch = static_cast<int16_t>(signed_value);
      if (is_ready()) event_distrubution(EV_COMPASS_PITCH);
      break;
    case COMPASS_SLANT_ANGLE:
      stUIStatus.s16CompassSlant = static_cast<int16_t>(signed_value);
      if (is_ready()) event_distrubution(EV_COMPASS_SLANT);
      break;
    default: break;
  }
}

// ---- keys ----

struct KeyRow {
  const char* printed;
  uint8_t code;  // 0: nothing posted
  bool down;
  bool up;
};

constexpr std::array<KeyRow, KEY_NULL_MAX> KEY_TABLE = {{
    {"up short", GUI_KEY_FOCUS_UP_S, true, true},
    {"up long", GUI_KEY_FOCUS_UP_L, true, false},
    {"up long pop", GUI_KEY_FOCUS_UP_L, false, true},
    {"down short", GUI_KEY_FOCUS_DOWN_S, true, true},
    {"down long", GUI_KEY_FOCUS_DOWN_L, true, false},
    {"down long pop", GUI_KEY_FOCUS_DOWN_L, false, true},
    {"power short", GUI_KEY_POWER_S, true, true},
    {"power long", GUI_KEY_POWER_L, true, true},
    {"power long pop", GUI_KEY_POWER_L_POP, true, true},
    {"photo short", GUI_KEY_PHOTO_S, true, true},
    {"photo long", GUI_KEY_PHOTO_L, true, true},
    {"photo long pop", GUI_KEY_PHOTO_L_POP, true, true},
    {"fuction short", GUI_KEY_FUCTION_S, true, true},
    {"fuction long", GUI_KEY_FUCTION_L, true, true},
    {"fuction long pop", GUI_KEY_FUCTION_L_POP, true, true},
    {"range short", GUI_KEY_RANGE_S, true, true},
    {"range long", GUI_KEY_RANGE_L, true, true},
    {"range long POP", GUI_KEY_RANGE_L_POP, true, true},
    {"range fuction short", GUI_KEY_PHOTO_FUCTION_S, true, true},
    {"range fuction short", 0, false, false},
    {"range photo short", 0, false, false},
    {"up down long pop", 0, false, false},
}};

void power_short_rule() {
  if (top_window_name() == HOME_WINDOW && u8(stUIStatus.s8InterfaceState) == INTERFACE_OBSERVE) {
    // A recording runs when the flag says so or the home screen's recording clock ticks (the
    // clock is read as one word; the UI thread writes it).
    const int32_t clock_timer = __atomic_load_n(&record_status.timer_id, __ATOMIC_RELAXED);
    if (u8(stUIStatus.s8RecordingState) == 1 || clock_timer != 0) {
      event_distrubution(EV_RECORD_TIP);
      return;
    }
    stUIStatus.s8InterfaceState = INTERFACE_AOD;
    GUI_SEND_BASIC_FUNCTION_MSG(BASIC_AUTO_SCREEN);
    if (u8(stUIStatus.s8LaserSwitch) == 1) {
      stUIStatus.s8LaserSwitch = 0;
      GUI_SEND_BASIC_FUNCTION_MSG(BASIC_LASER_SWITCH);
    }
    if (u8(stUIStatus.s8RangeMode) == RANGE_MEASURING) GUI_SEND_DISTANCE_FUNCTION_MSG(1, 0);
    return;
  }
  GUI_SEND_PARAM_FUNCTION_MSG(SAVE_ALLPARAM);
}

void power_long_rule() {
  std::string top = top_window_name();
  if (top == "Zavo_format_restart" || top == "Zavo_Restoring" || top == UPDATA_WINDOW) return;
  store_temp_window(top);
  Inf_LinkNavigate(SHUT_DOWN_WINDOW);
}

void key_func(uint8_t button) {
  if (button >= KEY_NULL_MAX) return;
  const KeyRow& row = KEY_TABLE[button];
  std::puts(row.printed);

  switch (button) {
    case KEY_POWER_S: power_short_rule(); break;
    case KEY_POWER_L: power_long_rule(); break;
    case KEY_RANGE_FUCTION_S:  // laser toggle
      if (top_window_name() == UPDATA_WINDOW) return;
      stUIStatus.s8LaserSwitch = u8(stUIStatus.s8LaserSwitch) == 0 ? 1 : 0;
      GUI_SEND_BASIC_FUNCTION_MSG(BASIC_LASER_SWITCH);
      return;
    case KEY_RANGE_PHOTO_S:  // shutter
      if (top_window_name() == UPDATA_WINDOW) return;
      if (u8(stUIStatus.s8UsbMode) == 1) {
        stUIStatus.s8UsbMode = 0;
        GUI_SEND_BASIC_FUNCTION_MSG(BASIC_USB_TYPE);
      }
      GUI_SEND_INFRARED_MSG(INFRARED_CORRECT);
      return;
    case KEY_UP_POWER_L:  // ballistic calculator, always the first profile
      if (top_window_name() == UPDATA_WINDOW) return;
      info[0].ballistics_sw = info[0].ballistics_sw == 0 ? 1 : 0;
      GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 0);
      if (info[0].ballistics_sw == 1 && u8(stUIStatus.s8RangeMode) != RANGE_MEASURING) {
        GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 0);
      }
      return;
    default: break;
  }

  if (row.code != 0) mail_key(row.code, row.down, row.up);

  if (button == KEY_FUCTION_L) GUI_SEND_PARAM_FUNCTION_MSG(SAVE_ALLPARAM);
}

void key_message(const uint8_t* frame) {
  std::puts("receive key message!");
  const uint8_t button = frame[6];
  if ((button == KEY_POWER_S || button == KEY_POWER_L) &&
      u8(stUIStatus.s8InterfaceState) == INTERFACE_AOD && top_window_name() == HOME_WINDOW) {
    // The dark screen only wakes up.
    stUIStatus.s8InterfaceState = INTERFACE_OBSERVE;
    GUI_SEND_BASIC_FUNCTION_MSG(BASIC_AUTO_SCREEN);
    return;
  }
  key_func(button);
}

void battery_func(const uint8_t* frame) {
  switch (frame[4]) {
    case BATTERY_VALUE:
      stUIStatus.s16BatteryValue = le16(frame + 6);
      std::printf("battery is %d\n", stUIStatus.s16BatteryValue);
      if (is_ready()) event_distrubution(EV_BATTERY);
      break;
    case BATTERY_TYPE:
      stUIStatus.s8BatteryType = static_cast<char>(frame[6]);
      if (is_ready()) {
        event_distrubution(EV_BATTERY_TYPE);
        event_distrubution(EV_BATTERY);
      }
      break;
    default: break;
  }
}

// Clears the record and copies the frame's values into it, never past its end.
void load_record(void* record, size_t size, const uint8_t* values, int count, const char* what) {
  std::memset(record, 0, size);
  size_t n = static_cast<size_t>(count);
  if (n > size) {
    std::printf("parameter_func: %s payload of %zu bytes cut to the record's %zu\n", what, n, size);
    n = size;
  }
  std::memcpy(record, values, n);
}

bool profile_index_ok(int index) {
  if (index <= PROFILE_LAST) return true;
  std::printf("parameter_func: profile index %d is outside 0..%d, frame dropped\n", index,
              PROFILE_LAST);
  return false;
}

void first_language_check() {
  std::string path = device_path(FIRST_LANGUAGE_FILE);
  if (access(path.c_str(), F_OK) == 0) {
    std::puts("####################first_language_file exit!");
    stUIStatus.s8FirstLanguageFlag = 1;
    if (std::remove(path.c_str()) != 0)
      std::printf("Error: file remove  %s\n", std::strerror(errno));
  } else {
    // Every profile load asks again, and the first one of a first start has already taken the
    // marker: the flag keeps its value (0 from start) so that the boot logo, opened once all
    // five profiles are in, still sees the first start.
    std::puts("#############first_language_file not exit!");
  }
}

void parameter_func(const uint8_t* frame) {
  const int count = frame[1] - 6;
  const uint8_t* values = frame + 6;
  const int index = frame[4];
  switch (frame[3]) {
    case BASIC_PARAM:
      load_record(&stDevStatus, sizeof(stDevStatus), values, count, "settings");
      std::printf("stDevStatus.s8RecoilSensitivity ======= %d\n\n\n\n\n",
                  stDevStatus.s8RecoilSensitivity);
      break;
    case RETICLE_PARAM: load_record(&IR_Cursor, sizeof(IR_Cursor), values, count, "zeroing"); break;
    case BALLISTIC_PARM_midway: {
      if (!profile_index_ok(index)) return;
      stDevStatus.s8BallisticGroup = static_cast<char>(index);
      load_record(&info[index], sizeof(info[index]), values, count, "ballistic profile");
      if (info[0].ballistics_sw == 1 && u8(stUIStatus.s8RangeMode) != RANGE_MEASURING) {
        GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 0);
      }
      std::string top = top_window_name();
      if (top != TIP_BALLISTIC_WINDOW && u8(stUIStatus.s8InterfaceState) == INTERFACE_OBSERVE) {
        store_temp_window(top);
        Inf_LinkNavigate(TIP_BALLISTIC_WINDOW);
      }
      event_distrubution(EV_BALLISTIC_PROFILE);
      break;
    }
    case BALLISTIC_PARM:
      if (!profile_index_ok(index)) return;
      load_record(&info[index], sizeof(info[index]), values, count, "ballistic profile");
      std::printf("info.gun.bullet.length  ======%.02f\n", info[index].gun.bullet.length);
      first_language_check();
      if (index == PROFILE_LAST) stUIStatus.event_distrubut_reday = 1;
      break;
    default: break;
  }
}

void Reticle_PositionSet_func(const uint8_t* frame) {
  const int16_t value = le16(frame + 6);
  const int axis = frame[4];  // 1: x, 2: y
  switch (frame[3]) {
    case RETICLE_POSITION:
      if (axis == 1) stDevStatus.s16ReticlePositionX = value;
      if (axis == 2) stDevStatus.s16ReticlePositionY = value;
      std::printf("stDevStatus.s16ReticlePositionX=== %d stDevStatus.s16ReticlePositionY===%d\n",
                  stDevStatus.s16ReticlePositionX, stDevStatus.s16ReticlePositionY);
      event_distrubution(EV_RETICLE_POSITION);
      break;
    case RETICLE_LASER_POSITION:
      if (axis == 1) stDevStatus.s16LaserIndicatX = value;
      if (axis == 2) stDevStatus.s16LaserIndicatY = value;
      std::printf("stDevStatus.s16LaserIndicatX=== %d stDevStatus.s16LaserIndicatY===%d\n",
                  stDevStatus.s16LaserIndicatX, stDevStatus.s16LaserIndicatY);
      event_distrubution(EV_LASER_MARKER_MOVE);
      break;
    case RETICLE_RANGE_POSITION:
      if (axis == 1) stDevStatus.s16RangeOffsetX = value;
      if (axis == 2) stDevStatus.s16RangeOffsetY = value;
      std::printf("stDevStatus.s16RangeOffsetX=== %d stDevStatus.s16RangeOffsetY===%d\n",
                  stDevStatus.s16RangeOffsetX, stDevStatus.s16RangeOffsetY);
      event_distrubution(EV_RANGE_MARKER_MOVE);
      break;
    default: break;
  }
}

void tap_func(const uint8_t* frame) {
  switch (frame[4]) {
    case TAP_PROCESS: {
      const uint64_t frames = le64(frame + 6);
      stUIStatus.u64VideoCurrentFrames = frames;
      stUIStatus.u64VideoForwardFrames = frames;
      std::printf("\n\n\n get frams = %ld!\n", static_cast<long>(frames));
      event_distrubution(EV_PLAY_POSITION);
      break;
    }
    case TAP_TOTAL_TIME: {
      stUIStatus.u64VideoTotalFrames = le64(frame + 6);
      const uint16_t rate = static_cast<uint16_t>(frame[14] | (frame[15] << 8));
      if (rate != 0) stUIStatus.u8VideoCurrentFrames = rate;
      event_distrubution(EV_PLAY_LENGTH);
      break;
    }
    default: break;
  }
}

void blind_func(const uint8_t* frame) {
  if (frame[3] == BLIND_SAVE) stUIStatus.s8BlindSaveStatus = static_cast<char>(frame[6]);
}

void gg_func(const uint8_t* frame) {
  switch (frame[3]) {
    case GG_CLEAR:
      stUIStatus.s8GGClearStatus = static_cast<char>(frame[6]);
      event_distrubution(EV_GG_CLEAR);
      break;
    case GG_GET:
      stUIStatus.s8GGGetStatus = static_cast<char>(frame[6]);
      event_distrubution(EV_GG_GET);
      break;
    case GG_SAVE:
      stUIStatus.s8GGSaveStatus = static_cast<char>(frame[6]);
      event_distrubution(EV_GG_SAVE);
      break;
    default: break;
  }
}

void updata_func(const uint8_t* frame) {
  switch (frame[3]) {
    case UPDATA_STATE: stUIStatus.s8Updata_state = static_cast<char>(frame[6]); break;
    case UPDATA_RESULT: stUIStatus.s8Updata_result = static_cast<char>(frame[6]); break;
    case UPDATA_START_NOTICE:
      if (updata_notice_flag == 0) {
        updata_notice_flag = 2;
        if (u8(stUIStatus.s8BlindSwitch) != 0) {
          stUIStatus.s8BlindSwitch = 0;
          GUI_SEND_BLIND_MSG(BLIND_CURSOR_SWITCH);
        }
        Inf_LinkNavigate(UPDATA_WINDOW);
        sleep_ms(1000);
      } else {
        stUIStatus.s8Updata_check = 3;
        GUI_SEND_UPDATA_MSG(UPDATA_CHECK);
      }
      break;
    default: break;
  }
  event_distrubution(EV_UPDATA);
}

float frame_float(const uint8_t* p) {
  std::lock_guard<std::mutex> guard(data_lock);
  for (int i = 0; i < 4; ++i)
    data.bytes[i] = p[i];
  return data.f;
}

void ballistic_func(const uint8_t* frame) {
  result_ball.moaV = frame_float(frame + 6);
  result_ball.moaH = frame_float(frame + 10);
  event_distrubution(EV_BALLISTIC_RESULT);
}

void wind_info_func(const uint8_t* frame) {
  stUIStatus.wind_connect_state = static_cast<char>(frame[6]);
  std::printf("stUIStatus.wind_connect_state = %d\n", stUIStatus.wind_connect_state);
}

}  // namespace

void uiOperationControl(uint8_t* frame, uint32_t length) {
  (void)length;  // the frame carries its own length
  if (Protocol_parse(frame) != 0 || frame[2] > FRAME_TYPE_MAX) {
    frames_dropped.fetch_add(1, std::memory_order_relaxed);
    return;
  }
  switch (frame[2]) {
    case 0: basic_func(frame); break;
    case 1: IrInfo_func(frame); break;
    case 4: RabgeValueRefressh_func(frame); break;
    case 5: wifi_func(frame); break;
    case 6: compass_func(frame); break;
    case 7: key_message(frame); break;
    case 15: battery_func(frame); break;
    case 16: parameter_func(frame); break;
    case 22: Reticle_PositionSet_func(frame); break;
    case 23: tap_func(frame); break;
    case 24: blind_func(frame); break;
    case 25: gg_func(frame); break;
    case 26: updata_func(frame); break;
    case 27: ballistic_func(frame); break;
    case 28: event_distrubution(EV_RECOIL_TRIGGERED); break;
    case 29: wind_info_func(frame); break;
    default: break;
  }
}

void msgEventCallback(Inf_MsgText* text, void* ctx) {
  (void)ctx;
  if (text->type != MSG_TYPE_FRAMED) return;
  frames_received.fetch_add(1, std::memory_order_relaxed);
  uiOperationControl(text->context, text->length);
  mail_kick();
}

// =============================================================================================
// Outbound: frame builders
// =============================================================================================

int32_t Msgtext_Ui_To_App(uint8_t type, int32_t length, const uint8_t* frame) {
  if (Inf_SendMsgEvent(type, 0xFF, frame, length) != 0) {
    std::puts("Ui to App Send failed");
    return -1;
  }
  std::printf("InfMsgEvent_Ui_To_App:  ");
  for (int i = 0; i < length; ++i)
    std::printf("[%02x] ", frame[i]);
  std::printf("\n");
  return 1;
}

namespace {

// Lays out header, L, the given bytes 2..L-1, checksum and trailer, and sends the frame.
int32_t send_frame(const uint8_t* body, int body_size) {
  std::array<uint8_t, 3 + 255> frame{};
  const int L = 2 + body_size;
  frame[0] = FRAME_HEADER;
  frame[1] = static_cast<uint8_t>(L);
  std::memcpy(frame.data() + 2, body, static_cast<size_t>(body_size));
  frame[L] = check_num(frame.data(), L + 3);
  frame[L + 1] = FRAME_END_SEC;
  frame[L + 2] = FRAME_END_FIR;
  return Msgtext_Ui_To_App(1, L + 3, frame.data());
}

}  // namespace

int32_t BasicFunctionHandlerToApp(const uint8_t* bytes) {
  const uint8_t body[5] = {bytes[0], bytes[1], bytes[2], 0, bytes[3]};
  return send_frame(body, sizeof(body));
}

int32_t InfHandlerToApp(const uint8_t* bytes) {
  const uint8_t body[6] = {bytes[0], bytes[1], bytes[2], 0, bytes[3], bytes[4]};
  return send_frame(body, sizeof(body));
}

int32_t cliponPositionHandlerToApp(const uint8_t* bytes) {
  const uint8_t body[8] = {bytes[0], bytes[1], bytes[2], 0, bytes[3], bytes[4], bytes[5], bytes[6]};
  return send_frame(body, sizeof(body));
}

int32_t VideoFrameHandlerToApp(const uint8_t* bytes) {
  uint8_t body[12] = {bytes[0], 1, bytes[1], 0};
  std::memcpy(body + 4, bytes + 2, 8);
  return send_frame(body, sizeof(body));
}

int32_t UIreadyToApp(uint8_t type, uint8_t value) {
  const uint8_t body[5] = {type, 0, 0, 0, value};
  return send_frame(body, sizeof(body));
}

// =============================================================================================
// Outbound: senders. Each reads the record field named by its index at the time of the call.
// =============================================================================================

namespace {

uint8_t byte_of(char c) {
  return static_cast<uint8_t>(c);
}

void send_basic(uint8_t index, uint8_t value) {
  const uint8_t bytes[4] = {0, 0, index, value};
  BasicFunctionHandlerToApp(bytes);
}

ret_t on_timer_ui_to_app(const timer_info_t* timer) {
  (void)timer;
  send_basic(BASIC_VIDEO_MODE, byte_of(stDevStatus.s8VideoMode));
  return RET_REMOVE;
}

void start_video_mode_timer() {
  timer_add(on_timer_ui_to_app, nullptr, 100);
}

ret_t on_timer_shutter_close(const timer_info_t* timer) {
  (void)timer;
  stUIStatus.s8ShutterState = 0;
  timer_id_shutter = 0;
  event_distrubution(EV_SHUTTER);
  return RET_REMOVE;
}

void start_shutter_timer() {
  // One shutter timer at a time: a second press while it runs does not start another.
  if (timer_id_shutter == 0) timer_id_shutter = timer_add(on_timer_shutter_close, nullptr, 500);
}

}  // namespace

int32_t GUI_SEND_BASIC_FUNCTION_MSG(uint8_t index) {
  switch (index) {
    case BASIC_VIDEO_MODE:
      event_distrubution(EV_RETICLE_SWITCH);
      event_distrubution(EV_ZOOM);
      run_on_ui_thread(start_video_mode_timer);
      break;
    case BASIC_INFO_DISPLAY_MODE: send_basic(index, byte_of(stDevStatus.s8ConciseMode)); break;
    case BASIC_SCREEN_LIGHT: send_basic(index, byte_of(stDevStatus.s8ScreenBrightness)); break;
    case BASIC_CVBS_MODE: send_basic(index, byte_of(stDevStatus.s8VideoOut)); break;
    case BASIC_RESET_MODE:
    case BASIC_STORAGE_FORMAT:
    case BASIC_SHUT_DOWN:
    case BASIC_REBOOT: send_basic(index, 1); break;
    case BASIC_AUTO_SCREEN:
      send_basic(index, byte_of(stUIStatus.s8InterfaceState));
      event_distrubution(EV_STANDBY);
      break;
    case 16: send_basic(index, byte_of(stDevStatus.s8Language)); break;
    case 17: send_basic(index, byte_of(stDevStatus.s8SortType)); break;
    case BASIC_USB_TYPE: send_basic(index, byte_of(stUIStatus.s8UsbMode)); break;
    case 19: send_basic(index, byte_of(stUIStatus.s8PowerSwitch)); break;
    case 21: send_basic(index, byte_of(stDevStatus.s8UseMode)); break;
    case BASIC_LASER_SWITCH:
      send_basic(index, byte_of(stUIStatus.s8LaserSwitch));
      event_distrubution(EV_LASER_SWITCH);
      break;
    case 23: send_basic(index, byte_of(stDevStatus.s8FillLightSwitch)); break;
    case 24: send_basic(index, byte_of(stDevStatus.s8FillLightBright)); break;
    case BASIC_MICRO:
      send_basic(index, byte_of(stDevStatus.s8MicroSwitch));
      event_distrubution(EV_MICRO_SWITCH);
      break;
    case 30: {
      // The one basic frame whose command byte is not 0.
      const uint8_t bytes[4] = {0, 30, SUB_NONE, 0};
      BasicFunctionHandlerToApp(bytes);
      break;
    }
    case 33:
      send_basic(index, byte_of(stDevStatus.s8CompassSwitch));
      event_distrubution(EV_COMPASS_SWITCH);
      break;
    case BASIC_WIND_SWITCH:
      stUIStatus.s16WindSpeed = 0;
      send_basic(index, byte_of(stUIStatus.s8WindSwitch));
      event_distrubution(EV_WIND);
      break;
    case 35: send_basic(index, byte_of(stUIStatus.s8WindCountSwitch)); break;
    case BASIC_RANGE_TYPE: send_basic(index, byte_of(stDevStatus.s8RangeType)); break;
    case 37:
      send_basic(index, byte_of(stDevStatus.s8DistanceUint));
      event_distrubution(EV_DISTANCE);
      break;
    case BASIC_MENU_LEVEL: send_basic(index, byte_of(stUIStatus.s8CurrentMenu)); break;
    default: break;  // 1..5, 9, 10, 15, 20, 25, 27..29, 31, 38 and above 39 send nothing
  }
  return 0;
}

int32_t GUI_SEND_CLIPON_POSITION_MSG(uint8_t index) {
  if (index != 20) return 0;
  uint8_t bytes[7] = {0, 0, 20};
  put_le16(bytes + 3, stDevStatus.s16CliponPositionX);
  put_le16(bytes + 5, stDevStatus.s16CliponPositionY);
  cliponPositionHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_PARAM_FUNCTION_MSG(uint8_t index) {
  if (index != SAVE_ALLPARAM) return 0;
  const uint8_t bytes[4] = {16, SAVE_ALLPARAM, 0, 0};
  BasicFunctionHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_INFRARED_MSG(uint8_t index) {
  uint8_t bytes[5] = {1, INFRARED_BASIC, index, 0, 0};
  switch (index) {
    case INFRARED_CORRECT:
      bytes[1] = INFRARED_CORRECT_TYPE;
      bytes[2] = 0;
      bytes[3] = byte_of(stDevStatus.s8CorrectType);
      InfHandlerToApp(bytes);
      stUIStatus.s8ShutterState = 1;
      event_distrubution(EV_SHUTTER);
      run_on_ui_thread(start_shutter_timer);
      if (u8(stUIStatus.s8Irfreeze) == 1) event_distrubution(EV_FREEZE);
      return 0;
    case INFRARED_LIGHT: bytes[3] = byte_of(stDevStatus.s8IrBrightness); break;
    case INFRARED_CONTRACT: bytes[3] = byte_of(stDevStatus.s8IrContrast); break;
    case INFRARED_ENHANCE: bytes[3] = byte_of(stDevStatus.s8IrEnchance); break;
    case INFRARED_POLARITY:
      bytes[3] = byte_of(stDevStatus.s8IrPolarity);
      InfHandlerToApp(bytes);
      event_distrubution(EV_POLARITY);
      return 0;
    case INFRARED_CORRECT_TYPE_CHOOSE: bytes[3] = byte_of(stDevStatus.s8CorrectType); break;
    case INFRARED_LIGHTPAOTECT: bytes[3] = byte_of(stDevStatus.s8Stronglight_protect); break;
    case INFRARED_SCENE: bytes[3] = byte_of(stDevStatus.s8IrScene); break;
    case INFRARED_FREEZE: bytes[3] = byte_of(stUIStatus.s8Irfreeze); break;
    case INFRARED_HOTTRACK: bytes[3] = byte_of(stDevStatus.s8HotTrack); break;
    case INFRARED_AUTOSHUTTER: bytes[3] = byte_of(stDevStatus.s8AutoShutter); break;
    case INFRARED_ZOOM: put_le16(bytes + 3, stUIStatus.s8IRZoom); break;
    default: return 0;  // INFRARED_BRIGHTLIGHT, 7, INFRARED_TEMPERATURE, 14, 15 and others
  }
  InfHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_VISI_MSG(uint8_t index) {
  uint8_t bytes[5] = {2, index, SUB_NONE, 0, 0};
  switch (index) {
    case VISI_LIGHT: bytes[3] = byte_of(stDevStatus.s8VisiBrightness); break;
    case VISI_CONTRACT: bytes[3] = byte_of(stDevStatus.s8VisiContrast); break;
    case VISI_ZOOM: bytes[3] = byte_of(stUIStatus.s8VisiZoom); break;
    case VISI_MODE: bytes[3] = byte_of(stUIStatus.s8VisiMode); break;
    default: return 0;
  }
  visiHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_WIFI_MSG(uint8_t index) {
  if (index != WIFI_SWITCH) return 0;
  const uint8_t bytes[4] = {5, WIFI_SWITCH, SUB_NONE, byte_of(stUIStatus.s8WifiSwitch)};
  wifiHandlerToApp(bytes);
  event_distrubution(EV_WIFI_SWITCH);
  return 0;
}

int32_t GUI_SEND_COMPASS_MSG(uint8_t index) {
  if (index != 0) return 0;
  const int declination = stDevStatus.s16CompassMagnetic;
  const int magnitude = declination < 0 ? -declination : declination;
  uint8_t bytes[7] = {6, COMPASS_OFFESET_PARAM, 0, static_cast<uint8_t>(declination < 0 ? 1 : 0)};
  put_le16(bytes + 4, magnitude / 10);
  bytes[6] = static_cast<uint8_t>(magnitude % 10);
  commpassHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_COMPASS_CORRECT(uint8_t index) {
  static constexpr const char* PRINTED[] = {"horizontal start!", "horizontal stop!",
                                            "vertical start!", "vertical stop!"};
  if (index > COMPASS_VERTICAL_STOP) return 0;
  std::puts(PRINTED[index]);
  const uint8_t bytes[4] = {6, COMPASS_CORRECT, index, 0};
  commpassCorrectToApp(bytes);
  return 0;
}

int32_t GUI_SEND_UI_READY_MSG(uint8_t value) {
  // Cleared before the frame leaves: the device's answer may arrive at once.
  stUIStatus.event_distrubut_reday = 0;
  UIreadyToApp(8, value);
  return 0;
}

int32_t GUI_SEND_FUSION_MSG(uint8_t index) {
  uint8_t bytes[5] = {20, index, SUB_NONE, 0, 0};
  switch (index) {
    case FUSION_CONTRACT: bytes[3] = byte_of(stDevStatus.s8FuContrast); break;
    case FUSION_MODE: bytes[3] = byte_of(stDevStatus.s8FuMode); break;
    case FUSION_ZOOM: bytes[3] = byte_of(stUIStatus.s8FuZoom); break;
    default: return 0;
  }
  fusionHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_FUSION_POSITION_MSG(uint8_t index) {
  if (index != FUSION_POSITION) return 0;
  uint8_t bytes[7] = {20, FUSION_POSITION, SUB_NONE};
  put_le16(bytes + 3, stDevStatus.s16FushionX);
  put_le16(bytes + 5, stDevStatus.s16FushionY);
  fusionPositionHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_PIP_MSG(uint8_t index) {
  if (index != PIP_MODE) return 0;
  const uint8_t bytes[5] = {21, PIP_MODE, SUB_NONE, byte_of(stDevStatus.s8PipMode), 0};
  pipHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_RETICLE_MSG(uint8_t index) {
  uint8_t bytes[4] = {22, index, SUB_NONE, 0};
  const uint8_t choose = byte_of(stUIStatus.s8ReticleTypeColorChoose);
  switch (index) {
    case RETICLE_COLOR:
      bytes[3] = byte_of(stDevStatus.s8ReticleColour);
      reticleHandlerToApp(bytes);
      event_distrubution(EV_RETICLE_COLOR);
      break;
    case RETICLE_SWITCH:
      bytes[3] = byte_of(stDevStatus.s8ReticleSwitch);
      reticleHandlerToApp(bytes);
      event_distrubution(EV_RETICLE_SWITCH);
      break;
    case RETICLE_TYPE:
      bytes[3] = byte_of(stDevStatus.s8ReticleType);
      event_distrubution(EV_RETICLE_TYPE);
      event_distrubution(EV_ZOOM);
      reticleHandlerToApp(bytes);
      break;
    case RETICLE_MENU_SWITCH:
      bytes[3] = byte_of(stDevStatus.s8ReticleMenuSwitch);
      event_distrubution(EV_RETICLE_MENU_SWITCH);
      reticleHandlerToApp(bytes);
      break;
    case RETICLE_LIGHT:
      bytes[3] = byte_of(stDevStatus.s8ReticleBrightness);
      reticleHandlerToApp(bytes);
      event_distrubution(EV_RETICLE_LIGHT);
      break;
    case RETICLE_GROUP:
      bytes[3] = IR_Cursor.u8CurrentGroup;
      event_distrubution(EV_RETICLE_MOVE);
      sleep_ms(1);
      event_distrubution(EV_BALLISTIC_PROFILE);
      sleep_ms(1);
      event_distrubution(EV_ZOOM);
      event_distrubution(EV_BALLISTIC_RESULT);
      reticleHandlerToApp(bytes);
      break;
    case RETICLE_ZERO: {
      const unsigned group = IR_Cursor.u8CurrentGroup;
      if (group >= 5) {
        std::printf("GUI_SEND_RETICLE_MSG: reticle group %u is outside 0..4, nothing sent\n",
                    group);
        return 0;
      }
      bytes[3] = IR_Cursor.group[group].u8CurrentZero;
      event_distrubution(EV_RETICLE_MOVE);
      sleep_ms(1);
      event_distrubution(EV_BALLISTIC_PROFILE);
      sleep_ms(1);
      event_distrubution(EV_ZOOM);
      reticleHandlerToApp(bytes);
      break;
    }
    case RETICLE_LASER_POSITION:
      bytes[2] = choose;
      bytes[3] =
          byte_of(choose == 3 ? stDevStatus.s8LaserReticleColor : stDevStatus.s8LaserReticleType);
      event_distrubution(EV_LASER_RETICLE);
      reticleHandlerToApp(bytes);
      break;
    case RETICLE_RANGE_POSITION:
      bytes[2] = choose;
      bytes[3] =
          byte_of(choose == 3 ? stDevStatus.s8RangeReticleColor : stDevStatus.s8RangeReticleType);
      event_distrubution(EV_RANGE_RETICLE);
      reticleHandlerToApp(bytes);
      break;
    case RETICLE_ENTER_RETICLE_MOVE:
      bytes[3] = byte_of(stUIStatus.s8Enter_reticle_move);
      event_distrubution(EV_ZOOM);
      event_distrubution(EV_RETICLE_MOVE);
      reticleHandlerToApp(bytes);
      break;
    case RETICLE_PIP_EVENT:
      bytes[2] = choose;
      bytes[3] =
          byte_of(choose == 3 ? stDevStatus.s8PIPReticleColor : stDevStatus.s8PIPReticleType);
      event_distrubution(EV_PIP_RETICLE);
      reticleHandlerToApp(bytes);
      break;
    default:  // RETICLE_POSITION and RETICLE_DISTANCE go through GUI_SEND_RETICLE_POSITION_MSG
      break;
  }
  return 0;
}

int32_t GUI_SEND_RETICLE_POSITION_MSG(uint8_t index) {
  uint8_t bytes[7] = {22, index, SUB_NONE};
  switch (index) {
    case RETICLE_POSITION:
    case RETICLE_DISTANCE: {
      const unsigned group = IR_Cursor.u8CurrentGroup;
      const unsigned zero = group < 5 ? IR_Cursor.group[group].u8CurrentZero : 0;
      if (group >= 5 || zero >= 5) {
        std::printf(
            "GUI_SEND_RETICLE_POSITION_MSG: zero %u of group %u does not exist, nothing "
            "sent\n",
            zero, group);
        return 0;
      }
      const Inf_Cursor_Zero& z = IR_Cursor.group[group].zero[zero];
      if (index == RETICLE_DISTANCE) {
        uint8_t distance[5] = {22, RETICLE_DISTANCE, SUB_NONE};
        put_le16(distance + 3, z.u16IrCursorDistance);
        reticleDistanceHandlerToApp(distance);
        event_distrubution(EV_ZOOM);
        return 0;
      }
      put_le16(bytes + 3, z.s8IrCursorCurrentX);
      put_le16(bytes + 5, z.s8IrCursorCurrentY);
      reticlePositionHandlerToApp(bytes);
      event_distrubution(EV_RETICLE_MOVE);
      return 0;
    }
    case RETICLE_LASER_POSITION:
      put_le16(bytes + 3, stDevStatus.s16LaserIndicatX);
      put_le16(bytes + 5, stDevStatus.s16LaserIndicatY);
      reticlePositionHandlerToApp(bytes);
      event_distrubution(EV_LASER_MARKER_MOVE);
      return 0;
    case RETICLE_RANGE_POSITION:
      put_le16(bytes + 3, stDevStatus.s16RangeOffsetX);
      put_le16(bytes + 5, stDevStatus.s16RangeOffsetY);
      reticlePositionHandlerToApp(bytes);
      event_distrubution(EV_RANGE_MARKER_MOVE);
      return 0;
    case RETICLE_BACK_RETICLE_ZERO_CHILD: event_distrubution(EV_RETICLE_ZERO_BACK); return 0;
    default: return 0;
  }
}

int32_t GUI_SEND_TAP_VIDEO_MSG(uint8_t command, uint8_t sub, const char* name) {
  if (command > TAP_TOTAL_TIME) return 0;
  const size_t n = name != nullptr ? std::strlen(name) : 0;
  if (n > TAP_NAME_MAX) {
    std::printf("GUI_SEND_TAP_VIDEO_MSG: file name of %zu bytes is longer than %zu, nothing sent\n",
                n, TAP_NAME_MAX);
    return 0;
  }
  // type, command, sub, 0, then the name and its NUL (a lone NUL without a name).
  std::array<uint8_t, 4 + TAP_NAME_MAX + 1> body{};
  body[0] = 23;
  body[1] = command;
  body[2] = sub;
  if (n > 0) std::memcpy(body.data() + 4, name, n);
  send_frame(body.data(), static_cast<int>(4 + n + 1));
  return 0;
}

int32_t GUI_SEND_VIDEO_FRAME_MSG(uint8_t index) {
  if (index != TAP_REWIND_FORWARD) return 0;
  const uint64_t frames = stUIStatus.u64VideoForwardFrames;
  uint8_t bytes[10] = {23, TAP_REWIND_FORWARD};
  for (int i = 0; i < 8; ++i)
    bytes[2 + i] = static_cast<uint8_t>(frames >> (8 * i));
  VideoFrameHandlerToApp(bytes);
  std::printf("\n\n\n send frams = %ld!\n", static_cast<long>(frames));
  return 0;
}

int32_t GUI_SEND_BLIND_MSG(uint8_t index) {
  uint8_t bytes[4] = {24, index, 0, 0};
  switch (index) {
    case BLIND_CURSOR_SWITCH: bytes[3] = byte_of(stUIStatus.s8BlindSwitch); break;
    case BLIND_MOVE_POSITION: bytes[3] = byte_of(stUIStatus.s8BlindPosition); break;
    case BLIND_REPAIR: bytes[3] = byte_of(stUIStatus.s8BlindType); break;
    case BLIND_SAVE:
      bytes[2] = SUB_NONE;
      bytes[3] = 1;
      break;
    case BLIND_MOVE_TENPOSITION: bytes[3] = byte_of(stUIStatus.s8BlindTenPosition); break;
    default: return 0;
  }
  blindHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_GG_MSG(uint8_t index) {
  if (index > GG_SAVE) return 0;
  const uint8_t bytes[4] = {25, index, SUB_NONE, 0};
  ggHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_UPDATA_MSG(uint8_t index) {
  uint8_t bytes[4] = {26, index, SUB_NONE, 0};
  switch (index) {
    case UPDATA_CONFIRM: bytes[3] = byte_of(stUIStatus.s8Updata_confirm); break;
    case UPDATA_CHECK: bytes[3] = byte_of(stUIStatus.s8Updata_check); break;
    default: return 0;
  }
  updataHandlerToApp(bytes);
  return 0;
}

namespace {

// Stores `value` as a float in the shared buffer and writes its four bytes, little-endian.
void put_float(uint8_t* out, double value) {
  std::lock_guard<std::mutex> guard(data_lock);
  data.f = static_cast<float>(value);
  std::memcpy(out, data.bytes, 4);
}

void put_last_float(uint8_t* out) {
  std::lock_guard<std::mutex> guard(data_lock);
  std::memcpy(out, data.bytes, 4);
}

}  // namespace

int32_t GUI_SEND_BALLISTIC_PARM_MSG(uint8_t index, uint8_t item) {
  if (index > BALLISTIC_TARGET_INFO) return 0;
  uint8_t bytes[7] = {27, index, item, 0, 0, 0, 0};
  uint8_t* value = bytes + 3;

  if (index == BALLISTIC_OPEN_CALCU) {
    switch (item) {
      case 0:  // always the first profile's switch
        value[0] = info[0].ballistics_sw;
        event_distrubution(EV_BALLISTIC_RESULT);
        break;
      case 1: value[0] = 1; break;
      case 2:
        value[0] = byte_of(stDevStatus.s8BallisticReticle);
        event_distrubution(EV_BALLISTIC_RETICLE);
        break;
      case 3:
        value[0] = byte_of(stDevStatus.s8BallisticReticleColor);
        event_distrubution(EV_BALLISTIC_COLOR);
        break;
      case 4:
        value[0] = byte_of(stDevStatus.s8BallisticGroup);
        event_distrubution(EV_BALLISTIC_PROFILE);
        break;
      default: break;
    }
    reticlePositionHandlerToApp(bytes);
    return 0;
  }

  const Info_ballistics* p = current_ballistic_profile();
  if (p == nullptr) {
    std::printf("GUI_SEND_BALLISTIC_PARM_MSG: profile %d is outside 0..%d, nothing sent\n",
                u8(stDevStatus.s8BallisticGroup), PROFILE_LAST);
    return 0;
  }
  const Info_bullet& bullet = p->gun.bullet;

  switch (index) {
    case BALLISTIC_BULLET_INFO:
      switch (item) {
        case 0: put_float(value, bullet.length); break;
        case 1: put_float(value, bullet.diameter); break;
        case 2: put_float(value, bullet.weight); break;
        case 3: put_float(value, bullet.ballisticsCoef); break;
        case 4: put_float(value, static_cast<double>(bullet.dragFunction)); break;
        case 5: put_float(value, bullet.velocity); break;
        default: put_last_float(value); break;
      }
      break;
    case BALLISTIC_TWIST_INFO:
      if (item == 0) put_float(value, p->gun.riflingRange);
      if (item == 1) value[0] = static_cast<uint8_t>(p->gun.direction);
      break;
    case BALLISTIC_ZEROWEATHER_LENSOFFSET:
      switch (item) {
        case 0: value[0] = static_cast<uint8_t>(bullet.isOpenAtmosphere); break;
        case 1: put_float(value, bullet.atmosphere.temperature); break;
        case 2: put_float(value, bullet.atmosphere.barometer); break;
        case 3: put_float(value, bullet.atmosphere.relative_humidity); break;
        case 4: value[0] = static_cast<uint8_t>(bullet.zeroOffsetUnit); break;
        case 5: put_float(value, bullet.zeroOffsetVerticalMOA); break;
        case 6: put_float(value, bullet.zeroOffsetHorizontalMOA); break;
        case 7: put_float(value, bullet.zeroOffsetVerticalMRAD); break;
        case 8: put_float(value, bullet.zeroOffsetHorizontalMRAD); break;
        default: break;
      }
      break;
    case BALLISTIC_WEATHER:
      switch (item) {
        case 0: put_float(value, p->atmosphere.temperature); break;
        case 1: put_float(value, p->atmosphere.barometer); break;
        case 2: put_float(value, p->atmosphere.relative_humidity); break;
        default: break;
      }
      break;
    case BALLISTIC_LENS_INFO:
      if (item == 0) put_float(value, p->gun.scope.sightHeightOverBore);
      if (item == 1) {
        put_le16(value, p->gun.scope.zeroRange);
        put_le16(value + 2, p->gun.scope.zeroRange_yard);
        event_distrubution(EV_BALLISTIC_PROFILE);
      }
      break;
    case BALLISTIC_WIND_INFO:
      if (item == 0) put_float(value, p->wind.angle);
      if (item == 1) put_float(value, p->wind.speed);
      break;
    case BALLISTIC_TARGET_INFO:
      if (item == 0) {
        put_le16(value, p->target.range);
        put_le16(value + 2, p->target.range_yard);
      }
      if (item == 1) put_float(value, p->target.shootingAngle);
      break;
    default: break;
  }
  reticlePositionHandlerToApp(bytes);
  return 0;
}

int32_t GUI_SEND_RECOIL_MSG(uint8_t index) {
  uint8_t bytes[4] = {28, index, SUB_NONE, 0};
  switch (index) {
    case RECOIL_SWITCH: bytes[3] = byte_of(stDevStatus.s8RecoilState); break;
    case RECOIL_BEFORE: bytes[3] = byte_of(stDevStatus.s8RecoilBefore); break;
    case RECOIL_AFTER: bytes[3] = byte_of(stDevStatus.s8RecoilAfter); break;
    case RECOIL_SENSITIVITY: bytes[3] = byte_of(stDevStatus.s8RecoilSensitivity); break;
    case RECOIL_BREAKOUT: bytes[3] = 1; break;
    default: return 0;
  }
  recoilHandlerToApp(bytes);
  event_distrubution(EV_RECOIL_SWITCH);
  return 0;
}

int32_t GUI_SEND_DISTANCE_FUNCTION_MSG(uint8_t a, uint8_t b) {
  stUIStatus.s8RangeMode = static_cast<char>(b);
  const uint8_t bytes[4] = {4, 7, a, b};
  BasicFunctionHandlerToApp(bytes);
  return 0;
}
