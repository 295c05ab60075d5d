#include "presets/settings_switch.h"

#include <functional>

#include "presets/preset_transfer.h"
#include "sim_bench.h"

namespace talvex::presets {
namespace {

namespace code = protocol::code;

// The device takes `setting` whole (a full push), so that it holds what the editor holds.
void Push(link::Link& link, int id, params::DeviceParams setting) {
  PresetView view;
  const PresetTransfer transfer = ApplyPreset(setting, view, TransferFlags::PresetFileLoad());
  ASSERT_EQ(SendPresetTransfer(link, id, transfer).end, TransferEnd::Completed);
}

struct SwitchCase {
  const char* why;
  std::function<void(params::Senders&, params::DeviceParams&)> change;
  std::vector<std::uint8_t> codes;  // of the commands sent, in order
};

class SettingsSwitchTest : public SimBench {};

// Only what differs goes out, in the transfer's order, each command once; afterwards the device
// holds the other setting in every byte and setting it keeps.
TEST_F(SettingsSwitchTest, shouldSendOnlyTheCommandsThatDiffer) {
  const SwitchCase cases[] = {
      {"nothing", [](params::Senders&, params::DeviceParams&) {}, {}},
      {"one band",
       [](params::Senders& s, params::DeviceParams&) {
         s.EqBand(30, {800, 20, -6});
       },
       {code::kEqBand}},
      // The polarity command carries the level byte; the level sender's second run is the same
      // command and goes once.
      {"an output's level",
       [](params::Senders& s, params::DeviceParams&) { s.Level(4, -3.5); },
       {code::kPolarity, code::kChannelLevel}},
      // Mutes go first and last in a transfer: once here.
      {"a mute", [](params::Senders& s, params::DeviceParams&) { s.Mute(0, true); }, {code::kMute}},
      {"the temperature only (no device byte)",
       [](params::Senders&, params::DeviceParams& d) { d.values.Temperature() = 10; },
       {}},
      {"several kinds",
       [](params::Senders& s, params::DeviceParams&) {
         s.Crossover(3, 250, 4);
         s.OutputName(2, "Kick");
         s.DelayUnit(1);
         s.EqBypass(5, true);
       },
       {code::kCrossover, code::kChannelBits, code::kMemoryWrite, code::kChannelName}},
  };
  for (const SwitchCase& c : cases) {
    const params::DeviceParams a = params::DeviceParams::FromDefault(0);
    Push(link, kId, a);
    params::DeviceParams b = a;
    params::Senders senders(b);
    c.change(senders, b);
    const int before = Device().FramesHandled();

    const SettingsSwitch plan = PlanSettingsSwitch(a, b);
    ASSERT_FALSE(plan.typeCommand) << c.why;
    ASSERT_EQ(plan.commands.size(), c.codes.size()) << c.why;
    for (std::size_t i = 0; i < c.codes.size(); ++i)
      EXPECT_EQ(plan.commands[i].code, c.codes[i]) << c.why << " " << i;
    const SwitchOutcome outcome = SendSettingsSwitch(link, kId, plan);

    EXPECT_EQ(outcome.end, ListEnd::Completed) << c.why;
    EXPECT_EQ(outcome.sent, static_cast<int>(c.codes.size())) << c.why;
    EXPECT_EQ(Device().FramesHandled() - before, static_cast<int>(c.codes.size())) << c.why;
    EXPECT_TRUE(
        std::equal(Device().LiveImage().begin(), Device().LiveImage().end(), b.image.begin()))
        << c.why;
    EXPECT_EQ(Device().State().mute[0], b.values.Mute(0) != 0 ? 1 : 0) << c.why;
    EXPECT_EQ(plan.transferCommands, 155);
  }
}

// Another system type: command 21 first, then the whole transfer (each command once), and the
// device holds the new type's setting.
TEST_F(SettingsSwitchTest, shouldChangeTypeThenSendTheWholeSetting) {
  const params::DeviceParams a = params::DeviceParams::FromDefault(0);
  Push(link, kId, a);
  params::DeviceParams b = params::DeviceParams::FromDefault(2);
  params::Senders(b).EqBand(12, {250, 20, 6});

  const SettingsSwitch plan = PlanSettingsSwitch(a, b);
  ASSERT_TRUE(plan.typeCommand);
  EXPECT_EQ(plan.typeCommand->code, code::kSetSystemType);
  EXPECT_EQ(plan.typeCommand->p(1), 2);
  // 155 less the repeats: 8 mutes, 8 second levels, the second delay unit, and two of the three
  // limiter senders of each output (threshold, attack and release travel in one command).
  EXPECT_EQ(plan.commands.size(), 155u - 8 - 8 - 1 - 2 * 6);
  EXPECT_EQ(SendSettingsSwitch(link, kId, plan).end, ListEnd::Completed);
  EXPECT_EQ(Device().SystemType(), 2);
  EXPECT_TRUE(
      std::equal(Device().LiveImage().begin(), Device().LiveImage().end(), b.image.begin()));
}

// A setting holding a byte no sender takes is refused before anything is planned; a device
// that stops answering ends the switch there.
TEST_F(SettingsSwitchTest, shouldRefuseAGarbledSettingAndStopAtTheFirstUnanswered) {
  const params::DeviceParams a = params::DeviceParams::FromDefault(0);
  params::DeviceParams garbled = a;
  garbled.image[params::EqBandStart[3]] = 250;  // a frequency byte above 240
  EXPECT_THROW(PlanSettingsSwitch(a, garbled), IndexError);
  EXPECT_THROW(PlanSettingsSwitch(garbled, a), IndexError);

  params::DeviceParams b = a;
  params::Senders(b).EqBand(3, {40, 1, -4.5});
  params::Senders(b).EqBand(40, {4000, 30, 3});
  line.simulator->Faults(kId).vanishAfterFrames = 1;
  const SwitchOutcome outcome = SendSettingsSwitch(link, kId, PlanSettingsSwitch(a, b));
  EXPECT_EQ(outcome.end, ListEnd::Stopped);
  EXPECT_EQ(outcome.sent, 1);
  EXPECT_EQ(observer.failures.size(), 1u);
}

TEST(SettingsTest, shouldTakeTheSettingAndLeaveWhatBelongsToTheDevice) {
  params::DeviceParams from = params::DeviceParams::FromDefault(2);
  params::Senders(from).InputSource(1);
  from.values.Mute(3) = 1;
  from.image[params::kLockByte] = 1;
  from.image[params::kPresetNameByte] = 'X';
  params::DeviceParams to = params::DeviceParams::FromDefault(0);
  TakeSettings(to, from);
  EXPECT_TRUE(SameSettings(to, from));
  EXPECT_EQ(to.values.Mute(3), 1);
  EXPECT_EQ(to.image[params::kInputSourceByte], 1);
  EXPECT_EQ(to.image[params::kLockByte], 0);
  EXPECT_NE(to.image[params::kPresetNameByte], 'X');
  to.values.Temperature() = 3;
  EXPECT_FALSE(SameSettings(to, from));
}

}  // namespace
}  // namespace talvex::presets
