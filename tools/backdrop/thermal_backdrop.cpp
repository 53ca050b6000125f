// thermal_backdrop: writes a synthetic thermal scene, the picture that stands in for the sensor's
// video under the transparent observation screen on a desktop (TK_BACKDROP) and in screenshots.
//
// The scene is computed, not copied: a cold sky with faint clouds, a treeline, a field that warms
// toward the viewer, a sun-warmed rock, a parked vehicle with a hot engine and wheels, and three
// warm animals (a deer, a boar, a fox). Each pixel is a temperature in 0..1 drawn in the white-hot
// palette (hot is white). The noise is a hash of the pixel position and the seed, so the same
// seed always gives the same picture, on every machine.
//
//   thermal_backdrop OUTPUT.png [--seed N] [--width W] [--height H]
#include <SDL.h>
#include <SDL_image.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

uint32_t g_seed = 20240611u;

// ---- deterministic noise ----

uint32_t hash3(int32_t x, int32_t y, uint32_t salt) {
  uint32_t h = static_cast<uint32_t>(x) * 0x8da6b343u ^ static_cast<uint32_t>(y) * 0xd8163841u ^
               (salt + g_seed) * 0xcb1ab31fu;
  h ^= h >> 13;
  h *= 0x5bd1e995u;
  h ^= h >> 15;
  return h;
}

float unit(uint32_t h) {
  return static_cast<float>(h & 0xffffff) / static_cast<float>(0xffffff);
}

float smooth(float t) {
  return t * t * (3.0f - 2.0f * t);
}

// Value noise in 0..1 on a unit grid.
float value_noise(float x, float y, uint32_t salt) {
  float fx = std::floor(x);
  float fy = std::floor(y);
  auto ix = static_cast<int32_t>(fx);
  auto iy = static_cast<int32_t>(fy);
  float tx = smooth(x - fx);
  float ty = smooth(y - fy);
  float a = unit(hash3(ix, iy, salt));
  float b = unit(hash3(ix + 1, iy, salt));
  float c = unit(hash3(ix, iy + 1, salt));
  float d = unit(hash3(ix + 1, iy + 1, salt));
  return (a + (b - a) * tx) + ((c + (d - c) * tx) - (a + (b - a) * tx)) * ty;
}

// Fractal noise in about 0..1: octaves of value noise, each half the size and weight.
float fbm(float x, float y, uint32_t salt, int octaves = 4) {
  float sum = 0.0f;
  float weight = 0.5f;
  float total = 0.0f;
  for (int i = 0; i < octaves; ++i) {
    sum += weight * value_noise(x, y, salt + static_cast<uint32_t>(i) * 101u);
    total += weight;
    x *= 2.0f;
    y *= 2.0f;
    weight *= 0.5f;
  }
  return sum / total;
}

float clamp01(float v) {
  return std::clamp(v, 0.0f, 1.0f);
}

// ---- the picture: a temperature per pixel ----

struct Field {
  int w;
  int h;
  std::vector<float> t;
  float& at(int x, int y) { return t[static_cast<size_t>(y) * w + x]; }
};

// Blends temperature `value` into the pixel by `coverage` (0..1).
void blend(Field& f, int x, int y, float value, float coverage) {
  if (x < 0 || y < 0 || x >= f.w || y >= f.h || coverage <= 0.0f) return;
  float& p = f.at(x, y);
  p += (value - p) * clamp01(coverage);
}

// A filled ellipse, rotated by `angle` radians, with an anti-aliased edge. The core is hotter
// than the rim by `core` (a body is warmest at its centre).
void ellipse(Field& f, float cx, float cy, float rx, float ry, float angle, float value,
             float core = 0.0f) {
  float r = std::max(rx, ry) + 2.0f;
  float ca = std::cos(angle);
  float sa = std::sin(angle);
  for (int y = static_cast<int>(cy - r); y <= static_cast<int>(cy + r); ++y) {
    for (int x = static_cast<int>(cx - r); x <= static_cast<int>(cx + r); ++x) {
      float dx = x + 0.5f - cx;
      float dy = y + 0.5f - cy;
      float u = (dx * ca + dy * sa) / rx;
      float v = (-dx * sa + dy * ca) / ry;
      float q = std::sqrt(u * u + v * v);
      float coverage = (1.0f - q) * std::min(rx, ry) + 0.5f;
      if (coverage <= 0.0f) continue;
      blend(f, x, y, value + core * (1.0f - std::min(q, 1.0f)), coverage);
    }
  }
}

// A thick line from (x0, y0) to (x1, y1): legs, necks, tails.
void limb(Field& f, float x0, float y0, float x1, float y1, float width, float value) {
  float len = std::hypot(x1 - x0, y1 - y0);
  ellipse(f, (x0 + x1) / 2, (y0 + y1) / 2, len / 2 + width / 2, width / 2,
          std::atan2(y1 - y0, x1 - x0), value);
}

void rect(Field& f, float x0, float y0, float x1, float y1, float value) {
  for (int y = static_cast<int>(y0); y < static_cast<int>(std::ceil(y1)); ++y) {
    for (int x = static_cast<int>(x0); x < static_cast<int>(std::ceil(x1)); ++x) {
      float cx = std::min(x + 1.0f, x1) - std::max(static_cast<float>(x), x0);
      float cy = std::min(y + 1.0f, y1) - std::max(static_cast<float>(y), y0);
      blend(f, x, y, value, cx * cy);
    }
  }
}

void sky_treeline_ground(Field& f, float horizon) {
  for (int y = 0; y < f.h; ++y) {
    for (int x = 0; x < f.w; ++x) {
      float fx = static_cast<float>(x);
      float fy = static_cast<float>(y);
      float t;
      if (fy < horizon) {
        // Cold sky, a little warmer toward the horizon, with faint clouds.
        float k = fy / horizon;
        t = 0.05f + 0.13f * k * k + 0.07f * fbm(fx / 260.0f, fy / 90.0f, 11u);
      } else {
        // Field: warmer toward the viewer, with tussocks and furrows.
        float k = (fy - horizon) / (f.h - horizon);
        t = 0.30f + 0.16f * k + 0.08f * fbm(fx / 70.0f, fy / 22.0f, 23u) +
            0.006f * std::sin(fx / 11.0f + fy / 2.5f);
        // A worn track crossing the field holds a little more of the day's heat.
        float track = std::fabs(fx - (380.0f + (fy - horizon) * 1.6f));
        if (track < 30.0f + k * 60.0f) t += 0.04f * (1.0f - track / (30.0f + k * 60.0f));
      }
      f.at(x, y) = t;
    }
  }
  // Treeline: conifer tips over a rough canopy, trunks cooler than the sky-lit crowns.
  for (int x = 0; x < f.w; ++x) {
    float fx = static_cast<float>(x);
    float canopy = horizon - 80.0f - 90.0f * fbm(fx / 160.0f, 0.5f, 31u, 3);
    float tips =
        46.0f *
        std::pow(std::fabs(std::sin(fx / (10.0f + 6.0f * value_noise(fx / 40.0f, 2.0f, 37u)))),
                 3.0f);
    float top = canopy - tips * value_noise(fx / 30.0f, 1.0f, 41u);
    for (int y = std::max(0, static_cast<int>(top)); y < static_cast<int>(horizon) + 6; ++y) {
      float coverage = std::min(1.0f, y + 1.0f - top);
      float inner =
          0.36f + 0.08f * fbm(fx / 14.0f, y / 14.0f, 43u) - 0.04f * clamp01((y - top) / 120.0f);
      blend(f, x, y, inner, coverage);
    }
  }
}

void deer(Field& f, float x, float y, float s) {
  float legs = 0.62f;
  limb(f, x - 34 * s, y + 12 * s, x - 38 * s, y + 58 * s, 10 * s, legs);
  limb(f, x - 22 * s, y + 14 * s, x - 20 * s, y + 60 * s, 10 * s, legs);
  limb(f, x + 24 * s, y + 14 * s, x + 28 * s, y + 58 * s, 10 * s, legs);
  limb(f, x + 36 * s, y + 10 * s, x + 40 * s, y + 56 * s, 10 * s, legs);
  ellipse(f, x, y, 52 * s, 26 * s, 0.05f, 0.70f, 0.16f);
  limb(f, x + 38 * s, y - 8 * s, x + 58 * s, y - 46 * s, 15 * s, 0.82f);
  ellipse(f, x + 66 * s, y - 52 * s, 16 * s, 9 * s, 0.35f, 0.88f, 0.06f);
  ellipse(f, x + 54 * s, y - 64 * s, 6 * s, 3 * s, -1.0f, 0.70f);
  limb(f, x - 50 * s, y - 6 * s, x - 58 * s, y + 4 * s, 5 * s, 0.72f);
}

void boar(Field& f, float x, float y, float s) {
  float legs = 0.70f;
  limb(f, x - 28 * s, y + 12 * s, x - 28 * s, y + 40 * s, 9 * s, legs);
  limb(f, x - 14 * s, y + 14 * s, x - 12 * s, y + 42 * s, 9 * s, legs);
  limb(f, x + 18 * s, y + 14 * s, x + 20 * s, y + 42 * s, 9 * s, legs);
  limb(f, x + 30 * s, y + 12 * s, x + 32 * s, y + 40 * s, 9 * s, legs);
  ellipse(f, x, y, 44 * s, 25 * s, -0.04f, 0.72f, 0.16f);
  ellipse(f, x - 46 * s, y + 6 * s, 20 * s, 14 * s, 0.25f, 0.86f, 0.08f);
  ellipse(f, x - 64 * s, y + 14 * s, 7 * s, 5 * s, 0.3f, 0.93f);
}

void fox(Field& f, float x, float y, float s) {
  limb(f, x - 12 * s, y + 6 * s, x - 12 * s, y + 22 * s, 4 * s, 0.70f);
  limb(f, x + 12 * s, y + 6 * s, x + 12 * s, y + 22 * s, 4 * s, 0.70f);
  ellipse(f, x, y, 20 * s, 9 * s, 0.0f, 0.80f, 0.10f);
  ellipse(f, x + 22 * s, y - 7 * s, 8 * s, 6 * s, 0.0f, 0.86f);
  limb(f, x - 18 * s, y + 2 * s, x - 40 * s, y + 8 * s, 7 * s, 0.62f);
}

// A parked vehicle seen from the side: cool body and glass, hot engine bay, warm tyres.
void vehicle(Field& f, float x, float y) {
  rect(f, x, y - 40, x + 190, y, 0.46f);
  rect(f, x + 40, y - 72, x + 140, y - 40, 0.42f);
  rect(f, x + 50, y - 66, x + 88, y - 42, 0.22f);
  rect(f, x + 94, y - 66, x + 132, y - 42, 0.22f);
  rect(f, x + 150, y - 38, x + 190, y - 8, 0.90f);
  rect(f, x + 186, y - 30, x + 194, y - 14, 0.97f);
  ellipse(f, x + 38, y, 19, 19, 0.0f, 0.72f, 0.10f);
  ellipse(f, x + 154, y, 19, 19, 0.0f, 0.74f, 0.10f);
  rect(f, x - 6, y - 8, x + 6, y - 3, 0.95f);
}

void rock(Field& f, float x, float y) {
  ellipse(f, x, y, 120, 46, -0.06f, 0.52f, 0.10f);
  ellipse(f, x + 70, y + 10, 70, 34, 0.12f, 0.50f, 0.06f);
  ellipse(f, x - 20, y - 26, 60, 22, -0.2f, 0.58f, 0.05f);
}

// The optics soften every edge a little: two passes of a 3 x 3 box blur.
void soften(Field& f) {
  std::vector<float> src;
  for (int pass = 0; pass < 2; ++pass) {
    src = f.t;
    for (int y = 0; y < f.h; ++y) {
      for (int x = 0; x < f.w; ++x) {
        float sum = 0.0f;
        int n = 0;
        for (int dy = -1; dy <= 1; ++dy) {
          for (int dx = -1; dx <= 1; ++dx) {
            int sx = x + dx;
            int sy = y + dy;
            if (sx < 0 || sy < 0 || sx >= f.w || sy >= f.h) continue;
            sum += src[static_cast<size_t>(sy) * f.w + sx];
            ++n;
          }
        }
        f.at(x, y) = sum / n;
      }
    }
  }
}

// Lens character: a soft vignette.
void finish(Field& f) {
  float cx = f.w / 2.0f;
  float cy = f.h / 2.0f;
  float rmax = std::hypot(cx, cy);
  for (int y = 0; y < f.h; ++y) {
    for (int x = 0; x < f.w; ++x) {
      float r = std::hypot(x - cx, y - cy) / rmax;
      float& p = f.at(x, y);
      p = p * (1.0f - 0.10f * r * r);
    }
  }
}

Field scene(int w, int h) {
  Field f{w, h, std::vector<float>(static_cast<size_t>(w) * h, 0.0f)};
  float sx = w / 1280.0f;
  float sy = h / 1024.0f;
  float horizon = 520.0f * sy;
  sky_treeline_ground(f, horizon);
  vehicle(f, 960.0f * sx, horizon + 34.0f * sy);
  rock(f, 210.0f * sx, 905.0f * sy);
  fox(f, 300.0f * sx, horizon + 40.0f * sy, 0.8f * sx);
  deer(f, 520.0f * sx, 600.0f * sy, 1.15f * sx);
  boar(f, 820.0f * sx, 700.0f * sy, 1.3f * sx);
  soften(f);
  finish(f);
  return f;
}

int usage() {
  fputs("usage: thermal_backdrop OUTPUT.png [--seed N] [--width W] [--height H]\n", stderr);
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  std::string out;
  int w = 1280;
  int h = 1024;
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    if ((a == "--seed" || a == "--width" || a == "--height") && i + 1 < argc) {
      char* end = nullptr;
      long v = std::strtol(argv[++i], &end, 10);
      if (end == argv[i] || *end != '\0' || v < 0) {
        fprintf(stderr, "thermal_backdrop: %s needs a non-negative number, got \"%s\"\n", a.c_str(),
                argv[i]);
        return 2;
      }
      if (a == "--seed") g_seed = static_cast<uint32_t>(v);
      if (a == "--width") w = static_cast<int>(v);
      if (a == "--height") h = static_cast<int>(v);
    } else if (out.empty() && !a.empty() && a[0] != '-') {
      out = a;
    } else {
      return usage();
    }
  }
  if (out.empty()) return usage();
  if (w < 64 || h < 64 || w > 8192 || h > 8192) {
    fprintf(stderr, "thermal_backdrop: size %d x %d outside 64..8192\n", w, h);
    return 2;
  }

  Field f = scene(w, h);
  SDL_Surface* surface = SDL_CreateRGBSurfaceWithFormat(0, w, h, 24, SDL_PIXELFORMAT_RGB24);
  if (surface == nullptr) {
    fprintf(stderr, "thermal_backdrop: %s\n", SDL_GetError());
    return 1;
  }
  for (int y = 0; y < h; ++y) {
    auto* row = static_cast<uint8_t*>(surface->pixels) + static_cast<size_t>(y) * surface->pitch;
    for (int x = 0; x < w; ++x) {
      // White-hot: the temperature is the grey level.
      auto v = static_cast<uint8_t>(std::lround(clamp01(f.at(x, y)) * 255.0f));
      std::memset(row + x * 3, v, 3);
    }
  }
  int rc = IMG_SavePNG(surface, out.c_str());
  SDL_FreeSurface(surface);
  if (rc != 0) {
    fprintf(stderr, "thermal_backdrop: cannot write %s: %s\n", out.c_str(), SDL_GetError());
    return 1;
  }
  return 0;
}
