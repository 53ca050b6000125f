// The ballistic aim point, the range and laser markers and the zoom step of "Zavo_home_page_1".
//
// The reticle sits on the active zero's cursor; the aim point, the laser marker and the range
// marker are placed relative to it and scaled about it by the electronic zoom, so that a mark stays
// on its spot of the scene when the picture is magnified. A second, smaller aim point is drawn in
// the picture-in-picture inset, which magnifies twice about screen point (639, 292).
//
// Positions are computed in single precision and truncated toward zero after the arithmetic, so
// that every truncation lands on the pixel the sight was calibrated for.
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "pages/Zavo_home_page_1_zoom.h"
#include "common/common_function.h"
#include "common/status_records.h"
#include "pages/Zavo_home_page_1_overlay.h"

#if defined(__clang__)
#pragma clang fp contract(off)
#endif

// ---- state ----

static int reticle_value_x = 640;  // reticle centre (the active zero's cursor)
static int reticle_value_y = 512;
static int ballistic_value_x = 0;  // corner of "image_point"
static int ballistic_value_y = 0;
static int ballistic_PIP_x = 0;  // corner of "view_ballistic_pip_reticle"
static int ballistic_PIP_y = 0;
static int rangeX = 0;  // corners of the markers
static int rangeY = 0;
static int laserX = 0;
static int laserY = 0;
static float ballistic_zoom_value = 1.0f;      // zoom of the main picture's marks
static float ballistic_pip_zoom_value = 1.0f;  // zoom inside the PIP inset

// A solution or offset beyond this many pixels is far off any screen; larger values (a corrupt
// solution) are held here so that no sum below can overflow.
static constexpr int64_t kMaxOffset = 1 << 20;

// ---- helpers ----

static widget_t* find(widget_t* win, const char* name) {
  return widget_lookup(win, name, TRUE);
}

static int clamp_to_int(int64_t v) {
  if (v > INT32_MAX) return INT32_MAX;
  if (v < INT32_MIN) return INT32_MIN;
  return static_cast<int>(v);
}

static int64_t clamp_offset(int64_t v) {
  if (v > kMaxOffset) return kMaxOffset;
  if (v < -kMaxOffset) return -kMaxOffset;
  return v;
}

// The aim point's target: the reticle centre plus the solution's offset (positive Y is up).
static int aim_target_x() {
  return clamp_to_int(reticle_value_x + clamp_offset(result_ball.moveX));
}
static int aim_target_y() {
  return clamp_to_int(reticle_value_y - clamp_offset(result_ball.moveY));
}

// Scales one coordinate about the cursor: trunc((target - cursor) * zoom + cursor), one fused
// multiply-add in single precision.
static int scale_about(float zoom, int target, int cursor) {
  const float delta = static_cast<float>(static_cast<int64_t>(target) - cursor);
  return trunc_to_int(std::fma(delta, zoom, static_cast<float>(cursor)));
}

// The active zero of the active group, or NULL (reported) when the device sent indices outside
// the 5 x 5 table.
static const Inf_Cursor_Zero* active_zero() {
  const unsigned group = IR_Cursor.u8CurrentGroup;
  if (group >= 5 || IR_Cursor.group[group].u8CurrentZero >= 5) {
    printf("on_reticle_move: zero %u of group %u is outside the 5 x 5 table, reticle not moved\n",
           group < 5 ? IR_Cursor.group[group].u8CurrentZero : 0u, group);
    return NULL;
  }
  return &IR_Cursor.group[group].zero[IR_Cursor.group[group].u8CurrentZero];
}

// ---- scaling ----

int Set_ZoomBallisticMove(int* out_x, int* out_y, float zoom, int target_x, int target_y,
                          int cursor_x, int cursor_y) {
  log_return_value_if_fail(out_x != NULL && out_y != NULL, -1);
  const int sx = scale_about(zoom, target_x, cursor_x);
  const int sy = scale_about(zoom, target_y, cursor_y);
  printf("tmpBallisticY CursorY BallisticY zoomval %d  %d %d %f !!!!!!! \n", target_y, cursor_y, sy,
         zoom);
  printf("tmpBallisticX CursorX BallisticX zoomval %d  %d %d %f !!!!!!! \n", target_x, cursor_x, sx,
         zoom);
  *out_x = clamp_to_int(static_cast<int64_t>(sx) - 640);
  *out_y = clamp_to_int(static_cast<int64_t>(sy) - 640);
  if (*out_x < 0 || *out_y < 0) {
    printf("newBallistic (%d x %d) limit < 0,error!!!!!!! \n", sx, sy);
    return -1;
  }
  return 1;
}

int Set_ZoomRangeMove(int* out_x, int* out_y, float zoom, int marker_x, int marker_y, int cursor_x,
                      int cursor_y) {
  log_return_value_if_fail(out_x != NULL && out_y != NULL, -1);
  const int sx = scale_about(zoom, marker_x, cursor_x);
  const int sy = scale_about(zoom, marker_y, cursor_y);
  // The zoom is printed in hundredths, the unit the device reports it in.
  printf("==========zoomval: %d, Range (%d x %d), CursorX (%d x %d) \n",
         trunc_to_int(static_cast<double>(zoom) * 100.0), marker_x, marker_y, cursor_x, cursor_y);
  *out_x = clamp_to_int(static_cast<int64_t>(sx) - 22);
  *out_y = clamp_to_int(static_cast<int64_t>(sy) - 22);
  if (*out_x < 0 || *out_y < 0) {
    printf("newRange (%d x %d) limit < 0,error!!!!!!! \n", sx, sy);
    return -1;
  }
  return 1;
}

int Set_Zoom_Pip_BallisticMove(int* out_x, int* out_y, float zoom, int move_x, int move_y) {
  log_return_value_if_fail(out_x != NULL && out_y != NULL, 1);
  const float x = static_cast<float>(move_x) * zoom * 2.0f + 639.0f;
  const float y = static_cast<float>(move_y) * zoom * 2.0f + 292.0f;
  *out_x = clamp_to_int(static_cast<int64_t>(trunc_to_int(x)) - 12);
  *out_y = clamp_to_int(static_cast<int64_t>(trunc_to_int(y)) - 12);
  return 1;
}

float Keep_decimal_place(float v) {
  const double tenths = (static_cast<double>(v) + 0.05) * 10.0;
  const uint16_t kept = static_cast<uint16_t>(trunc_to_int(tenths));
  return static_cast<float>(kept) / 10.0f;
}

// ---- placement ----

ret_t on_reticle_move(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  const Inf_Cursor_Zero* zero = active_zero();
  if (zero == NULL) return RET_BAD_PARAMS;
  reticle_value_x = zero->s8IrCursorCurrentX;
  reticle_value_y = zero->s8IrCursorCurrentY;
  printf("reticle_value_x =%d\n reticle_value_y =%d\n", reticle_value_x, reticle_value_y);
  widget_move(find(win, "view_reticle_shoot"), reticle_value_x - 840, reticle_value_y - 840);

  Set_ZoomBallisticMove(&ballistic_value_x, &ballistic_value_y, 1.0f, aim_target_x(),
                        aim_target_y(), reticle_value_x, reticle_value_y);
  widget_move(find(win, "image_point"), ballistic_value_x, ballistic_value_y);
  puts("Set_ZoomBallisticMove=======on_reticle_move");
  return RET_OK;
}

// A marker at zoom 1, centred on (x, y), after the line naming the two offsets it comes from
// ("stDevStatus.<field>X=== .. stDevStatus.<field>Y===.."); an X outside 341..939 (read as a
// 16-bit quantity) parks it at the screen centre. Y is used as it is.
static void place_marker(widget_t* win, const char* name, const char* field, int16_t x, int16_t y) {
  printf("stDevStatus.%sX=== %d stDevStatus.%sY===%d\n", field, x, field, y);
  const uint16_t ux = static_cast<uint16_t>(x);
  if (ux >= 341 && ux <= 939) {
    widget_move(find(win, name), x - 22, y - 22);
  } else {
    widget_move(find(win, name), 618, 618);
  }
}

ret_t on_Zavo_RangeReticle_move(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  place_marker(win, "image_reticle_range", "s16RangeOffset", stDevStatus.s16RangeOffsetX,
               stDevStatus.s16RangeOffsetY);
  return RET_OK;
}

ret_t on_Zavo_laserReticle_move(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  place_marker(win, "image_reticle_laser", "s16LaserIndicat", stDevStatus.s16LaserIndicatX,
               stDevStatus.s16LaserIndicatY);
  return RET_OK;
}

// The PIP aim point: moved to its corner, shown while the PIP view is on and the corner lies in
// [436, max_x] x [128, max_y].
static void place_pip_aim_point(widget_t* win, float zoom, unsigned max_x, unsigned max_y) {
  Set_Zoom_Pip_BallisticMove(&ballistic_PIP_x, &ballistic_PIP_y, zoom,
                             static_cast<int>(clamp_offset(result_ball.moveX)),
                             static_cast<int>(-clamp_offset(result_ball.moveY)));
  widget_t* pip = find(win, "view_ballistic_pip_reticle");
  widget_move(pip, ballistic_PIP_x, ballistic_PIP_y);
  const bool inside = static_cast<unsigned>(ballistic_PIP_x - 436) <= max_x - 436 &&
                      static_cast<unsigned>(ballistic_PIP_y - 128) <= max_y - 128;
  widget_set_visible(pip, inside && stDevStatus.s8VideoMode == 3);
}

// ---- zoom ----

ret_t on_Zavo_All_Reticle_zoom(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);

  // Zoom step: z is the picture's zoom, m the zoom of the main picture's marks, p the PIP
  // read-out. The first step above 1 never reads below 1.04.
  float z = static_cast<float>(stUIStatus.s8IRZoom * 0.01);
  printf("zoom_origin = %.2f\n", z);
  if (z > 1.0 && z < 1.04) z = static_cast<float>(1.04);
  // The electronic zoom never goes below 1.00. A smaller value (none reported yet, or a corrupt
  // one) would shrink the reticle to a point and read "0.0X": it is drawn at 1.00 instead.
  if (stUIStatus.s8IRZoom < 100) {
    printf("zoom %d is below 1.00, drawn at 1.00\n", stUIStatus.s8IRZoom);
    z = 1.0f;
  }
  float p = 0.0f;
  float m = 0.0f;
  const bool pip_on = stDevStatus.s8VideoMode == 3;
  if (pip_on) {
    p = Keep_decimal_place(static_cast<float>(z * 3.0)) * 2;
    m = 1.0f;  // the main picture stays unmagnified
  } else {
    p = 3.0f;
    m = z;
  }
  widget_set_visible(find(win, "label_PIP_zoom_value"), pip_on);
  widget_set_visible(find(win, "view_pip_border"), pip_on);
  widget_set_visible(find(win, "view_ballistic_pip_reticle"), pip_on);
  if (stUIStatus.s8Enter_reticle_move == 1) {
    p = 6.0f;
    m = 1.0f;
  }
  ballistic_zoom_value = m;
  ballistic_pip_zoom_value = z;

  char text[32];
  snprintf(text, sizeof(text), "%0.1fX", p);
  widget_set_text_utf8(find(win, "label_PIP_zoom_value"), text);
  snprintf(text, sizeof(text), "%0.1fX", m * 3.0);
  widget_set_text_utf8(find(win, "label_zoom_value"), text);

  // The selected shape only.
  switch (static_cast<uint8_t>(stDevStatus.s8ReticleType)) {
    case 0: reticle_shape_layout(GROUP_SHAPE0, m, win); break;
    case 1: reticle_shape_layout(GROUP_SHAPE1, m, win); break;
    case 2: on_Zavo_ReticleShoot4_zoom(m, win); break;
    case 3: on_Zavo_ReticleShoot2_zoom(m, win); break;
    case 4: on_Zavo_ReticleShoot5_zoom(m, win); break;
    case 5: on_Zavo_ReticleShoot8_zoom(m, win); break;
    case 6: on_Zavo_ReticleShoot6_zoom(m, win); break;
    case 7: on_Zavo_ReticleShoot7_zoom(m, win); break;
    default: break;
  }

  // Markers, aim point and its shapes, PIP aim point for the new zoom.
  Set_ZoomRangeMove(&rangeX, &rangeY, m, stDevStatus.s16RangeOffsetX, stDevStatus.s16RangeOffsetY,
                    reticle_value_x, reticle_value_y);
  widget_move(find(win, "image_reticle_range"), rangeX, rangeY);
  Set_ZoomRangeMove(&laserX, &laserY, m, stDevStatus.s16LaserIndicatX, stDevStatus.s16LaserIndicatY,
                    reticle_value_x, reticle_value_y);
  widget_move(find(win, "image_reticle_laser"), laserX, laserY);
  Set_ZoomBallisticMove(&ballistic_value_x, &ballistic_value_y, m, aim_target_x(), aim_target_y(),
                        reticle_value_x, reticle_value_y);
  widget_move(find(win, "image_point"), ballistic_value_x, ballistic_value_y);
  on_Zavo_ballistic_zoom(m, win);
  place_pip_aim_point(win, z, 820, 432);
  return RET_OK;
}

// ---- ballistic solution ----

// "<up>%.02f" of v when v > 0, else "<down>%.02f" of |v|: zero reads as down / left.
static void set_hold_label(widget_t* win, const char* name, double v, char up, char down) {
  char text[32];
  if (v > 0) {
    snprintf(text, sizeof(text), "%c%.02f", up, v);
  } else {
    snprintf(text, sizeof(text), "%c%.02f", down, std::fabs(v));
  }
  widget_set_text_utf8(find(win, name), text);
}

ret_t on_TOBRAN_ballistics_result_update(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  widget_t* panel = find(win, "view_ballistics");
  widget_t* panel_bg = find(win, "view_bg_ballistic");
  if (stUIStatus.s8RangeMode == 3) {  // continuous ranging: the panel stays away
    widget_set_visible(panel, FALSE);
    widget_set_visible(panel_bg, FALSE);
    return RET_OK;
  }
  // The first profile's switch decides, whatever profile is current.
  widget_set_visible(panel, info[0].ballistics_sw != 0);
  widget_set_visible(panel_bg, info[0].ballistics_sw != 0);

  if (!std::isfinite(result_ball.moaV) || !std::isfinite(result_ball.moaH)) {
    printf(
        "on_TOBRAN_ballistics_result_update: solution is not a number (moaV %f, moaH %f), "
        "aim point left as it is\n",
        result_ball.moaV, result_ball.moaH);
    return RET_BAD_PARAMS;
  }
  result_ball.mradV = result_ball.moaV / 3.44;
  result_ball.mradH = result_ball.moaH / 3.44;
  result_ball.moveX = clamp_to_int(clamp_offset(trunc_to_int(result_ball.mradH * 6.25)));
  result_ball.moveY = clamp_to_int(clamp_offset(trunc_to_int(result_ball.mradV * 6.25)));

  Set_ZoomBallisticMove(&ballistic_value_x, &ballistic_value_y, ballistic_zoom_value,
                        aim_target_x(), aim_target_y(), reticle_value_x, reticle_value_y);
  widget_move(find(win, "image_point"), ballistic_value_x, ballistic_value_y);
  // Twelve pixels wider than the zoom refresh's bounds: kept different on purpose.
  place_pip_aim_point(win, ballistic_pip_zoom_value, 832, 444);
  puts("Set_ZoomBallisticMove=======ballistic");

  set_hold_label(win, "label_MOA_V", result_ball.moaV, 'U', 'D');
  set_hold_label(win, "label_MOA_H", result_ball.moaH, 'R', 'L');
  set_hold_label(win, "label_MARD_V", result_ball.mradV, 'U', 'D');
  set_hold_label(win, "label_MARD_H", result_ball.mradH, 'R', 'L');
  return RET_OK;
}
