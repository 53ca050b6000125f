// The observation screen's overlay: reticle, picture-in-picture reticle, ballistic aim point,
// range and laser markers, zoom read-outs and the hold-over panel, all drawn in the window
// "Zavo_home_page_1".
//
// Every function re-reads the shared records (stDevStatus, stUIStatus, IR_Cursor, result_ball,
// info) and redraws from them, so calling one at any time is harmless. Event handlers have the
// toolkit's handler shape, ret_t f(void* ctx, event_t* e), with ctx = the home window; the event
// is ignored and may be null, so the page's init calls them as f(win). They are subscribed on the
// window manager to EVT_USER_START + the screen-event offset noted beside each one.
//
// The reticle overlay functions live in Zavo_home_page_1_reticle.cpp, the aim point, markers and
// zoom step in Zavo_home_page_1_aim.cpp, the per-shape zoom geometry in
// Zavo_home_page_1_zoom.cpp.
#ifndef SCOPE_PAGES_ZAVO_HOME_PAGE_1_OVERLAY_H
#define SCOPE_PAGES_ZAVO_HOME_PAGE_1_OVERLAY_H

#include "awtk.h"

// ---- reticle overlay ----
// "view_reticle_shoot" shown when s8ReticleSwitch != 0; "view_pip_reticle" when the PIP view is on
// (s8VideoMode 3) and s8ReticleSwitch == 1.                                        (offset 2)
ret_t on_Zavo_Reticle_switch(void* ctx, event_t* e = NULL);
// Shows the one shape group of s8ReticleType (0..7, not in numeric order); others hide.  (46)
ret_t on_reticle_type(void* ctx, event_t* e = NULL);
// Colours every element of every shape by s8ReticleColour, with the second colour on the
// centre marks for schemes 4..7.                                                    (42)
ret_t on_reticle_color(void* ctx, event_t* e = NULL);
// Opacity of "view_reticle_shoot" by s8ReticleBrightness: 0 150, 1 200, 2 255.      (43)
ret_t on_reticle_light(void* ctx, event_t* e = NULL);
// Shape of the aim point by s8BallisticReticle (0..4).                              (59)
ret_t ballistics_reticle_type(void* ctx, event_t* e = NULL);
// Colour of all aim-point marks by s8BallisticReticleColor (0 white, 1 red, 2 green). (60)
ret_t ballistics_reticle_color(void* ctx, event_t* e = NULL);
// PIP reticle shape (s8PIPReticleType) and ring colour (s8PIPReticleColor).         (63)
ret_t on_pip_reticle_change(void* ctx, event_t* e = NULL);
// Image of "image_reticle_laser": "laser_N_c.png".                                  (65)
ret_t on_laser_reticle_change(void* ctx, event_t* e = NULL);
// Image of "image_reticle_range": "LRF_N_c.png".                                    (64)
ret_t on_range_reticle_change(void* ctx, event_t* e = NULL);

// The first colour of each shape's own elements (called by on_reticle_color).
ret_t on_Zavo_ReticleShoot2_color(widget_t* win);
ret_t on_Zavo_ReticleShoot6_color(widget_t* win);
ret_t on_Zavo_ReticleShoot7_color(widget_t* win);
ret_t on_Zavo_ReticleShoot8_color(widget_t* win);

// "<dir>/<640|384>_<shape>_<colour letter>.png" in a 128-byte static buffer (overwritten by the
// next call). No drawing path of the observation screen calls it.
char* getReticleImgName(const char* dir);

// ---- aim point, markers and zoom ----
// Scales (target) about (cursor) by zoom, single precision with fused multiply-add, and gives the
// top-left corner of the 1280 x 1280 "image_point" centred there. Returns 1, or -1 (reported) when
// a corner coordinate is negative; the outputs are written in both cases.
int Set_ZoomBallisticMove(int* out_x, int* out_y, float zoom, int target_x, int target_y,
                          int cursor_x, int cursor_y);
// The same for a 44 x 44 marker.
int Set_ZoomRangeMove(int* out_x, int* out_y, float zoom, int marker_x, int marker_y, int cursor_x,
                      int cursor_y);
// Corner of the 24 x 24 PIP aim point: the inset magnifies twice about screen point (639, 292).
// Always 1.
int Set_Zoom_Pip_BallisticMove(int* out_x, int* out_y, float zoom, int move_x, int move_y);
// One decimal place, half up: trunc((v + 0.05) * 10) as an unsigned 16-bit value, / 10.
float Keep_decimal_place(float v);

// Reticle to the active zero's cursor, aim point at zoom 1.                         (31)
ret_t on_reticle_move(void* ctx, event_t* e = NULL);
// Range-finder marker at zoom 1 from s16RangeOffsetX/Y (X outside 341..939 parks it at the
// centre).                                                                          (33)
ret_t on_Zavo_RangeReticle_move(void* ctx, event_t* e = NULL);
// Laser marker at zoom 1 from s16LaserIndicatX/Y, same rule.                        (34)
ret_t on_Zavo_laserReticle_move(void* ctx, event_t* e = NULL);
// Zoom change: zoom read-outs, PIP widgets, relayout of the selected shape, markers, aim point
// and PIP aim point.                                                                (35)
ret_t on_Zavo_All_Reticle_zoom(void* ctx, event_t* e = NULL);
// New ballistic solution: hold-over panel, labels, aim point and PIP aim point.     (48)
ret_t on_TOBRAN_ballistics_result_update(void* ctx, event_t* e = NULL);

#endif  // SCOPE_PAGES_ZAVO_HOME_PAGE_1_OVERLAY_H
