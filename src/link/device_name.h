// A device's own 16-character name, kept in its memory at 368..383, one character per address:
// read one byte per exchange for the device list, written one byte per exchange when the user
// names the device.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "link/link.h"

namespace talvex::link {

inline constexpr std::string_view kDemoDeviceName = "  Device Demo   ";
inline constexpr std::size_t kDeviceNameLength = 16;

// The text of a device's row in the device list: the name, "  ID:", the ID in decimal digits.
std::string DeviceRowText(std::string_view name, int deviceId);

// Appends blanks up to 16 characters; a longer text is left as it is (the name box limits it).
std::string PadDeviceName(std::string_view text);

// Sixteen reads with command 16 (address 368 + k), taking the character from reply byte 8.
// nullopt when an exchange goes unanswered: the name is not known this time.
std::optional<std::string> ReadDeviceName(Link& link, int deviceId);

enum class NameWrite {
  Written,  // all sixteen characters were acknowledged
  Skipped,  // nothing was sent (demo mode, link off, sending suspended)
  Stopped,  // an exchange failed: the characters before it stay written, the rest were not sent
};

// Pads the text and writes it with sixteen commands 17 (p1, p2 = address 368 + i, p5 = the
// character), stopping at the first failure.
NameWrite WriteDeviceName(Link& link, int deviceId, std::string_view text);

}  // namespace talvex::link
