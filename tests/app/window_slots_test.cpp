#include "app/window_slots.h"

#include <gtest/gtest.h>

#include "protocol/frame.h"

namespace talvex::app {
namespace {

TEST(WindowSlotsTest, shouldRefuseATwelfthWindowAndKeepTheCountAtTen) {
  WindowSlots table;
  EXPECT_EQ(table.OpenWindowCount(), -1);
  for (int id = 0; id < 11; ++id) {
    const OpenResult result = table.Open(id);
    ASSERT_EQ(result.slot, id);
    EXPECT_EQ(table.CurrentSlot(), id);
  }
  EXPECT_EQ(table.OpenWindowCount(), 10);
  EXPECT_EQ(table.Open(20).refusal, OpenRefusal::OutOfMemory);
  EXPECT_EQ(table.OpenWindowCount(), 10);
  // With all table taken even an open device meets "Out of memory" first.
  EXPECT_EQ(table.Open(3).refusal, OpenRefusal::OutOfMemory);

  table.Close(4);
  EXPECT_EQ(table.OpenWindowCount(), 9);
  EXPECT_EQ(table.Open(20).slot, 4);  // the lowest free slot
  EXPECT_EQ(table.Open(21).refusal, OpenRefusal::OutOfMemory);
}

TEST(WindowSlotsTest, shouldLeaveTheCountUnchangedWhenTheDeviceIsOpenAlready) {
  WindowSlots table;
  table.Open(7);
  table.Open(9);
  EXPECT_EQ(table.Open(7).refusal, OpenRefusal::AlreadyOpen);
  EXPECT_EQ(table.OpenWindowCount(), 1);
  EXPECT_EQ(table.SlotOfDevice(9), 1);
}

TEST(WindowSlotsTest, shouldRefuseIndexesOutOfRange) {
  WindowSlots table;
  EXPECT_THROW(table.Close(11), IndexError);
  EXPECT_THROW(table.Slot(-1), IndexError);
  EXPECT_THROW(table.Open(33), IndexError);
  EXPECT_EQ(table.OpenWindowCount(), -1);
}

}  // namespace
}  // namespace talvex::app
