// "Zavo_ballistic_menu": the ballistic calculator switch, the profile, the aim mark and three
// numbers of the current profile (wind, zero distance, sight height) edited in place; the bullet
// and weather pages open from it. Also the angle conversions and the device geometry record of
// the ballistic calculation.
#ifndef SCOPE_PAGES_ZAVO_BALLISTIC_MENU_H
#define SCOPE_PAGES_ZAVO_BALLISTIC_MENU_H

#include "common/status_records.h"

// Minutes of angle from milliradians and back, by the factor 3.44 the device application uses
// (coarser than the true 3.4377 on purpose: both sides must agree).
inline constexpr double MOA_PER_MRAD = 3.44;
double mrad2Moa(double mrad);
double moa2Mrad(double moa);

// The display and field of view handed to the ballistic calculation (not read by the pages).
extern DeviceInfo_ballistics deviceinfo;

#endif  // SCOPE_PAGES_ZAVO_BALLISTIC_MENU_H
