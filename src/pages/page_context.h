// The per-sheet record that every property page receives as its page parameter. The sheet
// owns it from its initialisation to its destruction; the pages only read it, except for the
// document sheet's page copy of the device mode, the apply state and the sheet window handle.
#pragma once

#include <cstdint>
#include <string>

#include "pages/apply_state.h"
#include "platform/bytes.h"
#include "platform/pictures.h"
#include "platform/platform.h"
#include "platform/prompts.h"
#include "platform/resources.h"

namespace kx20 {

class DevicePages;  // pages/device_pages.h

// What the pages know of the printer's port when the sheet opens: its connection status
// record, all zero and the identity empty when it cannot be read.
struct PortSummary {
    bool present = false;            // the status record was read and is valid
    std::uint32_t modelCode = 0;
    std::uint8_t firmwareLevel = 0;
    bool connected = false;
    std::u16string identity;
};

struct PageContext {
    // The ports the pages work over; owned by the sheet's Win32 side (or by a test).
    Platform* platform = nullptr;
    UserPrompts* prompts = nullptr;
    ResourceStrings* strings = nullptr;  // the resource module's strings
    std::u16string helpPath;             // the resource module's help file; empty when none
    // The loaded resource module (its instance on Windows), whose templates the pages' own
    // dialogs come from; 0 when it could not be loaded.
    std::uintptr_t resourceModule = 0;
    Pictures* pictures = nullptr;  // the picture loader (logos pages, previews)
    std::u16string printerName;
    std::u16string driverName;  // pDriverName of the printer's level-2 information

    // pDocUI: the document sheet's page copy of the device mode, a whole record of this
    // driver; empty in the device sheet.
    MutableByteSpan docDevMode;
    PortSummary port;

    // Device sheet: the record of the device pages' windows, kept while the pages live (the
    // connection watch drives every page through it); null before and after.
    DevicePages* devicePages = nullptr;

    // Document sheet only.
    WindowId sheetWindow = 0;  // set by the pages
    // A page has written the user's choices into the page copy (the sheet's OK or Apply).
    bool pageCopyApplied = false;
    // The apply-state record shared by the device settings and options pages; the device
    // settings page makes it the sheet frame's window data.
    ApplyState applyState;
};

}  // namespace kx20
