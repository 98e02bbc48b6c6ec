#include "sim/sim_publish.h"

#include "store/registry_layout.h"

namespace kx20::sim {

std::u16string PortKeyPathOf(std::u16string_view portName) {
    return store::PortKeyPath(portName);
}

Bytes ConnectionStatusRecord(const PrinterState& s) {
    Bytes record;
    AppendU8(record, s.publication == Publication::Valid ? 1 : 0);
    AppendU8(record, s.connected ? 1 : 0);
    AppendU8(record, s.modelCode);
    AppendU8(record, s.firmwareLevel);
    AppendBytes(record, s.identity);
    return record;
}

bool PublishPort(Registry& registry, const PrinterState& s) {
    auto key = registry.CreateKey(Hive::LocalMachine, PortKeyPathOf(s.portName));
    if (!key)
        return false;
    bool ok = true;
    if (s.publication == Publication::Removed) {
        long rc = key->DeleteValue(u"ConnectionStatus");
        ok = rc == kRegOk || rc == kRegNotFound;
    } else {
        ok = key->SetValue(u"ConnectionStatus", kRegBinary, ConnectionStatusRecord(s)) == kRegOk;
    }
    ok = WriteDwordValue(*key, u"TYPE", s.serialPort ? 1 : 0) == kRegOk && ok;
    if (!s.connected)
        return ok;
    struct Stored {
        std::uint8_t area;
        const char16_t* name;
    };
    static constexpr Stored kStored[] = {{kAreaLogos, u"LogosCRC"},
                                         {kAreaMessages, u"MessagesCRC"},
                                         {kAreaSbcsThermal, u"SBCSThermalCRC"},
                                         {kAreaDbcsThermal, u"DBCSThermalCRC"},
                                         {kAreaDbcsImpact, u"DBCSImpactCRC"}};
    for (const auto& v : kStored) {
        if (!HasArea(s.modelCode, v.area))
            continue;
        auto crc = AreaChecksumBytes(s.flash, v.area);
        ok = key->SetValue(v.name, kRegBinary, crc) == kRegOk && ok;
    }
    return ok;
}

}  // namespace kx20::sim
