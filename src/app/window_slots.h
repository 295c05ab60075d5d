// The table of editor-window slots: at most 11 editor windows, one per device, each in a slot.
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace talvex::app {

inline constexpr int kWindowSlotCount = 11;

// The device's tools say 32 although the limit is 11 windows; both are kept as they are.
inline constexpr std::string_view kOutOfMemoryTitle = "Out of memory";
inline constexpr std::string_view kOutOfMemoryText =
    "Out of memory: max number of window open is 32";
inline constexpr std::string_view kAlreadyOpenTitle = "Speakers Edit";
inline constexpr std::string_view kAlreadyOpenText = "The window is already open";

struct WindowSlot {
  bool inUse = false;
  int deviceId = 0;
};

enum class OpenRefusal { None, OutOfMemory, AlreadyOpen };

struct OpenResult {
  std::optional<int> slot;  // the slot taken, when the window may open
  OpenRefusal refusal = OpenRefusal::None;
};

class WindowSlots {
 public:
  // Counts the window in, then refuses when that makes 11 or more open windows (the count is
  // set back to 10) or when the device's window is open (the count is taken back); otherwise takes
  // the lowest free slot and makes it the current one.
  OpenResult Open(int deviceId);
  // Frees the slot and counts the window out. Throws IndexError for a slot above 10.
  void Close(int slot);

  // -1 when no editor window is open.
  int OpenWindowCount() const { return openWindowCount_; }
  int CurrentSlot() const { return currentSlot_; }
  void SetCurrentSlot(int slot);
  const WindowSlot& Slot(int slot) const;
  std::optional<int> SlotOfDevice(int deviceId) const;

 private:
  std::array<WindowSlot, kWindowSlotCount> slots_{};
  int openWindowCount_ = -1;
  int currentSlot_ = 0;
};

}  // namespace talvex::app
