// A temporary device tree (SCOPE_UI_ROOT) with the card's media folders, real files written into
// it, and the media pages on it: the page fixture's link, keys and clock over that card.
#ifndef SCOPE_TESTS_MEDIA_MEDIA_FIXTURE_H
#define SCOPE_TESTS_MEDIA_MEDIA_FIXTURE_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "common/list.h"
#include "media_writer.h"
#include "page_fixture.h"
#include "pages/Zavo_file_menu.h"

namespace media_test {

namespace fs = std::filesystem;

// The card of one test: <root>/usrdata/media/{Picture,Video,.thumbnails}, removed afterwards.
class Card {
 public:
  Card() {
    char pattern[] = "/tmp/scope-media-XXXXXX";
    if (mkdtemp(pattern) == nullptr) std::abort();
    root_ = pattern;
    setenv("SCOPE_UI_ROOT", pattern, 1);
    for (const char* dir : {"Picture", "Video", ".thumbnails"})
      fs::create_directories(media(dir));
  }
  ~Card() {
    unsetenv("SCOPE_UI_ROOT");
    std::error_code ec;
    fs::remove_all(root_, ec);
  }
  Card(const Card&) = delete;
  Card& operator=(const Card&) = delete;

  // Host path of a file of the card: media("Picture/a.bmp").
  std::string media(const std::string& relative) const {
    return root_.string() + "/usrdata/media/" + relative;
  }
  // A file of `size` bytes (its content does not matter to the catalogue).
  void file(const std::string& relative, size_t size = 54) const {
    std::ofstream(media(relative), std::ios::binary) << std::string(size, 'B');
  }
  // A photo (a real 64 x 52 bitmap) with its thumbnail (a real JPEG) unless told otherwise.
  void photo(const std::string& name, bool thumbnail = true, unsigned seed = 1) const {
    sample_media::write_photo(media("Picture/" + name), seed, 64, 52);
    if (thumbnail) sample_media::write_thumbnail(media(".thumbnails/" + stem(name) + ".jpg"), seed);
  }
  // A video of `frames` frames at 30 a second, with its thumbnail unless told otherwise.
  void video(const std::string& name, uint64_t frames = 900, bool thumbnail = true) const {
    sample_media::write_video(media("Video/" + name), frames, 30);
    if (thumbnail) sample_media::write_thumbnail(media(".thumbnails/" + stem(name) + ".jpg"), 7);
  }
  bool has(const std::string& relative) const {
    std::error_code ec;
    return fs::symlink_status(media(relative), ec).type() != fs::file_type::not_found;
  }
  // Every entry of the tree (relative to the media folder), for before/after comparisons.
  std::set<std::string> entries() const {
    std::set<std::string> out;
    const fs::path base = media("");
    for (auto it = fs::recursive_directory_iterator(base); it != fs::recursive_directory_iterator();
         ++it) {
      out.insert(fs::relative(it->path(), base).string());
    }
    return out;
  }
  static std::string stem(const std::string& name) { return name.substr(0, name.size() - 4); }

  const fs::path& root() const { return root_; }

 private:
  fs::path root_;
};

// Of `before`, what is missing from `after`.
inline std::set<std::string> removed(const std::set<std::string>& before,
                                     const std::set<std::string>& after) {
  std::set<std::string> out;
  for (const auto& e : before)
    if (!after.count(e)) out.insert(e);
  return out;
}

// The media pages over a card. The catalogue array is the browser's and outlives a page: it is
// released after each test.
class MediaPageTest : public page_test::PageTest {
 protected:
  void TearDown() override {
    PageTest::TearDown();
    std::free(Zavo_file_info);
    Zavo_file_info = nullptr;
    Zavo_photo_num = Zavo_video_num = 0;
  }

  // The browser opened by name; with `photos`, moved to the photo tab.
  widget_t* browse(bool photos = false) {
    widget_t* win = open("Zavo_file_menu");
    if (photos) key(GUI_KEY_PHOTO_S);
    sent_frames();
    return win;
  }
  std::vector<std::string> grid_names() const {
    std::vector<std::string> out;
    for (int i = 1; i <= 9; ++i)
      out.push_back(text(("label_FileName" + std::to_string(i)).c_str()));
    return out;
  }

  Card card_;
};

}  // namespace media_test

#endif  // SCOPE_TESTS_MEDIA_MEDIA_FIXTURE_H
