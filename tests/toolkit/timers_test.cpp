// Timers, idles, the test clock, sleep_ms and tk_quit.
#include "tk_fixture.h"

namespace {

std::vector<std::pair<uint64_t, uintptr_t>> fired;

ret_t note_once(const timer_info_t* t) {
  fired.emplace_back(t->now, reinterpret_cast<uintptr_t>(t->ctx));
  return RET_REMOVE;
}

ret_t note_repeat(const timer_info_t* t) {
  fired.emplace_back(t->now, reinterpret_cast<uintptr_t>(t->ctx));
  return RET_REPEAT;
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

TEST_F(Timers, DueTimersRunInTimeOrderThenIdOrder) {
  timer_add(note_once, tag(3), 300);
  timer_add(note_once, tag(1), 100);
  timer_add(note_once, tag(2), 200);
  timer_add(note_once, tag(4), 200);
  tk_testing_advance(250);
  ASSERT_EQ(fired.size(), 3u);
  EXPECT_EQ(fired[0], std::make_pair(start_ + 100, uintptr_t{1}));
  EXPECT_EQ(fired[1], std::make_pair(start_ + 200, uintptr_t{2}));
  EXPECT_EQ(fired[2], std::make_pair(start_ + 200, uintptr_t{4}));
  tk_testing_advance(50);
  ASSERT_EQ(fired.size(), 4u);
  EXPECT_EQ(fired[3], std::make_pair(start_ + 300, uintptr_t{3}));
}

TEST_F(Timers, RepeatKeepsATimerAndAnyOtherResultRemovesIt) {
  timer_add(note_repeat, tag(1), 100);
  timer_add([](const timer_info_t* t) { return note_once(t), RET_OK; }, tag(2), 100);
  tk_testing_advance(350);
  int ones = 0, twos = 0;
  for (auto& f : fired)
    (f.second == 1 ? ones : twos)++;
  EXPECT_EQ(ones, 3);
  EXPECT_EQ(twos, 1);
}

TEST_F(Timers, TheNextPeriodIsMeasuredFromTheCallback) {
  static int calls = 0;
  calls = 0;
  timer_add(
      [](const timer_info_t* t) {
        fired.emplace_back(t->now, 0);
        // The callback takes 30 ms: the next run is 100 ms after it ends.
        if (++calls == 1) sleep_ms(30);
        return RET_REPEAT;
      },
      nullptr, 100);
  tk_testing_advance(400);
  ASSERT_EQ(fired.size(), 3u);
  EXPECT_EQ(fired[0].first, start_ + 100);
  EXPECT_EQ(fired[1].first, start_ + 230);
  EXPECT_EQ(fired[2].first, start_ + 330);
}

TEST_F(Timers, ATimerRemovedByAnotherCallbackDueAtTheSameTimeNeverRuns) {
  static uint32_t victim = 0;
  timer_add(
      [](const timer_info_t* t) {
        EXPECT_EQ(timer_remove(victim), RET_OK);
        return note_once(t);
      },
      tag(1), 100);
  victim = timer_add(note_once, tag(2), 100);
  tk_testing_advance(500);
  ASSERT_EQ(fired.size(), 1u);
  EXPECT_EQ(fired[0].second, 1u);
}

TEST_F(Timers, ATimerRemovingItselfAndAskingToRepeatIsGone) {
  timer_add(
      [](const timer_info_t* t) {
        fired.emplace_back(t->now, t->id);
        EXPECT_EQ(timer_remove(t->id), RET_OK);
        return RET_REPEAT;
      },
      nullptr, 50);
  tk_testing_advance(500);
  EXPECT_EQ(fired.size(), 1u);
}

TEST_F(Timers, RemoveReportsBadParamsForZeroAndNotFoundForUnknownIds) {
  uint32_t id = timer_add(note_once, nullptr, 100);
  EXPECT_EQ(timer_remove(0), RET_BAD_PARAMS);
  EXPECT_TRUE(tk_testing_log_contains("condition(timer_id != TK_INVALID_ID) failed!"));
  EXPECT_EQ(timer_remove(id + 1000), RET_NOT_FOUND);
  EXPECT_EQ(timer_remove(id), RET_OK);
  EXPECT_EQ(timer_remove(id), RET_NOT_FOUND);
  tk_testing_advance(200);
  EXPECT_TRUE(fired.empty());
}

TEST_F(Timers, IdsGrowFromOneAndAreNeverReused) {
  uint32_t a = timer_add(note_once, nullptr, 10);
  uint32_t b = timer_add(note_once, nullptr, 10);
  EXPECT_GE(a, 1u);
  EXPECT_EQ(b, a + 1);
  timer_remove(a);
  uint32_t c = timer_add(note_once, nullptr, 10);
  EXPECT_GT(c, b);
  // Idles count separately.
  uint32_t i1 = idle_add([](const idle_info_t*) { return RET_REMOVE; }, nullptr);
  uint32_t i2 = idle_add([](const idle_info_t*) { return RET_REMOVE; }, nullptr);
  EXPECT_GE(i1, 1u);
  EXPECT_EQ(i2, i1 + 1);
  EXPECT_EQ(timer_add(nullptr, nullptr, 10), TK_INVALID_ID);
}

TEST_F(Timers, WidgetTimersGetTheWidgetAndDieWithIt) {
  write_window("W", "", "<label name=\"l\"/>");
  widget_t* w = open("W");
  widget_t* l = widget_lookup(w, "l", TRUE);
  static widget_t* seen = nullptr;
  static int count = 0;
  seen = nullptr;
  count = 0;
  uint32_t id = widget_add_timer(
      l,
      [](const timer_info_t* t) {
        seen = static_cast<widget_t*>(t->ctx);
        count++;
        return RET_REPEAT;
      },
      100);
  uint32_t plain = timer_add(note_repeat, nullptr, 100);
  tk_testing_advance(100);
  EXPECT_EQ(seen, l);
  EXPECT_EQ(count, 1);
  window_close(w);
  tk_testing_advance(500);
  EXPECT_EQ(count, 1);
  EXPECT_EQ(timer_remove(id), RET_NOT_FOUND);
  // A plain timer is never removed automatically.
  EXPECT_EQ(timer_remove(plain), RET_OK);
}

TEST_F(Timers, WidgetRemoveTimerRemovesById) {
  write_window("W");
  widget_t* w = open("W");
  uint32_t id = widget_add_timer(w, note_once, 100);
  EXPECT_EQ(widget_remove_timer(w, id), RET_OK);
  tk_testing_advance(200);
  EXPECT_TRUE(fired.empty());
}

TEST_F(Timers, IdlesRunOnTheNextPassAndRepeatOnlyWhenAsked) {
  static int once = 0, again = 0;
  once = again = 0;
  idle_add(
      [](const idle_info_t*) {
        once++;
        return RET_OK;
      },
      nullptr);
  uint32_t rep = idle_add(
      [](const idle_info_t*) {
        again++;
        return RET_REPEAT;
      },
      nullptr);
  EXPECT_EQ(once, 0);
  tk_testing_advance(0);
  EXPECT_EQ(once, 1);
  EXPECT_EQ(again, 1);
  timer_add(note_once, nullptr, 10);
  tk_testing_advance(20);
  EXPECT_EQ(once, 1);
  EXPECT_GE(again, 2);
  EXPECT_EQ(idle_remove(rep), RET_OK);
  int before = again;
  timer_add(note_once, nullptr, 10);
  tk_testing_advance(20);
  EXPECT_EQ(again, before);
}

TEST_F(Timers, SleepMsMovesTheTestClockWithoutRunningTimers) {
  timer_add(note_once, nullptr, 50);
  uint64_t t0 = time_now_ms();
  sleep_ms(100);
  EXPECT_EQ(time_now_ms(), t0 + 100);
  EXPECT_TRUE(fired.empty());
  tk_testing_advance(0);
  EXPECT_EQ(fired.size(), 1u);
  EXPECT_EQ(time_now_s(), time_now_ms() / 1000);
}

TEST_F(Timers, TkQuitEndsTkRunAfterTheCurrentStep) {
  timer_add(
      [](const timer_info_t*) {
        tk_quit();
        return RET_REMOVE;
      },
      nullptr, 5000);
  EXPECT_EQ(tk_run(), RET_OK);
  EXPECT_EQ(tk_testing_now(), start_ + 5000);
}

TEST_F(Timers, TimerModifyAndResetMoveTheDueTime) {
  uint32_t id = timer_add(note_once, nullptr, 100);
  tk_testing_advance(80);
  EXPECT_EQ(timer_reset(id), RET_OK);
  tk_testing_advance(80);
  EXPECT_TRUE(fired.empty());
  EXPECT_EQ(timer_modify(id, 10), RET_OK);
  tk_testing_advance(0);
  EXPECT_EQ(fired.size(), 1u);
}
