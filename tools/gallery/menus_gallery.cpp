// menus_gallery: pictures of the menus and system pages over the observation screen, for
// docs/screens/ (the `gallery` target): both halves of the main menu, the image menu on each
// item, settings (also in German and Russian, the longest texts), the date editor, the card
// page, the shut-down countdown and three states of the firmware upgrade; the information page,
// the format and factory-reset confirmations and their progress screens, the USB screen, the boot
// logo and the two start-up windows that have no behaviour.
//
//   menus_gallery BACKDROP.png OUTPUT_DIR
#include <sys/stat.h>
#include <sys/statfs.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <string>

#include "common/common_function.h"
#include "common/status_records.h"
#include "gallery_pages.h"
#include "home_scene.h"
#include "msg/msghandler.h"
#include "pages/Zavo_menus.h"
#include "pages/page_list.h"
#include "tk_testing.h"

namespace {

// An 8 GiB card with 2.7 GiB free.
int card_statfs(const char*, struct statfs* out) {
  std::memset(out, 0, sizeof(*out));
  out->f_bsize = 4096;
  out->f_blocks = 8ull * 1024 * 1024 * 1024 / 4096;
  out->f_bavail = 2700ull * 1024 * 1024 / 4096;
  out->f_bfree = out->f_bavail;
  return 0;
}

// The device reports a charged battery once the observation screen is up (its init starts from
// a placeholder).
void charged() {
  stUIStatus.s16BatteryValue = 780;
  home_scene_raise(SCREEN_EVT_BATTERY);
}

void keys(std::initializer_list<uint32_t> codes) {
  charged();
  for (uint32_t code : codes) {
    tk_testing_key_hit(code);
    tk_testing_advance(0);
  }
}

// The upgrade page driven by the device's reports, as the link raises them, with the battery
// the device reported.
void upgrade_reports(int battery, std::initializer_list<int> states) {
  charged();
  stUIStatus.s16BatteryValue = static_cast<int16_t>(battery);
  for (int state : states) {
    stUIStatus.s8Updata_state = static_cast<char>(state);
    home_scene_raise(SCREEN_EVT_UPDATA);
  }
}

void german() {
  change_locale("de_DE");
}
void russian() {
  change_locale("ru_RU");
}

const std::array<page_shot, 27> SHOTS = {{
    {"menus_main_first_half", "Zavo_menu1", [] { Zavo_menu1_index = 1; },
     [] { keys({GUI_KEY_PHOTO_S}); }},
    {"menus_main_second_half", "Zavo_menu2", [] { Zavo_menu2_index = 1; },
     [] {
       keys({GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S});
     }},
    {"menus_image_scene", "Zavo_shortcut_menu", nullptr, [] { keys({GUI_KEY_FUCTION_S}); }},
    {"menus_image_palette", "Zavo_shortcut_menu", nullptr,
     [] {
       keys({GUI_KEY_PHOTO_S, GUI_KEY_FUCTION_S, GUI_KEY_FUCTION_S});
     }},
    {"menus_image_brightness", "Zavo_shortcut_menu", nullptr,
     [] {
       keys({GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S, GUI_KEY_FUCTION_S});
     }},
    {"menus_image_contrast", "Zavo_shortcut_menu", nullptr,
     [] {
       keys({GUI_KEY_RANGE_S, GUI_KEY_RANGE_S});
     }},
    {"menus_image_enhancement", "Zavo_shortcut_menu", nullptr,
     [] {
       keys({GUI_KEY_RANGE_S, GUI_KEY_FUCTION_S});
     }},
    {"menus_settings", "Zavo_Settings", [] { stUIStatus.s8UsbMode = 1; },
     [] {
       keys({GUI_KEY_RANGE_S, GUI_KEY_RANGE_S, GUI_KEY_RANGE_S, GUI_KEY_RANGE_S});
     }},
    {"menus_settings_german", "Zavo_Settings", german, [] { keys({GUI_KEY_PHOTO_S}); }},
    {"menus_settings_russian", "Zavo_Settings", russian, [] { keys({GUI_KEY_PHOTO_S}); }},
    {"menus_date", "Zavo_DataTime", [] { sys_set_time(9, 30, 0, 2025, 6, 14); },
     [] {
       keys({GUI_KEY_FUCTION_S, GUI_KEY_FUCTION_S, GUI_KEY_RANGE_S});
     }},
    {"menus_sdcard", "Zavo_SDcard", nullptr, [] { keys({GUI_KEY_PHOTO_S}); }},
    {"menus_shutdown_countdown", "Zavo_SHUT_DOWN",
     [] { std::strcpy(stUIStatus.temp_window, "Zavo_home_page_1"); },
     [] {
       charged();
       tk_testing_advance(2000);
     }},
    {"menus_upgrade_confirm", "Zavo_updata", nullptr,
     [] {
       upgrade_reports(790, {0, 0});
     }},
    {"menus_upgrade_installing", "Zavo_updata", nullptr,
     [] {
       upgrade_reports(790, {0, 0});
       keys({GUI_KEY_FUCTION_S});
       upgrade_reports(790, {2, 4});
     }},
    {"menus_upgrade_battery_low_russian", "Zavo_updata", russian,
     [] { upgrade_reports(700, {0}); }},
    {"menus_upgrade_done_german", "Zavo_updata", german,
     [] {
       upgrade_reports(790, {0, 0});
       keys({GUI_KEY_FUCTION_S});
       upgrade_reports(790, {2, 4, 6, 8});
     }},
    {"menus_info", "Zavo_Info", nullptr, charged},
    {"menus_reset", "Zavo_Reset", nullptr, [] { keys({GUI_KEY_PHOTO_S}); }},
    {"menus_restoring", "Zavo_Restoring", nullptr, charged},
    {"menus_formatting", "Zavo_formatting", nullptr, [] { keys({GUI_KEY_PHOTO_S}); }},
    {"menus_format_restart", "Zavo_format_restart", nullptr, charged},
    {"menus_usb", "Zavo_USB", nullptr, charged},
    {"startup_boot_logo", "Boot_logo", nullptr, charged},
    {"startup_boot_logo_german", "Boot_logo", [] { stDevStatus.s8Language = 3; }, charged},
    {"startup_init", "Zavo_Init", nullptr, charged},
    {"startup_home_page", "Zavo_home_page", nullptr, charged},
}};

}  // namespace

int main(int argc, char** argv) {
  Get_StorageData_set_statfs(card_statfs);
  // The date editor shows a fixed date: the clock it reads is set inside a device tree of its own
  // (the host's clock is never touched).
  char tree[] = "/tmp/menus_gallery.XXXXXX";
  if (mkdtemp(tree) == nullptr) return 1;
  const std::string tmp = std::string(tree) + "/tmp";
  mkdir(tmp.c_str(), 0755);
  // The information page reads the identification the device application writes at boot.
  if (FILE* f = std::fopen((tmp + "/apps.version").c_str(), "w")) {
    std::fputs(
        "PN:\t [ZVT35-6401]\nSN:\t [25061417]\nFPA1:\t [IRD640-12U-0417]\n"
        "FPA2:\t [VIS1080-P2]\nSW:\t [V3.1.4.0]\n",
        f);
    std::fclose(f);
  }
  setenv("SCOPE_UI_ROOT", tree, 1);
  const int status = page_gallery_main(argc, argv, "menus_gallery", SHOTS);
  std::filesystem::remove_all(tree);
  return status;
}
