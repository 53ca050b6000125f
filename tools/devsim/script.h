// The simulator's command language: one action per line, used by scenario files (--script),
// by stdin when it is not a terminal, and after ':' on the terminal.
//
//   send <type> <command> <sub> [value bytes...]   a checksummed frame (numbers: 12, 0x0c)
//   frame <hex bytes...>                           raw bytes as given, even malformed
//   press <button>                                 a key frame: KEY_* name, number or alias
//   long <button> / release <button>               the long press / its release (up, down,
//                                                  power, photo, function, range)
//   battery <value> | battery-type <0|1> | compass <azimuth> <pitch> <cant> | wind <mm/s>
//   wind-connect <0|1> | distance <decimetres>|fail | target <metres> | zoom <hundredths>
//   query | boot | profile <0..4> (a mid-way load of that profile) | solution
//   update-notice | update-state <n> | update-result <n>
//   upgrade [ok|no-firmware|fail-1|fail-2|fail-3]  plays a firmware upgrade with that outcome
//   card ok|low|full                               fills the card to leave 400 / 150 MiB free
//   shot                                           the recoil sensor fires (recoil video on)
//   schedule on|off                                periodic battery, compass and wind
//   keys <count> <seed>                            a seeded random walk of <count> button
//                                                  presses and holds, one every 0.1..0.9 s
//                                                  (see "The key walk" below); waits for it
//   silent <ms>                                    the device stops answering for <ms>: no
//                                                  readings or answers, the UI's frames wait
//                                                  in their queue; the script goes on
//   home                                           power presses, 0.5 s apart, until the UI
//                                                  shows the observation screen, awake (needs
//                                                  a host that sees the UI's screen; fails
//                                                  after 20 presses: a page that never lets go)
//   hostile <count> <seed>                         <count> seeded malformed frames (bad header,
//                                                  checksum or trailer, unknown type, too short
//                                                  for their values, garbage), all to be dropped
//   blind-save <ms>|never                          how long a blind-pixel save takes to report
//   wait <ms>
//   expect <decoded frame>                         the next frames from the UI hold one that
//                                                  decodes to this text (blanks collapsed)
//   expect-hex <hex bytes>                         ... one with exactly these bytes
//   timeout <ms>                                   how long an expect waits (default 2000)
//   quit
//   # comment
//
// The key walk: each step picks, by fixed weights, a short press (photo, range and function most
// often, power and the focus keys rarely), a hold released after a while (function held: the main
// menu or back; photo and range held for the fast moves, now and then 7 s for the range finder
// row's alignment pages; power held at most 1.8 s, so the shut-down countdown opens and is
// cancelled), or a combined button. The same seed and round give the same walk. When the host
// can tell which window the UI shows (Actions::screen), the walk never confirms what cannot be
// undone: no function press on the card and factory-reset confirmations and the firmware
// upgrade, no power hold on the upgrade; it still opens and leaves those pages. Without it
// (devsim on its own) every key can come, formatting and resetting included.
#ifndef SCOPE_TOOLS_DEVSIM_SCRIPT_H
#define SCOPE_TOOLS_DEVSIM_SCRIPT_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "device_model.h"
#include "msg/msghandler.h"

namespace devsim {

enum class Op {
  SEND,
  FRAME,
  PRESS,
  BATTERY,
  BATTERY_TYPE,
  COMPASS,
  WIND,
  WIND_CONNECT,
  DISTANCE,
  TARGET,
  ZOOM,
  QUERY,
  BOOT,
  PROFILE,
  SOLUTION,
  UPDATE_NOTICE,
  UPDATE_STATE,
  UPDATE_RESULT,
  UPGRADE,
  CARD,
  SHOT,
  SCHEDULE,
  BLIND_SAVE,
  KEYS,
  HOME,
  SILENT,
  HOSTILE,
  WAIT,
  EXPECT,
  EXPECT_HEX,
  TIMEOUT,
  QUIT,
};

struct Command {
  Op op = Op::QUIT;
  std::vector<int> numbers;    // arguments
  std::vector<uint8_t> bytes;  // FRAME, EXPECT_HEX
  std::string text;            // EXPECT (normalized)
  int line = 0;
  std::string source;
};

// Parses one line. nullopt with `error` empty for a blank or comment line, nullopt with `error`
// set for a bad one.
std::optional<Command> parse_command(std::string_view line, std::string* error);

// Reads a scenario file; false with a message naming the first bad line.
bool load_script(const std::string& path, std::vector<Command>* out, std::string* error);

// A frame received from the UI, kept for `expect`.
struct Received {
  Frame bytes;
  std::string decoded;  // normalized
};

// What the runner needs from the simulator.
struct Actions {
  std::function<void(const Frame&)> send;
  std::function<void(const std::string&)> print;
  Device* device = nullptr;
  std::function<void()> quit;
  // The name of the UI's top window, when the host can see it (the key walk's guard, `home`);
  // unset: not known. The observation screen gone dark is HOME_DARK.
  std::function<std::string()> screen;
};

inline constexpr const char* HOME_SCREEN = "Zavo_home_page_1";
inline constexpr const char* HOME_DARK = "Zavo_home_page_1 (dark)";

// `count` malformed frames built from `seed`, each one the UI must drop or refuse without a
// change: a header that is not 0xAA, a checksum off by one, a broken trailer, a type above 29,
// a reading frame cut short of its values, a length pointing past the frame, a length too
// short for the header, random bytes, nothing at all.
std::vector<Frame> hostile_frames(int count, uint64_t seed);

// One step of the key walk: the button, and for a hold its release and how long it is held.
struct WalkMove {
  uint8_t button;
  uint8_t release;  // KEY_NULL_MAX: a short press
  uint32_t hold_ms;
};
// The next move of the walk whose random state is `state`, on `screen` (the UI's top window, ""
// when unknown): see "The key walk" above.
WalkMove next_walk_move(uint64_t* state, const std::string& screen);

// Executes one command that does not wait (everything but WAIT, EXPECT, EXPECT_HEX, TIMEOUT).
void execute(const Command& command, const Actions& actions);

// Steps a script against the frames received so far.
class Runner {
 public:
  enum class State { RUNNING, PASSED, FAILED };

  // `round`: the how-many-th run of the same script, mixed into the seeds of the key walks and
  // the hostile frames so that a script run again walks elsewhere.
  Runner(std::vector<Command> script, Actions actions, int round = 0)
      : script_(std::move(script)), actions_(std::move(actions)), round_(round) {}

  // Runs every command it can at `now_ms`; returns the state after.
  State step(uint64_t now_ms, const std::vector<Received>& received);
  State state() const { return state_; }
  // Buttons pressed by key walks (a hold counts once) and hostile frames sent so far.
  uint64_t walk_keys() const { return walk_keys_; }
  uint64_t hostile_sent() const { return hostile_sent_; }

 private:
  // Runs the key walk of `keys` as far as `now_ms`; true when it is over.
  bool walk(const Command& keys, uint64_t now_ms);
  uint64_t seed_of(int seed) const;
  std::vector<Command> script_;
  Actions actions_;
  size_t pc_ = 0;
  size_t cursor_ = 0;  // first received frame an expect has not consumed
  bool waiting_ = false;
  uint64_t until_ms_ = 0;
  int timeout_ms_ = 2000;
  State state_ = State::RUNNING;
  int round_ = 0;
  // The key walk in progress.
  int walk_left_ = 0;
  uint64_t walk_state_ = 0;
  uint64_t walk_next_ms_ = 0;
  uint8_t walk_release_ = KEY_NULL_MAX;  // the held button's release, pending
  uint64_t walk_release_ms_ = 0;
  uint64_t walk_keys_ = 0;
  int home_presses_ = 0;  // `home`: power presses so far
  uint64_t hostile_sent_ = 0;
};

}  // namespace devsim

#endif  // SCOPE_TOOLS_DEVSIM_SCRIPT_H
