// Helpers shared by the pages: menu index stepping, language matching and small system helpers
// (directories, storage use, clock, files, the version file).
#ifndef SCOPE_COMMON_COMMON_FUNCTION_H
#define SCOPE_COMMON_COMMON_FUNCTION_H

#include <array>
#include <cstdint>
#include <ctime>

#include "awtk.h"
#include "common/status_records.h"

// ---- argument checks ----
// Logs "<function>:<line> condition(<condition>) failed!" to the toolkit's log at error level
// (when the log level lets errors through) and to standard output, flushing both. This is the
// line every page init and the navigator print for a bad argument.
void log_condition_failed(const char* function, int line, const char* condition);

// Returns `value` from the calling function, with the line above, when `p` is false.
#define log_return_value_if_fail(p, value)          \
  do {                                              \
    if (!(p)) {                                     \
      log_condition_failed(__func__, __LINE__, #p); \
      return (value);                               \
    }                                               \
  } while (0)

// ---- menu stepping ----
// Steps `current` up or down by `key` (see the key codes in msghandler.h), wrapping at min/max.
int32_t getIndexVal(int32_t key, int32_t min, int32_t max, int32_t current, int32_t mode);
// Always steps up, wrapping to min past max.
int32_t getIndexVal_cycle(int32_t min, int32_t max, int32_t current);

// ---- language ----
// The seven languages, by index (the value of stDevStatus.s8Language and of the entries of
// s_stCustConfig): the name pattern that selects it (POSIX extended syntax, tried in this order,
// the first match wins), the locale applied and the line printed when it is applied.
struct language_entry {
  const char* pattern;
  const char* locale;
  const char* message;
};
inline constexpr std::array<language_entry, 7> language_table = {{
    {"^([Ee]{1}nglish|en)$", "en_US", "change language to English!"},
    {"^([Cc]{1}hinese|zh_[Cc]{1}[Nn]{1})$", "zh_CN", "change language to Chinese!"},
    {"^([Rr]{1}ussian|Ru)$", "ru_RU", "change language to Russian!"},
    {"^([Gg]{1}erman|Ge)$", "de_DE", "change language to German!"},
    {"^([Ff]{1}rench|Fr)$", "fr_FR", "change language to French!"},
    {"^([Ss]{1}panish|Sp)$", "es_ES", "change language to Spanish!"},
    {"^([Ii]{1}talian|It)$", "it_IT", "change language to Italian!"},
}};

// Most languages language.json may offer; later entries of "LANGUAGES" are ignored.
inline constexpr int LANGUAGE_LIST_MAX = 8;

// Fills `config` from /usrdata/release/language.json (under SCOPE_UI_ROOT when set): the default
// language and the offered list. A missing, empty or malformed file leaves the defaults (English,
// empty list) with a message. Returns 0.
int32_t Inf_GetCustomConfigs(Inf_CustConfig* config);
// Index of the language `name` selects by language_table, or -1.
int32_t Inf_getLanguageInfo(const char* name);
// 0 when `string` matches the extended regular expression `pattern`, else non-zero.
int32_t Inf_CheckStringMatch(const char* string, const char* pattern);
// Applies a locale code such as "en_US": language "en", country "US".
ret_t change_locale(const char* code);

// ---- system helpers ----
// Paths passed to these helpers are used as given: resolve a device path with device_path()
// (common/device_path.h) first. The helpers with fixed device paths (the media volume, the
// real-time clock) resolve them themselves.

// Creates every missing directory of `path` (mode 0755). The last component is created only when
// the path ends with "/". 0, or -1 after "mkdir <...> error".
int32_t Inf_CreateDirectory(const char* path);

// Storage of the media volume /usrdata/media/, in hundredths of a GiB. Returns 1 when less than
// 200 MiB are free, 2 when less than 500 MiB, 0 for a card under 64 GiB, -1 otherwise (error
// line) or for a null argument or an unreadable volume.
int32_t Get_StorageData(uint32_t* used, uint32_t* total);

// Test-only seam: replaces statfs() for Get_StorageData (null restores the real call).
struct statfs;
typedef int (*storage_statfs_t)(const char* path, struct statfs* out);
void Get_StorageData_set_statfs(storage_statfs_t fn);

// Sets the hardware clock /dev/rtc0. 0, -1 (cannot open) or -2 (ioctl failed). With SCOPE_UI_ROOT
// set, the tree's dev/rtc0 is a plain file and receives the time as a line
// "YYYY-MM-DD HH:MM:SS" instead; the host's clock is never touched.
int32_t rtc_set_time(int hour, int minute, int second, int year, int month, int day);
// Sets the system clock (local time). 0 or -1. With SCOPE_UI_ROOT set, the host's clock is left
// alone: the time is written to the tree's /tmp/system_time as a line "YYYY-MM-DD HH:MM:SS" and
// sys_get_time reports it from then on (as an offset to the host clock).
int32_t sys_set_time(int hour, int minute, int second, int year, int month, int day);
// Stores the broken-down UTC time of now (static storage, as gmtime) in *result. 0, or -1 for
// a null argument.
int32_t sys_get_time(struct tm** result);

// The whole file in a new buffer (malloc; the caller frees it), with a NUL after the data.
// Null, with a message, when the file cannot be read.
char* ReadFile(const char* path);

// Reads the identification values of the five keys of Zavo_vername from a version file into
// Zavo_verArr and prints them. 0; -1 when the file cannot be opened; the read result when it is
// empty.
int32_t get_version(const char* path);
// Copies into `out` (a 20-byte slot) the bracketed value after `key` in `text`: "KEY ... [value]".
// A missing key or bracket, a "]" before the "[", or a value longer than 19 bytes is rejected
// with a message and leaves `out` empty. `length` is the value's expected size; it is not
// used as a bound.
void ver_info_get(const char* text, const char* key, int length, char* out);

// Size of one slot of the identification table.
inline constexpr int VERSION_SLOT_SIZE = 20;

// Identification table: keys "PN", "SN", "FPA1", "FPA2", "SW" and their values, 20 bytes a slot.
extern char Zavo_vername[5][20];
extern char Zavo_verArr[5][20];

#endif  // SCOPE_COMMON_COMMON_FUNCTION_H
