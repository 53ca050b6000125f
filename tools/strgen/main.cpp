// strgen: compiles the strings XML files of a resource tree into the real toolkit's per-language
// tables strings/<lang>_<COUNTRY>.bin, so that res/ ships to the board unchanged.
//
//   strgen [--check] [strings directory]
//
// The directory defaults to res/assets/default/raw/strings. Every *.xml in it is read and merged
// (a key defined twice is an error); one .bin per language is written next to them. With
// --check nothing is written: the tool reports every .bin that is missing, stale or left over
// and exits 1 if there is one.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "tk_core.h"
#include "tk_strings.h"

namespace fs = std::filesystem;

int main(int argc, char** argv) {
  bool check = false;
  std::string dir = "res/assets/default/raw/strings";
  for (int i = 1; i < argc; i++) {
    if (strcmp(argv[i], "--check") == 0) {
      check = true;
    } else if (strcmp(argv[i], "-h") == 0 || strcmp(argv[i], "--help") == 0) {
      printf("usage: strgen [--check] [strings directory]\n");
      return 0;
    } else {
      dir = argv[i];
    }
  }
  std::error_code ec;
  if (!fs::is_directory(dir, ec)) {
    fprintf(stderr, "strgen: %s is not a directory\n", dir.c_str());
    return 2;
  }
  tk::StringsSource src;
  tk::strings_load_dir(dir, &src);
  for (const std::string& e : src.errors)
    fprintf(stderr, "strgen: %s\n", e.c_str());
  if (!src.errors.empty()) return 1;

  int problems = 0;
  for (const auto& [lang, table] : src.tables) {
    fs::path out = fs::path(dir) / (lang + ".bin");
    std::string bin = tk::strings_table_bin(table);
    if (check) {
      std::string have;
      if (!tk::read_file(out.string(), &have)) {
        fprintf(stderr, "strgen: %s is missing\n", out.c_str());
        problems++;
      } else if (have != bin) {
        fprintf(stderr, "strgen: %s is stale (run strgen)\n", out.c_str());
        problems++;
      }
      continue;
    }
    std::ofstream f(out, std::ios::binary | std::ios::trunc);
    f.write(bin.data(), static_cast<std::streamsize>(bin.size()));
    if (!f) {
      fprintf(stderr, "strgen: cannot write %s\n", out.c_str());
      return 1;
    }
    printf("%s: %zu strings\n", out.c_str(), table.size());
  }
  for (const auto& e : fs::directory_iterator(dir, ec)) {
    if (e.path().extension() != ".bin") continue;
    std::string lang = e.path().stem().string();
    if (src.tables.count(lang) == 0) {
      fprintf(stderr, "strgen: %s has no language in the XML files\n", e.path().c_str());
      problems++;
    }
  }
  return problems == 0 ? 0 : 1;
}
