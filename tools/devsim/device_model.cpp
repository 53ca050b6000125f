// The simulated device application's state and answers.
#include "device_model.h"

#include <cmath>
#include <cstring>

#include "framedec.h"
#include "msg/msghandler.h"

namespace devsim {

namespace {

constexpr double GRAVITY = 9.80665;
constexpr double RAD_TO_MOA = 10800.0 / M_PI;  // 3437.75 MOA per radian
// Quadratic drag constant per metre for a G1 coefficient of 1 in standard air; a .308 175 grain
// bullet (G1 0.505) then loses about a third of its speed over 500 m.
constexpr double DRAG_PER_METRE_G1 = 0.000347;
constexpr double DRAG_PER_METRE_G7 = 0.000167;  // the same bullet has a G7 coefficient of 0.243
constexpr int DRAG_G7 = 4;

constexpr uint64_t BATTERY_PERIOD_MS = 10000;
constexpr uint64_t COMPASS_PERIOD_MS = 1000;
constexpr uint64_t WIND_PERIOD_MS = 2000;
constexpr uint64_t RANGE_PERIOD_MS = 500;

void put16(std::vector<uint8_t>& v, int x) {
  v.push_back(static_cast<uint8_t>(x & 0xFF));
  v.push_back(static_cast<uint8_t>((x >> 8) & 0xFF));
}

void put64(std::vector<uint8_t>& v, uint64_t x) {
  for (int i = 0; i < 8; ++i)
    v.push_back(static_cast<uint8_t>(x >> (8 * i)));
}

void putf(std::vector<uint8_t>& v, float f) {
  uint8_t b[4];
  std::memcpy(b, &f, 4);
  v.insert(v.end(), b, b + 4);
}

// Seconds of flight to `x` metres with v(x) = v0 exp(-k x).
double flight_time(double k, double v0, double x) {
  if (k <= 0) return x / v0;
  return (std::exp(k * x) - 1.0) / (k * v0);
}

double drop(double k, double v0, double x) {
  const double t = flight_time(k, v0, x);
  return 0.5 * GRAVITY * t * t;
}

struct Load {
  double length, diameter, weight, bc, velocity;
  int drag;
};

// Five plausible loads for a .308 rifle.
constexpr Load LOADS[5] = {
    {1.240, 0.308, 175, 0.505, 790, 0},  // match 175 gr
    {1.215, 0.308, 168, 0.462, 810, 0},  // match 168 gr
    {1.120, 0.308, 150, 0.400, 860, 0},  // hunting 150 gr
    {1.230, 0.308, 155, 0.237, 880, 4},  // 155 gr, G7
    {1.450, 0.308, 208, 0.648, 760, 0},  // heavy 208 gr
};

}  // namespace

Inf_DevStatus default_settings() {
  Inf_DevStatus s;
  std::memset(&s, 0, sizeof(s));
  s.s8UseMode = 0;
  s.s8VideoMode = 0;
  s.s8IrPolarity = 0;  // white hot
  s.s8IrBrightness = 5;
  s.s8IrContrast = 5;
  s.s8CorrectType = 1;
  s.s8IrEnchance = 1;
  s.s8IrScene = 1;
  s.s8ReticleMenuSwitch = 1;
  s.s8ReticleColour = 0;
  s.s8ReticleSwitch = 1;
  s.s8ReticleBrightness = 5;
  s.s8ReticleType = 1;
  s.s16ReticlePositionX = 640;
  s.s16ReticlePositionY = 512;
  s.s16RangeOffsetX = 640;
  s.s16RangeOffsetY = 512;
  s.s16LaserIndicatX = 640;
  s.s16LaserIndicatY = 512;
  s.s8ScreenBrightness = 5;
  s.s8ScreenHue = 5;
  s.s8Language = 0;
  s.s8DistanceUint = DISTANCE_M;
  s.s8RangeType = RANGE_SINGLE;
  s.s8CompassSwitch = 1;
  s.s8AutoShutter = 1;
  s.s8RecoilBefore = 5;
  s.s8RecoilAfter = 10;
  s.s8MicroSwitch = 1;
  s.s8BallisticReticle = 1;
  s.s8RangeSwitch = 1;
  s.s8RecoilSensitivity = 2;
  s.s8RangeReticleType = 1;
  s.s8LaserReticleType = 1;
  s.s8PIPReticleType = 1;
  s.s8BallisticGroup = 0;
  return s;
}

Inf_IR_Cursor default_zeroing() {
  Inf_IR_Cursor z;
  std::memset(&z, 0, sizeof(z));
  for (int g = 0; g < 5; ++g) {
    for (int i = 0; i < 5; ++i) {
      Inf_Cursor_Zero& zero = z.group[g].zero[i];
      const int metres = 100 * (i + 1);
      zero.u16IrCursorDistance = static_cast<int16_t>(metres);
      zero.u16IrCursorDistanceYD = static_cast<int16_t>(metres * 1.0936);
      zero.s8IrCursorCurrentX = 640;
      // The screen centre; farther zeros sit lower.
      zero.s8IrCursorCurrentY = static_cast<int16_t>(512 + i * i * 6);
    }
  }
  return z;
}

Info_ballistics default_profile(int index) {
  const Load& load = LOADS[index < 0 || index > 4 ? 0 : index];
  Info_ballistics p;
  std::memset(&p, 0, sizeof(p));
  p.ballistics_sw = 0;
  p.unit = MRAD;
  p.spinDriftOpt = 1;
  p.target.range = 300;
  p.target.range_yard = 328;
  p.target.shootingAngle = 0.0;
  p.wind.angle = 90.0;
  p.wind.speed = 3.0;
  p.corioliseffect.lat = 48.0;
  p.corioliseffect.angle = 0.0;
  p.atmosphere = {300.0f, 98.0f, 15.0f, 50.0f};  // altitude m, kPa, deg C, %
  Info_bullet& b = p.gun.bullet;
  b.length = load.length;
  b.diameter = load.diameter;
  b.weight = load.weight;
  b.ballisticsCoef = load.bc;
  b.dragFunction = load.drag;
  b.velocity = load.velocity;
  b.atmosphere = {300.0f, 98.0f, 15.0f, 50.0f};
  b.isOpenAtmosphere = 0;
  b.zeroOffsetUnit = MRAD;
  p.gun.scope.zeroRange = 100;
  p.gun.scope.zeroRange_yard = 109;
  p.gun.scope.sightHeightOverBore = 4.5;  // cm
  p.gun.scope.unit = MRAD;
  p.gun.scope.verticalUnitPerCard = 0.1;
  p.gun.scope.horizontalUnitPerCard = 0.1;
  p.gun.riflingRange = 10.0;  // inches per turn
  p.gun.direction = RIGHT;
  return p;
}

Solution solve(const Info_ballistics& p, double range_m) {
  if (range_m <= 0) return {0, 0};
  const Info_bullet& b = p.gun.bullet;
  const double v0 = b.velocity > 50 ? b.velocity : 790.0;
  const double bc = b.ballisticsCoef > 0.01 ? b.ballisticsCoef : 0.5;
  const double base = b.dragFunction == DRAG_G7 ? DRAG_PER_METRE_G7 : DRAG_PER_METRE_G1;
  // Air density against the standard 101.325 kPa at 15 deg C.
  const double kpa = p.atmosphere.barometer > 10 ? p.atmosphere.barometer : 101.325;
  const double kelvin = 273.15 + p.atmosphere.temperature;
  const double density = (kpa / 101.325) * (288.15 / (kelvin > 150 ? kelvin : 288.15));
  const double k = base / bc * density;

  const double h = p.gun.scope.sightHeightOverBore / 100.0;  // cm -> m
  const double zero = p.gun.scope.zeroRange > 0 ? p.gun.scope.zeroRange : 100.0;
  const double cos_angle = std::cos(p.target.shootingAngle * M_PI / 180.0);
  // Height of the path over the sight line at range R; the bore is tilted so that the path
  // crosses the sight line at the zero range.
  const double y = -h + (h + drop(k, v0, zero)) * range_m / zero - drop(k, v0, range_m) * cos_angle;
  const double hold_v = -y / range_m;

  const double crosswind = p.wind.speed * std::sin(p.wind.angle * M_PI / 180.0);
  const double drift = crosswind * (flight_time(k, v0, range_m) - range_m / v0);
  const double hold_h = drift / range_m;
  return {hold_v * RAD_TO_MOA, hold_h * RAD_TO_MOA};
}

Frame key_frame(uint8_t button) {
  const uint8_t v[1] = {button};
  return framedec::build(7, 0, 0, v);
}

Frame battery_frame(int value) {
  std::vector<uint8_t> v;
  put16(v, value);
  return framedec::build(15, 0, BATTERY_VALUE, v);
}

Frame battery_type_frame(int type) {
  const uint8_t v[1] = {static_cast<uint8_t>(type)};
  return framedec::build(15, 0, BATTERY_TYPE, v);
}

Frame compass_frame(int angle, int value) {
  const int magnitude = value < 0 ? -value : value;
  std::vector<uint8_t> v{static_cast<uint8_t>(value < 0 ? 1 : 0)};
  put16(v, magnitude);
  return framedec::build(6, 0, static_cast<uint8_t>(angle), v);
}

Frame wind_frame(int mm_per_s) {
  std::vector<uint8_t> v;
  put16(v, mm_per_s);
  return framedec::build(0, 0, 38, v);
}

Frame distance_frame(int decimetres) {
  if (decimetres < 0) {
    const uint8_t v[3] = {RANGE_RETURN_FAIL, 0, 0};
    return framedec::build(4, 2, 0, v);
  }
  // The distance is big-endian, the protocol's one exception.
  const uint8_t v[3] = {RANGE_RETURN_SUCCESE, static_cast<uint8_t>((decimetres >> 8) & 0xFF),
                        static_cast<uint8_t>(decimetres & 0xFF)};
  return framedec::build(4, 2, 0, v);
}

Frame zoom_frame(int hundredths) {
  std::vector<uint8_t> v;
  put16(v, hundredths);
  return framedec::build(1, 0, INFRARED_ZOOM, v);
}

Frame menu_query_frame() {
  const uint8_t v[1] = {0};
  return framedec::build(0, 0, BASIC_MENU_LEVEL, v);
}

Frame record_frame(uint8_t command, uint8_t profile, const void* record, size_t size) {
  const auto* bytes = static_cast<const uint8_t*>(record);
  return framedec::build(16, command, profile, std::span<const uint8_t>(bytes, size));
}

Frame solution_frame(const Solution& s) {
  std::vector<uint8_t> v;
  putf(v, static_cast<float>(s.moaV));
  putf(v, static_cast<float>(s.moaH));
  return framedec::build(27, 0, 0, v);
}

Frame video_total_frame(uint64_t frames, uint16_t rate) {
  std::vector<uint8_t> v;
  put64(v, frames);
  put16(v, rate);
  return framedec::build(23, 0, TAP_TOTAL_TIME, v);
}

Frame video_position_frame(uint64_t frames) {
  std::vector<uint8_t> v;
  put64(v, frames);
  return framedec::build(23, 0, TAP_PROCESS, v);
}

// ---------------------------------------------------------------------------------------------

Device::Device(Sender send, Printer print)
    : send_(std::move(send)),
      print_(std::move(print)),
      settings_(default_settings()),
      zeroing_(default_zeroing()) {
  for (int i = 0; i < 5; ++i)
    profiles_[i] = default_profile(i);
}

int Device::current_profile() const {
  const int g = static_cast<unsigned char>(settings_.s8BallisticGroup);
  return g < 5 ? g : 0;
}

void Device::send_startup_records() {
  send_(record_frame(BASIC_PARAM, 0, &settings_, sizeof(settings_)));
  send_(record_frame(RETICLE_PARAM, 0, &zeroing_, sizeof(zeroing_)));
  for (uint8_t i = 0; i < 5; ++i) {
    send_(record_frame(BALLISTIC_PARM, i, &profiles_[i], sizeof(profiles_[i])));
  }
  // The picture starts at 1.00x: the UI learns the zoom only from the device.
  send_(zoom_frame(100));
  if (schedule_) {
    // First readings at once rather than one period later, as a device does when its UI comes up.
    send_(battery_type_frame(0));
    send_battery();
    send_compass();
    // The wind meter reports only while it is on and connected, from the first reading on.
    if (wind_connected_) send_wind();
  }
}

void Device::send_battery() {
  send_(battery_frame(battery_));
  // A slow discharge, never down to the shut-down level, unless the battery is fixed.
  if (battery_ > 600 && !battery_fixed_) battery_ -= 1;
}

void Device::send_compass() {
  azimuth_ = (azimuth_ + 7) % 360;
  pitch_ = static_cast<int>(std::lround(3 * std::sin(now_ms_ / 4000.0)));
  cant_ = static_cast<int>(std::lround(2 * std::cos(now_ms_ / 5000.0)));
  send_(compass_frame(COMPASS_AZIMUTH_ANGLE, reported_azimuth()));
  send_(compass_frame(COMPASS_PITCH_ANGLE, pitch_));
  send_(compass_frame(COMPASS_SLANT_ANGLE, cant_));
}

void Device::send_wind() {
  noise_ = noise_ * 1103515245u + 12345u;
  wind_mm_s_ += static_cast<int>((noise_ >> 16) % 401) - 200;
  if (wind_mm_s_ < 0) wind_mm_s_ = 0;
  if (wind_mm_s_ > 12000) wind_mm_s_ = 12000;
  send_(wind_frame(wind_reading()));
}

void Device::send_distance() {
  if (!range_on_ || target_dm_ <= 0 || target_dm_ > 15000) {
    send_(distance_frame(-1));
    return;
  }
  noise_ = noise_ * 1103515245u + 12345u;
  last_distance_dm_ = target_dm_ + static_cast<int>((noise_ >> 16) % 7) - 3;
  send_(distance_frame(last_distance_dm_));
  maybe_solve();
}

void Device::send_solution() {
  const Info_ballistics& p = profiles_[current_profile()];
  const double range = last_distance_dm_ > 0 ? last_distance_dm_ / 10.0 : p.target.range;
  send_(solution_frame(solve(p, range)));
}

// The calculator is switched by the first profile's flag, whatever profile is current.
void Device::maybe_solve() {
  if (profiles_[0].ballistics_sw == 1) send_solution();
}

void Device::on_range(uint8_t what, uint8_t value) {
  if (what == 0) {
    range_on_ = value != 0;
    settings_.s8RangeSwitch = static_cast<char>(range_on_ ? 1 : 0);
    if (!range_on_) ranging_continuous_ = false;
    print_(std::string("device: range finder ") + (range_on_ ? "on" : "off"));
    return;
  }
  switch (value) {
    case RANGE_SEND: send_distance(); break;
    case RANGE_COUTINUTE_SEND:
      ranging_continuous_ = true;
      next_range_ms_ = now_ms_ + RANGE_PERIOD_MS;
      send_distance();
      break;
    default: ranging_continuous_ = false; break;
  }
}

// on_tap and the playback are in device_media.cpp.

void Device::on_frame(const Frame& f) {
  if (framedec::check(f) != framedec::FrameError::OK) return;
  on_system_frame(f);
  const int type = f[2];
  const int cmd = f[3];
  const int sub = f[4];
  switch (type) {
    case 8: send_startup_records(); break;  // the UI is up
    case 0:
      if (cmd != 0) break;
      on_accessory_basic(static_cast<uint8_t>(sub), f[6]);
      if (sub == BASIC_MENU_LEVEL) {
        menu_level_ = f[6];
        print_(std::string("device: the UI shows ") + (f[6] == 0 ? "the home screen" : "a menu"));
      }
      if (sub == BASIC_RANGE_TYPE) settings_.s8RangeType = static_cast<char>(f[6]);
      if (sub == 37) settings_.s8DistanceUint = static_cast<char>(f[6]);
      break;
    case 4:
      if (cmd == 7) on_range(static_cast<uint8_t>(sub), f[6]);
      break;
    case 16:
      if (cmd == SAVE_ALLPARAM) print_("device: all settings saved");
      break;
    case 6: on_compass(f); break;
    case 1: on_infrared(f); break;
    case 22: on_reticle(f); break;
    case 24: on_blind(f); break;
    case 23: on_tap(f); break;
    case 27: on_ballistic(f); break;
    case 28: on_recoil(f); break;
    default: break;
  }
}

void Device::tick(uint64_t now_ms) {
  if (silent(now_ms)) return;
  now_ms_ = now_ms;
  tick_system();
  tick_reticle(now_ms);
  if (schedule_ && !rebooting_) {
    if (now_ms >= next_battery_ms_) {
      if (next_battery_ms_ != 0) send_battery();
      next_battery_ms_ = now_ms + BATTERY_PERIOD_MS;
    }
    if (now_ms >= next_compass_ms_) {
      // During a calibration turn the turn itself reports the angles.
      if (next_compass_ms_ != 0 && !compass_calibrating()) send_compass();
      next_compass_ms_ = now_ms + COMPASS_PERIOD_MS;
    }
    if (now_ms >= next_wind_ms_) {
      // The wind meter reports while it is on and connected.
      if (next_wind_ms_ != 0 && wind_connected_) send_wind();
      next_wind_ms_ = now_ms + WIND_PERIOD_MS;
    }
  }
  tick_accessory();
  if (ranging_continuous_ && now_ms >= next_range_ms_) {
    next_range_ms_ = now_ms + RANGE_PERIOD_MS;
    send_distance();
  }
  tick_playback(now_ms);
}

}  // namespace devsim
