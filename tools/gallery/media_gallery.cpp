// media_gallery: pictures of the media pages (docs/screens/ through the `gallery` target): the
// file browser on its two tabs, empty, with the option panel, the delete confirmation and the
// damaged-video notice; the photo viewer; the video player playing, paused and winding; the
// second player window, which has no behaviour.
//
//   media_gallery BACKDROP.png OUTPUT_DIR
//
// The pages read a card written for the run in a temporary device tree (SCOPE_UI_ROOT); the
// device's answers (a video's length, the playback position) are set in the records and raised
// as the device link raises them.
#include <sys/statfs.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "common/common_function.h"
#include "common/status_records.h"
#include "gallery_pages.h"
#include "home_scene.h"
#include "media_writer.h"
#include "msg/msghandler.h"
#include "tk_testing.h"

namespace {

std::string g_card;   // device tree with the sample media
std::string g_empty;  // device tree with an empty card

// A 16 GiB card with 11.2 GiB free (the host disk is no card).
int card_statfs(const char*, struct statfs* out) {
  std::memset(out, 0, sizeof(*out));
  out->f_bsize = 4096;
  out->f_blocks = 16ull * 1024 * 1024 * 1024 / 4096;
  out->f_bavail = 11468ull * 256;
  out->f_bfree = out->f_bavail;
  return 0;
}

void use_tree(const std::string& tree) {
  setenv("SCOPE_UI_ROOT", tree.c_str(), 1);
}

void key(uint32_t code) {
  tk_testing_key_hit(code);
}

// The device has answered the length of the selected video: 1:05 at 30 frames a second.
void video_length(uint64_t frames) {
  stUIStatus.u64VideoTotalFrames = frames;
  stUIStatus.u8VideoCurrentFrames = 300;
  home_scene_raise(SCREEN_EVT_PLAY_LENGTH);
}

void position(uint64_t frames) {
  stUIStatus.u64VideoCurrentFrames = frames;
  home_scene_raise(SCREEN_EVT_PLAY_POSITION);
}

const page_shot SHOTS[] = {
    {"file_browser_videos", "Zavo_file_menu", [] { use_tree(g_card); },
     [] {
       key(GUI_KEY_FUCTION_S);
       key(GUI_KEY_PHOTO_S);
       video_length(1950);
     }},
    {"file_browser_photos", "Zavo_file_menu", [] { use_tree(g_card); },
     [] {
       key(GUI_KEY_PHOTO_S);
       key(GUI_KEY_FUCTION_S);
       for (int i = 0; i < 4; ++i)
         key(GUI_KEY_PHOTO_S);
     }},
    {"file_browser_empty", "Zavo_file_menu", [] { use_tree(g_empty); }, nullptr},
    {"file_browser_options", "Zavo_file_menu", [] { use_tree(g_card); },
     [] {
       key(GUI_KEY_PHOTO_S);
       key(GUI_KEY_FUCTION_S);
       key(GUI_KEY_FUCTION_S);
       key(GUI_KEY_PHOTO_S);
     }},
    {"file_browser_delete", "Zavo_file_menu", [] { use_tree(g_card); },
     [] {
       key(GUI_KEY_PHOTO_S);
       key(GUI_KEY_FUCTION_S);
       key(GUI_KEY_FUCTION_S);
       key(GUI_KEY_PHOTO_S);
       key(GUI_KEY_FUCTION_S);
     }},
    {"file_browser_damaged", "Zavo_file_menu", [] { use_tree(g_card); },
     [] {
       key(GUI_KEY_FUCTION_S);
       video_length(20);
       key(GUI_KEY_FUCTION_S);
       key(GUI_KEY_FUCTION_S);
     }},
    {"file_viewer_photo", "Zavo_file_menu", [] { use_tree(g_card); },
     [] {
       key(GUI_KEY_PHOTO_S);
       key(GUI_KEY_FUCTION_S);
       key(GUI_KEY_PHOTO_S);
       key(GUI_KEY_FUCTION_S);
       key(GUI_KEY_FUCTION_S);
     }},
    {"file_player_playing", "Zavo_file_menu", [] { use_tree(g_card); },
     [] {
       key(GUI_KEY_FUCTION_S);
       video_length(1950);
       key(GUI_KEY_FUCTION_S);
       key(GUI_KEY_FUCTION_S);
       tk_testing_advance(0);
       video_length(1950);
       position(717);
     }},
    {"file_player_paused", "Zavo_file_menu", [] { use_tree(g_card); },
     [] {
       key(GUI_KEY_FUCTION_S);
       video_length(1950);
       key(GUI_KEY_FUCTION_S);
       key(GUI_KEY_FUCTION_S);
       tk_testing_advance(0);
       video_length(1950);
       position(1210);
       key(GUI_KEY_FUCTION_S);
     }},
    {"file_player_forward", "Zavo_file_menu", [] { use_tree(g_card); },
     [] {
       key(GUI_KEY_FUCTION_S);
       video_length(1950);
       key(GUI_KEY_FUCTION_S);
       key(GUI_KEY_FUCTION_S);
       tk_testing_advance(0);
       video_length(1950);
       position(300);
       key(GUI_KEY_PHOTO_S);
     }},
    {"file_player_second", "Zavo_file_video_1", [] { use_tree(g_card); }, nullptr},
};

bool make_tree(std::string* tree, bool media) {
  char pattern[] = "/tmp/media-gallery-XXXXXX";
  if (mkdtemp(pattern) == nullptr) return false;
  *tree = pattern;
  const std::string card = *tree + "/usrdata/media";
  if (!media) {
    return sample_media::make_dirs(card + "/Picture") && sample_media::make_dirs(card + "/Video") &&
           sample_media::make_dirs(card + "/.thumbnails");
  }
  sample_media::set_options o;
  o.photos = 14;
  o.videos = 11;
  return sample_media::write_media_set(card, o);
}

}  // namespace

int main(int argc, char** argv) {
  int result = 1;
  Get_StorageData_set_statfs(card_statfs);
  if (make_tree(&g_card, true) && make_tree(&g_empty, false)) {
    result = page_gallery_main(argc, argv, "media_gallery", SHOTS);
  } else {
    std::fprintf(stderr, "media_gallery: cannot write the sample card\n");
  }
  unsetenv("SCOPE_UI_ROOT");
  std::error_code ec;
  for (const std::string& tree : {g_card, g_empty}) {
    if (!tree.empty()) std::filesystem::remove_all(tree, ec);
  }
  return result;
}
