#include "tests/wine/modeless_sheet.h"

#include "platform/win32/win32_text.h"
#include "store/catalogue.h"
#include "store/registry_layout.h"
#include "tools/winhost/driver_install.h"

namespace kx20::winetest {

namespace {
MessageBoxAnswerer* g_answerer = nullptr;  // the one a thread timer reaches
}  // namespace

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
    ctx_.platform = &win32_.ports;
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
