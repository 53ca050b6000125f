// The main loop: clock, the locked request queue, timers, idles, steps and start-up.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "tk_core.h"

struct _main_loop_t {
  int unused;
};

namespace tk {

namespace {

Global* s_global = nullptr;
main_loop_t s_main_loop{0};
// Steps at one instant before the loop decides something keeps re-adding work.
constexpr int kMaxStepsPerInstant = 1000;
// Longest real wait between two steps when nothing is scheduled. Input, posts from other
// threads and the next due timer (or held key's long press) all end the wait earlier, so an
// idle UI sleeps instead of stepping at a frame rate.
constexpr uint32_t kIdleWaitMs = 1000;
// Period of the steps while an idle asks to repeat.
constexpr uint32_t kFrameMs = 16;

uint64_t real_elapsed_ms() {
  auto d = std::chrono::steady_clock::now() - g().start;
  return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(d).count());
}

double env_time_scale() {
  const char* s = getenv("TK_TIME_SCALE");
  if (s == nullptr || *s == '\0') return 1.0;
  double v = strtod(s, nullptr);
  if (!(v > 0) || !std::isfinite(v)) {
    fprintf(stderr, "TK_TIME_SCALE=\"%s\" is not a positive number; using 1\n", s);
    return 1.0;
  }
  return v;
}

const char* request_name(Request::Type t) {
  switch (t) {
    case Request::KEY: return "key event";
    case Request::ADD_IDLE: return "idle_queue";
    case Request::ADD_TIMER: return "timer_queue";
    case Request::OPEN: return "window_open";
    case Request::OPEN_AND_CLOSE: return "window_open_and_close";
    case Request::CLOSE: return "window close";
    case Request::CLOSE_FORCE: return "window force-close";
    case Request::BACK: return "window_manager_back";
    case Request::BACK_TO: return "window_manager_back_to";
    case Request::BACK_TO_HOME: return "window_manager_back_to_home";
    case Request::SWITCH_TO: return "window_manager_switch_to";
    case Request::CALL: return "call";
  }
  return "request";
}

void process_queue() {
  Global& gl = g();
  // Entries added while processing (keys posted by a handler) wait for the next step.
  size_t budget;
  {
    std::lock_guard<std::mutex> lock(gl.queue_mutex);
    budget = gl.queue.size();
  }
  while (budget-- > 0) {
    Request r;
    {
      std::lock_guard<std::mutex> lock(gl.queue_mutex);
      if (gl.queue.empty()) break;
      r = std::move(gl.queue.front());
      gl.queue.pop_front();
    }
    run_request(r);
  }
}

// Runs one callback as a user callback (see Global::callbacks).
template <typename F>
auto as_callback(F&& f) {
  Global& gl = g();
  gl.callbacks++;
  auto r = f();
  gl.callbacks--;
  return r;
}

void run_idles() {
  Global& gl = g();
  if (gl.idles.empty()) return;
  // Idles added while the pass runs wait for the next pass.
  std::vector<uint32_t> ids;
  ids.reserve(gl.idles.size());
  for (auto& [id, idle] : gl.idles)
    ids.push_back(id);
  for (uint32_t id : ids) {
    auto it = gl.idles.find(id);
    if (it == gl.idles.end() || it->second->running) continue;
    Idle* idle = it->second.get();
    idle->ran = true;
    idle->running = true;
    ret_t ret = RET_REMOVE;
    if (idle->call) {
      as_callback([idle] { return idle->call(), 0; });
    } else {
      ret = as_callback([idle] { return idle->info.on_idle(&idle->info); });
    }
    idle->running = false;
    if (ret != RET_REPEAT || idle->removed) idle_erase(id);
  }
}

void run_timers() {
  Global& gl = g();
  if (gl.timers.empty()) return;
  uint64_t now = now_ms();
  std::vector<std::pair<uint64_t, uint32_t>> due;
  for (auto& [id, t] : gl.timers) {
    if (t->running || t->info.suspend) continue;
    uint64_t at = t->info.start + t->info.duration;
    if (at <= now) due.emplace_back(at, id);
  }
  std::sort(due.begin(), due.end());
  for (auto& [at, id] : due) {
    auto it = gl.timers.find(id);
    if (it == gl.timers.end() || it->second->running) continue;
    Timer* t = it->second.get();
    t->info.now = now_ms();
    t->running = true;
    ret_t ret = as_callback([t] { return t->info.on_timer(&t->info); });
    t->running = false;
    if (ret == RET_REPEAT && !t->removed) {
      t->info.start = now_ms();
    } else {
      timer_erase(id);
    }
  }
}

}  // namespace

Global& g() {
  if (s_global == nullptr) s_global = new Global();
  return *s_global;
}

bool on_ui_thread() {
  Global& gl = g();
  return !gl.inited || std::this_thread::get_id() == gl.ui_thread;
}

double time_scale() {
  return g().time_scale;
}
bool test_clock() {
  return g().virtual_clock;
}

uint64_t now_ms() {
  Global& gl = g();
  if (gl.virtual_clock) return gl.virtual_now.load();
  return static_cast<uint64_t>(static_cast<double>(real_elapsed_ms()) * gl.time_scale);
}

void set_virtual_now(uint64_t t) {
  Global& gl = g();
  {
    std::lock_guard<std::mutex> lock(gl.clock_mutex);
    if (t > gl.virtual_now.load()) gl.virtual_now.store(t);
  }
  gl.clock_cv.notify_all();
}

ret_t queue_push(Request&& r, const char* what) {
  Global& gl = g();
  {
    std::lock_guard<std::mutex> lock(gl.queue_mutex);
    if (r.type == Request::KEY) {
      if (r.pressed) {
        gl.post_key_pressed = true;
      } else if (gl.post_key_pressed) {
        gl.post_key_pressed = false;
      } else {
        return RET_OK;  // a key-up without a pending key-down is not queued
      }
    }
    if (gl.queue.size() >= MAIN_LOOP_QUEUE_SIZE) {
      gl.queue_overflows++;
      fprintf(stderr, "ERROR: main loop queue full (%d entries): %s lost (overflow #%u)\n",
              MAIN_LOOP_QUEUE_SIZE, what != nullptr ? what : request_name(r.type),
              gl.queue_overflows.load());
      fflush(stderr);
      log_notify(LOG_LEVEL_ERROR, "main loop queue full (%d entries): %s lost\n",
                 MAIN_LOOP_QUEUE_SIZE, what != nullptr ? what : request_name(r.type));
      return RET_FAIL;
    }
    gl.queue.push_back(std::move(r));
    const auto length = static_cast<uint32_t>(gl.queue.size());
    if (length > gl.queue_high_water.load()) gl.queue_high_water.store(length);
  }
  if (gl.backend) gl.backend->wake();
  return RET_OK;
}

uint32_t queue_length() {
  Global& gl = g();
  std::lock_guard<std::mutex> lock(gl.queue_mutex);
  return static_cast<uint32_t>(gl.queue.size());
}

namespace {
// The next free id from `next` (never 0, never one in use), advancing `next` past it.
template <typename Map>
uint32_t fresh_id(const Map& in_use, uint32_t* next) {
  uint32_t id = *next;
  while (id == TK_INVALID_ID || in_use.count(id) != 0)
    id++;
  *next = id + 1;
  return id;
}

// Drops `id` from the owner's list of timers or idles.
void disown(widget_t* owner, std::vector<uint32_t> widget_host_t::*list, uint32_t id) {
  if (owner == nullptr || !is_live(owner)) return;
  auto& v = owner->host->*list;
  v.erase(std::remove(v.begin(), v.end(), id), v.end());
}
}  // namespace

uint32_t timer_add_owned(timer_func_t f, void* ctx, uint32_t ms, widget_t* owner) {
  Global& gl = g();
  if (f == nullptr) return TK_INVALID_ID;
  uint32_t id = fresh_id(gl.timers, &gl.next_timer_id);
  auto t = std::make_unique<Timer>();
  t->info.on_timer = f;
  t->info.ctx = ctx;
  t->info.id = id;
  t->info.start = now_ms();
  t->info.now = t->info.start;
  t->info.duration = ms;
  t->owner = owner;
  gl.timers.emplace(id, std::move(t));
  if (owner != nullptr) owner->host->timers.push_back(id);
  return id;
}

uint32_t idle_add_owned(idle_func_t f, void* ctx, widget_t* owner) {
  Global& gl = g();
  if (f == nullptr) return TK_INVALID_ID;
  uint32_t id = fresh_id(gl.idles, &gl.next_idle_id);
  auto i = std::make_unique<Idle>();
  i->info.on_idle = f;
  i->info.ctx = ctx;
  i->info.id = id;
  i->owner = owner;
  gl.idles.emplace(id, std::move(i));
  if (owner != nullptr) owner->host->idles.push_back(id);
  return id;
}

void idle_call(std::function<void()> f) {
  Global& gl = g();
  uint32_t id = fresh_id(gl.idles, &gl.next_idle_id);
  auto i = std::make_unique<Idle>();
  i->info.id = id;
  i->call = std::move(f);
  gl.idles.emplace(id, std::move(i));
}

namespace {
// Erases the timer or idle `id` of `map`, or only marks it while its callback runs.
template <typename Map>
ret_t erase_entry(Map& map, uint32_t id, std::vector<uint32_t> widget_host_t::*owner_list) {
  auto it = map.find(id);
  if (it == map.end()) return RET_NOT_FOUND;
  bool was_removed = it->second->removed;
  if (it->second->running) {
    it->second->removed = true;
  } else {
    disown(it->second->owner, owner_list, id);
    map.erase(it);
  }
  return was_removed ? RET_NOT_FOUND : RET_OK;
}
}  // namespace

ret_t timer_erase(uint32_t id) {
  return erase_entry(g().timers, id, &widget_host_t::timers);
}

ret_t idle_erase(uint32_t id) {
  return erase_entry(g().idles, id, &widget_host_t::idles);
}

void remove_owned(widget_t* w) {
  std::vector<uint32_t> timers, idles;
  timers.swap(w->host->timers);
  idles.swap(w->host->idles);
  for (uint32_t id : timers)
    timer_erase(id);
  for (uint32_t id : idles)
    idle_erase(id);
}

bool has_immediate_work() {
  Global& gl = g();
  {
    std::lock_guard<std::mutex> lock(gl.queue_mutex);
    if (!gl.queue.empty()) return true;
  }
  for (auto& [id, idle] : gl.idles) {
    if (!idle->running && !idle->ran) return true;
  }
  uint64_t now = now_ms();
  for (auto& [id, t] : gl.timers) {
    if (!t->running && !t->info.suspend && t->info.start + t->info.duration <= now) return true;
  }
  return false;
}

bool next_due(uint64_t* when) {
  Global& gl = g();
  bool found = false;
  uint64_t best = 0;
  auto consider = [&](uint64_t at) {
    if (!found || at < best) best = at;
    found = true;
  };
  for (auto& [id, t] : gl.timers) {
    if (!t->running && !t->info.suspend) consider(t->info.start + t->info.duration);
  }
  for (const HeldKey& k : gl.held) {
    if (!k.long_fired && !k.aborted) consider(k.down_at + TK_KEY_LONG_PRESS_TIME);
  }
  if (found) *when = best;
  return found;
}

void free_graveyard(bool all) {
  Global& gl = g();
  if (gl.graveyard.empty() || (!all && gl.callbacks > 0)) return;
  std::vector<widget_t*> dead;
  {
    std::lock_guard<std::recursive_mutex> lock(gl.stack_mutex);
    auto keep = gl.graveyard.begin();
    for (auto& entry : gl.graveyard) {
      if (all || entry.second + 1 < gl.step_count) {
        dead.push_back(entry.first);
      } else {
        *keep++ = entry;
      }
    }
    gl.graveyard.erase(keep, gl.graveyard.end());
  }
  for (widget_t* w : dead)
    free_tree(w);
}

void step() {
  Global& gl = g();
  gl.step_count++;
  free_graveyard(false);
  process_queue();
  check_long_press();
  run_idles();
  run_timers();
  layout_pass();
  if (gl.backend) gl.backend->paint();
}

bool run_loop(bool (*done)(void*), void* ctx, const char* who) {
  Global& gl = g();
  uint64_t started = now_ms();
  auto real_start = std::chrono::steady_clock::now();
  int steps_here = 0;
  uint64_t instant = now_ms();
  while (!done(ctx)) {
    step();
    if (done(ctx)) break;
    uint64_t now = now_ms();
    if (now != instant) {
      instant = now;
      steps_here = 0;
    }
    if (has_immediate_work() && ++steps_here < kMaxStepsPerInstant) continue;
    if (gl.virtual_clock) {
      uint64_t when;
      if (next_due(&when)) {
        // Nothing to do until the next timer: jump the test clock there.
        if (when - started > 3600u * 1000u) {
          log_error("%s: gave up after an hour of test-clock time without finishing\n", who);
          return false;
        }
        set_virtual_now(std::max(when, now));
        real_start = std::chrono::steady_clock::now();
        continue;
      }
      // Nothing scheduled: only another thread can bring work.
      gl.backend->wait_input(100);
      auto waited = std::chrono::steady_clock::now() - real_start;
      if (!has_immediate_work() && waited > std::chrono::seconds(2)) {
        log_error("%s: nothing left to run under the test clock\n", who);
        return false;
      }
      continue;
    }
    // Sleep until the next timer or long press (rounded up, so the loop does not spin through
    // the last fraction of a millisecond), or until input or a post from another thread
    // wakes the backend. A repeating idle runs once per frame.
    uint32_t wait = gl.idles.empty() ? kIdleWaitMs : kFrameMs;
    uint64_t when;
    if (steps_here >= kMaxStepsPerInstant) {
      wait = 1;
    } else if (next_due(&when)) {
      uint64_t virt = when > now ? when - now : 0;
      double real = std::ceil(static_cast<double>(virt) / gl.time_scale);
      if (real < wait) wait = static_cast<uint32_t>(real);
    }
    if (wait > 0) gl.backend->wait_input(wait);
  }
  return true;
}

void reset_state() {
  Global& gl = g();
  windows_teardown();
  free_graveyard(true);
  gl.timers.clear();
  gl.idles.clear();
  {
    std::lock_guard<std::mutex> lock(gl.queue_mutex);
    gl.queue.clear();
    gl.post_key_pressed = false;
  }
  gl.queue_overflows = 0;
  gl.queue_high_water = 0;
  gl.held.clear();
  gl.dirty.clear();
  gl.quit_requested = false;
  gl.failed_lookups = 0;
  gl.failed_lookup_names.clear();
  {
    std::lock_guard<std::mutex> lock(gl.log_mutex);
    gl.log_lines.clear();
  }
}

}  // namespace tk

using tk::g;

extern "C" {

ret_t tk_init(wh_t w, wh_t h, app_type_t app_type, const char* app_name, const char* app_root) {
  tk::Global& gl = g();
  if (gl.inited) {
    log_warn("tk_init: already initialised\n");
    return RET_OK;
  }
  if (w <= 0 || h <= 0) {
    log_warn("%s:%d condition(w > 0 && h > 0) failed!\n", __FUNCTION__, __LINE__);
    return RET_BAD_PARAMS;
  }
  gl.ui_thread = std::this_thread::get_id();
  gl.time_scale = tk::env_time_scale();
  gl.start = std::chrono::steady_clock::now();
  gl.app_name = app_name != nullptr ? app_name : "";
  gl.app_root = tk::resolve_app_root(app_root != nullptr ? app_root : "./res");
  gl.default_font = "default";
  gl.sysinfo.lcd_w = static_cast<uint32_t>(w);
  gl.sysinfo.lcd_h = static_cast<uint32_t>(h);
  gl.sysinfo.device_pixel_ratio = 1;
  gl.sysinfo.default_font = gl.default_font.c_str();
  gl.sysinfo.app_type = app_type;
  gl.sysinfo.app_name = gl.app_name.c_str();
  gl.sysinfo.app_root = gl.app_root.c_str();
  gl.sysinfo.language = gl.locale.language;
  gl.sysinfo.country = gl.locale.country;
  gl.inited = true;
  gl.wm = tk::wm_create();
  tk::strings_load_all();
  tk::locale_apply("en", "US");
  gl.backend = tk::backend_create(w, h);
  return RET_OK;
}

ret_t tk_ext_widgets_init(void) {
  return RET_OK;
}

ret_t tk_init_assets(void) {
  tk::style_file("default");
  return RET_OK;
}

namespace {
bool quit_done(void*) {
  return g().quit_requested;
}
ret_t quit_timer(const timer_info_t*) {
  g().quit_requested = true;
  return RET_REMOVE;
}
}  // namespace

ret_t tk_run(void) {
  tk::Global& gl = g();
  if (!gl.inited) {
    log_warn("%s:%d condition(tk_init was called) failed!\n", __FUNCTION__, __LINE__);
    return RET_BAD_PARAMS;
  }
  gl.quit_requested = false;
  tk::run_loop(quit_done, nullptr, "tk_run");
  gl.quit_requested = false;
  return RET_OK;
}

ret_t tk_quit_ex(uint32_t delay_ms) {
  if (!g().inited) return RET_BAD_PARAMS;
  if (!tk::on_ui_thread()) return timer_queue(quit_timer, nullptr, delay_ms);
  return tk::timer_add_owned(quit_timer, nullptr, delay_ms, nullptr) != TK_INVALID_ID ? RET_OK
                                                                                      : RET_FAIL;
}

ret_t tk_quit(void) {
  return tk_quit_ex(0);
}

ret_t tk_deinit(void) {
  tk::Global& gl = g();
  if (!gl.inited) return RET_OK;
  tk::reset_state();
  gl.backend.reset();
  tk::bury(gl.wm);
  tk::free_graveyard(true);
  gl.wm = nullptr;
  tk::style_cache_clear();
  gl.inited = false;
  return RET_OK;
}

main_loop_t* main_loop(void) {
  return &tk::s_main_loop;
}

ret_t main_loop_post_key_event(main_loop_t* l, bool_t pressed, uint8_t key) {
  if (l == nullptr) {
    log_warn("%s:%d condition(l != NULL) failed!\n", __FUNCTION__, __LINE__);
    return RET_BAD_PARAMS;
  }
  return tk::post_key(pressed != FALSE, key);
}

/* ---- timers and idles ---- */

uint32_t timer_add(timer_func_t on_timer, void* ctx, uint32_t duration_ms) {
  if (on_timer == nullptr) {
    log_warn("%s:%d condition(on_timer != NULL) failed!\n", __FUNCTION__, __LINE__);
    return TK_INVALID_ID;
  }
  return tk::timer_add_owned(on_timer, ctx, duration_ms, nullptr);
}

ret_t timer_remove(uint32_t timer_id) {
  if (timer_id == TK_INVALID_ID) {
    log_warn("%s:%d condition(timer_id != TK_INVALID_ID) failed!\n", __FUNCTION__, __LINE__);
    return RET_BAD_PARAMS;
  }
  return tk::timer_erase(timer_id);
}

ret_t timer_modify(uint32_t timer_id, uint32_t duration_ms) {
  tk::Global& gl = g();
  auto it = gl.timers.find(timer_id);
  if (it == gl.timers.end() || it->second->removed) return RET_NOT_FOUND;
  it->second->info.duration = duration_ms;
  return RET_OK;
}

ret_t timer_reset(uint32_t timer_id) {
  tk::Global& gl = g();
  auto it = gl.timers.find(timer_id);
  if (it == gl.timers.end() || it->second->removed) return RET_NOT_FOUND;
  it->second->info.start = tk::now_ms();
  return RET_OK;
}

ret_t timer_queue(timer_func_t on_timer, void* ctx, uint32_t duration_ms) {
  if (on_timer == nullptr) return RET_BAD_PARAMS;
  tk::Request r{tk::Request::ADD_TIMER};
  r.timer = on_timer;
  r.ctx = ctx;
  r.duration = duration_ms;
  return tk::queue_push(std::move(r), nullptr);
}

uint32_t idle_add(idle_func_t on_idle, void* ctx) {
  if (on_idle == nullptr) {
    log_warn("%s:%d condition(on_idle != NULL) failed!\n", __FUNCTION__, __LINE__);
    return TK_INVALID_ID;
  }
  return tk::idle_add_owned(on_idle, ctx, nullptr);
}

ret_t idle_remove(uint32_t idle_id) {
  if (idle_id == TK_INVALID_ID) return RET_BAD_PARAMS;
  return tk::idle_erase(idle_id);
}

ret_t idle_queue(idle_func_t on_idle, void* ctx) {
  if (on_idle == nullptr) return RET_BAD_PARAMS;
  tk::Request r{tk::Request::ADD_IDLE};
  r.idle = on_idle;
  r.ctx = ctx;
  return tk::queue_push(std::move(r), nullptr);
}

/* ---- time ---- */

uint64_t time_now_ms(void) {
  return tk::now_ms();
}
uint64_t time_now_s(void) {
  return tk::now_ms() / 1000;
}
uint64_t time_now_us(void) {
  tk::Global& gl = g();
  if (gl.virtual_clock) return gl.virtual_now.load() * 1000;
  auto d = std::chrono::steady_clock::now() - gl.start;
  return static_cast<uint64_t>(
      static_cast<double>(std::chrono::duration_cast<std::chrono::microseconds>(d).count()) *
      gl.time_scale);
}

void sleep_ms(uint32_t ms) {
  tk::Global& gl = g();
  if (gl.virtual_clock) {
    if (tk::on_ui_thread()) {
      tk::set_virtual_now(gl.virtual_now.load() + ms);
      return;
    }
    std::unique_lock<std::mutex> lock(gl.clock_mutex);
    uint64_t until = gl.virtual_now.load() + ms;
    gl.clock_cv.wait_for(lock, std::chrono::milliseconds(ms),
                         [&] { return gl.virtual_now.load() >= until; });
    return;
  }
  double real = static_cast<double>(ms) / gl.time_scale;
  std::this_thread::sleep_for(std::chrono::microseconds(static_cast<int64_t>(real * 1000)));
}

/* ---- system info ---- */

system_info_t* system_info(void) {
  return &g().sysinfo;
}

ret_t system_info_set_default_font(system_info_t* info, const char* default_font) {
  if (info == nullptr || default_font == nullptr) return RET_BAD_PARAMS;
  g().default_font = default_font;
  info->default_font = g().default_font.c_str();
  return RET_OK;
}

}  // extern "C"

namespace tk {

ret_t post_key(bool pressed, uint32_t key) {
  Request r{Request::KEY};
  r.pressed = pressed;
  r.key = key;
  return queue_push(std::move(r), pressed ? "key down" : "key up");
}

}  // namespace tk
