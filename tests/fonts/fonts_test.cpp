// The resource tree's font. fontface writes one face of a font collection as a font file of its
// own (the tree needs a plain fonts/default.ttf); the build puts face SCOPE_FONT_FACE of the
// Debian font there; fonts are found by name in the tree only; and the font has a glyph for every
// character of every text the UI shows, in all seven languages.
#include <SDL_ttf.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <pugixml.hpp>
#include <set>
#include <string>
#include <vector>

#include "tk_testing.h"

namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<uint8_t>;

const std::string kFonts = "res/assets/default/raw/fonts";

std::string scratch() {
  const char* out = getenv("TK_TEST_OUTPUT_DIR");
  fs::path dir = (out != nullptr && *out != '\0' ? fs::path(out) : fs::temp_directory_path()) /
                 ("fonts-" + std::to_string(getpid()));
  fs::create_directories(dir);
  return dir.string();
}

Bytes read_bytes(const std::string& path) {
  std::ifstream f(path, std::ios::binary);
  return Bytes((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
}

void write_bytes(const std::string& path, const Bytes& b) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(b.data()), static_cast<std::streamsize>(b.size()));
}

uint32_t be32(const Bytes& b, size_t at) {
  return (uint32_t{b[at]} << 24) | (uint32_t{b[at + 1]} << 16) | (uint32_t{b[at + 2]} << 8) |
         b[at + 3];
}

uint32_t sum32(const Bytes& b, size_t from, size_t len) {
  uint32_t sum = 0;
  for (size_t i = 0; i < len; i += 4) {
    uint32_t word = 0;
    for (size_t k = 0; k < 4; ++k)
      word = (word << 8) | (i + k < len ? b[from + i + k] : 0u);
    sum += word;
  }
  return sum;
}

struct ToolRun {
  int status;
  std::string output;
};

// Runs fontface with these arguments; its exit status and what it printed.
ToolRun fontface(const std::string& args) {
  std::string cmd = std::string(FONTFACE_PATH) + " " + args + " 2>&1";
  FILE* p = popen(cmd.c_str(), "r");
  ToolRun r{-1, ""};
  if (p == nullptr) return r;
  char buf[512];
  while (fgets(buf, sizeof(buf), p) != nullptr)
    r.output += buf;
  int st = pclose(p);
  r.status = WIFEXITED(st) ? WEXITSTATUS(st) : -1;
  return r;
}

// The family name of a font file's face 0 ("" when SDL2_ttf cannot open it).
std::string family(const std::string& path) {
  if (TTF_WasInit() == 0) TTF_Init();
  TTF_Font* f = TTF_OpenFont(path.c_str(), 20);
  if (f == nullptr) return "";
  const char* name = TTF_FontFaceFamilyName(f);
  std::string out = name != nullptr ? name : "";
  TTF_CloseFont(f);
  return out;
}

// The code points of a UTF-8 text (malformed bytes come out as 0xFFFD).
std::vector<char32_t> code_points(const std::string& s) {
  std::vector<char32_t> out;
  for (size_t i = 0; i < s.size();) {
    const auto c = static_cast<uint8_t>(s[i]);
    const int n = c < 0x80 ? 1 : (c >> 5) == 6 ? 2 : (c >> 4) == 14 ? 3 : (c >> 3) == 30 ? 4 : 0;
    if (n == 0 || i + n > s.size()) {
      out.push_back(0xFFFD);
      ++i;
      continue;
    }
    char32_t cp = n == 1 ? c : c & (0x7F >> n);
    for (int k = 1; k < n; ++k)
      cp = (cp << 6) | (static_cast<uint8_t>(s[i + k]) & 0x3F);
    out.push_back(cp);
    i += n;
  }
  return out;
}

}  // namespace

// Each face of the collection becomes a font file of its own that a loader opens as that face:
// one table directory, every table in the file with its recorded checksum, and the whole-file
// checksum the format asks for.
TEST(FontFace, EachFaceOfACollectionBecomesAFontOfItsOwn) {
  const std::string dir = scratch();
  const struct {
    int face;
    const char* family;
  } faces[] = {{0, "WenQuanYi Micro Hei"}, {1, "WenQuanYi Micro Hei Mono"}};
  for (const auto& f : faces) {
    const std::string out = dir + "/face" + std::to_string(f.face) + ".ttf";
    ToolRun r = fontface(std::string(SCOPE_FONT_SOURCE) + " " + std::to_string(f.face) + " " + out);
    ASSERT_EQ(r.status, 0) << r.output;
    EXPECT_EQ(r.output, "");
    Bytes b = read_bytes(out);
    ASSERT_GT(b.size(), 12u);
    EXPECT_EQ(be32(b, 0), 0x00010000u) << "a single TrueType font";
    const uint32_t tables = (b[4] << 8) | b[5];
    uint32_t head_at = 0;
    for (uint32_t i = 0; i < tables; ++i) {
      const size_t rec = 12 + 16 * i;
      const uint32_t tag = be32(b, rec), sum = be32(b, rec + 4);
      const uint32_t offset = be32(b, rec + 8), length = be32(b, rec + 12);
      ASSERT_LE(uint64_t{offset} + length, b.size()) << "table " << i;
      EXPECT_EQ(offset % 4, 0u) << "table " << i;
      if (tag == 0x68656164) {  // head: its checksum counts checkSumAdjustment as 0
        head_at = offset;
        Bytes head(b.begin() + offset, b.begin() + offset + length);
        head[8] = head[9] = head[10] = head[11] = 0;
        EXPECT_EQ(sum32(head, 0, length), sum) << "head";
      } else {
        EXPECT_EQ(sum32(b, offset, length), sum) << "table " << i;
      }
    }
    ASSERT_NE(head_at, 0u);
    EXPECT_EQ(sum32(b, 0, b.size()), 0xB1B0AFBAu) << "whole-file checksum";
    EXPECT_EQ(family(out), f.family);
  }
}

// A plain font file is copied as it is; anything else is refused with a line and exit status 1,
// and leaves no output file behind.
TEST(FontFace, PlainFontsAreCopiedAndBadInputIsRefused) {
  const std::string dir = scratch();
  const std::string face0 = dir + "/plain.ttf";
  ASSERT_EQ(fontface(std::string(SCOPE_FONT_SOURCE) + " 0 " + face0).status, 0);
  ASSERT_EQ(fontface(face0 + " 0 " + dir + "/copy.ttf").status, 0);
  EXPECT_EQ(read_bytes(dir + "/copy.ttf"), read_bytes(face0));

  Bytes collection = read_bytes(SCOPE_FONT_SOURCE);
  ASSERT_GT(collection.size(), 4096u);
  write_bytes(dir + "/cut.ttc", Bytes(collection.begin(), collection.begin() + 4096));
  write_bytes(dir + "/words.ttf", Bytes{'n', 'o', 't', ' ', 'a', ' ', 'f', 'o', 'n', 't'});
  write_bytes(dir + "/empty.ttf", Bytes{});
  const struct {
    std::string args;
    std::string says;
  } bad[] = {
      {std::string(SCOPE_FONT_SOURCE) + " 2", "the collection has 2 faces, no face 2"},
      {face0 + " 1", "a single font has only face 0"},
      {dir + "/cut.ttc 0", "a table lies past the end of the file"},
      {dir + "/words.ttf 0", "not a TrueType or OpenType font"},
      {dir + "/empty.ttf 0", "truncated at byte 0"},
      {dir + "/missing.ttc 0", "cannot read"},
  };
  for (const auto& c : bad) {
    const std::string out = dir + "/bad.ttf";
    ToolRun r = fontface(c.args + " " + out);
    EXPECT_EQ(r.status, 1) << c.args;
    EXPECT_NE(r.output.find(c.says), std::string::npos) << c.args << ": " << r.output;
    EXPECT_FALSE(fs::exists(out)) << c.args;
    EXPECT_FALSE(fs::exists(out + ".part")) << c.args;
  }
  EXPECT_EQ(fontface(face0 + " x " + dir + "/bad.ttf").status, 2);
  EXPECT_EQ(fontface("").status, 2);
}

// The build put the Debian font's face into the tree as default.ttf, with its licence beside it.
TEST(TreeFont, TheBuildPutsTheDebianFontIntoTheTree) {
  const std::string dir = scratch();
  ASSERT_EQ(fontface(std::string(SCOPE_FONT_SOURCE) + " " + std::to_string(SCOPE_FONT_FACE) + " " +
                     dir + "/expected.ttf")
                .status,
            0);
  ASSERT_TRUE(fs::exists(kFonts + "/default.ttf")) << "build the target res_font";
  EXPECT_FALSE(fs::is_symlink(kFonts + "/default.ttf")) << "the board needs the file itself";
  EXPECT_EQ(read_bytes(kFonts + "/default.ttf"), read_bytes(dir + "/expected.ttf"));
  std::ifstream licence(kFonts + "/default.ttf.copyright");
  std::string text((std::istreambuf_iterator<char>(licence)), std::istreambuf_iterator<char>());
  EXPECT_NE(text.find("License: Apache-2.0 or GPL-3+ with Font exception"), std::string::npos);
}

// The toolkit reads a font by name from the tree: fonts/<name>.ttf or .otf, any other name the
// default font; never a font of the machine.
TEST(TreeFont, FontsAreFoundByNameInTheTreeOnly) {
  tk_testing_init();
  const std::string root = tk_testing_font_file("default");
  ASSERT_FALSE(root.empty());
  EXPECT_EQ(fs::canonical(root), fs::canonical(kFonts + "/default.ttf"));
  EXPECT_EQ(tk_testing_font_file("no_such_font"), root);

  const std::string tree = scratch() + "/tree";
  fs::create_directories(tree + "/assets/default/raw/fonts");
  fs::copy_file(kFonts + "/default.ttf", tree + "/assets/default/raw/fonts/digits.otf",
                fs::copy_options::overwrite_existing);
  tk_testing_set_app_root(tree.c_str());
  EXPECT_EQ(fs::canonical(tk_testing_font_file("digits")),
            fs::canonical(tree + "/assets/default/raw/fonts/digits.otf"));
  EXPECT_EQ(tk_testing_font_file("default"), "") << "no default.ttf in this tree";
  EXPECT_EQ(tk_testing_font_file("other"), "");
  tk_testing_set_app_root("./res");
  EXPECT_EQ(tk_testing_font_file("other"), root);
}

// Every character of every text of the UI (the string tables in all languages, the literal texts
// of the layouts) has a glyph in the tree's font: Latin, Cyrillic and Chinese.
TEST(TreeFont, TheFontHasEveryCharacterTheUIShows) {
  if (TTF_WasInit() == 0) {
    ASSERT_EQ(TTF_Init(), 0);
  }
  TTF_Font* font = TTF_OpenFont((kFonts + "/default.ttf").c_str(), 20);
  ASSERT_NE(font, nullptr) << TTF_GetError();
  std::set<std::string> languages;
  size_t texts = 0;
  std::set<char32_t> missing;
  auto check = [&](const std::string& where, const std::string& text) {
    ++texts;
    for (char32_t cp : code_points(text)) {
      if (cp < 0x20) continue;
      if (TTF_GlyphIsProvided32(font, cp) == 0 && missing.insert(cp).second) {
        ADD_FAILURE() << where << ": no glyph for U+" << std::hex << static_cast<uint32_t>(cp)
                      << " in \"" << text << "\"";
      }
    }
  };
  for (const auto& entry : fs::directory_iterator("res/assets/default/raw/strings")) {
    if (entry.path().extension() != ".xml") continue;
    pugi::xml_document doc;
    ASSERT_TRUE(doc.load_file(entry.path().c_str())) << entry.path();
    for (pugi::xml_node s : doc.child("string_table").children("string")) {
      for (pugi::xml_node l : s.children("language")) {
        languages.insert(l.attribute("name").value());
        check(entry.path().filename().string() + " " + s.attribute("name").value() + " " +
                  l.attribute("name").value(),
              l.text().get());
      }
    }
  }
  for (const auto& entry : fs::directory_iterator("res/assets/default/raw/ui")) {
    if (entry.path().extension() != ".xml") continue;
    pugi::xml_document doc;
    ASSERT_TRUE(doc.load_file(entry.path().c_str())) << entry.path();
    for (pugi::xpath_node n : doc.select_nodes("//*[@text]")) {
      check(entry.path().filename().string() + " " + n.node().attribute("name").value(),
            n.node().attribute("text").value());
    }
  }
  TTF_CloseFont(font);
  EXPECT_EQ(languages,
            (std::set<std::string>{"en_US", "zh_CN", "ru_RU", "de_DE", "fr_FR", "es_ES", "it_IT"}));
  EXPECT_GT(texts, 50u);
}

// What the every-page check measures: a widget's text at its current style's font and size,
// against its width less the style's margins.
TEST(TreeFont, AWidgetsTextIsMeasuredInItsCurrentStyle) {
  tk_testing_init();
  widget_t* win = tk_testing_open_xml("measure", R"(
    <window name="measure" x="0" y="0" w="1280" h="1024">
      <label name="plain" x="0" y="0" w="200" h="40" text="---- yd" style.normal.font_size="36"/>
      <label name="margins" x="0" y="50" w="200" h="40" text="---- yd"
             style.normal.font_size="36" style.normal.margin="10" style.normal.margin_left="30"/>
      <label name="focused" x="0" y="100" w="200" h="40" text="---- yd"
             style.normal.font_size="18" style.focused.font_size="36"/>
      <label name="lines" x="0" y="150" w="200" h="80" text="--&#10;---- yd"
             style.normal.font_size="36"/>
      <label name="empty" x="0" y="250" w="200" h="40" text=""/>
      <image name="picture" x="0" y="300" w="50" h="50" image="switch_large_on"/>
    </window>)");
  ASSERT_NE(win, nullptr);
  tk_testing_advance(0);
  auto w = [&](const char* name) { return widget_lookup(win, name, TRUE); };
  const int at36 = tk_testing_text_width(w("plain"));
  EXPECT_NEAR(at36, 79, 3) << "\"---- yd\" at 36: 77 pixels of ink";
  EXPECT_EQ(tk_testing_text_room(w("plain")), 200);
  EXPECT_EQ(tk_testing_text_width(w("margins")), at36);
  EXPECT_EQ(tk_testing_text_room(w("margins")), 200 - 30 - 10);
  const int at18 = tk_testing_text_width(w("focused"));
  EXPECT_NEAR(at18 * 2, at36, 3);
  widget_set_state(w("focused"), WIDGET_STATE_FOCUSED);
  EXPECT_EQ(tk_testing_text_width(w("focused")), at36);
  EXPECT_EQ(tk_testing_text_width(w("lines")), at36) << "the widest line";
  EXPECT_EQ(tk_testing_text_width(w("empty")), 0);
  EXPECT_EQ(tk_testing_text_width(w("picture")), 0);
  EXPECT_EQ(tk_testing_text_room(w("picture")), 50);
}
