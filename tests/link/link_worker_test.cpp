#include "link/link_worker.h"

#include <gtest/gtest.h>

#include <future>

#include "link/line.h"
#include "testlib/recording_observer.h"

namespace talvex::link {
namespace {

protocol::Command Mute(int channel, int state) {
  protocol::Command command;
  command.code = protocol::code::kMute;
  command.p(1) = static_cast<std::uint8_t>(channel);
  command.p(8) = static_cast<std::uint8_t>(state);
  return command;
}

class LinkWorkerTest : public ::testing::Test {
 protected:
  LinkWorkerTest() : line(MakeLine(ParsePortSpec("sim:0,1"))), link(*line.transport, *line.clock) {
    EXPECT_TRUE(link.OpenPort());
    link.Flags().ReportLinkErrors = true;
  }

  // Holds the worker on a first job until the test lets it go, so that later jobs queue up.
  // Returns once the worker is inside that job: what the test queues next all waits.
  std::promise<void> gate;
  void Block(LinkWorker& worker) {
    std::promise<void> started;
    std::future<void> running = started.get_future();
    worker.Enqueue(kAnyDevice, [&started, f = gate.get_future().share()](Link&) {
      started.set_value();
      f.wait();
    });
    running.wait();
  }

  Line line;
  Link link;
  testing::RecordingObserver observer;
};

TEST_F(LinkWorkerTest, shouldRunJobsInOrderOffTheCallingThread) {
  std::vector<int> order;
  std::thread::id workerThread;
  {
    LinkWorker worker(link, &observer);
    for (int i = 0; i < 5; ++i)
      worker.Enqueue(0, [&, i](Link& l) {
        workerThread = std::this_thread::get_id();
        ASSERT_EQ(l.SendCommand(0, Mute(2, i % 2)), SendResult::Replied);
        order.push_back(i);
      });
    worker.WaitIdle();
  }
  EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4}));
  EXPECT_NE(workerThread, std::this_thread::get_id());
  EXPECT_EQ(observer.sent.size(), 5u);
}

TEST_F(LinkWorkerTest, shouldSendOnlyTheNewestQueuedValueAfterWhatWasQueuedBeforeIt) {
  std::vector<std::string> sent;
  LinkWorker worker(link, &observer);
  Block(worker);
  auto edit = [&](const std::string& what) {
    return [&sent, what](Link&) { sent.push_back(what); };
  };
  worker.EnqueueCoalesced(0, "out1.level", edit("level -1"));
  worker.EnqueueCoalesced(0, "out1.mute", edit("mute"));
  worker.EnqueueCoalesced(0, "out1.level", edit("level -2"));
  worker.EnqueueCoalesced(1, "out1.level", edit("device 1 level"));  // another device: kept
  worker.EnqueueCoalesced(0, "out1.level", edit("level -3"));
  EXPECT_EQ(worker.Waiting(), 3u);  // mute, device 1's level, level -3
  gate.set_value();
  worker.WaitIdle();
  EXPECT_EQ(sent, (std::vector<std::string>{"mute", "device 1 level", "level -3"}));
}

TEST_F(LinkWorkerTest, shouldDropTheWaitingJobsOfADeviceThatFailed) {
  line.simulator->Faults(1).silentFrames = 100;
  int ranForDevice0 = 0;
  int ranForDevice1 = 0;
  {
    LinkWorker worker(link, &observer);
    Block(worker);
    worker.Enqueue(1, [&](Link& l) { ++ranForDevice1, (void)l.SendCommand(1, Mute(2, 1)); });
    for (int i = 0; i < 3; ++i)
      worker.Enqueue(1, [&](Link& l) { ++ranForDevice1, (void)l.SendCommand(1, Mute(3, 1)); });
    worker.Enqueue(0, [&](Link& l) { ++ranForDevice0, (void)l.SendCommand(0, Mute(2, 1)); });
    gate.set_value();
    worker.WaitIdle();
  }
  EXPECT_EQ(ranForDevice1, 1);
  EXPECT_EQ(ranForDevice0, 1);
  ASSERT_EQ(observer.failures.size(), 1u);
  EXPECT_EQ(observer.failures[0].deviceId, 1);
}

TEST_F(LinkWorkerTest, shouldRefuseJobsForAFailedDeviceUntilItIsRevived) {
  line.simulator->Faults(1).silentFrames = 5;
  int ran = 0;
  LinkWorker worker(link, &observer);
  worker.Enqueue(1, [&](Link& l) { ++ran, (void)l.SendCommand(1, Mute(2, 1)); });
  worker.WaitIdle();
  worker.Enqueue(1,
                 [&](Link& l) { ++ran, (void)l.SendCommand(1, Mute(2, 1)); });  // queued too late
  worker.WaitIdle();
  EXPECT_EQ(ran, 1);
  worker.Revive(1);
  worker.Enqueue(1, [&](Link& l) { ++ran, (void)l.SendCommand(1, Mute(2, 1)); });
  worker.WaitIdle();
  EXPECT_EQ(ran, 2);
  EXPECT_EQ(observer.failures.size(), 1u);
}

TEST_F(LinkWorkerTest, shouldReportAJobThatThrowsAndGoOn) {
  std::vector<std::pair<int, std::string>> errors;
  int ran = 0;
  LinkWorker worker(link, &observer);
  worker.OnJobError([&](int id, const std::string& what) { errors.emplace_back(id, what); });
  worker.Enqueue(1, [](Link&) { throw IndexError("frequency byte 246 is outside 0..240"); });
  worker.Enqueue(1, [&](Link&) { ++ran; });
  worker.WaitIdle();
  EXPECT_EQ(ran, 1);
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0], std::make_pair(1, std::string("frequency byte 246 is outside 0..240")));
}

TEST_F(LinkWorkerTest, shouldRunWhatIsQueuedBeforeStopping) {
  int ran = 0;
  {
    LinkWorker worker(link, &observer);
    Block(worker);
    for (int i = 0; i < 3; ++i)
      worker.Enqueue(0, [&](Link&) { ++ran; });
    gate.set_value();
  }
  EXPECT_EQ(ran, 3);
}

}  // namespace
}  // namespace talvex::link
