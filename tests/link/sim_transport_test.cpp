// The in-process simulated line behind the link: the whole protocol on a virtual clock, and
// the real line speed when paced.
#include "link/sim_transport.h"

#include <gtest/gtest.h>

#include "link/line.h"
#include "link/link.h"
#include "testlib/recording_observer.h"
#include "testlib/scripted_transport.h"

namespace talvex::link {
namespace {

TEST(SimTransportTest, shouldTakeAPacedExchangeTheTimeOf26BytesAt9600Baud) {
  Line line = MakeLine(SimPort{{0}, false});
  line.simulator->SetPaced(true);
  Link link(*line.transport, *line.clock);
  ASSERT_TRUE(link.OpenPort());
  const auto before = line.clock->Now();
  ASSERT_EQ(link.SendCommand(0, testing::MakeCommand(9, {2})), SendResult::Replied);
  EXPECT_EQ(line.clock->Now() - before, 26 * sim::kByteTimeAt9600);  // about 27 ms

  const auto blockStart = line.clock->Now();
  ASSERT_EQ(link.ReadBlock(0, testing::MakeCommand(11, {255, 255})), BlockResult::Received);
  EXPECT_EQ(line.clock->Now() - blockStart, (13 + 304) * sim::kByteTimeAt9600);
}

TEST(SimTransportTest, shouldRideOutFaultsOfTheSimulatedDevice) {
  Line line = MakeLine(ParsePortSpec("sim:0,5"));
  testing::RecordingObserver observer;
  Link link(*line.transport, *line.clock, &observer);
  ASSERT_TRUE(link.OpenPort());
  link.Flags().ReportLinkErrors = true;

  line.simulator->Faults(5).silentFrames = 3;
  line.simulator->Faults(5).garbageBytes = 7;
  EXPECT_EQ(link.SendCommand(5, testing::MakeCommand(9, {2, 0, 0, 0, 0, 0, 0, 1})),
            SendResult::Replied);
  EXPECT_EQ(link.Stats().retransmissions, 3);

  line.simulator->Faults(0).replyDelay = std::chrono::milliseconds(4500);
  EXPECT_EQ(link.SendCommand(0, testing::MakeCommand(1)), SendResult::Replied);

  // 5.1 s is too late for the first transmission, but that answer still arrives while the
  // second transmission waits, and is taken: it acknowledges the same frame.
  line.simulator->Faults(0).replyDelay = std::chrono::milliseconds(5100);
  const auto before = line.clock->Now();
  const long retransmissions = link.Stats().retransmissions;
  EXPECT_EQ(link.SendCommand(0, testing::MakeCommand(1)), SendResult::Replied);
  EXPECT_EQ(line.clock->Now() - before, 5100ms);
  EXPECT_EQ(link.Stats().retransmissions, retransmissions + 1);

  line.simulator->Faults(0).replyDelay = {};
  line.clock->SleepFor(10s);  // the second transmission's own late answer comes and goes
  line.simulator->Faults(0).silentFrames = 5;
  EXPECT_EQ(link.SendCommand(0, testing::MakeCommand(1)), SendResult::Failed);
  EXPECT_EQ(observer.failures.size(), 1u);
  EXPECT_LE(link.Stats().longestExchange, 5 * kReplyTimeout);
}

}  // namespace
}  // namespace talvex::link
