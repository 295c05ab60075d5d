// A preset on which every response element works: shared by the benchmarks of the response
// maths and of the graph's painting, so both measure the same curves.
#pragma once

#include "graph/response_settings.h"

namespace talvex::graph {

// Each channel: a low shelf, bells of varied width and gain, a high shelf; each output a
// high-pass and a low-pass of the heavier types; delays and an inverted polarity.
inline ResponseSettings BusySettings() {
  ResponseSettings settings;
  for (int channel = 0; channel < kChannelCount; ++channel) {
    const int first = FirstBandOfChannel(channel);
    const int count = BandsOf(channel);
    for (int k = 0; k < count; ++k) {
      const int step = 10 + (7 * (first + k)) % 41;  // -10 .. +10 dB, never 0 dB
      BandSettings& band = settings.bands[static_cast<std::size_t>(first + k)];
      band.gainStep = step == 30 ? 34 : step;
      band.gainDb = band.gainStep / 2.0 - 15.0;
      band.frequencyHz = 40.0 * (1 << k);
      band.widthIndex = k == 0 ? 2 : (k == count - 1 ? 0 : 4 + 9 * k);
    }
    settings.channels[static_cast<std::size_t>(channel)].delaySamples = 37 * channel;
    settings.channels[static_cast<std::size_t>(channel)].polarityInverted = channel % 2 == 1;
  }
  for (int box = 0; box < kCrossoverFilterCount; ++box) {
    settings.crossovers[static_cast<std::size_t>(box)] = {box % 2 == 0 ? 80.0 : 2500.0,
                                                          box % 4 < 2 ? 8 : 6};
  }
  return settings;
}

}  // namespace talvex::graph
