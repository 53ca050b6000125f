// sample_media <media dir> [photos] [videos] [options]
//
// Fills a device tree's media folder the way the device application does (see media_writer.h):
// photos, videos and their thumbnails, named by date and time in ascending order.
//   photos, videos       how many of each (default 4 and 2; up to 100000 each)
//   --broken             also the awkward cases: empty and truncated photos and thumbnails, a
//                        video without thumbnail, a truncated and a 20-frame video, names with
//                        spaces and UTF-8, of 40 and 70 characters, a shared thumbnail, a
//                        directory and a link named like photos, an upper-case extension and a
//                        name without a dot
//   --photo-size WxH     photo size (default 640x512, the sensor's)
//   --no-thumbnails      no thumbnails for the regular media
// Thousands of media take seconds: past 64, files of 16 scenes are copied.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "media_writer.h"

namespace {

bool count_arg(const char* arg, int* out) {
  char* end = nullptr;
  const long n = strtol(arg, &end, 10);
  if (*arg == '\0' || *end != '\0' || n < 0 || n > 100000) {
    fprintf(stderr, "sample_media: bad count \"%s\" (0..100000)\n", arg);
    return false;
  }
  *out = static_cast<int>(n);
  return true;
}

int usage() {
  fprintf(stderr,
          "usage: sample_media <media dir> [photos=4] [videos=2] [--broken] [--photo-size WxH] "
          "[--no-thumbnails]\n");
  return 2;
}

}  // namespace

int main(int argc, char* argv[]) {
  sample_media::set_options options;
  std::vector<const char*> positional;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--broken") == 0) {
      options.broken = true;
    } else if (std::strcmp(argv[i], "--no-thumbnails") == 0) {
      options.thumbnails = false;
    } else if (std::strcmp(argv[i], "--photo-size") == 0 && i + 1 < argc) {
      int w = 0, h = 0;
      if (std::sscanf(argv[++i], "%dx%d", &w, &h) != 2 || w < 8 || h < 8 || w > 4096 || h > 4096) {
        fprintf(stderr, "sample_media: bad photo size \"%s\" (WxH, 8..4096)\n", argv[i]);
        return 2;
      }
      options.photo_w = w;
      options.photo_h = h;
    } else if (std::strncmp(argv[i], "--", 2) == 0) {
      return usage();
    } else {
      positional.push_back(argv[i]);
    }
  }
  if (positional.empty() || positional.size() > 3) return usage();
  if (positional.size() > 1 && !count_arg(positional[1], &options.photos)) return 2;
  if (positional.size() > 2 && !count_arg(positional[2], &options.videos)) return 2;
  return sample_media::write_media_set(positional[0], options) ? 0 : 1;
}
