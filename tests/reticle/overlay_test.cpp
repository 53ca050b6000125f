// The reticle overlay: which shape shows, colour schemes, brightness, the PIP reticle, the
// aim-point shape and colour, the marker images, the reticle image names and the small helpers.
// Settings change in the records and reach the screen through their screen events.
#include <fstream>

#include "reticle_fixture.h"

using reticle_test::Box;
using reticle_test::printed;
using reticle_test::ReticleTest;

namespace {

constexpr uint32_t WHITE = 0xFFFFFFFF, BLACK = 0xFF000001, RED = 0xFF0011FF, GREEN = 0xFF00FF00;

const char* const SHAPE_VIEWS[] = {
    "view_reticle_shoot1", "view_reticle_shoot2", "view_reticle_shoot3", "view_reticle_shoot4",
    "view_reticle_shoot5", "view_reticle_shoot6", "view_reticle_shoot7", "view_reticle_shoot8"};

class OverlayTest : public ReticleTest {
 protected:
  std::vector<std::string> visible_shapes() const {
    std::vector<std::string> out;
    for (const char* name : SHAPE_VIEWS) {
      if (shown(name)) out.push_back(name);
    }
    return out;
  }
};

TEST_F(OverlayTest, ReticleTypeShowsItsShapeNotInNumericOrder) {
  open_home();
  const char* expected[] = {"view_reticle_shoot1", "view_reticle_shoot3", "view_reticle_shoot4",
                            "view_reticle_shoot2", "view_reticle_shoot5", "view_reticle_shoot8",
                            "view_reticle_shoot6", "view_reticle_shoot7"};
  for (int type = 0; type < 8; ++type) {
    stDevStatus.s8ReticleType = static_cast<char>(type);
    screen_event(SCREEN_EVT_RETICLE_TYPE);
    EXPECT_EQ(visible_shapes(), std::vector<std::string>{expected[type]}) << "type " << type;
  }
  stDevStatus.s8ReticleType = 3;
  screen_event(SCREEN_EVT_RETICLE_TYPE);
  EXPECT_TRUE(shown("view_reticle_shoot2"));
  EXPECT_FALSE(shown("view_reticle_shoot4"));
  // Out of range: every shape hidden, nothing else touched.
  stDevStatus.s8ReticleType = 8;
  screen_event(SCREEN_EVT_RETICLE_TYPE);
  EXPECT_TRUE(visible_shapes().empty());
  stDevStatus.s8ReticleType = static_cast<char>(200);
  screen_event(SCREEN_EVT_RETICLE_TYPE);
  EXPECT_TRUE(visible_shapes().empty());
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(OverlayTest, ReticleSwitchShowsTheReticleAndThePipReticleOnlyWithPip) {
  open_home();  // init forces the reticle switch on
  EXPECT_EQ(stDevStatus.s8ReticleSwitch, 1);
  EXPECT_TRUE(shown("view_reticle_shoot"));
  EXPECT_FALSE(shown("view_pip_reticle"));
  stDevStatus.s8VideoMode = 3;
  std::string out = printed([&] { screen_event(SCREEN_EVT_RETICLE_SWITCH); });
  EXPECT_NE(out.find("stDevStatus.s8ReticleSwitch =1\n"), std::string::npos);
  EXPECT_TRUE(shown("view_pip_reticle"));
  stDevStatus.s8ReticleSwitch = 0;  // PIP on, reticle off: the PIP reticle goes too
  screen_event(SCREEN_EVT_RETICLE_SWITCH);
  EXPECT_FALSE(shown("view_reticle_shoot"));
  EXPECT_FALSE(shown("view_pip_reticle"));
  stDevStatus.s8ReticleSwitch = 2;  // any non-zero value shows the reticle, only 1 the PIP one
  screen_event(SCREEN_EVT_RETICLE_SWITCH);
  EXPECT_TRUE(shown("view_reticle_shoot"));
  EXPECT_FALSE(shown("view_pip_reticle"));
}

TEST_F(OverlayTest, SchemeSixDrawsTheCrossBlackAndTheCentreMarksWhite) {
  open_home();
  stDevStatus.s8ReticleColour = 6;
  screen_event(SCREEN_EVT_RETICLE_COLOR);
  for (const char* name :
       {"view_reticle_w_1", "view_reticle_w_3", "view_reticle_h_3", "view_reticle3_w_1",
        "view_reticle4_w_1", "view_reticle2_w_1", "view_reticle2_h_10", "view_reticle5_w_1",
        "view_reticle6_w_20", "view_reticle6_h_7", "view_reticle7_w_12", "view_reticle7_h_26",
        "view_reticle8_w_1", "view_reticle8_w_3"}) {
    EXPECT_EQ(bg(name), BLACK) << name;
  }
  EXPECT_EQ(color("view_reticle4_wh_1", "border_color"), BLACK);
  EXPECT_EQ(color("label_reticle6_12", "text_color"), BLACK);
  EXPECT_EQ(color("label_reticle7_4", "text_color"), BLACK);
  for (const char* name :
       {"view_reticle_h_2", "view_reticle_w_2", "view_PIP_Reticle_1", "view_PIP_Reticle_2",
        "view_reticle4_w_2", "view_reticle4_h_1", "view_reticle3_w_2", "view_reticle2_wh_1",
        "view_reticle5_w_2", "view_reticle5_h_2", "view_reticle6_wh_1", "view_reticle8_w_2",
        "view_reticle7_h_1"}) {
    EXPECT_EQ(bg(name), WHITE) << name;
  }
  // The other two-colour schemes: 4 white and black, 5 white and red, 7 red and white.
  const uint32_t first[] = {WHITE, WHITE, BLACK, RED}, second[] = {BLACK, RED, WHITE, WHITE};
  for (int scheme = 4; scheme <= 7; ++scheme) {
    stDevStatus.s8ReticleColour = static_cast<char>(scheme);
    screen_event(SCREEN_EVT_RETICLE_COLOR);
    EXPECT_EQ(bg("view_reticle_w_1"), first[scheme - 4]) << scheme;
    EXPECT_EQ(bg("view_reticle7_w_1"), first[scheme - 4]) << scheme;
    EXPECT_EQ(bg("view_reticle_w_2"), second[scheme - 4]) << scheme;
    EXPECT_EQ(bg("view_reticle7_h_1"), second[scheme - 4]) << scheme;
  }
}

TEST_F(OverlayTest, SchemeThreeDrawsEverythingGreen) {
  open_home();
  stDevStatus.s8ReticleColour = 6;
  screen_event(SCREEN_EVT_RETICLE_COLOR);
  stDevStatus.s8ReticleColour = 3;
  screen_event(SCREEN_EVT_RETICLE_COLOR);
  int checked = 0;
  for (const ReticleElement& e : reticle_elements()) {
    if (e.group >= GROUP_AIM1) continue;
    // Shape 6's centre mark is coloured only by the two-colour schemes: it keeps the white of
    // scheme 6.
    if (std::string(e.name) == "view_reticle6_wh_1") {
      EXPECT_EQ(bg(e.name), WHITE);
      continue;
    }
    const char* prop = e.kind == ELEMENT_RING    ? "border_color"
                       : e.kind == ELEMENT_LABEL ? "text_color"
                                                 : "bg_color";
    EXPECT_EQ(color(e.name, prop), GREEN) << e.name;
    ++checked;
  }
  EXPECT_EQ(checked, 131);
  EXPECT_EQ(bg("view_PIP_Reticle_1"), GREEN);
  EXPECT_EQ(bg("view_PIP_Reticle_2"), GREEN);
}

TEST_F(OverlayTest, SchemeNineKeepsTheFrameAndMakesTheCentreMarksVanish) {
  open_home();
  stDevStatus.s8ReticleColour = 2;
  screen_event(SCREEN_EVT_RETICLE_COLOR);
  stDevStatus.s8ReticleColour = 9;
  screen_event(SCREEN_EVT_RETICLE_COLOR);
  EXPECT_EQ(bg("view_reticle_w_1"), RED);
  EXPECT_EQ(bg("view_reticle2_w_5"), RED);
  EXPECT_EQ(color("view_reticle4_wh_1", "border_color"), RED);
  EXPECT_EQ(color("label_reticle6_2", "text_color"), RED);
  for (const char* name : {"view_reticle_h_2", "view_reticle_w_2", "view_PIP_Reticle_1",
                           "view_reticle2_wh_1", "view_reticle6_wh_1", "view_reticle7_h_1"}) {
    EXPECT_EQ(bg(name), 0u) << name;
  }
  // A byte the device cannot mean (read as 200 on every build) behaves like 9.
  stDevStatus.s8ReticleColour = static_cast<char>(200);
  screen_event(SCREEN_EVT_RETICLE_COLOR);
  EXPECT_EQ(bg("view_reticle_w_1"), RED);
  EXPECT_EQ(bg("view_reticle_w_2"), 0u);
}

TEST_F(OverlayTest, BrightnessIsTheReticlesOpacity) {
  open_home();
  widget_t* reticle = w("view_reticle_shoot");
  stDevStatus.s8ReticleBrightness = 1;
  screen_event(SCREEN_EVT_RETICLE_LIGHT);
  EXPECT_EQ(reticle->opacity, 200);
  stDevStatus.s8ReticleBrightness = 5;  // out of range: unchanged
  screen_event(SCREEN_EVT_RETICLE_LIGHT);
  EXPECT_EQ(reticle->opacity, 200);
  stDevStatus.s8ReticleBrightness = 0;
  screen_event(SCREEN_EVT_RETICLE_LIGHT);
  EXPECT_EQ(reticle->opacity, 150);
  stDevStatus.s8ReticleBrightness = 2;
  screen_event(SCREEN_EVT_RETICLE_LIGHT);
  EXPECT_EQ(reticle->opacity, 255);
}

TEST_F(OverlayTest, MarkerImagesFollowTypeAndColour) {
  open_home();
  stDevStatus.s8LaserReticleType = 0;
  stDevStatus.s8LaserReticleColor = 1;
  screen_event(SCREEN_EVT_LASER_RETICLE);
  EXPECT_EQ(image("image_reticle_laser"), "laser_1_r.png");
  stDevStatus.s8RangeReticleType = 2;
  stDevStatus.s8RangeReticleColor = 2;
  screen_event(SCREEN_EVT_RANGE_RETICLE);
  EXPECT_EQ(image("image_reticle_range"), "LRF_3_g.png");
  stDevStatus.s8LaserReticleType = 1;
  stDevStatus.s8LaserReticleColor = 0;
  screen_event(SCREEN_EVT_LASER_RETICLE);
  EXPECT_EQ(image("image_reticle_laser"), "laser_2_w.png");
  EXPECT_EQ(image("image_reticle_range"), "LRF_3_g.png");  // the other marker keeps its image
  // A colour or type the marker pages never store leaves the image, with a message.
  stDevStatus.s8RangeReticleColor = 3;
  std::string out = printed([&] { screen_event(SCREEN_EVT_RANGE_RETICLE); });
  EXPECT_EQ(image("image_reticle_range"), "LRF_3_g.png");
  EXPECT_NE(out.find("image_reticle_range left as it is"), std::string::npos) << out;
  stDevStatus.s8LaserReticleType = 7;
  screen_event(SCREEN_EVT_LASER_RETICLE);
  EXPECT_EQ(image("image_reticle_laser"), "laser_2_w.png");
}

// Every marker image the settings can name exists, 44 x 44, and is drawn: a red laser dot shows
// red at its centre over the backdrop.
TEST_F(OverlayTest, EveryMarkerImageExistsAndIsDrawn) {
  for (const char* prefix : {"laser", "LRF"}) {
    for (int n = 1; n <= 3; ++n) {
      for (const char* c : {"w", "r", "g"}) {
        const std::string path = std::string("res/assets/default/raw/images/x1/") + prefix + "_" +
                                 std::to_string(n) + "_" + c + ".png";
        std::ifstream in(path, std::ios::binary);
        ASSERT_TRUE(in.good()) << path;
        unsigned char header[24] = {0};
        in.read(reinterpret_cast<char*>(header), sizeof(header));
        const unsigned width = header[16] << 24 | header[17] << 16 | header[18] << 8 | header[19];
        const unsigned height = header[20] << 24 | header[21] << 16 | header[22] << 8 | header[23];
        EXPECT_EQ(header[1], 'P') << path;
        EXPECT_EQ(width, 44u) << path;
        EXPECT_EQ(height, 44u) << path;
      }
    }
  }
  stDevStatus.s8LaserReticleColor = 1;  // laser_1_r: a red dot in a red ring
  stDevStatus.s16LaserIndicatX = 400;
  stDevStatus.s16LaserIndicatY = 300;
  stUIStatus.s8LaserSwitch = 1;
  open_home();
  screen_event(SCREEN_EVT_LASER_SWITCH);
  screen_event(SCREEN_EVT_LASER_MARKER_MOVE);
  ASSERT_TRUE(shown("image_reticle_laser"));
  EXPECT_EQ(box("image_reticle_laser"), (Box{378, 278, 44, 44}));
  tk_testing_paint();
  const uint32_t centre = tk_testing_pixel(400, 300);
  EXPECT_EQ(centre & 0xFF, 0xFFu) << std::hex << centre;         // red
  EXPECT_LT((centre >> 8) & 0xFF, 0x40u) << std::hex << centre;  // little green
  const uint32_t outside = tk_testing_pixel(400, 300 - 40);
  EXPECT_NE(outside, centre);
}

TEST_F(OverlayTest, AimPointShapeAndColour) {
  open_home();
  const char* views[] = {"view_type1", "view_type2", "view_type3", "view_type4", "view_type5"};
  for (int shape = 0; shape < 5; ++shape) {
    stDevStatus.s8BallisticReticle = static_cast<char>(shape);
    std::string out = printed([&] { screen_event(SCREEN_EVT_BALLISTIC_RETICLE); });
    EXPECT_NE(out.find("stDevStatus.s8BallisticReticle ====" + std::to_string(shape) + "\n"),
              std::string::npos);
    for (int other = 0; other < 5; ++other)
      EXPECT_EQ(shown(views[other]), other == shape);
  }
  stDevStatus.s8BallisticReticle = 5;
  screen_event(SCREEN_EVT_BALLISTIC_RETICLE);
  for (const char* v : views)
    EXPECT_FALSE(shown(v)) << v;

  const char* elements[] = {"view_t1_1",
                            "viewt2_1",
                            "viewt2_2",
                            "view_t3_1",
                            "view_t3_5",
                            "ballistic_pip_reticle1",
                            "ballistic_pip_reticle2",
                            "view_t4_1",
                            "view_t4_8",
                            "view_t5_1",
                            "view_t5_8"};
  const uint32_t colours[] = {WHITE, RED, GREEN};
  for (int c = 2; c >= 0; --c) {
    stDevStatus.s8BallisticReticleColor = static_cast<char>(c);
    screen_event(SCREEN_EVT_BALLISTIC_COLOR);
    for (const char* e : elements)
      EXPECT_EQ(bg(e), colours[c]) << e << " colour " << c;
  }
  stDevStatus.s8BallisticReticleColor = 3;  // changes nothing
  screen_event(SCREEN_EVT_BALLISTIC_COLOR);
  for (const char* e : elements)
    EXPECT_EQ(bg(e), WHITE) << e;
}

TEST_F(OverlayTest, PipReticleShapeAndRingColour) {
  open_home();
  stDevStatus.s8PIPReticleType = 1;
  stDevStatus.s8PIPReticleColor = 1;
  screen_event(SCREEN_EVT_PIP_RETICLE);
  EXPECT_TRUE(shown("view_pip_reticle_1_1"));
  EXPECT_FALSE(shown("view_pip_reticle_2_1"));
  EXPECT_FALSE(shown("view_pip_reticle_2_2"));
  for (const char* n : {"view_pip_reticle_1_1", "view_pip_reticle_2_1", "view_pip_reticle_2_2"}) {
    EXPECT_EQ(color(n, "border_color"), RED) << n;
  }
  stDevStatus.s8PIPReticleType = 0;
  stDevStatus.s8PIPReticleColor = 7;  // out of range: the colours stay
  screen_event(SCREEN_EVT_PIP_RETICLE);
  EXPECT_FALSE(shown("view_pip_reticle_1_1"));
  EXPECT_TRUE(shown("view_pip_reticle_2_1"));
  EXPECT_TRUE(shown("view_pip_reticle_2_2"));
  EXPECT_EQ(color("view_pip_reticle_2_2", "border_color"), RED);
  stDevStatus.s8PIPReticleColor = 2;
  screen_event(SCREEN_EVT_PIP_RETICLE);
  EXPECT_EQ(color("view_pip_reticle_1_1", "border_color"), GREEN);
}

TEST_F(OverlayTest, FunctionsRefuseANullWindow) {
  tk_testing_capture_log(true);
  std::string out = printed([] {
    EXPECT_EQ(on_reticle_color(nullptr), RET_BAD_PARAMS);
    EXPECT_EQ(on_Zavo_All_Reticle_zoom(nullptr), RET_BAD_PARAMS);
    EXPECT_EQ(on_Zavo_ReticleShoot7_color(nullptr), RET_BAD_PARAMS);
    EXPECT_EQ(on_Zavo_ReticleShoot6_zoom(1.0f, nullptr), RET_BAD_PARAMS);
  });
  EXPECT_NE(out.find("on_reticle_color:"), std::string::npos) << out;
  EXPECT_NE(out.find(" condition(win != NULL) failed!\n"), std::string::npos) << out;
  EXPECT_TRUE(tk_testing_log_contains("on_Zavo_All_Reticle_zoom:"));
}

TEST(ReticleImageName, FollowsSensorShapeAndColour) {
  std::memset(&stDevStatus, 0, sizeof(stDevStatus));
  stDevStatus.s8IrSize = 1;
  stDevStatus.s8ReticleType = 2;
  stDevStatus.s8ReticleColour = 3;
  EXPECT_STREQ(getReticleImgName("/usrdata/reticle"), "/usrdata/reticle/640_2_g.png");
  stDevStatus.s8IrSize = 0;
  stDevStatus.s8ReticleType = 4;
  stDevStatus.s8ReticleColour = 1;
  EXPECT_STREQ(getReticleImgName("r"), "r/384_4_b.png");
  stDevStatus.s8ReticleColour = 4;
  EXPECT_STREQ(getReticleImgName("r"), "r/384_4_r.png");
  stDevStatus.s8ReticleColour = 2;
  EXPECT_STREQ(getReticleImgName("r"), "r/384_4_w.png");
  stDevStatus.s8ReticleType = 0;
  std::string out = printed([] { getReticleImgName("r"); });
  EXPECT_EQ(out, "GET_CURSOR_TYPE error !\n");
  EXPECT_EQ(getReticleImgName(nullptr), nullptr);
}

TEST(ReticleHelpers, EvenGrowthAndTheStartTable) {
  EXPECT_EQ(h_value_handle(7), 6);
  EXPECT_EQ(h_value_handle(8), 8);
  EXPECT_EQ(h_value_handle(1), 0);
  EXPECT_EQ(h_value_handle(0), 0);
  EXPECT_EQ(lookup_reticle_x_start(0), 320);
  EXPECT_EQ(lookup_reticle_x_start(10), 3);
  EXPECT_EQ(lookup_reticle_x_start(11), -35);
  EXPECT_EQ(lookup_reticle_x_start(48), -1218);
  EXPECT_EQ(lookup_reticle_x_start(50), -1302);
  // 51..60 pass the range check but have no entry; no message.
  std::string out = printed([] { EXPECT_EQ(lookup_reticle_x_start(55), -1); });
  EXPECT_EQ(out, "");
  out = printed([] {
    EXPECT_EQ(lookup_reticle_x_start(61), -1);
    EXPECT_EQ(lookup_reticle_x_start(-1), -1);
  });
  EXPECT_EQ(out, "索引超出范围！\n索引超出范围！\n");
}

}  // namespace
