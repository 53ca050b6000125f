// Fuzzes the ballistic pages with the profiles a device may send: the record arrives through the
// device link (a profile load, or a mid-way load that makes it current), then the ballistic
// menu, the bullet page and the weather page open over it in turn, draw, and take a fuzzed run of
// keys (digits selected, changed, saved, rows stepped, pages left).
//
// Input: byte 0 bit 0 picks the mid-way load, bit 1 overrides the current profile afterwards with
// byte 2 (any value, so groups outside 0..4 are tried too); byte 1 is the profile index of the
// load; byte 3 the distance unit; then the 240 bytes of the profile record (missing bytes are
// zero); every byte after them is a key: its value modulo 5 picks up, down, OK, back or power
// (at most 32 a page).
//
// Every input starts from zeroed records and a clean toolkit, so a finding replays alone. The
// link sends nothing (no queue is open: its answers fail cleanly); standard output goes to
// /dev/null, findings to stderr.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msg.h"
#include "msg/msghandler.h"
#include "tk_testing.h"

namespace {

constexpr uint32_t KEYS[] = {GUI_KEY_RANGE_S, GUI_KEY_PHOTO_S, GUI_KEY_FUCTION_S, GUI_KEY_FUCTION_L,
                             GUI_KEY_POWER_S};
constexpr const char* PAGES[] = {"Zavo_ballistic_menu", "Zavo_ballistic_bullet",
                                 "Zavo_ballistic_weather"};
constexpr size_t HEADER = 4;
// The frame, and where a page's window is moved so that the right-hand part of its panel (the
// value columns, x 640..930 and y 230..760 on the screen) falls into it. Drawing a whole screen
// for every step made the harness too slow to fuzz; the pages never read their window's
// position.
constexpr wh_t FRAME_W = 384;
constexpr wh_t FRAME_H = 720;
constexpr xy_t PAGE_DX = -560;
constexpr xy_t PAGE_DY = -160;
constexpr size_t KEYS_PER_PAGE_MAX = 32;
constexpr size_t KEYS_PER_STEP = 8;

bool start() {
  setenv("TK_HEADLESS", "1", 1);
  if (std::freopen("/dev/null", "w", stdout) == nullptr) std::abort();
  // A frame as large as the value columns of the pages' panels, which each page is moved onto
  // (see below): their digits are drawn, the rest of the 1280 x 1024 screen is not painted.
  tk_testing_init_ex(FRAME_W, FRAME_H, SCOPE_RES_DIR);
  return true;
}

void drain_ui() {
  for (int i = 0; i < 1000 && !(Inf_LinkIsIdle() && tk_testing_queue_length() == 0); ++i) {
    tk_testing_advance(0);
  }
}

// The record as the device sends it: type 16, the load command, the profile index, the bytes.
void load_profile(bool midway, uint8_t index, const uint8_t* record) {
  uint8_t frame[sizeof(Info_ballistics) + 9] = {0};
  const size_t length = 6 + sizeof(Info_ballistics);  // bytes before the checksum
  frame[0] = 0xAA;
  frame[1] = static_cast<uint8_t>(length);
  frame[2] = 16;
  frame[3] = midway ? BALLISTIC_PARM_midway : BALLISTIC_PARM;
  frame[4] = index;
  std::memcpy(frame + 6, record, sizeof(Info_ballistics));
  uint8_t sum = 0;
  for (size_t i = 0; i < length; ++i)
    sum = static_cast<uint8_t>(sum + frame[i]);
  frame[length] = sum;
  frame[length + 1] = 0xEB;
  frame[length + 2] = 0xAA;
  Inf_MsgText text;
  std::memset(&text, 0, sizeof(text));
  text.type = MSG_TYPE_FRAMED;
  text.length = static_cast<uint32_t>(length + 3);
  std::memcpy(text.context, frame, length + 3);
  msgEventCallback(&text, nullptr);
  drain_ui();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const bool started = start();
  (void)started;
  static_assert(sizeof(Info_ballistics) + 6 < 256, "a profile fits one frame");
  tk_testing_reset();
  Inf_LinkReset();
  std::memset(&stDevStatus, 0, sizeof(stDevStatus));
  std::memset(&stUIStatus, 0, sizeof(stUIStatus));
  std::memset(info, 0, sizeof(info));
  if (size < HEADER) return 0;

  uint8_t record[sizeof(Info_ballistics)] = {0};
  std::memcpy(record, data + HEADER, std::min(size - HEADER, sizeof(record)));
  stUIStatus.s8InterfaceState = INTERFACE_OBSERVE;  // a mid-way load opens the notice too
  load_profile((data[0] & 1) != 0, data[1], record);
  if ((data[0] & 2) != 0) stDevStatus.s8BallisticGroup = static_cast<char>(data[2]);
  stDevStatus.s8DistanceUint = static_cast<char>(data[3]);

  const uint8_t* keys = data + HEADER + sizeof(record);
  size_t nkeys = size > HEADER + sizeof(record) ? size - HEADER - sizeof(record) : 0;
  for (const char* page : PAGES) {
    navigator_to(page);
    widget_move(widget_child(window_manager(), page), PAGE_DX, PAGE_DY);
    tk_testing_advance(0);  // opened, laid out and drawn
    const size_t n = std::min(nkeys, KEYS_PER_PAGE_MAX);
    // A few keys per main-loop step (each is a press and a release in the loop's queue of 20),
    // then the step runs them in order and paints once: fewer paints, the same key handling.
    for (size_t i = 0; i < n; ++i) {
      tk_testing_key_hit(KEYS[keys[i] % 5]);
      if (i % KEYS_PER_STEP == KEYS_PER_STEP - 1 || i + 1 == n) tk_testing_advance(0);
    }
    keys += n;
    nkeys -= n;
  }
  // The notice's two seconds run out before the next input.
  tk_testing_advance(2000);
  drain_ui();
  return 0;
}
