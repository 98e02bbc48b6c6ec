// The two property sheets: the printer's device sheet (logos, messages, fonts, maintenance, log
// settings) and the job's document sheet (device settings, options, the two station pages).
// Each sheet gets one page context at its initialisation, owned until its destruction; the
// pages are described from the page tables below and added through the sheet service, or, on
// the systems that want it, made by the optional page module.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "entry/sheet_context.h"
#include "pages/sheet_pages.h"
#include "platform/sheets.h"
#include "platform/system.h"

namespace kx20 {

inline constexpr std::uint32_t kAboutTemplate = 1000;
// Sent to the document sheet's window, when a page has set it, at the end of the
// initialisation.
inline constexpr std::uint32_t kSheetWindowMessage = 1160;

inline constexpr std::u16string_view kPageModuleName = u"Kvorsxps.dll";
inline constexpr std::string_view kPageModuleExport = "GetXPPropSheetPage";

// The device sheet's common-sheet description (the values the Win32 side puts into its
// COMPROPSHEETUI).
inline constexpr std::uint32_t kCommonSheetFlags = 5;  // update permission, About callback
inline constexpr std::uint32_t kCommonSheetIcon = 64062;
inline constexpr std::uint32_t kCommonSheetVersion = 0x100;

// Reasons of the sheet entries.
namespace psui {
inline constexpr std::int32_t kInit = 0, kGetInfoHeader = 1, kDestroy = 2, kSetResult = 3,
                              kGetIcon = 4;
}  // namespace psui

// Pages go in made by the optional page module on a system that reports version 5 with a
// minor version other than 0; as descriptions otherwise.
bool IsNewerSystem(const SystemVersion& version);

// The ports a sheet works over; they must outlive its context.
struct SheetPorts {
    Platform& platform;
    SystemServices& system;
    UserPrompts& prompts;
    Pictures* pictures = nullptr;  // the picture loader the logos pages and previews use
};

// The description of one page of a sheet: template and title `id`, the title from the
// resource module, flags 0x428, the resource module as instance, the context as parameter.
PageDescription DescribePage(PageContext& context, std::uint32_t id);

// Adds pages for the length of its life. On a newer system it changes to the resource
// module's folder, loads the optional page module there and has it make each page; a page it
// does not make is skipped. When it goes, the working folder is restored and the module freed.
class PageAdder {
  public:
    PageAdder(SystemServices& system, SheetService& sheet, PageContext& context);
    ~PageAdder();
    PageAdder(const PageAdder&) = delete;
    PageAdder& operator=(const PageAdder&) = delete;
    void Add(std::uint32_t id);
    void AddAll(std::span<const std::uint32_t> ids);

  private:
    SystemServices& system_;
    SheetService& sheet_;
    PageContext& context_;
    bool newer_ = false;
    std::u16string savedFolder_;
    std::unique_ptr<PageModule> module_;
};

// The context of a sheet for the printer: its settings object (all access, else read
// access), the driver name from its level-2 information, the resource module and the port
// summary. Null when the printer cannot be opened at all or has no level-2 information.
std::unique_ptr<SheetContext> OpenSheetContext(const SheetPorts& ports,
                                              std::u16string_view printerName);

// What a sheet entry is handed for one reason. `context` is the slot the sheet keeps its
// context in (the info's user data); `result` the info's result.
struct SheetCall {
    std::int32_t reason = 0;
    std::u16string_view printerName;  // from the header
    SheetService* sheet = nullptr;    // null when the service gave no function
    std::unique_ptr<SheetContext>* context = nullptr;
    std::intptr_t* result = nullptr;
};

// DrvDevicePropertySheets for one reason (the info is known to be present).
std::int32_t DevicePropertySheets(const SheetPorts& ports, const SheetCall& call);

// The document sheet's caller records: the input record as it declares itself (empty when
// none) and the output record bounded by the header's size.
struct DocumentRecords {
    MutableByteSpan in;
    MutableByteSpan out;
    std::uint32_t mode = 0;
};

// DrvDocumentPropertySheets with an info and DM_PROMPT, after the size query and the loading
// of the current defaults.
std::int32_t DocumentPropertySheets(const SheetPorts& ports, const SheetCall& call,
                                    const DocumentRecords& records);

// The page copy at the sheet's start: the caller's input record completed from the current
// defaults (the caller's own memory is left alone), or the current defaults themselves. It is
// always a whole record of this driver (220 + 5784 bytes, private part at 220).
void InitialisePageCopy(SheetContext& context, ByteSpan in, std::uint32_t mode);

// SET_RESULT: the page copy goes to the output record, as many bytes as the smaller of the two
// records' declared totals (dmSize + dmDriverExtra), and never past the output buffer.
std::size_t CopySheetResult(const DevModeImage& pageCopy, MutableByteSpan out);

// The trace line of a callback reason of the device sheet.
std::u16string_view CallbackReasonTrace(std::int32_t reason);
inline constexpr std::int32_t kCallbackReasonAbout = 9;

}  // namespace kx20
