#include "cli/cli_context.h"

#include <algorithm>
#include <charconv>
#include <ostream>

#include "protocol/frame.h"

namespace talvex::cli {

std::optional<int> ParseInt(const std::string& text, int min, int max) {
  int value = 0;
  const char* first = text.data();
  const char* last = text.data() + text.size();
  if (text.empty() || (text[0] == '+')) return std::nullopt;
  const auto [end, error] = std::from_chars(first, last, value);
  if (error != std::errc() || end != last || value < min || value > max) return std::nullopt;
  return value;
}

void ProgressLines::operator()(int done, int total) {
  if (total <= 0) return;
  const int percent = static_cast<int>(100LL * std::clamp(done, 0, total) / total);
  if (percent <= shown_) return;
  shown_ = percent;
  err_ << what_ << ' ' << percent << " %\n";
}

void RequireArgCount(const CliContext& context, std::size_t min, std::size_t max) {
  const std::size_t count = context.Args().size();
  if (count < min) throw UsageError("missing arguments");
  if (count > max) throw UsageError("unexpected argument \"" + context.Args()[max] + "\"");
}

std::string ShownName(const std::optional<std::string>& name) {
  if (!name) return "---";
  return name->substr(0, name->find_last_not_of(' ') + 1);
}

std::string JsonString(const std::string& text) {
  std::string json = "\"";
  for (char c : text) {
    if (c == '"' || c == '\\') {
      json += '\\';
      json += c;
    } else if (const auto byte = static_cast<unsigned char>(c); byte < 0x20 || byte >= 0x7F) {
      // Device names are raw bytes: anything outside printable ASCII is written as the
      // code point of the same number, so the output is always valid JSON.
      static constexpr char kHex[] = "0123456789abcdef";
      json += "\\u00";
      json += kHex[byte >> 4];
      json += kHex[byte & 0xF];
    } else {
      json += c;
    }
  }
  return json + "\"";
}

CliContext::CliContext(GlobalOptions options, std::vector<std::string> args, std::ostream& out,
                       std::ostream& err, const CliHooks& hooks)
    : options_(std::move(options)), args_(std::move(args)), out_(&out), err_(&err), hooks_(hooks) {}

CliContext::~CliContext() = default;

void CliContext::TurnTo(int deviceId, std::ostream& out, std::ostream& err) {
  options_.id = deviceId;
  out_ = &out;
  err_ = &err;
  failures_ = 0;
}

link::Link& CliContext::Link() {
  if (wordsOnly_) throw WordsChecked{};
  if (link_) return *link_;
  const link::PortSpec spec = link::ParsePortSpec(options_.port);  // checked before any command
  line_ = hooks_.makeLine(spec);
  link::LinkObserver* observer = this;
  link_ = std::make_unique<link::Link>(*line_->transport, *line_->clock, observer);
  if (!link_->OpenPort()) throw CommandFailed(link_->LastOpenError());
  link_->Flags().ReportLinkErrors = true;
  return *link_;
}

sim::SimLine* CliContext::Simulator() {
  Link();
  return line_->simulator.get();
}

int CliContext::IntArg(std::size_t index, int min, int max, const char* what) const {
  if (index >= args_.size()) throw UsageError(std::string("missing ") + what);
  const auto value = ParseInt(args_[index], min, max);
  if (!value) {
    throw UsageError(std::string(what) + " \"" + args_[index] + "\" is not a number from " +
                     std::to_string(min) + " to " + std::to_string(max));
  }
  return *value;
}

void CliContext::LinkFailed(const link::LinkFailure& failure) {
  ++failures_;
  if (!failure.title.empty()) Err() << failure.title << ": ";
  Err() << failure.text << '\n';
}

void CliContext::FrameSent(std::span<const std::uint8_t> frame) {
  if (options_.trace) Err() << "> " << protocol::FormatHex(frame) << '\n';
}

void CliContext::ReplyTaken(std::span<const std::uint8_t> reply) {
  if (options_.trace) Err() << "< " << protocol::FormatHex(reply) << '\n';
}

}  // namespace talvex::cli
