#include "common/device_path.h"

#include <cstdlib>

static std::string_view device_root() {
  const char* root = std::getenv("SCOPE_UI_ROOT");
  return root != nullptr ? std::string_view(root) : std::string_view();
}

bool device_root_is_set() {
  return !device_root().empty();
}

std::string device_path(std::string_view absolute) {
  std::string_view root = device_root();
  std::string path;
  path.reserve(root.size() + absolute.size());
  path.append(root);
  // "/tmp/root" + "/usrdata/x" -> "/tmp/root/usrdata/x", also when the root ends with "/".
  if (!root.empty() && root.back() == '/' && !absolute.empty() && absolute.front() == '/') {
    absolute.remove_prefix(1);
  }
  path.append(absolute);
  return path;
}
