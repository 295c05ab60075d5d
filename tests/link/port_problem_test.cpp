#include "link/port_problem.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "link/line.h"
#include "link/link.h"

namespace talvex::link {
namespace {

namespace fs = std::filesystem;

TEST(PortProblemTest, shouldSayInPlainWordsWhyAPortDidNotOpen) {
  const struct {
    PortProblem problem;
    std::optional<std::string> group;
    const char* text;
  } cases[] = {
      {PortProblem::NotFound, std::nullopt,
       "the port does not exist: is the adapter plugged in, and is the name right?"},
      {PortProblem::Busy, std::nullopt,
       "the port is busy: another program has it open; close that program and try again"},
      {PortProblem::NeedsPermission, "dialout",
       "you may not use the port: it belongs to the group \"dialout\"; join it (sudo usermod -aG "
       "dialout $USER), then log out and in again"},
      {PortProblem::NeedsPermission, std::nullopt,
       "you may not use the port: ask the computer's administrator for access to it"},
      {PortProblem::Other, std::nullopt, "the system refused to open it"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(DescribePortProblem(c.problem, c.group), c.text);
}

// The group is read from the device file itself: the one whose members may use it.
TEST(PortProblemTest, shouldNameTheGroupThatOwnsTheDeviceFileOnlyWhenItsMembersMayUseIt) {
  const fs::path file = fs::temp_directory_path() / ("talvex-port-" + std::to_string(getpid()));
  std::ofstream(file) << "";
  const gid_t gid = getegid();
  const group* own = getgrgid(gid);
  ASSERT_NE(own, nullptr);
  ASSERT_EQ(chown(file.c_str(), static_cast<uid_t>(-1), gid), 0);
  const struct {
    mode_t mode;
    std::optional<std::string> group;
  } cases[] = {{0660, own->gr_name}, {0600, std::nullopt}, {0640, std::nullopt}};
  for (const auto& c : cases) {
    ASSERT_EQ(chmod(file.c_str(), c.mode), 0);
    EXPECT_EQ(OwnerGroup(file.string()), c.group) << std::oct << c.mode;
  }
  EXPECT_EQ(CheckPortAccess(file.string()), PortAccess::Allowed);
  fs::remove(file);
  EXPECT_EQ(CheckPortAccess(file.string()), PortAccess::Missing);
  EXPECT_EQ(OwnerGroup(file.string()), std::nullopt);
  EXPECT_EQ(PortWarning(file.string()), DescribePortProblem(PortProblem::NotFound, std::nullopt));
  EXPECT_EQ(PortWarning("/dev/null"), "");  // nothing known to be wrong
}

TEST(PortProblemTest, shouldGiveTheReasonWhenTheLinkCannotOpenAMissingPort) {
  Line line = MakeLine(SerialPort{"/dev/ttyTALVEXmissing"});
  Link link(*line.transport, *line.clock);
  EXPECT_FALSE(link.OpenPort());
  EXPECT_EQ(link.LastOpenError().find("cannot open serial port /dev/ttyTALVEXmissing: the port "
                                      "does not exist: is the adapter plugged in"),
            0u)
      << link.LastOpenError();
}

}  // namespace
}  // namespace talvex::link
