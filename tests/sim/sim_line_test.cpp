#include "sim/sim_line.h"

#include <gtest/gtest.h>

namespace talvex::sim {
namespace {

std::vector<std::uint8_t> Frame(int id, std::uint8_t code) {
  protocol::Command command;
  command.code = code;
  const auto frame = protocol::BuildFrame(id, command);
  return {frame.begin(), frame.end()};
}

std::vector<std::uint8_t> Values(const std::vector<ScheduledByte>& bytes) {
  std::vector<std::uint8_t> values;
  for (const auto& byte : bytes)
    values.push_back(byte.value);
  return values;
}

TEST(SimLineTest, shouldAssembleFramesAcrossWritesAndIgnoreNoiseAndBrokenFrames) {
  SimLine line({0, 1});
  const auto frame = Frame(1, 0);
  EXPECT_TRUE(line.Receive(std::span(frame).first(5)).empty());
  std::vector<std::uint8_t> rest(frame.begin() + 5, frame.end());
  EXPECT_EQ(line.Receive(rest).size(), 13u);

  std::vector<std::uint8_t> noisy = {0x00, 0x13};
  auto broken = Frame(0, 0);
  broken[12] = 0x00;  // no end byte: not a frame
  noisy.insert(noisy.end(), broken.begin(), broken.end());
  const auto good = Frame(0, 9);
  noisy.insert(noisy.end(), good.begin(), good.end());
  const auto replies = line.Receive(noisy);
  EXPECT_EQ(Values(replies), good);
  EXPECT_EQ(line.MalformedFrames(), 1);
}

TEST(SimLineTest, shouldStaySilentForAbsentIds) {
  SimLine line({0});
  EXPECT_TRUE(line.Receive(Frame(9, 0)).empty());
}

TEST(SimLineTest, shouldShowEachScriptedFault) {
  SimLine line({0});
  FaultPlan& faults = line.Faults(0);

  faults.silentFrames = 2;
  faults.silentCode = 9;
  EXPECT_FALSE(line.Receive(Frame(0, 1)).empty());  // another code still answered
  EXPECT_TRUE(line.Receive(Frame(0, 9)).empty());
  EXPECT_TRUE(line.Receive(Frame(0, 9)).empty());
  EXPECT_FALSE(line.Receive(Frame(0, 9)).empty());

  faults.answerSecondPollOnly = true;
  EXPECT_TRUE(line.Receive(Frame(0, 0)).empty());
  EXPECT_FALSE(line.Receive(Frame(0, 0)).empty());
  faults.answerSecondPollOnly = false;

  faults.wrongPollByte = true;
  EXPECT_EQ(Values(line.Receive(Frame(0, 0)))[4], 0x00);
  faults.wrongPollByte = false;

  faults.garbageBytes = 4;
  EXPECT_EQ(line.Receive(Frame(0, 1)).size(), 17u);
  faults.garbageBytes = 0;

  faults.corruptIndex = 12;
  faults.corruptCount = 1;
  EXPECT_EQ(Values(line.Receive(Frame(0, 1)))[12], 0xF7 ^ 0xFF);
  EXPECT_EQ(Values(line.Receive(Frame(0, 1)))[12], 0xF7);

  faults.replyDelay = std::chrono::milliseconds(4000);
  EXPECT_EQ(line.Receive(Frame(0, 1)).front().at, std::chrono::milliseconds(4000));
}

TEST(SimLineTest, shouldPaceRepliesAtTheLineSpeed) {
  SimLine line({0});
  line.SetPaced(true);
  const auto reply = line.Receive(Frame(0, 1));
  ASSERT_EQ(reply.size(), 13u);
  EXPECT_EQ(reply.front().at, 14 * kByteTimeAt9600);
  EXPECT_EQ(reply.back().at, 26 * kByteTimeAt9600);
}

TEST(SimLineTest, shouldDrawRandomFaultsReproduciblyFromTheSeed) {
  auto run = [](std::uint32_t seed) {
    SimLine line({0});
    line.Faults(0).dropRequestRate = 0.3;
    line.Faults(0).seed = seed;
    std::vector<bool> answered;
    for (int i = 0; i < 200; ++i)
      answered.push_back(!line.Receive(Frame(0, 1)).empty());
    return answered;
  };
  const auto first = run(7);
  EXPECT_EQ(first, run(7));
  const auto dropped = std::count(first.begin(), first.end(), false);
  EXPECT_GT(dropped, 30);
  EXPECT_LT(dropped, 90);
}

}  // namespace
}  // namespace talvex::sim
