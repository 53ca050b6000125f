// "Zavo_file_menu": the file browser. Two tabs (photos, videos) over a 3 x 3 thumbnail grid, an
// info panel for the selected file, an option panel (display, delete, exit) and a delete
// confirmation. The keys move through four focus levels: the tabs, the grid, the option panel,
// the confirmation. This file holds the state, the catalogue refresh, the keys and the init; the
// redraws are in Zavo_file_menu_draw.cpp.
#include "pages/Zavo_file_menu.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "common/common_function.h"
#include "common/list.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/page_list.h"

file_unit* Zavo_file_info = nullptr;
int32_t Zavo_photo_num = 0;
int32_t Zavo_video_num = 0;
int32_t Zavo_file_title_index = FILE_TAB_VIDEO;
int32_t Zavo_photos_index = 0;
int32_t Zavo_video_index = 0;
int32_t Zavo_photos_current_page = 1, Zavo_photos_last_page = 1, Zavo_photos_total_page = 1;
int32_t Zavo_video_current_page = 1, Zavo_video_last_page = 1, Zavo_video_total_page = 1;
int32_t Zavo_file_default_index = MENU_FILE;
int32_t Zavo_file_default_play_index = FILE_OPTION_DISPLAY;
int32_t Zavo_file_default_delete_index = 1;

namespace {

// The one-second notice of a video that cannot be played (0 = none running).
uint32_t timer_corrupted_id = 0;

// The delete works on the selected name as a 32-byte string: a longer name would be cut.
constexpr size_t DELETE_NAME_SIZE = 32;

widget_t* child(widget_t* win, const char* name) {
  return widget_lookup(win, name, TRUE);
}

void show(widget_t* win, const char* name, bool visible) {
  widget_set_visible(child(win, name), visible ? TRUE : FALSE);
}

bool photo_tab() {
  return Zavo_file_title_index == FILE_TAB_PHOTO;
}

int32_t& tab_index() {
  return photo_tab() ? Zavo_photos_index : Zavo_video_index;
}

int32_t tab_count() {
  return photo_tab() ? Zavo_photo_num : Zavo_video_num;
}

// Paging of one tab after a new count: the last file deleted moves the index back, a page past
// the end moves back to the last page. An empty tab keeps its page count.
void fit_paging(int32_t count, int32_t& index, int32_t& current, int32_t& total) {
  if (count == 0) {
    index = 0;
    return;
  }
  total = (count + FILE_GRID_CELLS - 1) / FILE_GRID_CELLS;
  if (index >= count) index = count - 1;
  if (current > total) current = total;
}

// ---- levels ----

void switch_tab(widget_t* win) {
  if (photo_tab()) {
    Zavo_file_title_index = FILE_TAB_VIDEO;
    Zavo_video_index = 0;
    Zavo_video_current_page = Zavo_video_last_page = 1;
    show(win, "label_Time", true);
  } else {
    Zavo_file_title_index = FILE_TAB_PHOTO;
    Zavo_photos_index = 0;
    Zavo_photos_current_page = Zavo_photos_last_page = 1;
    show(win, "label_Time_value", false);
    show(win, "label_Time", false);
  }
  show(win, "view_file_display_delete", false);
  on_image_video_sel(win);
  Zavo_updata_Thumbnail_Info(win, Zavo_file_title_index);
}

// Next (GUI_KEY_PHOTO_S) or previous file, wrapping; the grid is redrawn when the page changes.
void step_file(widget_t* win, int key) {
  const int32_t count = tab_count();
  if (count <= 0) return;
  int32_t& index = tab_index();
  index = key == GUI_KEY_PHOTO_S ? (index + 1 < count ? index + 1 : 0)
                                 : (index > 0 ? index - 1 : count - 1);
  int32_t& current = photo_tab() ? Zavo_photos_current_page : Zavo_video_current_page;
  int32_t& last = photo_tab() ? Zavo_photos_last_page : Zavo_video_last_page;
  current = index / FILE_GRID_CELLS + 1;
  if (current != last) Zavo_updata_Thumbnail_Info(win, Zavo_file_title_index);
  last = current;
  Zavo_updata_File_Info(win, Zavo_file_title_index);
}

void enter_grid(widget_t* win) {
  if (tab_count() <= 0) return;
  Zavo_file_default_index = MENU_LIST;
  Zavo_updata_File_Info(win, Zavo_file_title_index);
  for (const char* name :
       {"view_file_sel", "label_File_Name_value", "label_Type_value", "label_Size_value"}) {
    show(win, name, true);
  }
  show(win, "label_Time_value", !photo_tab());
}

void open_options(widget_t* win) {
  Zavo_file_default_index = MENU_PLAY_DELETE;
  show(win, "view_file_display_delete", true);
  Zavo_file_default_play_index = FILE_OPTION_DISPLAY;
  Zavo_play_delete_sel(win);
}

ret_t on_corrupted_timeout(const timer_info_t* info) {
  if (info->id == timer_corrupted_id) {
    timer_corrupted_id = 0;
    show(static_cast<widget_t*>(info->ctx), "view_file_corrupted", false);
  }
  return RET_REMOVE;
}

void display_file(widget_t* win) {
  if (photo_tab()) {
    std::printf("Zavo_file_info[Zavo_photos_index].photo_name = %s\n",
                file_menu_name(FILE_TAB_PHOTO, Zavo_photos_index).c_str());
    navigator_to("Zavo_file_image");
    return;
  }
  if (stUIStatus.u64VideoTotalFrames <= FILE_VIDEO_MIN_FRAMES) {
    show(win, "view_file_corrupted", true);
    if (timer_corrupted_id == 0)
      timer_corrupted_id = widget_add_timer(win, on_corrupted_timeout, 1000);
    return;
  }
  std::printf("file_info[video_index].video_name = %s\n",
              file_menu_name(FILE_TAB_VIDEO, Zavo_video_index).c_str());
  navigator_to("Zavo_file_video");
}

void carry_out_option(widget_t* win) {
  switch (Zavo_file_default_play_index) {
    case FILE_OPTION_DISPLAY: display_file(win); break;
    case FILE_OPTION_DELETE:
      Zavo_file_default_index = MENU_DELETE_CHOOSE;
      widget_set_text_utf8(
          child(win, "label_delete_name"),
          file_menu_stem(file_menu_name(Zavo_file_title_index, tab_index())).c_str());
      show(win, "view_delete_file", true);
      Zavo_file_default_delete_index = 1;
      on_file_delete_sel_display(win);
      break;
    case FILE_OPTION_EXIT:
      show(win, "view_file_display_delete", false);
      Zavo_file_default_index = MENU_LIST;
      break;
    default: break;
  }
}

// Deletes the selected file. Its name goes through a 32-byte buffer, so a longer name would be
// cut; a cut name could be the name of a different file, so such a file is not deleted at all.
void delete_selected(widget_t* win) {
  const int32_t tab = Zavo_file_title_index;
  const std::string name = file_menu_name(tab, tab_index());
  char cut[DELETE_NAME_SIZE];
  std::snprintf(cut, sizeof(cut), "%s", name.c_str());
  if (name.empty()) {
    std::printf("delete: no file selected, nothing removed\n");
  } else if (name.size() >= DELETE_NAME_SIZE) {
    std::printf(
        "delete refused: \"%s\" is longer than %zu characters and would be deleted as "
        "\"%s\"; the file is kept\n",
        name.c_str(), DELETE_NAME_SIZE - 1, cut);
  } else {
    Remove_file(tab, cut);
  }
  show(win, "view_delete_file", false);
  get_file_list_info();

  if (tab_count() == 0) {
    Zavo_file_default_index = MENU_FILE;
    image_set_image(child(win, "image_no_file"),
                    photo_tab() ? "Zavo_img_empty" : "Zavo_video_empty");
    show(win, "image_no_file", true);
    show(win, "view_file_option", false);
    show(win, "view_file_sel", false);
    Zavo_playsel_filename_default(win);
    return;
  }
  Zavo_file_default_index = MENU_LIST;
  show(win, "view_file_display_delete", false);
  Zavo_updata_Thumbnail_Info(win, tab);
  Zavo_change_storage_size(win);
  Zavo_updata_File_Info(win, tab);
}

void carry_out_choice(widget_t* win) {
  if (Zavo_file_default_delete_index == 1) {
    delete_selected(win);
    return;
  }
  Zavo_file_default_index = MENU_PLAY_DELETE;
  show(win, "view_delete_file", false);
}

// ---- keys ----

void key_step(widget_t* win, int key) {
  switch (Zavo_file_default_index) {
    case MENU_FILE: switch_tab(win); break;
    case MENU_LIST: step_file(win, key); break;
    case MENU_PLAY_DELETE:
      Zavo_file_default_play_index = key == GUI_KEY_PHOTO_S
                                         ? (Zavo_file_default_play_index % FILE_OPTION_EXIT) + 1
                                         : (Zavo_file_default_play_index > FILE_OPTION_DISPLAY
                                                ? Zavo_file_default_play_index - 1
                                                : FILE_OPTION_EXIT);
      Zavo_play_delete_sel(win);
      break;
    case MENU_DELETE_CHOOSE:
      Zavo_file_default_delete_index = Zavo_file_default_delete_index == 1 ? 0 : 1;
      on_file_delete_sel_display(win);
      break;
    default: break;
  }
}

void key_confirm(widget_t* win) {
  switch (Zavo_file_default_index) {
    case MENU_FILE: enter_grid(win); break;
    case MENU_LIST: open_options(win); break;
    case MENU_PLAY_DELETE: carry_out_option(win); break;
    case MENU_DELETE_CHOOSE: carry_out_choice(win); break;
    default: break;
  }
}

void key_back(widget_t* win) {
  switch (Zavo_file_default_index) {
    case MENU_FILE: navigator_back(); break;
    case MENU_LIST:
      Zavo_file_default_index = MENU_FILE;
      show(win, "view_file_sel", false);
      Zavo_playsel_filename_default(win);
      break;
    case MENU_PLAY_DELETE:
      Zavo_file_default_index = MENU_LIST;
      show(win, "view_file_display_delete", false);
      break;
    case MENU_DELETE_CHOOSE:
      Zavo_file_default_index = MENU_PLAY_DELETE;
      show(win, "view_delete_file", false);
      break;
    default: break;
  }
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_PHOTO_S:
    case GUI_KEY_RANGE_S: key_step(win, static_cast<int>(evt->key)); break;
    case GUI_KEY_FUCTION_S: key_confirm(win); break;
    case GUI_KEY_FUCTION_L: key_back(win); break;
    case GUI_KEY_PHOTO_L: GUI_SEND_TAP_VIDEO_MSG(TAP_PICTURE_RECORD, TAP_TAKE_PICTURE, NULL); break;
    case GUI_KEY_POWER_S: window_manager_back_to(window_manager(), "Zavo_home_page_1"); break;
    default: break;
  }
  return RET_OK;
}

// Event 8196: the photo viewer closed; its index may have moved, so the page follows it.
ret_t on_bmp_back_refresh(void* ctx, event_t* e) {
  (void)e;
  widget_t* win = static_cast<widget_t*>(ctx);
  Zavo_photos_current_page = Zavo_photos_last_page = Zavo_photos_index / FILE_GRID_CELLS + 1;
  Zavo_updata_Thumbnail_Info(win, Zavo_file_title_index);
  Zavo_updata_File_Info(win, Zavo_file_title_index);
  return RET_OK;
}

// The window manager's events bound to this window end with it.
ret_t on_window_close(void* ctx, event_t* e) {
  (void)e;
  widget_off_by_ctx(window_manager(), ctx);
  return RET_OK;
}

ret_t visit_init_child(void* ctx, const void* iter) {
  const widget_t* widget = static_cast<const widget_t*>(iter);
  if (widget->name == NULL) return RET_OK;
  const std::string_view name = widget->name;
  if (name == "label_Time") {
    widget_on(window_manager(), file_screen_event(SCREEN_EVT_PLAY_LENGTH), on_time_refresh, ctx);
  } else if (name == "view_file_option") {
    widget_on(window_manager(), file_screen_event(FILE_EVT_IMAGE_BACK), on_bmp_back_refresh, ctx);
  }
  return RET_OK;
}

}  // namespace

void get_file_list_info(void) {
  std::printf("file_info = %p\n", static_cast<void*>(Zavo_file_info));
  std::free(Zavo_file_info);
  Zavo_file_info = getFileListInfo(SORT_FILENAME_REVERSE, NULL);
  if (Zavo_file_info == NULL) {
    Zavo_photo_num = 0;
    Zavo_video_num = 0;
    // An empty card leaves no medium for a thumbnail; an unreadable one proves nothing, so its
    // thumbnails stay.
    if (media_directories_readable()) {
      Remove_Matefile();
    } else {
      std::printf("media directories cannot be read: thumbnails kept\n");
    }
    std::printf("No photos and video, return...\n");
    return;
  }
  if (Zavo_file_info[0].photo_num == 0 && Zavo_file_info[0].video_num == 0) {
    std::printf("mp4_num == 0, Delete all mate file\n");
    Remove_Matefile();
  }
  Zavo_photo_num = Zavo_file_info[0].photo_num;
  Zavo_video_num = Zavo_file_info[0].video_num;
  fit_paging(Zavo_photo_num, Zavo_photos_index, Zavo_photos_current_page, Zavo_photos_total_page);
  fit_paging(Zavo_video_num, Zavo_video_index, Zavo_video_current_page, Zavo_video_total_page);
}

ret_t Zavo_file_menu_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);

  Zavo_photos_index = 0;
  Zavo_video_index = 0;
  Zavo_photos_current_page = Zavo_photos_last_page = 1;
  Zavo_video_current_page = Zavo_video_last_page = 1;
  Zavo_file_default_index = MENU_FILE;
  Zavo_file_title_index = FILE_TAB_VIDEO;
  timer_corrupted_id = 0;

  on_image_video_sel(win);
  get_file_list_info();
  Zavo_updata_Thumbnail_Info(win, Zavo_file_title_index);
  Zavo_playsel_filename_default(win);
  Zavo_change_storage_size(win);
  for (const char* name :
       {"view_file_sel", "view_file_display_delete", "view_delete_file", "view_file_corrupted"}) {
    show(win, name, false);
  }

  widget_foreach(win, visit_init_child, win);
  widget_on(win, EVT_WINDOW_CLOSE, on_window_close, win);
  // Keys reach the window (none of its children takes the focus), so the handler is bound once,
  // on the window, and runs once a key.
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
