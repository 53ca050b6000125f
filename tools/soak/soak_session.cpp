// The soak session: see soak_session.h.
#include "soak_session.h"

#include <fcntl.h>
#include <malloc.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <thread>

#include "application.h"
#include "common/common_function.h"
#include "common/records_lock.h"
#include "common/status_records.h"
#include "device_model.h"
#include "framedec.h"
#include "media_writer.h"
#include "msg/msg.h"
#include "msg/msghandler.h"
#include "pages/page_list.h"
#include "script.h"
#include "tk_testing.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr uint32_t STEP_MS = 10;       // the device's and the main loop's pace
constexpr uint64_t SETTLE_MS = 10000;  // after the scenario: tips and notices run out
constexpr auto LISTENER_PATIENCE = std::chrono::seconds(30);  // real time, sanitizers included

#define PAGE_NAME(name) #name,
constexpr const char* PAGE_NAMES[] = {PAGE_LIST(PAGE_NAME)};
#undef PAGE_NAME

// The card the UI measures: an 8 GiB card whose free space the device's `card` command sets.
uint64_t g_card_free_bytes = 0;
constexpr uint64_t CARD_BYTES = 8ull << 30;
constexpr uint64_t CARD_FREE_AT_START = 4000ull << 20;

int card_statfs(const char*, struct statfs* out) {
  std::memset(out, 0, sizeof(*out));
  out->f_bsize = 4096;
  out->f_blocks = CARD_BYTES / 4096;
  out->f_bavail = g_card_free_bytes / 4096;
  out->f_bfree = out->f_bavail;
  return 0;
}

// Resident memory without the toolkit's picture cache (every decoded image stays cached, and the
// card grows by every photo and recording of the walk) and after freed heap pages went back to
// the system: what stays is in use.
long resident_kib() {
  tk_testing_drop_draw_caches();
  malloc_trim(0);
  long pages = 0, resident = 0;
  std::ifstream statm("/proc/self/statm");
  statm >> pages >> resident;
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

// A device tree as make run prepares it: language file, a card with photos and videos, the
// version file, the clock device.
bool make_tree(const std::string& root) {
  namespace fs = std::filesystem;
  std::error_code ec;
  fs::create_directories(root + "/usrdata/release", ec);
  fs::create_directories(root + "/tmp", ec);
  fs::create_directories(root + "/dev", ec);
  std::ofstream(root + "/usrdata/release/language.json")
      << R"({"DEFAULT LANGUAGE": "English", "LANGUAGES": ["English", "Chinese", "Russian", )"
         R"("German", "French", "Spanish", "Italian"]})";
  std::ofstream(root + "/tmp/apps.version") << "PN:\t [SOAK-0001]\nSW:\t [V1.0.0.0]\n";
  std::ofstream(root + "/dev/rtc0") << "";
  sample_media::set_options media;
  media.photos = 12;
  media.videos = 6;
  return !ec && sample_media::write_media_set(root + "/usrdata/media", media);
}

// The device's end of the two queues.
struct DeviceQueues {
  int from_ui = -1;
  int to_ui = -1;
};

class Session {
 public:
  explicit Session(const SoakOptions& options) : options_(options) {}
  SoakFigures run();

 private:
  bool start();
  void stop();
  void fail(const std::string& why) { figures_.failures.push_back(why); }
  // Sends a frame to the UI as the device does, waiting for room when its queue is full.
  void send(const devsim::Frame& frame);
  // Reads what the UI sent and hands it to the device.
  void read_from_ui();
  // One step of the clock: device, script, listener, main loop.
  void step(devsim::Runner* runner);
  // Lets the listener take what was sent (the UI thread gives it the records meanwhile).
  void let_listener_catch_up();
  void note_windows();
  std::string top() const;
  void count(uint32_t* timers, uint32_t* widgets, uint32_t* idles, std::string* windows) const;
  // The UI back on the observation screen with no recording running, then quiet.
  void bring_home();

  SoakOptions options_;
  SoakFigures figures_;
  std::string root_;
  DeviceQueues q_;
  std::unique_ptr<devsim::Device> device_;
  std::vector<devsim::Received> received_;
  std::set<std::string> windows_seen_;
  uint64_t sent_ = 0;  // frames the device put on the UI's queue
  uint64_t listener_base_ = 0;
  Clock::time_point lagging_since_{};
  bool lagging_ = false;
  bool baseline_taken_ = false;
  int saved_stdout_ = -1;
};

std::string Session::top() const {
  widget_t* t = window_manager_get_top_window(window_manager());
  return t != nullptr && t->name != nullptr ? t->name : "";
}

void Session::count(uint32_t* timers, uint32_t* widgets, uint32_t* idles,
                    std::string* windows) const {
  *timers = tk_testing_timer_count();
  *widgets = tk_testing_widget_count();
  *idles = tk_testing_idle_count();
  windows->clear();
  for (const std::string& name : tk_testing_window_names())
    *windows += (windows->empty() ? "" : " ") + name;
}

void Session::send(const devsim::Frame& frame) {
  Inf_MsgEvent event;
  std::memset(&event, 0, sizeof(event));
  event.msg_type = MSG_RECV_TYPE;
  event.msg_text.type = MSG_TYPE_FRAMED;
  const size_t n = std::min(frame.size(), sizeof(event.msg_text.context));
  event.msg_text.length = static_cast<uint32_t>(n);
  std::memcpy(event.msg_text.context, frame.data(), n);
  const auto deadline = Clock::now() + LISTENER_PATIENCE;
  while (msgsnd(q_.to_ui, &event, MSG_TEXT_SIZE, IPC_NOWAIT) != 0) {
    if (errno != EAGAIN || Clock::now() > deadline) {
      fail(std::string("the device cannot send to the UI: ") + std::strerror(errno));
      return;
    }
    records_sleep_ms(0);  // the listener empties the queue
    std::this_thread::sleep_for(std::chrono::microseconds(200));
  }
  ++sent_;
  ++figures_.frames_to_ui;
}

void Session::read_from_ui() {
  Inf_MsgEvent event;
  while (msgrcv(q_.from_ui, &event, MSG_TEXT_SIZE, MSG_SEND_TYPE, IPC_NOWAIT) >= 0) {
    const size_t length = std::min<size_t>(event.msg_text.length, sizeof(event.msg_text.context));
    devsim::Frame frame(event.msg_text.context, event.msg_text.context + length);
    ++figures_.frames_from_ui;
    const std::string decoded = framedec::decode(frame, framedec::Direction::FROM_UI);
    std::printf("<- %s\n", decoded.c_str());
    received_.push_back({frame, framedec::normalize(decoded)});
    device_->on_frame(frame);
  }
}

void Session::let_listener_catch_up() {
  // A handler may itself wait for the clock (the upgrade notice waits a second): the clock goes
  // on after a short real wait, and only a listener that takes nothing for long is a fault.
  const auto until = Clock::now() + std::chrono::milliseconds(20);
  while (Inf_MsgReceivedCount() - listener_base_ < sent_ && Clock::now() < until) {
    records_sleep_ms(0);
    std::this_thread::sleep_for(std::chrono::microseconds(50));
  }
  if (Inf_MsgReceivedCount() - listener_base_ >= sent_) {
    lagging_ = false;
  } else if (!lagging_) {
    lagging_ = true;
    lagging_since_ = Clock::now();
  } else if (Clock::now() - lagging_since_ > LISTENER_PATIENCE) {
    fail("the listener took no frame for 30 s (" + std::to_string(sent_) + " sent, " +
         std::to_string(Inf_MsgReceivedCount() - listener_base_) + " taken)");
    lagging_ = false;
  }
}

void Session::note_windows() {
  for (const std::string& name : tk_testing_window_names())
    windows_seen_.insert(name);
}

void Session::step(devsim::Runner* runner) {
  const uint64_t now = tk_testing_now();
  if (!device_->silent(now)) read_from_ui();
  device_->tick(now);
  if (runner != nullptr) runner->step(now, received_);
  let_listener_catch_up();
  tk_testing_advance(STEP_MS);
  note_windows();
}

void Session::bring_home() {
  for (int attempt = 0; attempt < 5 && (top() != devsim::HOME_SCREEN ||
                                        stUIStatus.s8InterfaceState == INTERFACE_AOD);
       ++attempt) {
    send(devsim::key_frame(KEY_POWER_S));
    for (int i = 0; i < 100; ++i)
      step(nullptr);
  }
  if (stUIStatus.s8RecordingState != 0) {
    send(devsim::key_frame(KEY_PHOTO_S));  // stops the recording
  }
  // Counted on a quiet device: a reading arriving starts one-shot timers (the range image's half
  // second after a measurement) that are no leak.
  device_->silence_until(tk_testing_now() + SETTLE_MS);
  for (uint64_t t = 0; t < SETTLE_MS; t += STEP_MS)
    step(nullptr);
}

bool Session::start() {
  char pattern[] = "/tmp/scope-soak-XXXXXX";
  if (mkdtemp(pattern) == nullptr) {
    fail("no temporary device tree");
    return false;
  }
  root_ = pattern;
  if (!make_tree(root_)) {
    fail("the device tree could not be written");
    return false;
  }
  const int send_key = options_.key_base + (static_cast<int>(getpid()) & 0xFFFFF) * 2;
  const std::string keys = std::to_string(send_key) + "," + std::to_string(send_key + 1);
  setenv(MSG_KEYS_ENV, keys.c_str(), 1);
  setenv("SCOPE_UI_ROOT", root_.c_str(), 1);
  setenv("TK_HEADLESS", "1", 1);

  // The device's queues, fresh (a killed run may have left frames in them).
  for (int key : {send_key, send_key + 1})
    msgctl(msgget(key, 0), IPC_RMID, nullptr);
  q_.from_ui = msgget(send_key, IPC_CREAT | 0600);
  q_.to_ui = msgget(send_key + 1, IPC_CREAT | 0600);
  if (q_.from_ui < 0 || q_.to_ui < 0) {
    fail("the message queues " + keys + " cannot be made");
    return false;
  }

  {
    std::fflush(stdout);
    saved_stdout_ = dup(STDOUT_FILENO);
    const int log = open(options_.log_path.empty() ? "/dev/null" : options_.log_path.c_str(),
                         O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (log >= 0) {
      dup2(log, STDOUT_FILENO);
      close(log);
    }
  }

  g_card_free_bytes = CARD_FREE_AT_START;
  Get_StorageData_set_statfs(card_statfs);
  tk_testing_init();
  Inf_LinkReset();
  listener_base_ = Inf_MsgReceivedCount();

  device_ = std::make_unique<devsim::Device>(
      [this](const devsim::Frame& f) { send(f); },
      [](const std::string& line) { std::printf("%s\n", line.c_str()); });
  device_->set_root(root_);
  device_->set_media_dir(root_ + "/usrdata/media/");
  device_->set_card_filler([](uint64_t free_bytes, std::string*) {
    g_card_free_bytes = free_bytes == 0 ? CARD_FREE_AT_START : free_bytes;
    std::printf("device: the card has %llu MiB free\n",
                static_cast<unsigned long long>(g_card_free_bytes >> 20));
    return true;
  });
  device_->set_system_hook([this](devsim::Device::System what) {
    if (what == devsim::Device::System::SHUT_DOWN) {
      ++figures_.power_offs;
    } else {
      ++figures_.restarts;
    }
  });
  // The device has its records ready when the UI starts: the observation screen's init waits
  // for them while the listener takes them.
  device_->send_startup_records();
  if (application_init(nullptr) != RET_OK) fail("application_init failed");
  tk_testing_advance(0);
  note_windows();
  return true;
}

void Session::stop() {
  Inf_DeinitMsgEvent();
  Get_StorageData_set_statfs(nullptr);
  tk_testing_reset();
  msgctl(q_.from_ui, IPC_RMID, nullptr);
  msgctl(q_.to_ui, IPC_RMID, nullptr);
  if (saved_stdout_ >= 0) {
    std::fflush(stdout);
    dup2(saved_stdout_, STDOUT_FILENO);
    close(saved_stdout_);
    saved_stdout_ = -1;
  }
  std::error_code ec;
  if (!root_.empty()) std::filesystem::remove_all(root_, ec);
  unsetenv("SCOPE_UI_ROOT");
}

SoakFigures Session::run() {
  const auto real_start = Clock::now();
  std::vector<devsim::Command> script;
  std::string error;
  if (!devsim::load_script(options_.scenario, &script, &error)) {
    figures_.failures.push_back(error);
    return figures_;
  }
  if (!start()) {
    stop();
    return figures_;
  }
  const uint64_t t0 = tk_testing_now();

  // Before: the observation screen alone, the boot logo gone.
  while (tk_testing_now() - t0 < 20000 &&
         !(tk_testing_window_names() == std::vector<std::string>{"Zavo_home_page_1"} &&
           tk_testing_now() - t0 >= 6000)) {
    step(nullptr);
  }
  count(&figures_.timers_before, &figures_.widgets_before, &figures_.idles_before,
        &figures_.home_before);
  figures_.timer_lines_before = tk_testing_timer_descriptions();

  devsim::Actions actions;
  actions.send = [this](const devsim::Frame& f) { send(f); };
  actions.print = [](const std::string& line) { std::printf("%s\n", line.c_str()); };
  actions.device = device_.get();
  actions.screen = [this] {
    const std::string name = top();
    return name == devsim::HOME_SCREEN && stUIStatus.s8InterfaceState == INTERFACE_AOD
               ? std::string(devsim::HOME_DARK)
               : name;
  };
  for (int round = 0; round < options_.rounds && figures_.failures.empty(); ++round) {
    if (round > 0) bring_home();
    devsim::Runner runner(script, actions, round);
    while (runner.state() == devsim::Runner::State::RUNNING && figures_.failures.empty() &&
           figures_.restarts == 0 && figures_.power_offs == 0) {
      step(&runner);
    }
    figures_.keys += runner.walk_keys();
    figures_.hostile += runner.hostile_sent();
    if (runner.state() == devsim::Runner::State::FAILED)
      fail("round " + std::to_string(round + 1) + ": the scenario failed (see the log)");
    if (figures_.restarts != 0 || figures_.power_offs != 0)
      fail("the scope was restarted or powered off during round " + std::to_string(round + 1));
    const long rss = resident_kib();
    figures_.rss_max_kib = std::max(figures_.rss_max_kib, rss);
    if (round == 0) figures_.rss_warm_kib = rss;
    if (options_.progress) {
      std::fprintf(stderr, "soak: round %d of %d done at %.1f simulated min, %ld KiB resident\n",
                   round + 1, options_.rounds, (tk_testing_now() - t0) / 60000.0, rss);
    }
  }

  // After: back on the observation screen, quiet again.
  bring_home();
  count(&figures_.timers_after, &figures_.widgets_after, &figures_.idles_after,
        &figures_.home_after);
  figures_.timer_lines_after = tk_testing_timer_descriptions();
  const size_t asked_at = received_.size();
  send(devsim::menu_query_frame());
  for (int i = 0; i < 100 && !figures_.answered_query; ++i) {
    step(nullptr);
    for (size_t k = asked_at; k < received_.size(); ++k) {
      if (received_[k].decoded == "BASIC BASIC_MENU_LEVEL value=0") figures_.answered_query = true;
    }
  }
  figures_.rss_end_kib = resident_kib();
  figures_.rss_max_kib = std::max(figures_.rss_max_kib, figures_.rss_end_kib);
  figures_.simulated_ms = tk_testing_now() - t0;

  const Inf_LinkStats link = Inf_GetLinkStats();
  figures_.dropped_by_ui = link.frames_dropped;
  figures_.events_raised = link.events_raised;
  figures_.events_dispatched = link.events_dispatched;
  figures_.lost_in_link = link.events_dropped + link.keys_dropped + link.navigations_dropped +
                          link.key_posts_failed + link.drain_request_failures;
  figures_.queue_high_water = tk_testing_queue_high_water();
  figures_.queue_overflows = tk_testing_queue_overflows();
  for (const char* name : PAGE_NAMES) {
    (windows_seen_.count(name) ? figures_.pages_reached : figures_.pages_missed).push_back(name);
  }
  std::sort(figures_.pages_reached.begin(), figures_.pages_reached.end());
  std::sort(figures_.pages_missed.begin(), figures_.pages_missed.end());
  stop();

  if (!figures_.answered_query) fail("the UI did not answer the which-screen query with home");
  if (figures_.queue_overflows != 0) fail("the toolkit's queue overflowed");
  if (figures_.lost_in_link != 0) fail("the link's hand-off lost events, keys or navigations");
  if (figures_.events_dispatched != figures_.events_raised)
    fail("screen events raised and dispatched differ");
  if (figures_.timers_after != figures_.timers_before) fail("timers before and after differ");
  if (figures_.widgets_after != figures_.widgets_before) fail("widgets before and after differ");
  if (figures_.idles_after != figures_.idles_before) fail("idles before and after differ");
  // Flat after warm-up: the first round's figure against the end's, once there is a run to judge.
  constexpr long RSS_SLACK_KIB = 4096;
  if (options_.rounds >= 3 && figures_.rss_end_kib - figures_.rss_warm_kib > RSS_SLACK_KIB)
    fail("resident memory grew by more than 4 MiB after warm-up");
  figures_.real_ms = static_cast<uint64_t>(
      std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - real_start).count());
  figures_.passed = figures_.failures.empty();
  return figures_;
}

}  // namespace

SoakFigures soak_run(const SoakOptions& options) {
  Session session(options);
  return session.run();
}

std::string soak_report(const SoakFigures& f) {
  std::ostringstream out;
  char line[256];
  std::snprintf(line, sizeof line, "simulated time   %.1f min (%.1f s real)\n",
                f.simulated_ms / 60000.0, f.real_ms / 1000.0);
  out << line;
  out << "keys pressed     " << f.keys << " (random walk, presses and holds)\n";
  out << "frames           " << f.frames_to_ui << " to the UI (" << f.hostile << " hostile, "
      << f.dropped_by_ui << " dropped by its check), " << f.frames_from_ui << " from the UI\n";
  out << "screen events    " << f.events_raised << " raised, " << f.events_dispatched
      << " dispatched; " << f.lost_in_link << " lost in the hand-off\n";
  out << "pages reached    " << f.pages_reached.size() << " of "
      << f.pages_reached.size() + f.pages_missed.size() << ":";
  for (const auto& p : f.pages_reached)
    out << " " << p;
  out << "\npages missed    ";
  for (const auto& p : f.pages_missed)
    out << " " << p;
  out << "\nqueue (20)       high-water " << f.queue_high_water << ", overflows "
      << f.queue_overflows << "\n";
  out << "timers           " << f.timers_before << " before, " << f.timers_after << " after\n";
  if (f.timers_before != f.timers_after) {
    for (const auto& t : f.timer_lines_before)
      out << "  before: " << t << "\n";
    for (const auto& t : f.timer_lines_after)
      out << "  after:  " << t << "\n";
  }
  out << "widgets          " << f.widgets_before << " before, " << f.widgets_after << " after\n";
  out << "idles            " << f.idles_before << " before, " << f.idles_after << " after\n";
  out << "windows          before: " << f.home_before << "; after: " << f.home_after << "\n";
  out << "resident memory  " << f.rss_warm_kib << " KiB after warm-up, " << f.rss_end_kib
      << " KiB at the end (" << (f.rss_end_kib - f.rss_warm_kib) << " KiB), at most "
      << f.rss_max_kib << " KiB\n";
  out << "restarts         " << f.restarts << ", power-offs " << f.power_offs << "\n";
  out << "which-screen     " << (f.answered_query ? "answered home" : "NOT answered") << "\n";
  for (const auto& why : f.failures)
    out << "FAULT: " << why << "\n";
  out << (f.passed ? "SOAK PASSED" : "SOAK FAILED") << "\n";
  return out.str();
}
