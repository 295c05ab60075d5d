// talvexctl eq import/export and diff, on preset files and on simulated devices.
#include <gtest/gtest.h>

#include "cli_harness.h"
#include "params/image_decode.h"
#include "presets/preset_file.h"

namespace talvex::cli {
namespace {

constexpr const char* kFilterText =
    "Filter Settings file\n"
    "Preamp: -2.0 dB\n"
    "Filter  1: ON  PK       Fc   45.80 Hz  Gain   3.00 dB  Q  1.000\n"
    "Filter  2: ON  HS 6dB   Fc   8000 Hz   Gain  -2.00 dB\n"
    "Filter  3: ON  AP       Fc   1000 Hz   Q 0.7\n"
    "Filter  4: OFF None\n";

class FileCommandsTest : public ::testing::Test {
 protected:
  FileCommandsTest() {
    WriteText("rew.txt", kFilterText);
    EXPECT_EQ(bench.Run({"--file", Path("a.tvx"), "new", "1"}), kExitOk);
  }

  std::string Path(const char* name) const { return bench.Path(name); }
  void WriteText(const char* name, const std::string& text) {
    bench.WriteFile(Path(name), {text.begin(), text.end()});
  }
  params::ParamImage Record(const char* name) const {
    params::ParamImage record{};
    EXPECT_EQ(presets::ReadPresetFile(Path(name), record), "");
    return record;
  }

  Bench bench{{0, 1}};
};

TEST_F(FileCommandsTest, shouldReportBeforeItWritesTheImportedBands) {
  ASSERT_EQ(bench.Run({"--file", Path("a.tvx"), "eq", "import", "out2", Path("rew.txt")}), kExitOk)
      << bench.err.str();
  EXPECT_EQ(bench.out.str(),
            "skipped: line 1: no filter settings, ignored (\"Filter Settings file\")\n"
            "skipped: line 2, Preamp: -2 dB not applied: the channel's level is left as it is (a "
            "preamp keeps a PC's digital path from clipping; on the processor the level sets the "
            "balance between the ways)\n"
            "rounded: line 3, Filter 1: Fc 45.80 Hz -> 46.2 Hz, Q 1.000 -> 0.992 (width 1.60)\n"
            "does not fit: line 5, Filter 3: an all-pass filter (AP): the device's bands are "
            "bells and shelves\n"
            "skipped: line 6, Filter 4: OFF, skipped\n"
            "out2: filters onto bands 1 .. 2; bands 3 .. 7 flattened to 0 dB (frequency and "
            "width kept)\n"
            "written to " +
                Path("a.tvx") + "\n");
  const params::ParamImage record = Record("a.tvx");
  const int first = params::GlobalBand(3, 0);
  EXPECT_DOUBLE_EQ(params::BandFrequency(record, first), 46.2);
  EXPECT_EQ(params::BandWidthIndex(record, first + 1), 1);  // "HiSHF -6dB"
  EXPECT_DOUBLE_EQ(params::BandGainDb(record, first + 1), -2);

  // The export reads back as it was written.
  ASSERT_EQ(bench.Run({"--file", Path("a.tvx"), "eq", "export", "out2"}), kExitOk);
  const std::string exported = bench.out.str();
  EXPECT_EQ(exported.substr(0, exported.find('\n', exported.find('\n') + 1) + 1),
            "# TALVEX equaliser: out2 of a.tvx\n"
            "Filter  1: ON  PK       Fc    46.2 Hz  Gain   3.0 dB  Q 0.992\n");
  WriteText("out2.txt", exported);
  ASSERT_EQ(bench.Run({"--file", Path("a.tvx"), "eq", "import", "out5", Path("out2.txt")}),
            kExitOk);
  EXPECT_EQ(bench.out.str(), "out5: filters onto bands 1 .. 7\nwritten to " + Path("a.tvx") + "\n");
  const params::ParamImage twice = Record("a.tvx");
  for (int k = 0; k < 7; ++k)
    for (int byte = 0; byte < 3; ++byte)
      EXPECT_EQ(twice[params::EqBandStart[params::GlobalBand(3, k)] + byte],
                twice[params::EqBandStart[params::GlobalBand(6, k)] + byte]);
}

TEST_F(FileCommandsTest, shouldSendOneCommandPerBandAndNothingOnADryRun) {
  ASSERT_EQ(bench.Run({"eq", "import", "inB", Path("rew.txt"), "--dry-run"}), kExitOk);
  EXPECT_NE(bench.out.str().find("inB: filters onto bands 1 .. 2; bands 3 .. 5 flattened"),
            std::string::npos);
  EXPECT_NE(bench.out.str().find("nothing sent (--dry-run)\n"), std::string::npos);
  EXPECT_EQ(bench.simulator->Device(0).FramesHandled(protocol::code::kEqBand), 0);

  ASSERT_EQ(bench.Run({"eq", "import", "inB", Path("rew.txt")}), kExitOk);
  EXPECT_NE(bench.out.str().find("5 band commands sent\n"), std::string::npos);
  EXPECT_EQ(bench.simulator->Device(0).FramesHandled(protocol::code::kEqBand), 5);
  const auto& live = bench.simulator->Device(0).LiveImage();
  EXPECT_DOUBLE_EQ(params::BandGainDb(live, params::GlobalBand(1, 0)), 3);

  // With the outputs linked, Out 1's twin takes every band too.
  ASSERT_EQ(bench.Run({"--id", "1", "set", "output.link", "on"}), kExitOk);
  ASSERT_EQ(bench.Run({"--id", "1", "eq", "import", "out1", Path("rew.txt")}), kExitOk);
  EXPECT_EQ(bench.simulator->Device(1).FramesHandled(protocol::code::kEqBand), 14);
  EXPECT_DOUBLE_EQ(
      params::BandFrequency(bench.simulator->Device(1).LiveImage(), params::GlobalBand(3, 0)),
      46.2);
}

TEST_F(FileCommandsTest, shouldRefuseATextWithoutFiltersBeforeReadingTheDevice) {
  WriteText("notes.txt", "Room EQ V5.20\nno filters here\n");
  EXPECT_EQ(bench.Run({"eq", "import", "out1", Path("notes.txt")}), kExitFailure);
  EXPECT_EQ(bench.err.str(), "talvexctl: " + Path("notes.txt") +
                                 " holds no filter line (such as \"Filter  1: ON  PK  Fc 100 Hz  "
                                 "Gain -3 dB  Q 1\"); nothing sent\n");
  EXPECT_EQ(bench.framesOfLastRun, 0);
}

TEST_F(FileCommandsTest, shouldListEveryDifferingParameterByNameWithBothValues) {
  ASSERT_EQ(bench.Run({"--file", Path("b.tvx"), "new", "1"}), kExitOk);
  for (const std::vector<std::string>& set : {std::vector<std::string>{"out3.level", "-4.5"},
                                              {"out6.name", "Sub L"},
                                              {"inA.eq2.type", "ls12"},
                                              {"delay.unit", "m"},
                                              {"out1.delay", "2"}}) {
    std::vector<std::string> args = {"--file", Path("b.tvx"), "set"};
    args.insert(args.end(), set.begin(), set.end());
    ASSERT_EQ(bench.Run(args), kExitOk) << set[0];
  }
  ASSERT_EQ(bench.Run({"diff", Path("a.tvx"), Path("b.tvx")}), kExitOk);
  EXPECT_EQ(bench.out.str(),
            "delay.unit: ms -> m\n"
            "inA.eq2.q: 0.3 -> none\n"
            "inA.eq2.type: bell -> ls12\n"
            "out1.delay: 0 -> 2.001\n"
            "out3.level: 0 -> -4.5\n"
            "out6.name: High-B -> \"Sub L\"\n");
  EXPECT_EQ(bench.err.str(), "6 parameters differ\n");
  ASSERT_EQ(bench.Run({"--json", "diff", Path("a.tvx"), Path("b.tvx")}), kExitOk);
  EXPECT_EQ(bench.out.str().substr(0, 88),
            "[{\"name\": \"delay.unit\", \"a\": \"ms\", \"b\": \"m\"}, {\"name\": \"inA.eq2.q\", "
            "\"a\": 0.3, \"b\": null}");
  ASSERT_EQ(bench.Run({"diff", Path("a.tvx"), Path("a.tvx")}), kExitOk);
  EXPECT_EQ(bench.out.str(), "");
  EXPECT_EQ(bench.err.str(), "no parameter differs\n");
}

TEST_F(FileCommandsTest, shouldCompareAFileWithTheDevice) {
  ASSERT_EQ(bench.Run({"--id", "1", "set", "out2.eq7.gain", "-6"}), kExitOk);
  ASSERT_EQ(bench.Run({"--file", Path("zero.tvx"), "new", "0"}), kExitOk);
  ASSERT_EQ(bench.Run({"--id", "1", "diff", Path("zero.tvx")}), kExitOk);
  EXPECT_EQ(bench.out.str(), "out2.eq7.gain: 0 -> -6\n");
  // A file of another type differs in its type's defaults (sources, names, release times).
  ASSERT_EQ(bench.Run({"--id", "1", "diff", Path("a.tvx")}), kExitOk);
  EXPECT_NE(bench.out.str().find("out3.name: Mid-A -> High-A\n"), std::string::npos);
}

}  // namespace
}  // namespace talvex::cli
