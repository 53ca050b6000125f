// The queue keys of the link: the defaults, or the pair given in the environment. Shared by the
// user interface's transport and the device simulator.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "msg/msg.h"

namespace {

bool parse_key(const char* begin, const char* end, int* key) {
  if (begin == end) return false;
  char buffer[32];
  size_t n = static_cast<size_t>(end - begin);
  if (n >= sizeof(buffer)) return false;
  std::memcpy(buffer, begin, n);
  buffer[n] = '\0';
  char* stop = nullptr;
  errno = 0;
  long value = std::strtol(buffer, &stop, 0);
  if (errno != 0 || stop == buffer || *stop != '\0') return false;
  if (value <= 0 || value > 0x7fffffff) return false;
  *key = static_cast<int>(value);
  return true;
}

}  // namespace

bool Inf_ParseMsgKeys(const char* text, int* send_key, int* recv_key) {
  if (text == nullptr) return false;
  const char* comma = std::strchr(text, ',');
  if (comma == nullptr) return false;
  int s = 0;
  int r = 0;
  if (!parse_key(text, comma, &s) || !parse_key(comma + 1, comma + std::strlen(comma), &r)) {
    return false;
  }
  if (s == r) return false;
  *send_key = s;
  *recv_key = r;
  return true;
}

void Inf_GetMsgKeys(int* send_key, int* recv_key) {
  *send_key = MSG_SEND_KEY;
  *recv_key = MSG_RECV_KEY;
  const char* text = std::getenv(MSG_KEYS_ENV);
  if (text == nullptr || *text == '\0') return;
  if (!Inf_ParseMsgKeys(text, send_key, recv_key)) {
    std::printf("[ERROR] %s=\"%s\" is not \"<send>,<recv>\"; using %d,%d\n", MSG_KEYS_ENV, text,
                MSG_SEND_KEY, MSG_RECV_KEY);
  }
}
