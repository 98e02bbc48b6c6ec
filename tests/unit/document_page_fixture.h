// The document sheet's pages on the one rig (tests/unit/printer_rig.h): the page copy starts
// as the default record, and jobs stay in the spooler.
#pragma once

#include "tests/unit/printer_rig.h"

namespace kx20 {
class DocumentPageTest : public PrinterRig {
  protected:
    void SetUp() override {
        PrinterRig::SetUp();
        spooler.onJobEnd = nullptr;
        ctx.pageCopy = gsDevMode();
        ctx.docDevMode = MutableByteSpan(ctx.pageCopy);
    }
    MutableByteSpan Priv() { return MutableByteSpan(ctx.pageCopy).subspan(kDevModePublicSize); }
};
}  // namespace kx20
