// Picture files through SDL2_image: decoding to colour words and PNG writing.
#include "draw/png_io.h"

#include <SDL.h>
#include <SDL_image.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include <unistd.h>

namespace tk::draw {

namespace {

struct SurfaceFree {
  void operator()(SDL_Surface* s) const { SDL_FreeSurface(s); }
};
using SurfacePtr = std::unique_ptr<SDL_Surface, SurfaceFree>;

bool surface_to_pixmap(SDL_Surface* loaded, Pixmap& out, std::string& error) {
  SurfacePtr rgba(SDL_ConvertSurfaceFormat(loaded, SDL_PIXELFORMAT_RGBA32, 0));
  if (!rgba) {
    error = std::string("cannot convert the picture: ") + SDL_GetError();
    return false;
  }
  if (SDL_MUSTLOCK(rgba.get())) SDL_LockSurface(rgba.get());
  out.resize(rgba->w, rgba->h);
  for (int y = 0; y < rgba->h; ++y) {
    const auto* src =
        static_cast<const uint8_t*>(rgba->pixels) + static_cast<size_t>(y) * rgba->pitch;
    std::memcpy(out.row(y), src, sizeof(uint32_t) * rgba->w);
  }
  if (SDL_MUSTLOCK(rgba.get())) SDL_UnlockSurface(rgba.get());
  return true;
}

}  // namespace

bool load_picture(const std::string& path, Pixmap& out, std::string& error) {
  SurfacePtr loaded(IMG_Load(path.c_str()));
  if (!loaded) {
    error = IMG_GetError();
    return false;
  }
  return surface_to_pixmap(loaded.get(), out, error);
}

bool save_png(const Pixmap& pic, const std::string& path, std::string& error) {
  if (pic.empty()) {
    error = "empty picture";
    return false;
  }
  // SDL only reads through the pointer here; the cast drops const for its C signature.
  SurfacePtr s(SDL_CreateRGBSurfaceWithFormatFrom(const_cast<uint32_t*>(pic.px.data()), pic.w,
                                                  pic.h, 32, pic.w * 4, SDL_PIXELFORMAT_RGBA32));
  if (!s) {
    error = SDL_GetError();
    return false;
  }
  std::string tmp = path + ".tmp" + std::to_string(getpid());
  if (IMG_SavePNG(s.get(), tmp.c_str()) != 0) {
    error = IMG_GetError();
    std::remove(tmp.c_str());
    return false;
  }
  if (std::rename(tmp.c_str(), path.c_str()) != 0) {
    error = std::string("cannot rename ") + tmp + ": " + std::strerror(errno);
    std::remove(tmp.c_str());
    return false;
  }
  return true;
}

}  // namespace tk::draw
