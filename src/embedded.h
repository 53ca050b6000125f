// The device side of start-up: the version line and the link to the device application.
#ifndef SCOPE_EMBEDDED_H
#define SCOPE_EMBEDDED_H

#include <cstdint>

// Appends the version line, opens the message queues and starts the listener thread. Returns the
// link's result: 0, or -1 when the queues cannot be opened (printed; the UI runs without them).
int32_t Inf_InitEmbeddedFunction(void);
// Nothing to undo: the queues stay in place for the next start.
int32_t Inf_DeinitEmbeddedFunction(void);

#endif  // SCOPE_EMBEDDED_H
