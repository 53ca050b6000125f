// Deleting on a real card: exactly the medium asked for and its thumbnail go, nothing else; the
// cases that must remove nothing (another type, a path, a directory, a link, a thumbnail still
// in use, a medium that stays after a failed removal) say why; clearing the thumbnails.
#include <gtest/gtest.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <set>
#include <string>

#include "common/list.h"
#include "media_fixture.h"

namespace {

namespace fs = std::filesystem;
using media_test::Card;
using media_test::removed;
using page_test::printed;
using Set = std::set<std::string>;

class Deletion : public ::testing::Test {
 protected:
  void SetUp() override {
    card_.photo("20250614_090000.bmp");
    card_.photo("20250614_090100.bmp");
    card_.video("20250614_090200.mp4");
    card_.video("20250614_090300.mp4");
    before_ = card_.entries();
  }
  Set gone() const { return removed(before_, card_.entries()); }
  Card card_;
  Set before_;
};

TEST_F(Deletion, APhotoAndAVideoGoWithTheirThumbnailsOnly) {
  std::string out = printed([] { EXPECT_EQ(Remove_file(FILE_PHOTO, "20250614_090100.bmp"), 0); });
  EXPECT_EQ(out, "Delete filepath = " + card_.media("Picture/20250614_090100.bmp") + "\n");
  EXPECT_EQ(gone(), (Set{"Picture/20250614_090100.bmp", ".thumbnails/20250614_090100.jpg"}));
  EXPECT_EQ(card_.entries().size(), before_.size() - 2);

  before_ = card_.entries();
  EXPECT_EQ(Remove_file(FILE_VIDEO, "20250614_090200.mp4"), 0);
  EXPECT_EQ(gone(), (Set{"Video/20250614_090200.mp4", ".thumbnails/20250614_090200.jpg"}));
}

TEST_F(Deletion, AVideoWithoutThumbnailGoesAndTheMissingThumbnailIsSaid) {
  fs::remove(card_.media(".thumbnails/20250614_090300.jpg"));
  before_ = card_.entries();
  int32_t result = 0;
  const std::string out = printed([&] { result = Remove_file(FILE_VIDEO, "20250614_090300.mp4"); });
  EXPECT_NE(result, 0);
  EXPECT_EQ(gone(), Set{"Video/20250614_090300.mp4"});
  EXPECT_NE(out.find("Error: mp4 remove [" + card_.media(".thumbnails/20250614_090300.jpg") +
                     "] : No such file or directory\n"),
            std::string::npos)
      << out;
}

TEST_F(Deletion, AFileThatVanishedLeavesItsOrphanThumbnailToGo) {
  fs::remove(card_.media("Picture/20250614_090000.bmp"));  // the device application deleted it
  before_ = card_.entries();
  int32_t result = 0;
  const std::string out = printed([&] { result = Remove_file(FILE_PHOTO, "20250614_090000.bmp"); });
  EXPECT_EQ(result, 0);
  EXPECT_EQ(gone(), Set{".thumbnails/20250614_090000.jpg"});
  EXPECT_NE(out.find("Error: file remove  No such file or directory\n"), std::string::npos);
}

TEST_F(Deletion, AThumbnailSharedByAPhotoAndAVideoStaysUntilBothAreGone) {
  card_.photo("20250614_090500.bmp");
  card_.video("20250614_090500.mp4");  // the same stem: one thumbnail for both
  before_ = card_.entries();
  std::string out = printed([] { EXPECT_EQ(Remove_file(FILE_PHOTO, "20250614_090500.bmp"), 0); });
  EXPECT_EQ(gone(), Set{"Picture/20250614_090500.bmp"});
  EXPECT_NE(out.find("thumbnail " + card_.media(".thumbnails/20250614_090500.jpg") +
                     " kept: " + card_.media("Video/20250614_090500.mp4") + " uses it too"),
            std::string::npos)
      << out;
  EXPECT_EQ(Remove_file(FILE_VIDEO, "20250614_090500.mp4"), 0);
  EXPECT_EQ(gone(), (Set{"Picture/20250614_090500.bmp", "Video/20250614_090500.mp4",
                         ".thumbnails/20250614_090500.jpg"}));
}

TEST_F(Deletion, RequestsThatCouldMeanAnotherFileRemoveNothingAndSaySo) {
  fs::create_directories(
      card_.media("Picture/20250614_091000.bmp"));  // empty: remove() would take it
  sample_media::write_thumbnail(card_.media(".thumbnails/20250614_091000.jpg"), 3);
  fs::create_symlink("20250614_090000.bmp", card_.media("Picture/20250614_091100.bmp"));
  sample_media::write_thumbnail(card_.media(".thumbnails/20250614_091100.jpg"), 3);
  card_.file("keep.bmp");  // beside the media folders: what a relative path would reach
  before_ = card_.entries();
  const struct {
    int32_t type;
    const char* name;
    const char* says;
  } cases[] = {
      {3, "20250614_090000.bmp", "type 3 is neither a photo (1) nor a video (2); nothing removed"},
      {0, "20250614_090000.bmp", "type 0 is neither"},
      {FILE_PHOTO, "", "is not the name of a file of"},
      {FILE_PHOTO, "..", "is not the name of a file of"},
      {FILE_PHOTO, "../keep.bmp", "is not the name of a file of"},
      {FILE_VIDEO, "../Picture/20250614_090000.bmp", "is not the name of a file of"},
      {FILE_PHOTO, "20250614_091000.bmp", "not a regular file, nothing removed"},
      {FILE_PHOTO, "20250614_091100.bmp", "not a regular file, nothing removed"},
  };
  for (const auto& c : cases) {
    int32_t result = 0;
    const std::string out = printed([&] { result = Remove_file(c.type, c.name); });
    EXPECT_NE(result, 0) << c.name;
    EXPECT_NE(out.find(c.says), std::string::npos) << c.name << ": " << out;
    EXPECT_EQ(gone(), Set{}) << c.name;
  }
  EXPECT_EQ(Remove_file(FILE_PHOTO, nullptr), 0);
  EXPECT_EQ(gone(), Set{});
}

// Makes removing the file fail: an immutable file (root too), else a read-only directory.
class Unremovable {
 public:
  Unremovable(const std::string& file, const std::string& dir) : file_(file), dir_(dir) {
    const int fd = open(file.c_str(), O_RDONLY);
    int flags = 0;
    if (fd >= 0 && ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0) {
      flags |= FS_IMMUTABLE_FL;
      immutable_ = ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
    }
    if (fd >= 0) close(fd);
    if (!immutable_ && geteuid() != 0) read_only_ = chmod(dir.c_str(), 0555) == 0;
  }
  ~Unremovable() {
    if (immutable_) {
      const int fd = open(file_.c_str(), O_RDONLY);
      int flags = 0;
      if (fd >= 0 && ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0) {
        flags &= ~FS_IMMUTABLE_FL;
        ioctl(fd, FS_IOC_SETFLAGS, &flags);
      }
      if (fd >= 0) close(fd);
    }
    if (read_only_) chmod(dir_.c_str(), 0755);
  }
  bool works() const { return immutable_ || read_only_; }

 private:
  std::string file_, dir_;
  bool immutable_ = false, read_only_ = false;
};

TEST_F(Deletion, AMediumThatCannotBeRemovedKeepsItsThumbnail) {
  int32_t result = 0;
  std::string out;
  {
    Unremovable stuck(card_.media("Picture/20250614_090000.bmp"), card_.media("Picture"));
    if (!stuck.works()) GTEST_SKIP() << "this file system lets root remove any file";
    out = printed([&] { result = Remove_file(FILE_PHOTO, "20250614_090000.bmp"); });
  }
  EXPECT_NE(result, 0);
  EXPECT_EQ(gone(), Set{});
  EXPECT_NE(out.find("thumbnail kept: " + card_.media("Picture/20250614_090000.bmp") +
                     " is still on the card"),
            std::string::npos)
      << out;
}

TEST_F(Deletion, ClearingTheThumbnailsEmptiesOnlyTheirDirectory) {
  EXPECT_EQ(Remove_Matefile(), 0);
  EXPECT_EQ(gone(), (Set{".thumbnails/20250614_090000.jpg", ".thumbnails/20250614_090100.jpg",
                         ".thumbnails/20250614_090200.jpg", ".thumbnails/20250614_090300.jpg"}));
  EXPECT_TRUE(fs::is_directory(card_.media(".thumbnails")));

  // A thumbnail directory that is a link: the link goes, never what it points to.
  const std::string elsewhere = card_.root().string() + "/elsewhere";
  fs::create_directories(elsewhere);
  std::ofstream(elsewhere + "/keep.jpg") << "x";
  fs::remove_all(card_.media(".thumbnails"));
  fs::create_directory_symlink(elsewhere, card_.media(".thumbnails"));
  EXPECT_EQ(Remove_Matefile(), 0);
  EXPECT_TRUE(fs::exists(elsewhere + "/keep.jpg"));
  EXPECT_TRUE(fs::is_directory(fs::symlink_status(card_.media(".thumbnails"))));
}

}  // namespace
