// Screenshot comparison: tolerance, the files written on a mismatch, missing and unreadable
// references.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "draw/compare.h"
#include "draw/png_io.h"
#include "draw_test_util.h"

using namespace drawtest;
using tk::draw::compare_with_reference;
using tk::draw::make_color;
using tk::draw::Pixmap;

namespace fs = std::filesystem;

namespace {

// A fresh directory for one test's files.
std::string fresh_dir(const std::string& name) {
  fs::path dir = fs::path(scratch_dir()) / name;
  fs::remove_all(dir);
  fs::create_directories(dir);
  return dir.string();
}

Pixmap gradient() {
  Pixmap p(16, 8);
  for (int i = 0; i < 16 * 8; ++i)
    p.px[i] = make_color(i % 16 * 16, i / 16 * 32, 100, 255);
  return p;
}

Pixmap read_png(const std::string& path) {
  Pixmap p;
  std::string error;
  EXPECT_TRUE(tk::draw::load_picture(path, p, error)) << path << ": " << error;
  return p;
}

}  // namespace

TEST(DrawCompare, ToleranceDecidesAndAMismatchWritesActualExpectedAndDiff) {
  std::string dir = fresh_dir("cmp");
  Pixmap ref = gradient();
  std::string ref_path = write_fixture(ref, "cmp/layout.png");
  Pixmap actual = ref;
  actual.px[5] += 3;  // red channel 3 higher
  EXPECT_TRUE(compare_with_reference(actual, ref_path, 3, dir + "/out", false).match);
  for (int x = 4; x < 8; ++x)
    actual.px[2 * 16 + x] = kRed;
  auto res = compare_with_reference(actual, ref_path, 2, dir + "/out", false);
  EXPECT_FALSE(res.match);
  EXPECT_EQ(res.differing, 5);
  EXPECT_EQ(res.max_delta, 191);  // red 255 over 64
  EXPECT_NE(res.message.find("5 pixels differ"), std::string::npos) << res.message;
  for (const char* suffix : {".actual.png", ".expected.png", ".diff.png"}) {
    EXPECT_NE(res.message.find(dir + "/out/layout" + suffix), std::string::npos) << res.message;
  }
  EXPECT_EQ(read_png(dir + "/out/layout.actual.png").px, actual.px);
  EXPECT_EQ(read_png(dir + "/out/layout.expected.png").px, ref.px);
  Pixmap diff = read_png(dir + "/out/layout.diff.png");
  EXPECT_EQ(diff.at(5, 2), make_color(255, 0, 0, 255));
  EXPECT_NE(diff.at(0, 0), make_color(255, 0, 0, 255));
  // Another size never matches, whatever the tolerance.
  res = compare_with_reference(Pixmap(8, 8, kWhite), ref_path, 255, dir + "/out", false);
  EXPECT_FALSE(res.match);
  EXPECT_NE(res.message.find("frame is 8x8, reference"), std::string::npos) << res.message;
}

TEST(DrawCompare, AMissingReferenceFailsUnlessAskedToWriteItAndABrokenOneFails) {
  std::string dir = fresh_dir("cmp_missing");
  std::string ref_path = dir + "/refs/new_screen.png";
  auto res = compare_with_reference(gradient(), ref_path, 0, dir + "/out", false);
  EXPECT_FALSE(res.match);
  EXPECT_FALSE(fs::exists(ref_path));
  EXPECT_TRUE(fs::exists(dir + "/out/new_screen.actual.png"));
  EXPECT_NE(res.message.find("TK_UPDATE_REFERENCES=1"), std::string::npos) << res.message;
  res = compare_with_reference(gradient(), ref_path, 0, dir + "/out", true);
  EXPECT_TRUE(res.match && res.reference_written);
  // From then on it is an ordinary reference.
  res = compare_with_reference(gradient(), ref_path, 0, dir + "/out", false);
  EXPECT_TRUE(res.match && !res.reference_written);
  std::ofstream(dir + "/bad.png") << "no picture here";
  res = compare_with_reference(gradient(), dir + "/bad.png", 0, dir + "/out", true);
  EXPECT_FALSE(res.match);
  EXPECT_NE(res.message.find("cannot be read"), std::string::npos) << res.message;
}
