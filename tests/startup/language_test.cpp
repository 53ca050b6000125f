// The language table and the language configuration file, through Inf_GetCustomConfigs.
#include <cstring>
#include <sstream>
#include <string>

#include "common/common_function.h"
#include "tree_fixture.h"

namespace {

using LanguageConfig = DeviceTreeTest;

TEST_F(LanguageConfig, NamesCaseRulesLimitsAndBadFiles) {
  struct {
    const char* json;      // null: no file
    const char* expected;  // "<default> <count>: <the 8 list entries>"
    const char* printed;
  } cases[] = {
      {R"({"DEFAULT LANGUAGE": "German", "LANGUAGES": ["English", "Korean", "Fr", "zh_CN", 7,
          "Ge", "Sp"]})",
       "3 7: 0 255 4 1 255 3 5 0", ""},
      // Only the first letter of a name may change case; codes are exact but for zh_cn.
      {R"({"DEFAULT LANGUAGE": "Korean", "LANGUAGES": ["english", "ENGLISH", "zh_cn", "ru", "EN",
          "Englishman", "", "It"]})",
       "0 8: 0 255 1 255 255 255 255 6", ""},
      {R"({"DEFAULT LANGUAGE": "Italian", "LANGUAGES": ["Chinese", "Russian", "German", "French",
          "Spanish", "Italian", "en", "Ru", "Ge", "Sp"]})",
       "6 8: 1 2 3 4 5 6 0 2", "10 languages listed, only the first 8 are kept\n"},
      {nullptr, "0 0: 0 0 0 0 0 0 0 0", "language.json unreadable: English, no language list\n"},
      {" \n", "0 0: 0 0 0 0 0 0 0 0", "language.json is empty: English, no language list\n"},
      {R"({"DEFAULT LANGUAGE": "German", "LANGUAGES": ["English", )", "0 0: 0 0 0 0 0 0 0 0",
       "is not valid JSON (near"},
      {R"({"DEFAULT LANGUAGE": 3})", "0 0: 0 0 0 0 0 0 0 0",
       "no \"DEFAULT LANGUAGE\" text, English is the default\n"},
      {R"({"DEFAULT LANGUAGE": "Ru", "LANGUAGES": "Ru"})", "2 0: 0 0 0 0 0 0 0 0",
       "no \"LANGUAGES\" list, none offered\n"},
  };
  for (const auto& c : cases) {
    std::filesystem::remove(at("/usrdata/release/language.json"));
    if (c.json != nullptr) write("/usrdata/release/language.json", c.json);
    // Garbage before, and a guard behind the record that must stay untouched.
    struct {
      Inf_CustConfig config;
      char guard[16];
    } g;
    memset(&g, 0x5A, sizeof g);
    const std::string out = printed_by([&] { EXPECT_EQ(Inf_GetCustomConfigs(&g.config), 0); });
    std::ostringstream shown;
    shown << +g.config.s8DefaultLanguage << " " << +g.config.s8LangListCount << ":";
    for (char entry : g.config.s8LangList)
      shown << " " << +static_cast<uint8_t>(entry);
    EXPECT_EQ(shown.str(), c.expected) << (c.json != nullptr ? c.json : "(no file)");
    EXPECT_NE(out.find(c.printed), std::string::npos) << out;
    EXPECT_EQ(std::string(g.guard, 16), std::string(16, 0x5A)) << "written past the record";
  }
}

}  // namespace
