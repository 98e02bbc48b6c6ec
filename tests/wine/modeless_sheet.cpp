#include "tests/wine/modeless_sheet.h"

#include <algorithm>

#include "platform/win32/win32_text.h"
#include "store/catalogue.h"
#include "store/registry_layout.h"
#include "tools/winhost/driver_install.h"

namespace kx20::winetest {

namespace {
MessageBoxAnswerer* g_answerer = nullptr;  // the one a thread timer reaches

// The page's own control that holds `focus` (a combo box's edit stands for its combo box);
// none when the focus is outside the page.
HWND PageControl(HWND page, HWND focus) {
    if (!IsChild(page, focus))
        return nullptr;
    while (GetParent(focus) != page) focus = GetParent(focus);
    return focus;
}

// The controls of `page` the keyboard can reach now: shown and enabled tab stops that are not
// labels or frames, and of a group of option buttons only the chosen one. In reading order:
// rows from the top (controls that overlap vertically share a row), each from the left.
std::vector<HWND> ReadingOrder(HWND page) {
    std::vector<std::pair<RECT, HWND>> found;
    for (HWND c = GetWindow(page, GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT)) {
        const LRESULT code = SendMessageW(c, WM_GETDLGCODE, 0, 0);
        const bool otherOption =
            (code & DLGC_RADIOBUTTON) && SendMessageW(c, BM_GETCHECK, 0, 0) != BST_CHECKED;
        if ((GetWindowLongW(c, GWL_STYLE) & WS_TABSTOP) && IsWindowVisible(c) &&
            IsWindowEnabled(c) && !(code & DLGC_STATIC) && !otherOption) {
            RECT r;
            GetWindowRect(c, &r);
            found.push_back({r, c});
        }
    }
    auto left = [](const auto& a, const auto& b) { return a.first.left < b.first.left; };
    std::stable_sort(found.begin(), found.end(),
                     [](const auto& a, const auto& b) { return a.first.top < b.first.top; });
    std::vector<HWND> order;
    for (auto row = found.begin(); row != found.end();) {
        auto end = std::find_if(row, found.end(), [&](const auto& c) {
            return c.first.top >= row->first.bottom;
        });
        std::stable_sort(row, end, left);
        for (auto c = row; c != end; ++c) order.push_back(c->second);
        row = end;
    }
    return order;
}

std::string Ids(const std::vector<HWND>& controls) {
    std::string out;
    for (HWND c : controls) out += std::to_string(GetDlgCtrlID(c)) + " ";
    return out;
}
}  // namespace

void ModelessSheetTest::PressTab(bool back) {
    std::vector<INPUT> keys;
    auto key = [&keys](WORD vk, DWORD flags) {
        INPUT in = {};
        in.type = INPUT_KEYBOARD;
        in.ki.wVk = vk;
        in.ki.dwFlags = flags;
        keys.push_back(in);
    };
    if (back)
        key(VK_SHIFT, 0);
    key(VK_TAB, 0);
    key(VK_TAB, KEYEVENTF_KEYUP);
    if (back)
        key(VK_SHIFT, KEYEVENTF_KEYUP);
    SendInput(static_cast<UINT>(keys.size()), keys.data(), sizeof(INPUT));
    Pump();
}

void ModelessSheetTest::ExpectTabOrder(HWND page) {
    wchar_t title[64] = {};
    GetWindowTextW(page, title, 64);
    std::vector<HWND> expected = ReadingOrder(page);
    ASSERT_FALSE(expected.empty()) << Narrow(title);
    SetForegroundWindow(sheet_);
    for (bool back : {false, true}) {
        if (back)
            std::reverse(expected.begin(), expected.end());
        SetFocus(expected.front());
        Pump();
        std::vector<HWND> visited = {expected.front()};
        // Around the sheet: the page's controls, the sheet's buttons and its tabs.
        for (int press = 0; press < 40; ++press) {
            PressTab(back);
            HWND now = PageControl(page, GetFocus());
            if (now == expected.front())
                break;
            if (now)
                visited.push_back(now);
        }
        EXPECT_EQ(Ids(visited), Ids(expected))
            << (back ? "Shift+Tab" : "Tab") << " on the page " << Narrow(title);
    }
}

MessageBoxAnswerer::MessageBoxAnswerer() {
    g_answerer = this;
    timer_ = SetTimer(nullptr, 0, 50, Tick);
}

MessageBoxAnswerer::~MessageBoxAnswerer() {
    KillTimer(nullptr, timer_);
    if (g_answerer == this)
        g_answerer = nullptr;
}

void CALLBACK MessageBoxAnswerer::Tick(HWND, UINT, UINT_PTR, DWORD) {
    if (g_answerer && g_answerer->active)
        EnumThreadWindows(GetCurrentThreadId(), AnswerOne, reinterpret_cast<LPARAM>(g_answerer));
}

BOOL CALLBACK MessageBoxAnswerer::CollectText(HWND child, LPARAM self) {
    wchar_t buf[512] = {};
    GetWindowTextW(child, buf, 512);
    reinterpret_cast<MessageBoxAnswerer*>(self)->text += buf;
    return TRUE;
}

BOOL CALLBACK MessageBoxAnswerer::AnswerOne(HWND window, LPARAM self) {
    auto* answerer = reinterpret_cast<MessageBoxAnswerer*>(self);
    wchar_t cls[32] = {};
    GetClassNameW(window, cls, 32);
    if (std::wstring(cls) != L"#32770" || !GetWindow(window, GW_OWNER) || !IsWindowVisible(window))
        return TRUE;
    // A message box has Yes or OK; a file dialog (its name box is 0x47c or 0x480) is not one.
    const bool yesNo = GetDlgItem(window, IDYES) != nullptr;
    if ((!yesNo && !GetDlgItem(window, IDOK)) || GetDlgItem(window, 0x47c) ||
        GetDlgItem(window, 0x480))
        return TRUE;
    answerer->text.clear();
    EnumChildWindows(window, CollectText, self);
    ++answerer->seen;
    PostMessageW(window, WM_COMMAND, yesNo ? answerer->answer : IDOK, 0);
    return FALSE;
}

void SimulatedPrinterPagesTest::SetUpPrinterAndContext() {
    ASSERT_TRUE(sim_.Loaded());
    ASSERT_EQ(sim_.Control(L"reset"), 0u);
    ASSERT_EQ(sim_.Control(L"connect"), 0u);
    resources_ = LoadLibraryW((winhost::ProgramFolder() + L"KVORSENU.DLL").c_str());
    ASSERT_NE(resources_, nullptr);
    strings_ = std::make_unique<Win32ResourceStrings>(resources_);
    ctx_.platform = &ports_;
    ctx_.prompts = &prompts_;
    ctx_.strings = strings_.get();
    ctx_.pictures = &pictures_;
    ctx_.printerName = FromWide(kPrinterName);

    Platform& p = win32_.ports;
    store::ConnectionStatus status;
    ASSERT_TRUE(store::GetConnectionStatus(p, store::PrinterPortName(p, ctx_.printerName), status));
    ctx_.port = {true, status.modelCode, status.firmwareLevel, status.connected, status.identity};
    id_ = status.identity;
    store::DeleteLogoEntries(p, ctx_.printerName, id_);
    store::DeleteMessageEntries(p, ctx_.printerName, id_);
}

void SimulatedPrinterPagesTest::TearDown() {
    CloseSheet();
    if (resources_)
        FreeLibrary(resources_);
}

void SimulatedPrinterPagesTest::OpenSheet(const std::vector<DLGPROC>& procs, int firstTemplate,
                                          const wchar_t* caption, DWORD pageFlags,
                                          DWORD sheetFlags) {
    std::vector<PROPSHEETPAGEW> pages(procs.size());
    for (std::size_t i = 0; i < procs.size(); ++i) {
        const int id = firstTemplate + static_cast<int>(i);
        pages[i].dwSize = sizeof(PROPSHEETPAGEW);
        pages[i].dwFlags = pageFlags;
        pages[i].hInstance = resources_;
        pages[i].pszTemplate = MAKEINTRESOURCEW(id);
        pages[i].pszTitle = MAKEINTRESOURCEW(id);
        pages[i].pfnDlgProc = procs[i];
        pages[i].lParam = reinterpret_cast<LPARAM>(&ctx_);
    }
    PROPSHEETHEADERW header = {};
    header.dwSize = sizeof(header);
    header.dwFlags = PSH_PROPSHEETPAGE | PSH_MODELESS | sheetFlags;
    header.hInstance = resources_;
    header.pszCaption = caption;
    header.nPages = static_cast<UINT>(pages.size());
    header.ppsp = pages.data();
    sheet_ = reinterpret_cast<HWND>(PropertySheetW(&header));
    ASSERT_NE(sheet_, nullptr);
    Pump();
}

std::wstring SimulatedPrinterPagesTest::String(std::uint32_t id) {
    return ToWide(strings_->Load(id).value_or(u""));
}

}  // namespace kx20::winetest
