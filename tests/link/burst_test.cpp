// Bursts of inbound frames against the toolkit's 20-entry cross-thread queue: nothing overflows,
// every record ends with the last value sent, every key press arrives, and events and keys reach
// the UI thread in the order the handlers issued them.
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>
#include <thread>

#include <sys/msg.h>

#include "link_fixture.h"

namespace linktest {
namespace {

std::vector<uint8_t> le16(int v) {
  return {static_cast<uint8_t>(v & 0xFF), static_cast<uint8_t>((v >> 8) & 0xFF)};
}

// One log of what the UI thread receives: screen events as their number, keys as
// -(code * 2 + 1) for a press and -(code * 2) for a release.
struct Arrivals {
  std::vector<int> items;
  std::map<int, std::vector<int>> seen;  // event -> value its handler read
  static int key_item(bool down, uint32_t code) {
    return -static_cast<int>(code * 2 + (down ? 1 : 0));
  }

  static ret_t on_event(void* ctx, event_t* e) {
    auto* self = static_cast<Arrivals*>(ctx);
    const int n = static_cast<int>(e->type);
    self->items.push_back(n);
    switch (n) {
      case 8207: self->seen[n].push_back(stUIStatus.s16BatteryValue); break;
      case 8202: self->seen[n].push_back(stUIStatus.s16CompassAzimuth); break;
      case 8222: self->seen[n].push_back(stUIStatus.s16Distance); break;
      case 8243: self->seen[n].push_back(stUIStatus.s16WindSpeed); break;
      case 8197: self->seen[n].push_back(stDevStatus.s16ReticlePositionX); break;
      default: break;
    }
    return RET_OK;
  }
  static ret_t on_key(void* ctx, event_t* e) {
    key_event_t* k = key_event_cast(e);
    if (k != nullptr)
      static_cast<Arrivals*>(ctx)->items.push_back(key_item(e->type == EVT_KEY_DOWN, k->key));
    return RET_OK;
  }
  void attach() {
    for (int offset = 0; offset < 128; ++offset) {
      widget_on(window_manager(), EVT_USER_START + offset, on_event, this);
    }
    widget_on(window_manager(), EVT_KEY_DOWN, on_key, this);
    widget_on(window_manager(), EVT_KEY_UP, on_key, this);
  }
};

// The device's side of a burst: the frames, what the UI must end with, and what it must see.
struct Burst {
  std::vector<Frame> frames;
  std::vector<int> issued;  // events and keys in the order the handlers issue them
  int battery = 0, azimuth = 0, distance = 0, wind = 0, reticle_x = 0, zoom = 0;
  int gg_save = 0, wifi = 0;
  uint64_t play = 0;
  int presses = 0;
};

struct ButtonCode {
  uint8_t button;
  uint32_t code;
};
constexpr ButtonCode PLAIN_BUTTONS[] = {
    {KEY_FOCUS_UP_S, 51}, {KEY_FOCUS_DOWN_S, 53}, {KEY_PHOTO_S, 57},
    {KEY_FUCTION_S, 55},  {KEY_RANGE_S, 97},      {KEY_PHOTO_L_POP, 84},
};

Burst make_burst(int count, int key_every, unsigned seed) {
  Burst b;
  unsigned r = seed;
  auto next = [&r]() {
    r = r * 1103515245u + 12345u;
    return static_cast<int>((r >> 8) & 0x7FFF);
  };
  for (int i = 0; i < count; ++i) {
    if (key_every > 0 && i % key_every == key_every - 1) {
      const ButtonCode& k = PLAIN_BUTTONS[next() % 6];
      b.frames.push_back(key(k.button));
      b.issued.push_back(Arrivals::key_item(true, k.code));
      b.issued.push_back(Arrivals::key_item(false, k.code));
      b.presses++;
      continue;
    }
    switch (next() % 10) {
      case 0:
        b.battery = 560 + next() % 300;
        b.frames.push_back(frame(15, 0, BATTERY_VALUE, le16(b.battery)));
        b.issued.push_back(8207);
        break;
      case 1:
        b.azimuth = next() % 360;
        b.frames.push_back(frame(
            6, 0, COMPASS_AZIMUTH_ANGLE,
            {0, static_cast<uint8_t>(b.azimuth & 0xFF), static_cast<uint8_t>(b.azimuth >> 8)}));
        b.issued.push_back(8202);
        break;
      case 2:
        b.distance = next() % 20000;
        b.frames.push_back(frame(
            4, 2, 0,
            {0, static_cast<uint8_t>(b.distance >> 8), static_cast<uint8_t>(b.distance & 0xFF)}));
        b.issued.push_back(8222);
        break;
      case 3:
        b.wind = next() % 12000;
        b.frames.push_back(frame(0, 0, 38, le16(b.wind)));
        b.issued.push_back(8243);
        break;
      case 4:
        b.reticle_x = next() % 400 - 200;
        b.frames.push_back(frame(22, RETICLE_POSITION, 1, le16(b.reticle_x)));
        b.issued.push_back(8197);
        break;
      case 5:
        b.zoom = 100 + next() % 700;
        b.frames.push_back(frame(1, 0, INFRARED_ZOOM, le16(b.zoom)));
        b.issued.push_back(8227);
        b.issued.push_back(8248);
        break;
      case 6:
        b.gg_save = next() % 4;
        b.frames.push_back(frame(25, GG_SAVE, 0, {static_cast<uint8_t>(b.gg_save)}));
        b.issued.push_back(8221);
        break;
      case 7:
        b.wifi = next() % 2;
        b.frames.push_back(frame(5, WIFI_CONNECT, 0, {static_cast<uint8_t>(b.wifi)}));
        b.issued.push_back(8211);
        break;
      case 8: {
        b.play = static_cast<uint64_t>(next()) * 1000;
        std::vector<uint8_t> v;
        for (int k = 0; k < 8; ++k)
          v.push_back(static_cast<uint8_t>(b.play >> (8 * k)));
        b.frames.push_back(frame(23, 0, TAP_PROCESS, v));
        b.issued.push_back(8205);
        break;
      }
      default:
        // A frame that fails its check: dropped, no effect.
        b.frames.push_back({0xaa, 0x07, 0x0f, 0x00, 0x00, 0x00, 0x01, 0x00, 0xeb, 0xaa});
        break;
    }
  }
  return b;
}

// What the UI thread sees of `issued` when it drains only after the whole burst: a screen event
// raised while the same number waits is folded into the waiting one; keys all stay.
std::vector<int> folded(const std::vector<int>& issued) {
  std::vector<int> out;
  std::map<int, bool> pending;
  for (int item : issued) {
    if (item > 0) {
      if (pending[item]) continue;
      pending[item] = true;
    }
    out.push_back(item);
  }
  return out;
}

class Burst10k : public LinkTest {
 protected:
  void SetUp() override {
    LinkTest::SetUp();
    open_window("Zavo_menu1");
    stUIStatus.event_distrubut_reday = 1;
    arrivals_.attach();
  }
  void expect_final(const Burst& b) {
    EXPECT_EQ(stUIStatus.s16BatteryValue, b.battery);
    EXPECT_EQ(stUIStatus.s16CompassAzimuth, b.azimuth);
    EXPECT_EQ(stUIStatus.s16Distance, static_cast<int16_t>(b.distance));
    EXPECT_EQ(stUIStatus.s16WindSpeed, b.wind);
    EXPECT_EQ(stDevStatus.s16ReticlePositionX, b.reticle_x);
    EXPECT_EQ(stUIStatus.s8IRZoom, b.zoom);
    EXPECT_EQ(stUIStatus.s8GGSaveStatus, b.gg_save);
    EXPECT_EQ(stUIStatus.s8WifiConnection, b.wifi);
    EXPECT_EQ(stUIStatus.u64VideoCurrentFrames, b.play);
    // The last handler call of each event read the last value.
    EXPECT_EQ(arrivals_.seen[8207].back(), b.battery);
    EXPECT_EQ(arrivals_.seen[8202].back(), b.azimuth);
    EXPECT_EQ(arrivals_.seen[8222].back(), static_cast<int16_t>(b.distance));
    EXPECT_EQ(arrivals_.seen[8243].back(), b.wind);
    EXPECT_EQ(arrivals_.seen[8197].back(), b.reticle_x);
  }
  std::vector<int> keys_of(const std::vector<int>& items) {
    std::vector<int> out;
    for (int i : items) {
      if (i < 0) out.push_back(i);
    }
    return out;
  }
  Arrivals arrivals_;
};

TEST_F(Burst10k, WhileTheUIThreadIsStalled) {
  Burst b = make_burst(10000, 40, 7);
  ASSERT_EQ(b.presses, 250);
  deliver_all(b.frames);

  // Ten thousand frames later the toolkit's queue holds the one drain request.
  EXPECT_EQ(tk_testing_queue_length(), 1u);
  EXPECT_EQ(tk_testing_queue_overflows(), 0u);
  pump();

  EXPECT_EQ(tk_testing_queue_overflows(), 0u);
  const Inf_LinkStats st = Inf_GetLinkStats();
  EXPECT_EQ(st.keys_dropped, 0u);
  EXPECT_EQ(st.key_posts_failed, 0u);
  EXPECT_EQ(st.key_posts, 500u);
  EXPECT_EQ(arrivals_.items, folded(b.issued));
  expect_final(b);
}

TEST_F(Burst10k, WhileTheUIThreadRuns) {
  Burst b = make_burst(10000, 50, 11);
  ASSERT_EQ(b.presses, 200);
  const uint64_t base = Inf_MsgReceivedCount();
  std::atomic<bool> done{false};
  std::thread device([&] {
    for (const Frame& f : b.frames) {
      Inf_MsgEvent event;
      std::memset(&event, 0, sizeof(event));
      event.msg_type = MSG_RECV_TYPE;
      event.msg_text.type = MSG_TYPE_FRAMED;
      event.msg_text.length = static_cast<uint32_t>(f.size());
      std::memcpy(event.msg_text.context, f.data(), f.size());
      if (msgsnd(device_out_, &event, MSG_TEXT_SIZE, 0) != 0) break;
    }
    done = true;
  });
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (!done || Inf_MsgReceivedCount() < base + b.frames.size()) {
    tk_testing_advance(0);
    ASSERT_EQ(tk_testing_queue_overflows(), 0u);
    if (std::chrono::steady_clock::now() > deadline) {
      device.detach();
      FAIL() << "the listener took " << Inf_MsgReceivedCount() - base << " of " << b.frames.size()
             << " frames";
    }
  }
  device.join();
  pump();

  EXPECT_EQ(tk_testing_queue_overflows(), 0u);
  EXPECT_EQ(Inf_GetLinkStats().keys_dropped, 0u);
  EXPECT_EQ(keys_of(arrivals_.items), keys_of(b.issued)) << "every press, in order";
  expect_final(b);
}

TEST_F(Burst10k, KeysBeyondTheMailboxAreDroppedLoudly) {
  std::vector<Frame> frames;
  for (int i = 0; i < 300; ++i)
    frames.push_back(key(KEY_PHOTO_S));
  testing::internal::CaptureStdout();
  deliver_all(frames);
  std::fflush(stdout);
  std::string out = testing::internal::GetCapturedStdout();
  EXPECT_NE(out.find("[ERROR] device link: 256 key presses wait for the UI thread, key 57 dropped "
                     "(1 dropped so far)\n"),
            std::string::npos);
  EXPECT_EQ(Inf_GetLinkStats().keys_dropped, 44u);
  pump();
  EXPECT_EQ(keys_of(arrivals_.items).size(), 2u * 256u);
  EXPECT_EQ(tk_testing_queue_overflows(), 0u);

  // With room again, presses pass.
  deliver(key(KEY_RANGE_S));
  pump();
  EXPECT_EQ(arrivals_.items.back(), Arrivals::key_item(false, 97));
}

TEST_F(Burst10k, EventsIssuedAfterKeysWaitForTheKeys) {
  // A key, then a status change: the page sees the key before the event, even though keys
  // travel through the toolkit's queue and events do not.
  std::vector<Frame> frames;
  for (int i = 0; i < 40; ++i)
    frames.push_back(key(KEY_FOCUS_DOWN_S));
  frames.push_back(frame(15, 0, BATTERY_VALUE, le16(700)));
  frames.push_back(key(KEY_FOCUS_UP_S));
  deliver_all(frames);
  pump();
  std::vector<int> expected;
  for (int i = 0; i < 40; ++i) {
    expected.push_back(Arrivals::key_item(true, 53));
    expected.push_back(Arrivals::key_item(false, 53));
  }
  expected.push_back(8207);
  expected.push_back(Arrivals::key_item(true, 51));
  expected.push_back(Arrivals::key_item(false, 51));
  EXPECT_EQ(arrivals_.items, expected);
  EXPECT_EQ(tk_testing_queue_overflows(), 0u);
}

}  // namespace
}  // namespace linktest
