#include "presets/channel_names.h"

#include <algorithm>
#include <stdexcept>

#include "params/image_decode.h"
#include "params/value_tables.h"

namespace talvex::presets {

namespace {

constexpr std::array<std::string_view, params::kInputCount> kInputNames = {"In A", "In B"};

bool HoldsName(std::string_view text) {
  return text.find_first_not_of(' ') != std::string_view::npos;
}

}  // namespace

ChannelNames NamesFromImage(const params::ParamImage& image) {
  ChannelNames names;
  for (int ch = 0; ch < params::kChannelCount; ++ch) {
    const auto index = static_cast<std::size_t>(ch);
    names[index] = ch < params::kInputCount ? params::FitName(kInputNames[index])
                                            : params::OutputName(image, ch);
  }
  return names;
}

bool IsNameCharacter(char c) {
  return params::NameCharSet.find(c) != std::string_view::npos ||
         kNameSymbols.find(c) != std::string_view::npos;
}

std::optional<std::string_view> NameHint(std::string_view text) {
  if (text.size() > params::kNameLength || !std::all_of(text.begin(), text.end(), IsNameCharacter))
    return kNameSymbolsHint;
  return std::nullopt;
}

std::optional<std::string_view> CheckChannelNames(const ChannelNames& texts) {
  for (const std::string& text : texts) {
    if (!HoldsName(text)) return kNameMissingText;
    if (const auto hint = NameHint(text)) return hint;
  }
  return std::nullopt;
}

std::vector<params::ParamEdit> ApplyChannelNames(params::DeviceParams& device, ChannelNames& names,
                                                 const ChannelNames& texts) {
  if (const auto refusal = CheckChannelNames(texts))
    throw std::invalid_argument(std::string(*refusal));
  params::Senders senders(device);
  std::vector<params::ParamEdit> edits;
  for (int ch = 0; ch < params::kChannelCount; ++ch) {
    const auto index = static_cast<std::size_t>(ch);
    names[index] = params::FitName(texts[index]);
    if (ch >= params::kInputCount) edits.push_back(senders.OutputName(ch, texts[index]));
  }
  return edits;
}

}  // namespace talvex::presets
