#include "app/window_slots.h"

#include "protocol/frame.h"

namespace talvex::app {

OpenResult WindowSlots::Open(int deviceId) {
  CheckIndex(deviceId, kMaxDeviceId, "device ID");
  ++openWindowCount_;
  if (openWindowCount_ >= kWindowSlotCount) {
    openWindowCount_ = kWindowSlotCount - 1;
    return {std::nullopt, OpenRefusal::OutOfMemory};
  }
  if (SlotOfDevice(deviceId)) {
    --openWindowCount_;
    return {std::nullopt, OpenRefusal::AlreadyOpen};
  }
  for (int slot = 0; slot < kWindowSlotCount; ++slot) {
    if (slots_[static_cast<std::size_t>(slot)].inUse) continue;
    slots_[static_cast<std::size_t>(slot)] = {true, deviceId};
    currentSlot_ = slot;
    return {slot, OpenRefusal::None};
  }
  throw IndexError("no free editor slot although fewer than 11 windows are counted open");
}

void WindowSlots::Close(int slot) {
  CheckIndex(slot, kWindowSlotCount - 1, "window slot");
  if (!slots_[static_cast<std::size_t>(slot)].inUse) return;
  slots_[static_cast<std::size_t>(slot)].inUse = false;
  --openWindowCount_;
}

void WindowSlots::SetCurrentSlot(int slot) {
  CheckIndex(slot, kWindowSlotCount - 1, "window slot");
  currentSlot_ = slot;
}

const WindowSlot& WindowSlots::Slot(int slot) const {
  CheckIndex(slot, kWindowSlotCount - 1, "window slot");
  return slots_[static_cast<std::size_t>(slot)];
}

std::optional<int> WindowSlots::SlotOfDevice(int deviceId) const {
  for (int slot = 0; slot < kWindowSlotCount; ++slot) {
    const WindowSlot& entry = slots_[static_cast<std::size_t>(slot)];
    if (entry.inUse && entry.deviceId == deviceId) return slot;
  }
  return std::nullopt;
}

}  // namespace talvex::app
