#include "service/agent/LPlist.h"

#include <gtest/gtest.h>

#include "tests/support/LTempFolder.h"

TEST(LPlist, KeepsEveryKindOfValueInItsOrder) {
    LPlist inner;
    inner.SetValue("Port", 1097);
    LPlist plist;
    plist.SetValue("Label", "first");
    plist.SetValue("Sockets", inner);
    plist.SetValue("Words", LPlist::LTexts{"a", "<b> & c\x01"});
    plist.SetValue("Days", LPlist::LDictionaries{inner});
    plist.SetValue("OnDemand", false);
    plist.SetValue("Label", "again");

    std::string text = "untouched";
    int64_t number = 0;
    LPlist nested;
    EXPECT_FALSE(plist.GetValue("Words", text));
    EXPECT_FALSE(plist.GetValue("None", text));
    EXPECT_EQ(text, "untouched");
    EXPECT_TRUE(plist.GetValue("Label", text));
    EXPECT_EQ(text, "again");
    EXPECT_FALSE(plist.GetValue("Days", nested));
    ASSERT_TRUE(plist.GetValue("Sockets", nested));
    EXPECT_TRUE(nested.GetValue("Port", number));
    EXPECT_EQ(number, 1097);
    EXPECT_TRUE(plist.TestKeyExists("OnDemand"));
    EXPECT_FALSE(plist.TestKeyExists("ondemand"));

    const LTempFolder folder;
    folder.WriteFile("list", std::string(5000, 'x'));  // longer than what replaces it
    ASSERT_TRUE(plist.WriteToFile(folder.File("list")));
    const std::string written = folder.ReadFile("list");
    EXPECT_EQ(written.substr(written.find("<dict>")),
              "<dict>\n"
              "   <key>Label</key>\n"
              "   <string>again</string>\n"
              "   <key>Sockets</key>\n"
              "   <dict>\n"
              "      <key>Port</key>\n"
              "      <integer>1097</integer>\n"
              "   </dict>\n"
              "   <key>Words</key>\n"
              "   <array>\n"
              "      <string>a</string>\n"
              "      <string>&lt;b&gt; &amp; c</string>\n"
              "   </array>\n"
              "   <key>Days</key>\n"
              "   <array>\n"
              "      <dict>\n"
              "         <key>Port</key>\n"
              "         <integer>1097</integer>\n"
              "      </dict>\n"
              "   </array>\n"
              "   <key>OnDemand</key>\n"
              "   <false/>\n"
              "</dict>\n"
              "</plist>\n");
}
