// sample_media <media dir> [photos] [videos]
//
// Writes what the device application would have left on the card, so the media pages have
// something to list on a desktop:
//   <media dir>/Picture/<stamp>.bmp      synthetic thermal scenes, 320 x 256, 24-bit
//   <media dir>/Video/<stamp>.mp4        placeholders (a bare container header; the device
//                                        application plays videos, not the UI)
//   <media dir>/.thumbnails/<stamp>.jpg  one 160 x 128 thumbnail per medium
// Names are date and time stamps ("20250614_093012"), as the device writes them. The scenes are
// deterministic: the same arguments give the same files.
#include <SDL2/SDL.h>
#include <SDL2/SDL_image.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

struct blob {
  float x, y, rx, ry, heat;
};

// Heat 0..1 to the "iron" palette: black, violet, red, orange, yellow, white.
void iron(float t, Uint8* rgb) {
  static constexpr float stops[][4] = {
      {0.00f, 0, 0, 0},      {0.25f, 80, 20, 140},  {0.50f, 200, 30, 60},
      {0.70f, 250, 120, 10}, {0.88f, 255, 220, 40}, {1.00f, 255, 255, 235},
  };
  t = std::clamp(t, 0.0f, 1.0f);
  int i = 0;
  while (i < 4 && t > stops[i + 1][0])
    ++i;
  const float f = (t - stops[i][0]) / (stops[i + 1][0] - stops[i][0]);
  for (int c = 0; c < 3; ++c) {
    rgb[c] = static_cast<Uint8>(stops[i][c + 1] + f * (stops[i + 1][c + 1] - stops[i][c + 1]));
  }
}

// A cool sky over warmer ground with a few warm animals; `seed` varies the scene.
SDL_Surface* thermal_scene(int w, int h, unsigned seed) {
  SDL_Surface* s = SDL_CreateRGBSurfaceWithFormat(0, w, h, 24, SDL_PIXELFORMAT_RGB24);
  if (s == nullptr) return nullptr;
  srand(seed);
  const int count = 1 + static_cast<int>(seed % 3);
  blob blobs[6];
  for (int i = 0; i < count; ++i) {
    const float x = 0.15f + 0.7f * static_cast<float>(rand() % 100) / 100.0f;
    const float y = 0.55f + 0.25f * static_cast<float>(rand() % 100) / 100.0f;
    blobs[2 * i] = {x, y, 0.09f, 0.05f, 0.95f};                     // body
    blobs[2 * i + 1] = {x + 0.08f, y - 0.05f, 0.03f, 0.03f, 1.0f};  // head
  }
  const float horizon = 0.45f + 0.1f * static_cast<float>(seed % 5) / 5.0f;
  for (int py = 0; py < h; ++py) {
    Uint8* row = static_cast<Uint8*>(s->pixels) + py * s->pitch;
    for (int px = 0; px < w; ++px) {
      const float u = static_cast<float>(px) / w;
      const float v = static_cast<float>(py) / h;
      float heat = v < horizon
                       ? 0.08f + 0.1f * v
                       : 0.3f + 0.15f * (v - horizon) + 0.02f * std::sin(u * 23.0f + v * 7.0f) +
                             0.015f * std::sin(u * 71.0f - v * 53.0f);
      for (int i = 0; i < 2 * count; ++i) {
        const float dx = (u - blobs[i].x) / blobs[i].rx;
        const float dy = (v - blobs[i].y) / blobs[i].ry;
        const float d = dx * dx + dy * dy;
        if (d < 1.0f) heat = std::max(heat, blobs[i].heat * (1.0f - 0.35f * d));
      }
      iron(heat, row + 3 * px);
    }
  }
  return s;
}

// Creates `path` and any missing parent.
bool make_dir(const std::string& path) {
  for (size_t slash = path.find('/', 1); slash != std::string::npos;
       slash = path.find('/', slash + 1)) {
    mkdir(path.substr(0, slash).c_str(), 0755);
  }
  if (mkdir(path.c_str(), 0755) == 0 || errno == EEXIST) return true;
  fprintf(stderr, "sample_media: cannot create %s: %s\n", path.c_str(), strerror(errno));
  return false;
}

bool write_thumbnail(SDL_Surface* scene, const std::string& path) {
  SDL_Surface* thumb = SDL_CreateRGBSurfaceWithFormat(0, 160, 128, 24, SDL_PIXELFORMAT_RGB24);
  bool ok = thumb != nullptr && SDL_BlitScaled(scene, nullptr, thumb, nullptr) == 0 &&
            IMG_SaveJPG(thumb, path.c_str(), 85) == 0;
  if (!ok) fprintf(stderr, "sample_media: cannot write %s: %s\n", path.c_str(), SDL_GetError());
  SDL_FreeSurface(thumb);
  return ok;
}

// A container header only: enough for a file manager to call it a video.
bool write_video_placeholder(const std::string& path) {
  static constexpr unsigned char ftyp[] = {0, 0, 0, 24, 'f', 't', 'y', 'p', 'i', 's', 'o', 'm',
                                           0, 0, 2, 0,  'i', 's', 'o', 'm', 'm', 'p', '4', '1'};
  FILE* f = fopen(path.c_str(), "wb");
  const bool ok = f != nullptr && fwrite(ftyp, 1, sizeof ftyp, f) == sizeof ftyp;
  if (f != nullptr) fclose(f);
  if (!ok) fprintf(stderr, "sample_media: cannot write %s: %s\n", path.c_str(), strerror(errno));
  return ok;
}

int count_arg(const char* arg, int fallback) {
  if (arg == nullptr) return fallback;
  char* end = nullptr;
  const long n = strtol(arg, &end, 10);
  if (*arg == '\0' || *end != '\0' || n < 0 || n > 99) {
    fprintf(stderr, "sample_media: bad count \"%s\" (0..99), using %d\n", arg, fallback);
    return fallback;
  }
  return static_cast<int>(n);
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc < 2 || argc > 4) {
    fprintf(stderr, "usage: sample_media <media dir> [photos=4] [videos=2]\n");
    return 2;
  }
  const std::string media = argv[1];
  const int photos = count_arg(argc > 2 ? argv[2] : nullptr, 4);
  const int videos = count_arg(argc > 3 ? argv[3] : nullptr, 2);
  if (!make_dir(media) || !make_dir(media + "/Picture") || !make_dir(media + "/Video") ||
      !make_dir(media + "/.thumbnails")) {
    return 1;
  }
  bool ok = true;
  for (int i = 0; i < photos + videos; ++i) {
    char stamp[32];
    snprintf(stamp, sizeof stamp, "20250614_%02d%02d%02d", 9 + i / 6, (i * 7) % 60, (i * 13) % 60);
    SDL_Surface* scene = thermal_scene(320, 256, static_cast<unsigned>(i + 1));
    if (scene == nullptr) {
      fprintf(stderr, "sample_media: %s\n", SDL_GetError());
      return 1;
    }
    if (i < photos) {
      const std::string photo = media + "/Picture/" + stamp + ".bmp";
      if (SDL_SaveBMP(scene, photo.c_str()) != 0) {
        fprintf(stderr, "sample_media: cannot write %s: %s\n", photo.c_str(), SDL_GetError());
        ok = false;
      }
    } else {
      ok = write_video_placeholder(media + "/Video/" + stamp + ".mp4") && ok;
    }
    ok = write_thumbnail(scene, media + "/.thumbnails/" + stamp + ".jpg") && ok;
    SDL_FreeSurface(scene);
  }
  return ok ? 0 : 1;
}
