// "Zavo_file_video_1": a second player window that has only the common page init; it shows its
// layout and handles no key.
#include "common/common_function.h"
#include "pages/page_list.h"

namespace {

ret_t visit_init_child(void* ctx, const void* iter) {
  (void)ctx;
  (void)iter;
  return RET_OK;
}

}  // namespace

ret_t Zavo_file_video_1_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  widget_foreach(win, visit_init_child, win);
  return RET_OK;
}
