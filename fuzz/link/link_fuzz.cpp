// Fuzzes the device link's inbound path: frame check, dispatch, record loads, key handling and
// the hand-off to the UI thread, with the UI thread's drain run after every message.
//
// Input: a series of messages, each a two-byte little-endian length (at most 512) followed by
// that many bytes of context (a frame, or anything). The harness opens no message queue: the
// answers the handlers send fail cleanly ("Ui to App Send failed"). Windows the link asks for are
// looked up in an empty resource tree, so navigations fail cleanly too, and the toolkit runs on its
// test clock, so the one-second pause of the update notice costs no real time.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "common/status_records.h"
#include "msg/msg.h"
#include "msg/msghandler.h"
#include "tk_testing.h"

namespace {

bool initialized = false;

std::string make_tree() {
  std::string base = (std::filesystem::temp_directory_path() / "link-fuzz-XXXXXX").string();
  char* made = mkdtemp(base.data());
  if (made == nullptr) std::abort();
  std::filesystem::create_directories(base + "/res/assets/default/raw/ui");
  std::filesystem::create_directories(base + "/root/usrdata/release");
  return base;
}

void drain_ui() {
  for (int i = 0; i < 1000 && !(Inf_LinkIsIdle() && tk_testing_queue_length() == 0); ++i) {
    tk_testing_advance(0);
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
  (void)argc;
  (void)argv;
  static const std::string tree = make_tree();
  setenv("TK_HEADLESS", "1", 1);
  setenv("SCOPE_UI_ROOT", (tree + "/root").c_str(), 1);
  // The link prints a line for nearly every frame; the fuzzer's own report goes to stderr.
  if (std::freopen("/dev/null", "w", stdout) == nullptr) std::abort();
  tk_testing_init_ex(1280, 1024, (tree + "/res").c_str());
  initialized = true;
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // The replay driver of non-fuzzing builds does not call LLVMFuzzerInitialize.
  if (!initialized) LLVMFuzzerInitialize(nullptr, nullptr);
  std::memset(&stDevStatus, 0, sizeof(stDevStatus));
  std::memset(&stUIStatus, 0, sizeof(stUIStatus));
  std::memset(&IR_Cursor, 0, sizeof(IR_Cursor));
  std::memset(info, 0, sizeof(info));

  size_t at = 0;
  while (at + 2 <= size) {
    size_t want = static_cast<size_t>(data[at] | (data[at + 1] << 8));
    at += 2;
    if (want > sizeof(Inf_MsgText::context)) want = sizeof(Inf_MsgText::context);
    const size_t n = want < size - at ? want : size - at;
    Inf_MsgText text;
    std::memset(&text, 0, sizeof(text));
    text.type = MSG_TYPE_FRAMED;
    text.command = 0;
    text.length = static_cast<uint32_t>(n);
    std::memcpy(text.context, data + at, n);
    at += n;
    msgEventCallback(&text, nullptr);
    drain_ui();
  }
  // Timers the handlers started (shutter, video mode) run out before the next input.
  tk_testing_advance(1000);
  drain_ui();
  return 0;
}
