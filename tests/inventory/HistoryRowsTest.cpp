// The rows of the movement history on the disk, to the byte.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <memory>

#include "datastore/CsvText.h"
#include "inventory/HistoryFile.h"
#include "tests/inventory/LTestShop.h"
#include "tests/support/LChildProcess.h"
#include "tests/support/LFailNthFileCall.h"

namespace {

LSellRow Sale(const LDate& date) {
    LSellRow row;
    row.itemId = "17";
    row.locationName = "Main";
    row.customer = "Smith";
    row.date = date;
    row.quantity = 3;
    row.unitPrice = {450, 2};
    return row;
}

LReceiveRow Receipt(const LDate& date) {
    LReceiveRow row;
    row.itemId = "17";
    row.locationName = "Main";
    row.supplier = "Hammer & Sons";
    row.orderId = "PO10000";
    row.date = date;
    row.quantity = 25;
    row.unitCost = {1234, 3};
    return row;
}

TEST(HistoryRows, ASaleAndAReceiptReadAsTheyAlwaysDid) {
    const LTestShop shop;
    LSellRow sale = Sale(kMonday);
    sale.reference = "INV 7";
    ASSERT_TRUE(CreateNewSellRecord(shop.profile, sale));
    EXPECT_EQ(shop.SellFile(kMonday), "3.00,17,$4.50,Main,Smith,$13.50,INV 7\r\n");
    ASSERT_TRUE(CreateNewReceiveRecord(shop.profile, Receipt(kMonday)));
    EXPECT_EQ(shop.ReceiveFile(kMonday), "25.00,17,$1.234,Main,Hammer & Sons,PO10000,$30.850,\r\n");
}

TEST(HistoryRows, QuantitiesReadBackInTheFormatsOfTheBusiness) {
    LTestShop shop;
    LRecord options;
    shop.profile.OpenSettings(options, "Options");
    options.SetString("DecimalSymbol", ",");
    options.SetString("ThousandsSymbol", ".");
    options.SetString("CurrencySymbol", "\u20AC");
    options.SetInt("CurrencyOrder", 3);
    options.Flush();
    shop.profile.Reload();
    LSellRow row = Sale(kMonday);
    row.quantity = -1234.5;
    ASSERT_TRUE(CreateNewSellRecord(shop.profile, row));
    EXPECT_EQ(shop.SellFile(kMonday),
              "\"-1234,50\",17,\"4,50 \u20AC\",Main,Smith,\"-5.555,25 \u20AC\",\r\n");
    EXPECT_EQ(ReadHistoryQuantity(shop.profile, "-1234,50"), -1234.5);
    EXPECT_EQ(ReadHistoryQuantity(shop.profile, "-1.234,50"), -1234.5);
    EXPECT_EQ(ReadHistoryQuantity(shop.profile, "3.00"), 3) << "from before the settings changed";
    EXPECT_EQ(ReadHistoryQuantity(shop.profile, ""), std::nullopt);
    EXPECT_EQ(ReadHistoryQuantity(shop.profile, "three"), std::nullopt);
    EXPECT_EQ(ReadHistoryQuantity(shop.profile, "3.00.1"), std::nullopt);
}

TEST(HistoryRows, APathMakesItsFolderAndADayThatIsNoneHasNoPath) {
    const LTestShop shop;
    EXPECT_EQ(LGetReceiveCSVFilePath(shop.profile, {2024, 2, 30}), "");
    EXPECT_FALSE(std::filesystem::exists(shop.home.File("shop/ReceiveHistory")));
    LGetReceiveCSVFilePath(shop.profile, kMonday);
    EXPECT_TRUE(std::filesystem::is_directory(shop.home.File("shop/ReceiveHistory")));
    LReceiveRow row = Receipt({0, 0, 0});
    EXPECT_FALSE(CreateNewReceiveRecord(shop.profile, row));
    EXPECT_TRUE(std::filesystem::is_empty(shop.home.File("shop/ReceiveHistory")));
}

TEST(HistoryRows, ARowAfterAnUnfinishedLineStandsOnALineOfItsOwn) {
    const LTestShop shop;
    shop.WriteSellFile(kMonday, "1.00,5,$1.00,Main,Jones,$1.00,note");
    ASSERT_TRUE(CreateNewSellRecord(shop.profile, Sale(kMonday)));
    EXPECT_EQ(shop.SellFile(kMonday),
              "1.00,5,$1.00,Main,Jones,$1.00,note\r\n3.00,17,$4.50,Main,Smith,$13.50,\r\n");
}

TEST(HistoryRows, ARowThatCannotBeWrittenWholeLeavesNothingBehind) {
    const LTestShop shop;
    ASSERT_TRUE(CreateNewSellRecord(shop.profile, Sale(kMonday)));
    const std::string before = shop.SellFile(kMonday);
    LChildProcess child([&] {  // its files may grow by ten bytes only, less than a row
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{before.size() + 10, before.size() + 10};
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) return 2;
        return CreateNewSellRecord(shop.profile, Sale(kMonday)) ? 1 : 0;
    });
    EXPECT_EQ(child.Wait(), 0);
    EXPECT_EQ(shop.SellFile(kMonday), before);
}

TEST(HistoryRows, AValueIsFoundOnlyWholeAndInItsColumn) {
    const LTestShop shop;
    ASSERT_TRUE(CreateNewSellRecord(shop.profile, Sale(kMonday)));
    shop.home.WriteFile("shop/Sellhistory/old.csv", "1.00,\"5\",$1.00,\"Shed, left\",Jones,$1.00,");
    shop.home.WriteFile("shop/Sellhistory/notes.txt", "1.00,9,$1.00,Main,Jones,$1.00,");
    const struct {
        int column;
        const char* value;
        bool isThere;
        const char* why;
    } kCases[] = {
        {kHistoryItemId, "17", true, ""},
        {kHistoryItemId, "1", false, "a part only"},
        {kHistoryItemId, "5", true, "any .csv file counts, and quotes do not"},
        {kHistoryItemId, "9", false, "not a .csv file"},
        {kHistoryLocation, "Shed, left", true, ""},
        {kHistoryLocation, "main", false, "letter case counts"},
        {kHistoryParty, "Main", false, "another column"},
        {9, "", false, "a column that no row has"},
        {-1, "17", false, ""},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(IsValueInCsvHistory(shop.profile, kSellHistoryFolder, c.column, c.value),
                  c.isThere)
            << c.value << " " << c.why;
    }
    EXPECT_FALSE(IsValueInCsvHistory(shop.profile, kReceiveHistoryFolder, kHistoryItemId, "17"));
}

TEST(HistoryFile, AFailureInTheMiddleOfARewriteLeavesTheOldText) {
    const std::string kOld = "one\r\ntwo\r\nthree\r\n";
    for (const std::string& newText :
         {std::string("one\r\nthree\r\n"), kOld + "four\r\n", "ONE\r\n" + kOld, std::string()}) {
        for (int n = 1;; ++n) {
            const LTempFolder folder;
            folder.WriteFile("day.csv", kOld);
            bool replaced = false;
            const LFailNthFileCall fault(n, ENOSPC);
            {
                const LHistoryFile file(folder.File("day.csv"), LHistoryAccess::kRewrite);
                std::string text;
                replaced = file.Read(text) && file.Replace(text, newText);
            }
            EXPECT_EQ(folder.ReadFile("day.csv"), replaced ? newText : kOld) << "call " << n;
            if (!fault.Fired()) {
                EXPECT_TRUE(replaced);
                break;  // every call has had its turn
            }
        }
    }
}

TEST(HistoryFile, RowsAppendedBetweenTwoRewritesAreKept) {
    const LTestShop shop;
    constexpr int kRows = 150;
    ASSERT_TRUE(CreateNewSellRecord(shop.profile, Sale(kMonday)));
    LChildProcess appender([&] {
        LSellRow row = Sale(kMonday);
        row.reference = "appended";
        for (int i = 0; i < kRows; ++i) {
            if (!CreateNewSellRecord(shop.profile, row)) return 1;
            ::usleep(500);
        }
        return 0;
    });
    const std::string path = LGetSellCSVFilePath(shop.profile, kMonday);
    for (int i = 0; i < 100; ++i) {  // the first row becomes longer and shorter in turn
        ::usleep(1000);              // a lock that is always busy would starve the other side
        const LHistoryFile file(path, LHistoryAccess::kRewrite);
        std::string text;
        ASSERT_TRUE(file.Read(text));
        const std::string rest = text.substr(text.find('\n') + 1);
        const std::string first = i % 2 == 0 ? std::string(300, 'x') : std::string("x");
        ASSERT_TRUE(file.Replace(text, first + "\r\n" + rest));
    }
    EXPECT_EQ(appender.Wait(), 0);
    EXPECT_EQ(shop.SoldRows(kMonday, kMonday).size(), 1u + kRows);
}

TEST(HistoryRows, RowsOfFourProcessesNeverMix) {
    const LTestShop shop;
    constexpr int kWriters = 4;
    constexpr int kRows = 150;
    const auto write = [&](int writer) {
        for (int i = 0; i < kRows; ++i) {
            LSellRow row = Sale(kMonday);
            row.quantity = i;
            row.itemId = std::to_string(writer);
            // Long and different, so that a mixed row would show.
            row.reference.assign(static_cast<size_t>(500 + 37 * writer + i),
                                 static_cast<char>('a' + writer));
            if (!CreateNewSellRecord(shop.profile, row)) return 1;
        }
        return 0;
    };
    std::vector<std::unique_ptr<LChildProcess>> children;
    for (int writer = 0; writer < kWriters; ++writer) {
        children.push_back(std::make_unique<LChildProcess>([&, writer] { return write(writer); }));
    }
    for (const auto& child : children) EXPECT_EQ(child->Wait(), 0);

    const std::string text = shop.SellFile(kMonday);
    std::array<int, kWriters> next{};
    LCsvReader rows(text);
    std::vector<std::string> fields;
    while (rows.Next(fields)) {
        ASSERT_EQ(fields.size(), 7u);
        const auto writer = static_cast<size_t>(std::stoi(fields[kHistoryItemId]));
        ASSERT_LT(writer, next.size());
        const auto i = static_cast<size_t>(next[writer]++);
        EXPECT_EQ(fields[kHistoryQuantity], std::to_string(i) + ".00") << "in their own order";
        EXPECT_EQ(fields[kSellReference],
                  std::string(500 + 37 * writer + i, static_cast<char>('a' + writer)));
    }
    for (const int count : next) EXPECT_EQ(count, kRows);
}

}  // namespace
