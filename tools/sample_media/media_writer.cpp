// Media as the device application writes them: see media_writer.h.
#include "media_writer.h"

#include <SDL2/SDL.h>
#include <SDL2/SDL_image.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

namespace sample_media {

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
  unsigned state = seed * 2654435761u + 12345u;
  auto next = [&state] {
    state = state * 1103515245u + 12345u;
    return static_cast<int>((state >> 16) & 0x7FFF);
  };
  const int count = 1 + static_cast<int>(seed % 3);
  blob blobs[6];
  for (int i = 0; i < count; ++i) {
    const float x = 0.15f + 0.7f * static_cast<float>(next() % 100) / 100.0f;
    const float y = 0.55f + 0.25f * static_cast<float>(next() % 100) / 100.0f;
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

// ---- MP4 boxes (big-endian) ----

void put32(std::string& out, uint32_t v) {
  for (int shift = 24; shift >= 0; shift -= 8)
    out.push_back(static_cast<char>((v >> shift) & 0xFF));
}
void put16(std::string& out, uint16_t v) {
  out.push_back(static_cast<char>(v >> 8));
  out.push_back(static_cast<char>(v & 0xFF));
}
std::string box(const char* type, const std::string& body) {
  std::string out;
  put32(out, static_cast<uint32_t>(8 + body.size()));
  out.append(type, 4);
  return out + body;
}
// A full box: version 0 and its flags, then the body.
std::string full_box(const char* type, uint32_t flags, const std::string& body) {
  std::string head;
  put32(head, flags & 0xFFFFFF);
  return box(type, head + body);
}
std::string unity_matrix() {
  std::string m;
  for (uint32_t v : {0x00010000u, 0u, 0u, 0u, 0x00010000u, 0u, 0u, 0u, 0x40000000u})
    put32(m, v);
  return m;
}

uint32_t get32(const unsigned char* p) {
  return (uint32_t{p[0]} << 24) | (uint32_t{p[1]} << 16) | (uint32_t{p[2]} << 8) | p[3];
}

// Calls fn(type, body, size) for each box in [p, p + n); stops at a box that does not fit.
template <typename Fn>
void each_box(const unsigned char* p, size_t n, Fn fn) {
  size_t at = 0;
  while (n - at >= 8) {
    const uint32_t size = get32(p + at);
    if (size < 8 || size > n - at) return;
    fn(std::string(reinterpret_cast<const char*>(p + at + 4), 4), p + at + 8, size - 8);
    at += size;
  }
}

bool write_file(const std::string& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  if (!out) {
    fprintf(stderr, "sample_media: cannot write %s: %s\n", path.c_str(), strerror(errno));
    return false;
  }
  return true;
}

std::string read_prefix(const std::string& path, size_t bytes) {
  std::ifstream in(path, std::ios::binary);
  std::string data(bytes, '\0');
  in.read(data.data(), static_cast<std::streamsize>(bytes));
  data.resize(static_cast<size_t>(in.gcount()));
  return data;
}

// Length of a video in the sets: 10 to 119 seconds.
uint64_t set_video_frames(int index) {
  return static_cast<uint64_t>(10 + (index * 37) % 110) * 30;
}

struct planned {
  std::string dir;   // "Picture" or "Video"
  std::string name;  // file name
  unsigned seed;
  uint64_t frames;  // videos
};

// The regular media of a set in time order: photos and videos alternating while both last.
std::vector<planned> plan_regular(const set_options& o) {
  std::vector<planned> out;
  int photos = 0, videos = 0;
  for (int i = 0; photos < o.photos || videos < o.videos; ++i) {
    const bool photo = videos >= o.videos || (photos < o.photos && i % 2 == 0);
    const std::string name = stamp(o.first + static_cast<time_t>(i) * o.step_seconds);
    if (photo) {
      out.push_back({"Picture", name + ".bmp", static_cast<unsigned>(i + 1), 0});
      ++photos;
    } else {
      out.push_back({"Video", name + ".mp4", static_cast<unsigned>(i + 1), set_video_frames(i)});
      ++videos;
    }
  }
  return out;
}

// The awkward media of a set (after the regular ones in time).
struct broken_names {
  std::string empty_photo, truncated_photo, empty_thumb_photo, no_thumb_video, truncated_video,
      short_video, utf8_photo, long40_photo, long40_decoy, long70_photo, shared_photo, shared_video,
      dir_photo, link_photo, upper_photo, no_dot;
};

broken_names plan_broken(const set_options& o) {
  const time_t base = o.first + static_cast<time_t>(o.photos + o.videos + 10) * o.step_seconds;
  auto at = [&](int k) { return stamp(base + k * 61); };
  broken_names b;
  b.empty_photo = at(0) + ".bmp";
  b.truncated_photo = at(1) + ".bmp";
  b.empty_thumb_photo = at(2) + ".bmp";
  b.no_thumb_video = at(3) + ".mp4";
  b.truncated_video = at(4) + ".mp4";
  b.short_video = at(5) + ".mp4";
  b.utf8_photo = at(6) +
                 " Hirsch am Waldrand \xE2\x80\x93 \xC3\x9C"
                 "berl\xC3\xA4"
                 "ufer.bmp";
  b.long40_photo = at(7) + "_" + std::string("abcdefghijklmnopqrst") + ".bmp";  // 40
  b.long40_decoy = b.long40_photo.substr(0, 31);
  b.long70_photo = at(8) + "_" + std::string(50, 'x') + ".bmp";  // 70
  b.shared_photo = at(9) + ".bmp";
  b.shared_video = at(9) + ".mp4";
  b.dir_photo = at(10) + ".bmp";
  b.link_photo = at(11) + ".bmp";
  b.upper_photo = at(12) + ".BMP";
  b.no_dot = at(13);
  return b;
}

std::string stem_of(const std::string& name) {
  const size_t dot = name.rfind('.');
  return dot == std::string::npos ? name : name.substr(0, dot);
}

}  // namespace

std::string stamp(time_t t) {
  struct tm tm {};
  gmtime_r(&t, &tm);
  char text[32];
  snprintf(text, sizeof text, "%04d%02d%02d_%02d%02d%02d", tm.tm_year + 1900, tm.tm_mon + 1,
           tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec);
  return text;
}

bool make_dirs(const std::string& path) {
  std::error_code ec;
  std::filesystem::create_directories(path, ec);
  if (ec) {
    fprintf(stderr, "sample_media: cannot create %s: %s\n", path.c_str(), ec.message().c_str());
    return false;
  }
  return true;
}

bool write_photo(const std::string& path, unsigned seed, int w, int h) {
  SDL_Surface* scene = thermal_scene(w, h, seed);
  const bool ok = scene != nullptr && SDL_SaveBMP(scene, path.c_str()) == 0;
  if (!ok) fprintf(stderr, "sample_media: cannot write %s: %s\n", path.c_str(), SDL_GetError());
  SDL_FreeSurface(scene);
  return ok;
}

bool write_thumbnail(const std::string& path, unsigned seed) {
  SDL_Surface* thumb = thermal_scene(160, 128, seed);
  const bool ok = thumb != nullptr && IMG_SaveJPG(thumb, path.c_str(), 85) == 0;
  if (!ok) fprintf(stderr, "sample_media: cannot write %s: %s\n", path.c_str(), SDL_GetError());
  SDL_FreeSurface(thumb);
  return ok;
}

bool write_video(const std::string& path, uint64_t frames, unsigned fps) {
  if (fps == 0) fps = 30;
  const uint32_t timescale = fps * 1000;
  const uint64_t ms = frames * 1000 / fps;
  std::string mvhd_body;
  for (uint32_t v : {0u, 0u, 1000u, static_cast<uint32_t>(ms), 0x00010000u})
    put32(mvhd_body, v);
  put16(mvhd_body, 0x0100);
  mvhd_body.append(10, '\0');
  mvhd_body += unity_matrix();
  mvhd_body.append(24, '\0');
  put32(mvhd_body, 2);

  std::string tkhd_body;
  for (uint32_t v : {0u, 0u, 1u, 0u, static_cast<uint32_t>(ms), 0u, 0u})
    put32(tkhd_body, v);
  put16(tkhd_body, 0);  // layer
  put16(tkhd_body, 0);  // alternate group
  put16(tkhd_body, 0);  // volume
  put16(tkhd_body, 0);
  tkhd_body += unity_matrix();
  put32(tkhd_body, 640u << 16);
  put32(tkhd_body, 512u << 16);

  std::string mdhd_body;
  for (uint32_t v : {0u, 0u, timescale, static_cast<uint32_t>(frames * 1000)})
    put32(mdhd_body, v);
  put16(mdhd_body, 0x55C4);  // "und"
  put16(mdhd_body, 0);
  std::string hdlr_body;
  put32(hdlr_body, 0);
  hdlr_body += "vide";
  hdlr_body.append(12, '\0');
  hdlr_body += std::string("VideoHandler", 13);
  std::string stts_body;
  put32(stts_body, 1);
  put32(stts_body, static_cast<uint32_t>(frames));
  put32(stts_body, 1000);
  std::string vmhd_body(8, '\0');

  const std::string stbl = box("stbl", full_box("stts", 0, stts_body));
  const std::string minf = box("minf", full_box("vmhd", 1, vmhd_body) + stbl);
  const std::string mdia =
      box("mdia", full_box("mdhd", 0, mdhd_body) + full_box("hdlr", 0, hdlr_body) + minf);
  const std::string trak = box("trak", full_box("tkhd", 3, tkhd_body) + mdia);
  const std::string moov = box("moov", full_box("mvhd", 0, mvhd_body) + trak);
  static constexpr unsigned char ftyp[] = {0, 0, 0, 24, 'f', 't', 'y', 'p', 'i', 's', 'o', 'm',
                                           0, 0, 2, 0,  'i', 's', 'o', 'm', 'm', 'p', '4', '1'};
  // About 4 Mbit/s of media data, left as a hole in the file.
  const uint64_t data = ms * 500;
  std::string head(reinterpret_cast<const char*>(ftyp), sizeof ftyp);
  head += moov;
  put32(head, static_cast<uint32_t>(std::min<uint64_t>(8 + data, 0xFFFFFFFFu)));
  head += "mdat";
  if (!write_file(path, head)) return false;
  if (truncate(path.c_str(), static_cast<off_t>(head.size() + data)) != 0) {
    fprintf(stderr, "sample_media: cannot size %s: %s\n", path.c_str(), strerror(errno));
    return false;
  }
  return true;
}

std::optional<video_info> read_video(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  // Top-level boxes, skipping the media data, until the movie box.
  std::string moov;
  unsigned char head[16];
  while (in.read(reinterpret_cast<char*>(head), 8)) {
    uint64_t size = get32(head);
    const std::string type(reinterpret_cast<const char*>(head + 4), 4);
    uint64_t header = 8;
    if (size == 1) {
      if (!in.read(reinterpret_cast<char*>(head + 8), 8)) return std::nullopt;
      size = (uint64_t{get32(head + 8)} << 32) | get32(head + 12);
      header = 16;
    }
    if (size == 0 || size < header) return std::nullopt;  // to the end, or broken
    if (type == "moov") {
      if (size - header > (16u << 20)) return std::nullopt;
      moov.resize(size - header);
      if (!in.read(moov.data(), static_cast<std::streamsize>(moov.size()))) return std::nullopt;
      break;
    }
    in.seekg(static_cast<std::streamoff>(size - header), std::ios::cur);
  }
  if (moov.empty()) return std::nullopt;

  std::optional<video_info> found;
  const auto* m = reinterpret_cast<const unsigned char*>(moov.data());
  each_box(m, moov.size(), [&](const std::string& type, const unsigned char* p, size_t n) {
    if (type != "trak" || found) return;
    bool video = false;
    uint32_t timescale = 0;
    uint64_t frames = 0, ticks = 0;
    each_box(p, n, [&](const std::string& t, const unsigned char* q, size_t k) {
      if (t != "mdia") return;
      each_box(q, k, [&](const std::string& t2, const unsigned char* r, size_t j) {
        if (t2 == "mdhd" && j >= 16) timescale = get32(r + 12);
        if (t2 == "hdlr" && j >= 12) video = std::memcmp(r + 8, "vide", 4) == 0;
        if (t2 != "minf") return;
        each_box(r, j, [&](const std::string& t3, const unsigned char* s, size_t i) {
          if (t3 != "stbl") return;
          each_box(s, i, [&](const std::string& t4, const unsigned char* u, size_t h) {
            if (t4 != "stts" || h < 8) return;
            const uint32_t entries = get32(u + 4);
            for (uint32_t e = 0; e < entries && 8 + 8 * (e + 1) <= h; ++e) {
              const uint64_t count = get32(u + 8 + 8 * e);
              frames += count;
              ticks += count * get32(u + 12 + 8 * e);
            }
          });
        });
      });
    });
    if (video && timescale != 0 && ticks != 0) {
      found = video_info{frames, static_cast<unsigned>((frames * timescale + ticks / 2) / ticks)};
    }
  });
  return found;
}

set_names media_set_names(const set_options& o) {
  set_names names;
  for (const planned& p : plan_regular(o)) {
    (p.dir == "Picture" ? names.photos : names.videos).push_back(p.name);
  }
  if (o.broken) {
    const broken_names b = plan_broken(o);
    for (const std::string* n : {&b.empty_photo, &b.truncated_photo, &b.empty_thumb_photo,
                                 &b.utf8_photo, &b.long40_photo, &b.long70_photo, &b.shared_photo})
      names.photos.push_back(*n);
    for (const std::string* n :
         {&b.no_thumb_video, &b.truncated_video, &b.short_video, &b.shared_video})
      names.videos.push_back(*n);
  }
  std::sort(names.photos.begin(), names.photos.end());
  std::sort(names.videos.begin(), names.videos.end());
  return names;
}

namespace {

// Writes the media of a big set from 16 scenes: the first file of a scene is drawn, the others
// are copies.
class scene_files {
 public:
  scene_files(bool reuse, int w, int h) : reuse_(reuse), w_(w), h_(h) {}
  bool photo(const std::string& path, unsigned seed) {
    return make(photos_, path, seed,
                [this](const std::string& p, unsigned s) { return write_photo(p, s, w_, h_); });
  }
  bool thumbnail(const std::string& path, unsigned seed) {
    return make(thumbs_, path, seed, write_thumbnail);
  }

 private:
  template <typename Write>
  bool make(std::map<unsigned, std::string>& done, const std::string& path, unsigned seed,
            Write write) {
    if (!reuse_) return write(path, seed);
    const unsigned scene = seed % 16;
    auto it = done.find(scene);
    if (it == done.end()) {
      if (!write(path, seed)) return false;
      done[scene] = path;
      return true;
    }
    std::error_code ec;
    std::filesystem::copy_file(it->second, path, std::filesystem::copy_options::overwrite_existing,
                               ec);
    if (ec)
      fprintf(stderr, "sample_media: cannot write %s: %s\n", path.c_str(), ec.message().c_str());
    return !ec;
  }
  bool reuse_;
  int w_, h_;
  std::map<unsigned, std::string> photos_, thumbs_;
};

bool write_broken(const std::string& media, const set_options& o) {
  const broken_names b = plan_broken(o);
  const std::string pic = media + "/Picture/", vid = media + "/Video/",
                    thumbs = media + "/.thumbnails/";
  bool ok = true;
  auto thumb = [&](const std::string& name, unsigned seed) {
    ok = write_thumbnail(thumbs + stem_of(name) + ".jpg", seed) && ok;
  };
  ok = write_file(pic + b.empty_photo, "") && ok;
  thumb(b.empty_photo, 101);
  ok = write_photo(pic + b.truncated_photo, 102, o.photo_w, o.photo_h) && ok;
  ok = truncate((pic + b.truncated_photo).c_str(), 1000) == 0 && ok;
  thumb(b.truncated_photo, 102);
  const std::string half = thumbs + stem_of(b.truncated_photo) + ".jpg";
  std::error_code size_error;
  const auto full = std::filesystem::file_size(half, size_error);
  ok = !size_error && truncate(half.c_str(), static_cast<off_t>(full / 2)) == 0 && ok;
  ok = write_photo(pic + b.empty_thumb_photo, 103, o.photo_w, o.photo_h) && ok;
  ok = write_file(thumbs + stem_of(b.empty_thumb_photo) + ".jpg", "") && ok;
  ok = write_video(vid + b.no_thumb_video, 45 * 30, 30) && ok;
  ok = write_video(vid + b.truncated_video, 60 * 30, 30) && ok;
  ok = write_file(vid + b.truncated_video, read_prefix(vid + b.truncated_video, 24)) && ok;
  thumb(b.truncated_video, 105);
  ok = write_video(vid + b.short_video, 20, 30) && ok;
  thumb(b.short_video, 106);
  ok = write_photo(pic + b.utf8_photo, 107, o.photo_w, o.photo_h) && ok;
  thumb(b.utf8_photo, 107);
  ok = write_photo(pic + b.long40_photo, 108, o.photo_w, o.photo_h) && ok;
  thumb(b.long40_photo, 108);
  ok = write_file(pic + b.long40_decoy, "a file that is not a medium\n") && ok;
  ok = write_photo(pic + b.long70_photo, 109, o.photo_w, o.photo_h) && ok;
  thumb(b.long70_photo, 109);
  ok = write_photo(pic + b.shared_photo, 110, o.photo_w, o.photo_h) && ok;
  ok = write_video(vid + b.shared_video, 30 * 30, 30) && ok;
  thumb(b.shared_photo, 110);
  ok = make_dirs(pic + b.dir_photo) && ok;
  std::error_code ec;
  std::filesystem::create_symlink(b.truncated_photo, pic + b.link_photo, ec);
  if (ec) {
    fprintf(stderr, "sample_media: cannot link %s: %s\n", b.link_photo.c_str(),
            ec.message().c_str());
    ok = false;
  }
  ok = write_photo(pic + b.upper_photo, 111, 64, 52) && ok;
  ok = write_photo(pic + b.no_dot, 112, 64, 52) && ok;
  return ok;
}

}  // namespace

bool write_media_set(const std::string& media, const set_options& o) {
  if (!make_dirs(media + "/Picture") || !make_dirs(media + "/Video") ||
      !make_dirs(media + "/.thumbnails")) {
    return false;
  }
  const std::vector<planned> plan = plan_regular(o);
  scene_files files(plan.size() > 64, o.photo_w, o.photo_h);
  bool ok = true;
  for (const planned& p : plan) {
    const std::string path = media + "/" + p.dir + "/" + p.name;
    if (p.dir == "Picture") {
      ok = files.photo(path, p.seed) && ok;
    } else {
      ok = write_video(path, p.frames, 30) && ok;
    }
    if (o.thumbnails) {
      ok = files.thumbnail(media + "/.thumbnails/" + stem_of(p.name) + ".jpg", p.seed) && ok;
    }
  }
  if (o.broken) ok = write_broken(media, o) && ok;
  return ok;
}

}  // namespace sample_media
