// The simulated port monitor module: the command entry of a KX20 port monitor, answered by the
// printer simulator, for tests and the demo under Wine. It is never shipped as the real monitor.
//
// Every call loads the port's printer from its state file (folder in KX20_SIM_DIR, else
// C:\kx20sim), takes in the raw jobs the spooler wrote into the port's file, answers, saves the
// printer and republishes the port's ConnectionStatus, TYPE and checksum values in the registry.
#include "platform/win32/windows_clean.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

#include "platform/win32/win32_files.h"
#include "platform/win32/win32_registry.h"
#include "platform/win32/win32_text.h"
#include "sim/sim_monitor.h"
#include "sim/sim_state.h"

namespace {

std::u16string StateFolder() {
    wchar_t buf[MAX_PATH] = {};
    DWORD n = GetEnvironmentVariableW(L"KX20_SIM_DIR", buf, MAX_PATH);
    std::u16string folder = (n > 0 && n < MAX_PATH) ? kx20::FromWide(buf) : u"C:\\kx20sim";
    while (folder.size() > 3 && (folder.back() == u'\\' || folder.back() == u'/')) {
        folder.pop_back();
    }
    return folder;
}

// Runs `work` with the monitor's ports; no exception leaves the module.
template <class Work>
DWORD WithHost(Work work) {
    try {
        kx20::Win32FileSystem files;
        kx20::Win32Registry registry;
        kx20::sim::MonitorHost host{files, registry, StateFolder()};
        return work(host);
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    } catch (...) {
        return ERROR_GEN_FAILURE;
    }
}

}  // namespace

extern "C" DWORD WINAPI BIDISendCmdToPrinter(LPCWSTR portName, LPCWSTR printerName,
                                             DWORD commandLength, const BYTE* command,
                                             DWORD* replyLength, BYTE** reply) {
    if (!portName || !replyLength || !reply || (commandLength && !command)) {
        return ERROR_INVALID_PARAMETER;
    }
    *replyLength = 0;
    *reply = nullptr;
    return WithHost([&](kx20::sim::MonitorHost& host) -> DWORD {
        std::u16string port = kx20::FromWide(portName);
        std::u16string printer = kx20::FromWide(printerName);
        kx20::MonitorReply answer;
        DWORD rc = kx20::sim::MonitorSendCommand(host, port, printerName ? &printer : nullptr,
                                                 kx20::ByteSpan(command, commandLength), answer);
        if (rc != 0 || answer.data.empty())
            return rc;
        auto* buffer = static_cast<BYTE*>(GlobalAlloc(GMEM_FIXED, answer.data.size()));
        if (!buffer)
            return ERROR_NOT_ENOUGH_MEMORY;
        std::memcpy(buffer, answer.data.data(), answer.data.size());
        *reply = buffer;
        *replyLength = static_cast<DWORD>(answer.data.size());
        return 0;
    });
}

// Plays the person at the printer: L"connect", L"disconnect", L"reset", L"model=9",
// L"firmware=0x40", L"identity=AAAAAAAA", L"protect=1", L"serial=1", L"config=0xA6:13",
// L"erase=1", L"invalidate", L"remove", L"publish", L"clearlog". 0 on success.
extern "C" DWORD WINAPI KX20SimControl(LPCWSTR portName, LPCWSTR command) {
    if (!portName || !command)
        return ERROR_INVALID_PARAMETER;
    return WithHost([&](kx20::sim::MonitorHost& host) -> DWORD {
        return kx20::sim::MonitorControl(host, kx20::FromWide(portName), kx20::FromWide(command));
    });
}

// The printer's state and log as text. Copies as much as fits into `buffer` (always
// terminated when bufferChars > 0) and answers the full length in characters without the
// terminator; 0 when the arguments are wrong.
extern "C" DWORD WINAPI KX20SimDescribe(LPCWSTR portName, LPWSTR buffer, DWORD bufferChars) {
    if (!portName || (bufferChars && !buffer))
        return 0;
    std::u16string text;
    WithHost([&](kx20::sim::MonitorHost& host) -> DWORD {
        text = kx20::sim::MonitorDescribe(host, kx20::FromWide(portName));
        return 0;
    });
    if (bufferChars) {
        std::size_t n = std::min<std::size_t>(text.size(), bufferChars - 1);
        std::copy_n(text.begin(), n, buffer);
        buffer[n] = L'\0';
    }
    return static_cast<DWORD>(text.size());
}
