// Helpers shared by the drawing tests: fixture pictures, the test layout, pixel counting.
#ifndef TESTS_DRAW_UTIL_H
#define TESTS_DRAW_UTIL_H

#include <cstdint>
#include <string>

#include "awtk.h"
#include "draw/canvas.h"

namespace drawtest {

constexpr uint32_t kRed = 0xFF0011FF;
constexpr uint32_t kGreen = 0xFF00FF00;
constexpr uint32_t kBlue = 0xFFFF0000;
constexpr uint32_t kBlack = 0xFF000001;
constexpr uint32_t kWhite = 0xFFFFFFFF;
// The frame where no window paints: the default backdrop.
constexpr uint32_t kBackdrop = 0xFF000000;

// A directory for files the tests make (under TK_TEST_OUTPUT_DIR, else the temporary
// directory, never the checkout), created on demand.
std::string scratch_dir();
// A 4 x 4 picture of four 2 x 2 quadrants: red, green / blue, white.
tk::draw::Pixmap quadrants();
// Writes `pic` as <scratch_dir>/<name> and returns its path.
std::string write_fixture(const tk::draw::Pixmap& pic, const std::string& name);
// Opens tests/draw/tk_draw_layout.xml under the test clock with its colour words set and its
// picture pointing at the quadrants fixture, and runs the open sequence.
widget_t* open_draw_layout();
// Pixels of the frame inside `r` that differ from `color`.
int frame_pixels_not(const tk::draw::Rect& r, uint32_t color);
// The file's content ("" when unreadable).
std::string read_text_file(const std::string& path);

}  // namespace drawtest

#endif  // TESTS_DRAW_UTIL_H
