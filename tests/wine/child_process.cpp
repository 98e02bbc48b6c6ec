// The test program as its own helper process (for what only another process can show), and the
// installed driver module loaded for direct calls.
#include "platform/win32/windows_clean.h"

#include <string>
#include <vector>

#include "tests/wine/wine_environment.h"

namespace kx20::winetest {

std::wstring DriverModule::Folder() {
    wchar_t folder[MAX_PATH] = {};
    DWORD needed = 0;
    GetPrinterDriverDirectoryW(nullptr, const_cast<LPWSTR>(L"Windows x64"), 1,
                               reinterpret_cast<LPBYTE>(folder), sizeof folder, &needed);
    return std::wstring(folder) + L"\\3\\";
}

DriverModule::DriverModule() : module_(LoadLibraryW((Folder() + L"kvorsgui.dll").c_str())) {}

DriverModule::~DriverModule() {
    if (module_)
        FreeLibrary(module_);
}

int RunChildRole(const std::wstring& role, const std::wstring& argument, std::string* output,
                 const std::wstring& program) {
    wchar_t self[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    const std::wstring exe = program.empty() ? std::wstring(self) : program;
    std::wstring command = L"\"" + exe + L"\" --child-role \"" + role + L"\" \"" + argument + L"\"";
    SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
    HANDLE readEnd = nullptr, writeEnd = nullptr;
    if (!CreatePipe(&readEnd, &writeEnd, &inherit, 0))
        return -1;
    SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = writeEnd;
    startup.hStdError = writeEnd;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    PROCESS_INFORMATION process = {};
    std::vector<wchar_t> line(command.begin(), command.end());
    line.push_back(0);
    const BOOL started = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                        nullptr, &startup, &process);
    CloseHandle(writeEnd);
    if (!started) {
        CloseHandle(readEnd);
        return -1;
    }
    std::string text;
    char buf[512];
    DWORD got = 0;
    while (ReadFile(readEnd, buf, sizeof buf, &got, nullptr) && got > 0) text.append(buf, got);
    CloseHandle(readEnd);
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hProcess);
    CloseHandle(process.hThread);
    if (output)
        *output = text;
    return static_cast<int>(code);
}

}  // namespace kx20::winetest
