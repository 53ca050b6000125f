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
//   blind-save <ms>|never                          how long a blind-pixel save takes to report
//   wait <ms>
//   expect <decoded frame>                         the next frames from the UI hold one that
//                                                  decodes to this text (blanks collapsed)
//   expect-hex <hex bytes>                         ... one with exactly these bytes
//   timeout <ms>                                   how long an expect waits (default 2000)
//   quit
//   # comment
#ifndef SCOPE_TOOLS_DEVSIM_SCRIPT_H
#define SCOPE_TOOLS_DEVSIM_SCRIPT_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "device_model.h"

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
};

// Executes one command that does not wait (everything but WAIT, EXPECT, EXPECT_HEX, TIMEOUT).
void execute(const Command& command, const Actions& actions);

// Steps a script against the frames received so far.
class Runner {
 public:
  enum class State { RUNNING, PASSED, FAILED };

  Runner(std::vector<Command> script, Actions actions)
      : script_(std::move(script)), actions_(std::move(actions)) {}

  // Runs every command it can at `now_ms`; returns the state after.
  State step(uint64_t now_ms, const std::vector<Received>& received);
  State state() const { return state_; }

 private:
  std::vector<Command> script_;
  Actions actions_;
  size_t pc_ = 0;
  size_t cursor_ = 0;  // first received frame an expect has not consumed
  bool waiting_ = false;
  uint64_t until_ms_ = 0;
  int timeout_ms_ = 2000;
  State state_ = State::RUNNING;
};

}  // namespace devsim

#endif  // SCOPE_TOOLS_DEVSIM_SCRIPT_H
