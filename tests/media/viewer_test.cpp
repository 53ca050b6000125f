// The photo viewer "Zavo_file_image" and the video player "Zavo_file_video" (and the bare
// "Zavo_file_video_1"): what they show, the keys, the frames they send, the timers of the wind
// keys, the end of a video; and the player driven by the simulated device end to end.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "device_model.h"
#include "media_fixture.h"
#include "pages/Zavo_file_menu.h"
#include "pages/page_list.h"
#include "tk_testing.h"

namespace {

namespace fs = std::filesystem;
using page_test::printed;

class Viewer : public media_test::MediaPageTest {
 protected:
  void SetUp() override {
    MediaPageTest::SetUp();
    for (const char* n : {"20250614_090000.bmp", "20250614_090100.bmp", "20250614_090200.bmp"})
      card_.photo(n);
  }
  // From the browser's photo tab, the photo at `index` (newest first) opened with Display.
  void view(int index) {
    browse(true);
    key(GUI_KEY_FUCTION_S);
    for (int i = 0; i < index; ++i)
      key(GUI_KEY_PHOTO_S);
    key(GUI_KEY_FUCTION_S);
    key(GUI_KEY_FUCTION_S);
    advance(0);
    win_ = top();
  }
};

TEST_F(Viewer, ShowsTheBitmapItselfAndStepsWithWrapAround) {
  view(0);
  ASSERT_EQ(top_name(), "Zavo_file_image");
  EXPECT_EQ(image("image_photo"), "file://" + card_.media("Picture/20250614_090200.bmp"));
  EXPECT_EQ(text("label_video_name"), "20250614_090200");
  const struct {
    int key;
    int index;
    const char* name;
  } steps[] = {{GUI_KEY_RANGE_S, 2, "20250614_090000"},  // first, previous: the last
               {GUI_KEY_PHOTO_S, 0, "20250614_090200"},  // last, next: the first
               {GUI_KEY_PHOTO_S, 1, "20250614_090100"}};
  for (const auto& s : steps) {
    key(s.key);
    EXPECT_EQ(Zavo_photos_index, s.index);
    EXPECT_EQ(text("label_video_name"), s.name);
    EXPECT_EQ(image("image_photo"),
              "file://" + card_.media("Picture/" + std::string(s.name) + ".bmp"));
  }
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(Viewer, ClosingPutsTheBrowserOnThePhotoShownLast) {
  for (int i = 3; i < 12; ++i)
    card_.photo("20250614_0903" + std::to_string(10 + i) + ".bmp");
  view(0);               // twelve photos: two pages
  key(GUI_KEY_RANGE_S);  // the oldest, on page 2
  EXPECT_EQ(Zavo_photos_index, 11);
  EXPECT_EQ(Zavo_photos_current_page, 2) << "the viewer pages by 8";
  key(GUI_KEY_FUCTION_S);
  advance(0);
  ASSERT_EQ(top_name(), "Zavo_file_menu");
  win_ = top();
  EXPECT_EQ(Zavo_photos_current_page, 2);
  EXPECT_EQ(text("label_index_page"), "2/2");
  EXPECT_EQ(text("label_File_Name_value"), "20250614_090000");
  EXPECT_EQ(box("view_file_sel"), (page_test::Box{544, 0, 272, 276}));
}

TEST_F(Viewer, AMissingPhotoShowsNothingAndSaysSo) {
  view(1);
  fs::remove(card_.media("Picture/20250614_090000.bmp"));  // deleted behind the browser
  std::string out = printed([&] {
    key(GUI_KEY_PHOTO_S);
    advance(0);
  });
  EXPECT_EQ(text("label_video_name"), "20250614_090000");
  EXPECT_NE(
      out.find("Zavo_file_image: " + card_.media("Picture/20250614_090000.bmp") + " is missing"),
      std::string::npos)
      << out;
  // Past the catalogue (emptied behind it): nothing shown, a line.
  std::free(Zavo_file_info);
  Zavo_file_info = nullptr;
  out = printed([&] { key(GUI_KEY_PHOTO_S); });
  EXPECT_FALSE(shown("image_photo"));
  EXPECT_NE(out.find("Zavo_file_image: no photo"), std::string::npos);
}

class Player : public media_test::MediaPageTest {
 protected:
  void SetUp() override {
    MediaPageTest::SetUp();
    card_.video("20250614_090000.mp4", 600);
    card_.video("20250614_090100.mp4", 1950);
  }
  // The newest video played: the browser asks its length (the device answers `frames`), then
  // Display.
  void play(uint64_t frames = 1950, uint16_t rate = 300) {
    browse();
    key(GUI_KEY_FUCTION_S);
    from_device(devsim::video_total_frame(frames, rate));
    sent_frames();  // the length request
    key(GUI_KEY_FUCTION_S);
    key(GUI_KEY_FUCTION_S);
    advance(0);
    win_ = top();
  }
  void device_says(uint64_t total, uint64_t current) {
    from_device(devsim::video_total_frame(total, 300));
    from_device(devsim::video_position_frame(current));
  }
};

TEST_F(Player, StartsTheVideoAndShowsItsNameAndTimes) {
  play();
  ASSERT_EQ(top_name(), "Zavo_file_video");
  EXPECT_EQ(sent(), std::vector<std::string>{
                        "TAP TAP_REPLAY TAP_REPLAY_START name=\"20250614_090100.mp4\""});
  EXPECT_EQ(stUIStatus.u64VideoTotalFrames, 0u) << "cleared until the device answers";
  EXPECT_EQ(text("label_video_name"), "20250614_090100");
  EXPECT_EQ(Zavo_play_status, 1);
  for (const char* icon : {"image_play", "image_forward", "image_rewind", "view_file_corrupted"})
    EXPECT_FALSE(shown(icon)) << icon;
  const struct {
    uint64_t total, current;
    const char* total_text;
    const char* play_text;
    double progress;
  } reports[] = {
      {1950, 0, "/01:05", "00:01", 57},                 // (0 + 31) x 3600 / 1950
      {1950, 960, "/01:05", "00:33", 1829},             // (9600 + 310) / 300 = 33 s
      {3725 * 30, 3660 * 30, "/02:05", "01:01", 3538},  // hours dropped
  };
  for (const auto& r : reports) {
    device_says(r.total, r.current);
    EXPECT_EQ(text("label_total_time"), r.total_text) << r.current;
    EXPECT_EQ(text("label_play_time"), r.play_text) << r.current;
    EXPECT_EQ(widget_get_value(w("progress_bar")), r.progress) << r.current;
  }
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(Player, AZeroRateReadsZeroTimes) {
  stUIStatus.u8VideoCurrentFrames = 0;
  play(1950, 0);
  from_device(devsim::video_total_frame(1950, 0));
  from_device(devsim::video_position_frame(300));
  EXPECT_EQ(text("label_total_time"), "/00:00");
  EXPECT_EQ(text("label_play_time"), "00:00");
}

TEST_F(Player, FunctionKeyPausesAndContinuesWithThePlayIcon) {
  play();
  sent();
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(Zavo_play_status, 0);
  EXPECT_TRUE(shown("image_play"));
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(Zavo_play_status, 1);
  EXPECT_FALSE(shown("image_play"));
  EXPECT_EQ(sent(), (std::vector<std::string>{"TAP TAP_REPLAY TAP_REPLAY_PAUSE",
                                              "TAP TAP_REPLAY TAP_REPLAY_CONTINUE"}));
}

TEST_F(Player, StepsSeekByTheStepSizeAndStopAtBothEnds) {
  play();
  const struct {
    int key;
    uint64_t current;
    uint64_t target;
    const char* icon;
  } steps[] = {{GUI_KEY_PHOTO_S, 900, 1200, "image_forward"},
               {GUI_KEY_PHOTO_S, 1700, 1950, "image_forward"},  // 250 left: the last frame
               {GUI_KEY_PHOTO_S, 1650, 1950, "image_forward"},  // exactly 300 left
               {GUI_KEY_RANGE_S, 900, 600, "image_rewind"},
               {GUI_KEY_RANGE_S, 299, 0, "image_rewind"}};
  for (const auto& s : steps) {
    device_says(1950, s.current);
    sent();
    key(s.key);
    EXPECT_EQ(sent(),
              std::vector<std::string>{"TAP TAP_REWIND_FORWARD frames=" + std::to_string(s.target)})
        << s.current;
    EXPECT_TRUE(shown(s.icon));
    advance(499);
    EXPECT_TRUE(shown(s.icon));
    advance(1);
    EXPECT_FALSE(shown(s.icon)) << "the icons of the play status again";
  }
  // Paused, a step keeps it paused: no continue is sent and the play icon returns.
  key(GUI_KEY_FUCTION_S);
  sent();
  key(GUI_KEY_PHOTO_S);
  advance(500);
  EXPECT_EQ(Zavo_play_status, 0);
  EXPECT_TRUE(shown("image_play"));
  EXPECT_EQ(sent().size(), 1u);
}

TEST_F(Player, HeldKeysWindEveryHalfSecondUntilReleased) {
  play();
  device_says(1950, 600);
  sent();
  key(GUI_KEY_PHOTO_L);
  key(GUI_KEY_PHOTO_L);  // a second trigger starts no second timer
  EXPECT_TRUE(shown("image_forward"));
  EXPECT_NE(timer_forward_id, 0u);
  EXPECT_TRUE(sent().empty());
  advance(500);
  EXPECT_EQ(sent(), std::vector<std::string>{"TAP TAP_REWIND_FORWARD frames=900"});
  from_device(devsim::video_position_frame(900));
  advance(500);
  EXPECT_EQ(sent(), std::vector<std::string>{"TAP TAP_REWIND_FORWARD frames=1200"});
  key(GUI_KEY_PHOTO_L_POP);
  EXPECT_EQ(timer_forward_id, 0u);
  EXPECT_FALSE(shown("image_forward"));
  advance(2000);
  EXPECT_TRUE(sent().empty());

  key(GUI_KEY_RANGE_L);
  EXPECT_TRUE(shown("image_rewind"));
  advance(1000);
  EXPECT_EQ(sent(), (std::vector<std::string>{"TAP TAP_REWIND_FORWARD frames=600",
                                              "TAP TAP_REWIND_FORWARD frames=600"}));
  key(GUI_KEY_RANGE_L_POP);
  EXPECT_EQ(timer_rewind_id, 0u);
  advance(1000);
  EXPECT_TRUE(sent().empty());
}

TEST_F(Player, TheLastFrameEndsPlaybackAndReturnsToTheBrowser) {
  play();
  sent();
  device_says(1950, 1949);
  EXPECT_EQ(top_name(), "Zavo_file_video");
  from_device(devsim::video_position_frame(1950));
  advance(0);
  EXPECT_EQ(sent(), std::vector<std::string>{"TAP TAP_REPLAY TAP_REPLAY_STOP"});
  EXPECT_EQ(top_name(), "Zavo_file_menu");
  EXPECT_EQ(widget_child(window_manager(), "Zavo_file_video"), nullptr);
}

TEST_F(Player, EveryWayOutStopsPlayback) {
  play();
  sent();
  key(GUI_KEY_PHOTO_L);  // winding while leaving
  key(GUI_KEY_FUCTION_L);
  advance(0);
  EXPECT_EQ(sent(), std::vector<std::string>{"TAP TAP_REPLAY TAP_REPLAY_STOP"});
  EXPECT_EQ(top_name(), "Zavo_file_menu");
  advance(3000);
  EXPECT_TRUE(sent().empty()) << "the winding timer died with the player";

  ASSERT_NE(home_scene_open(), nullptr);
  play();
  sent();
  key(GUI_KEY_POWER_S);
  advance(0);
  EXPECT_EQ(sent(), std::vector<std::string>{"TAP TAP_REPLAY TAP_REPLAY_STOP"});
  EXPECT_EQ(top_name(), "Zavo_home_page_1");
  EXPECT_TRUE(widget_child(window_manager(), "Zavo_home_page_1")->visible);
}

TEST_F(Player, OnlyThePlayerCoversTheVideoWhileItIsOpen) {
  ASSERT_NE(home_scene_open(), nullptr);
  widget_t* home = widget_child(window_manager(), "Zavo_home_page_1");
  play();
  widget_t* browser = widget_child(window_manager(), "Zavo_file_menu");
  ASSERT_NE(browser, nullptr);
  EXPECT_FALSE(home->visible);
  EXPECT_FALSE(browser->visible);
  key(GUI_KEY_FUCTION_L);
  advance(0);
  EXPECT_EQ(top_name(), "Zavo_file_menu");
  EXPECT_TRUE(home->visible);
  EXPECT_TRUE(browser->visible);
}

// The player against the simulated device: the UI's frames go to the device, the device's
// answers and position reports come back on the link, time runs on both clocks together.
TEST_F(Player, PlaysAgainstTheSimulatedDeviceToTheEnd) {
  std::vector<devsim::Frame> to_ui;
  devsim::Device device([&](const devsim::Frame& f) { to_ui.push_back(f); },
                        [](const std::string&) {});
  device.set_schedule(false);
  device.set_media_dir(card_.media(""));
  uint64_t now = 0;
  auto exchange = [&] {
    for (const auto& f : sent_frames())
      device.on_frame(f);
    device.tick(now);
    for (const auto& f : to_ui)
      from_device(f);
    to_ui.clear();
  };
  browse();
  key(GUI_KEY_FUCTION_S);  // the newest video: 1950 frames, 65 s
  exchange();
  EXPECT_EQ(text("label_Time_value"), "01:05");
  key(GUI_KEY_FUCTION_S);
  key(GUI_KEY_FUCTION_S);
  advance(0);
  win_ = top();
  exchange();
  EXPECT_EQ(text("label_total_time"), "/01:05");
  EXPECT_TRUE(device.playing());
  for (int step = 0; step < 40; ++step) {  // 10 s
    now += 250;
    advance(250);
    exchange();
  }
  EXPECT_EQ(text("label_play_time"), "00:11");
  key(GUI_KEY_FUCTION_S);  // pause
  exchange();
  EXPECT_FALSE(device.playing());
  key(GUI_KEY_PHOTO_S);  // +10 s while paused
  exchange();
  EXPECT_EQ(text("label_play_time"), "00:21");
  key(GUI_KEY_FUCTION_S);  // continue, to the end
  for (int step = 0; step < 4 * 60 && top_name() == "Zavo_file_video"; ++step) {
    now += 250;
    advance(250);
    exchange();
  }
  EXPECT_EQ(top_name(), "Zavo_file_menu");
  EXPECT_FALSE(device.playing());
}

class VideoPageOne : public media_test::MediaPageTest {};

TEST_F(VideoPageOne, OpensWithItsLayoutAndIgnoresKeys) {
  open("Zavo_file_video_1");
  ASSERT_EQ(top_name(), "Zavo_file_video_1");
  for (int k : {GUI_KEY_FUCTION_S, GUI_KEY_PHOTO_S, GUI_KEY_FUCTION_L})
    key(k);
  advance(0);
  EXPECT_EQ(top_name(), "Zavo_file_video_1");
  EXPECT_TRUE(sent().empty());
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

}  // namespace
