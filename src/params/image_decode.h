// Reading settings back out of a parameter image: what the response maths, talvexctl and the
// whole-preset transfer need to know of a channel without going through the editor. Each
// takes the image as bytes (a 1155-byte ParamImage or a 304-byte PresetImage) and throws
// IndexError for a channel, band or filter outside its range, or a byte the device would
// never hold (a frequency byte above 240, a width above 63, a gain above 60).
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "params/value_rules.h"

namespace talvex::params {

using ImageBytes = std::span<const std::uint8_t>;

// Level step g (inputs 0..300 from two bytes, high first; outputs 0..180) and in dB.
int LevelStep(ImageBytes image, int channel);
double LevelDb(ImageBytes image, int channel);

// Outputs only (IndexError for an input, whose polarity the image does not hold).
bool PolarityInverted(ImageBytes image, int channel);

// The three delay bytes: coarse count high and low byte, then the fine count.
DelaySteps DelayStepsOf(ImageBytes image, int channel);
int DelaySamples(ImageBytes image, int channel);

// Band b (0..51): frequency byte and Hz, width index into QTextTable (0..3 shelves), gain
// step 0..60 and dB.
int BandFrequencyByte(ImageBytes image, int band);
double BandFrequency(ImageBytes image, int band);
int BandWidthIndex(ImageBytes image, int band);
int BandGainStep(ImageBytes image, int band);
double BandGainDb(ImageBytes image, int band);

// Crossover filter n (0..11; 2(k-1) high-pass, 2(k-1)+1 low-pass of Out k): frequency byte,
// Hz, and filter type 0..8 (CrossoverTypeNames; 0 = no cut-off).
int CrossoverFrequencyByte(ImageBytes image, int filter);
double CrossoverFrequency(ImageBytes image, int filter);
int CrossoverType(ImageBytes image, int filter);

// Outputs only (IndexError for an input).
int OutputSource(ImageBytes image, int channel);        // 0 = In A, 1 = In B
int ThresholdStep(ImageBytes image, int channel);       // v 0..150
double ThresholdDbu(ImageBytes image, int channel);     // v / 5 - 10
int AttackIndex(ImageBytes image, int channel);         // into AttackTimesMs
int ReleaseIndex(ImageBytes image, int channel);        // into ReleaseTimesMs
std::string OutputName(ImageBytes image, int channel);  // the six name bytes

// The limiter level of command 35: an index into LimiterLevelTexts (low nibble of its byte).
int LimiterLevel(ImageBytes image, int channel);

bool EqBypassed(ImageBytes image, int channel);  // byte 299, bit BitValues[channel]
int SystemType(ImageBytes image);                // byte 298

}  // namespace talvex::params
