// The observation screen's start: its init waits for the device's first full status, delivered
// by the real listener thread while the init sleeps, and then draws what arrived; the battery
// placeholder never hides a level the device has reported.
#include <atomic>
#include <chrono>
#include <thread>

#include "home_fixture.h"

namespace {

using page_test::Frames;

template <typename Record>
std::vector<uint8_t> bytes_of(const Record& r) {
  const auto* p = reinterpret_cast<const uint8_t*>(&r);
  return std::vector<uint8_t>(p, p + sizeof(r));
}

class HomeInitTest : public home_test::HomeTest {
 protected:
  // Sends a frame on the UI's receive queue from any thread, without waiting for the listener.
  void send(const std::vector<uint8_t>& frame) {
    Inf_MsgEvent m{};
    m.msg_type = MSG_RECV_TYPE;
    m.msg_text.type = MSG_TYPE_FRAMED;
    m.msg_text.length = static_cast<uint32_t>(frame.size());
    std::memcpy(m.msg_text.context, frame.data(), frame.size());
    ASSERT_EQ(msgsnd(recv_q_, &m, MSG_TEXT_SIZE, 0), 0);
  }
};

TEST_F(HomeInitTest, WaitsForTheFirstFullStatusThenDrawsWhatArrived) {
  // Nothing has arrived yet: the records are those of a scope that has just started.
  std::memset(&stDevStatus, 0, sizeof(stDevStatus));
  std::memset(&IR_Cursor, 0, sizeof(IR_Cursor));
  std::memset(info, 0, sizeof(info));
  stUIStatus.event_distrubut_reday = 0;

  // What the device sends: its settings (white-hot turned red-face, profile 5 in use, the
  // reticle label and metres switched off), zero C of group 1, five profiles zeroed at 110 to
  // 150 yards, and a battery level.
  Inf_DevStatus settings{};
  settings.s8IrPolarity = 2;
  settings.s8BallisticGroup = 4;
  settings.s8CompassSwitch = 1;
  Inf_IR_Cursor zeroing{};
  zeroing.u8CurrentGroup = 0;
  zeroing.group[0].u8CurrentZero = 2;
  for (auto& group : zeroing.group) {
    for (auto& zero : group.zero) {
      zero.s8IrCursorCurrentX = 640;
      zero.s8IrCursorCurrentY = 512;
    }
  }
  std::vector<std::vector<uint8_t>> profiles;
  for (int i = 0; i < 5; ++i) {
    Info_ballistics p{};
    p.gun.scope.zeroRange_yard = static_cast<int16_t>(110 + 10 * i);
    profiles.push_back(
        page_test::device_frame(16, BALLISTIC_PARM, static_cast<uint8_t>(i), bytes_of(p)));
  }

  // The last profile comes 300 ms after the rest: the init must still be waiting for it.
  std::atomic<bool> last_sent{false};
  std::thread device([&] {
    send(page_test::device_frame(15, 0, BATTERY_VALUE, {0x16, 0x03}));  // 790
    send(page_test::device_frame(16, BASIC_PARAM, 0, bytes_of(settings)));
    send(page_test::device_frame(16, RETICLE_PARAM, 0, bytes_of(zeroing)));
    for (int i = 0; i < 4; ++i)
      send(profiles[i]);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    last_sent = true;
    send(profiles[4]);
  });
  const std::string out = home_test::printed([&] { open_home(); });
  const bool waited = last_sent;
  device.join();

  EXPECT_TRUE(waited) << "the init returned before the last profile";
  EXPECT_EQ(stUIStatus.event_distrubut_reday, 1);
  EXPECT_EQ(text("label_reticle_value"), "C5 150y");
  EXPECT_EQ(image("image_Zavo_colormap"), "Zavo_status_redface");
  EXPECT_EQ(image("image_Zavo_battery"), "Zavo_battery4");
  EXPECT_EQ(stUIStatus.s16BatteryValue, 790) << "the placeholder came before the report";
  // The three overrides are applied to what the device sent, not before it arrived.
  EXPECT_EQ(stDevStatus.s8ReticleMenuSwitch, 1);
  EXPECT_EQ(stDevStatus.s8ReticleSwitch, 1);
  EXPECT_EQ(stDevStatus.s8DistanceUint, DISTANCE_YD);
  EXPECT_TRUE(shown("label_reticle_value"));
  // Asked which screen is up before the wait; the calculator switched on after it.
  const std::vector<std::string> frames = page_test::decoded(init_frames_);
  ASSERT_EQ(frames.size(), 2u);
  EXPECT_EQ(frames[0], "BASIC BASIC_MENU_LEVEL value=0");
  EXPECT_EQ(frames[1].rfind("BALLISTIC BALLISTIC_OPEN_CALCU item=1", 0), 0u) << frames[1];
  EXPECT_LT(out.find("enter Zavo_home_page_1!!!"), out.find("info.gun.bullet.length"));
  EXPECT_LT(out.rfind("info.gun.bullet.length"), out.find("Zavo_home_page_1 INIT END!"));
}

TEST_F(HomeInitTest, TheBatteryPlaceholderNeverHidesAReportedLevel) {
  // No report yet: the placeholder, an empty battery.
  open_home();
  EXPECT_EQ(stUIStatus.s16BatteryValue, 600);
  EXPECT_EQ(image("image_Zavo_battery"), "Zavo_battery0");
  battery_report(790);
  EXPECT_EQ(image("image_Zavo_battery"), "Zavo_battery4");
  // The screen opened again (a fresh window, its init runs again) keeps the device's level.
  open_home();
  EXPECT_EQ(stUIStatus.s16BatteryValue, 790);
  EXPECT_EQ(image("image_Zavo_battery"), "Zavo_battery4");
}

}  // namespace
