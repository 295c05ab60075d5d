// talvexctl --id 0,3,7 and --id all: one command on several devices in turn.
#include <gtest/gtest.h>

#include <sstream>

#include "cli_harness.h"
#include "params/image_decode.h"

namespace talvex::cli {
namespace {

int Lines(const std::string& text, const std::string& start) {
  std::istringstream lines(text);
  int count = 0;
  for (std::string line; std::getline(lines, line);)
    count += line.starts_with(start) ? 1 : 0;
  return count;
}

double Out1Level(const Bench& bench, int id) {
  return params::LevelDb(bench.simulator->Device(id).LiveImage(), 2);
}

TEST(ManyDevicesTest, shouldSetTheLevelOfThreeDevicesFromOneCommand) {
  Bench bench({0, 3, 7});
  ASSERT_EQ(bench.Run({"--id", "0,3,7", "set", "out1.level", "-3"}), kExitOk) << bench.err.str();
  EXPECT_EQ(bench.out.str(),
            "ID 0: out1.level = -3\nID 3: out1.level = -3\nID 7: out1.level = -3\n");
  EXPECT_EQ(bench.err.str(), "");
  for (int id : {0, 3, 7})
    EXPECT_DOUBLE_EQ(Out1Level(bench, id), -3) << id;
}

TEST(ManyDevicesTest, shouldReportAVanishedDeviceOnceAndGoOnWithTheOthers) {
  Bench bench({0, 3, 7});
  // Device 3 answers its poll, its block read and two state reads, then leaves the line.
  bench.simulator->Faults(3).vanishAfterFrames = 5;
  EXPECT_EQ(bench.Run({"--id", "0,3,5,7", "set", "out1.level", "-6"}), kExitFailure);
  EXPECT_EQ(bench.out.str(), "ID 0: out1.level = -6\nID 7: out1.level = -6\n");
  EXPECT_EQ(bench.err.str(),
            "ID 3: Communication problem:  The system will be close the communication with this "
            "device\n"
            "ID 5: does not answer\n");
  EXPECT_DOUBLE_EQ(Out1Level(bench, 7), -6);
  EXPECT_DOUBLE_EQ(Out1Level(bench, 3), 0);
}

TEST(ManyDevicesTest, shouldSearchTheLineForAll) {
  Bench bench({2, 9});
  ASSERT_EQ(bench.Run({"--id", "all", "--json", "get", "out1.level"}), kExitOk);
  EXPECT_EQ(bench.out.str(),
            "{\"id\": 2, \"status\": 0, \"result\": {\"out1.level\": 0}}\n"
            "{\"id\": 9, \"status\": 0, \"result\": {\"out1.level\": 0}}\n");
  EXPECT_EQ(Lines(bench.err.str(), "100 %"), 1);  // the search's progress
  ASSERT_EQ(bench.Run({"--id", "all", "--json", "store", "1", "Gig"}), kExitOk);
  EXPECT_EQ(bench.out.str(),
            "{\"id\": 2, \"status\": 0, \"result\": \"1  used  Gig\"}\n"
            "{\"id\": 9, \"status\": 0, \"result\": \"1  used  Gig\"}\n");
  Bench empty({});
  EXPECT_EQ(empty.Run({"--id", "all", "lock"}), kExitFailure);
  EXPECT_NE(empty.err.str().find("talvexctl: no device answers on the line\n"), std::string::npos);
}

struct CommandCase {
  std::vector<std::string> args;
  std::string line;  // each device's result, after "ID n: "
};

TEST(ManyDevicesTest, shouldRunEachCommandOfTheListOnEveryDevice) {
  Bench bench({1, 4});
  ASSERT_EQ(bench.Run({"--file", bench.Path("show.tvx"), "new", "0"}), kExitOk);
  const CommandCase cases[] = {
      {{"get", "out2.eq3.gain"}, "out2.eq3.gain = 0"},
      {{"push", bench.Path("show.tvx")},
       "ID:# TALVEX - Last preset loaded: come from PC - show.tvx - Type: 2x2 WAY XOVER + SUB"},
      {{"store", "5", "Matinee"}, "5  used  Matinee"},
      {{"type", "2"}, "ID:# TALVEX - Preset loaded from device: Default - Type: 6 WAY XOVER"},
      {{"backup", bench.Path("rack.tvb")},
       bench.Path("rack-ID#.tvb") + ": \"SIM 2x2 0#\", 6 WAY XOVER, 1 of 24 preset slots used"},
      {{"lock"}, "System Lock"},
  };
  for (const CommandCase& c : cases) {
    std::vector<std::string> args = {"--id", "1,4"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    ASSERT_EQ(bench.Run(args), kExitOk) << c.args[0] << ": " << bench.err.str();
    std::string expected;
    for (const char* id : {"1", "4"}) {
      std::string line = c.line;
      for (std::size_t at; (at = line.find('#')) != std::string::npos;)
        line.replace(at, 1, id);
      expected += "ID " + std::string(id) + ": " + line + "\n";
    }
    EXPECT_EQ(bench.out.str(), expected) << c.args[0];
  }
  EXPECT_TRUE(bench.simulator->Device(4).Locked());
  EXPECT_EQ(bench.FileBytes(bench.Path("rack-ID1.tvb")).size(), 8066u);
  // store and type refuse a locked device: each device says so once, the run fails.
  EXPECT_EQ(bench.Run({"--id", "1,4", "store", "6", "x"}), kExitFailure);
  EXPECT_EQ(bench.err.str(), "ID 1: System Lock\nID 4: System Lock\n");
}

}  // namespace
}  // namespace talvex::cli
