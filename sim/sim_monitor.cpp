#include "sim/sim_monitor.h"

#include "platform/format.h"
#include "platform/text.h"
#include "sim/sim_commands.h"
#include "sim/sim_jobs.h"
#include "sim/sim_persist.h"
#include "sim/sim_printer.h"
#include "sim/sim_publish.h"

namespace kx20::sim {

namespace {

class Session {
  public:
    Session(MonitorHost& host, std::u16string_view port)
        : host_(host),
          path_(StateFilePath(host.stateFolder, port)),
          state_(LoadState(host.files, path_, port)) {
        TakeWaitingJobs(PortFileDosPath(port));
    }

    PrinterState& state() { return state_; }

    // Saves and publishes; false when the state could not be saved.
    bool Finish() {
        CreateFolders();
        bool saved = SaveState(host_.files, path_, state_);
        PublishPort(host_.registry, state_);
        return saved;
    }

  private:
    void TakeWaitingJobs(const std::u16string& portFile) {
        if (portFile.empty() || !host_.files.Exists(portFile))
            return;
        auto data = ReadWholeFile(host_.files, portFile);
        if (!data) {
            AddLog(state_, LogKind::Job, true,
                   Format(u"port file \"%s\" cannot be read (error %u)", portFile,
                          host_.files.LastError()));
            return;
        }
        if (data->empty())
            return;
        ReceiveJob(state_, *data);
        // Emptied, not removed: the spooler goes on writing into the same file.
        host_.files.Open(portFile, OpenMode::CreateAlways, ShareMode::ReadWrite);
    }

    void CreateFolders() {
        const std::u16string& folder = host_.stateFolder;
        for (std::size_t i = 3; i < folder.size(); ++i) {
            if (folder[i] == u'\\')
                host_.files.CreateFolder(folder.substr(0, i));
        }
        host_.files.CreateFolder(folder);
    }

    MonitorHost& host_;
    std::u16string path_;
    PrinterState state_;
};

}  // namespace

std::u16string StateFilePath(std::u16string_view folder, std::u16string_view portName) {
    std::u16string name;
    for (char16_t c : portName.substr(0, 64)) {
        bool keep = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') ||
                    (c >= u'0' && c <= u'9') || c == u'.' || c == u'_' || c == u'-';
        name += keep ? c : u'_';
    }
    Bytes key;
    for (char16_t c : ToLowerAscii(portName)) AppendU16(key, c);
    return Format(u"%s\\%s-%08x.kx20sim", folder, name, Crc32(key));
}

std::u16string PortFileDosPath(std::u16string_view portName) {
    if (portName.empty() || portName[0] != u'/')
        return {};
    std::u16string path = u"Z:";
    for (char16_t c : portName) path += c == u'/' ? u'\\' : c;
    return path;
}

std::uint32_t MonitorSendCommand(MonitorHost& host, std::u16string_view portName,
                                 const std::u16string* printerName, ByteSpan command,
                                 MonitorReply& reply) {
    Session session(host, portName);
    std::uint32_t rc = HandleCommand(session.state(), portName, printerName, command, reply);
    if (!session.Finish() && rc == kOk) {
        reply = MonitorReply{};
        return kErrStateNotSaved;
    }
    return rc;
}

std::uint32_t MonitorControl(MonitorHost& host, std::u16string_view portName,
                             std::u16string_view command) {
    Session session(host, portName);
    std::uint32_t rc = ApplyControl(session.state(), command);
    if (!session.Finish() && rc == kOk)
        return kErrStateNotSaved;
    return rc;
}

std::u16string MonitorDescribe(MonitorHost& host, std::u16string_view portName) {
    Session session(host, portName);
    std::u16string text = Describe(session.state());
    session.Finish();
    return text;
}

}  // namespace kx20::sim
