// The file browser "Zavo_file_menu" and what its viewers share with it: the catalogue array, the
// tab, the selected file of each tab and the paging. The photo viewer "Zavo_file_image" and the
// video player "Zavo_file_video" read the array and move the indexes.
#ifndef SCOPE_PAGES_ZAVO_FILE_MENU_H
#define SCOPE_PAGES_ZAVO_FILE_MENU_H

#include <cstdint>
#include <string>

#include "awtk.h"
#include "common/list.h"

// Cells of the thumbnail grid: 3 x 3 cells of 272 x 276 pixels.
inline constexpr int FILE_GRID_CELLS = 9;
inline constexpr int FILE_GRID_COLUMNS = 3;
inline constexpr int FILE_CELL_W = 272;
inline constexpr int FILE_CELL_H = 276;

// Tabs (Zavo_file_title_index).
inline constexpr int32_t FILE_TAB_PHOTO = 1;
inline constexpr int32_t FILE_TAB_VIDEO = 2;

// Screen event the photo viewer raises on the window manager as it closes (8196): the browser
// puts its page back on the viewer's photo.
inline constexpr int FILE_EVT_IMAGE_BACK = 4;

// The toolkit event type of a screen event offset (8192 + offset).
inline constexpr uint32_t file_screen_event(int offset) {
  return static_cast<uint32_t>(EVT_USER_START) + static_cast<uint32_t>(offset);
}

// A video with this many frames or fewer cannot be played.
inline constexpr uint64_t FILE_VIDEO_MIN_FRAMES = 29;

// Options of the option panel (Zavo_file_default_play_index).
inline constexpr int32_t FILE_OPTION_DISPLAY = 1;
inline constexpr int32_t FILE_OPTION_DELETE = 2;
inline constexpr int32_t FILE_OPTION_EXIT = 3;

extern file_unit* Zavo_file_info;  // the catalogue; null when the card is empty
extern int32_t Zavo_photo_num;
extern int32_t Zavo_video_num;
extern int32_t Zavo_file_title_index;  // FILE_TAB_PHOTO or FILE_TAB_VIDEO
extern int32_t Zavo_photos_index;      // selected photo, 0-based into the catalogue
extern int32_t Zavo_video_index;       // selected video
extern int32_t Zavo_photos_current_page, Zavo_photos_last_page, Zavo_photos_total_page;
extern int32_t Zavo_video_current_page, Zavo_video_last_page, Zavo_video_total_page;
extern int32_t Zavo_file_default_index;         // focus level, an enum MENU_LIST value
extern int32_t Zavo_file_default_play_index;    // FILE_OPTION_*
extern int32_t Zavo_file_default_delete_index;  // 1 OK, 0 cancel

// The video player's state (Zavo_file_video.cpp): 1 playing, 0 paused; the winding timers' ids
// (0 = not winding).
extern uint8_t Zavo_play_status;
extern uint32_t timer_forward_id;
extern uint32_t timer_rewind_id;

// Rebuilds the catalogue (newest first), the counts and the paging of both tabs.
void get_file_list_info(void);

// The name of catalogue element `index` of a tab as a terminated string ("" when the catalogue
// or the element is missing). The array's fields may fill all 64 bytes.
std::string file_menu_name(int32_t tab, int32_t index);
// The name less its extension (its last four characters).
std::string file_menu_stem(const std::string& name);

// ---- drawing (Zavo_file_menu_draw.cpp) ----
void on_image_video_sel(widget_t* win);
void Zavo_updata_Thumbnail_Info(widget_t* win, int32_t tab);
void Zavo_updata_File_Info(widget_t* win, int32_t tab);
void Zavo_playsel_filename_default(widget_t* win);
void Zavo_play_delete_sel(widget_t* win);
void on_file_delete_sel_display(widget_t* win);
void Zavo_change_storage_size(widget_t* win);
// Event 8206: the video's length in the info panel.
ret_t on_time_refresh(void* ctx, event_t* e);

#endif  // SCOPE_PAGES_ZAVO_FILE_MENU_H
