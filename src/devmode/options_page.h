// The document sheet's options page (1004) without its window: the job options of the private
// device mode, the lists the page offers, what is enabled, and the apply-state record it
// mirrors its choices into. The dialog procedure GuiOptionsDlgProc maps controls to this.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "pages/apply_state.h"
#include "devmode/document_page.h"
#include "pages/page_context.h"

namespace kx20 {

// Entries of the font-override list that are the system's own texts.
inline constexpr std::u16string_view kOverrideUsing = u"Override using ";

class OptionsPageModel {
  public:
    explicit OptionsPageModel(PageContext& ctx) : ctx_(ctx) {}

    // The labels set at start, control by control (1070 is set by CutPaperLabel()).
    static std::span<const PageLabel> Labels();

    // Reads the private fields, the port's connection type and the font catalogue. `shared`
    // is the apply-state record found on the sheet frame, or null: with it the page follows
    // the device settings page and copies its own state into the record.
    void Init(ApplyState* shared);

    // Radio pair 1064/1065 and list 1067 (with its label 1066).
    bool ModeFirst() const { return modeFirst_; }
    bool ModeLocked() const { return documentStation_; }  // both radios disabled
    const std::vector<std::u16string>& ChoiceEntries() const { return choiceEntries_; }
    int ChoiceSelection() const { return modeFirst_ ? 0 : choice_; }
    bool ChoiceEnabled() const { return !modeFirst_; }

    // Check boxes 1070 and 1072..1075.
    bool CutPaper() const { return cutPaper_; }
    std::uint32_t CutPaperLabel() const;
    bool Flag(std::size_t i) const { return flags_.at(i); }

    // List 1077 (label 1076), 1079 (label 1078), 1081 (label 1080).
    const std::vector<std::u16string>& FlowEntries() const { return flowEntries_; }
    int FlowSelection() const { return flowSelection_; }
    bool FlowEnabled() const { return flowEnabled_; }
    const std::vector<std::u16string>& DensityEntries() const { return densityEntries_; }
    int DensitySelection() const { return density_; }
    const std::vector<std::u16string>& FontEntries() const { return fontEntries_; }
    int FontSelection() const { return font_; }

    // The device settings the page follows, for the summary inside frame 1050; empty without
    // an apply-state record.
    std::u16string SummaryText(const ApplyState* shared);

    // Changes from the controls. Out-of-range selections are ignored.
    void SetModeFirst(bool first);
    void SelectChoice(int index);
    void SetCutPaper(bool on) { cutPaper_ = on; }
    void SetFlag(std::size_t i, bool on) { flags_.at(i) = on; }
    void SelectFlow(int index);
    void SelectDensity(int index);
    void SelectFont(int index);

    // The device settings page changed its list 1023: the forced mode, the cut-paper label and
    // the font list follow it; the apply-state record is refreshed.
    void FollowDeviceSettings(ApplyState* shared);

    // Writes the page back into the private fields and refreshes the apply-state record.
    void Apply(ApplyState* shared);

    // The page's current state as the apply-state record holds it.
    void WriteApplyState(ApplyState& state) const;

  private:
    void BuildChoiceEntries();
    void BuildFontEntries(std::u16string_view keep);
    void ReadFlowEnablement();

    PageContext& ctx_;
    bool modeFirst_ = true;
    bool documentStation_ = false;
    int choice_ = 0;
    bool cutPaper_ = false;
    std::array<bool, 4> flags_{};
    bool flowEnabled_ = false;
    int flowSelection_ = 1;
    int density_ = 0;
    int font_ = 0;
    std::vector<std::u16string> choiceEntries_;
    std::vector<std::u16string> flowEntries_;
    std::vector<std::u16string> densityEntries_;
    std::vector<std::u16string> fontEntries_;
};

}  // namespace kx20
