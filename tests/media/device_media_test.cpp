// The simulated device's media and the sample media: a video's length read from its file, the
// playback reports, pause, seek and stop; photos and recordings written to the card; the media
// files themselves.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/list.h"
#include "device_model.h"
#include "framedec.h"
#include "media_fixture.h"

namespace {

namespace fs = std::filesystem;
using media_test::Card;

class DeviceMedia : public ::testing::Test {
 protected:
  DeviceMedia()
      : device_([this](const devsim::Frame& f) { out_.push_back(decode(f)); },
                [this](const std::string& line) { lines_.push_back(line); }) {
    device_.set_schedule(false);
    device_.set_media_dir(card_.media(""));
  }
  static std::string decode(const devsim::Frame& f) {
    return framedec::normalize(framedec::decode(f, framedec::Direction::TO_UI));
  }
  void ui(uint8_t command, uint8_t sub, const std::string& name = "") {
    std::vector<uint8_t> v(name.begin(), name.end());
    v.push_back(0);
    device_.on_frame(framedec::build(23, command, sub, v));
  }
  void seek(uint64_t frames) {
    std::vector<uint8_t> v;
    for (int i = 0; i < 8; ++i)
      v.push_back(static_cast<uint8_t>(frames >> (8 * i)));
    device_.on_frame(framedec::build(23, 1, TAP_REWIND_FORWARD, v));
  }
  std::vector<std::string> take() { return std::exchange(out_, {}); }

  Card card_;
  std::vector<std::string> out_, lines_;
  devsim::Device device_;
};

TEST_F(DeviceMedia, TheLengthComesFromTheVideoAskedAbout) {
  card_.video("a.mp4", 1950);
  sample_media::write_video(card_.media("Video/b.mp4"), 600, 25);
  card_.file("Video/c.mp4", 24);  // the container's first box only
  ui(TAP_REPLAY, TAP_REPLAY_VEDIO_TOTAL_TIME, "a.mp4");
  ui(TAP_REPLAY, TAP_REPLAY_VEDIO_TOTAL_TIME, "b.mp4");
  ui(TAP_REPLAY, TAP_REPLAY_VEDIO_TOTAL_TIME, "c.mp4");
  ui(TAP_REPLAY, TAP_REPLAY_VEDIO_TOTAL_TIME, "gone.mp4");
  const std::vector<std::string> got = take();
  ASSERT_EQ(got.size(), 4u);
  EXPECT_NE(got[0].find("1950"), std::string::npos) << got[0];
  EXPECT_NE(got[0].find("300"), std::string::npos) << got[0];
  EXPECT_NE(got[1].find("600"), std::string::npos) << got[1];
  EXPECT_NE(got[1].find("250"), std::string::npos) << got[1];
  EXPECT_EQ(got[2], got[3]);
  EXPECT_EQ(got[2], decode(devsim::video_total_frame(0, 0)));
  EXPECT_EQ(lines_, (std::vector<std::string>{"device: c.mp4 cannot be read as a video",
                                              "device: gone.mp4 cannot be read as a video"}));
}

TEST_F(DeviceMedia, PlaybackReportsFourTimesASecondPausesSeeksAndEnds) {
  card_.video("a.mp4", 90);  // 3 s
  const std::string pos0 = decode(devsim::video_position_frame(0));
  device_.tick(1000);
  ui(TAP_REPLAY, TAP_REPLAY_START, "a.mp4");
  EXPECT_EQ(take(), (std::vector<std::string>{decode(devsim::video_total_frame(90, 300)), pos0}));
  for (uint64_t t = 1000; t <= 2000; t += 50)
    device_.tick(t);
  EXPECT_EQ(take(), (std::vector<std::string>{decode(devsim::video_position_frame(7)),
                                              decode(devsim::video_position_frame(15)),
                                              decode(devsim::video_position_frame(22)),
                                              decode(devsim::video_position_frame(30))}));
  ui(TAP_REPLAY, TAP_REPLAY_PAUSE);
  for (uint64_t t = 2000; t <= 4000; t += 50)
    device_.tick(t);
  EXPECT_TRUE(take().empty());
  seek(75);
  EXPECT_EQ(take(), std::vector<std::string>{decode(devsim::video_position_frame(75))});
  ui(TAP_REPLAY, TAP_REPLAY_CONTINUE);
  for (uint64_t t = 4000; t <= 6000; t += 50)
    device_.tick(t);
  const std::vector<std::string> end = take();
  ASSERT_FALSE(end.empty());
  EXPECT_EQ(end.back(), decode(devsim::video_position_frame(90)))
      << "the last report is the last frame";
  EXPECT_FALSE(device_.playing());

  ui(TAP_REPLAY, TAP_REPLAY_START, "a.mp4");
  ui(TAP_REPLAY, TAP_REPLAY_STOP);
  take();
  for (uint64_t t = 6000; t <= 8000; t += 50)
    device_.tick(t);
  EXPECT_TRUE(take().empty());
  // A video that cannot be read does not play.
  ui(TAP_REPLAY, TAP_REPLAY_START, "gone.mp4");
  EXPECT_FALSE(device_.playing());
}

TEST_F(DeviceMedia, PhotosTakenAndRecordingsAppearOnTheCard) {
  ui(TAP_PICTURE_RECORD, TAP_TAKE_PICTURE);
  ui(TAP_PICTURE_RECORD, TAP_TAKE_PICTURE);  // the same second: the next free name
  device_.tick(10000);
  ui(TAP_PICTURE_RECORD, TAP_RECORD_START);
  device_.tick(15000);
  ui(TAP_PICTURE_RECORD, TAP_RECORD_STOP);
  ASSERT_EQ(lines_.size(), 4u);
  EXPECT_EQ(lines_[0].rfind("device: photo taken: Picture/", 0), 0u) << lines_[0];
  EXPECT_EQ(lines_[2], "device: recording started");
  std::unique_ptr<file_unit, decltype(&std::free)> units(
      getFileListInfo(SORT_FILENAME_REVERSE, nullptr), &std::free);
  ASSERT_TRUE(units);
  EXPECT_EQ(units.get()[0].photo_num, 2);
  EXPECT_EQ(units.get()[0].video_num, 1);
  const std::string video = units.get()[0].video_name;
  EXPECT_EQ(lines_[3], "device: recording stopped: Video/" + video);
  EXPECT_EQ(sample_media::read_video(card_.media("Video/" + video))->frames, 150u) << "5 s at 30";
  for (const std::string& name :
       {std::string(units.get()[0].photo_name), std::string(units.get()[1].photo_name), video})
    EXPECT_TRUE(card_.has(".thumbnails/" + Card::stem(name) + ".jpg")) << name;
}

TEST(SampleMedia, VideosCarryTheirLengthAndOtherFilesNone) {
  Card card;
  for (uint64_t frames : {1ull, 29ull, 1950ull, 3600ull * 30}) {
    const std::string path = card.media("Video/v.mp4");
    ASSERT_TRUE(sample_media::write_video(path, frames, 30));
    const auto info = sample_media::read_video(path);
    ASSERT_TRUE(info.has_value()) << frames;
    EXPECT_EQ(info->frames, frames);
    EXPECT_EQ(info->fps, 30u);
  }
  card.photo("p.bmp");
  EXPECT_FALSE(sample_media::read_video(card.media("Picture/p.bmp")).has_value());
  EXPECT_FALSE(sample_media::read_video(card.media("Video/none.mp4")).has_value());
  EXPECT_EQ(sample_media::stamp(1749891600), "20250614_090000");
}

}  // namespace
