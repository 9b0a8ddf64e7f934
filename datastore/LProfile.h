// One open business: its database folder, its lists, and how it writes numbers, money and dates.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "datastore/LFileStoreListBase.h"
#include "datastore/LLocaleCurrencyProfile.h"

// One thread at a time. Making one for a new folder initialises that business: settings by the
// machine's locale, and one location named "Main". Cheap otherwise: one settings record is read.
class LProfile : public LLocaleCurrencyProfile {
public:
    LProfile();                                  // the default business
    explicit LProfile(std::string_view folder);  // empty or missing: the default business

    // Empty or missing: the default business. References to the lists of before are void.
    void SetDatabaseName(std::string_view folder);
    // Reads the settings again; initialises a new database with the defaults of the machine's
    // locale, also one whose folder was emptied meanwhile.
    void Reload();

    const std::string& DatabaseFolder() const { return store_.Folder(); }
    const LFileStoreDataStore& Store() const { return store_; }
    const LFileStoreListBase& Items() const { return *items_; }
    const LFileStoreListBase& Orders() const { return *orders_; }
    const LFileStoreListBase& OrdersRecurring() const { return *ordersRecurring_; }
    const LFileStoreListBase& OrdersDrafts() const { return *ordersDrafts_; }
    const LFileStoreListBase& Transfers() const { return *transfers_; }
    const LFileStoreListBase& Locations() const { return *locations_; }
    // Any other list, or one of these, made anew.
    LFileStoreListBase List(std::string_view name) const { return {store_, name}; }

    // Opens a settings block of the business ("Options", "Order", "Tax", "Company").
    void OpenSettings(LRecord& record, std::string_view block) const;
    std::string BusinessName() const;  // "Name" of "Company", read anew

    bool UsesInches() const;

private:
    void InitialiseDatabase(LRecord& options);
    void MakeListFolders() const;
    void WriteLocaleOptions(LRecord& options) const;
    enum class LFirstLoad { kAnew, kResumed };
    bool WriteDefaultBlocks(LFirstLoad load) const;
    void ReadSettings(const LRecord& options);

    LFileStoreDataStore store_;
    std::unique_ptr<LFileStoreListBase> orders_, ordersRecurring_, ordersDrafts_, items_,
        transfers_, locations_, misc_;
    std::optional<int> measurementUnits_;  // none: as the locale has it
};

// Parses the text with the profile's number format and writes it back with thousands separators;
// text that is no number stays as it is.
void ReformatQuantity(const LProfile& profile, std::string& text);
