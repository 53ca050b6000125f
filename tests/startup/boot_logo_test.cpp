// The boot logo over the observation screen, in process under the toolkit's test clock with the
// real layouts and strings of res/: the language it applies, its texts, and the hand-over.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/common_function.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "tk_testing.h"
#include "tree_fixture.h"

namespace {

using names = std::vector<std::string>;

class BootLogo : public ::testing::Test {
 protected:
  void SetUp() override {
    tk_testing_init();
    stDevStatus = Inf_DevStatus{};
    stUIStatus = Inf_UIStatus{};
    stUIStatus.event_distrubut_reday = 1;              // the device's records are in
    s_stCustConfig = Inf_CustConfig{3, 3, {0, 3, 4}};  // German by default; en, de, fr offered
    change_locale("zh_CN");                            // as main leaves it
    EXPECT_EQ(navigator_to("Zavo_home_page_1"), RET_OK);
  }

  // Opens the logo above the observation screen; returns what it printed.
  static std::string open_logo() {
    std::string out = printed_by([] { EXPECT_EQ(navigator_to("Boot_logo"), RET_OK); });
    tk_testing_advance(0);
    return out;
  }
  // "<locale> <the logo's tagline>".
  static std::string shown() {
    char text[128] = {};
    widget_t* win = widget_child(window_manager(), "Boot_logo");
    widget_get_text_utf8(widget_lookup(win, "label_boot_tagline", TRUE), text, sizeof text);
    return std::string(locale_info()->language) + "_" + locale_info()->country + " " + text;
  }
};

TEST_F(BootLogo, FirstStartShowsTheDefaultLanguageThenTheObservationScreen) {
  stUIStatus.s8FirstLanguageFlag = 1;
  const std::string out = open_logo();
  EXPECT_EQ(stDevStatus.s8Language, 3);
  EXPECT_EQ(shown(), "de_DE Wärmebild-Zielfernrohr");
  EXPECT_NE(out.find("s_stCustConfig->s8DefaultLanguage = 3!\n"
                     "s_stCustConfig->s8LangList[0]: 0\n"
                     "s_stCustConfig->s8LangList[1]: 3\n"
                     "s_stCustConfig->s8LangList[2]: 4\n"
                     "s_stCustConfig->s8LangList[3]: 0\n"
                     "change language to German!\n"),
            std::string::npos)
      << out;
  EXPECT_EQ(tk_testing_window_names(), (names{"Zavo_home_page_1", "Boot_logo"}));

  tk_testing_advance(4999);
  EXPECT_EQ(tk_testing_window_names().back(), "Boot_logo");
  EXPECT_EQ(stUIStatus.s8IRZoom, 0);
  tk_testing_advance(1);
  EXPECT_EQ(tk_testing_window_names(), names{"Zavo_home_page_1"});
  EXPECT_EQ(stUIStatus.s8IRZoom, 100);  // 1.00x in hundredths
  EXPECT_EQ(stUIStatus.s8VisiZoom, 1);
  EXPECT_EQ(stUIStatus.s8FuZoom, 1);

  // A page opened above the logo meanwhile stays on top; only the logo goes.
  open_logo();
  tk_testing_advance(1000);
  ASSERT_NE(tk_testing_open_xml("Zavo_SHUT_DOWN", R"(<window name="Zavo_SHUT_DOWN"/>)"), nullptr);
  tk_testing_advance(4000);
  EXPECT_EQ(tk_testing_window_names(), (names{"Zavo_home_page_1", "Zavo_SHUT_DOWN"}));
}

TEST_F(BootLogo, LaterStartsApplyTheDevicesLanguageWithItsTexts) {
  const char* taglines[] = {"Thermal Imaging Riflescope", "热成像瞄准镜",
                            "Тепловизионный прицел",      "Wärmebild-Zielfernrohr",
                            "Lunette de visée thermique", "Visor térmico",
                            "Cannocchiale termico"};
  for (int i = 0; i < 7; ++i) {
    stDevStatus.s8Language = static_cast<char>(i);
    stDevStatus.s8UseMode = static_cast<char>(i % 2);  // observation or clip-on: the same screen
    const std::string out = open_logo();
    EXPECT_EQ(stDevStatus.s8Language, i);
    EXPECT_EQ(shown(), std::string(language_table[i].locale) + " " + taglines[i]);
    EXPECT_NE(out.find(std::string(language_table[i].message) + "\n"), std::string::npos) << out;
    tk_testing_advance(5000);
    EXPECT_EQ(tk_testing_window_names(), names{"Zavo_home_page_1"});
  }
  // An index outside the table leaves the locale as it is.
  for (int language : {7, 255}) {  // 255: a byte, not -1
    stDevStatus.s8Language = static_cast<char>(language);
    const std::string out = open_logo();
    EXPECT_NE(out.find("name  =============Boot_logo"), std::string::npos) << out;
    EXPECT_EQ(out.find("change language"), std::string::npos) << out;
    EXPECT_EQ(shown(), "it_IT Cannocchiale termico");
  }
  EXPECT_EQ(tk_testing_window_names(), (names{"Zavo_home_page_1", "Boot_logo"}));
}

}  // namespace
