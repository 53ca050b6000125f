// Leaving the blind-pixel pages: see blind_pixel.h.
#include "common/blind_pixel.h"

#include "common/status_records.h"
#include "msg/msghandler.h"

void blind_pixel_cursor_off(void) {
  stUIStatus.s8BlindSwitch = 0;
  GUI_SEND_BLIND_MSG(BLIND_CURSOR_SWITCH);
}

void blind_pixel_reticle_back(void) {
  if (stDevStatus.s8ReticleMenuSwitch == 1 && stDevStatus.s8ReticleSwitch == 0) {
    stDevStatus.s8ReticleSwitch = 1;
    GUI_SEND_RETICLE_MSG(RETICLE_SWITCH);
  }
}
