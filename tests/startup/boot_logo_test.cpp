// The boot logo over the observation screen, the start page and the locale switch, in process
// under the toolkit's test clock with the real layouts and strings of res/.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "application.h"
#include "common/common_function.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "tk_testing.h"
#include "tree_fixture.h"

namespace {

std::string text_of(const char* window, const char* name) {
  widget_t* win = widget_child(window_manager(), window);
  widget_t* w = win != nullptr ? widget_lookup(win, name, TRUE) : nullptr;
  if (w == nullptr) return "<no " + std::string(name) + ">";
  char buffer[128] = {};
  widget_get_text_utf8(w, buffer, sizeof buffer);
  return buffer;
}

std::string locale() {
  return std::string(locale_info()->language) + "_" + locale_info()->country;
}

class BootLogo : public ::testing::Test {
 protected:
  void SetUp() override {
    tk_testing_init();
    stDevStatus = Inf_DevStatus{};
    stUIStatus = Inf_UIStatus{};
    s_stCustConfig = Inf_CustConfig{3, 3, {0, 3, 4}};  // German by default; en, de, fr offered
    change_locale("zh_CN");                            // as main leaves it
  }

  // The start sequence: the observation screen (its records already in), then the logo above.
  std::string start() {
    stUIStatus.event_distrubut_reday = 1;
    EXPECT_EQ(navigator_to("Zavo_home_page_1"), RET_OK);
    tk_testing_advance(0);
    std::string out = printed_by([] { EXPECT_EQ(navigator_to("Boot_logo"), RET_OK); });
    tk_testing_advance(0);
    return out;
  }
};

TEST_F(BootLogo, FirstStartShowsTheDefaultLanguageThenTheObservationScreen) {
  stUIStatus.s8FirstLanguageFlag = 1;
  const std::string out = start();
  EXPECT_EQ(stDevStatus.s8Language, 3);
  EXPECT_EQ(locale(), "de_DE");
  EXPECT_EQ(text_of("Boot_logo", "label_boot_tagline"), "Wärmebild-Zielfernrohr");
  EXPECT_EQ(text_of("Boot_logo", "label_boot_starting"), "Wird gestartet...");
  EXPECT_NE(out.find("s_stCustConfig->s8DefaultLanguage = 3!\n"
                     "s_stCustConfig->s8LangList[0]: 0\n"
                     "s_stCustConfig->s8LangList[1]: 3\n"
                     "s_stCustConfig->s8LangList[2]: 4\n"
                     "s_stCustConfig->s8LangList[3]: 0\n"),
            std::string::npos)
      << out;
  EXPECT_NE(out.find("change language to German!"), std::string::npos) << out;
  EXPECT_EQ(tk_testing_window_names(), (std::vector<std::string>{"Zavo_home_page_1", "Boot_logo"}));

  tk_testing_advance(4999);
  EXPECT_EQ(tk_testing_window_names().back(), "Boot_logo");
  EXPECT_EQ(stUIStatus.s8IRZoom, 0);

  tk_testing_advance(1);
  EXPECT_EQ(tk_testing_window_names(), std::vector<std::string>{"Zavo_home_page_1"});
  EXPECT_EQ(stUIStatus.s8IRZoom, 100);  // 1.00x in hundredths
  EXPECT_EQ(stUIStatus.s8VisiZoom, 1);
  EXPECT_EQ(stUIStatus.s8FuZoom, 1);
}

TEST_F(BootLogo, LaterStartsKeepTheDevicesLanguage) {
  stDevStatus.s8Language = 4;  // French, as the device application stored it
  const std::string out = start();
  EXPECT_EQ(stDevStatus.s8Language, 4);
  EXPECT_EQ(locale(), "fr_FR");
  EXPECT_EQ(text_of("Boot_logo", "label_boot_tagline"), "Lunette de visée thermique");
  EXPECT_NE(out.find("change language to French!"), std::string::npos) << out;
}

TEST_F(BootLogo, AnUnknownLanguageLeavesTheStartLocale) {
  stDevStatus.s8Language = 7;
  std::string out = start();
  EXPECT_EQ(locale(), "zh_CN");
  EXPECT_EQ(text_of("Boot_logo", "label_boot_tagline"), "热成像瞄准镜");
  EXPECT_EQ(out.find("change language"), std::string::npos) << out;

  navigator_close("Boot_logo");
  stDevStatus.s8Language = static_cast<char>(255);
  out = printed_by([] { navigator_to("Boot_logo"); });
  EXPECT_EQ(locale(), "zh_CN");
  EXPECT_NE(out.find("name  =============Boot_logo"), std::string::npos) << out;
  EXPECT_EQ(out.find("change language"), std::string::npos) << out;
}

TEST_F(BootLogo, ClipOnUseModeAlsoEndsOnTheObservationScreen) {
  stDevStatus.s8UseMode = 1;
  start();
  tk_testing_advance(5000);
  EXPECT_EQ(tk_testing_window_names(), std::vector<std::string>{"Zavo_home_page_1"});
}

TEST_F(BootLogo, APageOpenedAboveTheLogoStaysWhenTheLogoGoes) {
  start();
  tk_testing_advance(1000);
  ASSERT_NE(tk_testing_open_xml("Zavo_SHUT_DOWN", R"(<window name="Zavo_SHUT_DOWN"/>)"), nullptr);
  tk_testing_advance(4000);
  EXPECT_EQ(tk_testing_window_names(),
            (std::vector<std::string>{"Zavo_home_page_1", "Zavo_SHUT_DOWN"}));
}

TEST_F(BootLogo, EachLanguageOfTheTableHasItsTexts) {
  const char* taglines[] = {"Thermal Imaging Riflescope", "热成像瞄准镜",
                            "Тепловизионный прицел",      "Wärmebild-Zielfernrohr",
                            "Lunette de visée thermique", "Visor térmico",
                            "Cannocchiale termico"};
  stUIStatus.event_distrubut_reday = 1;
  ASSERT_EQ(navigator_to("Boot_logo"), RET_OK);
  tk_testing_advance(0);
  for (size_t i = 0; i < language_table.size(); ++i) {
    EXPECT_EQ(change_locale(language_table[i].locale), RET_OK);
    tk_testing_advance(0);
    EXPECT_EQ(text_of("Boot_logo", "label_boot_tagline"), taglines[i]) << language_table[i].locale;
  }
}

TEST(ChangeLocale, BadCodesAreRefused) {
  tk_testing_init();
  change_locale("it_IT");
  std::string out = printed_by([] { EXPECT_EQ(change_locale("en"), RET_BAD_PARAMS); });
  EXPECT_NE(out.find("change_locale: bad locale code <en>"), std::string::npos) << out;
  out = printed_by([] { EXPECT_EQ(change_locale(nullptr), RET_BAD_PARAMS); });
  EXPECT_NE(out.find("bad locale code"), std::string::npos) << out;
  EXPECT_EQ(locale(), "it_IT");
}

TEST(StartPage, SetsTheVideoStepAndClearsTheReadyFlag) {
  tk_testing_init();
  stUIStatus.u8VideoCurrentFrames = 0;
  stUIStatus.event_distrubut_reday = 1;
  ASSERT_EQ(navigator_to("Zavo_Init"), RET_OK);
  tk_testing_advance(0);
  EXPECT_EQ(stUIStatus.u8VideoCurrentFrames, 600);
  EXPECT_EQ(stUIStatus.event_distrubut_reday, 0);
  EXPECT_EQ(tk_testing_window_names().back(), "Zavo_Init");
}

TEST(Theme, OnlyDefaultExists) {
  tk_testing_init();
  EXPECT_TRUE(assets_has_theme("default"));
  EXPECT_FALSE(assets_has_theme("dark"));
  const std::string out = printed_by([] { EXPECT_FALSE(assets_has_theme(nullptr)); });
  EXPECT_NE(out.find("assets_has_theme:"), std::string::npos) << out;
  EXPECT_NE(out.find(" condition(name != NULL) failed!\n"), std::string::npos) << out;
}

}  // namespace
