// Window stack: opening, closing, going back, switching, single instances, dialogs, layout
// errors and the key-up swallowed after the top window changed.
#include "tk_fixture.h"

class WindowStack : public ToolkitTest {
 protected:
  void write_windows(std::initializer_list<const char*> names) {
    for (const char* n : names)
      write_window(n);
  }
};

TEST_F(WindowStack, OpenAppendsAtOnceAndRunsTheOpenSequenceOnTheNextIdlePass) {
  write_windows({"A", "B"});
  widget_t* wm = window_manager();
  watch_window_events(wm);
  widget_t* a = window_open("A");
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(window_manager_get_top_window(wm), a);
  // Attached right after window_open: still sees the whole sequence. The window's own copies
  // are plain events; only the window manager's carry the window.
  watch_window_events(a);
  EXPECT_EQ(take_events(), "");
  tk_testing_advance(0);
  EXPECT_EQ(take_events(), "A:will_open wm:will_open:A A:open wm:top_changed wm:open:A");
  widget_t* b = window_open("B");
  watch_window_events(b);
  tk_testing_advance(0);
  EXPECT_EQ(take_events(),
            "B:will_open wm:will_open:B A:to_background wm:to_background:A B:open "
            "wm:top_changed wm:open:B");
  EXPECT_EQ(stack_names(), (Names{"A", "B"}));
  EXPECT_TRUE(widget_is_window_opened(b));
}

TEST_F(WindowStack, CloseSendsCloseThenForegroundAndForceCloseTheOtherWayRound) {
  write_windows({"A", "B", "C"});
  widget_t* a = open("A");
  widget_t* b = open("B");
  widget_t* c = open("C");
  for (widget_t* w : {a, b, c, window_manager()})
    watch_window_events(w);
  watch(c, {EVT_DESTROY});
  EXPECT_EQ(window_manager_close_window_force(window_manager(), c), RET_OK);
  EXPECT_EQ(take_events(), "B:to_foreground wm:to_foreground:B C:close wm:close:C");
  EXPECT_EQ(window_manager_get_top_window(window_manager()), b);
  // Removed at once, destroyed in the next idle pass.
  tk_testing_advance(0);
  EXPECT_EQ(take_events(), "C:destroy wm:top_changed");
  EXPECT_EQ(window_close(b), RET_OK);
  EXPECT_EQ(take_events(), "B:close wm:close:B A:to_foreground wm:to_foreground:A");
  tk_testing_advance(0);
  EXPECT_EQ(stack_names(), (Names{"A"}));
}

TEST_F(WindowStack, ClosingBeforeTheOpenSequenceWaitsForItAndOpenAndCloseClosesOnOpen) {
  write_windows({"A", "B"});
  widget_t* a = window_open("A");
  watch_window_events(a);
  EXPECT_EQ(window_close(a), RET_OK);
  EXPECT_EQ(stack_names(), (Names{"A"}));
  tk_testing_advance(0);
  EXPECT_EQ(take_events(), "A:will_open A:open A:close");
  EXPECT_TRUE(stack_names().empty());

  a = open("A");
  watch_window_events(a);
  ASSERT_NE(window_open_and_close("B", a), nullptr);
  EXPECT_EQ(stack_names(), (Names{"A", "B"}));
  EXPECT_EQ(take_events(), "");
  tk_testing_advance(0);
  EXPECT_EQ(stack_names(), (Names{"B"}));
  EXPECT_EQ(take_events(), "A:to_background A:close");
}

TEST_F(WindowStack, SingleInstanceLoadsAFreshWindowByWindowName) {
  write_window("S", "single_instance=\"true\"", "<label name=\"l\" text=\"x\"/>");
  write_window("M");
  write_ui("asset", "<window name=\"other\" single_instance=\"true\"/>");
  widget_t* first = open("S");
  watch_window_events(first);
  widget_set_text_utf8(widget_lookup(first, "l", TRUE), "changed");
  widget_t* second = open("S");
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(events_.front(), "S:close");
  EXPECT_EQ(text(widget_lookup(second, "l", TRUE)), "x");
  // Without the property, or when the window's name is not its asset name, it opens twice.
  open("M");
  open("M");
  open("asset");
  open("asset");
  EXPECT_EQ(stack_names(), (Names{"S", "M", "M", "other", "other"}));
}

TEST_F(WindowStack, BackSendsTheCloseRequestThatClosableDecides) {
  write_windows({"A", "B"});
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
  EXPECT_EQ(take_events(), "confirm");
  // closable="yes" (the default): the window closes itself, page handlers never see it.
  widget_t* b = open("B");
  watch(b, {EVT_REQUEST_CLOSE_WINDOW});
  EXPECT_EQ(window_manager_back(window_manager()), RET_STOP);
  EXPECT_EQ(take_events(), "");
  EXPECT_EQ(stack_names(), (Names{"A", "N"}));
}

TEST_F(WindowStack, BackToClosesEverythingAboveTheTargetInAnIdle) {
  write_windows({"A", "B", "C", "D", "E"});
  write_dialog("G");
  open("A");
  widget_t* b = open("B");
  widget_t* c = open("C");
  widget_t* d = open("D");
  for (widget_t* w : {b, c, d})
    watch_window_events(w);
  EXPECT_EQ(window_manager_back_to(window_manager(), "B"), RET_OK);
  EXPECT_EQ(stack_names(), (Names{"A", "B", "C", "D"}));
  tk_testing_advance(0);
  EXPECT_EQ(stack_names(), (Names{"A", "B"}));
  // The topmost closes normally (C comes forward), the rest by force (B comes forward first).
  EXPECT_EQ(take_events(), "D:close C:to_foreground B:to_foreground C:close");
  // Unknown names and targets that are not normal windows close nothing.
  open("G");
  open("E");
  EXPECT_EQ(window_manager_back_to(window_manager(), "nothing"), RET_BAD_PARAMS);
  window_manager_back_to(window_manager(), "G");
  tk_testing_advance(0);
  EXPECT_EQ(stack_names(), (Names{"A", "B", "G", "E"}));
  EXPECT_EQ(window_manager_back_to_home(window_manager()), RET_OK);
  tk_testing_advance(0);
  EXPECT_EQ(stack_names(), (Names{"A"}));
}

TEST_F(WindowStack, SwitchToMovesTheTargetUpAndMayCloseTheCurrentWindow) {
  write_windows({"A", "B"});
  write_dialog("D");
  widget_t* a = open("A");
  widget_t* b = open("B");
  watch_window_events(a);
  watch_window_events(b);
  EXPECT_EQ(window_manager_switch_to(window_manager(), b, a, FALSE), RET_OK);
  EXPECT_EQ(stack_names(), (Names{"B", "A"}));
  EXPECT_EQ(take_events(), "B:to_background A:to_foreground");
  EXPECT_EQ(window_manager_switch_to(window_manager(), a, b, TRUE), RET_OK);
  EXPECT_EQ(stack_names(), (Names{"B"}));
  EXPECT_EQ(take_events(), "A:to_background B:to_foreground A:close");
  // Nothing to do for the same window or none; refused under a dialog that has not quit.
  EXPECT_EQ(window_manager_switch_to(window_manager(), b, b, TRUE), RET_OK);
  EXPECT_EQ(window_manager_switch_to(window_manager(), b, nullptr, TRUE), RET_OK);
  a = open("A");
  widget_t* d = open("D");
  EXPECT_EQ(window_manager_switch_to(window_manager(), d, b, FALSE), RET_FAIL);
  EXPECT_EQ(stack_names(), (Names{"B", "A", "D"}));
  EXPECT_EQ(window_manager_get_top_window(window_manager()), d);
  EXPECT_EQ(window_manager_get_top_main_window(window_manager()), a);
  // A non-modal dialog closes when it quits; it can quit once.
  EXPECT_TRUE(widget_is_dialog(d) && widget_is_window(d) && !widget_is_dialog(a));
  EXPECT_EQ(dialog_quit(d, DIALOG_QUIT_OK), RET_OK);
  EXPECT_EQ(window_manager_get_top_window(window_manager()), a);
  EXPECT_EQ(dialog_quit(d, DIALOG_QUIT_OK), RET_FAIL);
}

TEST_F(WindowStack, ModalDialogTakesKeysInANestedLoopAndReturnsItsCode) {
  write_window("A");
  write_ui("D", "<dialog name=\"D\" x=\"100\" y=\"100\" w=\"400\" h=\"200\"/>");
  open("A");
  widget_t* d = window_open("D");
  widget_on(
      d, EVT_KEY_DOWN,
      [](void* ctx, event_t*) { return dialog_quit(static_cast<widget_t*>(ctx), DIALOG_QUIT_OK); },
      d);
  // A key posted once the dialog has opened is handled inside the nested loop by the dialog.
  widget_on(
      d, EVT_WINDOW_OPEN,
      [](void*, event_t*) {
        main_loop_post_key_event(main_loop(), TRUE, 'a');
        return main_loop_post_key_event(main_loop(), FALSE, 'a');
      },
      nullptr);
  EXPECT_EQ(dialog_modal(d), DIALOG_QUIT_OK);
  // Quit, it no longer counts as the top window; it closes in a later idle.
  EXPECT_EQ(stack_names(), (Names{"A", "D"}));
  EXPECT_EQ(window_manager_get_top_window(window_manager()),
            window_manager_get_top_main_window(window_manager()));
  tk_testing_advance(0);
  EXPECT_EQ(stack_names(), (Names{"A"}));
}

TEST_F(WindowStack, TimersRunInAModalDialogAndBackOrBackToQuitItWithNone) {
  write_windows({"A", "B"});
  write_dialog("D");
  open("A");
  open("B");
  widget_t* d = window_open("D");
  uint64_t before = tk_testing_now();
  widget_add_timer(
      d, [](const timer_info_t*) { return window_manager_back(window_manager()); }, 250);
  EXPECT_EQ(dialog_modal(d), DIALOG_QUIT_NONE);
  EXPECT_EQ(tk_testing_now() - before, 250u);
  tk_testing_advance(0);
  EXPECT_EQ(stack_names(), (Names{"A", "B"}));
  // back_to with a modal dialog on top quits it, and closes the rest once it is destroyed.
  d = window_open("D");
  widget_add_timer(
      d, [](const timer_info_t*) { return window_manager_back_to(window_manager(), "A"); }, 10);
  EXPECT_EQ(dialog_modal(d), DIALOG_QUIT_NONE);
  tk_testing_advance(0);
  tk_testing_advance(0);
  EXPECT_EQ(stack_names(), (Names{"A"}));
}

TEST_F(WindowStack, BadLayoutsAreNamedAndOpenNothing) {
  EXPECT_EQ(window_open("Nowhere"), nullptr);
  EXPECT_TRUE(tk_testing_log_contains("!!!Asset [name=Nowhere type=ui] not exist!!!"));
  EXPECT_TRUE(tk_testing_log_contains("ui/Nowhere.xml"));
  write_ui("Bad", "<window name=\"Bad\">\n<label name=\"x\"\n</window>");
  EXPECT_EQ(window_open("Bad"), nullptr);
  EXPECT_TRUE(tk_testing_log_contains("Bad.xml is malformed: "));
  EXPECT_TRUE(tk_testing_log_contains(" at line 3"));
  write_ui("NotAWindow", "<view name=\"v\"/>");
  EXPECT_EQ(window_open("NotAWindow"), nullptr);
  EXPECT_TRUE(tk_testing_log_contains("the root element <view> is not a window kind"));
  EXPECT_EQ(tk_testing_open_xml("Empty", ""), nullptr);
  EXPECT_TRUE(stack_names().empty());
}

TEST_F(WindowStack, UnknownAttributesAndElementsLoadWithAClearLine) {
  write_window("U", "to_modal=\"false\"",
               "<label name=\"l\" colour=\"red\"/><fancy_widget name=\"f\" w=\"10\" h=\"10\"/>");
  widget_t* u = open("U");
  ASSERT_NE(u, nullptr);
  EXPECT_STREQ(widget_get_prop_str(widget_lookup(u, "l", TRUE), "colour", nullptr), "red");
  EXPECT_TRUE(tk_testing_log_contains("<label name=\"l\">: unknown attribute \"colour\""));
  // The window's own custom properties are known and read as values.
  EXPECT_FALSE(widget_get_prop_bool(u, "to_modal", TRUE));
  EXPECT_FALSE(tk_testing_log_contains("unknown attribute \"to_modal\""));
  EXPECT_STREQ(widget_get_type(widget_lookup(u, "f", TRUE)), "view");
  EXPECT_TRUE(tk_testing_log_contains("not supported type fancy_widget"));
}

TEST_F(WindowStack, TheKeyUpOfAKeyThatOpenedAWindowIsSwallowedUnlessQueuedWithIt) {
  write_windows({"A", "B"});
  widget_t* a = open("A");
  widget_on(
      a, EVT_KEY_DOWN,
      [](void*, event_t* e) {
        if (key_event_cast(e)->key == 'o') window_open("B");
        return RET_OK;
      },
      nullptr);
  watch(a, {EVT_KEY_UP});
  watch(window_manager(), {EVT_KEY_UP});
  tk_testing_key_press('o');
  widget_t* b = window_manager_get_top_window(window_manager());
  ASSERT_STREQ(b->name, "B");
  watch(b, {EVT_KEY_UP});
  tk_testing_key_release('o');
  EXPECT_EQ(take_events(), "");
  // A later key goes to B, the new key target.
  tk_testing_key_hit('x');
  EXPECT_EQ(take_events(), "B:key_up:120 wm:key_up:120");
  // Press and release handled in one step both reach the window that was on top.
  window_close(b);
  tk_testing_advance(0);
  main_loop_post_key_event(main_loop(), TRUE, 'o');
  main_loop_post_key_event(main_loop(), FALSE, 'o');
  tk_testing_advance(0);
  EXPECT_EQ(take_events(), "A:key_up:111 wm:key_up:111");
  EXPECT_EQ(stack_names(), (Names{"A", "B"}));
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
    return dialog_quit(static_cast<widget_t*>(t->ctx), DIALOG_QUIT_OK), RET_REMOVE;
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
  write_windows({"A"});
  write_window("P", "", "<label name=\"l\"/>");
  write_dialog("D");
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
  EXPECT_EQ(take_events(), "quit ok");
  EXPECT_EQ(stack_names(), (Names{"A"}));

  // The same from a widget timer: the timer is not entered again by the nested loop, and its
  // record stays readable until its callback returns.
  s_page = open("P");
  s_ticks = 0;
  widget_add_timer(
      widget_lookup(s_page, "l", TRUE),
      [](const timer_info_t* t) {
        run_dialog();
        events_.push_back(std::string("timer ") + static_cast<widget_t*>(t->ctx)->name);
        return RET_REPEAT;
      },
      50);
  tk_testing_advance(1000);
  EXPECT_EQ(take_events(), "timer l");
  EXPECT_EQ(stack_names(), (Names{"A"}));
}
