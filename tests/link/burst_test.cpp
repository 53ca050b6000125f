// Bursts of inbound frames against the toolkit's 20-entry cross-thread queue: nothing overflows,
// every record ends with the last value sent, every screen event and key press arrives once, and
// events and keys reach the UI thread in the order the handlers issued them.
#include <atomic>
#include <chrono>
#include <iterator>
#include <map>
#include <thread>

#include <sys/msg.h>

#include "link_fixture.h"

namespace linktest {
namespace {

// A status reading of the burst: its events, its range of values, its frame carrying a value,
// and the field that holds it.
struct Kind {
  std::vector<int> events;
  int low, span;
  Frame (*make)(int);
  int (*read)();
};

// clang-format off
const Kind KINDS[] = {
    {{8207}, 560, 300, [](int v) { return frame(15, 0, 0, le16(v)); },
     [] { return int{stUIStatus.s16BatteryValue}; }},
    {{8202}, 0, 360, [](int v) { return frame(6, 0, 0, {0, uint8_t(v), uint8_t(v >> 8)}); },
     [] { return int{stUIStatus.s16CompassAzimuth}; }},
    {{8222}, 0, 20000, [](int v) { return frame(4, 2, 0, {0, uint8_t(v >> 8), uint8_t(v)}); },
     [] { return int{stUIStatus.s16Distance}; }},
    {{8243}, 0, 12000, [](int v) { return frame(0, 0, 38, le16(v)); },
     [] { return int{stUIStatus.s16WindSpeed}; }},
    {{8197}, -200, 400, [](int v) { return frame(22, RETICLE_POSITION, 1, le16(v)); },
     [] { return int{stDevStatus.s16ReticlePositionX}; }},
    {{8227, 8248}, 100, 700, [](int v) { return frame(1, 0, INFRARED_ZOOM, le16(v)); },
     [] { return int{stUIStatus.s8IRZoom}; }},
    {{8221}, 0, 4, [](int v) { return frame(25, GG_SAVE, 0, {uint8_t(v)}); },
     [] { return int{stUIStatus.s8GGSaveStatus}; }},
    {{8211}, 0, 2, [](int v) { return frame(5, WIFI_CONNECT, 0, {uint8_t(v)}); },
     [] { return int{stUIStatus.s8WifiConnection}; }},
    {{8205}, 0, 30000,
     [](int v) { return frame(23, 0, 2, {uint8_t(v), uint8_t(v >> 8), 0, 0, 0, 0, 0, 0}); },
     [] { return static_cast<int>(stUIStatus.u64VideoCurrentFrames); }},
};
// clang-format on
constexpr uint8_t BUTTONS[] = {KEY_FOCUS_UP_S, KEY_FOCUS_DOWN_S, KEY_PHOTO_S, KEY_RANGE_S};
constexpr uint32_t CODES[] = {51, 53, 57, 97};

// The device's side of a burst: the frames, the events and keys the handlers issue in order,
// and the last value of each kind.
struct Burst {
  std::vector<Frame> frames;
  std::vector<int> issued;
  std::map<const Kind*, int> last;
};

Burst make_burst(int count, int key_every, unsigned seed) {
  Burst b;
  auto next = [&seed] {
    return static_cast<int>(((seed = seed * 1103515245u + 12345u) >> 8) & 0x7FFF);
  };
  for (int i = 0; i < count; ++i) {
    const int pick = next() % 10;
    if (i % key_every == key_every - 1) {
      b.frames.push_back(key(BUTTONS[pick % 4]));
      b.issued.insert(b.issued.end(), {press_of(CODES[pick % 4]), release_of(CODES[pick % 4])});
    } else if (pick == 9) {  // a frame that fails its check: dropped, no effect
      b.frames.push_back({0xaa, 0x07, 0x0f, 0x00, 0x00, 0x00, 0x01, 0x00, 0xeb, 0xaa});
    } else {
      const Kind& k = KINDS[pick];
      const int v = k.low + next() % k.span;
      b.frames.push_back(k.make(v));
      b.issued.insert(b.issued.end(), k.events.begin(), k.events.end());
      b.last[&k] = v;
    }
  }
  return b;
}

class Burst10k : public LinkTest {
 protected:
  void SetUp() override {
    LinkTest::SetUp();
    open_window("Zavo_menu1");
    stUIStatus.event_distrubut_reday = 1;
    for (const Kind& k : KINDS)
      readers_[k.events.back()] = k.read;
  }
  // Every record ends with the last value sent, and the last dispatch of its event read it.
  void expect_final(const Burst& b) {
    ASSERT_EQ(b.last.size(), std::size(KINDS));
    for (const auto& [kind, value] : b.last) {
      EXPECT_EQ(kind->read(), value) << kind->events[0];
      EXPECT_EQ(seen_[kind->events.back()].back(), value) << kind->events[0];
    }
    EXPECT_EQ(tk_testing_queue_overflows(), 0u);
    EXPECT_EQ(Inf_GetLinkStats().keys_dropped, 0u);
  }
};

TEST_F(Burst10k, WhileTheUIThreadRuns) {
  const Burst b = make_burst(10000, 50, 11);
  std::atomic<bool> done{false};
  std::thread device([&] {
    deliver_all(b.frames);  // back to back, while this thread runs the UI
    done = true;
  });
  while (!done)
    tk_testing_advance(0);
  device.join();
  pump();
  EXPECT_EQ(log_, b.issued) << "every event and every press, once, in order";
  EXPECT_EQ(Inf_GetLinkStats().events_dropped, 0u);
  expect_final(b);
}

TEST_F(Burst10k, AStalledUIThreadHoldsTheDeviceBackAndLosesNothing) {
  // The UI thread is busy elsewhere (it runs no main-loop pass) while the device sends: the
  // listener gets no frame in, the device's queue fills and its sends wait. Once the main loop
  // runs again, the whole burst goes through, every event once and in order.
  const Burst b = make_burst(10000, 40, 7);
  const uint64_t before = Inf_MsgReceivedCount();
  std::atomic<bool> done{false};
  std::thread device([&] {
    deliver_all(b.frames);
    done = true;
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  EXPECT_FALSE(done) << "the device's sends wait while the UI thread is stalled";
  EXPECT_EQ(Inf_MsgReceivedCount(), before);
  EXPECT_EQ(tk_testing_queue_length(), 1u) << "the listener's one request for the records";
  while (!done)
    tk_testing_advance(0);
  device.join();
  pump();
  EXPECT_EQ(log_, b.issued);
  EXPECT_EQ(Inf_GetLinkStats().key_posts, 500u);
  EXPECT_EQ(Inf_GetLinkStats().key_posts_failed, 0u);
  EXPECT_EQ(Inf_GetLinkStats().events_dropped, 0u);
  expect_final(b);
}

TEST_F(Burst10k, EveryRaisedEventIsDeliveredOnceInOrder) {
  // Raised back to back before the UI thread drains: counted events (two update states, three
  // recoil triggers, two recording tips) all arrive, and a zoom raised after a reticle-type
  // event stays after it.
  open_window("Zavo_home_page_1");
  stUIStatus.s8InterfaceState = INTERFACE_OBSERVE;
  stUIStatus.s8RecordingState = 1;
  stUIStatus.event_distrubut_reday = 1;
  deliver_all({frame(26, UPDATA_STATE, 0, {1}), frame(26, UPDATA_STATE, 0, {2}), frame(28, 0, 0),
               frame(28, 0, 0), frame(28, 0, 0), key(KEY_POWER_S), key(KEY_POWER_S),
               frame(1, 0, INFRARED_ZOOM, le16(200))});
  event_distrubution(8238);
  deliver(frame(1, 0, INFRARED_ZOOM, le16(300)));
  pump();
  EXPECT_EQ(events(), (std::vector<int>{8249, 8249, 8246, 8246, 8246, 8247, 8247, 8227, 8248, 8238,
                                        8227, 8248}));
  EXPECT_EQ(keys(), (std::vector<int>{press_of(49), release_of(49), press_of(49), release_of(49)}));
  const Inf_LinkStats st = Inf_GetLinkStats();
  EXPECT_EQ(st.events_raised, 12u);
  EXPECT_EQ(st.events_dispatched, 12u);
}

TEST_F(Burst10k, KeysKeepTheirOrderUpToTheMailboxLimit) {
  // Forty presses (more than one batch of posts), a status change, a press: the page sees the
  // keys before the event, although keys travel through the toolkit's queue and events do not.
  std::vector<Frame> frames(40, key(KEY_FOCUS_DOWN_S));
  frames.push_back(frame(15, 0, BATTERY_VALUE, le16(700)));
  frames.push_back(key(KEY_FOCUS_UP_S));
  deliver_all(frames);
  pump();
  std::vector<int> expected;
  for (int i = 0; i < 40; ++i)
    expected.insert(expected.end(), {press_of(53), release_of(53)});
  expected.insert(expected.end(), {8207, press_of(51), release_of(51)});
  EXPECT_EQ(log_, expected);

  // While the UI thread waits with the records released (as in the first-status wait, before the
  // main loop drains), presses beyond 256 are dropped, each with a line.
  log_.clear();
  const std::string out =
      output_of([&] { deliver_all(std::vector<Frame>(300, key(KEY_PHOTO_S))); });
  EXPECT_NE(out.find("[ERROR] device link: 256 key presses wait for the UI thread, key 57 dropped "
                     "(1 dropped so far)\n"),
            std::string::npos);
  EXPECT_EQ(Inf_GetLinkStats().keys_dropped, 44u);
  pump();
  EXPECT_EQ(keys().size(), 2u * 256u);
  deliver(key(KEY_RANGE_S));  // with room again, presses pass
  pump();
  EXPECT_EQ(log_.back(), release_of(97));
  EXPECT_EQ(tk_testing_queue_overflows(), 0u);
}

}  // namespace
}  // namespace linktest
