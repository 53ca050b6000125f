// State the accessory pages keep between openings, and what they share (their inits are declared
// in page_list.h).
#ifndef SCOPE_PAGES_ACCESSORY_PAGES_H
#define SCOPE_PAGES_ACCESSORY_PAGES_H

#include <cstdint>

#include "awtk.h"

// ---- the marker option pages: selected row 1..3, every opening starts on row 1 ----
extern uint8_t Zavo_LRF_index;
extern uint8_t Zavo_Laser_index;
extern uint8_t Zavo_PIP_index;

// Paint the focus of `row` (1..3) on the page's window; any other row changes nothing.
void on_lrf_menu_display(widget_t* win, int row);
void on_laser_menu_display(widget_t* win, int row);
void on_PIP_menu_display(widget_t* win, int row);

// ---- the compass, wind meter and recoil pages: selected row, every opening starts on row 1 ----
extern uint8_t Zavo_compass_menu_index;
extern uint8_t Zavo_compass_1_index;
extern uint8_t Zavo_Anemometer_index;
extern uint8_t Zavo_wind_index;
extern uint8_t Zavo_Recoil_index;

// Repeating timers of the wind pages' connection read-out (0: none).
extern uint32_t timer_id_anemometer;
extern uint32_t timer_id_wind_page;

// Text key of the wind meter's state: off (its switch), not connected, or connected.
const char* wind_meter_state_text(void);

#endif  // SCOPE_PAGES_ACCESSORY_PAGES_H
