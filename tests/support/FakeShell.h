#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/Shell.h"

namespace tavrin {

/// A shell that remembers its scripts and starts none.
class FakeShell final : public Shell {
 public:
  struct Run {
    std::string script;
    std::string writableFolder;
  };

  Result<int> system(const std::string& script, const std::string& writableFolder) override {
    runs.push_back({script, writableFolder});
    if (during) during();
    return result;
  }
  std::string outputOfCommand(const std::string& command) override {
    commands.push_back(command);
    return outputs[command];
  }

  std::vector<Run> runs;
  /// What happens while a script runs.
  std::function<void()> during;
  Result<int> result = 0;
  /// The commands whose output was asked for, in order, and what they print ("" for others).
  std::vector<std::string> commands;
  std::map<std::string, std::string> outputs;
};

}  // namespace tavrin
