// The simulated printer behind the installed kvorsmon.dll, driven from a test or the demo:
// connect it, change its model, and read its state and log.
#pragma once

#include "platform/win32/windows_clean.h"

#include <string>

namespace kx20::winhost {

class SimulatedPrinterControl {
  public:
    explicit SimulatedPrinterControl(std::wstring port);
    ~SimulatedPrinterControl();
    SimulatedPrinterControl(const SimulatedPrinterControl&) = delete;
    SimulatedPrinterControl& operator=(const SimulatedPrinterControl&) = delete;

    bool Loaded() const { return control_ && describe_; }
    // 0 on success; see the simulated monitor for the commands.
    DWORD Control(const wchar_t* command);
    std::wstring Describe();

  private:
    using ControlFn = DWORD(WINAPI*)(LPCWSTR, LPCWSTR);
    using DescribeFn = DWORD(WINAPI*)(LPCWSTR, LPWSTR, DWORD);
    std::wstring port_;
    HMODULE module_ = nullptr;
    ControlFn control_ = nullptr;
    DescribeFn describe_ = nullptr;
};

}  // namespace kx20::winhost
