// Inbound frames through the real queue, listener thread and UI-thread drain: the frame check,
// and each family's fields, printed line and screen events, in order.
#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

#include "link_fixture.h"

namespace linktest {
namespace {

std::vector<uint8_t> le64(uint64_t v, std::vector<uint8_t> tail = {}) {
  std::vector<uint8_t> out;
  for (int i = 0; i < 8; ++i)
    out.push_back(static_cast<uint8_t>(v >> (8 * i)));
  out.insert(out.end(), tail.begin(), tail.end());
  return out;
}

std::vector<uint8_t> floats(float a, float b) {
  std::vector<uint8_t> v(8);
  std::memcpy(v.data(), &a, 4);
  std::memcpy(v.data() + 4, &b, 4);
  return v;
}

class FrameCheck : public LinkTest {};

TEST_F(FrameCheck, EachBrokenFrameIsDroppedWithItsMessage) {
  const Frame good = frame(15, 0, BATTERY_VALUE, le16(700));  // aa 08 0f .. L = 8
  struct Case {
    int at;
    uint8_t value;
    const char* printed;
  };
  const Case cases[] = {
      {0, 0xAB, "CMD_HEADER_0 ERROR\n"},
      {8, static_cast<uint8_t>(good[8] + 1), "CMD_END_CHECK ERROR\n"},
      {8, static_cast<uint8_t>(good[8] - 1), "CMD_END_CHECK ERROR\n"},
      {9, 0xEC, "CMD_END_SEC ERROR\n"},
      {10, 0xAB, "CMD_END_FIR ERROR\n"},
  };
  for (const Case& c : cases) {
    Frame f = good;
    f[c.at] = c.value;
    const std::string out = output_of([&] { deliver(f); });
    EXPECT_NE(out.find(c.printed), std::string::npos) << out;
    EXPECT_EQ(out.find("battery is"), std::string::npos) << out;
  }
  // A frame whose L is 255 over zeros fails on its checksum.
  Frame zeros(512, 0);
  zeros[0] = 0xaa;
  zeros[1] = 0xff;
  EXPECT_NE(output_of([&] { deliver(zeros); }).find("CMD_END_CHECK ERROR\n"), std::string::npos);
  EXPECT_EQ(Inf_GetLinkStats().frames_dropped, 6u);
  EXPECT_EQ(stUIStatus.s16BatteryValue, 0);

  const std::string out = output_of([&] { deliver(good); });
  EXPECT_NE(out.find("battery is 700\n"), std::string::npos) << out;
  EXPECT_EQ(stUIStatus.s16BatteryValue, 700);
  EXPECT_EQ(check_num(good.data(), static_cast<int>(good.size())), good[8]);
}

TEST_F(FrameCheck, LengthBelowSixIsDroppedBeforeAnyCopy) {
  // A correct trailer around a settings load whose value count would be -1, and the shortest
  // frame of all.
  std::memset(&stDevStatus, 0x5A, sizeof(stDevStatus));
  const Inf_DevStatus before = stDevStatus;
  const Frame l5 = {0xaa, 0x05, 0x10, 0x00, 0x00, 0xbf, 0xeb, 0xaa};
  std::string out = output_of([&] { deliver_all({l5, {0xaa, 0x02, 0xac, 0xeb, 0xaa}}); });
  EXPECT_NE(out.find("CMD_LENGTH ERROR: L=5 is below 6, frame dropped\n"), std::string::npos);
  EXPECT_NE(out.find("CMD_LENGTH ERROR: L=2 is below 6, frame dropped\n"), std::string::npos);
  EXPECT_EQ(std::memcmp(&stDevStatus, &before, sizeof(before)), 0);
  EXPECT_EQ(Inf_GetLinkStats().frames_dropped, 2u);
}

TEST_F(FrameCheck, OnlyFramedMessagesOfKnownTypesReachTheDispatch) {
  // Not a framed command, types above 29 (silently), a length field that disagrees with the
  // frame (not compared), and a 4-byte message that must not show the previous one's bytes.
  deliver_message(message(frame(15, 0, BATTERY_VALUE, le16(650)), 0x20));
  EXPECT_EQ(stUIStatus.s16BatteryValue, 0);
  std::string out = output_of([&] { deliver_all({frame(30, 0, 0, {1}), frame(255, 0, 0, {1})}); });
  EXPECT_EQ(out.find("ERROR"), std::string::npos) << out;
  Inf_MsgEvent lying = message(frame(15, 0, BATTERY_VALUE, le16(640)));
  lying.msg_text.length = 3;
  deliver_message(lying);
  EXPECT_EQ(stUIStatus.s16BatteryValue, 640);
  out = output_of([&] { deliver_message(message({}), 4); });
  EXPECT_NE(out.find("CMD_HEADER_0 ERROR"), std::string::npos) << out;
  EXPECT_EQ(out.find("battery is"), std::string::npos) << out;

  const Inf_LinkStats st = Inf_GetLinkStats();
  EXPECT_EQ(st.frames_received, 4u);
  EXPECT_EQ(st.frames_dropped, 3u);
  pump();
  EXPECT_TRUE(log_.empty());
  EXPECT_TRUE(sent_frames().empty());
}

class Inbound : public LinkTest {};

// The frames of one family, a line their handler prints ("" for none), and the screen events
// that follow. (Battery, wind, zoom and the gated events have their own tests.)
struct Family {
  std::vector<Frame> frames;
  const char* printed;
  std::vector<int> events;
};

TEST_F(Inbound, EachFamilyStoresItsFieldsThenRaisesItsEvents) {
  stUIStatus.event_distrubut_reday = 1;
  const Family families[] = {
      {{frame(0, 0, 25, {1})}, "", {8218}},
      {{frame(0, 0, 24, {1}), frame(0, 0, 40, {1})}, "", {}},  // other basic indices: ignored
      {{frame(1, 0, INFRARED_BRIGHTLIGHT, {1})}, "", {8236}},
      {{frame(4, 2, 0, {0, 0x30, 0x39})}, "stUIStatus.s16Distance==============12345\n", {8222}},
      {{frame(4, 2, 0, {255, 0x12, 0x34})}, "===============测距返回失败\n", {8222}},
      {{frame(4, 3, 0, {0, 0x01, 0x00})}, "", {}},  // only command 2 is a distance
      {{frame(5, WIFI_CONNECT, 0, {1}), frame(5, WIFI_SWITCH, 0, {0})}, "", {8211}},
      {{frame(6, 0, COMPASS_AZIMUTH_ANGLE, {1, 0x2c, 0x01}),
        frame(6, 0, COMPASS_SLANT_ANGLE, {1, 3, 0}), frame(6, 0, COMPASS_PITCH_ANGLE, {0, 4, 0}),
        frame(6, 1, COMPASS_PITCH_ANGLE, {1, 9, 0})},
       "",
       {8202, 8204, 8203}},
      {{frame(22, RETICLE_POSITION, 1, le16(-15)), frame(22, RETICLE_POSITION, 2, le16(40)),
        frame(22, RETICLE_LASER_POSITION, 1, le16(700)),
        frame(22, RETICLE_RANGE_POSITION, 2, le16(512))},
       "stDevStatus.s16ReticlePositionX=== -15 stDevStatus.s16ReticlePositionY===40\n"
       "stDevStatus.s16LaserIndicatX=== 700 stDevStatus.s16LaserIndicatY===0\n",
       {8197, 8197, 8226, 8225}},
      {{frame(23, 0, TAP_PROCESS, le64(123456789012ull)),
        frame(23, 0, TAP_TOTAL_TIME, le64(9000, {0x2c, 0x01})),
        frame(23, 0, TAP_TOTAL_TIME, le64(4500, {0, 0}))},
       "\n\n\n get frams = 123456789012!\n",
       {8205, 8206, 8206}},
      {{frame(24, BLIND_SAVE, 0, {2}), frame(24, BLIND_REPAIR, 0, {5})}, "", {}},
      {{frame(25, GG_SAVE, 0, {3}), frame(25, GG_CLEAR, 0, {1}), frame(25, GG_GET, 0, {2})},
       "",
       {8221, 8219, 8220}},
      {{frame(26, UPDATA_STATE, 0, {4}), frame(26, UPDATA_RESULT, 0, {1})}, "", {8249, 8249}},
      {{frame(27, 0, 0, floats(6.25f, -1.5f))}, "", {8240}},
      {{frame(28, 0, 0), frame(29, 0, 0, {1})}, "stUIStatus.wind_connect_state = 1\n", {8246}},
  };
  for (const Family& family : families) {
    const std::string out = output_of([&] { deliver_all(family.frames); });
    const std::string what = framedec::decode(family.frames[0], framedec::Direction::TO_UI);
    EXPECT_NE(out.find(family.printed), std::string::npos) << what << ": " << out;
    EXPECT_TRUE(log_.empty()) << what << ": events wait for the UI thread";
    EXPECT_EQ(take_events(), family.events) << what;
  }
  EXPECT_EQ(stUIStatus.s8LightOverheat, 1);
  EXPECT_EQ(stUIStatus.s8IrBrightLight, 1);
  EXPECT_EQ(stUIStatus.s16Distance, 0) << "a failed measurement reads 0";
  EXPECT_EQ(stUIStatus.s8WifiConnection, 1);
  EXPECT_EQ(stUIStatus.s16CompassAzimuth, 300) << "its sign byte never applies";
  EXPECT_EQ(stUIStatus.s16CompassSlant, -3);
  EXPECT_EQ(stUIStatus.s16CompassPitch, 4);
  EXPECT_EQ(stDevStatus.s16ReticlePositionX, -15);
  EXPECT_EQ(stDevStatus.s16ReticlePositionY, 40);
  EXPECT_EQ(stDevStatus.s16LaserIndicatX, 700);
  EXPECT_EQ(stDevStatus.s16RangeOffsetY, 512);
  EXPECT_EQ(stUIStatus.u64VideoCurrentFrames, 123456789012ull);
  EXPECT_EQ(stUIStatus.u64VideoForwardFrames, 123456789012ull);
  EXPECT_EQ(stUIStatus.u64VideoTotalFrames, 4500u);
  EXPECT_EQ(stUIStatus.u8VideoCurrentFrames, 300) << "a zero rate keeps the one in force";
  EXPECT_EQ(stUIStatus.s8BlindSaveStatus, 2);
  EXPECT_EQ(stUIStatus.s8GGClearStatus, 1);
  EXPECT_EQ(stUIStatus.s8GGGetStatus, 2);
  EXPECT_EQ(stUIStatus.s8GGSaveStatus, 3);
  EXPECT_EQ(stUIStatus.s8Updata_state, 4);
  EXPECT_EQ(stUIStatus.s8Updata_result, 1);
  EXPECT_EQ(stUIStatus.wind_connect_state, 1);
  EXPECT_EQ(result_ball.moaV, 6.25);
  EXPECT_EQ(result_ball.moaH, -1.5);
  EXPECT_TRUE(sent_frames().empty());

  const Inf_UIStatus before = stUIStatus;
  for (int type : {2, 3, 8, 9, 10, 11, 12, 13, 14, 17, 18, 19, 20, 21})
    deliver(frame(static_cast<uint8_t>(type), 0, 0, {1, 2, 3, 4}));
  EXPECT_TRUE(take_events().empty()) << "types without a handler";
  EXPECT_EQ(std::memcmp(&before, &stUIStatus, sizeof(before)), 0);
}

TEST_F(Inbound, AFrameTooShortForItsValuesIsIgnoredWithOneLine) {
  // Each handler checks that the frame carries the value bytes it reads: a short frame is named
  // in one line and changes no record, raises no event and sends nothing.
  stUIStatus.event_distrubut_reday = 1;
  stUIStatus.u8VideoCurrentFrames = 300;
  struct Short {
    Frame frame;
    const char* printed;
  };
  const Short cases[] = {
      {frame(15, 0, BATTERY_VALUE, {0x15}),
       "battery_func: frame type 15 command 0 sub 0 carries 1 of its 2 value bytes; ignored\n"},
      {frame(15, 0, BATTERY_TYPE),
       "battery_func: frame type 15 command 0 sub 1 carries 0 of its 1"},
      {frame(6, 0, COMPASS_AZIMUTH_ANGLE, {0, 0x2c}),
       "compass_func: frame type 6 command 0 sub 0 carries 2 of its 3 value bytes; ignored\n"},
      {frame(4, 2, 0, {0, 0x30}),
       "RabgeValueRefressh_func: frame type 4 command 2 sub 0 carries 2 of its 3"},
      {frame(4, 2, 0), "RabgeValueRefressh_func: frame type 4 command 2 sub 0 carries 0 of its 1"},
      {frame(0, 0, 38, {0x76}), "basic_func: frame type 0 command 0 sub 38 carries 1 of its 2"},
      {frame(0, 0, 25), "basic_func: frame type 0 command 0 sub 25 carries 0 of its 1"},
      {frame(1, 0, INFRARED_ZOOM, {0xc8}),
       "IrInfo_func: frame type 1 command 0 sub 16 carries 1 of its 2"},
      {frame(1, 0, INFRARED_BRIGHTLIGHT),
       "IrInfo_func: frame type 1 command 0 sub 6 carries 0 of its 1"},
      {frame(5, WIFI_CONNECT, 0), "wifi_func: frame type 5 command 7 sub 0 carries 0 of its 1"},
      {frame(7, 0, 0), "key_message: frame type 7 command 0 sub 0 carries 0 of its 1"},
      {frame(22, RETICLE_POSITION, 1, {5}),
       "Reticle_PositionSet_func: frame type 22 command 3 sub 1 carries 1 of its 2"},
      {frame(23, 0, TAP_PROCESS, {1, 2, 3, 4, 5, 6, 7}),
       "tap_func: frame type 23 command 0 sub 2 carries 7 of its 8"},
      {frame(23, 0, TAP_TOTAL_TIME, {1}),
       "tap_func: frame type 23 command 0 sub 4 carries 1 of its 8"},
      {frame(24, BLIND_SAVE, 0), "blind_func: frame type 24 command 3 sub 0 carries 0 of its 1"},
      {frame(25, GG_GET, 0), "gg_func: frame type 25 command 1 sub 0 carries 0 of its 1"},
      {frame(26, UPDATA_RESULT, 0),
       "updata_func: frame type 26 command 1 sub 0 carries 0 of its 1"},
      {frame(27, 0, 0, {0, 0, 0x80, 0x3f, 0, 0, 0}),
       "ballistic_func: frame type 27 command 0 sub 0 carries 7 of its 8"},
      {frame(29, 0, 0), "wind_info_func: frame type 29 command 0 sub 0 carries 0 of its 1"},
  };
  const Inf_DevStatus settings = stDevStatus;
  const Inf_UIStatus status = stUIStatus;
  const Result_ballistics result = result_ball;
  for (const Short& c : cases) {
    const std::string out = output_of([&] { deliver(c.frame); });
    EXPECT_NE(out.find(c.printed), std::string::npos) << out;
    EXPECT_EQ(out.find("; ignored\n"), out.rfind("; ignored\n")) << "one line: " << out;
  }
  EXPECT_EQ(std::memcmp(&settings, &stDevStatus, sizeof(settings)), 0);
  EXPECT_EQ(std::memcmp(&status, &stUIStatus, sizeof(status)), 0);
  EXPECT_EQ(std::memcmp(&result, &result_ball, sizeof(result)), 0);
  EXPECT_TRUE(take_events().empty());
  EXPECT_TRUE(keys().empty());
  EXPECT_TRUE(sent_frames().empty());

  // The total playing time without the optional rate (L = 14): the two bytes after the values
  // are the checksum and 0xEB, never a rate.
  const Frame total = {0xaa, 0x0e, 0x17, 0x00, 0x04, 0x00, 0x28, 0x23, 0x00,
                       0x00, 0x00, 0x00, 0x00, 0x00, 0x1e, 0xeb, 0xaa};
  deliver(total);
  EXPECT_EQ(stUIStatus.u64VideoTotalFrames, 9000u);
  EXPECT_EQ(stUIStatus.u8VideoCurrentFrames, 300) << "not 60190 read from the trailer";
  EXPECT_EQ(take_events(), std::vector<int>{8206});
}

TEST_F(Inbound, WhichScreenQueryIsAnsweredWithTheMenuLevel) {
  open_window("Zavo_home_page_1");
  deliver(frame(0, 0, 39, {0}));
  EXPECT_EQ(stUIStatus.s8CurrentMenu, 0);
  EXPECT_EQ(sent(true), std::vector<std::string>{"aa 07 00 00 27 00 00 d8 eb aa"});
  open_window("Zavo_menu1");
  deliver(frame(0, 0, 39, {0}));
  EXPECT_EQ(stUIStatus.s8CurrentMenu, 1);
  EXPECT_EQ(sent(), std::vector<std::string>{"BASIC BASIC_MENU_LEVEL value=1"});
}

TEST_F(Inbound, DistancesInContinuousModeAreAnnouncedOnlyWhileMeasuring) {
  stDevStatus.s8RangeType = RANGE_CONTINUOUS;
  deliver(frame(4, 2, 0, {0, 0x01, 0x00}));
  EXPECT_EQ(stUIStatus.s16Distance, 256);
  EXPECT_TRUE(take_events().empty());
  stUIStatus.s8RangeMode = 3;
  deliver(frame(4, 2, 0, {0, 0x01, 0x01}));
  EXPECT_EQ(take_events(), std::vector<int>{8222});
}

TEST_F(Inbound, FirstUpdateNoticeOpensTheUpdatePageLaterOnesAskTheCheck) {
  use_windows({"Zavo_home_page_1", "Zavo_updata"});
  open_window("Zavo_home_page_1");
  stUIStatus.s8BlindSwitch = 1;
  // The first notice is applied in a gate of the main loop; the listener then sleeps a second
  // of the test clock with the records released (the update page opens meanwhile) and raises
  // 8249 in a later gate. Run the main loop and the clock until it has.
  const Frame notice = frame(26, UPDATA_START_NOTICE, 0);
  std::atomic<bool> done{false};
  std::thread device([&] {
    deliver(notice);
    done = true;
  });
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!done && std::chrono::steady_clock::now() < deadline) {
    tk_testing_advance(100);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  device.join();
  EXPECT_EQ(stUIStatus.s8BlindSwitch, 0);
  EXPECT_EQ(take_events(), std::vector<int>{8249});
  EXPECT_EQ(top_window(), "Zavo_updata");
  // The upgrade page answers the event with its card and battery check (no battery report yet:
  // too low, check 2).
  EXPECT_EQ(sent(), (std::vector<std::string>{"BLIND BLIND_CURSOR_SWITCH value=0",
                                              "UPDATA UPDATA_CHECK value=2"}));

  deliver(notice);
  EXPECT_EQ(take_events(), std::vector<int>{8249});
  EXPECT_EQ(stUIStatus.s8Updata_check, 3);
  EXPECT_EQ(sent(), std::vector<std::string>{"UPDATA UPDATA_CHECK value=3"});
  EXPECT_EQ(tk_testing_window_names().back(), "Zavo_updata");
}

}  // namespace
}  // namespace linktest
