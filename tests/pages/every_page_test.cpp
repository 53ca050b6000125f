// Every page of the page table (src/pages/page_list.h) that has a layout, opened by name through
// the navigator in each of the seven languages on the desktop toolkit, with the records of a scope
// that has reported its first full status and a null context:
//   - the toolkit counted no failed widget lookup;
//   - every text fits its widget (measured with the tree's font at the widget's style);
//   - every translated text has a translation in that language;
//   - nothing logs an error or a missing asset;
//   - after its timers have run for a while, the page and whatever it opened close cleanly:
//     no window, no timer and no widget left behind, nothing logged.
// The cases come from the table, so a page added there (with its layout) is checked without a
// line here. A case is named <page>_<language>; each failure names the window, the widget path
// and the language.
#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "common/common_function.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "page_fixture.h"
#include "pages/page_list.h"
#include "tk_testing.h"

namespace {

// Time the page runs before it is closed: the boot logo's 5 s, tips and flashes all end in it.
constexpr uint32_t kRunMs = 6000;
// Time after closing, for any timer left behind to fire: past the longest period in use (60 s).
constexpr uint32_t kAfterCloseMs = 61000;

#define PAGE_NAME(name) #name,
constexpr const char* kPageTable[] = {PAGE_LIST(PAGE_NAME)};
#undef PAGE_NAME

struct Case {
  std::string page;
  int language;  // index into language_table
};
void PrintTo(const Case& c, std::ostream* os) {
  *os << c.page << " in " << language_table[c.language].locale;
}

bool has_layout(const std::string& page) {
  return std::filesystem::exists(std::string(SCOPE_UI_DIR) + "/" + page + ".xml");
}

std::vector<Case> cases() {
  std::vector<Case> out;
  for (const char* page : kPageTable) {
    if (!has_layout(page)) continue;
    for (int l = 0; l < static_cast<int>(language_table.size()); ++l)
      out.push_back({page, l});
  }
  return out;
}

std::string text_of(widget_t* w) {
  char buf[512] = {0};
  widget_get_text_utf8(w, buf, sizeof(buf));
  return buf;
}

std::string name_of(widget_t* w) {
  if (w->name != nullptr && *w->name != '\0') return w->name;
  // An unnamed widget by its kind and place among its siblings.
  int index = 0;
  if (w->parent != nullptr && w->parent->children != nullptr) {
    for (uint32_t i = 0; i < w->parent->children->size; ++i) {
      if (w->parent->children->elms[i] == w) index = static_cast<int>(i);
    }
  }
  const char* kind = w->vt != nullptr && w->vt->type != nullptr ? w->vt->type : "widget";
  return std::string(kind) + "[" + std::to_string(index) + "]";
}

class EveryPage : public page_test::PageTest, public ::testing::WithParamInterface<Case> {
 protected:
  const char* locale() const { return language_table[GetParam().language].locale; }
  // "Zavo_menu1 [de_DE]": the prefix of every failure.
  std::string where() const { return GetParam().page + " [" + locale() + "]"; }

  // Every widget of every open window: texts that do not fit or lack a translation.
  void check_texts(const std::string& when) {
    widget_t* wm = window_manager();
    for (uint32_t i = 0; wm->children != nullptr && i < wm->children->size; ++i) {
      widget_t* win = static_cast<widget_t*>(wm->children->elms[i]);
      check_subtree(win, name_of(win), when);
    }
  }

  void check_subtree(widget_t* w, const std::string& path, const std::string& when) {
    const std::string text = text_of(w);
    // Each text of a widget is judged once, whenever it is first seen.
    if (!text.empty() && judged_.insert(path + '\0' + text).second) {
      const int width = tk_testing_text_width(w);
      const int room = tk_testing_text_room(w);
      const std::string hidden = w->visible ? "" : " (hidden)";
      if (width < 0) {
        ADD_FAILURE() << where() << " " << when << ": " << path << hidden << ": the font of \""
                      << text << "\" is missing (" << tk_testing_style_str(w, "font_name") << ")";
      } else if (width > room) {
        int32_t size = 0;
        tk_testing_style_int(w, "font_size", &size);
        ADD_FAILURE() << where() << " " << when << ": " << path << hidden << ": \"" << text
                      << "\" is " << width << " px wide at font size " << size
                      << ", its widget has " << room << " px";
      }
      if (w->tr_text != nullptr && *w->tr_text != '\0' && text == w->tr_text) {
        ADD_FAILURE() << where() << " " << when << ": " << path << ": tr_text \"" << w->tr_text
                      << "\" has no " << locale() << " translation";
      }
    }
    for (uint32_t i = 0; w->children != nullptr && i < w->children->size; ++i) {
      widget_t* child = static_cast<widget_t*>(w->children->elms[i]);
      check_subtree(child, path + "/" + name_of(child), when);
    }
  }

  // Failed lookups and error lines since the last check.
  void check_lookups_and_log(const std::string& when) {
    for (const std::string& miss : tk_testing_failed_lookup_names())
      ADD_FAILURE() << where() << " " << when << ": failed widget lookup " << miss;
    tk_testing_clear_failed_lookups();
    const std::vector<std::string> lines = tk_testing_log_lines();
    for (size_t i = log_seen_; i < lines.size(); ++i) {
      const std::string& l = lines[i];
      if (l.starts_with("error:") || l.find("not exist!!!") != std::string::npos)
        ADD_FAILURE() << where() << " " << when << ": logged \"" << l << "\"";
    }
    log_seen_ = lines.size();
  }

  void check(const std::string& when) {
    check_texts(when);
    check_lookups_and_log(when);
  }

  // A page that is a modal dialog runs its own loop inside the navigator's open: this timer, due
  // in that loop once the dialog is up, checks it and ends the dialog.
  static ret_t on_modal_check(const timer_info_t* info) {
    auto* self = static_cast<EveryPage*>(info->ctx);
    self->modal_timer_ = 0;
    widget_t* top = window_manager_get_top_window(window_manager());
    if (top != nullptr && widget_is_dialog(top) && top->name != nullptr &&
        self->GetParam().page == top->name) {
      self->check("on opening (modal dialog)");
      dialog_quit(top, DIALOG_QUIT_OK);
    }
    return RET_REMOVE;
  }

  std::set<std::string> judged_;
  size_t log_seen_ = 0;
  uint32_t modal_timer_ = 0;
};

TEST_P(EveryPage, OpensFitsItsTextsAndClosesCleanly) {
  const Case& c = GetParam();
  advance(0);
  const uint32_t timers_before = tk_testing_timer_count();
  const uint32_t widgets_before = tk_testing_widget_count();

  // The page's language: the device's setting (pages that apply it) and the toolkit's locale.
  stDevStatus.s8Language = static_cast<int8_t>(c.language);
  ASSERT_EQ(change_locale(locale()), RET_OK) << where();
  tk_testing_clear_failed_lookups();
  tk_testing_capture_log(true);

  modal_timer_ = timer_add(on_modal_check, this, 1);
  widget_t* win = open(c.page.c_str(), nullptr);
  if (modal_timer_ != 0) timer_remove(modal_timer_);
  ASSERT_TRUE(win != nullptr || tk_testing_window_names().empty())
      << where() << ": the navigator did not open the window (is it in the page table?)";
  tk_testing_paint();
  check("on opening");

  advance(kRunMs);
  tk_testing_paint();
  check("after " + std::to_string(kRunMs) + " ms");

  // Close what is open, top first, as pages close: the close sequence, then the burial.
  for (int guard = 0; guard < 16 && !tk_testing_window_names().empty(); ++guard) {
    widget_t* top = window_manager_get_top_window(window_manager());
    if (top == nullptr) break;
    window_close(top);
    advance(0);
    // A window that refuses the close (closable="no") goes anyway.
    if (window_manager_get_top_window(window_manager()) == top) {
      window_close_force(top);
      advance(0);
    }
  }
  EXPECT_TRUE(tk_testing_window_names().empty()) << where() << ": windows left open";
  advance(kAfterCloseMs);
  check_lookups_and_log("after closing");
  EXPECT_LE(tk_testing_timer_count(), timers_before)
      << where() << ": timers left running " << kAfterCloseMs << " ms after the page closed";
  EXPECT_EQ(tk_testing_widget_count(), widgets_before)
      << where() << ": widgets not freed after the page closed";
}

std::string case_name(const ::testing::TestParamInfo<Case>& info) {
  return info.param.page + "_" + language_table[info.param.language].locale;
}

INSTANTIATE_TEST_SUITE_P(AllPages, EveryPage, ::testing::ValuesIn(cases()), case_name);

// The cases above come from the navigator's own table: every name opens through it.
TEST(EveryPageTable, TheCheckedNamesAreTheNavigatorsPages) {
  EXPECT_EQ(static_cast<int>(std::size(kPageTable)), PAGE_COUNT);
  size_t with_layout = 0;
  for (const char* page : kPageTable) {
    EXPECT_NE(navigator_find_page(page), nullptr) << page;
    with_layout += has_layout(page) ? 1 : 0;
  }
  EXPECT_GE(with_layout, 4u) << "the layouts folder is " SCOPE_UI_DIR;
}

// Every page's init refuses a missing window: RET_BAD_PARAMS and the argument line naming it.
TEST(EveryPageTable, EveryInitRefusesAMissingWindowWithItsName) {
  for (const char* page : kPageTable) {
    ret_t ret = RET_OK;
    const std::string out =
        page_test::printed([&] { ret = navigator_find_page(page)(nullptr, nullptr); });
    EXPECT_EQ(ret, RET_BAD_PARAMS) << page;
    EXPECT_EQ(out.rfind(std::string(page) + "_init:", 0), 0u) << out;
    EXPECT_NE(out.find(" condition(win != NULL) failed!\n"), std::string::npos) << out;
  }
}

}  // namespace
