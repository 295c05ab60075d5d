#include "presets/channel_names.h"

#include "presets/conversation.h"
#include "sim_bench.h"

namespace talvex::presets {
namespace {

using ChannelNamesTest = SimBench;

// The factory names of type 0 as the dialog's boxes show them, with the given changes.
ChannelNames Names(std::initializer_list<std::pair<int, std::string>> changes) {
  ChannelNames names = NamesFromImage(params::DefaultRecord(0));
  for (const auto& [channel, text] : changes)
    names[static_cast<std::size_t>(channel)] = text;
  return names;
}

TEST_F(ChannelNamesTest, shouldCheckTheBoxesInIndexOrder) {
  const struct {
    ChannelNames texts;
    std::optional<std::string_view> refusal;
  } cases[] = {
      {Names({}), std::nullopt},
      {Names({{3, ""}}), kNameMissingText},
      {Names({{0, "   "}}), kNameMissingText},
      {Names({{5, "Bass!"}}), kNameSymbolsHint},
      {Names({{1, "1234567"}}), kNameSymbolsHint},
      {Names({{2, "Sub"}, {4, "(x)+=_"}}), std::nullopt},
      {Names({{2, "\xE9t\xE9"}, {4, ""}}), kNameSymbolsHint},  // the first box decides
  };
  for (const auto& c : cases)
    EXPECT_EQ(CheckChannelNames(c.texts), c.refusal) << c.texts[0] << c.texts[2];
  EXPECT_EQ(kNameMissingText, "Please input the Name !");
  EXPECT_EQ(NameHint("Kick"), std::nullopt);
}

TEST_F(ChannelNamesTest, shouldWriteSixBytesForAnOutputAndNoneForAnInput) {
  ChannelNames names = NamesFromImage(device.image);
  EXPECT_EQ(names[0], " In A ");
  EXPECT_EQ(names[4], "High-A");
  const params::ParamImage before = device.image;

  const auto inputOnly = ApplyChannelNames(device, names, Names({{0, "X"}}));
  EXPECT_EQ(device.image, before);
  EXPECT_EQ(names[0], "   X  ");
  EXPECT_EQ(inputOnly.size(), 6u);  // the outputs go out all the same, unchanged

  ApplyChannelNames(device, names, Names({{4, "AB"}}));
  int changed = 0;
  for (std::size_t i = 0; i < device.image.size(); ++i)
    changed += device.image[i] != before[i];
  EXPECT_EQ(changed, 6);
  EXPECT_EQ(std::string(device.image.begin() + 164, device.image.begin() + 170), "  AB  ");

  observer.sent.clear();
  const auto edits = ApplyChannelNames(device, names, Names({{4, "AB"}, {7, "Sub 12"}}));
  EXPECT_EQ(SendCommandList(link, kId, CommandsOf(edits)).acknowledged, 6);
  ASSERT_EQ(observer.sent.size(), 6u);
  EXPECT_EQ(SentHex(2), "F0 81 05 0E 04 00 20 20 41 42 20 20 F7");
  EXPECT_EQ(SentHex(5), "F0 81 05 0E 07 00 53 75 62 20 31 32 F7");
  EXPECT_EQ(std::string(Device().LiveImage().begin() + 290, Device().LiveImage().begin() + 296),
            "Sub 12");
}

}  // namespace
}  // namespace talvex::presets
