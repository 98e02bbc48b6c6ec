// The printer settings object: one printer opened in the spooler, for the length of one entry
// call, with the spooler's information and data calls on it. It owns everything it fetches
// and its own copy of the device mode, and closes the printer when it goes.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "devmode/devmode.h"
#include "platform/platform.h"

namespace kx20 {

// Printer names are kept in a 260-character buffer: longer names are cut to 259 characters.
inline constexpr std::size_t kPrinterNameChars = 260;

class PrinterSettings {
  public:
    // Copies the name and opens the printer with `desiredAccess` and no device mode.
    PrinterSettings(Platform& platform, std::u16string_view printerName,
                    std::uint32_t desiredAccess);
    ~PrinterSettings();
    PrinterSettings(const PrinterSettings&) = delete;
    PrinterSettings& operator=(const PrinterSettings&) = delete;

    // Opens the printer unless it is already open; answers whether it is open. A refused open
    // leaves the object usable, so it can be tried again with less access.
    bool Open(std::uint32_t desiredAccess, const Bytes* devMode = nullptr);
    bool IsOpen() const { return isOpen_; }
    bool Close();

    SpoolerPrinter* Handle() const { return printer_.get(); }
    const std::u16string& PrinterName() const { return printerName_; }
    std::uint32_t GrantedAccess() const { return grantedAccess_; }
    bool CanAdminister() const { return (grantedAccess_ & kPrinterAccessAdminister) != 0; }

    // Printer data; results are the spooler's error codes (0 = success).
    std::uint32_t GetPrinterData(std::u16string_view valueName, std::uint32_t* type,
                                 std::uint8_t* data, std::uint32_t size, std::uint32_t* needed);
    std::uint32_t SetPrinterData(std::u16string_view valueName, std::uint32_t type, ByteSpan data);
    std::uint32_t SetPrinterDataEx(std::u16string_view key, std::u16string_view valueName,
                                   std::uint32_t type, ByteSpan data);

    // Fetch into `out`, which is emptied first and stays empty when the call fails.
    bool GetDriverInformation(std::uint32_t level, std::optional<DriverInfo>& out);
    bool GetPrinterInformation(std::uint32_t level, std::optional<PrinterInfo>& out);

    // Fetch into the object's own buffer for that level (printer levels 1-5, driver levels
    // 1-3); null when the call fails. The record stays valid until the same level is fetched
    // again or the object is destroyed.
    const PrinterInfo* PrinterInformation(std::uint32_t level);
    const DriverInfo* DriverInformation(std::uint32_t level);

    bool SetPrinterLevel2(const PrinterInfo& info);
    bool SetPrinterLevel3(const PrinterInfo& info);
    bool SetPrinterLevel5(const PrinterInfo& info);
    bool SetPrinterLevel6(const PrinterInfo& info);
    bool Reset(const PrinterInfo& level2);

    // Fields of the level-3 driver information, fetched on first use; null when it cannot be
    // fetched.
    const std::u16string* DriverPath();
    const std::u16string* DataFile();
    // The last dependent file whose name ends in ".XPI"; null when there is none.
    const std::u16string* FindXpiFile();

    // The printer's stored device mode as a 6004-byte record, or gsDevMode with the roll
    // paper when the printer has none; null when the printer is not open. The record belongs
    // to the object.
    const DevModeImage* GetDevMode();
    // Stores `record` as the printer's device mode; only with administer rights.
    void SetDevMode(ByteSpan record);

  private:
    static constexpr std::uint32_t kPrinterLevels = 5;
    static constexpr std::uint32_t kDriverLevels = 3;

    bool SetPrinterLevel(std::uint32_t level, const PrinterInfo& info);
    const DriverInfo* CachedDriverInfo3();

    Platform& platform_;
    std::unique_ptr<SpoolerPrinter> printer_;
    bool isOpen_ = false;
    std::u16string printerName_;
    std::array<std::optional<PrinterInfo>, kPrinterLevels> printerInfo_;
    std::array<std::optional<DriverInfo>, kDriverLevels> driverInfo_;
    const std::u16string* xpiFile_ = nullptr;
    std::uint32_t grantedAccess_ = 0;
    DevModeImage devMode_{};
};

// The opening used by the entry points: all access, and read-and-use access when all access
// is refused. Answers whether the printer is open.
bool OpenWithReadFallback(PrinterSettings& settings);

}  // namespace kx20
