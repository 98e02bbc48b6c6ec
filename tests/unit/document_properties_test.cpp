#include "entry/document_properties.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

#include "platform/memory/memory_platform.h"
#include "platform/trace.h"
#include "tests/unit/trace_capture.h"

#if defined(__SANITIZE_ADDRESS__)
#define KX20_TEST_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KX20_TEST_ASAN 1
#endif
#endif

namespace kx20 {
namespace {

ByteSpan PrivatePart(ByteSpan record, std::size_t at) {
    return record.subspan(at, kDevModePrivateSize);
}

bool SameBytes(ByteSpan a, ByteSpan b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

class DocumentProperties : public ::testing::Test, protected MemoryPlatform {
  protected:
    void SetUp() override {
        SetTraceTarget(&files, &clock, {u"marker", u"out"});
        files.Put(u"marker", {});
        printer = &spooler.AddPrinter(u"KX20");
        ResetCurrentDefaults();
    }
    void TearDown() override {
        SetTraceTarget(nullptr, nullptr);
        ResetCurrentDefaults();
    }

    std::int32_t NoUi(MutableByteSpan in, MutableByteSpan out, std::uint32_t mode) {
        return DocumentPropertiesNoUi(p, DocumentRequest{u"KX20", in, out, mode, outSize});
    }

    MemorySpooler::Printer* printer = nullptr;
    std::int32_t outSize = 0;
};

TEST_F(DocumentProperties, CurrentDefaultsComeFromThePrinterOrTheBuiltInRecord) {
    DevModeImage stored = gsDevMode();
    WriteDmShort(stored, kOffDmCopies, 5);
    printer->info.devMode = Bytes(stored.begin(), stored.end());
    printer->grantable = kPrinterRead;  // read access is enough
    EXPECT_TRUE(LoadCurrentDefaults(p, u"KX20"));
    EXPECT_EQ(CurrentDefaults(), stored);
    EXPECT_FALSE(LoadCurrentDefaults(p, u"Nowhere", DefaultsTrace::SheetInit));
    EXPECT_EQ(CurrentDefaults(), gsDevMode());
    EXPECT_TRUE(LoadCurrentDefaults(p, u"KX20", DefaultsTrace::SheetInit));
    EXPECT_FALSE(LoadCurrentDefaults(p, u"Nowhere"));
    EXPECT_EQ(CurrentDefaults(), gsDevMode());
    EXPECT_TRUE(TraceHas(files, "OpenPrinter failed"));
}

TEST_F(DocumentProperties, SizeQueryAnswersTheSizeAndWithoutInputTheDefaultsAreReturned) {
    Bytes out(6004, 0xEE);
    EXPECT_EQ(NoUi({}, out, 0), 6004);
    EXPECT_EQ(outSize, 6004);
    outSize = 0;
    EXPECT_EQ(NoUi({}, {}, kDmOutBuffer | kDmInBuffer), 6004);
    EXPECT_EQ(outSize, 6004);
    EXPECT_EQ(std::count(out.begin(), out.end(), 0xEE), 6004);
    EXPECT_EQ(CurrentDefaults(), DevModeImage{});  // nothing loaded for a size query

    EXPECT_EQ(NoUi({}, out, kDmOutBuffer | kDmInBuffer), kIdOk);
    EXPECT_TRUE(SameBytes(out, gsDevMode()));
    // The built-in record does not claim colour and media type: they are filled every time.
    EXPECT_TRUE(TraceHas(files, "DM_COLOR"));
    EXPECT_TRUE(TraceHas(files, "DM_MEDIATYPE"));
}

TEST_F(DocumentProperties, UnclaimedMembersAreFilledIntoTheCallersRecord) {
    DevModeImage stored = gsDevMode();
    WriteDmShort(stored, kOffDmDefaultSource, 15);
    printer->info.devMode = Bytes(stored.begin(), stored.end());

    DevModeImage in = gsDevMode();
    WriteU32(in, kOffDmFields, kDmPaperSize | kDmCopies);
    WriteDmShort(in, kOffDmPaperSize, 999);  // claimed values are kept unchecked
    WriteDmShort(in, kOffDmCopies, -3);
    WriteDmShort(in, kOffDmOrientation, 2);
    WriteDmShort(in, kOffDmColor, 2);
    WriteU32(in, kOffDmMediaType, 7);
    WriteU32(in, kDevModePublicSize + kPrivBReceiptStation, 0);
    Bytes out(6004, 0xEE);
    EXPECT_EQ(NoUi(in, out, kDmInBuffer | kDmOutBuffer), kIdOk);

    EXPECT_EQ(ReadU32(in, kOffDmFields), kDmPaperSize | kDmCopies);  // left as it was
    EXPECT_EQ(ReadDmShort(in, kOffDmPaperSize), 999);
    EXPECT_EQ(ReadDmShort(in, kOffDmCopies), -3);
    EXPECT_EQ(ReadDmShort(in, kOffDmOrientation), 1);
    EXPECT_EQ(ReadDmShort(in, kOffDmColor), 1);
    EXPECT_EQ(ReadU32(in, kOffDmMediaType), 0u);
    EXPECT_EQ(ReadDmShort(in, kOffDmDefaultSource), 15);  // from the printer's record
    EXPECT_TRUE(SameBytes(out, in));
    EXPECT_EQ(ReadU32(out, kDevModePublicSize + kPrivBReceiptStation), 0u);

    EXPECT_TRUE(TraceHas(files, "DM_ORIENTATION"));
    EXPECT_FALSE(TraceHas(files, "DM_COPIES"));  // claimed

    // Without DM_OUT_BUFFER only the input record is completed.
    Bytes untouched(6004, 0xEE);
    WriteDmShort(in, kOffDmOrientation, 2);
    files.Remove(u"out");
    EXPECT_EQ(NoUi(in, untouched, kDmInBuffer), kIdOk);
    EXPECT_EQ(ReadDmShort(in, kOffDmOrientation), 1);
    EXPECT_EQ(std::count(untouched.begin(), untouched.end(), 0xEE), 6004);
    EXPECT_FALSE(TraceHas(files, "DEVMODE"));  // nothing returned, nothing dumped
}

TEST_F(DocumentProperties, SizesAreRepairedAndForeignPrivatePartsReplaced) {
    LoadCurrentDefaults(p, u"KX20");
    // The whole size put into dmSize.
    DevModeImage whole = gsDevMode();
    WriteU16(whole, kOffDmSize, 6004);
    WriteU16(whole, kOffDmDriverExtra, 0);
    WriteU32(whole, kDevModePublicSize + kPrivBCutPaper, 0);
    Bytes out(6004, 0xEE);
    EXPECT_EQ(FillFromDefaults({u"KX20", whole, out, kDmInBuffer | kDmOutBuffer, outSize}), kIdOk);
    EXPECT_EQ(ReadU16(whole, kOffDmSize), 220);
    EXPECT_EQ(ReadU16(whole, kOffDmDriverExtra), 5784);
    EXPECT_TRUE(SameBytes(out, whole));

    // A foreign private part: the public part is kept, the private part is the defaults'.
    DevModeImage foreign = gsDevMode();
    WriteU32(foreign, kDevModePublicSize, 0x12345678);
    WriteDmShort(foreign, kOffDmPaperSize, 9);
    EXPECT_EQ(FillFromDefaults({u"KX20", foreign, out, kDmInBuffer | kDmOutBuffer, outSize}),
              kIdOk);
    EXPECT_EQ(ReadDmShort(out, kOffDmPaperSize), 9);
    EXPECT_TRUE(SameBytes(PrivatePart(out, 220), PrivatePart(CurrentDefaults(), 220)));

    // A plain public record without any private part, in the same buffer as the output.
    Bytes shared(6004, 0);
    std::copy(gsDevMode().begin(), gsDevMode().begin() + 220, shared.begin());
    WriteU16(shared, kOffDmDriverExtra, 0);
    MutableByteSpan in = MutableByteSpan(shared).first(220);
    EXPECT_EQ(FillFromDefaults({u"KX20", in, shared, kDmInBuffer | kDmOutBuffer, outSize}), kIdOk);
    EXPECT_TRUE(SameBytes(PrivatePart(shared, 220), PrivatePart(CurrentDefaults(), 220)));
}

TEST_F(DocumentProperties, ShortPublicPartKeepsMembersOutOfItsPrivatePart) {
    LoadCurrentDefaults(p, u"KX20");
    // An 80-byte public part: only orientation and paper size lie inside it.
    Bytes in(80 + 5784, 0x33);
    WriteU16(in, kOffDmSize, 80);
    WriteU16(in, kOffDmDriverExtra, 5784);
    WriteU32(in, kOffDmFields, 0);
    WriteU32(in, 80, kDevModeSignature);
    const Bytes original = in;
    Bytes out(6004, 0xEE);
    EXPECT_EQ(FillFromDefaults({u"KX20", in, out, kDmInBuffer | kDmOutBuffer, outSize}), kIdOk);
    EXPECT_EQ(ReadDmShort(in, kOffDmOrientation), 1);
    EXPECT_EQ(ReadDmShort(in, kOffDmPaperSize), 259);
    EXPECT_TRUE(std::equal(in.begin() + 80, in.end(), original.begin() + 80));
    EXPECT_TRUE(SameBytes(MutableByteSpan(out).first(in.size()), in));
    EXPECT_EQ(std::count(out.begin() + in.size(), out.end(), 0xEE), 6004 - 5864);
}

TEST_F(DocumentProperties, OpeningTraceOfTheCall) {
    const std::u16string name =
        TraceDocumentCall(0x1234ABCD, true, std::u16string(300, u'P'), 0xDEAD, 0);
    EXPECT_EQ(name, std::u16string(259, u'P'));
    // The narrow trace line holds at most 260 bytes.
    for (const std::string& line : TraceMessages(files)) EXPECT_LE(line.size(), 260u);
    EXPECT_TRUE(TraceHas(files, "DEAD"));
}

// A buffer with guard bytes on both sides, or (under the address sanitizer) without, so that
// the sanitizer sees every access past either end.
class GuardedBuffer {
  public:
#ifdef KX20_TEST_ASAN
    static constexpr std::size_t kGuard = 0;
#else
    static constexpr std::size_t kGuard = 64;
#endif
    explicit GuardedBuffer(std::size_t size, std::uint8_t fill)
        : storage_(size + 2 * kGuard, 0xC5), size_(size) {
        std::fill_n(span().begin(), size, fill);
    }
    MutableByteSpan span() {
        return MutableByteSpan(storage_).subspan(kGuard, size_);
    }
    bool GuardsIntact() const {
        return std::all_of(storage_.begin(), storage_.begin() + kGuard,
                           [](std::uint8_t b) { return b == 0xC5; }) &&
               std::all_of(storage_.end() - kGuard, storage_.end(),
                           [](std::uint8_t b) { return b == 0xC5; });
    }

  private:
    Bytes storage_;
    std::size_t size_;
};

struct HostileCase {
    std::size_t inBytes, dmSize, extra;
    bool signature;
    std::uint32_t fields;
    std::size_t outBytes;
    bool shared;  // input and output in one buffer, as callers may pass them
};

void CheckFillStaysInside(const HostileCase& c) {
    SCOPED_TRACE(testing::Message() << "in " << c.inBytes << " dmSize " << c.dmSize << " extra "
                                    << c.extra << " signature " << c.signature << " out "
                                    << c.outBytes << " shared " << c.shared);
    GuardedBuffer a(c.shared ? std::max(c.inBytes, c.outBytes) : c.inBytes, 0x5A);
    GuardedBuffer b(c.shared ? 0 : c.outBytes, 0xEE);
    MutableByteSpan in = a.span().first(c.inBytes);
    MutableByteSpan out = c.shared ? a.span().first(c.outBytes) : b.span();
    WriteU16(in, kOffDmSize, static_cast<std::uint16_t>(c.dmSize));
    WriteU16(in, kOffDmDriverExtra, static_cast<std::uint16_t>(c.extra));
    WriteU32(in, kOffDmFields, c.fields);
    if (c.signature)
        WriteU32(in, c.dmSize, kDevModeSignature);
    // Where the output's private part goes: the record's own public size after the
    // whole-size-in-dmSize repair, or the defaults' when there is no record.
    std::size_t pub = ReadU16(in, kOffDmSize);
    if (pub == 6004 && ReadU16(in, kOffDmDriverExtra) == 0)
        pub = 220;
    if (in.empty())
        pub = 220;

    std::int32_t size = 0;
    EXPECT_EQ(FillFromDefaults({u"KX20", in, out, kDmInBuffer | kDmOutBuffer, size}), kIdOk);
    EXPECT_TRUE(a.GuardsIntact());
    EXPECT_TRUE(b.GuardsIntact());
    // Whichever private part was taken, it is one of this driver's.
    if (pub + kDevModePrivateSize <= c.outBytes) {
        EXPECT_EQ(ReadU32(out, pub), kDevModeSignature);
    }
}

// Caller records of every shape: the span size (0 = dmSize + dmDriverExtra, as the Win32
// entry computes it), sizes, fields, signature, output size and a shared input/output buffer.
TEST_F(DocumentProperties, HostileRecordsStayInsideTheirSpans) {
    SetTraceTarget(nullptr, nullptr);  // thousands of calls
    LoadCurrentDefaults(p, u"KX20");
    for (std::size_t span : {0, 1, 70, 72, 100, 220, 5864, 6004, 6100})
        for (std::size_t dmSize : {0, 1, 69, 76, 80, 156, 219, 220, 221, 5784, 6004, 65535})
            for (std::size_t extra : {0, 4, 5784, 65535})
                for (std::size_t outBytes : {1, 100, 220, 6003, 6004, 9000})
                    for (int variant = 0; variant < 8; ++variant) {
                        CheckFillStaysInside({span ? span : dmSize + extra, dmSize, extra,
                                              (variant & 1) != 0, (variant & 2) ? ~0u : 0u,
                                              outBytes, (variant & 4) != 0});
                        if (HasFailure())
                            return;
                    }
}

TEST_F(DocumentProperties, ConversionCopiesTheWholeRecordForEveryModeInsideItsOutputSpan) {
    DevModeImage stored = gsDevMode();
    WriteU16(stored, kOffDmDriverExtra, 12);  // taken as it is
    for (std::uint32_t mode : {kCdmConvert, kCdmConvert351, kCdmDriverDefault, 0u, 99u})
        for (std::size_t bytes : {0u, 1u, 6003u, 6004u, 6005u})
            for (std::int32_t claimed : {-1, 0, 6003, 6004, INT32_MAX}) {
                printer->info.devMode.reset();
                if (mode == kCdmConvert)
                    printer->info.devMode = Bytes(stored.begin(), stored.end());
                GuardedBuffer out(bytes, 0xEE);
                std::int32_t size = claimed;
                std::uint32_t lastError = 0;
                const bool ok = ConvertDevModeCore(p, u"KX20", out.span(), size, mode, lastError);
                EXPECT_EQ(ok, bytes >= 6004 && claimed >= 6004);
                EXPECT_EQ(size, ok ? claimed : 6004);
                EXPECT_EQ(lastError, ok ? 0u : 122u);  // insufficient buffer
                EXPECT_TRUE(out.GuardsIntact());
                const ByteSpan expected = mode == kCdmConvert ? ByteSpan(stored) : gsDevMode();
                const ByteSpan written = out.span().first(std::min<std::size_t>(bytes, 6004));
                if (ok) {
                    EXPECT_TRUE(SameBytes(written, expected));
                    EXPECT_TRUE(bytes == 6004 || out.span()[6004] == 0xEE);
                } else {
                    EXPECT_EQ(std::count(written.begin(), written.end(), 0xEE),
                              static_cast<std::ptrdiff_t>(written.size()));
                }
            }
    // A printer that cannot be opened gives the built-in record.
    GuardedBuffer out(6004, 0);
    std::uint32_t lastError = 0;
    EXPECT_TRUE(ConvertDevModeCore(p, u"Nowhere", out.span(), outSize = 6004, 1, lastError));
    EXPECT_TRUE(SameBytes(out.span(), gsDevMode()));
}

}  // namespace
}  // namespace kx20
