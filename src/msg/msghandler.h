// The device link's protocol: checked frames in both directions.
//
// Frame (inside Inf_MsgText.context; L = byte 1):
//   0: 0xAA | 1: L | 2: type | 3: command | 4: sub-command or index | 5: 0 | 6..L-1: values
//   L: checksum (sum of bytes 0..L-1 mod 256) | L+1: 0xEB | L+2: 0xAA
//
// Inbound (listener thread): msgEventCallback -> uiOperationControl -> a handler per type that
// writes the shared records first and raises a screen event after, or posts a key.
// Outbound (any thread): pages write a record field, then call a GUI_SEND_* sender, which reads
// the field back, frames it and sends it without waiting.
#ifndef SCOPE_MSG_MSGHANDLER_H
#define SCOPE_MSG_MSGHANDLER_H

#include <cstddef>
#include <cstdint>
#include <span>

#include "msg/msg.h"

// ---- frame constants ----
inline constexpr uint8_t FRAME_HEADER = 0xAA;
inline constexpr uint8_t FRAME_END_SEC = 0xEB;
inline constexpr uint8_t FRAME_END_FIR = 0xAA;
inline constexpr uint8_t MSG_TYPE_FRAMED = 0x21;  // Inf_MsgText.type of a framed command
inline constexpr int FRAME_TYPE_MAX = 29;         // inbound types above this are dropped

// ---- buttons of the scope: byte 6 of a type-7 frame ----
typedef enum {
  KEY_FOCUS_UP_S = 0,
  KEY_FOCUS_UP_L = 1,
  KEY_FOCUS_UP_L_POP = 2,
  KEY_FOCUS_DOWN_S = 3,
  KEY_FOCUS_DOWN_L = 4,
  KEY_FOCUS_DOWN_L_POP = 5,
  KEY_POWER_S = 6,
  KEY_POWER_L = 7,
  KEY_POWER_L_POP = 8,
  KEY_PHOTO_S = 9,
  KEY_PHOTO_L = 10,
  KEY_PHOTO_L_POP = 11,
  KEY_FUCTION_S = 12,
  KEY_FUCTION_L = 13,
  KEY_FUCTION_L_POP = 14,
  KEY_RANGE_S = 15,
  KEY_RANGE_L = 16,
  KEY_RANGE_L_POP = 17,
  KEY_PHOTO_FUCTION_S = 18,
  KEY_RANGE_FUCTION_S = 19,
  KEY_RANGE_PHOTO_S = 20,
  KEY_UP_POWER_L = 21,
  KEY_NULL_MAX = 22,
} _KEY_COMMAND;

// ---- key codes the pages receive (posted through the toolkit's main loop) ----
typedef enum {
  GUI_KEY_PHOTO_L = 48,
  GUI_KEY_POWER_S = 49,
  GUI_KEY_POWER_L = 50,
  GUI_KEY_FOCUS_UP_S = 51,
  GUI_KEY_FOCUS_UP_L = 52,
  GUI_KEY_FOCUS_DOWN_S = 53,
  GUI_KEY_FOCUS_DOWN_L = 54,
  GUI_KEY_FUCTION_S = 55,
  GUI_KEY_FUCTION_L = 56,
  GUI_KEY_PHOTO_S = 57,
  GUI_KEY_FUCTION_L_POP = 73,
  GUI_KEY_POWER_L_POP = 79,
  GUI_KEY_DOWN_L_Release = 82,
  GUI_KEY_PHOTO_L_POP = 84,
  GUI_KEY_RANGE_L_POP = 85,
  GUI_KEY_UP_L_Release = 87,
  GUI_KEY_RANGE_S = 97,
  GUI_KEY_RANGE_L = 98,
  GUI_KEY_RANGE_PHOTO_S = 99,
  GUI_KEY_RANGE_FUCTION_S = 100,
  GUI_KEY_PHOTO_FUCTION_S = 101,
  GUI_KEY_UP_POWER_L = 113,
  GUI_KEY_NULL_MAX = 255,
} GUI_EV_KEY;

// ---- inbound command enumerations ----
typedef enum { INFRARED_BASIC = 1, INFRARED_CORRECT_TYPE = 15 } _INFRARED_TYPE;
typedef enum {
  COMPASS_AZIMUTH_ANGLE = 0,
  COMPASS_PITCH_ANGLE = 1,
  COMPASS_SLANT_ANGLE = 2,
} _COMPASS_ANGLE;
typedef enum { BATTERY_VALUE = 0, BATTERY_TYPE = 1 } _BATTERY_COMMAND;
typedef enum { GG_CLEAR = 0, GG_GET = 1, GG_SAVE = 2 } _GG_COMMAND;
typedef enum {
  UPDATA_STATE = 0,
  UPDATA_RESULT = 1,
  UPDATA_START_NOTICE = 2,
  UPDATA_CONFIRM = 1,  // outbound
  UPDATA_CHECK = 2,    // outbound
} _UPDATA_TYPE;
typedef enum {
  TAP_PICTURE_RECORD = 0,
  TAP_REPLAY = 1,
  TAP_PROCESS = 2,
  TAP_REWIND_FORWARD = 3,
  TAP_TOTAL_TIME = 4,
  TAP_EMPTY = 255,
} _TAP_COMMAND;

// ---- outbound command enumerations ----
typedef enum {
  BASIC_VIDEO_MODE = 0,
  BASIC_AXIS_MODE = 1,
  BASIC_AMMO_MODE = 2,
  BASIC_WEAPON_MODE = 3,
  BASIC_BALLISTICS_CURSOR = 4,
  BASIC_CURSOR_MODE = 5,
  BASIC_INFO_DISPLAY_MODE = 6,
  BASIC_SCREEN_LIGHT = 7,
  BASIC_CVBS_MODE = 8,
  BASIC_COMMU_MODE = 9,
  BASIC_TIME_MODE = 10,
  BASIC_RESET_MODE = 11,
  BASIC_STORAGE_FORMAT = 12,
  BASIC_SHUT_DOWN = 13,
  BASIC_AUTO_SCREEN = 14,
  // Indices above 14 are bare numbers in the protocol; the pages' names for them:
  BASIC_USB_TYPE = 18,
  BASIC_LASER_SWITCH = 22,
  BASIC_MICRO = 26,
  BASIC_REBOOT = 32,
  BASIC_COMPASS_SWITCH = 33,  // s8CompassSwitch
  BASIC_WIND_SWITCH = 34,
  BASIC_WIND_COUNT = 35,  // s8WindCountSwitch
  BASIC_RANGE_TYPE = 36,
  BASIC_MENU_LEVEL = 39,  // answer to the which-screen query: s8CurrentMenu
} _BASIC_FUNCTION;

typedef enum {
  INFRARED_CORRECT = 0,
  INFRARED_LIGHT = 1,
  INFRARED_CONTRACT = 2,
  INFRARED_ENHANCE = 3,
  INFRARED_POLARITY = 4,
  INFRARED_CORRECT_TYPE_CHOOSE = 5,
  INFRARED_BRIGHTLIGHT = 6,
  INFRARED_LIGHTPAOTECT = 8,
  INFRARED_SCENE = 9,
  INFRARED_FREEZE = 10,
  INFRARED_TEMPERATURE = 11,
  INFRARED_HOTTRACK = 12,
  INFRARED_AUTOSHUTTER = 13,
  INFRARED_ZOOM = 16,
  INFRARED_EMPTY = 255,
} _INFRARED_COMMAND;

typedef enum {
  VISI_LIGHT = 0,
  VISI_CONTRACT = 1,
  VISI_FOG = 2,
  VISI_ZOOM = 3,
  VISI_ENHANCE = 4,
  VISI_MODE = 5,
  VISI_EMPTY = 255,
} _VISI_COMMAND;

typedef enum { WIFI_SWITCH = 0, WIFI_CONNECT = 7, WIFI_EMPTY = 255 } _WIFI_COMMAND;

typedef enum {
  COMPASS_SEND_STANDARD = 0,
  COMPASS_OFFESET_PARAM = 1,
  COMPASS_STANDARDING = 2,
  COMPASS_STANDARDING_SCORE = 3,
  COMPASS_STANDARDING_POINT = 4,
  COMPASS_PRODUCT_TYPE = 5,
  COMPASS_CORRECT = 6,
  COMPASS_IR_CORRECT = 7,
  COMPASS_EMPTY = 255,
} _COMPASS_COMMAND;

typedef enum {
  COMPASS_HORIZONTAL_START = 0,
  COMPASS_HORIZONTAL_STOP = 1,
  COMPASS_VERTICAL_START = 2,
  COMPASS_VERTICAL_STOP = 3,
  COMPASS_CORRECT_INTERRUPT = 4,
} _COMPASS_CORRECT_TYPE;

typedef enum {
  COMPASS_DECLINATION_OFFESET = 0,
  COMPASS_AZIMUTH_OFFESET = 1,
  COMPASS_PITCH_OFFESET = 2,
  COMPASS_SLANT_OFFESET = 3,
  COMPASS_OFFSET_EMPTY = 255,
} _COMPASS_ANGLE_OFFESET;

typedef enum {
  FUSION_LIGHT = 0,
  FUSION_CONTRACT = 1,
  FUSION_MODE = 2,
  FUSION_ZOOM = 3,
  FUSION_POSITION = 4,
  FUSION_EMPTY = 255,
} _FUSION_COMMAND;

typedef enum { PIP_MODE = 0, PIP_ZOOM = 1, PIP_EMPTY = 255 } _PIP_COMMAND;

typedef enum {
  RETICLE_COLOR = 0,
  RETICLE_SWITCH = 1,
  RETICLE_TYPE = 2,
  RETICLE_POSITION = 3,
  RETICLE_MENU_SWITCH = 4,
  RETICLE_LIGHT = 5,
  RETICLE_GROUP = 6,
  RETICLE_ZERO = 7,
  RETICLE_LASER_POSITION = 8,
  RETICLE_RANGE_POSITION = 9,
  RETICLE_DISTANCE = 10,
  RETICLE_ENTER_RETICLE_MOVE = 11,
  RETICLE_PIP_EVENT = 12,
  RETICLE_BACK_RETICLE_ZERO_CHILD = 254,
  RETICLE_EMPTY = 255,
} _RETICLE_COMMAND;

typedef enum {
  TAP_RECORD_START = 0,
  TAP_RECORD_STOP = 1,
  TAP_TAKE_PICTURE = 2,
} _TAP_VIDEO_RECORD;

typedef enum {
  TAP_REPLAY_PAUSE = 0,
  TAP_REPLAY_CONTINUE = 1,
  TAP_REPLAY_STOP = 2,
  TAP_REPLAY_START = 3,
  TAP_REPLAY_VEDIO_TOTAL_TIME = 4,
} _TAP_VIDEO_REPLAY;

typedef enum {
  BLIND_CURSOR_SWITCH = 0,
  BLIND_MOVE_POSITION = 1,
  BLIND_REPAIR = 2,
  BLIND_SAVE = 3,
  BLIND_MOVE_TENPOSITION = 4,
} _BLIND_COMMAND;

typedef enum {
  RECOIL_SWITCH = 0,
  RECOIL_BEFORE = 1,
  RECOIL_AFTER = 2,
  RECOIL_SENSITIVITY = 3,
  RECOIL_BREAKOUT = 6,
} _RECOIL_TYPE;

typedef enum {
  BALLISTIC_OPEN_CALCU = 0,
  BALLISTIC_BULLET_INFO = 1,
  BALLISTIC_TWIST_INFO = 2,
  BALLISTIC_ZEROWEATHER_LENSOFFSET = 3,
  BALLISTIC_WEATHER = 4,
  BALLISTIC_LENS_INFO = 5,
  BALLISTIC_WIND_INFO = 6,
  BALLISTIC_TARGET_INFO = 7,
} BALLISTIC_SEND_PARM_INDEX;

// ---- screen events ----
// A screen event is a toolkit event of type EVT_USER_START (8192) + offset, dispatched to the
// window manager on the UI thread. One list, (offset, name), so that pages subscribe by name.
// Offset 45 (over-temperature) is subscribed to but raised by no frame of the protocol.
#define SCREEN_EVENT_LIST(X)            \
  X(2, SCREEN_EVT_RETICLE_SWITCH)       \
  X(5, SCREEN_EVT_RETICLE_POSITION)     \
  X(10, SCREEN_EVT_COMPASS_AZIMUTH)     \
  X(11, SCREEN_EVT_COMPASS_PITCH)       \
  X(12, SCREEN_EVT_COMPASS_SLANT)       \
  X(13, SCREEN_EVT_PLAY_POSITION)       \
  X(14, SCREEN_EVT_PLAY_LENGTH)         \
  X(15, SCREEN_EVT_BATTERY)             \
  X(19, SCREEN_EVT_WIFI_CONNECTION)     \
  X(21, SCREEN_EVT_BATTERY_TYPE)        \
  X(25, SCREEN_EVT_RETICLE_MENU_SWITCH) \
  X(26, SCREEN_EVT_LIGHT_OVERHEAT)      \
  X(27, SCREEN_EVT_GG_CLEAR)            \
  X(28, SCREEN_EVT_GG_GET)              \
  X(29, SCREEN_EVT_GG_SAVE)             \
  X(30, SCREEN_EVT_DISTANCE)            \
  X(31, SCREEN_EVT_RETICLE_MOVE)        \
  X(33, SCREEN_EVT_RANGE_MARKER_MOVE)   \
  X(34, SCREEN_EVT_LASER_MARKER_MOVE)   \
  X(35, SCREEN_EVT_ZOOM)                \
  X(36, SCREEN_EVT_COMPASS_SWITCH)      \
  X(37, SCREEN_EVT_LASER_SWITCH)        \
  X(38, SCREEN_EVT_POLARITY)            \
  X(40, SCREEN_EVT_WIFI_SWITCH)         \
  X(42, SCREEN_EVT_RETICLE_COLOR)       \
  X(43, SCREEN_EVT_RETICLE_LIGHT)       \
  X(44, SCREEN_EVT_BRIGHT_LIGHT)        \
  X(45, SCREEN_EVT_TEMPERATURE_REMIND)  \
  X(46, SCREEN_EVT_RETICLE_TYPE)        \
  X(47, SCREEN_EVT_RETICLE_ZERO_BACK)   \
  X(48, SCREEN_EVT_BALLISTIC_RESULT)    \
  X(49, SCREEN_EVT_SHUTTER)             \
  X(50, SCREEN_EVT_RANGE_SWITCH)        \
  X(51, SCREEN_EVT_WIND)                \
  X(52, SCREEN_EVT_BALLISTIC_PROFILE)   \
  X(53, SCREEN_EVT_MICRO_SWITCH)        \
  X(54, SCREEN_EVT_RECOIL_TRIGGERED)    \
  X(55, SCREEN_EVT_RECORD_TIP)          \
  X(56, SCREEN_EVT_ZOOM_CHANGED)        \
  X(57, SCREEN_EVT_UPDATA)              \
  X(58, SCREEN_EVT_RECOIL_SWITCH)       \
  X(59, SCREEN_EVT_BALLISTIC_RETICLE)   \
  X(60, SCREEN_EVT_BALLISTIC_COLOR)     \
  X(61, SCREEN_EVT_STANDBY)             \
  X(62, SCREEN_EVT_FREEZE)              \
  X(63, SCREEN_EVT_PIP_RETICLE)         \
  X(64, SCREEN_EVT_RANGE_RETICLE)       \
  X(65, SCREEN_EVT_LASER_RETICLE)

// Offsets from EVT_USER_START: EVT_USER_START + SCREEN_EVT_BATTERY is event 8207.
#define SCREEN_EVENT_ENUM_ITEM(offset, name) name = offset,
typedef enum { SCREEN_EVENT_LIST(SCREEN_EVENT_ENUM_ITEM) } SCREEN_EVENT;
#undef SCREEN_EVENT_ENUM_ITEM

// ---- the hand-off from the listener thread to the user interface thread ----
// Screen events, navigations and key posts go through one ordered mailbox that the UI thread
// drains from an idle function; the toolkit's 20-entry cross-thread queue then holds at most one
// drain request (plus one bounded batch of posted keys, and one request of the listener for the
// shared records). Every raised screen event is dispatched once, in the order raised.
//
// How much can wait: while the main loop runs, the listener applies frames only in the records'
// gate, which stays shut while LINK_ITEMS_PER_PASS items wait; so the mailbox holds at most one
// pass plus what the last frame let in raises (a handful). More can pile up only while the UI
// thread sleeps with the records released (the observation screen's first-status wait, before
// the main loop runs) or when page code raises many events in one handler: the capacities below
// leave room for far more than that, and what goes beyond is dropped with an [ERROR] line.
inline constexpr int LINK_KEY_CAPACITY = 256;       // button presses waiting for the UI thread
inline constexpr int LINK_KEY_POSTS_PER_PASS = 16;  // key posts per drain pass (of 20 queue slots)
inline constexpr int LINK_ITEMS_PER_PASS = 64;      // mailbox items per drain pass
inline constexpr int LINK_NAVIGATION_CAPACITY = 32;
inline constexpr int LINK_EVENT_CAPACITY = 1024;  // screen events waiting for the UI thread

// Counters of the device link, for diagnostics, tests and benchmarks.
typedef struct {
  uint64_t frames_received;      // messages of type 0x21 given to uiOperationControl
  uint64_t frames_dropped;       // failed the frame check, L below 6, or type above 29
  uint64_t events_raised;        // event_distrubution calls
  uint64_t events_dropped;       // refused because LINK_EVENT_CAPACITY events were waiting
  uint64_t events_dispatched;    // dispatched to the window manager on the UI thread
  uint64_t keys_queued;          // button presses accepted into the mailbox
  uint64_t keys_dropped;         // presses refused because LINK_KEY_CAPACITY was reached
  uint64_t key_posts;            // main_loop_post_key_event calls made by the drain
  uint64_t key_posts_failed;     // of which the toolkit refused (its queue was full)
  uint64_t navigations;          // navigator_to calls made by the drain
  uint64_t navigations_dropped;  // refused because LINK_NAVIGATION_CAPACITY was reached
  uint64_t drain_requests;       // idle_queue calls for the drain
  uint64_t drain_request_failures;
} Inf_LinkStats;

Inf_LinkStats Inf_GetLinkStats(void);
// True when nothing waits in the mailbox and no drain is scheduled or running.
bool Inf_LinkIsIdle(void);
// Asks for a navigation on the UI thread, in order with the screen events and keys already
// queued. Callable from any thread; `name` is copied.
void Inf_LinkNavigate(const char* name);
// Returns the hand-off and the inbound side to a fresh start: nothing pending, counters at zero,
// no firmware-update notice seen, no shutter timer. Only for a toolkit that was itself started
// afresh while no listener thread dispatches (test cases do this; the product starts once).
void Inf_LinkReset(void);

// ---- inbound ----
void msgEventCallback(Inf_MsgText* text, void* ctx);
// Checks the frame, then dispatches it (uiOperationDispatch) unless its type is above 29.
void uiOperationControl(uint8_t* frame, uint32_t length);
// A checked frame as its handler sees it: bytes 0 .. L-1 (header, L, type, command, sub,
// reserved, values), without the checksum and trailer.
using FrameBytes = std::span<const uint8_t>;
// Dispatches a checked frame to the handler of its type. The handler reads no byte beyond the
// span: a frame too short for the values it reads is ignored with one line.
void uiOperationDispatch(FrameBytes frame);
int32_t Protocol_parse(const uint8_t* frame);
uint8_t check_num(const uint8_t* bytes, int count);
// Raises screen event `event` (8192 + offset) on the UI thread. Callable from any thread.
void event_distrubution(int event);
int Set_RunStatusPara(int cmd, int value);
int Get_RunStatusPara(int cmd);
void uiEventNotif(int type, void* data);

// ---- outbound ----
int32_t Msgtext_Ui_To_App(uint8_t type, int32_t length, const uint8_t* frame);

// The frame builders. Each takes the sender's leading bytes (type, command, sub-command, values),
// lays out the frame, appends checksum, 0xEB, 0xAA and sends it with Msgtext_Ui_To_App.
// 4 bytes: type, command, sub, value -> L 7, 10 bytes on the wire.
int32_t BasicFunctionHandlerToApp(const uint8_t* bytes);
// 5 bytes: type, command, sub, value0, value1 -> L 8, 11 bytes.
int32_t InfHandlerToApp(const uint8_t* bytes);
// 7 bytes: type, command, sub, four values -> L 10, 13 bytes.
int32_t cliponPositionHandlerToApp(const uint8_t* bytes);
// 10 bytes: type, command, eight values -> L 14, 17 bytes, laid out type, 1, command, 0, values.
int32_t VideoFrameHandlerToApp(const uint8_t* bytes);
// type, 0, 0, 0, value -> L 7, 10 bytes.
int32_t UIreadyToApp(uint8_t type, uint8_t value);

// Per-family names of the builders.
inline int32_t visiHandlerToApp(const uint8_t* b) {
  return InfHandlerToApp(b);
}
inline int32_t fusionHandlerToApp(const uint8_t* b) {
  return InfHandlerToApp(b);
}
inline int32_t pipHandlerToApp(const uint8_t* b) {
  return InfHandlerToApp(b);
}
inline int32_t reticleDistanceHandlerToApp(const uint8_t* b) {
  return InfHandlerToApp(b);
}
inline int32_t wifiHandlerToApp(const uint8_t* b) {
  return BasicFunctionHandlerToApp(b);
}
inline int32_t commpassCorrectToApp(const uint8_t* b) {
  return BasicFunctionHandlerToApp(b);
}
inline int32_t reticleHandlerToApp(const uint8_t* b) {
  return BasicFunctionHandlerToApp(b);
}
inline int32_t blindHandlerToApp(const uint8_t* b) {
  return BasicFunctionHandlerToApp(b);
}
inline int32_t ggHandlerToApp(const uint8_t* b) {
  return BasicFunctionHandlerToApp(b);
}
inline int32_t recoilHandlerToApp(const uint8_t* b) {
  return BasicFunctionHandlerToApp(b);
}
inline int32_t updataHandlerToApp(const uint8_t* b) {
  return BasicFunctionHandlerToApp(b);
}
inline int32_t commpassHandlerToApp(const uint8_t* b) {
  return cliponPositionHandlerToApp(b);
}
inline int32_t fusionPositionHandlerToApp(const uint8_t* b) {
  return cliponPositionHandlerToApp(b);
}
inline int32_t reticlePositionHandlerToApp(const uint8_t* b) {
  return cliponPositionHandlerToApp(b);
}

// Longest media file name GUI_SEND_TAP_VIDEO_MSG carries: the name and its NUL fill the values
// of a frame whose L is at most 255.
inline constexpr size_t TAP_NAME_MAX = 255 - 6 - 1;

int32_t GUI_SEND_BASIC_FUNCTION_MSG(uint8_t index);
int32_t GUI_SEND_CLIPON_POSITION_MSG(uint8_t index);
int32_t GUI_SEND_PARAM_FUNCTION_MSG(uint8_t index);
int32_t GUI_SEND_INFRARED_MSG(uint8_t index);
int32_t GUI_SEND_VISI_MSG(uint8_t index);
int32_t GUI_SEND_WIFI_MSG(uint8_t index);
int32_t GUI_SEND_COMPASS_MSG(uint8_t index);
int32_t GUI_SEND_COMPASS_CORRECT(uint8_t index);
int32_t GUI_SEND_UI_READY_MSG(uint8_t value);
int32_t GUI_SEND_FUSION_MSG(uint8_t index);
int32_t GUI_SEND_FUSION_POSITION_MSG(uint8_t index);
int32_t GUI_SEND_PIP_MSG(uint8_t index);
int32_t GUI_SEND_RETICLE_MSG(uint8_t index);
int32_t GUI_SEND_RETICLE_POSITION_MSG(uint8_t index);
// command: a _TAP_COMMAND; sub: a _TAP_VIDEO_RECORD or _TAP_VIDEO_REPLAY value;
// name: the bare media file name for replay commands, or null.
int32_t GUI_SEND_TAP_VIDEO_MSG(uint8_t command, uint8_t sub, const char* name);
int32_t GUI_SEND_VIDEO_FRAME_MSG(uint8_t index);
int32_t GUI_SEND_BLIND_MSG(uint8_t index);
int32_t GUI_SEND_GG_MSG(uint8_t index);
int32_t GUI_SEND_UPDATA_MSG(uint8_t index);
int32_t GUI_SEND_BALLISTIC_PARM_MSG(uint8_t index, uint8_t item);
int32_t GUI_SEND_RECOIL_MSG(uint8_t index);
int32_t GUI_SEND_DISTANCE_FUNCTION_MSG(uint8_t a, uint8_t b);

#endif  // SCOPE_MSG_MSGHANDLER_H
