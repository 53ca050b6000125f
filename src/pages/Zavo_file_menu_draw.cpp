// "Zavo_file_menu": the redraws of the browser from its state and the catalogue: tab buttons, the
// thumbnail grid, the info panel, the option panel, the delete confirmation and the card usage.
// The state, the catalogue refresh and the keys are in Zavo_file_menu.cpp.
#include <sys/stat.h>

#include <array>
#include <cstdio>
#include <string>

#include "common/common_function.h"
#include "common/device_path.h"
#include "common/list.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/Zavo_file_menu.h"

namespace {

constexpr std::array<const char*, FILE_GRID_CELLS> NAME_LABELS = {
    "label_FileName1", "label_FileName2", "label_FileName3", "label_FileName4", "label_FileName5",
    "label_FileName6", "label_FileName7", "label_FileName8", "label_FileName9"};
constexpr std::array<const char*, FILE_GRID_CELLS> THUMBNAILS = {
    "image_file_1", "image_file_2", "image_file_3", "image_file_4", "image_file_5",
    "image_file_6", "image_file_7", "image_file_8", "image_file_9"};
constexpr std::array<const char*, 4> INFO_VALUES = {"label_File_Name_value", "label_Type_value",
                                                    "label_Size_value", "label_Time_value"};
constexpr std::array<const char*, 3> OPTIONS = {"view_display", "view_delete", "view_exit"};

widget_t* child(widget_t* win, const char* name) {
  return widget_lookup(win, name, TRUE);
}

void set_text(widget_t* win, const char* name, const char* text) {
  widget_set_text_utf8(child(win, name), text);
}

// Text for a label: a name cut at 64 bytes may end inside a UTF-8 character; that partial
// character is dropped.
std::string whole_utf8(std::string text) {
  size_t end = text.size();
  size_t start = end;
  while (start > 0 && (static_cast<unsigned char>(text[start - 1]) & 0xC0) == 0x80 &&
         end - start < 3) {
    --start;
  }
  if (start > 0) {
    const unsigned char lead = static_cast<unsigned char>(text[start - 1]);
    const size_t need = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
    if (lead >= 0xC0 && end - (start - 1) < need) text.resize(start - 1);
  }
  return text;
}

bool is_regular_file(const std::string& path) {
  struct stat st {};
  return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

int32_t tab_count(int32_t tab) {
  return tab == FILE_TAB_PHOTO ? Zavo_photo_num : Zavo_video_num;
}

// The time labels' "MM:SS" of a number of seconds; hours are dropped.
void format_minutes(char* out, size_t size, const char* format, uint64_t seconds) {
  std::snprintf(out, size, format, static_cast<int>((seconds % 3600) / 60),
                static_cast<int>(seconds % 60));
}

}  // namespace

std::string file_menu_name(int32_t tab, int32_t index) {
  if (Zavo_file_info == nullptr || index < 0 || index >= tab_count(tab)) return "";
  const file_unit& unit = Zavo_file_info[index];
  const char* field = tab == FILE_TAB_PHOTO ? unit.photo_name : unit.video_name;
  return std::string(field, strnlen(field, FILE_NAME_SIZE));
}

std::string file_menu_stem(const std::string& name) {
  return name.size() > 4 ? name.substr(0, name.size() - 4) : std::string();
}

void on_image_video_sel(widget_t* win) {
  const bool videos = Zavo_file_title_index == FILE_TAB_VIDEO;
  image_set_image(child(win, "image_image"), videos ? "Zavo_btn_img_def" : "Zavo_btn_img_sel");
  image_set_image(child(win, "image_vedio"), videos ? "Zavo_btn_video_sel" : "Zavo_btn_video_def");
  std::printf("Zavo_file_title_index =%d \n", Zavo_file_title_index);
}

void Zavo_updata_Thumbnail_Info(widget_t* win, int32_t tab) {
  const bool photos = tab == FILE_TAB_PHOTO;
  const int32_t count = tab_count(tab);
  widget_t* empty = child(win, "image_no_file");
  if (count == 0) {
    if (photos) std::printf("image_no_file================%d\n", count);
    image_set_image(empty, photos ? "Zavo_img_empty" : "Zavo_video_empty");
    widget_set_visible(empty, TRUE);
    widget_set_visible(child(win, "view_file_option"), FALSE);
    set_text(win, "label_index_page", "1/1");
    return;
  }
  widget_set_visible(empty, FALSE);
  widget_set_visible(child(win, "view_file_option"), TRUE);
  if (Zavo_file_info == nullptr) {
    std::printf("file_info === NULL  return ");
    return;
  }

  const int32_t page = photos ? Zavo_photos_current_page : Zavo_video_current_page;
  const int32_t pages = photos ? Zavo_photos_total_page : Zavo_video_total_page;
  char text[32];
  std::snprintf(text, sizeof(text), "%d/%d", page, pages);
  set_text(win, "label_index_page", text);

  for (int i = 0; i < FILE_GRID_CELLS; ++i) {
    set_text(win, NAME_LABELS[i], "");
    widget_set_visible(child(win, THUMBNAILS[i]), FALSE);
  }
  const int32_t base = (page - 1) * FILE_GRID_CELLS;
  std::printf("filepage = %d \n", base);

  const std::string thumbnails = device_path(MEDIA_THUMBNAIL_DIR);
  for (int i = 0; i < FILE_GRID_CELLS; ++i) {
    if (base + i >= count) {
      std::printf("base = %d file end! return\n", base + i);
      break;
    }
    const std::string stem = file_menu_stem(file_menu_name(tab, base + i));
    const std::string thumbnail = thumbnails + stem + ".jpg";
    widget_t* image = child(win, THUMBNAILS[i]);
    if (photos) {
      // Set without looking first; a missing or unreadable one leaves the cell blank.
      if (!is_regular_file(thumbnail)) std::printf("no thumbnail %s\n", thumbnail.c_str());
      image_set_image(image, ("file://" + thumbnail).c_str());
      widget_set_visible(image, TRUE);
    } else if (is_regular_file(thumbnail)) {
      image_set_image(image, ("file://" + thumbnail).c_str());
      widget_set_visible(image, TRUE);
      std::printf("thumbnail ======== %s \n", thumbnail.c_str());
    }
    set_text(win, NAME_LABELS[i], whole_utf8(stem).c_str());
  }
}

void Zavo_updata_File_Info(widget_t* win, int32_t tab) {
  if (Zavo_file_info == nullptr) {
    std::printf("file_info === NULL  return ");
    return;
  }
  const int32_t count = tab_count(tab);
  if (count == 0) return;
  const bool photos = tab == FILE_TAB_PHOTO;
  const int32_t index = photos ? Zavo_photos_index : Zavo_video_index;
  const std::string name = file_menu_name(tab, index);

  set_text(win, "label_Type_value", photos ? "BMP" : "MP4");
  set_text(win, "label_File_Name_value", whole_utf8(file_menu_stem(name)).c_str());
  if (!photos) {
    std::printf("file_info[video_index].video_name = %s\n", name.c_str());
    GUI_SEND_TAP_VIDEO_MSG(TAP_REPLAY, TAP_REPLAY_VEDIO_TOTAL_TIME, name.c_str());
  }
  const float size = static_cast<float>(Get_file_size(tab, name.c_str())) / 1000000.0f;
  char text[32];
  std::snprintf(text, sizeof(text), "%.1fMB", size);
  set_text(win, "label_Size_value", text);
  std::printf("size is %.1fMB!\n", size);

  const int slot = index % FILE_GRID_CELLS + 1;
  widget_move(child(win, "view_file_sel"), FILE_CELL_W * ((slot - 1) % FILE_GRID_COLUMNS),
              FILE_CELL_H * ((slot - 1) / FILE_GRID_COLUMNS));
  for (int i = 0; i < FILE_GRID_CELLS; ++i)
    widget_set_state(child(win, NAME_LABELS[i]), i == slot - 1 ? "focused" : "normal");
}

ret_t on_time_refresh(void* ctx, event_t* e) {
  (void)e;
  widget_t* win = static_cast<widget_t*>(ctx);
  const uint16_t rate = stUIStatus.u8VideoCurrentFrames;
  const uint64_t seconds = rate != 0 ? stUIStatus.u64VideoTotalFrames * 10 / rate : 0;
  char text[16];
  format_minutes(text, sizeof(text), "%02d:%02d", seconds);
  set_text(win, "label_Time_value", text);
  return RET_OK;
}

void Zavo_playsel_filename_default(widget_t* win) {
  for (const char* name : INFO_VALUES)
    widget_set_visible(child(win, name), FALSE);
  for (const char* name : NAME_LABELS)
    widget_set_state(child(win, name), "normal");
}

void Zavo_play_delete_sel(widget_t* win) {
  const int32_t option = Zavo_file_default_play_index;
  if (option < FILE_OPTION_DISPLAY || option > FILE_OPTION_EXIT) return;
  for (int i = 0; i < static_cast<int>(OPTIONS.size()); ++i)
    widget_set_state(child(win, OPTIONS[i]), i == option - 1 ? "focused" : "normal");
}

void on_file_delete_sel_display(widget_t* win) {
  const bool ok = Zavo_file_default_delete_index == 1;
  image_set_image(child(win, "image_OK"), ok ? "Zavo_btn_left_sel" : "Zavo_btn_left_def");
  image_set_image(child(win, "image_Cancel"), ok ? "Zavo_btn_right_def" : "Zavo_btn_right_sel");
  std::printf("Zavo_file_default_delete_index=%d\n", Zavo_file_default_delete_index);
}

void Zavo_change_storage_size(widget_t* win) {
  uint32_t used = 0;
  uint32_t total = 0;
  Get_StorageData(&used, &total);
  char text[32];
  std::snprintf(text, sizeof(text), "Used: %.1fG", static_cast<float>(used) / 100.0f);
  set_text(win, "label_storage_used", text);
  std::snprintf(text, sizeof(text), "Total: %.1fG", static_cast<float>(total) / 100.0f);
  set_text(win, "label_storage_total", text);
  const float percent = total != 0 ? static_cast<float>(used) / static_cast<float>(total) * 100 : 0;
  progress_bar_set_value(child(win, "progress_bar"), percent);
}
