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

}  // namespace

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
    if ((c.op == Op::WAIT || c.op == Op::TIMEOUT) && c.numbers[0] < 0) {
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
    case Op::WAIT:
    case Op::EXPECT:
    case Op::EXPECT_HEX:
    case Op::TIMEOUT: break;
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
