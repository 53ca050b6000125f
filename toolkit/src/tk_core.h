// Private structures of the core, shared by its source files (not for the drawing layer).
#ifndef TK_SRC_CORE_H
#define TK_SRC_CORE_H

#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "awtk.h"
#include "main_loop/main_loop_simple.h"
#include "tk_backend.h"
#include "tk_internal.h"

// ---- event emitter ----
struct EmitterHandler {
  uint32_t id;
  uint32_t type;
  event_func_t func;
  void* ctx;
  bool removed;
};

// Handlers are kept in the order added; dispatch walks them newest first.
struct _emitter_t {
  std::vector<EmitterHandler> handlers;
  uint32_t next_id = 1;
  int dispatching = 0;
  bool has_removed = false;
};

namespace tk {

// The integer part of `v`, limited to the range of T (NaN gives 0): numbers read from layouts
// and set by pages never overflow a conversion.
template <typename T>
T whole(double v) {
  if (std::isnan(v)) return 0;
  constexpr double lo = static_cast<double>(std::numeric_limits<T>::min());
  constexpr double hi = static_cast<double>(std::numeric_limits<T>::max());
  if (v <= lo) return std::numeric_limits<T>::min();
  return v >= hi ? std::numeric_limits<T>::max() : static_cast<T>(v);
}

// ---- style values ----
struct StyleValue {
  enum Kind { INT, STR, COLOR } kind = INT;
  int32_t i = 0;
  uint32_t color = 0;
  std::string s;
};
// Parses a style value by the name's typing rule (colour, keyword, string, integer).
StyleValue style_value_parse(const std::string& name, const std::string& value);

using StyleProps = std::map<std::string, StyleValue, std::less<>>;

// One parsed style file: (widget type, style name, state) -> properties.
struct StyleFile {
  std::string path;
  std::map<std::string, StyleProps, std::less<>> entries;  // key "type\x1fstyle\x1fstate"
  const StyleProps* find(std::string_view type, std::string_view style,
                         std::string_view state) const;
  bool has_style(std::string_view type, std::string_view style) const;
  std::unordered_set<std::string> styles;  // "type\x1fstyle"
};
// Loads (and caches) styles/<name>.xml of the current theme; nullptr when the file is missing.
const StyleFile* style_file(const std::string& name);
void style_cache_clear();

// ---- widget kinds ----
struct Kind {
  const char* type;
  bool is_window;
  bool focusable;
  // The kind's own event handler, run before user handlers; RET_STOP hides the event.
  ret_t (*on_event)(widget_t* w, event_t* e);
  widget_vtable_t vt;
};
const Kind* kind_find(const char* type);
const Kind* kind_view();

// ---- custom properties ----
struct Prop {
  enum Type { STR, INT, BOOL, FLOAT } type = STR;
  std::string s;
  int64_t i = 0;
  double f = 0;
};

struct StyleOverride {
  std::string state;
  std::string name;
  StyleValue value;
};

enum class WinStage { NONE, LOADED, OPENED, CLOSED, DESTROYED };

// A self_layout "default(x=..,y=..,w=..,h=..)" parsed per axis.
struct LayoutAxis {
  // CENTER is x="c..." or y="m..."; END is x="r..." or y="b..."; MINUS is w or h "-N".
  enum Mode { UNDEF, PIXEL, PERCENT, CENTER, END, MINUS } mode = UNDEF;
  double v = 0;  // pixels or percent
  bool offset_percent = false;
};
struct SelfLayout {
  bool set = false;
  std::string text;
  LayoutAxis x, y, w, h;
};
struct ChildrenLayout {
  bool set = false;
  std::string text;
  int rows = 0, cols = 0, xm = 0, ym = 0, spacing = 0;
};

}  // namespace tk

namespace tk {
struct NameHash {
  using is_transparent = void;
  size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
};
// Names of a subtree -> the first widget in document order, rebuilt when the tree changed.
struct NameIndex {
  uint64_t generation = 0;
  std::unordered_map<std::string, widget_t*, NameHash, std::equal_to<>> first;
};
// Bumped by every change of any widget tree or name.
extern uint64_t g_tree_generation;
}  // namespace tk

struct _widget_host_t {
  const tk::Kind* kind = nullptr;
  std::unique_ptr<tk::NameIndex> name_index;
  std::map<std::string, tk::Prop, std::less<>> props;
  std::vector<tk::StyleOverride> overrides;
  std::vector<uint32_t> timers;
  std::vector<uint32_t> idles;
  tk::SelfLayout self_layout;
  tk::ChildrenLayout children_layout;
  bool need_relayout = false;
  std::string image;
  image_draw_type_t draw_type = IMAGE_DRAW_ICON;
  double value = 0;
  double max = 100;
  bool show_text = true;
  bool vertical = false;
  bool reverse = false;
  std::string format;
  // windows
  tk::WinStage stage = tk::WinStage::NONE;
  std::string asset_name;
  std::string theme;
  bool is_modal = false;
  bool quit = false;
  uint32_t quit_code = 0;
  widget_t* close_on_open = nullptr;
  // back_to waiting for this (modal dialog) window to be destroyed.
  widget_t* back_to_target = nullptr;
  bool close_pending = false;
};

namespace tk {

// ---- global state (user interface thread unless noted) ----
// A timer or idle is erased as soon as it is removed, except while its own callback runs: then
// `removed` is set and the pass that called it erases it when the callback returns. A running
// one is never due again (a nested loop inside the callback does not re-enter it).
struct Timer {
  timer_info_t info{};
  widget_t* owner = nullptr;
  bool running = false;
  bool removed = false;
};
struct Idle {
  idle_info_t info{};
  widget_t* owner = nullptr;
  // The toolkit's own idles (open and close sequences, deferred destruction, async events) run
  // this instead of info.on_idle, once.
  std::function<void()> call;
  bool running = false;
  bool removed = false;
  bool ran = false;
};

struct Request {
  enum Type {
    KEY,
    ADD_IDLE,
    ADD_TIMER,
    OPEN,
    OPEN_AND_CLOSE,
    CLOSE,
    CLOSE_FORCE,
    BACK,
    BACK_TO,
    BACK_TO_HOME,
    SWITCH_TO,
    CALL
  };
  Request() = default;
  explicit Request(Type t) : type(t) {}
  Type type = CALL;
  bool pressed = false;
  uint32_t key = 0;
  idle_func_t idle = nullptr;
  timer_func_t timer = nullptr;
  void* ctx = nullptr;
  uint32_t duration = 0;
  std::string name;
  widget_t* w1 = nullptr;
  widget_t* w2 = nullptr;
  bool flag = false;
};

struct HeldKey {
  uint32_t key;
  uint64_t down_at;
  bool aborted;
  bool long_fired;
};

struct Global {
  bool inited = false;
  std::thread::id ui_thread;
  widget_t* wm = nullptr;
  system_info_t sysinfo{};
  std::string app_name, app_root, default_font, theme = "default";
  locale_info_t locale{};

  // clock
  bool virtual_clock = false;
  std::atomic<uint64_t> virtual_now{0};
  std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
  double time_scale = 1.0;
  std::mutex clock_mutex;
  std::condition_variable clock_cv;

  // timers and idles (ids ordered = creation order)
  std::map<uint32_t, std::unique_ptr<Timer>> timers;
  uint32_t next_timer_id = 1;
  std::map<uint32_t, std::unique_ptr<Idle>> idles;
  uint32_t next_idle_id = 1;

  // the locked main-loop queue (any thread)
  std::mutex queue_mutex;
  std::deque<Request> queue;
  std::atomic<uint32_t> queue_overflows{0};
  std::atomic<uint32_t> queue_high_water{0};  // most entries ever waiting at once
  bool post_key_pressed = false;              // guarded by queue_mutex

  // window stack lock for readers on other threads
  std::recursive_mutex stack_mutex;

  // keys
  std::vector<HeldKey> held;

  // dirty region
  std::vector<rect_t> dirty;

  // backend and loop
  std::unique_ptr<Backend> backend;
  bool quit_requested = false;
  // User callbacks (event handlers, timers, idles) on the stack right now; widget memory is
  // freed only when there are none, so a nested loop (dialog_modal) run from a handler never
  // frees the widget, emitter or timer that handler belongs to.
  int callbacks = 0;

  // bookkeeping
  std::unordered_set<const widget_t*> live;
  // Detached widgets (closed windows, widget_destroy) waiting for the idle that buries them.
  std::vector<widget_t*> doomed;
  // Buried subtrees (EVT_DESTROY sent, timers gone) and the step they were buried in; their
  // memory is freed at the start of a later step, so pointers read just before stay readable.
  std::vector<std::pair<widget_t*, uint64_t>> graveyard;
  uint64_t step_count = 0;

  // test support
  std::atomic<uint32_t> failed_lookups{0};
  std::vector<std::string> failed_lookup_names;
  bool capture_log = false;
  std::vector<std::string> log_lines;
  std::mutex log_mutex;
};

Global& g();
bool on_ui_thread();

// ---- widgets (widget.cpp) ----
widget_t* widget_new(const Kind* kind, widget_t* parent);
bool is_live(const widget_t* w);
// Sends EVT_DESTROY through the (detached) subtree, drops its timers and idles and hands it to
// the graveyard, which frees the memory later (free_graveyard).
void bury(widget_t* w);
void free_tree(widget_t* w);
void children_push(widget_t* parent, widget_t* child, int32_t index);
bool children_remove(widget_t* parent, widget_t* child);
// Detaches now and buries in an idle.
void destroy_deferred(widget_t* w);
widget_t* child_named(widget_t* w, const char* name);
widget_t* lookup_named(widget_t* w, const char* name, bool recursive);
ret_t emitter_dispatch(emitter_t* em, event_t* e);
void emitter_remove_ctx(emitter_t* em, void* ctx);
// Drops handlers marked removed unless a dispatch is walking them.
void emitter_compact(emitter_t* em);
ret_t set_prop_string(widget_t* w, const char* name, const char* value, bool from_loader,
                      const char* where);
void set_text_raw(widget_t* w, const char* utf8);
widget_t* window_of(const widget_t* w);
void relayout(widget_t* w);
void layout_pass();
void mark_relayout(widget_t* w);
bool parse_self_layout(const std::string& text, SelfLayout* out);
// One axis of a self layout against a parent of `parent` pixels: the size (`current` when the
// form leaves it undefined) and the position of a widget of `size`.
int32_t axis_size(const LayoutAxis& a, int32_t parent, int32_t current);
int32_t axis_pos(const LayoutAxis& a, int32_t parent, int32_t size, int32_t current);
bool parse_children_layout(const std::string& text, ChildrenLayout* out);
void retranslate(widget_t* w);
std::string dump(widget_t* w);

// ---- window manager (window_manager.cpp) ----
widget_t* wm_create();
widget_t* open_window_from_xml(const std::string& name, const std::string& xml,
                               const std::string& where);
bool window_in_stack(const widget_t* win);
void stack_append(widget_t* win);
void stack_remove(widget_t* win);
void abort_held_keys();
void dispatch_key(uint32_t type, uint32_t key);
void check_long_press();
void run_request(Request& r);
void windows_teardown();

// ---- main loop (main_loop.cpp) ----
uint64_t now_ms();
void set_virtual_now(uint64_t t);
void step();
// Runs steps until `done()` (nested loops, tk_run). Returns false when it gave up.
bool run_loop(bool (*done)(void*), void* ctx, const char* who);
bool has_immediate_work();
bool next_due(uint64_t* when);
ret_t queue_push(Request&& r, const char* what);
uint32_t queue_length();
uint32_t timer_add_owned(timer_func_t f, void* ctx, uint32_t ms, widget_t* owner);
uint32_t idle_add_owned(idle_func_t f, void* ctx, widget_t* owner);
// The toolkit's own work for the next idle pass, run once.
void idle_call(std::function<void()> f);
// RET_OK, or RET_NOT_FOUND for an id that is not (or no longer) there.
ret_t timer_erase(uint32_t id);
ret_t idle_erase(uint32_t id);
void remove_owned(widget_t* w);
// Frees what the graveyard holds: everything (`all`, at reset), or, when no user callback is on
// the stack, what was buried before the previous step.
void free_graveyard(bool all);
void reset_state();

// ---- assets and locale (assets.cpp, locale.cpp) ----
std::string resolve_app_root(const char* app_root);
bool read_file(const std::string& path, std::string* out);
void strings_load_all();
void locale_apply(const char* language, const char* country);

// ---- log capture ----
void log_capture(tk_log_level_t level, const char* format, va_list ap);

}  // namespace tk

#endif  // TK_SRC_CORE_H
