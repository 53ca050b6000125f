// fontface: writes one face of a TrueType/OpenType font file as a standalone font file.
//
//   fontface <font.ttc|font.ttf|font.otf> <face index> <out.ttf>
//
// The resource tree needs fonts/default.ttf as a plain font file, which every font loader reads
// (a collection is not). Debian ships the UI's font as a collection, so the build writes its
// first face here. A collection's face becomes a file of its own: the face's table directory,
// then its tables, each 4-byte aligned, with offsets and checksums rewritten and the whole-file
// checksum in `head` made right. A plain font file (face 0) is copied unchanged. The output is
// written to a temporary file and renamed, so a reader never sees half a font.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint32_t tag(const char (&t)[5]) {
  return (uint32_t{static_cast<uint8_t>(t[0])} << 24) |
         (uint32_t{static_cast<uint8_t>(t[1])} << 16) |
         (uint32_t{static_cast<uint8_t>(t[2])} << 8) | uint32_t{static_cast<uint8_t>(t[3])};
}

constexpr uint32_t kCollection = tag("ttcf");
constexpr uint32_t kHead = tag("head");
// sfnt versions of a single font: TrueType outlines, CFF outlines, old Apple TrueType.
constexpr uint32_t kTrueType = 0x00010000;
constexpr uint32_t kOpenTypeCff = tag("OTTO");
constexpr uint32_t kAppleTrueType = tag("true");
// The font file's checksum, with head.checkSumAdjustment included, must come to this.
constexpr uint32_t kChecksumMagic = 0xB1B0AFBA;
constexpr size_t kDirectoryHeader = 12;
constexpr size_t kTableRecord = 16;
constexpr size_t kAdjustmentOffset = 8;  // of checkSumAdjustment within `head`

struct Failure {
  std::string what;
};

uint32_t be32(const Bytes& b, size_t at) {
  if (at + 4 > b.size()) throw Failure{"truncated at byte " + std::to_string(at)};
  return (uint32_t{b[at]} << 24) | (uint32_t{b[at + 1]} << 16) | (uint32_t{b[at + 2]} << 8) |
         uint32_t{b[at + 3]};
}

uint16_t be16(const Bytes& b, size_t at) {
  if (at + 2 > b.size()) throw Failure{"truncated at byte " + std::to_string(at)};
  return static_cast<uint16_t>((b[at] << 8) | b[at + 1]);
}

void put32(Bytes& b, size_t at, uint32_t v) {
  b[at] = static_cast<uint8_t>(v >> 24);
  b[at + 1] = static_cast<uint8_t>(v >> 16);
  b[at + 2] = static_cast<uint8_t>(v >> 8);
  b[at + 3] = static_cast<uint8_t>(v);
}

// Sum of the big-endian 32-bit words of b[from, from + len), the last word zero-padded.
uint32_t checksum(const Bytes& b, size_t from, size_t len) {
  uint32_t sum = 0;
  for (size_t i = 0; i < len; i += 4) {
    uint32_t word = 0;
    for (size_t k = 0; k < 4; ++k) {
      word = (word << 8) | (i + k < len ? b[from + i + k] : 0u);
    }
    sum += word;
  }
  return sum;
}

bool single_font(uint32_t version) {
  return version == kTrueType || version == kOpenTypeCff || version == kAppleTrueType;
}

// The standalone font of the face whose table directory starts at `dir` in `in`.
Bytes extract(const Bytes& in, size_t dir) {
  const uint32_t version = be32(in, dir);
  if (!single_font(version)) throw Failure{"face has no TrueType or OpenType table directory"};
  const uint16_t tables = be16(in, dir + 4);
  if (tables == 0) throw Failure{"face has no tables"};

  size_t size = kDirectoryHeader + kTableRecord * tables;
  for (uint16_t i = 0; i < tables; ++i) {
    const size_t rec = dir + kDirectoryHeader + kTableRecord * i;
    const uint64_t offset = be32(in, rec + 8);
    const uint64_t length = be32(in, rec + 12);
    if (offset + length > in.size()) throw Failure{"a table lies past the end of the file"};
    size += (length + 3) & ~size_t{3};
  }

  Bytes out(size, 0);
  // The directory header and the records (tags and checksums kept, offsets rewritten).
  std::copy_n(in.begin() + static_cast<std::ptrdiff_t>(dir),
              kDirectoryHeader + kTableRecord * tables, out.begin());
  size_t at = kDirectoryHeader + kTableRecord * tables;
  size_t head_at = 0;
  bool has_head = false;
  for (uint16_t i = 0; i < tables; ++i) {
    const size_t rec = kDirectoryHeader + kTableRecord * i;
    const uint32_t offset = be32(out, rec + 8);
    const uint32_t length = be32(out, rec + 12);
    std::copy_n(in.begin() + offset, length, out.begin() + static_cast<std::ptrdiff_t>(at));
    put32(out, rec + 8, static_cast<uint32_t>(at));
    if (be32(out, rec) == kHead) {
      if (length < kAdjustmentOffset + 4) throw Failure{"the head table is too short"};
      head_at = at;
      has_head = true;
    }
    at += (length + 3) & ~size_t{3};
  }
  // Every table's checksum is recomputed (head's with checkSumAdjustment 0, as the format
  // defines it; some collections record it otherwise), then the whole file's adjustment.
  if (has_head) put32(out, head_at + kAdjustmentOffset, 0);
  for (uint16_t i = 0; i < tables; ++i) {
    const size_t rec = kDirectoryHeader + kTableRecord * i;
    put32(out, rec + 4, checksum(out, be32(out, rec + 8), be32(out, rec + 12)));
  }
  if (has_head) {
    put32(out, head_at + kAdjustmentOffset, kChecksumMagic - checksum(out, 0, out.size()));
  }
  return out;
}

Bytes face_of(const Bytes& in, unsigned long face) {
  const uint32_t version = be32(in, 0);
  if (version == kCollection) {
    const uint32_t faces = be32(in, 8);
    if (face >= faces) {
      throw Failure{"the collection has " + std::to_string(faces) + " faces, no face " +
                    std::to_string(face)};
    }
    return extract(in, be32(in, 12 + 4 * face));
  }
  if (!single_font(version)) throw Failure{"not a TrueType or OpenType font"};
  if (face != 0) throw Failure{"a single font has only face 0"};
  extract(in, 0);  // checks that every table is in the file
  return in;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: fontface <font.ttc|font.ttf|font.otf> <face index> <out.ttf>\n");
    return 2;
  }
  const std::string source = argv[1];
  const std::string target = argv[3];
  char* end = nullptr;
  const unsigned long face = std::strtoul(argv[2], &end, 10);
  if (end == argv[2] || *end != '\0') {
    std::fprintf(stderr, "fontface: bad face index \"%s\"\n", argv[2]);
    return 2;
  }
  std::ifstream file(source, std::ios::binary);
  if (!file) {
    std::fprintf(stderr, "fontface: cannot read %s\n", source.c_str());
    return 1;
  }
  const Bytes in((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  Bytes out;
  try {
    out = face_of(in, face);
  } catch (const Failure& f) {
    std::fprintf(stderr, "fontface: %s: %s\n", source.c_str(), f.what.c_str());
    return 1;
  }
  const std::string temporary = target + ".part";
  {
    std::ofstream o(temporary, std::ios::binary | std::ios::trunc);
    o.write(reinterpret_cast<const char*>(out.data()), static_cast<std::streamsize>(out.size()));
    if (!o.flush()) {
      std::fprintf(stderr, "fontface: cannot write %s\n", temporary.c_str());
      std::remove(temporary.c_str());
      return 1;
    }
  }
  if (std::rename(temporary.c_str(), target.c_str()) != 0) {
    std::fprintf(stderr, "fontface: cannot rename %s to %s\n", temporary.c_str(), target.c_str());
    std::remove(temporary.c_str());
    return 1;
  }
  return 0;
}
