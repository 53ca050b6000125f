// Test support of the drawing layer: painting on demand, pixels, screenshots and comparison
// with reference pictures.
#include <cstdlib>
#include <filesystem>
#include <string>

#include "draw/compare.h"
#include "draw/images.h"
#include "draw/png_io.h"
#include "draw/screen.h"
#include "draw/text.h"
#include "tk_testing.h"

namespace {

bool env_on(const char* var) {
  const char* v = getenv(var);
  return v != nullptr && *v != '\0' && std::string(v) != "0";
}

// Outside the source tree, where the tests run.
std::string default_output_dir() {
  return (std::filesystem::temp_directory_path() / "tk-test-output").string();
}

}  // namespace

bool tk_testing_paint(void) {
  return tk::draw::paint_pending();
}

uint64_t tk_testing_paint_count(void) {
  return tk::draw::screen().paints;
}

uint32_t tk_testing_pixel(xy_t x, xy_t y) {
  tk::draw::paint_pending();
  const tk::draw::Pixmap& f = tk::draw::screen().frame;
  if (f.empty() || x < 0 || y < 0 || x >= f.w || y >= f.h) return 0;
  return f.at(x, y);
}

ret_t tk_testing_screenshot(const char* png_path) {
  if (png_path == nullptr || !tk::draw::screen().ready) {
    log_error("tk_testing_screenshot: no frame to write (is a drawing backend running?)\n");
    return RET_FAIL;
  }
  tk::draw::paint_pending();
  std::string error;
  if (!tk::draw::save_png(tk::draw::screen().frame, png_path, error)) {
    log_error("tk_testing_screenshot: cannot write %s: %s\n", png_path, error.c_str());
    return RET_FAIL;
  }
  return RET_OK;
}

bool tk_testing_compare_screenshot(const char* reference_png, int tolerance, std::string* message) {
  if (reference_png == nullptr || !tk::draw::screen().ready) {
    if (message != nullptr) *message = "no frame to compare (is a drawing backend running?)";
    return false;
  }
  tk::draw::paint_pending();
  const char* out = getenv("TK_TEST_OUTPUT_DIR");
  auto res = tk::draw::compare_with_reference(
      tk::draw::screen().frame, reference_png, tolerance,
      out != nullptr && *out != '\0' ? std::string(out) : default_output_dir(),
      env_on("TK_UPDATE_REFERENCES"));
  if (message != nullptr) *message = res.message;
  return res.match;
}

ret_t tk_testing_set_backdrop(const char* png_path) {
  return tk::draw::set_backdrop(png_path != nullptr ? png_path : "") ? RET_OK : RET_FAIL;
}

int tk_testing_text_width(widget_t* widget) {
  tk::draw::WidgetText t;
  if (!tk::draw::widget_text_layout(widget, t) || t.text.empty()) return 0;
  return tk::draw::text_width(t.text, t.style);
}

int tk_testing_text_room(widget_t* widget) {
  tk::draw::WidgetText t;
  if (!tk::draw::widget_text_layout(widget, t)) return widget != nullptr ? widget->w : 0;
  return t.box.w;
}

std::string tk_testing_font_file(const char* font_name) {
  return tk::draw::font_file(font_name != nullptr ? font_name : "");
}

void tk_testing_drop_draw_caches(void) {
  tk::draw::image_cache_clear();
  tk::draw::text_cache_clear();
}

void tk_testing_reset_drawing(void) {
  tk::draw::image_cache_clear();
  if (tk::draw::screen().ready) {
    tk::draw::set_backdrop("");  // also marks the whole screen to be painted again
  }
}
