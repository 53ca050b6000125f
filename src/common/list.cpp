// The media catalogue: see list.h.
#include "common/list.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>

#include "common/common_function.h"
#include "common/device_path.h"

// ---- list primitives ----

void list_head_init(list_head* head) {
  head->next = head;
  head->prev = head;
}

void list_add_prev(list_head* node, list_head* at) {
  node->prev = at->prev;
  node->next = at;
  at->prev->next = node;
  at->prev = node;
}

void list_add_next(list_head* node, list_head* at) {
  node->next = at->next;
  node->prev = at;
  at->next->prev = node;
  at->next = node;
}

void list_add_tail(list_head* node, list_head* head) {
  list_add_prev(node, head);
}

void list_del(list_head* node) {
  node->prev->next = node->next;
  node->next->prev = node->prev;
  node->next = nullptr;
  node->prev = nullptr;
}

namespace {

// The name of a field that may fill all FILE_NAME_SIZE bytes without a terminator.
std::string_view field_name(const char* field) {
  return std::string_view(field, strnlen(field, FILE_NAME_SIZE));
}

dir_list* dir_of_link(list_head* link) {
  return reinterpret_cast<dir_list*>(reinterpret_cast<char*>(link) - offsetof(dir_list, list_node));
}

int compare_names(list_head* a, list_head* b) {
  return strncmp(file_node_of(a)->file_name, file_node_of(b)->file_name, FILE_NAME_SIZE);
}

// Merges two chains linked through `next` (null-terminated), each in ascending order, into one;
// of equal names the one from `a` comes first.
list_head* merge_chains(list_head* a, list_head* b) {
  list_head head{};
  list_head* tail = &head;
  while (a != nullptr && b != nullptr) {
    if (compare_names(b, a) < 0) {
      tail->next = b;
      b = b->next;
    } else {
      tail->next = a;
      a = a->next;
    }
    tail = tail->next;
  }
  tail->next = a != nullptr ? a : b;
  return head.next;
}

// True for a regular file; entries whose type the directory does not tell are looked up
// (without following a link).
bool is_regular_entry(DIR* dir, const dirent* entry) {
  if (entry->d_type == DT_REG) return true;
  if (entry->d_type != DT_UNKNOWN) return false;
  struct stat st {};
  return fstatat(dirfd(dir), entry->d_name, &st, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(st.st_mode);
}

// Reads one directory's media into nodes linked after *last. False on an allocation failure.
bool read_media_dir(DIR* dir, const char* path, list_head** last, unsigned sort_type,
                    const char* date_prefix, file_unit* counter, int32_t* video_counter) {
  const bool by_date = sort_type == SORT_DATE_POSITIVE || sort_type == SORT_DATE_REVERSE;
  while (const dirent* entry = readdir(dir)) {
    const char* name = entry->d_name;
    if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0) continue;
    if (!is_regular_entry(dir, entry)) {
      std::printf("skip %s%s: not a regular file\n", path, name);
      continue;
    }
    if (Detect_file_type(name) == FILE_NULL) continue;
    if (by_date) {
      const char* prefix = date_prefix != nullptr ? date_prefix : "";
      if (strnlen(name, 9) < 9 || std::strncmp(name, prefix, 9) != 0) continue;
    }
    auto* node = static_cast<file_list_t*>(std::malloc(sizeof(file_list_t)));
    if (node == nullptr) {
      std::puts("error: file_node malloc fail");
      return false;
    }
    // Zero-padded; a name of 64 bytes or more fills the field without a terminator.
    std::memset(node->file_name, 0, FILE_NAME_SIZE);
    std::memcpy(node->file_name, name, strnlen(name, FILE_NAME_SIZE));
    node->file_type = static_cast<uint8_t>(get_file_type(name, counter, video_counter));
    list_add_next(&node->list_node, *last);
    *last = &node->list_node;
  }
  return true;
}

}  // namespace

// ---- type detection ----

FILE_TYPE Detect_file_type(const char* name) {
  if (name == nullptr) return FILE_NULL;
  const char* dot = std::strrchr(name, '.');
  if (dot == nullptr) {
    std::printf("filename illegal = <%s> return;\n", name);
    return FILE_NULL;
  }
  if (std::strncmp(dot, ".bmp", 4) == 0) return FILE_PHOTO;
  if (std::strncmp(dot, ".mp4", 4) == 0) return FILE_VIDEO;
  return FILE_NULL;
}

FILE_TYPE get_file_type(const char* name, file_unit* counter, int32_t* video_counter) {
  const FILE_TYPE type = Detect_file_type(name);
  if (type == FILE_PHOTO && counter != nullptr) counter->photo_num++;
  if (type == FILE_VIDEO && video_counter != nullptr) (*video_counter)++;
  return type;
}

int32_t Detect_avi_avlid(const char* name) {
  const std::string path = device_path(MEDIA_VIDEO_DIR) + (name != nullptr ? name : "");
  std::printf("Detect_avi_avlid [%s],ret = %d\n ", path.c_str(), 0);
  return 0;
}

// ---- sorting ----

// A merge sort of the linked nodes, not a quicksort: a card lists its files in the order they
// were written, which is already name order, and a quicksort that takes the first node as its
// pivot is quadratic on such a list (and recursion-deep on a reversed one). This is O(n log n)
// in every case and needs no recursion: runs of 1, 2, 4, ... nodes wait in 64 bins (a binary
// counter of the nodes seen), so the stack holds 64 pointers whatever n is. Equal names keep
// their order (the sort is stable).
void file_quick_sort(list_head* first, list_head* last) {
  if (first == nullptr || last == nullptr || first == last) return;
  list_head* before = first->prev;
  list_head* after = last->next;
  last->next = nullptr;  // the range becomes a chain through `next`

  std::array<list_head*, 64> bins{};
  list_head* node = first;
  while (node != nullptr) {
    list_head* next = node->next;
    node->next = nullptr;
    list_head* carry = node;
    size_t i = 0;
    for (; i + 1 < bins.size() && bins[i] != nullptr; ++i) {
      carry = merge_chains(bins[i], carry);  // the bin holds the earlier nodes
      bins[i] = nullptr;
    }
    bins[i] = bins[i] != nullptr ? merge_chains(bins[i], carry) : carry;
    node = next;
  }
  list_head* sorted = nullptr;
  for (list_head* bin : bins) {
    if (bin != nullptr) sorted = merge_chains(bin, sorted);
  }

  // Back into the circle between the range's old neighbours, `prev` links restored.
  list_head* prev = before;
  for (list_head* n = sorted; n != nullptr; n = n->next) {
    prev->next = n;
    n->prev = prev;
    prev = n;
  }
  prev->next = after;
  after->prev = prev;
}

// ---- loading, flattening, freeing ----

dir_list* load_file_list(const char* photo_dir, const char* video_dir, list_head* dirs,
                         unsigned sort_type, const char* date_prefix, file_unit* counter,
                         int32_t* video_counter) {
  if (photo_dir == nullptr || video_dir == nullptr || dirs == nullptr || counter == nullptr ||
      video_counter == nullptr) {
    return nullptr;
  }
  counter->photo_num = 0;
  *video_counter = 0;
  list_head_init(dirs);
  auto* list = static_cast<dir_list*>(std::malloc(sizeof(dir_list)));
  if (list == nullptr) {
    std::puts("error! dir_node malloc fail");
    return nullptr;
  }
  std::snprintf(list->dir_name, sizeof(list->dir_name), "%s", photo_dir);
  list_head_init(&list->file_list_head);
  list_add_tail(&list->list_node, dirs);

  DIR* photos = opendir(photo_dir);
  DIR* videos = opendir(video_dir);
  if (photos == nullptr && videos == nullptr) {
    std::printf("error! opendir %s fail\n", photo_dir);
    std::printf("error! openvideodir %s fail\n", video_dir);
    return nullptr;
  }

  list_head* last = &list->file_list_head;
  bool ok = true;
  if (photos == nullptr) {
    std::printf("error! opendir %s fail\n", photo_dir);
  } else {
    ok = read_media_dir(photos, photo_dir, &last, sort_type, date_prefix, counter, video_counter);
    closedir(photos);
  }
  if (videos == nullptr) {
    std::printf("error! openvideodir %s fail\n", video_dir);
  } else {
    if (ok) {
      ok = read_media_dir(videos, video_dir, &last, sort_type, date_prefix, counter, video_counter);
    }
    closedir(videos);
  }
  if (!ok) return nullptr;

  if (list->file_list_head.next == &list->file_list_head) {
    list_del(&list->list_node);
    std::free(list);
    return nullptr;
  }
  file_quick_sort(list->file_list_head.next, list->file_list_head.prev);
  return list;
}

file_unit* dump_file_info(dir_list* list, unsigned sort_type, int32_t photos, int32_t videos) {
  if (list == nullptr) return nullptr;
  photos = photos > 0 ? photos : 0;
  videos = videos > 0 ? videos : 0;
  const size_t count = static_cast<size_t>(photos) + static_cast<size_t>(videos);
  auto* units = static_cast<file_unit*>(std::calloc(count > 0 ? count : 1, sizeof(file_unit)));
  if (units == nullptr) {
    std::puts("error! file_unit malloc fail");
    return nullptr;
  }
  // Newest first for the reverse sorts: slots filled from the last one down.
  const bool reverse = (sort_type & ~2u) == 1;
  int32_t photo_slot = reverse ? photos - 1 : 0;
  int32_t video_slot = reverse ? videos - 1 : 0;
  const int32_t step = reverse ? -1 : 1;
  list_head* head = &list->file_list_head;
  for (list_head* link = head->next; link != head; link = link->next) {
    const file_list_t* node = file_node_of(link);
    const char* name = node->file_name;
    const std::string_view bare = field_name(name);
    const int type = node->file_type;
    if (type == FILE_PHOTO) {
      if (units[0].photo_num >= photos) {
        std::printf("dump_file_info: photo %.64s beyond the %d counted, left out\n", name, photos);
        continue;
      }
      std::memcpy(units[photo_slot].photo_name, name, bare.size());
      photo_slot += step;
      units[0].photo_num++;
    } else if (type == FILE_VIDEO) {
      if (units[0].video_num >= videos) {
        std::printf("dump_file_info: video %.64s beyond the %d counted, left out\n", name, videos);
        continue;
      }
      std::memcpy(units[video_slot].video_name, name, bare.size());
      video_slot += step;
      units[0].video_num++;
    }
  }
  return units;
}

void free_list_memory(dir_list* list) {
  if (list == nullptr) return;
  list_head* head = &list->file_list_head;
  for (list_head* link = head->next; link != head;) {
    list_head* next = link->next;
    std::free(file_node_of(link));
    link = next;
  }
  if (list->list_node.next != nullptr) list_del(&list->list_node);
  std::free(list);
}

void print_file_list(dir_list* list) {
  if (list == nullptr) return;
  std::printf("========= File List %p ===========\n", static_cast<void*>(list));
  int index = 1;
  list_head* head = &list->file_list_head;
  for (list_head* link = head->next; link != head; link = link->next) {
    std::printf("index = %d : name: %.64s  \n", index++, file_node_of(link)->file_name);
  }
  std::printf("\n");
  std::puts("===================================");
}

file_unit* getFileListInfo(unsigned sort_type, const char* date_prefix) {
  const std::string photo_dir = device_path(MEDIA_PHOTO_DIR);
  const std::string video_dir = device_path(MEDIA_VIDEO_DIR);
  list_head dirs;
  list_head_init(&dirs);
  file_unit counter{};
  int32_t videos = 0;
  dir_list* list = load_file_list(photo_dir.c_str(), video_dir.c_str(), &dirs, sort_type,
                                  date_prefix, &counter, &videos);
  file_unit* units = nullptr;
  if (list != nullptr && counter.photo_num + videos > 0) {
    units = dump_file_info(list, sort_type, counter.photo_num, videos);
  }
  // Whatever a load left on the list (the record of a failed load included) goes.
  while (dirs.next != &dirs)
    free_list_memory(dir_of_link(dirs.next));
  return units;
}

// ---- deleting ----

namespace {

const char* type_dir(int32_t type) {
  if (type == FILE_PHOTO) return MEDIA_PHOTO_DIR;
  if (type == FILE_VIDEO) return MEDIA_VIDEO_DIR;
  return nullptr;
}

// A name that can only mean one entry of the media directory.
bool plain_media_name(std::string_view name) {
  return name.size() >= 4 && name != "." && name != ".." && name.find('/') == std::string::npos;
}

enum class Entry { missing, regular, other };

Entry entry_kind(const std::string& path) {
  struct stat st {};
  if (lstat(path.c_str(), &st) != 0) return Entry::missing;
  return S_ISREG(st.st_mode) ? Entry::regular : Entry::other;
}

// Flushes the media volume (the one the directory is on).
void flush_media(const std::string& dir) {
  const int fd = open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0 || syncfs(fd) != 0) sync();
  if (fd >= 0) close(fd);
}

}  // namespace

int32_t Remove_file(int32_t type, const char* name) {
  if (name == nullptr) return 0;
  const char* dir = type_dir(type);
  if (dir == nullptr) {
    std::printf("Remove_file: type %d is neither a photo (1) nor a video (2); nothing removed\n",
                type);
    return -1;
  }
  const std::string_view bare(name);
  if (!plain_media_name(bare)) {
    std::printf("Remove_file: \"%s\" is not the name of a file of %s; nothing removed\n", name,
                dir);
    return -1;
  }

  const std::string path = device_path(dir) + name;
  std::printf("Delete filepath = %s\n", path.c_str());
  const Entry medium = entry_kind(path);
  int32_t medium_result = 0;
  if (medium == Entry::other) {
    std::printf("Error: file remove  %s: not a regular file, nothing removed\n", path.c_str());
    return -1;
  }
  if (std::remove(path.c_str()) != 0) {
    std::printf("Error: file remove  %s\n", std::strerror(errno));
    medium_result = -1;
  }
  if (medium_result != 0 && entry_kind(path) != Entry::missing) {
    std::printf("thumbnail kept: %s is still on the card\n", path.c_str());
    flush_media(device_path(dir));
    return medium_result;
  }

  // X.bmp and X.mp4 both map to X.jpg: a photo and a video of the same stem share it.
  const std::string thumbnail =
      device_path(MEDIA_THUMBNAIL_DIR) + std::string(bare.substr(0, bare.size() - 3)) + "jpg";
  const std::string stem(bare.substr(0, bare.size() - 4));
  if (bare.ends_with(".bmp") || bare.ends_with(".mp4")) {
    const std::string other = type == FILE_PHOTO ? device_path(MEDIA_VIDEO_DIR) + stem + ".mp4"
                                                 : device_path(MEDIA_PHOTO_DIR) + stem + ".bmp";
    if (entry_kind(other) == Entry::regular) {
      std::printf("thumbnail %s kept: %s uses it too\n", thumbnail.c_str(), other.c_str());
      flush_media(device_path(dir));
      return medium_result;
    }
  }
  int32_t result = 0;
  if (entry_kind(thumbnail) == Entry::other) {
    std::printf("Error: mp4 remove [%s] : not a regular file, kept\n", thumbnail.c_str());
    result = -1;
  } else if (std::remove(thumbnail.c_str()) != 0) {
    std::printf("Error: mp4 remove [%s] : %s\n", thumbnail.c_str(), std::strerror(errno));
    result = -1;
  }
  flush_media(device_path(dir));
  return result;
}

int32_t Remove_Matefile(void) {
  const std::string dir = device_path(MEDIA_THUMBNAIL_DIR);
  // Removes the directory itself when it is a link, never what it points to.
  std::error_code ec;
  std::filesystem::remove_all(std::filesystem::path(dir).parent_path(), ec);
  if (ec) std::printf("Remove_Matefile: cannot clear %s: %s\n", dir.c_str(), ec.message().c_str());
  Inf_CreateDirectory(dir.c_str());
  return 0;
}

bool media_directories_readable(void) {
  for (const char* dir : {MEDIA_PHOTO_DIR, MEDIA_VIDEO_DIR}) {
    DIR* d = opendir(device_path(dir).c_str());
    if (d == nullptr) return false;
    closedir(d);
  }
  return true;
}

// ---- size ----

int64_t Get_file_size(int32_t type, const char* name) {
  if (name == nullptr) return 0;
  const char* dir = type_dir(type);
  // The directory's own slash and one more: the file system reads the doubled slash as one.
  const std::string path = device_path(dir != nullptr ? dir : "") + "/" + name;
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat st {};
  if (fd < 0 || fstat(fd, &st) != 0) {
    std::printf("Error:  fstat  %s\n", std::strerror(errno));
    if (fd >= 0) close(fd);
    return 0;
  }
  close(fd);
  return static_cast<int64_t>(st.st_size);
}

// ---- n-th character ----

const char* SearchStrChr(const char* str, char ch, int32_t n) {
  if (str == nullptr || n == 0) return nullptr;
  if (n > 0) {
    for (const char* p = str; *p != '\0'; ++p) {
      if (*p == ch && --n == 0) return p;
    }
    return nullptr;
  }
  const size_t len = std::strlen(str);
  if (len == 0) return nullptr;
  for (const char* p = str + len - 1;; --p) {
    if (p == str) return *p == ch ? p : nullptr;
    if (*p == ch && ++n == 0) return p;
  }
}
