// Pictures of menu pages for docs/screens/: each shot starts from the records of a scope in the
// field, opens the observation screen over the thermal backdrop, opens its page by name on top
// (as the keys would) and drives keys and screen events on the test clock before the picture.
//
// An area's gallery is one file tools/gallery/<area>_gallery.cpp (built and run by the
// `gallery` target without a CMake edit):
//   int main(int argc, char** argv) { return page_gallery_main(argc, argv, "settings_gallery",
//                                                               SHOTS); }
#ifndef TOOLS_GALLERY_GALLERY_PAGES_H
#define TOOLS_GALLERY_GALLERY_PAGES_H

#include <functional>
#include <span>

struct page_shot {
  const char* file;                   // picture name, without ".png"
  const char* page;                   // window opened by name over the observation screen
  std::function<void()> before_open;  // records the page starts from (may be empty)
  std::function<void()> after_open;   // keys and events while it shows (may be empty)
  void* ctx = nullptr;                // context handed to the page's init
};

// The records of a charged scope in the field (what the observation screen gallery starts from).
void page_gallery_field_records(void);

// usage: <program> BACKDROP.png OUTPUT_DIR. Writes OUTPUT_DIR/<file>.png for every shot; 0 when
// all were written, 1 otherwise, 2 for a usage error.
int page_gallery_main(int argc, char** argv, const char* program, std::span<const page_shot> shots);

#endif  // TOOLS_GALLERY_GALLERY_PAGES_H
