// The observation screen as the gallery, the benchmarks and the tests drive it: the host toolkit
// on its test clock, the device link on a private pair of queues, the shared records in the state
// of a scope that has just reported its first full status, the page opened by name and screen
// events raised the way the device link raises them.
#ifndef TOOLS_GALLERY_HOME_SCENE_H
#define TOOLS_GALLERY_HOME_SCENE_H

#include "awtk.h"

// Starts (or, when already started, resets) the toolkit on its test clock, returns the device
// link's hand-off to a fresh start and starts the link on the queue pair key_base + 2 * (process
// id), key_base + 1 + 2 * (process id), so that parallel runs and a running UI never meet. False,
// with a line on standard error, when the link cannot start.
bool home_scene_start(int key_base);
// Removes the link's queues.
void home_scene_stop(void);
// Every shared record zeroed and the page's own state forgotten; then the first full status has
// arrived, the zoom is 1.00, and every zero's cursor and both markers sit on the screen point
// (640, 512).
void home_scene_records(void);
// Opens "Zavo_home_page_1" through the navigator (its init draws from the records) and runs the
// open sequence. The window, or NULL.
widget_t* home_scene_open(void);
// Runs the main loop until the device link has handed everything to the UI thread.
void home_scene_settle(void);
// Raises screen event EVT_USER_START + offset as the device link does, and runs it.
void home_scene_raise(int offset);

#endif  // TOOLS_GALLERY_HOME_SCENE_H
