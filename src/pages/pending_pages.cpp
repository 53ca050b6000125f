// Pages whose own module is not written yet (the P rows of PAGE_LIST). Each gets the common page
// init with a visitor that prepares nothing, so the page table is whole and such a window (once
// it has a layout) opens and shows its layout as it stands.
#include <cstdint>

#include "common/common_function.h"
#include "pages/page_list.h"

namespace {

[[maybe_unused]] ret_t visit_nothing(void* ctx, const void* iter) {
  (void)ctx;
  (void)iter;
  return RET_OK;
}

}  // namespace

#define PENDING_PAGE_INIT(name)                            \
  ret_t name##_init(widget_t* win, void* ctx) {            \
    (void)ctx;                                             \
    log_return_value_if_fail(win != NULL, RET_BAD_PARAMS); \
    widget_foreach(win, visit_nothing, win);               \
    return RET_OK;                                         \
  }
#define OWN_MODULE(name)
PAGE_LIST(OWN_MODULE, PENDING_PAGE_INIT)
#undef OWN_MODULE
#undef PENDING_PAGE_INIT
