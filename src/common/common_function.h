// Helpers shared by the pages: menu index stepping, language matching and small system helpers
// (directories, storage use, clock, files, the version file).
#ifndef SCOPE_COMMON_COMMON_FUNCTION_H
#define SCOPE_COMMON_COMMON_FUNCTION_H

#include <cstdint>
#include <ctime>

#include "common/status_records.h"

// ---- menu stepping ----
// Steps `current` up or down by `key` (see the key codes in msghandler.h), wrapping at min/max.
int32_t getIndexVal(int32_t key, int32_t min, int32_t max, int32_t current, int32_t mode);
// Always steps up, wrapping to min past max.
int32_t getIndexVal_cycle(int32_t min, int32_t max, int32_t current);

// ---- language ----
int32_t Inf_GetCustomConfigs(Inf_CustConfig* config);
int32_t Inf_getLanguageInfo(const char* name);
int32_t Inf_CheckStringMatch(const char* string, const char* pattern);

// ---- system helpers ----
int32_t Inf_CreateDirectory(const char* path);
int32_t Get_StorageData(uint32_t* used, uint32_t* total);
int32_t rtc_set_time(int hour, int minute, int second, int year, int month, int day);
int32_t sys_set_time(int hour, int minute, int second, int year, int month, int day);
int32_t sys_get_time(struct tm** result);
char* ReadFile(const char* path);
int32_t get_version(const char* path);
void ver_info_get(const char* text, const char* key, int length, char* out);

// Identification table: keys "PN", "SN", "FPA1", "FPA2", "SW" and their values, 20 bytes a slot.
extern char Zavo_vername[5][20];
extern char Zavo_verArr[5][20];

#endif  // SCOPE_COMMON_COMMON_FUNCTION_H
