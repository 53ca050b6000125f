// The reticle overlay of "Zavo_home_page_1": which reticle shape shows, its colours and brightness,
// the picture-in-picture reticle, the ballistic aim-point shape and colour, and the images of the
// laser and range-finder markers. Every function re-reads stDevStatus and redraws.
//
// The 8-bit settings are read as unsigned bytes, as the board's char is: a stray value from the
// device is then simply out of range instead of negative.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "pages/Zavo_home_page_1_zoom.h"
#include "common/common_function.h"
#include "common/status_records.h"
#include "pages/Zavo_home_page_1_overlay.h"

// ---- state ----

// Elements that take the first colour as "normal:bg_color" from on_reticle_color itself.
static const char* const kFirstColorElements[] = {
    "view_reticle_h_1",  "view_reticle_h_2",  "view_reticle_h_3",   "view_reticle_w_1",
    "view_reticle_w_2",  "view_reticle_w_3",  "view_PIP_Reticle_1", "view_PIP_Reticle_2",
    "view_reticle3_w_1", "view_reticle3_h_1", "view_reticle4_w_1",  "view_reticle4_w_2",
    "view_reticle4_w_3", "view_reticle4_h_1", "view_reticle4_h_2",  "view_reticle3_w_2",
    "view_reticle3_w_3",
};
// The ring of shape 2 takes the first colour as its border.
static const char* const kFirstColorRing = "view_reticle4_wh_1";

// The centre marks: the second colour of schemes 4..7, transparent for schemes 8 and above.
static const char* const kCentreElements[] = {
    "view_reticle_h_2",  "view_reticle_w_2",  "view_PIP_Reticle_1", "view_PIP_Reticle_2",
    "view_reticle4_w_2", "view_reticle4_h_1", "view_reticle3_w_2",  "view_reticle2_wh_1",
    "view_reticle5_w_2", "view_reticle5_h_2", "view_reticle6_wh_1", "view_reticle8_w_2",
    "view_reticle7_h_1",
};

// Shape 4's elements are coloured with shape 3's (after its centre dot).
static const char* const kShoot2ColorExtra[] = {
    "view_reticle2_wh_1", "view_reticle5_w_1", "view_reticle5_h_1", "view_reticle5_w_2",
    "view_reticle5_w_3",  "view_reticle5_h_2", "view_reticle5_h_3",
};

// The 26 aim-point elements, coloured together.
static const char* const kAimPointElements[] = {
    "view_t1_1",
    "viewt2_1",
    "viewt2_2",
    "view_t3_1",
    "view_t3_2",
    "view_t3_3",
    "view_t3_4",
    "view_t3_5",
    "ballistic_pip_reticle1",
    "ballistic_pip_reticle2",
    "view_t4_1",
    "view_t4_2",
    "view_t4_3",
    "view_t4_4",
    "view_t4_5",
    "view_t4_6",
    "view_t4_7",
    "view_t4_8",
    "view_t5_1",
    "view_t5_2",
    "view_t5_3",
    "view_t5_4",
    "view_t5_5",
    "view_t5_6",
    "view_t5_7",
    "view_t5_8",
};

static const char* const kPipReticleElements[] = {
    "view_pip_reticle_1_1",
    "view_pip_reticle_2_1",
    "view_pip_reticle_2_2",
};

// Image names of the two markers: the toolkit is handed these buffers.
static char laser_image_name[128];
static char range_image_name[128];
static char reticle_img_name[128];

// ---- helpers ----

static widget_t* find(widget_t* win, const char* name) {
  return widget_lookup(win, name, TRUE);
}

static void set_bg(widget_t* win, const char* name, uint32_t color) {
  widget_set_style_color(find(win, name), "normal:bg_color", color);
}

static uint8_t setting(char v) {
  return static_cast<uint8_t>(v);
}

// Letter of a marker colour: 0 "w", 1 "r", 2 "g"; NULL for anything else.
static const char* marker_color_letter(uint8_t color) {
  switch (color) {
    case 0: return "w";
    case 1: return "r";
    case 2: return "g";
    default: return NULL;
  }
}

// "<prefix>_<type + 1>_<letter>.png" into `buffer` (cleared first) and onto the marker image.
// Marker types 0..2 and colours 0..2 are the ones the marker pages offer and the ones that have
// artwork; anything else leaves the image as it is, with a message.
static ret_t set_marker_image(widget_t* win, const char* widget_name, const char* prefix,
                              char* buffer, uint8_t type, uint8_t color, const char* func) {
  char letter[8];
  memset(letter, 0, sizeof(letter));
  const char* l = marker_color_letter(color);
  if (l == NULL || type > 2) {
    printf("%s: marker type %d colour %d has no image, %s left as it is\n", func, type, color,
           widget_name);
    return RET_BAD_PARAMS;
  }
  snprintf(letter, sizeof(letter), "%s", l);
  memset(buffer, 0, 128);
  snprintf(buffer, 128, "%s_%d_%s.png", prefix, type + 1, letter);
  image_set_image(find(win, widget_name), buffer);
  return RET_OK;
}

// ---- reticle shape, colour and brightness ----

ret_t on_Zavo_Reticle_switch(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  printf("stDevStatus.s8ReticleSwitch =%d\n", stDevStatus.s8ReticleSwitch);
  widget_set_visible(find(win, "view_reticle_shoot"), stDevStatus.s8ReticleSwitch != 0);
  widget_set_visible(find(win, "view_pip_reticle"),
                     stDevStatus.s8VideoMode == 3 && stDevStatus.s8ReticleSwitch == 1);
  return RET_OK;
}

ret_t on_reticle_type(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  for (int shape = 0; shape < RETICLE_SHAPE_COUNT; ++shape) {
    widget_set_visible(find(win, kReticleGroupName[shape]), FALSE);
  }
  const uint8_t type = setting(stDevStatus.s8ReticleType);
  if (type < RETICLE_SHAPE_COUNT) widget_set_visible(find(win, kReticleGroupName[type]), TRUE);
  return RET_OK;
}

// Colours `names` (views) with the first colour of the current scheme; schemes above 7 leave them.
static void first_color_views(widget_t* win, const char* const* names, size_t count) {
  const uint8_t scheme = setting(stDevStatus.s8ReticleColour);
  if (scheme >= kReticleFirstColor.size()) return;
  for (size_t i = 0; i < count; ++i)
    set_bg(win, names[i], kReticleFirstColor[scheme]);
}

static void first_color_numbered(widget_t* win, const char* format, int first, int last, int step,
                                 const char* style) {
  const uint8_t scheme = setting(stDevStatus.s8ReticleColour);
  if (scheme >= kReticleFirstColor.size()) return;
  char name[64];
  for (int n = first; n <= last; n += step) {
    snprintf(name, sizeof(name), format, n);
    widget_set_style_color(find(win, name), style, kReticleFirstColor[scheme]);
  }
}

ret_t on_Zavo_ReticleShoot2_color(widget_t* win) {
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  first_color_numbered(win, "view_reticle2_w_%d", 1, 20, 1, "normal:bg_color");
  first_color_numbered(win, "view_reticle2_h_%d", 1, 10, 1, "normal:bg_color");
  first_color_views(win, kShoot2ColorExtra, std::size(kShoot2ColorExtra));
  return RET_OK;
}

ret_t on_Zavo_ReticleShoot6_color(widget_t* win) {
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  first_color_numbered(win, "view_reticle6_w_%d", 1, 20, 1, "normal:bg_color");
  first_color_numbered(win, "view_reticle6_h_%d", 1, 7, 1, "normal:bg_color");
  first_color_numbered(win, "label_reticle6_%d", 2, 12, 2, "normal:text_color");
  return RET_OK;
}

ret_t on_Zavo_ReticleShoot7_color(widget_t* win) {
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  first_color_numbered(win, "view_reticle7_w_%d", 1, 12, 1, "normal:bg_color");
  first_color_numbered(win, "view_reticle7_h_%d", 1, 26, 1, "normal:bg_color");
  first_color_numbered(win, "label_reticle7_%d", 1, 4, 1, "normal:text_color");
  return RET_OK;
}

ret_t on_Zavo_ReticleShoot8_color(widget_t* win) {
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  first_color_numbered(win, "view_reticle8_w_%d", 1, 3, 1, "normal:bg_color");
  return RET_OK;
}

ret_t on_reticle_color(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  const uint8_t scheme = setting(stDevStatus.s8ReticleColour);

  first_color_views(win, kFirstColorElements, std::size(kFirstColorElements));
  if (scheme < kReticleFirstColor.size()) {
    widget_set_style_color(find(win, kFirstColorRing), "normal:border_color",
                           kReticleFirstColor[scheme]);
  }
  on_Zavo_ReticleShoot2_color(win);
  on_Zavo_ReticleShoot6_color(win);
  on_Zavo_ReticleShoot7_color(win);
  on_Zavo_ReticleShoot8_color(win);

  if (scheme <= 3) return RET_OK;
  // Two-colour schemes draw the centre marks in the second colour; values above 7 make them
  // vanish (transparent) while the rest keeps its colour.
  const uint32_t centre = scheme <= 7 ? kReticleSecondColor[scheme - 4] : RETICLE_COLOR_NONE;
  for (const char* name : kCentreElements)
    set_bg(win, name, centre);
  return RET_OK;
}

ret_t on_reticle_light(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  widget_t* reticle = find(win, "view_reticle_shoot");
  switch (setting(stDevStatus.s8ReticleBrightness)) {
    case 0: widget_set_opacity(reticle, 150); break;
    case 1: widget_set_opacity(reticle, 200); break;
    case 2: widget_set_opacity(reticle, 255); break;
    default: break;
  }
  return RET_OK;
}

// ---- aim point ----

ret_t ballistics_reticle_type(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  printf("stDevStatus.s8BallisticReticle ====%d\n", stDevStatus.s8BallisticReticle);
  for (int shape = 0; shape < AIM_SHAPE_COUNT; ++shape) {
    widget_set_visible(find(win, kReticleGroupName[GROUP_AIM1 + shape]), FALSE);
  }
  const uint8_t shape = setting(stDevStatus.s8BallisticReticle);
  if (shape < AIM_SHAPE_COUNT) {
    widget_set_visible(find(win, kReticleGroupName[GROUP_AIM1 + shape]), TRUE);
  }
  return RET_OK;
}

ret_t ballistics_reticle_color(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  const uint8_t color = setting(stDevStatus.s8BallisticReticleColor);
  if (color >= kMarkColor.size()) return RET_OK;
  for (const char* name : kAimPointElements)
    set_bg(win, name, kMarkColor[color]);
  return RET_OK;
}

// ---- picture-in-picture reticle and markers ----

ret_t on_pip_reticle_change(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  const bool first_shape = stDevStatus.s8PIPReticleType == 1;
  widget_set_visible(find(win, "view_pip_reticle_1_1"), first_shape);
  widget_set_visible(find(win, "view_pip_reticle_2_1"), !first_shape);
  widget_set_visible(find(win, "view_pip_reticle_2_2"), !first_shape);
  const uint8_t color = setting(stDevStatus.s8PIPReticleColor);
  if (color < kMarkColor.size()) {
    for (const char* name : kPipReticleElements) {
      widget_set_style_color(find(win, name), "normal:border_color", kMarkColor[color]);
    }
  }
  return RET_OK;
}

ret_t on_laser_reticle_change(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  return set_marker_image(win, "image_reticle_laser", "laser", laser_image_name,
                          setting(stDevStatus.s8LaserReticleType),
                          setting(stDevStatus.s8LaserReticleColor), __FUNCTION__);
}

ret_t on_range_reticle_change(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  return set_marker_image(win, "image_reticle_range", "LRF", range_image_name,
                          setting(stDevStatus.s8RangeReticleType),
                          setting(stDevStatus.s8RangeReticleColor), __FUNCTION__);
}

// ---- reticle image names ----

char* getReticleImgName(const char* dir) {
  log_return_value_if_fail(dir != NULL, NULL);
  int shape = 0;
  const uint8_t type = setting(stDevStatus.s8ReticleType);
  if (type >= 1 && type <= 4) {
    shape = type;
  } else {
    puts("GET_CURSOR_TYPE error !");
  }
  const char* letter = "";
  switch (setting(stDevStatus.s8ReticleColour)) {
    case 1: letter = "b"; break;
    case 2: letter = "w"; break;
    case 3: letter = "g"; break;
    case 4: letter = "r"; break;
    default: break;
  }
  memset(reticle_img_name, 0, sizeof(reticle_img_name));
  snprintf(reticle_img_name, sizeof(reticle_img_name), "%s/%d_%d_%s.png", dir,
           stDevStatus.s8IrSize != 0 ? 640 : 384, shape, letter);
  return reticle_img_name;
}
