// Reading a filter-settings text from a file, for the editor's equaliser import and talvexctl's
// `eq import`: one set of checks and one set of sentences for both.
#pragma once

#include <string>
#include <string_view>

namespace talvex::presets {

// A filter text is a few kilobytes; anything beyond this is not one and is refused unread.
inline constexpr std::size_t kLargestFilterText = 1 << 20;

struct EqTextRead {
  std::string text;
  std::string error;  // empty when `text` holds the file; else why not, beginning with the path
  bool Ok() const { return error.empty(); }
};

EqTextRead ReadEqTextFile(const std::string& path);

// Why a text without any filter line is not applied (it would only flatten the channel):
// "<name> holds no filter line (such as ...); nothing sent".
std::string NoFilterLineText(std::string_view name);

}  // namespace talvex::presets
