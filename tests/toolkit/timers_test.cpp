// Timers, idles, the test clock, sleep_ms and tk_quit.
#include "tk_fixture.h"

namespace {

std::vector<std::pair<uint64_t, uintptr_t>> fired;

ret_t note(const timer_info_t* t) {
  fired.emplace_back(t->now, reinterpret_cast<uintptr_t>(t->ctx));
  return reinterpret_cast<uintptr_t>(t->ctx) >= 100 ? RET_REPEAT : RET_OK;
}

void* tag(uintptr_t n) {
  return reinterpret_cast<void*>(n);
}

}  // namespace

class Timers : public ToolkitTest {
 protected:
  void SetUp() override {
    ToolkitTest::SetUp();
    fired.clear();
    start_ = tk_testing_now();
  }
  uint64_t start_ = 0;
};

TEST_F(Timers, DueTimersRunInTimeThenIdOrderAndRepeatMeasuresFromTheCallback) {
  timer_add(note, tag(3), 300);
  timer_add(note, tag(1), 100);
  timer_add(note, tag(2), 200);
  timer_add(note, tag(4), 200);
  // Repeats; its first call takes 30 ms, so the next one is 150 ms after that call ended.
  timer_add(
      [](const timer_info_t* t) {
        if (note(t) == RET_REPEAT && fired.size() == 2) sleep_ms(30);
        return RET_REPEAT;
      },
      tag(100), 150);
  tk_testing_advance(340);
  using F = std::vector<std::pair<uint64_t, uintptr_t>>;
  EXPECT_EQ(fired, (F{{start_ + 100, 1},
                      {start_ + 150, 100},
                      {start_ + 200, 2},
                      {start_ + 200, 4},
                      {start_ + 300, 3},
                      {start_ + 330, 100}}));
}

TEST_F(Timers, RemovalInsideCallbacks) {
  // A timer removed by another one due at the same time never runs.
  static uint32_t victim = 0;
  timer_add(
      [](const timer_info_t* t) {
        EXPECT_EQ(timer_remove(victim), RET_OK);
        return note(t);
      },
      tag(1), 100);
  victim = timer_add(note, tag(2), 100);
  // A timer removing itself and asking to repeat is gone.
  timer_add(
      [](const timer_info_t* t) {
        EXPECT_EQ(timer_remove(t->id), RET_OK);
        EXPECT_EQ(timer_remove(t->id), RET_NOT_FOUND);
        note(t);
        return RET_REPEAT;
      },
      tag(300), 50);
  tk_testing_advance(500);
  using F = std::vector<std::pair<uint64_t, uintptr_t>>;
  EXPECT_EQ(fired, (F{{start_ + 50, 300}, {start_ + 100, 1}}));
}

TEST_F(Timers, IdsGrowFromOneAreNeverReusedAndBadIdsAreReported) {
  uint32_t a = timer_add(note, nullptr, 10);
  uint32_t b = timer_add(note, nullptr, 10);
  EXPECT_TRUE(a >= 1 && b == a + 1);
  EXPECT_EQ(timer_remove(a), RET_OK);
  EXPECT_EQ(timer_remove(a), RET_NOT_FOUND);
  EXPECT_GT(timer_add(note, nullptr, 10), b);
  EXPECT_EQ(timer_remove(0), RET_BAD_PARAMS);
  EXPECT_TRUE(tk_testing_log_contains("condition(timer_id != TK_INVALID_ID) failed!"));
  EXPECT_EQ(timer_add(nullptr, nullptr, 10), TK_INVALID_ID);
  // Idles count separately.
  uint32_t i1 = idle_add([](const idle_info_t*) { return RET_REMOVE; }, nullptr);
  EXPECT_TRUE(i1 >= 1 &&
              idle_add([](const idle_info_t*) { return RET_REMOVE; }, nullptr) == i1 + 1);
}

TEST_F(Timers, WidgetTimersGetTheWidgetAndDieWithIt) {
  write_window("W", "", "<label name=\"l\"/>");
  widget_t* w = open("W");
  widget_t* l = widget_lookup(w, "l", TRUE);
  uint32_t id = widget_add_timer(
      l,
      [](const timer_info_t* t) {
        fired.emplace_back(t->now, reinterpret_cast<uintptr_t>(t->ctx));
        return RET_REPEAT;
      },
      100);
  uint32_t plain = timer_add(note, tag(100), 100);
  uint32_t removed = widget_add_timer(w, note, 100);
  EXPECT_EQ(widget_remove_timer(w, removed), RET_OK);
  tk_testing_advance(100);
  using F = std::vector<std::pair<uint64_t, uintptr_t>>;
  EXPECT_EQ(fired, (F{{start_ + 100, reinterpret_cast<uintptr_t>(l)}, {start_ + 100, 100}}));
  window_close(w);
  tk_testing_advance(500);
  EXPECT_EQ(fired.size(), 7u);  // only the plain timer ran on
  EXPECT_EQ(timer_remove(id), RET_NOT_FOUND);
  EXPECT_EQ(timer_remove(plain), RET_OK);
}

TEST_F(Timers, IdlesRunOnTheNextPassAndRepeatOnlyWhenAsked) {
  static int once = 0, again = 0;
  once = again = 0;
  idle_add([](const idle_info_t*) { return once++, RET_OK; }, nullptr);
  uint32_t rep = idle_add([](const idle_info_t*) { return again++, RET_REPEAT; }, nullptr);
  EXPECT_EQ(once + again, 0);
  tk_testing_advance(0);
  EXPECT_EQ(once + again, 2);
  timer_add(note, tag(100), 10);  // a step now and every 10 ms
  tk_testing_advance(30);
  EXPECT_EQ(once, 1);
  EXPECT_EQ(again, 5);
  EXPECT_EQ(idle_remove(rep), RET_OK);
  tk_testing_advance(30);
  EXPECT_EQ(again, 5);
}

TEST_F(Timers, TkQuitEndsTkRunAfterTheCurrentStep) {
  timer_add([](const timer_info_t*) { return tk_quit(); }, nullptr, 5000);
  EXPECT_EQ(tk_run(), RET_OK);
  EXPECT_EQ(tk_testing_now(), start_ + 5000);
  EXPECT_EQ(time_now_s(), time_now_ms() / 1000);
}
