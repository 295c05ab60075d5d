#include "params/param_diff.h"

namespace talvex::params {

namespace {

// The record's values, the output link switch included (a record keeps it in byte 328).
DeviceParams ParamsOf(const ParamImage& record) {
  DeviceParams device = DeviceParams::FromImage(record);
  device.values.Switch() = record[kOutputLinkByte] != 0 ? 1 : 0;
  return device;
}

bool Compared(const ParamRef& ref, DiffScope scope) {
  switch (StorageOf(ref)) {
    case Storage::Preset:
      return true;
    case Storage::Record:
      return scope == DiffScope::Record;
    case Storage::NotStored:
      break;
  }
  return false;
}

bool Differs(const ParamRef& ref, const ShownParam& a, const ShownParam& b) {
  // A shelf has no width of its own: both shelves show Q as 0, a bell its width.
  if (ref.kind == ParamKind::EqQ) return a.value != b.value;
  return a.text != b.text;
}

}  // namespace

std::vector<ParamDifference> DiffRecords(const ParamImage& a, const ParamImage& b, DiffScope scope,
                                         DecimalMark mark) {
  const DeviceParams first = ParamsOf(a);
  const DeviceParams second = ParamsOf(b);
  EditOptions options;
  options.mark = mark;
  options.delayView = DelayView{kDelayUnitMs, kDefaultTemperature};
  std::vector<ParamDifference> differences;
  for (const ParamRef& ref : AllParams()) {
    if (!Compared(ref, scope)) continue;
    ShownParam shownA = ShowParam(first, ref, options);
    ShownParam shownB = ShowParam(second, ref, options);
    if (Differs(ref, shownA, shownB))
      differences.push_back({ref, std::move(shownA), std::move(shownB)});
  }
  return differences;
}

}  // namespace talvex::params
