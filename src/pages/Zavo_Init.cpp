// The start page's module. It owns the process-wide status records: they are defined here, once,
// and declared for every other module in common/status_records.h. They start zeroed; the device
// application fills them with whole-record loads once the user interface reports ready.
#include "common/status_records.h"

Inf_DevStatus stDevStatus;
Inf_UIStatus stUIStatus;
Inf_CustConfig s_stCustConfig;
Info_ballistics info[5];
Result_ballistics result_ball;
Inf_IR_Cursor IR_Cursor;
