// Zoom geometry of the eight reticle shapes and of the aim-point marks, laid out by the zoom
// screen event (or a zoom frame from the device) on the opened observation screen and read back
// from the widgets. Expected boxes are worked out by hand from the designed formulas.
#include "home_fixture.h"

namespace {

using home_test::Box;
using home_test::printed;

class ZoomTest : public home_test::HomeTest {
 protected:
  void SetUp() override {
    HomeTest::SetUp();
    open_home();
  }
  void zoom(int type, int16_t hundredths) {
    stDevStatus.s8ReticleType = static_cast<char>(type);
    stUIStatus.s8IRZoom = hundredths;
    screen_event(SCREEN_EVT_ZOOM);
  }
};

struct Row {
  int type;
  int16_t zoom;
  const char* name;
  Box box;
};

// (x, y, w, h) of elements at zoom 1 (d = 0), 2 (d = 1) and 1.5 (d = 0.5), with a few odd zooms
// where the truncations of a shape differ.
const Row GEOMETRY[] = {
    // Shape 0: at zoom 2 the left arm lies at x 690 with width 125, the right arm at x 866.
    {0, 100, "view_reticle_w_1", {765, 839, 62, 2}},
    {0, 200, "view_reticle_w_1", {690, 839, 125, 2}},
    {0, 200, "view_reticle_w_2", {827, 839, 25, 2}},
    {0, 200, "view_reticle_w_3", {866, 839, 125, 2}},
    {0, 200, "view_reticle_h_2", {839, 840, 2, 12}},
    {0, 200, "view_reticle_h_3", {839, 866, 2, 125}},
    {0, 150, "view_reticle_w_1", {727, 839, 93, 2}},
    {1, 100, "view_reticle3_w_1", {771, 839, 62, 2}},
    {1, 200, "view_reticle3_w_1", {702, 839, 125, 2}},
    {1, 200, "view_reticle3_w_3", {854, 839, 125, 2}},
    {1, 200, "view_reticle3_h_1", {839, 854, 2, 125}},
    {1, 150, "view_reticle3_w_3", {850, 839, 93, 2}},
    {2, 100, "view_reticle4_wh_1", {815, 815, 50, 50}},
    {2, 200, "view_reticle4_w_1", {765, 839, 25, 2}},
    {2, 200, "view_reticle4_w_3", {890, 839, 25, 2}},
    {2, 200, "view_reticle4_h_1", {839, 827, 2, 25}},
    {2, 200, "view_reticle4_wh_1", {790, 790, 100, 100}},
    {2, 150, "view_reticle4_w_1", {784, 839, 18, 2}},
    // Shape 3: at zoom 1.5 a short tick is 8 + 4 = 12 high at y 834, a long one 16 + 8 = 24 at
    // y 828; at 1.4 the growth 3.2 of a short tick is rounded down to even: 2.
    {3, 100, "view_reticle2_w_2", {778, 832, 2, 16}},
    {3, 200, "view_reticle2_w_1", {704, 839, 125, 2}},
    {3, 200, "view_reticle2_w_2", {716, 824, 2, 32}},
    {3, 200, "view_reticle2_w_3", {728, 832, 2, 16}},
    {3, 200, "view_reticle2_w_15", {904, 824, 2, 32}},
    {3, 200, "view_reticle2_h_5", {824, 903, 32, 2}},  // 872 + 31d, one short of w_15
    {3, 150, "view_reticle2_w_2", {747, 828, 2, 24}},
    {3, 150, "view_reticle2_w_3", {756, 834, 2, 12}},
    {3, 140, "view_reticle2_w_3", {761, 835, 2, 10}},
    {3, 140, "view_reticle2_w_2", {753, 829, 2, 22}},
    // Shape 4: the horizontal growth is truncated before the base length is added.
    {4, 100, "view_reticle5_h_1", {839, 765, 2, 62}},
    {4, 200, "view_reticle5_w_1", {690, 839, 124, 2}},
    {4, 200, "view_reticle5_w_2", {828, 839, 24, 2}},
    {4, 200, "view_reticle5_h_1", {839, 690, 2, 125}},
    {4, 200, "view_reticle5_h_2", {839, 828, 2, 25}},
    {4, 150, "view_reticle5_h_1", {839, 727, 2, 93}},
    {4, 120, "view_reticle5_w_2", {832, 839, 14, 2}},
    {4, 120, "view_reticle5_h_2", {839, 832, 2, 15}},
    {4, 120, "view_reticle5_w_3", {855, 839, 74, 2}},
    {4, 120, "view_reticle5_h_3", {839, 855, 2, 75}},
    {5, 100, "view_reticle8_w_1", {827, 839, 6, 2}},
    {5, 200, "view_reticle8_w_1", {814, 839, 12, 2}},
    {5, 200, "view_reticle8_w_3", {854, 839, 12, 2}},
    {5, 150, "view_reticle8_w_3", {850, 839, 9, 2}},
    // Shapes 6 and 7: the given arms, first tick and bars.
    {6, 100, "view_reticle6_w_1", {746, 839, 81, 2}},
    {6, 200, "view_reticle6_w_1", {652, 839, 162, 2}},
    {6, 200, "view_reticle6_w_2", {704, 832, 2, 16}},
    {6, 200, "view_reticle6_h_1", {839, 866, 2, 162}},
    {6, 200, "view_reticle6_wh_1", {838, 838, 4, 4}},
    {6, 150, "view_reticle6_w_1", {699, 839, 121, 2}},
    {7, 100, "view_reticle7_w_2", {890, 838, 50, 4}},
    {7, 200, "view_reticle7_w_1", {640, 838, 100, 4}},
    {7, 200, "view_reticle7_w_2", {940, 838, 100, 4}},
    {7, 200, "view_reticle7_w_3", {740, 839, 87, 2}},
    {7, 150, "view_reticle7_w_1", {690, 838, 75, 4}},
    // Aim-point hold marks (moved in double precision, never resized), here with shape 0.
    {0, 100, "view_t4_1", {619, 638, 4, 4}},
    {0, 200, "view_t4_1", {600, 638, 4, 4}},
    {0, 200, "view_t4_4", {639, 637, 2, 6}},
    {0, 200, "view_t4_8", {675, 638, 4, 4}},
    {0, 200, "view_t5_1", {601, 639, 2, 2}},
    {0, 150, "view_t4_1", {609, 638, 4, 4}},
};

TEST_F(ZoomTest, EveryShapeAtZoomOneTwoAndOneAndAHalf) {
  for (const Row& r : GEOMETRY) {
    if (r.type != stDevStatus.s8ReticleType || r.zoom != stUIStatus.s8IRZoom) zoom(r.type, r.zoom);
    EXPECT_EQ(box(r.name), r.box) << r.name << " type " << r.type << " zoom " << r.zoom;
  }
}

TEST_F(ZoomTest, LayingOutTwiceChangesNothingAndOnlyTheSelectedShapeMoves) {
  for (int type = 0; type < 8; ++type) {
    zoom(type, 175);
    const std::string once = tk_testing_dump(w("view_reticle_shoot"));
    screen_event(SCREEN_EVT_ZOOM);
    EXPECT_EQ(tk_testing_dump(w("view_reticle_shoot")), once) << type;
  }
  const Box shape3_arm = box("view_reticle2_w_1");
  zoom(7, 300);
  EXPECT_EQ(box("view_reticle2_w_1"), shape3_arm);
  EXPECT_EQ(box("view_reticle7_w_1"), (Box{540, 838, 150, 4}));
}

// Zoom frames from the device (type 1, INFRARED_ZOOM, hundredths little-endian) through the link.
TEST_F(ZoomTest, ZoomFramesReadOutsAndTheFloorAt104) {
  const struct {
    int16_t zoom;
    char video_mode, reticle_move;
    const char *label, *pip_label;
    int arm_x;  // of shape 0's left arm: 765 - 75d
  } steps[] = {
      {101, 0, 0, "3.1X", "3.0X", 762},  // 1.04 x 3, not 1.01 x 3
      {100, 0, 0, "3.0X", "3.0X", 765}, {150, 0, 0, "4.5X", "3.0X", 727},
      {150, 3, 0, "3.0X", "9.0X", 765},  // PIP on: the main picture stays at 1
      {200, 3, 1, "3.0X", "6.0X", 765},  // the reticle-moving page
      {0, 0, 0, "3.0X", "3.0X", 765},    // no zoom reported: 1.00, not "0.0X"
  };
  stDevStatus.s8ReticleType = 0;
  for (const auto& s : steps) {
    stDevStatus.s8VideoMode = s.video_mode;
    stUIStatus.s8Enter_reticle_move = s.reticle_move;
    from_device(
        home_test::device_frame(1, 0, INFRARED_ZOOM, {uint8_t(s.zoom), uint8_t(s.zoom >> 8)}));
    EXPECT_EQ(stUIStatus.s8IRZoom, s.zoom);
    EXPECT_EQ(text("label_zoom_value"), s.label) << s.zoom;
    EXPECT_EQ(text("label_PIP_zoom_value"), s.pip_label) << s.zoom;
    EXPECT_EQ(box("view_reticle_w_1").x, s.arm_x) << s.zoom;
    for (const char* pip : {"label_PIP_zoom_value", "view_pip_border"})
      EXPECT_EQ(shown(pip), s.video_mode == 3) << pip << " " << s.zoom;
  }
}

// Every zoomed element of the table keeps its angular meaning: a length L0 becomes about
// L0 * (1 + d), the end nearest the centre (840, 840) stays at a distance growing in proportion,
// line widths stay. Within the truncations (2 pixels), for d = 1 and 0.5.
TEST_F(ZoomTest, ShapeFunctionsPrintTheirD) {
  stUIStatus.s8IRZoom = 150;
  for (int type = 2; type < 8; ++type) {
    stDevStatus.s8ReticleType = static_cast<char>(type);
    const std::string out = printed([&] { screen_event(SCREEN_EVT_ZOOM); });
    EXPECT_NE(out.find("zoom_origin = 1.50\n"), std::string::npos) << out;
    EXPECT_NE(out.find("zoom_value===============0.50\n\n\n"), std::string::npos) << type;
  }
}

TEST(ReticleZoomRule, EveryShapeScalesAboutTheCentre) {
  const float c = 840.0f;
  for (const ReticleElement& e : reticle_elements()) {
    if (e.group >= GROUP_AIM1 || e.zoom == ZOOM_FIXED) continue;
    for (float d : {1.0f, 0.5f}) {
      const ReticleCoord* pos[2] = {&e.x, &e.y};
      const ReticleCoord* size[2] = {&e.w, &e.h};
      for (int axis = 0; axis < 2; ++axis) {
        const float p0 = reticle_coord_at(*pos[axis], 0.0f),
                    s0 = reticle_coord_at(*size[axis], 0.0f);
        const float p = reticle_coord_at(*pos[axis], d), s = reticle_coord_at(*size[axis], d);
        SCOPED_TRACE(std::string(e.name) + (axis == 0 ? " x" : " y") + " d=" + std::to_string(d));
        if (e.kind == ELEMENT_LABEL && axis == 0) {  // a number right of its mark: its left edge
          EXPECT_EQ(s, s0);
          EXPECT_NEAR(p - c, (p0 - c) * (1 + d), 2.0f);
        } else if (s == s0) {  // a line width or a number's height: its centre follows
          EXPECT_LE(s0, 20.0f);
          EXPECT_NEAR(p + s / 2 - c, (p0 + s0 / 2 - c) * (1 + d), 2.0f);
        } else {
          EXPECT_NEAR(s, s0 * (1 + d), 2.0f);
          if (p0 < c && p0 + s0 > c) {  // across the centre: stays centred
            EXPECT_NEAR(p + s / 2 - c, (p0 + s0 / 2 - c) * (1 + d), 2.0f);
          } else if (p0 + s0 <= c) {  // left or above: the near end is the far side of the box
            EXPECT_NEAR(p + s - c, (p0 + s0 - c) * (1 + d), 2.0f);
          } else {
            EXPECT_NEAR(p - c, (p0 - c) * (1 + d), 2.0f);
          }
        }
      }
    }
  }
}

}  // namespace
