#include "sim/sim_device.h"

#include <gtest/gtest.h>

#include "params/default_image.h"

namespace talvex::sim {
namespace {

protocol::Frame Request(int id, std::uint8_t code, std::array<std::uint8_t, 8> params = {}) {
  protocol::Command command;
  command.code = code;
  command.params = params;
  return protocol::BuildFrame(id, command);
}

TEST(SimDeviceTest, shouldAnswerAPollWith0x81AtIndex4) {
  SimDevice device(3);
  const auto reply = device.Handle(Request(3, 0, {0, 0, 0, 0, 0, 0, 0, 3}));
  EXPECT_EQ(protocol::FormatHex(reply), "F0 81 03 00 81 00 00 00 00 00 00 00 F7");
}

TEST(SimDeviceTest, shouldBeNamedAfterItsSystemTypeAndIdUntilRenamed) {
  const struct {
    int id;
    int type;
    const char* name;
  } cases[] = {{0, 0, "SIM 2x2 00      "}, {7, 1, "SIM 2x3 07      "}, {32, 2, "SIM 6way 32     "}};
  for (const auto& c : cases) {
    SimDevice device(c.id, c.type);
    EXPECT_EQ(device.Name(), c.name);
    // A name read as the device list reads it: memory 368.. through command 16, byte 8.
    const auto reply = device.Handle(Request(c.id, 16, {1, 112 + 4}));
    EXPECT_EQ(reply[8], c.name[4]) << c.name;
  }
  SimDevice device(5);
  device.SetName("Stage left");
  EXPECT_EQ(device.Name(), "Stage left      ");
  device.SetName({});
  EXPECT_EQ(device.Name(), std::string(16, ' '));
}

TEST(SimDeviceTest, shouldNeverAnswerTheReleaseAndLeaveCommands) {
  SimDevice device(0);
  EXPECT_TRUE(device.Handle(Request(0, 15)).empty());
  EXPECT_TRUE(device.Handle(Request(0, 143)).empty());
  EXPECT_EQ(device.FramesHandled(15), 1);
}

TEST(SimDeviceTest, shouldAcknowledgeByEchoingTheFrame) {
  SimDevice device(1);
  for (std::uint8_t code : {1, 2, 3, 4, 5, 7, 8, 9, 13, 14, 29, 34, 35, 36}) {
    const protocol::Frame request = Request(1, code, {2, 0, 0, 0, 0, 0, 1, 99});
    const auto reply = device.Handle(request);
    EXPECT_TRUE(std::equal(reply.begin(), reply.end(), request.begin(), request.end()))
        << int(code);
  }
}

TEST(SimDeviceTest, shouldReadTheLiveImageAndStoredPresetsAsBlocks) {
  SimDevice device(0, 1);
  const auto live = device.Handle(Request(0, 11, {255, 255}));
  ASSERT_EQ(live.size(), 304u);
  EXPECT_TRUE(std::equal(live.begin(), live.end(), params::DefaultImage[1].begin()));

  for (std::size_t i = 0; i < 304; ++i)
    device.DeviceMemory()[7760 + i] = static_cast<std::uint8_t>(i);
  const auto slot23 = device.Handle(Request(0, 11, {23, 0}));
  ASSERT_EQ(slot23.size(), 304u);
  EXPECT_EQ(slot23[0], 0);
  EXPECT_EQ(slot23[303], 303 % 256);
  EXPECT_TRUE(device.Handle(Request(0, 11, {24, 0})).empty());
}

TEST(SimDeviceTest, shouldReadBackWhatIsWrittenToMemory) {
  SimDevice device(2);
  // Command 17 writes p5 at the address in p1 (high) and p2 (low).
  device.Handle(Request(2, 17, {0x01, 0x70, 0, 0, 'T', 0, 0, 0}));
  // Command 24 writes p3..p6 from the address on.
  device.Handle(Request(2, 24, {0x01, 0x71, 'A', 'L', 'V', 'E', 0, 0}));
  const auto reply = device.Handle(Request(2, 16, {0x01, 0x72}));
  // Bytes 6..9 of the reply hold A-2 .. A+1: the addressed byte sits at 8.
  EXPECT_EQ(reply[4], 0x01);
  EXPECT_EQ(reply[5], 0x72);
  EXPECT_EQ(std::string(reply.begin() + 6, reply.begin() + 10), "TALV");
  const auto low = device.Handle(Request(2, 16, {0, 1}));
  EXPECT_EQ(std::vector<std::uint8_t>(low.begin() + 6, low.begin() + 10),
            (std::vector<std::uint8_t>{0, 0, 0, 0}));
}

TEST(SimDeviceTest, shouldLoadTheFactoryImageOfANewSystemType) {
  SimDevice device(0, 0);
  device.LiveImage()[1] = 42;
  device.Handle(Request(0, 21, {2}));
  EXPECT_EQ(device.SystemType(), 2);
  EXPECT_EQ(device.LiveImage(), params::DefaultImage[2]);
  device.Handle(Request(0, 21, {3}));  // not a type: ignored
  EXPECT_EQ(device.SystemType(), 2);
}

TEST(SimDeviceTest, shouldReportItsStateBesideTheImageForCommand23) {
  SimDevice device(4, 1);
  device.Handle(Request(4, 13, {0, 0, 0, 0, 0, 0, 0, 1}));  // S/PDIF
  device.Handle(Request(4, 2, {2, 0, 0, 0, 7, 0, 1, 5}));   // byte 322 = 7
  device.Handle(Request(4, 17, {0, 0x12, 0, 0, 1}));        // delay unit m
  device.Handle(Request(4, 34, {1}));                       // outputs linked
  device.Handle(Request(4, 17, {0, 0x16, 0, 0, 1}));        // locked
  EXPECT_EQ(protocol::FormatHex(device.Handle(Request(4, 23))),
            "F0 81 04 17 01 01 07 01 01 00 00 00 F7");
  // With an address it reads like command 16: the addressed byte in p5.
  EXPECT_EQ(device.Handle(Request(4, 23, {0, 0x16}))[8], 1);
  EXPECT_EQ(protocol::FormatHex(device.Handle(Request(4, 36))),
            "F0 81 04 24 00 00 00 00 00 00 00 00 F7");
}

TEST(SimDeviceTest, shouldTakeAStoredSlotNameAsTheCurrentPresetName) {
  SimDevice device(0);
  const auto name = [&] {
    std::string text;
    for (std::size_t i = 0; i < 16; ++i)
      text += static_cast<char>(device.DeviceMemory()[0x40 + i]);
    return text;
  };
  EXPECT_EQ(name(), "  Preset Empty  ");
  device.Handle(Request(0, 24, {0x01, 0x90, 'S', 'h', 'o', 'w'}));  // slot 1, bytes 0..3
  EXPECT_EQ(name(), "Showeset Empty  ");
}

TEST(SimDeviceTest, shouldAcknowledgeButKeepItsSettingsWhileLocked) {
  SimDevice device(1);
  device.DeviceMemory()[32 + 2] = 85;
  device.Handle(Request(1, 17, {0, 0x16, 0, 0, 1}));
  ASSERT_TRUE(device.Locked());
  const Memory memoryBefore = device.DeviceMemory();
  const std::vector<protocol::Frame> refused = {
      Request(1, 1, {2, 0, 0, 0, 0, 0, 0, 100}),             // level
      Request(1, 14, {2, 0, 'A', 'B', 'C', 'D', 'E', 'F'}),  // name
      Request(1, 29, {0xFF}),                                // equaliser bypass bits
      Request(1, 24, {0x03, 0x00, 1, 2, 3, 4, 0x03, 0x00}),  // stored preset data
      Request(1, 17, {0x01, 0x70, 0, 0, 'X'}),               // device name
      Request(1, 21, {2}),                                   // system type
      Request(1, 11, {2, 0}),                                // recall of a used slot
  };
  for (const protocol::Frame& request : refused) {
    const auto reply = device.Handle(request);
    const bool acknowledged =
        request[3] == 11 ? reply.size() == 304
                         : std::equal(reply.begin(), reply.end(), request.begin(), request.end());
    EXPECT_TRUE(acknowledged) << protocol::FormatHex(request);
  }
  EXPECT_EQ(device.LiveImage(), params::DefaultImage[0]);
  EXPECT_EQ(device.DeviceMemory(), memoryBefore);
  EXPECT_EQ(device.SystemType(), 0);
  // The password and the lock byte itself are taken.
  device.Handle(Request(1, 17, {0, 0x1D, 0, 0, 9}));
  EXPECT_EQ(device.DeviceMemory()[0x1D], 9);
  device.Handle(Request(1, 17, {0, 0x16, 0, 0, 0}));
  EXPECT_FALSE(device.Locked());
}

}  // namespace
}  // namespace talvex::sim
