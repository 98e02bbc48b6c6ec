// Argument and file helpers shared by the kx20 tool's command groups: options with values,
// flags, numbers in decimal or 0x hexadecimal, and whole-file reads and writes with a reason
// for the user when they fail.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/bytes.h"

namespace kx20tool {

struct ParsedArgs {
    std::vector<std::string> positional;
    std::map<std::string, std::string> values;  // option -> value
    std::set<std::string> flags;
    std::string error;  // empty when the arguments are well-formed

    bool Has(const std::string& option) const { return values.count(option) != 0; }
};

// `withValue`: options followed by a value ("--model 9"); `flags`: options standing alone.
ParsedArgs ParseArgs(const std::vector<std::string>& args, const std::set<std::string>& withValue,
                     const std::set<std::string>& flags = {});

// Decimal or 0x hexadecimal, at most `max`.
std::optional<std::uint32_t> ParseNumber(const std::string& text, std::uint32_t max);

// The whole file, at most `maxBytes`; nothing, with `error` set, when it cannot be read.
std::optional<kx20::Bytes> ReadInput(const std::string& path, std::uint64_t maxBytes,
                                     std::string& error);
bool WriteOutput(const std::string& path, const kx20::Bytes& data, std::string& error);

// A trace line as the tool shows it: UTF-8, without its line end.
std::string NoteText(const std::u16string& note);

}  // namespace kx20tool
