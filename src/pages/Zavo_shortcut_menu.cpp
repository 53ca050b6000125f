// "Zavo_shortcut_menu": the quick image menu of the observation screen. Five items (scene,
// palette, brightness, contrast, detail enhancement), each an icon with its row of values;
// photo and range move between the items, function steps the chosen value (wrapping) and sends
// it at once. The header shows the item's title, and after a step the new value: the name of
// the scene or palette, or a bar for brightness, contrast and enhancement.
#include <array>
#include <cstdio>

#include "common/common_function.h"
#include "common/menu_rows.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/Zavo_menus.h"
#include "pages/system_pages.h"
#include "widgets/image.h"
#include "widgets/progress_bar.h"

// ---- state ----

uint8_t Zavo_menu_index = 1;
uint8_t colormap_menu_num = 1;
uint8_t brightness_menu_num = 1;
uint8_t contract_menu_num = 1;
uint8_t enchance_menu_num = 1;

namespace {

constexpr int ITEM_COUNT = 5;
constexpr int ITEM_SCENE = 1, ITEM_PALETTE = 2, ITEM_BRIGHTNESS = 3, ITEM_CONTRAST = 4,
              ITEM_ENHANCE = 5;

constexpr std::array<icon_row_t, ITEM_COUNT> ICONS = {{
    {"Zavo_image_scene", "Zavo_scene_def", "Zavo_scene_sel"},
    {"Zavo_image_pallette", "Zavo_pallette_def", "Zavo_pallette_sel"},
    {"Zavo_image_brightness", "Zavo_brightness_def", "Zavo_brightness_sel"},
    {"Zavo_image_contrast", "Zavo_contrast_def", "Zavo_contrast_sel"},
    {"Zavo_image_Irenchance", "Zavo_Irenchance_def", "Zavo_Irenchance_sel"},
}};
constexpr std::array<const char*, ITEM_COUNT> HIGHLIGHTS = {
    "Zavo_bg_scene_menu_sel",    "Zavo_bg_pallette_menu_sel", "Zavo_bg_brightness_menu_sel",
    "Zavo_bg_contrast_menu_sel", "Zavo_bg_enchance_menu_sel",
};
constexpr std::array<const char*, ITEM_COUNT> TITLES = {
    "Zavo_title_scene",    "Zavo_title_colormap",   "Zavo_title_brightness",
    "Zavo_title_contrast", "Zavo_title_Irenchance",
};

// What the header shows after a step, hidden while the selection moves: the two name headers,
// the three bar captions and the bar they share, and the enhancement panel (never shown).
constexpr const char* SCENE_HEADER = "Zavo_label_title_scene";
constexpr const char* PALETTE_HEADER = "Zavo_label_title_palette";
constexpr const char* PROGRESS_BAR = "progress_bar";
constexpr std::array<const char*, 3> PROGRESS_VIEWS = {
    "Zavo_progress_brightness", "Zavo_progress_contrast", "Zavo_progress_enhance"};
constexpr std::array<const char*, 7> VALUE_VIEWS = {
    SCENE_HEADER,
    PALETTE_HEADER,
    "Zavo_progress_brightness",
    "Zavo_progress_contrast",
    "Zavo_progress_enhance",
    PROGRESS_BAR,
    "view_Irenhance_display",
};

constexpr std::array<const char*, 4> SCENE_LABELS = {"Zavo_label_scene1", "Zavo_label_scene2",
                                                     "Zavo_label_scene3", "Zavo_label_scene4"};
// Scene names by value 1..4 (string keys; English "Scene1".."Scene4").
constexpr std::array<const char*, 4> SCENE_NAMES = {"menus_scene1", "menus_scene2", "menus_scene3",
                                                    "menus_scene4"};
constexpr std::array<const char*, 5> BRIGHTNESS_LABELS = {
    "Zavo_label_brightness1", "Zavo_label_brightness2", "Zavo_label_brightness3",
    "Zavo_label_brightness4", "Zavo_label_brightness5"};
constexpr std::array<const char*, 5> CONTRAST_LABELS = {
    "Zavo_label_contrast1", "Zavo_label_contrast2", "Zavo_label_contrast3", "Zavo_label_contrast4",
    "Zavo_label_contrast5"};
constexpr std::array<const char*, 5> ENHANCE_LABELS = {"Zavo_label_enhance1", "Zavo_label_enhance2",
                                                       "Zavo_label_enhance3", "Zavo_label_enhance4",
                                                       "Zavo_label_enhance5"};

// Palette positions 1..5 = s8IrPolarity 0..4. The option widgets of positions 1 and 2 are named
// crosswise (the white-hot swatch sits in "Zavo_image_blackhot"); the names are the layout's.
constexpr std::array<icon_row_t, 5> PALETTES = {{
    {"Zavo_image_blackhot", "Zavo_pallette_white_def", "Zavo_pallette_white_sel"},
    {"Zavo_image_whitehot", "Zavo_pallette_black_def", "Zavo_pallette_black_sel"},
    {"Zavo_image_redface", "Zavo_pallette_redface_def", "Zavo_pallette_redface_sel"},
    {"Zavo_image_redhot", "Zavo_pallette_red_def", "Zavo_pallette_red_sel"},
    {"Zavo_image_greenhot", "Zavo_pallette_green_def", "Zavo_pallette_green_sel"},
}};
// Palette names by position (string keys; English "White Hot", "Black Hot", "Red Hot",
// "Red Monochrome", "Green Monochrome").
constexpr std::array<const char*, 5> PALETTE_NAMES = {"menus_palette_white", "menus_palette_black",
                                                      "menus_palette_redface", "menus_palette_red",
                                                      "menus_palette_green"};

// A stored setting (a byte of the device's record) capped at `cap`; no lower bound.
uint8_t at_most(int value, int cap) {
  return static_cast<uint8_t>(value > cap ? cap : value);
}

int stored(char field) {
  return static_cast<unsigned char>(field);
}

widget_t* find(widget_t* win, const char* name) {
  return widget_lookup(win, name, TRUE);
}

void set_visible(widget_t* win, const char* name, bool visible) {
  widget_set_visible(find(win, name), visible ? TRUE : FALSE);
}

// ---- the value rows ----

// Brightness and contrast: five labels that read "1".."5" for values 1..5 and "6".."10" for
// 6..10; the label of the value is focused.
void draw_tens_row(widget_t* win, const std::array<const char*, 5>& labels, uint8_t value) {
  const int first = value > 5 ? 6 : 1;
  for (int i = 0; i < 5; ++i) {
    char text[8];
    tk_snprintf(text, sizeof(text), "%d", first + i);
    widget_set_text_utf8(find(win, labels[i]), text);
  }
  menu_focus_one_of(win, labels, value >= 1 && value <= 10 ? (value - 1) % 5 : -1);
}

void draw_value_row(widget_t* win, int item) {
  switch (item) {
    case ITEM_SCENE: menu_focus_one_of(win, SCENE_LABELS, stored(stDevStatus.s8IrScene) - 1); break;
    case ITEM_PALETTE: icon_rows_select(win, PALETTES, colormap_menu_num - 1); break;
    case ITEM_BRIGHTNESS: draw_tens_row(win, BRIGHTNESS_LABELS, brightness_menu_num); break;
    case ITEM_CONTRAST: draw_tens_row(win, CONTRAST_LABELS, contract_menu_num); break;
    case ITEM_ENHANCE: menu_focus_one_of(win, ENHANCE_LABELS, enchance_menu_num - 1); break;
    default: break;
  }
}

// ---- the header ----

void hide_value_views(widget_t* win) {
  for (const char* name : VALUE_VIEWS)
    set_visible(win, name, false);
}

void show_name(widget_t* win, const char* header, const char* key) {
  widget_set_tr_text(find(win, header), key);
  set_visible(win, header, true);
}

void show_bar(widget_t* win, int item, int percent) {
  set_visible(win, PROGRESS_VIEWS[item - ITEM_BRIGHTNESS], true);
  widget_t* bar = find(win, PROGRESS_BAR);
  progress_bar_set_value(bar, percent);
  widget_set_visible(bar, TRUE);
}

void select_item(widget_t* win, int item) {
  hide_value_views(win);
  icon_rows_select(win, ICONS, item - 1);
  show_only_one_of(win, HIGHLIGHTS, item - 1);
  show_only_one_of(win, TITLES, item - 1);
  draw_value_row(win, item);
}

// ---- stepping a value ----

void step_value(widget_t* win, int item) {
  show_only_one_of(win, TITLES, -1);
  switch (item) {
    case ITEM_SCENE: {
      const int scene = getIndexVal_cycle(1, 4, stored(stDevStatus.s8IrScene));
      stDevStatus.s8IrScene = static_cast<char>(scene);
      draw_value_row(win, item);
      show_name(win, SCENE_HEADER, SCENE_NAMES[scene - 1]);
      GUI_SEND_INFRARED_MSG(INFRARED_SCENE);
      break;
    }
    case ITEM_PALETTE:
      colormap_menu_num = static_cast<uint8_t>(getIndexVal_cycle(1, 5, colormap_menu_num));
      printf("colormap_menu_num = %d\n", colormap_menu_num);
      stDevStatus.s8IrPolarity = static_cast<char>(colormap_menu_num - 1);
      draw_value_row(win, item);
      show_name(win, PALETTE_HEADER, PALETTE_NAMES[colormap_menu_num - 1]);
      GUI_SEND_INFRARED_MSG(INFRARED_POLARITY);
      break;
    case ITEM_BRIGHTNESS:
      brightness_menu_num = static_cast<uint8_t>(getIndexVal_cycle(1, 10, brightness_menu_num));
      stDevStatus.s8IrBrightness = static_cast<char>(brightness_menu_num);
      draw_value_row(win, item);
      show_bar(win, item, brightness_menu_num * 10);
      GUI_SEND_INFRARED_MSG(INFRARED_LIGHT);
      break;
    case ITEM_CONTRAST:
      contract_menu_num = static_cast<uint8_t>(getIndexVal_cycle(1, 10, contract_menu_num));
      stDevStatus.s8IrContrast = static_cast<char>(contract_menu_num);
      draw_value_row(win, item);
      show_bar(win, item, contract_menu_num * 10);
      GUI_SEND_INFRARED_MSG(INFRARED_CONTRACT);
      break;
    case ITEM_ENHANCE:
      enchance_menu_num = static_cast<uint8_t>(getIndexVal_cycle(1, 5, enchance_menu_num));
      stDevStatus.s8IrEnchance = static_cast<char>(enchance_menu_num);
      draw_value_row(win, item);
      show_bar(win, item, enchance_menu_num * 20);
      GUI_SEND_INFRARED_MSG(INFRARED_ENHANCE);
      break;
    default: break;
  }
}

// ---- keys ----

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_PHOTO_S:
    case GUI_KEY_RANGE_S:
      Zavo_menu_index =
          static_cast<uint8_t>(getIndexVal(evt->key, 1, ITEM_COUNT, Zavo_menu_index, 0));
      select_item(win, Zavo_menu_index);
      break;
    case GUI_KEY_FUCTION_S: step_value(win, Zavo_menu_index); break;
    case GUI_KEY_FUCTION_L:
    case GUI_KEY_POWER_S: back_to_home(); break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_shortcut_menu_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  Zavo_menu_index = ITEM_SCENE;
  colormap_menu_num = at_most(stored(stDevStatus.s8IrPolarity) + 1, 5);
  brightness_menu_num = at_most(stored(stDevStatus.s8IrBrightness), 10);
  contract_menu_num = at_most(stored(stDevStatus.s8IrContrast), 10);
  enchance_menu_num = at_most(stored(stDevStatus.s8IrEnchance), 5);

  select_item(win, ITEM_SCENE);
  for (int item = ITEM_SCENE; item <= ITEM_ENHANCE; ++item)
    draw_value_row(win, item);

  // Opening the image menu takes the scope out of USB mode.
  if (stUIStatus.s8UsbMode == 1) {
    stUIStatus.s8UsbMode = 0;
    GUI_SEND_BASIC_FUNCTION_MSG(BASIC_USB_TYPE);
  }
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  puts("exit shortcut_menu_init!!");
  return RET_OK;
}
