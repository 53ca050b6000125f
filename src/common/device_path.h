// The device's absolute paths ("/usrdata/...", "/tmp/apps.version", "/dev/rtc0") resolved for
// this run.
//
// On the board SCOPE_UI_ROOT is unset and a path is used as it stands. On a desktop or in a test
// it names a directory that stands in for the device's root file system, so that the UI reads
// its language and version files, lists media and "sets the clock" inside that tree and never
// touches the host's own /usrdata, /tmp/apps.version or /dev/rtc0.
#ifndef SCOPE_COMMON_DEVICE_PATH_H
#define SCOPE_COMMON_DEVICE_PATH_H

#include <string>
#include <string_view>

// `absolute` prefixed by $SCOPE_UI_ROOT when that is set and not empty.
std::string device_path(std::string_view absolute);

// True when SCOPE_UI_ROOT redirects the device paths (a desktop run or a test): helpers that
// would change the host machine (its clock, its disks) only act inside the tree then.
bool device_root_is_set();

#endif  // SCOPE_COMMON_DEVICE_PATH_H
