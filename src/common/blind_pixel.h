// What the three blind-pixel pages share when they leave: the repair cursor switched off and the
// observation reticle brought back.
#ifndef SCOPE_COMMON_BLIND_PIXEL_H
#define SCOPE_COMMON_BLIND_PIXEL_H

// stUIStatus.s8BlindSwitch = 0 and GUI_SEND_BLIND_MSG(BLIND_CURSOR_SWITCH).
void blind_pixel_cursor_off(void);

// The reticle comes back when the reticle menu's switch is on and the reticle is hidden:
// stDevStatus.s8ReticleSwitch = 1 and GUI_SEND_RETICLE_MSG(RETICLE_SWITCH). Nothing otherwise.
void blind_pixel_reticle_back(void);

#endif  // SCOPE_COMMON_BLIND_PIXEL_H
