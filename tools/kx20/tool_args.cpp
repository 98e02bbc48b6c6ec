#include "tool_args.h"

#include <cerrno>
#include <cstring>

#include "platform/files.h"
#include "platform/posix/posix_files.h"
#include "platform/text.h"

namespace kx20tool {

ParsedArgs ParseArgs(const std::vector<std::string>& args, const std::set<std::string>& withValue,
                     const std::set<std::string>& flags) {
    ParsedArgs out;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (withValue.count(a)) {
            if (i + 1 >= args.size()) {
                out.error = a + " needs a value";
                return out;
            }
            out.values[a] = args[++i];
        } else if (flags.count(a)) {
            out.flags.insert(a);
        } else if (a.size() > 1 && a[0] == '-') {
            out.error = "unknown option " + a;
            return out;
        } else {
            out.positional.push_back(a);
        }
    }
    return out;
}

std::optional<std::uint32_t> ParseNumber(const std::string& text, std::uint32_t max) {
    std::size_t i = 0;
    unsigned base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        base = 16;
        i = 2;
    }
    if (i >= text.size())
        return std::nullopt;
    std::uint64_t v = 0;
    for (; i < text.size(); ++i) {
        const char c = text[i];
        unsigned d = c >= '0' && c <= '9'                 ? unsigned(c - '0')
                     : base == 16 && c >= 'a' && c <= 'f' ? unsigned(c - 'a' + 10)
                     : base == 16 && c >= 'A' && c <= 'F' ? unsigned(c - 'A' + 10)
                                                          : 99u;
        if (d >= base)
            return std::nullopt;
        v = v * base + d;
        if (v > max)
            return std::nullopt;
    }
    return static_cast<std::uint32_t>(v);
}

std::optional<kx20::Bytes> ReadInput(const std::string& path, std::uint64_t maxBytes,
                                     std::string& error) {
    kx20::PosixFileSystem fs;
    kx20::FileReadResult r = kx20::ReadLimitedFile(fs, kx20::Utf8ToUtf16(path), maxBytes);
    switch (r.status) {
        case kx20::FileReadStatus::Ok:
            return std::move(r.data);
        case kx20::FileReadStatus::OpenFailed:
            error = path + ": " + std::strerror(static_cast<int>(r.error));
            break;
        case kx20::FileReadStatus::SizeInvalid:
            error = path + ": empty or larger than " + std::to_string(maxBytes) + " bytes";
            break;
        case kx20::FileReadStatus::ReadFailed:
            error = path + ": read failed";
            break;
    }
    return std::nullopt;
}

bool WriteOutput(const std::string& path, const kx20::Bytes& data, std::string& error) {
    kx20::PosixFileSystem fs;
    auto file =
        fs.Open(kx20::Utf8ToUtf16(path), kx20::OpenMode::CreateAlways, kx20::ShareMode::None);
    if (!file || !file->Write(data) || !file->Flush()) {
        error =
            path + ": cannot be written" +
            (fs.LastError() ? std::string(": ") + std::strerror(static_cast<int>(fs.LastError()))
                            : std::string());
        return false;
    }
    return true;
}

std::string NoteText(const std::u16string& note) {
    std::string text = kx20::Utf16ToUtf8(note);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    return text;
}

}  // namespace kx20tool
