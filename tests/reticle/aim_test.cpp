// The ballistic aim point, the range and laser markers, the zoom step and the hold-over read-outs,
// driven through the home page: solutions and zooms as frames from the device, moves and zoom
// refreshes as screen events.
#include <cmath>
#include <limits>

#include "reticle_fixture.h"

using reticle_test::Box;
using reticle_test::printed;
using reticle_test::ReticleTest;

namespace {

class AimTest : public ReticleTest {};

// ---- the scaling functions ----

TEST(AimScaling, BallisticMoveScalesAboutTheCursorAndReportsANegativeCorner) {
  int x = 0, y = 0;
  std::string out =
      printed([&] { EXPECT_EQ(Set_ZoomBallisticMove(&x, &y, 2.0f, 700, 900, 640, 512), 1); });
  EXPECT_EQ(x, 760 - 640);   // 60 * 2 + 640
  EXPECT_EQ(y, 1288 - 640);  // 388 * 2 + 512
  EXPECT_EQ(out,
            "tmpBallisticY CursorY BallisticY zoomval 900  512 1288 2.000000 !!!!!!! \n"
            "tmpBallisticX CursorX BallisticX zoomval 700  640 760 2.000000 !!!!!!! \n");
  out = printed([&] { EXPECT_EQ(Set_ZoomBallisticMove(&x, &y, 1.0f, 700, 600, 640, 512), -1); });
  EXPECT_EQ(x, 60);
  EXPECT_EQ(y, -40);  // written although negative
  EXPECT_NE(out.find("newBallistic (700 x 600) limit < 0,error!!!!!!! \n"), std::string::npos)
      << out;
}

// One rounding, as a fused multiply-add gives: (0 - 100) * 1.01f + 100 is -0.99999905 exactly,
// which stays above -1 when rounded once; rounding the product first would give -101 + 100 = -1.
TEST(AimScaling, BallisticMoveRoundsOnceInSinglePrecision) {
  const float zoom = static_cast<float>(101 * 0.01);
  const double exact = -100.0 * static_cast<double>(zoom) + 100.0;  // exact in double
  const int once = static_cast<int>(static_cast<float>(exact));
  ASSERT_EQ(once, 0);
  int x = 0, y = 0;
  printed([&] { Set_ZoomBallisticMove(&x, &y, zoom, 0, 0, 100, 100); });
  EXPECT_EQ(x, once - 640);
  EXPECT_EQ(y, once - 640);
}

TEST(AimScaling, RangeMoveCentresA44PixelMarker) {
  int x = 0, y = 0;
  std::string out =
      printed([&] { EXPECT_EQ(Set_ZoomRangeMove(&x, &y, 2.0f, 700, 532, 640, 512), 1); });
  EXPECT_EQ(x, 738);
  EXPECT_EQ(y, 530);
  EXPECT_EQ(out, "==========zoomval: 200, Range (700 x 532), CursorX (640 x 512) \n");
  out = printed([&] { EXPECT_EQ(Set_ZoomRangeMove(&x, &y, 2.0f, 100, 532, 640, 512), -1); });
  EXPECT_EQ(x, -462);
  EXPECT_NE(out.find("newRange (-440 x 552) limit < 0,error!!!!!!! \n"), std::string::npos) << out;
}

TEST(AimScaling, PipMoveMagnifiesTwiceAboutTheInsetCentre) {
  int x = 0, y = 0;
  EXPECT_EQ(Set_Zoom_Pip_BallisticMove(&x, &y, 1.0f, 0, 0), 1);
  EXPECT_EQ(x, 627);
  EXPECT_EQ(y, 280);
  EXPECT_EQ(Set_Zoom_Pip_BallisticMove(&x, &y, 1.75f, 58, -46), 1);
  EXPECT_EQ(x, 830);  // trunc(58 * 3.5 + 639) - 12
  EXPECT_EQ(y, 119);  // trunc(-161 + 292) - 12
  EXPECT_EQ(Set_Zoom_Pip_BallisticMove(&x, &y, 1.5f, 3, 1), 1);
  EXPECT_EQ(x, 636);
  EXPECT_EQ(y, 283);
}

TEST(AimScaling, KeepDecimalPlaceRoundsHalfUpToOneDecimal) {
  EXPECT_FLOAT_EQ(Keep_decimal_place(4.5f), 4.5f);
  EXPECT_FLOAT_EQ(Keep_decimal_place(3.14f), 3.1f);
  EXPECT_FLOAT_EQ(Keep_decimal_place(3.15f), 3.2f);
  EXPECT_FLOAT_EQ(Keep_decimal_place(3.12f), 3.1f);
  EXPECT_FLOAT_EQ(Keep_decimal_place(0.0f), 0.0f);
  // The tenths are taken as an unsigned 16-bit value: -1.0 gives -9 tenths, read as 65527.
  EXPECT_FLOAT_EQ(Keep_decimal_place(-1.0f), 6552.7f);
  EXPECT_FLOAT_EQ(Keep_decimal_place(std::numeric_limits<float>::quiet_NaN()), 0.0f);
}

// ---- the zoom step ----

TEST_F(AimTest, FirstZoomStepAboveOneReadsAtLeast104) {
  open_home();
  stUIStatus.s8IRZoom = 101;
  std::string out = printed([&] { screen_event(SCREEN_EVT_ZOOM); });
  EXPECT_NE(out.find("zoom_origin = 1.01\n"), std::string::npos) << out;
  EXPECT_EQ(text("label_zoom_value"), "3.1X");  // 1.04 * 3, not 1.01 * 3
  EXPECT_EQ(box("view_reticle_w_1").x, 762);    // 765 - 75 * 0.04
  stUIStatus.s8IRZoom = 100;
  screen_event(SCREEN_EVT_ZOOM);
  EXPECT_EQ(text("label_zoom_value"), "3.0X");
  EXPECT_EQ(box("view_reticle_w_1").x, 765);
  stUIStatus.s8IRZoom = 150;
  screen_event(SCREEN_EVT_ZOOM);
  EXPECT_EQ(text("label_zoom_value"), "4.5X");
  EXPECT_FALSE(shown("label_PIP_zoom_value"));
  EXPECT_FALSE(shown("view_pip_border"));
  EXPECT_FALSE(shown("view_ballistic_pip_reticle"));
}

TEST_F(AimTest, PipViewKeepsTheMainPictureUnmagnified) {
  stDevStatus.s8VideoMode = 3;
  stUIStatus.s8IRZoom = 150;
  open_home();
  EXPECT_EQ(text("label_zoom_value"), "3.0X");
  EXPECT_EQ(text("label_PIP_zoom_value"), "9.0X");
  EXPECT_TRUE(shown("label_PIP_zoom_value"));
  EXPECT_TRUE(shown("view_pip_border"));
  EXPECT_TRUE(shown("view_ballistic_pip_reticle"));
  EXPECT_EQ(box("view_reticle_w_1"), (Box{765, 839, 62, 2}));  // laid out for m = 1
  EXPECT_EQ(box("view_ballistic_pip_reticle"), (Box{627, 280, 24, 24}));
  // The reticle-moving page forces the read-outs to 6.0X and 3.0X.
  stUIStatus.s8Enter_reticle_move = 1;
  stDevStatus.s8VideoMode = 0;
  stUIStatus.s8IRZoom = 200;
  screen_event(SCREEN_EVT_ZOOM);
  EXPECT_EQ(text("label_PIP_zoom_value"), "6.0X");
  EXPECT_EQ(text("label_zoom_value"), "3.0X");
  EXPECT_EQ(box("view_reticle_w_1"), (Box{765, 839, 62, 2}));
}

TEST_F(AimTest, NegativeAimPointCornerIsReportedAndStillApplied) {
  set_cursor(640, 480);
  result_ball.moveX = 10;
  result_ball.moveY = 6;
  open_home();
  stUIStatus.s8IRZoom = 200;
  std::string out = printed([&] { screen_event(SCREEN_EVT_ZOOM); });
  EXPECT_EQ(box("image_point"), (Box{20, -172, 1280, 1280}));
  EXPECT_NE(out.find("newBallistic (660 x 468) limit < 0,error!!!!!!! \n"), std::string::npos)
      << out;
}

TEST_F(AimTest, ZoomMovesTheMarkersAboutTheCursorWithoutTheRangeCheck) {
  stDevStatus.s16RangeOffsetX = 700;
  stDevStatus.s16RangeOffsetY = 532;
  stDevStatus.s16LaserIndicatX = 300;  // outside 341..939: parked at zoom 1 only
  stDevStatus.s16LaserIndicatY = 500;
  open_home();
  EXPECT_EQ(box("image_reticle_range"), (Box{678, 510, 44, 44}));
  EXPECT_EQ(box("image_reticle_laser"), (Box{278, 478, 44, 44}));  // init's zoom tail moved it
  screen_event(SCREEN_EVT_LASER_MARKER_MOVE);
  EXPECT_EQ(box("image_reticle_laser"), (Box{618, 618, 44, 44}));
  stUIStatus.s8IRZoom = 200;
  screen_event(SCREEN_EVT_ZOOM);
  EXPECT_EQ(box("image_reticle_range"), (Box{738, 530, 44, 44}));
  EXPECT_EQ(box("image_reticle_laser"), (Box{-62, 466, 44, 44}));  // 300 - 340 * 2 - 22
}

// ---- markers at zoom 1 ----

TEST_F(AimTest, RangeMarkerOutsideTheXRangeIsParkedAtTheCentre) {
  open_home();
  stDevStatus.s16RangeOffsetX = 340;
  stDevStatus.s16RangeOffsetY = 512;
  std::string out = printed([&] { screen_event(SCREEN_EVT_RANGE_MARKER_MOVE); });
  EXPECT_EQ(box("image_reticle_range"), (Box{618, 618, 44, 44}));
  EXPECT_NE(out.find("stDevStatus.s16RangeOffsetX=== 340 stDevStatus.s16RangeOffsetY===512\n"),
            std::string::npos)
      << out;
  stDevStatus.s16RangeOffsetX = 341;
  screen_event(SCREEN_EVT_RANGE_MARKER_MOVE);
  EXPECT_EQ(box("image_reticle_range"), (Box{319, 490, 44, 44}));
  stDevStatus.s16RangeOffsetX = 939;
  stDevStatus.s16RangeOffsetY = 2000;  // Y is not checked
  screen_event(SCREEN_EVT_RANGE_MARKER_MOVE);
  EXPECT_EQ(box("image_reticle_range"), (Box{917, 1978, 44, 44}));
  stDevStatus.s16RangeOffsetX = 940;
  screen_event(SCREEN_EVT_RANGE_MARKER_MOVE);
  EXPECT_EQ(box("image_reticle_range"), (Box{618, 618, 44, 44}));
  stDevStatus.s16RangeOffsetX = -100;  // 65436 as a 16-bit quantity
  screen_event(SCREEN_EVT_RANGE_MARKER_MOVE);
  EXPECT_EQ(box("image_reticle_range"), (Box{618, 618, 44, 44}));
}

TEST_F(AimTest, LaserMarkerFollowsItsOwnOffsets) {
  open_home();
  stDevStatus.s16LaserIndicatX = 500;
  stDevStatus.s16LaserIndicatY = 100;
  std::string out = printed([&] { screen_event(SCREEN_EVT_LASER_MARKER_MOVE); });
  EXPECT_EQ(box("image_reticle_laser"), (Box{478, 78, 44, 44}));
  EXPECT_NE(out.find("stDevStatus.s16LaserIndicatX=== 500 stDevStatus.s16LaserIndicatY===100\n"),
            std::string::npos)
      << out;
  EXPECT_EQ(box("image_reticle_range"), (Box{618, 490, 44, 44}));  // untouched
}

// ---- the reticle on the active zero ----

TEST_F(AimTest, ReticleFollowsTheActiveZeroAndCarriesTheAimPointAtZoom1) {
  open_home();
  IR_Cursor.u8CurrentGroup = 2;
  IR_Cursor.group[2].u8CurrentZero = 3;
  IR_Cursor.group[2].zero[3].s8IrCursorCurrentX = 700;
  IR_Cursor.group[2].zero[3].s8IrCursorCurrentY = 400;
  result_ball.moveX = 10;
  result_ball.moveY = 6;
  stUIStatus.s8IRZoom = 200;  // ignored by the move: zoom 1
  std::string out = printed([&] { screen_event(SCREEN_EVT_RETICLE_MOVE); });
  EXPECT_EQ(box("view_reticle_shoot"), (Box{-140, -440, 1680, 1680}));
  EXPECT_EQ(box("image_point"), (Box{70, -246, 1280, 1280}));
  EXPECT_NE(out.find("reticle_value_x =700\n reticle_value_y =400\n"), std::string::npos) << out;
  EXPECT_NE(out.find("Set_ZoomBallisticMove=======on_reticle_move\n"), std::string::npos);
  // The reticle's centre column lies on the cursor: the group's column 839 is screen x 699.
  EXPECT_EQ(tk_testing_screen_rect(w("view_reticle_h_1")).x, 699);
}

TEST_F(AimTest, ZeroIndicesOutsideTheTableLeaveTheReticle) {
  open_home();
  const Box before = box("view_reticle_shoot");
  IR_Cursor.u8CurrentGroup = 7;
  std::string out = printed([&] { screen_event(SCREEN_EVT_RETICLE_MOVE); });
  EXPECT_EQ(box("view_reticle_shoot"), before);
  EXPECT_NE(out.find("outside the 5 x 5 table"), std::string::npos) << out;
  IR_Cursor.u8CurrentGroup = 1;
  IR_Cursor.group[1].u8CurrentZero = 5;
  screen_event(SCREEN_EVT_RETICLE_MOVE);
  EXPECT_EQ(box("view_reticle_shoot"), before);
}

// ---- the ballistic solution ----

TEST_F(AimTest, SolutionFromTheDeviceMovesTheAimPointAndFillsTheHoldOvers) {
  info[0].ballistics_sw = 1;
  open_home();
  std::string out = printed([&] { solution_report(3.44f, 0.0f); });
  EXPECT_NEAR(result_ball.mradV, 1.0, 1e-6);
  EXPECT_EQ(result_ball.moveY, 6);
  EXPECT_EQ(result_ball.moveX, 0);
  EXPECT_EQ(text("label_MOA_V"), "U3.44");
  EXPECT_EQ(text("label_MOA_H"), "L0.00");
  EXPECT_EQ(text("label_MARD_V"), "U1.00");
  EXPECT_EQ(text("label_MARD_H"), "L0.00");
  EXPECT_TRUE(shown("view_ballistics"));
  EXPECT_TRUE(shown("view_bg_ballistic"));
  EXPECT_EQ(box("image_point"), (Box{0, -134, 1280, 1280}));  // 6 pixels above (640, 512)
  EXPECT_NE(out.find("Set_ZoomBallisticMove=======ballistic\n"), std::string::npos) << out;

  solution_report(-2.5f, 1.72f);
  EXPECT_EQ(text("label_MOA_V"), "D2.50");
  EXPECT_EQ(text("label_MOA_H"), "R1.72");
  EXPECT_EQ(text("label_MARD_V"), "D0.73");
  EXPECT_EQ(text("label_MARD_H"), "R0.50");
  EXPECT_EQ(result_ball.moveX, 3);   // trunc(0.5 * 6.25)
  EXPECT_EQ(result_ball.moveY, -4);  // trunc(-0.7267 * 6.25)
  EXPECT_EQ(box("image_point"), (Box{3, -124, 1280, 1280}));
  EXPECT_EQ(tk_testing_failed_lookups(), 0u)
      << ::testing::PrintToString(tk_testing_failed_lookup_names());
}

TEST_F(AimTest, SolutionUsesTheZoomOfTheLastRefresh) {
  info[0].ballistics_sw = 1;
  stUIStatus.s8IRZoom = 200;
  open_home();
  solution_report(0.0f, 3.44f);  // 1 milliradian right: 6 pixels at zoom 1, 12 at zoom 2
  EXPECT_EQ(box("image_point"), (Box{12, -128, 1280, 1280}));
}

TEST_F(AimTest, HoldOverPanelFollowsTheFirstProfileAndHidesWhileRanging) {
  info[0].ballistics_sw = 0;
  info[2].ballistics_sw = 1;
  stDevStatus.s8BallisticGroup = 2;  // the current profile is not the one consulted
  open_home();
  solution_report(1.0f, 1.0f);
  EXPECT_FALSE(shown("view_ballistics"));
  EXPECT_FALSE(shown("view_bg_ballistic"));
  info[0].ballistics_sw = 1;
  solution_report(1.0f, 1.0f);
  EXPECT_TRUE(shown("view_ballistics"));
  // Continuous ranging: the panel goes away and nothing else changes.
  stUIStatus.s8RangeMode = 3;
  const Box aim = box("image_point");
  solution_report(20.0f, -20.0f);
  EXPECT_FALSE(shown("view_ballistics"));
  EXPECT_FALSE(shown("view_bg_ballistic"));
  EXPECT_EQ(box("image_point"), aim);
  EXPECT_EQ(text("label_MOA_V"), "U1.00");
}

TEST_F(AimTest, SolutionThatIsNotANumberIsRefused) {
  info[0].ballistics_sw = 1;
  open_home();
  solution_report(1.0f, 0.0f);
  const Box aim = box("image_point");
  std::string out =
      printed([&] { solution_report(std::numeric_limits<float>::quiet_NaN(), 1.0f); });
  EXPECT_EQ(box("image_point"), aim);
  EXPECT_NE(out.find("solution is not a number"), std::string::npos) << out;
  // An absurd but finite solution lands far off screen without overflowing anything.
  solution_report(3.0e38f, -3.0e38f);
  EXPECT_LT(box("image_point").y, -100000);
  EXPECT_LT(box("image_point").x, -100000);
}

// The PIP aim point's bounds differ on purpose: 832 and 444 after a solution, 820 and 432 after
// a zoom refresh.
TEST_F(AimTest, PipAimPointInBetweenTheBoundsShowsAfterASolutionAndHidesOnZoom) {
  stDevStatus.s8VideoMode = 3;
  stUIStatus.s8IRZoom = 175;
  open_home();
  solution_report(0.0f, 32.0f);  // 9.30 milliradians right: 58 pixels
  EXPECT_EQ(result_ball.moveX, 58);
  EXPECT_EQ(box("view_ballistic_pip_reticle"), (Box{830, 280, 24, 24}));
  EXPECT_TRUE(shown("view_ballistic_pip_reticle"));
  screen_event(SCREEN_EVT_ZOOM);
  EXPECT_EQ(box("view_ballistic_pip_reticle"), (Box{830, 280, 24, 24}));
  EXPECT_FALSE(shown("view_ballistic_pip_reticle"));

  solution_report(-25.456f, 0.0f);  // 7.40 milliradians down: 46 pixels, y 441
  EXPECT_EQ(result_ball.moveY, -46);
  EXPECT_EQ(box("view_ballistic_pip_reticle"), (Box{627, 441, 24, 24}));
  EXPECT_TRUE(shown("view_ballistic_pip_reticle"));
  screen_event(SCREEN_EVT_ZOOM);
  EXPECT_FALSE(shown("view_ballistic_pip_reticle"));

  // Without the PIP view it never shows.
  stDevStatus.s8VideoMode = 0;
  solution_report(0.0f, 0.0f);
  EXPECT_FALSE(shown("view_ballistic_pip_reticle"));
}

}  // namespace
