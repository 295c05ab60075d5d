// Two records compared parameter by parameter: what `talvexctl diff` prints and what the editor
// shows of a preset file against its device.
#pragma once

#include <vector>

#include "params/param_edit.h"

namespace talvex::params {

struct ParamDifference {
  ParamRef ref;
  ShownParam a;  // as the first record holds it
  ShownParam b;  // as the second does
};

enum class DiffScope {
  Preset,  // bytes 0..303 only: what a device's live image holds
  Record,  // and the settings beyond them (input source, delay unit, output link), which a
           // preset file and a device's state read hold
};

// Every parameter whose value differs, in AllParams order. Parameters kept in no image (mutes,
// input polarities, the temperature) are never compared. Values are compared as the device
// would act on them: delays by their samples whatever unit each record shows them in, a
// shelf's width not at all (its type says it all). Texts are written with `mark`, delays in ms
// at 20 degrees C. IndexError for a byte no device keeps, in either record.
std::vector<ParamDifference> DiffRecords(const ParamImage& a, const ParamImage& b, DiffScope scope,
                                         DecimalMark mark = DecimalMark::Point);

}  // namespace talvex::params
