#include "entry/resource_module.h"

#include "platform/trace.h"

namespace kx20 {

namespace {

constexpr std::uint32_t kEnglish = 9;
constexpr std::u16string_view kSuffixes[] = {u"ENU"};

}  // namespace

std::u16string_view LanguageSuffix(std::uint32_t primaryLanguage) {
    (void)primaryLanguage;  // every language uses the one entry of the table
    static_assert(std::size(kSuffixes) == 1);
    return kSuffixes[0];
}

std::u16string ResourceModuleName(std::uint32_t primaryLanguage) {
    return u"KVORS" + std::u16string(LanguageSuffix(primaryLanguage)) + u".DLL";
}

std::u16string_view FolderOf(std::u16string_view path) {
    const std::size_t slash = path.find_last_of(u'\\');
    return slash == std::u16string_view::npos ? std::u16string_view() : path.substr(0, slash + 1);
}

std::u16string HelpPathFor(std::u16string_view modulePath) {
    std::u16string help(modulePath);
    if (help.size() >= 3)
        help.replace(help.size() - 3, 3, u"HLP");
    return help;
}

ResourceModule::ResourceModule(SystemServices& system, PrinterSettings& settings,
                               std::uint32_t language) {
    const DriverInfo* driver = settings.DriverInformation(3);
    if (!driver) {
        DrvTrace(u"   Error -- GetPrinterDriver() failed!\n");
        return;
    }
    if (language == 0)
        language = PrimaryLanguage(system.UserLocale());
    std::u16string folder;
    if (!driver->dependentFiles.empty())
        folder = std::u16string(FolderOf(driver->dependentFiles.front()));
    std::u16string path = folder + ResourceModuleName(language);
    module_ = system.LoadModule(path);
    if (!module_) {
        // Once more with the table's first suffix (the English module).
        path = folder + ResourceModuleName(kEnglish);
        module_ = system.LoadModule(path);
    }
    if (module_) {
        helpPath_ = HelpPathFor(path);
    } else {
        DrvTrace(u"   Error -- LoadLibrary() failed!\n");
    }
}

ResourceStrings& ResourceModule::Strings() {
    if (module_)
        return module_->Strings();
    return none_;
}

}  // namespace kx20
