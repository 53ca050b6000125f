// The main-loop queue: posts and window calls from other threads, its capacity and the key
// pairing rule.
#include <atomic>
#include <chrono>
#include <thread>

#include "tk_fixture.h"

namespace {

std::vector<uintptr_t> received;

ret_t receive_idle(const idle_info_t* info) {
  received.push_back(reinterpret_cast<uintptr_t>(info->ctx));
  return RET_REMOVE;
}

ret_t receive_key(void*, event_t* e) {
  received.push_back((e->type == EVT_KEY_DOWN ? 1000u : 2000u) + key_event_cast(e)->key);
  return RET_OK;
}

// Waits (yielding) until the queue has room, as a well-behaved poster does.
void wait_for_room() {
  while (tk_testing_queue_length() >= MAIN_LOOP_QUEUE_SIZE)
    std::this_thread::yield();
}

// Runs the loop until `n` items arrived or 60 s of real time passed.
void pump_until(size_t n) {
  auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (received.size() < n && std::chrono::steady_clock::now() < deadline) {
    tk_testing_advance(1);
    std::this_thread::yield();
  }
}

}  // namespace

class Queue : public ToolkitTest {
 protected:
  void SetUp() override {
    ToolkitTest::SetUp();
    received.clear();
    write_window("K");
    open("K");
    widget_on(window_manager(), EVT_KEY_DOWN, receive_key, nullptr);
    widget_on(window_manager(), EVT_KEY_UP, receive_key, nullptr);
  }
};

TEST_F(Queue, TenThousandIdlePostsAndTwoThousandKeyPairsFromAnotherThreadArriveInOrder) {
  constexpr uintptr_t kPosts = 10000;
  std::atomic<int> failures{0};
  std::thread poster([&] {
    for (uintptr_t i = 1; i <= kPosts; i++) {
      wait_for_room();
      failures += idle_queue(receive_idle, reinterpret_cast<void*>(i)) != RET_OK;
    }
  });
  pump_until(kPosts);
  poster.join();
  EXPECT_EQ(failures.load(), 0);
  EXPECT_EQ(tk_testing_queue_overflows(), 0u);
  ASSERT_EQ(received.size(), kPosts);
  for (uintptr_t i = 0; i < kPosts; i++)
    ASSERT_EQ(received[i], i + 1) << "at " << i;

  received.clear();
  constexpr int kPairs = 2000;
  std::thread keys([&] {
    for (int i = 0; i < kPairs; i++) {
      auto key = static_cast<uint8_t>(48 + i % 66);
      wait_for_room();
      main_loop_post_key_event(main_loop(), TRUE, key);
      wait_for_room();
      main_loop_post_key_event(main_loop(), FALSE, key);
    }
  });
  pump_until(2 * kPairs);
  keys.join();
  ASSERT_EQ(received.size(), 2u * kPairs);
  for (int i = 0; i < kPairs; i++) {
    uintptr_t key = 48 + i % 66;
    ASSERT_EQ(received[2 * i], 1000 + key);
    ASSERT_EQ(received[2 * i + 1], 2000 + key);
  }
}

TEST_F(Queue, APostIntoAFullQueueFailsLoudlyAndTheQueueNeverGrows) {
  EXPECT_EQ(tk_testing_queue_high_water(), 0u);
  for (uintptr_t i = 1; i <= MAIN_LOOP_QUEUE_SIZE; i++) {
    ASSERT_EQ(idle_queue(receive_idle, reinterpret_cast<void*>(i)), RET_OK);
  }
  testing::internal::CaptureStderr();
  EXPECT_EQ(idle_queue(receive_idle, reinterpret_cast<void*>(99)), RET_FAIL);
  EXPECT_EQ(main_loop_post_key_event(main_loop(), TRUE, 'a'), RET_FAIL);
  EXPECT_EQ(timer_queue([](const timer_info_t*) { return RET_REMOVE; }, nullptr, 1), RET_FAIL);
  std::string err = testing::internal::GetCapturedStderr();
  EXPECT_NE(err.find("ERROR: main loop queue full (20 entries): idle_queue lost (overflow #1)"),
            std::string::npos)
      << err;
  EXPECT_EQ(tk_testing_queue_overflows(), 3u);
  EXPECT_EQ(tk_testing_queue_length(), uint32_t{MAIN_LOOP_QUEUE_SIZE});
  tk_testing_advance(0);
  ASSERT_EQ(received.size(), size_t{MAIN_LOOP_QUEUE_SIZE});
  EXPECT_EQ(received.back(), uintptr_t{MAIN_LOOP_QUEUE_SIZE});
  // The drained queue remembers how full it was.
  EXPECT_EQ(tk_testing_queue_length(), 0u);
  EXPECT_EQ(tk_testing_queue_high_water(), uint32_t{MAIN_LOOP_QUEUE_SIZE});
  ASSERT_EQ(idle_queue(receive_idle, reinterpret_cast<void*>(1)), RET_OK);
  EXPECT_EQ(tk_testing_queue_high_water(), uint32_t{MAIN_LOOP_QUEUE_SIZE});
}

TEST_F(Queue, OneFlagForAllKeysDecidesWhetherAKeyUpIsQueuedAndCodesArriveUnchanged) {
  // A release without a press is dropped.
  EXPECT_EQ(main_loop_post_key_event(main_loop(), FALSE, 'a'), RET_OK);
  EXPECT_EQ(tk_testing_queue_length(), 0u);
  // down A, down B, up A, up B: the second release is lost.
  main_loop_post_key_event(main_loop(), TRUE, 'a');
  main_loop_post_key_event(main_loop(), TRUE, 'b');
  main_loop_post_key_event(main_loop(), FALSE, 'a');
  main_loop_post_key_event(main_loop(), FALSE, 'b');
  tk_testing_advance(0);
  EXPECT_EQ(received, (std::vector<uintptr_t>{1000 + 'a', 1000 + 'b', 2000 + 'a'}));
  // The scope's own codes reach the handlers unchanged; 0 is dropped.
  received.clear();
  for (uint32_t key : {48u, 57u, 85u, 97u, 113u, 0u})
    tk_testing_key_press(key);
  EXPECT_EQ(received, (std::vector<uintptr_t>{1048, 1057, 1085, 1097, 1113}));
}

TEST_F(Queue, WindowCallsFromAnotherThreadAreHandedToTheUserInterfaceThreadInOrder) {
  write_window("A");
  write_window("B");
  widget_t* from_thread = reinterpret_cast<widget_t*>(1);
  std::thread([&] {
    from_thread = window_open("A");
    window_open("B");
  }).join();
  EXPECT_EQ(from_thread, nullptr);
  EXPECT_EQ(stack_names(), (Names{"K"}));
  tk_testing_advance(0);
  EXPECT_EQ(stack_names(), (Names{"K", "A", "B"}));
  // Reads from another thread see the stack; a close by pointer is queued.
  std::string name;
  widget_t* child = nullptr;
  ret_t closed = RET_FAIL;
  std::thread([&] {
    widget_t* top = window_manager_get_top_window(window_manager());
    name = top != nullptr ? top->name : "";
    child = widget_child(window_manager(), "A");
    closed = window_close(top);
  }).join();
  EXPECT_EQ(name, "B");
  EXPECT_NE(child, nullptr);
  EXPECT_EQ(closed, RET_OK);
  EXPECT_EQ(stack_names(), (Names{"K", "A", "B"}));
  tk_testing_advance(0);
  EXPECT_EQ(stack_names(), (Names{"K", "A"}));
  // A miss on the window manager is not a page lookup failure.
  EXPECT_EQ(widget_child(window_manager(), "B"), nullptr);
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}
