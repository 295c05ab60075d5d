#include "link/link.h"

#include <gtest/gtest.h>

#include "testlib/recording_observer.h"
#include "testlib/scripted_transport.h"

namespace talvex::link {
namespace {

using testing::Bytes;
using testing::MakeCommand;
using testing::RecordingObserver;
using testing::ReplyFrame;
using testing::ScriptedTransport;

Bytes Block(std::uint8_t fill) {
  return Bytes(protocol::kBlockSize, fill);
}

class LinkTest : public ::testing::Test {
 protected:
  LinkTest() : transport(clock), link(transport, clock, &observer) {
    EXPECT_TRUE(link.OpenPort());
    link.Flags().ReportLinkErrors = true;
  }

  Clock::Duration GapBetweenWrites(std::size_t i) const {
    return transport.WriteTimes().at(i + 1) - transport.WriteTimes().at(i);
  }

  VirtualClock clock;
  ScriptedTransport transport;
  RecordingObserver observer;
  Link link;
};

TEST_F(LinkTest, shouldSendTheFrameAndTakeTheReply) {
  transport.Answer(ReplyFrame(3, 16, {1, 0x70, 0, 0, 0x41, 0, 0, 0}), 20ms);
  EXPECT_EQ(link.SendCommand(3, MakeCommand(16, {1, 0x70})), SendResult::Replied);
  ASSERT_EQ(transport.Written().size(), 1u);
  EXPECT_EQ(protocol::FormatHex(transport.Written()[0]), "F0 81 03 10 01 70 00 00 00 00 00 00 F7");
  EXPECT_TRUE(link.ReplyReceived());
  EXPECT_EQ(link.RxBuffer()[8], 0x41);
}

TEST_F(LinkTest, shouldFailAfterFiveUnansweredTransmissionsAndReportOnce) {
  EXPECT_EQ(link.SendCommand(7, MakeCommand(1)), SendResult::Failed);
  EXPECT_EQ(transport.Written().size(), 5u);
  ASSERT_EQ(observer.failures.size(), 1u);
  EXPECT_EQ(observer.failures[0].kind, FailureKind::CommunicationProblem);
  EXPECT_EQ(observer.failures[0].deviceId, 7);
  EXPECT_EQ(observer.failures[0].title, "Communication problem");
  EXPECT_EQ(observer.failures[0].text,
            " The system will be close the communication with this device");
  EXPECT_FALSE(link.ReplyReceived());
}

TEST_F(LinkTest, shouldFailSilentlyAndKeepRxBufferWhileErrorsAreNotReported) {
  transport.Answer(ReplyFrame(1, 0, {9, 9, 9, 9, 9, 9, 9, 9}));
  ASSERT_EQ(link.SendCommand(1, MakeCommand(0)), SendResult::Replied);
  const auto before = link.RxBuffer();
  link.Flags().ReportLinkErrors = false;

  EXPECT_EQ(link.SendCommand(1, MakeCommand(1)), SendResult::NoReply);
  EXPECT_EQ(transport.Written().size(), 6u);
  EXPECT_TRUE(observer.failures.empty());
  EXPECT_FALSE(link.ReplyReceived());
  EXPECT_EQ(link.RxBuffer(), before);
}

TEST_F(LinkTest, shouldCompleteNormallyWhenTheFifthTransmissionIsAnswered) {
  transport.StaySilent(4);
  transport.Answer(ReplyFrame(2, 9));
  EXPECT_EQ(link.SendCommand(2, MakeCommand(9)), SendResult::Replied);
  EXPECT_EQ(transport.Written().size(), 5u);
  EXPECT_TRUE(observer.failures.empty());
  EXPECT_EQ(link.Stats().retransmissions, 4);
}

TEST_F(LinkTest, shouldNeverWaitLessThanTheStatedLimits) {
  struct Case {
    std::uint8_t code;
    Clock::Duration gap;
  };
  for (const Case c : {Case{1, 5s}, Case{21, 10s}}) {
    ScriptedTransport line(clock);
    Link quiet(line, clock);
    ASSERT_TRUE(quiet.OpenPort());
    EXPECT_EQ(quiet.SendCommand(0, MakeCommand(c.code)), SendResult::NoReply);
    ASSERT_EQ(line.WriteTimes().size(), 5u);
    for (std::size_t i = 0; i + 1 < 5; ++i)
      EXPECT_EQ(line.WriteTimes()[i + 1] - line.WriteTimes()[i], c.gap) << int(c.code);
  }
}

TEST_F(LinkTest, shouldWaitLongerForTheSystemTypeCommand) {
  struct Case {
    std::uint8_t code;
    std::size_t transmissions;
  };
  // A reply 9.9 s after the frame: in time for code 21, too late for any other code.
  for (const Case c : {Case{21, 1}, Case{1, 2}}) {
    ScriptedTransport line(clock);
    Link slow(line, clock);
    ASSERT_TRUE(slow.OpenPort());
    line.Answer(ReplyFrame(0, c.code), 9900ms);
    line.Answer(ReplyFrame(0, c.code), 10ms);
    EXPECT_EQ(slow.SendCommand(0, MakeCommand(c.code)), SendResult::Replied);
    EXPECT_EQ(line.Written().size(), c.transmissions) << int(c.code);
  }
}

TEST_F(LinkTest, shouldReturnAtOnceAfterWritingTheTwoUnacknowledgedCodes) {
  for (std::uint8_t code : {std::uint8_t{15}, std::uint8_t{143}}) {
    const auto before = clock.Now();
    const auto writes = transport.Written().size();
    EXPECT_EQ(link.SendCommand(0, MakeCommand(code)), SendResult::Unanswered);
    EXPECT_EQ(transport.Written().size(), writes + 1);
    EXPECT_EQ(clock.Now(), before);
    EXPECT_FALSE(link.ReplyReceived());
  }
  EXPECT_TRUE(observer.failures.empty());
}

TEST_F(LinkTest, shouldWriteNothingOnAnEarlyReturn) {
  struct Case {
    const char* flag;
    void (*set)(LinkFlags&);
  };
  const Case cases[] = {
      {"DemoMode", [](LinkFlags& f) { f.DemoMode = true; }},
      {"LinkEnabled false", [](LinkFlags& f) { f.LinkEnabled = false; }},
      {"SendSuspended", [](LinkFlags& f) { f.SendSuspended = true; }},
  };
  for (const Case& c : cases) {
    ScriptedTransport line(clock);
    line.EchoEverything();
    Link idle(line, clock);
    ASSERT_TRUE(idle.OpenPort());
    c.set(idle.Flags());
    const auto before = clock.Now();
    EXPECT_EQ(idle.SendCommand(0, MakeCommand(1)), SendResult::Skipped) << c.flag;
    EXPECT_EQ(idle.ReadBlock(0, MakeCommand(11, {255, 255})), BlockResult::Skipped) << c.flag;
    EXPECT_FALSE(idle.PollDevice(0, MakeCommand(0))) << c.flag;
    EXPECT_TRUE(line.Written().empty()) << c.flag;
    EXPECT_EQ(clock.Now(), before) << c.flag;
  }
}

TEST_F(LinkTest, shouldTimeOutABlockReadAfterSixTransmissions) {
  EXPECT_EQ(link.ReadBlock(4, MakeCommand(11, {255, 255})), BlockResult::TimedOut);
  ASSERT_EQ(transport.Written().size(), 6u);
  for (std::size_t i = 0; i + 1 < 6; ++i)
    EXPECT_EQ(GapBetweenWrites(i), 18144ms);
  ASSERT_EQ(observer.failures.size(), 1u);
  EXPECT_EQ(observer.failures[0].kind, FailureKind::BlockTimeOut);
  EXPECT_EQ(observer.failures[0].text, "Time out");
  EXPECT_TRUE(observer.failures[0].title.empty());
}

TEST_F(LinkTest, shouldReadABlockArrivingInPiecesOnTheSixthTransmission) {
  transport.StaySilent(5);
  Bytes block = Block(0xAB);
  block[0] = 0x00;  // a block has no envelope: a first byte that is not 0xF0 is still data
  transport.Answer({{10ms, Bytes(block.begin(), block.begin() + 100)},
                    {300ms, Bytes(block.begin() + 100, block.end())}});
  EXPECT_EQ(link.ReadBlock(4, MakeCommand(11, {255, 255})), BlockResult::Received);
  EXPECT_TRUE(std::equal(block.begin(), block.end(), link.RxBuffer().begin()));
  EXPECT_TRUE(observer.failures.empty());
}

TEST_F(LinkTest, shouldDiscardExtraBytesSoTheNextExchangeStartsClean) {
  Bytes first = ReplyFrame(0, 1, {1, 1, 1, 1, 1, 1, 1, 1});
  first.insert(first.end(), {0xF0, 0x81, 0x00, 0x77, 0x55});  // a stray partial frame after it
  transport.Answer(first);
  transport.Inject({0xF0, 0x81, 0x00}, 1s);  // and more noise while nobody listens
  ASSERT_EQ(link.SendCommand(0, MakeCommand(1)), SendResult::Replied);
  clock.Advance(2s);
  transport.Answer(ReplyFrame(0, 2, {2, 2, 2, 2, 2, 2, 2, 2}), 15ms);
  ASSERT_EQ(link.SendCommand(0, MakeCommand(2)), SendResult::Replied);
  const Bytes expected = ReplyFrame(0, 2, {2, 2, 2, 2, 2, 2, 2, 2});
  EXPECT_TRUE(std::equal(expected.begin(), expected.end(), link.RxBuffer().begin()));
  EXPECT_EQ(transport.Buffered(), 0u);
}

TEST_F(LinkTest, shouldSkipLineNoiseBeforeAReplyFrame) {
  Bytes noisy = {0x00, 0xFF, 0x55};
  const Bytes reply = ReplyFrame(5, 3, {3, 0, 0, 0, 0, 0, 1, 120});
  noisy.insert(noisy.end(), reply.begin(), reply.end());
  transport.Answer(noisy);
  ASSERT_EQ(link.SendCommand(5, MakeCommand(3)), SendResult::Replied);
  EXPECT_TRUE(std::equal(reply.begin(), reply.end(), link.RxBuffer().begin()));
}

TEST_F(LinkTest, shouldKeepRxBufferBeyondA13ByteReply) {
  transport.Answer(Block(0xAB));
  ASSERT_EQ(link.ReadBlock(0, MakeCommand(11, {255, 255})), BlockResult::Received);
  transport.Answer(ReplyFrame(0, 1));
  ASSERT_EQ(link.SendCommand(0, MakeCommand(1)), SendResult::Replied);
  for (std::size_t i = protocol::kFrameSize; i < protocol::kBlockSize; ++i)
    ASSERT_EQ(link.RxBuffer()[i], 0xAB) << i;
}

TEST_F(LinkTest, shouldCountAPollPresentOnlyWith0x81AtIndex4InTime) {
  struct Case {
    const char* what;
    std::uint8_t index4;
    Clock::Duration after;
    bool present;
  };
  const Case cases[] = {
      {"answer", 0x81, 30ms, true},
      {"wrong byte", 0x00, 30ms, false},
      {"other byte", 0x80, 30ms, false},
      {"too late", 0x81, 101ms, false},
  };
  for (const Case& c : cases) {
    ScriptedTransport line(clock);
    Link poller(line, clock);
    ASSERT_TRUE(poller.OpenPort());
    line.Answer(ReplyFrame(6, 0, {c.index4}), c.after);
    const auto before = clock.Now();
    EXPECT_EQ(poller.PollDevice(6, MakeCommand(0)), c.present) << c.what;
    EXPECT_EQ(line.Written().size(), 1u) << c.what;
    EXPECT_LE(clock.Now() - before, 100ms) << c.what;
  }
}

TEST_F(LinkTest, shouldFailAtOnceWhenTheAdapterIsUnplugged) {
  transport.Unplug();
  const auto before = clock.Now();
  EXPECT_EQ(link.SendCommand(1, MakeCommand(9)), SendResult::Failed);
  EXPECT_EQ(clock.Now(), before);
  EXPECT_EQ(observer.failures.size(), 1u);
}

TEST_F(LinkTest, shouldReportProgressThatOnlyGrowsAndEndsAtTheBarsEnd) {
  link.Flags().ShowReadProgress = true;
  transport.StaySilent(1);
  transport.Answer(Block(1), 9s);
  ASSERT_EQ(link.ReadBlock(0, MakeCommand(11, {255, 255})), BlockResult::Received);
  ASSERT_GT(observer.progress.size(), 10u);
  for (std::size_t i = 1; i < observer.progress.size(); ++i)
    EXPECT_GT(observer.progress[i].second, observer.progress[i - 1].second);
  EXPECT_EQ(observer.progress.back(), std::make_pair(ProgressKind::Read, kProgressEnd));
}

TEST(LinkOpenTest, shouldKeepTheFlagsWhenThePortWillNotOpen) {
  VirtualClock clock;
  ScriptedTransport transport(clock);
  transport.FailOpen("no such port");
  Link link(transport, clock);
  EXPECT_FALSE(link.OpenPort());
  EXPECT_EQ(link.LastOpenError(), "no such port");
  EXPECT_FALSE(link.Flags().PortOpened);
  EXPECT_FALSE(link.Flags().LinkEnabled);
}

TEST(LinkOpenTest, shouldPauseAroundOpeningAndEnableTheLink) {
  VirtualClock clock;
  ScriptedTransport transport(clock);
  Link link(transport, clock);
  const auto before = clock.Now();
  EXPECT_TRUE(link.OpenPort());
  EXPECT_EQ(clock.Now() - before, 60ms);
  EXPECT_TRUE(link.Flags().PortOpened);
  EXPECT_TRUE(link.Flags().LinkEnabled);
}

}  // namespace
}  // namespace talvex::link
