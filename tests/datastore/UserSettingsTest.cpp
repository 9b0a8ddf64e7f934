#include "datastore/UserSettings.h"

#include <gtest/gtest.h>

#include "datastore/LSettingsListTemplate.h"
#include "datastore/SharedSettings.h"
#include "platform/LPreferences.h"
#include "tests/support/LTempFolder.h"

namespace {

TEST(UserSettings, AreKeptUnderSectionAndName) {
    const LTempHome home;
    EXPECT_FALSE(LUserSettingTestExists("WebServer", "Port"));
    EXPECT_EQ(LUserSettingGetString("WebServer", "Port", "none"), "none");
    ASSERT_TRUE(LUserSettingSetString("WebServer", "Port", "1097"));
    ASSERT_TRUE(LUserSettingSetString("A/B/", "c", ""));
    EXPECT_EQ(PreferencesGet("WebServer/Port"), "1097");
    EXPECT_EQ(PreferencesGet("A/B/c"), "") << "a section that ends with / gets no second one";
    EXPECT_TRUE(LUserSettingTestExists("A/B", "c"));
    EXPECT_EQ(LUserSettingGetString("A/B", "c", "none"), "") << "stored empty is not absent";
}

TEST(UserSettings, DeletingTakesThePasswordToo) {
    const LTempHome home;
    ASSERT_TRUE(LUserSettingSetString("Mail", "Login", "plain"));
    ASSERT_TRUE(LUserSettingSetPassword("Mail", "Login", "secret"));
    EXPECT_TRUE(LUserSettingDeleteItem("Mail", "Login"));
    EXPECT_FALSE(LUserSettingTestExists("Mail", "Login"));
    EXPECT_FALSE(LUserSettingTestExists("Mail", "__Login"));
    EXPECT_TRUE(LUserSettingDeleteItem("Mail", "Login")) << "nothing left is no failure";
}

TEST(Passwords, AreEncipheredAtRest) {
    const LTempHome home;
    const std::string longest(259, 'x');
    for (const std::string& password : {std::string("s3cret & Ümläut"), std::string(), longest}) {
        ASSERT_TRUE(LUserSettingSetPassword("Mail", "Password", password));
        EXPECT_EQ(LUserSettingGetPassword("Mail", "Password", "default"), password);
        const std::string stored = PreferencesGet("Mail/__Password").value_or("");
        EXPECT_GE(stored.size(), 38u);
        EXPECT_EQ(stored.find("s3cret"), std::string::npos);
        ASSERT_TRUE(LUserSettingSetPassword("Mail", "Password", password));
        EXPECT_NE(PreferencesGet("Mail/__Password"), stored) << "two of one text look different";
    }
}

TEST(Passwords, WhatIsForeignReadsAsTheDefault) {
    const LTempHome home;
    EXPECT_EQ(LUserSettingGetPassword("Mail", "Password", "default"), "default");
    for (const std::string& text : {std::string("plain"), std::string("AAAA"), std::string("===="),
                                    std::string(40, 'A'), std::string("\xFF\xFF\xFF\xFF")}) {
        ASSERT_TRUE(PreferencesSet("Mail/__Password", text));
        EXPECT_EQ(LUserSettingGetPassword("Mail", "Password", "default"), "default") << text;
    }
    ASSERT_TRUE(PreferencesSet("Mail/__Password", ""));
    EXPECT_EQ(LUserSettingGetPassword("Mail", "Password", "default"), "");

    ASSERT_TRUE(LUserSettingSetPassword("Mail", "Password", "secret"));
    const std::string stored = PreferencesGet("Mail/__Password").value_or("");
    ASSERT_TRUE(PreferencesSet("Mail/__Other", stored));
    EXPECT_EQ(LUserSettingGetPassword("Mail", "Other", "default"), "default")
        << "stored for one setting, moved to another";
}

template <typename Record>
class SettingsList : public testing::Test {
protected:
    std::vector<int> Numbers() const {
        std::vector<int> numbers;
        for (LSettingsListIteratorTemplate<Record> i(list_); i.IsValid(); i.Next()) {
            numbers.push_back(i.Number());
        }
        return numbers;
    }
    const LTempHome home_;
    LSettingsListTemplate<Record> list_{"Printers"};
};
using RecordTypes = testing::Types<LUserSettingsRecord, LSharedSettingsRecord>;
TYPED_TEST_SUITE(SettingsList, RecordTypes);

TYPED_TEST(SettingsList, KeepsNumberedRecords) {
    EXPECT_EQ(this->Numbers(), std::vector<int>{});
    for (const int number : {1, 2, 3}) {
        ASSERT_EQ(this->list_.CreateNewRecord(), number);
        ASSERT_TRUE(this->list_.Open(number).SetString("Name", "P" + std::to_string(number)));
    }
    EXPECT_EQ(this->list_.Open(2).GetString("Name"), "P2");
    EXPECT_TRUE(this->list_.Delete(2));
    EXPECT_FALSE(this->list_.Delete(2));
    EXPECT_EQ(this->list_.Open(2).GetString("Name", "gone"), "gone");
    EXPECT_EQ(this->Numbers(), (std::vector{1, 3}));
    EXPECT_EQ(this->list_.CreateNewRecord(), 2) << "a freed number is used again";
    EXPECT_EQ(this->list_.Open(2).GetString("Name", "new"), "new");
    EXPECT_EQ(this->list_.Open(3).GetString("Name"), "P3");
}

}  // namespace
