// The reticle overlay region of the observation screen's layout, produced from the reticle element
// table: the reticle shapes, the aim-point shapes, the picture-in-picture border, reticle and aim
// point, the range and laser markers, the zoom read-outs and the hold-over panel.
#ifndef TOOLS_RETICLE_LAYOUT_REGION_H
#define TOOLS_RETICLE_LAYOUT_REGION_H

#include <string>

inline constexpr const char* kRegionBegin = "<!-- reticle overlay: begin -->";
inline constexpr const char* kRegionEnd = "<!-- reticle overlay: end -->";

// The lines that go between the two markers, each indented by `indent` plus its nesting and
// ending in a newline.
std::string reticle_overlay_region(const std::string& indent);

// Replaces what lies between the marker lines of `layout` with the region (indented like the
// begin marker). False, with a reason in `error`, when the markers are missing, repeated or out
// of order.
bool splice_reticle_overlay_region(const std::string& layout, std::string* out, std::string* error);

// The text between the marker lines of `layout` (empty when the markers are not found).
std::string extract_reticle_overlay_region(const std::string& layout);

#endif  // TOOLS_RETICLE_LAYOUT_REGION_H
