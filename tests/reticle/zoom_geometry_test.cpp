// Zoom geometry of the eight reticle shapes and of the aim-point marks, driven through the home
// page's init and the zoom screen event (or a zoom frame from the device), read back from the
// widgets. Expected positions are worked out from the designed formulas by hand.
#include <map>

#include "reticle_fixture.h"

using reticle_test::Box;
using reticle_test::printed;
using reticle_test::ReticleTest;

namespace {

using Expected = std::map<std::string, Box>;

class ZoomGeometryTest : public ReticleTest {
 protected:
  // The observation screen with reticle `type`, then the zoom event at `hundredths`.
  void show(int type, int16_t hundredths) {
    stDevStatus.s8ReticleType = static_cast<char>(type);
    if (win_ == nullptr) open_home();
    stUIStatus.s8IRZoom = hundredths;
    screen_event(SCREEN_EVT_ZOOM);
  }
  void expect(const Expected& expected, const char* what) {
    for (const auto& [name, b] : expected)
      EXPECT_EQ(box(name.c_str()), b) << name << " " << what;
  }
};

TEST_F(ZoomGeometryTest, Shape0) {
  show(0, 100);
  expect({{"view_reticle_w_1", {765, 839, 62, 2}},
          {"view_reticle_w_2", {834, 839, 12, 2}},
          {"view_reticle_w_3", {853, 839, 62, 2}},
          {"view_reticle_h_2", {839, 840, 2, 6}},
          {"view_reticle_h_3", {839, 853, 2, 62}},
          {"view_reticle_h_1", {839, 839, 2, 2}}},
         "d=0");
  show(0, 200);  // the left arm at 690, 125 wide; the right arm at 866
  expect({{"view_reticle_w_1", {690, 839, 125, 2}},
          {"view_reticle_w_2", {827, 839, 25, 2}},
          {"view_reticle_w_3", {866, 839, 125, 2}},
          {"view_reticle_h_2", {839, 840, 2, 12}},
          {"view_reticle_h_3", {839, 866, 2, 125}},
          {"view_reticle_h_1", {839, 839, 2, 2}}},
         "d=1");
  show(0, 150);
  expect({{"view_reticle_w_1", {727, 839, 93, 2}},
          {"view_reticle_w_2", {830, 839, 18, 2}},
          {"view_reticle_w_3", {859, 839, 93, 2}},
          {"view_reticle_h_2", {839, 840, 2, 9}},
          {"view_reticle_h_3", {839, 859, 2, 93}}},
         "d=0.5");
}

TEST_F(ZoomGeometryTest, Shape1) {
  show(1, 100);
  expect({{"view_reticle3_w_1", {771, 839, 62, 2}},
          {"view_reticle3_w_3", {847, 839, 62, 2}},
          {"view_reticle3_h_1", {839, 847, 2, 62}},
          {"view_reticle3_w_2", {839, 839, 2, 2}}},
         "d=0");
  show(1, 200);
  expect({{"view_reticle3_w_1", {702, 839, 125, 2}},
          {"view_reticle3_w_3", {854, 839, 125, 2}},
          {"view_reticle3_h_1", {839, 854, 2, 125}},
          {"view_reticle3_w_2", {839, 839, 2, 2}}},
         "d=1");
  show(1, 150);
  expect({{"view_reticle3_w_1", {736, 839, 93, 2}},
          {"view_reticle3_w_3", {850, 839, 93, 2}},
          {"view_reticle3_h_1", {839, 850, 2, 93}}},
         "d=0.5");
}

TEST_F(ZoomGeometryTest, Shape2) {
  show(2, 100);
  expect({{"view_reticle4_w_1", {803, 839, 12, 2}},
          {"view_reticle4_w_2", {834, 839, 12, 2}},
          {"view_reticle4_w_3", {865, 839, 12, 2}},
          {"view_reticle4_h_2", {839, 865, 2, 12}},
          {"view_reticle4_h_1", {839, 834, 2, 12}},
          {"view_reticle4_wh_1", {815, 815, 50, 50}}},
         "d=0");
  show(2, 200);
  expect({{"view_reticle4_w_1", {765, 839, 25, 2}},
          {"view_reticle4_w_2", {827, 839, 25, 2}},
          {"view_reticle4_w_3", {890, 839, 25, 2}},
          {"view_reticle4_h_2", {839, 890, 2, 25}},
          {"view_reticle4_h_1", {839, 827, 2, 25}},
          {"view_reticle4_wh_1", {790, 790, 100, 100}}},
         "d=1");
  show(2, 150);
  expect({{"view_reticle4_w_1", {784, 839, 18, 2}},
          {"view_reticle4_w_2", {830, 839, 18, 2}},
          {"view_reticle4_w_3", {877, 839, 18, 2}},
          {"view_reticle4_h_2", {839, 877, 2, 18}},
          {"view_reticle4_h_1", {839, 830, 2, 18}},
          {"view_reticle4_wh_1", {802, 802, 75, 75}}},
         "d=0.5");
}

TEST_F(ZoomGeometryTest, Shape3GraduatedCross) {
  show(3, 100);
  expect({{"view_reticle2_w_1", {772, 839, 62, 2}},
          {"view_reticle2_w_2", {778, 832, 2, 16}},
          {"view_reticle2_w_3", {784, 836, 2, 8}},
          {"view_reticle2_w_10", {827, 836, 2, 8}},
          {"view_reticle2_w_11", {847, 839, 62, 2}},
          {"view_reticle2_w_15", {872, 832, 2, 16}},
          {"view_reticle2_w_20", {903, 832, 2, 16}},
          {"view_reticle2_h_1", {839, 847, 2, 62}},
          {"view_reticle2_h_2", {836, 853, 8, 2}},
          {"view_reticle2_h_5", {832, 872, 16, 2}},
          {"view_reticle2_h_10", {832, 903, 16, 2}}},
         "d=0");
  show(3, 200);
  expect({{"view_reticle2_w_1", {704, 839, 125, 2}},
          {"view_reticle2_w_2", {716, 824, 2, 32}},
          {"view_reticle2_w_3", {728, 832, 2, 16}},
          {"view_reticle2_w_11", {854, 839, 125, 2}},
          {"view_reticle2_w_15", {904, 824, 2, 32}},  // 872 + 32d
          {"view_reticle2_h_1", {839, 854, 2, 125}},
          {"view_reticle2_h_2", {832, 866, 16, 2}},
          {"view_reticle2_h_5", {824, 903, 32, 2}},  // 872 + 31d, one short of w_15
          {"view_reticle2_h_10", {824, 966, 32, 2}}},
         "d=1");
  // At zoom 1.5 a short tick is 8 + 4 = 12 high at y 834, a long one 16 + 8 = 24 at y 828.
  show(3, 150);
  expect({{"view_reticle2_w_1", {738, 839, 93, 2}},
          {"view_reticle2_w_2", {747, 828, 2, 24}},
          {"view_reticle2_w_3", {756, 834, 2, 12}},
          {"view_reticle2_w_11", {850, 839, 93, 2}},
          {"view_reticle2_w_15", {888, 828, 2, 24}},
          {"view_reticle2_h_2", {834, 859, 12, 2}},
          {"view_reticle2_h_5", {828, 887, 24, 2}}},
         "d=0.5");
  // Growth of a tick is rounded down to even pixels: at zoom 1.4, 8d = 3.2 grows a short tick by
  // 2, not 3, and 16d = 6.4 a long one by 6.
  show(3, 140);
  expect({{"view_reticle2_w_3", {761, 835, 2, 10}}, {"view_reticle2_w_2", {753, 829, 2, 22}}},
         "d=0.4");
}

TEST_F(ZoomGeometryTest, Shape4TruncatesOnlyTheHorizontalGrowth) {
  show(4, 100);
  expect({{"view_reticle5_w_1", {765, 839, 62, 2}},
          {"view_reticle5_w_2", {834, 839, 12, 2}},
          {"view_reticle5_w_3", {853, 839, 62, 2}},
          {"view_reticle5_h_1", {839, 765, 2, 62}},
          {"view_reticle5_h_2", {839, 834, 2, 12}},
          {"view_reticle5_h_3", {839, 853, 2, 62}}},
         "d=0");
  show(4, 200);
  expect({{"view_reticle5_w_1", {690, 839, 124, 2}},
          {"view_reticle5_w_2", {828, 839, 24, 2}},
          {"view_reticle5_w_3", {866, 839, 124, 2}},
          {"view_reticle5_h_1", {839, 690, 2, 125}},
          {"view_reticle5_h_2", {839, 828, 2, 25}},
          {"view_reticle5_h_3", {839, 866, 2, 125}}},
         "d=1");
  show(4, 150);
  expect({{"view_reticle5_w_1", {727, 839, 93, 2}},
          {"view_reticle5_w_2", {831, 839, 18, 2}},
          {"view_reticle5_w_3", {859, 839, 93, 2}},
          {"view_reticle5_h_1", {839, 727, 2, 93}},
          {"view_reticle5_h_2", {839, 831, 2, 18}},
          {"view_reticle5_h_3", {839, 859, 2, 93}}},
         "d=0.5");
  // At zoom 1.2 the two kinds differ: 12 + 12.5 against 12.5 + 2.5, 12 + 62.5 against 62.5 + 12.5.
  show(4, 120);
  EXPECT_EQ(box("view_reticle5_w_2").w, 14);
  EXPECT_EQ(box("view_reticle5_h_2").h, 15);
  EXPECT_EQ(box("view_reticle5_w_3").w, 74);
  EXPECT_EQ(box("view_reticle5_h_3").h, 75);
}

TEST_F(ZoomGeometryTest, Shape5) {
  show(5, 100);
  expect({{"view_reticle8_w_1", {827, 839, 6, 2}},
          {"view_reticle8_w_3", {847, 839, 6, 2}},
          {"view_reticle8_w_2", {839, 839, 2, 2}}},
         "d=0");
  show(5, 200);
  expect({{"view_reticle8_w_1", {814, 839, 12, 2}},
          {"view_reticle8_w_3", {854, 839, 12, 2}},
          {"view_reticle8_w_2", {839, 839, 2, 2}}},
         "d=1");
  show(5, 150);
  expect({{"view_reticle8_w_1", {820, 839, 9, 2}}, {"view_reticle8_w_3", {850, 839, 9, 2}}},
         "d=0.5");
}

TEST_F(ZoomGeometryTest, Shape6) {
  show(6, 100);
  expect({{"view_reticle6_w_1", {746, 839, 81, 2}},
          {"view_reticle6_w_2", {772, 836, 2, 8}},
          {"view_reticle6_w_11", {853, 839, 81, 2}},
          {"view_reticle6_h_1", {839, 853, 2, 81}},
          {"view_reticle6_wh_1", {838, 838, 4, 4}}},
         "d=0");
  show(6, 200);
  expect({{"view_reticle6_w_1", {652, 839, 162, 2}},
          {"view_reticle6_w_2", {704, 832, 2, 16}},
          {"view_reticle6_w_11", {866, 839, 162, 2}},
          {"view_reticle6_h_1", {839, 866, 2, 162}},
          {"view_reticle6_wh_1", {838, 838, 4, 4}}},
         "d=1");
  show(6, 150);
  expect({{"view_reticle6_w_1", {699, 839, 121, 2}}, {"view_reticle6_w_2", {738, 834, 2, 12}}},
         "d=0.5");
  // The numbers follow their ladder bars down, keeping their size.
  const Box two = box("label_reticle6_2");
  EXPECT_EQ(two.w, 20);
  EXPECT_EQ(two.h, 14);
  const Box bar = box("view_reticle6_h_2");
  EXPECT_NEAR(two.y + two.h / 2, bar.y + bar.h / 2, 1);
  EXPECT_GT(two.x, bar.x + bar.w);
}

TEST_F(ZoomGeometryTest, Shape7) {
  show(7, 100);
  expect({{"view_reticle7_w_1", {740, 838, 50, 4}},
          {"view_reticle7_w_2", {890, 838, 50, 4}},
          {"view_reticle7_h_1", {839, 839, 2, 2}}},
         "d=0");
  show(7, 200);
  expect({{"view_reticle7_w_1", {640, 838, 100, 4}},
          {"view_reticle7_w_2", {940, 838, 100, 4}},
          {"view_reticle7_h_2", {838, 640, 4, 100}},
          {"view_reticle7_h_1", {839, 839, 2, 2}}},
         "d=1");
  show(7, 150);
  expect({{"view_reticle7_w_1", {690, 838, 75, 4}}, {"view_reticle7_w_2", {915, 838, 75, 4}}},
         "d=0.5");
}

TEST_F(ZoomGeometryTest, LayingOutTwiceChangesNothingAndOnlyTheSelectedShapeMoves) {
  for (int type = 0; type < 8; ++type) {
    SCOPED_TRACE(type);
    show(type, 175);
    const std::string once = tk_testing_dump(w("view_reticle_shoot"));
    screen_event(SCREEN_EVT_ZOOM);
    EXPECT_EQ(tk_testing_dump(w("view_reticle_shoot")), once);
  }
  // The last zoom laid out shape 7 only: shape 0 is where the zoom of 1.75 left it, shape 3
  // where zoom 1.75 left it too, and a change of zoom now moves shape 7 and not shape 3.
  const Box shape3_arm = box("view_reticle2_w_1");
  stUIStatus.s8IRZoom = 300;
  screen_event(SCREEN_EVT_ZOOM);
  EXPECT_EQ(box("view_reticle2_w_1"), shape3_arm);
  EXPECT_EQ(box("view_reticle7_w_1"), (Box{540, 838, 150, 4}));
}

TEST_F(ZoomGeometryTest, ShapeFunctionsPrintTheirDInline0And1DoNot) {
  show(3, 100);
  stUIStatus.s8IRZoom = 150;
  std::string out = printed([&] { screen_event(SCREEN_EVT_ZOOM); });
  EXPECT_NE(out.find("zoom_value===============0.50\n\n\n"), std::string::npos) << out;
  EXPECT_NE(out.find("zoom_origin = 1.50\n"), std::string::npos) << out;
  stDevStatus.s8ReticleType = 0;
  out = printed([&] { screen_event(SCREEN_EVT_ZOOM); });
  EXPECT_EQ(out.find("zoom_value==============="), std::string::npos) << out;
}

TEST_F(ZoomGeometryTest, AimPointMarksMoveInDoublePrecision) {
  show(0, 100);
  expect({{"view_t4_1", {619, 638, 4, 4}},
          {"view_t4_2", {625, 638, 4, 4}},
          {"view_t4_3", {631, 638, 4, 4}},
          {"view_t4_6", {644, 638, 4, 4}},
          {"view_t4_7", {650, 638, 4, 4}},
          {"view_t4_8", {656, 638, 4, 4}},
          {"view_t5_1", {620, 639, 2, 2}},
          {"view_t5_8", {657, 639, 2, 2}}},
         "d=0");
  show(0, 200);
  expect({{"view_t4_1", {600, 638, 4, 4}},
          {"view_t4_2", {613, 638, 4, 4}},
          {"view_t4_3", {625, 638, 4, 4}},
          {"view_t4_4", {639, 637, 2, 6}},
          {"view_t4_5", {637, 639, 6, 2}},
          {"view_t4_6", {650, 638, 4, 4}},
          {"view_t4_7", {663, 638, 4, 4}},
          {"view_t4_8", {675, 638, 4, 4}},
          {"view_t5_1", {601, 639, 2, 2}},
          {"view_t5_3", {626, 639, 2, 2}},
          {"view_t5_6", {651, 639, 2, 2}},
          {"view_t5_8", {676, 639, 2, 2}}},
         "d=1");
  show(0, 150);
  expect({{"view_t4_1", {609, 638, 4, 4}},
          {"view_t4_3", {628, 638, 4, 4}},
          {"view_t4_6", {647, 638, 4, 4}},
          {"view_t5_1", {610, 639, 2, 2}}},
         "d=0.5");
}

TEST_F(ZoomGeometryTest, ZoomFrameFromTheDeviceRelaysTheScreen) {
  stDevStatus.s8ReticleType = 0;
  open_home();
  zoom_report(200);
  EXPECT_EQ(stUIStatus.s8IRZoom, 200);
  EXPECT_EQ(box("view_reticle_w_1"), (Box{690, 839, 125, 2}));
  EXPECT_EQ(text("label_zoom_value"), "6.0X");
  zoom_report(100);
  EXPECT_EQ(box("view_reticle_w_1"), (Box{765, 839, 62, 2}));
  EXPECT_EQ(text("label_zoom_value"), "3.0X");
  EXPECT_EQ(tk_testing_failed_lookups(), 0u)
      << ::testing::PrintToString(tk_testing_failed_lookup_names());
}

TEST_F(ZoomGeometryTest, InitLaysOutForTheZoomAlreadyReported) {
  stDevStatus.s8ReticleType = 3;
  stUIStatus.s8IRZoom = 200;
  open_home();
  EXPECT_EQ(box("view_reticle2_w_1"), (Box{704, 839, 125, 2}));
  EXPECT_EQ(text("label_zoom_value"), "6.0X");
  EXPECT_TRUE(shown("view_reticle_shoot2"));
}

}  // namespace
