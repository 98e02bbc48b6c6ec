// The record the device sheet's pages share: one entry each for the logos, messages, fonts and
// maintenance pages and a fifth page that only shows the status text. The logos page owns it
// (its connection timer enables, disables and refreshes the others through it); each page
// puts itself into its own entry when it starts and takes itself out when it goes.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "store/registry_layout.h"

namespace kx20 {

enum class DevicePageSlot : std::size_t { Logos = 0, Messages, Fonts, Maintenance, StatusOnly };
inline constexpr std::size_t kDevicePageSlots = 5;

// What the connection timer asks of a device page.
class DevicePage {
  public:
    virtual ~DevicePage() = default;
    virtual void SetStatusText(std::u16string_view text) = 0;
    // The printer is no longer reachable: forget what it holds, disable the printer controls.
    virtual void OnConnectionLost() {}
    // The printer is reachable again, or another one is attached: reconcile with it, refill,
    // enable.
    virtual void OnConnectionChanged(const store::ConnectionStatus& /*status*/) {}
    virtual void UpdateEnablement() {}
};

class DevicePages {
  public:
    void Attach(DevicePageSlot slot, DevicePage* page) { pages_[Index(slot)] = page; }
    void Detach(DevicePage* page) {
        for (auto& p : pages_)
            if (p == page)
                p = nullptr;
    }
    DevicePage* At(DevicePageSlot slot) const { return pages_[Index(slot)]; }

    // Every attached page except `except`, in slot order.
    template <class F>
    void ForEachOther(const DevicePage* except, F f) const {
        for (DevicePage* p : pages_)
            if (p && p != except)
                f(*p);
    }

  private:
    static std::size_t Index(DevicePageSlot slot) { return static_cast<std::size_t>(slot); }
    std::array<DevicePage*, kDevicePageSlots> pages_{};
};

}  // namespace kx20
