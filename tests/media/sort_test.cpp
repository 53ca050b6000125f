// The catalogue's sort against std::sort: random, sorted, reverse-sorted and all-equal names,
// nodes relinked (never copied), a sub-range sorted in place, and a stack that stays small on
// the long sorted listings a card gives.
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "common/list.h"

namespace {

struct Nodes {
  std::vector<file_list_t> nodes;
  list_head head;

  explicit Nodes(const std::vector<std::string>& names) : nodes(names.size()) {
    list_head_init(&head);
    for (size_t i = 0; i < names.size(); ++i) {
      std::memset(nodes[i].file_name, 0, FILE_NAME_SIZE);
      std::memcpy(nodes[i].file_name, names[i].data(), std::min<size_t>(names[i].size(), 64));
      list_add_tail(&nodes[i].list_node, &head);
    }
  }
  void sort_all() {
    if (head.next != &head) file_quick_sort(head.next, head.prev);
  }
  // The names in list order, checking both directions of every link and that every node is
  // one of the original records.
  std::vector<std::string> names() const {
    std::vector<std::string> out;
    const list_head* prev = &head;
    for (const list_head* at = head.next; at != &head; at = at->next) {
      EXPECT_EQ(at->prev, prev);
      const file_list_t* node = file_node_of(const_cast<list_head*>(at));
      EXPECT_TRUE(node >= nodes.data() && node < nodes.data() + nodes.size());
      out.emplace_back(node->file_name, strnlen(node->file_name, 64));
      prev = at;
    }
    EXPECT_EQ(head.prev, prev);
    return out;
  }
};

std::vector<std::string> stamps(int n) {
  std::vector<std::string> out;
  for (int i = 0; i < n; ++i) {
    char name[32];
    std::snprintf(name, sizeof name, "2025%04d_%06d.%s", i / 1000, i % 1000 * 37,
                  i % 3 ? "bmp" : "mp4");
    out.push_back(name);
  }
  std::sort(out.begin(), out.end());
  return out;
}

TEST(FileSort, MatchesStdSortOnEveryShapeOfInput) {
  std::mt19937 rng(12);
  for (int n : {0, 1, 2, 3, 7, 64, 1000, 4099}) {
    std::vector<std::string> sorted = stamps(n);
    std::vector<std::string> reversed(sorted.rbegin(), sorted.rend());
    std::vector<std::string> shuffled = sorted;
    std::shuffle(shuffled.begin(), shuffled.end(), rng);
    std::vector<std::string> equal(n, "20250614_090000.bmp");
    std::vector<std::string> few = shuffled;  // many duplicates
    for (auto& s : few)
      s = s.substr(0, 6) + ".bmp";
    for (const auto* input : {&sorted, &reversed, &shuffled, &equal, &few}) {
      Nodes list(*input);
      list.sort_all();
      std::vector<std::string> want = *input;
      std::sort(want.begin(), want.end());
      EXPECT_EQ(list.names(), want) << "n = " << n;
    }
  }
}

TEST(FileSort, ComparesBytesUnsignedAndWholeSixtyFourByteFields) {
  const std::string a64(64, 'a');
  std::string a64b = a64;
  a64b[63] = 'b';
  Nodes list(
      {"\xC3\x9C"
       "ber.bmp",
       a64b, "Zebra.bmp", a64, "zebra.bmp", "10.bmp", "1.bmp"});
  list.sort_all();
  EXPECT_EQ(list.names(),
            (std::vector<std::string>{"1.bmp", "10.bmp", "Zebra.bmp", a64, a64b, "zebra.bmp",
                                      "\xC3\x9C"
                                      "ber.bmp"}));
}

TEST(FileSort, SortsASubRangeAndLeavesTheRestInPlace) {
  Nodes list({"z.bmp", "d.bmp", "b.bmp", "c.bmp", "a.bmp"});
  file_quick_sort(&list.nodes[1].list_node, &list.nodes[3].list_node);
  EXPECT_EQ(list.names(), (std::vector<std::string>{"z.bmp", "b.bmp", "c.bmp", "d.bmp", "a.bmp"}));
  file_quick_sort(&list.nodes[2].list_node, &list.nodes[2].list_node);  // one node
  EXPECT_EQ(list.names().front(), "z.bmp");
}

// Sorting 300,000 sorted, then reversed, names on a thread with a 128 KiB stack: a sort whose
// depth grows with the list would overflow it.
TEST(FileSort, StackStaysSmallOnLongSortedAndReversedListings) {
  struct Job {
    std::vector<std::string> names;
    bool ok = false;
  } job{stamps(300000)};
  auto run = [](void* p) -> void* {
    Job* job = static_cast<Job*>(p);
    Nodes forward(job->names);
    forward.sort_all();
    std::vector<std::string> reversed(job->names.rbegin(), job->names.rend());
    Nodes backward(reversed);
    backward.sort_all();
    // Only the ends and a few links: the full check would use the small stack's test macros.
    job->ok =
        file_node_of(backward.head.next) == &backward.nodes.back() &&
        file_node_of(backward.head.prev) == &backward.nodes.front() &&
        file_node_of(forward.head.next) == &forward.nodes.front() &&
        std::strcmp(file_node_of(backward.head.next->next)->file_name, job->names[1].c_str()) == 0;
    return nullptr;
  };
  pthread_attr_t attr;
  pthread_attr_init(&attr);
  ASSERT_EQ(pthread_attr_setstacksize(&attr, 128 * 1024), 0);
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, &attr, run, &job), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attr);
  EXPECT_TRUE(job.ok);
}

}  // namespace
