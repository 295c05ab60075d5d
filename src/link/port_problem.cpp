#include "link/port_problem.h"

#if defined(__unix__) || defined(__APPLE__)
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#define TALVEX_POSIX_PORTS 1
#endif

namespace talvex::link {

PortAccess CheckPortAccess(const std::string& path) {
#ifdef TALVEX_POSIX_PORTS
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0)
    return errno == ENOENT ? PortAccess::Missing : PortAccess::Unknown;
  if (::access(path.c_str(), R_OK | W_OK) == 0) return PortAccess::Allowed;
  return errno == EACCES ? PortAccess::Denied : PortAccess::Unknown;
#else
  (void)path;
  return PortAccess::Unknown;
#endif
}

std::optional<std::string> OwnerGroup(const std::string& path) {
#ifdef TALVEX_POSIX_PORTS
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) return std::nullopt;
  // Joining a group helps only when its members may read and write the port.
  if ((info.st_mode & (S_IRGRP | S_IWGRP)) != (S_IRGRP | S_IWGRP)) return std::nullopt;
  const group* owner = ::getgrgid(info.st_gid);
  if (!owner || !owner->gr_name) return std::nullopt;
  return std::string(owner->gr_name);
#else
  (void)path;
  return std::nullopt;
#endif
}

std::string DescribePortProblem(PortProblem problem, const std::optional<std::string>& group) {
  switch (problem) {
    case PortProblem::NotFound:
      return "the port does not exist: is the adapter plugged in, and is the name right?";
    case PortProblem::Busy:
      return "the port is busy: another program has it open; close that program and try again";
    case PortProblem::NeedsPermission:
      if (group)
        return "you may not use the port: it belongs to the group \"" + *group +
               "\"; join it (sudo usermod -aG " + *group + " $USER), then log out and in again";
      return "you may not use the port: ask the computer's administrator for access to it";
    case PortProblem::Other:
      break;
  }
  return "the system refused to open it";
}

std::string PortWarning(const std::string& path) {
  switch (CheckPortAccess(path)) {
    case PortAccess::Missing:
      return DescribePortProblem(PortProblem::NotFound, std::nullopt);
    case PortAccess::Denied:
      return DescribePortProblem(PortProblem::NeedsPermission, OwnerGroup(path));
    case PortAccess::Unknown:
    case PortAccess::Allowed:
      break;
  }
  return {};
}

}  // namespace talvex::link
