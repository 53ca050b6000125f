// devsim: the device application's end of the two message queues, for desktop runs, demos and
// end-to-end tests.
//
// It creates the queues, answers the UI's ready frame with the start-up records, sends sensor
// readings on a schedule, answers range, ballistic, video-length and screen queries, turns
// terminal keys into the scope's buttons and prints every frame the UI sends, decoded, with the
// device's own events; the live readings it sends (battery, compass, wind, range, playback) show
// in one status line updated in place (--trace prints every frame both ways, in hex too). The
// scope's restart and power-off are handed to the program that runs both (--ui-control). With
// --script it runs a scenario and exits 0 when every expectation held, 1 at the first that did
// not (2 for a usage or setup error).
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
#include <cstdlib>
#include <fstream>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "common/device_path.h"
#include "device_keys.h"
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
  bool trace = false;
  int battery = -1;          // fixed battery level, -1: the slow discharge
  std::string card;          // ok, low or full
  std::string root;          // the device tree (default $SCOPE_UI_ROOT)
  std::string ui_control;    // where the scope's restart and power-off are asked for
  int blind_save_ms = 1500;  // negative: a blind-pixel save is never reported
};

void usage() {
  std::printf(
      "usage: devsim [--script FILE] [--no-schedule] [--remove-queues-on-exit] "
      "[--keys SEND,RECV] [--trace]\n"
      "              [--battery N] [--card ok|low|full] [--root DIR] [--ui-control FILE]\n"
      "              [--blind-save MS|never]\n"
      "  --script FILE            run a scenario (see tools/devsim/script.h), exit 0 on pass, 1 "
      "on failure\n"
      "  --no-schedule            no periodic battery, compass and wind readings\n"
      "  --remove-queues-on-exit  remove both message queues when leaving\n"
      "  --keys SEND,RECV         queue keys (UI->device, device->UI); default $%s or %d,%d\n"
      "  --trace                  print every frame both ways, decoded and in hex\n"
      "  --battery N              the battery stays at N (raw units: 730 is the upgrade's edge,\n"
      "                           570 and below shuts the scope down)\n"
      "  --card ok|low|full       fill the card to leave 400 MiB (low) or 150 MiB (full) free\n"
      "  --root DIR               the device tree (default $SCOPE_UI_ROOT): its card is formatted\n"
      "  --ui-control FILE        append \"reboot\" or \"shutdown\" here when the scope restarts "
      "or\n"
      "                           powers off (make run restarts or stops the UI)\n"
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

// ---- what is printed ----

// Lines go above the status line; the status line (the live readings) is redrawn in place on a
// terminal, and left out elsewhere. While a ':' command is typed, it stays on its line.
struct Console {
  bool tty = false;
  bool typing = false;
  std::string typed;   // the ':' command so far
  std::string status;  // the live readings

  void line(const std::string& text) {
    if (tty) std::printf("\r\033[K");
    std::printf("%s\n", text.c_str());
    redraw();
  }
  void set_status(const std::string& text) {
    if (text == status) return;
    status = text;
    redraw();
  }
  void redraw() {
    if (!tty) return;
    if (typing) {
      std::printf("\r\033[K:%s", typed.c_str());
    } else if (!status.empty()) {
      std::printf("\r\033[K%s", status.c_str());
    }
    std::fflush(stdout);
  }
};

// The readings the device sends on its own, kept for the status line.
struct Readings {
  int battery = -1;
  int azimuth = 0, pitch = 0, cant = 0;
  bool compass = false;
  int wind_mm_s = -1;
  int distance_dm = -2;  // -1: the last measurement failed
  int64_t video_frames = -1;

  // Takes a frame sent to the UI; true when it was one of the readings.
  bool take(const devsim::Frame& f) {
    if (f.size() < 9) return false;
    const int type = f[2], sub = f[4];
    const uint8_t* v = f.data() + 6;
    if (type == 15 && sub == BATTERY_VALUE) {
      battery = static_cast<int16_t>(v[0] | (v[1] << 8));
    } else if (type == 6) {
      const int value = (v[0] != 0 ? -1 : 1) * (v[1] | (v[2] << 8));
      (sub == 0 ? azimuth : sub == 1 ? pitch : cant) = value;
      compass = true;
    } else if (type == 0 && sub == 38) {
      wind_mm_s = v[0] | (v[1] << 8);
    } else if (type == 29) {
      if (v[0] == 0) wind_mm_s = -1;  // the meter disconnected: no reading to show
    } else if (type == 4) {
      distance_dm = v[0] == 0 ? (v[1] << 8 | v[2]) : -1;
    } else if (type == 23 && sub == TAP_PROCESS) {
      int64_t frames = 0;
      for (int i = 7; i >= 0; --i)
        frames = (frames << 8) | v[i];
      video_frames = frames;
    } else {
      return false;
    }
    return true;
  }

  std::string text() const {
    char buf[256];
    std::string out = "[device]";
    if (battery >= 0) out += " battery " + std::to_string(battery);
    if (compass) {
      std::snprintf(buf, sizeof buf, " | azimuth %d° pitch %d° cant %d°", azimuth, pitch, cant);
      out += buf;
    }
    if (wind_mm_s >= 0) {
      std::snprintf(buf, sizeof buf, " | wind %.1f m/s", wind_mm_s / 1000.0);
      out += buf;
    }
    if (distance_dm == -1) out += " | range failed";
    if (distance_dm >= 0) {
      std::snprintf(buf, sizeof buf, " | range %.1f m", distance_dm / 10.0);
      out += buf;
    }
    if (video_frames >= 0) {
      std::snprintf(buf, sizeof buf, " | video %.1f s", video_frames / 30.0);
      out += buf;
    }
    return out;
  }
};

// ---- the keys ----

void print_key_map() {
  std::printf(
      "devsim keys: lower case a short press, upper case a long press; C, R and P stay held\n"
      "until the same key again (or space) releases them\n");
  std::printf("  %-3s %-16s %-24s %s\n", "key", "button", "on the picture", "in menus");
  for (const devsim::KeyBinding& k : devsim::key_map()) {
    std::printf("  %-3c %-16s %-24s %s\n", k.key, k.name, k.on_picture, k.in_menus);
  }
  std::printf(
      "  :   a command line: \"battery 700\", \"distance 4500\", \"profile 2\" (a ballistic "
      "profile\n"
      "      loaded mid-way), \"upgrade\", \"card full\", \"update-notice\", \"query\", \"quit\" "
      "...\n"
      "      (tools/devsim/script.h)\n"
      "  Ctrl-C or Ctrl-D  quit\n");
  std::fflush(stdout);
}

// Asks the program that runs the scope UI to restart it or to stop (one word a line).
void ask_runner(const std::string& file, const char* what) {
  std::ofstream out(file, std::ios::app);
  out << what << "\n";
}

// Throws away what waits for the UI (a restarted UI must not read the old one's frames).
int drain(int queue) {
  int n = 0;
  Inf_MsgEvent event;
  while (msgrcv(queue, &event, MSG_TEXT_SIZE, 0, IPC_NOWAIT) >= 0)
    ++n;
  return n;
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
    } else if (arg == "--trace") {
      options.trace = true;
    } else if (arg == "--battery" && i + 1 < argc) {
      char* end = nullptr;
      options.battery = static_cast<int>(std::strtol(argv[++i], &end, 10));
      if (*end != '\0' || options.battery < 0 || options.battery > 32767) {
        std::printf("devsim: --battery takes 0..32767, not \"%s\"\n", argv[i]);
        return 2;
      }
    } else if (arg == "--card" && i + 1 < argc) {
      options.card = argv[++i];
    } else if (arg == "--root" && i + 1 < argc) {
      options.root = argv[++i];
    } else if (arg == "--ui-control" && i + 1 < argc) {
      options.ui_control = argv[++i];
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
  Console console;
  console.tty = isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0;
  Readings readings;
  auto print = [&console](const std::string& line) { console.line(line); };
  auto send = [&](const devsim::Frame& frame) {
    const bool reading = readings.take(frame);
    if (options.trace || !reading) {
      std::string line = "-> " + framedec::decode(frame, framedec::Direction::TO_UI);
      if (options.trace) line += "   [" + framedec::hex(frame) + "]";
      console.line(line);
    }
    if (reading) console.set_status(readings.text());
    send_to_ui(q, frame);
  };
  devsim::Device device(send, print);
  device.set_schedule(options.schedule);
  const char* root_env = std::getenv("SCOPE_UI_ROOT");
  device.set_root(!options.root.empty() ? options.root : root_env != nullptr ? root_env : "");
  if (options.battery >= 0) device.set_fixed_battery(options.battery);
  if (!options.card.empty()) {
    std::string error;
    if (!device.set_card(options.card, &error)) std::printf("devsim: --card: %s\n", error.c_str());
  }
  // The scope restarting or powering off: the program that runs the UI does it.
  device.set_system_hook([&](devsim::Device::System what) {
    const bool off = what == devsim::Device::System::SHUT_DOWN;
    if (!options.ui_control.empty()) {
      ask_runner(options.ui_control, off ? "shutdown" : "reboot");
    } else if (!off) {
      console.line("devsim: restart the scope UI yourself (no --ui-control)");
    }
    if (off) {
      console.line("devsim: the scope is off");
      quit = true;
    }
  });
  device.set_blind_save_delay(options.blind_save_ms);
  // The card of the device tree (make run): videos are played from it, photos and recordings
  // are written to it. Without a tree the host's /usrdata is left alone.
  if (device_root_is_set()) device.set_media_dir(device_path("/usrdata/media/"));

  devsim::Actions actions{send, print, &device, [&quit] { quit = true; }, {}};
  std::unique_ptr<devsim::Runner> runner;
  if (!options.script.empty()) runner = std::make_unique<devsim::Runner>(script, actions);

  const bool tty = isatty(STDIN_FILENO) != 0;
  Terminal terminal;
  if (tty) {
    terminal.enter_raw();
    print_key_map();
  }
  bool stdin_open = true;
  std::string pending_line;  // stdin lines
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
    if (console.typing) {
      if (ch == '\r' || ch == '\n') {
        const std::string line = console.typed;
        console.typing = false;
        console.typed.clear();
        console.line(":" + line);
        run_line(line);
      } else if (ch == 127 || ch == 8) {
        if (!console.typed.empty()) console.typed.pop_back();
        console.redraw();
      } else {
        console.typed += ch;
        console.redraw();
      }
      return;
    }
    if (ch == ':') {
      console.typing = true;
      console.redraw();
      return;
    }
    if (ch == 4) {  // Ctrl-D
      quit = true;
      return;
    }
    const size_t held_before = held.size();
    for (uint8_t button : devsim::key_buttons(ch, &held))
      send(devsim::key_frame(button));
    if (held.size() > held_before) {
      for (const devsim::KeyBinding& k : devsim::key_map()) {
        if (k.key == ch)
          console.line(std::string("devsim: ") + k.name + "; press " + ch +
                       " again or space to release");
      }
    }
  };

  while (!stop_requested && !quit) {
    // Everything the UI sent (a silent device leaves it waiting in the queue).
    for (; !device.silent(now_ms());) {
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
      console.line("<- " + decoded + (options.trace ? "   [" + framedec::hex(frame) + "]" : ""));
      received.push_back({frame, framedec::normalize(decoded)});
      // A UI that (re)starts reads nothing meant for the one before it.
      if (frame.size() > 2 && frame[2] == 8 && drain(q.to_ui) > 0 && options.trace) {
        console.line("devsim: frames left for the previous UI dropped");
      }
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
  if (console.tty) std::printf("\r\033[K");
  if (options.remove_queues) {
    msgctl(q.from_ui, IPC_RMID, nullptr);
    msgctl(q.to_ui, IPC_RMID, nullptr);
    std::printf("devsim: queues removed\n");
  }
  std::printf("devsim: bye\n");
  return status;
}
