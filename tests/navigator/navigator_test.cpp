// The navigator: opening, replacing, switching, closing and going back by window name, through
// the host toolkit under the test clock. The layouts come from a temporary app root written by
// the fixture, named after pages of the page table (their minimal inits) and one outside it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "common/navigator.h"
#include "pages/page_list.h"
#include "tk_testing.h"

namespace fs = std::filesystem;

namespace {

template <typename Fn>
std::string printed_by(Fn fn) {
  ::testing::internal::CaptureStdout();
  fn();
  fflush(stdout);
  return ::testing::internal::GetCapturedStdout();
}

int count(const std::vector<std::string>& names, const std::string& name) {
  return static_cast<int>(std::count(names.begin(), names.end(), name));
}

int occurrences(const std::string& text, const std::string& what) {
  int n = 0;
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
    ++n;
  return n;
}

class Navigator : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    char pattern[] = "/tmp/scope-nav-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    app_root_ = pattern;
    const fs::path ui = app_root_ / "assets/default/raw/ui";
    fs::create_directories(ui);
    const auto layout = [&](const char* name, const std::string& xml) {
      std::ofstream(ui / (std::string(name) + ".xml")) << xml;
    };
    layout("Zavo_Settings",
           R"(<window name="Zavo_Settings"><label name="l" x="0" y="0" w="9" h="9"/></window>)");
    layout("Zavo_Info", R"(<window name="Zavo_Info" single_instance="true"/>)");
    layout("Zavo_Reset", R"(<window name="Zavo_Reset" closable="confirm"/>)");
    layout("Zavo_USB", R"(<window name="Zavo_USB" closable="no"/>)");
    layout("Zavo_SHUT_DOWN", R"(<dialog name="Zavo_SHUT_DOWN" x="340" y="312" w="600" h="400"/>)");
    layout("Zavo_Restoring",
           R"(<dialog name="Zavo_Restoring" x="340" y="312" w="600" h="400" to_modal="false"/>)");
    layout("outside_table", R"(<window name="outside_table"/>)");
    tk_testing_init_ex(1280, 1024, app_root_.c_str());
  }
  static void TearDownTestSuite() { fs::remove_all(app_root_); }

  void SetUp() override {
    tk_testing_reset();
    tk_testing_capture_log(true);
  }

  // navigator_to plus the open sequence; returns its result.
  static ret_t open(const char* name) {
    const ret_t ret = navigator_to(name);
    tk_testing_advance(0);
    return ret;
  }
  static std::string top() {
    const std::vector<std::string> names = tk_testing_window_names();
    return names.empty() ? "" : names.back();
  }

  static fs::path app_root_;
};
fs::path Navigator::app_root_;

TEST(PageTable, EveryNameIsBoundToTheInitOfTheSameName) {
  int checked = 0;
#define CHECK_PAGE(name)                                                               \
  {                                                                                    \
    page_init_t init = navigator_find_page(#name);                                     \
    ASSERT_NE(init, nullptr) << #name;                                                 \
    ret_t ret = RET_OK;                                                                \
    const std::string out = printed_by([&] { ret = init(NULL, NULL); });               \
    EXPECT_EQ(ret, RET_BAD_PARAMS) << #name;                                           \
    EXPECT_NE(out.find(#name "_init:"), std::string::npos) << out;                     \
    EXPECT_NE(out.find("condition(win != NULL) failed!\n"), std::string::npos) << out; \
    ++checked;                                                                         \
  }
  PAGE_LIST(CHECK_PAGE, CHECK_PAGE)
#undef CHECK_PAGE
  EXPECT_EQ(checked, 48);
  EXPECT_EQ(navigator_find_page("Zavo_menu3"), nullptr);
  EXPECT_EQ(navigator_find_page("zavo_menu1"), nullptr);
  EXPECT_EQ(navigator_find_page(nullptr), nullptr);
}

TEST_F(Navigator, EmptyOrMissingTargetIsRefusedEverywhere) {
  const std::string out = printed_by([] {
    EXPECT_EQ(navigator_to(""), RET_BAD_PARAMS);
    EXPECT_EQ(navigator_to(nullptr), RET_BAD_PARAMS);
    EXPECT_EQ(navigator_replace(""), RET_BAD_PARAMS);
    EXPECT_EQ(navigator_switch_to(nullptr, TRUE), RET_BAD_PARAMS);
    EXPECT_EQ(navigator_close(""), RET_BAD_PARAMS);
    EXPECT_EQ(navigator_request_close(nullptr), RET_BAD_PARAMS);
  });
  tk_testing_advance(0);
  EXPECT_TRUE(tk_testing_window_names().empty());
  EXPECT_EQ(occurrences(out, "navigator_to_with_context:"), 2) << out;
  EXPECT_NE(out.find("navigator_replace:"), std::string::npos) << out;
  EXPECT_NE(out.find("navigator_switch_to:"), std::string::npos) << out;
  EXPECT_NE(out.find("navigator_close:"), std::string::npos) << out;
  EXPECT_NE(out.find("navigator_request_close:"), std::string::npos) << out;
  EXPECT_EQ(occurrences(out, " condition(target != NULL &&* target != '\\0') failed!\n"), 6) << out;
  // The same lines reach the toolkit's log at error level.
  EXPECT_TRUE(tk_testing_log_contains("condition(target != NULL &&* target != '\\0') failed!"));
}

TEST_F(Navigator, UnknownWindowFails) {
  const std::string out = printed_by([] { EXPECT_EQ(open("Zavo_menu3"), RET_FAIL); });
  EXPECT_TRUE(tk_testing_window_names().empty());
  EXPECT_NE(out.find("navigator_window_open_and_close:"), std::string::npos) << out;
  EXPECT_NE(out.find(" condition(win != NULL) failed!\n"), std::string::npos) << out;
}

TEST_F(Navigator, PageOpensWithItsInitAndOthersWithout) {
  std::string out = printed_by([] { EXPECT_EQ(open("Zavo_Settings"), RET_OK); });
  EXPECT_EQ(top(), "Zavo_Settings");
  EXPECT_NE(out.find("name  =============Zavo_Settings\n"), std::string::npos) << out;

  out = printed_by([] { EXPECT_EQ(open("outside_table"), RET_OK); });
  EXPECT_EQ(top(), "outside_table");
  EXPECT_EQ(out.find("name  ="), std::string::npos) << out;
}

TEST_F(Navigator, SingleInstancePageReopensOnAFreshWindow) {
  ASSERT_EQ(open("Zavo_Info"), RET_OK);
  widget_set_prop_str(widget_child(window_manager(), "Zavo_Info"), "opened", "first");
  const std::string out = printed_by([] { EXPECT_EQ(open("Zavo_Info"), RET_OK); });
  EXPECT_EQ(tk_testing_window_names(), std::vector<std::string>{"Zavo_Info"});
  widget_t* fresh = widget_child(window_manager(), "Zavo_Info");
  ASSERT_NE(fresh, nullptr);
  EXPECT_STREQ(widget_get_prop_str(fresh, "opened", "none"), "none");
  EXPECT_NE(out.find("name  =============Zavo_Info\n"), std::string::npos) << "init ran again";

  // Without the property a second window opens above the first.
  ASSERT_EQ(open("Zavo_Settings"), RET_OK);
  ASSERT_EQ(open("Zavo_Settings"), RET_OK);
  EXPECT_EQ(count(tk_testing_window_names(), "Zavo_Settings"), 2);
}

TEST_F(Navigator, SwitchToAnOpenWindowBringsItUpWithoutReopening) {
  ASSERT_EQ(open("Zavo_Settings"), RET_OK);
  ASSERT_EQ(open("Zavo_Info"), RET_OK);
  const std::string out =
      printed_by([] { EXPECT_EQ(navigator_switch_to("Zavo_Settings", FALSE), RET_OK); });
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_window_names(), (std::vector<std::string>{"Zavo_Info", "Zavo_Settings"}));
  EXPECT_EQ(out.find("name  ="), std::string::npos) << "switching must not run the init";

  EXPECT_EQ(navigator_switch_to("Zavo_Info", TRUE), RET_OK);
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_window_names(), std::vector<std::string>{"Zavo_Info"});

  // A window that is not open is opened.
  EXPECT_EQ(navigator_switch_to("Zavo_Settings", TRUE), RET_OK);
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_window_names(), (std::vector<std::string>{"Zavo_Info", "Zavo_Settings"}));
}

TEST_F(Navigator, ReplaceClosesTheTopMainWindow) {
  ASSERT_EQ(open("Zavo_Settings"), RET_OK);
  ASSERT_EQ(open("Zavo_Info"), RET_OK);
  EXPECT_EQ(navigator_replace("Zavo_Reset"), RET_OK);
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_window_names(), (std::vector<std::string>{"Zavo_Settings", "Zavo_Reset"}));
  EXPECT_TRUE(tk_testing_log_contains("close current window: Zavo_Info"));
}

TEST_F(Navigator, CloseNeedsAnOpenWindow) {
  ASSERT_EQ(open("Zavo_Settings"), RET_OK);
  ASSERT_EQ(open("Zavo_Info"), RET_OK);
  EXPECT_EQ(navigator_close("Zavo_Settings"), RET_OK);
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_window_names(), std::vector<std::string>{"Zavo_Info"});
  const std::string out = printed_by([] { EXPECT_EQ(navigator_close("Zavo_Settings"), RET_FAIL); });
  EXPECT_NE(out.find("navigator_close:"), std::string::npos) << out;
  EXPECT_NE(out.find(" condition(win != NULL) failed!\n"), std::string::npos) << out;
}

TEST_F(Navigator, RequestCloseLetsThePageRefuse) {
  ASSERT_EQ(open("Zavo_Reset"), RET_OK);  // closable="confirm": the page decides
  int asked = 0;
  widget_on(
      widget_child(window_manager(), "Zavo_Reset"), EVT_REQUEST_CLOSE_WINDOW,
      [](void* ctx, event_t*) -> ret_t {
        ++*static_cast<int*>(ctx);
        return RET_OK;  // refused: the window stays
      },
      &asked);
  EXPECT_EQ(navigator_request_close("Zavo_Reset"), RET_OK);
  tk_testing_advance(0);
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(tk_testing_window_names(), std::vector<std::string>{"Zavo_Reset"});

  ASSERT_EQ(open("Zavo_USB"), RET_OK);  // closable="no"
  EXPECT_EQ(navigator_request_close("Zavo_USB"), RET_OK);
  tk_testing_advance(0);
  EXPECT_EQ(top(), "Zavo_USB");

  ASSERT_EQ(open("Zavo_Settings"), RET_OK);  // closable by default
  EXPECT_EQ(navigator_request_close("Zavo_Settings"), RET_OK);
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_window_names(), (std::vector<std::string>{"Zavo_Reset", "Zavo_USB"}));

  EXPECT_EQ(navigator_request_close("Zavo_Info"), RET_FAIL);
}

TEST_F(Navigator, ModalDialogReturnsItsQuitCode) {
  ASSERT_EQ(open("Zavo_Settings"), RET_OK);
  const uint64_t start = tk_testing_now();
  timer_add(
      [](const timer_info_t*) -> ret_t {
        dialog_quit(widget_child(window_manager(), "Zavo_SHUT_DOWN"), DIALOG_QUIT_OK);
        return RET_REMOVE;
      },
      nullptr, 300);
  EXPECT_EQ(navigator_to("Zavo_SHUT_DOWN"), static_cast<ret_t>(DIALOG_QUIT_OK));
  EXPECT_GE(tk_testing_now() - start, 300u);
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_window_names(), std::vector<std::string>{"Zavo_Settings"});
}

TEST_F(Navigator, DialogWithoutToModalReturnsAtOnce) {
  ASSERT_EQ(open("Zavo_Settings"), RET_OK);
  const uint64_t start = tk_testing_now();
  EXPECT_EQ(open("Zavo_Restoring"), RET_OK);
  EXPECT_EQ(tk_testing_now(), start);
  EXPECT_EQ(top(), "Zavo_Restoring");
}

TEST_F(Navigator, BackAndBackToHome) {
  ASSERT_EQ(open("Zavo_Settings"), RET_OK);
  ASSERT_EQ(open("Zavo_Info"), RET_OK);
  ASSERT_EQ(open("outside_table"), RET_OK);
  ASSERT_EQ(open("Zavo_Settings"), RET_OK);
  navigator_back();
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_window_names(),
            (std::vector<std::string>{"Zavo_Settings", "Zavo_Info", "outside_table"}));
  navigator_back_to_home();
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_window_names(), std::vector<std::string>{"Zavo_Settings"});
}

TEST_F(Navigator, GlobalHandlersSeeScreenEvents) {
  int seen = 0;
  EXPECT_EQ(navigator_global_widget_on(
                EVT_USER_START + 15,
                [](void* ctx, event_t*) -> ret_t {
                  ++*static_cast<int*>(ctx);
                  return RET_OK;
                },
                &seen),
            RET_OK);
  event_t e = event_init(EVT_USER_START + 15, NULL);
  widget_dispatch(window_manager(), &e);
  e = event_init(EVT_USER_START + 16, NULL);
  widget_dispatch(window_manager(), &e);
  EXPECT_EQ(seen, 1);
}

}  // namespace
