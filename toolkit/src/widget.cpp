// Widgets: creation, the tree, events, properties, state, text, geometry and layout.
#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstring>
#include <sstream>

#include "tk_core.h"

namespace tk {
ret_t window_on_event(widget_t* w, event_t* e);
}  // namespace tk

namespace tk {

namespace {

#define TK_KIND(type, is_window, focusable, on_event)                              \
  Kind {                                                                           \
    type, is_window, focusable, on_event, widget_vtable_t {                        \
      sizeof(widget_vtable_t), type, is_window, FALSE, focusable, nullptr, nullptr \
    }                                                                              \
  }

Kind s_kinds[] = {
    TK_KIND("window_manager", false, false, nullptr),
    TK_KIND("window", true, false, window_on_event),
    TK_KIND("dialog", true, false, window_on_event),
    TK_KIND("popup", true, false, window_on_event),
    TK_KIND("overlay", true, false, window_on_event),
    TK_KIND("system_bar", true, false, window_on_event),
    TK_KIND("keyboard", true, false, window_on_event),
    TK_KIND("view", false, false, nullptr),
    TK_KIND("label", false, false, nullptr),
    TK_KIND("image", false, false, nullptr),
    TK_KIND("button", false, true, nullptr),
    TK_KIND("progress_bar", false, false, nullptr),
    TK_KIND("dialog_title", false, false, nullptr),
    TK_KIND("dialog_client", false, false, nullptr),
};

bool is_kind(const widget_t* w, const char* type) {
  return w != nullptr && w->host != nullptr && strcmp(w->host->kind->type, type) == 0;
}

void set_cstr(char** field, const char* value) {
  char* old = *field;
  *field = (value != nullptr) ? strdup(value) : nullptr;
  free(old);
}

// Window manager of a widget chain, for invalidation: only widgets on an open window count.
bool attached(const widget_t* w) {
  const widget_t* win = window_of(w);
  return win != nullptr && win->parent == g().wm;
}

void add_dirty(const rect_t& r) {
  Global& gl = g();
  rect_t c = r;
  int32_t W = static_cast<int32_t>(gl.sysinfo.lcd_w), H = static_cast<int32_t>(gl.sysinfo.lcd_h);
  int32_t x0 = std::max(c.x, 0), y0 = std::max(c.y, 0);
  int32_t x1 = std::min(c.x + c.w, W), y1 = std::min(c.y + c.h, H);
  if (x1 <= x0 || y1 <= y0) return;
  c = rect_t{x0, y0, x1 - x0, y1 - y0};
  for (rect_t& d : gl.dirty) {
    if (c.x >= d.x && c.y >= d.y && c.x + c.w <= d.x + d.w && c.y + c.h <= d.y + d.h) return;
  }
  gl.dirty.push_back(c);
  if (gl.dirty.size() > 32) {
    rect_t u = gl.dirty[0];
    for (const rect_t& d : gl.dirty) {
      int32_t ux1 = std::max(u.x + u.w, d.x + d.w), uy1 = std::max(u.y + u.h, d.y + d.h);
      u.x = std::min(u.x, d.x);
      u.y = std::min(u.y, d.y);
      u.w = ux1 - u.x;
      u.h = uy1 - u.y;
    }
    gl.dirty.assign(1, u);
  }
}

std::string fmt_double(double v) {
  char buf[64];
  if (std::floor(v) == v && std::fabs(v) < 1e15) {
    snprintf(buf, sizeof(buf), "%lld", static_cast<long long>(v));
  } else {
    snprintf(buf, sizeof(buf), "%g", v);
  }
  return buf;
}

// A progress bar's printf format made safe for its one value: exactly one conversion (and any
// number of "%%"); integer conversions are given "ll" and a long long, floating ones a double.
// "" when the format has another shape.
std::string value_format(const std::string& f, bool* integer) {
  std::string out;
  int conversions = 0;
  for (size_t i = 0; i < f.size(); i++) {
    out.push_back(f[i]);
    if (f[i] != '%') continue;
    if (i + 1 < f.size() && f[i + 1] == '%') {
      out.push_back(f[++i]);
      continue;
    }
    i++;
    while (i < f.size() && strchr("-+ #0123456789.", f[i]) != nullptr)
      out.push_back(f[i++]);
    while (i < f.size() && strchr("hlLjzt", f[i]) != nullptr)
      i++;
    if (i >= f.size()) return "";
    if (strchr("diouxXc", f[i]) != nullptr) {
      *integer = true;
      out += "ll";
    } else if (strchr("eEfFgGaA", f[i]) != nullptr) {
      *integer = false;
    } else {
      return "";
    }
    out.push_back(f[i]);
    conversions++;
  }
  return conversions == 1 ? out : "";
}

void progress_update_text(widget_t* w) {
  widget_host_t* h = w->host;
  char buf[128];
  bool integer = false;
  std::string fmt = value_format(h->format, &integer);
  if (fmt.empty()) {
    snprintf(buf, sizeof(buf), "%d%%", whole<int>(h->max != 0 ? h->value * 100.0 / h->max : 0));
  } else if (integer) {
    snprintf(buf, sizeof(buf), fmt.c_str(), whole<long long>(h->value));
  } else {
    snprintf(buf, sizeof(buf), fmt.c_str(), h->value);
  }
  wstr_set_utf8(&w->text, buf);
}

void free_widget(widget_t* w) {
  Global& gl = g();
  g_tree_generation++;
  gl.live.erase(w);
  if (w->emitter != nullptr) delete w->emitter;
  free(w->name);
  free(w->pointer_cursor);
  free(w->tr_text);
  free(w->style);
  free(w->animation);
  free(w->state);
  wstr_reset(&w->text);
  if (w->children != nullptr) {
    free(w->children->elms);
    delete w->children;
  }
  delete w->host;
  delete w;
}

void count_failed_lookup(widget_t* w, const char* name) {
  Global& gl = g();
  if (w == gl.wm) return;
  gl.failed_lookups++;
  if (on_ui_thread()) {
    std::string where = (w != nullptr && w->name != nullptr) ? w->name : "?";
    gl.failed_lookup_names.push_back(where + "/" + (name != nullptr ? name : "(null)"));
  }
}

widget_t* lookup_rec(widget_t* w, const char* name) {
  darray_t* a = w->children;
  if (a == nullptr) return nullptr;
  for (uint32_t i = 0; i < a->size; i++) {
    widget_t* c = static_cast<widget_t*>(a->elms[i]);
    if (c->name != nullptr && c->name[0] == name[0] && strcmp(c->name, name) == 0) return c;
    if (c->children != nullptr) {
      widget_t* r = lookup_rec(c, name);
      if (r != nullptr) return r;
    }
  }
  return nullptr;
}

ret_t foreach_rec(widget_t* w, tk_visit_t visit, void* ctx) {
  ret_t ret = visit(ctx, w);
  switch (ret) {
    case RET_OK:
    case RET_CONTINUE: break;
    case RET_SKIP: return RET_OK;
    case RET_REMOVE: widget_destroy(w); return RET_OK;
    case RET_REPEAT:
      log_warn("widget_foreach: RET_REPEAT is not supported here, going on\n");
      break;
    default: return ret;
  }
  darray_t* a = w->children;
  if (a == nullptr) return RET_OK;
  for (uint32_t i = 0; i < a->size;) {
    widget_t* c = static_cast<widget_t*>(a->elms[i]);
    uint32_t before = a->size;
    ret_t r = foreach_rec(c, visit, ctx);
    if (r != RET_OK) return r;
    // The visited child may have been removed (RET_REMOVE): stay on this index then.
    if (a->size < before && (i >= a->size || a->elms[i] != c)) continue;
    i++;
  }
  return RET_OK;
}

}  // namespace

uint64_t g_tree_generation = 1;

void children_push(widget_t* parent, widget_t* child, int32_t index) {
  g_tree_generation++;
  if (parent->children == nullptr) {
    parent->children = new darray_t{};
  }
  darray_t* a = parent->children;
  if (a->size == a->capacity) {
    uint32_t cap = a->capacity == 0 ? 4 : a->capacity * 2;
    void** p = static_cast<void**>(realloc(a->elms, cap * sizeof(void*)));
    if (p == nullptr) return;
    a->elms = p;
    a->capacity = cap;
  }
  if (index < 0 || static_cast<uint32_t>(index) > a->size) index = static_cast<int32_t>(a->size);
  memmove(a->elms + index + 1, a->elms + index, (a->size - index) * sizeof(void*));
  a->elms[index] = child;
  a->size++;
  child->parent = parent;
}

bool children_remove(widget_t* parent, widget_t* child) {
  g_tree_generation++;
  darray_t* a = parent->children;
  if (a == nullptr) return false;
  for (uint32_t i = 0; i < a->size; i++) {
    if (a->elms[i] == child) {
      memmove(a->elms + i, a->elms + i + 1, (a->size - i - 1) * sizeof(void*));
      a->size--;
      child->parent = nullptr;
      if (parent->key_target == child) parent->key_target = nullptr;
      return true;
    }
  }
  return false;
}

const Kind* kind_find(const char* type) {
  if (type == nullptr) return nullptr;
  for (const Kind& k : s_kinds) {
    if (strcmp(k.type, type) == 0) return &k;
  }
  return nullptr;
}

const Kind* kind_view() {
  return kind_find("view");
}

widget_t* widget_new(const Kind* kind, widget_t* parent) {
  widget_t* w = new widget_t{};
  w->host = new widget_host_t{};
  w->host->kind = kind;
  w->vt = &kind->vt;
  w->enable = TRUE;
  w->visible = TRUE;
  w->sensitive = TRUE;
  w->feedback = FALSE;
  w->focusable = kind->focusable ? TRUE : FALSE;
  w->opacity = 0xff;
  w->ref_count = 1;
  w->state = strdup(WIDGET_STATE_NORMAL);
  wstr_init(&w->text, 0);
  if (strcmp(kind->type, "image") == 0) w->host->draw_type = IMAGE_DRAW_ICON;
  g().live.insert(w);
  if (parent != nullptr) widget_add_child(parent, w);
  return w;
}

bool is_live(const widget_t* w) {
  return w != nullptr && g().live.count(w) != 0;
}

namespace {
// EVT_DESTROY (children first, last to first), then the widget's timers and idles go.
void finalize_tree(widget_t* w) {
  if (w == nullptr || !is_live(w)) return;
  w->destroying = TRUE;
  if (w->children != nullptr) {
    for (uint32_t n = w->children->size; n > 0; n--) {
      finalize_tree(static_cast<widget_t*>(w->children->elms[n - 1]));
    }
  }
  if (w->emitter != nullptr) {
    event_t e = event_init(EVT_DESTROY, w);
    emitter_dispatch(w->emitter, &e);
  }
  remove_owned(w);
  g().live.erase(w);
}
}  // namespace

void bury(widget_t* w) {
  Global& gl = g();
  gl.doomed.erase(std::remove(gl.doomed.begin(), gl.doomed.end(), w), gl.doomed.end());
  if (w == nullptr || !is_live(w)) return;
  finalize_tree(w);
  std::lock_guard<std::recursive_mutex> lock(gl.stack_mutex);
  gl.graveyard.emplace_back(w, gl.step_count);
}

void free_tree(widget_t* w) {
  if (w == nullptr) return;
  if (w->children != nullptr) {
    for (uint32_t n = w->children->size; n > 0; n--) {
      free_tree(static_cast<widget_t*>(w->children->elms[n - 1]));
    }
    w->children->size = 0;
  }
  free_widget(w);
}

void destroy_deferred(widget_t* w) {
  if (w == nullptr || !is_live(w) || w->destroying) return;
  invalidate_widget(w);
  if (w->parent != nullptr) {
    mark_relayout(w->parent);
    children_remove(w->parent, w);
  }
  w->destroying = TRUE;
  g().doomed.push_back(w);
  idle_call([w] { bury(w); });
}

widget_t* window_of(const widget_t* w) {
  Global& gl = g();
  const widget_t* p = w;
  while (p != nullptr) {
    if (p->host != nullptr && p->host->kind->is_window) return const_cast<widget_t*>(p);
    if (p == gl.wm) return nullptr;
    p = p->parent;
  }
  return nullptr;
}

widget_t* child_named(widget_t* w, const char* name) {
  if (w == nullptr || name == nullptr || w->children == nullptr) return nullptr;
  darray_t* a = w->children;
  if (name[0] == '[') {
    int32_t idx = tk_atoi(name + 1);
    if (idx >= 0 && static_cast<uint32_t>(idx) < a->size) {
      return static_cast<widget_t*>(a->elms[idx]);
    }
    return nullptr;
  }
  for (uint32_t i = 0; i < a->size; i++) {
    widget_t* c = static_cast<widget_t*>(a->elms[i]);
    if (c->name != nullptr && strcmp(c->name, name) == 0) return c;
  }
  return nullptr;
}

namespace {
void index_rec(widget_t* w, NameIndex* index) {
  darray_t* a = w->children;
  if (a == nullptr) return;
  for (uint32_t i = 0; i < a->size; i++) {
    widget_t* c = static_cast<widget_t*>(a->elms[i]);
    if (c->name != nullptr) index->first.emplace(c->name, c);
    index_rec(c, index);
  }
}
}  // namespace

widget_t* lookup_named(widget_t* w, const char* name, bool recursive) {
  if (w == nullptr || name == nullptr) return nullptr;
  if (!recursive) return child_named(w, name);
  if (name[0] == '\0' || w->children == nullptr) return nullptr;
  if (w == g().wm) return lookup_rec(w, name);
  // Pages look names up in their window again and again: index the subtree once per change.
  widget_host_t* h = w->host;
  if (!h->name_index) h->name_index = std::make_unique<NameIndex>();
  NameIndex* index = h->name_index.get();
  if (index->generation != g_tree_generation) {
    index->first.clear();
    index_rec(w, index);
    index->generation = g_tree_generation;
  }
  auto it = index->first.find(std::string_view(name));
  return it == index->first.end() ? nullptr : it->second;
}

/* ---- emitter ---- */

// Marks the handlers `match` accepts as removed (dropped now unless a dispatch is walking them);
// false when there was none.
template <typename Match>
bool emitter_off(emitter_t* em, Match match) {
  bool found = false;
  for (auto& h : em->handlers) {
    if (!h.removed && match(h)) {
      h.removed = true;
      found = true;
    }
  }
  em->has_removed = em->has_removed || found;
  emitter_compact(em);
  return found;
}

ret_t emitter_dispatch(emitter_t* em, event_t* e) {
  if (em == nullptr) return RET_OK;
  Global& gl = g();
  em->dispatching++;
  gl.callbacks++;
  ret_t result = RET_OK;
  for (size_t n = em->handlers.size(); n > 0; n--) {
    size_t i = n - 1;
    if (i >= em->handlers.size()) continue;
    EmitterHandler h = em->handlers[i];
    if (h.removed || h.type != e->type) continue;
    ret_t r = h.func(h.ctx, e);
    if (r == RET_REMOVE) {
      emitter_off(em, [id = h.id](const EmitterHandler& x) { return x.id == id; });
    } else if (r == RET_STOP) {
      result = RET_STOP;
      break;
    }
  }
  gl.callbacks--;
  em->dispatching--;
  emitter_compact(em);
  return result;
}

void emitter_remove_ctx(emitter_t* em, void* ctx) {
  if (em != nullptr) emitter_off(em, [ctx](const EmitterHandler& h) { return h.ctx == ctx; });
}

void emitter_compact(emitter_t* em) {
  if (em != nullptr && em->dispatching == 0 && em->has_removed) {
    em->handlers.erase(std::remove_if(em->handlers.begin(), em->handlers.end(),
                                      [](const EmitterHandler& x) { return x.removed; }),
                       em->handlers.end());
    em->has_removed = false;
  }
}

/* ---- dirty region ---- */

rect_t screen_rect(const widget_t* w) {
  rect_t r{0, 0, 0, 0};
  if (w == nullptr) return r;
  r.w = w->w;
  r.h = w->h;
  for (const widget_t* p = w; p != nullptr; p = p->parent) {
    r.x += p->x;
    r.y += p->y;
  }
  return r;
}

void invalidate_rect(const rect_t& r) {
  add_dirty(r);
}

void invalidate_widget(const widget_t* w) {
  if (w == nullptr || !attached(w) || !visible_in_window(w)) return;
  add_dirty(screen_rect(w));
}

bool has_dirty() {
  return !g().dirty.empty();
}

std::vector<rect_t> take_dirty() {
  std::vector<rect_t> out;
  out.swap(g().dirty);
  return out;
}

/* ---- facts for the painter ---- */

const char* kind(const widget_t* w) {
  return w != nullptr ? w->host->kind->type : "";
}
bool visible(const widget_t* w) {
  return w != nullptr && w->visible;
}
bool visible_in_window(const widget_t* w) {
  for (const widget_t* p = w; p != nullptr && p != g().wm; p = p->parent) {
    if (!p->visible) return false;
  }
  return w != nullptr;
}
uint8_t opacity(const widget_t* w) {
  return w != nullptr ? w->opacity : 0;
}

const char* derived_state(const widget_t* w) {
  if (w == nullptr) return WIDGET_STATE_NORMAL;
  for (const widget_t* p = w; p != nullptr; p = p->parent) {
    if (!p->enable) return WIDGET_STATE_DISABLE;
  }
  const char* s = w->state != nullptr ? w->state : WIDGET_STATE_NORMAL;
  if (w->focusable) {
    if (w->focused && strcmp(s, WIDGET_STATE_NORMAL) == 0) return WIDGET_STATE_FOCUSED;
    if (!w->focused && strcmp(s, WIDGET_STATE_FOCUSED) == 0) return WIDGET_STATE_NORMAL;
  }
  return s;
}

std::string text_utf8(const widget_t* w) {
  if (w == nullptr || w->text.str == nullptr) return "";
  std::string out(w->text.size * 4 + 1, '\0');
  tk_utf8_from_utf16(w->text.str, out.data(), static_cast<uint32_t>(out.size()));
  out.resize(strlen(out.c_str()));
  return out;
}

const char* image_name(const widget_t* w) {
  return w != nullptr ? w->host->image.c_str() : "";
}
image_draw_type_t draw_type(const widget_t* w) {
  return w != nullptr ? w->host->draw_type : IMAGE_DRAW_DEFAULT;
}
double progress_value(const widget_t* w) {
  return w != nullptr ? w->host->value : 0;
}
double progress_max(const widget_t* w) {
  return w != nullptr ? w->host->max : 100;
}
bool progress_show_text(const widget_t* w) {
  return w != nullptr && w->host->show_text;
}
bool progress_vertical(const widget_t* w) {
  return w != nullptr && w->host->vertical;
}
bool progress_reverse(const widget_t* w) {
  return w != nullptr && w->host->reverse;
}

int32_t lcd_w() {
  return static_cast<int32_t>(g().sysinfo.lcd_w);
}
int32_t lcd_h() {
  return static_cast<int32_t>(g().sysinfo.lcd_h);
}

/* ---- text ---- */

void set_text_raw(widget_t* w, const char* utf8) {
  std::string old = text_utf8(w);
  if (old == (utf8 != nullptr ? utf8 : "")) return;
  wstr_set_utf8(&w->text, utf8 != nullptr ? utf8 : "");
  invalidate_widget(w);
}

void retranslate(widget_t* w) {
  if (w->tr_text != nullptr) set_text_raw(w, locale_info_tr(locale_info(), w->tr_text));
  if (w->children != nullptr) {
    for (uint32_t i = 0; i < w->children->size; i++) {
      retranslate(static_cast<widget_t*>(w->children->elms[i]));
    }
  }
}

/* ---- layout ---- */

namespace {

bool layout_dirty = true;

std::string trim(const std::string& s) {
  size_t b = s.find_first_not_of(" \t\r\n");
  if (b == std::string::npos) return "";
  size_t e = s.find_last_not_of(" \t\r\n");
  return s.substr(b, e - b + 1);
}

// "c:10", "c:10%", "r", "right:5" -> offset part
void parse_offset(const std::string& s, LayoutAxis* a) {
  size_t colon = s.find(':');
  if (colon == std::string::npos) {
    a->v = 0;
    return;
  }
  std::string off = s.substr(colon + 1);
  a->offset_percent = !off.empty() && off.back() == '%';
  a->v = a->offset_percent ? tk_atof(off.c_str()) : tk_atoi(off.c_str());
}

// A position: `centre` ('c' for x, 'm' for y) or `end` ('r', 'b') with an optional offset
// (only the first letter counts, so x="m" is 0), N% or N pixels. A y containing an 'n' (as in
// "center") is undefined.
LayoutAxis parse_pos(const std::string& s, char centre, char end) {
  LayoutAxis a;
  if (s.empty()) return a;
  if (s[0] == centre || s[0] == end) {
    a.mode = s[0] == centre ? LayoutAxis::CENTER : LayoutAxis::END;
    parse_offset(s, &a);
  } else if (end == 'b' && s.find('n') != std::string::npos) {
    a.mode = LayoutAxis::UNDEF;
  } else if (s.back() == '%') {
    a.mode = LayoutAxis::PERCENT;
    a.v = tk_atof(s.c_str());
  } else {
    a.mode = LayoutAxis::PIXEL;
    a.v = tk_atoi(s.c_str());
  }
  return a;
}

LayoutAxis parse_wh(const std::string& s) {
  LayoutAxis a;
  if (s.empty() || s.find('n') != std::string::npos) return a;
  if (s.back() == '%') {
    a.mode = LayoutAxis::PERCENT;
    a.v = tk_atof(s.c_str());
  } else if (s[0] == '-') {
    a.mode = LayoutAxis::MINUS;
    a.v = -static_cast<double>(tk_atoi(s.c_str()));
  } else {
    a.mode = LayoutAxis::PIXEL;
    a.v = tk_atoi(s.c_str());
  }
  return a;
}

// "name(k=v,k=v)" -> pairs; false when the shape is wrong.
bool parse_params(const std::string& text, std::vector<std::pair<std::string, std::string>>* out) {
  std::string t = trim(text);
  size_t open = t.find('(');
  size_t close = t.rfind(')');
  if (open == std::string::npos || close == std::string::npos || close < open) return false;
  std::string inner = t.substr(open + 1, close - open - 1);
  std::stringstream ss(inner);
  std::string item;
  while (std::getline(ss, item, ',')) {
    size_t eq = item.find('=');
    if (eq == std::string::npos) continue;
    out->emplace_back(trim(item.substr(0, eq)), trim(item.substr(eq + 1)));
  }
  return true;
}

double axis_offset(const LayoutAxis& a, int32_t parent) {
  return a.offset_percent ? std::trunc(parent * a.v / 100.0) : a.v;
}

void set_rect_silent(widget_t* w, int32_t x, int32_t y, int32_t ww, int32_t hh) {
  if (w->x == x && w->y == y && w->w == ww && w->h == hh) return;
  invalidate_widget(w);
  w->x = x;
  w->y = y;
  w->w = ww;
  w->h = hh;
  invalidate_widget(w);
}

void apply_children_layout(widget_t* w) {
  const ChildrenLayout& cl = w->host->children_layout;
  if (!cl.set || w->children == nullptr) return;
  std::vector<widget_t*> kids;
  for (uint32_t i = 0; i < w->children->size; i++) {
    widget_t* c = static_cast<widget_t*>(w->children->elms[i]);
    if (c->visible && !c->floating) kids.push_back(c);
  }
  int32_t W = w->w - 2 * cl.xm, H = w->h - 2 * cl.ym;
  int32_t cell_w = cl.cols > 0 ? (W - (cl.cols - 1) * cl.spacing) / cl.cols : 0;
  int32_t cell_h = cl.rows > 0 ? (H - (cl.rows - 1) * cl.spacing) / cl.rows : 0;
  int32_t cx = cl.xm, cy = cl.ym;
  for (size_t i = 0; i < kids.size(); i++) {
    widget_t* c = kids[i];
    if (cl.rows > 0 && cl.cols > 0) {
      int32_t row = static_cast<int32_t>(i) / cl.cols, col = static_cast<int32_t>(i) % cl.cols;
      set_rect_silent(c, cl.xm + col * (cell_w + cl.spacing), cl.ym + row * (cell_h + cl.spacing),
                      cell_w, cell_h);
    } else if (cl.cols == 0) {
      // One row (or rows of full height): children keep their widths, laid left to right.
      int32_t hh = cl.rows > 0 ? cell_h : c->h;
      set_rect_silent(c, cx, cl.ym, c->w, hh);
      cx += c->w + cl.spacing;
    } else {
      // Columns only: children keep their heights, laid top to bottom.
      int32_t col = static_cast<int32_t>(i) % cl.cols;
      set_rect_silent(c, cl.xm + col * (cell_w + cl.spacing), cy, cell_w, c->h);
      if (col == cl.cols - 1) cy += c->h + cl.spacing;
    }
  }
}

}  // namespace

int32_t axis_size(const LayoutAxis& a, int32_t parent, int32_t current) {
  switch (a.mode) {
    case LayoutAxis::PIXEL: return whole<int32_t>(a.v);
    case LayoutAxis::PERCENT: return whole<int32_t>(parent * a.v / 100.0);
    case LayoutAxis::MINUS: return whole<int32_t>(parent - a.v);
    default: return current;
  }
}

int32_t axis_pos(const LayoutAxis& a, int32_t parent, int32_t size, int32_t current) {
  switch (a.mode) {
    case LayoutAxis::PIXEL: return whole<int32_t>(a.v);
    case LayoutAxis::PERCENT: return whole<int32_t>(parent * a.v / 100.0);
    case LayoutAxis::CENTER:
      return whole<int32_t>(std::trunc((parent - static_cast<double>(size)) / 2) +
                            axis_offset(a, parent));
    case LayoutAxis::END:
      return whole<int32_t>(parent - static_cast<double>(size) - axis_offset(a, parent));
    default: return current;
  }
}

bool parse_self_layout(const std::string& text, SelfLayout* out) {
  std::vector<std::pair<std::string, std::string>> params;
  if (!parse_params(text, &params)) return false;
  SelfLayout sl;
  sl.set = true;
  sl.text = text;
  for (auto& [k, v] : params) {
    if (k == "x")
      sl.x = parse_pos(v, 'c', 'r');
    else if (k == "y")
      sl.y = parse_pos(v, 'm', 'b');
    else if (k == "w")
      sl.w = parse_wh(v);
    else if (k == "h")
      sl.h = parse_wh(v);
  }
  *out = sl;
  return true;
}

bool parse_children_layout(const std::string& text, ChildrenLayout* out) {
  std::vector<std::pair<std::string, std::string>> params;
  if (!parse_params(text, &params)) return false;
  ChildrenLayout cl;
  cl.set = true;
  cl.text = text;
  for (auto& [k, v] : params) {
    int32_t n = tk_atoi(v.c_str());
    if (k == "r" || k == "row" || k == "rows")
      cl.rows = n;
    else if (k == "c" || k == "col" || k == "cols")
      cl.cols = n;
    else if (k == "m" || k == "margin")
      cl.xm = cl.ym = n;
    else if (k == "xm" || k == "x_margin")
      cl.xm = n;
    else if (k == "ym" || k == "y_margin")
      cl.ym = n;
    else if (k == "s" || k == "spacing")
      cl.spacing = n;
  }
  *out = cl;
  return true;
}

void mark_relayout(widget_t* w) {
  (void)w;
  layout_dirty = true;
}

void relayout(widget_t* w) {
  widget_host_t* h = w->host;
  if (h->self_layout.set && w->parent != nullptr && !h->kind->is_window) {
    const SelfLayout& sl = h->self_layout;
    int32_t pw = w->parent->w, ph = w->parent->h;
    int32_t ww = axis_size(sl.w, pw, w->w);
    int32_t hh = axis_size(sl.h, ph, w->h);
    int32_t x = axis_pos(sl.x, pw, ww, w->x);
    int32_t y = axis_pos(sl.y, ph, hh, w->y);
    set_rect_silent(w, x, y, ww, hh);
  }
  apply_children_layout(w);
  if (w->children != nullptr) {
    for (uint32_t i = 0; i < w->children->size; i++) {
      relayout(static_cast<widget_t*>(w->children->elms[i]));
    }
  }
}

void layout_pass() {
  if (!layout_dirty) return;
  layout_dirty = false;
  Global& gl = g();
  if (gl.wm == nullptr || gl.wm->children == nullptr) return;
  for (uint32_t i = 0; i < gl.wm->children->size; i++) {
    relayout(static_cast<widget_t*>(gl.wm->children->elms[i]));
  }
}

/* ---- dump ---- */

namespace {

std::string style_value_text(const StyleValue& v) {
  char buf[32];
  switch (v.kind) {
    case StyleValue::COLOR: snprintf(buf, sizeof(buf), "0x%08X", v.color); return buf;
    case StyleValue::INT: return std::to_string(v.i);
    default: return "\"" + v.s + "\"";
  }
}

void dump_rec(widget_t* w, int depth, std::string* out) {
  std::string line(static_cast<size_t>(depth) * 2, ' ');
  char buf[256];
  snprintf(buf, sizeof(buf), "%s \"%s\" visible=%d x=%d y=%d w=%d h=%d state=%s", kind(w),
           w->name != nullptr ? w->name : "", w->visible ? 1 : 0, w->x, w->y, w->w, w->h,
           derived_state(w));
  line += buf;
  std::string text = text_utf8(w);
  if (!text.empty()) line += " text=\"" + text + "\"";
  if (w->tr_text != nullptr) line += std::string(" tr_text=\"") + w->tr_text + "\"";
  if (!w->host->image.empty()) line += " image=\"" + w->host->image + "\"";
  if (strcmp(kind(w), "progress_bar") == 0) {
    line += " value=" + fmt_double(w->host->value) + " max=" + fmt_double(w->host->max);
  }
  if (w->opacity != 0xff) line += " opacity=" + std::to_string(w->opacity);
  if (!w->enable) line += " enable=0";
  if (w->style != nullptr) line += std::string(" style=\"") + w->style + "\"";
  for (const StyleOverride& o : w->host->overrides) {
    line += " style:" + o.state + ":" + o.name + "=" + style_value_text(o.value);
  }
  *out += line + "\n";
  if (w->children != nullptr) {
    for (uint32_t i = 0; i < w->children->size; i++) {
      dump_rec(static_cast<widget_t*>(w->children->elms[i]), depth + 1, out);
    }
  }
}

}  // namespace

std::string dump(widget_t* w) {
  std::string out;
  if (w != nullptr) dump_rec(w, 0, &out);
  return out;
}

std::vector<widget_t*> windows_bottom_to_top() {
  std::vector<widget_t*> out;
  Global& gl = g();
  if (gl.wm == nullptr || gl.wm->children == nullptr) return out;
  for (uint32_t i = 0; i < gl.wm->children->size; i++) {
    out.push_back(static_cast<widget_t*>(gl.wm->children->elms[i]));
  }
  return out;
}

/* ---- properties from strings (loader and widget_set_prop_str) ---- */

namespace {

const char* const kKnownRootProps[] = {"theme",
                                       "single_instance",
                                       "closable",
                                       "anim_hint",
                                       "fullscreen",
                                       "move_focus_next_key",
                                       "move_focus_prev_key",
                                       "accept_button",
                                       "cancel_button",
                                       "to_modal",
                                       "open_anim_hint",
                                       "close_anim_hint",
                                       "disable_anim",
                                       "stage",
                                       "strongly_focus",
                                       "design_w",
                                       "design_h",
                                       "auto_scale_children_x",
                                       "auto_scale_children_y",
                                       "auto_scale_children_w",
                                       "auto_scale_children_h",
                                       "highlight",
                                       "modal"};

image_draw_type_t parse_draw_type(const char* s) {
  static const std::pair<const char*, image_draw_type_t> kTypes[] = {
      {"default", IMAGE_DRAW_DEFAULT},
      {"center", IMAGE_DRAW_CENTER},
      {"icon", IMAGE_DRAW_ICON},
      {"scale", IMAGE_DRAW_SCALE},
      {"scale_auto", IMAGE_DRAW_SCALE_AUTO},
      {"auto", IMAGE_DRAW_SCALE_AUTO},
      {"scale_down", IMAGE_DRAW_SCALE_DOWN},
      {"scale_w", IMAGE_DRAW_SCALE_W},
      {"scale_h", IMAGE_DRAW_SCALE_H},
      {"repeat", IMAGE_DRAW_REPEAT},
      {"repeat_x", IMAGE_DRAW_REPEAT_X},
      {"repeat_y", IMAGE_DRAW_REPEAT_Y},
      {"repeat_y_inverse", IMAGE_DRAW_REPEAT_Y_INVERSE},
      {"patch9", IMAGE_DRAW_PATCH9},
      {"patch3_x", IMAGE_DRAW_PATCH3_X},
      {"patch3_y", IMAGE_DRAW_PATCH3_Y},
      {"patch3_x_scale_y", IMAGE_DRAW_PATCH3_X_SCALE_Y},
      {"patch3_y_scale_x", IMAGE_DRAW_PATCH3_Y_SCALE_X},
      {"repeat9", IMAGE_DRAW_REPEAT9},
      {"repeat3_x", IMAGE_DRAW_REPEAT3_X},
      {"repeat3_y", IMAGE_DRAW_REPEAT3_Y},
      {"fill", IMAGE_DRAW_FILL},
  };
  for (auto& [name, t] : kTypes) {
    if (strcmp(name, s) == 0) return t;
  }
  int32_t n = s[0] >= '0' && s[0] <= '9' ? tk_atoi(s) : IMAGE_DRAW_DEFAULT;
  return n <= IMAGE_DRAW_FILL ? static_cast<image_draw_type_t>(n) : IMAGE_DRAW_DEFAULT;
}

}  // namespace

ret_t set_prop_string(widget_t* w, const char* name, const char* v, bool from_loader,
                      const char* where) {
  widget_host_t* h = w->host;
  const char* type = h->kind->type;
  if (strncmp(name, "style.", 6) == 0 || strncmp(name, "style:", 6) == 0) {
    // style.<state>.<prop>, style:<state>:<prop>, or style.<prop> (state normal).
    std::string rest = name + 6;
    for (char& ch : rest) {
      if (ch == ':') ch = '.';
    }
    return widget_set_style_str(w, rest.c_str(), v);
  }
  if (strcmp(name, "x") == 0) return widget_move(w, tk_atoi(v), w->y);
  if (strcmp(name, "y") == 0) return widget_move(w, w->x, tk_atoi(v));
  if (strcmp(name, "w") == 0) return widget_resize(w, tk_atoi(v), w->h);
  if (strcmp(name, "h") == 0) return widget_resize(w, w->w, tk_atoi(v));
  if (strcmp(name, "name") == 0) return widget_set_name(w, v);
  if (strcmp(name, "text") == 0) return widget_set_text_utf8(w, v);
  if (strcmp(name, "tr_text") == 0) return widget_set_tr_text(w, v);
  if (strcmp(name, "style") == 0) return widget_use_style(w, v);
  if (strcmp(name, "visible") == 0) return widget_set_visible(w, tk_atob(v));
  if (strcmp(name, "enable") == 0) return widget_set_enable(w, tk_atob(v));
  if (strcmp(name, "focusable") == 0) return widget_set_focusable(w, tk_atob(v));
  if (strcmp(name, "sensitive") == 0) return widget_set_sensitive(w, tk_atob(v));
  if (strcmp(name, "focused") == 0 || strcmp(name, "focus") == 0) {
    return widget_set_focused(w, tk_atob(v));
  }
  if (strcmp(name, "floating") == 0) {
    w->floating = tk_atob(v);
    mark_relayout(w);
    return RET_OK;
  }
  if (strcmp(name, "feedback") == 0) {
    w->feedback = tk_atob(v);
    return RET_OK;
  }
  if (strcmp(name, "state") == 0) return widget_set_state(w, v);
  if (strcmp(name, "opacity") == 0) {
    int32_t o = tk_atoi(v);
    return widget_set_opacity(w, static_cast<uint8_t>(o < 0 ? 0 : (o > 255 ? 255 : o)));
  }
  if (strcmp(name, "self_layout") == 0) return widget_set_self_layout(w, v);
  if (strcmp(name, "children_layout") == 0) return widget_set_children_layout(w, v);
  if (strcmp(name, "pointer_cursor") == 0) {
    set_cstr(&w->pointer_cursor, v);
    return RET_OK;
  }
  if (strcmp(name, "animation") == 0) {
    set_cstr(&w->animation, v);
    return RET_OK;
  }
  if (strcmp(type, "image") == 0) {
    if (strcmp(name, "image") == 0) return image_base_set_image(w, v);
    if (strcmp(name, "draw_type") == 0) return image_set_draw_type(w, parse_draw_type(v));
  }
  if (strcmp(type, "progress_bar") == 0) {
    if (strcmp(name, "value") == 0) return progress_bar_set_value(w, tk_atof(v));
    if (strcmp(name, "max") == 0) return progress_bar_set_max(w, tk_atof(v));
    if (strcmp(name, "show_text") == 0) return progress_bar_set_show_text(w, tk_atob(v));
    if (strcmp(name, "format") == 0) return progress_bar_set_format(w, v);
    if (strcmp(name, "vertical") == 0) {
      h->vertical = tk_atob(v);
      invalidate_widget(w);
      return RET_OK;
    }
    if (strcmp(name, "reverse") == 0) {
      h->reverse = tk_atob(v);
      invalidate_widget(w);
      return RET_OK;
    }
  }
  if (strcmp(name, "value") == 0 && strcmp(type, "label") == 0) return widget_set_text_utf8(w, v);
  if (h->kind->is_window && strcmp(name, "theme") == 0) return widget_set_theme(w, v);
  if (from_loader) {
    bool known = strcmp(name, "value") == 0;
    for (const char* k : kKnownRootProps) {
      if (strcmp(k, name) == 0) known = true;
    }
    if (!known) {
      log_warn("%s: <%s name=\"%s\">: unknown attribute \"%s\" kept as a custom property\n",
               where != nullptr ? where : "ui", type, w->name != nullptr ? w->name : "", name);
    }
  }
  Prop p;
  p.type = Prop::STR;
  p.s = v != nullptr ? v : "";
  h->props[name] = std::move(p);
  return RET_OK;
}

// Parses a layout description into the widget's field; a malformed one is refused with a line.
template <typename Layout>
ret_t set_layout(widget_t* widget, const char* params, bool (*parse)(const std::string&, Layout*),
                 Layout widget_host_t::*field, const char* what, const char* form) {
  return_value_if_fail(widget != NULL && params != NULL, RET_BAD_PARAMS);
  Layout layout;
  if (!parse(params, &layout)) {
    log_warn("%s \"%s\" is not of the form default(%s)\n", what, params, form);
    return RET_BAD_PARAMS;
  }
  widget->host->*field = layout;
  mark_relayout(widget);
  return RET_OK;
}

}  // namespace tk

using tk::g;

extern "C" {

/* ---- creation ---- */

static widget_t* create_kind(const char* type, widget_t* parent, xy_t x, xy_t y, wh_t w, wh_t h) {
  widget_t* widget = tk::widget_new(tk::kind_find(type), parent);
  widget->x = x;
  widget->y = y;
  widget->w = w;
  widget->h = h;
  tk::invalidate_widget(widget);
  return widget;
}

widget_t* view_create(widget_t* parent, xy_t x, xy_t y, wh_t w, wh_t h) {
  return create_kind("view", parent, x, y, w, h);
}
widget_t* label_create(widget_t* parent, xy_t x, xy_t y, wh_t w, wh_t h) {
  return create_kind("label", parent, x, y, w, h);
}
widget_t* image_create(widget_t* parent, xy_t x, xy_t y, wh_t w, wh_t h) {
  return create_kind("image", parent, x, y, w, h);
}
widget_t* progress_bar_create(widget_t* parent, xy_t x, xy_t y, wh_t w, wh_t h) {
  widget_t* widget = create_kind("progress_bar", parent, x, y, w, h);
  tk::progress_update_text(widget);
  return widget;
}

ret_t widget_add_child(widget_t* widget, widget_t* child) {
  return_value_if_fail(widget != NULL && child != NULL && child->parent == NULL, RET_BAD_PARAMS);
  if (widget == g().wm) {
    tk::stack_append(child);
  } else {
    tk::children_push(widget, child, -1);
  }
  tk::mark_relayout(widget);
  tk::invalidate_widget(child);
  return RET_OK;
}

ret_t widget_remove_child(widget_t* widget, widget_t* child) {
  return_value_if_fail(widget != NULL && child != NULL, RET_BAD_PARAMS);
  tk::invalidate_widget(child);
  if (widget == g().wm) {
    tk::stack_remove(child);
    return RET_OK;
  }
  tk::mark_relayout(widget);
  return tk::children_remove(widget, child) ? RET_OK : RET_NOT_FOUND;
}

ret_t widget_destroy(widget_t* widget) {
  return_value_if_fail(widget != NULL && tk::is_live(widget), RET_BAD_PARAMS);
  if (widget->host->kind->is_window && widget->parent == g().wm) {
    return window_manager_close_window_force(g().wm, widget);
  }
  tk::destroy_deferred(widget);
  return RET_OK;
}

/* ---- tree ---- */

widget_t* widget_child(widget_t* widget, const char* name) {
  if (widget == nullptr || name == nullptr) return nullptr;
  tk::Global& gl = g();
  widget_t* r;
  if (widget == gl.wm) {
    std::lock_guard<std::recursive_mutex> lock(gl.stack_mutex);
    r = tk::child_named(widget, name);
  } else {
    r = tk::child_named(widget, name);
  }
  if (r == nullptr) tk::count_failed_lookup(widget, name);
  return r;
}

widget_t* widget_lookup(widget_t* widget, const char* name, bool_t recursive) {
  if (widget == nullptr || name == nullptr) return nullptr;
  tk::Global& gl = g();
  widget_t* r;
  if (widget == gl.wm) {
    std::lock_guard<std::recursive_mutex> lock(gl.stack_mutex);
    r = tk::lookup_named(widget, name, recursive != FALSE);
  } else {
    r = tk::lookup_named(widget, name, recursive != FALSE);
  }
  if (r == nullptr) tk::count_failed_lookup(widget, name);
  return r;
}

static widget_t* lookup_type_rec(widget_t* w, const char* type, bool recursive) {
  if (w->children == nullptr) return nullptr;
  for (uint32_t i = 0; i < w->children->size; i++) {
    widget_t* c = static_cast<widget_t*>(w->children->elms[i]);
    if (strcmp(c->host->kind->type, type) == 0) return c;
    if (recursive) {
      widget_t* r = lookup_type_rec(c, type, true);
      if (r != nullptr) return r;
    }
  }
  return nullptr;
}

widget_t* widget_lookup_by_type(widget_t* widget, const char* type, bool_t recursive) {
  if (widget == nullptr || type == nullptr) return nullptr;
  return lookup_type_rec(widget, type, recursive != FALSE);
}

ret_t widget_foreach(widget_t* widget, tk_visit_t visit, void* ctx) {
  return_value_if_fail(widget != NULL && visit != NULL, RET_BAD_PARAMS);
  return tk::foreach_rec(widget, visit, ctx);
}

int32_t widget_count_children(widget_t* widget) {
  if (widget == nullptr || widget->children == nullptr) return 0;
  return static_cast<int32_t>(widget->children->size);
}

widget_t* widget_get_child(widget_t* widget, int32_t index) {
  if (widget == nullptr || widget->children == nullptr || index < 0 ||
      static_cast<uint32_t>(index) >= widget->children->size) {
    return nullptr;
  }
  return static_cast<widget_t*>(widget->children->elms[index]);
}

int32_t widget_index_of(widget_t* widget) {
  if (widget == nullptr || widget->parent == nullptr || widget->parent->children == nullptr) {
    return -1;
  }
  darray_t* a = widget->parent->children;
  for (uint32_t i = 0; i < a->size; i++) {
    if (a->elms[i] == widget) return static_cast<int32_t>(i);
  }
  return -1;
}

widget_t* widget_get_window(widget_t* widget) {
  return tk::window_of(widget);
}

const char* widget_get_type(widget_t* widget) {
  return widget != nullptr ? widget->host->kind->type : nullptr;
}

bool_t widget_is_window(widget_t* widget) {
  return widget != nullptr && widget->host->kind->is_window ? TRUE : FALSE;
}

bool_t widget_is_dialog(widget_t* widget) {
  return tk::is_kind(widget, "dialog") ? TRUE : FALSE;
}

bool_t widget_is_normal_window(widget_t* widget) {
  return tk::is_kind(widget, "window") ? TRUE : FALSE;
}

bool_t widget_is_window_opened(widget_t* widget) {
  widget_t* win = tk::window_of(widget);
  return win != nullptr && win->host->stage == tk::WinStage::OPENED ? TRUE : FALSE;
}

/* ---- events ---- */

uint32_t widget_on(widget_t* widget, uint32_t type, event_func_t on_event, void* ctx) {
  return_value_if_fail(widget != NULL && on_event != NULL, TK_INVALID_ID);
  if (widget->emitter == nullptr) widget->emitter = new emitter_t();
  emitter_t* em = widget->emitter;
  uint32_t id = em->next_id++;
  em->handlers.push_back(EmitterHandler{id, type, on_event, ctx, false});
  return id;
}

ret_t widget_off(widget_t* widget, uint32_t id) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  return_value_if_fail(widget->emitter != NULL, RET_BAD_PARAMS);
  return tk::emitter_off(widget->emitter, [id](const EmitterHandler& h) { return h.id == id; })
             ? RET_OK
             : RET_FAIL;
}

ret_t widget_off_by_func(widget_t* widget, uint32_t type, event_func_t on_event, void* ctx) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  return_value_if_fail(widget->emitter != NULL, RET_BAD_PARAMS);
  return tk::emitter_off(widget->emitter,
                         [&](const EmitterHandler& h) {
                           return h.type == type && h.func == on_event && h.ctx == ctx;
                         })
             ? RET_OK
             : RET_NOT_FOUND;
}

ret_t widget_off_by_ctx(widget_t* widget, void* ctx) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  return_value_if_fail(widget->emitter != NULL, RET_BAD_PARAMS);
  tk::emitter_remove_ctx(widget->emitter, ctx);
  return RET_OK;
}

uint32_t widget_child_on(widget_t* widget, const char* name, uint32_t type, event_func_t on_event,
                         void* ctx) {
  return widget_on(widget_lookup(widget, name, TRUE), type, on_event, ctx);
}

ret_t widget_dispatch(widget_t* widget, event_t* e) {
  return_value_if_fail(widget != NULL && e != NULL, RET_BAD_PARAMS);
  if (e->target == nullptr) e->target = widget;
  const tk::Kind* k = widget->host->kind;
  if (k->on_event != nullptr && k->on_event(widget, e) == RET_STOP) return RET_STOP;
  if (widget->emitter == nullptr) return RET_OK;
  void* saved = e->target;
  e->target = widget;
  ret_t ret = tk::emitter_dispatch(widget->emitter, e);
  e->target = saved;
  return ret == RET_STOP ? RET_STOP : RET_OK;
}

static ret_t dispatch_rec(widget_t* w, event_t* e) {
  if (widget_dispatch(w, e) == RET_STOP) return RET_STOP;
  if (w->children == nullptr) return RET_OK;
  // Copy: handlers may change the tree.
  std::vector<void*> kids(w->children->elms, w->children->elms + w->children->size);
  for (void* c : kids) {
    auto* child = static_cast<widget_t*>(c);
    if (tk::is_live(child) && dispatch_rec(child, e) == RET_STOP) return RET_STOP;
  }
  return RET_OK;
}

ret_t widget_dispatch_recursive(widget_t* widget, event_t* e) {
  return_value_if_fail(widget != NULL && e != NULL, RET_BAD_PARAMS);
  return dispatch_rec(widget, e);
}

ret_t widget_dispatch_async(widget_t* widget, event_t* e) {
  return_value_if_fail(widget != NULL && e != NULL && e->target == widget, RET_BAD_PARAMS);
  uint32_t size = e->size >= sizeof(event_t) ? e->size : sizeof(event_t);
  std::vector<uint8_t> copy(size);
  memcpy(copy.data(), e, size);
  reinterpret_cast<event_t*>(copy.data())->size = size;
  tk::idle_call([widget, copy = std::move(copy)]() mutable {
    if (tk::is_live(widget)) widget_dispatch(widget, reinterpret_cast<event_t*>(copy.data()));
  });
  return RET_OK;
}

/* ---- widget timers and idles ---- */

uint32_t widget_add_timer(widget_t* widget, timer_func_t on_timer, uint32_t duration_ms) {
  return_value_if_fail(widget != NULL && on_timer != NULL, TK_INVALID_ID);
  return tk::timer_add_owned(on_timer, widget, duration_ms, widget);
}

ret_t widget_remove_timer(widget_t* widget, uint32_t timer_id) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  return timer_remove(timer_id);
}

uint32_t widget_add_idle(widget_t* widget, idle_func_t on_idle) {
  return_value_if_fail(widget != NULL && on_idle != NULL, TK_INVALID_ID);
  return tk::idle_add_owned(on_idle, widget, widget);
}

ret_t widget_remove_idle(widget_t* widget, uint32_t idle_id) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  return idle_remove(idle_id);
}

/* ---- properties ---- */

ret_t widget_set_prop(widget_t* widget, const char* name, const value_t* v) {
  return_value_if_fail(widget != NULL && name != NULL && v != NULL, RET_BAD_PARAMS);
  char buf[64];
  const char* s = buf;
  switch (v->type) {
    case VALUE_TYPE_STRING: s = v->value.str != nullptr ? v->value.str : ""; break;
    case VALUE_TYPE_BOOL: s = v->value.b ? "true" : "false"; break;
    case VALUE_TYPE_INT8: snprintf(buf, sizeof(buf), "%d", v->value.i8); break;
    case VALUE_TYPE_UINT8: snprintf(buf, sizeof(buf), "%u", v->value.u8); break;
    case VALUE_TYPE_INT16: snprintf(buf, sizeof(buf), "%d", v->value.i16); break;
    case VALUE_TYPE_UINT16: snprintf(buf, sizeof(buf), "%u", v->value.u16); break;
    case VALUE_TYPE_INT32: snprintf(buf, sizeof(buf), "%d", v->value.i32); break;
    case VALUE_TYPE_UINT32: snprintf(buf, sizeof(buf), "%u", v->value.u32); break;
    case VALUE_TYPE_INT64: snprintf(buf, sizeof(buf), "%lld", (long long)v->value.i64); break;
    case VALUE_TYPE_UINT64:
      snprintf(buf, sizeof(buf), "%llu", (unsigned long long)v->value.u64);
      break;
    case VALUE_TYPE_FLOAT: snprintf(buf, sizeof(buf), "%g", (double)v->value.f); break;
    case VALUE_TYPE_FLOAT32: snprintf(buf, sizeof(buf), "%g", (double)v->value.f32); break;
    case VALUE_TYPE_DOUBLE: snprintf(buf, sizeof(buf), "%g", v->value.f64); break;
    case VALUE_TYPE_WSTRING: {
      static thread_local char wbuf[1024];
      tk_utf8_from_utf16(v->value.wstr, wbuf, sizeof(wbuf));
      s = wbuf;
      break;
    }
    default: return RET_BAD_PARAMS;
  }
  ret_t r = tk::set_prop_string(widget, name, s, false, nullptr);
  if (v->type == VALUE_TYPE_STRING || v->type == VALUE_TYPE_WSTRING) return r;
  // A custom property set from a number or a boolean keeps that type.
  auto it = widget->host->props.find(name);
  if (it != widget->host->props.end() && it->second.s == s) {
    if (v->type == VALUE_TYPE_BOOL) {
      it->second.type = tk::Prop::BOOL;
      it->second.i = v->value.b;
    } else if (v->type == VALUE_TYPE_FLOAT || v->type == VALUE_TYPE_FLOAT32 ||
               v->type == VALUE_TYPE_DOUBLE) {
      it->second.type = tk::Prop::FLOAT;
      it->second.f = tk_atof(s);
    } else {
      it->second.type = tk::Prop::INT;
      it->second.i = strtoll(s, nullptr, 10);
    }
  }
  return r;
}

static void value_set_str(value_t* v, const char* s) {
  memset(v, 0, sizeof(*v));
  v->type = VALUE_TYPE_STRING;
  v->value.str = s;
}
static void value_set_int(value_t* v, int32_t i) {
  memset(v, 0, sizeof(*v));
  v->type = VALUE_TYPE_INT32;
  v->value.i32 = i;
}
static void value_set_bool(value_t* v, bool b) {
  memset(v, 0, sizeof(*v));
  v->type = VALUE_TYPE_BOOL;
  v->value.b = b ? TRUE : FALSE;
}

ret_t widget_get_prop(widget_t* widget, const char* name, value_t* v) {
  return_value_if_fail(widget != NULL && name != NULL && v != NULL, RET_BAD_PARAMS);
  widget_host_t* h = widget->host;
  if (strcmp(name, "name") == 0) return value_set_str(v, widget->name), RET_OK;
  if (strcmp(name, "text") == 0) {
    memset(v, 0, sizeof(*v));
    v->type = VALUE_TYPE_WSTRING;
    v->value.wstr = widget->text.str;
    return RET_OK;
  }
  if (strcmp(name, "tr_text") == 0) return value_set_str(v, widget->tr_text), RET_OK;
  if (strcmp(name, "style") == 0) return value_set_str(v, widget->style), RET_OK;
  if (strcmp(name, "state") == 0) return value_set_str(v, widget->state), RET_OK;
  if (strcmp(name, "x") == 0) return value_set_int(v, widget->x), RET_OK;
  if (strcmp(name, "y") == 0) return value_set_int(v, widget->y), RET_OK;
  if (strcmp(name, "w") == 0) return value_set_int(v, widget->w), RET_OK;
  if (strcmp(name, "h") == 0) return value_set_int(v, widget->h), RET_OK;
  if (strcmp(name, "opacity") == 0) return value_set_int(v, widget->opacity), RET_OK;
  if (strcmp(name, "visible") == 0) return value_set_bool(v, widget->visible), RET_OK;
  if (strcmp(name, "enable") == 0) return value_set_bool(v, widget->enable), RET_OK;
  if (strcmp(name, "focusable") == 0) return value_set_bool(v, widget->focusable), RET_OK;
  if (strcmp(name, "focused") == 0) return value_set_bool(v, widget->focused), RET_OK;
  if (strcmp(name, "type") == 0) return value_set_str(v, h->kind->type), RET_OK;
  if (strcmp(h->kind->type, "image") == 0) {
    if (strcmp(name, "image") == 0) return value_set_str(v, h->image.c_str()), RET_OK;
    if (strcmp(name, "draw_type") == 0) return value_set_int(v, h->draw_type), RET_OK;
  }
  if (strcmp(h->kind->type, "progress_bar") == 0) {
    if (strcmp(name, "value") == 0 || strcmp(name, "max") == 0) {
      memset(v, 0, sizeof(*v));
      v->type = VALUE_TYPE_DOUBLE;
      v->value.f64 = name[0] == 'v' ? h->value : h->max;
      return RET_OK;
    }
    if (strcmp(name, "show_text") == 0) return value_set_bool(v, h->show_text), RET_OK;
    if (strcmp(name, "vertical") == 0) return value_set_bool(v, h->vertical), RET_OK;
    if (strcmp(name, "reverse") == 0) return value_set_bool(v, h->reverse), RET_OK;
    if (strcmp(name, "format") == 0) return value_set_str(v, h->format.c_str()), RET_OK;
  }
  if (h->kind->is_window && strcmp(name, "theme") == 0) {
    return value_set_str(v, h->theme.empty() ? nullptr : h->theme.c_str()), RET_OK;
  }
  auto it = h->props.find(name);
  if (it == h->props.end()) return RET_NOT_FOUND;
  const tk::Prop& p = it->second;
  memset(v, 0, sizeof(*v));
  switch (p.type) {
    case tk::Prop::STR:
      v->type = VALUE_TYPE_STRING;
      v->value.str = p.s.c_str();
      break;
    case tk::Prop::INT:
      v->type = VALUE_TYPE_INT64;
      v->value.i64 = p.i;
      break;
    case tk::Prop::BOOL:
      v->type = VALUE_TYPE_BOOL;
      v->value.b = p.i != 0;
      break;
    case tk::Prop::FLOAT:
      v->type = VALUE_TYPE_DOUBLE;
      v->value.f64 = p.f;
      break;
  }
  return RET_OK;
}

ret_t widget_set_prop_str(widget_t* widget, const char* name, const char* v) {
  return_value_if_fail(widget != NULL && name != NULL, RET_BAD_PARAMS);
  return tk::set_prop_string(widget, name, v != nullptr ? v : "", false, nullptr);
}

const char* widget_get_prop_str(widget_t* widget, const char* name, const char* defval) {
  value_t v;
  if (widget_get_prop(widget, name, &v) != RET_OK) return defval;
  if (v.type != VALUE_TYPE_STRING) {
    log_warn("widget_get_prop_str: property \"%s\" is not a string\n", name);
    return nullptr;
  }
  return v.value.str != nullptr ? v.value.str : defval;
}

ret_t widget_set_prop_int(widget_t* widget, const char* name, int32_t v) {
  value_t val;
  value_set_int(&val, v);
  return widget_set_prop(widget, name, &val);
}

int32_t widget_get_prop_int(widget_t* widget, const char* name, int32_t defval) {
  value_t v;
  if (widget_get_prop(widget, name, &v) != RET_OK) return defval;
  switch (v.type) {
    case VALUE_TYPE_STRING: return tk_atoi(v.value.str);
    case VALUE_TYPE_INT32: return v.value.i32;
    case VALUE_TYPE_INT64: return static_cast<int32_t>(v.value.i64);
    case VALUE_TYPE_BOOL: return v.value.b;
    case VALUE_TYPE_DOUBLE: return tk::whole<int32_t>(v.value.f64);
    default: return defval;
  }
}

ret_t widget_set_prop_bool(widget_t* widget, const char* name, bool_t v) {
  value_t val;
  value_set_bool(&val, v != FALSE);
  return widget_set_prop(widget, name, &val);
}

bool_t widget_get_prop_bool(widget_t* widget, const char* name, bool_t defval) {
  value_t v;
  if (widget == nullptr || name == nullptr) return defval;
  if (widget_get_prop(widget, name, &v) != RET_OK) return defval;
  switch (v.type) {
    case VALUE_TYPE_STRING: return tk_atob(v.value.str);
    case VALUE_TYPE_BOOL: return v.value.b;
    case VALUE_TYPE_INT32: return v.value.i32 != 0;
    case VALUE_TYPE_INT64: return v.value.i64 != 0;
    case VALUE_TYPE_DOUBLE: return v.value.f64 != 0;
    default: return defval;
  }
}

ret_t widget_set_name(widget_t* widget, const char* name) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  tk::g_tree_generation++;
  tk::set_cstr(&widget->name, name);
  return RET_OK;
}

/* ---- state, visibility, text ---- */

ret_t widget_set_visible(widget_t* widget, bool_t visible, ...) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  bool v = visible != FALSE;
  if ((widget->visible != FALSE) == v) return RET_OK;
  tk::invalidate_widget(widget);
  widget->visible = v ? TRUE : FALSE;
  tk::invalidate_widget(widget);
  if (widget->parent != nullptr) tk::mark_relayout(widget->parent);
  return RET_OK;
}

ret_t widget_set_enable(widget_t* widget, bool_t enable) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  if ((widget->enable != FALSE) == (enable != FALSE)) return RET_OK;
  widget->enable = enable ? TRUE : FALSE;
  if (!enable && widget->focused) widget_set_focused(widget, FALSE);
  tk::invalidate_widget(widget);
  return RET_OK;
}

ret_t widget_set_focusable(widget_t* widget, bool_t focusable) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  widget->focusable = focusable ? TRUE : FALSE;
  tk::invalidate_widget(widget);
  return RET_OK;
}

ret_t widget_set_sensitive(widget_t* widget, bool_t sensitive) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  widget->sensitive = sensitive ? TRUE : FALSE;
  return RET_OK;
}

static void unfocus_tree(widget_t* w, widget_t* except) {
  if (w != except && w->focused) {
    w->focused = FALSE;
    tk::invalidate_widget(w);
    event_t e = event_init(EVT_BLUR, w);
    widget_dispatch(w, &e);
  }
  if (w->children == nullptr) return;
  for (uint32_t i = 0; i < w->children->size; i++) {
    unfocus_tree(static_cast<widget_t*>(w->children->elms[i]), except);
  }
}

ret_t widget_set_focused(widget_t* widget, bool_t focused) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  if (focused) {
    if (!widget->enable) return RET_FAIL;
    widget_t* win = tk::window_of(widget);
    if (win != nullptr && win != widget) unfocus_tree(win, widget);
    // The key chain runs from the window down to the focused widget.
    for (widget_t* p = widget; p->parent != nullptr && p != win; p = p->parent) {
      p->parent->key_target = p;
    }
    if (!widget->focused) {
      widget->focused = TRUE;
      tk::invalidate_widget(widget);
      event_t e = event_init(EVT_FOCUS, widget);
      widget_dispatch(widget, &e);
    }
  } else if (widget->focused) {
    widget->focused = FALSE;
    if (widget->parent != nullptr && widget->parent->key_target == widget &&
        !widget->host->kind->is_window) {
      widget->parent->key_target = nullptr;
    }
    tk::invalidate_widget(widget);
    event_t e = event_init(EVT_BLUR, widget);
    widget_dispatch(widget, &e);
  }
  return RET_OK;
}

ret_t widget_set_state(widget_t* widget, const char* state) {
  return_value_if_fail(widget != NULL && state != NULL, RET_BAD_PARAMS);
  if (widget->state != nullptr && strcmp(widget->state, state) == 0) return RET_OK;
  tk::set_cstr(&widget->state, state);
  tk::invalidate_widget(widget);
  return RET_OK;
}

const char* widget_get_state_for_style(widget_t* widget, bool_t active, bool_t checked) {
  (void)active;
  (void)checked;
  return tk::derived_state(widget);
}

ret_t widget_set_opacity(widget_t* widget, uint8_t opacity) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  if (widget->opacity == opacity) return RET_OK;
  widget->opacity = opacity;
  tk::invalidate_widget(widget);
  return RET_OK;
}

ret_t widget_set_text_utf8(widget_t* widget, const char* text) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  tk::set_text_raw(widget, text);
  return RET_OK;
}

ret_t widget_set_text(widget_t* widget, const wchar_t* text) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  if (text == nullptr) text = L"";
  if (widget->text.str != nullptr && wcscmp(widget->text.str, text) == 0) return RET_OK;
  wstr_set(&widget->text, text);
  tk::invalidate_widget(widget);
  return RET_OK;
}

const wchar_t* widget_get_text(widget_t* widget) {
  return widget != nullptr ? widget->text.str : nullptr;
}

ret_t widget_get_text_utf8(widget_t* widget, char* buff, uint32_t size) {
  return_value_if_fail(widget != NULL && buff != NULL && size > 0, RET_BAD_PARAMS);
  tk_utf8_from_utf16(widget->text.str, buff, size);
  return RET_OK;
}

ret_t widget_set_tr_text(widget_t* widget, const char* tr_text) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  if (tr_text == nullptr || *tr_text == '\0') {
    tk::set_cstr(&widget->tr_text, nullptr);
    return RET_OK;
  }
  tk::set_cstr(&widget->tr_text, tr_text);
  tk::set_text_raw(widget, locale_info_tr(locale_info(), tr_text));
  return RET_OK;
}

ret_t widget_set_value(widget_t* widget, float_t value) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  const char* type = widget->host->kind->type;
  if (strcmp(type, "progress_bar") == 0) return progress_bar_set_value(widget, value);
  if (strcmp(type, "label") == 0) {
    return widget_set_text_utf8(widget, tk::fmt_double(static_cast<double>(value)).c_str());
  }
  tk::Prop p;
  p.type = tk::Prop::FLOAT;
  p.f = value;
  p.s = tk::fmt_double(static_cast<double>(value));
  widget->host->props["value"] = p;
  return RET_OK;
}

float_t widget_get_value(widget_t* widget) {
  if (widget == nullptr) return 0;
  const char* type = widget->host->kind->type;
  if (strcmp(type, "progress_bar") == 0) return static_cast<float_t>(widget->host->value);
  if (strcmp(type, "label") == 0) {
    return static_cast<float_t>(tk_atof(tk::text_utf8(widget).c_str()));
  }
  auto it = widget->host->props.find("value");
  if (it == widget->host->props.end()) return 0;
  if (it->second.type == tk::Prop::FLOAT) return static_cast<float_t>(it->second.f);
  if (it->second.type == tk::Prop::STR) return static_cast<float_t>(tk_atof(it->second.s.c_str()));
  return static_cast<float_t>(it->second.i);
}

ret_t widget_set_value_int(widget_t* widget, int32_t value) {
  return widget_set_value(widget, static_cast<float_t>(value));
}

int32_t widget_get_value_int(widget_t* widget) {
  return tk::whole<int32_t>(widget_get_value(widget));
}

/* ---- styles ---- */

ret_t widget_use_style(widget_t* widget, const char* style) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  tk::set_cstr(&widget->style, style);
  tk::invalidate_widget(widget);
  return RET_OK;
}

static ret_t set_style_value(widget_t* widget, const char* state_and_name, tk::StyleValue v,
                             bool parse_str, const char* str) {
  return_value_if_fail(widget != NULL && state_and_name != NULL, RET_BAD_PARAMS);
  return_value_if_fail(strlen(state_and_name) < 256, RET_BAD_PARAMS);
  std::string key = state_and_name;
  std::string state = WIDGET_STATE_NORMAL, name = key;
  size_t sep = key.find_first_of(":.");
  if (sep != std::string::npos) {
    state = key.substr(0, sep);
    name = key.substr(sep + 1);
  }
  return_value_if_fail(!name.empty(), RET_BAD_PARAMS);
  if (parse_str) v = tk::style_value_parse(name, str != nullptr ? str : "");
  for (tk::StyleOverride& o : widget->host->overrides) {
    if (o.state == state && o.name == name) {
      o.value = v;
      tk::invalidate_widget(widget);
      return RET_OK;
    }
  }
  widget->host->overrides.push_back(tk::StyleOverride{state, name, v});
  tk::invalidate_widget(widget);
  return RET_OK;
}

ret_t widget_set_style_color(widget_t* widget, const char* state_and_name, uint32_t value) {
  tk::StyleValue v;
  v.kind = tk::StyleValue::COLOR;
  v.color = value;
  return set_style_value(widget, state_and_name, v, false, nullptr);
}

ret_t widget_set_style_int(widget_t* widget, const char* state_and_name, int32_t value) {
  tk::StyleValue v;
  v.kind = tk::StyleValue::INT;
  v.i = value;
  return set_style_value(widget, state_and_name, v, false, nullptr);
}

ret_t widget_set_style_str(widget_t* widget, const char* state_and_name, const char* value) {
  return set_style_value(widget, state_and_name, tk::StyleValue{}, true, value);
}

ret_t widget_set_theme(widget_t* widget, const char* name) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  widget_t* win = tk::window_of(widget);
  if (win == nullptr) win = widget;
  win->host->theme = name != nullptr ? name : "";
  tk::style_cache_clear();
  tk::invalidate_widget(win);
  return RET_OK;
}

/* ---- geometry ---- */

// Moves and/or resizes with the event pair of the call; the self-layout axes set from code
// become undefined, so a relayout keeps what code set.
static ret_t set_geometry(widget_t* widget, xy_t x, xy_t y, wh_t w, wh_t h, uint32_t will,
                          uint32_t did) {
  bool pos = x != widget->x || y != widget->y;
  bool size = w != widget->w || h != widget->h;
  tk::SelfLayout& sl = widget->host->self_layout;
  if (will != EVT_WILL_RESIZE) sl.x.mode = sl.y.mode = tk::LayoutAxis::UNDEF;
  if (will != EVT_WILL_MOVE) sl.w.mode = sl.h.mode = tk::LayoutAxis::UNDEF;
  if (!pos && !size) return RET_OK;
  event_t e = event_init(will, widget);
  widget_dispatch(widget, &e);
  tk::invalidate_widget(widget);
  widget->x = x;
  widget->y = y;
  widget->w = w;
  widget->h = h;
  tk::invalidate_widget(widget);
  if (size) tk::mark_relayout(widget);
  e = event_init(did, widget);
  widget_dispatch(widget, &e);
  return RET_OK;
}

ret_t widget_move(widget_t* widget, xy_t x, xy_t y) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  return set_geometry(widget, x, y, widget->w, widget->h, EVT_WILL_MOVE, EVT_MOVE);
}

ret_t widget_resize(widget_t* widget, wh_t w, wh_t h) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  return set_geometry(widget, widget->x, widget->y, w, h, EVT_WILL_RESIZE, EVT_RESIZE);
}

ret_t widget_move_resize(widget_t* widget, xy_t x, xy_t y, wh_t w, wh_t h) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  return set_geometry(widget, x, y, w, h, EVT_WILL_MOVE_RESIZE, EVT_MOVE_RESIZE);
}

ret_t widget_set_self_layout(widget_t* widget, const char* params) {
  return tk::set_layout(widget, params, tk::parse_self_layout, &widget_host_t::self_layout,
                        "self_layout", "x=..,y=..,w=..,h=..");
}

ret_t widget_set_children_layout(widget_t* widget, const char* params) {
  return tk::set_layout(widget, params, tk::parse_children_layout, &widget_host_t::children_layout,
                        "children_layout", "r=..,c=..");
}

ret_t widget_layout(widget_t* widget) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  tk::relayout(widget);
  return RET_OK;
}

ret_t widget_invalidate(widget_t* widget, const rect_t* r) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  if (r == nullptr) {
    tk::invalidate_widget(widget);
  } else if (tk::visible_in_window(widget)) {
    rect_t s = tk::screen_rect(widget);
    tk::invalidate_rect(rect_t{s.x + r->x, s.y + r->y, r->w, r->h});
  }
  return RET_OK;
}

/* ---- image and progress bar ---- */

ret_t image_base_set_image(widget_t* widget, const char* name) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  std::string n = name != nullptr ? name : "";
  if (widget->host->image == n) return RET_OK;
  widget->host->image = n;
  tk::invalidate_widget(widget);
  return RET_OK;
}

ret_t image_set_draw_type(widget_t* widget, image_draw_type_t draw_type) {
  return_value_if_fail(widget != NULL, RET_BAD_PARAMS);
  widget->host->draw_type = draw_type;
  tk::invalidate_widget(widget);
  return RET_OK;
}

ret_t progress_bar_set_value(widget_t* widget, double value) {
  return_value_if_fail(widget != NULL && tk::is_kind(widget, "progress_bar"), RET_BAD_PARAMS);
  widget_host_t* h = widget->host;
  if (h->value == value) return RET_OK;
  value_change_event_t evt;
  memset(&evt, 0, sizeof(evt));
  evt.e = event_init(EVT_VALUE_WILL_CHANGE, widget);
  evt.e.size = sizeof(evt);
  evt.old_value.type = VALUE_TYPE_DOUBLE;
  evt.old_value.value.f64 = h->value;
  evt.new_value.type = VALUE_TYPE_DOUBLE;
  evt.new_value.value.f64 = value;
  if (widget_dispatch(widget, &evt.e) == RET_STOP) return RET_OK;
  h->value = value;
  tk::progress_update_text(widget);
  tk::invalidate_widget(widget);
  evt.e = event_init(EVT_VALUE_CHANGED, widget);
  evt.e.size = sizeof(evt);
  widget_dispatch(widget, &evt.e);
  return RET_OK;
}

ret_t progress_bar_set_max(widget_t* widget, double max) {
  return_value_if_fail(widget != NULL && tk::is_kind(widget, "progress_bar"), RET_BAD_PARAMS);
  widget->host->max = max;
  tk::progress_update_text(widget);
  tk::invalidate_widget(widget);
  return RET_OK;
}

ret_t progress_bar_set_show_text(widget_t* widget, bool_t show_text) {
  return_value_if_fail(widget != NULL && tk::is_kind(widget, "progress_bar"), RET_BAD_PARAMS);
  widget->host->show_text = show_text != FALSE;
  tk::invalidate_widget(widget);
  return RET_OK;
}

ret_t progress_bar_set_format(widget_t* widget, const char* format) {
  return_value_if_fail(widget != NULL && tk::is_kind(widget, "progress_bar"), RET_BAD_PARAMS);
  widget->host->format = format != nullptr ? format : "";
  bool integer = false;
  if (!widget->host->format.empty() && tk::value_format(widget->host->format, &integer).empty()) {
    log_warn(
        "progress_bar \"%s\": format \"%s\" is not a format for one number; the percentage "
        "is shown\n",
        widget->name != nullptr ? widget->name : "", format);
  }
  tk::progress_update_text(widget);
  tk::invalidate_widget(widget);
  return RET_OK;
}

}  // extern "C"
