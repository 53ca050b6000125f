// The simulated device's ballistic side: it keeps the five profiles, applies every ballistic frame
// the UI sends (printing the field and its new value), answers with a fresh solution after each
// change while the calculator is on, and loads a profile mid-way on request.
#include <cstdio>
#include <cstring>
#include <string>

#include "device_model.h"
#include "msg/msghandler.h"

namespace devsim {

namespace {

float value_float(const uint8_t* v) {
  float f;
  std::memcpy(&f, v, 4);
  return f;
}

int16_t value16(const uint8_t* v) {
  return static_cast<int16_t>(v[0] | (v[1] << 8));
}

std::string number(double x) {
  char text[32];
  std::snprintf(text, sizeof(text), "%g", x);
  return text;
}

// What a ballistic frame changed: the field's name and its new value, both as printed.
struct Change {
  std::string field;
  std::string value;
};

// Applies a frame of BALLISTIC_SEND_PARM_INDEX `index`, item `item`, with the four value bytes
// `v`, to profile `p` and the settings `s`. An empty field: nothing to apply.
Change apply(int index, int item, const uint8_t* v, Info_ballistics& p, Info_ballistics& first,
             Inf_DevStatus& s) {
  auto real = [v](const char* name, double& field) {
    field = value_float(v);
    return Change{name, number(field)};
  };
  auto real_f = [v](const char* name, float& field) {
    field = value_float(v);
    return Change{name, number(field)};
  };
  auto byte = [v](const char* name, char& field) {
    field = static_cast<char>(v[0]);
    return Change{name, std::to_string(v[0])};
  };
  switch (index) {
    case BALLISTIC_OPEN_CALCU:
      switch (item) {
        case 0:
          first.ballistics_sw = v[0];
          return {"ballistics_sw (calculator, kept in profile 1)", std::to_string(v[0])};
        case 2: return byte("s8BallisticReticle", s.s8BallisticReticle);
        case 3: return byte("s8BallisticReticleColor", s.s8BallisticReticleColor);
        case 4:
          if (v[0] >= 5) return {"s8BallisticGroup", std::to_string(v[0]) + " refused"};
          return byte("s8BallisticGroup", s.s8BallisticGroup);
        default: return {};
      }
    case BALLISTIC_BULLET_INFO:
      switch (item) {
        case 0: return real("gun.bullet.length", p.gun.bullet.length);
        case 1: return real("gun.bullet.diameter", p.gun.bullet.diameter);
        case 2: return real("gun.bullet.weight", p.gun.bullet.weight);
        case 3: return real("gun.bullet.ballisticsCoef", p.gun.bullet.ballisticsCoef);
        case 4:
          p.gun.bullet.dragFunction = static_cast<int32_t>(value_float(v));
          return {"gun.bullet.dragFunction", std::to_string(p.gun.bullet.dragFunction)};
        case 5: return real("gun.bullet.velocity", p.gun.bullet.velocity);
        default: return {};
      }
    case BALLISTIC_TWIST_INFO:
      if (item == 0) return real("gun.riflingRange", p.gun.riflingRange);
      if (item == 1) {
        p.gun.direction = v[0] ? RIGHT : LEFT;
        return {"gun.direction", v[0] ? "right" : "left"};
      }
      return {};
    case BALLISTIC_ZEROWEATHER_LENSOFFSET:
      switch (item) {
        case 0:
          p.gun.bullet.isOpenAtmosphere = v[0];
          return {"gun.bullet.isOpenAtmosphere", std::to_string(v[0])};
        case 1:
          return real_f("gun.bullet.atmosphere.temperature", p.gun.bullet.atmosphere.temperature);
        case 2: return real_f("gun.bullet.atmosphere.barometer", p.gun.bullet.atmosphere.barometer);
        case 3:
          return real_f("gun.bullet.atmosphere.relative_humidity",
                        p.gun.bullet.atmosphere.relative_humidity);
        case 4:
          p.gun.bullet.zeroOffsetUnit = v[0] ? MRAD : MOA;
          return {"gun.bullet.zeroOffsetUnit", v[0] ? "MRAD" : "MOA"};
        case 5: return real("gun.bullet.zeroOffsetVerticalMOA", p.gun.bullet.zeroOffsetVerticalMOA);
        case 6:
          return real("gun.bullet.zeroOffsetHorizontalMOA", p.gun.bullet.zeroOffsetHorizontalMOA);
        case 7:
          return real("gun.bullet.zeroOffsetVerticalMRAD", p.gun.bullet.zeroOffsetVerticalMRAD);
        case 8:
          return real("gun.bullet.zeroOffsetHorizontalMRAD", p.gun.bullet.zeroOffsetHorizontalMRAD);
        default: return {};
      }
    case BALLISTIC_WEATHER:
      if (item == 0) return real_f("atmosphere.temperature", p.atmosphere.temperature);
      if (item == 1) return real_f("atmosphere.barometer", p.atmosphere.barometer);
      if (item == 2) return real_f("atmosphere.relative_humidity", p.atmosphere.relative_humidity);
      return {};
    case BALLISTIC_LENS_INFO:
      if (item == 0) return real("gun.scope.sightHeightOverBore", p.gun.scope.sightHeightOverBore);
      if (item == 1) {
        p.gun.scope.zeroRange = value16(v);
        p.gun.scope.zeroRange_yard = value16(v + 2);
        return {"gun.scope.zeroRange", std::to_string(p.gun.scope.zeroRange) + " m, " +
                                           std::to_string(p.gun.scope.zeroRange_yard) + " yd"};
      }
      return {};
    case BALLISTIC_WIND_INFO:
      if (item == 0) return real("wind.angle", p.wind.angle);
      if (item == 1) return real("wind.speed", p.wind.speed);
      return {};
    case BALLISTIC_TARGET_INFO:
      if (item == 0) {
        p.target.range = value16(v);
        p.target.range_yard = value16(v + 2);
        return {"target.range", std::to_string(p.target.range) + " m, " +
                                    std::to_string(p.target.range_yard) + " yd"};
      }
      if (item == 1) return real("target.shootingAngle", p.target.shootingAngle);
      return {};
    default: return {};
  }
}

}  // namespace

void Device::on_ballistic(const Frame& f) {
  if (f.size() < 13 || f[1] < 10) {
    print_("device: ballistic frame too short, ignored");
    return;
  }
  const int index = f[3];
  const int item = f[4];
  if (index == BALLISTIC_OPEN_CALCU && item == 1) {  // "calculate now"
    print_(std::string("device: solution requested") +
           (profiles_[0].ballistics_sw == 1 ? "" : " (calculator off: none)"));
    maybe_solve();
    return;
  }
  const int current = current_profile();
  const Change change =
      apply(index, item, f.data() + 6, profiles_[current], profiles_[0], settings_);
  if (change.field.empty()) {
    print_("device: ballistic index " + std::to_string(index) + " item " + std::to_string(item) +
           " ignored");
    return;
  }
  // Profile-wide settings are printed without a profile; the rest name the profile changed.
  const bool setting = index == BALLISTIC_OPEN_CALCU;
  print_(std::string("device: ") + (setting ? "" : "profile " + std::to_string(current + 1) + " ") +
         change.field + " = " + change.value);
  maybe_solve();
}

void Device::select_profile(int index) {
  if (index < 0 || index > 4) return;
  settings_.s8BallisticGroup = static_cast<char>(index);
  print_("device: profile " + std::to_string(index + 1) + " loaded mid-way");
  send_(record_frame(BALLISTIC_PARM_midway, static_cast<uint8_t>(index), &profiles_[index],
                     sizeof(profiles_[index])));
  maybe_solve();
}

}  // namespace devsim
