// The level meters a device reports for command 18: one byte per channel, on one scale shared by
// the device (the simulator) and the program that reads them.
#pragma once

#include <cstdint>

namespace talvex::protocol::meter {

// The reply to command 18 carries the eight channels' levels in p1..p8 (In A, In B, Out 1 ..
// Out 6, in ChannelIndex order), each in half-dB steps above -60 dBFS: 0 is silence or anything
// at or below -60 dBFS, 120 is 0 dBFS, full scale (a clipped signal reads 120 too). A device
// never sends a byte above 120.
inline constexpr double kFloorDbfs = -60.0;
inline constexpr int kStepsPerDb = 2;
inline constexpr std::uint8_t kSilent = 0;
inline constexpr std::uint8_t kFullScale = 120;

// The byte of a level in dBFS, to the nearest half dB, held to 0 .. 120.
std::uint8_t ByteOfLevel(double dbfs);
// The level in dBFS of a byte: -60 for 0 (silence included), 0 for 120. A byte above 120 reads as
// full scale, so that line noise cannot draw a meter past its end.
double LevelOfByte(std::uint8_t byte);

}  // namespace talvex::protocol::meter
