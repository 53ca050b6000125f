// The media catalogue on real files in a temporary device tree: what is listed, in which order
// and column, what is left out and said, the list primitives and the small helpers.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "common/list.h"
#include "media_fixture.h"

namespace {

namespace fs = std::filesystem;
using media_test::Card;
using page_test::printed;

struct Listing {
  std::vector<std::string> photos;  // in array order, each bounded to 64 bytes
  std::vector<std::string> videos;
  int32_t photo_num = 0, video_num = 0;
  bool null = false;
  bool others_zero = true;  // counts of elements 1.. are 0
};

Listing list(unsigned sort, const char* prefix = nullptr) {
  Listing out;
  std::unique_ptr<file_unit, decltype(&std::free)> units(getFileListInfo(sort, prefix), &std::free);
  if (!units) {
    out.null = true;
    return out;
  }
  out.photo_num = units.get()[0].photo_num;
  out.video_num = units.get()[0].video_num;
  const int n = out.photo_num + out.video_num;
  for (int i = 0; i < n; ++i) {
    const file_unit& u = units.get()[i];
    if (i > 0 && (u.photo_num != 0 || u.video_num != 0)) out.others_zero = false;
    if (i < out.photo_num) out.photos.emplace_back(u.photo_name, strnlen(u.photo_name, 64));
    if (i < out.video_num) out.videos.emplace_back(u.video_name, strnlen(u.video_name, 64));
    if (i >= out.photo_num) {
      EXPECT_EQ(u.photo_name[0], '\0') << "photo slot " << i << " unused";
    }
    if (i >= out.video_num) {
      EXPECT_EQ(u.video_name[0], '\0') << "video slot " << i << " unused";
    }
  }
  return out;
}

class Catalogue : public ::testing::Test {
 protected:
  Card card_;
};

TEST(ListPrimitives, LinkAndUnlink) {
  list_head head, a, b, c;
  list_head_init(&head);
  EXPECT_EQ(head.next, &head);
  EXPECT_EQ(head.prev, &head);
  list_add_tail(&a, &head);  // a
  list_add_next(&c, &a);     // a c
  list_add_prev(&b, &c);     // a b c
  const list_head* order[] = {&a, &b, &c};
  const list_head* at = head.next;
  for (const list_head* want : order) {
    EXPECT_EQ(at, want);
    EXPECT_EQ(at->next->prev, at);
    at = at->next;
  }
  EXPECT_EQ(at, &head);
  list_del(&b);
  EXPECT_EQ(a.next, &c);
  EXPECT_EQ(c.prev, &a);
  EXPECT_EQ(b.next, nullptr);
  EXPECT_EQ(b.prev, nullptr);
}

TEST(TypeDetection, ByTheFirstFourCharactersOfTheLastExtension) {
  const struct {
    const char* name;
    FILE_TYPE type;
  } cases[] = {{"a.bmp", FILE_PHOTO},    {"a.mp4", FILE_VIDEO},     {"a.bmpx", FILE_PHOTO},
               {"a.mp4.bak", FILE_NULL}, {"a.BMP", FILE_NULL},      {"a.MP4", FILE_NULL},
               {"a.jpg", FILE_NULL},     {"x.jpg.bmp", FILE_PHOTO}, {".bmp", FILE_PHOTO}};
  for (const auto& c : cases)
    EXPECT_EQ(Detect_file_type(c.name), c.type) << c.name;
  EXPECT_EQ(printed([] { EXPECT_EQ(Detect_file_type("20250614_090000"), FILE_NULL); }),
            "filename illegal = <20250614_090000> return;\n");

  file_unit counter{};
  int32_t videos = 0;
  for (const char* name : {"a.bmp", "b.bmp", "c.mp4", "d.txt"})
    get_file_type(name, &counter, &videos);
  EXPECT_EQ(counter.photo_num, 2);
  EXPECT_EQ(videos, 1);
}

TEST(SearchStrChrTest, CountsFromEitherEnd) {
  const char* s = "a.b.c.d";
  const struct {
    int n;
    int at;  // -1: null
  } cases[] = {{1, 1}, {3, 5}, {4, -1}, {0, -1}, {-1, 5}, {-3, 1}, {-4, -1}};
  for (const auto& c : cases) {
    const char* got = SearchStrChr(s, '.', c.n);
    EXPECT_EQ(got == nullptr ? -1 : static_cast<int>(got - s), c.at) << "n = " << c.n;
  }
  // The backward scan stops at the first character and returns it when it matches.
  const char* dotted = ".a.b";
  EXPECT_EQ(SearchStrChr(dotted, '.', -5), dotted);
  EXPECT_EQ(SearchStrChr("", '.', -1), nullptr);
  EXPECT_EQ(SearchStrChr(nullptr, '.', 1), nullptr);
}

TEST_F(Catalogue, OnlyPhotosGiveAsManyElementsWithEmptyVideoColumn) {
  for (const char* n : {"20250614_090000.bmp", "20250614_090100.bmp", "20250614_090200.bmp"})
    card_.file(std::string("Picture/") + n);
  const Listing l = list(SORT_FILENAME_REVERSE);
  ASSERT_FALSE(l.null);
  EXPECT_EQ(l.photo_num, 3);
  EXPECT_EQ(l.video_num, 0);
  EXPECT_EQ(l.photos, (std::vector<std::string>{"20250614_090200.bmp", "20250614_090100.bmp",
                                                "20250614_090000.bmp"}));
  EXPECT_TRUE(l.videos.empty());
  EXPECT_TRUE(l.others_zero);
}

TEST_F(Catalogue, BothColumnsInNameOrderEitherWay) {
  for (const char* n : {"20250614_090001.bmp", "20250614_090002.bmp", "20250614_090000.bmp"})
    card_.file(std::string("Picture/") + n);
  for (const char* n : {"20250614_090009.mp4", "20250614_090008.mp4"})
    card_.file(std::string("Video/") + n);
  const Listing rev = list(SORT_FILENAME_REVERSE);
  EXPECT_EQ(rev.photos, (std::vector<std::string>{"20250614_090002.bmp", "20250614_090001.bmp",
                                                  "20250614_090000.bmp"}));
  EXPECT_EQ(rev.videos, (std::vector<std::string>{"20250614_090009.mp4", "20250614_090008.mp4"}));
  EXPECT_TRUE(rev.others_zero);
  const Listing pos = list(SORT_FILENAME_POSITIVE);
  EXPECT_EQ(pos.photos, (std::vector<std::string>{"20250614_090000.bmp", "20250614_090001.bmp",
                                                  "20250614_090002.bmp"}));
  EXPECT_EQ(pos.videos, (std::vector<std::string>{"20250614_090008.mp4", "20250614_090009.mp4"}));
}

TEST_F(Catalogue, DateSortsListOnlyTheNinePrefixCharacters) {
  for (const char* n : {"20250614_090000.bmp", "20250615_090000.bmp", "20250614_1.mp4", "2025.bmp",
                        "20250615_080000.mp4"}) {
    card_.file((std::strstr(n, ".bmp") ? std::string("Picture/") : std::string("Video/")) + n);
  }
  const Listing day = list(SORT_DATE_POSITIVE, "20250615_");
  EXPECT_EQ(day.photos, std::vector<std::string>{"20250615_090000.bmp"});
  EXPECT_EQ(day.videos, std::vector<std::string>{"20250615_080000.mp4"});
  const Listing other = list(SORT_DATE_REVERSE, "20250614_");
  EXPECT_EQ(other.photos, std::vector<std::string>{"20250614_090000.bmp"});
  EXPECT_EQ(other.videos, std::vector<std::string>{"20250614_1.mp4"});
  // A name shorter than 9 characters never matches, whatever the prefix.
  EXPECT_TRUE(list(SORT_DATE_POSITIVE, "2025.bmp").null);
  EXPECT_TRUE(list(SORT_DATE_POSITIVE, nullptr).null);
  // The name sorts ignore the prefix.
  EXPECT_EQ(list(SORT_FILENAME_POSITIVE, "20250615_").photo_num, 3);
}

TEST_F(Catalogue, OnlyRegularFilesWithTheTwoExtensionsAreListedAndTheOthersSaid) {
  card_.file("Picture/20250614_090000.bmp");
  card_.file("Picture/20250614_090100.BMP");
  card_.file("Picture/20250614_090200");
  card_.file("Picture/20250614_090300.jpg");
  card_.file("Picture/20250614_090400.bmpx");
  fs::create_directories(card_.media("Picture/20250614_090500.bmp"));
  fs::create_directories(card_.media("Picture/sub"));
  fs::create_symlink("20250614_090000.bmp", card_.media("Picture/20250614_090600.bmp"));
  card_.file("Video/20250614_090700.mp4");
  card_.file("Video/20250614_090800.MP4");
  Listing l;
  const std::string out = printed([&] { l = list(SORT_FILENAME_POSITIVE); });
  EXPECT_EQ(l.photos, (std::vector<std::string>{"20250614_090000.bmp", "20250614_090400.bmpx"}));
  EXPECT_EQ(l.videos, std::vector<std::string>{"20250614_090700.mp4"});
  const std::string pictures = card_.media("Picture/");
  for (const std::string& line :
       std::vector<std::string>{"filename illegal = <20250614_090200> return;\n",
                                "skip " + pictures + "20250614_090500.bmp: not a regular file\n",
                                "skip " + pictures + "20250614_090600.bmp: not a regular file\n",
                                "skip " + pictures + "sub: not a regular file\n"}) {
    EXPECT_NE(out.find(line), std::string::npos) << line << "in:\n" << out;
  }
}

TEST_F(Catalogue, LongNamesFillTheFieldWithoutTerminatorInTheirOwnColumn) {
  const std::string long64 = std::string("20250614_090000_") + std::string(44, 'p') + ".bmp";
  const std::string long70 = std::string("20250614_090100_") + std::string(50, 'v') + ".mp4";
  ASSERT_EQ(long64.size(), 64u);
  ASSERT_EQ(long70.size(), 70u);
  card_.file("Picture/" + long64);
  card_.file("Video/" + long70);
  card_.file("Video/20250614_090200.mp4");
  std::unique_ptr<file_unit, decltype(&std::free)> units(
      getFileListInfo(SORT_FILENAME_REVERSE, nullptr), &std::free);
  ASSERT_TRUE(units);
  const file_unit* u = units.get();
  EXPECT_EQ(u[0].photo_num, 1);
  EXPECT_EQ(u[0].video_num, 2);
  EXPECT_EQ(std::memcmp(u[0].photo_name, long64.data(), 64), 0);
  // Cut to 64 bytes, its extension lost, and still in the video column: the type was read from
  // the whole name. Newest first: 090200 before 090100.
  EXPECT_EQ(std::memcmp(u[0].video_name, "20250614_090200.mp4", 20), 0);
  EXPECT_EQ(std::memcmp(u[1].video_name, long70.data(), 64), 0);
}

TEST_F(Catalogue, EmptyOrUnreadableCardGivesNullWithItsLines) {
  EXPECT_TRUE(list(SORT_FILENAME_REVERSE).null);
  EXPECT_TRUE(media_directories_readable());
  fs::remove_all(card_.media("Picture"));
  fs::remove_all(card_.media("Video"));
  Listing l;
  const std::string out = printed([&] { l = list(SORT_FILENAME_REVERSE); });
  EXPECT_TRUE(l.null);
  EXPECT_EQ(out, "error! opendir " + card_.media("Picture/") + " fail\nerror! openvideodir " +
                     card_.media("Video/") + " fail\n");
  EXPECT_FALSE(media_directories_readable());
}

TEST_F(Catalogue, AnUnreadableDirectoryIsSkippedAndTheOtherListed) {
  card_.file("Video/20250614_090000.mp4");
  fs::remove_all(card_.media("Picture"));
  card_.file("Picture");  // a file where the directory should be: it cannot be opened
  Listing l;
  const std::string out = printed([&] { l = list(SORT_FILENAME_REVERSE); });
  EXPECT_EQ(l.videos, std::vector<std::string>{"20250614_090000.mp4"});
  EXPECT_EQ(l.photo_num, 0);
  EXPECT_NE(out.find("error! opendir " + card_.media("Picture/") + " fail"), std::string::npos);
}

TEST_F(Catalogue, TheSampleCardWithItsAwkwardCasesIsListedExactly) {
  sample_media::set_options o;
  o.photos = 12;
  o.videos = 7;
  o.photo_w = 64;
  o.photo_h = 52;
  o.broken = true;
  ASSERT_TRUE(sample_media::write_media_set(card_.media(""), o));
  sample_media::set_names want = sample_media::media_set_names(o);
  for (auto* column : {&want.photos, &want.videos}) {
    for (auto& n : *column)
      n = n.substr(0, 64);
    std::reverse(column->begin(), column->end());
  }
  Listing l;
  printed([&] { l = list(SORT_FILENAME_REVERSE); });
  EXPECT_EQ(l.photos, want.photos);
  EXPECT_EQ(l.videos, want.videos);
  EXPECT_EQ(l.photo_num, 12 + 7);
  EXPECT_EQ(l.video_num, 7 + 4);
}

TEST_F(Catalogue, LoadPrintAndFreeAList) {
  card_.file("Picture/b.bmp");
  card_.file("Picture/a.bmp");
  card_.file("Video/c.mp4");
  list_head dirs;
  file_unit counter{};
  int32_t videos = -5;
  const std::string photo_dir = card_.media("Picture/");
  const std::string video_dir = card_.media("Video/");
  dir_list* l = load_file_list(photo_dir.c_str(), video_dir.c_str(), &dirs, SORT_FILENAME_POSITIVE,
                               nullptr, &counter, &videos);
  ASSERT_NE(l, nullptr);
  EXPECT_EQ(counter.photo_num, 2);
  EXPECT_EQ(videos, 1);
  EXPECT_EQ(dirs.next, &l->list_node);
  EXPECT_STREQ(l->dir_name, photo_dir.c_str());
  char head[64];
  std::snprintf(head, sizeof head, "========= File List %p ===========\n", static_cast<void*>(l));
  EXPECT_EQ(printed([&] { print_file_list(l); }),
            std::string(head) +
                "index = 1 : name: a.bmp  \nindex = 2 : name: b.bmp  \nindex = 3 : name: c.mp4  \n"
                "\n===================================\n");
  std::unique_ptr<file_unit, decltype(&std::free)> flat(
      dump_file_info(l, SORT_FILENAME_REVERSE, 2, 1), &std::free);
  EXPECT_STREQ(flat.get()[0].photo_name, "b.bmp");
  EXPECT_STREQ(flat.get()[1].photo_name, "a.bmp");
  EXPECT_STREQ(flat.get()[0].video_name, "c.mp4");
  // Counts smaller than the list: the rest is left out, never written past the array.
  std::unique_ptr<file_unit, decltype(&std::free)> short_flat(
      dump_file_info(l, SORT_FILENAME_POSITIVE, 1, 0), &std::free);
  EXPECT_EQ(short_flat.get()[0].photo_num, 1);
  EXPECT_EQ(short_flat.get()[0].video_num, 0);
  free_list_memory(l);
  EXPECT_EQ(dirs.next, &dirs) << "freed and unlinked";
  free_list_memory(nullptr);
  print_file_list(nullptr);
  EXPECT_EQ(dump_file_info(nullptr, 0, 1, 1), nullptr);
}

TEST_F(Catalogue, FileSizesInBytesAndZeroWhenUnreadable) {
  card_.file("Picture/a.bmp", 1500000);
  card_.file("Video/b.mp4", 7);
  EXPECT_EQ(Get_file_size(FILE_PHOTO, "a.bmp"), 1500000);
  EXPECT_EQ(Get_file_size(FILE_VIDEO, "b.mp4"), 7);
  EXPECT_EQ(Get_file_size(FILE_PHOTO, nullptr), 0);
  std::string out = printed([] { EXPECT_EQ(Get_file_size(FILE_VIDEO, "gone.mp4"), 0); });
  EXPECT_EQ(out, "Error:  fstat  No such file or directory\n");
  EXPECT_EQ(printed([] { Detect_avi_avlid("b.mp4"); }),
            "Detect_avi_avlid [" + card_.media("Video/") + "b.mp4],ret = 0\n ");
}

}  // namespace
