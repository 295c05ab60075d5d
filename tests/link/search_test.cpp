#include "link/search.h"

#include <gtest/gtest.h>

#include "link/line.h"

namespace talvex::link {
namespace {

TEST(SearchTest, shouldWriteTheProgressCutToTenths) {
  const std::pair<int, const char*> cases[] = {{0, "0 %"},   {1, "3.1 %"}, {2, "6.2 %"},
                                               {3, "9.3 %"}, {8, "25 %"},  {31, "96.8 %"},
                                               {32, "100 %"}};
  for (const auto& [id, text] : cases)
    EXPECT_EQ(SearchProgressText(id), text) << id;
}

TEST(SearchTest, shouldFindSlowDevicesAndSkipThoseThatAnswerWrongly) {
  Line line = MakeLine(ParsePortSpec("sim:0,3,7,32"));
  line.simulator->Faults(3).answerSecondPollOnly = true;
  line.simulator->Faults(7).wrongPollByte = true;
  Link link(*line.transport, *line.clock);
  ASSERT_TRUE(link.OpenPort());
  std::vector<std::string> progress;
  const auto found = SearchDevices(link, AllDeviceIds(),
                                   [&](const std::string& text) { progress.push_back(text); });
  EXPECT_EQ(found, (std::vector<int>{0, 3, 32}));
  ASSERT_EQ(progress.size(), 33u);
  EXPECT_EQ(progress.back(), "100 %");
  // Each silent ID gets a second poll after a 10 ms pause; a found one needs only its first.
  EXPECT_EQ(line.simulator->Device(0).FramesHandled(0), 1);
  EXPECT_EQ(line.simulator->Device(3).FramesHandled(0),
            1);  // the ignored first poll never reached it
  EXPECT_EQ(line.simulator->Device(7).FramesHandled(0), 2);
}

TEST(SearchTest, shouldPollWithTheIdInParameter8) {
  const protocol::Command command = PollCommand(17);
  EXPECT_EQ(command.code, 0);
  EXPECT_EQ(command.params, (std::array<std::uint8_t, 8>{0, 0, 0, 0, 0, 0, 0, 17}));
  EXPECT_THROW(PollCommand(33), IndexError);
}

}  // namespace
}  // namespace talvex::link
