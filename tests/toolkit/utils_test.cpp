// Small helpers of the C API: numbers, strings, colours, UTF-8, the check macros and logging.
#include <climits>

#include "tk_fixture.h"

TEST(Utils, NumbersBooleansAndNullSafeStrings) {
  const char* texts[] = {"42",          "-7",           "0x1F",        "#ff", "0b101",
                         "99999999999", "-99999999999", "-2147483648", "abc", "--5"};
  const int32_t values[] = {42, -7, 31, 255, 5, INT_MAX, INT_MIN, INT_MIN, 0, 0};
  for (size_t i = 0; i < std::size(texts); i++)
    EXPECT_EQ(tk_atoi(texts[i]), values[i]) << texts[i];
  EXPECT_EQ(tk_atoi(nullptr), 0);
  for (const char* f : {"", "false", "False", "f", "0"})
    EXPECT_FALSE(tk_atob(f)) << f;
  EXPECT_TRUE(tk_atob("true") && tk_atob("1") && tk_atob("yes") && !tk_atob(nullptr));
  const char* null = nullptr;
  const char* abc = "abc";
  std::string same = "abc", upper = "ABC";
  EXPECT_TRUE(tk_str_eq(null, null) && !tk_str_eq(abc, null) && tk_str_eq(abc, same.c_str()));
  EXPECT_TRUE(tk_str_ieq(upper.c_str(), abc));
}

TEST(Utils, ColourWordsAreAabbggrrAndStringsAreRgba) {
  const char* texts[] = {"#FF1100",       "#00FF00",    "#0000FF80",
                         "red",           "rgb(1,2,3)", "rgba(255,255,255,0.5)",
                         "rgba(0,0,0,7)", "#FFF",       "nonsense"};
  const uint32_t words[] = {0xFF0011FF, 0xFF00FF00, 0x80FF0000, 0xFF0000FF, 0xFF030201,
                            0x80FFFFFF, 0xFF000000, 0,          0};
  for (size_t i = 0; i < std::size(texts); i++)
    EXPECT_EQ(color_parse(texts[i]).color, words[i]) << texts[i];
  EXPECT_EQ(color_init(1, 2, 3, 4).color, 0x04030201u);
}

TEST(Utils, Utf8AndWideStringsRoundTripAndBrokenInputIsReplaced) {
  wchar_t w[16];
  char u[32];
  tk_utf8_to_utf16("Aé温😀", w, 16);
  EXPECT_EQ(std::wstring(w), (std::wstring{L'A', 0xE9, 0x6E29, 0x1F600}));
  EXPECT_STREQ(tk_utf8_from_utf16(w, u, sizeof(u)), "Aé温😀");
  // Truncation never splits a character and always terminates; broken UTF-8 becomes U+FFFD
  // instead of reading past the end.
  EXPECT_STREQ(tk_utf8_from_utf16(w, u, 4), "Aé");
  tk_utf8_to_utf16("a\xC3", w, 16);
  EXPECT_EQ(std::wstring(w), (std::wstring{L'a', 0xFFFD}));
}

namespace {
int check_line = 0;
ret_t checked(widget_t* win) {
  check_line = __LINE__ + 1;
  return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  return RET_OK;
}
}  // namespace

TEST(Utils, CheckMacrosPrintTheConditionWithFunctionAndLineOnlyInDebugBuilds) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(checked(nullptr), RET_BAD_PARAMS);
  EXPECT_EQ(checked(reinterpret_cast<widget_t*>(1)), RET_OK);
  std::string out = testing::internal::GetCapturedStdout();
#ifdef NDEBUG
  EXPECT_EQ(out, "");
#else
  EXPECT_EQ(out, "checked:" + std::to_string(check_line) + " condition(win != NULL) failed!\n");
#endif
}

TEST(Utils, LogMacrosHonourTheLevelAndReachTheHook) {
  static std::string hooked;
  hooked.clear();
  log_set_hook(
      [](void*, tk_log_level_t level, const char* fmt, va_list ap) {
        char buf[64];
        vsnprintf(buf, sizeof(buf), fmt, ap);
        hooked += std::to_string(level) + ":" + buf;
        return RET_OK;
      },
      nullptr);
  EXPECT_EQ(log_get_log_level(), LOG_LEVEL_DEBUG);
  testing::internal::CaptureStdout();
  log_debug("d%d|", 1);
  log_set_log_level(LOG_LEVEL_WARN);
  log_info("hidden|");
  log_error("e%d|", 2);
  std::string out = testing::internal::GetCapturedStdout();
  log_set_log_level(LOG_LEVEL_DEBUG);
  log_set_hook(nullptr, nullptr);
  EXPECT_EQ(out, "d1|e2|");
  EXPECT_EQ(hooked, "0:d1|3:e2|");
}
