// The language table and the language configuration file.
#include <cstring>
#include <string>

#include "common/common_function.h"
#include "tree_fixture.h"

namespace {

TEST(LanguageTable, NamesAndShortCodes) {
  const char* names[] = {"English", "Chinese", "Russian", "German", "French", "Spanish", "Italian"};
  const char* codes[] = {"en", "zh_CN", "Ru", "Ge", "Fr", "Sp", "It"};
  for (int i = 0; i < 7; ++i) {
    EXPECT_EQ(Inf_getLanguageInfo(names[i]), i) << names[i];
    EXPECT_EQ(Inf_getLanguageInfo(codes[i]), i) << codes[i];
  }
  // Only the first letter of a name may change case; codes are exact but for zh_cn.
  EXPECT_EQ(Inf_getLanguageInfo("english"), 0);
  EXPECT_EQ(Inf_getLanguageInfo("zh_cn"), 1);
  for (const char* none :
       {"ENGLISH", "EN", "ru", "de_DE", "Korean", "", "Englishman", " English"}) {
    EXPECT_EQ(Inf_getLanguageInfo(none), -1) << '"' << none << '"';
  }
  EXPECT_EQ(Inf_getLanguageInfo(nullptr), -1);
  const std::string out = printed_by([] { EXPECT_NE(Inf_CheckStringMatch("x", "(["), 0); });
  EXPECT_NE(out.find("bad pattern"), std::string::npos) << out;
}

class LanguageConfig : public DeviceTreeTest {
 protected:
  static constexpr const char* kFile = "/usrdata/release/language.json";

  // A config record with a guard right behind it, prefilled with garbage.
  struct Guarded {
    Inf_CustConfig config;
    unsigned char guard[16];
  };
  Guarded load(std::string* printed = nullptr) {
    Guarded g;
    memset(&g, 0x5A, sizeof g);
    std::string out = printed_by([&] { EXPECT_EQ(Inf_GetCustomConfigs(&g.config), 0); });
    for (unsigned char b : g.guard)
      EXPECT_EQ(b, 0x5A) << "written past the language list";
    if (printed != nullptr) *printed = out;
    return g;
  }
  static int at(const Inf_CustConfig& c, int i) { return static_cast<uint8_t>(c.s8LangList[i]); }
  static void expect_defaults(const Inf_CustConfig& c) {
    EXPECT_EQ(c.s8DefaultLanguage, 0);
    EXPECT_EQ(c.s8LangListCount, 0);
    for (int i = 0; i < LANGUAGE_LIST_MAX; ++i)
      EXPECT_EQ(at(c, i), 0);
  }
};

TEST_F(LanguageConfig, ReadsDefaultAndListWithUnknownNamesAs255) {
  write(kFile,
        R"({"DEFAULT LANGUAGE": "German", "LANGUAGES": ["English", "Korean", "Fr", "zh_CN"]})");
  const Inf_CustConfig c = load().config;
  EXPECT_EQ(c.s8DefaultLanguage, 3);
  EXPECT_EQ(c.s8LangListCount, 4);
  EXPECT_EQ(at(c, 0), 0);
  EXPECT_EQ(at(c, 1), 255);
  EXPECT_EQ(at(c, 2), 4);
  EXPECT_EQ(at(c, 3), 1);
  EXPECT_EQ(at(c, 4), 0);
}

TEST_F(LanguageConfig, UnknownDefaultLanguageIsEnglish) {
  write(kFile, R"({"DEFAULT LANGUAGE": "Korean", "LANGUAGES": ["Korean"]})");
  const Inf_CustConfig c = load().config;
  EXPECT_EQ(c.s8DefaultLanguage, 0);
  EXPECT_EQ(c.s8LangListCount, 1);
  EXPECT_EQ(at(c, 0), 255);
}

TEST_F(LanguageConfig, KeepsOnlyTheFirstEightLanguages) {
  write(kFile, R"({"DEFAULT LANGUAGE": "Italian", "LANGUAGES":
      ["It", "Sp", "Fr", "Ge", "Ru", "zh_CN", "en", "Italian", "Spanish", "French", "German"]})");
  std::string printed;
  const Inf_CustConfig c = load(&printed).config;
  EXPECT_EQ(c.s8DefaultLanguage, 6);
  EXPECT_EQ(c.s8LangListCount, 8);
  const int expected[8] = {6, 5, 4, 3, 2, 1, 0, 6};
  for (int i = 0; i < 8; ++i)
    EXPECT_EQ(at(c, i), expected[i]) << i;
  EXPECT_NE(printed.find("11 languages listed, only the first 8 are kept"), std::string::npos)
      << printed;
}

TEST_F(LanguageConfig, MissingEmptyOrMalformedFileLeavesDefaults) {
  std::string printed;
  expect_defaults(load(&printed).config);
  EXPECT_NE(printed.find("language.json unreadable: English, no language list"), std::string::npos)
      << printed;
  write(kFile, " \n");
  expect_defaults(load(&printed).config);
  EXPECT_NE(printed.find("is empty"), std::string::npos) << printed;
  write(kFile, R"({"DEFAULT LANGUAGE": "German", "LANGUAGES": ["English", )");
  expect_defaults(load(&printed).config);
  EXPECT_NE(printed.find("is not valid JSON"), std::string::npos) << printed;
}

TEST_F(LanguageConfig, WrongTypesAreReportedAndSkipped) {
  write(kFile, R"({"DEFAULT LANGUAGE": 3, "LANGUAGES": "English"})");
  std::string printed;
  expect_defaults(load(&printed).config);
  EXPECT_NE(printed.find("no \"DEFAULT LANGUAGE\" text"), std::string::npos) << printed;
  EXPECT_NE(printed.find("no \"LANGUAGES\" list"), std::string::npos) << printed;

  write(kFile, R"({"DEFAULT LANGUAGE": "Ru", "LANGUAGES": ["Ru", 7, null]})");
  const Inf_CustConfig c = load().config;
  EXPECT_EQ(c.s8DefaultLanguage, 2);
  EXPECT_EQ(c.s8LangListCount, 3);
  EXPECT_EQ(at(c, 0), 2);
  EXPECT_EQ(at(c, 1), 255);
  EXPECT_EQ(at(c, 2), 255);
}

}  // namespace
