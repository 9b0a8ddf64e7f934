// Files of the web folder and their validators.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <filesystem>

#include "platform/FileIo.h"
#include "tests/web/server/LTestServer.h"
#include "web/server/WebFolder.h"
#include "web/static/EmbeddedFiles.h"

namespace {

// Saturday, 5 July 2025, 09:08:07 GMT.
constexpr std::time_t kTime = 1751706487;
constexpr char kModified[] = "Sat, 05 Jul 2025 09:08:07 GMT";
constexpr char kNotModified[] = "HTTP/1.1 304 Not Modified\r\n\r\n";

class StaticFiles : public testing::Test {
protected:
    void Write(const std::string& name, std::string_view text) {
        server.home.WriteFile(server.WebFile(name), text);
        const timespec time{kTime, 0};
        const std::array<timespec, 2> times{time, time};
        ASSERT_EQ(::utimensat(AT_FDCWD, PathOf(name).c_str(), times.data(), 0), 0);
    }
    std::string PathOf(const std::string& name) const {
        return server.home.File(server.WebFile(name));
    }
    std::string Ask(std::string_view path, std::string_view headers = {}) const {
        return server.Ask(Get(path, std::string(headers) + "Connection: close\r\n"));
    }
    LTestServer server;
};

TEST_F(StaticFiles, ComeWithTheirHead) {
    Write("t.css", "0123456789");
    EXPECT_EQ(Ask("/t.css"),
              "HTTP/1.1 200 OK\r\nContent-Length: 10\r\nContent-Type: text/css\r\n"
              "Accept-Ranges: bytes\r\nCache-Control: max-age=3600\r\n"
              "Last-Modified: Sat, 05 Jul 2025 09:08:07 GMT\r\nETag: '170648710'\r\n\r\n"
              "0123456789");
    Write("t.html", "");
    EXPECT_EQ(Ask("/t.html"),
              "HTTP/1.1 200 OK\r\nContent-Length: 0\r\nContent-Type: text/html\r\n"
              "Accept-Ranges: bytes\r\nCache-Control: max-age=0\r\n"
              "Last-Modified: Sat, 05 Jul 2025 09:08:07 GMT\r\nETag: '17064870'\r\n\r\n");
    Write("sub/price \"\xc3\xa9.pdf", "%PDF");
    EXPECT_EQ(Ask("/sub/price+%22%C3%A9.pdf"),
              "HTTP/1.1 200 OK\r\nContent-Length: 4\r\nContent-Type: application/pdf\r\n"
              "Accept-Ranges: bytes\r\nContent-Disposition: attachment; "
              "filename=\"price _\xc3\xa9.pdf\"; filename*=UTF-8''price%20%22%C3%A9.pdf\r\n"
              "Cache-Control: max-age=0\r\nLast-Modified: Sat, 05 Jul 2025 09:08:07 GMT\r\n"
              "ETag: '17064874'\r\n\r\n%PDF");
}

TEST_F(StaticFiles, AreNotSentToWhoHasThem) {
    Write("t.css", "0123456789");
    struct LCase {
        std::string headers;
        bool isSent;
        const char* why;
    };
    const std::string since = "If-Modified-Since: " + std::string(kModified) + "\r\n";
    const std::array<LCase, 8> kCases{{
        {"If-None-Match: '170648710'\r\n", false, "its tag"},
        {"if-none-match: \"x\", W/\"170648710\"\r\n", false, "its tag among others"},
        {"If-None-Match: '17064871'\r\n", true, "part of its tag"},
        {"If-None-Match: \r\n", true, "no tag"},
        {since, false, "its time"},
        {"If-None-Match: 'other'\r\n" + since, false, "its time beside another tag"},
        {"If-Modified-Since: Sun, 06 Jul 2025 09:08:07 GMT\r\n", true, "a later time is another"},
        {"If-None-Match: '170648710'\r\nRange: bytes=0-1\r\n", false, "the tag before the range"},
    }};
    for (const LCase& row : kCases) {
        const std::string answer = Ask("/t.css", row.headers);
        if (row.isSent) {
            EXPECT_EQ(BodyOf(answer), "0123456789") << row.why;
        } else {
            EXPECT_EQ(answer, kNotModified) << row.why;
        }
    }
    Write("t.css", "0123456789+");
    EXPECT_EQ(BodyOf(Ask("/t.css", "If-None-Match: '170648710'\r\n")), "0123456789+") << "changed";
}

TEST_F(StaticFiles, ComeInParts) {
    Write("t.js", std::string(20, 'a') + std::string(30, 'b'));
    const auto part = [](const char* length, const char* range, const std::string& body) {
        return "HTTP/1.1 206 Partial Content\r\nContent-Length: " + std::string(length) +
               "\r\nContent-Range: bytes " + range +
               "/50\r\nContent-Type: text/javascript\r\nCache-Control: max-age=3600\r\n"
               "Last-Modified: Sat, 05 Jul 2025 09:08:07 GMT\r\nETag: '170648750'\r\n\r\n" +
               body;
    };
    EXPECT_EQ(Ask("/t.js", "Range: bytes=19-20\r\n"), part("2", "19-20", "ab"));
    EXPECT_EQ(Ask("/t.js", "Range: bytes=-100\r\n"),
              part("50", "0-49", std::string(20, 'a') + std::string(30, 'b')));
    EXPECT_EQ(Ask("/t.js", "Range: bytes=5-3\r\n"),
              "HTTP/1.1 416 Requested Range Not Satisfiable\r\n\r\n");

    LTestClient client = server.Connect();
    client.Send(Get("/t.js", "Range: bytes=60-\r\n") + Get("/t.js"));
    client.ReadAnswer();
    EXPECT_EQ(BodyOf(client.ReadAnswer()).size(), 50u) << "a bad range keeps the connection";
}

TEST_F(StaticFiles, CompressedSiblingsGoToWhoTakesThem) {
    Write("t.css", "0123456789");
    const std::string gzip = "Accept-Encoding: br, gzip\r\n";
    EXPECT_EQ(BodyOf(Ask("/t.css", gzip)), "0123456789") << "there is none";
    Write("t.css.gz", "packed");
    EXPECT_EQ(Ask("/t.css", gzip),
              "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: 6\r\n"
              "Content-Type: text/css\r\nCache-Control: max-age=3600\r\n"
              "Last-Modified: Sat, 05 Jul 2025 09:08:07 GMT\r\nETag: '170648710'\r\n\r\npacked");
    EXPECT_EQ(BodyOf(Ask("/t.css", "Accept-Encoding: br\r\n")), "0123456789");
    EXPECT_EQ(BodyOf(Ask("/t.css", gzip + "Range: bytes=1-2\r\n")), "12")
        << "parts are of the file";
}

TEST_F(StaticFiles, OnlyPlainFilesAreServed) {
    std::filesystem::create_directory(PathOf("folder.css"));
    ASSERT_EQ(::mkfifo(PathOf("pipe.css").c_str(), 0600), 0);
    Write("hidden.css", "x");
    std::filesystem::create_symlink("hidden.css", PathOf("link.css"));
    for (const char* path :
         {"/folder.css", "/pipe.css", "/none.css", "/", "/a.css/", "//etc/passwd", "/a.css/x"}) {
        const std::string answer = Ask(path);
        EXPECT_TRUE(answer.starts_with("HTTP/1.1 404 Not Found\r\nContent-Length: 0")) << path;
    }
    EXPECT_EQ(BodyOf(Ask("/a.c%00ss")), "body {}") << "a byte 0 is no part of a name";
    EXPECT_EQ(BodyOf(Ask("/link.css")), "x") << "the owner's choice";
}

TEST_F(StaticFiles, LargeFilesArriveWhole) {
    std::string content;
    for (int i = 0; content.size() < 5000000; ++i) content += std::to_string(i);
    Write("large.js", content);
    EXPECT_EQ(BodyOf(Ask("/large.js")), content);
    EXPECT_EQ(BodyOf(Ask("/large.js", "Range: bytes=61439-4999999\r\n")),
              content.substr(61439, 5000000 - 61439));
    Write("batch.js", content.substr(0, 61440));
    EXPECT_EQ(BodyOf(Ask("/batch.js")), content.substr(0, 61440)) << "exactly one batch";
}

TEST_F(StaticFiles, AFileThatIsBeingWrittenIsWaitedForButNotForLong) {
    Write("t.css", "old");
    LFileDescriptor writer(::open(PathOf("t.css").c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_EQ(::flock(writer.Get(), LOCK_EX), 0);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(BodyOf(Ask("/t.css")), "old") << "sent all the same";
    EXPECT_LT(Elapsed(start).count(), 2000);

    std::thread finisher([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        EXPECT_EQ(::pwrite(writer.Get(), "new", 3, 0), 3);
        writer.Close();
    });
    EXPECT_EQ(BodyOf(Ask("/t.css")), "new");
    finisher.join();
}

TEST(WebFolder, IsFilledAndRefreshedAndOtherwiseLeftAlone) {
    const LTempFolder home;
    const std::string folder = home.File("Shared/Web");
    ASSERT_TRUE(RefreshWebFolder(folder));
    for (const LEmbeddedFile& file : EmbeddedFiles()) {
        EXPECT_EQ(ReadFile(folder + "/" + std::string(file.path)), file.content) << file.path;
    }
    const std::string first = folder + "/" + std::string(EmbeddedFiles()[0].path);
    const std::string second = folder + "/" + std::string(EmbeddedFiles()[1].path);
    struct stat before {};
    ASSERT_EQ(::stat(first.c_str(), &before), 0);
    EXPECT_EQ(before.st_mode & 0777, 0644u);
    home.WriteFile("Shared/Web/logo.png", "mine");
    home.WriteFile("Shared/Web/" + std::string(EmbeddedFiles()[1].path), "outdated");
    ASSERT_TRUE(RefreshWebFolder(folder));

    EXPECT_EQ(ReadFile(second), EmbeddedFiles()[1].content);
    EXPECT_EQ(home.ReadFile("Shared/Web/logo.png"), "mine");
    struct stat after {};
    ASSERT_EQ(::stat(first.c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino) << "what is right is not written again";
    EXPECT_EQ(home.FileCount(), static_cast<int>(EmbeddedFiles().size()) + 1);
}

TEST(WebFolder, WhatCannotBeWrittenIsToldAndHarmsNothing) {
    const LTempFolder home;
    home.WriteFile("Web", "a file where the folder should be");
    EXPECT_FALSE(RefreshWebFolder(home.File("Web")));
    EXPECT_EQ(home.FileCount(), 1);
}

}  // namespace
