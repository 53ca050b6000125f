// Shared inside the device link's protocol module only: msghandler.cpp (frame check and inbound
// dispatch), msghandler_ui.cpp (the hand-off to the UI thread) and msghandler_send.cpp (frame
// builders and senders). Pages include msg/msghandler.h, never this file.
#ifndef SCOPE_MSG_MSGHANDLER_INTERNAL_H
#define SCOPE_MSG_MSGHANDLER_INTERNAL_H

#include <cstdint>
#include <string>

#include "awtk.h"
#include "common/status_records.h"
#include "msg/msghandler.h"

namespace msghandler_internal {

// ---------------------------------------------------------------------------------------------
// Screen event numbers raised by the link (EVT_USER_START + offset).
// ---------------------------------------------------------------------------------------------
constexpr int screen_event(SCREEN_EVENT offset) {
  return static_cast<int>(EVT_USER_START) + static_cast<int>(offset);
}

constexpr int EV_RETICLE_SWITCH = screen_event(SCREEN_EVT_RETICLE_SWITCH);            // 8194
constexpr int EV_RETICLE_POSITION = screen_event(SCREEN_EVT_RETICLE_POSITION);        // 8197
constexpr int EV_COMPASS_AZIMUTH = screen_event(SCREEN_EVT_COMPASS_AZIMUTH);          // 8202
constexpr int EV_COMPASS_PITCH = screen_event(SCREEN_EVT_COMPASS_PITCH);              // 8203
constexpr int EV_COMPASS_SLANT = screen_event(SCREEN_EVT_COMPASS_SLANT);              // 8204
constexpr int EV_PLAY_POSITION = screen_event(SCREEN_EVT_PLAY_POSITION);              // 8205
constexpr int EV_PLAY_LENGTH = screen_event(SCREEN_EVT_PLAY_LENGTH);                  // 8206
constexpr int EV_BATTERY = screen_event(SCREEN_EVT_BATTERY);                          // 8207
constexpr int EV_WIFI_CONNECTION = screen_event(SCREEN_EVT_WIFI_CONNECTION);          // 8211
constexpr int EV_BATTERY_TYPE = screen_event(SCREEN_EVT_BATTERY_TYPE);                // 8213
constexpr int EV_RETICLE_MENU_SWITCH = screen_event(SCREEN_EVT_RETICLE_MENU_SWITCH);  // 8217
constexpr int EV_LIGHT_OVERHEAT = screen_event(SCREEN_EVT_LIGHT_OVERHEAT);            // 8218
constexpr int EV_GG_CLEAR = screen_event(SCREEN_EVT_GG_CLEAR);                        // 8219
constexpr int EV_GG_GET = screen_event(SCREEN_EVT_GG_GET);                            // 8220
constexpr int EV_GG_SAVE = screen_event(SCREEN_EVT_GG_SAVE);                          // 8221
constexpr int EV_DISTANCE = screen_event(SCREEN_EVT_DISTANCE);                        // 8222
constexpr int EV_RETICLE_MOVE = screen_event(SCREEN_EVT_RETICLE_MOVE);                // 8223
constexpr int EV_RANGE_MARKER_MOVE = screen_event(SCREEN_EVT_RANGE_MARKER_MOVE);      // 8225
constexpr int EV_LASER_MARKER_MOVE = screen_event(SCREEN_EVT_LASER_MARKER_MOVE);      // 8226
constexpr int EV_ZOOM = screen_event(SCREEN_EVT_ZOOM);                                // 8227
constexpr int EV_COMPASS_SWITCH = screen_event(SCREEN_EVT_COMPASS_SWITCH);            // 8228
constexpr int EV_LASER_SWITCH = screen_event(SCREEN_EVT_LASER_SWITCH);                // 8229
constexpr int EV_POLARITY = screen_event(SCREEN_EVT_POLARITY);                        // 8230
constexpr int EV_WIFI_SWITCH = screen_event(SCREEN_EVT_WIFI_SWITCH);                  // 8232
constexpr int EV_RETICLE_COLOR = screen_event(SCREEN_EVT_RETICLE_COLOR);              // 8234
constexpr int EV_RETICLE_LIGHT = screen_event(SCREEN_EVT_RETICLE_LIGHT);              // 8235
constexpr int EV_BRIGHT_LIGHT = screen_event(SCREEN_EVT_BRIGHT_LIGHT);                // 8236
constexpr int EV_RETICLE_TYPE = screen_event(SCREEN_EVT_RETICLE_TYPE);                // 8238
constexpr int EV_RETICLE_ZERO_BACK = screen_event(SCREEN_EVT_RETICLE_ZERO_BACK);      // 8239
constexpr int EV_BALLISTIC_RESULT = screen_event(SCREEN_EVT_BALLISTIC_RESULT);        // 8240
constexpr int EV_SHUTTER = screen_event(SCREEN_EVT_SHUTTER);                          // 8241
constexpr int EV_WIND = screen_event(SCREEN_EVT_WIND);                                // 8243
constexpr int EV_BALLISTIC_PROFILE = screen_event(SCREEN_EVT_BALLISTIC_PROFILE);      // 8244
constexpr int EV_MICRO_SWITCH = screen_event(SCREEN_EVT_MICRO_SWITCH);                // 8245
constexpr int EV_RECOIL_TRIGGERED = screen_event(SCREEN_EVT_RECOIL_TRIGGERED);        // 8246
constexpr int EV_RECORD_TIP = screen_event(SCREEN_EVT_RECORD_TIP);                    // 8247
constexpr int EV_ZOOM_CHANGED = screen_event(SCREEN_EVT_ZOOM_CHANGED);                // 8248
constexpr int EV_UPDATA = screen_event(SCREEN_EVT_UPDATA);                            // 8249
constexpr int EV_RECOIL_SWITCH = screen_event(SCREEN_EVT_RECOIL_SWITCH);              // 8250
constexpr int EV_BALLISTIC_RETICLE = screen_event(SCREEN_EVT_BALLISTIC_RETICLE);      // 8251
constexpr int EV_BALLISTIC_COLOR = screen_event(SCREEN_EVT_BALLISTIC_COLOR);          // 8252
constexpr int EV_STANDBY = screen_event(SCREEN_EVT_STANDBY);                          // 8253
constexpr int EV_FREEZE = screen_event(SCREEN_EVT_FREEZE);                            // 8254
constexpr int EV_PIP_RETICLE = screen_event(SCREEN_EVT_PIP_RETICLE);                  // 8255
constexpr int EV_RANGE_RETICLE = screen_event(SCREEN_EVT_RANGE_RETICLE);              // 8256
constexpr int EV_LASER_RETICLE = screen_event(SCREEN_EVT_LASER_RETICLE);              // 8257

static_assert(EV_BATTERY == 8207 && EV_DISTANCE == 8222 && EV_UPDATA == 8249);
static_assert(EV_LASER_RETICLE == 8257 && EV_RETICLE_SWITCH == 8194);

constexpr int PROFILE_LAST = BALLISTIC_PROFILE_COUNT - 1;

// Bytes of the shared records are compared as unsigned codes whatever the signedness of char.
inline int u8(char c) {
  return static_cast<unsigned char>(c);
}

// A 16-bit value little-endian into an outbound frame.
inline void put_le16(uint8_t* p, int v) {
  p[0] = static_cast<uint8_t>(v & 0xFF);
  p[1] = static_cast<uint8_t>((v >> 8) & 0xFF);
}

// ---- hand-off to the UI thread (msghandler_ui.cpp) ----
// Queues a button's key posts for the UI thread, in order with the events and navigations.
void mail_key(uint8_t code, bool down, bool up);
// Asks again for a drain the toolkit refused; msgEventCallback calls it after each frame.
void mail_kick();
// Runs `call` on the UI thread, whichever thread asks.
void run_on_ui_thread(void (*call)());
// The window on top, or the last navigation still waiting for the UI thread.
std::string top_window_name();
// Remembers `name` in stUIStatus.temp_window (the window to come back to).
void store_temp_window(const std::string& name);

// ---- inbound dispatch (msghandler.cpp) ----
// Frame counters at zero, no firmware-update notice seen.
void reset_inbound();
// Copies the frame counters into `st`.
void read_frame_counts(Inf_LinkStats& st);

// ---- senders (msghandler_send.cpp) ----
// Reads the four bytes of a frame's float through the shared float buffer.
float frame_float(const uint8_t* p);
// No shutter timer running.
void reset_senders();

}  // namespace msghandler_internal

#endif  // SCOPE_MSG_MSGHANDLER_INTERNAL_H
