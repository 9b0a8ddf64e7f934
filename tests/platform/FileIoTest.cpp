#include "platform/FileIo.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/LFileDescriptor.h"
#include "platform/LTempFile.h"
#include "tests/support/LFailNthFileCall.h"
#include "tests/support/LTempFolder.h"

namespace {

unsigned ModeOf(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

// The service runs without a mask; nothing may rely on one.
class LScopedMask {
public:
    explicit LScopedMask(mode_t mask) : old_(::umask(mask)) {}
    ~LScopedMask() { ::umask(old_); }

private:
    mode_t old_;
};

bool Replace(const std::string& path, std::string_view text) {
    LTempFile file(path);
    return file.Write(text) && file.Commit();
}

}  // namespace

TEST(FileIo, ReadsWholeFilesAndNothingElse) {
    LTempFolder folder;
    const std::string large(3'000'000, 'x');  // more than the first guess at a size
    folder.WriteFile("large", large);
    folder.WriteFile("empty", "");
    ASSERT_EQ(::mkfifo(folder.File("pipe").c_str(), 0600), 0);

    EXPECT_TRUE(ReadFile(folder.File("large")) == large);
    EXPECT_EQ(ReadFile(folder.File("empty")), "");
    EXPECT_EQ(ReadFile(folder.File("missing")), std::nullopt);
    EXPECT_EQ(ReadFile(folder.Path()), std::nullopt);
    EXPECT_EQ(ReadFile(folder.File("pipe")), "") << "nobody writes there, and nobody waits";
    EXPECT_FALSE(ReadFile("/proc/self/status").value_or("").empty()) << "has a size of 0";
}

TEST(LTempFile, ReplacesItsTargetOnCommitOnly) {
    LTempFolder folder;
    folder.WriteFile("target", "old");
    {
        LTempFile file(folder.File("target"));
        ASSERT_TRUE(file.Write("half"));
        EXPECT_EQ(folder.ReadFile("target"), "old");
    }
    EXPECT_EQ(folder.ReadFile("target"), "old");
    EXPECT_EQ(folder.FileCount(), 1);

    LTempFile file(folder.File("target"));
    ASSERT_TRUE(file.Write("n") && file.Write("ew"));
    ASSERT_TRUE(file.Commit());
    EXPECT_FALSE(file.Commit()) << "once only";
    EXPECT_EQ(folder.ReadFile("target"), "new");
    EXPECT_EQ(ModeOf(folder.File("target")), 0600u);
    EXPECT_EQ(folder.FileCount(), 1);
}

TEST(LTempFile, ANameOfTheGreatestLengthCanBeReplaced) {
    LTempFolder folder;
    const std::string name(255, 'n');
    EXPECT_TRUE(Replace(folder.File(name), "x"));
    EXPECT_EQ(folder.ReadFile(name), "x");
}

TEST(LTempFile, AFullDiskAtAnyMomentLeavesTheOldOrTheNewFile) {
    int failures = 0;
    for (int n = 1;; ++n) {
        LTempFolder folder;
        folder.WriteFile("target", "old");
        LFailNthFileCall fault(n, ENOSPC);
        errno = 0;
        const bool replaced = Replace(folder.File("target"), "new");
        if (!fault.Fired()) break;
        if (!replaced) {
            EXPECT_EQ(errno, ENOSPC) << "call " << n;
            ++failures;
        }
        EXPECT_EQ(folder.ReadFile("target"), replaced ? "new" : "old") << "call " << n;
        EXPECT_EQ(folder.FileCount(), 1) << "call " << n << " left a temporary file";
        ASSERT_LT(n, 100);
    }
    EXPECT_EQ(failures, 4) << "opening, writing, flushing and renaming all count";
}

TEST(LTempFile, AnIncompleteTextIsNeverCommitted) {
    LTempFolder folder;
    folder.WriteFile("target", "old");
    LTempFile file(folder.File("target"));
    {
        LFailNthFileCall fault(1, ENOSPC);
        ASSERT_FALSE(file.Write("first half"));
    }
    EXPECT_FALSE(file.Write("second half"));
    EXPECT_FALSE(file.Commit());
    EXPECT_EQ(folder.ReadFile("target"), "old");
    EXPECT_EQ(folder.FileCount(), 1);
}
