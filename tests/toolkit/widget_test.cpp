// Widgets: lookup, properties, state, visibility, text, styles, geometry, layout forms, dirty
// rectangles, dumps and the locale.
#include <cstring>

#include "tk_fixture.h"

class Widgets : public ToolkitTest {
 protected:
  widget_t* open_xml(const char* body, const char* attrs = "") {
    write_window("W", attrs, body);
    return win_ = open("W");
  }
  widget_t* w(const char* name) const { return widget_lookup(win_, name, TRUE); }
  std::vector<int> rect(const char* name) const {
    widget_t* x = w(name);
    return {x->x, x->y, x->w, x->h};
  }
  widget_t* win_ = nullptr;
};

TEST_F(Widgets, LookupIsDepthFirstInDocumentOrderAndCountsMisses) {
  open_xml(
      "<view name=\"a\"><label name=\"x\" text=\"deep\"/></view><label name=\"x\" text=\"top\"/>");
  EXPECT_EQ(text(w("x")), "deep");
  EXPECT_EQ(text(widget_lookup(win_, "x", FALSE)), "top");
  EXPECT_EQ(text(widget_child(win_, "x")), "top");
  EXPECT_STREQ(widget_child(win_, "[0]")->name, "a");
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
  EXPECT_EQ(w("missing"), nullptr);
  EXPECT_EQ(widget_child(win_, "also_missing"), nullptr);
  // The window itself is not matched.
  EXPECT_EQ(w("W"), nullptr);
  EXPECT_EQ(tk_testing_failed_lookup_names(), (Names{"W/missing", "W/also_missing", "W/W"}));
}

TEST_F(Widgets, ForeachVisitsPreOrderAndHonoursSkipRemoveAndStop) {
  open_xml("<view name=\"a\"><label name=\"a1\"/></view><view name=\"b\"/><label name=\"c\"/>");
  static Names seen;
  seen.clear();
  auto visit = [](void*, const void* data) {
    const char* name = static_cast<const widget_t*>(data)->name;
    seen.push_back(name);
    if (seen.size() == 6) return RET_DONE;
    if (strcmp(name, "a") == 0) return RET_SKIP;
    return strcmp(name, "b") == 0 ? RET_REMOVE : RET_OK;
  };
  EXPECT_EQ(widget_foreach(win_, visit, nullptr), RET_OK);
  EXPECT_EQ(seen, (Names{"W", "a", "b", "c"}));
  EXPECT_EQ(widget_count_children(win_), 2);
  EXPECT_EQ(widget_foreach(win_, visit, nullptr), RET_DONE);
  EXPECT_EQ(seen, (Names{"W", "a", "b", "c", "W", "a"}));
}

TEST_F(Widgets, LayoutAttributesBecomePixelsFlagsAndWidgetData) {
  open_xml(
      "<label name=\"l\" x=\"10\" y=\"20\" w=\"30\" h=\"40\" text=\"hello\" visible=\"false\" "
      "opacity=\"128\" enable=\"false\"/><label name=\"fresh\"/>"
      "<image name=\"i\" image=\"switch_large_on\" draw_type=\"scale_auto\"/>"
      "<progress_bar name=\"p\" value=\"25\" max=\"200\"/>");
  std::string d = tk_testing_dump(win_);
  for (const char* line :
       {"\n  label \"l\" visible=0 x=10 y=20 w=30 h=40 state=disable text=\"hello\" opacity=128 "
        "enable=0\n",
        "\n  label \"fresh\" visible=1 x=0 y=0 w=0 h=0 state=normal\n",
        "\n  image \"i\" visible=1 x=0 y=0 w=0 h=0 state=normal image=\"switch_large_on\"\n",
        "\n  progress_bar \"p\" visible=1 x=0 y=0 w=0 h=0 state=normal text=\"12%\" value=25 "
        "max=200\n"}) {
    EXPECT_NE(d.find(line), std::string::npos) << line << " in\n" << d;
  }
  EXPECT_TRUE(w("fresh")->parent == win_ && win_->children->elms[1] == w("fresh"));
  EXPECT_STREQ(widget_get_prop_str(w("i"), "image", nullptr), "switch_large_on");
  EXPECT_EQ(widget_get_prop_int(w("i"), "draw_type", -1), IMAGE_DRAW_SCALE_AUTO);
}

TEST_F(Widgets, PositionFormsFollowTheParentUntilCodeSetsThePosition) {
  open_xml(
      "<view name=\"p\" x=\"0\" y=\"0\" w=\"400\" h=\"200\">"
      "<label name=\"c\" x=\"c\" y=\"m\" w=\"100\" h=\"50\"/>"
      "<label name=\"co\" x=\"c:10\" y=\"m:-5\" w=\"50%\" h=\"10%\"/>"
      "<label name=\"r\" x=\"r:10\" y=\"b:5\" w=\"-300\" h=\"20\"/>"
      "<label name=\"rp\" x=\"right:10%\" y=\"bottom\" w=\"40\" h=\"-190\"/>"
      "<label name=\"m\" x=\"m\" y=\"center\" w=\"5\" h=\"5\"/>"
      "<label name=\"huge\" x=\"1e30%\" y=\"0\" w=\"-2147483648\" h=\"5\"/>"
      "</view>");
  EXPECT_EQ(rect("c"), (std::vector<int>{150, 75, 100, 50}));
  EXPECT_EQ(rect("co"), (std::vector<int>{110, 85, 200, 20}));
  EXPECT_EQ(rect("r"), (std::vector<int>{290, 175, 100, 20}));
  EXPECT_EQ(rect("rp"), (std::vector<int>{320, 190, 40, 10}));
  // x="m" gives 0; y="center" means undefined.
  EXPECT_EQ(rect("m"), (std::vector<int>{0, 0, 5, 5}));
  // Out-of-range numbers are clamped, not overflowed.
  EXPECT_EQ(rect("huge"), (std::vector<int>{INT32_MAX, 0, 400 - 2147483648LL, 5}));
  // A normal window fills the screen whatever its attributes say.
  EXPECT_EQ((std::vector<int>{win_->x, win_->y, win_->w, win_->h}),
            (std::vector<int>{0, 0, 1280, 1024}));
  // Moved from code, the position stays through a relayout; the size still follows its form.
  widget_move(w("c"), 5, 6);
  widget_resize(w("p"), 600, 300);
  tk_testing_advance(0);
  EXPECT_EQ(rect("c"), (std::vector<int>{5, 6, 100, 50}));
  EXPECT_EQ(rect("co"), (std::vector<int>{160, 130, 300, 30}));
}

TEST_F(Widgets, GeometryChangesSendEventsAndDirtyTheirScreenArea) {
  open_xml(
      "<view name=\"v\" x=\"100\" y=\"200\" w=\"300\" h=\"100\">"
      "<label name=\"l\" x=\"10\" y=\"20\" w=\"50\" h=\"30\" text=\"a\"/></view>");
  widget_t* l = w("l");
  watch(l, {EVT_MOVE, EVT_RESIZE, EVT_MOVE_RESIZE});
  auto dirty = [] {
    std::vector<std::vector<int>> out;
    for (const rect_t& r : tk_testing_take_dirty())
      out.push_back({r.x, r.y, r.w, r.h});
    return out;
  };
  using Rects = std::vector<std::vector<int>>;
  dirty();
  widget_set_text_utf8(l, "a");
  widget_move(l, 10, 20);
  widget_resize(l, 50, 30);
  EXPECT_EQ(take_events(), "");
  EXPECT_EQ(dirty(), Rects{});
  widget_set_text_utf8(l, "b");
  EXPECT_EQ(dirty(), (Rects{{110, 220, 50, 30}}));
  widget_move(l, 200, 20);
  EXPECT_EQ(dirty(), (Rects{{110, 220, 50, 30}, {300, 220, 50, 30}}));
  widget_resize(l, 60, 30);
  widget_move_resize(l, 7, 8, 9, 10);
  EXPECT_EQ(take_events(), "l:281 l:283 l:285");
  EXPECT_EQ(tk_testing_screen_rect(l).x, 107);
  dirty();
  widget_set_visible(l, FALSE);
  EXPECT_EQ(dirty(), (Rects{{107, 208, 9, 10}}));
  widget_set_text_utf8(l, "hidden");
  EXPECT_EQ(dirty(), Rects{});
  widget_set_style_color(win_, "normal:bg_color", 0xFF0000FF);
  EXPECT_EQ(dirty(), (Rects{{0, 0, 1280, 1024}}));
}

TEST_F(Widgets, DerivedStateDisableWinsAndFocusFollowsFocusability) {
  open_xml("<view name=\"v\"><label name=\"l\"/><button name=\"b\"/></view>");
  auto state = [this](const char* name) {
    return std::string(widget_get_state_for_style(w(name), FALSE, FALSE));
  };
  // A label cannot take focus, so a "focused" state set by a page sticks; a focusable widget's
  // "focused" becomes "normal" without focus, and back.
  widget_set_state(w("l"), "focused");
  widget_set_state(w("b"), "focused");
  EXPECT_EQ(state("l") + " " + state("b"), "focused normal");
  widget_set_focused(w("b"), TRUE);
  EXPECT_EQ(state("b"), "focused");
  widget_set_enable(w("v"), FALSE);
  EXPECT_EQ(state("l") + " " + state("b"), "disable disable");
}

TEST_F(Widgets, StylesComeFromTheWidgetThenTheWindowFileThenTheBaseTheme) {
  write("styles/W.xml",
        "<label text_color=\"#00FF00\"><style name=\"title\"><normal font_size=\"40\"/>"
        "</style></label>");
  open_xml(
      "<label name=\"plain\"/><label name=\"title\" style=\"title\"/>"
      "<label name=\"custom\" style=\"no_such_style\"/>"
      "<label name=\"inline\" style.focused.text_color=\"red\" style:normal:font_size=\"30\"/>");
  auto color = [this](const char* name, const char* prop) {
    uint32_t c = 0;
    EXPECT_TRUE(tk_testing_style_color(w(name), prop, &c)) << name << " " << prop;
    return c;
  };
  auto size = [this](const char* name) {
    int32_t i = 0;
    EXPECT_TRUE(tk_testing_style_int(w(name), "font_size", &i)) << name;
    return i;
  };
  // default.xml: white labels, 24 px, font "default".
  EXPECT_EQ(color("plain", "text_color"), 0xFFFFFFFFu);
  EXPECT_EQ(size("plain"), 24);
  EXPECT_EQ(tk_testing_style_str(w("plain"), "font_name"), "default");
  // W.xml has "title": its block wins, the inherited text colour included; a focused label
  // whose style has no focused state falls back to normal.
  EXPECT_EQ(size("title"), 40);
  EXPECT_EQ(color("title", "text_color"), 0xFF00FF00u);
  widget_set_state(w("title"), "focused");
  EXPECT_EQ(size("title"), 40);
  // An unknown style name falls back to default; the inline attribute forms apply per state.
  EXPECT_EQ(size("custom"), 24);
  EXPECT_EQ(size("inline"), 30);
  widget_set_state(w("inline"), "focused");
  EXPECT_EQ(color("inline", "text_color"), 0xFF0000FFu);
  uint32_t c;
  EXPECT_FALSE(tk_testing_style_color(w("plain"), "no_such_prop", &c));
  // Values set from code apply in exactly their state: focused, the theme's focused colour
  // shows, not the normal override; disabled, the disable one.
  widget_t* l = w("plain");
  EXPECT_EQ(widget_set_style_color(l, "normal:text_color", 0xFF0011FF), RET_OK);
  EXPECT_EQ(widget_set_style_color(l, "disable.bg_color", 0xFF00FF00), RET_OK);
  EXPECT_EQ(widget_set_style_int(l, "font_size", 50), RET_OK);
  EXPECT_EQ(widget_set_style_str(l, "normal:text_align_h", "right"), RET_OK);
  EXPECT_EQ(widget_set_style_int(l, std::string(256, 'x').c_str(), 1), RET_BAD_PARAMS);
  EXPECT_EQ(color("plain", "text_color"), 0xFF0011FFu);
  EXPECT_EQ(size("plain"), 50);
  int32_t align = 0;
  EXPECT_TRUE(tk_testing_style_int(l, "text_align_h", &align) && align == ALIGN_H_RIGHT);
  EXPECT_NE(tk_testing_dump(l).find("style:normal:text_color=0xFF0011FF"), std::string::npos);
  widget_set_state(l, "focused");
  EXPECT_EQ(color("plain", "text_color"), color_parse("#FFD000").color);
  widget_set_enable(l, FALSE);
  EXPECT_EQ(color("plain", "bg_color"), 0xFF00FF00u);
}

TEST_F(Widgets, TextIsAWideStringAndPropertiesKeepTheirTypes) {
  open_xml("<label name=\"l\" text=\"°C 温度\" flag=\"true\" count=\"0x10\"/>");
  widget_t* l = w("l");
  EXPECT_EQ(wcscmp(widget_get_text(l), L"°C 温度"), 0);
  EXPECT_EQ(widget_get_prop_str(l, "text", "x"), nullptr);
  EXPECT_TRUE(widget_get_prop_bool(l, "flag", FALSE));
  EXPECT_EQ(widget_get_prop_int(l, "count", 0), 16);
  EXPECT_STREQ(widget_get_prop_str(l, "absent", "dflt"), "dflt");
  widget_set_prop_int(l, "mine", 7);
  EXPECT_EQ(widget_get_prop_int(l, "mine", 0), 7);
  EXPECT_EQ(widget_get_prop_str(l, "mine", nullptr), nullptr);  // a number, not a string
  widget_set_value(l, 42);
  EXPECT_EQ(text(l), "42");
  EXPECT_EQ(widget_get_value_int(l), 42);
  // Variadic: an extra argument is ignored.
  EXPECT_EQ(widget_set_visible(l, FALSE, FALSE), RET_OK);
  EXPECT_FALSE(l->visible);
}

TEST_F(Widgets, ProgressBarValueTextVetoAndFormat) {
  open_xml(
      "<progress_bar name=\"p\" max=\"50\"/><progress_bar name=\"f\" format=\"%d s\"/>"
      "<progress_bar name=\"bad\" format=\"%s\"/>");
  widget_t* p = w("p");
  watch(p, {EVT_VALUE_CHANGED});
  progress_bar_set_value(p, 10);
  progress_bar_set_value(p, 10);
  EXPECT_EQ(text(p), "20%");
  EXPECT_EQ(take_events(), "p:14");
  // Stored unclamped; RET_STOP on the will-change event vetoes.
  widget_set_value(p, 80);
  EXPECT_EQ(widget_get_value(p), 80);
  ret_t stop = RET_STOP;
  widget_on(p, EVT_VALUE_WILL_CHANGE, record, &stop);
  progress_bar_set_value(p, 5);
  EXPECT_EQ(widget_get_value(p), 80);
  progress_bar_set_value(w("f"), 37.6);
  EXPECT_EQ(text(w("f")), "37 s");
  progress_bar_set_format(w("f"), "%.1f%% done");
  EXPECT_EQ(text(w("f")), "37.6% done");
  // A format that is not one number shows the percentage, with a line.
  progress_bar_set_value(w("bad"), 40);
  EXPECT_EQ(text(w("bad")), "40%");
  EXPECT_TRUE(tk_testing_log_contains("format \"%s\" is not a format for one number"));
}

TEST_F(Widgets, TranslatedTextsFollowTheLocale) {
  write("strings/a.xml",
        "<string name=\"hello\"><language name=\"en_US\">Hello</language>"
        "<language name=\"zh_CN\">你好</language></string>");
  write("strings/b.xml",
        "<string name=\"bye\"><language name=\"en_US\">Bye</language></string>"
        "<string name=\"hello\"><language name=\"en_US\">Twice</language></string>");
  tk_testing_set_app_root(root_.c_str());
  EXPECT_TRUE(tk_testing_log_contains("key \"hello\" is defined twice (a.xml and b.xml)"));
  open_xml("<label name=\"t\" tr_text=\"hello\"/><label name=\"lit\" text=\"lit\"/>");
  widget_t* t = w("t");
  EXPECT_EQ(text(t), "Hello");
  watch(win_, {EVT_LOCALE_CHANGED});
  EXPECT_EQ(locale_info_change(locale_info(), "zh", "CN"), RET_OK);
  EXPECT_EQ(text(t) + " " + text(w("lit")), "你好 lit");
  EXPECT_EQ(take_events(), "W:290");
  EXPECT_STREQ(locale_info()->language, "zh");
  EXPECT_STREQ(locale_info()->country, "CN");
  // Unchanged: nothing happens.
  locale_info_change(locale_info(), "zh", "CN");
  EXPECT_EQ(take_events(), "");
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
