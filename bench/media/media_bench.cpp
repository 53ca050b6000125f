// Speed of the media library on real files in temporary device trees.
//
// Targets: getFileListInfo on 20,000 files (10,000 photos and 10,000 videos named by date and
// time, created in name order) within 100 ms; the catalogue's sort at least 50 times faster than
// a quicksort that takes the first node as its pivot, on the same sorted list (the order a FAT
// card lists files written in name order); the browser's next grid page (nine thumbnails decoded
// and drawn) within 33 ms; opening the browser on a 20,000-file card within 150 ms.
//
// BM_SortFirstPivot is that quicksort, kept here only as the baseline: it relinks nodes as the
// catalogue's sort does, and is quadratic on sorted input.
#include <benchmark/benchmark.h>
#include <sys/msg.h>
#include <sys/statfs.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "common/common_function.h"
#include "common/list.h"
#include "common/navigator.h"
#include "home_scene.h"
#include "media_writer.h"
#include "msg/msg.h"
#include "msg/msghandler.h"
#include "pages/Zavo_file_menu.h"
#include "tk_testing.h"

namespace {

namespace fs = std::filesystem;

// ---- trees ----

std::string g_base;  // every tree of this run, removed at exit

void remove_trees() {
  std::error_code ec;
  if (!g_base.empty()) fs::remove_all(g_base, ec);
}

std::string new_tree(const std::string& name) {
  if (g_base.empty()) {
    char pattern[] = "/tmp/media-bench-XXXXXX";
    if (mkdtemp(pattern) == nullptr) std::exit(1);
    g_base = pattern;
    std::atexit(remove_trees);
  }
  return g_base + "/" + name;
}

std::string stamp(int i) {
  return sample_media::stamp(1749891600 + static_cast<time_t>(i) * 37);
}

// A card of n media, half photos and half videos, empty files created in name order.
const std::string& listing_card(int n) {
  static std::map<int, std::string> made;
  auto it = made.find(n);
  if (it != made.end()) return it->second;
  const std::string tree = new_tree("list" + std::to_string(n));
  const std::string media = tree + "/usrdata/media/";
  for (const char* dir : {"Picture", "Video", ".thumbnails"})
    fs::create_directories(media + dir);
  for (int i = 0; i < n; ++i) {
    std::ofstream(media +
                  (i % 2 == 0 ? "Picture/" + stamp(i) + ".bmp" : "Video/" + stamp(i) + ".mp4"));
  }
  return made[n] = tree;
}

// ---- the catalogue ----

void BM_GetFileListInfo(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  setenv("SCOPE_UI_ROOT", listing_card(n).c_str(), 1);
  for (auto _ : state) {
    file_unit* units = getFileListInfo(SORT_FILENAME_REVERSE, nullptr);
    benchmark::DoNotOptimize(units);
    if (units == nullptr || units[0].photo_num + units[0].video_num != n) {
      state.SkipWithError("the catalogue does not list every file");
    }
    std::free(units);
  }
  state.SetComplexityN(n);
  state.counters["files"] = n;
}
BENCHMARK(BM_GetFileListInfo)
    ->Arg(1000)
    ->Arg(2000)
    ->Arg(5000)
    ->Arg(10000)
    ->Arg(20000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oNLogN);

// ---- sorting the same list two ways ----

int compare(list_head* a, list_head* b) {
  return std::strncmp(file_node_of(a)->file_name, file_node_of(b)->file_name, FILE_NAME_SIZE);
}

// Exchanges the places of two nodes of one list.
void swap_nodes(list_head* a, list_head* b) {
  if (a == b) return;
  if (a->next == b) {
    list_del(a);
    list_add_next(a, b);
    return;
  }
  if (b->next == a) {
    list_del(b);
    list_add_next(b, a);
    return;
  }
  list_head* after_b = b->prev;
  list_head* after_a = a->prev;
  list_del(a);
  list_del(b);
  list_add_next(a, after_b);
  list_add_next(b, after_a);
}

// The baseline: the first node is the pivot; a cursor moves leftward from the last node to a
// smaller name, which changes places with the pivot; a second cursor moves rightward from the
// node after it to a greater name, which changes places with the pivot; they alternate until
// one reaches the pivot. The left part is sorted recursively, the right one by the loop.
void first_pivot_quicksort(list_head* first, list_head* last) {
  list_head* before = first->prev;
  list_head* after = last->next;
  while (before->next != after && before->next->next != after) {
    list_head* pivot = before->next;
    list_head* left_cursor = after->prev;
    for (;;) {
      while (left_cursor != pivot && compare(left_cursor, pivot) >= 0)
        left_cursor = left_cursor->prev;
      if (left_cursor == pivot) break;
      swap_nodes(pivot, left_cursor);  // the smaller name now stands where the pivot stood
      list_head* right_cursor = left_cursor->next;
      while (right_cursor != pivot && compare(right_cursor, pivot) <= 0)
        right_cursor = right_cursor->next;
      if (right_cursor == pivot) break;
      swap_nodes(pivot, right_cursor);
      left_cursor = right_cursor->prev;
    }
    if (before->next != pivot && before->next != pivot->prev) {
      first_pivot_quicksort(before->next, pivot->prev);
    }
    before = pivot;
  }
}

enum Shape { SORTED = 0, REVERSED = 1, SHUFFLED = 2 };

struct Nodes {
  std::vector<file_list_t> nodes;
  std::vector<int> order;
  list_head head;

  Nodes(int n, Shape shape) : nodes(n), order(n) {
    for (int i = 0; i < n; ++i) {
      std::memset(nodes[i].file_name, 0, FILE_NAME_SIZE);
      const std::string name = stamp(i) + (i % 2 == 0 ? ".bmp" : ".mp4");
      std::memcpy(nodes[i].file_name, name.data(), name.size());
      order[i] = i;
    }
    if (shape == REVERSED) std::reverse(order.begin(), order.end());
    if (shape == SHUFFLED) std::shuffle(order.begin(), order.end(), std::mt19937(7));
  }
  void link() {
    list_head_init(&head);
    for (int i : order)
      list_add_tail(&nodes[i].list_node, &head);
  }
  bool sorted() const {
    for (const list_head* at = head.next; at->next != &head; at = at->next) {
      if (compare(const_cast<list_head*>(at), at->next) > 0) return false;
    }
    return true;
  }
};

template <void (*Sort)(list_head*, list_head*)>
void run_sort(benchmark::State& state) {
  Nodes nodes(static_cast<int>(state.range(0)), static_cast<Shape>(state.range(1)));
  for (auto _ : state) {
    state.PauseTiming();
    nodes.link();
    state.ResumeTiming();
    Sort(nodes.head.next, nodes.head.prev);
  }
  if (!nodes.sorted()) state.SkipWithError("not sorted");
  state.SetComplexityN(state.range(0));
}

void BM_SortCatalogue(benchmark::State& state) {
  run_sort<file_quick_sort>(state);
}
void BM_SortFirstPivot(benchmark::State& state) {
  run_sort<first_pivot_quicksort>(state);
}
BENCHMARK(BM_SortCatalogue)
    ->ArgNames({"files", "shape"})
    ->ArgsProduct({{1000, 5000, 20000}, {SORTED, REVERSED, SHUFFLED}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SortFirstPivot)
    ->ArgNames({"files", "shape"})
    ->ArgsProduct({{1000, 5000, 20000}, {SORTED, REVERSED, SHUFFLED}})
    ->Unit(benchmark::kMillisecond);

// ---- browsing a full card ----

// A 32 GiB card, half free.
int card_statfs(const char*, struct statfs* out) {
  std::memset(out, 0, sizeof(*out));
  out->f_bsize = 4096;
  out->f_blocks = 32ull * 1024 * 1024 * 1024 / 4096;
  out->f_bavail = out->f_blocks / 2;
  out->f_bfree = out->f_bavail;
  return 0;
}

// Sends the pages' printf diagnostics to /dev/null while the benchmark's report (std::cout)
// keeps going where standard output went.
void quiet_diagnostics() {
  static std::ofstream report;
  const int saved = dup(STDOUT_FILENO);
  if (saved < 0) return;
  std::fflush(stdout);
  report.open("/dev/fd/" + std::to_string(saved), std::ios::out | std::ios::app);
  if (!report.is_open() || std::freopen("/dev/null", "w", stdout) == nullptr) return;
  std::cout.rdbuf(report.rdbuf());
}

int g_send_queue = -1;

// Frames the pages sent (the length requests of the video tab) go nowhere.
void drain_sent() {
  Inf_MsgEvent m{};
  while (msgrcv(g_send_queue, &m, MSG_TEXT_SIZE, MSG_SEND_TYPE, IPC_NOWAIT) >= 0) {
  }
}

// The toolkit on its test clock and a card of 10,000 photos and 10,000 videos with their
// thumbnails (sixteen scenes, each file its own).
void open_full_card() {
  static bool ready = false;
  if (ready) return;
  ready = true;
  quiet_diagnostics();
  const std::string tree = new_tree("full");
  sample_media::set_options o;
  o.photos = 10000;
  o.videos = 10000;
  o.photo_w = 160;
  o.photo_h = 128;
  o.step_seconds = 11;
  if (!sample_media::write_media_set(tree + "/usrdata/media", o)) std::exit(1);
  setenv("SCOPE_UI_ROOT", tree.c_str(), 1);
  Get_StorageData_set_statfs(card_statfs);
  if (!home_scene_start(0x5B000000)) std::exit(1);
  std::atexit(home_scene_stop);
  int send_key = 0, recv_key = 0;
  Inf_GetMsgKeys(&send_key, &recv_key);
  g_send_queue = msgget(send_key, 0);
  home_scene_records();
}

widget_t* browser() {
  return widget_child(window_manager(), "Zavo_file_menu");
}

time_t g_touches = 0;

// The first page's thumbnails changed on the card, so they are decoded again.
void touch_first_page() {
  for (int i = 0; i < 9; ++i) {
    const std::string stem =
        sample_media::stamp(1749891600 + static_cast<time_t>(19999 - 2 * i) * 11);
    const std::string path =
        std::string(getenv("SCOPE_UI_ROOT")) + "/usrdata/media/.thumbnails/" + stem + ".jpg";
    struct timeval times[2] = {};
    times[0].tv_sec = 1800000000 + g_touches;
    times[1] = times[0];
    utimes(path.c_str(), times);
  }
  ++g_touches;
}

void BM_OpenBrowser(benchmark::State& state) {
  open_full_card();
  for (auto _ : state) {
    state.PauseTiming();
    if (browser() != NULL) window_manager_close_window_force(window_manager(), browser());
    tk_testing_advance(0);
    drain_sent();
    touch_first_page();
    state.ResumeTiming();
    navigator_to("Zavo_file_menu");
    tk_testing_advance(0);
    tk_testing_paint();
  }
  if (Zavo_photo_num + Zavo_video_num != 20000) state.SkipWithError("not the whole card");
  state.counters["files"] = Zavo_photo_num + Zavo_video_num;
}
BENCHMARK(BM_OpenBrowser)->Unit(benchmark::kMillisecond)->Iterations(20);

// One key press that moves the selection onto the next page: the grid's nine labels and
// thumbnails (never shown before, so decoded), the info panel, the paint. Range 0: photos, 1:
// videos.
void BM_NextGridPage(benchmark::State& state) {
  open_full_card();
  navigator_to("Zavo_file_menu");
  tk_testing_advance(0);
  if (state.range(0) == 0) tk_testing_key_hit(GUI_KEY_PHOTO_S);
  tk_testing_key_hit(GUI_KEY_FUCTION_S);
  int pages = 0;
  for (auto _ : state) {
    state.PauseTiming();
    for (int i = 0; i < 8; ++i)
      tk_testing_key_hit(GUI_KEY_PHOTO_S);
    drain_sent();
    const int32_t page = state.range(0) == 0 ? Zavo_photos_current_page : Zavo_video_current_page;
    state.ResumeTiming();
    tk_testing_key_hit(GUI_KEY_PHOTO_S);
    tk_testing_paint();
    state.PauseTiming();
    pages += (state.range(0) == 0 ? Zavo_photos_current_page : Zavo_video_current_page) == page + 1;
    state.ResumeTiming();
  }
  drain_sent();
  if (pages != state.iterations()) state.SkipWithError("a press did not turn the page");
  window_manager_close_window_force(window_manager(), browser());
  tk_testing_advance(0);
}
BENCHMARK(BM_NextGridPage)
    ->ArgName("videos")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(300);

}  // namespace
