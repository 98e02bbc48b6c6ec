// A printer driver package's setup information (INF): the model it installs and the files the
// spooler needs for it, read the way a printer installer reads them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kx20::winhost {

struct DriverPackage {
    std::string model;            // the first model of the first manufacturer
    std::string driverFile, configFile, dataFile, helpFile, defaultDataType;
    std::vector<std::string> files;  // every file of the install section's CopyFiles, in order
};

// Larger files are refused: a driver's INF is a few kilobytes.
inline constexpr std::size_t kMaxInfBytes = 64 * 1024;

// Reads an INF (ASCII or UTF-8, CR LF or LF; comments after ';', %string% references from
// [Strings], quoted values). The package must have a version section of class Printer, a
// manufacturer with a models section (decorated ".NTamd64" or plain), and an install section
// naming at least the configuration and data files, each of them among its CopyFiles, whose
// files are bare file names. Answers false with a one-line reason otherwise.
bool ReadDriverInf(std::string_view text, DriverPackage* package, std::string* error);

}  // namespace kx20::winhost
