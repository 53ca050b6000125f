// String tables: the .bin layout strgen writes, lookups in it, the XML source format, and the
// committed tables.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "tk_strings.h"

namespace {

uint32_t u32(const std::string& b, size_t at) {
  uint32_t v = 0;
  for (int i = 3; i >= 0; i--)
    v = v << 8 | static_cast<uint8_t>(b[at + i]);
  return v;
}

}  // namespace

TEST(Strings, TheTableIsVersionCountSortedPairsThenStringsAndBinarySearchFindsEveryKey) {
  std::string bin = tk::strings_table_bin({{"zeta", "Z"}, {"alpha", "A"}, {"mid", "Mm"}});
  ASSERT_GE(bin.size(), 4u + 4 * 8);
  EXPECT_EQ(bin.substr(0, 4), std::string("\0\0\3\0", 4));  // version 0, count 3, little-endian
  // count + 1 pairs of offsets from the start of the table, keys in strcmp order, strings
  // right after the pairs.
  const char* keys[] = {"alpha", "mid", "zeta"};
  const char* values[] = {"A", "Mm", "Z"};
  for (int i = 0; i < 3; i++) {
    EXPECT_STREQ(bin.c_str() + u32(bin, 4 + i * 8), keys[i]);
    EXPECT_STREQ(bin.c_str() + u32(bin, 4 + i * 8 + 4), values[i]);
  }
  EXPECT_EQ(u32(bin, 4 + 3 * 8), 0u);  // padding pair
  EXPECT_EQ(u32(bin, 4), 4u + 4 * 8);

  std::map<std::string, std::string> t;
  for (int i = 0; i < 200; i++)
    t["key_" + std::to_string(i)] = "value " + std::to_string(i);
  bin = tk::strings_table_bin(t);
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
  using Table = std::map<std::string, std::string>;
  EXPECT_EQ(src.tables["en_US"], (Table{{"ok", "OK"}, {"no", "No"}}));
  EXPECT_EQ(src.tables["ru_RU"], (Table{{"ok", "Да"}}));
  ASSERT_EQ(src.errors.size(), 2u);
  EXPECT_NE(src.errors[0].find("\"ok\" is defined twice (one.xml and two.xml)"), std::string::npos);
  EXPECT_NE(src.errors[1].find("bad.xml"), std::string::npos);
}

TEST(Strings, CommittedTablesEqualAFreshCompileOfTheXml) {
  const std::string dir = "res/assets/default/raw/strings";
  tk::StringsSource src;
  tk::strings_load_dir(dir, &src);
  for (const std::string& e : src.errors)
    ADD_FAILURE() << e;
  ASSERT_FALSE(src.tables.empty());
  for (const auto& [lang, table] : src.tables) {
    std::ifstream in(dir + "/" + lang + ".bin", std::ios::binary);
    ASSERT_TRUE(in) << lang << ".bin is missing: run strgen";
    std::stringstream ss;
    ss << in.rdbuf();
    EXPECT_TRUE(ss.str() == tk::strings_table_bin(table)) << lang << ".bin is stale: run strgen";
  }
}
