// "Zavo_bullistic_lens": a page kept for an editor of the zero offset of the sight. It shows its
// layout and takes no key: no row of the ballistic menu opens it yet.
#include "common/common_function.h"
#include "pages/page_list.h"

namespace {

ret_t visit_init_child(void* ctx, const void* iter) {
  (void)ctx;
  (void)iter;
  return RET_OK;
}

}  // namespace

ret_t Zavo_bullistic_lens_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  widget_foreach(win, visit_init_child, win);
  return RET_OK;
}
