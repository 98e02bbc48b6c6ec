// Command channel port over the port monitor module "kvorsmon.dll".
#pragma once

#include "platform/monitor.h"

namespace kx20 {

class Win32CommandChannel : public CommandChannel {
  public:
    std::unique_ptr<MonitorSession> Load(MonitorLoad& status, std::uint32_t& lastError) override;
};

}  // namespace kx20
