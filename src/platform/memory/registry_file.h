// One branch of an in-memory registry as a file, so a command-line tool keeps between runs what
// the driver keeps in the system registry (a till's catalogue of what it put into a printer).
// The file is a framed record (platform/record_file.h) holding, for every key at or under the
// branch's root, its path relative to the root and its values (name, type, data) in order.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "platform/bytes.h"
#include "platform/memory/memory_registry.h"

namespace kx20 {

// Bounds on what a branch file may hold, checked before anything is stored.
inline constexpr std::size_t kBranchMaxKeys = 64;
inline constexpr std::size_t kBranchMaxValues = 4096;  // in all keys together
inline constexpr std::size_t kBranchMaxValueBytes = 1u << 20;
inline constexpr std::size_t kBranchMaxPathChars = 1024;

// `skip` names values left out (those another party publishes into the branch).
Bytes SerializeBranch(MemoryRegistry& registry, Hive hive, std::u16string_view root,
                      std::span<const std::u16string_view> skip = {});
// Puts the file's keys and values under `root`, replacing values of the same name. False, with
// `problem` set and the registry untouched, when the bytes are not such a file or break a bound.
bool LoadBranch(ByteSpan data, MemoryRegistry& registry, Hive hive, std::u16string_view root,
                std::u16string& problem);

}  // namespace kx20
