// The toolkit starts under the test clock and opens a window from XML.
#include <gtest/gtest.h>

#include "awtk.h"
#include "tk_testing.h"

TEST(ToolkitSmoke, OpensAWindowFromXml) {
  tk_testing_init();
  widget_t* win = tk_testing_open_xml("w", "<window><label name=\"l\" x=\"1\" y=\"2\" w=\"3\" h=\"4\" text=\"hi\"/></window>");
  ASSERT_NE(win, nullptr);
  EXPECT_EQ(window_manager_get_top_window(window_manager()), win);
  widget_t* l = widget_lookup(win, "l", TRUE);
  ASSERT_NE(l, nullptr);
  char buf[16];
  widget_get_text_utf8(l, buf, sizeof(buf));
  EXPECT_STREQ(buf, "hi");
}
