// The layouts of the nine pages: full-screen, transparent, single-instance windows whose every
// looked-up name exists, and every text (translated, or written by the page at its longest) fits
// its label, measured with the font it is drawn in, in all seven languages.
#include <cstring>
#include <sstream>

#include "reticle_fixture.h"

namespace {

using reticle_test::ReticleTest;

constexpr const char* PAGES[] = {
    "Zavo_reticle_zero", "Zavo_reticle_zero_child", "Zavo_reticle_move",
    "Zavo_range_move",   "Zavo_laser_move",         "Zavo_reticle_menu",
    "Zavo_pixel_menu",   "Zavo_pixel_child",        "Zavo_pixel_save"};

struct Language {
  const char* language;
  const char* country;
};
constexpr Language LANGUAGES[] = {{"en", "US"}, {"zh", "CN"}, {"ru", "RU"}, {"de", "DE"},
                                  {"fr", "FR"}, {"es", "ES"}, {"it", "IT"}};

using LayoutTest = ReticleTest;

TEST_F(LayoutTest, EveryPageIsAFullScreenTransparentSingleInstanceWindow) {
  for (const char* page : PAGES) {
    open_over_home(page);
    ASSERT_NE(win_, nullptr) << page;
    EXPECT_EQ(win_->w, 1280) << page;
    EXPECT_EQ(win_->h, 1024) << page;
    EXPECT_TRUE(widget_get_prop_bool(win_, "single_instance", FALSE)) << page;
    uint32_t bg = 0x12345678;
    EXPECT_TRUE(tk_testing_style_color(win_, "bg_color", &bg));
    EXPECT_EQ(bg >> 24, 0u) << page << ": the observation screen shows through";
    EXPECT_EQ(tk_testing_failed_lookups(), 0u) << page;
    restart();
  }
}

// Every label of `win` whose text is wider than the room it has (its width less margins).
std::vector<std::string> overflowing(widget_t* win) {
  std::vector<std::string> out;
  widget_foreach(
      win,
      [](void* ctx, const void* iter) -> ret_t {
        auto& out = *static_cast<std::vector<std::string>*>(ctx);
        widget_t* w = static_cast<widget_t*>(const_cast<void*>(iter));
        if (std::strcmp(widget_get_type(w), "label") != 0) return RET_OK;
        const int width = tk_testing_text_width(w);
        const int room = tk_testing_text_room(w);
        if (width < 0 || width > room) {
          char text[256] = {0};
          widget_get_text_utf8(w, text, sizeof(text));
          std::ostringstream line;
          line << (w->name != nullptr ? w->name : "(label)") << " \"" << text << "\" " << width
               << " in " << room;
          out.push_back(line.str());
        }
        return RET_OK;
      },
      &out);
  return out;
}

// The pages' own texts at their longest (distances of three digits and a unit, offsets at their
// limits), in every language, against their labels.
TEST_F(LayoutTest, EveryTextFitsItsLabelInTheSevenLanguages) {
  for (const Language& lang : LANGUAGES) {
    for (const char* page : PAGES) {
      for (auto& z : IR_Cursor.group[1].zero) {
        z.u16IrCursorDistance = 899;
        z.u16IrCursorDistanceYD = 999;
        z.s8IrCursorCurrentX = 440;  // -200
        z.s8IrCursorCurrentY = 490;  // -150
      }
      open_over_home(page);
      locale_info_change(locale_info(), lang.language, lang.country);
      advance(0);
      const std::vector<std::string> bad = overflowing(win_);
      EXPECT_TRUE(bad.empty()) << page << " in " << lang.language << "_" << lang.country << ":\n  "
                               << ::testing::PrintToString(bad);
      restart();
    }
  }
}

}  // namespace
