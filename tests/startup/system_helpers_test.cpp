// Directories, storage figures, the clock inside a device tree and the version file.
#include <sys/vfs.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <string>

#include "common/common_function.h"
#include "tree_fixture.h"

namespace {

using SystemHelpers = DeviceTreeTest;

TEST_F(SystemHelpers, CreateDirectoryMakesTheLastComponentOnlyWithATrailingSlash) {
  write("/usrdata/keep.txt", "x");
  EXPECT_EQ(Inf_CreateDirectory(at("/usrdata/media/Video").c_str()), 0);
  EXPECT_TRUE(std::filesystem::is_directory(at("/usrdata/media")));
  EXPECT_FALSE(std::filesystem::exists(at("/usrdata/media/Video")));
  EXPECT_EQ(Inf_CreateDirectory(at("/usrdata/media/Video/").c_str()), 0);
  EXPECT_TRUE(std::filesystem::is_directory(at("/usrdata/media/Video")));
  EXPECT_EQ(read("/usrdata/keep.txt"), "x");  // existing directories are kept as they are

  write("/usrdata/card", "a file in the way");
  const std::string out =
      printed_by([&] { EXPECT_EQ(Inf_CreateDirectory(at("/usrdata/card/Video/").c_str()), -1); });
  EXPECT_EQ(out, "mkdir <" + at("/usrdata/card/Video") + "> error\n");
}

// The volume Get_StorageData sees, through its statfs seam.
struct {
  uint64_t blocks, available;
  std::string asked;
} volume;

int fake_statfs(const char* path, struct statfs* out) {
  volume.asked = path;
  out->f_bsize = 4096;
  out->f_blocks = volume.blocks;
  out->f_bavail = volume.available;
  return 0;
}

TEST_F(SystemHelpers, StorageThresholdsAndFigures) {
  struct {
    uint64_t size_gib, free_mib;
    const char* expected;  // "<result>: <used> of <total>", in hundredths of a GiB
  } cases[] = {
      {128, 150, "1: 12785 of 12800"},  // under 200 MiB free: 1 whatever the card size
      {16, 200, "2: 1580 of 1600"},     // under 500 MiB: 2
      {16, 500, "0: 1551 of 1600"},
      {63, 1024, "0: 6200 of 6300"},  // the largest card that reads as one
      {64, 1024, "-1: 6300 of 6400"},
  };
  Get_StorageData_set_statfs(fake_statfs);
  uint32_t used = 0, total = 0;
  for (const auto& c : cases) {
    volume = {c.size_gib * 1024 * 1024 * 1024 / 4096, c.free_mib * 1024 * 1024 / 4096, ""};
    int32_t result = 0;
    const std::string out = printed_by([&] { result = Get_StorageData(&used, &total); });
    EXPECT_EQ(std::to_string(result) + ": " + std::to_string(used) + " of " + std::to_string(total),
              c.expected);
    EXPECT_EQ(out, result == -1 ? "ERROR: disksize read error(6300:6400)\n" : "");
  }
  EXPECT_EQ(volume.asked, at("/usrdata/media/"));
  EXPECT_EQ(Get_StorageData(nullptr, &total), -1);
  EXPECT_EQ(Get_StorageData(&used, nullptr), -1);

  // The real statfs, on a tree without usrdata/media.
  Get_StorageData_set_statfs(nullptr);
  const std::string out = printed_by([&] { EXPECT_EQ(Get_StorageData(&used, &total), -1); });
  EXPECT_NE(out.find("usrdata/media/> failed: No such file or directory"), std::string::npos);
}

TEST_F(SystemHelpers, ClocksAreSetInsideTheTreeAndNeverOnTheHost) {
  const std::string out = printed_by([] {
    EXPECT_EQ(rtc_set_time(9, 30, 0, 2025, 6, 14), -1);  // no dev/rtc0 yet
    EXPECT_EQ(sys_set_time(8, 0, 0, 2030, 1, 1), -1);    // no tmp/ yet
  });
  EXPECT_EQ(out, "open rtc_dev failed!\nsettimeofday failed\n");
  write("/dev/rtc0", "");
  write("/tmp/system_time", "");
  const time_t host_before = time(nullptr);
  EXPECT_EQ(rtc_set_time(23, 59, 5, 2031, 12, 31), 0);
  EXPECT_EQ(rtc_set_time(9, 30, 5, 2025, 6, 14), 0);
  EXPECT_EQ(read("/dev/rtc0"), "2025-06-14 09:30:05\n");
  EXPECT_EQ(sys_set_time(8, 15, 0, 2030, 2, 28), 0);
  EXPECT_EQ(read("/tmp/system_time"), "2030-02-28 08:15:00\n");
  EXPECT_LT(time(nullptr) - host_before, 60) << "the host clock moved";

  // Read back in UTC: the local time that was set, a moment later.
  struct tm* now = nullptr;
  ASSERT_EQ(sys_get_time(&now), 0);
  struct tm set = {0, 15, 8, 28, 1, 130, 0, 0, 0, 0, nullptr};
  EXPECT_NEAR(static_cast<double>(timegm(now)), static_cast<double>(mktime(&set)), 60);
  EXPECT_EQ(sys_get_time(nullptr), -1);
}

TEST_F(SystemHelpers, VersionFileFillsTheIdentificationTableAndRejectsBadValues) {
  struct {
    const char* text;
    const char* values;  // PN|SN|FPA1|FPA2|SW
    const char* printed;
  } cases[] = {
      {"PN:\t [ZVT35-6401]\nSN:\t [25061417]\nFPA1:\t [IRD640-12U-0417]\nFPA2:\t [VIS1080-P2]\n"
       "SW:\t [V3.1.4.0]\nUI:\t <inf_menu>\t (Jun 14 2025,09:30:12) [a41c2e9] on {main}\n",
       "ZVT35-6401|25061417|IRD640-12U-0417|VIS1080-P2|V3.1.4.0",
       "len========10\n__PN : ZVT35-6401\n"},
      {"PN: ]ZVT35[ SN: [2506]\n", "|2506|||",
       "len========249\nversion key <PN>: \"]\" before \"[\", value rejected\n__PN : \n"},
      {"PN [1234567890123456789] SN [12345678901234567890]\n", "1234567890123456789||||",
       "version key <SN>: value of 20 bytes does not fit its 20-byte slot, rejected\n"},
  };
  for (const auto& c : cases) {
    memset(Zavo_verArr, 'x', sizeof Zavo_verArr);  // stale values must not stay
    write("/tmp/apps.version", c.text);
    const std::string out =
        printed_by([&] { EXPECT_EQ(get_version(at("/tmp/apps.version").c_str()), 0); });
    EXPECT_NE(out.find(c.printed), std::string::npos) << out;
    std::string values = Zavo_verArr[0];
    for (int i = 1; i < 5; ++i)
      values += std::string("|") + Zavo_verArr[i];
    EXPECT_EQ(values, c.values) << c.text;
  }
  write("/tmp/apps.version", "");
  std::string out = printed_by([&] { EXPECT_EQ(get_version(at("/tmp/apps.version").c_str()), 0); });
  EXPECT_EQ(out, "apps.version read size=0\n");
  out = printed_by([&] { EXPECT_EQ(get_version(at("/tmp/none").c_str()), -1); });
  EXPECT_EQ(out, "apps.version open error\n");
}

}  // namespace
