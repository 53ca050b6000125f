// Each inbound family: the fields it stores and the screen events it raises, in order, through
// the real queue, listener thread and UI-thread drain.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <thread>

#include "link_fixture.h"

namespace linktest {
namespace {

std::string captured() {
  std::fflush(stdout);
  return testing::internal::GetCapturedStdout();
}

std::vector<uint8_t> le16(int v) {
  return {static_cast<uint8_t>(v & 0xFF), static_cast<uint8_t>((v >> 8) & 0xFF)};
}

std::vector<uint8_t> le64(uint64_t v) {
  std::vector<uint8_t> out;
  for (int i = 0; i < 8; ++i)
    out.push_back(static_cast<uint8_t>(v >> (8 * i)));
  return out;
}

// Reads a field when its screen event is dispatched: what the page would see.
struct Snapshot {
  int seen = -1;
  int (*read)() = nullptr;
  static ret_t on_event(void* ctx, event_t*) {
    auto* self = static_cast<Snapshot*>(ctx);
    self->seen = self->read();
    return RET_OK;
  }
  void attach(int event) { widget_on(window_manager(), event, on_event, this); }
};

class Inbound : public LinkTest {
 protected:
  void make_ready() { stUIStatus.event_distrubut_reday = 1; }
};

TEST_F(Inbound, WindSpeedIsStoredBeforeItsEvent) {
  Snapshot snap;
  snap.read = [] { return static_cast<int>(stUIStatus.s16WindSpeed); };
  snap.attach(8243);
  deliver(frame(0, 0, 38, le16(4470)));
  EXPECT_EQ(stUIStatus.s16WindSpeed, 4470);
  EXPECT_TRUE(log_.events().empty()) << "events wait for the UI thread";
  pump();
  EXPECT_EQ(log_.events(), std::vector<int>{8243});
  EXPECT_EQ(snap.seen, 4470);
}

TEST_F(Inbound, WhichScreenQueryIsAnsweredWithTheMenuLevel) {
  open_window("Zavo_home_page_1");
  deliver(frame(0, 0, 39, {0}));
  EXPECT_EQ(stUIStatus.s8CurrentMenu, 0);
  std::vector<Frame> sent = sent_frames();
  ASSERT_EQ(sent.size(), 1u);
  EXPECT_EQ(framedec::hex(sent[0]), "aa 07 00 00 27 00 00 d8 eb aa");

  open_window("Zavo_menu1");
  deliver(frame(0, 0, 39, {0}));
  EXPECT_EQ(stUIStatus.s8CurrentMenu, 1);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"BASIC BASIC_MENU_LEVEL value=1"});
}

TEST_F(Inbound, LightOverheat) {
  deliver(frame(0, 0, 25, {1}));
  pump();
  EXPECT_EQ(stUIStatus.s8LightOverheat, 1);
  EXPECT_EQ(log_.events(), std::vector<int>{8218});
}

TEST_F(Inbound, OtherBasicIndicesAreIgnored) {
  deliver(frame(0, 0, 24, {1}));
  deliver(frame(0, 0, 40, {1}));
  pump();
  EXPECT_TRUE(log_.events().empty());
  EXPECT_TRUE(sent_frames().empty());
}

TEST_F(Inbound, BrightLight) {
  deliver(frame(1, 0, INFRARED_BRIGHTLIGHT, {1}));
  pump();
  EXPECT_EQ(stUIStatus.s8IrBrightLight, 1);
  EXPECT_EQ(log_.events(), std::vector<int>{8236});
}

TEST_F(Inbound, ZoomIsStoredAlwaysAndAnnouncedOnlyOnceReady) {
  testing::internal::CaptureStdout();
  deliver(frame(1, 0, INFRARED_ZOOM, le16(250)));
  std::string out = captured();
  EXPECT_NE(out.find("stUIStatus.s8IRZoom = 250\n"), std::string::npos) << out;
  EXPECT_EQ(stUIStatus.s8IRZoom, 250);
  pump();
  EXPECT_TRUE(log_.events().empty());

  make_ready();
  deliver(frame(1, 0, INFRARED_ZOOM, le16(-2)));
  pump();
  EXPECT_EQ(stUIStatus.s8IRZoom, -2);
  EXPECT_EQ(log_.events(), (std::vector<int>{8227, 8248}));
}

TEST_F(Inbound, DistanceIsBigEndianAndRaisesItsEvent) {
  Snapshot snap;
  snap.read = [] { return static_cast<int>(stUIStatus.s16Distance); };
  snap.attach(8222);
  testing::internal::CaptureStdout();
  deliver(frame(4, 2, 0, {0, 0x30, 0x39}));
  std::string out = captured();
  EXPECT_NE(out.find("stUIStatus.s16Distance==============12345\n"), std::string::npos) << out;
  pump();
  EXPECT_EQ(stUIStatus.s16Distance, 12345);
  EXPECT_EQ(log_.events(), std::vector<int>{8222});
  EXPECT_EQ(snap.seen, 12345);
}

TEST_F(Inbound, FailedDistanceReadsZero) {
  stUIStatus.s16Distance = 999;
  testing::internal::CaptureStdout();
  deliver(frame(4, 2, 0, {255, 0x12, 0x34}));
  std::string out = captured();
  EXPECT_NE(out.find("===============测距返回失败\n"), std::string::npos) << out;
  pump();
  EXPECT_EQ(stUIStatus.s16Distance, 0);
  EXPECT_EQ(log_.events(), std::vector<int>{8222});
}

TEST_F(Inbound, ContinuousModeAnnouncesDistancesOnlyWhileMeasuring) {
  stDevStatus.s8RangeType = RANGE_CONTINUOUS;
  stUIStatus.s8RangeMode = 0;
  deliver(frame(4, 2, 0, {0, 0x01, 0x00}));
  pump();
  EXPECT_EQ(stUIStatus.s16Distance, 256);
  EXPECT_TRUE(log_.events().empty());
  stUIStatus.s8RangeMode = 3;
  deliver(frame(4, 2, 0, {0, 0x01, 0x01}));
  pump();
  EXPECT_EQ(log_.events(), std::vector<int>{8222});
}

TEST_F(Inbound, OtherRangeCommandsAreIgnored) {
  deliver(frame(4, 3, 0, {0, 0x01, 0x00}));
  pump();
  EXPECT_EQ(stUIStatus.s16Distance, 0);
  EXPECT_TRUE(log_.events().empty());
}

TEST_F(Inbound, WifiConnection) {
  deliver(frame(5, WIFI_CONNECT, 0, {1}));
  deliver(frame(5, WIFI_SWITCH, 0, {0}));  // not an inbound command: ignored
  pump();
  EXPECT_EQ(stUIStatus.s8WifiConnection, 1);
  EXPECT_EQ(log_.events(), std::vector<int>{8211});
}

TEST_F(Inbound, CompassAnglesAreStoredBeforeReadyWithoutEvents) {
  deliver(frame(6, 0, COMPASS_AZIMUTH_ANGLE, {1, 0x2c, 0x01}));  // the sign byte never applies
  deliver(frame(6, 0, COMPASS_PITCH_ANGLE, {1, 12, 0}));
  deliver(frame(6, 0, COMPASS_SLANT_ANGLE, {0, 7, 0}));
  pump();
  EXPECT_EQ(stUIStatus.s16CompassAzimuth, 300);
  EXPECT_EQ(stUIStatus.s16CompassPitch, -12);
  EXPECT_EQ(stUIStatus.s16CompassSlant, 7);
  EXPECT_TRUE(log_.events().empty());

  make_ready();
  deliver(frame(6, 0, COMPASS_SLANT_ANGLE, {1, 3, 0}));
  deliver(frame(6, 0, COMPASS_AZIMUTH_ANGLE, {0, 10, 0}));
  deliver(frame(6, 0, COMPASS_PITCH_ANGLE, {0, 4, 0}));
  deliver(frame(6, 1, COMPASS_PITCH_ANGLE, {0, 9, 0}));  // command 1: ignored
  pump();
  EXPECT_EQ(stUIStatus.s16CompassSlant, -3);
  EXPECT_EQ(stUIStatus.s16CompassPitch, 4);
  EXPECT_EQ(log_.events(), (std::vector<int>{8204, 8202, 8203}));
}

TEST_F(Inbound, BatteryValueAndType) {
  testing::internal::CaptureStdout();
  deliver(frame(15, 0, BATTERY_VALUE, le16(700)));
  std::string out = captured();
  EXPECT_NE(out.find("battery is 700\n"), std::string::npos);
  pump();
  EXPECT_EQ(stUIStatus.s16BatteryValue, 700);
  EXPECT_TRUE(log_.events().empty()) << "battery events wait for the first full status";

  make_ready();
  deliver(frame(15, 0, BATTERY_TYPE, {1}));
  pump();
  EXPECT_EQ(stUIStatus.s8BatteryType, 1);
  EXPECT_EQ(log_.events(), (std::vector<int>{8213, 8207}));
  log_.clear();
  deliver(frame(15, 0, BATTERY_VALUE, le16(569)));
  pump();
  EXPECT_EQ(stUIStatus.s16BatteryValue, 569);
  EXPECT_EQ(log_.events(), std::vector<int>{8207});
}

TEST_F(Inbound, ReticleAndMarkerPositions) {
  testing::internal::CaptureStdout();
  deliver(frame(22, RETICLE_POSITION, 1, le16(-15)));
  deliver(frame(22, RETICLE_POSITION, 2, le16(40)));
  deliver(frame(22, RETICLE_LASER_POSITION, 1, le16(700)));
  deliver(frame(22, RETICLE_RANGE_POSITION, 2, le16(512)));
  std::string out = captured();
  pump();
  EXPECT_EQ(stDevStatus.s16ReticlePositionX, -15);
  EXPECT_EQ(stDevStatus.s16ReticlePositionY, 40);
  EXPECT_EQ(stDevStatus.s16LaserIndicatX, 700);
  EXPECT_EQ(stDevStatus.s16RangeOffsetY, 512);
  EXPECT_NE(
      out.find("stDevStatus.s16ReticlePositionX=== -15 stDevStatus.s16ReticlePositionY===40\n"),
      std::string::npos)
      << out;
  EXPECT_NE(out.find("stDevStatus.s16LaserIndicatX=== 700 stDevStatus.s16LaserIndicatY===0\n"),
            std::string::npos)
      << out;
  // The two reticle frames fold into one pending event.
  EXPECT_EQ(log_.events(), (std::vector<int>{8197, 8226, 8225}));
}

TEST_F(Inbound, PlaybackPositionAndLength) {
  testing::internal::CaptureStdout();
  deliver(frame(23, 0, TAP_PROCESS, le64(123456789012ull)));
  std::string out = captured();
  EXPECT_NE(out.find("\n\n\n get frams = 123456789012!\n"), std::string::npos) << out;
  EXPECT_EQ(stUIStatus.u64VideoCurrentFrames, 123456789012ull);
  EXPECT_EQ(stUIStatus.u64VideoForwardFrames, 123456789012ull);

  stUIStatus.u8VideoCurrentFrames = 600;
  std::vector<uint8_t> v = le64(9000);
  v.push_back(0);
  v.push_back(0);  // a zero rate keeps the one in force
  deliver(frame(23, 0, TAP_TOTAL_TIME, v));
  EXPECT_EQ(stUIStatus.u64VideoTotalFrames, 9000u);
  EXPECT_EQ(stUIStatus.u8VideoCurrentFrames, 600);
  v = le64(4500);
  v.push_back(0x2c);
  v.push_back(0x01);
  deliver(frame(23, 0, TAP_TOTAL_TIME, v));
  EXPECT_EQ(stUIStatus.u8VideoCurrentFrames, 300);
  pump();
  EXPECT_EQ(log_.events(), (std::vector<int>{8205, 8206}));
}

TEST_F(Inbound, BlindSaveResultHasNoEvent) {
  deliver(frame(24, BLIND_SAVE, 0, {2}));
  deliver(frame(24, BLIND_REPAIR, 0, {5}));
  pump();
  EXPECT_EQ(stUIStatus.s8BlindSaveStatus, 2);
  EXPECT_TRUE(log_.events().empty());
}

TEST_F(Inbound, GGResults) {
  deliver(frame(25, GG_SAVE, 0, {3}));
  deliver(frame(25, GG_CLEAR, 0, {1}));
  deliver(frame(25, GG_GET, 0, {2}));
  pump();
  EXPECT_EQ(stUIStatus.s8GGClearStatus, 1);
  EXPECT_EQ(stUIStatus.s8GGGetStatus, 2);
  EXPECT_EQ(stUIStatus.s8GGSaveStatus, 3);
  EXPECT_EQ(log_.events(), (std::vector<int>{8221, 8219, 8220}));
}

TEST_F(Inbound, BallisticSolutionFloats) {
  std::vector<uint8_t> v(8);
  const float moa_v = 6.25f;
  const float moa_h = -1.5f;
  std::memcpy(v.data(), &moa_v, 4);
  std::memcpy(v.data() + 4, &moa_h, 4);
  Snapshot snap;
  snap.read = [] { return static_cast<int>(std::lround(result_ball.moaV * 100)); };
  snap.attach(8240);
  deliver(frame(27, 0, 0, v));
  pump();
  EXPECT_DOUBLE_EQ(result_ball.moaV, 6.25);
  EXPECT_DOUBLE_EQ(result_ball.moaH, -1.5);
  EXPECT_EQ(snap.seen, 625);
  EXPECT_EQ(log_.events(), std::vector<int>{8240});
}

TEST_F(Inbound, RecoilTriggerAndWindMeterConnection) {
  testing::internal::CaptureStdout();
  deliver(frame(28, 0, 0, {}));
  deliver(frame(29, 0, 0, {1}));
  std::string out = captured();
  pump();
  EXPECT_EQ(stUIStatus.wind_connect_state, 1);
  EXPECT_NE(out.find("stUIStatus.wind_connect_state = 1\n"), std::string::npos) << out;
  EXPECT_EQ(log_.events(), std::vector<int>{8246});
}

TEST_F(Inbound, TypesWithoutAHandlerAreIgnored) {
  Inf_UIStatus before = stUIStatus;
  for (int type : {2, 3, 8, 9, 10, 11, 12, 13, 14, 17, 18, 19, 20, 21}) {
    deliver(frame(static_cast<uint8_t>(type), 0, 0, {1, 2, 3, 4}));
  }
  pump();
  EXPECT_TRUE(log_.events().empty());
  EXPECT_TRUE(sent_frames().empty());
  EXPECT_EQ(std::memcmp(&before, &stUIStatus, sizeof(before)), 0);
}

TEST_F(Inbound, FirmwareUpdateStateAndResult) {
  deliver(frame(26, UPDATA_STATE, 0, {4}));
  deliver(frame(26, UPDATA_RESULT, 0, {1}));
  pump();
  EXPECT_EQ(stUIStatus.s8Updata_state, 4);
  EXPECT_EQ(stUIStatus.s8Updata_result, 1);
  // Both end with the update event; the second raise folds into the first.
  EXPECT_EQ(log_.events(), std::vector<int>{8249});
}

TEST_F(Inbound, FirstUpdateNoticeOpensTheUpdatePageLaterOnesAskTheCheck) {
  use_windows({"Zavo_home_page_1", "Zavo_updata"});
  open_window("Zavo_home_page_1");
  stUIStatus.s8BlindSwitch = 1;
  // The first notice waits a second on the listener thread: move the test clock meanwhile.
  Frame notice = frame(26, UPDATA_START_NOTICE, 0, {});
  std::thread device([&] { deliver(notice); });
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (stUIStatus.s8BlindSwitch != 0 && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::microseconds(100));
  }
  for (int i = 0; i < 20; ++i)
    tk_testing_advance(100);
  device.join();
  pump();
  EXPECT_EQ(top_window(), "Zavo_updata");
  EXPECT_EQ(stUIStatus.s8BlindSwitch, 0);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"BLIND BLIND_CURSOR_SWITCH value=0"});
  EXPECT_EQ(log_.count(8249), 1u);

  deliver(notice);
  pump();
  EXPECT_EQ(stUIStatus.s8Updata_check, 3);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"UPDATA UPDATA_CHECK value=3"});
  EXPECT_EQ(log_.count(8249), 2u);
  EXPECT_EQ(tk_testing_window_names().back(), "Zavo_updata");
}

}  // namespace
}  // namespace linktest
