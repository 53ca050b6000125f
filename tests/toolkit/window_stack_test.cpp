// Window stack: opening, closing, going back, switching, single instances and dialogs.
#include "tk_fixture.h"

using Names = std::vector<std::string>;

class WindowStack : public ToolkitTest {};

TEST_F(WindowStack, OpenAppendsAtOnceAndRunsTheOpenSequenceOnTheNextIdlePass) {
  write_window("A");
  write_window("B");
  widget_t* wm = window_manager();
  watch_window_events(wm);
  widget_t* a = window_open("A");
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(window_manager_get_top_window(wm), a);
  // Attached right after window_open: still sees the whole sequence.
  watch_window_events(a);
  EXPECT_TRUE(events_.empty());
  tk_testing_advance(0);
  EXPECT_EQ(joined(), "A:will_open wm:will_open:A A:open wm:top_changed wm:open:A");

  events_.clear();
  widget_t* b = window_open("B");
  watch_window_events(b);
  tk_testing_advance(0);
  EXPECT_EQ(joined(),
            "B:will_open wm:will_open:B A:to_background wm:to_background:A B:open "
            "wm:top_changed wm:open:B");
  EXPECT_EQ(stack_names(), (Names{"A", "B"}));
  EXPECT_TRUE(widget_is_window_opened(b));
}

TEST_F(WindowStack, WindowEventCastOnlyOnTheWindowManagerCopy) {
  write_window("A");
  static int cast_on_window = -1, cast_on_wm = -1;
  widget_t* a = window_open("A");
  widget_on(
      a, EVT_WINDOW_OPEN,
      [](void*, event_t* e) {
        cast_on_window = window_event_cast(e) != nullptr;
        return RET_OK;
      },
      nullptr);
  widget_on(
      window_manager(), EVT_WINDOW_OPEN,
      [](void*, event_t* e) {
        window_event_t* we = window_event_cast(e);
        cast_on_wm = we != nullptr && we->window != nullptr;
        return RET_OK;
      },
      nullptr);
  tk_testing_advance(0);
  EXPECT_EQ(cast_on_window, 0);
  EXPECT_EQ(cast_on_wm, 1);
}

TEST_F(WindowStack, CloseRemovesAtOnceAndDestroysInAnIdle) {
  write_window("A");
  write_window("B");
  widget_t* a = open("A");
  widget_t* b = open("B");
  watch_window_events(a);
  watch_window_events(b);
  watch_window_events(window_manager());
  watch(b, {EVT_DESTROY});
  EXPECT_EQ(window_close(b), RET_OK);
  EXPECT_EQ(window_manager_get_top_window(window_manager()), a);
  EXPECT_EQ(joined(), "B:close wm:close:B A:to_foreground wm:to_foreground:A");
  events_.clear();
  tk_testing_advance(0);
  EXPECT_EQ(joined(), "B:destroy wm:top_changed");
  EXPECT_EQ(stack_names(), (Names{"A"}));
}

TEST_F(WindowStack, ForceCloseBringsTheWindowBelowForwardFirst) {
  write_window("A");
  write_window("B");
  widget_t* a = open("A");
  widget_t* b = open("B");
  watch_window_events(a);
  watch_window_events(b);
  EXPECT_EQ(window_manager_close_window_force(window_manager(), b), RET_OK);
  EXPECT_EQ(joined(), "A:to_foreground B:close");
}

TEST_F(WindowStack, ClosingAWindowThatHasNotOpenedYetWaitsForItsOpenSequence) {
  write_window("A");
  widget_t* a = window_open("A");
  watch_window_events(a);
  EXPECT_EQ(window_close(a), RET_OK);
  EXPECT_EQ(stack_names(), (Names{"A"}));
  tk_testing_advance(0);
  EXPECT_EQ(joined(), "A:will_open A:open A:close");
  EXPECT_TRUE(stack_names().empty());
}

TEST_F(WindowStack, OpenAndCloseClosesTheOldWindowWhenTheNewOneOpens) {
  write_window("A");
  write_window("B");
  widget_t* a = open("A");
  watch_window_events(a);
  widget_t* b = window_open_and_close("B", a);
  ASSERT_NE(b, nullptr);
  EXPECT_EQ(stack_names(), (Names{"A", "B"}));
  EXPECT_TRUE(events_.empty());
  tk_testing_advance(0);
  EXPECT_EQ(stack_names(), (Names{"B"}));
  EXPECT_EQ(joined(), "A:to_background A:close");
}

TEST_F(WindowStack, SingleInstanceForceClosesTheOldWindowAndLoadsAFreshOne) {
  write_window("S", "single_instance=\"true\"", "<label name=\"l\" text=\"x\"/>");
  widget_t* first = open("S");
  watch_window_events(first);
  widget_set_text_utf8(widget_lookup(first, "l", TRUE), "changed");
  widget_t* second = open("S");
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(events_.front(), "S:close");
  EXPECT_EQ(stack_names(), (Names{"S"}));
  char buf[32];
  widget_get_text_utf8(widget_lookup(second, "l", TRUE), buf, sizeof(buf));
  EXPECT_STREQ(buf, "x");
}

TEST_F(WindowStack, WithoutSingleInstanceTheSameNameOpensTwice) {
  write_window("M");
  open("M");
  open("M");
  EXPECT_EQ(stack_names(), (Names{"M", "M"}));
}

TEST_F(WindowStack, SingleInstanceMatchesTheWindowNameNotTheAssetName) {
  write_ui("asset", "<window name=\"other\" single_instance=\"true\"/>");
  open("asset");
  open("asset");
  EXPECT_EQ(stack_names(), (Names{"other", "other"}));
}

TEST_F(WindowStack, BackClosesANormalWindowThroughItsCloseRequest) {
  write_window("A");
  write_window("B");
  open("A");
  widget_t* b = open("B");
  // closable="yes" (default): the window closes itself and page handlers never see it.
  watch(b, {EVT_REQUEST_CLOSE_WINDOW});
  EXPECT_EQ(window_manager_back(window_manager()), RET_STOP);
  EXPECT_TRUE(events_.empty());
  EXPECT_EQ(stack_names(), (Names{"A"}));
}

TEST_F(WindowStack, ClosableNoRefusesAndConfirmLetsThePageDecide) {
  write_window("A");
  write_window("N", "closable=\"no\"");
  write_window("C", "closable=\"confirm\"");
  open("A");
  open("N");
  EXPECT_EQ(window_manager_back(window_manager()), RET_STOP);
  EXPECT_EQ(stack_names(), (Names{"A", "N"}));

  widget_t* c = open("C");
  widget_on(
      c, EVT_REQUEST_CLOSE_WINDOW,
      [](void*, event_t* e) {
        events_.push_back("confirm");
        window_close(static_cast<widget_t*>(e->target));
        return RET_OK;
      },
      nullptr);
  EXPECT_EQ(window_manager_back(window_manager()), RET_OK);
  EXPECT_EQ(events_, (Names{"confirm"}));
  EXPECT_EQ(stack_names(), (Names{"A", "N"}));
}

TEST_F(WindowStack, BackToClosesEverythingAboveTheTargetInAnIdle) {
  for (const char* n : {"A", "B", "C", "D"})
    write_window(n);
  open("A");
  widget_t* b = open("B");
  widget_t* c = open("C");
  widget_t* d = open("D");
  watch_window_events(b);
  watch_window_events(c);
  watch_window_events(d);
  EXPECT_EQ(window_manager_back_to(window_manager(), "B"), RET_OK);
  EXPECT_EQ(stack_names(), (Names{"A", "B", "C", "D"}));
  tk_testing_advance(0);
  EXPECT_EQ(stack_names(), (Names{"A", "B"}));
  // The topmost closes normally (C comes forward), the rest by force (B comes forward first).
  EXPECT_EQ(joined(), "D:close C:to_foreground B:to_foreground C:close");
}

TEST_F(WindowStack, BackToRejectsUnknownNamesAndNonNormalTargets) {
  write_window("A");
  write_ui("D", "<dialog name=\"D\" w=\"200\" h=\"100\"/>");
  write_window("B");
  open("A");
  open("D");
  open("B");
  EXPECT_EQ(window_manager_back_to(window_manager(), "nothing"), RET_BAD_PARAMS);
  window_manager_back_to(window_manager(), "D");
  tk_testing_advance(0);
  EXPECT_EQ(stack_names(), (Names{"A", "D", "B"}));
}

TEST_F(WindowStack, BackToHomeKeepsOnlyTheLowestNormalWindow) {
  for (const char* n : {"A", "B", "C"})
    write_window(n);
  open("A");
  open("B");
  open("C");
  EXPECT_EQ(window_manager_back_to_home(window_manager()), RET_OK);
  tk_testing_advance(0);
  EXPECT_EQ(stack_names(), (Names{"A"}));
}

TEST_F(WindowStack, SwitchToMovesTheTargetUpAndClosesTheCurrentWindow) {
  write_window("A");
  write_window("B");
  widget_t* a = open("A");
  widget_t* b = open("B");
  watch_window_events(a);
  watch_window_events(b);
  EXPECT_EQ(window_manager_switch_to(window_manager(), b, a, FALSE), RET_OK);
  EXPECT_EQ(stack_names(), (Names{"B", "A"}));
  EXPECT_EQ(joined(), "B:to_background A:to_foreground");
  events_.clear();
  EXPECT_EQ(window_manager_switch_to(window_manager(), a, b, TRUE), RET_OK);
  EXPECT_EQ(stack_names(), (Names{"B"}));
  EXPECT_EQ(joined(), "A:to_background B:to_foreground A:close");
  // Nothing to do for the same window or none.
  EXPECT_EQ(window_manager_switch_to(window_manager(), b, b, TRUE), RET_OK);
  EXPECT_EQ(window_manager_switch_to(window_manager(), b, nullptr, TRUE), RET_OK);
  EXPECT_EQ(stack_names(), (Names{"B"}));
}

TEST_F(WindowStack, SwitchToFailsWhileADialogThatHasNotQuitIsAbove) {
  write_window("A");
  write_ui("D", "<dialog name=\"D\" w=\"200\" h=\"100\"/>");
  widget_t* a = open("A");
  widget_t* d = open("D");
  EXPECT_EQ(window_manager_switch_to(window_manager(), d, a, FALSE), RET_FAIL);
  EXPECT_EQ(stack_names(), (Names{"A", "D"}));
}

TEST_F(WindowStack, TopWindowSkipsQuitDialogsAndTopMainWindowSkipsDialogs) {
  write_window("A");
  write_ui("D", "<dialog name=\"D\" w=\"200\" h=\"100\"/>");
  widget_t* a = open("A");
  widget_t* d = open("D");
  EXPECT_EQ(window_manager_get_top_window(window_manager()), d);
  EXPECT_EQ(window_manager_get_top_main_window(window_manager()), a);
  EXPECT_TRUE(widget_is_dialog(d));
  EXPECT_FALSE(widget_is_dialog(a));
  EXPECT_TRUE(widget_is_window(d));
  // A non-modal dialog closes when it quits.
  EXPECT_EQ(dialog_quit(d, DIALOG_QUIT_OK), RET_OK);
  EXPECT_EQ(window_manager_get_top_window(window_manager()), a);
  EXPECT_EQ(dialog_quit(d, DIALOG_QUIT_OK), RET_FAIL);
}

namespace {
ret_t quit_ok_on_key(void* ctx, event_t* e) {
  dialog_quit(static_cast<widget_t*>(ctx), DIALOG_QUIT_OK);
  return RET_OK;
}
}  // namespace

TEST_F(WindowStack, ModalDialogRunsANestedLoopUntilItQuitsAndClosesLater) {
  write_window("A");
  write_ui("D", "<dialog name=\"D\" x=\"100\" y=\"100\" w=\"400\" h=\"200\"/>");
  open("A");
  widget_t* d = window_open("D");
  widget_on(d, EVT_KEY_DOWN, quit_ok_on_key, d);
  // A key posted once the dialog has opened is handled inside the nested loop, by the dialog
  // (the key target).
  widget_on(
      d, EVT_WINDOW_OPEN,
      [](void*, event_t*) {
        main_loop_post_key_event(main_loop(), TRUE, 'a');
        main_loop_post_key_event(main_loop(), FALSE, 'a');
        return RET_OK;
      },
      nullptr);
  EXPECT_EQ(dialog_modal(d), DIALOG_QUIT_OK);
  EXPECT_EQ(stack_names(), (Names{"A", "D"}));
  EXPECT_EQ(window_manager_get_top_window(window_manager()),
            window_manager_get_top_main_window(window_manager()));
  tk_testing_advance(0);
  EXPECT_EQ(stack_names(), (Names{"A"}));
}

TEST_F(WindowStack, TimersKeepRunningInAModalDialogAndBackQuitsItWithNone) {
  write_window("A");
  write_ui("D", "<dialog name=\"D\" w=\"400\" h=\"200\"/>");
  open("A");
  widget_t* d = window_open("D");
  uint64_t before = tk_testing_now();
  widget_add_timer(
      d,
      [](const timer_info_t*) {
        window_manager_back(window_manager());
        return RET_REMOVE;
      },
      250);
  EXPECT_EQ(dialog_modal(d), DIALOG_QUIT_NONE);
  EXPECT_EQ(tk_testing_now() - before, 250u);
  tk_testing_advance(0);
  EXPECT_EQ(stack_names(), (Names{"A"}));
}

TEST_F(WindowStack, BackToWithAModalDialogOnTopQuitsItFirst) {
  write_window("A");
  write_window("B");
  write_ui("D", "<dialog name=\"D\" w=\"400\" h=\"200\"/>");
  open("A");
  open("B");
  widget_t* d = window_open("D");
  widget_add_timer(
      d,
      [](const timer_info_t*) {
        window_manager_back_to(window_manager(), "A");
        return RET_REMOVE;
      },
      10);
  EXPECT_EQ(dialog_modal(d), DIALOG_QUIT_NONE);
  tk_testing_advance(0);
  tk_testing_advance(0);
  EXPECT_EQ(stack_names(), (Names{"A"}));
}

TEST_F(WindowStack, AMissingLayoutNamesTheFileAndReturnsNull) {
  EXPECT_EQ(window_open("Nowhere"), nullptr);
  EXPECT_TRUE(tk_testing_log_contains("!!!Asset [name=Nowhere type=ui] not exist!!!"));
  EXPECT_TRUE(tk_testing_log_contains("ui/Nowhere.xml"));
  EXPECT_TRUE(stack_names().empty());
}

TEST_F(WindowStack, AMalformedLayoutIsReportedWithItsLineAndOpensNothing) {
  write_ui("Bad", "<window name=\"Bad\">\n<label name=\"x\"\n</window>");
  EXPECT_EQ(window_open("Bad"), nullptr);
  EXPECT_TRUE(tk_testing_log_contains("Bad.xml is malformed"));
  EXPECT_TRUE(tk_testing_log_contains("line"));
  EXPECT_TRUE(stack_names().empty());
  write_ui("NotAWindow", "<view name=\"v\"/>");
  EXPECT_EQ(window_open("NotAWindow"), nullptr);
  EXPECT_TRUE(tk_testing_log_contains("not a window kind"));
  EXPECT_EQ(tk_testing_open_xml("Empty", ""), nullptr);
}

TEST_F(WindowStack, UnknownAttributesAndElementsLoadWithAClearLine) {
  write_window("U", "to_modal=\"false\"",
               "<label name=\"l\" colour=\"red\"/><fancy_widget name=\"f\" w=\"10\" h=\"10\"/>");
  widget_t* u = open("U");
  ASSERT_NE(u, nullptr);
  widget_t* l = widget_lookup(u, "l", TRUE);
  EXPECT_STREQ(widget_get_prop_str(l, "colour", nullptr), "red");
  EXPECT_TRUE(tk_testing_log_contains("unknown attribute \"colour\""));
  // The window's own custom properties are known and read as values.
  EXPECT_FALSE(widget_get_prop_bool(u, "to_modal", TRUE));
  EXPECT_FALSE(tk_testing_log_contains("unknown attribute \"to_modal\""));
  widget_t* f = widget_lookup(u, "f", TRUE);
  ASSERT_NE(f, nullptr);
  EXPECT_STREQ(widget_get_type(f), "view");
  EXPECT_TRUE(tk_testing_log_contains("not supported type fancy_widget"));
}

namespace {
ret_t open_b_on_key(void*, event_t* e) {
  if (key_event_cast(e)->key == 'o') window_open("B");
  return RET_OK;
}
}  // namespace

TEST_F(WindowStack, TheKeyUpOfAKeyPressedBeforeTheTopWindowChangedIsSwallowed) {
  write_window("A");
  write_window("B");
  widget_t* a = open("A");
  widget_on(a, EVT_KEY_DOWN, open_b_on_key, nullptr);
  watch(a, {EVT_KEY_UP});
  watch(window_manager(), {EVT_KEY_UP});
  tk_testing_key_press('o');
  widget_t* b = window_manager_get_top_window(window_manager());
  ASSERT_STREQ(b->name, "B");
  watch(b, {EVT_KEY_UP});
  tk_testing_key_release('o');
  EXPECT_TRUE(events_.empty()) << joined();
  // A later key goes to B, the new key target.
  tk_testing_key_hit('x');
  EXPECT_EQ(joined(), "B:key_up:120 wm:key_up:120");
}

TEST_F(WindowStack, APressAndReleaseQueuedTogetherBothReachTheOldWindow) {
  write_window("A");
  write_window("B");
  widget_t* a = open("A");
  widget_on(a, EVT_KEY_DOWN, open_b_on_key, nullptr);
  watch(a, {EVT_KEY_UP});
  main_loop_post_key_event(main_loop(), TRUE, 'o');
  main_loop_post_key_event(main_loop(), FALSE, 'o');
  tk_testing_advance(0);
  EXPECT_EQ(joined(), "A:key_up:111");
  EXPECT_EQ(stack_names(), (Names{"A", "B"}));
}

TEST_F(WindowStack, ADestroyedWindowsTimersStopAndItsWindowManagerHandlersEnd) {
  write_window("A");
  write_window("B", "", "<label name=\"l\"/>");
  open("A");
  widget_t* b = open("B");
  static int fired = 0;
  fired = 0;
  uint32_t id = widget_add_timer(
      widget_lookup(b, "l", TRUE),
      [](const timer_info_t*) {
        fired++;
        return RET_REPEAT;
      },
      100);
  widget_on(window_manager(), EVT_USER_START + 1, record, b);
  window_close(b);
  tk_testing_advance(1000);
  EXPECT_EQ(fired, 0);
  EXPECT_EQ(timer_remove(id), RET_NOT_FOUND);
  event_t e = event_init(EVT_USER_START + 1, nullptr);
  widget_dispatch(window_manager(), &e);
  EXPECT_TRUE(events_.empty());
}

// A page's key handler runs a modal dialog (as the navigator does) and, while it runs, the
// page's window is closed and destroyed: its memory must outlive the handler that is still on
// the stack (the sanitizer build catches a use after free here).
namespace {
widget_t* s_page = nullptr;
int s_ticks = 0;
ret_t close_page_then_quit(const timer_info_t* t) {
  if (s_page != nullptr) {
    window_close(s_page);
    s_page = nullptr;
  } else if (++s_ticks == 4) {
    dialog_quit(static_cast<widget_t*>(t->ctx), DIALOG_QUIT_OK);
    return RET_REMOVE;
  }
  return RET_REPEAT;
}
dialog_quit_code_t run_dialog() {
  widget_t* d = window_open("D");
  widget_add_timer(d, close_page_then_quit, 100);
  return dialog_modal(d);
}
}  // namespace

TEST_F(WindowStack, AWindowClosedDuringAModalDialogOfItsOwnHandlerOutlivesTheHandler) {
  write_window("A");
  write_window("P", "", "<label name=\"l\"/>");
  write_ui("D", "<dialog name=\"D\" w=\"200\" h=\"100\"/>");
  open("A");
  s_page = open("P");
  s_ticks = 0;
  widget_on(
      s_page, EVT_KEY_DOWN,
      [](void*, event_t*) {
        events_.push_back(run_dialog() == DIALOG_QUIT_OK ? "quit ok" : "quit other");
        return RET_OK;
      },
      nullptr);
  tk_testing_key_hit('a');
  tk_testing_advance(0);
  EXPECT_EQ(joined(), "quit ok");
  EXPECT_EQ(stack_names(), (Names{"A"}));

  // The same from a widget timer: the timer is not entered again by the nested loop, and its
  // record stays readable until its callback returns.
  s_page = open("P");
  s_ticks = 0;
  events_.clear();
  widget_add_timer(
      widget_lookup(s_page, "l", TRUE),
      [](const timer_info_t* t) {
        run_dialog();
        events_.push_back(std::string("timer ") + static_cast<widget_t*>(t->ctx)->name);
        return RET_REPEAT;
      },
      50);
  tk_testing_advance(1000);
  EXPECT_EQ(joined(), "timer l");
  EXPECT_EQ(stack_names(), (Names{"A"}));
}
