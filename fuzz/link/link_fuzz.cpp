// Fuzzes the device link's inbound path: frame check, dispatch, record loads, key handling and
// the hand-off to the UI thread, with the UI thread's drain run after every message.
//
// The oracle, beyond the sanitizers' own: a handler reads no byte past its frame's values. A
// message whose frame passes the check is dispatched from a heap copy of exactly its L bytes
// (header to the last value byte), so reading the checksum, the trailer or anything after it
// is a heap-buffer-overflow that AddressSanitizer reports. Other messages take the whole path
// (msgEventCallback), where they are dropped.
//
// Input: a series of messages, each a two-byte little-endian length (at most 512) followed by
// that many bytes of context (a frame, or anything). The harness opens no message queue: the
// answers the handlers send fail cleanly ("Ui to App Send failed"). Windows the link asks for are
// looked up in an empty resource tree, so navigations fail cleanly too, and the toolkit runs on its
// test clock, so the one-second pause of the update notice costs no real time. Every input starts
// from zeroed records, a clean toolkit and a fresh link, so a finding replays alone.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#include "common/status_records.h"
#include "msg/msg.h"
#include "msg/msghandler.h"
#include "tk_testing.h"

namespace {

void drain_ui() {
  for (int i = 0; i < 1000 && !(Inf_LinkIsIdle() && tk_testing_queue_length() == 0); ++i) {
    tk_testing_advance(0);
  }
}

// A temporary device tree and resource directory (removed at exit), the toolkit on its test
// clock, and standard output to /dev/null (the link prints a line for nearly every frame; findings
// go to stderr).
std::string tree;

bool start() {
  tree = (std::filesystem::temp_directory_path() / "link-fuzz-XXXXXX").string();
  if (mkdtemp(tree.data()) == nullptr) std::abort();
  std::atexit([] {
    std::error_code ec;
    std::filesystem::remove_all(tree, ec);
  });
  std::filesystem::create_directories(tree + "/res/assets/default/raw/ui");
  std::filesystem::create_directories(tree + "/root/usrdata/release");
  setenv("TK_HEADLESS", "1", 1);
  setenv("SCOPE_UI_ROOT", (tree + "/root").c_str(), 1);
  if (std::freopen("/dev/null", "w", stdout) == nullptr) std::abort();
  // A tiny screen: the link draws nothing, and every reset repaints the whole frame.
  tk_testing_init_ex(16, 16, (tree + "/res").c_str());
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const bool started = start();
  (void)started;
  tk_testing_reset();
  Inf_LinkReset();
  std::memset(&stDevStatus, 0, sizeof(stDevStatus));
  std::memset(&stUIStatus, 0, sizeof(stUIStatus));
  std::memset(&IR_Cursor, 0, sizeof(IR_Cursor));
  std::memset(info, 0, sizeof(info));

  size_t at = 0;
  while (at + 2 <= size) {
    const size_t want = std::min<size_t>(data[at] | (data[at + 1] << 8), 512);
    at += 2;
    const size_t n = std::min(want, size - at);
    Inf_MsgText text;
    std::memset(&text, 0, sizeof(text));
    text.type = MSG_TYPE_FRAMED;
    text.length = static_cast<uint32_t>(n);
    std::memcpy(text.context, data + at, n);
    at += n;
    const int L = text.context[1];
    if (Protocol_parse(text.context) == 0 && text.context[2] <= FRAME_TYPE_MAX) {
      std::unique_ptr<uint8_t[]> exact(new uint8_t[L]);
      std::memcpy(exact.get(), text.context, static_cast<size_t>(L));
      uiOperationDispatch(FrameBytes(exact.get(), static_cast<size_t>(L)));
    } else {
      msgEventCallback(&text, nullptr);
    }
    drain_ui();
  }
  // Timers the handlers started (shutter, video mode) run out before the next input.
  tk_testing_advance(1000);
  drain_ui();
  return 0;
}
