// Why a serial port cannot be opened, in plain words for the person in front of the rack: the
// port does not exist, another program has it, or the user may not use it (on Linux: is not in
// the group that owns the device file, named from the file itself). Shown beside the system's
// own "COM not found, do you want to continue in demo mode?" and in talvexctl's error.
#pragma once

#include <optional>
#include <string>

namespace talvex::link {

enum class PortProblem {
  NotFound,         // no such port: unplugged, or a wrong name
  Busy,             // another program holds it
  NeedsPermission,  // the user may not open it
  Other,            // anything else the system reported
};

// What the operating system lets this user do with the port's device file, without opening
// it (opening a port can reset the device behind it). Unknown where the system cannot tell
// (Windows, or a name that is no file).
enum class PortAccess { Unknown, Missing, Denied, Allowed };
PortAccess CheckPortAccess(const std::string& path);

// The group that owns the device file ("dialout", "uucp") when its members may read and write
// it (joining any other group would not help); nullopt where the system has no groups.
std::optional<std::string> OwnerGroup(const std::string& path);

// The plain reason, without the port's name: "the port does not exist: ...".
std::string DescribePortProblem(PortProblem problem, const std::optional<std::string>& group);

// What to say before the port is opened, from CheckPortAccess alone; empty when nothing is
// known to be wrong.
std::string PortWarning(const std::string& path);

}  // namespace talvex::link
