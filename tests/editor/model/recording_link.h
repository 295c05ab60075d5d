// An editor's link that keeps every command it is given, as the frame device 4 would receive.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "editor/model/device_editor.h"
#include "protocol/frame.h"

namespace talvex::editor {

class RecordingLink final : public EditorLink {
 public:
  void Send(std::span<const params::ParamEdit> edits) override {
    for (const params::ParamEdit& edit : edits)
      frames.push_back(protocol::FormatHex(protocol::BuildFrame(4, edit.command)));
  }
  std::vector<std::string> frames;
};

}  // namespace talvex::editor
