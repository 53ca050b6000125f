// String tables: the .bin layout strgen writes, lookups in it, and the committed tables.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tk_strings.h"

namespace {

uint32_t u32(const std::string& b, size_t at) {
  return static_cast<uint8_t>(b[at]) | static_cast<uint8_t>(b[at + 1]) << 8 |
         static_cast<uint8_t>(b[at + 2]) << 16 |
         static_cast<uint32_t>(static_cast<uint8_t>(b[at + 3])) << 24;
}

}  // namespace

TEST(Strings, TheTableLayoutIsVersionCountSortedPairsThenStrings) {
  std::string bin = tk::strings_table_bin({{"zeta", "Z"}, {"alpha", "A"}, {"mid", "Mm"}});
  ASSERT_GE(bin.size(), 4u);
  EXPECT_EQ(bin[0], 0);  // version 0, little-endian
  EXPECT_EQ(bin[1], 0);
  EXPECT_EQ(bin[2], 3);  // count
  EXPECT_EQ(bin[3], 0);
  // count + 1 pairs; offsets from the start of the table; keys in strcmp order.
  const char* keys[] = {"alpha", "mid", "zeta"};
  const char* values[] = {"A", "Mm", "Z"};
  for (int i = 0; i < 3; i++) {
    uint32_t k = u32(bin, 4 + i * 8), v = u32(bin, 4 + i * 8 + 4);
    ASSERT_LT(k, bin.size());
    ASSERT_LT(v, bin.size());
    EXPECT_STREQ(bin.c_str() + k, keys[i]);
    EXPECT_STREQ(bin.c_str() + v, values[i]);
  }
  EXPECT_EQ(u32(bin, 4 + 3 * 8), 0u);  // padding pair
  EXPECT_EQ(u32(bin, 4), 4u + 4 * 8);  // strings start right after the pairs
  EXPECT_EQ(bin.back(), '\0');
}

TEST(Strings, BinarySearchFindsEveryKeyAndRejectsOthers) {
  std::map<std::string, std::string> t;
  for (int i = 0; i < 200; i++)
    t["key_" + std::to_string(i)] = "value " + std::to_string(i);
  std::string bin = tk::strings_table_bin(t);
  std::string out;
  for (auto& [k, v] : t) {
    ASSERT_TRUE(tk::strings_table_lookup(bin, k.c_str(), &out)) << k;
    EXPECT_EQ(out, v);
  }
  EXPECT_FALSE(tk::strings_table_lookup(bin, "key_", &out));
  EXPECT_FALSE(tk::strings_table_lookup(bin, "zzz", &out));
  // A truncated table is refused, not read past its end.
  EXPECT_FALSE(tk::strings_table_lookup(bin.substr(0, 20), "key_1", &out));
}

TEST(Strings, TheSourceFormatMergesFilesAndReportsDuplicates) {
  tk::StringsSource src;
  EXPECT_TRUE(
      tk::strings_parse_xml("<strings><string name=\"ok\"><language name=\"en_US\">OK</language>"
                            "<language name=\"ru_RU\">Да</language></string></strings>",
                            "one.xml", &src));
  EXPECT_TRUE(
      tk::strings_parse_xml("<string name=\"ok\"><language name=\"en_US\">Again</language></string>"
                            "<string name=\"no\"><language name=\"en_US\">No</language></string>",
                            "two.xml", &src));
  EXPECT_FALSE(tk::strings_parse_xml("<string name=\"broken\">", "bad.xml", &src));
  EXPECT_EQ(src.tables["en_US"]["ok"], "OK");
  EXPECT_EQ(src.tables["ru_RU"]["ok"], "Да");
  EXPECT_EQ(src.tables["en_US"]["no"], "No");
  ASSERT_EQ(src.errors.size(), 2u);
  EXPECT_NE(src.errors[0].find("\"ok\" is defined twice (one.xml and two.xml)"), std::string::npos);
  EXPECT_NE(src.errors[1].find("bad.xml"), std::string::npos);
}

TEST(Strings, CommittedTablesEqualAFreshCompileOfTheXml) {
  namespace fs = std::filesystem;
  const std::string dir = "res/assets/default/raw/strings";
  tk::StringsSource src;
  tk::strings_load_dir(dir, &src);
  for (const std::string& e : src.errors)
    ADD_FAILURE() << e;
  bool any_bin = false;
  for (const auto& e : fs::directory_iterator(dir))
    any_bin |= e.path().extension() == ".bin";
  if (!any_bin)
    GTEST_SKIP() << "no .bin tables committed yet (run build/<dir>/tools/strgen/strgen)";
  for (const auto& [lang, table] : src.tables) {
    std::ifstream in(dir + "/" + lang + ".bin", std::ios::binary);
    ASSERT_TRUE(in) << lang << ".bin is missing: run strgen";
    std::stringstream ss;
    ss << in.rdbuf();
    EXPECT_TRUE(ss.str() == tk::strings_table_bin(table)) << lang << ".bin is stale: run strgen";
  }
}
