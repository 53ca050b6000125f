// Parsing and running the simulator's commands.
#include "script.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <span>
#include <sstream>

#include "framedec.h"
#include "msg/msghandler.h"

namespace devsim {

namespace {

std::vector<std::string> split(std::string_view line) {
  std::vector<std::string> words;
  std::string word;
  for (char c : line) {
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
      if (!word.empty()) words.push_back(std::move(word));
      word.clear();
    } else {
      word += c;
    }
  }
  if (!word.empty()) words.push_back(std::move(word));
  return words;
}

bool number(const std::string& word, int* out) {
  char* end = nullptr;
  errno = 0;
  long v = std::strtol(word.c_str(), &end, 0);
  if (errno != 0 || end == word.c_str() || *end != '\0' || v < -2147483647 || v > 2147483647) {
    return false;
  }
  *out = static_cast<int>(v);
  return true;
}

struct Verb {
  const char* word;
  Op op;
  int min_args;
  int max_args;
};

constexpr Verb VERBS[] = {
    {"send", Op::SEND, 3, 252},
    {"battery", Op::BATTERY, 1, 1},
    {"battery-type", Op::BATTERY_TYPE, 1, 1},
    {"compass", Op::COMPASS, 3, 3},
    {"wind", Op::WIND, 1, 1},
    {"wind-connect", Op::WIND_CONNECT, 1, 1},
    {"target", Op::TARGET, 1, 1},
    {"zoom", Op::ZOOM, 1, 1},
    {"query", Op::QUERY, 0, 0},
    {"boot", Op::BOOT, 0, 0},
    {"profile", Op::PROFILE, 1, 1},
    {"solution", Op::SOLUTION, 0, 0},
    {"update-notice", Op::UPDATE_NOTICE, 0, 0},
    {"update-state", Op::UPDATE_STATE, 1, 1},
    {"update-result", Op::UPDATE_RESULT, 1, 1},
    {"shot", Op::SHOT, 0, 0},
    {"keys", Op::KEYS, 2, 2},
    {"home", Op::HOME, 0, 0},
    {"silent", Op::SILENT, 1, 1},
    {"hostile", Op::HOSTILE, 2, 2},
    {"wait", Op::WAIT, 1, 1},
    {"timeout", Op::TIMEOUT, 1, 1},
    {"quit", Op::QUIT, 0, 0},
};

// Verbs taking one word out of a list; the argument becomes its position in the list.
struct WordVerb {
  const char* word;
  Op op;
  std::span<const char* const> choices;
  bool optional;  // without the word: the first choice
};

constexpr const char* ON_OFF[] = {"off", "on"};
constexpr const char* UPGRADE_OUTCOMES[] = {"ok", "no-firmware", "fail-1", "fail-2", "fail-3"};
constexpr const char* CARD_STATES[] = {"ok", "low", "full"};

constexpr WordVerb WORD_VERBS[] = {
    {"schedule", Op::SCHEDULE, ON_OFF, false},
    {"upgrade", Op::UPGRADE, UPGRADE_OUTCOMES, true},
    {"card", Op::CARD, CARD_STATES, false},
};

// splitmix64: the same numbers from the same seed on every machine and library.
uint64_t next_random(uint64_t* state) {
  uint64_t z = (*state += 0x9E3779B97F4A7C15ull);
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
  return z ^ (z >> 31);
}

// A number in lo..hi.
uint32_t random_in(uint64_t* state, uint32_t lo, uint32_t hi) {
  return lo + static_cast<uint32_t>(next_random(state) % (hi - lo + 1));
}

// The walk's moves and their weights: a user mostly moves between rows and confirms, goes back
// now and then and home rarely.
struct MoveKind {
  uint8_t button;
  uint8_t release;  // KEY_NULL_MAX: a short press
  uint32_t weight;
  uint32_t min_hold_ms, max_hold_ms;
};

constexpr MoveKind MOVE_KINDS[] = {
    {KEY_PHOTO_S, KEY_NULL_MAX, 24, 0, 0},            // next row, value down
    {KEY_RANGE_S, KEY_NULL_MAX, 16, 0, 0},            // previous row, value up
    {KEY_FUCTION_S, KEY_NULL_MAX, 24, 0, 0},          // confirm, toggle, step
    {KEY_FUCTION_L, KEY_FUCTION_L_POP, 9, 100, 600},  // main menu, back one page
    {KEY_POWER_S, KEY_NULL_MAX, 3, 0, 0},             // back to the picture; screen off there
    {KEY_FOCUS_UP_S, KEY_NULL_MAX, 2, 0, 0},
    {KEY_FOCUS_DOWN_S, KEY_NULL_MAX, 2, 0, 0},
    {KEY_PHOTO_L, KEY_PHOTO_L_POP, 3, 100, 3000},   // photo, fast moves
    {KEY_RANGE_L, KEY_RANGE_L_POP, 3, 100, 3000},   // range finder on/off, fast moves
    {KEY_PHOTO_L, KEY_PHOTO_L_POP, 1, 7200, 8000},  // 7 s on the range finder row: alignment
    {KEY_RANGE_L, KEY_RANGE_L_POP, 1, 7200, 8000},
    {KEY_POWER_L, KEY_POWER_L_POP, 1, 100, 1800},  // the countdown, released before its end
    {KEY_FOCUS_UP_L, KEY_FOCUS_UP_L_POP, 1, 100, 1500},
    {KEY_FOCUS_DOWN_L, KEY_FOCUS_DOWN_L_POP, 1, 100, 1500},
    {KEY_PHOTO_FUCTION_S, KEY_NULL_MAX, 1, 0, 0},
    {KEY_RANGE_FUCTION_S, KEY_NULL_MAX, 1, 0, 0},  // laser
    {KEY_RANGE_PHOTO_S, KEY_NULL_MAX, 1, 0, 0},    // shutter
    {KEY_UP_POWER_L, KEY_NULL_MAX, 1, 0, 0},       // ballistic calculator
};

// Whether `button` on `screen` would confirm what cannot be undone (formatting, a factory reset,
// installing firmware, powering off after an upgrade).
bool irreversible(uint8_t button, const std::string& screen) {
  if (screen == "Zavo_SDcard" || screen == "Zavo_Reset") return button == KEY_FUCTION_S;
  if (screen == "Zavo_updata") return button == KEY_FUCTION_S || button == KEY_POWER_L;
  return false;
}

// A frame whose length byte and checksum are made right again after its bytes were changed.
Frame resealed(Frame f) {
  f[1] = static_cast<uint8_t>(f.size() - 3);
  f[f.size() - 3] = framedec::checksum(std::span<const uint8_t>(f.data(), f.size() - 3));
  return f;
}

}  // namespace

std::vector<Frame> hostile_frames(int count, uint64_t seed) {
  uint64_t state = seed;
  std::vector<Frame> out;
  // Readings, each with the value bytes its handler cannot do without (a video's length may
  // leave out its frame rate): cut below that, each must be refused.
  struct Reading {
    Frame frame;
    size_t needs;
  };
  const Reading readings[] = {
      {battery_frame(700), 2},       {battery_type_frame(1), 1},
      {compass_frame(0, 123), 3},    {compass_frame(1, -3), 3},
      {wind_frame(4200), 2},         {distance_frame(4500), 3},
      {zoom_frame(250), 2},          {video_total_frame(4500, 30), 8},
      {video_position_frame(90), 8},
  };
  for (int i = 0; i < count; ++i) {
    const Reading& reading = readings[next_random(&state) % std::size(readings)];
    Frame f = reading.frame;
    switch (next_random(&state) % 9) {
      case 0: f[0] = static_cast<uint8_t>(random_in(&state, 0, 0xA9)); break;  // header
      case 1: f[f.size() - 3] ^= 1; break;                                     // checksum
      case 2: f[f.size() - 2] = 0xEA; break;                                   // 0xEB
      case 3: f[f.size() - 1] = 0xAB; break;                                   // 0xAA
      case 4:  // a type the dispatch does not know
        f[2] = static_cast<uint8_t>(random_in(&state, 30, 255));
        f = resealed(f);
        break;
      case 5: {  // fewer value bytes than its handler reads
        const size_t keep = next_random(&state) % reading.needs;
        f.erase(f.begin() + 6 + static_cast<long>(keep), f.end() - 3);
        f = resealed(f);
        break;
      }
      case 6: f[1] = static_cast<uint8_t>(random_in(&state, 32, 255)); break;  // past the end
      case 7: {  // a length too short for the fixed part, correctly sealed: aa L .. sum eb aa
        const uint8_t l = static_cast<uint8_t>(random_in(&state, 2, 5));
        f.assign({0xAA, l});
        while (f.size() < l)
          f.push_back(static_cast<uint8_t>(random_in(&state, 0, 29)));
        f.push_back(framedec::checksum(std::span<const uint8_t>(f.data(), f.size())));
        f.push_back(0xEB);
        f.push_back(0xAA);
        break;
      }
      default: {  // garbage, sometimes nothing at all
        f.resize(random_in(&state, 0, 40));
        for (uint8_t& b : f)
          b = static_cast<uint8_t>(next_random(&state));
        if (!f.empty()) f[0] = 0xAA;
        break;
      }
    }
    out.push_back(std::move(f));
  }
  return out;
}

WalkMove next_walk_move(uint64_t* state, const std::string& screen) {
  uint32_t total = 0;
  for (const MoveKind& k : MOVE_KINDS)
    total += k.weight;
  for (;;) {
    uint32_t pick = random_in(state, 0, total - 1);
    const MoveKind* kind = MOVE_KINDS;
    while (pick >= kind->weight) {
      pick -= kind->weight;
      ++kind;
    }
    if (irreversible(kind->button, screen)) continue;
    const uint32_t hold =
        kind->release == KEY_NULL_MAX ? 0 : random_in(state, kind->min_hold_ms, kind->max_hold_ms);
    return {kind->button, kind->release, hold};
  }
}

std::optional<Command> parse_command(std::string_view line, std::string* error) {
  error->clear();
  std::vector<std::string> words = split(line);
  if (words.empty() || words[0][0] == '#') return std::nullopt;
  Command c;
  c.source = std::string(line);
  const std::string& verb = words[0];
  const size_t nargs = words.size() - 1;

  auto rest_of_line = [&]() {
    std::string_view view(line);
    size_t at = view.find(verb);
    return std::string(view.substr(at + verb.size()));
  };

  if (verb == "frame" || verb == "expect-hex") {
    auto bytes = framedec::parse_hex(rest_of_line());
    if (!bytes || bytes->empty() || bytes->size() > 512) {
      *error = "\"" + verb + "\" needs hex bytes (at most 512)";
      return std::nullopt;
    }
    c.op = verb == "frame" ? Op::FRAME : Op::EXPECT_HEX;
    c.bytes = std::move(*bytes);
    return c;
  }
  if (verb == "expect") {
    c.op = Op::EXPECT;
    c.text = framedec::normalize(rest_of_line());
    if (c.text.empty()) {
      *error = "\"expect\" needs the decoded text of a frame";
      return std::nullopt;
    }
    return c;
  }
  if (verb == "press" || verb == "long" || verb == "release") {
    if (nargs != 1) {
      *error = "\"" + verb + "\" needs one button";
      return std::nullopt;
    }
    // "long up" is the alias "up-long", "release up" is "up-pop".
    const std::string suffix = verb == "long" ? "-long" : verb == "release" ? "-pop" : "";
    std::optional<uint8_t> button = framedec::button_from_name(words[1] + suffix);
    if (!button) {
      *error = "unknown button \"" + words[1] + "\"";
      return std::nullopt;
    }
    c.op = Op::PRESS;
    c.numbers.push_back(*button);
    return c;
  }
  if (verb == "distance") {
    if (nargs != 1) {
      *error = "\"distance\" needs decimetres or \"fail\"";
      return std::nullopt;
    }
    c.op = Op::DISTANCE;
    int dm = -1;
    if (words[1] != "fail" && (!number(words[1], &dm) || dm < 0 || dm > 65535)) {
      *error = "bad distance \"" + words[1] + "\"";
      return std::nullopt;
    }
    c.numbers.push_back(dm);
    return c;
  }
  for (const WordVerb& form : WORD_VERBS) {
    if (verb != form.word) continue;
    std::string list;
    for (const char* choice : form.choices)
      list += (list.empty() ? "" : "|") + std::string(choice);
    if (nargs > 1 || (nargs == 0 && !form.optional)) {
      *error = "\"" + verb + "\" needs one of " + list;
      return std::nullopt;
    }
    c.op = form.op;
    c.numbers.push_back(0);
    if (nargs == 0) return c;
    const auto at = std::find(form.choices.begin(), form.choices.end(), words[1]);
    if (at == form.choices.end()) {
      *error = "\"" + verb + "\" needs one of " + list + ", not \"" + words[1] + "\"";
      return std::nullopt;
    }
    c.numbers[0] = static_cast<int>(at - form.choices.begin());
    return c;
  }
  if (verb == "blind-save") {
    int ms = -1;
    if (nargs != 1 || (words[1] != "never" && (!number(words[1], &ms) || ms < 0))) {
      *error = "\"blind-save\" needs milliseconds or \"never\"";
      return std::nullopt;
    }
    c.op = Op::BLIND_SAVE;
    c.numbers.push_back(ms);
    return c;
  }
  for (const Verb& form : VERBS) {
    if (verb != form.word) continue;
    if (static_cast<int>(nargs) < form.min_args || static_cast<int>(nargs) > form.max_args) {
      *error = "\"" + verb + "\" takes " + std::to_string(form.min_args) +
               (form.max_args != form.min_args ? " or more" : "") + " argument(s)";
      return std::nullopt;
    }
    c.op = form.op;
    for (size_t i = 1; i < words.size(); ++i) {
      int v = 0;
      if (!number(words[i], &v)) {
        *error = "\"" + words[i] + "\" is not a number";
        return std::nullopt;
      }
      c.numbers.push_back(v);
    }
    if (c.op == Op::SEND) {
      for (int v : c.numbers) {
        if (v < 0 || v > 255) {
          *error = "send takes bytes 0..255";
          return std::nullopt;
        }
      }
    }
    if ((c.op == Op::KEYS || c.op == Op::HOSTILE) && (c.numbers[0] < 0 || c.numbers[1] < 0)) {
      *error = "\"" + verb + "\" takes a count and a seed, neither negative";
      return std::nullopt;
    }
    if ((c.op == Op::WAIT || c.op == Op::TIMEOUT || c.op == Op::SILENT) && c.numbers[0] < 0) {
      *error = "a time cannot be negative";
      return std::nullopt;
    }
    if (c.op == Op::PROFILE && (c.numbers[0] < 0 || c.numbers[0] > 4)) {
      *error = "profile takes 0..4";
      return std::nullopt;
    }
    return c;
  }
  *error = "unknown command \"" + verb + "\"";
  return std::nullopt;
}

bool load_script(const std::string& path, std::vector<Command>* out, std::string* error) {
  std::ifstream in(path);
  if (!in) {
    *error = "cannot open script \"" + path + "\"";
    return false;
  }
  std::string line;
  int number_of_line = 0;
  while (std::getline(in, line)) {
    ++number_of_line;
    std::string message;
    std::optional<Command> c = parse_command(line, &message);
    if (!c) {
      if (message.empty()) continue;
      *error = path + ":" + std::to_string(number_of_line) + ": " + message;
      return false;
    }
    c->line = number_of_line;
    out->push_back(std::move(*c));
  }
  return true;
}

void execute(const Command& c, const Actions& a) {
  Device& d = *a.device;
  const auto& n = c.numbers;
  switch (c.op) {
    case Op::SEND: {
      std::vector<uint8_t> values;
      for (size_t i = 3; i < n.size(); ++i)
        values.push_back(static_cast<uint8_t>(n[i]));
      a.send(framedec::build(static_cast<uint8_t>(n[0]), static_cast<uint8_t>(n[1]),
                             static_cast<uint8_t>(n[2]), values));
      break;
    }
    case Op::FRAME: a.send(c.bytes); break;
    case Op::PRESS: a.send(key_frame(static_cast<uint8_t>(n[0]))); break;
    case Op::BATTERY: a.send(battery_frame(n[0])); break;
    case Op::BATTERY_TYPE: a.send(battery_type_frame(n[0])); break;
    case Op::COMPASS:
      a.send(compass_frame(COMPASS_AZIMUTH_ANGLE, n[0]));
      a.send(compass_frame(COMPASS_PITCH_ANGLE, n[1]));
      a.send(compass_frame(COMPASS_SLANT_ANGLE, n[2]));
      break;
    case Op::WIND: a.send(wind_frame(n[0])); break;
    case Op::WIND_CONNECT: {
      const uint8_t v[1] = {static_cast<uint8_t>(n[0])};
      a.send(framedec::build(29, 0, 0, v));
      break;
    }
    case Op::DISTANCE: a.send(distance_frame(n[0])); break;
    case Op::TARGET: d.set_target_decimetres(n[0] * 10); break;
    case Op::ZOOM: a.send(zoom_frame(n[0])); break;
    case Op::QUERY: a.send(menu_query_frame()); break;
    case Op::BOOT: d.send_startup_records(); break;
    case Op::PROFILE: d.select_profile(n[0]); break;
    case Op::SOLUTION: d.send_solution(); break;
    case Op::SHOT: d.shot(); break;
    case Op::UPDATE_NOTICE: a.send(framedec::build(26, UPDATA_START_NOTICE, 0)); break;
    case Op::UPDATE_STATE: {
      const uint8_t v[1] = {static_cast<uint8_t>(n[0])};
      a.send(framedec::build(26, UPDATA_STATE, 0, v));
      break;
    }
    case Op::UPDATE_RESULT: {
      const uint8_t v[1] = {static_cast<uint8_t>(n[0])};
      a.send(framedec::build(26, UPDATA_RESULT, 0, v));
      break;
    }
    case Op::SCHEDULE: d.set_schedule(n[0] != 0); break;
    case Op::UPGRADE: d.start_upgrade(static_cast<Device::Upgrade>(n[0])); break;
    case Op::CARD: {
      std::string error;
      if (!d.set_card(CARD_STATES[n[0]], &error)) a.print("devsim: " + error);
      break;
    }
    case Op::BLIND_SAVE: d.set_blind_save_delay(n[0]); break;
    case Op::QUIT:
      if (a.quit) a.quit();
      break;
    case Op::HOSTILE:
      for (const Frame& f : hostile_frames(n[0], static_cast<uint64_t>(n[1])))
        a.send(f);
      break;
    case Op::KEYS:  // a walk steps with the runner's clock
    case Op::HOME:
    case Op::SILENT:
    case Op::WAIT:
    case Op::EXPECT:
    case Op::EXPECT_HEX:
    case Op::TIMEOUT: break;
  }
}

uint64_t Runner::seed_of(int seed) const {
  return static_cast<uint64_t>(seed) * 1000003u + static_cast<uint64_t>(round_) * 0x5851F42Du;
}

bool Runner::walk(const Command& keys, uint64_t now_ms) {
  if (!waiting_) {
    waiting_ = true;
    walk_left_ = keys.numbers[0];
    walk_state_ = seed_of(keys.numbers[1]);
    walk_next_ms_ = now_ms;
    walk_release_ = KEY_NULL_MAX;
  }
  for (;;) {
    if (walk_release_ != KEY_NULL_MAX) {
      if (now_ms < walk_release_ms_) return false;
      actions_.send(key_frame(walk_release_));
      walk_release_ = KEY_NULL_MAX;
    }
    if (walk_left_ == 0) {
      waiting_ = false;
      return true;
    }
    if (now_ms < walk_next_ms_) return false;
    const WalkMove move = next_walk_move(&walk_state_, actions_.screen ? actions_.screen() : "");
    actions_.send(key_frame(move.button));
    ++walk_keys_;
    --walk_left_;
    if (move.release != KEY_NULL_MAX) {
      walk_release_ = move.release;
      walk_release_ms_ = now_ms + move.hold_ms;
    }
    walk_next_ms_ = now_ms + move.hold_ms + random_in(&walk_state_, 100, 900);
  }
}

Runner::State Runner::step(uint64_t now_ms, const std::vector<Received>& received) {
  while (state_ == State::RUNNING && pc_ < script_.size()) {
    const Command& c = script_[pc_];
    const std::string where = "script line " + std::to_string(c.line);
    switch (c.op) {
      case Op::WAIT:
        if (!waiting_) {
          waiting_ = true;
          until_ms_ = now_ms + static_cast<uint64_t>(c.numbers[0]);
        }
        if (now_ms < until_ms_) return state_;
        waiting_ = false;
        ++pc_;
        break;
      case Op::TIMEOUT:
        timeout_ms_ = c.numbers[0];
        ++pc_;
        break;
      case Op::EXPECT:
      case Op::EXPECT_HEX: {
        if (!waiting_) {
          waiting_ = true;
          until_ms_ = now_ms + static_cast<uint64_t>(timeout_ms_);
        }
        bool found = false;
        for (size_t i = cursor_; i < received.size(); ++i) {
          const bool match =
              c.op == Op::EXPECT ? received[i].decoded == c.text : received[i].bytes == c.bytes;
          if (match) {
            cursor_ = i + 1;
            found = true;
            break;
          }
        }
        if (found) {
          actions_.print(where + ": got " + (c.op == Op::EXPECT ? c.text : framedec::hex(c.bytes)));
          waiting_ = false;
          ++pc_;
          break;
        }
        if (now_ms < until_ms_) return state_;
        std::string last = cursor_ < received.size() ? received.back().decoded : "nothing";
        actions_.print("FAIL " + where + ": expected \"" +
                       (c.op == Op::EXPECT ? c.text : framedec::hex(c.bytes)) + "\" within " +
                       std::to_string(timeout_ms_) + " ms; " +
                       std::to_string(received.size() - cursor_) +
                       " other frame(s) came, the last: " + last);
        state_ = State::FAILED;
        return state_;
      }
      case Op::KEYS:
        if (!walk(c, now_ms)) return state_;
        ++pc_;
        break;
      case Op::HOME: {
        if (!actions_.screen) {
          actions_.print(where + ": \"home\" needs a host that sees the UI's screen; skipped");
          ++pc_;
          break;
        }
        if (waiting_ && now_ms < until_ms_) return state_;
        if (actions_.screen() == HOME_SCREEN) {
          waiting_ = false;
          home_presses_ = 0;
          ++pc_;
          break;
        }
        if (home_presses_ == 20) {
          actions_.print("FAIL " + where + ": the UI stays on " + actions_.screen() +
                         " after 20 power presses");
          state_ = State::FAILED;
          return state_;
        }
        actions_.send(key_frame(KEY_POWER_S));
        ++home_presses_;
        waiting_ = true;
        until_ms_ = now_ms + 500;
        return state_;
      }
      case Op::SILENT:
        actions_.device->silence_until(now_ms + static_cast<uint64_t>(c.numbers[0]));
        actions_.print("device: silent for " + std::to_string(c.numbers[0]) + " ms");
        ++pc_;
        break;
      case Op::HOSTILE: {
        const auto frames = hostile_frames(c.numbers[0], seed_of(c.numbers[1]));
        for (const Frame& f : frames)
          actions_.send(f);
        hostile_sent_ += frames.size();
        ++pc_;
        break;
      }
      default:
        execute(c, actions_);
        ++pc_;
        break;
    }
  }
  if (state_ == State::RUNNING && pc_ >= script_.size()) {
    state_ = State::PASSED;
    actions_.print("PASS: " + std::to_string(script_.size()) + " script command(s)");
  }
  return state_;
}

}  // namespace devsim
