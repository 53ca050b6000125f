// Widgets: lookup, properties, state, visibility, text, styles, geometry, layout forms, dirty
// rectangles, dumps and the locale.
#include <cstring>

#include "tk_fixture.h"

class Widgets : public ToolkitTest {
 protected:
  widget_t* open_xml(const char* body, const char* attrs = "") {
    write_window("W", attrs, body);
    return open("W");
  }
  static std::string text(widget_t* w) {
    char buf[256];
    widget_get_text_utf8(w, buf, sizeof(buf));
    return buf;
  }
};

TEST_F(Widgets, LookupIsDepthFirstInDocumentOrderAndCountsMisses) {
  widget_t* w = open_xml(
      "<view name=\"a\"><label name=\"x\" text=\"deep\"/></view><label name=\"x\" text=\"top\"/>");
  EXPECT_EQ(text(widget_lookup(w, "x", TRUE)), "deep");
  EXPECT_EQ(text(widget_lookup(w, "x", FALSE)), "top");
  EXPECT_EQ(text(widget_child(w, "x")), "top");
  EXPECT_STREQ(widget_child(w, "[0]")->name, "a");
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
  EXPECT_EQ(widget_lookup(w, "missing", TRUE), nullptr);
  EXPECT_EQ(widget_child(w, "also_missing"), nullptr);
  EXPECT_EQ(tk_testing_failed_lookups(), 2u);
  EXPECT_EQ(tk_testing_failed_lookup_names(),
            (std::vector<std::string>{"W/missing", "W/also_missing"}));
  // The window itself is not matched.
  EXPECT_EQ(widget_lookup(w, "W", TRUE), nullptr);
}

TEST_F(Widgets, ForeachVisitsPreOrderAndHonoursSkipRemoveAndStop) {
  widget_t* w =
      open_xml("<view name=\"a\"><label name=\"a1\"/></view><view name=\"b\"/><label name=\"c\"/>");
  static std::vector<std::string> seen;
  seen.clear();
  ret_t r = widget_foreach(
      w,
      [](void*, const void* data) {
        const widget_t* x = static_cast<const widget_t*>(data);
        seen.push_back(x->name);
        if (strcmp(x->name, "a") == 0) return RET_SKIP;
        if (strcmp(x->name, "b") == 0) return RET_REMOVE;
        return RET_OK;
      },
      nullptr);
  EXPECT_EQ(r, RET_OK);
  EXPECT_EQ(seen, (std::vector<std::string>{"W", "a", "b", "c"}));
  EXPECT_EQ(widget_count_children(w), 2);
  seen.clear();
  r = widget_foreach(
      w,
      [](void*, const void* data) {
        seen.push_back(static_cast<const widget_t*>(data)->name);
        return seen.size() == 2 ? RET_DONE : RET_OK;
      },
      nullptr);
  EXPECT_EQ(r, RET_DONE);
  EXPECT_EQ(seen.size(), 2u);
}

TEST_F(Widgets, NewWidgetsStartEnabledVisibleOpaqueAndNormal) {
  widget_t* w = open_xml("<label name=\"l\"/>");
  widget_t* l = widget_lookup(w, "l", TRUE);
  EXPECT_TRUE(l->enable);
  EXPECT_TRUE(l->visible);
  EXPECT_TRUE(l->sensitive);
  EXPECT_EQ(l->opacity, 0xff);
  EXPECT_STREQ(l->state, "normal");
  EXPECT_STREQ(l->vt->type, "label");
  EXPECT_EQ(l->parent, w);
  EXPECT_EQ(w->children->size, 1u);
  EXPECT_EQ(w->children->elms[0], l);
}

TEST_F(Widgets, LayoutAttributesBecomePixelsAndFlags) {
  widget_t* w = open_xml(
      "<label name=\"l\" x=\"10\" y=\"20\" w=\"30\" h=\"40\" text=\"hello\" visible=\"false\" "
      "opacity=\"128\" enable=\"false\"/>"
      "<image name=\"i\" image=\"switch_large_on\" draw_type=\"scale_auto\"/>"
      "<progress_bar name=\"p\" value=\"25\" max=\"200\"/>");
  std::string d = tk_testing_dump(w);
  EXPECT_NE(d.find("  label \"l\" visible=0 x=10 y=20 w=30 h=40 state=disable text=\"hello\" "
                   "opacity=128 enable=0"),
            std::string::npos)
      << d;
  EXPECT_NE(d.find("image \"i\" visible=1 x=0 y=0 w=0 h=0 state=normal image=\"switch_large_on\""),
            std::string::npos)
      << d;
  EXPECT_NE(d.find("progress_bar \"p\" visible=1 x=0 y=0 w=0 h=0 state=normal text=\"12%\" "
                   "value=25 max=200"),
            std::string::npos)
      << d;
  widget_t* i = widget_lookup(w, "i", TRUE);
  EXPECT_STREQ(widget_get_prop_str(i, "image", nullptr), "switch_large_on");
  EXPECT_EQ(widget_get_prop_int(i, "draw_type", -1), IMAGE_DRAW_SCALE_AUTO);
}

TEST_F(Widgets, PositionFormsAreEvaluatedAgainstTheParent) {
  widget_t* w = open_xml(
      "<view name=\"p\" x=\"0\" y=\"0\" w=\"400\" h=\"200\">"
      "<label name=\"c\" x=\"c\" y=\"m\" w=\"100\" h=\"50\"/>"
      "<label name=\"co\" x=\"c:10\" y=\"m:-5\" w=\"50%\" h=\"10%\"/>"
      "<label name=\"r\" x=\"r:10\" y=\"b:5\" w=\"-300\" h=\"20\"/>"
      "<label name=\"rp\" x=\"right:10%\" y=\"bottom\" w=\"40\" h=\"-190\"/>"
      "<label name=\"m\" x=\"m\" y=\"10\" w=\"5\" h=\"5\"/>"
      "</view>");
  auto rect = [&](const char* n) {
    widget_t* x = widget_lookup(w, n, TRUE);
    return std::vector<int>{x->x, x->y, x->w, x->h};
  };
  EXPECT_EQ(rect("c"), (std::vector<int>{150, 75, 100, 50}));
  EXPECT_EQ(rect("co"), (std::vector<int>{110, 85, 200, 20}));
  EXPECT_EQ(rect("r"), (std::vector<int>{290, 175, 100, 20}));
  EXPECT_EQ(rect("rp"), (std::vector<int>{320, 190, 40, 10}));
  EXPECT_EQ(rect("m"), (std::vector<int>{0, 10, 5, 5}));
  // A normal window fills the screen whatever its attributes say.
  EXPECT_EQ(w->w, 1280);
  EXPECT_EQ(w->h, 1024);
}

TEST_F(Widgets, APositionSetFromCodeSurvivesARelayout) {
  widget_t* w = open_xml(
      "<view name=\"p\" x=\"0\" y=\"0\" w=\"400\" h=\"200\">"
      "<label name=\"c\" x=\"c\" y=\"m\" w=\"100\" h=\"50\"/></view>");
  widget_t* c = widget_lookup(w, "c", TRUE);
  widget_t* p = widget_lookup(w, "p", TRUE);
  widget_move(c, 5, 6);
  widget_resize(p, 600, 300);
  tk_testing_advance(0);
  EXPECT_EQ(c->x, 5);
  EXPECT_EQ(c->y, 6);
  // Size forms still follow the parent when only the position was set from code.
  widget_t* l = widget_lookup(w, "c", TRUE);
  EXPECT_EQ(l->w, 100);
}

TEST_F(Widgets, ChildrenLayoutPlacesVisibleChildrenInAGrid) {
  widget_t* w = open_xml(
      "<view name=\"g\" x=\"0\" y=\"0\" w=\"320\" h=\"100\" "
      "children_layout=\"default(r=1,c=3,xm=10,s=5)\">"
      "<label name=\"a\"/><label name=\"b\"/><label name=\"c\"/></view>");
  widget_t* b = widget_lookup(w, "b", TRUE);
  EXPECT_EQ(b->x, 111);  // 10 + (96 + 5)
  EXPECT_EQ(b->w, 96);   // (320 - 2 * 10 - 2 * 5) / 3
  EXPECT_EQ(b->h, 100);
}

TEST_F(Widgets, MoveAndResizeSendTheirEventsOnlyOnChange) {
  widget_t* w = open_xml("<label name=\"l\" x=\"1\" y=\"2\" w=\"3\" h=\"4\"/>");
  widget_t* l = widget_lookup(w, "l", TRUE);
  static int moves = 0, resizes = 0;
  moves = resizes = 0;
  widget_on(
      l, EVT_MOVE, [](void*, event_t*) { return moves++, RET_OK; }, nullptr);
  widget_on(
      l, EVT_RESIZE, [](void*, event_t*) { return resizes++, RET_OK; }, nullptr);
  widget_move(l, 1, 2);
  widget_resize(l, 3, 4);
  EXPECT_EQ(moves + resizes, 0);
  widget_move(l, 10, 20);
  widget_resize(l, 30, 40);
  EXPECT_EQ(moves, 1);
  EXPECT_EQ(resizes, 1);
  widget_move_resize(l, 7, 8, 9, 10);
  EXPECT_EQ(tk_testing_screen_rect(l).x, 7);
  EXPECT_EQ(tk_testing_screen_rect(l).h, 10);
}

TEST_F(Widgets, ChangesRecordDirtyRectanglesInScreenCoordinates) {
  widget_t* w = open_xml(
      "<view name=\"v\" x=\"100\" y=\"200\" w=\"300\" h=\"100\">"
      "<label name=\"l\" x=\"10\" y=\"20\" w=\"50\" h=\"30\" text=\"a\"/></view>");
  widget_t* l = widget_lookup(w, "l", TRUE);
  tk_testing_take_dirty();
  widget_set_text_utf8(l, "a");
  EXPECT_TRUE(tk_testing_take_dirty().empty());
  widget_set_text_utf8(l, "b");
  std::vector<rect_t> d = tk_testing_take_dirty();
  ASSERT_EQ(d.size(), 1u);
  EXPECT_EQ(d[0].x, 110);
  EXPECT_EQ(d[0].y, 220);
  EXPECT_EQ(d[0].w, 50);
  EXPECT_EQ(d[0].h, 30);
  widget_move(l, 200, 20);
  d = tk_testing_take_dirty();
  ASSERT_EQ(d.size(), 2u);
  EXPECT_EQ(d[0].x, 110);
  EXPECT_EQ(d[1].x, 300);
  widget_set_visible(l, FALSE);
  EXPECT_EQ(tk_testing_take_dirty().size(), 1u);
  widget_set_text_utf8(l, "hidden");
  EXPECT_TRUE(tk_testing_take_dirty().empty());
  widget_set_style_color(w, "normal:bg_color", 0xFF0000FF);
  EXPECT_EQ(tk_testing_take_dirty().size(), 1u);
}

TEST_F(Widgets, DerivedStateDisableWinsAndFocusFollowsFocusability) {
  widget_t* w = open_xml("<view name=\"v\"><label name=\"l\"/><button name=\"b\"/></view>");
  widget_t* v = widget_lookup(w, "v", TRUE);
  widget_t* l = widget_lookup(w, "l", TRUE);
  widget_t* b = widget_lookup(w, "b", TRUE);
  // A label cannot take focus, so a "focused" state set by a page sticks.
  widget_set_state(l, "focused");
  EXPECT_NE(tk_testing_dump(l).find("state=focused"), std::string::npos);
  // A focusable widget's "focused" becomes "normal" without focus, and back.
  widget_set_state(b, "focused");
  EXPECT_NE(tk_testing_dump(b).find("state=normal"), std::string::npos);
  widget_set_focused(b, TRUE);
  EXPECT_NE(tk_testing_dump(b).find("state=focused"), std::string::npos);
  widget_set_enable(v, FALSE);
  EXPECT_NE(tk_testing_dump(l).find("state=disable"), std::string::npos);
  EXPECT_NE(tk_testing_dump(b).find("state=disable"), std::string::npos);
}

TEST_F(Widgets, StylesComeFromTheWidgetThenTheWindowFileThenTheBaseTheme) {
  write("styles/W.xml",
        "<label text_color=\"#00FF00\"><style name=\"title\"><normal font_size=\"40\"/>"
        "</style></label>");
  widget_t* w = open_xml(
      "<label name=\"plain\"/><label name=\"title\" style=\"title\"/>"
      "<label name=\"custom\" style=\"no_such_style\"/>"
      "<label name=\"inline\" style.focused.text_color=\"red\" style:normal:font_size=\"30\"/>");
  widget_t* plain = widget_lookup(w, "plain", TRUE);
  widget_t* title = widget_lookup(w, "title", TRUE);
  widget_t* custom = widget_lookup(w, "custom", TRUE);
  widget_t* in = widget_lookup(w, "inline", TRUE);
  uint32_t c = 0;
  int32_t i = 0;
  // default.xml: white labels, 24 px.
  ASSERT_TRUE(tk_testing_style_color(plain, "text_color", &c));
  EXPECT_EQ(c, 0xFFFFFFFFu);
  ASSERT_TRUE(tk_testing_style_int(plain, "font_size", &i));
  EXPECT_EQ(i, 24);
  EXPECT_EQ(tk_testing_style_str(plain, "font_name"), "default");
  // W.xml has "title": its block wins, inherited text colour included.
  ASSERT_TRUE(tk_testing_style_int(title, "font_size", &i));
  EXPECT_EQ(i, 40);
  ASSERT_TRUE(tk_testing_style_color(title, "text_color", &c));
  EXPECT_EQ(c, 0xFF00FF00u);
  // A focused label whose style has no focused state falls back to normal.
  widget_set_state(title, "focused");
  ASSERT_TRUE(tk_testing_style_int(title, "font_size", &i));
  EXPECT_EQ(i, 40);
  // An unknown style name falls back to default.
  ASSERT_TRUE(tk_testing_style_int(custom, "font_size", &i));
  EXPECT_EQ(i, 24);
  // Inline attribute forms.
  ASSERT_TRUE(tk_testing_style_int(in, "font_size", &i));
  EXPECT_EQ(i, 30);
  widget_set_state(in, "focused");
  ASSERT_TRUE(tk_testing_style_color(in, "text_color", &c));
  EXPECT_EQ(c, 0xFF0000FFu);
  EXPECT_FALSE(tk_testing_style_color(plain, "no_such_prop", &c));
}

TEST_F(Widgets, StyleOverridesApplyInExactlyTheirState) {
  widget_t* w = open_xml("<label name=\"l\"/>");
  widget_t* l = widget_lookup(w, "l", TRUE);
  EXPECT_EQ(widget_set_style_color(l, "normal:text_color", 0xFF0011FF), RET_OK);
  EXPECT_EQ(widget_set_style_color(l, "disable.bg_color", 0xFF00FF00), RET_OK);
  EXPECT_EQ(widget_set_style_int(l, "font_size", 50), RET_OK);
  uint32_t c = 0;
  int32_t i = 0;
  ASSERT_TRUE(tk_testing_style_color(l, "text_color", &c));
  EXPECT_EQ(c, 0xFF0011FFu);
  ASSERT_TRUE(tk_testing_style_int(l, "font_size", &i));
  EXPECT_EQ(i, 50);
  // Focused: the theme's focused colour, not the normal override.
  widget_set_state(l, "focused");
  ASSERT_TRUE(tk_testing_style_color(l, "text_color", &c));
  EXPECT_EQ(c, color_parse("#FFD000").color);
  widget_set_state(l, "normal");
  widget_set_enable(l, FALSE);
  ASSERT_TRUE(tk_testing_style_color(l, "bg_color", &c));
  EXPECT_EQ(c, 0xFF00FF00u);
  EXPECT_NE(tk_testing_dump(l).find("style:normal:text_color=0xFF0011FF"), std::string::npos);
  EXPECT_EQ(widget_set_style_str(l, "normal:text_align_h", "right"), RET_OK);
  widget_set_enable(l, TRUE);
  ASSERT_TRUE(tk_testing_style_int(l, "text_align_h", &i));
  EXPECT_EQ(i, ALIGN_H_RIGHT);
}

TEST_F(Widgets, TextIsAWideStringAndPropertiesKeepTheirTypes) {
  widget_t* w = open_xml("<label name=\"l\" text=\"°C 温度\" flag=\"true\" count=\"0x10\"/>");
  widget_t* l = widget_lookup(w, "l", TRUE);
  EXPECT_EQ(text(l), "°C 温度");
  EXPECT_EQ(wcscmp(widget_get_text(l), L"°C 温度"), 0);
  EXPECT_EQ(l->text.size, 5u);
  EXPECT_EQ(widget_get_prop_str(l, "text", "x"), nullptr);
  EXPECT_TRUE(widget_get_prop_bool(l, "flag", FALSE));
  EXPECT_EQ(widget_get_prop_int(l, "count", 0), 16);
  EXPECT_STREQ(widget_get_prop_str(l, "absent", "dflt"), "dflt");
  widget_set_prop_str(l, "mine", "v");
  EXPECT_STREQ(widget_get_prop_str(l, "mine", nullptr), "v");
  widget_set_text(l, L"wide");
  EXPECT_EQ(text(l), "wide");
  widget_set_value(l, 42);
  EXPECT_EQ(text(l), "42");
  EXPECT_EQ(widget_get_value_int(l), 42);
  // Variadic: an extra argument is ignored.
  EXPECT_EQ(widget_set_visible(l, FALSE, FALSE), RET_OK);
  EXPECT_FALSE(l->visible);
}

TEST_F(Widgets, ProgressBarValueTextAndVeto) {
  widget_t* w =
      open_xml("<progress_bar name=\"p\" max=\"50\"/><progress_bar name=\"f\" format=\"%d s\"/>");
  widget_t* p = widget_lookup(w, "p", TRUE);
  static int changed = 0;
  changed = 0;
  widget_on(
      p, EVT_VALUE_CHANGED, [](void*, event_t*) { return changed++, RET_OK; }, nullptr);
  progress_bar_set_value(p, 10);
  EXPECT_EQ(text(p), "20%");
  EXPECT_EQ(changed, 1);
  progress_bar_set_value(p, 10);
  EXPECT_EQ(changed, 1);
  // Stored unclamped.
  widget_set_value(p, 80);
  EXPECT_EQ(widget_get_value(p), 80);
  uint32_t veto = widget_on(
      p, EVT_VALUE_WILL_CHANGE, [](void*, event_t*) { return RET_STOP; }, nullptr);
  progress_bar_set_value(p, 5);
  EXPECT_EQ(widget_get_value(p), 80);
  widget_off(p, veto);
  widget_t* f = widget_lookup(w, "f", TRUE);
  progress_bar_set_value(f, 37.6);
  EXPECT_EQ(text(f), "37 s");
}

TEST_F(Widgets, TranslatedTextsFollowTheLocale) {
  write("strings/a.xml",
        "<string name=\"hello\"><language name=\"en_US\">Hello</language>"
        "<language name=\"zh_CN\">你好</language></string>");
  write("strings/b.xml",
        "<string name=\"bye\"><language name=\"en_US\">Bye</language>"
        "<language name=\"zh_CN\">再见</language></string>"
        "<string name=\"hello\"><language name=\"en_US\">Twice</language></string>");
  tk_testing_set_app_root(root_.c_str());
  EXPECT_TRUE(tk_testing_log_contains("key \"hello\" is defined twice (a.xml and b.xml)"));
  widget_t* w = open_xml("<label name=\"t\" tr_text=\"hello\"/><label name=\"lit\" text=\"lit\"/>");
  widget_t* t = widget_lookup(w, "t", TRUE);
  widget_t* lit = widget_lookup(w, "lit", TRUE);
  EXPECT_EQ(text(t), "Hello");
  static int changes = 0;
  changes = 0;
  widget_on(
      w, EVT_LOCALE_CHANGED, [](void*, event_t*) { return changes++, RET_OK; }, nullptr);
  EXPECT_EQ(locale_info_change(locale_info(), "zh", "CN"), RET_OK);
  EXPECT_EQ(text(t), "你好");
  EXPECT_EQ(text(lit), "lit");
  EXPECT_EQ(changes, 1);
  EXPECT_STREQ(locale_info()->language, "zh");
  EXPECT_STREQ(locale_info()->country, "CN");
  // Unchanged: nothing happens.
  locale_info_change(locale_info(), "zh", "CN");
  EXPECT_EQ(changes, 1);
  // Literal text set from code does not clear tr_text: the next change re-translates it.
  widget_set_text_utf8(t, "literal");
  locale_info_change(locale_info(), NULL, NULL);
  EXPECT_EQ(text(t), "Hello");
  EXPECT_STREQ(locale_info_tr(locale_info(), "bye"), "Bye");
  EXPECT_STREQ(locale_info_tr(locale_info(), "unknown_key"), "unknown_key");
  widget_set_tr_text(t, NULL);
  locale_info_change(locale_info(), "zh", "CN");
  EXPECT_EQ(text(t), "Hello");
}
