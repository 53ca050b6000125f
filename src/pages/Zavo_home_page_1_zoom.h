// "Zavo_home_page_1": the observation screen's reticle zoom geometry (only this screen draws the
// reticles and marks the table describes; their colours, which other pages show too, are in
// common/reticle_colors.h).
//
// The reticles of the observation screen are groups of plain views (2-pixel lines, rings, number
// labels) inside "view_reticle_shoot", a 1680 x 1680 area centred on the cursor whose centre
// lines are the row and column 839. When the thermal picture is magnified by m, every shape is
// laid out again with d = m - 1 so that it keeps its angular meaning: a length L0 becomes
// L0 * (1 + d), an element at distance k from the centre moves to p0 -/+ k * d, line widths stay.
//
// One table, kReticleElements, holds every element of the eight shapes and of the aim-point marks:
// its base geometry (the layout at zoom 1) and its zoom coefficients. The layout functions below
// read it, and tools/reticle_layout writes the window's overlay region from it, so the layout file
// and the zoom code cannot disagree.
#ifndef SCOPE_PAGES_ZAVO_HOME_PAGE_1_ZOOM_H
#define SCOPE_PAGES_ZAVO_HOME_PAGE_1_ZOOM_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "awtk.h"
#include "common/reticle_colors.h"

// ---- geometry table ----

// How one coordinate follows d.
enum ReticleCoordMode : uint8_t {
  COORD_LINEAR,        // trunc(base + k * d)
  COORD_TRUNC_GROWTH,  // trunc(base + trunc(k * d)): growth truncated before the base is added
  COORD_EVEN_GROWTH,   // base + h_value_handle(trunc(k * d)): tick lengths grow by even steps
};

struct ReticleCoord {
  float base;  // value at zoom 1
  float k;     // growth per unit of d (negative: moves left or up)
  ReticleCoordMode mode;
};

// What the element is drawn as.
enum ReticleElementKind : uint8_t {
  ELEMENT_LINE,   // filled view, coloured by "normal:bg_color"
  ELEMENT_DOT,    // filled round view (corner radius half its size), "normal:bg_color"
  ELEMENT_RING,   // bordered view (circle), coloured by "normal:border_color"
  ELEMENT_LABEL,  // a number, coloured by "normal:text_color"
};

// What the zoom layout does with the element.
enum ReticleZoomKind : uint8_t {
  ZOOM_MOVE_RESIZE,  // position and size follow d
  ZOOM_MOVE,         // position follows d, size fixed (labels, aim-point marks)
  ZOOM_FIXED,        // never moved (centre dots and centre marks)
};

// The groups that hold the elements: the eight reticle shapes (index = s8ReticleType) and the
// five aim-point shapes (index = s8BallisticReticle + 8).
enum ReticleGroup : uint8_t {
  GROUP_SHAPE0,  // "view_reticle_shoot1"
  GROUP_SHAPE1,  // "view_reticle_shoot3"
  GROUP_SHAPE2,  // "view_reticle_shoot4"
  GROUP_SHAPE3,  // "view_reticle_shoot2"
  GROUP_SHAPE4,  // "view_reticle_shoot5"
  GROUP_SHAPE5,  // "view_reticle_shoot8"
  GROUP_SHAPE6,  // "view_reticle_shoot6"
  GROUP_SHAPE7,  // "view_reticle_shoot7"
  GROUP_AIM1,    // "view_type1" .. "view_type5" under "image_point"
  GROUP_AIM2,
  GROUP_AIM3,
  GROUP_AIM4,
  GROUP_AIM5,
  GROUP_COUNT,
};
inline constexpr int RETICLE_SHAPE_COUNT = 8;
inline constexpr int AIM_SHAPE_COUNT = 5;

// Group view names by ReticleGroup. The reticle shapes are not in numeric order of their views.
inline constexpr std::array<const char*, GROUP_COUNT> kReticleGroupName = {
    "view_reticle_shoot1", "view_reticle_shoot3", "view_reticle_shoot4", "view_reticle_shoot2",
    "view_reticle_shoot5", "view_reticle_shoot8", "view_reticle_shoot6", "view_reticle_shoot7",
    "view_type1",          "view_type2",          "view_type3",          "view_type4",
    "view_type5",
};

struct ReticleElement {
  ReticleGroup group;
  const char* name;
  ReticleElementKind kind;
  ReticleZoomKind zoom;
  ReticleCoord x, y, w, h;
  const char* text;  // labels only
  // Colour in the layout file, before the first colour pass (which sets every element but the
  // centre mark of shape 6).
  uint32_t layout_color = RETICLE_COLOR_WHITE;
};

// Every element of the reticle shapes and of the aim-point shapes, grouped, in drawing order.
std::span<const ReticleElement> reticle_elements();

// Value of a coordinate at d, single precision, truncated toward zero.
int reticle_coord_at(const ReticleCoord& c, float d);
// The same in double precision (the aim-point marks).
int reticle_coord_at_double(const ReticleCoord& c, double d);

// Truncation toward zero, saturating at the int range (NaN gives 0) so that no input can make
// the conversion undefined. Equal to a plain cast for every value in range.
int trunc_to_int(double v);

// ---- helpers of the design ----
// v with its lowest bit cleared.
int h_value_handle(int v);
// Entry i of reticle_x_start for 0 <= i <= 60, else prints "索引超出范围！" and returns -1.
int lookup_reticle_x_start(int i);
inline constexpr int RETICLE_X_START_COUNT = 51;
extern const int reticle_x_start[RETICLE_X_START_COUNT];

// ---- layout for a zoom m (the main picture's zoom, see on_Zavo_All_Reticle_zoom) ----
// Moves and resizes every zoomed element of one reticle shape (0..7, by s8ReticleType) for m,
// without printing. Returns RET_BAD_PARAMS for a null window or a shape outside 0..7.
ret_t reticle_shape_layout(int shape, float m, widget_t* win);

// The designed per-shape layout functions (each prints the d it lays out for).
ret_t on_Zavo_ReticleShoot4_zoom(float m, widget_t* win);  // shape 2
ret_t on_Zavo_ReticleShoot2_zoom(float m, widget_t* win);  // shape 3
ret_t on_Zavo_ReticleShoot5_zoom(float m, widget_t* win);  // shape 4
ret_t on_Zavo_ReticleShoot8_zoom(float m, widget_t* win);  // shape 5
ret_t on_Zavo_ReticleShoot6_zoom(float m, widget_t* win);  // shape 6
ret_t on_Zavo_ReticleShoot7_zoom(float m, widget_t* win);  // shape 7
// The aim-point hold marks ("view_t4_*", "view_t5_*"), moved in double precision.
ret_t on_Zavo_ballistic_zoom(float m, widget_t* win);

#endif  // SCOPE_PAGES_ZAVO_HOME_PAGE_1_ZOOM_H
