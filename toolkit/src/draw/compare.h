// Comparing a frame with a reference PNG, for tests.
#ifndef TK_DRAW_COMPARE_H
#define TK_DRAW_COMPARE_H

#include <string>

#include "draw/canvas.h"

namespace tk::draw {

struct CompareResult {
  bool match = false;
  bool reference_written = false;
  // Pixels where some channel differs by more than the tolerance, and the largest difference.
  long differing = 0;
  int max_delta = 0;
  // One line saying what happened, naming the files written.
  std::string message;
};

// Compares `actual` with the PNG at `reference`, allowing each channel to differ by up to
// `tolerance`. On a mismatch writes <out_dir>/<stem>.actual.png, <stem>.expected.png and
// <stem>.diff.png (differing pixels red over a dimmed copy of the actual frame), where <stem>
// is the reference's file name without ".png". A missing reference is written from `actual`
// when `write_missing` (and then counts as a match), otherwise it fails and the actual frame is
// written for review.
CompareResult compare_with_reference(const Pixmap& actual, const std::string& reference,
                                     int tolerance, const std::string& out_dir, bool write_missing);

}  // namespace tk::draw

#endif  // TK_DRAW_COMPARE_H
