// "Zavo_file_image": one photo full screen, the bitmap itself (not its thumbnail), with its name.
// The photo and range keys step through the browser's photos with wrap-around; the function key
// returns to the browser, which puts its page on the photo shown last.
#include <sys/stat.h>

#include <cstdio>
#include <string>

#include "common/common_function.h"
#include "common/device_path.h"
#include "common/list.h"
#include "common/navigator.h"
#include "msg/msghandler.h"
#include "pages/Zavo_file_menu.h"
#include "pages/page_list.h"

namespace {

ret_t visit_init_child(void* ctx, const void* iter) {
  (void)ctx;
  (void)iter;
  return RET_OK;
}

void on_display_bmp(widget_t* win) {
  widget_t* photo = widget_lookup(win, "image_photo", TRUE);
  const std::string name = file_menu_name(FILE_TAB_PHOTO, Zavo_photos_index);
  if (name.empty()) {
    std::printf("Zavo_file_image: no photo %d of %d to show\n", Zavo_photos_index, Zavo_photo_num);
    widget_set_visible(photo, FALSE);
    widget_set_text_utf8(widget_lookup(win, "label_video_name", TRUE), "");
    return;
  }
  const std::string path = device_path(MEDIA_PHOTO_DIR) + name;
  // Shown as it is; a photo that went or is empty draws nothing, and the line says why.
  struct stat st {};
  if (stat(path.c_str(), &st) != 0) {
    std::printf("Zavo_file_image: %s is missing\n", path.c_str());
  } else if (!S_ISREG(st.st_mode) || st.st_size == 0) {
    std::printf("Zavo_file_image: %s is empty or not a file\n", path.c_str());
  }
  image_set_image(photo, ("file://" + path).c_str());
  widget_set_visible(photo, TRUE);
  widget_set_text_utf8(widget_lookup(win, "label_video_name", TRUE), file_menu_stem(name).c_str());
}

// The viewer pages by 8 where the browser pages by 9; the browser recomputes its page with 9
// from the index when the viewer closes (event 8196), so only the index matters.
void page_update(void) {
  Zavo_photos_current_page = Zavo_photos_index / 8 + 1;
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_PHOTO_S:
      Zavo_photos_index = Zavo_photos_index + 1 < Zavo_photo_num ? Zavo_photos_index + 1 : 0;
      page_update();
      on_display_bmp(win);
      break;
    case GUI_KEY_RANGE_S:
      Zavo_photos_index = Zavo_photos_index > 0 ? Zavo_photos_index - 1
                                                : (Zavo_photo_num > 0 ? Zavo_photo_num - 1 : 0);
      page_update();
      on_display_bmp(win);
      break;
    case GUI_KEY_FUCTION_S: {
      event_t back = event_init(file_screen_event(FILE_EVT_IMAGE_BACK), NULL);
      widget_dispatch(window_manager(), &back);
      navigator_back();
      break;
    }
    case GUI_KEY_POWER_S: window_manager_back_to(window_manager(), "Zavo_home_page_1"); break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_file_image_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  std::printf("enter Zavo_file_image\n");
  widget_foreach(win, visit_init_child, win);
  on_display_bmp(win);
  std::printf("exit on_display_bmp\n");
  // Keys reach the window (none of its children takes the focus): one handler, on the window.
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
