// The simulated device's media: it plays the card's videos (their length read from the file,
// position reports four times a second, pause, continue, seek, stop), and writes the photos taken
// and the videos recorded to the card, as the device application does.
#include <sys/stat.h>

#include <cstring>
#include <ctime>
#include <string>

#include "device_model.h"
#include "framedec.h"
#include "media_writer.h"
#include "msg/msghandler.h"

namespace devsim {

namespace {

constexpr uint64_t PLAY_REPORT_MS = 250;  // position reports while playing
constexpr unsigned RECORD_FPS = 30;

// Frames a second to the rate the UI divides by: frames per ten seconds.
uint16_t ui_rate(unsigned fps) {
  return static_cast<uint16_t>(fps * 10);
}

bool exists(const std::string& path) {
  struct stat st {};
  return lstat(path.c_str(), &st) == 0;
}

}  // namespace

std::string Device::new_media_name(const char* dir, const char* extension) const {
  time_t t = time(nullptr);
  for (;; ++t) {
    const std::string name = sample_media::stamp(t) + extension;
    const std::string stem = sample_media::stamp(t);
    if (!exists(media_dir_ + dir + name) && !exists(media_dir_ + ".thumbnails/" + stem + ".jpg")) {
      return name;
    }
  }
}

void Device::take_photo() {
  if (media_dir_.empty()) {
    print_("device: photo taken");
    return;
  }
  const std::string name = new_media_name("Picture/", ".bmp");
  const unsigned seed =
      static_cast<unsigned>(time(nullptr)) + static_cast<unsigned>(++media_written_);
  const bool ok = sample_media::write_photo(media_dir_ + "Picture/" + name, seed) &&
                  sample_media::write_thumbnail(
                      media_dir_ + ".thumbnails/" + name.substr(0, name.size() - 4) + ".jpg", seed);
  print_(std::string("device: photo taken: ") + (ok ? "Picture/" + name : "not written"));
}

void Device::finish_recording() {
  if (!recording_) return;
  recording_ = false;
  if (media_dir_.empty()) {
    print_("device: recording stopped");
    return;
  }
  const uint64_t ms = now_ms_ > recording_since_ms_ ? now_ms_ - recording_since_ms_ : 0;
  const uint64_t frames = (ms < 1000 ? 1000 : ms) * RECORD_FPS / 1000;
  const std::string name = new_media_name("Video/", ".mp4");
  const unsigned seed =
      static_cast<unsigned>(time(nullptr)) + static_cast<unsigned>(++media_written_);
  const bool ok = sample_media::write_video(media_dir_ + "Video/" + name, frames, RECORD_FPS) &&
                  sample_media::write_thumbnail(
                      media_dir_ + ".thumbnails/" + name.substr(0, name.size() - 4) + ".jpg", seed);
  print_(std::string("device: recording stopped: ") + (ok ? "Video/" + name : "not written"));
}

void Device::on_tap(const Frame& f) {
  const int command = f[3];
  const int sub = f[4];
  if (framedec::is_seek_frame(f)) {
    // Seek: the UI sends the frame to show next.
    uint64_t frames = 0;
    for (int i = 7; i >= 0; --i)
      frames = (frames << 8) | f[6 + i];
    play_frames_ = frames > play_total_ ? play_total_ : frames;
    play_from_ = play_frames_;
    play_started_ms_ = now_ms_;
    send_(video_position_frame(play_frames_));
    if (play_total_ > 0 && play_frames_ >= play_total_) playing_ = false;
    return;
  }
  if (command == TAP_PICTURE_RECORD) {
    switch (sub) {
      case TAP_RECORD_START:
        recording_ = true;
        recording_since_ms_ = now_ms_;
        print_("device: recording started");
        break;
      case TAP_RECORD_STOP: finish_recording(); break;
      case TAP_TAKE_PICTURE: take_photo(); break;
      default: break;
    }
    return;
  }
  if (command != TAP_REPLAY) return;

  const std::string name(reinterpret_cast<const char*>(f.data() + 6),
                         strnlen(reinterpret_cast<const char*>(f.data() + 6), f[1] - 6));
  auto length = [&]() -> sample_media::video_info {
    if (media_dir_.empty() || name.empty() || name.find('/') != std::string::npos) return {};
    auto info = sample_media::read_video(media_dir_ + "Video/" + name);
    if (!info) print_("device: " + name + " cannot be read as a video");
    return info.value_or(sample_media::video_info{});
  };
  switch (sub) {
    case TAP_REPLAY_VEDIO_TOTAL_TIME: {
      const auto info = length();
      send_(video_total_frame(info.frames, ui_rate(info.fps)));
      break;
    }
    case TAP_REPLAY_START: {
      const auto info = length();
      play_total_ = info.frames;
      play_fps_ = info.fps != 0 ? info.fps : 30;
      play_frames_ = play_from_ = 0;
      play_started_ms_ = now_ms_;
      next_play_ms_ = now_ms_ + PLAY_REPORT_MS;
      playing_ = play_total_ > 0;
      send_(video_total_frame(info.frames, ui_rate(info.fps)));
      if (playing_) {
        print_("device: playing " + name);
        send_(video_position_frame(0));
      }
      break;
    }
    case TAP_REPLAY_PAUSE:
      if (playing_) tick_playback(now_ms_);
      playing_ = false;
      break;
    case TAP_REPLAY_CONTINUE:
      playing_ = play_total_ > 0 && play_frames_ < play_total_;
      play_from_ = play_frames_;
      play_started_ms_ = now_ms_;
      next_play_ms_ = now_ms_ + PLAY_REPORT_MS;
      break;
    case TAP_REPLAY_STOP:
      playing_ = false;
      play_total_ = 0;
      break;
    default: break;
  }
}

// The position follows the clock from where playback last (re)started; reports go out every
// quarter second, the last one exactly on the last frame.
void Device::tick_playback(uint64_t now_ms) {
  if (!playing_) return;
  play_frames_ = play_from_ + (now_ms - play_started_ms_) * play_fps_ / 1000;
  if (play_frames_ >= play_total_) {
    play_frames_ = play_total_;
    playing_ = false;
    send_(video_position_frame(play_frames_));
    return;
  }
  if (now_ms >= next_play_ms_) {
    next_play_ms_ = now_ms + PLAY_REPORT_MS;
    send_(video_position_frame(play_frames_));
  }
}

}  // namespace devsim
