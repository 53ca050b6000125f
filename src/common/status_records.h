// The scope's process-wide state: plain records shared by every page and by the device link.
//
// The device application sends whole Inf_DevStatus, Inf_IR_Cursor and Info_ballistics records
// as raw bytes (see msghandler), so the in-memory layout of those three records is a wire
// format: natural alignment, no packing, pinned below by static_asserts for LP64 (desktop) and
// AArch64 (the board).
//
// No lock guards the records. Inbound handlers write fields first and raise the screen event
// after, so a page reading on the UI thread sees the new value.
//
// The records are defined once, in pages/Zavo_Init.cpp.
#ifndef SCOPE_COMMON_STATUS_RECORDS_H
#define SCOPE_COMMON_STATUS_RECORDS_H

#include <cstddef>
#include <cstdint>

// ---- small enumerations shared by many pages (names and values are part of the protocol) ----

typedef enum { MOA = 0, MRAD = 1 } ScopeUnit;
typedef enum { LEFT = 0, RIGHT = 1 } RiflingDirection;
typedef enum { DISTANCE_M = 0, DISTANCE_YD = 1 } DISTANCE_UINT;
typedef enum { INTERFACE_AOD = 0, INTERFACE_OBSERVE = 1, INTERFACE_MENU = 2 } INTERFACE_STATE;

// Raw battery units. The tip value lies one below the shut-down value on purpose.
typedef enum {
  GUI_BATTERY_FULL = 800,
  GUI_BATTERY_3CELL = 760,
  GUI_BATTERY_2CELL = 700,
  GUI_BATTERY_1CELL = 660,
  GUI_BATTERY_TIP = 569,
  GUI_BATTERY_SHUT_DOWN = 570,
} GUI_BETTERY_VALUE;

typedef enum {
  RANGE_CLOSE = 0,
  RANGE_OPEN = 1,
  RANGE_SEND = 1,
  RANGE_COUTINUTE_SEND = 3,
  RANGE_COUTINUTE_SEND_STOP = 0,
  RANGE_SINGLE = 0,
  RANGE_CONTINUOUS = 1,
  RANGE_METERS = 0,
  RANGE_YARD = 1,
  RANGE_RETURN_SUCCESE = 0,
  RANGE_RETURN_FAIL = 255,
} RANGE_CONTROL;

typedef enum {
  BASIC_PARAM = 0,
  RETICLE_PARAM = 1,
  BALLISTIC_PARM = 2,
  SAVE_ALLPARAM = 3,
  BALLISTIC_PARM_midway = 4,
} PARAM_FUNCTION_SAVE;

typedef enum { EVENT_CLOSE = 0, EVENT_OPEN = 1 } EVENT;

typedef enum {
  DIRECTION_U_D = 0,
  DIRECTION_L_R = 1,
  DIRECTION_COUNT = 255,
} BLIND_PIXEL_MOVE_DIRECTION;

typedef enum {
  MENU_DEFAUL_MENU = 0,
  MENU_HOLD_BALLISTIC_WEATHER = 1,
  MENU_HOLD_BALLISTIC_BULLET = 2,
  MENU_HOLD_BALLISTIC_ZEROWEATHER = 3,
  MENU_HOLD_BALLISTIC_LENS = 4,
  MENU_LAST_MENU_COUNT = 255,
} UI_LAST_MENU;

typedef enum {
  TYPE_NUM3 = 2,
  TYPE_NUM4_POINT = 3,
  TYPE_NUM4 = 4,
  TYPE_NUM5 = 5,
  TYPE_NUM4_POINT_3 = 6,
} PARA_TYPE;

// The enumerator MENU_LIST hides the type name, so the type is written `enum MENU_LIST`.
enum MENU_LIST {
  MENU_FILE = 1,
  MENU_LIST = 2,
  MENU_PLAY_DELETE = 3,
  MENU_DELETE_CHOOSE = 4,
  MENU_FILE_SET = 5,
  MENU_COUNT = 255,
};

// ---- persistent settings, loaded whole from the device application ----
// The s8/s16 prefixes are the record's own names; the declared width is the real one.
typedef struct {
  char s8UseMode;
  char s8VideoMode;
  char s8ConciseMode;
  char s8IrPolarity;
  char s8IrBrightness;
  char s8IrContrast;
  char s8CorrectType;
  char s8Redhotthreshold;
  char s8IrEnchance;
  char s8IrScene;
  char s8Stronglight_protect;
  char s8IrSize;
  char s8VisiBrightness;
  char s8VisiContrast;
  char s8FuMode;
  char s8FuBrightness;
  char s8FuContrast;
  char s8PipMode;
  char s8ReticleMenuSwitch;
  char s8ReticleColour;
  char s8ReticleSwitch;
  char s8ReticleBrightness;
  char s8ReticleType;
  int16_t s16ReticlePositionX;
  int16_t s16ReticlePositionY;
  int16_t s16RangeOffsetX;
  int16_t s16RangeOffsetY;
  int16_t s16LaserIndicatX;
  int16_t s16LaserIndicatY;
  char s8VideoOut;
  char s8ScreenBrightness;
  char s8ScreenHue;
  char s8Language;
  char s8SortType;
  char s8FillLightSwitch;
  char s8FillLightBright;
  int16_t s16FushionX;
  int16_t s16FushionY;
  int16_t s16CompassMagnetic;
  int16_t s16CliponPositionX;
  int16_t s16CliponPositionY;
  char s8DistanceUint;
  char s8RangeType;
  char s8CompassSwitch;
  char s8HotTrack;
  char s8AutoShutter;
  char s8RecoilBefore;
  char s8RecoilAfter;
  char s8RecoilState;
  char s8MicroSwitch;
  char s8BallisticReticle;
  char s8RangeSwitch;
  char s8RecoilSensitivity;
  char s8RangeReticleType;
  char s8RangeReticleColor;
  char s8PIPReticleType;
  char s8PIPReticleColor;
  char s8LaserReticleType;
  char s8LaserReticleColor;
  char s8BallisticReticleColor;
  char s8BallisticGroup;
} Inf_DevStatus;

// ---- run-time state; never loaded whole, so its layout is not a wire format ----
typedef struct {
  int16_t s8IRZoom;  // hundredths: 100 = 1.00 (16 bits on purpose)
  char s8VisiZoom;
  char s8VisiMode;
  char s8FuZoom;
  char s8WifiSwitch;
  char s8WifiConnection;
  char s8BluetoochSwitch;
  char s8UsbMode;
  char s8PowerSwitch;
  char s8LaserSwitch;
  char s8FirstLanguageFlag;
  char s8LightOverheat;
  char s8ShutDownStatus;
  char s8BlindSwitch;
  char s8BlindPosition;
  char s8BlindTenPosition;
  char s8BlindType;
  char s8BlindSaveStatus;
  char s8GGClearStatus;
  char s8GGGetStatus;
  char s8GGSaveStatus;
  char s8BatteryType;
  int16_t s16BatteryValue;
  char s8BatteryReported;  // 1 once the device has reported a battery level
  int16_t s16CompassAzimuth;
  int16_t s16CompassPitch;
  int16_t s16CompassSlant;
  uint64_t u64VideoCurrentFrames;
  uint64_t u64VideoTotalFrames;
  uint64_t u64VideoForwardFrames;
  uint16_t u8VideoCurrentFrames;  // frame rate divisor; 16 bits on purpose
  char s8InterfaceState;
  char s8RangeMode;
  char s8RangeState;
  int16_t s16Distance;   // decimetres
  int16_t s16WindSpeed;  // millimetres per second
  char s8AnemometerSwitch;
  char s8AnemometeCountSwitch;
  char s8CompassTempOcclusion;
  char s8RecordingState;
  char unload_file_name[128];
  char s8Irfreeze;
  char event_distrubut_reday;  // 1 once screen events may be raised
  char s8Enter_reticle_move;
  char s8IrBrightLight;
  char s8IrTemperature;
  char s8WindSwitch;
  char s8WindCountSwitch;
  char temp_window[32];
  char low_battery_shutdown;
  char wind_connect_state;
  char s8Updata_confirm;
  char s8Updata_check;
  char s8Updata_state;
  char s8Updata_result;
  char s8CurrentMenu;
  char s8ReticleTypeColorChoose;
  char s8ShutterState;
} Inf_UIStatus;

// ---- language configuration read at start ----
typedef struct {
  char s8DefaultLanguage;
  char s8LangListCount;
  char s8LangList[8];
} Inf_CustConfig;

// ---- ballistic profile, loaded whole from the device application ----
typedef struct {
  int16_t range;  // metres
  int16_t range_yard;
  double shootingAngle;  // degrees
} Info_target;

typedef struct {
  double angle;
  double speed;
} Info_wind;

typedef struct {
  double lat;
  double angle;
} Info_CoriolisEffect;

typedef struct {
  float altitude;
  float barometer;
  float temperature;
  float relative_humidity;
} Info_atmosphere;

typedef struct {
  double length;
  double diameter;
  double weight;
  double ballisticsCoef;
  int32_t dragFunction;
  double velocity;
  Info_atmosphere atmosphere;  // the zeroing weather
  int32_t isOpenAtmosphere;
  ScopeUnit zeroOffsetUnit;
  double zeroOffsetVerticalMOA;
  double zeroOffsetHorizontalMOA;
  double zeroOffsetVerticalMRAD;
  double zeroOffsetHorizontalMRAD;
} Info_bullet;

typedef struct {
  int16_t zeroRange;  // metres
  int16_t zeroRange_yard;
  double sightHeightOverBore;
  ScopeUnit unit;
  double verticalUnitPerCard;
  double horizontalUnitPerCard;
} Info_scope;

typedef struct {
  Info_bullet bullet;
  Info_scope scope;
  double riflingRange;
  RiflingDirection direction;
} Info_gun;

typedef struct {
  uint8_t ballistics_sw;
  ScopeUnit unit;
  uint8_t spinDriftOpt;
  Info_target target;
  Info_wind wind;
  Info_CoriolisEffect corioliseffect;
  Info_atmosphere atmosphere;
  Info_gun gun;
} Info_ballistics;

typedef struct {
  double moaV;
  double moaH;
  double mradV;
  double mradH;
  double clicksV;
  double clicksH;
  int32_t moveX;  // aim point offset at zoom 1, pixels, positive right
  int32_t moveY;  // positive up
} Result_ballistics;

// ---- zeroing data: 5 groups of 5 zero points, loaded whole ----
typedef struct {
  int16_t u16IrCursorDistance;  // metres (signed, whatever the prefix says)
  int16_t u16IrCursorDistanceYD;
  int16_t s8IrCursorCurrentX;  // reticle centre for this zero, screen pixels
  int16_t s8IrCursorCurrentY;
} Inf_Cursor_Zero;

typedef struct {
  uint8_t u8CurrentZero;
  uint8_t u8TempZero;
  Inf_Cursor_Zero zero[5];
} Inf_Cursor_Group;

typedef struct {
  uint8_t u8CurrentGroup;
  Inf_Cursor_Group group[5];
} Inf_IR_Cursor;

// ---- device geometry handed to the ballistic calculation ----
typedef struct {
  char deviceModel[32];
  int32_t dispWidth;
  int32_t dispHight;
  double viewFieldHori;
  double viewFieldVeri;
} DeviceInfo_ballistics;

// ---- the globals (defined in pages/Zavo_Init.cpp) ----
extern Inf_DevStatus stDevStatus;
extern Inf_UIStatus stUIStatus;
extern Inf_CustConfig s_stCustConfig;
extern Info_ballistics info[5];
extern Result_ballistics result_ball;
extern Inf_IR_Cursor IR_Cursor;

// Number of ballistic profiles in `info`; a profile index is valid when below this.
inline constexpr int BALLISTIC_PROFILE_COUNT = 5;

// The current profile, info[stDevStatus.s8BallisticGroup], or null while the group byte (a whole
// settings record from the device may carry anything) is outside 0..4. Never index `info` with
// the group byte directly.
inline Info_ballistics* current_ballistic_profile() {
  unsigned group = static_cast<unsigned char>(stDevStatus.s8BallisticGroup);
  return group < static_cast<unsigned>(BALLISTIC_PROFILE_COUNT) ? &info[group] : nullptr;
}

// ---- wire layouts (LP64 and AArch64) ----
static_assert(sizeof(Inf_DevStatus) == 74);
static_assert(offsetof(Inf_DevStatus, s8ReticleType) == 22);
static_assert(offsetof(Inf_DevStatus, s16ReticlePositionX) == 24);
static_assert(offsetof(Inf_DevStatus, s16LaserIndicatY) == 34);
static_assert(offsetof(Inf_DevStatus, s8VideoOut) == 36);
static_assert(offsetof(Inf_DevStatus, s8Language) == 39);
static_assert(offsetof(Inf_DevStatus, s16FushionX) == 44);
static_assert(offsetof(Inf_DevStatus, s16CompassMagnetic) == 48);
static_assert(offsetof(Inf_DevStatus, s8DistanceUint) == 54);
static_assert(offsetof(Inf_DevStatus, s8RecoilSensitivity) == 65);
static_assert(offsetof(Inf_DevStatus, s8BallisticGroup) == 73);

static_assert(sizeof(Inf_Cursor_Zero) == 8);
static_assert(sizeof(Inf_Cursor_Group) == 42);
static_assert(offsetof(Inf_Cursor_Group, zero) == 2);
static_assert(sizeof(Inf_IR_Cursor) == 212);
static_assert(offsetof(Inf_IR_Cursor, group) == 2);

static_assert(sizeof(ScopeUnit) == 4 && sizeof(RiflingDirection) == 4);
static_assert(sizeof(Info_target) == 16);
static_assert(sizeof(Info_atmosphere) == 16);
static_assert(sizeof(Info_bullet) == 104);
static_assert(offsetof(Info_bullet, dragFunction) == 32);
static_assert(offsetof(Info_bullet, velocity) == 40);
static_assert(offsetof(Info_bullet, atmosphere) == 48);
static_assert(offsetof(Info_bullet, isOpenAtmosphere) == 64);
static_assert(offsetof(Info_bullet, zeroOffsetUnit) == 68);
static_assert(offsetof(Info_bullet, zeroOffsetVerticalMOA) == 72);
static_assert(sizeof(Info_scope) == 40);
static_assert(offsetof(Info_scope, sightHeightOverBore) == 8);
static_assert(offsetof(Info_scope, unit) == 16);
static_assert(offsetof(Info_scope, verticalUnitPerCard) == 24);
static_assert(sizeof(Info_gun) == 160);
static_assert(offsetof(Info_gun, scope) == 104);
static_assert(offsetof(Info_gun, riflingRange) == 144);
static_assert(offsetof(Info_gun, direction) == 152);
static_assert(sizeof(Info_ballistics) == 240);
static_assert(offsetof(Info_ballistics, unit) == 4);
static_assert(offsetof(Info_ballistics, spinDriftOpt) == 8);
static_assert(offsetof(Info_ballistics, target) == 16);
static_assert(offsetof(Info_ballistics, wind) == 32);
static_assert(offsetof(Info_ballistics, corioliseffect) == 48);
static_assert(offsetof(Info_ballistics, atmosphere) == 64);
static_assert(offsetof(Info_ballistics, gun) == 80);

#endif  // SCOPE_COMMON_STATUS_RECORDS_H
