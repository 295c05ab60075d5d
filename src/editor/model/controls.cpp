#include "editor/model/controls.h"

#include <stdexcept>

#include "params/image_layout.h"

namespace talvex::editor {

namespace {

std::string BandCaption(const ParamRef& ref, std::string_view what) {
  return "EQ " + std::to_string(params::BandInChannel(ref.band) + 1) + " " + std::string(what);
}

std::string WithRole(std::string caption, ControlRole role) {
  switch (role) {
    case ControlRole::Slider:
      return caption + " slider";
    case ControlRole::UpDown:
      return caption + " steps";
    case ControlRole::FineUpDown:
      return caption + " fine steps";
    default:
      return caption;
  }
}

std::string CaptionOfKind(const ControlId& control) {
  const ParamRef& ref = control.ref;
  switch (ref.kind) {
    case ParamKind::InputSource:
      return "Input type";
    case ParamKind::Level:
      return "Level [dB]";
    case ParamKind::Mute:
      return "Mute";
    case ParamKind::Polarity:
      return "Phase";
    case ParamKind::Delay:
      return "Delay";
    case ParamKind::Limiter:
      return "Limit";
    case ParamKind::EqFrequency:
      return BandCaption(ref, "Frequency");
    case ParamKind::EqQ:
      return BandCaption(ref, "Q");
    case ParamKind::EqGain:
      return BandCaption(ref, "Gain");
    case ParamKind::EqType:
      return BandCaption(ref, "Type");
    case ParamKind::EqBypass:
      return "Bypass Eq";
    case ParamKind::OutputSource:
      return params::ChoiceText(ref, control.choice);
    case ParamKind::HighPassFrequency:
      return "X-over high-pass frequency";
    case ParamKind::HighPassType:
      return "X-over high-pass slope";
    case ParamKind::LowPassFrequency:
      return "X-over low-pass frequency";
    case ParamKind::LowPassType:
      return "X-over low-pass slope";
    case ParamKind::Threshold:
      return "Limiter threshold [dBu]";
    case ParamKind::Attack:
      return "Limiter attack [ms]";
    case ParamKind::Release:
      return "Limiter release [ms]";
    case ParamKind::Name:
      return "Name";
    case ParamKind::DelayUnit:
      return "Delay in metres";
    case ParamKind::OutputLink:
      return "Link outputs";
    case ParamKind::Temperature:
      return "Temperature ['C]";
  }
  return {};
}

}  // namespace

std::string ChannelCaption(int channel) {
  CheckIndex(channel, params::kChannelCount - 1, "channel");
  if (channel < params::kInputCount) return channel == 0 ? "In A" : "In B";
  return "Out " + std::to_string(channel - params::kInputCount + 1);
}

std::string_view BoxName(ParamKind kind) {
  switch (kind) {
    case ParamKind::Level:
      return "Text1";
    case ParamKind::Delay:
      return "Text2";
    case ParamKind::EqFrequency:
      return "Text4";
    case ParamKind::EqQ:
      return "Text5";
    case ParamKind::EqGain:
      return "Text6";
    case ParamKind::HighPassFrequency:
    case ParamKind::LowPassFrequency:
      return "Text8";
    case ParamKind::Threshold:
      return "Text9";
    case ParamKind::Attack:
      return "Text10";
    case ParamKind::Release:
      return "Text11";
    case ParamKind::Temperature:
      return "Text60";
    default:
      throw std::logic_error("this parameter has no entry box");
  }
}

std::string_view BoxMessage(const ParamRef& ref) {
  if (const params::ValueRule* rule = params::RuleOf(ref)) return rule->badText;
  return params::kIncorrectValue;  // the delay box
}

std::string ControlCaption(const ControlId& control) {
  return WithRole(CaptionOfKind(control), control.role);
}

std::string AccessibleName(const ControlId& control) {
  if (params::IsDeviceWide(control.ref.kind)) return ControlCaption(control);
  return ChannelControlName(control.ref.channel, ControlCaption(control));
}

std::string ChannelControlName(int channel, std::string_view caption) {
  return ChannelCaption(channel) + " " + std::string(caption);
}

int PositionsPerStep(ControlRole role) {
  switch (role) {
    case ControlRole::UpDown:
      return 1;
    case ControlRole::FineUpDown:
      return 1;
    default:
      return 0;
  }
}

}  // namespace talvex::editor
