// What a parameter of a device is, for every front end: its kind and the channel, band or
// filter it belongs to, and where the device's record keeps it.
#pragma once

#include <vector>

namespace talvex::params {

enum class ParamKind {
  InputSource,        // device-wide: 0 = analogue ("Input 1"/"Input 2"), 1 = S/PDIF
  Level,              // dB
  Mute,               // 1 = muted
  Polarity,           // 1 = inverted (180')
  Delay,              // two step counts, shown in the device's delay unit
  Limiter,            // the level of command 35, an index into LimiterLevelTexts
  EqFrequency,        // Hz, on FrequencyTable
  EqQ,                // a bell's width 0.05 .. 3.00 (QTextTable 4..63)
  EqGain,             // dB in 0.5 dB steps
  EqType,             // EqTypeNames: the four shelves, or "BELL"
  EqBypass,           // 1 = the channel's equaliser is bypassed (byte 299)
  OutputSource,       // outputs: 0 = In A, 1 = In B
  HighPassFrequency,  // outputs: Hz, on FrequencyTable
  HighPassType,       // outputs: CrossoverTypeNames 0..8
  LowPassFrequency,
  LowPassType,
  Threshold,    // outputs: limiter threshold, dBu
  Attack,       // outputs: limiter attack, ms (AttackTimesMs)
  Release,      // outputs: limiter release, ms (ReleaseTimesMs)
  Name,         // outputs: up to six characters
  DelayUnit,    // device-wide: 0 = ms, 1 = m
  OutputLink,   // device-wide: 1 = outputs are edited in linked pairs
  Temperature,  // device-wide: the air temperature delays are shown with, degrees C
};

struct ParamRef {
  ParamKind kind = ParamKind::Level;
  int channel = 0;  // ChannelIndex; 0 for the device-wide kinds
  int band = 0;     // global band number 0..51 for the equaliser band kinds
  friend bool operator==(const ParamRef&, const ParamRef&) = default;
};

bool IsEqBandKind(ParamKind kind);  // frequency, Q, gain, type of one band
bool IsCrossoverKind(ParamKind kind);
bool IsOutputOnly(ParamKind kind);
bool IsDeviceWide(ParamKind kind);
// Crossover filter n of a crossover kind: 2(k-1) high-pass, 2(k-1)+1 low-pass of Out k.
int FilterOf(const ParamRef& ref);
// The crossover kinds of filter n's frequency and type.
ParamRef CrossoverFrequencyRef(int filter);
ParamRef CrossoverTypeRef(int filter);

// Where a parameter is kept in a device's record.
enum class Storage {
  Preset,     // bytes 0..303: a device's live image and a preset file both hold it
  Record,     // beyond byte 303: a preset file and the state read hold it, a live image not
  NotStored,  // in no image (mutes, input polarity, temperature): it can be set, never read back
};
Storage StorageOf(const ParamRef& ref);

// Every parameter of a device: the device-wide ones first, then channel by channel.
std::vector<ParamRef> AllParams();

}  // namespace talvex::params
