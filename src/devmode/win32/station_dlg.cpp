// StationPageProc: the two station pages (1005, 1006) over their model. The pages reload their
// lists when a logos, messages or fonts refresh is broadcast.
#include "devmode/station_page.h"
#include "devmode/win32/document_pages.h"
#include "devmode/win32/page_window.h"
#include "ids_document_pages.h"
#include "platform/win32/win32_text.h"

namespace kx20 {

// Stands in for the picture preview painter, which is not part of this module yet: fills the
// frame with the 3D-face colour, draws a sunken edge and writes the chosen logo's name in
// the middle. Nothing but the background when no logo is chosen.
void PaintLogoPreviewPlaceholder(HDC dc, const RECT& frame, HFONT font,
                                 std::u16string_view logoName) {
    FillRect(dc, &frame, GetSysColorBrush(COLOR_3DFACE));
    RECT edge = frame;
    DrawEdge(dc, &edge, EDGE_SUNKEN, BF_RECT);
    if (logoName.empty())
        return;
    HGDIOBJ previous = font ? SelectObject(dc, font) : nullptr;
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
    RECT text = frame;
    std::wstring wide = ToWide(logoName);
    DrawTextW(dc, wide.c_str(), static_cast<int>(wide.size()), &text,
              DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    if (previous)
        SelectObject(dc, previous);
}

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

    void PaintPreview(const DRAWITEMSTRUCT& item) {
        const StationList list =
            item.CtlID == IDC_ST_HEADER_PREVIEW ? StationList::HeaderLogo : StationList::FooterLogo;
        std::u16string name;
        const int selection = model_.Selection(list);
        if (selection > 0)
            name = model_.Entries(list)[static_cast<std::size_t>(selection)].text;
        auto font = reinterpret_cast<HFONT>(SendMessageW(hwnd_, WM_GETFONT, 0, 0));
        PaintLogoPreviewPlaceholder(item.hDC, item.rcItem, font, name);
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
