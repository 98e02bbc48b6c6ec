#include "pages/connection_watch.h"

#include "pages/page_status.h"
#include "pages/page_text.h"

namespace kx20 {

ConnectionWatch::ConnectionWatch(PageContext& context, DevicePages& pages)
    : context_(context), pages_(pages) {}

void ConnectionWatch::Start(std::u16string portName, const store::ConnectionStatus* connected) {
    portName_ = std::move(portName);
    connected_ = connected != nullptr;
    last_ = connected ? *connected : store::ConnectionStatus{};
}

bool ConnectionWatch::Read(store::ConnectionStatus& status) {
    return !portName_.empty() && store::GetConnectionStatus(*context_.platform, portName_, status);
}

ConnectionChange ConnectionWatch::Tick() {
    store::ConnectionStatus status;
    const bool connected = Read(status) && status.connected;
    if (connected_ && !connected) {
        connected_ = false;
        last_ = {};
        for (DevicePageSlot slot : {DevicePageSlot::Logos, DevicePageSlot::Messages,
                                    DevicePageSlot::Fonts, DevicePageSlot::Maintenance}) {
            if (DevicePage* page = pages_.At(slot))
                page->OnConnectionLost();
        }
        const std::u16string text = PageString(context_, kStringStatusNoPrinter);
        pages_.ForEachOther(nullptr, [&](DevicePage& page) { page.SetStatusText(text); });
        pages_.ForEachOther(nullptr, [](DevicePage& page) { page.UpdateEnablement(); });
        return ConnectionChange::Lost;
    }
    if (!connected || (connected_ && status.identity == last_.identity &&
                       status.modelCode == last_.modelCode &&
                       status.firmwareLevel == last_.firmwareLevel))
        return ConnectionChange::Unchanged;
    connected_ = true;
    last_ = status;
    const std::u16string text =
        context_.strings ? ModelStatusText(*context_.strings, status.modelCode, false) : u"";
    pages_.ForEachOther(nullptr, [&](DevicePage& page) { page.OnConnectionChanged(status); });
    pages_.ForEachOther(nullptr, [&](DevicePage& page) { page.SetStatusText(text); });
    pages_.ForEachOther(nullptr, [](DevicePage& page) { page.UpdateEnablement(); });
    return ConnectionChange::Changed;
}

}  // namespace kx20
