// "Zavo_file_video": the video player. The device application decodes and shows the video; this
// page shows its name, the elapsed and total time, the progress, and the play, wind icons, and
// turns the keys into playback commands: pause and continue, a step of u8VideoCurrentFrames
// frames forward or back, continuous winding while the key is held, stop.
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "common/common_function.h"
#include "common/device_path.h"
#include "common/list.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/Zavo_file_menu.h"
#include "pages/page_list.h"

uint8_t Zavo_play_status = 1;  // 1 playing, 0 paused
uint32_t timer_forward_id = 0;
uint32_t timer_rewind_id = 0;

namespace {

// Icon codes of on_key_stype_show beside the play status (0 paused, 1 playing).
constexpr int ICON_FORWARD = 2;
constexpr int ICON_REWIND = 3;

// Period of the winding steps, and how long a single step's icon stays.
constexpr uint32_t WIND_PERIOD_MS = 500;
constexpr uint32_t STEP_ICON_MS = 500;

// The one-shot that puts the icons back after a single step (0 = none).
uint32_t timer_step_icon_id = 0;

// Windows hidden while the player is open, by name (a window may close meanwhile).
std::vector<std::string> hidden_below;

widget_t* child(widget_t* win, const char* name) {
  return widget_lookup(win, name, TRUE);
}

constexpr const char* ICONS[] = {"image_play", "image_forward", "image_rewind"};

// 0 shows the play icon, 1 none, 2 the forward icon, 3 the rewind icon; other codes change nothing.
void on_key_stype_show(widget_t* win, int code) {
  int shown = -1;
  switch (code) {
    case 0: shown = 0; break;
    case 1: break;
    case ICON_FORWARD: shown = 1; break;
    case ICON_REWIND: shown = 2; break;
    default: return;
  }
  for (int i = 0; i < 3; ++i)
    widget_set_visible(child(win, ICONS[i]), i == shown ? TRUE : FALSE);
}

void show_status_icons(widget_t* win) {
  on_key_stype_show(win, Zavo_play_status);
}

// "MM:SS"; hours are dropped.
std::string minutes(const char* format, uint64_t seconds) {
  char text[24];
  std::snprintf(text, sizeof(text), format, static_cast<int>((seconds % 3600) / 60),
                static_cast<int>(seconds % 60));
  return text;
}

// ---- seeking ----

void seek_forward(void) {
  const uint64_t current = stUIStatus.u64VideoCurrentFrames;
  const uint64_t total = stUIStatus.u64VideoTotalFrames;
  const uint64_t step = stUIStatus.u8VideoCurrentFrames;
  const uint64_t left = total > current ? total - current : 0;
  stUIStatus.u64VideoForwardFrames = left < step ? total : current + step;
  GUI_SEND_VIDEO_FRAME_MSG(TAP_REWIND_FORWARD);
}

void seek_back(void) {
  const uint64_t current = stUIStatus.u64VideoCurrentFrames;
  const uint64_t step = stUIStatus.u8VideoCurrentFrames;
  stUIStatus.u64VideoForwardFrames = current < step ? 0 : current - step;
  GUI_SEND_VIDEO_FRAME_MSG(TAP_REWIND_FORWARD);
}

ret_t on_step_icon_timeout(const timer_info_t* info) {
  if (info->id == timer_step_icon_id) {
    timer_step_icon_id = 0;
    show_status_icons(static_cast<widget_t*>(info->ctx));
  }
  return RET_REMOVE;
}

// A single step: its icon for half a second (a step within that time restarts the half second).
void step_once(widget_t* win, bool forward) {
  forward ? seek_forward() : seek_back();
  on_key_stype_show(win, forward ? ICON_FORWARD : ICON_REWIND);
  if (timer_step_icon_id != 0) {
    timer_reset(timer_step_icon_id);
  } else {
    timer_step_icon_id = widget_add_timer(win, on_step_icon_timeout, STEP_ICON_MS);
  }
}

ret_t on_forward_timer(const timer_info_t* info) {
  if (info->id != timer_forward_id) return RET_REMOVE;
  seek_forward();
  return RET_REPEAT;
}

ret_t on_rewind_timer(const timer_info_t* info) {
  if (info->id != timer_rewind_id) return RET_REMOVE;
  seek_back();
  return RET_REPEAT;
}

void stop_timer(uint32_t& id) {
  if (id != 0) timer_remove(id);
  id = 0;
}

// Held key: a step every 500 ms until the key is released.
void wind(widget_t* win, bool forward) {
  stop_timer(timer_step_icon_id);
  uint32_t& id = forward ? timer_forward_id : timer_rewind_id;
  if (id == 0)
    id = widget_add_timer(win, forward ? on_forward_timer : on_rewind_timer, WIND_PERIOD_MS);
  on_key_stype_show(win, forward ? ICON_FORWARD : ICON_REWIND);
}

void stop_playback(void) {
  GUI_SEND_TAP_VIDEO_MSG(TAP_REPLAY, TAP_REPLAY_STOP, NULL);
}

// ---- screen events ----

// Event 8206: the video's length.
ret_t on_total_time_refresh(void* ctx, event_t* e) {
  (void)e;
  widget_t* win = static_cast<widget_t*>(ctx);
  const uint16_t rate = stUIStatus.u8VideoCurrentFrames;
  const uint64_t seconds = rate != 0 ? stUIStatus.u64VideoTotalFrames * 10 / rate : 0;
  widget_set_text_utf8(child(win, "label_total_time"), minutes("/%02d:%02d", seconds).c_str());
  return RET_OK;
}

// Event 8205: the position. Reaching the last frame ends playback and returns to the browser.
ret_t on_play_time_refresh(void* ctx, event_t* e) {
  (void)e;
  widget_t* win = static_cast<widget_t*>(ctx);
  const uint64_t current = stUIStatus.u64VideoCurrentFrames;
  const uint64_t total = stUIStatus.u64VideoTotalFrames;
  const uint16_t rate = stUIStatus.u8VideoCurrentFrames;
  const uint64_t seconds = rate != 0 ? (current * 10 + 310) / rate : 0;
  widget_set_text_utf8(child(win, "label_play_time"), minutes("%02d:%02d", seconds).c_str());
  const uint64_t progress = total != 0 ? (current * 3600 + 111600) / total : 0;
  progress_bar_set_value(child(win, "progress_bar"), static_cast<float>(progress));
  // The length comes first; a position before it (total still 0) ends nothing.
  if (total != 0 && current == total) {
    stop_playback();
    navigator_switch_to("Zavo_file_menu", TRUE);
  }
  return RET_OK;
}

// ---- the screen to the video ----

// The device shows the video under the user interface, so while the player is open nothing but
// its own bar and icons may cover it: the windows below (the browser, the menus, the observation
// screen) are hidden, and shown again when the player closes, whichever way.
void show_hidden_windows(void) {
  for (const std::string& name : hidden_below) {
    widget_t* below = widget_child(window_manager(), name.c_str());
    if (below != NULL) widget_set_visible(below, TRUE);
  }
  hidden_below.clear();
}

void hide_windows_below(widget_t* win) {
  show_hidden_windows();
  widget_t* wm = window_manager();
  for (int32_t i = 0; i < widget_count_children(wm); ++i) {
    widget_t* below = widget_get_child(wm, i);
    if (below == win || below->name == NULL || !below->visible) continue;
    widget_set_visible(below, FALSE);
    hidden_below.emplace_back(below->name);
  }
}

// Closing: the windows below come back, and the window manager's events bound to the player end.
ret_t on_player_close(void* ctx, event_t* e) {
  (void)e;
  show_hidden_windows();
  widget_off_by_ctx(window_manager(), ctx);
  return RET_OK;
}

// ---- keys ----

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_FUCTION_S:
      Zavo_play_status = Zavo_play_status == 1 ? 0 : 1;
      GUI_SEND_TAP_VIDEO_MSG(TAP_REPLAY,
                             Zavo_play_status == 1 ? TAP_REPLAY_CONTINUE : TAP_REPLAY_PAUSE, NULL);
      show_status_icons(win);
      break;
    case GUI_KEY_PHOTO_S: step_once(win, true); break;
    case GUI_KEY_RANGE_S: step_once(win, false); break;
    case GUI_KEY_PHOTO_L: wind(win, true); break;
    case GUI_KEY_RANGE_L: wind(win, false); break;
    case GUI_KEY_FUCTION_L:
      stop_playback();
      navigator_switch_to("Zavo_file_menu", TRUE);
      break;
    case GUI_KEY_POWER_S:
      window_manager_back_to(window_manager(), "Zavo_home_page_1");
      stop_playback();
      break;
    default: break;
  }
  return RET_OK;
}

// Releasing a held key ends its winding.
ret_t on_key_release_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  if (evt->key == GUI_KEY_PHOTO_L_POP) {
    stop_timer(timer_forward_id);
    show_status_icons(win);
  } else if (evt->key == GUI_KEY_RANGE_L_POP) {
    stop_timer(timer_rewind_id);
    show_status_icons(win);
  }
  return RET_OK;
}

ret_t visit_init_child(void* ctx, const void* iter) {
  const widget_t* widget = static_cast<const widget_t*>(iter);
  if (widget->name == NULL) return RET_OK;
  const std::string_view name = widget->name;
  if (name == "progress_bar") {
    widget_on(window_manager(), file_screen_event(SCREEN_EVT_PLAY_POSITION), on_play_time_refresh,
              ctx);
  } else if (name == "label_total_time") {
    widget_on(window_manager(), file_screen_event(SCREEN_EVT_PLAY_LENGTH), on_total_time_refresh,
              ctx);
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_file_video_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);

  // Timers of an earlier player died with its window.
  timer_forward_id = 0;
  timer_rewind_id = 0;
  timer_step_icon_id = 0;

  stUIStatus.u64VideoTotalFrames = 0;
  const std::string name = file_menu_name(FILE_TAB_VIDEO, Zavo_video_index);
  std::printf("avi_name = %s\n", (device_path(MEDIA_VIDEO_DIR) + "/" + name).c_str());
  if (name.empty()) {
    std::printf("Zavo_file_video: no video %d of %d to play\n", Zavo_video_index, Zavo_video_num);
  } else {
    GUI_SEND_TAP_VIDEO_MSG(TAP_REPLAY, TAP_REPLAY_START, name.c_str());
  }
  widget_set_text_utf8(child(win, "label_video_name"), file_menu_stem(name).c_str());
  widget_set_visible(child(win, "view_file_corrupted"), FALSE);
  Zavo_play_status = 1;
  show_status_icons(win);

  hide_windows_below(win);
  widget_on(win, EVT_WINDOW_CLOSE, on_player_close, win);

  widget_foreach(win, visit_init_child, win);
  // Keys reach the window (none of its children takes the focus): one handler each, on it.
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  widget_on(win, EVT_KEY_UP, on_key_release_event, win);
  return RET_OK;
}
