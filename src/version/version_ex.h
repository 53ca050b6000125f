// The user interface's version line, appended to the device's version file at start.
#ifndef SCOPE_VERSION_VERSION_EX_H
#define SCOPE_VERSION_VERSION_EX_H

#include <string>

// "UI:\t <inf_menu>\t (<build date>,<build time>) [<revision>] on {<branch>}"
std::string version_line(void);

// Appends version_line() to /tmp/apps.version (under SCOPE_UI_ROOT when set) with the shell and
// prints it followed by ".".
void version_info_init(void);

#endif  // SCOPE_VERSION_VERSION_EX_H
