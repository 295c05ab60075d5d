#include "presets/device_backup.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "link/device_name.h"
#include "link/line.h"
#include "params/senders.h"
#include "presets/device_memory.h"
#include "presets/preset_transfer.h"
#include "presets/system_lock.h"
#include "presets/system_type.h"
#include "testlib/recording_observer.h"

namespace talvex::presets {
namespace {

namespace fs = std::filesystem;
constexpr int kSource = 1;
constexpr int kTarget = 2;

// Two simulated devices on one line: a source set up as a rack's processor is after a day of
// tuning, and a fresh target of another system type.
class DeviceBackupTest : public ::testing::Test {
 protected:
  DeviceBackupTest()
      : line(link::MakeLine(link::ParsePortSpec("sim:1,2"))),
        link(*line.transport, *line.clock, &observer) {
    EXPECT_TRUE(link.OpenPort());
    link.Flags().ReportLinkErrors = true;
    fs::create_directories(dir);
  }
  ~DeviceBackupTest() override { fs::remove_all(dir); }

  sim::SimDevice& Sim(int id) { return line.simulator->Device(id); }

  // Type 1, a tuned running preset with the settings beside it, three stored slots, a name.
  void TuneSource() {
    ASSERT_EQ(SendSystemType(link, kSource, SystemTypeCommand(1)), TypeSend::Switched);
    params::DeviceParams device = params::DeviceParams::FromDefault(1);
    params::Senders senders(device);
    for (const auto& [slot, name, gain] :
         {std::tuple{0, "Opening", -3.0}, std::tuple{5, "Band", 2.5}, std::tuple{23, "DJ", 4.0}}) {
      senders.EqBand(12, {250, 20, gain});
      DeviceState state;
      const PresetStore store = PrepareStore(device, state, slot, name);
      ASSERT_EQ(SendPresetStore(link, kSource, store).end, ListEnd::Completed);
    }
    senders.Level(6, -4.5);
    senders.OutputName(4, "Kick");
    senders.Delay(3, params::DelaySteps{12, 7});
    device.image[params::kInputSourceByte] = 1;
    device.image[params::kDeviceWideByte] = 7;
    device.image[params::kOptionByte] = 1;
    device.ValuesFromImage();
    device.values.Switch() = 1;
    PresetView view;
    const PresetTransfer transfer = ApplyPreset(device, view, TransferFlags::PresetFileLoad());
    ASSERT_EQ(SendPresetTransfer(link, kSource, transfer).end, TransferEnd::Completed);
    ASSERT_EQ(link::WriteDeviceName(link, kSource, "Stage left"), link::NameWrite::Written);
  }

  DeviceBackup Backup(std::vector<std::pair<int, int>>* progress = nullptr) {
    DeviceBackup backup;
    EXPECT_EQ(ReadDeviceBackup(link, kSource, backup,
                               [&](int done, int total) {
                                 if (progress) progress->emplace_back(done, total);
                               }),
              BackupEnd::Completed);
    return backup;
  }

  std::string Path(const char* name) const { return (dir / name).string(); }

  testing::RecordingObserver observer;
  link::Line line;
  link::Link link;
  fs::path dir = fs::temp_directory_path() / ("talvex_backup_" + std::to_string(::getpid()));
};

void ExpectSteadyProgressToItsEnd(const std::vector<std::pair<int, int>>& progress) {
  ASSERT_FALSE(progress.empty());
  for (std::size_t i = 1; i < progress.size(); ++i) {
    EXPECT_GE(progress[i].first, progress[i - 1].first);
    EXPECT_EQ(progress[i].second, progress[0].second);
  }
  EXPECT_EQ(progress.back().first, progress.back().second);
}

TEST_F(DeviceBackupTest, shouldLeaveAFreshDeviceEqualInEveryByteItKeepsAfterARestore) {
  TuneSource();
  std::vector<std::pair<int, int>> readProgress;
  const DeviceBackup backup = Backup(&readProgress);
  EXPECT_EQ(backup.UsedSlots(), 3);
  EXPECT_EQ(backup.deviceName, "Stage left      ");
  EXPECT_EQ(backup.presetName, "DJ              ");  // the device runs the slot stored last
  ExpectSteadyProgressToItsEnd(readProgress);
  EXPECT_EQ(readProgress.back().first, 2 + 15 + 3 * 4 + 4 + 3 * 76);

  ASSERT_EQ(WriteBackupFile(Path("rack.tvb"), backup), "");
  const BackupCheck read = ReadBackupFile(Path("rack.tvb"));
  ASSERT_TRUE(read.backup) << read.error;
  EXPECT_EQ(*read.backup, backup);

  std::vector<std::pair<int, int>> writeProgress;
  const RestoreOutcome restored =
      RestoreDeviceBackup(link, kTarget, *read.backup,
                          [&](int done, int total) { writeProgress.emplace_back(done, total); });
  ASSERT_EQ(restored.end, RestoreEnd::Completed) << restored.stoppedAt;
  ExpectSteadyProgressToItsEnd(writeProgress);

  EXPECT_EQ(Sim(kTarget).SystemType(), 1);
  EXPECT_EQ(Sim(kTarget).LiveImage(), Sim(kSource).LiveImage());
  EXPECT_EQ(Sim(kTarget).DeviceMemory(), Sim(kSource).DeviceMemory());
  EXPECT_EQ(Sim(kTarget).State().inputSource, 1);
  EXPECT_EQ(Sim(kTarget).State().deviceWide, 7);
  EXPECT_EQ(Sim(kTarget).State().outputLink, 1);
  EXPECT_TRUE(observer.failures.empty());
}

TEST_F(DeviceBackupTest, shouldRefuseAnyDamageBeforeItIsUsed) {
  TuneSource();
  const std::vector<std::uint8_t> good = EncodeBackup(Backup());
  const auto withBody = [&](std::size_t at, std::uint8_t value) {
    std::vector<std::uint8_t> bytes = good;
    bytes[kBackupHeaderSize + at] = value;
    const std::uint32_t crc =
        Crc32(std::span(bytes).subspan(kBackupHeaderSize));  // damage that passes the checksum
    for (int i = 0; i < 4; ++i)
      bytes[16 + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(crc >> (8 * i));
    return bytes;
  };
  std::vector<std::uint8_t> flipped = good;
  flipped[5000] ^= 0x01;
  std::vector<std::uint8_t> magic = good;
  magic[0] = 'X';
  std::vector<std::uint8_t> version = good;
  version[8] = 2;
  std::vector<std::uint8_t> longer = good;
  longer.push_back(0);
  const struct {
    const char* what;
    std::vector<std::uint8_t> bytes;
    const char* error;
  } cases[] = {
      {"magic", magic, "is not a TALVEX backup (it does not begin with \"TVXBACK\")"},
      {"version", version, "is a backup of version 2; this program reads version 1"},
      {"cut short",
       {good.begin(), good.end() - 1},
       "is damaged: it holds 8065 bytes where a backup has 8066"},
      {"header only", {good.begin(), good.begin() + 12}, "is damaged: it ends inside its header"},
      {"longer", longer, "is damaged: it holds 8067 bytes where a backup has 8066"},
      {"one bit", flipped, "is damaged: its checksum does not match its contents"},
      {"type", withBody(1, 3), "is damaged: system type 3 is not 0, 1 or 2"},
      {"switch", withBody(5, 2), "is damaged: the output link is 2, not 0 or 1"},
      {"type of the preset", withBody(1, 2),
       "is damaged: its running preset is of system type 1, its device of type 2"},
      {"preset byte", withBody(38 + 57, 250),
       "is damaged: its running preset holds a byte no device keeps"},
  };
  for (const auto& c : cases) {
    const BackupCheck check = DecodeBackup(c.bytes);
    EXPECT_FALSE(check.backup) << c.what;
    EXPECT_EQ(check.error, c.error) << c.what;
  }
  EXPECT_TRUE(DecodeBackup(good).backup);
  EXPECT_EQ(ReadBackupFile(Path("missing.tvb")).error,
            Path("missing.tvb") + " is not a file that can be read");
}

TEST_F(DeviceBackupTest, shouldSendNothingToALockedDevice) {
  TuneSource();
  const DeviceBackup backup = Backup();
  ASSERT_EQ(link.SendCommand(kTarget, LockByteCommand(1)), link::SendResult::Replied);
  const int framesBefore = Sim(kTarget).FramesHandled();
  EXPECT_EQ(RestoreDeviceBackup(link, kTarget, backup).end, RestoreEnd::Locked);
  // the state read only: two of command 23, six mark reads, four name reads, lock, 16, 36
  EXPECT_EQ(Sim(kTarget).FramesHandled() - framesBefore, 15);
  EXPECT_EQ(Sim(kTarget).SystemType(), 0);
}

TEST_F(DeviceBackupTest, shouldStopAtAVanishedDeviceAndSayWhere) {
  TuneSource();
  const DeviceBackup backup = Backup();
  const struct {
    int answered;
    const char* stoppedAt;
  } cases[] = {{5, "the state read"},
               {15 + 1 + 60, "the running preset (equaliser bands)"},
               {15 + 1 + 155 + 3, "the device name"},
               {15 + 1 + 155 + 16 + 100, "the preset slots"}};
  for (const auto& c : cases) {
    line.simulator->Faults(kTarget).vanishAfterFrames = c.answered;
    observer.failures.clear();
    const RestoreOutcome outcome = RestoreDeviceBackup(link, kTarget, backup);
    EXPECT_EQ(outcome.end, RestoreEnd::Failed) << c.answered;
    EXPECT_EQ(outcome.stoppedAt, c.stoppedAt);
    EXPECT_EQ(observer.failures.size(), 1u) << c.answered;  // reported once
    line.simulator->Faults(kTarget).vanishAfterFrames = -1;
    ASSERT_EQ(SendSystemType(link, kTarget, SystemTypeCommand(0)), TypeSend::Switched);
  }
  line.simulator->Faults(kSource).vanishAfterFrames = 30;
  DeviceBackup untouched;
  EXPECT_EQ(ReadDeviceBackup(link, kSource, untouched), BackupEnd::Failed);
  EXPECT_EQ(untouched, DeviceBackup{});
}

TEST(BackupFileTest, shouldKeepTheStandardChecksum) {
  const std::string check = "123456789";
  EXPECT_EQ(Crc32({reinterpret_cast<const std::uint8_t*>(check.data()), check.size()}),
            0xCBF43926u);
}

}  // namespace
}  // namespace talvex::presets
