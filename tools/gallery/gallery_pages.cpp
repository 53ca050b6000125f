// Pictures of menu pages: see gallery_pages.h.
#include "gallery_pages.h"

#include <cstdio>
#include <filesystem>
#include <string>

#include "common/navigator.h"
#include "common/status_records.h"
#include "home_scene.h"
#include "msg/msghandler.h"
#include "tk_testing.h"

void page_gallery_field_records(void) {
  home_scene_records();
  IR_Cursor.group[0].u8CurrentZero = 2;
  info[0].gun.scope.zeroRange_yard = 100;
  info[0].gun.scope.zeroRange = 91;
  stDevStatus.s8ReticleSwitch = 1;
  stDevStatus.s8ReticleMenuSwitch = 1;
  stDevStatus.s8ReticleBrightness = 2;
  stDevStatus.s8CompassSwitch = 1;
  stDevStatus.s8MicroSwitch = 1;
  stDevStatus.s8RangeSwitch = 1;
  stDevStatus.s8BallisticReticleColor = 1;
  stDevStatus.s8IrBrightness = 6;
  stDevStatus.s8IrContrast = 5;
  stDevStatus.s8IrEnchance = 3;
  stDevStatus.s8IrScene = 1;
  stUIStatus.s8WifiSwitch = 1;
  stUIStatus.s16BatteryValue = 780;
  stUIStatus.s16Distance = 2140;
  stUIStatus.s16CompassAzimuth = 251;
}

int page_gallery_main(int argc, char** argv, const char* program,
                      std::span<const page_shot> shots) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s BACKDROP.png OUTPUT_DIR\n", program);
    return 2;
  }
  const std::string backdrop = argv[1];
  const std::filesystem::path out = argv[2];
  std::error_code ec;
  std::filesystem::create_directories(out, ec);
  if (ec) {
    std::fprintf(stderr, "%s: cannot create %s: %s\n", program, out.c_str(), ec.message().c_str());
    return 1;
  }

  // Private queues: nothing the pages send reaches a running device or UI.
  if (!home_scene_start(0x5E000000)) return 1;
  int failures = 0;
  for (const page_shot& shot : shots) {
    tk_testing_reset();
    if (tk_testing_set_backdrop(backdrop.c_str()) != RET_OK) {
      std::fprintf(stderr, "%s: backdrop %s cannot be read\n", program, backdrop.c_str());
      failures++;
      break;
    }
    page_gallery_field_records();
    if (shot.before_open) shot.before_open();
    if (home_scene_open() == NULL) {
      std::fprintf(stderr, "%s: %s: the observation screen does not open\n", program, shot.file);
      failures++;
      continue;
    }
    // The device's battery report after the screen is up (its init starts from a placeholder).
    stUIStatus.s16BatteryValue = 780;
    home_scene_raise(SCREEN_EVT_BATTERY);
    if (shot.page != NULL && shot.page[0] != '\0') {
      navigator_to_with_context(shot.page, shot.ctx);
      tk_testing_advance(0);
      if (widget_child(window_manager(), shot.page) == NULL) {
        std::fprintf(stderr, "%s: %s: page %s does not open\n", program, shot.file, shot.page);
        failures++;
        continue;
      }
    }
    if (shot.after_open) shot.after_open();
    tk_testing_advance(0);
    const std::string png = (out / (std::string(shot.file) + ".png")).string();
    if (tk_testing_screenshot(png.c_str()) != RET_OK) {
      failures++;
      continue;
    }
    std::printf("wrote %s\n", png.c_str());
  }
  home_scene_stop();
  return failures == 0 ? 0 : 1;
}
