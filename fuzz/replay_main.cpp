// Replays every file of the given corpus folders through a libFuzzer harness once.
// Used by builds without libFuzzer, so the seed corpus is exercised by every test run.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
  size_t runs = 0;
  for (int i = 1; i < argc; ++i) {
    std::error_code ec;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[i], ec)) {
      if (!entry.is_regular_file()) continue;
      std::ifstream in(entry.path(), std::ios::binary);
      std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), {});
      LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
      ++runs;
    }
    if (ec) {
      std::fprintf(stderr, "replay: cannot read corpus %s: %s\n", argv[i], ec.message().c_str());
      return 1;
    }
  }
  std::printf("replayed %zu inputs\n", runs);
  return runs > 0 ? 0 : 1;
}
