#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli/cli.h"
#include "cli_harness.h"
#include "link/sim_transport.h"
#include "params/device_params.h"

namespace talvex::cli {
namespace {

namespace fs = std::filesystem;

// talvexctl runs on a simulated line that outlives each run, like a device on a real port.
class ParamCommandsTest : public ::testing::Test {
 protected:
  ParamCommandsTest() {
    hooks_.makeLine = [this](const link::PortSpec&) {
      ++linesMade_;
      return LineOn(simulator_);
    };
  }

  int Run(std::vector<std::string> args) {
    out_.str("");
    err_.str("");
    return RunCli(args, out_, err_, hooks_);
  }

  sim::SimDevice& Device() { return simulator_->Device(0); }

  std::shared_ptr<sim::SimLine> simulator_ = std::make_shared<sim::SimLine>(std::vector<int>{0});
  CliHooks hooks_;
  int linesMade_ = 0;
  std::ostringstream out_;
  std::ostringstream err_;
};

TEST_F(ParamCommandsTest, shouldSendTheOneFrameOfASetAndReadTheValueBackFromTheDevice) {
  ASSERT_EQ(Run({"--id", "0", "--trace", "set", "out2.level", "-3.5"}), kExitOk);
  EXPECT_EQ(out_.str(), "out2.level = -3.5\n");
  EXPECT_NE(err_.str().find("> F0 81 00 01 03 00 00 00 00 00 00 55 F7\n"), std::string::npos);
  EXPECT_EQ(Device().FramesHandled(protocol::code::kChannelLevel), 1);
  EXPECT_EQ(Device().LiveImage()[87], 85);
  ASSERT_EQ(Run({"get", "out2.level"}), kExitOk);
  EXPECT_EQ(out_.str(), "out2.level = -3.5\n");
  ASSERT_EQ(Run({"--json", "get", "out2.level"}), kExitOk);
  EXPECT_EQ(out_.str(), "{\"out2.level\": -3.5}\n");
}

TEST_F(ParamCommandsTest, shouldCarryTheDevicesOwnBytesBesideTheValue) {
  Device().LiveImage()[94] = 1;  // Out 2 inverted on the device itself
  ASSERT_EQ(Run({"--trace", "set", "out2.level", "0"}), kExitOk);
  EXPECT_NE(err_.str().find("> F0 81 00 01 03 00 00 00 00 00 01 78 F7\n"), std::string::npos);
  ASSERT_EQ(Run({"--json", "get", "out2.polarity"}), kExitOk);
  EXPECT_EQ(out_.str(), "{\"out2.polarity\": 180}\n");
}

// While the output link is on, an edit of Out 3 goes to Out 4 as well, on a device (whose
// switch the state read tells) and in a preset file (which keeps it in its record).
TEST_F(ParamCommandsTest, shouldSetTheLinkedOutputTooWhileTheLinkIsOn) {
  ASSERT_EQ(Run({"set", "output.link", "on"}), kExitOk);
  ASSERT_EQ(Run({"set", "out3.eq1.gain", "-2"}), kExitOk);
  EXPECT_EQ(Device().FramesHandled(protocol::code::kEqBand), 2);
  ASSERT_EQ(Run({"get", "out4.eq1.gain"}), kExitOk);
  EXPECT_EQ(out_.str(), "out4.eq1.gain = -2\n");

  const std::string file =
      (fs::temp_directory_path() / ("talvex_link_" + std::to_string(::getpid()) + ".tvx")).string();
  ASSERT_EQ(Run({"--file", file, "new"}), kExitOk);
  ASSERT_EQ(Run({"--file", file, "set", "output.link", "on"}), kExitOk);
  ASSERT_EQ(Run({"--file", file, "set", "out4.level", "-1.5"}), kExitOk);
  ASSERT_EQ(Run({"--file", file, "get", "out3.level"}), kExitOk);
  EXPECT_EQ(out_.str(), "out3.level = -1.5\n");
  fs::remove(file);
}

TEST_F(ParamCommandsTest, shouldRefuseTextThatIsNotANumberAndSendNothing) {
  const std::pair<const char*, const char*> cases[] = {
      {"inA.level", "  Incorrect value\n"},
      {"out1.eq2.freq", "  Incorrect frequency value\n"},
      {"out1.eq2.q", "  Incorrect Q value\n"},
      {"out1.lp.freq", "  Incorrect f value\n"}};
  for (const auto& [name, message] : cases) {
    EXPECT_EQ(Run({"set", name, "1x"}), kExitUsage) << name;
    EXPECT_EQ(err_.str(), message) << name;
    EXPECT_EQ(out_.str(), "") << name;
  }
  EXPECT_EQ(Device().FramesHandled(protocol::code::kChannelLevel), 0);
  EXPECT_EQ(Device().FramesHandled(protocol::code::kEqBand), 0);
  EXPECT_EQ(Device().FramesHandled(protocol::code::kCrossover), 0);
}

TEST_F(ParamCommandsTest, shouldListTheValidFormsForAnUnknownParameter) {
  EXPECT_EQ(Run({"set", "out9.level", "1"}), kExitUsage);
  EXPECT_NE(err_.str().find("unknown parameter \"out9.level\""), std::string::npos);
  EXPECT_NE(err_.str().find("outN.hp.freq"), std::string::npos);
  EXPECT_EQ(Run({"get", "inA.mute"}), kExitFailure);
  EXPECT_EQ(linesMade_, 0);  // neither refusal opened the line
}

TEST_F(ParamCommandsTest, shouldEditAPresetFileOfflineAndSendNothing) {
  const fs::path dir = fs::temp_directory_path() / ("talvex_cli_" + std::to_string(::getpid()));
  fs::create_directories(dir);
  const std::string file = (dir / "x.tvx").string();
  fs::remove(file);
  ASSERT_EQ(Run({"--file", file, "new", "2x3 way xover"}), kExitOk);
  ASSERT_EQ(fs::file_size(file), params::kImageSize);
  ASSERT_EQ(Run({"--file", file, "set", "out2.level", "-3.5"}), kExitOk);
  EXPECT_EQ(out_.str(), "out2.level = -3.5\n");
  ASSERT_EQ(Run({"--file", file, "set", "input.source", "spdif"}), kExitOk);

  std::ifstream in(file, std::ios::binary);
  const std::vector<std::uint8_t> bytes((std::istreambuf_iterator<char>(in)), {});
  params::ParamImage expected = params::DefaultRecord(1);
  expected[87] = 85;
  expected[params::kInputSourceByte] = 1;
  EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), expected.begin(), expected.end()));

  ASSERT_EQ(Run({"--file", file, "--json", "get", "input.source"}), kExitOk);
  EXPECT_EQ(out_.str(), "{\"input.source\": \"spdif\"}\n");
  EXPECT_EQ(Run({"--file", file, "new", "0"}), kExitFailure);  // never overwrites
  EXPECT_EQ(fs::file_size(file), params::kImageSize);
  EXPECT_EQ(linesMade_, 0);
  fs::remove_all(dir);
}

}  // namespace
}  // namespace talvex::cli
