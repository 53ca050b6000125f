// devsim: the device application's end of the two message queues, for desktop runs, demos and
// end-to-end tests.
//
// It creates the queues, answers the UI's ready frame with the start-up records, sends sensor
// readings on a schedule, answers range, ballistic, video-length and screen queries, turns
// terminal keys into the scope's buttons and prints every frame it receives, decoded and in hex.
// With --script it runs a scenario and exits 0 when every expectation held, 1 at the first that
// did not (2 for a usage or setup error).
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <poll.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "device_model.h"
#include "framedec.h"
#include "msg/msg.h"
#include "msg/msghandler.h"
#include "script.h"

namespace {

volatile std::sig_atomic_t stop_requested = 0;

void on_signal(int) {
  stop_requested = 1;
}

uint64_t now_ms() {
  using namespace std::chrono;
  return static_cast<uint64_t>(
      duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

struct Options {
  std::string script;
  bool schedule = true;
  bool remove_queues = false;
  std::string keys;
  int blind_save_ms = 1500;  // negative: a blind-pixel save is never reported
};

void usage() {
  std::printf(
      "usage: devsim [--script FILE] [--no-schedule] [--remove-queues-on-exit] "
      "[--keys SEND,RECV] [--blind-save MS|never]\n"
      "  --script FILE            run a scenario (see tools/devsim/script.h), exit 0 on pass, 1 "
      "on failure\n"
      "  --no-schedule            no periodic battery, compass and wind readings\n"
      "  --remove-queues-on-exit  remove both message queues when leaving\n"
      "  --keys SEND,RECV         queue keys (UI->device, device->UI); default $%s or %d,%d\n"
      "  --blind-save MS|never    a blind-pixel save is reported after MS ms (default 1500), "
      "or never\n",
      MSG_KEYS_ENV, MSG_SEND_KEY, MSG_RECV_KEY);
}

// ---- the two queues, seen from the device ----
struct Queues {
  int from_ui = -1;  // the UI's send queue
  int to_ui = -1;    // the UI's receive queue
};

bool send_to_ui(const Queues& q, const devsim::Frame& frame) {
  Inf_MsgEvent event;
  std::memset(&event, 0, sizeof(event));
  event.msg_type = MSG_RECV_TYPE;
  event.msg_text.type = MSG_TYPE_FRAMED;
  event.msg_text.command = 0;
  const size_t n =
      frame.size() < sizeof(event.msg_text.context) ? frame.size() : sizeof(event.msg_text.context);
  event.msg_text.length = static_cast<uint32_t>(n);
  std::memcpy(event.msg_text.context, frame.data(), n);
  if (msgsnd(q.to_ui, &event, MSG_TEXT_SIZE, IPC_NOWAIT) != 0) {
    std::printf("devsim: cannot send to the UI (%s): is it reading?\n", std::strerror(errno));
    return false;
  }
  return true;
}

// ---- the terminal ----
struct Terminal {
  bool raw = false;
  termios saved{};

  void enter_raw() {
    if (tcgetattr(STDIN_FILENO, &saved) != 0) return;
    termios t = saved;
    t.c_lflag &= static_cast<tcflag_t>(~(ICANON | ECHO));
    t.c_cc[VMIN] = 0;
    t.c_cc[VTIME] = 0;
    if (tcsetattr(STDIN_FILENO, TCSANOW, &t) == 0) raw = true;
  }
  ~Terminal() {
    if (raw) tcsetattr(STDIN_FILENO, TCSANOW, &saved);
  }
};

struct KeyBinding {
  char key;
  uint8_t button;
  const char* what;
};

// Lower case: short press. Upper case: long press; the same key again releases it.
constexpr KeyBinding SHORT_KEYS[] = {
    {'u', KEY_FOCUS_UP_S, "up"},
    {'d', KEY_FOCUS_DOWN_S, "down"},
    {'p', KEY_POWER_S, "power"},
    {'c', KEY_PHOTO_S, "photo (camera)"},
    {'f', KEY_FUCTION_S, "function / OK"},
    {'r', KEY_RANGE_S, "range"},
    {'1', KEY_PHOTO_FUCTION_S, "photo + function"},
    {'2', KEY_RANGE_FUCTION_S, "range + function (laser)"},
    {'3', KEY_RANGE_PHOTO_S, "range + photo (shutter)"},
    {'4', KEY_UP_POWER_L, "up + power, long (ballistic calculator)"},
};

struct LongBinding {
  char key;
  uint8_t long_press;
  uint8_t release;
  const char* what;
};

constexpr LongBinding LONG_KEYS[] = {
    {'U', KEY_FOCUS_UP_L, KEY_FOCUS_UP_L_POP, "up held (again: released)"},
    {'D', KEY_FOCUS_DOWN_L, KEY_FOCUS_DOWN_L_POP, "down held (again: released)"},
    {'P', KEY_POWER_L, KEY_POWER_L_POP, "power held (again: released)"},
    {'C', KEY_PHOTO_L, KEY_PHOTO_L_POP, "photo held (again: released)"},
    {'F', KEY_FUCTION_L, KEY_FUCTION_L_POP, "function held (again: released)"},
    {'R', KEY_RANGE_L, KEY_RANGE_L_POP, "range held (again: released)"},
};

void print_key_map() {
  std::printf(
      "devsim key map (lower case: short press; upper case: long press, again: release):\n");
  for (const KeyBinding& k : SHORT_KEYS) {
    std::printf("  %c  %-42s %s\n", k.key, k.what, framedec::button_name(k.button));
  }
  for (const LongBinding& k : LONG_KEYS) {
    std::printf("  %c  %-42s %s / %s\n", k.key, k.what, framedec::button_name(k.long_press),
                framedec::button_name(k.release));
  }
  std::printf("  space  release every held button\n");
  std::printf(
      "  :      a command line (\"battery 700\", \"distance 4500\", \"profile 2\" (a ballistic "
      "profile loaded mid-way), \"query\", \"boot\", "
      "\"quit\", ... see tools/devsim/script.h)\n");
  std::printf("  Ctrl-C or Ctrl-D  quit\n");
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  Options options;
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    if (arg == "--script" && i + 1 < argc) {
      options.script = argv[++i];
    } else if (arg == "--no-schedule") {
      options.schedule = false;
    } else if (arg == "--remove-queues-on-exit") {
      options.remove_queues = true;
    } else if (arg == "--keys" && i + 1 < argc) {
      options.keys = argv[++i];
    } else if (arg == "--blind-save" && i + 1 < argc) {
      const std::string v = argv[++i];
      char* end = nullptr;
      const long ms = std::strtol(v.c_str(), &end, 10);
      if (v == "never") {
        options.blind_save_ms = -1;
      } else if (end != v.c_str() && *end == '\0' && ms >= 0 && ms <= 600000) {
        options.blind_save_ms = static_cast<int>(ms);
      } else {
        std::printf("devsim: --blind-save takes milliseconds (0..600000) or \"never\"\n");
        return 2;
      }
    } else if (arg == "--help" || arg == "-h") {
      usage();
      return 0;
    } else {
      std::printf("devsim: unknown argument \"%s\"\n", arg.c_str());
      usage();
      return 2;
    }
  }

  std::vector<devsim::Command> script;
  if (!options.script.empty()) {
    std::string error;
    if (!devsim::load_script(options.script, &script, &error)) {
      std::printf("devsim: %s\n", error.c_str());
      return 2;
    }
  }

  int send_key = MSG_SEND_KEY;  // the UI sends on this one: the device reads it
  int recv_key = MSG_RECV_KEY;
  if (!options.keys.empty()) {
    if (!Inf_ParseMsgKeys(options.keys.c_str(), &send_key, &recv_key)) {
      std::printf("devsim: --keys \"%s\" is not \"<send>,<recv>\"\n", options.keys.c_str());
      return 2;
    }
  } else {
    Inf_GetMsgKeys(&send_key, &recv_key);
  }

  Queues q;
  q.from_ui = msgget(send_key, IPC_CREAT | 0777);
  q.to_ui = msgget(recv_key, IPC_CREAT | 0777);
  if (q.from_ui == -1 || q.to_ui == -1) {
    std::printf("devsim: cannot open the message queues %d,%d: %s\n", send_key, recv_key,
                std::strerror(errno));
    return 2;
  }
  std::printf("devsim: queues %d (from the UI) and %d (to the UI) open\n", send_key, recv_key);

  struct sigaction sa {};
  sa.sa_handler = on_signal;
  sigemptyset(&sa.sa_mask);
  sigaction(SIGINT, &sa, nullptr);
  sigaction(SIGTERM, &sa, nullptr);
  std::signal(SIGPIPE, SIG_IGN);

  bool quit = false;
  auto print = [](const std::string& line) { std::printf("%s\n", line.c_str()); };
  auto send = [&q](const devsim::Frame& frame) {
    std::printf("-> %s   [%s]\n", framedec::decode(frame, framedec::Direction::TO_UI).c_str(),
                framedec::hex(frame).c_str());
    send_to_ui(q, frame);
  };
  devsim::Device device(send, print);
  device.set_schedule(options.schedule);
  device.set_blind_save_delay(options.blind_save_ms);

  devsim::Actions actions{send, print, &device, [&quit] { quit = true; }};
  std::unique_ptr<devsim::Runner> runner;
  if (!options.script.empty()) runner = std::make_unique<devsim::Runner>(script, actions);

  const bool tty = isatty(STDIN_FILENO) != 0;
  Terminal terminal;
  if (tty) {
    terminal.enter_raw();
    print_key_map();
  }
  bool stdin_open = true;
  std::string pending_line;  // stdin lines, or a ':' command being typed
  bool typing_command = false;
  std::set<char> held;

  std::vector<devsim::Received> received;
  int status = 0;

  auto run_line = [&](const std::string& line) {
    std::string error;
    std::optional<devsim::Command> c = devsim::parse_command(line, &error);
    if (!c) {
      if (!error.empty()) std::printf("devsim: %s\n", error.c_str());
      return;
    }
    if (c->op == devsim::Op::WAIT || c->op == devsim::Op::EXPECT ||
        c->op == devsim::Op::EXPECT_HEX || c->op == devsim::Op::TIMEOUT) {
      std::printf("devsim: \"%s\" works in a script only\n", line.c_str());
      return;
    }
    devsim::execute(*c, actions);
  };

  auto on_key = [&](char ch) {
    if (typing_command) {
      if (ch == '\r' || ch == '\n') {
        std::printf("\n");
        typing_command = false;
        run_line(pending_line);
        pending_line.clear();
      } else if (ch == 127 || ch == 8) {
        if (!pending_line.empty()) {
          pending_line.pop_back();
          std::printf("\b \b");
        }
      } else {
        pending_line += ch;
        std::printf("%c", ch);
      }
      std::fflush(stdout);
      return;
    }
    if (ch == ':') {
      typing_command = true;
      std::printf(":");
      std::fflush(stdout);
      return;
    }
    if (ch == 4) {  // Ctrl-D
      quit = true;
      return;
    }
    if (ch == ' ') {
      for (const LongBinding& k : LONG_KEYS) {
        if (held.count(k.key)) send(devsim::key_frame(k.release));
      }
      held.clear();
      return;
    }
    for (const KeyBinding& k : SHORT_KEYS) {
      if (k.key == ch) {
        send(devsim::key_frame(k.button));
        return;
      }
    }
    for (const LongBinding& k : LONG_KEYS) {
      if (k.key != ch) continue;
      if (held.count(ch)) {
        held.erase(ch);
        send(devsim::key_frame(k.release));
      } else {
        held.insert(ch);
        send(devsim::key_frame(k.long_press));
        std::printf("devsim: held; press %c again or space to release\n", ch);
      }
      return;
    }
  };

  while (!stop_requested && !quit) {
    // Everything the UI sent.
    for (;;) {
      Inf_MsgEvent event;
      ssize_t got = msgrcv(q.from_ui, &event, MSG_TEXT_SIZE, MSG_SEND_TYPE, IPC_NOWAIT);
      if (got < 0) {
        if (errno == ENOMSG || errno == EINTR) break;
        std::printf("devsim: receive failed: %s\n", std::strerror(errno));
        stop_requested = 1;
        status = 2;
        break;
      }
      size_t length = event.msg_text.length;
      if (length > sizeof(event.msg_text.context)) {
        std::printf("devsim: message with length %zu dropped\n", length);
        continue;
      }
      devsim::Frame frame(event.msg_text.context, event.msg_text.context + length);
      std::string decoded = framedec::decode(frame, framedec::Direction::FROM_UI);
      std::printf("<- %s   [%s]\n", decoded.c_str(), framedec::hex(frame).c_str());
      received.push_back({frame, framedec::normalize(decoded)});
      device.on_frame(frame);
    }

    const uint64_t now = now_ms();
    device.tick(now);
    if (runner) {
      devsim::Runner::State state = runner->step(now, received);
      if (state != devsim::Runner::State::RUNNING) {
        status = state == devsim::Runner::State::PASSED ? 0 : 1;
        break;
      }
    }

    // The terminal or stdin, for a few milliseconds.
    pollfd pfd{STDIN_FILENO, POLLIN, 0};
    int ready = poll(&pfd, stdin_open ? 1 : 0, 5);
    if (ready > 0 && (pfd.revents & (POLLIN | POLLHUP))) {
      char buffer[256];
      ssize_t n = read(STDIN_FILENO, buffer, sizeof(buffer));
      if (n <= 0) {
        stdin_open = false;
        if (!runner) break;  // end of input and no scenario: done
        continue;
      }
      for (ssize_t i = 0; i < n; ++i) {
        if (tty) {
          on_key(buffer[i]);
        } else if (buffer[i] == '\n') {
          run_line(pending_line);
          pending_line.clear();
        } else {
          pending_line += buffer[i];
        }
      }
    }
  }

  if (!tty && !pending_line.empty()) run_line(pending_line);
  if (options.remove_queues) {
    msgctl(q.from_ui, IPC_RMID, nullptr);
    msgctl(q.to_ui, IPC_RMID, nullptr);
    std::printf("devsim: queues removed\n");
  }
  std::printf("devsim: bye\n");
  return status;
}
