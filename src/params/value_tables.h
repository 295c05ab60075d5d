// Value and label tables shared by the parameter model, the editor and the response maths.
// All fixed data: built at compile time, read-only for the life of the program.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "params/decimal_mark.h"

namespace talvex::params {

inline constexpr std::array<std::string_view, 5> EqTypeNames = {
    "HiSHF -12dB", "HiSHF -6dB", "LoSHF -12dB", "LoSHF -6dB", "BELL"};

inline constexpr std::array<std::string_view, 3> SystemTypeNames = {"2x2 WAY XOVER + SUB",
                                                                    "2x3 WAY XOVER", "6 WAY XOVER"};

inline constexpr std::array<std::string_view, 2> OutputSourceLabels = {"+ InA", "+ InB"};

inline constexpr std::array<std::string_view, 2> DelayUnits = {" ms", " m"};

// Shown for a device preset slot that holds nothing; 16 characters.
inline constexpr std::string_view EmptyPresetName = "  Preset Empty  ";

// The characters allowed in names; a character's index here is its code.
inline constexpr std::string_view NameCharSet =
    " 0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

inline constexpr std::array<std::uint8_t, 8> BitValues = {1, 2, 4, 8, 16, 32, 64, 128};
inline constexpr std::array<std::uint8_t, 8> HighBitMasks = {0, 64, 96, 112, 120, 124, 126, 127};
inline constexpr std::array<std::uint8_t, 6> LowMasks = {126, 62, 30, 14, 6, 0};

inline constexpr std::array<std::string_view, 11> GainLevelList = {
    "OFF",   "-99.0", "-98.0", "-97.0", "-96.0", "-95.0",
    "-94.0", "-93.0", "-92.0", "-91.0", "-90.0"};

inline constexpr std::array<std::string_view, 41> HundredsList = {
    "100", "110", "120", "130", "140", "150", "160", "170", "180", "190", "200",
    "210", "220", "230", "240", "250", "260", "270", "280", "290", "300", "310",
    "320", "330", "340", "350", "360", "370", "380", "390", "400", "410", "420",
    "430", "440", "450", "460", "470", "480", "490", "500",
};

// Numbers right-aligned to three characters.
inline constexpr std::array<std::string_view, 52> SmallNumberList = {
    "0.5", "  1", "  2", "  3", "  4", "  5", "  6", "  7", "  8", "  9", " 10", " 11", " 12",
    " 13", " 14", " 15", " 16", " 17", " 18", " 19", " 20", " 21", " 22", " 23", " 24", " 25",
    " 26", " 27", " 28", " 29", " 30", " 31", " 32", " 33", " 34", " 35", " 36", " 37", " 38",
    " 39", " 40", " 50", " 60", " 70", " 80", " 90", "100", "120", "140", "160", "180", "200",
};

// Width labels of an EQ band: 0..3 the shelves, 4..63 a bell of width 0.05 .. 3.00.
// Two variants that differ only in the decimal mark; QTextTable(mark) picks one.
inline constexpr std::array<std::string_view, 64> QTextTablePoint = {
    "-12 Hi-Sh", "-6 Hi-Sh", "-12 Lo-Sh", "-6 Lo-Sh", "0.05", "0.10", "0.15", "0.20",
    "0.25",      "0.30",     "0.35",      "0.40",     "0.45", "0.50", "0.55", "0.60",
    "0.65",      "0.70",     "0.75",      "0.80",     "0.85", "0.90", "0.95", "1.00",
    "1.05",      "1.10",     "1.15",      "1.20",     "1.25", "1.30", "1.35", "1.40",
    "1.45",      "1.50",     "1.55",      "1.60",     "1.65", "1.70", "1.75", "1.80",
    "1.85",      "1.90",     "1.95",      "2.00",     "2.05", "2.10", "2.15", "2.20",
    "2.25",      "2.30",     "2.35",      "2.40",     "2.45", "2.50", "2.55", "2.60",
    "2.65",      "2.70",     "2.75",      "2.80",     "2.85", "2.90", "2.95", "3.00",
};
inline constexpr std::array<std::string_view, 64> QTextTableComma = {
    "-12 Hi-Sh", "-6 Hi-Sh", "-12 Lo-Sh", "-6 Lo-Sh", "0,05", "0,10", "0,15", "0,20",
    "0,25",      "0,30",     "0,35",      "0,40",     "0,45", "0,50", "0,55", "0,60",
    "0,65",      "0,70",     "0,75",      "0,80",     "0,85", "0,90", "0,95", "1,00",
    "1,05",      "1,10",     "1,15",      "1,20",     "1,25", "1,30", "1,35", "1,40",
    "1,45",      "1,50",     "1,55",      "1,60",     "1,65", "1,70", "1,75", "1,80",
    "1,85",      "1,90",     "1,95",      "2,00",     "2,05", "2,10", "2,15", "2,20",
    "2,25",      "2,30",     "2,35",      "2,40",     "2,45", "2,50", "2,55", "2,60",
    "2,65",      "2,70",     "2,75",      "2,80",     "2,85", "2,90", "2,95", "3,00",
};

constexpr const std::array<std::string_view, 64>& QTextTable(DecimalMark mark) {
  return mark == DecimalMark::Comma ? QTextTableComma : QTextTablePoint;
}

// Limiter attack times in ms by attack byte (output +2), the numbers of SmallNumberList.
inline constexpr std::array<double, 52> AttackTimesMs = [] {
  std::array<double, 52> times{};
  times[0] = 0.5;
  for (int i = 1; i <= 40; ++i)
    times[static_cast<std::size_t>(i)] = i;  // 1 .. 40 in steps of 1
  for (int i = 41; i <= 46; ++i)
    times[static_cast<std::size_t>(i)] = 50 + 10 * (i - 41);  // 50 .. 100
  for (int i = 47; i <= 51; ++i)
    times[static_cast<std::size_t>(i)] = 120 + 20 * (i - 47);  // 120 .. 200
  return times;
}();

// Limiter release times in ms by release byte (output +3), the numbers of HundredsList.
inline constexpr std::array<double, 41> ReleaseTimesMs = [] {
  std::array<double, 41> times{};
  for (std::size_t i = 0; i < times.size(); ++i)
    times[i] = 100.0 + 10.0 * static_cast<double>(i);
  return times;
}();

// Level texts of the limiter selected by command 35; the label reads "  Limit" and one of
// them. LimiterLevelDbu holds their numbers (index 0, " Clip", has none).
inline constexpr std::string_view kLimitLabel = "  Limit";
inline constexpr std::array<std::string_view, 10> LimiterLevelTexts = {
    " Clip",   "+15 dBu", "+ 9 dBu", "+ 3 dBu", "   0 dBu",
    "- 3 dBu", "- 6 dBu", "- 9 dBu", "-12 dBu", "-15 dBu"};
inline constexpr std::array<int, 10> LimiterLevelDbu = {0, 15, 9, 3, 0, -3, -6, -9, -12, -15};
// Inputs only guard their converters and offer the first five texts (" Clip" .. "   0 dBu");
// outputs, which also protect drivers, offer all ten.
inline constexpr int kInputLimiterLevels = 5;
inline constexpr int kOutputLimiterLevels = 10;

// Filter type of a crossover filter (the byte after its frequency byte): Butterworth (Bw),
// Linkwitz-Riley (Lz) and Bessel (Bs) slopes; 0 leaves the filter off.
inline constexpr std::array<std::string_view, 9> CrossoverTypeNames = {
    "  No cut-off", "- 6 dB/oct Bw", "-12dB/oct Bw", "-12dB/oct Lz", "-12dB/oct Bs",
    "-18dB/oct Bw", "-24dB/oct Bw",  "-24dB/oct Lz", "-24dB/oct Bs"};

// Captions of the input labels (analogue inputs, or both inputs on S/PDIF), the mute button,
// the polarity label and a channel's equaliser.
inline constexpr std::array<std::string_view, 2> AnalogInputLabels = {"Input 1", "Input 2"};
// The input type list of the editor: the source byte 0 (analogue) or 1 (S/PDIF).
inline constexpr std::array<std::string_view, 2> InputTypeNames = {"Analog", "Digital"};
inline constexpr std::string_view kSpdifInputLabel = " SPDIF ";
inline constexpr std::string_view kMuteCaption = "Mute";      // shown while the channel plays
inline constexpr std::string_view kUnmuteCaption = "Unmute";  // shown while it is muted
inline constexpr std::array<std::string_view, 2> PolarityLabels = {"0'", "180'"};
inline constexpr std::string_view kEqFlatCaption = "Flat";
inline constexpr std::string_view kEqShapedCaption = "~~~~~~";

inline constexpr std::size_t kFrequencyCount = 241;

// The device's frequency grid in Hz: eight steps per third of an octave on rounded values,
// which are the device's own and must be taken as they stand. A frequency byte is an index here.
inline constexpr std::array<double, kFrequencyCount> FrequencyTable = {
    20.0,    20.6,    21.2,    21.8,    22.5,    23.1,    23.7,    24.3,    25.0,    25.8,
    26.6,    27.4,    28.2,    29.0,    29.8,    30.6,    31.5,    32.5,    33.6,    34.6,
    35.7,    36.8,    37.8,    38.9,    40.0,    41.2,    42.5,    43.7,    45.0,    46.2,
    47.5,    48.7,    50.0,    51.6,    53.2,    54.8,    56.5,    58.1,    59.7,    61.3,
    63.0,    65.1,    67.2,    69.3,    71.5,    73.6,    75.7,    77.8,    80.0,    82.5,
    85.0,    87.5,    90.0,    92.5,    95.0,    97.5,    100.0,   103.0,   106.0,   109.0,
    112.0,   115.0,   118.0,   121.0,   125.0,   129.0,   133.0,   138.0,   142.0,   146.0,
    151.0,   155.0,   160.0,   165.0,   170.0,   175.0,   180.0,   185.0,   190.0,   195.0,
    200.0,   206.0,   212.0,   218.0,   225.0,   231.0,   237.0,   243.0,   250.0,   258.0,
    266.0,   274.0,   282.0,   290.0,   298.0,   306.0,   315.0,   325.0,   336.0,   346.0,
    357.0,   368.0,   378.0,   389.0,   400.0,   412.0,   425.0,   437.0,   450.0,   462.0,
    475.0,   487.0,   500.0,   516.0,   532.0,   548.0,   565.0,   581.0,   597.0,   613.0,
    630.0,   651.0,   672.0,   693.0,   715.0,   736.0,   757.0,   778.0,   800.0,   825.0,
    850.0,   875.0,   900.0,   925.0,   950.0,   975.0,   1000.0,  1030.0,  1060.0,  1090.0,
    1120.0,  1150.0,  1180.0,  1210.0,  1250.0,  1290.0,  1330.0,  1380.0,  1420.0,  1460.0,
    1510.0,  1550.0,  1600.0,  1650.0,  1700.0,  1750.0,  1800.0,  1850.0,  1900.0,  1950.0,
    2000.0,  2060.0,  2120.0,  2180.0,  2250.0,  2310.0,  2370.0,  2430.0,  2500.0,  2580.0,
    2660.0,  2740.0,  2820.0,  2900.0,  2980.0,  3060.0,  3150.0,  3250.0,  3360.0,  3460.0,
    3570.0,  3680.0,  3780.0,  3890.0,  4000.0,  4120.0,  4250.0,  4370.0,  4500.0,  4620.0,
    4750.0,  4870.0,  5000.0,  5160.0,  5320.0,  5480.0,  5650.0,  5810.0,  5970.0,  6130.0,
    6300.0,  6510.0,  6720.0,  6930.0,  7150.0,  7360.0,  7570.0,  7780.0,  8000.0,  8250.0,
    8500.0,  8750.0,  9000.0,  9250.0,  9500.0,  9750.0,  10000.0, 10300.0, 10600.0, 10900.0,
    11200.0, 11500.0, 11800.0, 12100.0, 12500.0, 12900.0, 13300.0, 13800.0, 14200.0, 14600.0,
    15100.0, 15500.0, 16000.0, 16500.0, 17000.0, 17500.0, 18000.0, 18500.0, 19000.0, 19500.0,
    20000.0,
};

// Q of a bell band by width index 0..59 (width 0.05 .. 3.00 octaves):
// Q = (2^w + 1) / (2 (2^w - 1)), stored to six decimals as the device's tools keep it.
inline constexpr std::array<double, 60> QValueTable = {
    28.856789, 14.432726, 9.626630, 7.225024, 5.785214, 4.826300, 4.142183, 3.629813, 3.231940,
    2.914214,  2.654774,  2.439050, 2.256950, 2.101269, 1.966721, 1.849344, 1.746104, 1.654646,
    1.573108,  1.500000,  1.434117, 1.374472, 1.320251, 1.270774, 1.225471, 1.183859, 1.145527,
    1.110122,  1.077340,  1.046918, 1.018626, 0.992263, 0.967653, 0.944640, 0.923086, 0.902868,
    0.883877,  0.866015,  0.849193, 0.833333, 0.818364, 0.804220, 0.790843, 0.778180, 0.766182,
    0.754804,  0.744007,  0.733752, 0.724006, 0.714737, 0.705916, 0.697517, 0.689513, 0.681884,
    0.674606,  0.667661,  0.661030, 0.654697, 0.648644, 0.642857,
};

// Shelf corner corrections of the 6 dB (T6) and 12 dB (T12) shelves, indexed 0..60,
// symmetric about index 30.
inline constexpr std::array<double, 61> T6 = {
    2.2,  2.12, 2.08, 2.02, 1.98, 1.9,  1.85, 1.75, 1.7,  1.65, 1.6,  1.53, 1.45, 1.38, 1.3, 1.23,
    1.15, 1.07, 1.0,  1.0,  1.0,  1.0,  1.0,  1.0,  1.0,  1.0,  1.0,  1.0,  1.0,  1.0,  1.0, 1.0,
    1.0,  1.0,  1.0,  1.0,  1.0,  1.0,  1.0,  1.0,  1.0,  1.0,  1.0,  1.07, 1.15, 1.23, 1.3, 1.38,
    1.45, 1.53, 1.6,  1.65, 1.7,  1.75, 1.85, 1.9,  1.98, 2.02, 2.08, 2.12, 2.2,
};
inline constexpr std::array<double, 61> T12 = {
    1.37, 1.35,  1.335, 1.315, 1.3,  1.277, 1.26,  1.247, 1.23, 1.21, 1.19, 1.17, 1.15,
    1.13, 1.11,  1.085, 1.06,  1.03, 1.0,   1.0,   1.0,   1.0,  1.0,  1.0,  1.0,  1.0,
    1.0,  1.0,   1.0,   1.0,   1.0,  1.0,   1.0,   1.0,   1.0,  1.0,  1.0,  1.0,  1.0,
    1.0,  1.0,   1.0,   1.0,   1.03, 1.06,  1.085, 1.11,  1.13, 1.15, 1.17, 1.19, 1.21,
    1.23, 1.247, 1.26,  1.277, 1.3,  1.315, 1.335, 1.35,  1.37,
};

}  // namespace talvex::params
