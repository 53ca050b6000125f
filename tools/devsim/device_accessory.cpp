// The simulated device's accessories: the compass calibration (the simulated user turns the scope
// when a turn starts), the magnetic declination added to the azimuth, the wind meter (it
// connects a moment after it is switched on and reports while connected, averaged when asked)
// and the recoil-activated video settings with a shot that fires the recoil sensor.
#include <cmath>
#include <cstdlib>
#include <cstdio>
#include <string>

#include "device_model.h"
#include "framedec.h"
#include "msg/msghandler.h"

namespace devsim {

namespace {

constexpr uint64_t CALIBRATION_STEP_MS = 250;  // one reading of the turn
constexpr int CALIBRATION_SECTORS = 12;
constexpr int LEVEL_TURN_STEP = 30;         // degrees of azimuth a reading
constexpr int VERTICAL_TURN_STEP = 15;      // degrees of elevation a reading, -90 up to +90
constexpr uint64_t WIND_CONNECT_MS = 1500;  // from switching the meter on to its connection
constexpr int WIND_AVERAGE_SAMPLES = 5;

constexpr const char* SENSITIVITY_NAMES[] = {"low", "medium", "high"};

Frame wind_connect_frame(bool connected) {
  const uint8_t v[1] = {static_cast<uint8_t>(connected ? 1 : 0)};
  return framedec::build(29, 0, 0, v);
}

Frame recoil_fired_frame() {
  const uint8_t v[1] = {1};
  return framedec::build(28, 0, 0, v);
}

std::string tenths_of_degree(int tenths) {
  char text[32];
  std::snprintf(text, sizeof(text), "%s%d.%d deg", tenths < 0 ? "-" : "+", std::abs(tenths) / 10,
                std::abs(tenths) % 10);
  return text;
}

}  // namespace

// ---- compass ----

int Device::reported_azimuth() const {
  const int declination = settings_.s16CompassMagnetic;  // tenths of a degree, east positive
  const int azimuth = azimuth_ + static_cast<int>(std::lround(declination / 10.0));
  return ((azimuth % 360) + 360) % 360;
}

void Device::on_compass(const Frame& f) {
  const int command = f[3];
  const int sub = f[4];
  if (command == COMPASS_OFFESET_PARAM && f.size() >= 13) {
    const int tenths = (f[7] | (f[8] << 8)) * 10 + f[9];
    settings_.s16CompassMagnetic = static_cast<int16_t>(f[6] != 0 ? -tenths : tenths);
    print_("device: magnetic declination " + tenths_of_degree(settings_.s16CompassMagnetic));
    return;
  }
  if (command != COMPASS_CORRECT) return;
  switch (sub) {
    case COMPASS_HORIZONTAL_START:
    case COMPASS_VERTICAL_START:
      if (compass_calibrating()) finish_calibration_turn(false);
      calibration_turn_ = sub == COMPASS_HORIZONTAL_START ? 0 : 1;
      calibration_step_ = 0;
      calibration_sectors_ = 0;
      next_calibration_ms_ = now_ms_;
      print_(std::string("device: compass calibration, ") +
             (calibration_turn_ == 0 ? "level" : "vertical") + " turn started");
      break;
    case COMPASS_HORIZONTAL_STOP:
    case COMPASS_VERTICAL_STOP:
      if (calibration_turn_ == (sub == COMPASS_HORIZONTAL_STOP ? 0 : 1)) {
        finish_calibration_turn(true);
      }
      break;
    default: break;
  }
}

// The result stays on the device: the link has no frame that carries it.
void Device::finish_calibration_turn(bool stopped_by_ui) {
  int covered = 0;
  for (int i = 0; i < CALIBRATION_SECTORS; ++i)
    covered += (calibration_sectors_ >> i) & 1u;
  const std::string turn = calibration_turn_ == 0 ? "level" : "vertical";
  const std::string sectors = std::to_string(covered) + " of 12 sectors";
  if (covered == CALIBRATION_SECTORS) {
    print_("device: compass calibration, " + turn + " turn applied (" + sectors + ")");
  } else {
    print_("device: compass calibration, " + turn + " turn " +
           (stopped_by_ui ? "stopped early" : "abandoned") + " (" + sectors +
           "), calibration unchanged");
  }
  calibration_turn_ = -1;
}

// ---- wind meter and recoil ----

void Device::on_accessory_basic(uint8_t index, uint8_t value) {
  switch (index) {
    case BASIC_COMPASS_SWITCH:
      settings_.s8CompassSwitch = static_cast<char>(value);
      print_(std::string("device: compass read-outs ") + (value != 0 ? "on" : "off"));
      break;
    case BASIC_WIND_SWITCH:
      wind_meter_on_ = value != 0;
      print_(std::string("device: wind meter ") + (wind_meter_on_ ? "on, connecting" : "off"));
      if (wind_meter_on_) {
        wind_connect_at_ms_ = now_ms_ + WIND_CONNECT_MS;
      } else if (wind_connected_) {
        wind_connected_ = false;
        send_(wind_connect_frame(false));
      }
      break;
    case BASIC_WIND_COUNT:
      wind_averaging_ = value != 0;
      wind_sample_count_ = 0;
      print_(std::string("device: wind averaging ") + (wind_averaging_ ? "on" : "off"));
      break;
    default: break;
  }
}

// The meter's reading: the latest sample, or with averaging the mean of the last five.
int Device::wind_reading() {
  wind_samples_[wind_sample_count_ % WIND_AVERAGE_SAMPLES] = wind_mm_s_;
  wind_sample_count_++;
  if (!wind_averaging_) return wind_mm_s_;
  const int n =
      wind_sample_count_ < WIND_AVERAGE_SAMPLES ? wind_sample_count_ : WIND_AVERAGE_SAMPLES;
  int sum = 0;
  for (int i = 0; i < n; ++i)
    sum += wind_samples_[i];
  return sum / n;
}

void Device::on_recoil(const Frame& f) {
  const uint8_t value = f.size() > 6 ? f[6] : 0;
  switch (f[3]) {
    case RECOIL_SWITCH: settings_.s8RecoilState = static_cast<char>(value); break;
    case RECOIL_BEFORE: settings_.s8RecoilBefore = static_cast<char>(value); break;
    case RECOIL_AFTER: settings_.s8RecoilAfter = static_cast<char>(value); break;
    case RECOIL_SENSITIVITY: settings_.s8RecoilSensitivity = static_cast<char>(value); break;
    case RECOIL_BREAKOUT: print_("device: recoil recording ended"); return;
    default: return;
  }
  const unsigned sensitivity = static_cast<uint8_t>(settings_.s8RecoilSensitivity);
  print_(std::string("device: recoil video ") + (settings_.s8RecoilState != 0 ? "on" : "off") +
         ", " + std::to_string(static_cast<uint8_t>(settings_.s8RecoilBefore)) + " s before, " +
         std::to_string(static_cast<uint8_t>(settings_.s8RecoilAfter)) + " s after, sensitivity " +
         (sensitivity < 3 ? SENSITIVITY_NAMES[sensitivity] : std::to_string(sensitivity)));
}

void Device::shot() {
  if (settings_.s8RecoilState == 0) {
    print_("device: a shot; recoil video is off");
    return;
  }
  print_("device: a shot; recoil recording");
  send_(recoil_fired_frame());
}

// ---- scheduled work ----

void Device::tick_accessory() {
  if (wind_meter_on_ && !wind_connected_ && now_ms_ >= wind_connect_at_ms_) {
    wind_connected_ = true;
    send_(wind_connect_frame(true));
    send_(wind_frame(wind_reading()));
  }
  if (!compass_calibrating() || now_ms_ < next_calibration_ms_) return;
  next_calibration_ms_ = now_ms_ + CALIBRATION_STEP_MS;
  // The simulated user turns the scope one step a reading; the turn ends when the UI stops it.
  if (calibration_turn_ == 0) {
    azimuth_ = (calibration_step_ * LEVEL_TURN_STEP) % 360;
    pitch_ = 0;
    cant_ = 0;
    calibration_sectors_ |= 1u << (azimuth_ / (360 / CALIBRATION_SECTORS));
  } else {
    // Down to up and back down: -90, -75, ... +90, +75, ...
    const int phase = calibration_step_ % 24;
    pitch_ =
        phase <= 12 ? -90 + phase * VERTICAL_TURN_STEP : 90 - (phase - 12) * VERTICAL_TURN_STEP;
    cant_ = 0;
    const int sector = (pitch_ >= 90 ? 89 : pitch_) + 90;
    calibration_sectors_ |= 1u << (sector / (180 / CALIBRATION_SECTORS));
  }
  calibration_step_++;
  send_(compass_frame(COMPASS_AZIMUTH_ANGLE, reported_azimuth()));
  send_(compass_frame(COMPASS_PITCH_ANGLE, pitch_));
  send_(compass_frame(COMPASS_SLANT_ANGLE, cant_));
}

}  // namespace devsim
