// A small business in a folder of its own, for tests of movements, history and master records.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "datastore/LProfile.h"
#include "inventory/StockHistory.h"
#include "platform/LSilentProcess.h"
#include "tests/support/LTempFolder.h"

inline constexpr LDate kMonday{2024, 3, 4};
inline constexpr LDate kTuesday{2024, 3, 5};
inline constexpr LDate kWednesday{2024, 3, 6};

// Shows money as $1,234.50. A new shop has the location "Main".
class LTestShop {
public:
    LTestShop();

    // Each returns the new record's key.
    std::string AddLocation(std::string_view name);
    std::string AddItem(std::string_view code, double quantityAtMain = 0);
    // `billOfMaterials` as stored: "\"A/2\",\"B/1\",".
    std::string AddBuiltItem(std::string_view code, std::string_view billOfMaterials);

    double Stock(std::string_view code, std::string_view locationName = "Main") const;
    // Sells at Main, on credit of "Smith".
    bool Sell(std::string_view code, double quantity, const LDate& date,
              LMoney unitPrice = {450, 2}, std::string_view reference = "") const;

    // The text of a day's file and the files' texts by path below the business's folder.
    std::string SellFile(const LDate& date) const;
    std::string ReceiveFile(const LDate& date) const;
    void WriteSellFile(const LDate& date, std::string_view text) const;

    std::vector<LHistoryRow> SoldRows(const LHistoryFilter& filter) const;
    std::vector<LHistoryRow> SoldRows(const LDate& from, const LDate& to) const;

private:
    LScopedEnvironment locale_{"LC_ALL", "en_US.UTF-8"};

public:
    LTempHome home;
    LProfile profile;
};

// A process that remembers what it was told.
class LToldProcess final : public LSilentProcess {
public:
    void SetStatus(std::string_view text) override { statusTexts.emplace_back(text); }
    std::vector<std::string> statusTexts;
};
