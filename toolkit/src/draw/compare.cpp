// Screenshot comparison with a per-channel tolerance and actual/expected/diff files on failure.
#include "draw/compare.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "draw/png_io.h"

namespace tk::draw {

namespace {

namespace fs = std::filesystem;

std::string stem_of(const std::string& reference) {
  std::string name = fs::path(reference).filename().string();
  if (name.size() > 4 && name.ends_with(".png")) name.resize(name.size() - 4);
  return name;
}

bool ensure_dir(const fs::path& dir, std::string& error) {
  if (dir.empty()) return true;
  std::error_code ec;
  fs::create_directories(dir, ec);
  if (ec) {
    error = "cannot create " + dir.string() + ": " + ec.message();
    return false;
  }
  return true;
}

// Writes `pic` as <out_dir>/<stem><suffix>; returns the path, or "" (appending to `error`).
std::string write_output(const Pixmap& pic, const std::string& out_dir, const std::string& stem,
                         const char* suffix, std::string& error) {
  std::string why;
  if (!ensure_dir(out_dir, why)) {
    error += " (" + why + ")";
    return "";
  }
  std::string path = (fs::path(out_dir) / (stem + suffix)).string();
  if (!save_png(pic, path, why)) {
    error += " (cannot write " + path + ": " + why + ")";
    return "";
  }
  return path;
}

}  // namespace

CompareResult compare_with_reference(const Pixmap& actual, const std::string& reference,
                                     int tolerance, const std::string& out_dir,
                                     bool write_missing) {
  CompareResult res;
  std::string stem = stem_of(reference);
  std::error_code ec;
  if (!fs::exists(reference, ec)) {
    if (write_missing) {
      std::string error;
      if (!ensure_dir(fs::path(reference).parent_path(), error) ||
          !save_png(actual, reference, error)) {
        res.message = "reference " + reference + " missing and cannot be written: " + error;
        return res;
      }
      res.match = true;
      res.reference_written = true;
      res.message = "reference " + reference + " was missing and has been written: review it";
      return res;
    }
    std::string error;
    std::string path = write_output(actual, out_dir, stem, ".actual.png", error);
    res.message = "reference " + reference + " missing; actual frame written to " +
                  (path.empty() ? "(nothing)" : path) + error +
                  "; run with TK_UPDATE_REFERENCES=1 to create the reference";
    return res;
  }

  Pixmap expected;
  std::string error;
  if (!load_picture(reference, expected, error)) {
    res.message = "reference " + reference + " cannot be read: " + error;
    return res;
  }
  if (expected.w != actual.w || expected.h != actual.h) {
    std::string werr;
    std::string a = write_output(actual, out_dir, stem, ".actual.png", werr);
    res.message = "frame is " + std::to_string(actual.w) + "x" + std::to_string(actual.h) +
                  ", reference " + reference + " is " + std::to_string(expected.w) + "x" +
                  std::to_string(expected.h) + "; actual written to " +
                  (a.empty() ? "(nothing)" : a) + werr;
    return res;
  }

  Pixmap diff(actual.w, actual.h);
  for (size_t i = 0; i < actual.px.size(); ++i) {
    uint32_t a = actual.px[i];
    uint32_t e = expected.px[i];
    int delta = std::max({std::abs(color_r(a) - color_r(e)), std::abs(color_g(a) - color_g(e)),
                          std::abs(color_b(a) - color_b(e)), std::abs(color_a(a) - color_a(e))});
    if (delta > tolerance) {
      res.differing++;
      res.max_delta = std::max(res.max_delta, delta);
      diff.px[i] = make_color(255, 0, 0, 255);
    } else {
      auto grey = static_cast<uint8_t>((color_r(a) * 2 + color_g(a) * 5 + color_b(a)) / 8 / 4);
      diff.px[i] = make_color(grey, grey, grey, 255);
    }
  }
  if (res.differing == 0) {
    res.match = true;
    res.message = "frame matches " + reference;
    return res;
  }
  std::string werr;
  std::string a = write_output(actual, out_dir, stem, ".actual.png", werr);
  std::string x = write_output(expected, out_dir, stem, ".expected.png", werr);
  std::string d = write_output(diff, out_dir, stem, ".diff.png", werr);
  res.message = std::to_string(res.differing) + " pixels differ from " + reference +
                " by more than " + std::to_string(tolerance) + " (largest difference " +
                std::to_string(res.max_delta) + "); wrote " + a + ", " + x + ", " + d + werr;
  return res;
}

}  // namespace tk::draw
