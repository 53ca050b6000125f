// Locale: the string tables read from strings/*.xml, translation, and locale changes.
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <pugixml.hpp>

#include "tk_core.h"
#include "tk_strings.h"

namespace fs = std::filesystem;

namespace tk {

namespace {

StringsSource s_strings;
const std::map<std::string, std::string>* s_current = nullptr;

void put_u16(std::string* out, uint16_t v) {
  out->push_back(static_cast<char>(v & 0xFF));
  out->push_back(static_cast<char>(v >> 8));
}

void put_u32_at(std::string* out, size_t at, uint32_t v) {
  for (int i = 0; i < 4; i++)
    (*out)[at + i] = static_cast<char>((v >> (8 * i)) & 0xFF);
}

uint32_t get_u32(const std::string& s, size_t at) {
  uint32_t v = 0;
  for (int i = 0; i < 4; i++)
    v |= static_cast<uint32_t>(static_cast<uint8_t>(s[at + i])) << (8 * i);
  return v;
}

}  // namespace

bool strings_parse_xml(const std::string& xml, const std::string& origin, StringsSource* into) {
  pugi::xml_document doc;
  pugi::xml_parse_result res = doc.load_buffer(xml.data(), xml.size());
  if (!res) {
    into->errors.push_back("strings " + origin + ": " + res.description() + " at offset " +
                           std::to_string(res.offset));
    return false;
  }
  pugi::xpath_node_set nodes = doc.select_nodes("//string");
  for (const pugi::xpath_node& xn : nodes) {
    pugi::xml_node s = xn.node();
    std::string key = s.attribute("name").as_string();
    if (key.empty()) {
      into->errors.push_back("strings " + origin + ": a <string> without a name is ignored");
      continue;
    }
    auto origin_it = into->key_origin.find(key);
    if (origin_it != into->key_origin.end()) {
      into->errors.push_back("strings " + origin + ": key \"" + key + "\" is defined twice (" +
                             origin_it->second + " and " + origin + "); the first is kept");
      continue;
    }
    into->key_origin[key] = origin;
    for (pugi::xml_node lang : s.children("language")) {
      std::string name = lang.attribute("name").as_string();
      if (name.empty()) continue;
      into->tables[name][key] = lang.text().get();
    }
  }
  return true;
}

bool strings_load_dir(const std::string& dir, StringsSource* into) {
  std::error_code ec;
  if (!fs::is_directory(dir, ec)) return true;
  std::vector<fs::path> files;
  for (const auto& e : fs::directory_iterator(dir, ec)) {
    if (e.path().extension() == ".xml") files.push_back(e.path());
  }
  std::sort(files.begin(), files.end());
  bool ok = true;
  for (const fs::path& f : files) {
    std::string data;
    if (!read_file(f.string(), &data)) {
      into->errors.push_back("strings " + f.filename().string() + ": cannot be read");
      ok = false;
      continue;
    }
    ok = strings_parse_xml(data, f.filename().string(), into) && ok;
  }
  return ok;
}

std::string strings_table_bin(const std::map<std::string, std::string>& table) {
  // std::map iterates in std::string order, which is strcmp order for these keys.
  std::string out;
  uint32_t count = static_cast<uint32_t>(table.size());
  put_u16(&out, 0);
  put_u16(&out, static_cast<uint16_t>(count));
  size_t pairs_at = out.size();
  out.resize(pairs_at + (count + 1) * 8, '\0');
  size_t i = 0;
  for (const auto& [key, value] : table) {
    put_u32_at(&out, pairs_at + i * 8, static_cast<uint32_t>(out.size()));
    out.append(key);
    out.push_back('\0');
    put_u32_at(&out, pairs_at + i * 8 + 4, static_cast<uint32_t>(out.size()));
    out.append(value);
    out.push_back('\0');
    i++;
  }
  return out;
}

bool strings_table_lookup(const std::string& bin, const char* key, std::string* out) {
  if (bin.size() < 4 || key == nullptr) return false;
  uint32_t count = static_cast<uint8_t>(bin[2]) | (static_cast<uint8_t>(bin[3]) << 8);
  if (bin.size() < 4 + (static_cast<size_t>(count) + 1) * 8) return false;
  auto str_at = [&](uint32_t off, const char** s) {
    if (off >= bin.size() || memchr(bin.data() + off, '\0', bin.size() - off) == nullptr) {
      return false;
    }
    *s = bin.data() + off;
    return true;
  };
  int64_t lo = 0, hi = static_cast<int64_t>(count) - 1;
  while (lo <= hi) {
    int64_t mid = (lo + hi) / 2;
    const char* k;
    if (!str_at(get_u32(bin, 4 + mid * 8), &k)) return false;
    int c = strcmp(key, k);
    if (c == 0) {
      const char* v;
      if (!str_at(get_u32(bin, 4 + mid * 8 + 4), &v)) return false;
      *out = v;
      return true;
    }
    if (c < 0)
      hi = mid - 1;
    else
      lo = mid + 1;
  }
  return false;
}

void strings_load_all() {
  s_strings = StringsSource();
  s_current = nullptr;
  std::string dir = g().app_root + "/assets/" + g().theme + "/raw/strings";
  strings_load_dir(dir, &s_strings);
  for (const std::string& e : s_strings.errors)
    log_error("%s\n", e.c_str());
}

void locale_apply(const char* language, const char* country) {
  Global& gl = g();
  tk_strncpy(gl.locale.language, language, 2);
  tk_strncpy(gl.locale.country, country, 2);
  std::string full = std::string(gl.locale.language) + "_" + gl.locale.country;
  auto it = s_strings.tables.find(full);
  if (it == s_strings.tables.end()) it = s_strings.tables.find(gl.locale.language);
  s_current = it != s_strings.tables.end() ? &it->second : nullptr;
  if (s_current == nullptr && !s_strings.tables.empty()) {
    log_warn("locale %s: no strings for this language; texts show their keys\n", full.c_str());
  }
}

}  // namespace tk

extern "C" {

locale_info_t* locale_info(void) {
  return &tk::g().locale;
}

const char* locale_info_tr(locale_info_t* li, const char* text) {
  if (li == nullptr || text == nullptr) return text;
  if (tk::s_current == nullptr) return text;
  auto it = tk::s_current->find(text);
  return it != tk::s_current->end() ? it->second.c_str() : text;
}

ret_t locale_info_change(locale_info_t* li, const char* language, const char* country) {
  return_value_if_fail(li != NULL, RET_BAD_PARAMS);
  if (language == nullptr) language = "en";
  if (country == nullptr) country = "US";
  if (strncmp(li->language, language, 2) == 0 && strncmp(li->country, country, 2) == 0 &&
      strlen(language) <= 2 && strlen(country) <= 2) {
    return RET_OK;
  }
  tk::locale_apply(language, country);
  tk::Global& gl = tk::g();
  if (gl.wm == nullptr) return RET_OK;
  for (widget_t* win : tk::windows_bottom_to_top())
    tk::retranslate(win);
  for (widget_t* win : tk::windows_bottom_to_top()) {
    if (!tk::is_live(win)) continue;
    event_t e = event_init(EVT_LOCALE_CHANGED, win);
    widget_dispatch(win, &e);
  }
  tk::mark_relayout(gl.wm);
  return RET_OK;
}

}  // extern "C"
