// StationPageProc: the two station pages (1005, 1006) over their model. The pages reload their
// lists when a logos, messages or fonts refresh is broadcast.
#include "devmode/station_page.h"
#include "devmode/win32/document_pages.h"
#include "pages/win32/page_window.h"
#include "ids_document_pages.h"
#include "pages/win32/preview_painter.h"
#include "platform/win32/win32_text.h"

namespace kx20 {

namespace {

struct ListControl {
    StationList list;
    int control;
};

constexpr ListControl kLists[] = {
    {StationList::HeaderLogo, IDC_ST_HEADER_LOGO},
    {StationList::FooterLogo, IDC_ST_FOOTER_LOGO},
    {StationList::TopMessage, IDC_ST_TOP_MESSAGE},
    {StationList::BottomMessage, IDC_ST_BOTTOM_MESSAGE},
    {StationList::Font, IDC_ST_FONT},
};

constexpr DWORD kFirstStationHelp = 2020;
constexpr DWORD kSecondStationHelp = 2030;

Station StationOf(const PROPSHEETPAGEW* description) {
    return PageTemplateId(description) == IDD_SECOND_STATION ? Station::Second : Station::First;
}

std::vector<std::u16string> EntryTexts(const std::vector<StationEntry>& entries) {
    std::vector<std::u16string> out;
    for (const StationEntry& entry : entries) out.push_back(entry.text);
    return out;
}

UINT RegisterRefresh(RefreshMessage which) {
    return RegisterWindowMessageW(ToWide(RefreshMessageName(which)).c_str());
}

class StationDialog {
  public:
    StationDialog(HWND hwnd, PageContext& ctx, const PROPSHEETPAGEW* description)
        : hwnd_(hwnd),
          ctx_(ctx),
          station_(StationOf(description)),
          model_(ctx, station_),
          refreshLogos_(RegisterRefresh(RefreshMessage::Logos)),
          refreshMessages_(RegisterRefresh(RefreshMessage::Messages)),
          refreshFonts_(RegisterRefresh(RefreshMessage::Fonts)) {}

    void OnInit() {
        ctx_.sheetWindow = reinterpret_cast<WindowId>(GetParent(hwnd_));
        SetLabels(hwnd_, ctx_, StationPageModel::Labels());
        model_.Init();
        ShowAll();
    }

    void OnApply() { model_.Apply(); }
    void ShowHelp() {
        ShowPageHelp(hwnd_, ctx_,
                     station_ == Station::First ? kFirstStationHelp : kSecondStationHelp);
    }

    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
        if (message != 0 &&
            (message == refreshLogos_ || message == refreshMessages_ || message == refreshFonts_)) {
            model_.Reload();
            ShowAll();
            result = 0;
            return true;
        }
        switch (message) {
            case WM_COMMAND:
                if (HIWORD(wParam) == CBN_SELCHANGE)
                    OnSelectionChange(LOWORD(wParam));
                return false;
            case WM_DRAWITEM: {
                const auto* item = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
                if (item->CtlID != IDC_ST_HEADER_PREVIEW && item->CtlID != IDC_ST_FOOTER_PREVIEW)
                    return false;
                PaintPreview(*item);
                result = TRUE;
                return true;
            }
            default:
                return false;
        }
    }

  private:
    void ShowAll() {
        for (const ListControl& list : kLists)
            FillList(hwnd_, list.control, EntryTexts(model_.Entries(list.list)),
                     model_.Selection(list.list));
        ShowChoices();
        SetControlText(hwnd_, IDC_ST_STATUS, model_.StatusText());
    }

    void ShowChoices() {
        SetControlText(hwnd_, IDC_ST_TOP_TEXT, model_.ChosenMessageText(StationList::TopMessage));
        SetControlText(hwnd_, IDC_ST_BOTTOM_TEXT,
                       model_.ChosenMessageText(StationList::BottomMessage));
        InvalidateRect(GetDlgItem(hwnd_, IDC_ST_HEADER_PREVIEW), nullptr, TRUE);
        InvalidateRect(GetDlgItem(hwnd_, IDC_ST_FOOTER_PREVIEW), nullptr, TRUE);
    }

    void OnSelectionChange(int control) {
        for (const ListControl& list : kLists) {
            if (list.control != control)
                continue;
            model_.Select(list.list, ListSelection(hwnd_, control));
            ShowChoices();
            MarkChanged(hwnd_);
        }
    }

    // The chosen logo's picture fitted into the owner-drawn frame; the background alone when
    // no logo is chosen or the printer does not hold it.
    void PaintPreview(const DRAWITEMSTRUCT& item) {
        const StationList list =
            item.CtlID == IDC_ST_HEADER_PREVIEW ? StationList::HeaderLogo : StationList::FooterLogo;
        const store::LogoRecord* logo = model_.ChosenLogo(list);
        PaintPictureBytesPreview(item.hwndItem, item.hDC,
                                 logo ? ByteSpan(logo->picture) : ByteSpan(), item.rcItem,
                                 static_cast<int>(item.CtlID), false, true);
        RECT edge = item.rcItem;
        DrawEdge(item.hDC, &edge, EDGE_SUNKEN, BF_RECT);
    }

    HWND hwnd_;
    PageContext& ctx_;
    Station station_;
    StationPageModel model_;
    UINT refreshLogos_;
    UINT refreshMessages_;
    UINT refreshFonts_;
};

}  // namespace

}  // namespace kx20

INT_PTR CALLBACK kx20::StationPageProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    return kx20::RunPage<kx20::StationDialog>(u"StationPageProc", hwnd, message, wParam, lParam);
}
