// The program's own cost of an exchange (processor time, not the time the line takes), over the
// in-process simulator and over a real pseudo-terminal to talvex-sim, and the processor time
// spent while waiting out a silent device.
#include <benchmark/benchmark.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <QCoreApplication>
#include <cstdio>
#include <string>

#include "link/line.h"
#include "link/link.h"
#include "link/search.h"

extern char** environ;

namespace {

using namespace talvex;

double ProcessCpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// talvex-sim on a fresh pseudo-terminal, for as long as the object lives.
class SimOnPty {
 public:
  explicit SimOnPty(const char* ids) {
    int out[2];
    if (pipe(out) != 0) return;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, out[0]);
    char* argv[] = {const_cast<char*>(TALVEX_SIM_PATH), const_cast<char*>("--pty"),
                    const_cast<char*>("--ids"), const_cast<char*>(ids), nullptr};
    posix_spawn(&pid_, TALVEX_SIM_PATH, &actions, nullptr, argv, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(out[1]);
    char c = 0;
    while (read(out[0], &c, 1) == 1 && c != '\n')
      path_ += c;
    close(out[0]);
  }
  ~SimOnPty() {
    if (pid_ > 0) {
      kill(pid_, SIGTERM);
      waitpid(pid_, nullptr, 0);
    }
  }
  const std::string& Path() const { return path_; }

 private:
  pid_t pid_ = -1;
  std::string path_;
};

protocol::Command MuteCommand() {
  protocol::Command command;
  command.code = protocol::code::kMute;
  command.p(1) = 2;
  command.p(8) = 1;
  return command;
}

void RunExchanges(benchmark::State& state, link::Link& link) {
  if (!link.OpenPort()) {
    state.SkipWithError(link.LastOpenError().c_str());
    return;
  }
  for (auto _ : state) {
    if (link.SendCommand(0, MuteCommand()) != link::SendResult::Replied) {
      state.SkipWithError("no reply");
      return;
    }
  }
}

void BM_ExchangeInProcessSimulator(benchmark::State& state) {
  link::Line line = link::MakeLine(link::ParsePortSpec("sim:0"));
  link::Link link(*line.transport, *line.clock);
  RunExchanges(state, link);
}
BENCHMARK(BM_ExchangeInProcessSimulator);

// Processor time of this process only: talvex-sim runs in its own process.
void BM_ExchangeOverPseudoTerminal(benchmark::State& state) {
  SimOnPty sim("0");
  link::Line line = link::MakeLine(link::ParsePortSpec(sim.Path()));
  link::Link link(*line.transport, *line.clock);
  RunExchanges(state, link);
}
BENCHMARK(BM_ExchangeOverPseudoTerminal)->MeasureProcessCPUTime();

// A device that never answers: one whole SendCommand (five transmissions, 25 s) or a search
// poll (100 ms). Reports the share of one core used while waiting.
void WaitOut(benchmark::State& state, bool wholeSend) {
  SimOnPty sim("0");
  link::Line line = link::MakeLine(link::ParsePortSpec(sim.Path()));
  link::Link link(*line.transport, *line.clock);
  if (!link.OpenPort()) return state.SkipWithError(link.LastOpenError().c_str());
  double cpu = 0;
  double wall = 0;
  for (auto _ : state) {
    const double cpuStart = ProcessCpuSeconds();
    const auto wallStart = std::chrono::steady_clock::now();
    if (wholeSend) {
      benchmark::DoNotOptimize(link.SendCommand(9, MuteCommand()));
    } else {
      benchmark::DoNotOptimize(link.PollDevice(9, link::PollCommand(9)));
    }
    cpu += ProcessCpuSeconds() - cpuStart;
    wall += std::chrono::duration<double>(std::chrono::steady_clock::now() - wallStart).count();
  }
  state.counters["cpu_percent_of_one_core"] = 100.0 * cpu / wall;
}
void BM_WaitOutSilentDeviceSend(benchmark::State& state) {
  WaitOut(state, true);
}
void BM_WaitOutSilentDevicePoll(benchmark::State& state) {
  WaitOut(state, false);
}
BENCHMARK(BM_WaitOutSilentDeviceSend)->Iterations(1)->UseRealTime()->Unit(benchmark::kSecond);
BENCHMARK(BM_WaitOutSilentDevicePoll)->Iterations(20)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
