// Style files (styles/<name>.xml) and the resolution of a widget's style properties.
#include <cstring>
#include <pugixml.hpp>

#include "tk_core.h"

namespace tk {

namespace {

std::map<std::string, std::unique_ptr<StyleFile>> s_cache;

std::string key3(std::string_view type, std::string_view style, std::string_view state) {
  std::string k;
  k.reserve(type.size() + style.size() + state.size() + 2);
  k.append(type).push_back('\x1f');
  k.append(style).push_back('\x1f');
  k.append(state);
  return k;
}

int32_t keyword(const std::string& name, const std::string& v, bool* ok) {
  *ok = true;
  if (name.find("text_align_h") != std::string::npos) {
    if (v == "center") return ALIGN_H_CENTER;
    if (v == "left") return ALIGN_H_LEFT;
    if (v == "right") return ALIGN_H_RIGHT;
  } else if (name.find("text_align_v") != std::string::npos) {
    if (v == "middle") return ALIGN_V_MIDDLE;
    if (v == "top") return ALIGN_V_TOP;
    if (v == "bottom") return ALIGN_V_BOTTOM;
  } else if (name == "border") {
    if (v == "all") return BORDER_ALL;
    int32_t bits = 0;
    size_t start = 0;
    while (start <= v.size()) {
      size_t end = v.find_first_of("|, ", start);
      std::string part =
          v.substr(start, end == std::string::npos ? std::string::npos : end - start);
      if (part == "left")
        bits |= BORDER_LEFT;
      else if (part == "right")
        bits |= BORDER_RIGHT;
      else if (part == "top")
        bits |= BORDER_TOP;
      else if (part == "bottom")
        bits |= BORDER_BOTTOM;
      else if (part == "all")
        bits |= BORDER_ALL;
      if (end == std::string::npos) break;
      start = end + 1;
    }
    if (bits != 0) return bits;
  } else if (name.find("image_draw_type") != std::string::npos) {
    static const char* const kNames[] = {"default",
                                         "center",
                                         "icon",
                                         "scale",
                                         "scale_auto",
                                         "scale_down",
                                         "scale_w",
                                         "scale_h",
                                         "repeat",
                                         "repeat_x",
                                         "repeat_y",
                                         "repeat_y_inverse",
                                         "patch9",
                                         "patch3_x",
                                         "patch3_y",
                                         "patch3_x_scale_y",
                                         "patch3_y_scale_x",
                                         "repeat9",
                                         "repeat3_x",
                                         "repeat3_y",
                                         "fill"};
    for (size_t i = 0; i < ARRAY_SIZE(kNames); i++) {
      if (v == kNames[i]) return static_cast<int32_t>(i);
    }
    if (v == "auto") return IMAGE_DRAW_SCALE_AUTO;
  } else if (name == "icon_at") {
    static const char* const kAt[] = {"auto", "left", "right", "top", "bottom", "center"};
    for (size_t i = 0; i < ARRAY_SIZE(kAt); i++) {
      if (v == kAt[i]) return static_cast<int32_t>(i);
    }
  }
  *ok = false;
  return 0;
}

void load_into(StyleFile* f, const pugi::xml_document& doc) {
  for (pugi::xml_node type_el : doc.children()) {
    if (type_el.type() != pugi::node_element) continue;
    std::string type = type_el.name();
    for (pugi::xml_node style_el : type_el.children("style")) {
      std::string style = style_el.attribute("name").as_string("default");
      bool any = false;
      for (pugi::xml_node state_el : style_el.children()) {
        if (state_el.type() != pugi::node_element) continue;
        any = true;
        StyleProps& props = f->entries[key3(type, style, state_el.name())];
        // Inherited downwards: the type's attributes, the style's, then the state's.
        for (pugi::xml_node src : {type_el, style_el, state_el}) {
          for (pugi::xml_attribute a : src.attributes()) {
            if (src == style_el && strcmp(a.name(), "name") == 0) continue;
            props[a.name()] = style_value_parse(a.name(), a.value());
          }
        }
      }
      if (any) f->styles.insert(type + '\x1f' + style);
    }
  }
}

}  // namespace

StyleValue style_value_parse(const std::string& name, const std::string& value) {
  StyleValue v;
  if (name.find("color") != std::string::npos) {
    v.kind = StyleValue::COLOR;
    v.color = color_parse(value.c_str()).color;
    return v;
  }
  bool ok;
  int32_t k = keyword(name, value, &ok);
  if (ok) {
    v.kind = StyleValue::INT;
    v.i = k;
    return v;
  }
  if (name.find("image") != std::string::npos || name.find("name") != std::string::npos ||
      name.find("icon") != std::string::npos) {
    v.kind = StyleValue::STR;
    v.s = value;
    return v;
  }
  bool numeric =
      !value.empty() &&
      (isdigit(static_cast<unsigned char>(value[0])) ||
       (value[0] == '-' && value.size() > 1 && isdigit(static_cast<unsigned char>(value[1]))));
  if (numeric) {
    v.kind = StyleValue::INT;
    v.i = tk_atoi(value.c_str());
  } else {
    v.kind = StyleValue::STR;
    v.s = value;
  }
  return v;
}

const StyleProps* StyleFile::find(std::string_view type, std::string_view style,
                                  std::string_view state) const {
  auto it = entries.find(key3(type, style, state));
  return it == entries.end() ? nullptr : &it->second;
}

bool StyleFile::has_style(std::string_view type, std::string_view style) const {
  std::string k(type);
  k.push_back('\x1f');
  k.append(style);
  return styles.count(k) != 0;
}

const StyleFile* style_file(const std::string& name) {
  auto it = s_cache.find(name);
  if (it != s_cache.end()) return it->second.get();
  std::string path = asset_path("styles", name + ".bin");
  std::string data;
  if (path.empty() || !read_file(path, &data) || data.empty() || data[0] != '<') {
    path = asset_path("styles", name + ".xml");
    data.clear();
    if (!path.empty()) read_file(path, &data);
  }
  std::unique_ptr<StyleFile> f;
  if (!path.empty()) {
    pugi::xml_document doc;
    pugi::xml_parse_result res = doc.load_buffer(data.data(), data.size());
    if (!res) {
      log_error("style file %s: %s at offset %td\n", path.c_str(), res.description(), res.offset);
    } else {
      f = std::make_unique<StyleFile>();
      f->path = path;
      load_into(f.get(), doc);
    }
  }
  const StyleFile* out = f.get();
  s_cache[name] = std::move(f);
  return out;
}

void style_cache_clear() {
  s_cache.clear();
}

namespace {

const StyleValue* lookup(const widget_t* w, const char* prop) {
  if (w == nullptr || prop == nullptr) return nullptr;
  const char* state = derived_state(w);
  for (const StyleOverride& o : w->host->overrides) {
    if (o.state == state && o.name == prop) return &o.value;
  }
  const char* type = w->host->kind->type;
  const StyleFile* files[2] = {nullptr, nullptr};
  size_t n = 0;
  const widget_t* win = window_of(w);
  if (win != nullptr) {
    const std::string& theme = win->host->theme;
    std::string own = !theme.empty() ? theme : (win->name != nullptr ? win->name : "");
    if (!own.empty() && own != "default") files[n] = style_file(own);
    if (files[n] != nullptr) n++;
  }
  files[n] = style_file("default");
  if (files[n] != nullptr) n++;
  const char* names[2] = {w->style != nullptr && *w->style ? w->style : "default", "default"};
  for (int i = 0; i < 2; i++) {
    if (i == 1 && strcmp(names[0], "default") == 0) break;
    for (size_t fi = 0; fi < n; fi++) {
      const StyleFile* f = files[fi];
      if (!f->has_style(type, names[i])) continue;
      const StyleProps* b = f->find(type, names[i], state);
      if (b == nullptr) b = f->find(type, names[i], WIDGET_STATE_NORMAL);
      if (b == nullptr) continue;
      auto it = b->find(prop);
      return it == b->end() ? nullptr : &it->second;
    }
  }
  return nullptr;
}

}  // namespace

bool style_color(const widget_t* w, const char* prop, uint32_t* out) {
  const StyleValue* v = lookup(w, prop);
  if (v == nullptr) return false;
  if (v->kind == StyleValue::COLOR)
    *out = v->color;
  else if (v->kind == StyleValue::INT)
    *out = static_cast<uint32_t>(v->i);
  else
    *out = color_parse(v->s.c_str()).color;
  return true;
}

bool style_int(const widget_t* w, const char* prop, int32_t* out) {
  const StyleValue* v = lookup(w, prop);
  if (v == nullptr) return false;
  if (v->kind == StyleValue::INT)
    *out = v->i;
  else if (v->kind == StyleValue::COLOR)
    *out = static_cast<int32_t>(v->color);
  else
    *out = tk_atoi(v->s.c_str());
  return true;
}

const char* style_str(const widget_t* w, const char* prop) {
  const StyleValue* v = lookup(w, prop);
  if (v == nullptr || v->kind != StyleValue::STR) return nullptr;
  return v->s.c_str();
}

uint32_t style_color_or(const widget_t* w, const char* prop, uint32_t defval) {
  uint32_t c;
  return style_color(w, prop, &c) ? c : defval;
}

int32_t style_int_or(const widget_t* w, const char* prop, int32_t defval) {
  int32_t i;
  return style_int(w, prop, &i) ? i : defval;
}

std::string style_str_or(const widget_t* w, const char* prop, const char* defval) {
  const char* s = style_str(w, prop);
  return s != nullptr ? s : (defval != nullptr ? defval : "");
}

}  // namespace tk
