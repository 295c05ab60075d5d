#include "params/image_layout.h"

#include "protocol/frame.h"

namespace talvex::params {

// Bands are numbered inputs first (5 each), then outputs (7 each): 0..4 In A, 5..9 In B,
// 10..16 Out 1, ... 45..51 Out 6.
int GlobalBand(int channel, int bandInChannel) {
  CheckIndex(channel, kChannelCount - 1, "channel");
  CheckIndex(bandInChannel, BandsOf(channel) - 1, "band in channel");
  if (channel < kInputCount) return kInputBands * channel + bandInChannel;
  return kInputCount * kInputBands + kOutputBands * (channel - kInputCount) + bandInChannel;
}

int ChannelOfBand(int band) {
  CheckIndex(band, kBandCount - 1, "band");
  constexpr int kInputBandTotal = kInputCount * kInputBands;
  if (band < kInputBandTotal) return band / kInputBands;
  return kInputCount + (band - kInputBandTotal) / kOutputBands;
}

int BandInChannel(int band) {
  return band - GlobalBand(ChannelOfBand(band), 0);
}

}  // namespace talvex::params
