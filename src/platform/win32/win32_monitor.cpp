#include "platform/win32/win32_monitor.h"

#include "platform/win32/windows_clean.h"

#include <algorithm>

#include "platform/win32/win32_text.h"

namespace kx20 {

namespace {

using SendCmdFn = DWORD(WINAPI*)(LPCWSTR port, LPCWSTR printer, DWORD commandLength,
                                 const BYTE* command, DWORD* replyLength, BYTE** reply);

class Win32MonitorSession : public MonitorSession {
  public:
    Win32MonitorSession(HMODULE module, SendCmdFn fn) : module_(module), fn_(fn) {}
    ~Win32MonitorSession() override { FreeLibrary(module_); }

    std::uint32_t Send(std::u16string_view portName, const std::u16string* printerName,
                       ByteSpan command, MonitorReply& reply) override {
        std::wstring port = ToWide(portName);
        std::wstring printer = printerName ? ToWide(*printerName) : std::wstring();
        DWORD length = 0;
        BYTE* buffer = nullptr;
        DWORD rc = fn_(port.c_str(), printerName ? printer.c_str() : nullptr,
                       static_cast<DWORD>(command.size()), command.data(), &length, &buffer);
        reply = MonitorReply{};
        reply.reportedLength = length;
        reply.hasBuffer = buffer != nullptr;
        if (buffer) {
            // The monitor allocates replies with the global allocator: its size bounds what
            // may be read, whatever length the monitor states.
            SIZE_T real = GlobalSize(buffer);
            SIZE_T n = std::min<SIZE_T>(real, length);
            reply.data.assign(buffer, buffer + n);
            GlobalFree(buffer);
        }
        return rc;
    }

  private:
    HMODULE module_;
    SendCmdFn fn_;
};

}  // namespace

std::unique_ptr<MonitorSession> Win32CommandChannel::Load(MonitorLoad& status,
                                                          std::uint32_t& lastError) {
    HMODULE module = LoadLibraryW(L"kvorsmon.dll");
    if (!module) {
        lastError = GetLastError();
        status = MonitorLoad::LibraryMissing;
        return nullptr;
    }
    auto fn = reinterpret_cast<SendCmdFn>(
        reinterpret_cast<void*>(GetProcAddress(module, "BIDISendCmdToPrinter")));
    if (!fn) {
        lastError = GetLastError();
        FreeLibrary(module);
        status = MonitorLoad::EntryMissing;
        return nullptr;
    }
    status = MonitorLoad::Loaded;
    lastError = 0;
    return std::make_unique<Win32MonitorSession>(module, fn);
}

}  // namespace kx20
