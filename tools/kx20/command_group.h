// The kx20 tool's command groups (`kx20 logo ...`, `kx20 font ...`). Each group lives in its
// own file and registers itself with a static KX20_COMMAND_GROUP object.
#pragma once

#include <string>
#include <vector>

namespace kx20tool {

// Exit status: 0 success, 1 the input cannot be used (invalid file), 2 usage or read error.
inline constexpr int kExitOk = 0;
inline constexpr int kExitInvalid = 1;
inline constexpr int kExitUsage = 2;

using GroupMain = int (*)(const std::vector<std::string>& args);  // args after the group name

struct CommandGroup {
    CommandGroup(const char* name, const char* usage, GroupMain run);
};

}  // namespace kx20tool
