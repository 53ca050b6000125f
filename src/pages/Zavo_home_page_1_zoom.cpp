// Reticle colours and zoom geometry: the element table and the layout functions that read it.
#include "pages/Zavo_home_page_1_zoom.h"

#include <cmath>
#include <cstdio>

#include "common/common_function.h"

// The products and sums below are rounded to float one operation at a time, as the geometry was
// drawn; contracting them into fused multiply-adds could move a truncation by one pixel.
#if defined(__clang__)
#pragma clang fp contract(off)
#endif

namespace {

// ---- building blocks of the table ----
constexpr ReticleCoord fix(float v) {
  return {v, 0.0f, COORD_LINEAR};
}
constexpr ReticleCoord lin(float base, float k) {
  return {base, k, COORD_LINEAR};
}
constexpr ReticleCoord tgrow(float base, float k) {
  return {base, k, COORD_TRUNC_GROWTH};
}
constexpr ReticleCoord egrow(float base, float k) {
  return {base, k, COORD_EVEN_GROWTH};
}

// A 2-pixel line along the horizontal centre row (x, w follow d).
constexpr ReticleElement hline(ReticleGroup g, const char* name, ReticleCoord x, ReticleCoord w) {
  return {g, name, ELEMENT_LINE, ZOOM_MOVE_RESIZE, x, fix(839), w, fix(2), nullptr};
}
// A 2-pixel line along the vertical centre column.
constexpr ReticleElement vline(ReticleGroup g, const char* name, ReticleCoord y, ReticleCoord h) {
  return {g, name, ELEMENT_LINE, ZOOM_MOVE_RESIZE, fix(839), y, fix(2), h, nullptr};
}
// A 4-pixel bar along the horizontal centre (rows 838..841) or the vertical one.
constexpr ReticleElement hbar(ReticleGroup g, const char* name, ReticleCoord x, ReticleCoord w) {
  return {g, name, ELEMENT_LINE, ZOOM_MOVE_RESIZE, x, fix(838), w, fix(4), nullptr};
}
constexpr ReticleElement vbar(ReticleGroup g, const char* name, ReticleCoord y, ReticleCoord h) {
  return {g, name, ELEMENT_LINE, ZOOM_MOVE_RESIZE, fix(838), y, fix(4), h, nullptr};
}
// Tick marks standing across the horizontal line at x, or lying across the vertical line at y.
// A short tick is 8 pixels long at zoom 1, a long one 16; both stay centred on the line and grow
// by even steps.
constexpr ReticleElement htick(ReticleGroup g, const char* name, ReticleCoord x, bool is_long) {
  return {g,
          name,
          ELEMENT_LINE,
          ZOOM_MOVE_RESIZE,
          x,
          is_long ? tgrow(832, -8) : tgrow(836, -4),
          fix(2),
          is_long ? egrow(16, 16) : egrow(8, 8),
          nullptr};
}
constexpr ReticleElement vtick(ReticleGroup g, const char* name, ReticleCoord y, bool is_long) {
  return {g,
          name,
          ELEMENT_LINE,
          ZOOM_MOVE_RESIZE,
          is_long ? tgrow(832, -8) : tgrow(836, -4),
          y,
          is_long ? egrow(16, 16) : egrow(8, 8),
          fix(2),
          nullptr};
}
// A filled square that never moves (centre dots and centre marks).
constexpr ReticleElement dot(ReticleGroup g, const char* name, float x, float y, float size) {
  return {g, name, ELEMENT_LINE, ZOOM_FIXED, fix(x), fix(y), fix(size), fix(size), nullptr};
}
// A number beside a mark: its position follows d, its size does not.
constexpr ReticleElement number(ReticleGroup g, const char* name, ReticleCoord x, ReticleCoord y,
                                const char* text) {
  return {g, name, ELEMENT_LABEL, ZOOM_MOVE, x, y, fix(20), fix(14), text};
}
// An aim-point mark under "image_point" (centre 640, 640).
constexpr ReticleElement mark(ReticleGroup g, const char* name, ReticleCoord x, float y, float w,
                              float h) {
  return {g, name, ELEMENT_LINE, ZOOM_MOVE, x, fix(y), fix(w), fix(h), nullptr};
}
constexpr ReticleElement fixed_mark(ReticleGroup g, const char* name, float x, float y, float w,
                                    float h) {
  return {g, name, ELEMENT_LINE, ZOOM_FIXED, fix(x), fix(y), fix(w), fix(h), nullptr};
}

// Positions at distance D from the centre: x = 840 - D moving by -D * d on the left or top,
// x = 840 + D moving by +D * d on the right or bottom.
constexpr ReticleCoord left(float distance) {
  return lin(840 - distance, -distance);
}
constexpr ReticleCoord right(float distance) {
  return lin(840 + distance, distance);
}
// Lengths: L0 * (1 + d).
constexpr ReticleCoord len(float l0) {
  return lin(l0, l0);
}

// Shape 7's drop tree: level i (1..9) marks (i + 1) milliradians below the centre (6.25 pixels per
// milliradian at zoom 1); its two wind segments of length 2i + 2 start 4 pixels either side of
// the vertical line.
constexpr float tree_distance(int i) {
  return 6.25f * static_cast<float>(i + 1);
}
constexpr float tree_length(int i) {
  return static_cast<float>(2 * i + 2);
}
constexpr ReticleElement tree_left(const char* name, int i) {
  const float l = tree_length(i);
  return {GROUP_SHAPE7,
          name,
          ELEMENT_LINE,
          ZOOM_MOVE_RESIZE,
          lin(836 - l, -(4 + l)),
          right(tree_distance(i)),
          len(l),
          fix(2),
          nullptr};
}
constexpr ReticleElement tree_right(const char* name, int i) {
  return {GROUP_SHAPE7,        name,     ELEMENT_LINE,
          ZOOM_MOVE_RESIZE,    right(4), right(tree_distance(i)),
          len(tree_length(i)), fix(2),   nullptr};
}
constexpr ReticleElement tree_number(const char* name, int i, const char* text) {
  const float l = tree_length(i);
  return number(GROUP_SHAPE7, name, lin(847 + l, 7 + l),
                lin(833 + tree_distance(i), tree_distance(i)), text);
}

// Shape 6's hold-over ladder: bar n (1..6) marks 2n milliradians below the centre, numbered.
constexpr float ladder_distance(int n) {
  return 12.5f * static_cast<float>(n);
}
constexpr ReticleElement ladder_bar(const char* name, int n) {
  return vtick(GROUP_SHAPE6, name, right(ladder_distance(n)), true);
}
constexpr ReticleElement ladder_number(const char* name, int n, const char* text) {
  return number(GROUP_SHAPE6, name, right(12), lin(833 + ladder_distance(n), ladder_distance(n)),
                text);
}

#define R2W(n) "view_reticle2_w_" #n
#define R2H(n) "view_reticle2_h_" #n
#define R6W(n) "view_reticle6_w_" #n
#define R6H(n) "view_reticle6_h_" #n
#define R7W(n) "view_reticle7_w_" #n
#define R7H(n) "view_reticle7_h_" #n

constexpr ReticleElement kTable[] = {
    // ---- shape 0: open cross without a top arm, a centre bar with a short stem below it ----
    hline(GROUP_SHAPE0, "view_reticle_w_1", lin(765, -75), len(62.5f)),
    hline(GROUP_SHAPE0, "view_reticle_w_2", lin(834, -6.25f), len(12.5f)),
    hline(GROUP_SHAPE0, "view_reticle_w_3", lin(853, 13), len(62.5f)),
    vline(GROUP_SHAPE0, "view_reticle_h_2", lin(840, 0), len(6.25f)),
    vline(GROUP_SHAPE0, "view_reticle_h_3", lin(853, 13), len(62.5f)),
    // The aiming pixel pair at the exact centre, drawn over the centre bar.
    dot(GROUP_SHAPE0, "view_reticle_h_1", 839, 839, 2),

    // ---- shape 1: open cross without a top arm and a centre dot ----
    hline(GROUP_SHAPE1, "view_reticle3_w_1", lin(771, -69), len(62.5f)),
    hline(GROUP_SHAPE1, "view_reticle3_w_3", lin(847, 7), len(62.5f)),
    vline(GROUP_SHAPE1, "view_reticle3_h_1", lin(847, 7), len(62.5f)),
    dot(GROUP_SHAPE1, "view_reticle3_w_2", 839, 839, 2),

    // ---- shape 2: circle with a centre cross and three short arms outside it ----
    {GROUP_SHAPE2, "view_reticle4_wh_1", ELEMENT_RING, ZOOM_MOVE_RESIZE, lin(815, -25),
     lin(815, -25), len(50), len(50), nullptr},
    hline(GROUP_SHAPE2, "view_reticle4_w_1", lin(803, -38), len(12.5f)),
    hline(GROUP_SHAPE2, "view_reticle4_w_2", lin(834, -6.25f), len(12.5f)),
    hline(GROUP_SHAPE2, "view_reticle4_w_3", lin(865, 25), len(12.5f)),
    vline(GROUP_SHAPE2, "view_reticle4_h_2", lin(865, 25), len(12.5f)),
    vline(GROUP_SHAPE2, "view_reticle4_h_1", lin(834, -6.25f), len(12.5f)),

    // ---- shape 3: graduated cross, 1 milliradian ticks, long ticks at 5 and 10 ----
    hline(GROUP_SHAPE3, R2W(1), lin(772, -68), len(62.5f)),
    htick(GROUP_SHAPE3, R2W(2), lin(778, -62), true),
    htick(GROUP_SHAPE3, R2W(3), lin(784, -56), false),
    htick(GROUP_SHAPE3, R2W(4), lin(790, -50), false),
    htick(GROUP_SHAPE3, R2W(5), lin(796, -44), false),
    htick(GROUP_SHAPE3, R2W(6), lin(803, -37), false),
    htick(GROUP_SHAPE3, R2W(7), lin(809, -31), true),
    htick(GROUP_SHAPE3, R2W(8), lin(815, -25), false),
    htick(GROUP_SHAPE3, R2W(9), lin(821, -19), false),
    htick(GROUP_SHAPE3, R2W(10), lin(827, -13), false),
    hline(GROUP_SHAPE3, R2W(11), lin(847, 7), len(62.5f)),
    htick(GROUP_SHAPE3, R2W(12), lin(853, 13), false),
    htick(GROUP_SHAPE3, R2W(13), lin(859, 19), false),
    htick(GROUP_SHAPE3, R2W(14), lin(865, 25), false),
    htick(GROUP_SHAPE3, R2W(15), lin(872, 32), true),
    htick(GROUP_SHAPE3, R2W(16), lin(878, 38), false),
    htick(GROUP_SHAPE3, R2W(17), lin(884, 44), false),
    htick(GROUP_SHAPE3, R2W(18), lin(890, 50), false),
    htick(GROUP_SHAPE3, R2W(19), lin(897, 57), false),
    htick(GROUP_SHAPE3, R2W(20), lin(903, 63), true),
    vline(GROUP_SHAPE3, R2H(1), lin(847, 7), len(62.5f)),
    vtick(GROUP_SHAPE3, R2H(2), lin(853, 13), false),
    vtick(GROUP_SHAPE3, R2H(3), lin(859, 19), false),
    vtick(GROUP_SHAPE3, R2H(4), lin(865, 25), false),
    vtick(GROUP_SHAPE3, R2H(5), lin(872, 31), true),  // 31, not the 32 of w_15: kept so
    vtick(GROUP_SHAPE3, R2H(6), lin(878, 38), false),
    vtick(GROUP_SHAPE3, R2H(7), lin(884, 44), false),
    vtick(GROUP_SHAPE3, R2H(8), lin(890, 50), false),
    vtick(GROUP_SHAPE3, R2H(9), lin(897, 57), false),
    vtick(GROUP_SHAPE3, R2H(10), lin(903, 63), true),
    dot(GROUP_SHAPE3, "view_reticle2_wh_1", 839, 839, 2),

    // ---- shape 4: full cross with a centre plus; the horizontal growth is truncated first ----
    hline(GROUP_SHAPE4, "view_reticle5_w_1", lin(765, -75), tgrow(62.5f, 62.5f)),
    hline(GROUP_SHAPE4, "view_reticle5_w_2", lin(834, -6), tgrow(12.5f, 12.5f)),
    hline(GROUP_SHAPE4, "view_reticle5_w_3", lin(853, 13), tgrow(62.5f, 62.5f)),
    vline(GROUP_SHAPE4, "view_reticle5_h_1", lin(765, -75), len(62.5f)),
    vline(GROUP_SHAPE4, "view_reticle5_h_2", lin(834, -6), len(12.5f)),
    vline(GROUP_SHAPE4, "view_reticle5_h_3", lin(853, 13), len(62.5f)),

    // ---- shape 5: centre dot between two short bars ----
    hline(GROUP_SHAPE5, "view_reticle8_w_1", lin(827, -13), len(6.25f)),
    hline(GROUP_SHAPE5, "view_reticle8_w_3", lin(847, 7), len(6.25f)),
    dot(GROUP_SHAPE5, "view_reticle8_w_2", 839, 839, 2),

    // ---- shape 6: ranging cross, ticks at 3..11 milliradians (long at 5 and 10), arms from 2 to
    // 15 milliradians, and a numbered hold-over ladder below at 2, 4, .. 12 ----
    hline(GROUP_SHAPE6, R6W(1), lin(746, -94), len(81.25f)),
    htick(GROUP_SHAPE6, R6W(2), left(68), false),
    htick(GROUP_SHAPE6, R6W(3), left(62), true),
    htick(GROUP_SHAPE6, R6W(4), left(56), false),
    htick(GROUP_SHAPE6, R6W(5), left(50), false),
    htick(GROUP_SHAPE6, R6W(6), left(44), false),
    htick(GROUP_SHAPE6, R6W(7), left(37), false),
    htick(GROUP_SHAPE6, R6W(8), left(31), true),
    htick(GROUP_SHAPE6, R6W(9), left(25), false),
    htick(GROUP_SHAPE6, R6W(10), left(19), false),
    hline(GROUP_SHAPE6, R6W(11), right(13), len(81.25f)),
    htick(GROUP_SHAPE6, R6W(12), right(19), false),
    htick(GROUP_SHAPE6, R6W(13), right(25), false),
    htick(GROUP_SHAPE6, R6W(14), right(32), true),
    htick(GROUP_SHAPE6, R6W(15), right(38), false),
    htick(GROUP_SHAPE6, R6W(16), right(44), false),
    htick(GROUP_SHAPE6, R6W(17), right(50), false),
    htick(GROUP_SHAPE6, R6W(18), right(57), false),
    htick(GROUP_SHAPE6, R6W(19), right(63), true),
    htick(GROUP_SHAPE6, R6W(20), right(69), false),
    vline(GROUP_SHAPE6, R6H(1), right(13), len(81.25f)),
    ladder_bar(R6H(2), 1),
    ladder_bar(R6H(3), 2),
    ladder_bar(R6H(4), 3),
    ladder_bar(R6H(5), 4),
    ladder_bar(R6H(6), 5),
    ladder_bar(R6H(7), 6),
    ladder_number("label_reticle6_2", 1, "2"),
    ladder_number("label_reticle6_4", 2, "4"),
    ladder_number("label_reticle6_6", 3, "6"),
    ladder_number("label_reticle6_8", 4, "8"),
    ladder_number("label_reticle6_10", 5, "10"),
    ladder_number("label_reticle6_12", 6, "12"),
    // Centre mark: only the two-colour schemes colour it, so it starts transparent.
    {GROUP_SHAPE6, "view_reticle6_wh_1", ELEMENT_DOT, ZOOM_FIXED, fix(838), fix(838), fix(4),
     fix(4), nullptr, RETICLE_COLOR_NONE},

    // ---- shape 7: duplex with 4-pixel outer bars from 8 to 16 milliradians, thin inner arms with
    // ticks at 2, 4, 6 and 8, a centre dot, and a numbered drop tree on the lower arm ----
    hbar(GROUP_SHAPE7, R7W(1), lin(740, -100), len(50)),
    hbar(GROUP_SHAPE7, R7W(2), lin(890, 50), len(50)),
    hline(GROUP_SHAPE7, R7W(3), lin(790, -50), len(43.75f)),
    hline(GROUP_SHAPE7, R7W(4), lin(846.25f, 6.25f), len(43.75f)),
    htick(GROUP_SHAPE7, R7W(5), left(13), false),
    htick(GROUP_SHAPE7, R7W(6), left(25), false),
    htick(GROUP_SHAPE7, R7W(7), left(37), false),
    htick(GROUP_SHAPE7, R7W(8), left(50), true),
    htick(GROUP_SHAPE7, R7W(9), right(13), false),
    htick(GROUP_SHAPE7, R7W(10), right(25), false),
    htick(GROUP_SHAPE7, R7W(11), right(38), false),
    htick(GROUP_SHAPE7, R7W(12), right(50), true),
    dot(GROUP_SHAPE7, R7H(1), 839, 839, 2),
    vbar(GROUP_SHAPE7, R7H(2), lin(740, -100), len(50)),
    vline(GROUP_SHAPE7, R7H(3), lin(790, -50), len(43.75f)),
    vline(GROUP_SHAPE7, R7H(4), lin(846.25f, 6.25f), len(93.75f)),
    vtick(GROUP_SHAPE7, R7H(5), left(13), false),
    vtick(GROUP_SHAPE7, R7H(6), left(25), false),
    vtick(GROUP_SHAPE7, R7H(7), left(37), false),
    vtick(GROUP_SHAPE7, R7H(8), left(50), true),
    tree_left(R7H(9), 1),
    tree_right(R7H(10), 1),
    tree_left(R7H(11), 2),
    tree_right(R7H(12), 2),
    tree_left(R7H(13), 3),
    tree_right(R7H(14), 3),
    tree_left(R7H(15), 4),
    tree_right(R7H(16), 4),
    tree_left(R7H(17), 5),
    tree_right(R7H(18), 5),
    tree_left(R7H(19), 6),
    tree_right(R7H(20), 6),
    tree_left(R7H(21), 7),
    tree_right(R7H(22), 7),
    tree_left(R7H(23), 8),
    tree_right(R7H(24), 8),
    tree_left(R7H(25), 9),
    tree_right(R7H(26), 9),
    tree_number("label_reticle7_1", 3, "4"),
    tree_number("label_reticle7_2", 5, "6"),
    tree_number("label_reticle7_3", 7, "8"),
    tree_number("label_reticle7_4", 9, "10"),

    // ---- aim-point shapes under "image_point" (centre 640, 640) ----
    // 1: a dot.
    {GROUP_AIM1, "view_t1_1", ELEMENT_DOT, ZOOM_FIXED, fix(636), fix(636), fix(8), fix(8), nullptr},
    // 2: a small cross.
    fixed_mark(GROUP_AIM2, "viewt2_1", 630, 639, 20, 2),
    fixed_mark(GROUP_AIM2, "viewt2_2", 639, 630, 2, 20),
    // 3: an open cross around a centre dot.
    fixed_mark(GROUP_AIM3, "view_t3_1", 626, 639, 10, 2),
    fixed_mark(GROUP_AIM3, "view_t3_2", 644, 639, 10, 2),
    fixed_mark(GROUP_AIM3, "view_t3_3", 639, 626, 2, 10),
    fixed_mark(GROUP_AIM3, "view_t3_4", 639, 644, 2, 10),
    fixed_mark(GROUP_AIM3, "view_t3_5", 639, 639, 2, 2),
    // 4: a centre plus with 4-pixel wind-hold squares at 1, 2 and 3 milliradians either side.
    mark(GROUP_AIM4, "view_t4_1", lin(619.25f, -18.75f), 638, 4, 4),
    mark(GROUP_AIM4, "view_t4_2", lin(625.5f, -12.5f), 638, 4, 4),
    mark(GROUP_AIM4, "view_t4_3", lin(631.75f, -6.25f), 638, 4, 4),
    fixed_mark(GROUP_AIM4, "view_t4_4", 639, 637, 2, 6),
    fixed_mark(GROUP_AIM4, "view_t4_5", 637, 639, 6, 2),
    mark(GROUP_AIM4, "view_t4_6", lin(644.25f, 6.25f), 638, 4, 4),
    mark(GROUP_AIM4, "view_t4_7", lin(650.5f, 12.5f), 638, 4, 4),
    mark(GROUP_AIM4, "view_t4_8", lin(656.75f, 18.75f), 638, 4, 4),
    // 5: a centre "T" with 2-pixel wind-hold dots at 1, 2 and 3 milliradians either side.
    mark(GROUP_AIM5, "view_t5_1", lin(620.25f, -18.75f), 639, 2, 2),
    mark(GROUP_AIM5, "view_t5_2", lin(626.5f, -12.5f), 639, 2, 2),
    mark(GROUP_AIM5, "view_t5_3", lin(632.75f, -6.25f), 639, 2, 2),
    fixed_mark(GROUP_AIM5, "view_t5_4", 637, 639, 6, 2),
    fixed_mark(GROUP_AIM5, "view_t5_5", 639, 641, 2, 4),
    mark(GROUP_AIM5, "view_t5_6", lin(645.25f, 6.25f), 639, 2, 2),
    mark(GROUP_AIM5, "view_t5_7", lin(651.5f, 12.5f), 639, 2, 2),
    mark(GROUP_AIM5, "view_t5_8", lin(657.75f, 18.75f), 639, 2, 2),
};

#undef R2W
#undef R2H
#undef R6W
#undef R6H
#undef R7W
#undef R7H

// The table is in group order, so that each shape is one contiguous run.
constexpr bool table_grouped() {
  for (std::size_t i = 1; i < std::size(kTable); ++i) {
    if (kTable[i].group < kTable[i - 1].group) return false;
  }
  return true;
}
static_assert(table_grouped());

constexpr int count_group(ReticleGroup g) {
  int n = 0;
  for (const ReticleElement& e : kTable)
    n += e.group == g ? 1 : 0;
  return n;
}
static_assert(count_group(GROUP_SHAPE3) == 31);  // 20 w, 10 h, the centre dot
static_assert(count_group(GROUP_SHAPE6) == 34);  // 20 w, 7 h, 6 numbers, the centre mark
static_assert(count_group(GROUP_SHAPE7) == 42);  // 12 w, 26 h, 4 numbers
static_assert(count_group(GROUP_AIM1) + count_group(GROUP_AIM2) + count_group(GROUP_AIM3) +
                  count_group(GROUP_AIM4) + count_group(GROUP_AIM5) ==
              24);  // with the two PIP aim-point lines, the 26 aim-point elements

// Value of a coordinate at d, every product and sum rounded to T (float for the reticle shapes,
// double for the aim-point marks), truncated toward zero.
template <typename T>
int coord_at(const ReticleCoord& c, T d) {
  const T base = c.base;
  const T growth = static_cast<T>(c.k) * d;
  switch (c.mode) {
    case COORD_LINEAR: {
      const T v = base + growth;
      return trunc_to_int(v);
    }
    case COORD_TRUNC_GROWTH: {
      const T v = base + static_cast<T>(trunc_to_int(growth));
      return trunc_to_int(v);
    }
    case COORD_EVEN_GROWTH: return trunc_to_int(base) + h_value_handle(trunc_to_int(growth));
  }
  return trunc_to_int(base);
}

// The argument check of the layout functions, reported under the caller's name.
bool window_given(widget_t* win, const char* func, int line) {
  if (win == NULL) log_condition_failed(func, line, "win != NULL");
  return win != NULL;
}

}  // namespace

std::span<const ReticleElement> reticle_elements() {
  return kTable;
}

int trunc_to_int(double v) {
  if (!(v == v)) return 0;
  if (v >= 2147483647.0) return INT32_MAX;
  if (v <= -2147483648.0) return INT32_MIN;
  return static_cast<int>(v);
}

int h_value_handle(int v) {
  return v & ~1;
}

int reticle_coord_at(const ReticleCoord& c, float d) {
  return coord_at(c, d);
}

int reticle_coord_at_double(const ReticleCoord& c, double d) {
  return coord_at(c, d);
}

const int reticle_x_start[RETICLE_X_START_COUNT] = {
    320,  288,  256,  223,   191,   159,   126,   95,    64,    30,    3,     -35,   -65,
    -96,  -131, -161, -194,  -229,  -258,  -289,  -322,  -356,  -394,  -421,  -450,  -480,
    -512, -545, -580, -617,  -656,  -678,  -721,  -745,  -770,  -818,  -845,  -873,  -902,
    -932, -963, -995, -1028, -1063, -1099, -1136, -1175, -1216, -1218, -1260, -1302,
};

int lookup_reticle_x_start(int i) {
  if (i < 0 || i > 60) {
    puts("索引超出范围！");
    return -1;
  }
  // The accepted range runs to 60 against a 51-entry table, kept as it stands; indices 51..60
  // have no entry and are answered with -1 instead of reading past the table.
  if (i >= RETICLE_X_START_COUNT) return -1;
  return reticle_x_start[i];
}

ret_t reticle_shape_layout(int shape, float m, widget_t* win) {
  if (!window_given(win, __func__, __LINE__)) return RET_BAD_PARAMS;
  if (shape < 0 || shape >= RETICLE_SHAPE_COUNT) return RET_BAD_PARAMS;
  const float d = m - 1.0f;
  for (const ReticleElement& e : kTable) {
    if (e.group != shape || e.zoom == ZOOM_FIXED) continue;
    widget_t* w = widget_lookup(win, e.name, TRUE);
    const int x = reticle_coord_at(e.x, d);
    const int y = reticle_coord_at(e.y, d);
    if (e.zoom == ZOOM_MOVE) {
      widget_move(w, x, y);
    } else {
      widget_move_resize(w, x, y, reticle_coord_at(e.w, d), reticle_coord_at(e.h, d));
    }
  }
  return RET_OK;
}

namespace {

ret_t shape_zoom(int shape, float m, widget_t* win, const char* func, int line) {
  if (!window_given(win, func, line)) return RET_BAD_PARAMS;
  const float d = m - 1.0f;
  printf("zoom_value===============%0.2f\n\n\n", d);
  return reticle_shape_layout(shape, m, win);
}

}  // namespace

ret_t on_Zavo_ReticleShoot4_zoom(float m, widget_t* win) {
  return shape_zoom(GROUP_SHAPE2, m, win, __FUNCTION__, __LINE__);
}
ret_t on_Zavo_ReticleShoot2_zoom(float m, widget_t* win) {
  return shape_zoom(GROUP_SHAPE3, m, win, __FUNCTION__, __LINE__);
}
ret_t on_Zavo_ReticleShoot5_zoom(float m, widget_t* win) {
  return shape_zoom(GROUP_SHAPE4, m, win, __FUNCTION__, __LINE__);
}
ret_t on_Zavo_ReticleShoot8_zoom(float m, widget_t* win) {
  return shape_zoom(GROUP_SHAPE5, m, win, __FUNCTION__, __LINE__);
}
ret_t on_Zavo_ReticleShoot6_zoom(float m, widget_t* win) {
  return shape_zoom(GROUP_SHAPE6, m, win, __FUNCTION__, __LINE__);
}
ret_t on_Zavo_ReticleShoot7_zoom(float m, widget_t* win) {
  return shape_zoom(GROUP_SHAPE7, m, win, __FUNCTION__, __LINE__);
}

ret_t on_Zavo_ballistic_zoom(float m, widget_t* win) {
  if (!window_given(win, __func__, __LINE__)) return RET_BAD_PARAMS;
  const double d = static_cast<double>(m) - 1.0;
  for (const ReticleElement& e : kTable) {
    if (e.group < GROUP_AIM1 || e.zoom != ZOOM_MOVE) continue;
    widget_move(widget_lookup(win, e.name, TRUE), reticle_coord_at_double(e.x, d),
                reticle_coord_at_double(e.y, d));
  }
  return RET_OK;
}
