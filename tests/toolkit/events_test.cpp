// Event dispatch: handler order, results, ids, user events on the window manager, key routing.
#include "tk_fixture.h"

namespace {

std::vector<std::string> order;

ret_t tag_handler(void* ctx, event_t* e) {
  order.push_back(static_cast<const char*>(ctx));
  return RET_OK;
}
ret_t stop_handler(void* ctx, event_t* e) {
  order.push_back(static_cast<const char*>(ctx));
  return RET_STOP;
}
ret_t remove_handler(void* ctx, event_t* e) {
  order.push_back(static_cast<const char*>(ctx));
  return RET_REMOVE;
}
ret_t target_handler(void* ctx, event_t* e) {
  *static_cast<void**>(ctx) = e->target;
  return RET_OK;
}

constexpr uint32_t kUser = EVT_USER_START + 7;

}  // namespace

class Events : public ToolkitTest {
 protected:
  void SetUp() override {
    ToolkitTest::SetUp();
    order.clear();
    write_window("W", "", "<view name=\"v\"><label name=\"l\"/></view>");
    win_ = open("W");
  }
  widget_t* win_ = nullptr;
};

TEST_F(Events, TheNewestHandlerRunsFirstAndStopEndsTheDispatch) {
  widget_t* v = widget_lookup(win_, "v", TRUE);
  widget_on(v, kUser, tag_handler, (void*)"first");
  widget_on(v, kUser, stop_handler, (void*)"second");
  widget_on(v, kUser, tag_handler, (void*)"third");
  event_t e = event_init(kUser, nullptr);
  EXPECT_EQ(widget_dispatch(v, &e), RET_STOP);
  EXPECT_EQ(order, (std::vector<std::string>{"third", "second"}));
  // No bubbling: the window never sees it.
  widget_on(win_, kUser, tag_handler, (void*)"window");
  order.clear();
  widget_dispatch(v, &e);
  EXPECT_EQ(order, (std::vector<std::string>{"third", "second"}));
}

TEST_F(Events, RemoveUnregistersTheHandlerAndTheDispatchGoesOn) {
  widget_on(win_, kUser, tag_handler, (void*)"a");
  widget_on(win_, kUser, remove_handler, (void*)"once");
  event_t e = event_init(kUser, nullptr);
  EXPECT_EQ(widget_dispatch(win_, &e), RET_OK);
  EXPECT_EQ(widget_dispatch(win_, &e), RET_OK);
  EXPECT_EQ(order, (std::vector<std::string>{"once", "a", "a"}));
}

TEST_F(Events, HandlerIdsCountPerWidgetAndWidgetOffReportsUnknownIds) {
  widget_t* l = widget_lookup(win_, "l", TRUE);
  EXPECT_EQ(widget_off(l, 1), RET_BAD_PARAMS);  // never had a handler
  uint32_t a = widget_on(l, kUser, tag_handler, (void*)"a");
  uint32_t b = widget_on(l, kUser, tag_handler, (void*)"b");
  EXPECT_EQ(a, 1u);
  EXPECT_EQ(b, 2u);
  EXPECT_EQ(widget_on(win_, kUser, tag_handler, (void*)"w"), 1u);
  EXPECT_EQ(widget_off(l, a), RET_OK);
  EXPECT_EQ(widget_off(l, a), RET_FAIL);
  EXPECT_EQ(widget_off(l, 99), RET_FAIL);
  event_t e = event_init(kUser, nullptr);
  widget_dispatch(l, &e);
  EXPECT_EQ(order, (std::vector<std::string>{"b"}));
  EXPECT_EQ(widget_on(l, kUser, nullptr, nullptr), TK_INVALID_ID);
}

TEST_F(Events, HandlersMayRemoveOtherHandlersWhileTheEventIsDispatched) {
  static uint32_t victim;
  victim = widget_on(win_, kUser, tag_handler, (void*)"victim");
  widget_on(
      win_, kUser,
      [](void*, event_t* e) {
        widget_off(static_cast<widget_t*>(e->target), victim);
        order.push_back("remover");
        return RET_OK;
      },
      nullptr);
  event_t e = event_init(kUser, nullptr);
  widget_dispatch(win_, &e);
  EXPECT_EQ(order, (std::vector<std::string>{"remover"}));
}

TEST_F(Events, DuringAHandlerTheTargetIsTheWidgetItWasRegisteredOn) {
  widget_t* l = widget_lookup(win_, "l", TRUE);
  void* seen = nullptr;
  widget_on(l, kUser, target_handler, &seen);
  event_t e = event_init(kUser, win_);
  widget_dispatch(l, &e);
  EXPECT_EQ(seen, l);
  EXPECT_EQ(e.target, win_);
}

TEST_F(Events, UserEventsOnTheWindowManagerReachEverySubscriberUntilItsWindowCloses) {
  write_window("X");
  widget_t* x = open("X");
  widget_t* wm = window_manager();
  for (int i = 0; i < 3; i++)
    widget_on(wm, kUser, tag_handler, (void*)"w");
  widget_on(wm, kUser, tag_handler, (void*)"x");
  // With a window as context the subscription ends when that window closes.
  widget_on(wm, kUser, tag_handler, x);
  order.clear();
  event_t e = event_init(kUser, nullptr);
  widget_dispatch(wm, &e);
  EXPECT_EQ(order.size(), 5u);
  window_close(x);
  tk_testing_advance(0);
  order.clear();
  widget_dispatch(wm, &e);
  EXPECT_EQ(order, (std::vector<std::string>{"x", "w", "w", "w"}));
}

TEST_F(Events, DispatchRecursiveIsPreOrderAndStopsOnStop) {
  widget_t* v = widget_lookup(win_, "v", TRUE);
  widget_t* l = widget_lookup(win_, "l", TRUE);
  widget_on(win_, kUser, tag_handler, (void*)"W");
  widget_on(v, kUser, stop_handler, (void*)"v");
  widget_on(l, kUser, tag_handler, (void*)"l");
  event_t e = event_init(kUser, nullptr);
  EXPECT_EQ(widget_dispatch_recursive(win_, &e), RET_STOP);
  EXPECT_EQ(order, (std::vector<std::string>{"W", "v"}));
}

TEST_F(Events, DestroyIsDeliveredOnlyToWidgetsThatHadHandlers) {
  widget_t* l = widget_lookup(win_, "l", TRUE);
  widget_on(l, EVT_DESTROY, tag_handler, (void*)"l");
  widget_on(win_, EVT_DESTROY, tag_handler, (void*)"W");
  window_close(win_);
  EXPECT_TRUE(order.empty());
  tk_testing_advance(0);
  EXPECT_EQ(order, (std::vector<std::string>{"l", "W"}));
}

TEST_F(Events, AsyncDispatchRunsFromAnIdle) {
  widget_on(win_, kUser, tag_handler, (void*)"async");
  event_t e = event_init(kUser, win_);
  EXPECT_EQ(widget_dispatch_async(win_, &e), RET_OK);
  EXPECT_TRUE(order.empty());
  tk_testing_advance(0);
  EXPECT_EQ(order, (std::vector<std::string>{"async"}));
}

TEST_F(Events, EventInitAndTheCastsCheckSizes) {
  event_t e = event_init(EVT_KEY_DOWN, win_);
  EXPECT_EQ(e.size, sizeof(event_t));
  EXPECT_EQ(e.time, tk_testing_now());
  EXPECT_EQ(key_event_cast(&e), nullptr);
  key_event_t k;
  key_event_init(&k, EVT_KEY_UP, win_, 'q');
  EXPECT_EQ(key_event_cast(&k.e), &k);
  k.e.type = EVT_WINDOW_OPEN;
  EXPECT_EQ(key_event_cast(&k.e), nullptr);
  window_event_t w;
  window_event_init(&w, EVT_WINDOW_CLOSE, win_, win_);
  EXPECT_EQ(window_event_cast(&w.e), &w);
  w.e.type = EVT_WINDOW_TO_FOREGROUND;
  EXPECT_EQ(window_event_cast(&w.e), nullptr);
}

TEST_F(Events, KeysGoDownTheFocusChainAndBubbleBackUpToTheWindowManager) {
  write_window("F", "", "<view name=\"panel\"><button name=\"btn\" w=\"10\" h=\"10\"/></view>");
  widget_t* f = open("F");
  widget_t* panel = widget_lookup(f, "panel", TRUE);
  widget_t* btn = widget_lookup(f, "btn", TRUE);
  ASSERT_EQ(widget_set_focused(btn, TRUE), RET_OK);
  for (widget_t* w : {window_manager(), f, panel, btn}) {
    watch(w, {EVT_KEY_DOWN_BEFORE_CHILDREN, EVT_KEY_DOWN});
  }
  // A label without focus is off the chain.
  watch(widget_lookup(win_, "l", TRUE), {EVT_KEY_DOWN});
  tk_testing_key_hit('7');
  EXPECT_EQ(joined(),
            "wm:key_down_before:55 F:key_down_before:55 panel:key_down_before:55 "
            "btn:key_down_before:55 btn:key_down:55 panel:key_down:55 F:key_down:55 "
            "wm:key_down:55");
}

TEST_F(Events, StopInTheWindowKeepsTheKeyFromTheWindowManager) {
  static ret_t stop = RET_STOP;
  widget_on(win_, EVT_KEY_DOWN, record, &stop);
  watch(window_manager(), {EVT_KEY_DOWN});
  tk_testing_key_hit('a');
  EXPECT_EQ(joined(), "W:key_down:97");
}

TEST_F(Events, AHeldKeyGetsOneLongPressAfterASecond) {
  watch(win_, {EVT_KEY_LONG_PRESS, EVT_KEY_UP});
  tk_testing_key_press('b');
  tk_testing_advance(999);
  EXPECT_TRUE(events_.empty());
  tk_testing_advance(1);
  EXPECT_EQ(joined(), "W:long_press:98");
  tk_testing_advance(3000);
  tk_testing_key_release('b');
  EXPECT_EQ(joined(), "W:long_press:98 W:key_up:98");
}
