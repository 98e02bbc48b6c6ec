#include "entry/printer_event.h"

#include <algorithm>
#include <cstring>

#include "channel/printer_queries.h"
#include "devmode/devmode.h"
#include "devmode/printer_settings.h"
#include "platform/trace.h"
#include "platform/registry.h"
#include "store/catalogue.h"
#include "store/registry_layout.h"

namespace kx20 {

namespace {

// The local copy of the name that the add-connection event keeps: 516 bytes.
constexpr std::size_t kConnectionNameChars = 258;
constexpr std::size_t kErrorTextChars = 1024;
// The part of an older record's private size that the upgrade does not carry over.
constexpr std::int32_t kUpgradeShortfall = 300;

bool Result(bool ok) {
    DrvTrace(u"   returning %s\n", ok ? u"TRUE" : u"FALSE");
    return ok;
}

std::u16string Cut(std::u16string text, std::size_t chars) {
    if (text.size() >= chars)
        text.resize(chars - 1);
    return text;
}

std::uint32_t AsNumber(const std::uint8_t crc[4]) {
    return ReadU32(ByteSpan(crc, 4), 0);
}

// One area of the reconciliation. `clearOnZero` makes a stored checksum of 0 clear the area
// even when the printer could not be asked (messages and fonts).
struct Area {
    bool (*query)(Platform&, bool, std::u16string_view, std::uint8_t*);
    std::uint32_t (*stored)(Platform&, std::u16string_view, std::u16string_view);
    int (*clear)(Platform&, std::u16string_view, std::u16string_view);
    std::uint8_t flashArea;
    bool clearOnZero;
    RefreshMessage refresh;
};

void ReconcileArea(Platform& p, UserPrompts& prompts, std::u16string_view printer,
                   std::u16string_view id, const Area& area, bool& erased, bool& cleared) {
    std::uint8_t crc[4] = {};
    const bool asked = area.query(p, true, printer, crc);
    const std::uint32_t printerCrc = AsNumber(crc);
    const std::uint32_t storedCrc = area.stored(p, printer, id);
    if (!((asked && printerCrc != storedCrc) || (area.clearOnZero && storedCrc == 0)))
        return;
    if (printerCrc != 0)
        erased = channel::OutEraseFlashArea(p, printer, area.flashArea);
    area.clear(p, printer, id);
    cleared = true;
    prompts.Broadcast(area.refresh, 0);
}

bool Initialize(Platform& p, UserPrompts& prompts, std::u16string_view givenName) {
    const std::u16string name = WithoutServer(givenName);
    PrinterSettings settings(p, name, kPrinterAllAccess);
    if (!settings.IsOpen())
        return false;

    if (const long rc = p.registry.FlushHive(Hive::LocalMachine); rc != kRegOk) {
        DrvTrace(u"   RegFlushKey failed system error message is:\n   %ls\n",
                 Cut(p.spooler.ErrorText(static_cast<std::uint32_t>(rc)), kErrorTextChars));
        return false;
    }

    Bytes module;
    AppendUtf16z(module, kRenderingModule);
    if (const std::uint32_t rc = settings.SetPrinterData(kUserModeDriverValue, kRegString, module);
        rc != 0) {
        DrvTrace(u"   YIKES, 1st SetPrinterData failed, spdrc=%d\n", rc);
        return false;
    }

    const DevModeImage* stored = settings.GetDevMode();
    if (stored && ReadU16(*stored, kOffDmDriverExtra) != kDevModePrivateSize) {
        // A record of another driver or an older version: both the global and the per-user
        // device mode become the built-in defaults.
        if (auto printer = p.spooler.OpenPrinter(name, kPrinterAllAccess, nullptr)) {
            PrinterInfo info;
            info.devMode = Bytes(gsDevMode().begin(), gsDevMode().end());
            printer->SetPrinter(8, info);
            printer->SetPrinter(9, info);
        }
    } else if (stored) {
        settings.SetDevMode(*stored);
    }

    ReconcileCatalogue(p, prompts, UpToComma(name));
    return true;
}

void KeepConnectionName(Platform& p, std::u16string_view name) {
    auto printer = p.spooler.OpenPrinter(name, 0, nullptr);
    if (!printer)
        return;
    PrinterInfo info;
    if (printer->GetPrinter(2, info)) {
        const std::u16string kept = Cut(info.printerName, kConnectionNameChars);
        (void)kept;  // nothing further is done with it
    }
}

}  // namespace

std::u16string WithoutServer(std::u16string_view printerName) {
    if (printerName.substr(0, 2) != u"\\\\")
        return std::u16string(printerName);
    const std::size_t slash = printerName.find(u'\\', 2);
    if (slash == std::u16string_view::npos)
        return std::u16string(printerName);
    return std::u16string(printerName.substr(slash + 1));
}

std::u16string UpToComma(std::u16string_view printerName) {
    return std::u16string(printerName.substr(0, printerName.find(u',')));
}

Reconciliation ReconcileCatalogue(Platform& p, UserPrompts& prompts,
                                  std::u16string_view printerName) {
    Reconciliation r;
    store::ConnectionStatus status;
    const std::u16string port = store::PrinterPortName(p, printerName);
    if (!store::GetConnectionStatus(p, port, status) || !status.connected)
        return r;
    r.reachable = true;
    const Area logos{channel::GetLogosCRC,
                     store::GetLogoCRC,
                     store::DeleteLogoEntries,
                     channel::kAreaLogos,
                     false,
                     RefreshMessage::Logos};
    const Area messages{channel::GetMessagesCRC,
                        store::GetMessageCRC,
                        store::DeleteMessageEntries,
                        channel::kAreaMessages,
                        true,
                        RefreshMessage::Messages};
    const Area fonts{channel::GetSBCSThermalCRC,
                     store::GetSBCSFontCRC,
                     store::DeleteSBCSFontEntries,
                     channel::kAreaSbcsThermal,
                     true,
                     RefreshMessage::Fonts};
    ReconcileArea(p, prompts, printerName, status.identity, logos, r.logosErased, r.logosCleared);
    ReconcileArea(p, prompts, printerName, status.identity, messages, r.messagesErased,
                  r.messagesCleared);
    ReconcileArea(p, prompts, printerName, status.identity, fonts, r.fontsErased, r.fontsCleared);
    return r;
}

bool HandlePrinterEvent(Platform& p, UserPrompts& prompts, std::u16string_view printerName,
                        std::int32_t event) {
    switch (event) {
        case printerevent::kAddConnection:
            DrvTrace(u"   DriverEvent = PRINTER_EVENT_ADD_CONNECTION\n");
            KeepConnectionName(p, printerName);
            return Result(true);
        case printerevent::kDeleteConnection:
            DrvTrace(u"   DriverEvent = PRINTER_EVENT_DELETE_CONNECTION\n");
            return Result(true);
        case printerevent::kInitialize:
            DrvTrace(u"   DriverEvent = PRINTER_EVENT_INITIALIZE '%ls'\n", printerName);
            return Result(Initialize(p, prompts, printerName));
        case printerevent::kDelete:
            DrvTrace(u"  DriverEvent =  PRINTER_EVENT_DELETE\n");
            return Result(true);
        case printerevent::kCacheRefresh:
            DrvTrace(u"  DriverEvent =  PRINTER_EVENT_CACHE_REFRESH\n");
            return Result(true);
        case printerevent::kCacheDelete:
            DrvTrace(u"  DriverEvent =  PRINTER_EVENT_CACHE_DELETE\n");
            return Result(true);
        default:
            DrvTrace(u"  Unknown DriverEvent = %d\n", event);
            return Result(true);
    }
}

bool UpgradePrinter(Platform& p, std::uint32_t level, std::u16string_view printerName) {
    if (level != 2)
        return true;
    const std::u16string name = UpToComma(WithoutServer(printerName));
    auto printer = p.spooler.OpenPrinter(name, kPrinterAllAccess, nullptr);
    if (!printer)
        return true;
    PrinterInfo global, user;
    if (!printer->GetPrinter(8, global) || !printer->GetPrinter(9, user) || !global.devMode)
        return true;
    const Bytes& old = *global.devMode;
    const std::uint16_t oldExtra = ReadU16(old, kOffDmDriverExtra);
    if (oldExtra == kDevModePrivateSize)
        return true;
    Bytes record(kDevModeSize, 0);
    WriteU16(record, kOffDmDriverExtra, static_cast<std::uint16_t>(kDevModePrivateSize));
    // The first (old private size - 300) bytes of the global record, then the same count of the
    // per-user record over them; the copies may overwrite the sizes just set. A count below 0
    // copies nothing, and no copy reads past a record or writes past the new one.
    const std::int32_t count = static_cast<std::int32_t>(oldExtra) - kUpgradeShortfall;
    if (count > 0) {
        for (const std::optional<Bytes>* from : {&global.devMode, &user.devMode}) {
            if (!*from)
                continue;
            const std::size_t n =
                std::min({static_cast<std::size_t>(count), (*from)->size(), record.size()});
            if (n > 0)
                std::memcpy(record.data(), (*from)->data(), n);
        }
    }
    PrinterInfo info;
    info.devMode = record;
    printer->SetPrinter(8, info);
    printer->SetPrinter(9, info);
    return true;
}

}  // namespace kx20
