// Where the response graph puts things: the display scale, the width of the three decades
// 20 Hz .. 20 kHz, the row of 0 dB and 0 degrees, pixels per dB and per degree, and the x of
// every whole hertz. Worked out once at start-up from the display's logical pixels per inch
// and shared, read-only, by every editor window.
#pragma once

#include <vector>

namespace talvex::graph {

// Pixels per degree: 360 degrees over 191 pixels, whatever the display scale.
inline constexpr float kPhaseScale = 0.5305555f;

// The graph picture in twips (15 to a pixel at 96 dots per inch): 577 x 193 pixels, that is
// the plotted 575 x 191 plus a one-pixel frame, and the middle row at 96.5 pixels; 60 dB is
// the height of the magnitude scale. The axes and their labels are drawn from these.
inline constexpr float kPictureWidthTwips = 8655.0f;
inline constexpr float kPictureHeightTwips = 2895.0f;
inline constexpr float kPictureMiddleTwips = 1447.5f;
inline constexpr float kMagnitudeRangeDb = 60.0f;

class GraphGeometry {
 public:
  // std::invalid_argument unless logicalDpi > 0.
  explicit GraphGeometry(int logicalDpi);

  float DisplayScale() const { return displayScale_; }  // 1.0 at 96 dots per inch
  float GraphWidth() const { return graphWidth_; }
  float ZeroLine() const { return zeroLine_; }
  float DbScale() const { return dbScale_; }

  // x of a whole-hertz frequency 0..20000: -1 below 20 Hz (so the curve starts at the left
  // edge), 0 below 10 Hz. IndexError outside 0..20000.
  float FrequencyX(int hz) const;
  // The frequency at x pixels from the plot's left edge (held to the plot): FrequencyX's
  // inverse, for a cursor.
  double FrequencyAtX(double x) const;
  // y of a magnitude in dB (the channel's response plus its level) and of a phase in degrees.
  float MagnitudeY(float db) const { return zeroLine_ - dbScale_ * db; }
  float PhaseY(float degrees) const { return zeroLine_ - kPhaseScale * degrees; }

 private:
  float displayScale_;
  float graphWidth_;
  float zeroLine_;
  float dbScale_;
  std::vector<float> frequencyX_;
};

}  // namespace talvex::graph
