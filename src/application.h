// The application around the toolkit: theme and assets, start and exit.
#ifndef SCOPE_APPLICATION_H
#define SCOPE_APPLICATION_H

#include "awtk.h"

// Selects the "default" theme on the assets manager and preloads its style and font.
ret_t assets_init(void);
// True only for "default", the one theme shipped.
bool_t assets_has_theme(const char* name);
// Makes `name` the window manager's theme.
ret_t assets_set_global_theme(const char* name);

// Starts the device link, reports ready to the device application, opens the observation screen
// (its init waits for the device's records), reads the language configuration and shows the boot
// logo above it. `arg` is the optional third command-line argument (accepted, not used). Returns
// the result of opening the observation screen.
ret_t application_init(const char* arg);
// Logs the exit; the queues are left in place.
ret_t application_exit(void);

#endif  // SCOPE_APPLICATION_H
