#include "editor/model/graph_handles.h"

#include <algorithm>

#include "editor/model/controls.h"
#include "graph/shown_curves.h"
#include "params/image_decode.h"

namespace talvex::editor {

namespace {

using params::kInputCount;

// A corner stays on the plot's scale even where the curve runs off it, so it can be taken.
constexpr double kScaleLimitDb = 30.0;

int FilterOf(int channel, GraphHandle::Kind kind) {
  return 2 * (channel - kInputCount) + (kind == GraphHandle::Kind::LowPass ? 1 : 0);
}

void AddBands(const DeviceEditor& editor, int channel, std::vector<GraphHandle>& handles) {
  const params::ParamImage& image = editor.Device().image;
  if (params::EqBypassed(image, channel)) return;
  const int first = params::GlobalBand(channel, 0);
  for (int band = first; band < first + params::BandsOf(channel); ++band) {
    GraphHandle handle;
    handle.channel = channel;
    handle.band = band;
    handle.hz = params::BandFrequency(image, band);
    handle.db = params::BandGainDb(image, band);
    handle.hollow = handle.db == 0.0;
    handles.push_back(handle);
  }
}

void AddCorners(const DeviceEditor& editor, int channel, std::vector<GraphHandle>& handles) {
  if (channel < kInputCount) return;
  const params::ParamImage& image = editor.Device().image;
  for (GraphHandle::Kind kind : {GraphHandle::Kind::HighPass, GraphHandle::Kind::LowPass}) {
    const int filter = FilterOf(channel, kind);
    if (params::CrossoverType(image, filter) == 0) continue;
    GraphHandle handle;
    handle.kind = kind;
    handle.channel = channel;
    handle.filter = filter;
    handle.hz = params::CrossoverFrequency(image, filter);
    const int point = graph::NearestGridPoint(handle.hz);
    handle.db =
        std::clamp(static_cast<double>(editor.Magnitude(channel)[point] + editor.LevelDb(channel)),
                   -kScaleLimitDb, kScaleLimitDb);
    handles.push_back(handle);
  }
}

ParamRef BandRef(ParamKind kind, const GraphHandle& handle) {
  return {kind, handle.channel, handle.band};
}

}  // namespace

std::vector<GraphHandle> GraphHandles(const DeviceEditor& editor) {
  std::vector<GraphHandle> handles;
  if (!editor.EditsEnabled() || editor.InputSuppressed()) return handles;
  AddBands(editor, editor.SelectedChannel(), handles);
  AddCorners(editor, editor.SelectedChannel(), handles);
  return handles;
}

std::string HandleText(const DeviceEditor& editor, const GraphHandle& handle) {
  const std::string channel = ChannelCaption(handle.channel);
  if (handle.kind != GraphHandle::Kind::Band) {
    const bool high = handle.kind == GraphHandle::Kind::HighPass;
    return channel + " X-over " + (high ? "high-pass: " : "low-pass: ") +
           editor.Show(params::CrossoverFrequencyRef(handle.filter)).text + " Hz, " +
           editor.Show(params::CrossoverTypeRef(handle.filter)).text;
  }
  const int inChannel = handle.band - params::GlobalBand(handle.channel, 0);
  const std::string width = editor.Show(BandRef(ParamKind::EqQ, handle)).text;
  const bool bell = editor.Applies(BandRef(ParamKind::EqQ, handle));
  return channel + " EQ " + std::to_string(inChannel + 1) + ": " +
         editor.Show(BandRef(ParamKind::EqFrequency, handle)).text + " Hz, " +
         (bell ? "Q " + width : width) + ", " +
         editor.Show(BandRef(ParamKind::EqGain, handle)).text + " dB";
}

HandleDrag::HandleDrag(DeviceEditor& editor, const GraphHandle& handle)
    : editor_(editor), handle_(handle), gesture_(editor.BeginGesture()) {}

HandleDrag::~HandleDrag() {
  editor_.EndGesture();
}

EditOutcome HandleDrag::MoveTo(double hz, double db, DragKeys keys) {
  const double wantedHz = keys.keepFrequency ? handle_.hz : hz;
  const params::RuledValue frequency =
      params::ApplyRule(handle_.kind == GraphHandle::Kind::Band ? params::rule::kBandFrequency
                                                                : params::rule::kCrossoverFrequency,
                        wantedHz);
  const params::ParamImage& image = editor_.Device().image;
  if (handle_.kind != GraphHandle::Kind::Band) {
    const ParamRef ref = params::CrossoverFrequencyRef(handle_.filter);
    if (frequency.position == params::CrossoverFrequencyByte(image, handle_.filter)) return {};
    return editor_.Move(ref, frequency.position);
  }
  const double gain =
      params::ApplyRule(params::rule::kBandGain, keys.keepGain ? handle_.db : db).value;
  const params::EqBandSetting now{params::BandFrequency(image, handle_.band),
                                  params::BandWidthIndex(image, handle_.band),
                                  params::BandGainDb(image, handle_.band)};
  if (frequency.value == now.frequencyHz && gain == now.gainDb) return {};
  return editor_.SetBand(handle_.band, {frequency.value, now.width, gain});
}

EditOutcome StepBandQ(DeviceEditor& editor, const GraphHandle& handle, int steps) {
  if (handle.kind != GraphHandle::Kind::Band) return {};
  const ParamRef ref = BandRef(ParamKind::EqQ, handle);
  if (!editor.Applies(ref)) return {};
  const int now = editor.Show(ref).position;
  const int wanted =
      std::clamp(now + steps, params::kFirstBellWidth, params::MaxPosition(params::rule::kBandQ));
  if (wanted == now) return {};
  return editor.Move(ref, wanted);
}

}  // namespace talvex::editor
