// The overlay region of the observation screen's layout and the element table it is written from:
// the committed file is what the generator writes, every element stands where the table puts it
// at zoom 1, every name the overlay looks up is there, and every shape obeys the zoom rule.
#include <cmath>
#include <fstream>
#include <set>
#include <sstream>

#include "reticle_fixture.h"
#include "reticle_layout_region.h"

using reticle_test::Box;
using reticle_test::ReticleTest;

namespace {

const char* const LAYOUT = "res/assets/default/raw/ui/Zavo_home_page_1.xml";

std::string read_file(const char* path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

TEST(ReticleLayoutRegion, CommittedLayoutIsTheGeneratorsOutput) {
  const std::string layout = read_file(LAYOUT);
  ASSERT_FALSE(layout.empty());
  std::string regenerated, error;
  ASSERT_TRUE(splice_reticle_overlay_region(layout, &regenerated, &error)) << error;
  EXPECT_TRUE(regenerated == layout)
      << "the reticle overlay region is out of date: run build/<dir>/tools/reticle_layout/"
         "reticle_layout from the repository root";
  // And the region is not empty: it carries every element of the table.
  const std::string region = extract_reticle_overlay_region(layout);
  for (const ReticleElement& e : reticle_elements()) {
    EXPECT_NE(region.find(std::string("name=\"") + e.name + "\""), std::string::npos) << e.name;
  }
}

TEST(ReticleLayoutRegion, SpliceRefusesBrokenMarkers) {
  std::string out, error;
  EXPECT_FALSE(splice_reticle_overlay_region("<window>\n</window>\n", &out, &error));
  EXPECT_EQ(error, "the reticle overlay markers are missing");
  EXPECT_FALSE(splice_reticle_overlay_region(
      "<window>\n  <!-- reticle overlay: end -->\n  <!-- reticle overlay: begin -->\n</window>\n",
      &out, &error));
  EXPECT_EQ(error, "the end marker comes before the begin marker");
  EXPECT_FALSE(splice_reticle_overlay_region(
      "<window>\n  <!-- reticle overlay: begin -->\n  <!-- reticle overlay: begin -->\n"
      "  <!-- reticle overlay: end -->\n</window>\n",
      &out, &error));
  EXPECT_EQ(error, "a reticle overlay marker appears twice");
}

TEST(ReticleLayoutRegion, SpliceKeepsEverythingOutsideTheMarkers) {
  const std::string before = "<window name=\"w\">\n  <label name=\"a\"/>\n";
  const std::string after = "  <label name=\"b\"/>\n</window>\n";
  const std::string layout = before +
                             "  <!-- reticle overlay: begin -->\n  <view name=\"old\"/>\n" +
                             "  <!-- reticle overlay: end -->\n" + after;
  std::string out, error;
  ASSERT_TRUE(splice_reticle_overlay_region(layout, &out, &error)) << error;
  EXPECT_EQ(out.substr(0, before.size()), before);
  EXPECT_EQ(out.substr(out.size() - after.size()), after);
  EXPECT_EQ(out.find("name=\"old\""), std::string::npos);
  EXPECT_EQ(extract_reticle_overlay_region(out), reticle_overlay_region("  "));
  // Splicing the result again changes nothing.
  std::string again;
  ASSERT_TRUE(splice_reticle_overlay_region(out, &again, &error));
  EXPECT_EQ(again, out);
}

TEST_F(ReticleTest, EveryTableElementSitsWhereTheTableSaysAtZoom1) {
  open_layout();
  int checked = 0;
  for (const ReticleElement& e : reticle_elements()) {
    widget_t* widget = w(e.name);
    ASSERT_NE(widget, nullptr) << e.name;
    const Box expected{reticle_coord_at(e.x, 0.0f), reticle_coord_at(e.y, 0.0f),
                       reticle_coord_at(e.w, 0.0f), reticle_coord_at(e.h, 0.0f)};
    EXPECT_EQ(box(e.name), expected) << e.name;
    ASSERT_NE(widget->parent, nullptr);
    EXPECT_STREQ(widget->parent->name, kReticleGroupName[e.group]) << e.name;
    const char* type = widget->vt->type;
    EXPECT_STREQ(type, e.kind == ELEMENT_LABEL ? "label" : "view") << e.name;
    ++checked;
  }
  EXPECT_EQ(checked, static_cast<int>(reticle_elements().size()));
  EXPECT_GT(checked, 150);
  // The groups: the reticle shapes fill the 1680 x 1680 reticle area, the aim-point shapes the
  // 1280 x 1280 aim-point area.
  EXPECT_EQ(box("view_reticle_shoot"), (Box{0, 0, 1680, 1680}));
  EXPECT_EQ(box("image_point"), (Box{0, 0, 1280, 1280}));
  for (int g = 0; g < GROUP_COUNT; ++g) {
    const int size = g < GROUP_AIM1 ? 1680 : 1280;
    EXPECT_EQ(box(kReticleGroupName[g]), (Box{0, 0, size, size})) << kReticleGroupName[g];
    EXPECT_STREQ(w(kReticleGroupName[g])->parent->name,
                 g < GROUP_AIM1 ? "view_reticle_shoot" : "image_point");
  }
  EXPECT_EQ(box("image_reticle_range"), (Box{618, 618, 44, 44}));
  EXPECT_EQ(box("image_reticle_laser"), (Box{618, 618, 44, 44}));
  EXPECT_EQ(box("view_ballistic_pip_reticle"), (Box{627, 280, 24, 24}));
  EXPECT_EQ(tk_testing_failed_lookups(), 0u)
      << ::testing::PrintToString(tk_testing_failed_lookup_names());
}

// The designed names, element by element, as the colour and zoom code address them.
TEST_F(ReticleTest, LayoutHoldsEveryDesignedName) {
  open_layout();
  std::vector<std::string> names = {"view_reticle_shoot",
                                    "view_pip_reticle",
                                    "image_reticle_laser",
                                    "image_reticle_range",
                                    "image_point",
                                    "view_ballistic_pip_reticle",
                                    "view_ballistics",
                                    "view_bg_ballistic",
                                    "label_MOA_V",
                                    "label_MOA_H",
                                    "label_MARD_V",
                                    "label_MARD_H",
                                    "label_zoom_value",
                                    "label_PIP_zoom_value",
                                    "view_pip_border",
                                    "view_pip_reticle_1_1",
                                    "view_pip_reticle_2_1",
                                    "view_pip_reticle_2_2",
                                    "view_PIP_Reticle_1",
                                    "view_PIP_Reticle_2",
                                    "ballistic_pip_reticle1",
                                    "ballistic_pip_reticle2",
                                    "view_reticle4_wh_1",
                                    "view_reticle2_wh_1",
                                    "view_reticle6_wh_1",
                                    "view_t1_1",
                                    "viewt2_1",
                                    "viewt2_2"};
  for (int n = 1; n <= 8; ++n)
    names.push_back("view_reticle_shoot" + std::to_string(n));
  for (int n = 1; n <= 5; ++n)
    names.push_back("view_type" + std::to_string(n));
  for (int n = 1; n <= 5; ++n)
    names.push_back("view_t3_" + std::to_string(n));
  for (int n = 1; n <= 8; ++n)
    names.push_back("view_t4_" + std::to_string(n));
  for (int n = 1; n <= 8; ++n)
    names.push_back("view_t5_" + std::to_string(n));
  for (int n = 1; n <= 3; ++n) {
    names.push_back("view_reticle_w_" + std::to_string(n));
    names.push_back("view_reticle_h_" + std::to_string(n));
    names.push_back("view_reticle3_w_" + std::to_string(n));
    names.push_back("view_reticle4_w_" + std::to_string(n));
    names.push_back("view_reticle5_w_" + std::to_string(n));
    names.push_back("view_reticle5_h_" + std::to_string(n));
    names.push_back("view_reticle8_w_" + std::to_string(n));
  }
  names.push_back("view_reticle3_h_1");
  names.push_back("view_reticle4_h_1");
  names.push_back("view_reticle4_h_2");
  for (int n = 1; n <= 20; ++n)
    names.push_back("view_reticle2_w_" + std::to_string(n));
  for (int n = 1; n <= 10; ++n)
    names.push_back("view_reticle2_h_" + std::to_string(n));
  for (int n = 1; n <= 20; ++n)
    names.push_back("view_reticle6_w_" + std::to_string(n));
  for (int n = 1; n <= 7; ++n)
    names.push_back("view_reticle6_h_" + std::to_string(n));
  for (int n = 2; n <= 12; n += 2)
    names.push_back("label_reticle6_" + std::to_string(n));
  for (int n = 1; n <= 12; ++n)
    names.push_back("view_reticle7_w_" + std::to_string(n));
  for (int n = 1; n <= 26; ++n)
    names.push_back("view_reticle7_h_" + std::to_string(n));
  for (int n = 1; n <= 4; ++n)
    names.push_back("label_reticle7_" + std::to_string(n));
  std::set<std::string> unique(names.begin(), names.end());
  EXPECT_EQ(unique.size(), names.size());
  for (const std::string& name : names)
    EXPECT_NE(w(name.c_str()), nullptr) << name;
  EXPECT_EQ(tk_testing_failed_lookups(), 0u)
      << ::testing::PrintToString(tk_testing_failed_lookup_names());
  // The table covers exactly the elements of the shapes: 6 + 4 + 6 + 31 + 6 + 3 + 34 + 42.
  int reticle_elements_count = 0;
  for (const ReticleElement& e : reticle_elements())
    reticle_elements_count += e.group < GROUP_AIM1;
  EXPECT_EQ(reticle_elements_count, 132);
}

// Every zoomed element keeps its angular meaning: a length L0 becomes about L0 * (1 + d), the end
// nearest the centre (840, 840) stays at a distance growing in proportion, line widths stay.
// Checked for d = 1 and 0.5 on every shape, within the truncations (2 pixels).
TEST(ReticleZoomRule, EveryShapeScalesAboutTheCentre) {
  const float c = 840.0f;
  for (const ReticleElement& e : reticle_elements()) {
    if (e.group >= GROUP_AIM1 || e.zoom == ZOOM_FIXED) continue;
    for (float d : {1.0f, 0.5f}) {
      const ReticleCoord* pos[2] = {&e.x, &e.y};
      const ReticleCoord* size[2] = {&e.w, &e.h};
      for (int axis = 0; axis < 2; ++axis) {
        const float p0 = static_cast<float>(reticle_coord_at(*pos[axis], 0.0f));
        const float s0 = static_cast<float>(reticle_coord_at(*size[axis], 0.0f));
        const float p = static_cast<float>(reticle_coord_at(*pos[axis], d));
        const float s = static_cast<float>(reticle_coord_at(*size[axis], d));
        const char* axis_name = axis == 0 ? "x" : "y";
        if (e.kind == ELEMENT_LABEL && axis == 0) {
          // A number stands to the right of its mark: its left edge follows the scaling.
          EXPECT_EQ(s, s0) << e.name;
          EXPECT_NEAR(p - c, (p0 - c) * (1 + d), 2.0f) << e.name << " x at d=" << d;
          continue;
        }
        if (s == s0) {
          // A line width (or a number's height): its centre follows the scaling.
          EXPECT_LE(s0, 20.0f) << e.name;
          EXPECT_NEAR(p + s / 2 - c, (p0 + s0 / 2 - c) * (1 + d), 2.0f)
              << e.name << " " << axis_name << " at d=" << d;
          continue;
        }
        EXPECT_EQ(e.zoom, ZOOM_MOVE_RESIZE) << e.name;
        EXPECT_NEAR(s, s0 * (1 + d), 2.0f) << e.name << " length " << axis_name << " d=" << d;
        if (p0 < c && p0 + s0 > c) {  // across the centre: stays centred
          EXPECT_NEAR(p + s / 2 - c, (p0 + s0 / 2 - c) * (1 + d), 2.0f) << e.name;
        } else if (p0 + s0 <= c) {  // left or above: the near end is the far side of the box
          EXPECT_NEAR(p + s - c, (p0 + s0 - c) * (1 + d), 2.0f)
              << e.name << " " << axis_name << " d=" << d;
        } else {
          EXPECT_NEAR(p - c, (p0 - c) * (1 + d), 2.0f) << e.name << " " << axis_name << " d=" << d;
        }
      }
    }
  }
}

// Shapes 6 and 7 carry the values given for them: arms, first tick, outer bars.
TEST(ReticleZoomRule, ShapesSixAndSevenKeepTheirGivenValues) {
  auto find = [](const char* name) -> const ReticleElement& {
    for (const ReticleElement& e : reticle_elements()) {
      if (std::string(e.name) == name) return e;
    }
    ADD_FAILURE() << name;
    return reticle_elements()[0];
  };
  const ReticleElement& arm = find("view_reticle6_w_1");
  EXPECT_EQ(reticle_coord_at(arm.x, 0.0f), 746);
  EXPECT_EQ(reticle_coord_at(arm.x, 1.0f), 652);
  EXPECT_EQ(reticle_coord_at(arm.w, 0.0f), 81);
  EXPECT_EQ(reticle_coord_at(arm.w, 1.0f), 162);
  const ReticleElement& tick = find("view_reticle6_w_2");
  EXPECT_EQ(reticle_coord_at(tick.x, 0.0f), 772);
  EXPECT_EQ(reticle_coord_at(tick.x, 1.0f), 704);
  const ReticleElement& left_bar = find("view_reticle7_w_1");
  EXPECT_EQ(reticle_coord_at(left_bar.x, 1.0f), 640);
  EXPECT_EQ(reticle_coord_at(left_bar.y, 1.0f), 838);
  EXPECT_EQ(reticle_coord_at(left_bar.h, 1.0f), 4);
  const ReticleElement& right_bar = find("view_reticle7_w_2");
  EXPECT_EQ(reticle_coord_at(right_bar.x, 0.0f), 890);
  EXPECT_EQ(reticle_coord_at(right_bar.x, 0.5f), 915);
  EXPECT_EQ(reticle_coord_at(find("view_reticle7_w_3").h, 1.0f), 2);
  EXPECT_EQ(reticle_coord_at(find("view_reticle7_w_3").y, 1.0f), 839);
}

}  // namespace
