// The file browser "Zavo_file_menu" over a real card: tabs, grid and paging, the info panel,
// the option panel and the delete confirmation, deleting through the keys, the photo key, the
// damaged-video refusal and a card full of awkward files.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "device_model.h"
#include "media_fixture.h"
#include "pages/Zavo_file_menu.h"
#include "tk_testing.h"

namespace {

namespace fs = std::filesystem;
using media_test::removed;
using page_test::printed;
using Set = std::set<std::string>;

std::string stamp(int i) {
  char name[32];
  std::snprintf(name, sizeof name, "20250614_09%02d%02d", i / 60, i % 60);
  return name;
}

class Browser : public media_test::MediaPageTest {
 protected:
  // n photos (stamp(0).bmp ...) and m videos (stamp(100).mp4 ...), all with thumbnails.
  void fill(int photos, int videos) {
    for (int i = 0; i < photos; ++i)
      card_.photo(stamp(i) + ".bmp", true, static_cast<unsigned>(i));
    for (int i = 0; i < videos; ++i)
      card_.video(stamp(100 + i) + ".mp4");
  }
  std::string thumb(const std::string& stem) const {
    return "file://" + card_.media(".thumbnails/" + stem + ".jpg");
  }
  void total_frames(uint64_t frames, uint16_t rate) {
    from_device(devsim::video_total_frame(frames, rate));
  }
};

TEST_F(Browser, OpensOnTheVideoTabWithTheNewestNineAndTheCardUsage) {
  fill(3, 11);
  fs::remove(card_.media(".thumbnails/" + stamp(109) + ".jpg"));  // the second newest video
  browse();
  EXPECT_EQ(Zavo_file_default_index, MENU_FILE);
  EXPECT_EQ(image("image_image"), "Zavo_btn_img_def");
  EXPECT_EQ(image("image_vedio"), "Zavo_btn_video_sel");
  EXPECT_EQ(text("label_index_page"), "1/2");
  std::vector<std::string> want;
  for (int i = 110; i > 101; --i)
    want.push_back(stamp(i));
  EXPECT_EQ(grid_names(), want);
  EXPECT_TRUE(shown("image_file_1"));
  EXPECT_EQ(image("image_file_1"), thumb(stamp(110)));
  EXPECT_FALSE(shown("image_file_2")) << "a video without thumbnail leaves its cell blank";
  EXPECT_TRUE(shown("image_file_3"));
  for (const char* hidden : {"view_file_sel", "label_File_Name_value", "label_Type_value",
                             "label_Size_value", "label_Time_value", "view_file_display_delete",
                             "view_delete_file", "view_file_corrupted", "image_no_file"}) {
    EXPECT_FALSE(shown(hidden)) << hidden;
  }
  EXPECT_TRUE(shown("label_Time"));
  EXPECT_TRUE(shown("view_file_option"));
  // An 8 GiB card with 4000 MiB free.
  EXPECT_EQ(text("label_storage_used"), "Used: 4.1G");
  EXPECT_EQ(text("label_storage_total"), "Total: 8.0G");
  EXPECT_NEAR(widget_get_value(w("progress_bar")), 409.0 / 800 * 100, 0.01);
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(Browser, TabsSwitchBothWaysAndAnEmptyTabShowsItsPicture) {
  fill(2, 0);
  browse();
  EXPECT_EQ(image("image_no_file"), "Zavo_video_empty");
  EXPECT_TRUE(shown("image_no_file"));
  EXPECT_FALSE(shown("view_file_option"));
  EXPECT_EQ(text("label_index_page"), "1/1");
  key(GUI_KEY_FUCTION_S);  // nothing to enter
  EXPECT_EQ(Zavo_file_default_index, MENU_FILE);

  key(GUI_KEY_RANGE_S);  // either key switches
  EXPECT_EQ(Zavo_file_title_index, FILE_TAB_PHOTO);
  EXPECT_EQ(image("image_image"), "Zavo_btn_img_sel");
  EXPECT_EQ(image("image_vedio"), "Zavo_btn_video_def");
  EXPECT_FALSE(shown("image_no_file"));
  EXPECT_FALSE(shown("label_Time"));
  EXPECT_EQ(grid_names()[0], stamp(1));
  EXPECT_EQ(text("label_index_page"), "1/1");
  key(GUI_KEY_PHOTO_S);
  EXPECT_EQ(Zavo_file_title_index, FILE_TAB_VIDEO);
  EXPECT_TRUE(shown("label_Time"));
  EXPECT_TRUE(shown("image_no_file"));
}

TEST_F(Browser, TenPhotosMakeTwoPagesAndTheSelectionWraps) {
  fill(10, 0);
  browse(true);
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(Zavo_file_default_index, MENU_LIST);
  EXPECT_EQ(text("label_index_page"), "1/2");
  for (int i = 0; i < 9; ++i)
    key(GUI_KEY_PHOTO_S);
  EXPECT_EQ(Zavo_photos_index, 9);
  EXPECT_EQ(text("label_index_page"), "2/2");
  EXPECT_EQ(grid_names(), (std::vector<std::string>{stamp(0), "", "", "", "", "", "", "", ""}));
  EXPECT_TRUE(shown("image_file_1"));
  EXPECT_FALSE(shown("image_file_2"));
  EXPECT_EQ(box("view_file_sel"), (page_test::Box{0, 0, 272, 276}));
  key(GUI_KEY_PHOTO_S);
  EXPECT_EQ(Zavo_photos_index, 0);
  EXPECT_EQ(text("label_index_page"), "1/2");
  EXPECT_EQ(grid_names()[0], stamp(9));
  key(GUI_KEY_RANGE_S);
  EXPECT_EQ(Zavo_photos_index, 9);
  EXPECT_EQ(text("label_index_page"), "2/2");
}

TEST_F(Browser, TheFrameAndTheFocusedNameFollowTheSelectedCell) {
  fill(9, 0);
  browse(true);
  key(GUI_KEY_FUCTION_S);
  for (int index = 0; index < 9; ++index) {
    const int x = 272 * (index % 3), y = 276 * (index / 3);
    EXPECT_EQ(box("view_file_sel"), (page_test::Box{x, y, 272, 276})) << index;
    for (int cell = 1; cell <= 9; ++cell) {
      EXPECT_EQ(state(("label_FileName" + std::to_string(cell)).c_str()),
                cell == index + 1 ? "focused" : "normal")
          << index << " " << cell;
    }
    key(GUI_KEY_PHOTO_S);
  }
  key(GUI_KEY_FUCTION_L);  // back to the tabs: frame hidden, panel reset
  EXPECT_EQ(Zavo_file_default_index, MENU_FILE);
  EXPECT_FALSE(shown("view_file_sel"));
  EXPECT_FALSE(shown("label_Size_value"));
  EXPECT_EQ(state("label_FileName1"), "normal");
}

TEST_F(Browser, InfoPanelShowsNameTypeSizeAndTheVideoLength) {
  card_.file("Picture/20250614_090000.bmp", 1500000);
  card_.video("20250614_091000.mp4");
  browse(true);
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(text("label_File_Name_value"), "20250614_090000");
  EXPECT_EQ(text("label_Type_value"), "BMP");
  EXPECT_EQ(text("label_Size_value"), "1.5MB");
  for (const char* value : {"label_File_Name_value", "label_Type_value", "label_Size_value"})
    EXPECT_TRUE(shown(value)) << value;
  EXPECT_FALSE(shown("label_Time_value"));
  EXPECT_TRUE(sent().empty()) << "photos ask the device nothing";

  key(GUI_KEY_FUCTION_L);
  key(GUI_KEY_PHOTO_S);  // videos
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(sent(), std::vector<std::string>{
                        "TAP TAP_REPLAY TAP_REPLAY_VEDIO_TOTAL_TIME name=\"20250614_091000.mp4\""});
  EXPECT_EQ(text("label_Type_value"), "MP4");
  EXPECT_TRUE(shown("label_Time_value"));
  const struct {
    uint64_t frames;
    uint16_t rate;
    const char* text;
  } lengths[] = {{1950, 300, "01:05"}, {3725 * 30, 300, "02:05"}, {600, 0, "00:20"}};
  for (const auto& l : lengths) {
    total_frames(l.frames, l.rate);  // a rate of 0 keeps the one in force
    EXPECT_EQ(text("label_Time_value"), l.text) << l.frames;
  }
  stUIStatus.u8VideoCurrentFrames = 0;
  screen_event(SCREEN_EVT_PLAY_LENGTH);
  EXPECT_EQ(text("label_Time_value"), "00:00");
}

TEST_F(Browser, ThePhotoKeyTakesAPictureAtEveryLevelAndRedrawsNothing) {
  fill(3, 2);
  browse(true);
  const std::vector<std::string> grid = grid_names();
  auto photo_key = [&](const char* level) {
    key(GUI_KEY_PHOTO_L);
    EXPECT_EQ(sent(), std::vector<std::string>{"TAP TAP_PICTURE_RECORD TAP_TAKE_PICTURE"}) << level;
  };
  photo_key("tabs");
  card_.photo("20250614_100000.bmp");  // the device wrote it
  key(GUI_KEY_FUCTION_S);
  photo_key("grid");
  key(GUI_KEY_FUCTION_S);
  photo_key("options");
  key(GUI_KEY_PHOTO_S);
  key(GUI_KEY_FUCTION_S);
  photo_key("confirmation");
  EXPECT_EQ(grid_names(), grid);
  EXPECT_EQ(Zavo_photo_num, 3);
  EXPECT_EQ(Zavo_file_default_index, MENU_DELETE_CHOOSE);
}

TEST_F(Browser, OptionPanelAndConfirmationStepAndGoBackOneLevelAtATime) {
  fill(2, 0);
  const Set before = card_.entries();
  browse(true);
  key(GUI_KEY_FUCTION_S);
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(Zavo_file_default_index, MENU_PLAY_DELETE);
  EXPECT_TRUE(shown("view_file_display_delete"));
  const struct {
    int key;
    int option;
  } steps[] = {{GUI_KEY_PHOTO_S, 2},
               {GUI_KEY_PHOTO_S, 3},
               {GUI_KEY_PHOTO_S, 1},
               {GUI_KEY_RANGE_S, 3},
               {GUI_KEY_RANGE_S, 2}};
  const char* options[] = {"view_display", "view_delete", "view_exit"};
  EXPECT_EQ(state("view_display"), "focused");
  for (const auto& s : steps) {
    key(s.key);
    EXPECT_EQ(Zavo_file_default_play_index, s.option);
    for (int i = 0; i < 3; ++i)
      EXPECT_EQ(state(options[i]), i + 1 == s.option ? "focused" : "normal") << s.option;
  }
  key(GUI_KEY_FUCTION_S);  // Delete
  EXPECT_EQ(Zavo_file_default_index, MENU_DELETE_CHOOSE);
  EXPECT_TRUE(shown("view_delete_file"));
  EXPECT_EQ(image("image_OK"), "Zavo_btn_left_sel");
  EXPECT_EQ(image("image_Cancel"), "Zavo_btn_right_def");
  key(GUI_KEY_RANGE_S);
  EXPECT_EQ(image("image_OK"), "Zavo_btn_left_def");
  EXPECT_EQ(image("image_Cancel"), "Zavo_btn_right_sel");
  key(GUI_KEY_FUCTION_S);  // Cancel
  EXPECT_EQ(Zavo_file_default_index, MENU_PLAY_DELETE);
  EXPECT_FALSE(shown("view_delete_file"));
  EXPECT_EQ(Zavo_photo_num, 2);

  key(GUI_KEY_FUCTION_S);  // Delete again, then back with the long function key
  key(GUI_KEY_FUCTION_L);
  EXPECT_EQ(Zavo_file_default_index, MENU_PLAY_DELETE);
  EXPECT_FALSE(shown("view_delete_file"));
  key(GUI_KEY_FUCTION_L);
  EXPECT_EQ(Zavo_file_default_index, MENU_LIST);
  EXPECT_FALSE(shown("view_file_display_delete"));
  key(GUI_KEY_FUCTION_S);
  key(GUI_KEY_PHOTO_S);  // Exit
  key(GUI_KEY_PHOTO_S);
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(Zavo_file_default_index, MENU_LIST);
  EXPECT_FALSE(shown("view_file_display_delete"));
  EXPECT_EQ(card_.entries(), before) << "nothing deleted";
}

class BrowserDelete : public Browser {
 protected:
  // From the grid with the selection on `index`: Delete, OK.
  void delete_selected(int index) {
    for (int i = 0; i < index; ++i)
      key(GUI_KEY_PHOTO_S);
    key(GUI_KEY_FUCTION_S);
    key(GUI_KEY_PHOTO_S);
    key(GUI_KEY_FUCTION_S);
    key(GUI_KEY_FUCTION_S);
  }
};

TEST_F(BrowserDelete, DeletingTheLastPhotoSelectsTheNewLast) {
  fill(10, 0);
  browse(true);
  key(GUI_KEY_FUCTION_S);
  const Set before = card_.entries();
  delete_selected(9);  // the oldest, alone on page 2
  EXPECT_EQ(removed(before, card_.entries()),
            (Set{"Picture/" + stamp(0) + ".bmp", ".thumbnails/" + stamp(0) + ".jpg"}));
  EXPECT_EQ(Zavo_photo_num, 9);
  EXPECT_EQ(Zavo_photos_index, 8);
  EXPECT_EQ(Zavo_file_default_index, MENU_LIST);
  EXPECT_EQ(text("label_index_page"), "1/1");
  EXPECT_EQ(text("label_File_Name_value"), stamp(1));
  EXPECT_EQ(box("view_file_sel"), (page_test::Box{544, 552, 272, 276}));
  EXPECT_FALSE(shown("view_file_display_delete"));
  EXPECT_FALSE(shown("view_delete_file"));
}

TEST_F(BrowserDelete, DeletingTheOnlyPhotoReturnsToTheTabsWithTheEmptyPicture) {
  fill(1, 1);
  browse(true);
  key(GUI_KEY_FUCTION_S);
  delete_selected(0);
  EXPECT_EQ(card_.entries(), (Set{"Picture", "Video", ".thumbnails", "Video/" + stamp(100) + ".mp4",
                                  ".thumbnails/" + stamp(100) + ".jpg"}));
  EXPECT_EQ(Zavo_file_default_index, MENU_FILE);
  EXPECT_EQ(image("image_no_file"), "Zavo_img_empty");
  EXPECT_TRUE(shown("image_no_file"));
  EXPECT_FALSE(shown("view_file_option"));
  EXPECT_FALSE(shown("view_file_sel"));
  EXPECT_FALSE(shown("label_File_Name_value"));
}

TEST_F(BrowserDelete, ALongNameIsNeverDeletedUnderItsCutNameNorAnythingElse) {
  const std::string name = "20250614_091736_abcdefghijklmnopqrst.bmp";  // 40 characters
  const std::string cut = name.substr(0, 31);
  card_.photo(name);
  card_.file("Picture/" + cut);                            // what the cut name names
  card_.file(".thumbnails/" + cut.substr(0, 28) + "jpg");  // and its thumbnail's name
  browse(true);
  key(GUI_KEY_FUCTION_S);
  const Set before = card_.entries();
  const std::string out = printed([&] { delete_selected(0); });
  EXPECT_EQ(card_.entries(), before);
  EXPECT_NE(out.find("delete refused: \"" + name +
                     "\" is longer than 31 characters and would be "
                     "deleted as \"" +
                     cut + "\"; the file is kept"),
            std::string::npos)
      << out;
  EXPECT_EQ(Zavo_photo_num, 1);
  EXPECT_EQ(Zavo_file_default_index, MENU_LIST);
}

TEST_F(BrowserDelete, NamesWithSpacesAndUtf8AreDeletedWithTheirThumbnail) {
  const std::string name =
      "20250614_1 Reh \xC3\xBC"
      "berl\xC3\xA4"
      "ufer.bmp";  // 31 bytes
  ASSERT_LE(name.size(), 31u);
  card_.photo(name);
  card_.photo("20250614_090000.bmp");
  browse(true);
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(text("label_File_Name_value"), card_.stem(name));
  const Set before = card_.entries();
  delete_selected(0);
  EXPECT_EQ(removed(before, card_.entries()),
            (Set{"Picture/" + name, ".thumbnails/" + card_.stem(name) + ".jpg"}));
}

TEST_F(Browser, ADamagedVideoIsRefusedForOneSecondAndAGoodOneOpensThePlayer) {
  fill(0, 2);
  browse();
  key(GUI_KEY_FUCTION_S);
  key(GUI_KEY_FUCTION_S);  // options, on Display
  total_frames(29, 300);
  key(GUI_KEY_FUCTION_S);
  EXPECT_TRUE(shown("view_file_corrupted"));
  EXPECT_EQ(top_name(), "Zavo_file_menu");
  advance(600);
  key(GUI_KEY_FUCTION_S);  // again while the notice shows: still the first second counts
  advance(399);
  EXPECT_TRUE(shown("view_file_corrupted"));
  advance(1);
  EXPECT_FALSE(shown("view_file_corrupted"));
  advance(1000);
  EXPECT_FALSE(shown("view_file_corrupted"));

  total_frames(30, 300);
  key(GUI_KEY_FUCTION_S);
  advance(0);
  EXPECT_EQ(top_name(), "Zavo_file_video");
}

TEST_F(Browser, DisplayOpensThePhotoViewerAndThePowerKeyGoesHome) {
  fill(2, 0);
  ASSERT_NE(home_scene_open(), nullptr);
  browse(true);
  key(GUI_KEY_FUCTION_S);
  key(GUI_KEY_FUCTION_S);
  key(GUI_KEY_FUCTION_S);
  advance(0);
  EXPECT_EQ(top_name(), "Zavo_file_image");
  key(GUI_KEY_POWER_S);
  advance(0);
  EXPECT_EQ(top_name(), "Zavo_home_page_1");
  EXPECT_EQ(widget_child(window_manager(), "Zavo_file_menu"), nullptr);
}

TEST_F(Browser, TheLongFunctionKeyOnTheTabsLeavesTheBrowser) {
  ASSERT_NE(home_scene_open(), nullptr);
  browse();
  key(GUI_KEY_FUCTION_L);
  advance(0);
  EXPECT_EQ(top_name(), "Zavo_home_page_1");
}

TEST_F(Browser, TheObservationScreenLoadsTheCatalogue) {
  fill(4, 3);
  ASSERT_NE(home_scene_open(), nullptr);
  ASSERT_NE(Zavo_file_info, nullptr);
  EXPECT_EQ(Zavo_photo_num, 4);
  EXPECT_EQ(Zavo_video_num, 3);
}

TEST_F(Browser, AnEmptyCardLosesItsOrphanThumbnailsAnUnreadableOneKeepsThem) {
  card_.file(".thumbnails/20250614_090000.jpg");
  fs::remove_all(card_.media("Picture"));
  fs::remove_all(card_.media("Video"));
  std::string out = printed([&] { browse(); });
  EXPECT_TRUE(card_.has(".thumbnails/20250614_090000.jpg"));
  EXPECT_NE(out.find("media directories cannot be read: thumbnails kept"), std::string::npos);
  fs::create_directories(card_.media("Picture"));
  fs::create_directories(card_.media("Video"));
  browse();
  EXPECT_FALSE(card_.has(".thumbnails/20250614_090000.jpg"));
  EXPECT_TRUE(card_.has(".thumbnails"));
}

TEST_F(Browser, ACardOfAwkwardFilesGivesSaneCellsOnEveryPage) {
  sample_media::set_options o;
  o.photos = 3;
  o.videos = 2;
  o.photo_w = 64;
  o.photo_h = 52;
  o.broken = true;
  ASSERT_TRUE(sample_media::write_media_set(card_.media(""), o));
  const sample_media::set_names names = sample_media::media_set_names(o);
  std::string out = printed([&] {
    browse(true);
    key(GUI_KEY_FUCTION_S);
    for (int i = 0; i < Zavo_photo_num; ++i) {
      key(GUI_KEY_PHOTO_S);
      advance(0);  // painted: every thumbnail decoded or refused
    }
    key(GUI_KEY_FUCTION_L);
    key(GUI_KEY_PHOTO_S);
    key(GUI_KEY_FUCTION_S);
    for (int i = 0; i < Zavo_video_num; ++i) {
      key(GUI_KEY_PHOTO_S);
      advance(0);
    }
  });
  EXPECT_EQ(Zavo_photo_num, static_cast<int32_t>(names.photos.size()));
  EXPECT_EQ(Zavo_video_num, static_cast<int32_t>(names.videos.size()));
  // The photos' first page: newest first, each cell named, the 70-character name cut.
  key(GUI_KEY_FUCTION_L);
  key(GUI_KEY_PHOTO_S);
  const std::vector<std::string> cells = grid_names();
  for (int i = 0; i < 9 && i < Zavo_photo_num; ++i) {
    const std::string& name = names.photos[names.photos.size() - 1 - i];
    EXPECT_EQ(cells[i], name.substr(0, std::min<size_t>(name.size(), 64) - 4)) << i;
  }
  EXPECT_NE(out.find("Error:  fstat"), std::string::npos) << "the cut name's size is said";
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

}  // namespace
