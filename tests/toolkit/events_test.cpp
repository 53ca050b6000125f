// Event dispatch: handler order and results, ids, user events on the window manager, the
// recursive and destroy forms, and key routing along the focus chain.
#include "tk_fixture.h"

namespace {

constexpr uint32_t kUser = EVT_USER_START + 7;
ret_t kStop = RET_STOP;
ret_t kRemove = RET_REMOVE;

ret_t fire(widget_t* w) {
  event_t e = event_init(kUser, nullptr);
  return widget_dispatch(w, &e);
}

}  // namespace

class Events : public ToolkitTest {
 protected:
  void SetUp() override {
    ToolkitTest::SetUp();
    write_window("W", "", "<view name=\"v\"><label name=\"l\"/></view>");
    win_ = open("W");
    v_ = widget_lookup(win_, "v", TRUE);
    l_ = widget_lookup(win_, "l", TRUE);
  }
  widget_t* win_ = nullptr;
  widget_t* v_ = nullptr;
  widget_t* l_ = nullptr;
};

TEST_F(Events, NewestHandlerFirstStopEndsRemoveUnregistersAndNothingBubbles) {
  widget_on(win_, kUser, record, nullptr);
  widget_on(v_, kUser, record, nullptr);
  widget_on(v_, kUser, record, &kStop);
  widget_on(v_, kUser, record, &kRemove);
  EXPECT_EQ(fire(v_), RET_STOP);
  EXPECT_EQ(take_events(), "v:8199 v:8199");
  EXPECT_EQ(fire(v_), RET_STOP);
  EXPECT_EQ(take_events(), "v:8199");
  // A handler may remove another one while the event is being dispatched.
  static uint32_t victim;
  victim = widget_on(win_, kUser, record, nullptr);
  widget_on(
      win_, kUser,
      [](void*, event_t* e) { return widget_off(static_cast<widget_t*>(e->target), victim); },
      nullptr);
  EXPECT_EQ(fire(win_), RET_OK);
  EXPECT_EQ(take_events(), "W:8199");
}

TEST_F(Events, HandlerIdsCountPerWidgetAndWidgetOffChecksThem) {
  EXPECT_EQ(widget_off(l_, 1), RET_BAD_PARAMS);  // never had a handler
  uint32_t a = widget_on(l_, kUser, record, nullptr);
  EXPECT_EQ(a, 1u);
  EXPECT_EQ(widget_on(l_, kUser, record, nullptr), 2u);
  EXPECT_EQ(widget_on(win_, kUser, record, nullptr), 1u);
  EXPECT_EQ(widget_off(l_, a), RET_OK);
  EXPECT_EQ(widget_off(l_, a), RET_FAIL);
  EXPECT_EQ(widget_off(l_, 99), RET_FAIL);
  fire(l_);
  EXPECT_EQ(take_events(), "l:8199");
  EXPECT_EQ(widget_on(l_, kUser, nullptr, nullptr), TK_INVALID_ID);
  // During a handler the target is the widget it was registered on; it is put back after.
  static void* seen;
  widget_on(
      l_, kUser, [](void*, event_t* e) { return seen = e->target, RET_OK; }, nullptr);
  event_t e = event_init(kUser, win_);
  widget_dispatch(l_, &e);
  EXPECT_EQ(seen, l_);
  EXPECT_EQ(e.target, win_);
}

TEST_F(Events, UserEventsOnTheWindowManagerReachEverySubscriberUntilItsWindowCloses) {
  write_window("X");
  widget_t* x = open("X");
  widget_t* wm = window_manager();
  for (int i = 0; i < 3; i++)
    widget_on(wm, kUser, record, nullptr);
  // With a window as context the subscription ends when that window closes.
  widget_on(wm, kUser, record, x);
  fire(wm);
  EXPECT_EQ(take_events(), "wm:8199 wm:8199 wm:8199 wm:8199");
  window_close(x);
  tk_testing_advance(0);
  fire(wm);
  EXPECT_EQ(take_events(), "wm:8199 wm:8199 wm:8199");
}

TEST_F(Events, RecursiveDispatchAndDestroy) {
  widget_on(win_, kUser, record, nullptr);
  widget_on(v_, kUser, record, &kStop);
  widget_on(l_, kUser, record, nullptr);
  event_t e = event_init(kUser, nullptr);
  EXPECT_EQ(widget_dispatch_recursive(win_, &e), RET_STOP);
  EXPECT_EQ(take_events(), "W:8199 v:8199");
  // EVT_DESTROY reaches only widgets that had a handler, children first, in the idle pass
  // after the close.
  watch(l_, {EVT_DESTROY});
  watch(win_, {EVT_DESTROY});
  window_close(win_);
  EXPECT_EQ(take_events(), "");
  tk_testing_advance(0);
  EXPECT_EQ(take_events(), "l:destroy W:destroy");
}

TEST_F(Events, KeysGoDownTheFocusChainAndBubbleBackUpToTheWindowManager) {
  write_window("F", "", "<view name=\"panel\"><button name=\"btn\" w=\"10\" h=\"10\"/></view>");
  widget_t* f = open("F");
  widget_t* panel = widget_lookup(f, "panel", TRUE);
  widget_t* btn = widget_lookup(f, "btn", TRUE);
  ASSERT_EQ(widget_set_focused(btn, TRUE), RET_OK);
  for (widget_t* w : {window_manager(), f, panel, btn})
    watch(w, {EVT_KEY_DOWN_BEFORE_CHILDREN, EVT_KEY_DOWN});
  // A label without focus, in the window below, is off the chain.
  watch(l_, {EVT_KEY_DOWN});
  tk_testing_key_hit('7');
  EXPECT_EQ(take_events(),
            "wm:key_down_before:55 F:key_down_before:55 panel:key_down_before:55 "
            "btn:key_down_before:55 btn:key_down:55 panel:key_down:55 F:key_down:55 "
            "wm:key_down:55");
  // RET_STOP in the window keeps the key from the window manager.
  widget_on(f, EVT_KEY_DOWN, record, &kStop);
  tk_testing_key_hit('a');
  EXPECT_EQ(take_events(),
            "wm:key_down_before:97 F:key_down_before:97 panel:key_down_before:97 "
            "btn:key_down_before:97 btn:key_down:97 panel:key_down:97 F:key_down:97");
}

TEST_F(Events, AHeldKeyGetsOneLongPressAfterASecond) {
  watch(win_, {EVT_KEY_LONG_PRESS, EVT_KEY_UP});
  tk_testing_key_press('b');
  tk_testing_advance(999);
  EXPECT_EQ(take_events(), "");
  tk_testing_advance(1);
  EXPECT_EQ(take_events(), "W:long_press:98");
  tk_testing_advance(3000);
  tk_testing_key_release('b');
  EXPECT_EQ(take_events(), "W:key_up:98");
}
