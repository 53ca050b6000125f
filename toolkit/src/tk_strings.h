// String tables: the strings XML source format and the per-language .bin tables of the real
// toolkit. Used by the locale at run time, by tools/strgen and by the tests.
#ifndef TK_SRC_STRINGS_H
#define TK_SRC_STRINGS_H

#include <map>
#include <string>
#include <vector>

namespace tk {

// language ("en_US") -> key -> text
using StringTables = std::map<std::string, std::map<std::string, std::string>>;

struct StringsSource {
  StringTables tables;
  // Where each key was first defined ("file.xml"), to name both places of a duplicate.
  std::map<std::string, std::string> key_origin;
  // Clear error lines (malformed file, a key defined twice, a string without a name).
  std::vector<std::string> errors;
};

// Merges the <string name="KEY"><language name="en_US">Text</language>...</string> elements of
// one XML document into `into`. `origin` names the file in error lines. False on a parse error.
bool strings_parse_xml(const std::string& xml, const std::string& origin, StringsSource* into);
// Every *.xml of `dir`, in name order.
bool strings_load_dir(const std::string& dir, StringsSource* into);
// The .bin layout: uint16 version (0), uint16 count, count + 1 pairs of uint32 (key offset,
// value offset from the start of the table; the last pair is padding), then the NUL-terminated
// strings; pairs sorted by strcmp of the key; little-endian.
std::string strings_table_bin(const std::map<std::string, std::string>& table);
// Binary search in a .bin table; false when the key is absent or the table is malformed.
bool strings_table_lookup(const std::string& bin, const char* key, std::string* out);

}  // namespace tk

#endif  // TK_SRC_STRINGS_H
