// The report list both slot pages (logos, messages) show: two columns (slot name, what it
// holds), rows replaced as a whole, the selection read in row order, and the keyboard the list
// keeps for itself (it asks for every key).
#pragma once

#include "platform/win32/windows_clean.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kx20 {

class ResourceStrings;

struct SlotRow {
    std::u16string name;
    std::u16string state;
    bool operator==(const SlotRow&) const = default;
};

// Full-row selection and the two columns; the first sized to `nameWidth` pixels, the second to
// the rest of the list.
void SetupSlotList(HWND list, int nameWidth);
// Replaces the rows and selects `selection` in them; a list already showing `rows` is left
// alone. True when it changed.
bool ShowSlotRows(HWND list, const std::vector<SlotRow>& rows, const std::vector<int>& selection);
// True for the notification (WM_NOTIFY's lParam) of a row state change in list `listId`.
bool IsSlotStateChange(LPARAM notification, int listId);
std::vector<int> SelectedRows(HWND list);
void SelectOnlyRow(HWND list, int row);

// A button's caption from the resource module's string `id`; the template's caption stays when
// the string is missing.
void SetStringCaption(HWND dialog, int control, ResourceStrings& strings, std::uint32_t id);
// The page's status line (1213), set only when it changes (no flicker on every timer tick).
void ShowStatusLine(HWND dialog, std::u16string_view text);

// Marks the length of a page's flow that may show a modal window (message box, file dialog):
// the connection timer, which keeps running in their modal loops, skips its ticks meanwhile so
// that no model changes under a flow that is under way.
class SlotPageBusy {
  public:
    SlotPageBusy();
    ~SlotPageBusy();
    SlotPageBusy(const SlotPageBusy&) = delete;
    SlotPageBusy& operator=(const SlotPageBusy&) = delete;
    static bool Any();
};

// What the list does with the keys it keeps. Tab and Shift+Tab move the focus through the sheet
// and Escape presses the sheet's Cancel button whatever the page; the others are the page's.
struct SlotListKeys {
    std::function<void()> onReturn;       // may be empty
    std::function<void()> onDelete;       // may be empty
    std::function<void()> onDoubleClick;  // may be empty
};
// Subclasses the list; the keys must outlive the subclass. Undone by UnhookSlotList.
void HookSlotList(HWND list, SlotListKeys* keys);
void UnhookSlotList(HWND list);

}  // namespace kx20
