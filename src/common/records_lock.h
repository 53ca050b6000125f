// The one lock over the shared records.
//
// stDevStatus, stUIStatus, info, result_ball, IR_Cursor and s_stCustConfig are written by the
// device link's listener thread (an inbound frame) and read and written by the user interface
// thread (every page, timer and sender). The two never touch them at the same time:
//  - the user interface thread holds the records all the time it runs, so every handler, timer
//    and idle reads them as if the process had one thread;
//  - the listener thread holds them while it applies one frame (frame check, handler, the
//    answers it sends), and so does what the link reads of the window stack (the window on top).
// They change hands only where one of the two threads waits:
//  - the gate: a listener with a frame to apply that finds the records held asks the user
//    interface thread for them with one idle (idle_queue). At its next main-loop pass that
//    thread lets the listener apply the frames already waiting on the queue, then takes the
//    records back. While the link's hand-off is full the gate stays shut (see
//    records_set_gate_limit), so the device's frames wait on their queue instead of piling up.
//  - records_sleep_ms: a thread that sleeps (the observation screen's first-status wait, the
//    pause after the update notice) sleeps with the records released.
//
// The lock lives in the application, not in a toolkit, so that the board's toolkit build keeps
// it: all it needs of the toolkit is idle_queue.
#ifndef SCOPE_COMMON_RECORDS_LOCK_H
#define SCOPE_COMMON_RECORDS_LOCK_H

#include <cstdint>

// ---- the user interface thread ----

// The calling thread becomes the user interface thread and holds the records from now on (it
// waits for a frame being applied to end). Inf_InitMsgEvent calls it before it starts the
// listener, so the thread that starts the link is the one that owns the records.
void records_claim(void);
// The user interface thread gives the records up for good (the link is closed): a listener
// that waits goes through. Inf_DeinitMsgEvent calls it.
void records_disclaim(void);

// ---- the listener thread ----

// Waits until the listener may apply a frame, asking the user interface thread for the records
// when it holds them; then holds them until records_leave.
void records_enter(void);
void records_leave(void);
// No further frame waits on the queue: the user interface thread takes the records back.
void records_listener_idle(void);

// ---- either thread ----

// Sleeps `ms` (the toolkit's sleep_ms) with the records released, and holds them again after:
// on the user interface thread a listener already waiting first applies the frames waiting on
// its queue, so that a wait of 0 ms (or one the test clock makes instant) lets it in too. On a
// thread that does not hold the records it only sleeps.
void records_sleep_ms(uint32_t ms);
// True when the calling thread holds the records.
bool records_held(void);

// The gate opens only while `full` (called on the user interface thread) says false, and
// closes between two frames once it says true: the link's hand-off to the user interface
// thread tells so. Null: no limit. Callable during static initialisation.
void records_set_gate_limit(bool (*full)(void));

// Frames a listener applies in one opening of the gate at most.
inline constexpr int RECORDS_GATE_FRAMES = 256;

#endif  // SCOPE_COMMON_RECORDS_LOCK_H
