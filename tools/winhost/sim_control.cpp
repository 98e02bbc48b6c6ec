#include "tools/winhost/sim_control.h"

#include <vector>

namespace kx20::winhost {

SimulatedPrinterControl::SimulatedPrinterControl(std::wstring port) : port_(std::move(port)) {
    module_ = LoadLibraryW(L"kvorsmon.dll");
    if (!module_)
        return;
    control_ = reinterpret_cast<ControlFn>(
        reinterpret_cast<void*>(GetProcAddress(module_, "KX20SimControl")));
    describe_ = reinterpret_cast<DescribeFn>(
        reinterpret_cast<void*>(GetProcAddress(module_, "KX20SimDescribe")));
}

SimulatedPrinterControl::~SimulatedPrinterControl() {
    if (module_)
        FreeLibrary(module_);
}

DWORD SimulatedPrinterControl::Control(const wchar_t* command) {
    return control_ ? control_(port_.c_str(), command) : ERROR_MOD_NOT_FOUND;
}

std::wstring SimulatedPrinterControl::Describe() {
    if (!describe_)
        return L"(kvorsmon.dll not loaded)";
    DWORD length = describe_(port_.c_str(), nullptr, 0);
    std::vector<wchar_t> buf(length + 1);
    describe_(port_.c_str(), buf.data(), static_cast<DWORD>(buf.size()));
    return std::wstring(buf.data());
}

}  // namespace kx20::winhost
