// talvexctl's words: parameter names and values, and the arguments of every command that
// takes words, from the fuzzer, split at NUL bytes. The first byte chooses the command and
// whether it works on a simulated device (--port sim:0, on a virtual clock) or offline on a
// preset file in the scratch folder (--file). The words --port, --file, --id and -- are
// dropped, so the fuzzer cannot point talvexctl at another port or file; the options of a
// command (response --channel ...) stay.
//
// Checked: no crash; the exit status is 0, 1 or 2; a usage error (2) sent nothing and left
// the preset file as it was.
#include <fstream>
#include <sstream>

#include "cli/cli.h"
#include "fuzz/fuzz_support.h"
#include "params/device_params.h"
#include "presets/preset_file.h"
#include "sim/sim_line.h"

namespace {

using namespace talvex;

// Commands whose arguments are words; pull, push, new, eq, diff, backup and restore take paths
// and stay out.
constexpr const char* kCommands[] = {"get",  "set",      "send",   "names",  "copy",
                                     "type", "store",    "recall", "unlock", "password",
                                     "name", "response", "ping",   "lock",   "slots"};
constexpr std::size_t kMaxWords = 8;

std::vector<std::string> Words(const std::uint8_t* data, std::size_t size) {
  std::vector<std::string> words;
  std::string word;
  for (std::size_t i = 0; i < size && words.size() < kMaxWords; ++i) {
    if (data[i] != 0) {
      word.push_back(static_cast<char>(data[i]));
      continue;
    }
    words.push_back(word);
    word.clear();
  }
  if (!word.empty() && words.size() < kMaxWords) words.push_back(word);
  std::erase_if(words, [](const std::string& w) {
    return w == "--port" || w == "--file" || w == "--id" || w == "--";
  });
  return words;
}

std::vector<std::uint8_t> FileBytes(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t commandCount = sizeof(kCommands) / sizeof(kCommands[0]);
  const char* command = kCommands[(data[0] & 0x7F) % commandCount];
  const bool offline = (data[0] & 0x80) != 0;
  const std::filesystem::path preset = fuzz::ScratchFolder() / "cli.tvx";

  std::vector<std::string> args;
  if (offline) {
    if (!presets::WritePresetFile(preset.string(), params::DefaultRecord(1)).empty())
      fuzz::Fail("cannot write the scratch preset");
    args = {"--file", preset.string()};
  } else {
    args = {"--port", "sim:0", "--id", "0"};
  }
  const std::vector<std::uint8_t> fileBefore =
      offline ? FileBytes(preset) : std::vector<std::uint8_t>{};
  args.push_back(command);
  for (std::string& word : Words(data + 1, size - 1))
    args.push_back(std::move(word));

  std::shared_ptr<sim::SimLine> simulator;
  cli::CliHooks hooks;
  hooks.makeLine = [&](const link::PortSpec& spec) {
    link::Line line = link::MakeLine(spec);
    simulator = line.simulator;
    return line;
  };
  std::ostringstream out;
  std::ostringstream err;
  const int status = cli::RunCli(args, out, err, hooks);

  fuzz::Require(status == cli::kExitOk || status == cli::kExitFailure || status == cli::kExitUsage,
                "exit status 0, 1 or 2");
  if (status == cli::kExitUsage) {
    fuzz::Require(!simulator || simulator->Device(0).FramesHandled() == 0,
                  "a usage error sends nothing");
    fuzz::Require(!offline || FileBytes(preset) == fileBefore, "a usage error writes nothing");
  }
  std::error_code ignored;
  std::filesystem::remove(preset, ignored);
  return 0;
}
