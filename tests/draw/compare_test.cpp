// Screenshot comparison: tolerance, the files written on a mismatch, missing references.
#include <gtest/gtest.h>

#include <filesystem>

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
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 16; ++x)
      p.px[static_cast<size_t>(y) * 16 + x] = make_color(x * 16, y * 32, 100, 255);
  return p;
}

}  // namespace

TEST(DrawCompare, EqualAndWithinToleranceMatch) {
  std::string dir = fresh_dir("cmp_equal");
  Pixmap ref = gradient();
  std::string ref_path = write_fixture(ref, "cmp_equal/ref.png");
  auto same = compare_with_reference(ref, ref_path, 0, dir + "/out", false);
  EXPECT_TRUE(same.match) << same.message;
  Pixmap near = ref;
  near.px[5] =
      make_color(tk::draw::color_r(near.px[5]) + 3, tk::draw::color_g(near.px[5]), 100, 255);
  EXPECT_TRUE(compare_with_reference(near, ref_path, 3, dir + "/out", false).match);
  auto off = compare_with_reference(near, ref_path, 2, dir + "/out", false);
  EXPECT_FALSE(off.match);
  EXPECT_EQ(off.differing, 1);
  EXPECT_EQ(off.max_delta, 3);
}

TEST(DrawCompare, MismatchWritesActualExpectedAndDiff) {
  std::string dir = fresh_dir("cmp_mismatch");
  Pixmap ref = gradient();
  std::string ref_path = write_fixture(ref, "cmp_mismatch/layout.png");
  Pixmap actual = ref;
  for (int x = 4; x < 8; ++x)
    actual.px[static_cast<size_t>(2) * 16 + x] = kRed;
  auto res = compare_with_reference(actual, ref_path, 8, dir + "/out", false);
  EXPECT_FALSE(res.match);
  EXPECT_EQ(res.differing, 4);
  EXPECT_NE(res.message.find("4 pixels differ"), std::string::npos) << res.message;
  for (const char* suffix : {".actual.png", ".expected.png", ".diff.png"}) {
    std::string path = dir + "/out/layout" + suffix;
    EXPECT_NE(res.message.find(path), std::string::npos) << res.message;
    Pixmap read;
    std::string error;
    ASSERT_TRUE(tk::draw::load_picture(path, read, error)) << path << ": " << error;
    EXPECT_EQ(read.w, 16);
    EXPECT_EQ(read.h, 8);
  }
  Pixmap diff;
  std::string error;
  ASSERT_TRUE(tk::draw::load_picture(dir + "/out/layout.diff.png", diff, error));
  EXPECT_EQ(diff.at(5, 2), make_color(255, 0, 0, 255));
  EXPECT_NE(diff.at(0, 0), make_color(255, 0, 0, 255));
  Pixmap back;
  ASSERT_TRUE(tk::draw::load_picture(dir + "/out/layout.actual.png", back, error));
  EXPECT_EQ(back.px, actual.px);
}

TEST(DrawCompare, SizeMismatchFails) {
  std::string dir = fresh_dir("cmp_size");
  std::string ref_path = write_fixture(gradient(), "cmp_size/ref.png");
  auto res = compare_with_reference(Pixmap(8, 8, kWhite), ref_path, 255, dir + "/out", false);
  EXPECT_FALSE(res.match);
  EXPECT_NE(res.message.find("8x8"), std::string::npos) << res.message;
  EXPECT_TRUE(fs::exists(dir + "/out/ref.actual.png"));
}

TEST(DrawCompare, MissingReferenceFailsUnlessAskedToWriteIt) {
  std::string dir = fresh_dir("cmp_missing");
  std::string ref_path = dir + "/refs/new_screen.png";
  auto res = compare_with_reference(gradient(), ref_path, 0, dir + "/out", false);
  EXPECT_FALSE(res.match);
  EXPECT_FALSE(fs::exists(ref_path));
  EXPECT_TRUE(fs::exists(dir + "/out/new_screen.actual.png"));
  EXPECT_NE(res.message.find("TK_UPDATE_REFERENCES=1"), std::string::npos) << res.message;

  auto written = compare_with_reference(gradient(), ref_path, 0, dir + "/out", true);
  EXPECT_TRUE(written.match);
  EXPECT_TRUE(written.reference_written);
  ASSERT_TRUE(fs::exists(ref_path));
  // From then on it is an ordinary reference.
  auto again = compare_with_reference(gradient(), ref_path, 0, dir + "/out", false);
  EXPECT_TRUE(again.match);
  EXPECT_FALSE(again.reference_written);
}

TEST(DrawCompare, UnreadableReferenceFails) {
  std::string dir = fresh_dir("cmp_bad");
  std::string path = dir + "/bad.png";
  FILE* f = fopen(path.c_str(), "wb");
  ASSERT_NE(f, nullptr);
  fputs("no picture here", f);
  fclose(f);
  auto res = compare_with_reference(gradient(), path, 0, dir + "/out", true);
  EXPECT_FALSE(res.match);
  EXPECT_NE(res.message.find("cannot be read"), std::string::npos) << res.message;
}
