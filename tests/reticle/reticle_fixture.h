// The reticle alignment pages under test: the common page fixture (tests/common/page_fixture.h)
// with the observation screen open underneath, as on the scope, and the records of a scope whose
// zeros sit at known places.
#ifndef SCOPE_TESTS_RETICLE_RETICLE_FIXTURE_H
#define SCOPE_TESTS_RETICLE_RETICLE_FIXTURE_H

#include <string>
#include <vector>

#include "page_fixture.h"
#include "pages/Zavo_home_page_1.h"
#include "pages/page_list.h"

namespace reticle_test {

using page_test::decoded;
using page_test::device_frame;
using page_test::Frames;
using page_test::printed;

class ReticleTest : public page_test::PageTest {
 protected:
  void SetUp() override {
    PageTest::SetUp();
    // Group 2 (index 1), zero C (index 2) current; zero k of that group at x = 640 + 10 k,
    // y = 640 - 5 k, 100 (k + 1) m away.
    IR_Cursor.u8CurrentGroup = 1;
    IR_Cursor.group[1].u8CurrentZero = 2;
    for (int k = 0; k < 5; ++k) {
      Inf_Cursor_Zero& z = IR_Cursor.group[1].zero[k];
      z.s8IrCursorCurrentX = static_cast<int16_t>(640 + 10 * k);
      z.s8IrCursorCurrentY = static_cast<int16_t>(640 - 5 * k);
      z.u16IrCursorDistance = static_cast<int16_t>(100 * (k + 1));
      z.u16IrCursorDistanceYD = static_cast<int16_t>(109 * (k + 1));
    }
  }

  // The observation screen first (its init forces yards and the reticle on), then `name` on top,
  // as the menus open it. What the observation screen sent is dropped.
  widget_t* open_over_home(const char* name) {
    home_ = home_scene_open();
    EXPECT_NE(home_, nullptr);
    sent_frames();
    return open(name);
  }

  // The page `name` if it is open (after the pages moved on), and it becomes win_.
  widget_t* follow(const char* name) {
    win_ = widget_child(window_manager(), name);
    return win_;
  }

  // Between the rows of a table: every window closed, no timer left, the link's hand-off empty,
  // nothing left on the send queue. The records stay as the row left them.
  void restart() {
    home_scene_settle();
    tk_testing_reset();
    Inf_LinkReset();
    home_state_forget();
    sent_frames();
  }

  std::vector<std::string> windows() const { return tk_testing_window_names(); }

  const Inf_Cursor_Zero& zero(int k) const { return IR_Cursor.group[1].zero[k]; }

  widget_t* home_ = nullptr;
};

}  // namespace reticle_test

#endif  // SCOPE_TESTS_RETICLE_RETICLE_FIXTURE_H
