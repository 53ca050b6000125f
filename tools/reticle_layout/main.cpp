// reticle_layout [--check] [layout.xml]
//
// Writes the reticle overlay region of the observation screen's layout from the reticle element
// table. With --check it writes nothing and exits 1 (naming the file) when the region differs from
// what the table gives. The default file is res/assets/default/raw/ui/Zavo_home_page_1.xml,
// relative to the current directory (run it from the repository root).
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include "reticle_layout_region.h"

int main(int argc, char** argv) {
  bool check = false;
  std::string path = "res/assets/default/raw/ui/Zavo_home_page_1.xml";
  for (int i = 1; i < argc; ++i) {
    if (strcmp(argv[i], "--check") == 0) {
      check = true;
    } else if (argv[i][0] == '-') {
      fprintf(stderr, "usage: reticle_layout [--check] [layout.xml]\n");
      return 2;
    } else {
      path = argv[i];
    }
  }

  std::ifstream in(path, std::ios::binary);
  if (!in) {
    fprintf(stderr, "reticle_layout: cannot read %s\n", path.c_str());
    return 2;
  }
  std::stringstream buffer;
  buffer << in.rdbuf();
  const std::string layout = buffer.str();
  in.close();

  std::string updated, error;
  if (!splice_reticle_overlay_region(layout, &updated, &error)) {
    fprintf(stderr, "reticle_layout: %s: %s\n", path.c_str(), error.c_str());
    return 2;
  }
  if (check) {
    if (updated != layout) {
      printf("reticle_layout: the reticle overlay region of %s is out of date\n", path.c_str());
      return 1;
    }
    return 0;
  }
  if (updated == layout) return 0;
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << updated;
  if (!out.flush()) {
    fprintf(stderr, "reticle_layout: cannot write %s\n", path.c_str());
    return 2;
  }
  printf("reticle_layout: wrote the reticle overlay region of %s\n", path.c_str());
  return 0;
}
