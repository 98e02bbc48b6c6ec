// The device sheet's connection watch: on every tick of the logos page's 100 ms timer it reads
// the port's connection status once and decides whether the printer was lost, changed
// (reconnected, or another identity, model or firmware level) or is unchanged. Only a loss or
// a change reaches the pages of the shared record; an unchanged tick does nothing further.
#pragma once

#include <cstdint>
#include <string>

#include "pages/device_pages.h"
#include "pages/page_context.h"
#include "store/registry_layout.h"

namespace kx20 {

enum class ConnectionChange { Unchanged, Lost, Changed };

class ConnectionWatch {
  public:
    // `context` (platform, strings) and `pages` must outlive the watch.
    ConnectionWatch(PageContext& context, DevicePages& pages);

    // What the watch compares against from now on: the port and the status read when the page
    // started (`connected` null: no printer attached).
    void Start(std::u16string portName, const store::ConnectionStatus* connected);

    // One timer tick. Lost: every page but the status-only one forgets the printer, then every
    // page shows string 2201. Changed: every page reconciles with the status read and shows
    // the model's status line, then updates its enablement.
    ConnectionChange Tick();

    bool Connected() const { return connected_; }
    // The attached printer's identity; empty while none is.
    const std::u16string& Identity() const { return last_.identity; }

  private:
    bool Read(store::ConnectionStatus& status);

    PageContext& context_;
    DevicePages& pages_;
    std::u16string portName_;
    bool connected_ = false;
    store::ConnectionStatus last_;
};

}  // namespace kx20
