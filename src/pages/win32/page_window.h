// The window side shared by the document sheet's pages: one dialog-procedure thunk per page
// class that keeps the page object on the window, routes messages to it, sets the message
// result in one place and lets nothing thrown cross the callback; and small control helpers.
#pragma once

#include "platform/win32/windows_clean.h"

#include <commctrl.h>
#include <prsht.h>

#include <exception>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "pages/apply_state.h"
#include "pages/page_context.h"
#include "pages/page_help.h"
#include "pages/page_text.h"
#include "platform/trace.h"

namespace kx20 {

// Controls.
void SetControlText(HWND dialog, int control, std::u16string_view text);
std::u16string ControlText(HWND dialog, int control);
void SetLabels(HWND dialog, PageContext& ctx, std::span<const PageLabel> labels);
// Replaces the entries of a drop-down list and selects `selection` (-1: none).
void FillList(HWND dialog, int control, const std::vector<std::u16string>& entries, int selection);
int ListSelection(HWND dialog, int control);
void EnableControl(HWND dialog, int control, bool enabled);
void CheckControl(HWND dialog, int control, bool checked);
bool IsChecked(HWND dialog, int control);
// Tells the sheet that the page has changes to apply.
void MarkChanged(HWND page);

// The apply-state record hung on the property-sheet frame as its window data, or null.
ApplyState* FrameApplyState(HWND page);

// The template a page was made from, when its description names one by number; 0 otherwise.
int PageTemplateId(const PROPSHEETPAGEW* description);

// Opens the resource module's help file at a topic.
void ShowPageHelp(HWND page, const PageContext& ctx, DWORD topic);
// WM_HELP: F1 without Shift opens the page's topic; otherwise the control's popup topic from
// `controlTopics`. Nothing without a help file.
void ShowPageOrControlHelp(HWND page, const PageContext& ctx, DWORD pageTopic, const HELPINFO& info,
                           std::span<const ControlTopic> controlTopics);
// The pop-up help topic of a control (WM_HELP); nothing for topic 0.
void ShowControlHelp(HWND control, const PageContext& ctx, DWORD topic);

// What every page class offers the thunk:
//   Page(HWND, PageContext&, const PROPSHEETPAGEW*)
//   void OnInit();
//   void OnApply();
//   void ShowHelp();
//   bool OnMessage(UINT, WPARAM, LPARAM, LRESULT& result);  // true when handled (also
//                                                           // WM_NOTIFY of the controls)
template <class Page>
INT_PTR RunPage(const char16_t* name, HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    const TraceCall traceCall;
    auto result = [hwnd](LRESULT value) {
        SetWindowLongPtrW(hwnd, DWLP_MSGRESULT, value);
        return static_cast<INT_PTR>(TRUE);
    };
    try {
        if (message == WM_INITDIALOG) {
            auto* description = reinterpret_cast<const PROPSHEETPAGEW*>(lParam);
            auto* ctx = description ? reinterpret_cast<PageContext*>(description->lParam) : nullptr;
            if (!ctx) {
                DrvTrace(u"%ls: no page context\n", name);
                return TRUE;
            }
            auto page = std::make_unique<Page>(hwnd, *ctx, description);
            SetWindowLongPtrW(hwnd, DWLP_USER, reinterpret_cast<LONG_PTR>(page.get()));
            page.release()->OnInit();
            return TRUE;
        }
        // Messages before WM_INITDIALOG (WM_SETFONT) find no page.
        auto* page = reinterpret_cast<Page*>(GetWindowLongPtrW(hwnd, DWLP_USER));
        if (!page)
            return FALSE;
        if (message == WM_NCDESTROY) {
            SetWindowLongPtrW(hwnd, DWLP_USER, 0);
            delete page;
            return FALSE;
        }
        if (message == WM_NOTIFY) {
            const auto* header = reinterpret_cast<const NMHDR*>(lParam);
            switch (header->code) {
                case PSN_APPLY:
                    page->OnApply();
                    return result(PSNRET_NOERROR);
                case PSN_HELP:
                    page->ShowHelp();
                    return TRUE;
                case PSN_SETACTIVE:
                case PSN_RESET:
                    return result(0);
                default:
                    break;  // the controls' own notifications go to the page
            }
        }
        LRESULT value = 0;
        if (page->OnMessage(message, wParam, lParam, value))
            return result(value);
    } catch (const std::exception& e) {
        DrvTrace(u"%ls: message 0x%04x failed: %s\n", name, message, e.what());
    } catch (...) {
        DrvTrace(u"%ls: message 0x%04x failed\n", name, message);
    }
    return FALSE;
}

}  // namespace kx20
