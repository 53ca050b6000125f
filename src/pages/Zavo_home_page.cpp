// "Zavo_home_page": a window with no behaviour. The visitor looks at every child and does nothing.
#include "pages/Zavo_home_page.h"

#include "common/common_function.h"

namespace {

ret_t visit_init_child(void* ctx, const void* iter) {
  (void)ctx;
  (void)iter;
  return RET_OK;
}

}  // namespace

ret_t Zavo_home_page_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  widget_foreach(win, visit_init_child, win);
  return RET_OK;
}
