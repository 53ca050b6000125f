// The frame check of inbound frames, driven through the real receive queue.
#include <cstdio>
#include <cstring>

#include "link_fixture.h"

namespace linktest {
namespace {

std::string captured() {
  std::fflush(stdout);
  return testing::internal::GetCapturedStdout();
}

Frame battery(int value) {
  return frame(15, 0, BATTERY_VALUE,
               {static_cast<uint8_t>(value & 0xFF), static_cast<uint8_t>(value >> 8)});
}

class FrameCheck : public LinkTest {
 protected:
  // Delivers a broken battery frame and checks that it is dropped with `message`.
  void expect_dropped(const Frame& f, const char* message) {
    stUIStatus.s16BatteryValue = 111;
    const uint64_t dropped = Inf_GetLinkStats().frames_dropped;
    testing::internal::CaptureStdout();
    deliver(f);
    std::string out = captured();
    EXPECT_NE(out.find(message), std::string::npos) << out;
    EXPECT_EQ(out.find("battery is"), std::string::npos) << out;
    EXPECT_EQ(stUIStatus.s16BatteryValue, 111);
    EXPECT_EQ(Inf_GetLinkStats().frames_dropped, dropped + 1);
  }
};

TEST_F(FrameCheck, ChecksumOfTheSaveAllFrameIsC4) {
  const uint8_t save_all[] = {0xaa, 0x07, 0x10, 0x03, 0x00, 0x00, 0x00, 0xc4, 0xeb, 0xaa};
  EXPECT_EQ(check_num(save_all, sizeof(save_all)), 0xc4);
  uint8_t context[512] = {};
  std::memcpy(context, save_all, sizeof(save_all));
  EXPECT_EQ(Protocol_parse(context), 0);
}

TEST_F(FrameCheck, AGoodFrameIsDispatched) {
  testing::internal::CaptureStdout();
  deliver(battery(712));
  std::string out = captured();
  EXPECT_NE(out.find("battery is 712\n"), std::string::npos) << out;
  EXPECT_EQ(stUIStatus.s16BatteryValue, 712);
}

TEST_F(FrameCheck, WrongHeaderIsDropped) {
  Frame f = battery(700);
  f[0] = 0xAB;
  expect_dropped(f, "CMD_HEADER_0 ERROR\n");
}

TEST_F(FrameCheck, ChecksumOffByOneIsDropped) {
  Frame f = battery(700);
  f[f[1]] = static_cast<uint8_t>(f[f[1]] + 1);
  expect_dropped(f, "CMD_END_CHECK ERROR\n");
  f = battery(700);
  f[f[1]] = static_cast<uint8_t>(f[f[1]] - 1);
  expect_dropped(f, "CMD_END_CHECK ERROR\n");
}

TEST_F(FrameCheck, WrongSecondTrailerByteIsDropped) {
  Frame f = battery(700);
  f[f[1] + 1] = 0xEC;
  expect_dropped(f, "CMD_END_SEC ERROR\n");
}

TEST_F(FrameCheck, WrongLastTrailerByteIsDropped) {
  Frame f = battery(700);
  f[f[1] + 2] = 0xAB;
  expect_dropped(f, "CMD_END_FIR ERROR\n");
}

TEST_F(FrameCheck, LengthBelowSixIsDroppedBeforeAnyCopy) {
  // A well-formed trailer around a record load whose value count would be -1.
  std::memset(&stDevStatus, 0x5A, sizeof(stDevStatus));
  Frame f = {0xaa, 0x05, 0x10, 0x00, 0x00, 0x00, 0xeb, 0xaa};
  f[5] = static_cast<uint8_t>(0xaa + 0x05 + 0x10);
  testing::internal::CaptureStdout();
  deliver(f);
  std::string out = captured();
  EXPECT_NE(out.find("CMD_LENGTH ERROR: L=5 is below 6, frame dropped\n"), std::string::npos)
      << out;
  Inf_DevStatus pattern;
  std::memset(&pattern, 0x5A, sizeof(pattern));
  EXPECT_EQ(std::memcmp(&stDevStatus, &pattern, sizeof(pattern)), 0);

  // The shortest frame of all: header, L = 2, checksum, trailer.
  expect_dropped({0xaa, 0x02, 0xac, 0xeb, 0xaa}, "CMD_LENGTH ERROR: L=2 is below 6");
}

TEST_F(FrameCheck, LengthOf255OverZerosFailsTheChecksum) {
  Frame f(512, 0);
  f[0] = 0xaa;
  f[1] = 0xff;
  expect_dropped(f, "CMD_END_CHECK ERROR\n");
}

TEST_F(FrameCheck, LongestFrameIsAcceptedAndItsLoadBounded) {
  std::vector<uint8_t> values(249);
  for (size_t i = 0; i < values.size(); ++i)
    values[i] = static_cast<uint8_t>(i + 1);
  Frame f = frame(16, BASIC_PARAM, 0, values);
  ASSERT_EQ(f[1], 255);
  stUIStatus.s16BatteryValue = 333;  // other records stay as they were
  testing::internal::CaptureStdout();
  deliver(f);
  std::string out = captured();
  EXPECT_NE(out.find("parameter_func: settings payload of 249 bytes cut to the record's 74\n"),
            std::string::npos)
      << out;
  EXPECT_EQ(std::memcmp(&stDevStatus, values.data(), sizeof(stDevStatus)), 0);
  EXPECT_EQ(stUIStatus.s16BatteryValue, 333);
}

TEST_F(FrameCheck, TypesAbove29AreDroppedSilently) {
  const uint64_t dropped = Inf_GetLinkStats().frames_dropped;
  testing::internal::CaptureStdout();
  deliver(frame(30, 0, 0, {1, 2}));
  deliver(frame(255, 0, 0, {1, 2}));
  std::string out = captured();
  EXPECT_EQ(out.find("ERROR"), std::string::npos) << out;
  EXPECT_EQ(Inf_GetLinkStats().frames_dropped, dropped + 2);
  pump();
  EXPECT_TRUE(log_.events().empty());
  EXPECT_TRUE(sent_frames().empty());
}

TEST_F(FrameCheck, OnlyFramedMessagesReachTheDispatch) {
  const uint64_t framed = Inf_GetLinkStats().frames_received;
  deliver_raw(battery(650), 0x20);
  EXPECT_EQ(Inf_GetLinkStats().frames_received, framed);
  EXPECT_NE(stUIStatus.s16BatteryValue, 650);
  deliver_raw(battery(650), MSG_TYPE_FRAMED);
  EXPECT_EQ(Inf_GetLinkStats().frames_received, framed + 1);
  EXPECT_EQ(stUIStatus.s16BatteryValue, 650);
}

TEST_F(FrameCheck, TheMessageLengthFieldIsNotTheFramesLength) {
  // The frame carries its own length; a message whose length field disagrees still counts.
  Frame f = battery(640);
  Inf_MsgEvent event;
  std::memset(&event, 0, sizeof(event));
  event.msg_type = MSG_RECV_TYPE;
  event.msg_text.type = MSG_TYPE_FRAMED;
  event.msg_text.length = 3;
  std::memcpy(event.msg_text.context, f.data(), f.size());
  deliver_message(event, MSG_TEXT_SIZE);
  EXPECT_EQ(stUIStatus.s16BatteryValue, 640);
}

TEST_F(FrameCheck, AShortQueueMessageDoesNotShowThePreviousOne) {
  deliver(battery(620));
  // A 4-byte message: the rest of the context must read as zeros, not as the battery frame.
  Inf_MsgEvent event;
  std::memset(&event, 0, sizeof(event));
  event.msg_type = MSG_RECV_TYPE;
  event.msg_text.type = MSG_TYPE_FRAMED;
  testing::internal::CaptureStdout();
  deliver_message(event, 4);
  std::string out = captured();
  EXPECT_NE(out.find("CMD_HEADER_0 ERROR"), std::string::npos) << out;
  EXPECT_EQ(out.find("battery is"), std::string::npos) << out;
}

}  // namespace
}  // namespace linktest
