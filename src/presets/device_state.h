// Reading what a device holds beside its live image when it is connected: the settings kept
// outside the preset (input source, delay unit, lock state ...), the used marks and names of
// its 24 stored presets, and the name of the preset it runs.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "link/link.h"
#include "params/device_params.h"

namespace talvex::presets {

// What the editor keeps of a connected device beside its stores. The five doubles are the
// copies of image bytes 321, 322, 323, 327 and 328 the editor works with.
struct DeviceState {
  int systemType = 0;      // as the device reports it (command 23)
  double inputSource = 0;  // image 321: 0 analogue, 1 S/PDIF
  double deviceWide = 0;   // image 322: rides with every delay command
  double option = 0;       // image 323: the delay unit, 0 = ms, 1 = m
  double lock = 0;         // image 327: 1 = locked (device memory 0x16)
  double outputLink = 0;   // image 328: the output link switch of command 34
  std::array<double, params::kSlotCount> usedMarks{};       // 85 = the slot holds a preset
  std::array<std::string, params::kSlotCount> slotNames{};  // empty for an unused slot
  // The lock password as the device keeps it (six table places, see system_lock.h); known once
  // ReadDevicePassword has read it, forgotten when a new one was only partly written.
  std::optional<std::array<std::uint8_t, 6>> password;

  bool SlotUsed(int slot) const;
  bool Locked() const { return lock != 0; }
};

enum class StateRead {
  Received,  // `device` and `state` hold what the device said
  Skipped,   // the link sends nothing (demo mode, not open, suspended): nothing changed
  Failed,    // an exchange went unanswered (the link has reported it); the read ended there
};

// Called after each exchange of a longer read, with the number of exchanges done so far.
using ExchangeDone = std::function<void(int done)>;

// `into.size()` bytes of device memory from `address` on, with command 16, four bytes per
// exchange: a memory read answers with the addressed byte's two predecessors, the byte and its
// successor in reply bytes 6..9, so four bytes from B on are asked for at B + 2. Received;
// Skipped when the link sends nothing; Failed when an exchange went unanswered (the link has
// reported it), with `into` holding only the bytes read before it.
StateRead ReadDeviceMemory(link::Link& link, int deviceId, std::size_t address,
                           std::span<std::uint8_t> into, const ExchangeDone& exchanged = {});

// The device's state read, exchange by exchange:
//   1. command 23 twice with all parameters 0: the device's settings (the second answer is
//      taken: system type, input source, byte 322, delay unit, output link switch);
//   2. command 16 six times for the 24 used marks at 32 + s, four per exchange;
//   3. for each slot whose mark is 85, its 16-character name at 384 + 16 s, four characters
//      per exchange (reply bytes 6..9); an unused slot gets the empty text;
//   4. the current preset's name at 0x40, four characters per exchange, into image 305..320;
//   5. command 23 with the lock's address 0x16 in p1, p2: the lock state (reply p5) -> 327;
//   6. command 16 with p1..p3 = 31, 31, 254, which the device's tools always sent here; its
//      answer is not used;
//   7. command 36 with all parameters 0, which ends the state read.
// Image bytes 321, 322, 323, 327 and 328 take the device's values, and their copies go into
// `state` and into the values the editor reads (input source, delay unit, link switch) once
// everything has been read, so that no half-read state is ever kept. Any failed exchange ends
// the read with nothing changed.
StateRead ReadDeviceState(link::Link& link, int deviceId, params::DeviceParams& device,
                          DeviceState& state);

}  // namespace talvex::presets
