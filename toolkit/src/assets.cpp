// Resource locations: the app root, asset files of the theme, image names, and the assets
// manager calls.
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "tk_core.h"

namespace fs = std::filesystem;

struct _assets_manager_t {
  int unused;
};

namespace tk {

namespace {

assets_manager_t s_am{0};

bool valid_root(const fs::path& p) {
  std::error_code ec;
  return fs::is_directory(p / "assets", ec);
}

fs::path exe_dir() {
  std::error_code ec;
  fs::path exe = fs::read_symlink("/proc/self/exe", ec);
  return ec ? fs::path() : exe.parent_path();
}

fs::path strip_bin(fs::path p) {
  if (p.filename() == "bin") return p.parent_path();
  return p;
}

bool file_exists(const std::string& p) {
  std::error_code ec;
  return fs::is_regular_file(p, ec);
}

}  // namespace

std::string resolve_app_root(const char* app_root) {
  fs::path given = app_root != nullptr ? app_root : "";
  std::error_code ec;
  if (!given.empty() && valid_root(given)) return fs::absolute(given, ec).lexically_normal();
  std::vector<fs::path> tries;
  fs::path exe = exe_dir();
  fs::path cwd = fs::current_path(ec);
  if (!given.empty() && given.is_relative() && !exe.empty()) tries.push_back(exe / given);
  for (const fs::path& base : {strip_bin(cwd), strip_bin(exe), cwd.parent_path()}) {
    if (base.empty()) continue;
    tries.push_back(base);
    tries.push_back(base / "res");
    tries.push_back(base / "demos");
  }
  for (const fs::path& t : tries) {
    if (valid_root(t)) return fs::absolute(t, ec).lexically_normal();
  }
  log_warn("tk_init: no resource directory with assets/ found for app_root \"%s\"\n",
           app_root != nullptr ? app_root : "");
  return given.string();
}

bool read_file(const std::string& path, std::string* out) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  std::ostringstream ss;
  ss << in.rdbuf();
  *out = ss.str();
  return true;
}

const std::string& app_root() {
  return g().app_root;
}
const std::string& theme() {
  return g().theme;
}

std::string asset_path(const std::string& sub, const std::string& file) {
  Global& gl = g();
  std::string p = gl.app_root + "/assets/" + gl.theme + "/raw/" + sub + "/" + file;
  if (file_exists(p)) return p;
  if (gl.theme != "default") {
    p = gl.app_root + "/assets/default/raw/" + sub + "/" + file;
    if (file_exists(p)) return p;
  }
  return "";
}

std::string image_path(const char* name) {
  if (name == nullptr || *name == '\0') return "";
  std::string n = name;
  if (n.rfind("file://", 0) == 0) {
    std::string p = n.substr(7);
    return file_exists(p) ? p : "";
  }
  Global& gl = g();
  float ratio = gl.sysinfo.device_pixel_ratio;
  int r = ratio >= 4 ? 4 : (ratio >= 3 ? 3 : (ratio >= 2 ? 2 : 1));
  std::string xn = "images/x" + std::to_string(r);
  static const char* const kExts[] = {".png", ".bmp", ".jpg", ".jpeg", ".gif"};
  auto has_ext = [&](const char* e) {
    return n.size() > strlen(e) && n.compare(n.size() - strlen(e), strlen(e), e) == 0;
  };
  for (const std::string& dir : {xn, std::string("images/xx")}) {
    for (const char* e : kExts) {
      std::string file = has_ext(e) ? n : n + e;
      std::string p = asset_path(dir, file);
      if (!p.empty()) return p;
    }
  }
  std::string svg = asset_path("images/svg", n + ".bsvg");
  if (!svg.empty()) return svg;
  for (const std::string& dir : {xn, std::string("images/xx")}) {
    std::string p = asset_path(dir, n);
    if (!p.empty()) return p;
  }
  return "";
}

}  // namespace tk

extern "C" {

assets_manager_t* assets_manager(void) {
  return &tk::s_am;
}

ret_t assets_manager_set_theme(assets_manager_t* am, const char* theme) {
  return_value_if_fail(am != NULL && theme != NULL, RET_BAD_PARAMS);
  tk::g().theme = theme;
  tk::style_cache_clear();
  return RET_OK;
}

ret_t assets_manager_preload(assets_manager_t* am, asset_type_t type, const char* name) {
  return_value_if_fail(am != NULL && name != NULL, RET_BAD_PARAMS);
  switch (type) {
    case ASSET_TYPE_STYLE:
      if (tk::style_file(name) == nullptr) {
        log_warn("!!!Asset [name=%s type=style] not exist!!!\n", name);
        return RET_NOT_FOUND;
      }
      return RET_OK;
    case ASSET_TYPE_UI:
      if (tk::asset_path("ui", std::string(name) + ".xml").empty() &&
          tk::asset_path("ui", std::string(name) + ".bin").empty()) {
        log_warn("!!!Asset [name=%s type=ui] not exist!!!\n", name);
        return RET_NOT_FOUND;
      }
      return RET_OK;
    case ASSET_TYPE_IMAGE:
      if (tk::image_path(name).empty()) {
        log_warn("!!!Asset [name=%s type=image] not exist!!!\n", name);
        return RET_NOT_FOUND;
      }
      return RET_OK;
    default: return RET_OK;
  }
}

ret_t window_manager_set_cursor(widget_t* widget, const char* cursor) {
  (void)widget;
  (void)cursor;
  return RET_OK;
}

}  // extern "C"
