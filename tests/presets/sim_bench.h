// One simulated device (ID 5) on a virtual-clock line, a link that reports its failures, and
// what the link said, for the tests of the device utilities.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "link/line.h"
#include "params/device_params.h"
#include "presets/device_state.h"
#include "testlib/recording_observer.h"

namespace talvex::presets {

class SimBench : public ::testing::Test {
 protected:
  static constexpr int kId = 5;

  SimBench()
      : line(link::MakeLine(link::ParsePortSpec("sim:5"))),
        link(*line.transport, *line.clock, &observer) {
    EXPECT_TRUE(link.OpenPort());
    link.Flags().ReportLinkErrors = true;
  }

  sim::SimDevice& Device() { return line.simulator->Device(kId); }

  std::string Memory(std::size_t address, std::size_t count) {
    const auto first = Device().DeviceMemory().begin() + static_cast<long>(address);
    return {first, first + static_cast<long>(count)};
  }

  std::string SentHex(std::size_t index) const {
    return protocol::FormatHex(observer.sent.at(index));
  }

  testing::RecordingObserver observer;
  link::Line line;
  link::Link link;
  params::DeviceParams device = params::DeviceParams::FromDefault(0);
  DeviceState state;
};

}  // namespace talvex::presets
