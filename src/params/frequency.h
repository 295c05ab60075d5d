// The device's frequency grid: a frequency byte is an index into FrequencyTable.
#pragma once

#include <cstdint>

namespace talvex::params {

// The device's byte for `hz`: the table is walked upward from 20 Hz; the first entry equal to
// `hz` is taken, and at the first entry above it the nearer of that entry and the one before
// (the lower one when both are as near). Nothing above 20000 Hz is ever met on that walk, so
// such a frequency gives byte 0: callers clamp to 20 .. 20000 Hz first.
std::uint8_t FrequencyToByte(double hz);

// The frequency the device will really use for `hz`: FrequencyTable[FrequencyToByte(hz)].
double SnapFrequency(double hz);

// FrequencyTable[byte]; IndexError for a byte above 240.
double ByteToFrequency(int byte);

}  // namespace talvex::params
