// The window manager: loading windows, the window stack, the open and close sequences, dialogs,
// going back, and key routing.
#include <algorithm>
#include <cstring>
#include <pugixml.hpp>

#include "tk_core.h"

namespace tk {

namespace {

widget_t* wm() {
  return g().wm;
}

ret_t back_to_impl(widget_t* target);

std::vector<widget_t*> stack() {
  return windows_bottom_to_top();
}

bool is_quit_dialog(const widget_t* w) {
  return strcmp(w->host->kind->type, "dialog") == 0 && w->host->quit;
}

bool is_normal_or_dialog(const widget_t* w) {
  const char* t = w->host->kind->type;
  return strcmp(t, "window") == 0 || strcmp(t, "dialog") == 0;
}

// The lifecycle event: a plain event_t to the window and its descendants (pre-order), then the
// window_event_t copy to the window manager.
void lifecycle(widget_t* win, uint32_t type) {
  event_t e = event_init(type, win);
  widget_dispatch_recursive(win, &e);
  window_event_t we;
  window_event_init(&we, type, wm(), win);
  widget_dispatch(wm(), &we.e);
}

void top_window_changed() {
  abort_held_keys();
  window_event_t we;
  window_event_init(&we, EVT_TOP_WINDOW_CHANGED, wm(), window_manager_get_top_window(wm()));
  we.e.size = sizeof(event_t);  // not a window_event_t for window_event_cast
  widget_dispatch(wm(), &we.e);
}

// Keys go to the topmost opened window that is not a dialog that has quit.
void refresh_key_target() {
  widget_t* target = nullptr;
  auto s = stack();
  for (auto it = s.rbegin(); it != s.rend(); ++it) {
    widget_t* w = *it;
    if (w->host->stage == WinStage::OPENED && w->visible && !is_quit_dialog(w)) {
      target = w;
      break;
    }
  }
  wm()->key_target = target;
}

widget_t* top_below(widget_t* win) {
  auto s = stack();
  bool seen = false;
  for (auto it = s.rbegin(); it != s.rend(); ++it) {
    if (*it == win) {
      seen = true;
      continue;
    }
    if (seen && (*it)->visible && !is_quit_dialog(*it)) return *it;
  }
  return nullptr;
}

bool is_top(widget_t* win) {
  return window_manager_get_top_window(wm()) == win;
}

void destroy_window_idle(widget_t* win) {
  if (!is_live(win)) return;
  widget_t* back_target = win->host->back_to_target;
  win->host->stage = WinStage::DESTROYED;
  bury(win);
  top_window_changed();
  if (back_target != nullptr && is_live(back_target) && window_in_stack(back_target)) {
    back_to_impl(back_target);
  }
}

void retire(widget_t* win) {
  emitter_remove_ctx(wm()->emitter, win);
  // Removing the window from the stack clears the window manager's key target if it was this
  // window: the keys then go to the window now on top.
  bool had_keys = wm()->key_target == win;
  stack_remove(win);
  win->host->stage = WinStage::CLOSED;
  if (had_keys) refresh_key_target();
  g().doomed.push_back(win);
  idle_call([win] { destroy_window_idle(win); });
}

void open_idle(widget_t* win) {
  if (!is_live(win) || !window_in_stack(win) || win->host->stage != WinStage::LOADED) return;
  // 1. will-open: the window takes the focus and the keys.
  lifecycle(win, EVT_WINDOW_WILL_OPEN);
  if (!is_live(win) || !window_in_stack(win)) return;
  wm()->key_target = win;
  // 2. the previous foreground window (for a dialog, every opened window below) to background.
  auto s = stack();
  std::vector<widget_t*> below;
  for (auto it = s.rbegin(); it != s.rend(); ++it) {
    widget_t* w = *it;
    if (w == win || w->host->stage != WinStage::OPENED || is_quit_dialog(w)) continue;
    below.push_back(w);
    if (strcmp(win->host->kind->type, "dialog") != 0) break;
  }
  for (widget_t* w : below) {
    if (is_live(w) && window_in_stack(w)) lifecycle(w, EVT_WINDOW_TO_BACKGROUND);
  }
  if (!is_live(win) || !window_in_stack(win)) return;
  win->host->stage = WinStage::OPENED;
  // 3. open, to the window and its descendants.
  event_t e = event_init(EVT_WINDOW_OPEN, win);
  widget_dispatch_recursive(win, &e);
  widget_t* to_close = win->host->close_on_open;
  win->host->close_on_open = nullptr;
  if (to_close != nullptr && is_live(to_close) && window_in_stack(to_close) && to_close != win) {
    window_manager_close_window_force(wm(), to_close);
  }
  // 4. the window manager: top window changed, then the open event.
  top_window_changed();
  window_event_t we;
  window_event_init(&we, EVT_WINDOW_OPEN, wm(), win);
  widget_dispatch(wm(), &we.e);
}

// Closes `win` in the next idle pass if it is still on the stack then.
void close_in_idle(widget_t* win, bool force) {
  idle_call([win, force] {
    if (!is_live(win) || !window_in_stack(win)) return;
    if (force) {
      window_manager_close_window_force(wm(), win);
    } else {
      window_manager_close_window(wm(), win);
    }
  });
}

bool plain_uint(const char* s) {
  if (s == nullptr || *s == '\0') return false;
  for (const char* p = s; *p; p++) {
    if (*p < '0' || *p > '9') return false;
  }
  return true;
}

void apply_attributes(widget_t* w, pugi::xml_node el, const std::string& where) {
  const char* xywh[4] = {el.attribute("x").value(), el.attribute("y").value(),
                         el.attribute("w").value(), el.attribute("h").value()};
  bool plain = true;
  for (const char* v : xywh) {
    if (*v != '\0' && !plain_uint(v)) plain = false;
  }
  if (plain) {
    w->x = tk_atoi(xywh[0]);
    w->y = tk_atoi(xywh[1]);
    w->w = tk_atoi(xywh[2]);
    w->h = tk_atoi(xywh[3]);
  } else {
    std::string sl = "default(x=";
    sl += *xywh[0] ? xywh[0] : "0";
    sl += ",y=";
    sl += *xywh[1] ? xywh[1] : "0";
    sl += ",w=";
    sl += *xywh[2] ? xywh[2] : "0";
    sl += ",h=";
    sl += *xywh[3] ? xywh[3] : "0";
    sl += ")";
    parse_self_layout(sl, &w->host->self_layout);
  }
  for (pugi::xml_attribute a : el.attributes()) {
    const char* n = a.name();
    if (strcmp(n, "x") == 0 || strcmp(n, "y") == 0 || strcmp(n, "w") == 0 || strcmp(n, "h") == 0) {
      continue;
    }
    set_prop_string(w, n, a.value(), true, where.c_str());
  }
}

void build_children(widget_t* parent, pugi::xml_node el, const std::string& where) {
  for (pugi::xml_node c : el.children()) {
    if (c.type() != pugi::node_element) continue;
    if (strcmp(c.name(), "property") == 0) {
      const char* pname = c.attribute("name").value();
      if (*pname != '\0') set_prop_string(parent, pname, c.text().get(), true, where.c_str());
      continue;
    }
    const Kind* k = kind_find(c.name());
    if (k == nullptr || k->is_window || strcmp(k->type, "window_manager") == 0) {
      log_debug("%s: not supported type %s, loaded as a view\n", where.c_str(), c.name());
      k = kind_view();
    }
    widget_t* w = widget_new(k, nullptr);
    children_push(parent, w, -1);
    apply_attributes(w, c, where);
    build_children(w, c, where);
  }
}

widget_t* build_window(const std::string& name, const pugi::xml_document& doc,
                       const std::string& where) {
  pugi::xml_node root = doc.document_element();
  const Kind* k = kind_find(root.name());
  if (k == nullptr || !k->is_window) {
    log_error("%s: the root element <%s> is not a window kind (window, dialog, popup, ...)\n",
              where.c_str(), root.name());
    return nullptr;
  }
  Global& gl = g();
  widget_t* win = widget_new(k, nullptr);
  win->host->asset_name = name;
  win->host->stage = WinStage::LOADED;
  win->loading = TRUE;
  stack_append(win);
  apply_attributes(win, root, where);
  if (win->name == nullptr) widget_set_name(win, name.c_str());
  int32_t W = static_cast<int32_t>(gl.sysinfo.lcd_w), H = static_cast<int32_t>(gl.sysinfo.lcd_h);
  if (strcmp(k->type, "dialog") != 0) {
    win->x = 0;
    win->y = 0;
    win->w = W;
    win->h = H;
  } else {
    auto centred = [](int32_t screen, int32_t size) {
      return whole<int32_t>((screen - static_cast<double>(size)) / 2);
    };
    if (win->host->self_layout.set) {
      // A dialog's own geometry may use the position forms: evaluated against the screen, and
      // centred where a form leaves the position undefined.
      const SelfLayout& sl = win->host->self_layout;
      win->w = axis_size(sl.w, W, win->w);
      win->h = axis_size(sl.h, H, win->h);
      win->x = axis_pos(sl.x, W, win->w, centred(W, win->w));
      win->y = axis_pos(sl.y, H, win->h, centred(H, win->h));
    }
    if (win->x < 0 || win->y < 0 || int64_t{win->x} + win->w > W || int64_t{win->y} + win->h > H) {
      win->x = centred(W, win->w);
      win->y = centred(H, win->h);
    }
  }
  build_children(win, root, where);
  retranslate(win);
  relayout(win);
  win->loading = FALSE;
  event_t e = event_init(EVT_WIDGET_LOAD, win);
  widget_dispatch(win, &e);
  e = event_init(EVT_WINDOW_LOAD, win);
  widget_dispatch(win, &e);
  invalidate_widget(win);
  idle_call([win] { open_idle(win); });
  return win;
}

void close_single_instances(const char* name) {
  for (widget_t* w : stack()) {
    if (w->name != nullptr && strcmp(w->name, name) == 0 &&
        widget_get_prop_bool(w, "single_instance", FALSE)) {
      window_manager_close_window_force(wm(), w);
    }
  }
}

void back_to_idle(widget_t* target) {
  if (!is_live(target) || !window_in_stack(target)) return;
  auto s = stack();
  std::vector<widget_t*> above;
  bool seen = false;
  for (widget_t* w : s) {
    if (w == target) {
      seen = true;
      continue;
    }
    if (seen) above.push_back(w);
  }
  bool first = true;
  for (auto it = above.rbegin(); it != above.rend(); ++it) {
    widget_t* w = *it;
    if (!is_live(w) || !window_in_stack(w)) continue;
    if (strcmp(w->host->kind->type, "system_bar") == 0 || is_quit_dialog(w)) continue;
    if (strcmp(w->host->kind->type, "dialog") == 0 && w->host->is_modal) {
      dialog_quit(w, DIALOG_QUIT_NONE);
    } else if (first) {
      window_manager_close_window(wm(), w);
    } else {
      window_manager_close_window_force(wm(), w);
    }
    first = false;
  }
}

ret_t back_to_impl(widget_t* target) {
  if (strcmp(target->host->kind->type, "window") != 0) return RET_FAIL;
  widget_t* top = window_manager_get_top_window(wm());
  if (top != nullptr && top != target && strcmp(top->host->kind->type, "dialog") == 0 &&
      top->host->is_modal && !top->host->quit) {
    // The rest happens once the dialog is destroyed.
    top->host->back_to_target = target;
    dialog_quit(top, DIALOG_QUIT_NONE);
    return RET_OK;
  }
  idle_call([target] { back_to_idle(target); });
  return RET_OK;
}

ret_t queue_window_request(Request::Type type, const char* name, widget_t* w1, widget_t* w2,
                           bool flag) {
  Request r{type};
  r.name = name != nullptr ? name : "";
  r.w1 = w1;
  r.w2 = w2;
  r.flag = flag;
  return queue_push(std::move(r), nullptr);
}

// Both closes. The force-close brings the window below to the foreground before
// EVT_WINDOW_CLOSE; the normal close does it after, and only between normal windows and
// dialogs; a normal close of a window whose open sequence has not run yet becomes a
// force-close in a later idle.
ret_t close_window(widget_t* window, bool force) {
  if (!on_ui_thread()) {
    return queue_window_request(force ? Request::CLOSE_FORCE : Request::CLOSE, nullptr, window,
                                nullptr, false);
  }
  if (!window_in_stack(window)) return RET_NOT_FOUND;
  widget_host_t* h = window->host;
  if (!force && h->stage == WinStage::LOADED) {
    if (!h->close_pending) {
      h->close_pending = true;
      close_in_idle(window, true);
    }
    return RET_OK;
  }
  // A modal dialog closed before it quit returns DIALOG_QUIT_NONE from dialog_modal.
  if (strcmp(h->kind->type, "dialog") == 0 && h->is_modal && !h->quit) {
    h->quit = true;
    h->quit_code = DIALOG_QUIT_NONE;
  }
  auto gone = [window] { return !is_live(window) || !window_in_stack(window); };
  bool was_top = is_top(window);
  if (force && was_top) {
    widget_t* below = top_below(window);
    if (below != nullptr) lifecycle(below, EVT_WINDOW_TO_FOREGROUND);
    if (gone()) return RET_OK;
  }
  lifecycle(window, EVT_WINDOW_CLOSE);
  if (gone()) return RET_OK;
  retire(window);
  if (!force && was_top) {
    widget_t* top = window_manager_get_top_window(wm());
    if (top != nullptr && is_normal_or_dialog(top) && is_normal_or_dialog(window)) {
      lifecycle(top, EVT_WINDOW_TO_FOREGROUND);
    }
  }
  return RET_OK;
}

// The window that contains `widget`, closed (from another thread: the request is queued and
// the window found when it runs).
ret_t close_window_of(widget_t* widget, bool force) {
  widget_t* win = on_ui_thread() ? window_of(widget) : widget;
  if (win == nullptr) {
    log_warn("%s: the widget is in no window\n", force ? "window_close_force" : "window_close");
    return RET_BAD_PARAMS;
  }
  return close_window(win, force);
}

// The topmost visible window that `accept`s, read under the stack lock (any thread).
template <typename Accept>
widget_t* topmost(widget_t* wm, Accept accept) {
  Global& gl = g();
  if (wm == nullptr || wm != gl.wm) return nullptr;
  std::lock_guard<std::recursive_mutex> lock(gl.stack_mutex);
  darray_t* a = wm->children;
  for (uint32_t n = a != nullptr ? a->size : 0; n > 0; n--) {
    auto* w = static_cast<widget_t*>(a->elms[n - 1]);
    if (w->visible && accept(w)) return w;
  }
  return nullptr;
}

bool dialog_done(void* ctx) {
  widget_t* dlg = static_cast<widget_t*>(ctx);
  return !is_live(dlg) || dlg->host->quit;
}

}  // namespace

ret_t window_on_event(widget_t* w, event_t* e) {
  if (e->type != EVT_REQUEST_CLOSE_WINDOW) return RET_OK;
  const char* closable = widget_get_prop_str(w, "closable", "yes");
  if (closable != nullptr && strcmp(closable, "confirm") == 0) return RET_OK;
  if (closable != nullptr && strcmp(closable, "no") == 0) return RET_STOP;
  window_manager_close_window(wm(), w);
  return RET_STOP;
}

widget_t* wm_create() {
  widget_t* w = widget_new(kind_find("window_manager"), nullptr);
  widget_set_name(w, "window_manager");
  w->w = static_cast<wh_t>(g().sysinfo.lcd_w);
  w->h = static_cast<wh_t>(g().sysinfo.lcd_h);
  return w;
}

bool window_in_stack(const widget_t* win) {
  return win != nullptr && g().wm != nullptr && win->parent == g().wm;
}

void stack_append(widget_t* win) {
  std::lock_guard<std::recursive_mutex> lock(g().stack_mutex);
  children_push(g().wm, win, -1);
  invalidate_widget(win);
}

void stack_remove(widget_t* win) {
  invalidate_widget(win);
  std::lock_guard<std::recursive_mutex> lock(g().stack_mutex);
  children_remove(g().wm, win);
}

widget_t* open_window_from_xml(const std::string& name, const std::string& xml,
                               const std::string& where) {
  pugi::xml_document doc;
  pugi::xml_parse_result res = doc.load_buffer(xml.data(), xml.size());
  if (!res) {
    size_t line =
        1 + std::count(xml.begin(), xml.begin() + std::min<size_t>(res.offset, xml.size()), '\n');
    log_error("window_open(\"%s\"): %s is malformed: %s at line %zu (offset %td)\n", name.c_str(),
              where.c_str(), res.description(), line, res.offset);
    return nullptr;
  }
  if (doc.document_element().empty()) {
    log_error("window_open(\"%s\"): %s has no root element\n", name.c_str(), where.c_str());
    return nullptr;
  }
  close_single_instances(name.c_str());
  return build_window(name, doc, where);
}

void abort_held_keys() {
  for (HeldKey& k : g().held)
    k.aborted = true;
}

void dispatch_key(uint32_t type, uint32_t key) {
  if (key == 0) return;
  Global& gl = g();
  auto it =
      std::find_if(gl.held.begin(), gl.held.end(), [&](const HeldKey& k) { return k.key == key; });
  if (type == EVT_KEY_DOWN) {
    if (it != gl.held.end()) gl.held.erase(it);
    gl.held.push_back(HeldKey{key, now_ms(), false, false});
  } else if (type == EVT_KEY_UP) {
    if (it != gl.held.end()) {
      bool aborted = it->aborted;
      gl.held.erase(it);
      // The window that took over never sees the release of a key pressed before it.
      if (aborted) return;
    }
  }
  key_event_t e;
  key_event_init(&e, type, gl.wm, static_cast<int32_t>(key));
  window_manager_dispatch_input_event(gl.wm, &e.e);
}

void check_long_press() {
  Global& gl = g();
  uint64_t now = now_ms();
  for (size_t i = 0; i < gl.held.size(); i++) {
    HeldKey& k = gl.held[i];
    if (k.long_fired || k.aborted || now < k.down_at + TK_KEY_LONG_PRESS_TIME) continue;
    k.long_fired = true;
    key_event_t e;
    key_event_init(&e, EVT_KEY_LONG_PRESS, gl.wm, static_cast<int32_t>(k.key));
    window_manager_dispatch_input_event(gl.wm, &e.e);
  }
}

void run_request(Request& r) {
  widget_t* w = g().wm;
  auto live_or_null = [](widget_t* x) { return is_live(x) ? x : nullptr; };
  switch (r.type) {
    case Request::KEY: dispatch_key(r.pressed ? EVT_KEY_DOWN : EVT_KEY_UP, r.key); break;
    case Request::ADD_IDLE: idle_add_owned(r.idle, r.ctx, nullptr); break;
    case Request::ADD_TIMER: timer_add_owned(r.timer, r.ctx, r.duration, nullptr); break;
    case Request::OPEN: window_open(r.name.c_str()); break;
    case Request::OPEN_AND_CLOSE: window_open_and_close(r.name.c_str(), live_or_null(r.w1)); break;
    case Request::CLOSE:
      if (is_live(r.w1)) window_manager_close_window(w, window_of(r.w1));
      break;
    case Request::CLOSE_FORCE:
      if (is_live(r.w1)) window_manager_close_window_force(w, window_of(r.w1));
      break;
    case Request::BACK: window_manager_back(w); break;
    case Request::BACK_TO: window_manager_back_to(w, r.name.c_str()); break;
    case Request::BACK_TO_HOME: window_manager_back_to_home(w); break;
    case Request::SWITCH_TO:
      if (is_live(r.w2)) window_manager_switch_to(w, live_or_null(r.w1), r.w2, r.flag);
      break;
    case Request::CALL: break;
  }
}

void windows_teardown() {
  Global& gl = g();
  if (gl.wm == nullptr) return;
  // Everything is buried before anything is freed, so a destroy handler may still look at
  // another window. Closed windows and destroyed widgets waiting for their idle go too.
  for (widget_t* win : stack()) {
    stack_remove(win);
    bury(win);
  }
  while (!gl.doomed.empty())
    bury(gl.doomed.front());
  gl.wm->key_target = nullptr;
  if (gl.wm->emitter != nullptr) {
    delete gl.wm->emitter;
    gl.wm->emitter = nullptr;
  }
}

}  // namespace tk

using tk::g;

extern "C" {

widget_t* window_manager(void) {
  return g().wm;
}

widget_t* window_manager_get_top_window(widget_t* widget) {
  return tk::topmost(widget, [](const widget_t* w) { return !tk::is_quit_dialog(w); });
}

widget_t* window_manager_get_top_main_window(widget_t* widget) {
  return tk::topmost(widget,
                     [](const widget_t* w) { return strcmp(w->host->kind->type, "window") == 0; });
}

ret_t window_manager_back(widget_t* widget) {
  return_value_if_fail(widget != NULL && widget == g().wm, RET_BAD_PARAMS);
  if (!tk::on_ui_thread()) {
    return tk::queue_window_request(tk::Request::BACK, nullptr, nullptr, nullptr, false);
  }
  widget_t* top = window_manager_get_top_window(widget);
  if (top == nullptr) return RET_NOT_FOUND;
  const char* type = top->host->kind->type;
  if (strcmp(type, "window") == 0) {
    event_t e = event_init(EVT_REQUEST_CLOSE_WINDOW, top);
    return widget_dispatch(top, &e);
  }
  if (strcmp(type, "system_bar") == 0) return RET_OK;
  if (strcmp(type, "dialog") == 0 && top->host->is_modal && !top->host->quit) {
    return dialog_quit(top, DIALOG_QUIT_NONE);
  }
  return window_close(top);
}

ret_t window_manager_back_to(widget_t* widget, const char* name) {
  return_value_if_fail(widget != NULL && widget == g().wm && name != NULL, RET_BAD_PARAMS);
  if (!tk::on_ui_thread()) {
    return tk::queue_window_request(tk::Request::BACK_TO, name, nullptr, nullptr, false);
  }
  widget_t* target = tk::child_named(widget, name);
  if (target == nullptr) {
    log_warn("window_manager_back_to: no open window named \"%s\"\n", name);
    return RET_BAD_PARAMS;
  }
  return tk::back_to_impl(target);
}

ret_t window_manager_back_to_home(widget_t* widget) {
  return_value_if_fail(widget != NULL && widget == g().wm, RET_BAD_PARAMS);
  if (!tk::on_ui_thread()) {
    return tk::queue_window_request(tk::Request::BACK_TO_HOME, nullptr, nullptr, nullptr, false);
  }
  for (widget_t* w : tk::stack()) {
    if (strcmp(w->host->kind->type, "window") == 0) return tk::back_to_impl(w);
  }
  return RET_NOT_FOUND;
}

ret_t window_manager_switch_to(widget_t* widget, widget_t* curr, widget_t* target, bool_t close) {
  return_value_if_fail(widget != NULL && widget == g().wm, RET_BAD_PARAMS);
  if (!tk::on_ui_thread()) {
    return tk::queue_window_request(tk::Request::SWITCH_TO, nullptr, curr, target, close != FALSE);
  }
  if (target == nullptr || target == curr) return RET_OK;
  return_value_if_fail(tk::window_in_stack(target), RET_BAD_PARAMS);
  bool above = false;
  for (widget_t* w : tk::stack()) {
    if (w == target) {
      above = true;
      continue;
    }
    if (above && strcmp(w->host->kind->type, "dialog") == 0 && !w->host->quit) return RET_FAIL;
  }
  {
    std::lock_guard<std::recursive_mutex> lock(g().stack_mutex);
    tk::children_remove(widget, target);
    tk::children_push(widget, target, -1);
  }
  tk::invalidate_widget(target);
  widget->key_target = target;
  bool curr_open = curr != nullptr && tk::is_live(curr) && tk::window_in_stack(curr);
  if (curr_open) tk::lifecycle(curr, EVT_WINDOW_TO_BACKGROUND);
  if (tk::is_live(target) && tk::window_in_stack(target)) {
    tk::lifecycle(target, EVT_WINDOW_TO_FOREGROUND);
  }
  if (close && curr_open && tk::is_live(curr) && tk::window_in_stack(curr)) {
    window_manager_close_window_force(widget, curr);
  }
  return RET_OK;
}

ret_t window_manager_close_window(widget_t* widget, widget_t* window) {
  return_value_if_fail(widget != NULL && widget == g().wm, RET_BAD_PARAMS);
  return_value_if_fail(window != NULL && widget_is_window(window), RET_BAD_PARAMS);
  return tk::close_window(window, false);
}

ret_t window_manager_close_window_force(widget_t* widget, widget_t* window) {
  return_value_if_fail(widget != NULL && widget == g().wm, RET_BAD_PARAMS);
  return_value_if_fail(window != NULL && widget_is_window(window), RET_BAD_PARAMS);
  return tk::close_window(window, true);
}

ret_t window_manager_dispatch_input_event(widget_t* widget, event_t* e) {
  return_value_if_fail(widget != NULL && widget == g().wm && e != NULL, RET_BAD_PARAMS);
  std::vector<widget_t*> chain{widget};
  widget_t* w = widget->key_target;
  if (w != nullptr && !tk::window_in_stack(w)) w = nullptr;
  while (w != nullptr && chain.size() < 64) {
    chain.push_back(w);
    widget_t* next = w->key_target;
    if (next == nullptr || next->parent != w || !next->visible) break;
    w = next;
  }
  uint32_t before = 0;
  if (e->type == EVT_KEY_DOWN) before = EVT_KEY_DOWN_BEFORE_CHILDREN;
  if (e->type == EVT_KEY_UP) before = EVT_KEY_UP_BEFORE_CHILDREN;
  key_event_t* key = key_event_cast(e);
  if (before != 0 && key != nullptr) {
    for (widget_t* x : chain) {
      if (!tk::is_live(x)) return RET_STOP;
      key_event_t copy = *key;
      copy.e.type = before;
      if (widget_dispatch(x, &copy.e) == RET_STOP) return RET_STOP;
    }
  }
  for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
    if (!tk::is_live(*it)) continue;
    if (widget_dispatch(*it, e) == RET_STOP) return RET_STOP;
  }
  return RET_OK;
}

widget_t* window_open(const char* name) {
  return_value_if_fail(name != NULL && *name != '\0', NULL);
  if (!tk::on_ui_thread()) {
    log_debug("window_open(\"%s\") from another thread: handed to the user interface thread\n",
              name);
    tk::queue_window_request(tk::Request::OPEN, name, nullptr, nullptr, false);
    return nullptr;
  }
  std::string path = tk::asset_path("ui", std::string(name) + ".bin");
  std::string data;
  if (!path.empty() && tk::read_file(path, &data) && !data.empty() && data[0] != '<') {
    log_error("window_open(\"%s\"): %s is a compiled layout; this build reads XML layouts only\n",
              name, path.c_str());
    return nullptr;
  }
  if (path.empty()) {
    path = tk::asset_path("ui", std::string(name) + ".xml");
    if (path.empty()) {
      log_warn("!!!Asset [name=%s type=ui] not exist!!!\n", name);
      log_error("window_open(\"%s\"): no layout file %s/assets/%s/raw/ui/%s.xml\n", name,
                tk::app_root().c_str(), tk::theme().c_str(), name);
      return nullptr;
    }
    if (!tk::read_file(path, &data)) {
      log_error("window_open(\"%s\"): cannot read %s\n", name, path.c_str());
      return nullptr;
    }
  }
  return tk::open_window_from_xml(name, data, path);
}

widget_t* window_open_and_close(const char* name, widget_t* to_close) {
  return_value_if_fail(name != NULL && *name != '\0', NULL);
  if (!tk::on_ui_thread()) {
    tk::queue_window_request(tk::Request::OPEN_AND_CLOSE, name, to_close, nullptr, false);
    return nullptr;
  }
  widget_t* win = window_open(name);
  if (win != nullptr && to_close != nullptr) {
    widget_t* old = tk::window_of(to_close);
    if (old != nullptr && old != win) win->host->close_on_open = old;
  }
  return win;
}

ret_t window_close(widget_t* widget) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  return tk::close_window_of(widget, false);
}

ret_t window_close_force(widget_t* widget) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  return tk::close_window_of(widget, true);
}

dialog_quit_code_t dialog_modal(widget_t* widget) {
  return_value_if_fail(widget != NULL && widget_is_dialog(widget), DIALOG_QUIT_NONE);
  return_value_if_fail(tk::window_in_stack(widget), DIALOG_QUIT_NONE);
  widget_host_t* h = widget->host;
  h->is_modal = true;
  if (!tk::run_loop(tk::dialog_done, widget, "dialog_modal")) {
    log_error("dialog_modal: dialog \"%s\" could never quit; returning DIALOG_QUIT_NONE\n",
              widget->name != nullptr ? widget->name : "");
    if (tk::is_live(widget) && !h->quit) {
      h->quit = true;
      h->quit_code = DIALOG_QUIT_NONE;
    }
  }
  if (!tk::is_live(widget)) return DIALOG_QUIT_NONE;
  dialog_quit_code_t code = static_cast<dialog_quit_code_t>(h->quit_code);
  if (tk::window_in_stack(widget)) tk::close_in_idle(widget, false);
  return code;
}

ret_t dialog_quit(widget_t* widget, uint32_t code) {
  return_value_if_fail(widget != NULL && widget_is_dialog(widget), RET_BAD_PARAMS);
  widget_host_t* h = widget->host;
  if (h->quit || h->stage != tk::WinStage::OPENED) return RET_FAIL;
  h->quit = true;
  h->quit_code = code;
  tk::invalidate_widget(widget);
  if (g().wm->key_target == widget) tk::refresh_key_target();
  if (!h->is_modal) return window_close(widget);
  return RET_OK;
}

bool_t dialog_is_quited(widget_t* widget) {
  return widget != nullptr && widget_is_dialog(widget) && widget->host->quit ? TRUE : FALSE;
}

bool_t dialog_is_modal(widget_t* widget) {
  return widget != nullptr && widget_is_dialog(widget) && widget->host->is_modal ? TRUE : FALSE;
}

}  // extern "C"
