#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <sstream>

#include "cli/cli.h"
#include "cli_harness.h"
#include "link/sim_transport.h"

namespace talvex::cli {
namespace {

namespace fs = std::filesystem;

struct Row {
  std::string magnitude;
  std::string phase;
};

// talvexctl on a simulated line that outlives each run, and a preset file of its own.
class ResponseCommandTest : public ::testing::Test {
 protected:
  ResponseCommandTest() {
    hooks_.makeLine = [this](const link::PortSpec&) { return LineOn(simulator_); };
    fs::create_directories(dir_);
    fs::remove(file_);
  }
  ~ResponseCommandTest() override { fs::remove_all(dir_); }

  int Run(std::vector<std::string> args) {
    out_.str("");
    err_.str("");
    return RunCli(args, out_, err_, hooks_);
  }

  // The CSV rows by frequency; checks the header and one row per grid point.
  std::map<int, Row> Rows() {
    std::istringstream csv(out_.str());
    std::string line;
    std::getline(csv, line);
    EXPECT_EQ(line, "hz,magnitude_db,phase_deg");
    std::map<int, Row> rows;
    while (std::getline(csv, line)) {
      const auto first = line.find(',');
      const auto second = line.find(',', first + 1);
      rows[std::stoi(line.substr(0, first))] = {line.substr(first + 1, second - first - 1),
                                                line.substr(second + 1)};
    }
    EXPECT_EQ(rows.size(), 1705u);
    return rows;
  }

  std::shared_ptr<sim::SimLine> simulator_ = std::make_shared<sim::SimLine>(std::vector<int>{0});
  CliHooks hooks_;
  std::ostringstream out_;
  std::ostringstream err_;
  fs::path dir_ = fs::temp_directory_path() / ("talvex_response_" + std::to_string(::getpid()));
  std::string file_ = (dir_ / "f.tvx").string();
};

TEST_F(ResponseCommandTest, shouldPrintAButterworthLowPassOfAPresetFile) {
  ASSERT_EQ(Run({"--file", file_, "new"}), kExitOk);
  ASSERT_EQ(Run({"--file", file_, "set", "out1.lp.freq", "500"}), kExitOk);
  ASSERT_EQ(Run({"--file", file_, "set", "out1.lp.type", "6"}), kExitOk);  // -24dB/oct Bw
  ASSERT_EQ(Run({"--file", file_, "response", "--channel", "out1", "--part", "lp"}), kExitOk);
  std::map<int, Row> rows = Rows();
  EXPECT_EQ(rows[10].magnitude, "0.00");
  EXPECT_EQ(rows[500].magnitude, "-3.01");
  EXPECT_EQ(rows[500].phase, "-180.00");
  EXPECT_EQ(rows[250].magnitude, "-0.02");
  EXPECT_EQ(rows[799].phase, "-259.54");  // unwrapped
  EXPECT_EQ(rows.count(800), 0u);
  // The channel: the filter plus a flat EQ, its phase folded; the high-pass alone is flat.
  ASSERT_EQ(Run({"--file", file_, "response", "--channel", "out1"}), kExitOk);
  rows = Rows();
  EXPECT_EQ(rows[500].magnitude, "-3.01");
  EXPECT_EQ(rows[799].phase, "100.46");
  ASSERT_EQ(Run({"--file", file_, "response", "--channel", "out1", "--part", "hp"}), kExitOk);
  EXPECT_EQ(Rows()[20000].magnitude, "0.00");
}

TEST_F(ResponseCommandTest, shouldPrintTheBandsAndTheDelayOfALiveDevice) {
  ASSERT_EQ(Run({"set", "inB.eq2.freq", "500"}), kExitOk);
  ASSERT_EQ(Run({"set", "inB.eq2.gain", "6"}), kExitOk);
  ASSERT_EQ(Run({"response", "--channel", "inB", "--part", "eq2"}), kExitOk);
  std::map<int, Row> rows = Rows();
  EXPECT_EQ(rows[500].magnitude, "6.00");
  EXPECT_EQ(rows[500].phase, "0.00");
  ASSERT_EQ(Run({"response", "--channel", "inB", "--part", "delay"}), kExitOk);
  EXPECT_EQ(Rows()[20000].phase, "0.00");
}

// The whole way from input to output carries both levels and both equalisers; two ways of a
// Linkwitz-Riley 4th-order crossover add up flat, Butterworth 2nd-order ones cancel at the
// corner unless one is inverted (+3 dB).
TEST_F(ResponseCommandTest, shouldPrintAWholeOutputAndTheSumOfTwoWays) {
  ASSERT_EQ(Run({"--file", file_, "new"}), kExitOk);
  for (const std::vector<std::string>& set : {std::vector<std::string>{"inA.level", "3"},
                                              {"out1.level", "-2"},
                                              {"out1.source", "inA"},
                                              {"out3.source", "inA"},
                                              {"inA.eq1.gain", "6"},
                                              {"inA.eq1.freq", "100"},
                                              {"out1.lp.freq", "2500"},
                                              {"out1.lp.type", "7"},
                                              {"out3.hp.freq", "2500"},
                                              {"out3.hp.type", "7"},
                                              {"out3.level", "-2"}}) {
    std::vector<std::string> args{"--file", file_, "set"};
    args.insert(args.end(), set.begin(), set.end());
    ASSERT_EQ(Run(args), kExitOk) << set[0] << err_.str();
  }
  ASSERT_EQ(Run({"--file", file_, "response", "--channel", "out1", "--part", "whole"}), kExitOk);
  std::map<int, Row> rows = Rows();
  EXPECT_EQ(rows[100].magnitude, "7.00");  // +6 dB bell, +3 dB in, -2 dB out
  EXPECT_EQ(rows[20000].magnitude.substr(0, 1), "-");
  ASSERT_EQ(Run({"--file", file_, "response", "--sum", "out1,out3"}), kExitOk);
  rows = Rows();
  EXPECT_EQ(rows[2500].magnitude, "1.00");  // flat: the levels alone
  EXPECT_EQ(rows[20000].magnitude, "1.00");
  for (const char* type : {"2", "-12dB/oct Bw"}) {
    ASSERT_EQ(Run({"--file", file_, "set", "out1.lp.type", type}), kExitOk);
    ASSERT_EQ(Run({"--file", file_, "set", "out3.hp.type", type}), kExitOk);
  }
  ASSERT_EQ(Run({"--file", file_, "response", "--sum", "OUT3,out1"}), kExitOk);
  EXPECT_LT(std::stod(Rows()[2500].magnitude), -60.0);
  ASSERT_EQ(Run({"--file", file_, "set", "out3.polarity", "180"}), kExitOk);
  ASSERT_EQ(Run({"--file", file_, "response", "--sum", "out1,out3"}), kExitOk);
  EXPECT_EQ(Rows()[2500].magnitude, "4.01");  // +3.01 dB and the levels
}

TEST_F(ResponseCommandTest, shouldRefuseChannelsAndPartsThatDoNotExist) {
  const struct {
    std::vector<std::string> args;
    std::string message;
  } cases[] = {
      {{"response"}, "response needs --channel CH or --sum"},
      {{"response", "--channel", "out7"}, "--channel \"out7\" is not inA, inB or out1..out6"},
      {{"response", "--channel", "inA", "--part", "hp"},
       "--part \"hp\" is not a part of inA: eq1..eq5 or delay"},
      {{"response", "--channel", "out2", "--part", "eq8"},
       "--part \"eq8\" is not a part of out2: eq1..eq7, hp, lp, whole or delay"},
      {{"response", "--channel", "inB", "--part", "whole"},
       "--part \"whole\" is not a part of inB: eq1..eq5 or delay"},
      {{"response", "--sum", "out1,out1"},
       "\"out1,out1\" is not a list of different outputs out1..out6 (out1,out3)"},
      {{"response", "--sum", "out1,inA"},
       "\"out1,inA\" is not a list of different outputs out1..out6 (out1,out3)"},
      {{"response", "--sum", "out1,"},
       "\"out1,\" is not a list of different outputs out1..out6 (out1,out3)"},
      {{"response", "--sum", "out1", "--channel", "out1"}, "--sum takes no --channel or --part"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Run(c.args), kExitUsage) << c.message;
    EXPECT_NE(err_.str().find(c.message), std::string::npos) << err_.str();
    EXPECT_EQ(out_.str(), "");
  }
}

// plot's words are checked before anything is read or drawn; without Qt's graphics (this test
// program starts none, talvexctl starts them for plot) it fails in words, writing nothing.
TEST_F(ResponseCommandTest, shouldRefusePlotWordsAndDrawOnlyWithGraphics) {
  const struct {
    std::vector<std::string> args;
    std::string message;
  } cases[] = {
      {{"plot"}, "plot needs a file: FILE.png, FILE.svg or FILE.csv"},
      {{"plot", "g.jpg"}, "\"g.jpg\" does not end in .png, .svg or .csv"},
      {{"plot", "a.png", "b.png"}, "unexpected argument \"b.png\""},
      {{"plot", "--hz", "500", "g.png"}, "--hz \"500\" is not LOW:HIGH within 20..20000"},
      {{"plot", "--hz", "5000:500", "g.png"}, "--hz \"5000:500\" is not LOW:HIGH within 20..20000"},
      {{"plot", "--db", "-40:0", "g.png"}, "--db \"-40:0\" is not LOW:HIGH within -30..30"},
      {{"plot", "--dpi", "20", "g.png"}, "--dpi \"20\" is not a whole number from 48 to 480"},
      {{"plot", "--cursor", "x", "g.png"}, "--cursor \"x\" is not a number"},
      {{"plot", "--channel", "out1,out9", "g.png"},
       "--channel \"out1,out9\" is not a list of inA, inB and out1..out6"},
      {{"plot", "--sum", "inA", "g.png"},
       "\"inA\" is not a list of different outputs out1..out6 (out1,out3)"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Run(c.args), kExitUsage) << c.message;
    EXPECT_NE(err_.str().find(c.message), std::string::npos) << err_.str();
  }
  const std::string picture = (dir_ / "g.png").string();
  EXPECT_EQ(Run({"plot", picture}), kExitFailure);
  EXPECT_EQ(err_.str(),
            "talvexctl: drawing the graph needs Qt's graphics, which this program did not start\n");
  EXPECT_FALSE(fs::exists(picture));
  EXPECT_FALSE(DrawsGraph({"--port", "sim:0", "response"}));
  EXPECT_TRUE(DrawsGraph({"--port", "sim:0", "plot", "g.png"}));
  EXPECT_FALSE(DrawsGraph({"--id", "99", "plot", "g.png"}));  // RunCli reports it
}

}  // namespace
}  // namespace talvex::cli
