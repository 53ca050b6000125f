// Directories, storage figures, the clock inside a device tree, whole-file reads and the
// version file.
#include <sys/stat.h>
#include <sys/vfs.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <string>

#include "common/common_function.h"
#include "tree_fixture.h"

namespace fs = std::filesystem;

namespace {

// ---- directories ----

using CreateDirectory = DeviceTreeTest;

TEST_F(CreateDirectory, LastComponentOnlyWithATrailingSlash) {
  write("/usrdata/keep.txt", "x");
  EXPECT_EQ(Inf_CreateDirectory(at("/usrdata/media/Video").c_str()), 0);
  EXPECT_TRUE(fs::is_directory(at("/usrdata/media")));
  EXPECT_FALSE(fs::exists(at("/usrdata/media/Video")));
  EXPECT_EQ(Inf_CreateDirectory(at("/usrdata/media/Video/").c_str()), 0);
  EXPECT_TRUE(fs::is_directory(at("/usrdata/media/Video")));
  EXPECT_EQ(read("/usrdata/keep.txt"), "x");  // existing directories are kept as they are
}

TEST_F(CreateDirectory, AFileInTheWayFailsWithTheDirectoryNamed) {
  write("/usrdata/media", "not a directory");
  const std::string out =
      printed_by([&] { EXPECT_EQ(Inf_CreateDirectory(at("/usrdata/media/Video/").c_str()), -1); });
  EXPECT_NE(out.find("mkdir <" + at("/usrdata/media/Video") + "> error"), std::string::npos) << out;
  EXPECT_EQ(Inf_CreateDirectory(nullptr), -1);
}

// ---- storage, through the statfs seam ----

struct fake_volume {
  uint64_t block = 4096;
  uint64_t blocks = 0;
  uint64_t available = 0;
  int result = 0;
  std::string asked;
};
fake_volume volume;

int fake_statfs(const char* path, struct statfs* out) {
  volume.asked = path;
  out->f_bsize = volume.block;
  out->f_blocks = volume.blocks;
  out->f_bavail = volume.available;
  if (volume.result != 0) errno = ENOENT;
  return volume.result;
}

class Storage : public DeviceTreeTest {
 protected:
  void SetUp() override {
    DeviceTreeTest::SetUp();
    volume = fake_volume{};
    Get_StorageData_set_statfs(fake_statfs);
  }
  void TearDown() override {
    Get_StorageData_set_statfs(nullptr);
    DeviceTreeTest::TearDown();
  }
  // A card of `size_gib` with `free_mib` available.
  static void card(uint64_t size_gib, uint64_t free_mib) {
    volume.blocks = size_gib * 1024 * 1024 * 1024 / volume.block;
    volume.available = free_mib * 1024 * 1024 / volume.block;
  }
  uint32_t used = 0, total = 0;
};

TEST_F(Storage, ThresholdsAndFigures) {
  struct {
    uint64_t size_gib, free_mib;
    int32_t result;
    uint32_t total, used;
  } cases[] = {
      {32, 10 * 1024, 0, 3200, 2200},  // hundredths of a GiB
      {128, 150, 1, 12800, 12785},     // under 200 MiB free: 1 whatever the card size
      {8, 199, 1, 800, 780},           //
      {16, 200, 2, 1600, 1580},        // under 500 MiB: 2
      {128, 499, 2, 12800, 12751},     //
      {16, 500, 0, 1600, 1551},        //
      {63, 1024, 0, 6300, 6200},       // the largest card that reads as one
      {128, 10 * 1024, -1, 12800, 11800},
  };
  for (const auto& c : cases) {
    card(c.size_gib, c.free_mib);
    int32_t result = 0;
    const std::string out = printed_by([&] { result = Get_StorageData(&used, &total); });
    EXPECT_EQ(result, c.result) << c.size_gib << " GiB, " << c.free_mib << " MiB free";
    EXPECT_EQ(total, c.total) << c.size_gib << " GiB";
    EXPECT_EQ(used, c.used) << c.size_gib << " GiB, " << c.free_mib << " MiB free";
    EXPECT_EQ(out.find("ERROR: disksize read error") != std::string::npos, c.result == -1) << out;
  }
  EXPECT_EQ(volume.asked, at("/usrdata/media/"));
  card(128, 10 * 1024);
  const std::string out = printed_by([&] { Get_StorageData(&used, &total); });
  EXPECT_EQ(out, "ERROR: disksize read error(11800:12800)\n");
}

TEST_F(Storage, BadArgumentsAndUnreadableVolume) {
  card(32, 1024);
  EXPECT_EQ(Get_StorageData(nullptr, &total), -1);
  EXPECT_EQ(Get_StorageData(&used, nullptr), -1);
  volume.result = -1;
  const std::string out = printed_by([&] { EXPECT_EQ(Get_StorageData(&used, &total), -1); });
  EXPECT_NE(out.find("statfs <" + at("/usrdata/media/") + "> failed"), std::string::npos) << out;
}

TEST_F(DeviceTreeTest, StorageOfAMissingMediaFolderIsAnError) {
  // The real statfs, on a tree without usrdata/media.
  uint32_t used = 0, total = 0;
  const std::string out = printed_by([&] { EXPECT_EQ(Get_StorageData(&used, &total), -1); });
  EXPECT_NE(out.find("No such file or directory"), std::string::npos) << out;
}

// ---- clock inside the tree ----

class Clock : public DeviceTreeTest {
 protected:
  void SetUp() override {
    DeviceTreeTest::SetUp();
    setenv("TZ", "UTC", 1);
    tzset();
  }
};

TEST_F(Clock, RtcTimeGoesToTheTreesDeviceFile) {
  std::string out = printed_by([] { EXPECT_EQ(rtc_set_time(9, 30, 0, 2025, 6, 14), -1); });
  EXPECT_NE(out.find("open rtc_dev failed!"), std::string::npos) << out;
  write("/dev/rtc0", "");
  EXPECT_EQ(rtc_set_time(23, 59, 5, 2031, 12, 31), 0);
  EXPECT_EQ(rtc_set_time(9, 30, 5, 2025, 6, 14), 0);
  EXPECT_EQ(read("/dev/rtc0"), "2025-06-14 09:30:05\n");
}

TEST_F(Clock, SystemTimeIsRecordedAndReportedBackWithoutTouchingTheHost) {
  const time_t host_before = time(nullptr);
  write("/tmp/.keep", "");
  EXPECT_EQ(sys_set_time(8, 15, 0, 2030, 2, 28), 0);
  EXPECT_EQ(read("/tmp/system_time"), "2030-02-28 08:15:00\n");
  EXPECT_LT(time(nullptr) - host_before, 60) << "the host clock moved";

  struct tm* now = nullptr;
  ASSERT_EQ(sys_get_time(&now), 0);
  ASSERT_NE(now, nullptr);
  EXPECT_EQ(now->tm_year + 1900, 2030);
  EXPECT_EQ(now->tm_mon + 1, 2);
  EXPECT_EQ(now->tm_mday, 28);
  EXPECT_EQ(now->tm_hour, 8);
  EXPECT_LE(now->tm_min - 15, 1);
  EXPECT_EQ(sys_get_time(nullptr), -1);
}

TEST_F(Clock, SystemTimeFailsWhenTheTreeCannotRecordIt) {
  // No tmp/ folder in the tree.
  const std::string out = printed_by([] { EXPECT_EQ(sys_set_time(8, 0, 0, 2030, 1, 1), -1); });
  EXPECT_NE(out.find("settimeofday failed"), std::string::npos) << out;
}

// ---- whole files ----

TEST_F(DeviceTreeTest, ReadFileReturnsTheBytesFollowedByANul) {
  write("/usrdata/a.bin", std::string("ab\0cd", 5));
  char* data = ReadFile(at("/usrdata/a.bin").c_str());
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(std::string(data, 5), std::string("ab\0cd", 5));
  EXPECT_EQ(data[5], '\0');
  free(data);

  std::string out = printed_by([&] { EXPECT_EQ(ReadFile(at("/usrdata/none").c_str()), nullptr); });
  EXPECT_NE(out.find("cannot read"), std::string::npos);
  out = printed_by([&] { EXPECT_EQ(ReadFile(root_.c_str()), nullptr); });  // a directory
  EXPECT_NE(out.find("cannot read"), std::string::npos);
}

// ---- version file ----

class VersionFile : public DeviceTreeTest {
 protected:
  void SetUp() override {
    DeviceTreeTest::SetUp();
    memset(Zavo_verArr, 0, sizeof Zavo_verArr);
  }
  int32_t load(const std::string& text, std::string* printed) {
    write("/tmp/apps.version", text);
    int32_t result = 0;
    *printed = printed_by([&] { result = get_version(at("/tmp/apps.version").c_str()); });
    return result;
  }
};

TEST_F(VersionFile, FillsTheIdentificationTable) {
  std::string out;
  ASSERT_EQ(load("PN:\t [ZVT35-6401]\nSN:\t [25061417]\nFPA1:\t [IRD640-12U-0417]\n"
                 "FPA2:\t [VIS1080-P2]\nSW:\t [V3.1.4.0]\n"
                 "UI:\t <inf_menu>\t (Jun 14 2025,09:30:12) [a41c2e9] on {main}\n",
                 &out),
            0);
  EXPECT_STREQ(Zavo_verArr[0], "ZVT35-6401");
  EXPECT_STREQ(Zavo_verArr[1], "25061417");
  EXPECT_STREQ(Zavo_verArr[2], "IRD640-12U-0417");
  EXPECT_STREQ(Zavo_verArr[3], "VIS1080-P2");
  EXPECT_STREQ(Zavo_verArr[4], "V3.1.4.0");
  EXPECT_NE(out.find("__FPA1 : IRD640-12U-0417\n"), std::string::npos) << out;
  EXPECT_NE(out.find("len========10"), std::string::npos) << out;
}

TEST_F(VersionFile, InvertedBracketsAreRejectedBeforeCopying) {
  std::string out;
  ASSERT_EQ(load("PN: ]ZVT35[ SN: [2506]\n", &out), 0);
  EXPECT_STREQ(Zavo_verArr[0], "");
  EXPECT_NE(out.find("version key <PN>: \"]\" before \"[\", value rejected"), std::string::npos)
      << out;
  EXPECT_STREQ(Zavo_verArr[1], "2506");
}

TEST_F(VersionFile, ValuesMustFitTheirTwentyByteSlot) {
  std::string out;
  ASSERT_EQ(load("PN [1234567890123456789] SN [12345678901234567890]\n", &out), 0);
  EXPECT_STREQ(Zavo_verArr[0], "1234567890123456789");  // 19 bytes and the terminator
  EXPECT_STREQ(Zavo_verArr[1], "");
  EXPECT_STREQ(Zavo_verArr[2], "") << "the neighbouring slot was overwritten";
  EXPECT_NE(out.find("version key <SN>: value of 20 bytes does not fit"), std::string::npos) << out;
}

TEST_F(VersionFile, MissingKeysAndBracketsLeaveSlotsEmpty) {
  strcpy(Zavo_verArr[4], "old");
  std::string out;
  ASSERT_EQ(load("PN [A1] FPA1 no brackets here", &out), 0);
  EXPECT_STREQ(Zavo_verArr[0], "A1");
  EXPECT_STREQ(Zavo_verArr[2], "");
  EXPECT_STREQ(Zavo_verArr[4], "") << "a stale value stayed";
  EXPECT_NE(out.find("version key <SW>: no [value] found"), std::string::npos) << out;
}

TEST_F(VersionFile, EmptyAndMissingFiles) {
  std::string out;
  EXPECT_EQ(load("", &out), 0);
  EXPECT_NE(out.find("apps.version read size=0"), std::string::npos) << out;
  out = printed_by([&] { EXPECT_EQ(get_version(at("/tmp/none").c_str()), -1); });
  EXPECT_NE(out.find("apps.version open error"), std::string::npos) << out;
}

}  // namespace
