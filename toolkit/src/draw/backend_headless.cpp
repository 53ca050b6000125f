// The headless backend: frames are painted in memory exactly as on screen, with no display.
#include <chrono>
#include <condition_variable>
#include <mutex>

#include "draw/backends.h"
#include "draw/screen.h"

namespace tk::draw {

namespace {

class HeadlessBackend final : public Backend {
 public:
  HeadlessBackend(int32_t w, int32_t h) { screen_init(w, h); }
  ~HeadlessBackend() override {
    screenshot_env_reset();
    screen_release();
  }

  const char* name() const override { return "headless"; }

  void wait_input(uint32_t timeout_ms) override {
    std::unique_lock<std::mutex> lock(mutex_);
    cv_.wait_for(lock, std::chrono::milliseconds(timeout_ms), [this] { return woken_; });
    woken_ = false;
  }

  void wake() override {
    {
      std::lock_guard<std::mutex> lock(mutex_);
      woken_ = true;
    }
    cv_.notify_one();
  }

  void paint() override {
    paint_pending();
    // Nothing shows the frame: it is presented as soon as it is painted.
    screen().unpresented.clear();
    screenshot_env_on_paint();
  }

 private:
  std::mutex mutex_;
  std::condition_variable cv_;
  bool woken_ = false;
};

}  // namespace

std::unique_ptr<Backend> headless_backend_create(int32_t w, int32_t h) {
  return std::make_unique<HeadlessBackend>(w, h);
}

}  // namespace tk::draw
