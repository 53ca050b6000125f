// Small helpers of the C API: numbers, strings, colours, UTF-8 and the check macros.
#include "tk_fixture.h"

TEST(Utils, AtoiReadsHexBinaryAndClamps) {
  EXPECT_EQ(tk_atoi("42"), 42);
  EXPECT_EQ(tk_atoi("-7"), -7);
  EXPECT_EQ(tk_atoi("0x1F"), 31);
  EXPECT_EQ(tk_atoi("#ff"), 255);
  EXPECT_EQ(tk_atoi("0b101"), 5);
  EXPECT_EQ(tk_atoi("99999999999"), INT32_MAX);
  EXPECT_EQ(tk_atoi("-99999999999"), INT32_MIN);
  EXPECT_EQ(tk_atoi("abc"), 0);
  EXPECT_EQ(tk_atoi(nullptr), 0);
}

TEST(Utils, AtobTreatsEmptyFalseAndZeroAsFalse) {
  for (const char* f : {"", "false", "False", "f", "0"})
    EXPECT_FALSE(tk_atob(f)) << f;
  for (const char* t : {"true", "1", "yes", "on"})
    EXPECT_TRUE(tk_atob(t)) << t;
  EXPECT_FALSE(tk_atob(nullptr));
}

TEST(Utils, StrEqIsNullSafe) {
  const char* null = nullptr;
  const char* abc = "abc";
  std::string same = "abc", other = "abd", upper = "ABC";
  EXPECT_TRUE(tk_str_eq(null, null));
  EXPECT_FALSE(tk_str_eq(abc, null));
  EXPECT_TRUE(tk_str_eq(abc, same.c_str()));
  EXPECT_FALSE(tk_str_eq(abc, other.c_str()));
  EXPECT_TRUE(tk_str_ieq(upper.c_str(), abc));
}

TEST(Utils, SnprintfIsPlainAndSafeOnNull) {
  char buf[8];
  EXPECT_EQ(tk_snprintf(buf, sizeof(buf), "%d-%s", 12, "ab"), 5);
  EXPECT_STREQ(buf, "12-ab");
  EXPECT_EQ(tk_snprintf(nullptr, 4, "x"), 0);
  EXPECT_EQ(tk_snprintf(buf, sizeof(buf), nullptr), 0);
}

TEST(Utils, ColourWordsAreAabbggrrAndStringsAreRgba) {
  EXPECT_EQ(color_parse("#FF1100").color, 0xFF0011FFu);
  EXPECT_EQ(color_parse("#00FF00").color, 0xFF00FF00u);
  EXPECT_EQ(color_parse("#0000FF80").color, 0x80FF0000u);
  EXPECT_EQ(color_parse("red").color, 0xFF0000FFu);
  EXPECT_EQ(color_parse("rgb(1,2,3)").color, 0xFF030201u);
  EXPECT_EQ(color_parse("rgba(255,255,255,0.5)").color, 0x80FFFFFFu);
  EXPECT_EQ(color_parse("#FFF").color, 0u);
  EXPECT_EQ(color_parse("nonsense").color, 0u);
  color_t c = color_init(1, 2, 3, 4);
  EXPECT_EQ(c.color, 0x04030201u);
}

TEST(Utils, Utf8AndWideStringsRoundTrip) {
  wchar_t w[16];
  char u[32];
  tk_utf8_to_utf16("Aé温😀", w, 16);
  EXPECT_EQ(wcslen(w), 4u);
  EXPECT_EQ(w[3], 0x1F600);
  tk_utf8_from_utf16(w, u, sizeof(u));
  EXPECT_STREQ(u, "Aé温😀");
  // Truncation never splits a character and always terminates.
  tk_utf8_from_utf16(w, u, 4);
  EXPECT_STREQ(u, "Aé");
  // Broken UTF-8 becomes U+FFFD instead of reading past the end.
  tk_utf8_to_utf16("a\xC3", w, 16);
  EXPECT_EQ(w[1], 0xFFFD);
  wstr_t s;
  wstr_init(&s, 0);
  wstr_set_utf8(&s, "xyz");
  EXPECT_EQ(s.size, 3u);
  wstr_get_utf8(&s, u, sizeof(u));
  EXPECT_STREQ(u, "xyz");
  wstr_reset(&s);
  EXPECT_EQ(s.str, nullptr);
}

namespace {
ret_t checked(widget_t* win) {
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
  // Release builds keep the control flow and print nothing.
  EXPECT_EQ(out, "");
#else
  EXPECT_NE(out.find("checked:"), std::string::npos) << out;
  EXPECT_NE(out.find(" condition(win != NULL) failed!\n"), std::string::npos) << out;
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
