// The backend without a platform: waits on a condition variable and discards what it would paint.
#include <condition_variable>
#include <mutex>

#include "tk_backend.h"
#include "tk_internal.h"

namespace tk {

namespace {

class NullBackend : public Backend {
 public:
  const char* name() const override { return "null"; }

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

  void paint() override { take_dirty(); }

 private:
  std::mutex mutex_;
  std::condition_variable cv_;
  bool woken_ = false;
};

}  // namespace

std::unique_ptr<Backend> backend_null_create() {
  return std::make_unique<NullBackend>();
}

// The backend selection (backend_create) is in draw/backend_select.cpp.

}  // namespace tk
