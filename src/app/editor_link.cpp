#include "app/editor_link.h"

#include "presets/meters.h"

namespace talvex::app {

void SessionEditorLink::Send(std::span<const params::ParamEdit> edits) {
  for (const params::ParamEdit& edit : edits) {
    const int id = deviceId_;
    const protocol::Command command = edit.command;
    session_.Submit(
        id, protocol::ParameterKey(command),
        [id, command](link::Link& link) { return link.SendCommand(id, command); },
        [](link::SendResult) {});  // a final failure comes back through the link's report
  }
}

void SessionEditorLink::PollMeters(std::function<void(const MeterLevels&)> done) {
  if (session_.DemoMode() || *meterPending_ || session_.Outstanding() > 0) return;
  *meterPending_ = true;
  const int id = deviceId_;
  session_.Submit(
      id, {}, [id](link::Link& link) { return presets::ReadMeters(link, id); },
      [pending = meterPending_, done = std::move(done)](std::optional<presets::MeterLevels> read) {
        *pending = false;
        if (!read) return;
        MeterLevels levels{};
        for (int channel = 0; channel < params::kChannelCount; ++channel)
          levels[static_cast<std::size_t>(channel)] = read->Dbfs(channel);
        done(levels);
      });
}

}  // namespace talvex::app
