// The media catalogue: the photos and videos the device application has written to the card.
//
// load_file_list reads the photo and the video directory into one intrusive circular list of
// file_list_t nodes (photos first, each directory in its own order), file_quick_sort orders the
// nodes by name, and dump_file_info flattens the list into the file_unit array the browser pages
// read: photo names down one column, video names down the other, the counts in element 0.
// getFileListInfo does all three on the card's fixed directories. Remove_file deletes one medium
// with its thumbnail.
//
// Directories are the device's absolute paths; they are resolved with device_path() (under
// SCOPE_UI_ROOT on a desktop or in a test).
#ifndef SCOPE_COMMON_LIST_H
#define SCOPE_COMMON_LIST_H

#include <cstddef>
#include <cstdint>

// Where the device application keeps the media, each with its trailing slash.
inline constexpr const char* MEDIA_PHOTO_DIR = "/usrdata/media/Picture/";
inline constexpr const char* MEDIA_VIDEO_DIR = "/usrdata/media/Video/";
inline constexpr const char* MEDIA_THUMBNAIL_DIR = "/usrdata/media/.thumbnails/";

// Size of a name field. A name of 64 bytes or more fills the field without a terminator, so
// every reader bounds it with FILE_NAME_SIZE (strnlen, strncmp, "%.64s").
inline constexpr int FILE_NAME_SIZE = 64;

typedef enum {
  FILE_NULL = 0,
  FILE_PHOTO = 1,
  FILE_VIDEO = 2,
  FILE_NUM = 255,
} FILE_TYPE;

typedef enum {
  SORT_FILENAME_POSITIVE = 0,
  SORT_FILENAME_REVERSE = 1,
  SORT_DATE_POSITIVE = 2,
  SORT_DATE_REVERSE = 3,
  SORT_NUM = 255,
} SORT_TYPE;

// Intrusive circular doubly linked list link. An empty list is a head pointing to itself.
struct list_head {
  list_head* next;
  list_head* prev;
};

// One file found on the card.
typedef struct _file_list {
  char file_name[FILE_NAME_SIZE];  // the bare name as read from the directory
  list_head list_node;
  // FILE_PHOTO or FILE_VIDEO as detected on the whole name when it was read: a name of 64 bytes
  // or more is cut in file_name and may have lost its extension there.
  uint8_t file_type;
} file_list_t;

// The list of one catalogue load, linked into the caller's list of directories.
typedef struct _dir_list {
  char dir_name[FILE_NAME_SIZE];  // the photo directory (cut to 63 characters)
  list_head file_list_head;       // head of the file_list_t nodes
  list_head list_node;            // link in the caller's list
} dir_list;

// Element of the flat catalogue. Photo names fill photo_name of elements 0..photos-1, video
// names video_name of elements 0..videos-1; only element 0 carries the counts.
typedef struct _file_unit {
  int32_t photo_num;
  int32_t video_num;
  char photo_name[FILE_NAME_SIZE];
  char video_name[FILE_NAME_SIZE];
} file_unit;
static_assert(sizeof(file_unit) == 136);

// The node holding a link.
inline file_list_t* file_node_of(list_head* link) {
  return reinterpret_cast<file_list_t*>(reinterpret_cast<char*>(link) -
                                        offsetof(file_list_t, list_node));
}

// ---- list primitives ----
void list_head_init(list_head* head);
void list_add_prev(list_head* node, list_head* at);  // links node just before at
void list_add_next(list_head* node, list_head* at);  // links node just after at
void list_add_tail(list_head* node, list_head* head);
void list_del(list_head* node);  // unlinks; both links become null

// ---- the catalogue ----
// The whole card, sorted by name: a new array of (photos + videos) elements (free() it), or
// null when no medium was found. SORT_FILENAME_REVERSE and SORT_DATE_REVERSE give the newest
// first. The date sorts list only names starting with the 9 characters of `date_prefix`.
file_unit* getFileListInfo(unsigned sort_type, const char* date_prefix);

// Reads both directories (paths used as given) into a new dir_list linked at the tail of
// `dirs`, counts photos in counter->photo_num and videos in *video_counter, and sorts the nodes.
// Null when neither directory opens, when nothing was taken, or on an allocation failure; a
// dir_list left linked on `dirs` then belongs to the caller.
dir_list* load_file_list(const char* photo_dir, const char* video_dir, list_head* dirs,
                         unsigned sort_type, const char* date_prefix, file_unit* counter,
                         int32_t* video_counter);

// The sorted list as a new zeroed array of (photos + videos) elements (at least one); null for a
// null list. Names beyond the counts given are left out with a line.
file_unit* dump_file_info(dir_list* list, unsigned sort_type, int32_t photos, int32_t videos);

// Sorts the nodes from `first` to `last` (both in one list, `first` not after `last`) in
// ascending byte order of their names, by relinking them; names are never copied.
void file_quick_sort(list_head* first, list_head* last);

// Frees every node and the record (unlinked from its caller's list first). Null is ignored.
void free_list_memory(dir_list* list);
// Prints the list, one 1-based line a node.
void print_file_list(dir_list* list);

// FILE_PHOTO for a name whose last "." starts ".bmp", FILE_VIDEO for ".mp4" (the first four
// characters of the extension, case-sensitive), else FILE_NULL.
FILE_TYPE Detect_file_type(const char* name);
// As Detect_file_type, and counts a photo in counter->photo_num, a video in *video_counter.
FILE_TYPE get_file_type(const char* name, file_unit* counter, int32_t* video_counter);
// Hook for a check of a video's content; every video passes. Always 0.
int32_t Detect_avi_avlid(const char* name);

// Deletes the medium `name` of `type` (1 photo, 2 video) and its thumbnail (the name less its
// last three characters, plus "jpg"). 0 when both went; the medium's or the thumbnail's failure
// otherwise. Only plain file names of a regular file are removed: another type, an empty name,
// a path, a directory or a link is refused with a line and nothing is removed. The thumbnail is
// kept (with a line) while the medium is still on the card after a failed removal, and while a
// medium of the other type with the same stem still uses it.
int32_t Remove_file(int32_t type, const char* name);

// Clears the thumbnail directory and creates it again. 0.
int32_t Remove_Matefile(void);

// True when both media directories can be read: an empty catalogue then really means an empty
// card, not an unreadable one.
bool media_directories_readable(void);

// Size in bytes of the medium `name` of `type`; 0 for a null name or a file that cannot be read.
int64_t Get_file_size(int32_t type, const char* name);

// The n-th occurrence of ch in str, or null: n > 0 counts from the start; n < 0 counts from the
// end, and the backward scan stops at the first character, which is returned when it is ch
// whatever the count; n == 0 gives null.
const char* SearchStrChr(const char* str, char ch, int32_t n);

#endif  // SCOPE_COMMON_LIST_H
