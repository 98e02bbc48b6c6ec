// GuiOptionsDlgProc: the options page (1004) over its model.
#include <algorithm>
#include <iterator>

#include "devmode/options_page.h"
#include "devmode/win32/document_pages.h"
#include "pages/win32/page_window.h"
#include "ids_document_pages.h"

namespace kx20 {

namespace {

constexpr int kFlagControls[4] = {IDC_OPT_FLAG_56, IDC_OPT_FLAG_60, IDC_OPT_FLAG_64,
                                  IDC_OPT_FLAG_68};
constexpr DWORD kHelpTopic = 2010;

// Frame 1050 becomes a strip at the right edge: from 180 to 10 pixels left of the page's
// right edge, from 4 below its top to 10 above its bottom.
constexpr int kFrameLeft = 180;
constexpr int kFrameRight = 10;
constexpr int kFrameTop = 4;
constexpr int kFrameBottom = 10;
// The summary sits inside the frame, below its caption.
constexpr int kSummaryInset = 8;
constexpr int kSummaryTop = 20;

class OptionsDialog {
  public:
    OptionsDialog(HWND hwnd, PageContext& ctx, const PROPSHEETPAGEW*)
        : hwnd_(hwnd), ctx_(ctx), model_(ctx) {}

    void OnInit() {
        ctx_.sheetWindow = reinterpret_cast<WindowId>(GetParent(hwnd_));
        SetLabels(hwnd_, ctx_, OptionsPageModel::Labels());
        model_.Init(FrameApplyState(hwnd_));
        MoveFrame();
        ShowAll();
    }

    void OnApply() { model_.Apply(FrameApplyState(hwnd_)); }
    void ShowHelp() { ShowPageHelp(hwnd_, ctx_, kHelpTopic); }

    bool OnMessage(UINT message, WPARAM wParam, LPARAM, LRESULT& result) {
        if (message == WM_COMMAND) {
            OnCommand(LOWORD(wParam), HIWORD(wParam));
            return false;
        }
        if (message == PSM_QUERYSIBLINGS && wParam == kDeviceSettingsChanged) {
            model_.FollowDeviceSettings(FrameApplyState(hwnd_));
            ShowAll();
            result = 0;  // let the other pages hear it too
            return true;
        }
        return false;
    }

  private:
    void MoveFrame() {
        RECT page;
        GetClientRect(hwnd_, &page);
        const int left = page.right - kFrameLeft;
        const int top = page.top + kFrameTop;
        const int width = kFrameLeft - kFrameRight;
        const int height = page.bottom - kFrameBottom - top;
        MoveWindow(GetDlgItem(hwnd_, IDC_OPT_FRAME), left, top, width, height, TRUE);
        MoveWindow(GetDlgItem(hwnd_, IDC_OPT_SUMMARY), left + kSummaryInset, top + kSummaryTop,
                   width - 2 * kSummaryInset, height - kSummaryTop - kSummaryInset, TRUE);
    }

    void ShowMode() {
        CheckControl(hwnd_, IDC_OPT_MODE_FIRST, model_.ModeFirst());
        CheckControl(hwnd_, IDC_OPT_MODE_SECOND, !model_.ModeFirst());
        EnableControl(hwnd_, IDC_OPT_MODE_FIRST, !model_.ModeLocked());
        EnableControl(hwnd_, IDC_OPT_MODE_SECOND, !model_.ModeLocked());
        FillList(hwnd_, IDC_OPT_CHOICE, model_.ChoiceEntries(), model_.ChoiceSelection());
        EnableControl(hwnd_, IDC_OPT_CHOICE, model_.ChoiceEnabled());
        EnableControl(hwnd_, IDC_OPT_CHOICE_LABEL, model_.ChoiceEnabled());
    }

    void ShowAll() {
        ShowMode();
        SetControlText(hwnd_, IDC_OPT_CUT_PAPER, PageString(ctx_, model_.CutPaperLabel()));
        CheckControl(hwnd_, IDC_OPT_CUT_PAPER, model_.CutPaper());
        for (std::size_t i = 0; i < 4; ++i) CheckControl(hwnd_, kFlagControls[i], model_.Flag(i));
        FillList(hwnd_, IDC_OPT_FLOW, model_.FlowEntries(), model_.FlowSelection());
        EnableControl(hwnd_, IDC_OPT_FLOW, model_.FlowEnabled());
        EnableControl(hwnd_, IDC_OPT_FLOW_LABEL, model_.FlowEnabled());
        FillList(hwnd_, IDC_OPT_DENSITY, model_.DensityEntries(), model_.DensitySelection());
        FillList(hwnd_, IDC_OPT_FONT, model_.FontEntries(), model_.FontSelection());
        const std::u16string summary = model_.SummaryText(FrameApplyState(hwnd_));
        SetControlText(hwnd_, IDC_OPT_SUMMARY, summary);
        ShowWindow(GetDlgItem(hwnd_, IDC_OPT_SUMMARY), summary.empty() ? SW_HIDE : SW_SHOW);
    }

    void OnCommand(int control, int code) {
        if (code == BN_CLICKED) {
            switch (control) {
                case IDC_OPT_MODE_FIRST:
                case IDC_OPT_MODE_SECOND:
                    model_.SetModeFirst(control == IDC_OPT_MODE_FIRST);
                    ShowMode();
                    break;
                case IDC_OPT_CUT_PAPER:
                    model_.SetCutPaper(IsChecked(hwnd_, control));
                    break;
                default: {
                    const auto* flag =
                        std::find(std::begin(kFlagControls), std::end(kFlagControls), control);
                    if (flag == std::end(kFlagControls))
                        return;
                    model_.SetFlag(static_cast<std::size_t>(flag - kFlagControls),
                                   IsChecked(hwnd_, control));
                }
            }
            MarkChanged(hwnd_);
            return;
        }
        if (code != CBN_SELCHANGE)
            return;
        const int selection = ListSelection(hwnd_, control);
        switch (control) {
            case IDC_OPT_CHOICE:
                model_.SelectChoice(selection);
                break;
            case IDC_OPT_FLOW:
                model_.SelectFlow(selection);
                break;
            case IDC_OPT_DENSITY:
                model_.SelectDensity(selection);
                break;
            case IDC_OPT_FONT:
                model_.SelectFont(selection);
                break;
            default:
                return;
        }
        MarkChanged(hwnd_);
    }

    HWND hwnd_;
    PageContext& ctx_;
    OptionsPageModel model_;
};

}  // namespace

}  // namespace kx20

INT_PTR CALLBACK kx20::GuiOptionsDlgProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    return kx20::RunPage<kx20::OptionsDialog>(u"GuiOptionsDlgProc", hwnd, message, wParam, lParam);
}
