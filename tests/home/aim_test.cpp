// The ballistic aim point, the range and laser markers and the hold-over read-outs: the scaling
// functions with their printed lines, then the observation screen driven by solutions and zooms
// from the device and by move events.
#include <limits>

#include "home_fixture.h"

namespace {

using home_test::Box;
using home_test::printed;

TEST(AimScaling, MovesScaleAboutTheCursorAndReportANegativeCorner) {
  int x = 0, y = 0;
  std::string out =
      printed([&] { EXPECT_EQ(Set_ZoomBallisticMove(&x, &y, 2.0f, 700, 900, 640, 512), 1); });
  EXPECT_EQ(out,
            "tmpBallisticY CursorY BallisticY zoomval 900  512 1288 2.000000 !!!!!!! \n"
            "tmpBallisticX CursorX BallisticX zoomval 700  640 760 2.000000 !!!!!!! \n");
  EXPECT_EQ(std::make_pair(x, y), std::make_pair(760 - 640, 1288 - 640));
  out = printed([&] { EXPECT_EQ(Set_ZoomBallisticMove(&x, &y, 1.0f, 700, 600, 640, 512), -1); });
  EXPECT_EQ(std::make_pair(x, y), std::make_pair(60, -40));  // written although negative
  EXPECT_NE(out.find("newBallistic (700 x 600) limit < 0,error!!!!!!! \n"), std::string::npos);
  // One rounding, as a fused multiply-add gives: (0 - 100) * 1.01f + 100 is -0.99999905, which
  // truncates to 0; rounding the product to float first would give -101 + 100 = -1.
  printed([&] { Set_ZoomBallisticMove(&x, &y, static_cast<float>(101 * 0.01), 0, 0, 100, 100); });
  EXPECT_EQ(std::make_pair(x, y), std::make_pair(-640, -640));

  out = printed([&] { EXPECT_EQ(Set_ZoomRangeMove(&x, &y, 2.0f, 700, 532, 640, 512), 1); });
  EXPECT_EQ(out, "==========zoomval: 200, Range (700 x 532), CursorX (640 x 512) \n");
  EXPECT_EQ(std::make_pair(x, y), std::make_pair(738, 530));
  out = printed([&] { EXPECT_EQ(Set_ZoomRangeMove(&x, &y, 2.0f, 100, 532, 640, 512), -1); });
  EXPECT_EQ(x, -462);
  EXPECT_NE(out.find("newRange (-440 x 552) limit < 0,error!!!!!!! \n"), std::string::npos) << out;
}

TEST(AimScaling, PipMoveAndKeepDecimalPlace) {
  int x = 0, y = 0;  // trunc(58 * 1.75 * 2 + 639) - 12, trunc(-46 * 1.75 * 2 + 292) - 12
  EXPECT_EQ(Set_Zoom_Pip_BallisticMove(&x, &y, 1.75f, 58, -46), 1);
  EXPECT_EQ(std::make_pair(x, y), std::make_pair(830, 119));
  // Half up to one decimal; -1.0 gives -9 tenths, read as the unsigned 16-bit 65527.
  const std::pair<float, float> kept[] = {
      {4.5f, 4.5f}, {3.14f, 3.1f},    {3.15f, 3.2f},
      {0.0f, 0.0f}, {-1.0f, 6552.7f}, {std::numeric_limits<float>::quiet_NaN(), 0.0f}};
  for (const auto& [v, k] : kept)
    EXPECT_FLOAT_EQ(Keep_decimal_place(v), k) << v;
}

class AimTest : public home_test::HomeTest {};

TEST_F(AimTest, NegativeAimPointCornerIsReportedAndStillApplied) {
  for (auto& group : IR_Cursor.group) {
    for (auto& zero : group.zero)
      zero.s8IrCursorCurrentY = 480;
  }
  result_ball.moveX = 10;
  result_ball.moveY = 6;
  open_home();
  stUIStatus.s8IRZoom = 200;
  const std::string out = printed([&] { screen_event(SCREEN_EVT_ZOOM); });
  EXPECT_EQ(box("image_point"), (Box{20, -172, 1280, 1280}));
  EXPECT_NE(out.find("newBallistic (660 x 468) limit < 0,error!!!!!!! \n"), std::string::npos);
  solution_report(0.0f, 3.44f);  // a new solution at that zoom: 1 mrad right, 12 pixels at zoom 2
  EXPECT_EQ(box("image_point"), (Box{12, -160, 1280, 1280}));
}

TEST_F(AimTest, MarkersParkOutsideTheXRangeAtZoomOneAndScaleWithoutItOnZoom) {
  stDevStatus.s16RangeOffsetX = 700;
  stDevStatus.s16RangeOffsetY = 532;
  stDevStatus.s16LaserIndicatX = 300;  // outside 341..939: parked at zoom 1 only
  stDevStatus.s16LaserIndicatY = 500;
  open_home();
  EXPECT_EQ(box("image_reticle_range"), (Box{678, 510, 44, 44}));
  EXPECT_EQ(box("image_reticle_laser"), (Box{278, 478, 44, 44}));  // init's zoom tail moved it
  std::string out = printed([&] { screen_event(SCREEN_EVT_LASER_MARKER_MOVE); });
  EXPECT_EQ(box("image_reticle_laser"), (Box{618, 618, 44, 44}));
  EXPECT_NE(out.find("stDevStatus.s16LaserIndicatX=== 300 stDevStatus.s16LaserIndicatY===500\n"),
            std::string::npos);
  stUIStatus.s8IRZoom = 200;
  screen_event(SCREEN_EVT_ZOOM);
  EXPECT_EQ(box("image_reticle_range"), (Box{738, 530, 44, 44}));
  EXPECT_EQ(box("image_reticle_laser"), (Box{-62, 466, 44, 44}));  // 300 - 340 * 2 - 22

  // The range marker's X in 341..939 (as a 16-bit quantity: -100 is 65436); Y is not checked.
  const std::tuple<int16_t, int16_t, Box> range[] = {{340, 512, {618, 618, 44, 44}},
                                                     {341, 512, {319, 490, 44, 44}},
                                                     {939, 2000, {917, 1978, 44, 44}},
                                                     {940, 512, {618, 618, 44, 44}},
                                                     {-100, 512, {618, 618, 44, 44}}};
  for (const auto& [x, y, expected] : range) {
    stDevStatus.s16RangeOffsetX = x;
    stDevStatus.s16RangeOffsetY = y;
    out = printed([&] { screen_event(SCREEN_EVT_RANGE_MARKER_MOVE); });
    EXPECT_EQ(box("image_reticle_range"), expected) << x;
    EXPECT_EQ(out, "stDevStatus.s16RangeOffsetX=== " + std::to_string(x) +
                       " stDevStatus.s16RangeOffsetY===" + std::to_string(y) + "\n");
  }
  EXPECT_EQ(box("image_reticle_laser"), (Box{-62, 466, 44, 44}));  // untouched
}

TEST_F(AimTest, ReticleFollowsTheActiveZeroAndCarriesTheAimPointAtZoom1) {
  open_home();
  IR_Cursor.u8CurrentGroup = 2;
  IR_Cursor.group[2].u8CurrentZero = 3;
  IR_Cursor.group[2].zero[3].s8IrCursorCurrentX = 700;
  IR_Cursor.group[2].zero[3].s8IrCursorCurrentY = 400;
  result_ball.moveX = 10;
  result_ball.moveY = 6;
  stUIStatus.s8IRZoom = 200;  // ignored by the move: zoom 1
  const std::string out = printed([&] { screen_event(SCREEN_EVT_RETICLE_MOVE); });
  EXPECT_EQ(box("view_reticle_shoot"), (Box{-140, -440, 1680, 1680}));
  EXPECT_EQ(box("image_point"), (Box{70, -246, 1280, 1280}));
  EXPECT_NE(out.find("reticle_value_x =700\n reticle_value_y =400\n"), std::string::npos) << out;
  EXPECT_NE(out.find("Set_ZoomBallisticMove=======on_reticle_move\n"), std::string::npos);
  // The reticle's centre column lies on the cursor: the group's column 839 is screen x 699.
  EXPECT_EQ(tk_testing_screen_rect(w("view_reticle_h_1")).x, 699);

  // Zero indices outside the 5 x 5 table leave the reticle where it is, with a message.
  for (int group : {7, 1}) {
    IR_Cursor.u8CurrentGroup = static_cast<uint8_t>(group);
    IR_Cursor.group[1].u8CurrentZero = 5;
    const std::string bad = printed([&] { screen_event(SCREEN_EVT_RETICLE_MOVE); });
    EXPECT_EQ(box("view_reticle_shoot"), (Box{-140, -440, 1680, 1680}));
    EXPECT_NE(bad.find("outside the 5 x 5 table"), std::string::npos) << bad;
  }
}

TEST_F(AimTest, SolutionFromTheDeviceMovesTheAimPointAndFillsTheHoldOvers) {
  info[0].ballistics_sw = 1;
  open_home();
  const std::string out = printed([&] { solution_report(3.44f, 0.0f); });
  EXPECT_NEAR(result_ball.mradV, 1.0, 1e-6);
  EXPECT_EQ(result_ball.moveY, 6);
  EXPECT_EQ(result_ball.moveX, 0);
  EXPECT_EQ(text("label_MOA_V") + text("label_MOA_H") + text("label_MARD_V") + text("label_MARD_H"),
            "U3.44L0.00U1.00L0.00");
  EXPECT_TRUE(shown("view_ballistics") && shown("view_bg_ballistic"));
  EXPECT_EQ(box("image_point"), (Box{0, -134, 1280, 1280}));  // 6 pixels above (640, 512)
  EXPECT_NE(out.find("Set_ZoomBallisticMove=======ballistic\n"), std::string::npos) << out;

  solution_report(-2.5f, 1.72f);
  EXPECT_EQ(text("label_MOA_V") + text("label_MOA_H") + text("label_MARD_V") + text("label_MARD_H"),
            "D2.50R1.72D0.73R0.50");
  EXPECT_EQ(result_ball.moveX, 3);   // trunc(0.5 * 6.25)
  EXPECT_EQ(result_ball.moveY, -4);  // trunc(-0.7267 * 6.25)
  EXPECT_EQ(box("image_point"), (Box{3, -124, 1280, 1280}));

  // A solution that is not a number is refused; an absurd finite one lands far off screen.
  const std::string nan =
      printed([&] { solution_report(std::numeric_limits<float>::quiet_NaN(), 1.0f); });
  EXPECT_EQ(box("image_point"), (Box{3, -124, 1280, 1280}));
  EXPECT_NE(nan.find("solution is not a number"), std::string::npos) << nan;
  solution_report(3.0e38f, -3.0e38f);
  EXPECT_LT(box("image_point").y, -100000);
  EXPECT_LT(box("image_point").x, -100000);
}

TEST_F(AimTest, HoldOverPanelFollowsTheFirstProfileAndHidesWhileRanging) {
  info[2].ballistics_sw = 1;
  stDevStatus.s8BallisticGroup = 2;  // the current profile is not the one consulted
  open_home();
  solution_report(1.0f, 1.0f);
  EXPECT_FALSE(shown("view_ballistics") || shown("view_bg_ballistic"));
  info[0].ballistics_sw = 1;
  solution_report(1.0f, 1.0f);
  EXPECT_TRUE(shown("view_ballistics") && shown("view_bg_ballistic"));
  stUIStatus.s8RangeMode = 3;  // continuous ranging: the panel goes, nothing else changes
  const Box aim = box("image_point");
  solution_report(20.0f, -20.0f);
  EXPECT_FALSE(shown("view_ballistics") || shown("view_bg_ballistic"));
  EXPECT_EQ(box("image_point"), aim);
  EXPECT_EQ(text("label_MOA_V"), "U1.00");
}

// The PIP aim point's bounds differ on purpose: 832 and 444 after a solution, 820 and 432 after
// a zoom refresh.
TEST_F(AimTest, PipAimPointBetweenTheBoundsShowsAfterASolutionAndHidesOnZoom) {
  stDevStatus.s8VideoMode = 3;
  stUIStatus.s8IRZoom = 175;
  open_home();
  EXPECT_EQ(box("view_ballistic_pip_reticle"), (Box{627, 280, 24, 24}));
  EXPECT_TRUE(shown("view_ballistic_pip_reticle"));
  const struct {
    float moa_v, moa_h;
    Box box;
  } cases[] = {{0.0f, 32.0f, {830, 280, 24, 24}},      // 9.30 mrad right: 58 pixels, x 830
               {-25.456f, 0.0f, {627, 441, 24, 24}}};  // 7.40 mrad down: 46 pixels, y 441
  for (const auto& c : cases) {
    solution_report(c.moa_v, c.moa_h);
    EXPECT_EQ(box("view_ballistic_pip_reticle"), c.box);
    EXPECT_TRUE(shown("view_ballistic_pip_reticle"));
    screen_event(SCREEN_EVT_ZOOM);
    EXPECT_EQ(box("view_ballistic_pip_reticle"), c.box);
    EXPECT_FALSE(shown("view_ballistic_pip_reticle"));
  }
  stDevStatus.s8VideoMode = 0;  // without the PIP view it never shows
  solution_report(0.0f, 0.0f);
  EXPECT_FALSE(shown("view_ballistic_pip_reticle"));
}

}  // namespace
