// Timers that cannot leak, on the toolkit's test clock: a held key pressed twice starts one fast
// move; a page closed while a fast move or an exit notice runs leaves nothing that fires later;
// a release that never comes ends the fast move after FAST_MOVE_MAX_TICKS ticks; and the page
// timers themselves, on a bare window.
#include "common/cursor_mover.h"
#include "common/page_timers.h"
#include "reticle_fixture.h"

namespace {

using reticle_test::decoded;
using reticle_test::Frames;
using reticle_test::printed;
using reticle_test::ReticleTest;
using Names = std::vector<std::string>;

class TimersTest : public ReticleTest {
 protected:
  // The range page over the observation screen, already set up (entering sends nothing).
  void open_range() {
    home_ = home_scene_open();
    stDevStatus.s8RangeSwitch = 1;
    stDevStatus.s8RangeType = RANGE_CONTINUOUS;
    stUIStatus.s8RangeMode = 3;
    stDevStatus.s16RangeOffsetX = 640;
    stDevStatus.s16RangeOffsetY = 512;
    sent_frames();
    open("Zavo_range_move");
  }
  // Runs the clock for `ms` and returns what was sent meanwhile, read in slices as the device
  // reads it (the send queue holds about 30 frames).
  Frames run_and_collect(uint32_t ms) {
    Frames all;
    for (uint32_t done = 0; done < ms; done += 5000) {
      advance(ms - done < 5000 ? ms - done : 5000);
      for (auto& f : sent_frames())
        all.push_back(std::move(f));
    }
    return all;
  }
  // The alignment page with x being edited.
  void open_move_editing_x() {
    open_over_home("Zavo_reticle_move");
    key(GUI_KEY_PHOTO_S);
    key(GUI_KEY_FUCTION_S);
  }
};

TEST_F(TimersTest, AHeldKeyPressedAgainStartsNoSecondTimer) {
  struct Case {
    const char* page;
    std::vector<int> held;  // while the first tick has not come
    Names first_tick;
  } cases[] = {
      {"Zavo_range_move",
       {GUI_KEY_PHOTO_L, GUI_KEY_PHOTO_L},
       {"RETICLE RETICLE_RANGE_POSITION x=650 y=512"}},
      // The other held key turns the running move round; still one timer.
      {"Zavo_range_move",
       {GUI_KEY_PHOTO_L, GUI_KEY_RANGE_L},
       {"RETICLE RETICLE_RANGE_POSITION x=630 y=512"}},
      {"Zavo_reticle_move",
       {GUI_KEY_PHOTO_L, GUI_KEY_PHOTO_L, GUI_KEY_PHOTO_L},
       {"RETICLE RETICLE_POSITION x=670 y=630"}},
  };
  for (const Case& c : cases) {
    if (std::string(c.page) == "Zavo_range_move") {
      open_range();
    } else {
      open_move_editing_x();  // zero C at 660, 630
    }
    sent();
    key(c.held[0]);
    advance(200);
    for (size_t i = 1; i < c.held.size(); ++i)
      key(c.held[i]);
    advance(300);
    EXPECT_EQ(sent(), c.first_tick) << c.page;
    advance(500);
    EXPECT_EQ(sent().size(), 1u) << "one tick each 500 ms: " << c.page;
    restart();
  }
}

TEST_F(TimersTest, APageClosedDuringAFastMoveLeavesNoTimerBehind) {
  struct Case {
    const char* page;
  } cases[] = {{"Zavo_range_move"}, {"Zavo_reticle_move"}, {"Zavo_pixel_menu"}};
  for (const Case& c : cases) {
    if (std::string(c.page) == "Zavo_range_move") {
      open_range();
    } else if (std::string(c.page) == "Zavo_reticle_move") {
      open_move_editing_x();
    } else {
      open_over_home(c.page);
    }
    key(GUI_KEY_PHOTO_L);
    advance(500);
    EXPECT_EQ(sent().size(), 1u) << c.page;
    // Closed from outside the page, as the device's shut-down or update screen would replace it.
    ASSERT_EQ(navigator_close(c.page), RET_OK);
    advance(0);
    EXPECT_EQ(windows(), (Names{"Zavo_home_page_1"}));
    advance(10000);
    EXPECT_TRUE(sent().empty()) << c.page;
    restart();
  }
}

TEST_F(TimersTest, APageClosedDuringItsExitNoticeLeavesNoTimerBehind) {
  for (const char* page : {"Zavo_reticle_move", "Zavo_reticle_zero_child"}) {
    open_over_home(page);
    key(GUI_KEY_FUCTION_L);
    EXPECT_TRUE(shown("view_tip_exit"));
    sent();
    ASSERT_EQ(navigator_close(page), RET_OK);
    advance(5000);
    // The notice's timer would have opened the reticle menu and had the settings saved.
    EXPECT_EQ(windows(), (Names{"Zavo_home_page_1"})) << page;
    EXPECT_TRUE(sent().empty()) << page;
    restart();
  }
}

TEST_F(TimersTest, AReleaseThatNeverComesEndsTheFastMoveAfterItsLastTick) {
  open_range();
  key(GUI_KEY_PHOTO_L);
  Frames frames;
  const std::string out =
      printed([&] { frames = run_and_collect(FAST_MOVE_MAX_TICKS * FAST_MOVE_PERIOD_MS); });
  ASSERT_EQ(frames.size(), static_cast<size_t>(FAST_MOVE_MAX_TICKS));
  EXPECT_EQ(decoded({frames.back()}),
            (Names{"RETICLE RETICLE_RANGE_POSITION x=" +
                   std::to_string(640 + FAST_MOVE_MAX_TICKS * FAST_MOVE_STEP) + " y=512"}));
  EXPECT_EQ(out.find("fast move stopped"), std::string::npos);
  // The next tick ends it: at most FAST_MOVE_MAX_TICKS x 10 pixels for one lost release.
  const std::string end = printed([&] { advance(FAST_MOVE_PERIOD_MS); });
  EXPECT_NE(end.find("fast move stopped after 60 ticks without a key release\n"),
            std::string::npos);
  EXPECT_TRUE(run_and_collect(60000).empty());
  // The page still works: a new held key moves again.
  key(GUI_KEY_RANGE_L);
  advance(500);
  EXPECT_EQ(sent(), (Names{"RETICLE RETICLE_RANGE_POSITION x=1230 y=512"}));
}

TEST_F(TimersTest, OnTheAlignmentPageTheLimitHoldsAndTheMoveEndsAfterItsLastTick) {
  open_move_editing_x();
  sent();
  key(GUI_KEY_PHOTO_L);
  const Names frames = decoded(run_and_collect(FAST_MOVE_MAX_TICKS * FAST_MOVE_PERIOD_MS + 30000));
  ASSERT_EQ(frames.size(), static_cast<size_t>(FAST_MOVE_MAX_TICKS));
  EXPECT_EQ(frames.back(), "RETICLE RETICLE_POSITION x=840 y=630");
  EXPECT_EQ(text("label_x_value"), "200");
}

TEST_F(TimersTest, AnyShortKeyEndsAFastMoveWhoseReleaseWasLost) {
  open_range();
  key(GUI_KEY_PHOTO_L);
  advance(1500);
  EXPECT_EQ(sent().size(), 3u);
  key(GUI_KEY_RANGE_S);  // one step back, and the move is over
  EXPECT_EQ(sent(), (Names{"RETICLE RETICLE_RANGE_POSITION x=669 y=512"}));
  advance(5000);
  EXPECT_TRUE(sent().empty());
}

TEST_F(TimersTest, APageOpenedAgainDropsTheOldWindowsTimersAndKeepsItsOwn) {
  open_range();
  key(GUI_KEY_PHOTO_L);
  advance(500);
  sent();
  open("Zavo_range_move");  // single instance: the old window is closed, a new one opens
  key(GUI_KEY_PHOTO_L);     // the new page's own move starts from a clean id
  advance(500);
  EXPECT_EQ(sent(), (Names{"RETICLE RETICLE_RANGE_POSITION x=660 y=512"}));
  advance(2000);  // the old window is gone by now; the new move runs on
  EXPECT_EQ(sent().size(), 4u);
}

// ---- the page timers on a bare window ----

uint32_t g_id_a = 0;
uint32_t g_id_b = 0;
int g_fired = 0;
uint32_t* const BARE_TIMERS[] = {&g_id_a, &g_id_b};
page_timers_t g_timers{BARE_TIMERS};

ret_t on_bare_tick(const timer_info_t* timer) {
  (void)timer;
  g_fired++;
  return RET_REPEAT;
}

class PageTimersTest : public ::testing::Test {
 protected:
  void SetUp() override {
    tk_testing_init();
    g_fired = 0;
  }
  void TearDown() override { tk_testing_reset(); }
  widget_t* open_bare(const char* name) {
    std::string xml = std::string("<window name=\"") + name + "\" w=\"100\" h=\"100\"/>";
    widget_t* win = tk_testing_open_xml(name, xml.c_str());
    tk_testing_advance(0);
    return win;
  }
};

TEST_F(PageTimersTest, ASecondStartIsRefusedAndClosingTheWindowEndsEveryTimer) {
  g_id_a = 77;  // a stale id from an earlier window
  widget_t* win = open_bare("bare");
  page_timers_attach(g_timers, win);
  EXPECT_EQ(g_id_a, 0u);
  EXPECT_TRUE(page_timer_start(g_timers, g_id_a, on_bare_tick, 100));
  const uint32_t first = g_id_a;
  EXPECT_FALSE(page_timer_start(g_timers, g_id_a, on_bare_tick, 100));
  EXPECT_EQ(g_id_a, first);
  EXPECT_TRUE(page_timer_start(g_timers, g_id_b, on_bare_tick, 250));
  tk_testing_advance(500);
  EXPECT_EQ(g_fired, 5 + 2);
  window_close(win);
  EXPECT_EQ(g_id_a, 0u);
  EXPECT_EQ(g_id_b, 0u);
  tk_testing_advance(2000);
  EXPECT_EQ(g_fired, 7);
  EXPECT_FALSE(page_timer_start(g_timers, g_id_a, on_bare_tick, 100)) << "no window to run on";
}

TEST_F(PageTimersTest, AReopenedPageKeepsItsTimersWhenTheOldWindowGoes) {
  widget_t* old_win = open_bare("bare");
  page_timers_attach(g_timers, old_win);
  page_timer_start(g_timers, g_id_a, on_bare_tick, 100);
  widget_t* new_win = open_bare("bare2");
  page_timers_attach(g_timers, new_win);  // the page opened again on another window
  page_timer_start(g_timers, g_id_a, on_bare_tick, 100);
  window_close(old_win);  // the old window's close and destroy must not touch the new timers
  tk_testing_advance(0);
  tk_testing_advance(0);
  EXPECT_NE(g_id_a, 0u);
  const int before = g_fired;
  tk_testing_advance(300);
  EXPECT_EQ(g_fired - before, 3) << "only the new window's timer runs";
  // Destroyed without a close (the toolkit reset): the ids are cleared too.
  tk_testing_reset();
  EXPECT_EQ(g_id_a, 0u);
}

}  // namespace
