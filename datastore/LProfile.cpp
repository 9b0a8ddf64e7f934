#include "datastore/LProfile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>

#include "datastore/CountryTaxDefaults.h"
#include "datastore/NumberText.h"
#include "datastore/SymbolText.h"
#include "platform/FileIo.h"
#include "platform/FileLock.h"
#include "platform/Folders.h"
#include "platform/LFileDescriptor.h"

namespace {

constexpr int kDatabaseVersion = 4;
constexpr int kInches = 1;

std::string FolderOrDefault(std::string_view folder) {
    std::string path(CutText(folder));
    return path.empty() || !FolderExists(path) ? GetSharedDataFolderApp() : path;
}

std::string CutSymbol(const LRecord& options, std::string_view field, std::string_view otherwise) {
    return std::string(CutText(options.GetView(field, otherwise), kMaxSymbolBytes));
}

void WriteTaxDefaults(LRecord& tax, const LCountryTaxDefaults& defaults) {
    constexpr std::array<std::array<std::string_view, 2>, 3> kFields{
        {{"TaxName1", "TaxRate1"}, {"TaxName2", "TaxRate2"}, {"TaxName3", "TaxRate3"}}};
    tax.SetInt("TaxSystem", defaults.taxSystem);
    for (size_t i = 0; i < kFields.size(); ++i) {
        tax.SetString(kFields[i][0], defaults.taxes[i].name);
        tax.SetFloat(kFields[i][1], defaults.taxes[i].ratePercent);
    }
    tax.SetInt("DefaultRate", defaults.defaultRate);
    tax.SetBool("TaxInclusive", defaults.isInclusive);
}

bool CreateDefaultLocation(const LFileStoreListBase& locations) {
    LRecord location;
    locations.CreateIteratorBase(location);
    if (location.IsBound()) return true;
    locations.CreateNewRecord(location);
    location.SetString("Name", "Main");
    return location.Flush();
}

}  // namespace

LProfile::LProfile() : LProfile(std::string_view()) {}

LProfile::LProfile(std::string_view folder)
    : LLocaleCurrencyProfile(LDefaults::kWithoutLocale), store_("") {
    SetDatabaseName(folder);
}

void LProfile::SetDatabaseName(std::string_view folder) {
    store_ = LFileStoreDataStore(FolderOrDefault(folder));
    const auto makeList = [this](std::string_view name) {
        return std::make_unique<LFileStoreListBase>(store_, name);
    };
    orders_ = makeList("Orders");
    ordersRecurring_ = makeList("OrdersRecurring");
    ordersDrafts_ = makeList("OrdersDrafts");
    items_ = makeList("Items");
    transfers_ = makeList("Transfers");
    locations_ = makeList("Locations");
    Reload();
}

void LProfile::Reload() {
    // Anew: the folder may have been emptied or replaced since.
    misc_ = std::make_unique<LFileStoreListBase>(store_, "Misc");
    LRecord options;
    OpenSettings(options, "Options");
    if (!options.GetBool("Init", false)) InitialiseDatabase(options);
    ReadSettings(options);
}

void LProfile::OpenSettings(LRecord& record, std::string_view block) const {
    misc_->OpenAlways(record, block);
}

std::string LProfile::BusinessName() const {
    LRecord company;
    OpenSettings(company, "Company");
    return company.GetString("Name");
}

bool LProfile::UsesInches() const {
    return measurementUnits_ ? *measurementUnits_ == kInches : !Locale().isMetric;
}

void LProfile::InitialiseDatabase(LRecord& options) {
    // The folder itself is the lock: of several that find it new, one sets it up and the others see
    // what it wrote. Where it cannot be locked the defaults are written all the same.
    const LFileDescriptor folder(
        ::open(DatabaseFolder().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.IsOpen()) flocktimed(folder.Get(), LFileLockKind::kExclusive);
    OpenSettings(options, "Options");
    if (options.GetBool("Init", false)) return;
    // There but unreadable (no descriptor left, no permission): an owner's settings, no new
    // database.
    if (options.GetLoadedKey().empty() && misc_->TestRecordExists("Options")) return;

    MakeListFolders();
    // What a full disk refused is tried again at the next load.
    const auto load = options.TestFieldExists("Init") ? LFirstLoad::kResumed : LFirstLoad::kAnew;
    const bool isComplete = WriteDefaultBlocks(load) && CreateDefaultLocation(*locations_);
    WriteLocaleOptions(options);
    options.SetBool("Init", isComplete);
    options.SetInt("DatabaseVersion", kDatabaseVersion);
    options.Flush();  // last, and under the lock: whoever reads "Init" finds all the rest
}

// In place, as callers hold references to the lists.
void LProfile::MakeListFolders() const {
    for (const auto* list :
         {&orders_, &ordersRecurring_, &ordersDrafts_, &items_, &transfers_, &locations_}) {
        ::mkdir((*list)->Folder().c_str(), 0777);
    }
}

void LProfile::WriteLocaleOptions(LRecord& options) const {
    const LLocaleInfo& locale = Locale();
    options.SetString("CurrencySymbol", LocaleSymbolOr(locale.currencySymbol, "$"));
    options.SetInt("CurrencyOrder", 0);
    options.SetInt("CurrencyDigits", locale.currencyDigits);
    options.SetString("DecimalSymbol", LocaleSymbolOr(locale.decimalSeparator, "."));
    options.SetString("ThousandsSymbol", LocaleSymbolOr(locale.groupingSeparator, ","));
    options.SetInt("NumberOfDigitsAfterDecimalPoint", 2);
    options.SetInt("PaperSize", static_cast<int>(PaperSizeOf(locale.country)));
}

// Where an earlier first load was cut short, the blocks that it wrote may have been changed since.
// A save counts as done also where nothing could be written, so it is looked up what is there.
bool LProfile::WriteDefaultBlocks(LFirstLoad load) const {
    const bool isAnew = load == LFirstLoad::kAnew;
    LRecord record;
    OpenSettings(record, "Order");
    if (isAnew || !record.TestFieldExists("FooterText")) {
        record.SetString("FooterText", "Thank you for your business.");
    }
    OpenSettings(record, "Tax");  // saves the one before
    if (isAnew || !record.TestFieldExists("TaxInclusive")) {
        WriteTaxDefaults(record, TaxDefaultsOf(Locale().country));
    }
    OpenSettings(record, "Order");
    const bool hasOrder = record.TestFieldExists("FooterText");
    OpenSettings(record, "Tax");
    return hasOrder && record.TestFieldExists("TaxInclusive");
}

void LProfile::ReadSettings(const LRecord& options) {
    currencySymbol_ = CutSymbol(options, "CurrencySymbol", "$");
    currencyOrder_ = options.GetInt("CurrencyOrder", 0);
    currencyDigits_ = HoldDigits(options.GetInt("CurrencyDigits", 2));
    decimalSymbol_ = CutSymbol(options, "DecimalSymbol", ".");
    thousandsSymbol_ = CutSymbol(options, "ThousandsSymbol", ",");
    digits_ = HoldDigits(options.GetInt("NumberOfDigitsAfterDecimalPoint", 2));
    measurementUnits_.reset();
    if (options.TestFieldExists("MeasurementUnits")) {
        measurementUnits_ = options.GetInt("MeasurementUnits", 0);
    }
}

void ReformatQuantity(const LProfile& profile, std::string& text) {
    if (const auto value = profile.ParseNumber(text)) text = profile.FormatQuantity(*value);
}
