// Message-queue transport between the UI and the device application.
//
// Two System V queues carry fixed-size messages: key 54321 from the UI (message type 5, sent
// without waiting) and key 12345 to the UI (message type 4, blocking receive on the listener
// thread "MsgEventListen"). The frame inside a message is msghandler's business.
#ifndef SCOPE_MSG_MSG_H
#define SCOPE_MSG_MSG_H

#include <cstddef>
#include <cstdint>

// Payload of one queue message; 520 bytes on the wire, little-endian.
typedef struct {
  uint8_t type;     // 0x21 ('!') from the device application for framed commands; 1 from the UI
  uint8_t command;  // the UI always sends 0xFF
  uint32_t length;  // valid bytes in context
  uint8_t context[512];
} Inf_MsgText;

// What msgsnd/msgrcv see: the System V message type, then the payload.
typedef struct {
  long msg_type;
  Inf_MsgText msg_text;
} Inf_MsgEvent;

static_assert(sizeof(Inf_MsgText) == 520);
static_assert(offsetof(Inf_MsgText, command) == 1);
static_assert(offsetof(Inf_MsgText, length) == 4);
static_assert(offsetof(Inf_MsgText, context) == 8);
static_assert(sizeof(long) == 8, "the queue message type is a signed 64-bit word");
static_assert(sizeof(Inf_MsgEvent) == 528);
static_assert(offsetof(Inf_MsgEvent, msg_text) == 8);

typedef void (*InfMsgEventCallback)(Inf_MsgText* text, void* ctx);

// The link's single state record.
typedef struct {
  int32_t smsgid;  // send queue (UI -> device application)
  int32_t rmsgid;  // receive queue (device application -> UI)
  InfMsgEventCallback callback;
} Inf_MsgNode;

inline constexpr int MSG_SEND_KEY = 54321;
inline constexpr int MSG_RECV_KEY = 12345;
// Environment override of both keys, "<send>,<recv>" (decimal or 0x-hex). The UI link and the
// device simulator read it, so tests and a demo run on private queues never meet a running UI.
inline constexpr const char* MSG_KEYS_ENV = "SCOPE_MSG_KEYS";
inline constexpr long MSG_SEND_TYPE = 5;
inline constexpr long MSG_RECV_TYPE = 4;
inline constexpr size_t MSG_TEXT_SIZE = sizeof(Inf_MsgText);

// Parses "<send>,<recv>" into two queue keys. False (keys untouched) unless the text holds exactly
// two non-zero integers separated by a comma.
bool Inf_ParseMsgKeys(const char* text, int* send_key, int* recv_key);
// The keys this process uses: the defaults, or $SCOPE_MSG_KEYS when set and valid (an invalid
// value prints one error line and keeps the defaults).
void Inf_GetMsgKeys(int* send_key, int* recv_key);

// Opens both queues and starts the listener thread. 0 on success, -1 on failure.
int32_t Inf_InitMsgEvent(InfMsgEventCallback callback);
// Sends one message on the send queue without waiting. 0 on success, -1 on failure.
int32_t Inf_SendMsgEvent(uint8_t type, uint8_t command, const uint8_t* data, int32_t length);
// Removes both queues; the listener thread is not stopped. Returns 0.
int32_t Inf_DeinitMsgEvent(void);
// The listener thread's body. It runs until its receive queue is removed.
void* PthreadMsgEventListen(void* node);

// True on the listener thread. Work that belongs to the user interface thread (toolkit timers)
// is handed over when a handler triggers it there.
bool Inf_OnListenerThread(void);

// Messages of type 4 taken from the receive queue and handed to the callback so far (the count
// grows after the callback returns). Tests and benchmarks wait on it.
uint64_t Inf_MsgReceivedCount(void);

#endif  // SCOPE_MSG_MSG_H
