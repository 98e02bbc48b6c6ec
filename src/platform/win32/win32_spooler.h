// Spooler port over winspool.
#pragma once

#include "platform/spooler.h"

namespace kx20 {

class Win32Spooler : public Spooler {
  public:
    std::unique_ptr<SpoolerPrinter> OpenPrinter(std::u16string_view name, std::uint32_t access,
                                                const Bytes* devMode) override;
    std::uint32_t LastError() override;
    std::u16string ErrorText(std::uint32_t code) override;
    // How long the fallback job watch waits between two looks at the queue.
    static constexpr unsigned kJobPollMilliseconds = 50;
};

}  // namespace kx20
