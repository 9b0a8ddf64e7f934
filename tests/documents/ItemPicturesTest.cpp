// Item pictures: made small and stored as BMP; what is no honest picture is refused.
#include "documents/ItemPictures.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "documents/BmpPicture.h"
#include "documents/PictureEnds.h"

#include "platform/FileIo.h"
#include "tests/support/LTempFolder.h"

namespace {

// A picture of one colour, as a BMP file.
std::string Bmp(int width, int height, std::string_view pixel) {
    LPicture picture{width, height, {}};
    for (int i = 0; i < width * height; ++i) {
        picture.samples.insert(picture.samples.end(), pixel.begin(), pixel.end());
    }
    return FormatBmp(picture);
}

// The same bytes with a width of 100000 written into the header.
std::string Enlarged(std::string bmp) {
    bmp.replace(18, 4, std::string("\xA0\x86\x01\x00", 4));
    bmp.replace(22, 4, std::string("\xA0\x86\x01\x00", 4));
    return bmp;
}

// Two by one pixels, the left one green, the right one transparent.
constexpr std::string_view kPng(
    "\211\120\116\107\015\012\032\012\000\000\000\015\111\110\104\122\000\000\000\002"
    "\000\000\000\001\010\006\000\000\000\364\042\177\212\000\000\000\021\111\104\101"
    "\124\170\234\143\140\070\301\360\237\223\223\223\001\000\012\315\001\343\217\327"
    "\364\003\000\000\000\000\111\105\116\104\256\102\140\202",
    74);

class ItemPictures : public testing::Test {
protected:
    ItemPictures() {
        profile_.Items().CreateNewRecord(item_);
        item_.SetString("Name", "BOLT");
        item_.Flush();
    }
    std::string File(const std::string& name, std::string_view bytes) {
        home_.WriteFile(name, bytes);
        return home_.File(name);
    }
    bool Save(const std::string& path) {
        return SaveItemPicture(profile_, item_, path, GetItemPictureFile(profile_, item_));
    }
    std::string Stored() { return item_.GetString("ImageFile"); }
    int Pictures() {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(profile_.Items().Folder())) {
            count += entry.path().extension() == ".bmp";
        }
        return count;
    }
    static int IntAt(const std::string& bytes, size_t at) {
        return static_cast<unsigned char>(bytes[at]) | static_cast<unsigned char>(bytes[at + 1])
                                                           << 8;
    }

    LTempHome home_;
    LProfile profile_;
    LItem item_;
};

TEST_F(ItemPictures, AreScaledToFitWithTheirProportions) {
    struct Case {
        int width, height, shownWidth, shownHeight;
        const char* why;
    };
    const Case kCases[] = {
        {400, 100, 120, 30, "wide: the width rules"},
        {100, 400, 18, 72, "high: the height rules"},
        {10, 6, 10, 6, "a small one is not blown up"},
        {600, 1, 120, 1, "a line stays a line"},
    };
    for (const Case& c : kCases) {
        ASSERT_TRUE(Save(File("new.bmp", Bmp(c.width, c.height, "\x10\x20\xF0")))) << c.why;
        const std::string bmp = ReadFile(Stored()).value_or("");
        ASSERT_GT(bmp.size(), 57U);
        EXPECT_EQ(bmp.substr(0, 2), "BM");
        EXPECT_EQ(IntAt(bmp, 18), c.shownWidth) << c.why;
        EXPECT_EQ(IntAt(bmp, 22), c.shownHeight) << c.why;
        EXPECT_EQ(bmp.substr(54, 3), "\xF0\x20\x10") << "blue, green, red";
        const size_t rowBytes = (3 * static_cast<size_t>(c.shownWidth) + 3) / 4 * 4;
        EXPECT_EQ(bmp.size(), 54 + rowBytes * static_cast<size_t>(c.shownHeight));
        EXPECT_EQ(Pictures(), 1) << "the one before is gone";
    }
    struct stat status {};
    ASSERT_EQ(::stat(Stored().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0666U);
    EXPECT_EQ(std::filesystem::path(Stored()).parent_path(), profile_.Items().Folder());
    EXPECT_EQ(std::filesystem::path(Stored()).filename().string().size(), 11U) << "0XXXXXX.bmp";

    EXPECT_TRUE(RemoveItemPicture(profile_, item_));
    EXPECT_EQ(Stored() + std::to_string(Pictures()), "0");
}

TEST_F(ItemPictures, WhatIsNoHonestPictureIsRefusedWithoutHarm) {
    ASSERT_TRUE(Save(File("good.bmp", Bmp(2, 2, "abc"))));
    const std::string before = Stored();
    ASSERT_EQ(::mkfifo(home_.File("pipe.png").c_str(), 0600), 0);
    const std::string whole = Bmp(50, 50, "abc");
    const std::pair<std::string, const char*> kCases[] = {
        {home_.File("nothing.png"), "there is no such file"},
        {home_.File("pipe.png"), "a pipe must not keep us waiting"},
        {profile_.Items().Folder(), "a folder"},
        {File("empty.png", ""), "empty"},
        {File("page.png", "<html><script>alert(1)</script></html>"), "disguised"},
        {File("drawing.png", "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>"),
         "a drawing can name other files"},
        {File("cut.bmp", whole.substr(0, 4000)), "cut in the middle"},
        {File("huge.bmp", Enlarged(whole)), "would need 30 GB"},
        {File("cut.png", kPng.substr(0, kPng.size() - 13)), "cut in the middle"},
        {File("bad.bmp", std::string("BM") + std::string(60, '\xFF')), "sizes that cannot be"},
    };
    for (const auto& [path, why] : kCases) {
        EXPECT_FALSE(Save(path)) << why;
        EXPECT_EQ(Stored(), before) << why;
        EXPECT_EQ(Pictures(), 1) << why;
    }
    std::filesystem::resize_file(File("large.bmp", whole), 40L * 1024 * 1024);
    EXPECT_FALSE(Save(home_.File("large.bmp"))) << "too many bytes";
}

TEST_F(ItemPictures, WhatIsTransparentBecomesWhite) {
    ASSERT_TRUE(Save(File("leaf.jpg", kPng))) << "what counts is what a file holds, not its name";
    const std::string bmp = ReadFile(Stored()).value_or("");
    ASSERT_EQ(bmp.size(), 62U);
    EXPECT_EQ(bmp.substr(54), std::string("\0\xC8\0\xFF\xFF\xFF\0\0", 8));
}

TEST(PictureEnds, AreLookedForWhereEachFormatHasThem) {
    using namespace std::string_view_literals;
    struct Case {
        std::string_view format, bytes;
        bool isWhole;
        const char* why;
    };
    constexpr std::string_view kThumb = "\xFF\xD8\xFF\xE1\0\x04\xFF\xD9"sv;
    const std::string scan = std::string(kThumb) + std::string("\xFF\xDA\0\x02xyz"sv);
    const std::string whole = scan + "\xFF\xD9 and a film behind it";
    const Case kCases[] = {
        {"jpeg", whole, true, "what a phone appends does not matter"},
        {"jpeg", scan, false, "the only end is that of the thumbnail in its header"},
        {"jpeg", kThumb, false, "cut in the headers"},
        {"jpeg", "\xFF\xD8"sv, false, "cut at once"},
        {"gif", "GIF89a...;\0\0"sv, true, "zeros behind the end"},
        {"gif", "GIF89a..."sv, false, "no end"},
        {"webp", "RIFF\x04\0\0\0WEBP"sv, true, "as long as it says"},
        {"webp", "RIFF\x05\0\0\0WEBP"sv, false, "shorter than it says"},
        {"bmp", "BM"sv, false, "no header"},
        {"tiff", ""sv, true, "its reader looks for itself"},
    };
    for (const Case& c : kCases) EXPECT_EQ(IsWholePicture(c.format, c.bytes), c.isWhole) << c.why;
}

TEST_F(ItemPictures, OtherFilesThanPicturesAreNotDeleted) {
    const std::string letter = File("letter.txt", "x");
    ASSERT_TRUE(SaveItemPicture(profile_, item_, File("a.bmp", Bmp(2, 2, "abc")), letter));
    EXPECT_TRUE(FileExists(letter));
}

}  // namespace
