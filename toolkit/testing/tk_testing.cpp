// Test support: the test clock, keys, XML windows, counters and dumps.
#include "tk_testing.h"

#include <dlfcn.h>

#include <cstdio>

#include "main_loop/main_loop_simple.h"
#include "tk_core.h"

namespace {

void run_due_now() {
  tk::Global& gl = tk::g();
  int guard = 0;
  do {
    tk::step();
  } while (tk::has_immediate_work() && ++guard < 1000);
  (void)gl;
}

}  // namespace

void tk_testing_init_ex(wh_t w, wh_t h, const char* app_root) {
  tk::Global& gl = tk::g();
  if (gl.inited) {
    tk_testing_reset();
    return;
  }
  gl.virtual_clock = true;
  gl.virtual_now = 0;
  tk_init(w, h, APP_MOBILE, "inf_menu", app_root);
}

void tk_testing_init(void) {
  tk_testing_init_ex(1280, 1024, "./res");
}

void tk_testing_reset(void) {
  tk::Global& gl = tk::g();
  if (!gl.inited) return;
  tk::reset_state();
  gl.capture_log = false;
  tk::style_cache_clear();
  tk::locale_apply("en", "US");
  tk_testing_reset_drawing();
}

void tk_testing_set_app_root(const char* app_root) {
  tk::Global& gl = tk::g();
  gl.app_root = tk::resolve_app_root(app_root);
  gl.sysinfo.app_root = gl.app_root.c_str();
  tk::style_cache_clear();
  tk::strings_load_all();
  std::string lang = gl.locale.language, country = gl.locale.country;
  tk::locale_apply(lang.c_str(), country.c_str());
}

void tk_testing_advance(uint32_t ms) {
  tk::Global& gl = tk::g();
  uint64_t target = gl.virtual_now.load() + ms;
  run_due_now();
  for (;;) {
    uint64_t when;
    if (!tk::next_due(&when) || when > target) break;
    tk::set_virtual_now(std::max<uint64_t>(when, gl.virtual_now.load()));
    run_due_now();
  }
  if (target > gl.virtual_now.load()) {
    tk::set_virtual_now(target);
    run_due_now();
  } else if (tk::has_immediate_work()) {
    run_due_now();
  }
}

uint64_t tk_testing_now(void) {
  return time_now_ms();
}

ret_t tk_testing_key_press(uint32_t key) {
  ret_t r = key <= 0xff ? main_loop_post_key_event(main_loop(), TRUE, static_cast<uint8_t>(key))
                        : tk::post_key(true, key);
  tk_testing_advance(0);
  return r;
}

ret_t tk_testing_key_release(uint32_t key) {
  ret_t r = key <= 0xff ? main_loop_post_key_event(main_loop(), FALSE, static_cast<uint8_t>(key))
                        : tk::post_key(false, key);
  tk_testing_advance(0);
  return r;
}

ret_t tk_testing_key_hit(uint32_t key) {
  ret_t r = tk_testing_key_press(key);
  ret_t r2 = tk_testing_key_release(key);
  return r != RET_OK ? r : r2;
}

ret_t tk_testing_key_hold(uint32_t key, uint32_t ms) {
  ret_t r = tk_testing_key_press(key);
  tk_testing_advance(ms);
  ret_t r2 = tk_testing_key_release(key);
  return r != RET_OK ? r : r2;
}

widget_t* tk_testing_open_xml(const char* name, const char* xml) {
  if (name == nullptr || xml == nullptr) return nullptr;
  return tk::open_window_from_xml(name, xml, std::string("<xml string for ") + name + ">");
}

std::vector<std::string> tk_testing_window_names(void) {
  std::vector<std::string> out;
  for (widget_t* w : tk::windows_bottom_to_top())
    out.push_back(w->name ? w->name : "");
  return out;
}

uint32_t tk_testing_failed_lookups(void) {
  return tk::g().failed_lookups.load();
}

std::vector<std::string> tk_testing_failed_lookup_names(void) {
  return tk::g().failed_lookup_names;
}

void tk_testing_clear_failed_lookups(void) {
  tk::g().failed_lookups = 0;
  tk::g().failed_lookup_names.clear();
}

std::string tk_testing_dump(widget_t* widget) {
  return tk::dump(widget);
}

bool tk_testing_style_color(widget_t* widget, const char* prop, uint32_t* color) {
  return tk::style_color(widget, prop, color);
}

bool tk_testing_style_int(widget_t* widget, const char* prop, int32_t* value) {
  return tk::style_int(widget, prop, value);
}

std::string tk_testing_style_str(widget_t* widget, const char* prop) {
  return tk::style_str_or(widget, prop, "");
}

rect_t tk_testing_screen_rect(widget_t* widget) {
  return tk::screen_rect(widget);
}

std::vector<rect_t> tk_testing_take_dirty(void) {
  return tk::take_dirty();
}

std::vector<std::string> tk_testing_timer_descriptions(void) {
  std::vector<std::string> out;
  for (const auto& [id, t] : tk::g().timers) {
    if (t->removed) continue;
    char line[256];
    Dl_info where{};
    const bool named = dladdr(reinterpret_cast<void*>(t->info.on_timer), &where) != 0 &&
                       where.dli_sname != nullptr;
    const auto address = reinterpret_cast<uintptr_t>(t->info.on_timer);
    const auto base = reinterpret_cast<uintptr_t>(where.dli_fbase);
    std::snprintf(line, sizeof line, "every %u ms, widget %s, callback %s (%s+0x%zx)",
                  t->info.duration,
                  t->owner != nullptr && t->owner->name != nullptr ? t->owner->name : "-",
                  named ? where.dli_sname : "?", where.dli_fname != nullptr ? where.dli_fname : "?",
                  static_cast<size_t>(address - base));
    out.push_back(line);
  }
  return out;
}

uint32_t tk_testing_timer_count(void) {
  uint32_t n = 0;
  for (const auto& [id, t] : tk::g().timers)
    n += t->removed ? 0 : 1;
  return n;
}

uint32_t tk_testing_idle_count(void) {
  uint32_t n = 0;
  for (const auto& [id, i] : tk::g().idles)
    n += i->removed ? 0 : 1;
  return n;
}

uint32_t tk_testing_widget_count(void) {
  return static_cast<uint32_t>(tk::g().live.size());
}

uint32_t tk_testing_queue_overflows(void) {
  return tk::g().queue_overflows.load();
}

uint32_t tk_testing_queue_high_water(void) {
  return tk::g().queue_high_water.load();
}

uint32_t tk_testing_queue_length(void) {
  return tk::queue_length();
}

void tk_testing_capture_log(bool capture) {
  tk::g().capture_log = capture;
}

std::vector<std::string> tk_testing_log_lines(void) {
  std::lock_guard<std::mutex> lock(tk::g().log_mutex);
  return tk::g().log_lines;
}

bool tk_testing_log_contains(const char* text) {
  for (const std::string& l : tk_testing_log_lines()) {
    if (l.find(text) != std::string::npos) return true;
  }
  return false;
}
