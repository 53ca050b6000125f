// Writes the reticle overlay region from the reticle element table (positions at zoom 1).
#include "reticle_layout_region.h"

#include <cstdint>
#include <cstdio>
#include <string_view>

#include "pages/Zavo_home_page_1_zoom.h"

namespace {

// "#RRGGBBAA" of a toolkit colour word (0xAABBGGRR); "#RRGGBB" when opaque.
std::string color_string(uint32_t word) {
  char s[16];
  const unsigned r = word & 0xFF, g = (word >> 8) & 0xFF, b = (word >> 16) & 0xFF,
                 a = (word >> 24) & 0xFF;
  if (a == 0xFF) {
    snprintf(s, sizeof(s), "#%02X%02X%02X", r, g, b);
  } else {
    snprintf(s, sizeof(s), "#%02X%02X%02X%02X", r, g, b, a);
  }
  return s;
}

struct Writer {
  std::string out;
  std::string indent;
  int depth = 0;

  void line(const std::string& text) {
    out += indent;
    out.append(static_cast<size_t>(depth) * 2, ' ');
    out += text;
    out += '\n';
  }
  void open(const std::string& text) {
    line(text);
    ++depth;
  }
  void close(const char* tag) {
    --depth;
    line(std::string("</") + tag + ">");
  }
};

std::string geometry(int x, int y, int w, int h) {
  return "x=\"" + std::to_string(x) + "\" y=\"" + std::to_string(y) + "\" w=\"" +
         std::to_string(w) + "\" h=\"" + std::to_string(h) + "\"";
}

// One element of the table at zoom 1 (d = 0).
std::string element_line(const ReticleElement& e) {
  const int x = reticle_coord_at(e.x, 0.0f), y = reticle_coord_at(e.y, 0.0f);
  const int w = reticle_coord_at(e.w, 0.0f), h = reticle_coord_at(e.h, 0.0f);
  const std::string name = std::string("name=\"") + e.name + "\" " + geometry(x, y, w, h);
  const std::string color = color_string(e.layout_color);
  switch (e.kind) {
    case ELEMENT_RING:
      // A radius far above the ring's half size keeps it a circle at every zoom (the painter
      // clamps the radius to half the smaller side).
      return "<view " + name + " style.normal.border_color=\"" + color +
             "\" style.normal.border_width=\"2\" style.normal.round_radius=\"840\"/>";
    case ELEMENT_LABEL:
      return "<label " + name + " text=\"" + e.text + "\" style.normal.text_color=\"" + color +
             "\" style.normal.font_size=\"12\" style.normal.text_align_h=\"left\"/>";
    case ELEMENT_DOT:
      return "<view " + name + " style.normal.bg_color=\"" + color +
             "\" style.normal.round_radius=\"" + std::to_string(w / 2) + "\"/>";
    case ELEMENT_LINE: break;
  }
  return "<view " + name + " style.normal.bg_color=\"" + color + "\"/>";
}

// The groups of one range of the table, each as large as its parent.
void write_groups(Writer& w, int first, int last, int size, int visible_group) {
  for (int g = first; g <= last; ++g) {
    w.open(std::string("<view name=\"") + kReticleGroupName[g] + "\" " +
           geometry(0, 0, size, size) + (g == visible_group ? "" : " visible=\"false\"") + ">");
    for (const ReticleElement& e : reticle_elements()) {
      if (e.group == g) w.line(element_line(e));
    }
    w.close("view");
  }
}

// A read-out on a dark translucent plate.
std::string plate_label(const char* name, int x, int y, int w, int h, const char* text,
                        int font_size, const char* extra) {
  return std::string("<label name=\"") + name + "\" " + geometry(x, y, w, h) + " text=\"" + text +
         "\"" + extra +
         " style.normal.bg_color=\"#00000073\" style.normal.round_radius=\"10\""
         " style.normal.text_color=\"#FFFFFF\" style.normal.font_size=\"" +
         std::to_string(font_size) + "\" style.normal.text_align_h=\"center\"/>";
}

}  // namespace

std::string reticle_overlay_region(const std::string& indent) {
  Writer w;
  w.indent = indent;
  w.line(
      "<!-- Written by tools/reticle_layout from the reticle element table "
      "(src/pages/Zavo_home_page_1_zoom.cpp); change the table and run the tool, not this region. "
      "-->");

  // The reticle: a 1680 x 1680 area centred on the cursor (moved to cursor - 840), one group
  // per shape.
  w.open("<view name=\"view_reticle_shoot\" " + geometry(0, 0, 1680, 1680) + ">");
  write_groups(w, GROUP_SHAPE0, GROUP_SHAPE7, 1680, GROUP_SHAPE0);
  w.close("view");

  // Picture-in-picture: the inset the device paints at the top centre (magnified twice about
  // screen point 639, 292), its frame, its zoom read-out and its reticle.
  w.line(
      "<view name=\"view_pip_border\" " + geometry(430, 120, 420, 344) +
      " visible=\"false\" style.normal.border_color=\"#FFFFFF\" style.normal.border_width=\"2\"/>");
  w.line(plate_label("label_PIP_zoom_value", 438, 128, 92, 34, "6.0X", 22, " visible=\"false\""));
  w.open("<view name=\"view_pip_reticle\" " + geometry(608, 260, 64, 64) + " visible=\"false\">");
  w.line("<view name=\"view_pip_reticle_1_1\" " + geometry(18, 18, 28, 28) +
         " style.normal.border_color=\"#FFFFFF\" style.normal.border_width=\"2\""
         " style.normal.round_radius=\"14\"/>");
  w.line("<view name=\"view_pip_reticle_2_1\" " + geometry(12, 20, 40, 24) +
         " visible=\"false\" style.normal.border_color=\"#FFFFFF\""
         " style.normal.border_width=\"2\" style.normal.border=\"left|right\"/>");
  w.line("<view name=\"view_pip_reticle_2_2\" " + geometry(20, 12, 24, 40) +
         " visible=\"false\" style.normal.border_color=\"#FFFFFF\""
         " style.normal.border_width=\"2\" style.normal.border=\"top|bottom\"/>");
  w.line("<view name=\"view_PIP_Reticle_1\" " + geometry(26, 31, 12, 2) +
         " style.normal.bg_color=\"#FFFFFF\"/>");
  w.line("<view name=\"view_PIP_Reticle_2\" " + geometry(31, 26, 2, 12) +
         " style.normal.bg_color=\"#FFFFFF\"/>");
  w.close("view");
  w.open("<view name=\"view_ballistic_pip_reticle\" " + geometry(627, 280, 24, 24) +
         " visible=\"false\">");
  w.line("<view name=\"ballistic_pip_reticle1\" " + geometry(0, 11, 24, 2) +
         " style.normal.bg_color=\"#FFFFFF\"/>");
  w.line("<view name=\"ballistic_pip_reticle2\" " + geometry(11, 0, 2, 24) +
         " style.normal.bg_color=\"#FFFFFF\"/>");
  w.close("view");

  // The ballistic aim point: a 1280 x 1280 area whose centre (640, 640) is the point of impact.
  w.open("<view name=\"image_point\" " + geometry(0, 0, 1280, 1280) + ">");
  write_groups(w, GROUP_AIM1, GROUP_AIM5, 1280, GROUP_AIM1);
  w.close("view");

  // Range-finder and laser markers, 44 x 44, centred on their points.
  w.line("<image name=\"image_reticle_range\" " + geometry(618, 618, 44, 44) +
         " image=\"LRF_1_w.png\" draw_type=\"center\" visible=\"false\"/>");
  w.line("<image name=\"image_reticle_laser\" " + geometry(618, 618, 44, 44) +
         " image=\"laser_1_w.png\" draw_type=\"center\" visible=\"false\"/>");

  // Magnification read-out, top centre of the status bar.
  w.line(plate_label("label_zoom_value", 584, 14, 112, 44, "3.0X", 26, ""));

  // Hold-over panel, right edge: the solution's vertical and horizontal corrections in minutes
  // of angle and milliradians.
  w.line(
      "<view name=\"view_bg_ballistic\" " + geometry(1040, 400, 224, 150) +
      " visible=\"false\" style.normal.bg_color=\"#00000073\" style.normal.round_radius=\"10\"/>");
  w.open("<view name=\"view_ballistics\" " + geometry(1040, 400, 224, 150) + " visible=\"false\">");
  w.line("<label name=\"label_ballistic_moa\" " + geometry(6, 4, 104, 30) +
         " text=\"MOA\" style.normal.text_color=\"#C8C8C8\" style.normal.font_size=\"18\""
         " style.normal.text_align_h=\"center\"/>");
  w.line("<label name=\"label_ballistic_mrad\" " + geometry(114, 4, 104, 30) +
         " text=\"MRAD\" style.normal.text_color=\"#C8C8C8\" style.normal.font_size=\"18\""
         " style.normal.text_align_h=\"center\"/>");
  const char* values[] = {"label_MOA_V", "label_MARD_V", "label_MOA_H", "label_MARD_H"};
  const char* texts[] = {"D0.00", "D0.00", "L0.00", "L0.00"};
  for (int i = 0; i < 4; ++i) {
    w.line(std::string("<label name=\"") + values[i] + "\" " +
           geometry(i % 2 == 0 ? 6 : 114, i < 2 ? 36 : 92, 104, 52) + " text=\"" + texts[i] +
           "\" style.normal.text_color=\"#FFFFFF\" style.normal.font_size=\"26\""
           " style.normal.text_align_h=\"center\"/>");
  }
  w.close("view");
  return w.out;
}

namespace {

struct Markers {
  size_t begin_line_start, begin_line_end, end_line_start;
};

// Finds the marker lines; the region is [begin_line_end, end_line_start).
bool find_markers(const std::string& layout, Markers* m, std::string* error) {
  const size_t b = layout.find(kRegionBegin);
  const size_t e = layout.find(kRegionEnd);
  if (b == std::string::npos || e == std::string::npos) {
    if (error) *error = "the reticle overlay markers are missing";
    return false;
  }
  if (layout.find(kRegionBegin, b + 1) != std::string::npos ||
      layout.find(kRegionEnd, e + 1) != std::string::npos) {
    if (error) *error = "a reticle overlay marker appears twice";
    return false;
  }
  if (e < b) {
    if (error) *error = "the end marker comes before the begin marker";
    return false;
  }
  const size_t line_start = layout.rfind('\n', b);
  m->begin_line_start = line_start == std::string::npos ? 0 : line_start + 1;
  const size_t line_end = layout.find('\n', b);
  m->begin_line_end = line_end == std::string::npos ? layout.size() : line_end + 1;
  const size_t end_start = layout.rfind('\n', e);
  m->end_line_start = end_start == std::string::npos ? 0 : end_start + 1;
  if (m->end_line_start < m->begin_line_end) {
    if (error) *error = "the two markers must stand on lines of their own";
    return false;
  }
  return true;
}

}  // namespace

bool splice_reticle_overlay_region(const std::string& layout, std::string* out,
                                   std::string* error) {
  Markers m{};
  if (!find_markers(layout, &m, error)) return false;
  const size_t b = layout.find(kRegionBegin);
  const std::string indent = layout.substr(m.begin_line_start, b - m.begin_line_start);
  if (indent.find_first_not_of(" \t") != std::string::npos) {
    if (error) *error = "the begin marker must stand on a line of its own";
    return false;
  }
  *out = layout.substr(0, m.begin_line_end) + reticle_overlay_region(indent) +
         layout.substr(m.end_line_start);
  return true;
}

std::string extract_reticle_overlay_region(const std::string& layout) {
  Markers m{};
  if (!find_markers(layout, &m, nullptr)) return std::string();
  return layout.substr(m.begin_line_end, m.end_line_start - m.begin_line_end);
}
