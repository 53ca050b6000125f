// The layouts of the nine pages: full-screen, transparent, single-instance windows whose every
// looked-up name exists, and every text (translated, or written by the page at its longest) fits
// its label with the "default" font at its size in all seven languages.
#include <SDL_ttf.h>

#include <cstring>
#include <map>
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

// The font behind "default" when the theme has none (as the toolkit's text drawing finds it).
constexpr const char* SYSTEM_FONT = "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc";

class LayoutTest : public ReticleTest {
 protected:
  void SetUp() override {
    ReticleTest::SetUp();
    ASSERT_TRUE(TTF_WasInit() > 0 || TTF_Init() == 0) << TTF_GetError();
  }
  void TearDown() override {
    for (auto& [size, font] : fonts_)
      TTF_CloseFont(font);
    ReticleTest::TearDown();
  }

 public:
  TTF_Font* font(int size) {
    auto it = fonts_.find(size);
    if (it != fonts_.end()) return it->second;
    TTF_Font* f = TTF_OpenFontIndex(SYSTEM_FONT, size, 0);
    fonts_[size] = f;
    return f;
  }

 protected:
  std::map<int, TTF_Font*> fonts_;
};

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

// Every label of `win` whose text is wider than the label (less 2 pixels each side).
std::vector<std::string> overflowing(widget_t* win, LayoutTest* test,
                                     TTF_Font* (LayoutTest::*font_of)(int)) {
  struct Walk {
    LayoutTest* test;
    TTF_Font* (LayoutTest::*font_of)(int);
    std::vector<std::string> out;
  } walk{test, font_of, {}};
  widget_foreach(
      win,
      [](void* ctx, const void* iter) -> ret_t {
        Walk& walk = *static_cast<Walk*>(ctx);
        widget_t* w = static_cast<widget_t*>(const_cast<void*>(iter));
        if (std::strcmp(widget_get_type(w), "label") != 0) return RET_OK;
        char text[256] = {0};
        widget_get_text_utf8(w, text, sizeof(text));
        if (text[0] == '\0') return RET_OK;
        int32_t size = 18;
        tk_testing_style_int(w, "font_size", &size);
        int width = 0, height = 0;
        TTF_Font* f = (walk.test->*walk.font_of)(size);
        if (f == nullptr || TTF_SizeUTF8(f, text, &width, &height) != 0) {
          walk.out.push_back(std::string("cannot measure ") + text);
          return RET_OK;
        }
        if (width > w->w - 4 || height > w->h + 8) {
          std::ostringstream line;
          line << (w->name != nullptr ? w->name : "(label)") << " \"" << text << "\" " << width
               << "x" << height << " in " << w->w << "x" << w->h << " at " << size;
          walk.out.push_back(line.str());
        }
        return RET_OK;
      },
      &walk);
  return walk.out;
}

TEST_F(LayoutTest, EveryTextFitsItsLabelInTheSevenLanguages) {
  ASSERT_NE(font(28), nullptr) << "the system font " << SYSTEM_FONT << " is missing";
  for (const Language& lang : LANGUAGES) {
    for (const char* page : PAGES) {
      // The longest texts the pages write themselves.
      for (auto& z : IR_Cursor.group[1].zero) {
        z.u16IrCursorDistance = 899;
        z.u16IrCursorDistanceYD = 999;
        z.s8IrCursorCurrentX = 440;  // -200
        z.s8IrCursorCurrentY = 490;  // -150
      }
      open_over_home(page);
      locale_info_change(locale_info(), lang.language, lang.country);
      advance(0);
      const std::vector<std::string> bad = overflowing(win_, this, &LayoutTest::font);
      EXPECT_TRUE(bad.empty()) << page << " in " << lang.language << "_" << lang.country << ":\n  "
                               << ::testing::PrintToString(bad);
      restart();
    }
  }
}

}  // namespace
