// Printer events (DrvPrinterEvent) and the upgrade of stored device modes
// (DrvUpgradePrinter), called in the spooler's process when a printer of this driver is
// created, connected, deleted or upgraded. At initialisation the driver names its rendering
// module, makes sure the printer's stored device mode is this driver's, and reconciles the
// catalogue kept for the printer's port with what the printer itself reports.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/platform.h"
#include "platform/prompts.h"

namespace kx20 {

namespace printerevent {
inline constexpr std::int32_t kAddConnection = 1, kDeleteConnection = 2, kInitialize = 3,
                              kDelete = 4, kCacheRefresh = 5, kCacheDelete = 6;
}  // namespace printerevent

// The printer data value that names the user-mode rendering module.
inline constexpr std::u16string_view kUserModeDriverValue = u"SPLUserModePrinterDriver";
inline constexpr std::u16string_view kRenderingModule = u"KVORSUSR.DLL";

// A name that starts with two backslashes loses its server part ("\\srv\queue" -> "queue");
// a name with no backslash after the server stays as it is.
std::u16string WithoutServer(std::u16string_view printerName);
// The name up to its first comma.
std::u16string UpToComma(std::u16string_view printerName);

// What the reconciliation did, area by area.
struct Reconciliation {
    bool reachable = false;  // the port's status was read and the printer is connected
    bool logosErased = false, logosCleared = false;
    bool messagesErased = false, messagesCleared = false;
    bool fontsErased = false, fontsCleared = false;
};

// Reconciles the catalogue of the printer's port with the printer: logos, then messages, then
// the single-byte thermal font. An area whose catalogue is cleared is announced with its
// refresh broadcast, so open pages reload.
Reconciliation ReconcileCatalogue(Platform& platform, UserPrompts& prompts,
                                  std::u16string_view printerName);

// One printer event; answers TRUE (1) or FALSE (0).
bool HandlePrinterEvent(Platform& platform, UserPrompts& prompts, std::u16string_view printerName,
                        std::int32_t event);

// Converts the stored device modes of a printer set up by an earlier driver version. Always
// answers true.
bool UpgradePrinter(Platform& platform, std::uint32_t level, std::u16string_view printerName);

}  // namespace kx20
