// Resource strings loaded from the localized resource module.
#pragma once

#include "platform/win32/windows_clean.h"

#include "platform/resources.h"

namespace kx20 {

class Win32ResourceStrings : public ResourceStrings {
  public:
    explicit Win32ResourceStrings(HMODULE module) : module_(module) {}
    std::optional<std::u16string> Load(std::uint32_t id) override;

  private:
    HMODULE module_;
};

}  // namespace kx20
