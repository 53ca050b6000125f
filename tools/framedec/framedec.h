// The device link's frames, from the outside: build, check and decode them by name.
//
// This is the device application's view of the protocol, written independently of the UI's own
// msghandler so that each side checks the other. The device simulator prints every frame with it
// and the tests compare decoded frames with it. Command values come from msghandler.h; names of
// types, commands, sub-commands and keys are spelled as the protocol spells them.
#ifndef SCOPE_TOOLS_FRAMEDEC_H
#define SCOPE_TOOLS_FRAMEDEC_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace framedec {

// Which way a frame travels: the same type byte means different things in each direction.
enum class Direction { FROM_UI, TO_UI };

enum class FrameError { OK, TOO_SHORT, HEADER, CHECKSUM, END_SEC, END_FIR, LENGTH };

// Sum of bytes 0 .. L-1 modulo 256, L being byte 1.
uint8_t checksum(std::span<const uint8_t> frame);
// Checks a frame the way the UI does (header, checksum, 0xEB, 0xAA), plus L >= 6 and that the
// bytes given hold the whole frame.
FrameError check(std::span<const uint8_t> frame);
const char* error_name(FrameError error);

// aa L type command sub 00 values... checksum eb aa. At most 249 value bytes.
std::vector<uint8_t> build(uint8_t type, uint8_t command, uint8_t sub,
                           std::span<const uint8_t> values = {});

// "aa 07 10 03 00 00 00 c4 eb aa"
std::string hex(std::span<const uint8_t> bytes);
// Parses whitespace-separated hex bytes ("aa 07 ..." or "aa0710..."); nullopt on bad input.
std::optional<std::vector<uint8_t>> parse_hex(std::string_view text);

// One line naming the frame: family, command, then its values, two blanks between them,
// e.g. "RETICLE  RETICLE_TYPE  value=3" or "KEY  KEY_RANGE_S". A frame that fails the check
// decodes as "BAD FRAME (<error>)".
std::string decode(std::span<const uint8_t> frame, Direction direction);

// Names of the protocol's codes; nullptr when the code has none.
const char* type_name(uint8_t type);
const char* button_name(uint8_t button);  // KEY_* (byte 6 of a key frame)

// A button from its KEY_* name, its number, or a short alias ("up", "up-long", "up-pop",
// "down", "power", "photo", "function" (or "ok"), "range", each with "-long" and "-pop", and
// "photo+function", "range+function", "range+photo", "up+power").
std::optional<uint8_t> button_from_name(std::string_view name);

// True for the UI's seek frame (type 23, bytes 3 and 4 = 1 and TAP_REWIND_FORWARD, eight value
// bytes of the frame to show). "Play a.mp4" has the same five leading bytes (TAP_REPLAY is 1 and
// TAP_REPLAY_START is 3) and differs only in its values: a NUL-terminated name, whose length is
// seldom exactly eight bytes. At exactly eight, a name has no NUL before its last byte, while a
// frame number below 2^48 has a zero among its first seven bytes.
bool is_seek_frame(std::span<const uint8_t> frame);

// Collapses runs of blanks into one, trims both ends: decoded lines compare with this.
std::string normalize(std::string_view text);

}  // namespace framedec

#endif  // SCOPE_TOOLS_FRAMEDEC_H
