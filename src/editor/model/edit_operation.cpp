#include "editor/model/edit_operation.h"

#include <algorithm>

#include "editor/model/controls.h"
#include "params/image_decode.h"

namespace talvex::editor {

using params::ParamKind;
using params::ParamRef;

namespace {

std::string_view KindName(ParamKind kind) {
  switch (kind) {
    case ParamKind::InputSource:
      return "input type";
    case ParamKind::Level:
      return "level";
    case ParamKind::Mute:
      return "mute";
    case ParamKind::Polarity:
      return "phase";
    case ParamKind::Delay:
      return "delay";
    case ParamKind::Limiter:
      return "limit";
    case ParamKind::EqFrequency:
      return "frequency";
    case ParamKind::EqQ:
      return "Q";
    case ParamKind::EqGain:
      return "gain";
    case ParamKind::EqType:
      return "type";
    case ParamKind::EqBypass:
      return "EQ bypass";
    case ParamKind::OutputSource:
      return "source";
    case ParamKind::HighPassFrequency:
      return "high-pass frequency";
    case ParamKind::HighPassType:
      return "high-pass slope";
    case ParamKind::LowPassFrequency:
      return "low-pass frequency";
    case ParamKind::LowPassType:
      return "low-pass slope";
    case ParamKind::Threshold:
      return "limiter threshold";
    case ParamKind::Attack:
      return "limiter attack";
    case ParamKind::Release:
      return "limiter release";
    case ParamKind::Name:
      return "name";
    case ParamKind::DelayUnit:
      return "delay unit";
    case ParamKind::OutputLink:
      return "output link";
    case ParamKind::Temperature:
      return "temperature";
  }
  return {};
}

// "Out 3 EQ 2"
std::string BandName(int band) {
  return ChannelCaption(params::ChannelOfBand(band)) + " EQ " +
         std::to_string(params::BandInChannel(band) + 1);
}

params::EqBandSetting BandSettingOf(const params::ParamImage& image, int band) {
  return {params::BandFrequency(image, band), params::BandWidthIndex(image, band),
          params::BandGainDb(image, band)};
}

EditOperation PutBack(const params::DeviceParams& target, const ParamRef& ref) {
  if (params::IsEqBandKind(ref.kind))
    return EditOperation::WholeBand(ref.band, BandSettingOf(target.image, ref.band));
  const params::ShownParam shown = params::ShowParam(target, ref);
  if (ref.kind == ParamKind::Name) return EditOperation::Typed(ref, shown.text);
  if (params::ChoiceCount(ref) > 0) return EditOperation::Chosen(ref, shown.choice);
  return EditOperation::Moved(ref, shown.position);
}

// Two restores of the same parameter (a band's gain and its frequency are one band).
bool SameTarget(const EditOperation& a, const EditOperation& b) {
  if (a.kind == EditOperation::Kind::Band && b.kind == EditOperation::Kind::Band)
    return a.ref.band == b.ref.band;
  return a.ref == b.ref;
}

}  // namespace

EditOperation EditOperation::Typed(const ParamRef& ref, std::string text) {
  EditOperation operation;
  operation.kind = Kind::Text;
  operation.ref = ref;
  operation.text = std::move(text);
  return operation;
}

EditOperation EditOperation::Moved(const ParamRef& ref, int position) {
  EditOperation operation;
  operation.kind = Kind::Position;
  operation.ref = ref;
  operation.value = position;
  return operation;
}

EditOperation EditOperation::Chosen(const ParamRef& ref, int choice) {
  EditOperation operation;
  operation.kind = Kind::Choice;
  operation.ref = ref;
  operation.value = choice;
  return operation;
}

EditOperation EditOperation::Flatten(int channel) {
  EditOperation operation;
  operation.kind = Kind::FlattenEq;
  operation.ref = {ParamKind::EqGain, channel, params::GlobalBand(channel, 0)};
  return operation;
}

EditOperation EditOperation::WholeBand(int band, const params::EqBandSetting& setting) {
  EditOperation operation;
  operation.kind = Kind::Band;
  operation.ref = {ParamKind::EqType, params::ChannelOfBand(band), band};
  operation.band = setting;
  return operation;
}

params::EditResult RunOperation(params::DeviceParams& device, const EditOperation& operation,
                                params::EditOptions options) {
  options.followLinks = operation.followLinks;
  switch (operation.kind) {
    case EditOperation::Kind::Text:
      return params::EditText(device, operation.ref, operation.text, options);
    case EditOperation::Kind::Position:
      return params::EditPosition(device, operation.ref, operation.value, options);
    case EditOperation::Kind::Choice:
      return params::EditChoice(device, operation.ref, operation.value, options);
    case EditOperation::Kind::FlattenEq:
      return params::FlattenEq(device, operation.ref.channel, options);
    case EditOperation::Kind::Band:
      return params::EditBand(device, operation.ref.band, operation.band, options);
  }
  return {};
}

std::string ChangeName(const EditOperation& operation) {
  const ParamRef& ref = operation.ref;
  switch (operation.kind) {
    case EditOperation::Kind::FlattenEq:
      return ChannelCaption(ref.channel) + " flat EQ";
    case EditOperation::Kind::Band:
      return BandName(ref.band);
    default:
      break;
  }
  const std::string kind(KindName(ref.kind));
  if (params::IsDeviceWide(ref.kind)) return kind;
  if (params::IsEqBandKind(ref.kind)) return BandName(ref.band) + " " + kind;
  return ChannelCaption(ref.channel) + " " + kind;
}

std::vector<EditOperation> RestoreOperations(const params::DeviceParams& target,
                                             std::span<const RecordedEdit> edits) {
  std::vector<EditOperation> restores;
  const auto add = [&](EditOperation restore) {
    restore.followLinks = false;
    const auto same = [&](const EditOperation& o) { return SameTarget(o, restore); };
    if (std::none_of(restores.begin(), restores.end(), same)) restores.push_back(restore);
  };
  for (const RecordedEdit& edit : edits) {
    const ParamRef& ref = edit.operation.ref;
    if (ref.kind == ParamKind::Temperature) {
      add(EditOperation::Moved(ref, params::ShowParam(target, ref).position));
      continue;
    }
    for (const ParamRef& changed : edit.changed)
      add(PutBack(target, changed));
  }
  return restores;
}

}  // namespace talvex::editor
