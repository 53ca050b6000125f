// The window backend: an SDL2 window of the screen's size showing the frame, with desktop keys
// delivered as the toolkit's key codes (printable keys as their ASCII codes, other keys as
// SDL key codes, which are the desktop build's TK_KEY_* values).
#include <SDL.h>

#include <string>

#include "draw/backends.h"
#include "draw/screen.h"
#include "tk_internal.h"

namespace tk::draw {

namespace {

class SdlBackend final : public Backend {
 public:
  ~SdlBackend() override {
    screenshot_env_reset();
    if (texture_ != nullptr) SDL_DestroyTexture(texture_);
    if (renderer_ != nullptr) SDL_DestroyRenderer(renderer_);
    if (window_ != nullptr) SDL_DestroyWindow(window_);
    if (sdl_started_) SDL_QuitSubSystem(SDL_INIT_VIDEO | SDL_INIT_EVENTS);
    screen_release();
  }

  bool open(int32_t w, int32_t h) {
    if (SDL_InitSubSystem(SDL_INIT_VIDEO | SDL_INIT_EVENTS) != 0) return false;
    sdl_started_ = true;
    const char* title = system_info() != nullptr && system_info()->app_name != nullptr &&
                                *system_info()->app_name != '\0'
                            ? system_info()->app_name
                            : "toolkit";
    window_ = SDL_CreateWindow(title, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, w, h,
                               SDL_WINDOW_RESIZABLE);
    if (window_ == nullptr) return false;
    renderer_ = SDL_CreateRenderer(window_, -1, 0);
    if (renderer_ == nullptr) return false;
    // A window made smaller than the screen (a small desktop) shows the whole screen scaled.
    SDL_RenderSetLogicalSize(renderer_, w, h);
    texture_ =
        SDL_CreateTexture(renderer_, SDL_PIXELFORMAT_RGBA32, SDL_TEXTUREACCESS_STREAMING, w, h);
    if (texture_ == nullptr) return false;
    wake_event_ = SDL_RegisterEvents(1);
    if (wake_event_ == static_cast<Uint32>(-1)) return false;
    SDL_StopTextInput();
    screen_init(w, h);
    return true;
  }

  const char* name() const override { return "sdl"; }

  void wait_input(uint32_t timeout_ms) override {
    SDL_Event ev;
    if (SDL_WaitEventTimeout(&ev, static_cast<int>(timeout_ms)) == 0) return;
    handle(ev);
    while (SDL_PollEvent(&ev) != 0)
      handle(ev);
  }

  void wake() override {
    SDL_Event ev{};
    ev.type = wake_event_;
    SDL_PushEvent(&ev);
  }

  void paint() override {
    paint_pending();
    present();
    screenshot_env_on_paint();
  }

 private:
  void handle(const SDL_Event& ev) {
    switch (ev.type) {
      case SDL_KEYDOWN:
      case SDL_KEYUP: {
        // The toolkit makes its own long press; the keyboard's auto-repeat is not a new press.
        if (ev.key.repeat != 0) break;
        SDL_Keycode sym = ev.key.keysym.sym;
        if (sym == SDLK_UNKNOWN) break;
        post_key(ev.type == SDL_KEYDOWN, static_cast<uint32_t>(sym));
        break;
      }
      case SDL_QUIT: tk_quit(); break;
      case SDL_WINDOWEVENT:
        if (ev.window.event == SDL_WINDOWEVENT_CLOSE) {
          tk_quit();
        } else if (ev.window.event == SDL_WINDOWEVENT_EXPOSED ||
                   ev.window.event == SDL_WINDOWEVENT_SIZE_CHANGED) {
          must_present_ = true;
        }
        break;
      default: break;
    }
  }

  void present() {
    Screen& s = screen();
    if (s.unpresented.empty() && !must_present_) return;
    for (const Rect& r : s.unpresented) {
      SDL_Rect sr{r.x, r.y, r.w, r.h};
      SDL_UpdateTexture(texture_, &sr, s.frame.row(r.y) + r.x, s.frame.w * 4);
    }
    s.unpresented.clear();
    must_present_ = false;
    SDL_RenderClear(renderer_);
    SDL_RenderCopy(renderer_, texture_, nullptr, nullptr);
    SDL_RenderPresent(renderer_);
  }

  bool sdl_started_ = false;
  SDL_Window* window_ = nullptr;
  SDL_Renderer* renderer_ = nullptr;
  SDL_Texture* texture_ = nullptr;
  Uint32 wake_event_ = 0;
  bool must_present_ = true;
};

}  // namespace

std::unique_ptr<Backend> sdl_backend_create(int32_t w, int32_t h) {
  auto b = std::make_unique<SdlBackend>();
  if (!b->open(w, h)) {
    log_error("cannot open a %dx%d window: %s\n", w, h, SDL_GetError());
    return nullptr;
  }
  return b;
}

}  // namespace tk::draw
