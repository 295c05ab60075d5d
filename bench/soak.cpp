// The fault soak: a show's worth of parameter edits to a simulated processor on a bad line, on
// a virtual clock so that hours of waiting cost seconds.
//
// Every kind of parameter edit goes through its sender (the one edit path the editor and
// talvexctl take, here by talvexctl's words) and out with Link::SendCommand, with failures reported
// as the editor has them (ReportLinkErrors on). The line drops 5 % of the frames in each direction,
// corrupts one byte of 1 % of the replies and delays every reply by up to 4 s. After a final
// failure the program has closed the device; the soak then does what the user does: connect
// again, which reads the device's live image.
//
// At the end the simulator's live image must equal the program's ParamImage bytes 0..303, no
// exchange may have run past its limit, and every final failure must have been reported once.
// The figures go to stdout; the exit status is 1 when any check fails.
//
//   talvex_soak [EDITS] [SEED]      (defaults: 10000 edits, seed 1)
#include <chrono>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>

#include "cli/param_words.h"
#include "link/link.h"
#include "link/sim_transport.h"
#include "presets/live_image.h"
#include "sim/sim_line.h"

namespace {

using namespace talvex;
using namespace std::chrono_literals;

constexpr int kDeviceId = 0;

class CountingObserver final : public link::LinkObserver {
 public:
  void LinkFailed(const link::LinkFailure& /*failure*/) override { ++reports; }
  int reports = 0;
};

struct Figures {
  long edits = 0;
  long failedEdits = 0;      // SendCommand returned Failed: reported, device closed
  long finalFailures = 0;    // every exchange that failed for good, reads included
  long reconnects = 0;       // connections made again after a failure
  long unreadableReads = 0;  // live images that came garbled, or disagreed with the next read
  link::Clock::Duration longestSend{};
};

// A value text the parameter takes, drawn at random over (and a little beyond) its range;
// values outside are clamped by the value rules as a typed value is.
class ValueMaker {
 public:
  explicit ValueMaker(std::uint32_t seed) : random_(seed) {}

  std::string For(const params::ParamRef& ref) {
    using params::ParamKind;
    switch (ref.kind) {
      case ParamKind::InputSource:
        return Pick({"analog", "spdif"});
      case ParamKind::Level:
        return Number(-16, 16, 1);
      case ParamKind::Mute:
        return Pick({"on", "off"});
      case ParamKind::Polarity:
        return Pick({"0", "180"});
      case ParamKind::Delay:
        return Number(0, 700, 3);
      case ParamKind::Limiter:
        return ref.channel < params::kInputCount
                   ? Pick({"clip", "15", "9", "3", "0"})
                   : Pick({"clip", "15", "9", "3", "0", "-3", "-6", "-9", "-12", "-15"});
      case ParamKind::EqFrequency:
      case ParamKind::HighPassFrequency:
      case ParamKind::LowPassFrequency:
        return Text(std::exp(Uniform(std::log(15.0), std::log(22000.0))), 1);
      case ParamKind::EqQ:
        return Number(0.05, 3, 2);
      case ParamKind::EqGain:
        return Number(-15, 15, 1);
      case ParamKind::EqType:
        return Pick({"bell", "hs12", "hs6", "ls12", "ls6"});
      case ParamKind::OutputSource:
        return Pick({"inA", "inB"});
      case ParamKind::HighPassType:
      case ParamKind::LowPassType:
        return std::to_string(std::uniform_int_distribution<int>(0, 8)(random_));
      case ParamKind::Threshold:
        return Number(-10, 20, 1);
      case ParamKind::Attack:
        return Number(0.5, 200, 1);
      case ParamKind::Release:
        return Number(100, 500, 0);
      case ParamKind::Name:
        return Name();
      case ParamKind::EqBypass:
      case ParamKind::OutputLink:
        return Pick({"on", "off"});
      case ParamKind::DelayUnit:
        return Pick({"ms", "m"});
      case ParamKind::Temperature:
        return Number(-25, 55, 1);
    }
    return {};
  }

  const params::ParamRef& AnyParam(const std::vector<params::ParamRef>& all) {
    return all[std::uniform_int_distribution<std::size_t>(0, all.size() - 1)(random_)];
  }

 private:
  double Uniform(double lo, double hi) {
    return std::uniform_real_distribution<double>(lo, hi)(random_);
  }
  static std::string Text(double value, int decimals) {
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
  }
  std::string Number(double lo, double hi, int decimals) { return Text(Uniform(lo, hi), decimals); }
  std::string Pick(std::initializer_list<const char*> words) {
    const auto at = std::uniform_int_distribution<std::size_t>(0, words.size() - 1)(random_);
    return *(words.begin() + static_cast<long>(at));
  }
  std::string Name() {
    static constexpr char kLetters[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZ abcdefghijklmnopqrstuvwxyz0123456789";
    std::string name(std::uniform_int_distribution<std::size_t>(0, 6)(random_), ' ');
    for (char& c : name)
      c = kLetters[std::uniform_int_distribution<std::size_t>(0, sizeof kLetters - 2)(random_)];
    return name;
  }

  std::mt19937 random_;
};

// Connecting as the user does after the device was closed: its live image, read again until
// two reads agree. A block has no checksum, so a corrupt byte that still decodes would be taken
// as it came; a user who sees a wrong value connects again, and so does the soak.
params::DeviceParams Connect(link::Link& link, Figures& figures) {
  constexpr int kMostReads = 100;  // a line this bad is no line: the soak stops
  std::optional<params::ParamImage> previous;
  for (int read = 0; read < kMostReads; ++read) {
    params::ParamImage image = params::DefaultRecord(0);
    switch (presets::ReadLiveImage(link, kDeviceId, image)) {
      case presets::LiveRead::Received:
        if (previous && *previous == image) return params::DeviceParams::FromImage(image);
        if (previous) ++figures.unreadableReads;
        previous = image;
        break;
      case presets::LiveRead::Garbled:
        ++figures.unreadableReads;
        break;
      case presets::LiveRead::Failed:
        ++figures.finalFailures;
        break;
      case presets::LiveRead::Skipped:
        break;
    }
  }
  std::fprintf(stderr, "no two reads of the live image agreed in %d reads\n", kMostReads);
  std::exit(1);
}

double Seconds(link::Clock::Duration d) {
  return std::chrono::duration<double>(d).count();
}

}  // namespace

int main(int argc, char** argv) {
  const long edits = argc > 1 ? std::stol(argv[1]) : 10000;
  const auto seed = static_cast<std::uint32_t>(argc > 2 ? std::stoul(argv[2]) : 1);
  const auto wallStart = std::chrono::steady_clock::now();

  link::VirtualClock clock;
  auto line = std::make_shared<sim::SimLine>(std::vector<int>{kDeviceId});
  link::SimTransport transport(line, clock, "sim:0");
  CountingObserver observer;
  link::Link link(transport, clock, &observer);
  if (!link.OpenPort()) return 1;

  sim::FaultPlan& faults = line->Faults(kDeviceId);
  faults.dropRequestRate = 0.05;
  faults.dropReplyRate = 0.05;
  faults.corruptRate = 0.01;
  faults.maxRandomDelay = 4s;
  faults.seed = seed;

  // Reported as the editor has them, the first read included, so that every final failure
  // of the soak is one the user sees.
  link.Flags().ReportLinkErrors = true;
  Figures figures;
  params::DeviceParams device = Connect(link, figures);

  const std::vector<params::ParamRef> all = params::AllParams();
  ValueMaker values(seed + 1);
  while (figures.edits < edits) {
    const params::ParamRef& ref = values.AnyParam(all);
    const cli::SetOutcome outcome = cli::SetParam(device, ref, values.For(ref));
    if (!outcome.Ok()) {
      std::fprintf(stderr, "%s refused a value: %s\n", cli::ParamName(ref).c_str(),
                   outcome.badChoice.c_str());
      return 1;
    }
    ++figures.edits;
    // One command, or one per member of a link group (a temperature sends every delay again).
    for (const params::ParamEdit& edit : outcome.edit.edits) {
      const link::Clock::TimePoint start = clock.Now();
      const link::SendResult result = link.SendCommand(kDeviceId, edit.command);
      figures.longestSend = std::max(figures.longestSend, clock.Now() - start);
      if (result != link::SendResult::Failed) continue;
      ++figures.failedEdits;
      ++figures.finalFailures;
      ++figures.reconnects;
      device = Connect(link, figures);
      break;
    }
  }

  const link::LinkStats& stats = link.Stats();
  const auto& live = line->Device(kDeviceId).LiveImage();
  int differing = 0;
  for (std::size_t i = 0; i < live.size(); ++i) {
    if (live[i] == device.image[i]) continue;
    ++differing;
    std::printf("byte %zu: device %d, program %d\n", i, live[i], device.image[i]);
  }
  const link::Clock::Duration sendLimit = link::kSendTransmissions * link::kReplyTimeout;
  const link::Clock::Duration blockLimit = link::kBlockTransmissions * link::kBlockTimeout;

  std::printf("edits                 %ld\n", figures.edits);
  std::printf("transmissions         %ld\n", stats.transmissions);
  std::printf("retransmissions       %ld\n", stats.retransmissions);
  std::printf("final failures        %ld (edits %ld, reported %d)\n", figures.finalFailures,
              figures.failedEdits, observer.reports);
  std::printf("reconnects            %ld\n", figures.reconnects);
  std::printf("live images re-read   %ld\n", figures.unreadableReads);
  std::printf("longest edit          %.3f s (limit %.0f s)\n", Seconds(figures.longestSend),
              Seconds(sendLimit));
  std::printf("longest exchange      %.3f s (limit %.3f s for a block read)\n",
              Seconds(stats.longestExchange), Seconds(blockLimit));
  std::printf("bytes 0..303 differing %d\n", differing);
  std::printf("line time             %.0f s (virtual), wall time %.2f s\n",
              Seconds(clock.Now() - link::Clock::TimePoint{}),
              std::chrono::duration<double>(std::chrono::steady_clock::now() - wallStart).count());

  const bool ok = differing == 0 && figures.longestSend <= sendLimit &&
                  stats.longestExchange <= blockLimit && observer.reports == figures.finalFailures;
  std::printf("soak: %s\n", ok ? "passed" : "FAILED");
  return ok ? 0 : 1;
}
