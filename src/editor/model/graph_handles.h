// The handles on the response graph that edit the selected channel with the mouse: one per
// equaliser band at its frequency and gain, and one per crossover corner of an output. A drag
// is one gesture of the editor; each position it reaches is snapped to the device's grids and
// goes through the one edit path (a whole band at once, or the corner's frequency), so the
// band's boxes, slider and up-down, the link's coalescing and the linked output all follow as
// for any other edit.
//
// Which handles show:
// - every band of the channel, at (frequency, gain) on the dB scale: the gain as its box shows
//   it, not lifted by the channel's level, so the handle stands where the value says and a drag
//   sets the gain under the mouse. A band at 0 dB changes nothing yet and is hollow; it is
//   dragged like any other (pulling a flat band up is how a band is put to use);
// - none while the channel's equaliser is bypassed: its bands do nothing to the signal;
// - an output's high-pass and low-pass corners at their frequency, on the channel's curve as
//   drawn; a filter set to "  No cut-off" has no corner and shows none.
#pragma once

#include <string>
#include <vector>

#include "editor/model/device_editor.h"

namespace talvex::editor {

struct GraphHandle {
  enum class Kind { Band, HighPass, LowPass };
  Kind kind = Kind::Band;
  int channel = 0;
  int band = 0;    // Band: the global band number
  int filter = 0;  // corners: the crossover frequency box (2(k-1) high-pass, +1 low-pass)
  double hz = 1000;
  double db = 0;
  bool hollow = false;
  bool operator==(const GraphHandle&) const = default;
};

// The selected channel's handles, bands first (in band order), then the corners.
std::vector<GraphHandle> GraphHandles(const DeviceEditor& editor);

// What hovering a handle names: "Out 3 EQ 2: 800 Hz, Q 0.30, -5 dB", "In A EQ 1: 80 Hz,
// -12 Lo-Sh, 4 dB", "Out 3 X-over high-pass: 250 Hz, -24dB/oct Lz".
std::string HandleText(const DeviceEditor& editor, const GraphHandle& handle);

// Keys held during a drag: Shift keeps the frequency, Ctrl keeps the gain (as they were when
// the drag began).
struct DragKeys {
  bool keepFrequency = false;
  bool keepGain = false;
};

// One drag of one handle: a gesture of the editor from construction to destruction.
class HandleDrag {
 public:
  HandleDrag(DeviceEditor& editor, const GraphHandle& handle);
  ~HandleDrag();
  HandleDrag(const HandleDrag&) = delete;
  HandleDrag& operator=(const HandleDrag&) = delete;

  int Gesture() const { return gesture_; }
  // The handle taken to (hz, db): the band's frequency snapped to FrequencyTable and its gain to
  // the 0.5 dB grid, a corner's frequency snapped alike (a corner moves across only). Nothing
  // is sent when the snapped values are those the device holds already.
  EditOutcome MoveTo(double hz, double db, DragKeys keys = {});

 private:
  DeviceEditor& editor_;
  GraphHandle handle_;
  int gesture_;
};

// The mouse wheel over a band's handle: its Q `steps` entries of QTextTable up (narrower) or
// down, held to the bell widths; a shelf has no Q and takes none.
EditOutcome StepBandQ(DeviceEditor& editor, const GraphHandle& handle, int steps);

}  // namespace talvex::editor
