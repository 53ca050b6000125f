// The device side of start-up: the version line, then the message queues with their listener.
#include "embedded.h"

#include "msg/msg.h"
#include "msg/msghandler.h"
#include "version/version_ex.h"

int32_t Inf_InitEmbeddedFunction(void) {
  version_info_init();
  return Inf_InitMsgEvent(msgEventCallback);
}

int32_t Inf_DeinitEmbeddedFunction(void) {
  return 0;
}
