// The reticle overlay: which shape shows, colour schemes, brightness, the PIP reticle, the
// aim-point shape and colour, the marker images and the small helpers. Settings change in the
// records and reach the screen through their screen events.
#include "home_fixture.h"

namespace {

using home_test::printed;

constexpr uint32_t WHITE = 0xFFFFFFFF, BLACK = 0xFF000001, RED = 0xFF0011FF, GREEN = 0xFF00FF00;

class OverlayTest : public home_test::HomeTest {
 protected:
  void SetUp() override {
    HomeTest::SetUp();
    open_home();
  }
  std::string visible_shapes() const {
    std::string out;
    for (int n = 1; n <= 8; ++n) {
      const std::string name = "view_reticle_shoot" + std::to_string(n);
      if (shown(name.c_str())) out += name + " ";
    }
    return out;
  }
};

TEST_F(OverlayTest, ReticleTypeShowsItsShapeNotInNumericOrder) {
  const char* expected[] = {"1", "3", "4", "2", "5", "8", "6", "7"};
  for (int type = 0; type < 8; ++type) {
    stDevStatus.s8ReticleType = static_cast<char>(type);
    screen_event(SCREEN_EVT_RETICLE_TYPE);
    EXPECT_EQ(visible_shapes(), std::string("view_reticle_shoot") + expected[type] + " ") << type;
  }
  for (int type : {8, 200}) {  // out of range: every shape hidden
    stDevStatus.s8ReticleType = static_cast<char>(type);
    screen_event(SCREEN_EVT_RETICLE_TYPE);
    EXPECT_EQ(visible_shapes(), "") << type;
  }
}

TEST_F(OverlayTest, ReticleSwitchShowsThePipReticleOnlyWithPipAndSwitchOne) {
  stDevStatus.s8VideoMode = 3;
  const struct {
    char reticle_switch;
    bool reticle, pip;
  } steps[] = {{1, true, true}, {0, false, false}, {2, true, false}};
  for (const auto& s : steps) {
    stDevStatus.s8ReticleSwitch = s.reticle_switch;
    const std::string out = printed([&] { screen_event(SCREEN_EVT_RETICLE_SWITCH); });
    EXPECT_EQ(out, "stDevStatus.s8ReticleSwitch =" + std::to_string(s.reticle_switch) + "\n");
    EXPECT_EQ(shown("view_reticle_shoot"), s.reticle) << int(s.reticle_switch);
    EXPECT_EQ(shown("view_pip_reticle"), s.pip) << int(s.reticle_switch);
  }
}

// The centre marks of the reticle shapes (the PIP reticle's two are checked beside them).
bool centre_mark(const std::string& name) {
  for (const char* centre :
       {"view_reticle_h_2", "view_reticle_w_2", "view_reticle4_w_2", "view_reticle4_h_1",
        "view_reticle3_w_2", "view_reticle2_wh_1", "view_reticle5_w_2", "view_reticle5_h_2",
        "view_reticle6_wh_1", "view_reticle8_w_2", "view_reticle7_h_1"}) {
    if (name == centre) return true;
  }
  return false;
}

// Scheme 6 draws black with white centre marks; 3 draws everything green (shape 6's centre mark
// takes only a second colour and keeps its white); 9, after 2, keeps the red frame and makes the
// centre marks transparent.
TEST_F(OverlayTest, ColourSchemesSixThreeAndNine) {
  const struct {
    int scheme;
    uint32_t first, centre;
  } schemes[] = {{6, BLACK, WHITE}, {3, GREEN, GREEN}, {2, RED, RED}, {9, RED, 0}};
  for (const auto& c : schemes) {
    stDevStatus.s8ReticleColour = static_cast<char>(c.scheme);
    screen_event(SCREEN_EVT_RETICLE_COLOR);
    for (const ReticleElement& e : reticle_elements()) {
      if (e.group >= GROUP_AIM1) continue;
      const char* prop = e.kind == ELEMENT_RING    ? "border_color"
                         : e.kind == ELEMENT_LABEL ? "text_color"
                                                   : "bg_color";
      const bool kept = c.scheme <= 3 && e.name == std::string("view_reticle6_wh_1");
      EXPECT_EQ(color(e.name, prop), kept                  ? WHITE
                                     : centre_mark(e.name) ? c.centre
                                                           : c.first)
          << e.name << " scheme " << c.scheme;
    }
    EXPECT_EQ(color("view_PIP_Reticle_1"), c.centre) << c.scheme;
    EXPECT_EQ(color("view_PIP_Reticle_2"), c.centre) << c.scheme;
  }
  const uint32_t first[] = {WHITE, WHITE, BLACK, RED}, second[] = {BLACK, RED, WHITE, WHITE};
  for (int scheme = 4; scheme <= 7; ++scheme) {
    stDevStatus.s8ReticleColour = static_cast<char>(scheme);
    screen_event(SCREEN_EVT_RETICLE_COLOR);
    EXPECT_EQ(color("view_reticle7_w_1"), first[scheme - 4]) << scheme;
    EXPECT_EQ(color("view_reticle7_h_1"), second[scheme - 4]) << scheme;
  }
  stDevStatus.s8ReticleColour = static_cast<char>(200);  // a byte read unsigned: like 9
  screen_event(SCREEN_EVT_RETICLE_COLOR);
  EXPECT_EQ(color("view_reticle7_w_1"), RED);
  EXPECT_EQ(color("view_reticle7_h_1"), 0u);
}

TEST_F(OverlayTest, BrightnessIsTheReticlesOpacity) {
  const struct {
    char brightness;
    int opacity;
  } steps[] = {{1, 200}, {5, 200}, {0, 150}, {7, 150}, {2, 255}};
  for (const auto& s : steps) {
    stDevStatus.s8ReticleBrightness = s.brightness;
    screen_event(SCREEN_EVT_RETICLE_LIGHT);
    EXPECT_EQ(w("view_reticle_shoot")->opacity, s.opacity) << int(s.brightness);
  }
}

TEST_F(OverlayTest, MarkerImagesFollowTypeAndColour) {
  auto laser = [&](char type, char colour) {
    stDevStatus.s8LaserReticleType = type;
    stDevStatus.s8LaserReticleColor = colour;
    return printed([&] { screen_event(SCREEN_EVT_LASER_RETICLE); });
  };
  auto range = [&](char type, char colour) {
    stDevStatus.s8RangeReticleType = type;
    stDevStatus.s8RangeReticleColor = colour;
    return printed([&] { screen_event(SCREEN_EVT_RANGE_RETICLE); });
  };
  laser(0, 1);
  EXPECT_EQ(image("image_reticle_laser"), "laser_1_r.png");
  range(2, 2);
  EXPECT_EQ(image("image_reticle_range"), "LRF_3_g.png");
  laser(1, 0);
  EXPECT_EQ(image("image_reticle_laser"), "laser_2_w.png");
  // A colour or type the marker pages never store leaves the image, with a message.
  EXPECT_NE(range(2, 3).find("image_reticle_range left as it is"), std::string::npos);
  EXPECT_NE(laser(7, 0).find("image_reticle_laser left as it is"), std::string::npos);
  EXPECT_EQ(image("image_reticle_range"), "LRF_3_g.png");
  EXPECT_EQ(image("image_reticle_laser"), "laser_2_w.png");
}

TEST_F(OverlayTest, AimPointShapeAndColour) {
  for (int shape = 0; shape <= 5; ++shape) {  // 5: all hidden
    stDevStatus.s8BallisticReticle = static_cast<char>(shape);
    const std::string out = printed([&] { screen_event(SCREEN_EVT_BALLISTIC_RETICLE); });
    EXPECT_EQ(out, "stDevStatus.s8BallisticReticle ====" + std::to_string(shape) + "\n");
    for (int view = 1; view <= 5; ++view)
      EXPECT_EQ(shown(("view_type" + std::to_string(view)).c_str()), view == shape + 1) << shape;
  }
  const uint32_t colours[] = {WHITE, RED, GREEN, WHITE};
  for (int c : {2, 1, 0, 3}) {  // 3 changes nothing
    stDevStatus.s8BallisticReticleColor = static_cast<char>(c);
    screen_event(SCREEN_EVT_BALLISTIC_COLOR);
    for (const char* e : {"view_t1_1", "viewt2_1", "viewt2_2", "view_t3_5", "view_t4_8",
                          "view_t5_1", "ballistic_pip_reticle1", "ballistic_pip_reticle2"})
      EXPECT_EQ(color(e), colours[c]) << e << " colour " << c;
  }
}

TEST_F(OverlayTest, PipReticleShapeAndRingColour) {
  const char* rings[] = {"view_pip_reticle_1_1", "view_pip_reticle_2_1", "view_pip_reticle_2_2"};
  const struct {
    char type, color;
    uint32_t expected;
  } steps[] = {{1, 1, RED}, {0, 7, RED}, {2, 2, GREEN}};  // colour 7: the colours stay
  for (const auto& s : steps) {
    stDevStatus.s8PIPReticleType = s.type;
    stDevStatus.s8PIPReticleColor = s.color;
    screen_event(SCREEN_EVT_PIP_RETICLE);
    EXPECT_EQ(shown(rings[0]), s.type == 1);
    EXPECT_EQ(shown(rings[1]), s.type != 1);
    EXPECT_EQ(shown(rings[2]), s.type != 1);
    for (const char* ring : rings)
      EXPECT_EQ(color(ring, "border_color"), s.expected) << ring;
  }
}

// Helpers no drawing path calls, kept for the firmware team: the reticle image name, the even
// growth of a tick and the table of reticle x starts (its bound of 60 against 51 entries kept).
TEST(OverlayHelpers, ReticleImageNameEvenGrowthAndTheStartTable) {
  std::memset(&stDevStatus, 0, sizeof(stDevStatus));
  stDevStatus.s8IrSize = 1;
  stDevStatus.s8ReticleType = 2;
  stDevStatus.s8ReticleColour = 3;
  EXPECT_STREQ(getReticleImgName("d"), "d/640_2_g.png");
  stDevStatus.s8IrSize = 0;
  stDevStatus.s8ReticleColour = 1;
  EXPECT_STREQ(getReticleImgName("d"), "d/384_2_b.png");
  stDevStatus.s8ReticleType = 0;
  EXPECT_EQ(printed([] { getReticleImgName("d"); }), "GET_CURSOR_TYPE error !\n");
  EXPECT_EQ(h_value_handle(7), 6);
  EXPECT_EQ(lookup_reticle_x_start(0), 320);
  EXPECT_EQ(lookup_reticle_x_start(50), -1302);
  EXPECT_EQ(printed([] { EXPECT_EQ(lookup_reticle_x_start(55), -1); }), "");
  EXPECT_EQ(printed([] { EXPECT_EQ(lookup_reticle_x_start(61), -1); }), "索引超出范围！\n");
}

}  // namespace
