// Media as the device application leaves them on the card, for desktop runs, the simulator,
// tests, benchmarks and the gallery:
//   Picture/<stamp>.bmp      photos: synthetic thermal scenes, 24-bit BMP
//   Video/<stamp>.mp4        videos: an MP4 header (movie header and one video track whose sample
//                            table counts the frames) and a media data box that gives the file the
//                            size of its bit rate (sparse on disk); the simulator reads the length
//                            back, the UI never decodes a video
//   .thumbnails/<stamp>.jpg  one 160 x 128 JPEG per medium
// Names are date and time stamps "YYYYMMDD_HHMMSS" (the 9-character date prefix "YYYYMMDD_"
// first). Everything is deterministic: the same options give the same files.
#ifndef TOOLS_SAMPLE_MEDIA_MEDIA_WRITER_H
#define TOOLS_SAMPLE_MEDIA_MEDIA_WRITER_H

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

namespace sample_media {

// "YYYYMMDD_HHMMSS" of `t` (UTC).
std::string stamp(time_t t);

// A thermal scene (cool sky, warm ground, a few animals; `seed` varies it) as a BMP of w x h.
bool write_photo(const std::string& path, unsigned seed, int w = 640, int h = 512);
// The same scene as a 160 x 128 JPEG thumbnail.
bool write_thumbnail(const std::string& path, unsigned seed);
// A video of `frames` frames at `fps` frames a second (see above).
bool write_video(const std::string& path, uint64_t frames, unsigned fps);

struct video_info {
  uint64_t frames = 0;
  unsigned fps = 0;
};
// The frame count and rate of a video's first video track, or nothing for a file that is missing,
// truncated or not an MP4 with such a track.
std::optional<video_info> read_video(const std::string& path);

struct set_options {
  int photos = 4;
  int videos = 2;
  int photo_w = 640;
  int photo_h = 512;
  time_t first = 1749891600;  // 2025-06-14 09:00:00 UTC
  int step_seconds = 37;      // between two media, in name order
  bool thumbnails = true;
  bool broken = false;  // add the awkward cases below
};

// Writes a set into media_dir (creating Picture/, Video/, .thumbnails/). Media alternate
// between the two kinds in time order until one kind is used up, the names ascending in the
// order written. Past 64 media only 16 distinct scenes are drawn and the others are copies of
// their files, so thousands of media take seconds. With `broken`, also: an empty and a truncated
// photo, a truncated and an empty thumbnail, a video without a thumbnail, a truncated video, a
// video of 20 frames, a name with spaces and UTF-8, a name of 40 characters beside a file named
// as its first 31, a name of 70 characters, a photo and a video of one stem sharing a thumbnail,
// a directory and a link named like photos, an upper-case extension and a name without a dot.
// False (with a line on standard error) when a file could not be written.
bool write_media_set(const std::string& media_dir, const set_options& options);

// The names of the photos and videos write_media_set lists (sorted ascending): what the
// catalogue must find.
struct set_names {
  std::vector<std::string> photos;
  std::vector<std::string> videos;
};
set_names media_set_names(const set_options& options);

// Creates `path` and its missing parents. False with a line on standard error.
bool make_dirs(const std::string& path);

}  // namespace sample_media

#endif  // TOOLS_SAMPLE_MEDIA_MEDIA_WRITER_H
