// What the response maths reads of one device: a plain copy of the parameters that shape the
// curves, so the maths needs neither the parameter model nor the editor.
#pragma once

#include <array>
#include <cstdint>

#include "params/image_layout.h"
#include "params/value_rules.h"

namespace talvex::graph {

// The channel and band layout is the parameter model's.
using params::kBandCount;
using params::kChannelCount;
using params::kOutputCount;
inline constexpr int kCrossoverFilterCount = params::kCrossoverCount;
inline constexpr int kWidthCount = static_cast<int>(params::QTextTablePoint.size());  // 0..63
inline constexpr int kShelfCodeCount = params::kFirstBellWidth;  // width 0..3 is a shelf
inline constexpr int kGainStepMax = 60;                          // gain byte 0..60
inline constexpr int kCrossoverTypeCount = static_cast<int>(params::CrossoverTypeNames.size());

struct BandSettings {
  double gainDb = 0.0;          // band gain; the device's grid is gainStep / 2 - 15
  double frequencyHz = 1000.0;  // centre of a bell, corner of a shelf
  // 0..3: shelf code ("HiSHF -12dB", "HiSHF -6dB", "LoSHF -12dB", "LoSHF -6dB");
  // 4..63: a bell with Q = QValueTable[widthIndex - 4].
  int widthIndex = 9;
  // The gain byte g = 60 - position of the band's gain slider (0..60, 30 = 0 dB). The shelf
  // corner corrections T6 and T12 are indexed by it: the gain slider is the band control whose
  // position picks the correction, so a shelf's corner moves further the harder it is driven,
  // the same for a cut as for a boost (both tables are symmetric about 30).
  int gainStep = 30;
};

// Crossover filter types, in the order of the editor's list.
enum class CrossoverType : int {
  kNone = 0,          // "  No cut-off"
  kButterworth6 = 1,  // "- 6 dB/oct Bw"
  kButterworth12 = 2,
  kLinkwitzRiley12 = 3,
  kBessel12 = 4,
  kButterworth18 = 5,
  kButterworth24 = 6,
  kLinkwitzRiley24 = 7,
  kBessel24 = 8,
};

struct CrossoverSettings {
  double frequencyHz = 1000.0;
  int type = 0;  // CrossoverType code 0..8
};

struct ChannelSettings {
  std::int32_t delaySamples = 0;  // at the 48 kHz sample clock; signed
  bool polarityInverted = false;
  double levelDb = 0.0;  // added to the drawn magnitude only
  int source = 0;        // outputs: the input that feeds them, 0 = In A, 1 = In B
};

// Crossover filters are kept here by frequency-box index n, the way the editor and the image
// number them: n = 2(k-1) is the high-pass and n = 2(k-1)+1 the low-pass filter of Out k.
// The response tables number them the other way round; see ResponseSlotOfBox.
struct ResponseSettings {
  std::array<BandSettings, kBandCount> bands{};
  std::array<CrossoverSettings, kCrossoverFilterCount> crossovers{};
  std::array<ChannelSettings, kChannelCount> channels{};
};

// Response slot s of a crossover filter: 2k is the low-pass and 2k+1 the high-pass filter of
// output k (0..5). Frequency box n: 2(k-1) high-pass, 2(k-1)+1 low-pass of Out k. So the two
// numberings swap the filters of each pair. Both throw IndexError outside 0..11.
int ResponseSlotOfBox(int box);
int BoxOfResponseSlot(int slot);
inline constexpr bool IsHighPassSlot(int slot) {
  return slot % 2 == 1;
}
// ChannelIndex (2..7) of the output that response slot `slot` belongs to.
inline constexpr int ChannelOfSlot(int slot) {
  return slot / 2 + 2;
}

// ChannelIndex of band b (0..4 In A, 5..9 In B, then seven bands per output), its first band
// and its band count: the parameter model's numbering. IndexError outside the ranges.
using params::ChannelOfBand;
inline int FirstBandOfChannel(int channel) {
  return params::GlobalBand(channel, 0);
}
using params::BandsOf;

}  // namespace talvex::graph
