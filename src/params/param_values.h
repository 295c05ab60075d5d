// ParamValues: the editor's record of one device's settings as numbers, beside the byte image.
// Field numbers are the device tools' own and are kept, so that code reading a field by number
// (the whole-preset transfer, the copy functions) and code using the accessors agree.
#pragma once

#include <array>
#include <cstddef>

#include "params/image_layout.h"
#include "protocol/frame.h"

namespace talvex::params {

namespace field {
inline constexpr int kBandFrequency = 52;  // 52 + band (0..51): band frequency in Hz
inline constexpr int kLevelDb = 208;       // 208 + channel: level in dB
inline constexpr int kMute = 216;          // 216 + channel: 1 = muted
inline constexpr int kPolarity = 224;      // 224 + channel: 1 = inverted (180')
inline constexpr int kOption = 232;        // delay unit of command 17: 0 = ms, 1 = m
// Temperature setting, the position 0..70 of the temperature scroll bar (degrees C + 20); the
// speed of sound for delays shown as time is taken from it. Factory 40 (20 degrees C).
inline constexpr int kTemperature = 233;
inline constexpr int kDbuLevel = 273;     // 273 + channel: limiter threshold value v, 0..150
inline constexpr int kInputSource = 305;  // 0 = analogue, non-zero = S/PDIF
// The last double: the output link switch of command 34 (0 or 1).
inline constexpr int kSwitch = 306;
inline constexpr int kCount = 307;
}  // namespace field

inline constexpr int kDefaultTemperature = 40;

class ParamValues {
 public:
  ParamValues() { fields_[field::kTemperature] = kDefaultTemperature; }

  // A field by number; IndexError outside 0..306.
  double& Field(int number) { return fields_[Checked(number)]; }
  double Field(int number) const { return fields_[Checked(number)]; }

  double& BandFrequency(int band) { return Field(field::kBandFrequency + Band(band)); }
  double BandFrequency(int band) const { return Field(field::kBandFrequency + Band(band)); }
  double& LevelDb(int channel) { return Field(field::kLevelDb + Channel(channel)); }
  double LevelDb(int channel) const { return Field(field::kLevelDb + Channel(channel)); }
  double& Mute(int channel) { return Field(field::kMute + Channel(channel)); }
  double Mute(int channel) const { return Field(field::kMute + Channel(channel)); }
  double& Polarity(int channel) { return Field(field::kPolarity + Channel(channel)); }
  double Polarity(int channel) const { return Field(field::kPolarity + Channel(channel)); }
  double& DbuLevel(int channel) { return Field(field::kDbuLevel + Channel(channel)); }
  double DbuLevel(int channel) const { return Field(field::kDbuLevel + Channel(channel)); }
  double& Option() { return fields_[field::kOption]; }
  double Option() const { return fields_[field::kOption]; }
  double& Temperature() { return fields_[field::kTemperature]; }
  double Temperature() const { return fields_[field::kTemperature]; }
  double& InputSource() { return fields_[field::kInputSource]; }
  double InputSource() const { return fields_[field::kInputSource]; }
  double& Switch() { return fields_[field::kSwitch]; }
  double Switch() const { return fields_[field::kSwitch]; }

 private:
  static std::size_t Checked(int number) {
    CheckIndex(number, field::kCount - 1, "value field");
    return static_cast<std::size_t>(number);
  }
  static int Channel(int channel) {
    CheckIndex(channel, kChannelCount - 1, "channel");
    return channel;
  }
  static int Band(int band) {
    CheckIndex(band, kBandCount - 1, "band");
    return band;
  }

  std::array<double, field::kCount> fields_{};
};

}  // namespace talvex::params
