// The window both slot pages (logos, messages) are: the report list with two columns (slot
// name, what it holds), rows replaced as a whole, the selection read in row order, the keyboard
// the list keeps for itself (it asks for every key), the action and delete buttons, the status
// line, the refresh message and the help; `SlotListWindow` puts them together over a
// `SlotListPage` and the pages add what is their own.
#pragma once

#include "platform/win32/windows_clean.h"

#include <cstdint>
#include <functional>
#include <string>
#include <span>
#include <vector>

#include "pages/echo_guard.h"
#include "pages/page_context.h"
#include "pages/page_help.h"
#include "pages/page_text.h"
#include "pages/slot_list_page.h"

namespace kx20 {

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

// A slot page's window over its model, run by `RunPage`. The page names its controls and
// texts in a `Layout` and adds its own steps through the virtual functions.
class SlotListWindow {
  public:
    struct Layout {
        int list;                                  // the report list
        int act;                                   // the button acting on an empty row
        int del;                                   // the delete button
        std::span<const PageLabel> labels;         // the buttons' captions
        DWORD pageTopic;                           // the page's help topic
        std::span<const ControlTopic> controlTopics;
        RefreshMessage refresh;                    // the refresh message the page listens to
        // Return and a double click on one empty row start the action.
        bool keysAct;
    };

    SlotListWindow(HWND hwnd, PageContext& ctx, const Layout& layout);
    virtual ~SlotListWindow();
    SlotListWindow(const SlotListWindow&) = delete;
    SlotListWindow& operator=(const SlotListWindow&) = delete;

    // RunPage's page interface.
    virtual void OnInit();
    void OnApply() {}
    void ShowHelp();
    virtual bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);

  protected:
    virtual SlotListPage& Model() = 0;
    // The page's action on the one selected empty row (add a logo, store a message).
    virtual void Act() = 0;
    // After the rows were shown anew, the selection changed, a deletion was shown.
    virtual void RowsChanged() {}
    virtual void SelectionShown() {}
    virtual void DeletionShown() {}
    // The page's own controls' enabled states.
    virtual void ShowOwnEnablement() {}

    HWND List() const { return GetDlgItem(hwnd_, layout_.list); }
    // The model's rows, status and enablement onto the controls.
    void ShowAll();
    void ShowEnablement();
    void Delete();

    HWND hwnd_;
    PageContext& ctx_;

  private:
    void SelectionChanged();

    const Layout layout_;
    UINT refresh_;
    SlotListKeys keys_;
    EchoGuard::Flag filling_;
};

}  // namespace kx20
