// The simulator's side of the menus and system pages, driven in-process: the settings it keeps
// across a restart, formatting its tree's card, the factory reset, restart and power-off, the
// firmware upgrade it plays, and the commands that start them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "device_model.h"
#include "framedec.h"
#include "msg/msghandler.h"
#include "script.h"

namespace {

namespace fs = std::filesystem;
using devsim::Device;
using devsim::Frame;
using Lines = std::vector<std::string>;

// A device with its frames (decoded, blanks collapsed), its printed lines and its system requests.
struct Rig {
  Lines sent;
  std::vector<Frame> frames;
  Lines printed;
  std::vector<Device::System> system;
  uint64_t now = 1000;
  Device device{
      [this](const Frame& f) {
        frames.push_back(f);
        sent.push_back(framedec::normalize(framedec::decode(f, framedec::Direction::TO_UI)));
      },
      [this](const std::string& line) { printed.push_back(line); }};
  Rig() {
    device.set_schedule(false);
    device.set_system_hook([this](Device::System s) { system.push_back(s); });
    device.tick(now);
  }
  void from_ui(uint8_t type, uint8_t command, uint8_t sub, uint8_t value) {
    const uint8_t v[1] = {value};
    device.on_frame(framedec::build(type, command, sub, v));
  }
  void basic(uint8_t index, uint8_t value) { from_ui(0, 0, index, value); }
  void advance(uint64_t ms) {
    for (uint64_t t = 0; t < ms; t += 50)
      device.tick(now += 50);
  }
  Lines take() { return std::exchange(sent, {}); }
  bool said(const std::string& text) const {
    for (const auto& l : printed)
      if (l.find(text) != std::string::npos) return true;
    return false;
  }
};

struct Tree {
  fs::path root;
  Tree() {
    char dir[] = "/tmp/devsim_menus.XXXXXX";
    root = mkdtemp(dir);
    for (const char* d : {"Picture", "Video", ".thumbnails"})
      fs::create_directories(root / "usrdata" / "media" / d);
    std::ofstream(root / "usrdata/media/Picture/IMG_0001.bmp") << "photo";
    std::ofstream(root / "usrdata/media/Video/VID_0001.mp4") << "video";
    std::ofstream(root / "usrdata/media/.thumbnails/VID_0001.jpg") << "thumb";
    std::ofstream(root / "usrdata/media/stray.txt") << "x";
  }
  ~Tree() { fs::remove_all(root); }
};

TEST(DeviceSystem, KeepsTheSettingsTheMenusChangeAndSendsThemAfterARestart) {
  Rig r;
  r.from_ui(1, INFRARED_BASIC, INFRARED_LIGHT, 8);
  r.from_ui(1, INFRARED_BASIC, INFRARED_POLARITY, 3);
  r.from_ui(1, INFRARED_BASIC, INFRARED_AUTOSHUTTER, 0);
  r.basic(BASIC_CVBS_MODE, 1);
  r.basic(BASIC_MICRO, 0);
  EXPECT_EQ(r.device.settings().s8IrBrightness, 8);
  EXPECT_EQ(r.device.settings().s8IrPolarity, 3);
  EXPECT_EQ(r.device.settings().s8AutoShutter, 0);
  EXPECT_EQ(r.device.settings().s8VideoOut, 1);
  EXPECT_EQ(r.device.settings().s8MicroSwitch, 0);
  r.basic(BASIC_REBOOT, 1);
  r.advance(1400);
  EXPECT_TRUE(r.system.empty());
  r.advance(200);
  ASSERT_EQ(r.system, std::vector<Device::System>{Device::System::REBOOT});
  EXPECT_TRUE(r.device.rebooting());
  r.take();
  r.from_ui(8, 0, 0, 0);  // the UI is up again
  EXPECT_FALSE(r.device.rebooting());
  ASSERT_FALSE(r.frames.empty());
  Inf_DevStatus sent{};
  std::memcpy(&sent, r.frames[r.frames.size() - r.take().size()].data() + 6, sizeof(sent));
  EXPECT_EQ(sent.s8IrBrightness, 8);
  EXPECT_EQ(sent.s8VideoOut, 1);
}

TEST(DeviceSystem, NoReadingsWhileTheUiRestarts) {
  Rig r;
  r.device.set_schedule(true);
  r.advance(3000);
  EXPECT_FALSE(r.take().empty());  // compass and wind on their schedule
  r.basic(BASIC_REBOOT, 1);
  r.advance(2000);
  r.take();
  r.advance(12000);
  EXPECT_EQ(r.take(), Lines{});
  r.from_ui(8, 0, 0, 0);
  r.take();
  r.advance(3000);
  EXPECT_FALSE(r.take().empty());
}

TEST(DeviceSystem, FormattingEmptiesTheTreesCardThenRestarts) {
  Tree tree;
  Rig r;
  r.device.set_root(tree.root.string());
  r.basic(BASIC_STORAGE_FORMAT, 1);
  EXPECT_TRUE(r.said("device: card formatted, 4 file(s) erased")) << r.printed.back();
  const fs::path media = tree.root / "usrdata" / "media";
  Lines left;
  for (const auto& e : fs::recursive_directory_iterator(media))
    left.push_back(e.path().lexically_relative(media).string());
  std::sort(left.begin(), left.end());
  EXPECT_EQ(left, (Lines{".thumbnails", "Picture", "Video"}));
  r.advance(1600);
  EXPECT_EQ(r.system, std::vector<Device::System>{Device::System::REBOOT});
  // Without a tree there is nothing to erase, and a line says so.
  Rig bare;
  bare.basic(BASIC_STORAGE_FORMAT, 1);
  EXPECT_TRUE(bare.said("no device tree"));
}

TEST(DeviceSystem, FactoryResetRestoresAndResendsTheDefaultRecordsThenRestarts) {
  Rig r;
  r.from_ui(1, INFRARED_BASIC, INFRARED_SCENE, 3);
  r.basic(BASIC_CVBS_MODE, 1);
  r.take();
  r.basic(BASIC_RESET_MODE, 1);
  EXPECT_TRUE(r.said("device: factory settings restored"));
  const Inf_DevStatus defaults = devsim::default_settings();
  EXPECT_EQ(std::memcmp(&r.device.settings(), &defaults, sizeof(defaults)), 0);
  const Lines sent = r.take();
  ASSERT_GE(sent.size(), 7u);
  EXPECT_EQ(sent[0], "PARAM BASIC_PARAM bytes=74");
  EXPECT_EQ(sent[6], "PARAM BALLISTIC_PARM profile=4 bytes=240");
  Inf_DevStatus record{};
  std::memcpy(&record, r.frames[r.frames.size() - sent.size()].data() + 6, sizeof(record));
  EXPECT_EQ(std::memcmp(&record, &defaults, sizeof(defaults)), 0);
  r.advance(1600);
  EXPECT_EQ(r.system, std::vector<Device::System>{Device::System::REBOOT});
}

TEST(DeviceSystem, ShutDownPowersOff) {
  Rig r;
  r.basic(BASIC_SHUT_DOWN, 1);
  EXPECT_EQ(r.system, std::vector<Device::System>{Device::System::SHUT_DOWN});
  EXPECT_TRUE(r.said("device: shutting down"));
}

TEST(DeviceUpgrade, PlaysEachOutcomeAgainstTheUisAnswers) {
  struct Case {
    Device::Upgrade outcome;
    Lines after_confirm;  // what the device sends once the user confirmed
  };
  const Case cases[] = {
      {Device::Upgrade::OK,
       {"UPDATA UPDATA_STATE value=2", "UPDATA UPDATA_STATE value=4", "UPDATA UPDATA_STATE value=6",
        "UPDATA UPDATA_RESULT value=0"}},
      {Device::Upgrade::FAIL_STEP_1, {"UPDATA UPDATA_STATE value=3"}},
      {Device::Upgrade::FAIL_STEP_2,
       {"UPDATA UPDATA_STATE value=2", "UPDATA UPDATA_STATE value=5"}},
      {Device::Upgrade::FAIL_STEP_3,
       {"UPDATA UPDATA_STATE value=2", "UPDATA UPDATA_STATE value=4",
        "UPDATA UPDATA_STATE value=7"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.after_confirm.back());
    Rig r;
    r.device.set_fixed_battery(731);
    r.device.start_upgrade(c.outcome);
    EXPECT_EQ(r.take(),
              (Lines{"BATTERY BATTERY_VALUE value=731", "UPDATA UPDATA_START_NOTICE value=0"}));
    r.from_ui(26, UPDATA_CHECK, 0xFF, 0);  // the UI's checks passed
    r.advance(1400);
    EXPECT_EQ(r.take(), Lines{});
    r.advance(200);
    EXPECT_EQ(r.take(), Lines{"UPDATA UPDATA_STATE value=0"});
    r.from_ui(26, UPDATA_CONFIRM, 0xFF, 0);
    r.advance(10000);
    // One frame at a time, 1.5 s apart (the UI steps once per report).
    EXPECT_EQ(r.take(), c.after_confirm);
    EXPECT_TRUE(r.system.empty());
  }
}

TEST(DeviceUpgrade, NoFirmwareARefusalAndADeclineEachEndTheUpgrade) {
  Rig r;
  r.device.start_upgrade(Device::Upgrade::NO_FIRMWARE);
  r.take();
  r.from_ui(26, UPDATA_CHECK, 0xFF, 0);
  r.advance(2000);
  EXPECT_EQ(r.take(), Lines{"UPDATA UPDATA_STATE value=1"});

  Rig refused;
  refused.device.start_upgrade(Device::Upgrade::OK);
  refused.take();
  refused.from_ui(26, UPDATA_CHECK, 0xFF, 2);
  refused.advance(5000);
  EXPECT_EQ(refused.take(), Lines{});
  EXPECT_TRUE(refused.said("the UI refused the upgrade: battery low"));

  Rig undecided;  // exactly 730: the UI waits for another notice
  undecided.device.start_upgrade(Device::Upgrade::OK);
  undecided.from_ui(26, UPDATA_CHECK, 0xFF, 5);
  EXPECT_TRUE(undecided.said("undecided (5)"));

  Rig declined;
  declined.device.start_upgrade(Device::Upgrade::OK);
  declined.from_ui(26, UPDATA_CHECK, 0xFF, 0);
  declined.advance(2000);
  declined.take();
  declined.from_ui(26, UPDATA_CONFIRM, 0xFF, 1);
  declined.advance(2000);
  EXPECT_EQ(declined.take(), Lines{});
  EXPECT_EQ(declined.system, std::vector<Device::System>{Device::System::REBOOT});
}

TEST(DeviceUpgrade, CardStatesNeedACardOfTheirOwn) {
  Rig r;
  std::string error;
  EXPECT_FALSE(r.device.set_card("full", &error));
  EXPECT_NE(error.find("no device tree"), std::string::npos) << error;
  Tree tree;
  r.device.set_root(tree.root.string());
  std::ofstream(tree.root / "usrdata/media/.devsim-card-filler") << "filling";
  EXPECT_TRUE(r.device.set_card("ok", &error));
  EXPECT_FALSE(fs::exists(tree.root / "usrdata/media/.devsim-card-filler"));
  EXPECT_FALSE(r.device.set_card("half", &error));
  EXPECT_EQ(error, "card takes ok, low or full");
}

TEST(DeviceScript, UpgradeAndCardCommands) {
  struct Case {
    const char* line;
    devsim::Op op;
    int number;
  };
  const Case good[] = {
      {"upgrade", devsim::Op::UPGRADE, 0},        {"upgrade no-firmware", devsim::Op::UPGRADE, 1},
      {"upgrade fail-3", devsim::Op::UPGRADE, 4}, {"card full", devsim::Op::CARD, 2},
      {"card ok", devsim::Op::CARD, 0},           {"schedule on", devsim::Op::SCHEDULE, 1},
      {"schedule off", devsim::Op::SCHEDULE, 0},
  };
  for (const Case& c : good) {
    std::string error;
    auto command = devsim::parse_command(c.line, &error);
    ASSERT_TRUE(command) << c.line << ": " << error;
    EXPECT_EQ(command->op, c.op) << c.line;
    EXPECT_EQ(command->numbers, std::vector<int>{c.number}) << c.line;
  }
  const std::pair<const char*, const char*> bad[] = {
      {"upgrade sideways",
       "\"upgrade\" needs one of ok|no-firmware|fail-1|fail-2|fail-3, not \"sideways\""},
      {"card", "\"card\" needs one of ok|low|full"},
      {"schedule", "\"schedule\" needs one of off|on"},
      {"card full now", "\"card\" needs one of ok|low|full"},
  };
  for (const auto& [line, message] : bad) {
    std::string error;
    EXPECT_FALSE(devsim::parse_command(line, &error)) << line;
    EXPECT_EQ(error, message);
  }
  // Run as commands, they reach the device.
  Rig r;
  devsim::Actions actions{[&](const Frame& f) { r.device.on_frame(f); },
                          [&](const std::string& l) { r.printed.push_back(l); },
                          &r.device,
                          {},
                          {}};
  std::string error;
  devsim::execute(*devsim::parse_command("card low", &error), actions);
  EXPECT_TRUE(r.said("no device tree"));
  devsim::execute(*devsim::parse_command("upgrade fail-1", &error), actions);
  EXPECT_TRUE(r.said("firmware upgrade found"));
}

}  // namespace
