// home_gallery: draws the observation screen over the thermal backdrop in representative states
// and writes one PNG per state (docs/screens/ through the `gallery` target).
//
//   home_gallery BACKDROP.png OUTPUT_DIR
//
// Each state starts from zeroed records, sets the fields that make it, opens "Zavo_home_page_1"
// through the navigator (its init draws everything from the records) and then drives keys and
// screen events on the toolkit's test clock, as the device would. The device link runs on private
// queues, so the frames the screen sends go nowhere.
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "common/status_records.h"
#include "home_scene.h"
#include "msg/msghandler.h"
#include "tk_testing.h"

namespace {

// What the device reports for the battery once the screen is up (init starts from a placeholder).
int16_t g_battery = 780;

struct State {
  const char* name;
  std::function<void()> before_open;  // records the screen starts from
  std::function<void()> after_open;   // keys and events while it shows
};

// A scope in the field: charged, Wi-Fi and microphone on, compass, range finder with a reading,
// zero "C1 100y", reticle 0 in white at full brightness.
void field_defaults() {
  home_scene_records();
  IR_Cursor.group[0].u8CurrentZero = 2;
  info[0].gun.scope.zeroRange_yard = 100;
  stDevStatus.s16RangeOffsetX = 652;
  stDevStatus.s16RangeOffsetY = 500;
  stDevStatus.s16LaserIndicatX = 630;
  stDevStatus.s16LaserIndicatY = 522;
  stDevStatus.s8ReticleBrightness = 2;
  stDevStatus.s8CompassSwitch = 1;
  stDevStatus.s8MicroSwitch = 1;
  stDevStatus.s8RangeSwitch = 1;
  stDevStatus.s8BallisticReticle = 0;
  stDevStatus.s8BallisticReticleColor = 1;
  stUIStatus.s8WifiSwitch = 1;
  g_battery = 780;
  stUIStatus.s16Distance = 2140;
  stUIStatus.s16CompassAzimuth = 251;
  stUIStatus.s16CompassPitch = 3;
  stUIStatus.s16CompassSlant = -1;
}

std::vector<State> states() {
  std::vector<State> list;
  for (int type = 0; type < 8; ++type) {
    static char names[8][32];
    std::snprintf(names[type], sizeof(names[type]), "observation_reticle_%d", type);
    list.push_back({names[type], [type] { stDevStatus.s8ReticleType = static_cast<char>(type); },
                    [] { home_scene_raise(SCREEN_EVT_DISTANCE); }});
  }
  list.push_back({"observation_two_colour",
                  [] {
                    stDevStatus.s8ReticleType = 3;
                    stDevStatus.s8ReticleColour = 7;  // red cross, white centre marks
                  },
                  [] { home_scene_raise(SCREEN_EVT_DISTANCE); }});
  list.push_back({"observation_zoom_1_0", [] { stDevStatus.s8ReticleType = 3; },
                  [] { home_scene_raise(SCREEN_EVT_DISTANCE); }});
  list.push_back({"observation_zoom_2_0",
                  [] {
                    stDevStatus.s8ReticleType = 3;
                    stUIStatus.s8IRZoom = 200;
                  },
                  [] { home_scene_raise(SCREEN_EVT_DISTANCE); }});
  list.push_back({"observation_pip",
                  [] {
                    stDevStatus.s8VideoMode = 3;
                    stUIStatus.s8IRZoom = 150;
                    stDevStatus.s8PIPReticleType = 1;
                  },
                  [] { home_scene_raise(SCREEN_EVT_DISTANCE); }});
  list.push_back({"observation_ballistic",
                  [] {
                    stDevStatus.s8ReticleType = 4;
                    info[0].ballistics_sw = 1;
                    stUIStatus.s8WindSwitch = 1;
                    stUIStatus.wind_connect_state = 1;
                    stUIStatus.s16WindSpeed = 2235;
                  },
                  [] {
                    home_scene_raise(SCREEN_EVT_DISTANCE);
                    result_ball.moaV = -13.76;  // hold 4 mrad under and 0.5 mrad right
                    result_ball.moaH = 1.72;
                    home_scene_raise(SCREEN_EVT_BALLISTIC_RESULT);
                  }});
  list.push_back({"observation_recording", [] { stDevStatus.s8RecoilState = 1; },
                  [] {
                    home_scene_raise(SCREEN_EVT_DISTANCE);
                    tk_testing_key_hit(GUI_KEY_PHOTO_S);
                    tk_testing_advance((2 * 60 + 37) * 1000);
                  }});
  list.push_back({"observation_low_battery",
                  [] {
                    stDevStatus.s8RangeSwitch = 0;
                    g_battery = 575;
                  },
                  [] {}});
  return list;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: home_gallery BACKDROP.png OUTPUT_DIR\n");
    return 2;
  }
  const std::string backdrop = argv[1];
  const std::filesystem::path out = argv[2];
  std::error_code ec;
  std::filesystem::create_directories(out, ec);
  if (ec) {
    std::fprintf(stderr, "home_gallery: cannot create %s: %s\n", out.c_str(), ec.message().c_str());
    return 1;
  }

  // Private queues: nothing the screen sends reaches a running device or UI.
  if (!home_scene_start(0x5D000000)) return 1;
  int failures = 0;
  for (const State& s : states()) {
    tk_testing_reset();
    if (tk_testing_set_backdrop(backdrop.c_str()) != RET_OK) {
      std::fprintf(stderr, "home_gallery: backdrop %s cannot be read\n", backdrop.c_str());
      failures++;
      break;
    }
    field_defaults();
    s.before_open();
    if (home_scene_open() == NULL) {
      std::fprintf(stderr, "home_gallery: %s: the observation screen does not open\n", s.name);
      failures++;
      continue;
    }
    stUIStatus.s16BatteryValue = g_battery;
    home_scene_raise(SCREEN_EVT_BATTERY);
    s.after_open();
    std::string png = (out / (std::string(s.name) + ".png")).string();
    if (tk_testing_screenshot(png.c_str()) != RET_OK) {
      failures++;
      continue;
    }
    std::printf("wrote %s\n", png.c_str());
  }
  home_scene_stop();
  return failures == 0 ? 0 : 1;
}
