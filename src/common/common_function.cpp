// Helpers shared by the pages: the argument check, menu index stepping, the language
// configuration and the small system helpers (directories, storage, clock, files, versions).
#include "common/common_function.h"

#include <fcntl.h>
#include <linux/rtc.h>
#include <regex.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>
#include <cjson/cJSON.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "common/device_path.h"
#include "msg/msghandler.h"

static_assert(RTC_SET_TIME == 0x4024700A, "the clock ioctl of the board");

char Zavo_vername[5][20] = {"PN", "SN", "FPA1", "FPA2", "SW"};
char Zavo_verArr[5][20];

namespace {

struct file_closer {
  void operator()(FILE* f) const { fclose(f); }
};
using file_ptr = std::unique_ptr<FILE, file_closer>;

struct fd_guard {
  int fd;
  ~fd_guard() {
    if (fd >= 0) close(fd);
  }
};

struct json_deleter {
  void operator()(cJSON* json) const { cJSON_Delete(json); }
};

// The language configuration file, inside the device tree.
constexpr const char* LANGUAGE_FILE = "/usrdata/release/language.json";
constexpr const char* MEDIA_VOLUME = "/usrdata/media/";
constexpr const char* RTC_DEVICE = "/dev/rtc0";
// Where sys_set_time records the time when the device tree stands in for the board.
constexpr const char* SYSTEM_TIME_FILE = "/tmp/system_time";

storage_statfs_t storage_statfs = nullptr;

// Seconds added to the host clock by sys_get_time after a sys_set_time inside a device tree.
time_t clock_offset = 0;

}  // namespace

// ---------------------------------------------------------------------------------------------
// Argument check
// ---------------------------------------------------------------------------------------------

void log_condition_failed(const char* function, int line, const char* condition) {
  if (log_get_log_level() <= LOG_LEVEL_ERROR) {
    log_notify(LOG_LEVEL_ERROR, "%s:%d condition(%s) failed!\n", function, line, condition);
  }
  printf("%s:%d condition(%s) failed!\n", function, line, condition);
  fflush(stdout);
}

// ---------------------------------------------------------------------------------------------
// Menu stepping
// ---------------------------------------------------------------------------------------------

int32_t getIndexVal(int32_t key, int32_t min, int32_t max, int32_t current, int32_t mode) {
  if (current < min || current > max) {
    puts("!!!!!!!!!!para null error");
    if (max < min) printf("!!!!!!!!!!para minval(%d) > maxval(%d) error\n", min, max);
  }
  // With mode 0 the photo keys step up (the list moves down a row); otherwise the range keys do.
  const bool upward = mode == 0 ? (key == GUI_KEY_PHOTO_S || key == GUI_KEY_PHOTO_L)
                                : (key == GUI_KEY_RANGE_S || key == GUI_KEY_RANGE_L);
  if (upward) return current + 1 > max ? min : current + 1;
  return current - 1 < min ? max : current - 1;
}

int32_t getIndexVal_cycle(int32_t min, int32_t max, int32_t current) {
  if (current < min || current > max) {
    puts("!!!!!!!!!!cycle para null error");
    if (max < min) printf("!!!!!!!!!!cycle para minval(%d) > maxval(%d) error\n", min, max);
  }
  return current + 1 > max ? min : current + 1;
}

// ---------------------------------------------------------------------------------------------
// Language
// ---------------------------------------------------------------------------------------------

int32_t Inf_CheckStringMatch(const char* string, const char* pattern) {
  if (string == nullptr || pattern == nullptr) return -1;
  regex_t regex;
  if (regcomp(&regex, pattern, REG_EXTENDED) != 0) {
    printf("Inf_CheckStringMatch: bad pattern <%s>\n", pattern);
    return -1;
  }
  const int result = regexec(&regex, string, 0, nullptr, 0);
  regfree(&regex);
  return result;
}

int32_t Inf_getLanguageInfo(const char* name) {
  for (size_t i = 0; i < language_table.size(); ++i) {
    if (Inf_CheckStringMatch(name, language_table[i].pattern) == 0) return static_cast<int32_t>(i);
  }
  return -1;
}

int32_t Inf_GetCustomConfigs(Inf_CustConfig* config) {
  if (config == nullptr) return 0;
  *config = Inf_CustConfig{};  // English, no list offered

  const std::string path = device_path(LANGUAGE_FILE);
  std::unique_ptr<char, decltype(&free)> text(ReadFile(path.c_str()), &free);
  if (text == nullptr) {
    printf("language config %s unreadable: English, no language list\n", path.c_str());
    return 0;
  }
  std::unique_ptr<cJSON, json_deleter> root(cJSON_Parse(text.get()));
  if (root == nullptr) {
    const char* near = cJSON_GetErrorPtr();
    if (text.get()[strspn(text.get(), " \t\r\n")] == '\0') {
      printf("language config %s is empty: English, no language list\n", path.c_str());
    } else {
      printf("language config %s is not valid JSON (near \"%.20s\"): English, no language list\n",
             path.c_str(), near != nullptr ? near : "");
    }
    return 0;
  }

  const cJSON* def = cJSON_GetObjectItem(root.get(), "DEFAULT LANGUAGE");
  if (cJSON_IsString(def)) {
    const int32_t index = Inf_getLanguageInfo(def->valuestring);
    config->s8DefaultLanguage = static_cast<char>(index < 0 ? 0 : index);
  } else {
    printf("language config %s: no \"DEFAULT LANGUAGE\" text, English is the default\n",
           path.c_str());
  }

  const cJSON* list = cJSON_GetObjectItem(root.get(), "LANGUAGES");
  if (!cJSON_IsArray(list)) {
    printf("language config %s: no \"LANGUAGES\" list, none offered\n", path.c_str());
    return 0;
  }
  int count = cJSON_GetArraySize(list);
  if (count > LANGUAGE_LIST_MAX) {
    printf("language config %s: %d languages listed, only the first %d are kept\n", path.c_str(),
           count, LANGUAGE_LIST_MAX);
    count = LANGUAGE_LIST_MAX;
  }
  config->s8LangListCount = static_cast<char>(count);
  for (int i = 0; i < count; ++i) {
    const cJSON* item = cJSON_GetArrayItem(list, i);
    const int32_t index = cJSON_IsString(item) ? Inf_getLanguageInfo(item->valuestring) : -1;
    config->s8LangList[i] = static_cast<char>(index < 0 ? 255 : index);
  }
  return 0;
}

ret_t change_locale(const char* code) {
  if (code == nullptr || strlen(code) < 5) {
    printf("change_locale: bad locale code <%s>\n", code != nullptr ? code : "(null)");
    return RET_BAD_PARAMS;
  }
  const char language[3] = {code[0], code[1], '\0'};
  const char country[3] = {code[3], code[4], '\0'};
  return locale_info_change(locale_info(), language, country);
}

// ---------------------------------------------------------------------------------------------
// Directories and files
// ---------------------------------------------------------------------------------------------

int32_t Inf_CreateDirectory(const char* path) {
  if (path == nullptr || *path == '\0') {
    puts("mkdir <> error");
    return -1;
  }
  const std::string full(path);
  for (size_t i = 1; i < full.size(); ++i) {
    if (full[i] != '/') continue;
    const std::string prefix = full.substr(0, i);
    if (access(prefix.c_str(), F_OK) != 0 && mkdir(prefix.c_str(), 0755) != 0) {
      printf("mkdir <%s> error\n", prefix.c_str());
      return -1;
    }
  }
  return 0;
}

char* ReadFile(const char* path) {
  file_ptr file(path != nullptr ? fopen(path, "rb") : nullptr);
  struct stat st;
  if (file == nullptr || fstat(fileno(file.get()), &st) != 0 || !S_ISREG(st.st_mode)) {
    printf("ReadFile: cannot read <%s>\n", path != nullptr ? path : "(null)");
    return nullptr;
  }
  const size_t size = static_cast<size_t>(st.st_size);
  char* buffer = static_cast<char*>(malloc(size + 1));
  if (buffer == nullptr || fread(buffer, 1, size, file.get()) != size) {
    printf("ReadFile: cannot read <%s>\n", path);
    free(buffer);
    return nullptr;
  }
  buffer[size] = '\0';
  return buffer;
}

// ---------------------------------------------------------------------------------------------
// Storage
// ---------------------------------------------------------------------------------------------

void Get_StorageData_set_statfs(storage_statfs_t fn) {
  storage_statfs = fn;
}

int32_t Get_StorageData(uint32_t* used, uint32_t* total) {
  if (used == nullptr || total == nullptr) return -1;
  const std::string volume = device_path(MEDIA_VOLUME);
  struct statfs st {};
  const int rc =
      storage_statfs != nullptr ? storage_statfs(volume.c_str(), &st) : statfs(volume.c_str(), &st);
  if (rc != 0) {
    printf("ERROR: statfs <%s> failed: %s\n", volume.c_str(), strerror(errno));
    return -1;
  }
  const uint64_t block = st.f_bsize;
  const uint64_t blocks = st.f_blocks;
  const uint64_t available = st.f_bavail;
  // Hundredths of a GiB, through single precision as the card's figures always were.
  *total = static_cast<uint32_t>(static_cast<float>(blocks * block) * 9.313226e-10 * 100);
  *used =
      static_cast<uint32_t>(static_cast<float>((blocks - available) * block) * 9.313226e-10 * 100);
  const double free_mib = static_cast<double>(available * block) * 9.5367431640625e-7;
  if (free_mib < 200) return 1;
  if (free_mib < 500) return 2;
  if (*used < 6400 && *total < 6400) return 0;
  printf("ERROR: disksize read error(%d:%d)\n", *used, *total);
  return -1;
}

// ---------------------------------------------------------------------------------------------
// Clock
// ---------------------------------------------------------------------------------------------

namespace {

// The broken-down time both clocks take (struct tm and struct rtc_time share these fields):
// months from 0, years from 1900, the rest zero.
template <typename Time>
Time broken_down(int hour, int minute, int second, int year, int month, int day) {
  Time time{};
  time.tm_sec = second;
  time.tm_min = minute;
  time.tm_hour = hour;
  time.tm_mday = day;
  time.tm_mon = month - 1;
  time.tm_year = year - 1900;
  return time;
}

// Writes "YYYY-MM-DD HH:MM:SS\n" over the content of `fd`; true on success.
bool write_time_line(int fd, int hour, int minute, int second, int year, int month, int day) {
  char line[64];
  const int n = snprintf(line, sizeof line, "%04d-%02d-%02d %02d:%02d:%02d\n", year, month, day,
                         hour, minute, second);
  return ftruncate(fd, 0) == 0 && write(fd, line, n) == n;
}

}  // namespace

int32_t rtc_set_time(int hour, int minute, int second, int year, int month, int day) {
  const std::string device = device_path(RTC_DEVICE);
  fd_guard rtc{open(device.c_str(), O_WRONLY)};
  if (rtc.fd < 0) {
    puts("open rtc_dev failed!");
    return -1;
  }
  struct rtc_time time = broken_down<struct rtc_time>(hour, minute, second, year, month, day);
  // Inside a device tree the "device" is a plain file: it receives the time instead.
  const bool set = device_root_is_set()
                       ? write_time_line(rtc.fd, hour, minute, second, year, month, day)
                       : ioctl(rtc.fd, RTC_SET_TIME, &time) == 0;
  if (!set) {
    puts("ioctl rtc_set_time failed!");
    return -2;
  }
  return 0;
}

int32_t sys_set_time(int hour, int minute, int second, int year, int month, int day) {
  struct tm broken = broken_down<struct tm>(hour, minute, second, year, month, day);
  const time_t when = mktime(&broken);
  bool set = when != static_cast<time_t>(-1);
  if (set && device_root_is_set()) {
    // The host's clock stays as it is: the tree records the time and sys_get_time follows it.
    const std::string path = device_path(SYSTEM_TIME_FILE);
    fd_guard file{open(path.c_str(), O_WRONLY | O_CREAT, 0644)};
    set = file.fd >= 0 && write_time_line(file.fd, hour, minute, second, year, month, day);
    if (set) clock_offset = when - time(nullptr);
  } else if (set) {
    const struct timeval tv = {when, 0};
    set = settimeofday(&tv, nullptr) == 0;
  }
  if (!set) {
    puts("settimeofday failed");
    return -1;
  }
  return 0;
}

int32_t sys_get_time(struct tm** result) {
  if (result == nullptr) return -1;
  const time_t now = time(nullptr) + clock_offset;
  *result = gmtime(&now);
  return 0;
}

// ---------------------------------------------------------------------------------------------
// Version file
// ---------------------------------------------------------------------------------------------

void ver_info_get(const char* text, const char* key, int length, char* out) {
  (void)length;  // the slot size bounds the copy, not the caller's expectation
  if (text == nullptr || key == nullptr || out == nullptr) return;
  memset(out, 0, VERSION_SLOT_SIZE);
  const char* at = strstr(text, key);
  const char* open = at != nullptr ? strchr(at, '[') : nullptr;
  const char* close = at != nullptr ? strchr(at, ']') : nullptr;
  if (open == nullptr || close == nullptr) {
    printf("version key <%s>: no [value] found, left empty\n", key);
    return;
  }
  const ptrdiff_t len = close - open - 1;
  printf("len========%d\n", static_cast<uint8_t>(len));
  if (len < 0) {
    printf("version key <%s>: \"]\" before \"[\", value rejected\n", key);
    return;
  }
  if (len >= VERSION_SLOT_SIZE) {
    printf("version key <%s>: value of %td bytes does not fit its %d-byte slot, rejected\n", key,
           len, VERSION_SLOT_SIZE);
    return;
  }
  memcpy(out, open + 1, static_cast<size_t>(len));
}

int32_t get_version(const char* path) {
  fd_guard file{path != nullptr ? open(path, O_RDWR | O_NOCTTY | O_NONBLOCK) : -1};
  if (file.fd < 0) {
    puts("apps.version open error");
    return -1;
  }
  char text[1024 + 1] = {};
  const ssize_t size = read(file.fd, text, 1024);
  if (size <= 0) {
    printf("apps.version read size=%d\n", static_cast<int>(size));
    return static_cast<int32_t>(size);
  }
  static constexpr int expected_length[5] = {10, 8, 15, 10, 8};
  for (int i = 0; i < 5; ++i) {
    ver_info_get(text, Zavo_vername[i], expected_length[i], Zavo_verArr[i]);
    printf("__%s : %s\n", Zavo_vername[i], Zavo_verArr[i]);
  }
  return 0;
}
