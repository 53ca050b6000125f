// A soak session: the scope UI and the simulated device in one process for a long scripted run
// on the toolkit's test clock, and the figures that tell whether it held up.
//
// The UI is the real program's start (application_init) on private queues and a temporary
// device tree; its listener thread takes the frames off the real queue. The device is the
// simulator's model and its scenario runner (tools/devsim: script.h), stepped on the same test
// clock, so simulated minutes pass in real seconds. The walk's guard sees the UI's top window and
// never confirms formatting, a factory reset or a firmware installation.
#ifndef SCOPE_TOOLS_SOAK_SOAK_SESSION_H
#define SCOPE_TOOLS_SOAK_SOAK_SESSION_H

#include <cstdint>
#include <string>
#include <vector>

struct SoakOptions {
  std::string scenario;       // the scenario file (devsim's language)
  int rounds = 1;             // times the scenario runs back to back (walks differ per round)
  int key_base = 0x5D000000;  // queue keys: key_base + 2 * (process id) and the next
  std::string log_path;       // the UI's and the device's lines; "" discards them
  bool progress = false;      // a line on standard error after each round
};

struct SoakFigures {
  bool passed = false;
  std::vector<std::string> failures;  // each problem found, in words

  uint64_t simulated_ms = 0;
  uint64_t real_ms = 0;
  uint64_t keys = 0;            // buttons the key walks pressed
  uint64_t frames_to_ui = 0;    // everything the device sent, hostile frames included
  uint64_t frames_from_ui = 0;  // frames the UI sent
  uint64_t hostile = 0;
  uint64_t dropped_by_ui = 0;  // frames the UI's check refused
  uint64_t events_raised = 0;  // screen events raised by the link, and dispatched
  uint64_t events_dispatched = 0;
  uint64_t lost_in_link = 0;  // events, keys or navigations the hand-off refused; posts refused
  int restarts = 0;           // restarts and power-offs the device was asked for
  int power_offs = 0;

  std::vector<std::string> pages_reached;  // of the page table, sorted
  std::vector<std::string> pages_missed;
  uint32_t queue_high_water = 0;  // the toolkit's 20-entry queue
  uint32_t queue_overflows = 0;
  uint32_t timers_before = 0, timers_after = 0;
  uint32_t widgets_before = 0, widgets_after = 0;
  uint32_t idles_before = 0, idles_after = 0;
  std::string home_before, home_after;                             // the windows open when counted
  std::vector<std::string> timer_lines_before, timer_lines_after;  // tk_testing_timer_descriptions
  long rss_warm_kib = 0;  // resident memory after the first round (or a quarter of the run)
  long rss_end_kib = 0;
  long rss_max_kib = 0;
  bool answered_query = false;  // the which-screen query answered "home" at the end
};

// Runs the session. Standard output (the UI's lines) goes to options.log_path meanwhile.
SoakFigures soak_run(const SoakOptions& options);
// The figures as lines of text.
std::string soak_report(const SoakFigures& figures);

#endif  // SCOPE_TOOLS_SOAK_SOAK_SESSION_H
