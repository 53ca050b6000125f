// The simulated device's side of the menus and system pages: the settings it keeps (so that a
// restart brings them back), the card it formats, the factory reset, restarting and powering
// off, and a firmware upgrade played against the UI's upgrade page.
#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "device_model.h"
#include "framedec.h"
#include "msg/msghandler.h"

namespace devsim {

namespace {

constexpr uint64_t RESTART_DELAY_MS = 1500;  // the device's own work before it restarts
constexpr uint64_t UPGRADE_STEP_MS = 1500;   // one step of the firmware installation
constexpr uint64_t MIB = 1024 * 1024;
constexpr uint64_t CARD_FULL_FREE = 150 * MIB;  // under the UI's 200 MiB card-full rule
constexpr uint64_t CARD_LOW_FREE = 400 * MIB;   // under 500 MiB: nearly full, not full
constexpr uint64_t CARD_MAX_TO_FILL = 4096 * MIB;
constexpr const char* CARD_FILLER = ".devsim-card-filler";
constexpr const char* MEDIA_FOLDERS[] = {"Picture", "Video", ".thumbnails"};

Frame upgrade_frame(uint8_t command, uint8_t value) {
  const uint8_t v[1] = {value};
  return framedec::build(26, command, 0, v);
}

}  // namespace

// ---- frames of the UI ----

void Device::on_system_frame(const Frame& f) {
  const int type = f[2];
  const int cmd = f[3];
  const int sub = f[4];
  const uint8_t v = f.size() > 6 ? f[6] : 0;
  if (type == 8) {  // the UI is (again) up
    rebooting_ = false;
    return;
  }
  if (type == 26) {
    on_upgrade_answer(static_cast<uint8_t>(cmd), v);
    return;
  }
  if (type == 1 && cmd == INFRARED_BASIC) {  // the image settings the device keeps
    switch (sub) {
      case INFRARED_LIGHT: settings_.s8IrBrightness = static_cast<char>(v); break;
      case INFRARED_CONTRACT: settings_.s8IrContrast = static_cast<char>(v); break;
      case INFRARED_ENHANCE: settings_.s8IrEnchance = static_cast<char>(v); break;
      case INFRARED_POLARITY: settings_.s8IrPolarity = static_cast<char>(v); break;
      case INFRARED_SCENE: settings_.s8IrScene = static_cast<char>(v); break;
      case INFRARED_AUTOSHUTTER: settings_.s8AutoShutter = static_cast<char>(v); break;
      default: break;
    }
    return;
  }
  if (type != 0 || cmd != 0) return;
  switch (sub) {
    case BASIC_CVBS_MODE: settings_.s8VideoOut = static_cast<char>(v); break;
    case BASIC_MICRO: settings_.s8MicroSwitch = static_cast<char>(v); break;
    case BASIC_STORAGE_FORMAT: {
      const int removed = format_card();
      if (removed >= 0)
        print_("device: card formatted, " + std::to_string(removed) + " file(s) erased");
      restart_later();
      break;
    }
    case BASIC_RESET_MODE:
      factory_reset();
      restart_later();
      break;
    case BASIC_REBOOT:
      print_("device: restart asked");
      restart_later();
      break;
    case BASIC_SHUT_DOWN:
      print_("device: shutting down");
      if (system_hook_) system_hook_(System::SHUT_DOWN);
      break;
    default: break;
  }
}

void Device::restart_later() {
  if (restart_at_ms_ == 0) restart_at_ms_ = now_ms_ + RESTART_DELAY_MS;
}

void Device::tick_system() {
  while (!pending_.empty() && pending_.front().at_ms <= now_ms_) {
    Pending p = std::move(pending_.front());
    pending_.pop_front();
    if (!p.note.empty()) print_(p.note);
    send_(p.frame);
  }
  if (restart_at_ms_ != 0 && now_ms_ >= restart_at_ms_) {
    restart_at_ms_ = 0;
    rebooting_ = true;
    upgrading_ = false;
    pending_.clear();
    ranging_continuous_ = false;
    playing_ = false;
    print_("device: restarting; the UI starts again");
    if (system_hook_) system_hook_(System::REBOOT);
  }
}

// ---- the card ----

int Device::format_card() {
  if (root_.empty()) {
    print_("device: no device tree (--root or SCOPE_UI_ROOT): nothing to format");
    return -1;
  }
  namespace fs = std::filesystem;
  const fs::path media = fs::path(root_) / "usrdata" / "media";
  std::error_code ec;
  int removed = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator(media, ec)) {
    for (const auto& file : fs::recursive_directory_iterator(entry.path(), ec)) {
      if (file.is_regular_file(ec)) ++removed;
    }
    if (entry.is_regular_file(ec)) ++removed;
    fs::remove_all(entry.path(), ec);
    if (ec) print_("device: cannot erase " + entry.path().string() + ": " + ec.message());
  }
  if (ec && !fs::exists(media)) {
    print_("device: no card at " + media.string());
    return -1;
  }
  for (const char* folder : MEDIA_FOLDERS)
    fs::create_directories(media / folder, ec);
  return removed;
}

bool Device::set_card(const std::string& state, std::string* error) {
  uint64_t want_free = 0;
  if (state == "full") {
    want_free = CARD_FULL_FREE;
  } else if (state == "low") {
    want_free = CARD_LOW_FREE;
  } else if (state != "ok") {
    *error = "card takes ok, low or full";
    return false;
  }
  if (card_filler_) return card_filler_(want_free, error);
  if (root_.empty()) {
    *error = "no device tree (--root or SCOPE_UI_ROOT): no card to fill";
    return false;
  }
  const std::string media = root_ + "/usrdata/media";
  const std::string filler = media + "/" + CARD_FILLER;
  unlink(filler.c_str());  // any earlier filling first: the free space below counts without it
  if (want_free == 0) {
    print_("device: card back to its own contents");
    return true;
  }
  struct statvfs st {};
  if (statvfs(media.c_str(), &st) != 0) {
    *error = media + ": " + std::strerror(errno);
    return false;
  }
  const uint64_t total = static_cast<uint64_t>(st.f_blocks) * st.f_frsize;
  const uint64_t free_now = static_cast<uint64_t>(st.f_bavail) * st.f_frsize;
  if (total > CARD_MAX_TO_FILL) {
    *error = "the card is the host's disk (" + std::to_string(total / MIB) +
             " MiB), not filled; make run gives a 1 GiB card where it can";
    return false;
  }
  if (free_now <= want_free) {
    print_("device: the card has " + std::to_string(free_now / MIB) + " MiB free already");
    return true;
  }
  const uint64_t size = free_now - want_free;
  const int fd = open(filler.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  const int rc = fd >= 0 ? posix_fallocate(fd, 0, static_cast<off_t>(size)) : errno;
  if (fd >= 0) close(fd);
  if (rc != 0) {
    unlink(filler.c_str());
    *error = "cannot fill the card: " + std::string(std::strerror(rc));
    return false;
  }
  print_("device: card " + state + ": " + std::to_string(want_free / MIB) + " MiB left free");
  return true;
}

// ---- factory reset ----

void Device::factory_reset() {
  settings_ = default_settings();
  zeroing_ = default_zeroing();
  for (int i = 0; i < 5; ++i)
    profiles_[i] = default_profile(i);
  if (!battery_fixed_) battery_ = 790;
  print_("device: factory settings restored");
  send_startup_records();
}

void Device::set_fixed_battery(int value) {
  battery_ = value;
  battery_fixed_ = true;
}

// ---- firmware upgrade ----

void Device::later(uint64_t delay_ms, Frame frame, std::string note) {
  const uint64_t base = pending_.empty() ? now_ms_ : pending_.back().at_ms;
  pending_.push_back({base + delay_ms, std::move(frame), std::move(note)});
}

void Device::start_upgrade(Upgrade outcome) {
  upgrade_ = outcome;
  upgrading_ = true;
  pending_.clear();
  // The battery first, so that the UI checks the level chosen on the command line.
  send_battery();
  print_("device: firmware upgrade found, telling the UI");
  send_(upgrade_frame(UPDATA_START_NOTICE, 0));
}

void Device::on_upgrade_answer(uint8_t command, uint8_t value) {
  if (!upgrading_) {
    print_("device: upgrade answer " + std::to_string(value) + " with no upgrade running");
    return;
  }
  if (command == UPDATA_CHECK) {
    switch (value) {
      case 0:
        if (upgrade_ == Upgrade::NO_FIRMWARE) {
          later(UPGRADE_STEP_MS, upgrade_frame(UPDATA_STATE, 1), "device: no usable firmware file");
          upgrading_ = false;
        } else {
          later(UPGRADE_STEP_MS, upgrade_frame(UPDATA_STATE, 0),
                "device: firmware checked, waiting for the user");
        }
        break;
      case 1:
      case 2:
        print_(std::string("device: the UI refused the upgrade: ") +
               (value == 1 ? "card full" : "battery low"));
        upgrading_ = false;
        break;
      default:
        print_("device: the UI's check is undecided (" + std::to_string(value) +
               "); change the battery (\"battery 760\") and send \"update-notice\" again");
        break;
    }
    return;
  }
  if (command != UPDATA_CONFIRM) return;
  if (value != 0) {
    print_("device: upgrade declined by the user");
    upgrading_ = false;
    restart_later();
    return;
  }
  // Three steps, each reported done (2, 4, 6) or failed (3, 5, 7); then the result.
  const Upgrade failing[3] = {Upgrade::FAIL_STEP_1, Upgrade::FAIL_STEP_2, Upgrade::FAIL_STEP_3};
  for (int step = 0; step < 3; ++step) {
    const bool fails = upgrade_ == failing[step];
    const uint8_t state = static_cast<uint8_t>(2 + 2 * step + (fails ? 1 : 0));
    later(UPGRADE_STEP_MS, upgrade_frame(UPDATA_STATE, state),
          "device: upgrade step " + std::to_string(step + 1) + (fails ? " failed" : " done"));
    if (fails) {
      upgrading_ = false;
      return;
    }
  }
  later(UPGRADE_STEP_MS, upgrade_frame(UPDATA_RESULT, 0), "device: upgrade complete");
  upgrading_ = false;
}

}  // namespace devsim
