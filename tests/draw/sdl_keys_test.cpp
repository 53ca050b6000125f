// The backends: desktop key presses in the window become the toolkit's key codes through the
// main loop (printable keys as ASCII), auto-repeat is not a new press, closing the window quits
// (SDL's "dummy" video driver stands in for a display); both wake at once for other threads.
#include <gtest/gtest.h>

#include <SDL.h>

#include <chrono>
#include <cstdlib>
#include <thread>
#include <vector>

#include "draw/backends.h"
#include "draw/screen.h"
#include "tk_core.h"
#include "tk_testing.h"

namespace {

std::vector<uint32_t> s_down;
std::vector<uint32_t> s_up;

ret_t on_key(void* ctx, event_t* e) {
  key_event_t* k = key_event_cast(e);
  if (k != nullptr) (e->type == EVT_KEY_DOWN ? s_down : s_up).push_back(k->key);
  return RET_OK;
}

void push_key(uint32_t type, SDL_Keycode sym, uint8_t repeat = 0) {
  SDL_Event ev{};
  ev.type = type;
  ev.key.type = type;
  ev.key.state = type == SDL_KEYDOWN ? SDL_PRESSED : SDL_RELEASED;
  ev.key.repeat = repeat;
  ev.key.keysym.sym = sym;
  ASSERT_EQ(SDL_PushEvent(&ev), 1) << SDL_GetError();
}

class DrawSdlKeys : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("SDL_VIDEODRIVER", "dummy", 1);
    tk_testing_init();
    backend_ = tk::draw::sdl_backend_create(1280, 1024);
    ASSERT_NE(backend_, nullptr);
    win_ = tk_testing_open_xml("tk_keys", "<window name=\"tk_keys\"/>");
    ASSERT_NE(win_, nullptr);
    widget_on(win_, EVT_KEY_DOWN, on_key, nullptr);
    widget_on(win_, EVT_KEY_UP, on_key, nullptr);
    tk_testing_advance(0);
    s_down.clear();
    s_up.clear();
  }
  void TearDown() override { backend_.reset(); }

  // Lets the backend read the pushed events, then runs the main loop.
  void deliver() {
    backend_->wait_input(0);
    tk_testing_advance(0);
  }

  std::unique_ptr<tk::Backend> backend_;
  widget_t* win_ = nullptr;
};

}  // namespace

TEST_F(DrawSdlKeys, PrintableKeysArriveAsAsciiNamedKeysAsDesktopCodesAndRepeatIsNoPress) {
  for (SDL_Keycode sym : {SDLK_a, SDLK_9, SDLK_7, SDLK_8, SDLK_1}) {
    push_key(SDL_KEYDOWN, sym);
    push_key(SDL_KEYUP, sym);
    deliver();
  }
  push_key(SDL_KEYDOWN, SDLK_RIGHT);
  push_key(SDL_KEYDOWN, SDLK_RIGHT, 1);
  push_key(SDL_KEYDOWN, SDLK_RIGHT, 1);
  push_key(SDL_KEYUP, SDLK_RIGHT);
  deliver();
  std::vector<uint32_t> codes{97, 57, 55, 56, 49, TK_KEY_RIGHT};
  EXPECT_EQ(s_down, codes);
  EXPECT_EQ(s_up, codes);
}

TEST_F(DrawSdlKeys, PaintsPresentsWakesAndQuitsWhenTheWindowCloses) {
  widget_set_style_color(win_, "normal:bg_color", 0xFF0011FF);
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_pixel(640, 512), 0xFF0011FFu);
  backend_->paint();
  EXPECT_TRUE(tk::draw::screen().unpresented.empty());
  // wake() ends a wait at once.
  backend_->wake();
  Uint64 start = SDL_GetTicks64();
  backend_->wait_input(5000);
  EXPECT_LT(SDL_GetTicks64() - start, 1000u);
  // Closing the window asks tk_run to stop after the current step.
  SDL_Event ev{};
  ev.type = SDL_QUIT;
  ASSERT_EQ(SDL_PushEvent(&ev), 1);
  backend_->wait_input(0);
  EXPECT_EQ(tk_run(), RET_OK);
}

// The main loop's backend (headless in tests) wakes as soon as another thread posts.
TEST(DrawBackend, APostFromAnotherThreadEndsTheWaitAtOnce) {
  tk_testing_init();
  std::thread poster([] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    idle_queue([](const idle_info_t*) { return RET_REMOVE; }, nullptr);
  });
  auto start = std::chrono::steady_clock::now();
  tk::g().backend->wait_input(5000);
  poster.join();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}
