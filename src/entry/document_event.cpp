#include "entry/document_event.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "devmode/devmode.h"
#include "platform/trace.h"
#include "platform/format.h"

namespace kx20 {

namespace {

constexpr std::array<std::u16string_view, 14> kEventTraces = {
    u"",
    u"   iEsc = DOCUMENTEVENT_CREATEDCPRE\n",
    u"   iEsc = DOCUMENTEVENT_CREATEDCPOST\n",
    u"   iEsc = DOCUMENTEVENT_RESETDCPRE\n",
    u"   iEsc = DOCUMENTEVENT_RESETDCPOST\n",
    u"   iEsc = DOCUMENTEVENT_STARTDOCPRE\n",
    u"   iEsc = DOCUMENTEVENT_STARTPAGE\n",
    u"   iEsc = DOCUMENTEVENT_ENDPAGE\n",
    u"   iEsc = DOCUMENTEVENT_ENDDOCPRE\n",
    u"   iEsc = DOCUMENTEVENT_ABORTDOC\n",
    u"   iEsc = DOCUMENTEVENT_DELETEDC\n",
    u"   iEsc = DOCUMENTEVENT_ESCAPE\n",
    u"   iEsc = DOCUMENTEVENT_ENDDOCPOST\n",
    u"   iEsc = DOCUMENTEVENT_STARTDOCPOST\n",
};

constexpr std::size_t kErrorTextChars = 1024;

// The failure of the last section call, as the trace tells it. The error code is taken before
// anything else can change it.
std::int32_t Failed(SharedSections& sections) {
    const std::uint32_t code = sections.LastError();
    std::u16string text = sections.ErrorText(code);
    if (text.size() >= kErrorTextChars)
        text.resize(kErrorTextChars - 1);
    DrvTrace(u"   system error id is: %d\n", code);
    DrvTrace(u"   system error message is:\n   %ls\n", text);
    return kDocumentEventFailure;
}

std::int32_t CreateSection(SharedSections& sections, const std::u16string& name, ByteSpan record) {
    const SectionHandle section = sections.Create(name, kJobSectionSize);
    if (!section)
        return Failed(sections);
    auto view = sections.Map(section, true);
    if (!view)
        return Failed(sections);  // the section handle stays as it is
    MutableByteSpan bytes = view->Bytes();
    WriteU32(bytes, kSectionHandleOffset, static_cast<std::uint32_t>(section));
    WriteU32(bytes, kSectionPageCounterOffset, 0);
    if (record.empty()) {
        DrvTrace(u"DevMode is NULL   ( CreateIC() was called )\n");
    } else {
        // The whole record as it declares itself; the section holds 6004 bytes rounded up to
        // whole pages, so a record that declares more than that is cut at the view's end.
        const std::size_t room =
            bytes.size() > kSectionRecordOffset ? bytes.size() - kSectionRecordOffset : 0;
        const std::size_t n = std::min(record.size(), room);
        if (n > 0)
            std::memcpy(bytes.data() + kSectionRecordOffset, record.data(), n);
    }
    // The section handle is left open: it keeps the section alive until the context goes.
    return kDocumentEventSuccess;
}

std::int32_t CheckSection(SharedSections& sections, const std::u16string& name) {
    const SectionHandle section = sections.Open(name, true);
    if (!section)
        return Failed(sections);
    if (!sections.Map(section, true))
        return Failed(sections);
    sections.Close(section);
    return kDocumentEventSuccess;
}

std::int32_t CountPage(SharedSections& sections, const std::u16string& name) {
    const SectionHandle section = sections.Open(name, true);
    if (!section)
        return Failed(sections);
    auto view = sections.Map(section, true);
    if (!view)
        return Failed(sections);
    MutableByteSpan bytes = view->Bytes();
    WriteU32(bytes, kSectionPageCounterOffset, ReadU32(bytes, kSectionPageCounterOffset) + 1);
    view.reset();
    sections.Close(section);
    return kDocumentEventSuccess;
}

std::int32_t ReleaseSection(SharedSections& sections, const std::u16string& name) {
    const SectionHandle section = sections.Open(name, false);
    if (!section)
        return Failed(sections);
    auto view = sections.Map(section, false);
    if (!view)
        return Failed(sections);
    // The handle the create step left open, as that process holds it.
    sections.Close(ReadU32(view->Bytes(), kSectionHandleOffset));
    view.reset();
    sections.Close(section);
    return kDocumentEventSuccess;
}

}  // namespace

std::u16string JobSectionName(std::uint64_t printerHandle) {
    return Format(u"kvox%08X", static_cast<std::uint32_t>(printerHandle));
}

std::int32_t HandleDocumentEvent(SharedSections& sections, std::uint64_t printerHandle,
                                 std::int32_t event, ByteSpan record) {
    std::int32_t result = kDocumentEventSuccess;
    if (event >= docevent::kCreateDcPre && event <= docevent::kStartDocPost) {
        DrvTrace(kEventTraces[static_cast<std::size_t>(event)]);
    } else {
        DrvTrace(u"   UNKNOWN iEsc = %i\n", event);
    }
    switch (event) {
        case docevent::kCreateDcPre:
            result = CreateSection(sections, JobSectionName(printerHandle), record);
            break;
        case docevent::kStartDocPre:
            result = CheckSection(sections, JobSectionName(printerHandle));
            break;
        case docevent::kEndPage:
            result = CountPage(sections, JobSectionName(printerHandle));
            break;
        case docevent::kDeleteDc:
            result = ReleaseSection(sections, JobSectionName(printerHandle));
            break;
        default:
            break;
    }
    DrvTrace(u"  Returning %d\n", result);
    return result;
}

}  // namespace kx20
