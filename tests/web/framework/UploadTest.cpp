// Uploads: taking a multipart body apart, and what a dialog gets of it.
#include <filesystem>
#include <random>

#include "platform/FileIo.h"
#include "tests/web/framework/FrameworkFixture.h"
#include "web/framework/FrameworkScripts.h"
#include "web/framework/LWebDialogUploadFiles.h"
#include "web/framework/MultipartParser.h"
#include "web/framework/RunPage.h"
#include "web/framework/UploadProgress.h"

namespace {

using namespace std::string_literals;

// Writes down what it is given.
class LRecordingSink : public LMultipartSink {
public:
    bool StartPart(const LMultipartPart& part) override {
        text += "[" + part.name + (part.fileName ? "|" + *part.fileName : "") + "=";
        return true;
    }
    bool PartData(std::string_view bytes) override { return text += bytes, true; }
    bool EndPart() override { return text += "]", true; }
    std::string text;
};

constexpr std::string_view kDisposition = "Content-Disposition: form-data; name=";

std::string Part(std::string_view header, std::string_view data) {
    return FormatText("--B\r\n%s%s\r\n\r\n%s\r\n", kDisposition, header, data);
}

// What comes of `body`, fed in pieces of `step` bytes; "-" at the end when it was not complete.
std::string Parse(std::string_view body, size_t step) {
    LRecordingSink sink;
    LMultipartParser parser("B", sink);
    for (; !body.empty(); body.remove_prefix(std::min(step, body.size()))) {
        if (!parser.Feed(body.substr(0, step))) break;
    }
    return sink.text + (parser.IsComplete() ? "" : "-");
}

TEST(Multipart, HasAnAnswerForEveryBody) {
    const std::string kBoth =
        Part("a", "1") + Part("\"f\"; filename=\"C:\\x\\y.png\"", "\r\n--\0"s);
    const std::array<std::array<std::string, 3>, 14> kCases{{
        {kBoth + "--B--\r\n", "[a=1][f|C:\\x\\y.png=\r\n--\0]"s, "field and file"},
        {"preamble\r\n" + kBoth + "--B--epilogue\r\n--B\r\n", "[a=1][f|C:\\x\\y.png=\r\n--\0]"s,
         "what stands around is passed over"},
        {Part("a", "x\r\n--Bx\r\n--B -") + "--B--", "[a=x\r\n--Bx\r\n--B -]", "no delimiters"},
        {"--B \t\r\n" + std::string(kDisposition) + "a\r\n\r\nx\r\n--B--", "[a=x]", "blanks"},
        {"--B\n" + std::string(kDisposition) + "a\n\nx\r\n--B--", "[a=x]", "bare line feeds"},
        {"", "-", "nothing"},
        {Part("a", "1"), "[a=-", "cut before the last delimiter"},
        {"--B\r\n\r\nx\r\n--B--", "[=x]", "a part without a name"},
        {Part("\"a\\\"b%22\"; filename=\"%0D%0A%41\"", "") + "--B--", "[a\"b\"|\r\n%41=]",
         "escapes"},
        {Part("a; filename=", "x") + "--B--", "[a|=x]", "no file chosen"},
        {Part("a; filename*=UTF-8''x", "x") + "--B--", "[a=x]", "not for forms"},
        {Part("\"a", "x") + "--B--", "[a=x]", "an open quote"},
        {"--B\r\n" + std::string(20000, 'h') + "\r\n\r\nx\r\n--B--", "-", "endless headers"},
        {"--B" + std::string(300, ' ') + "\r\n\r\nx\r\n--B--", "", "too many blanks: none"},
    }};
    for (const auto& [body, expected, why] : kCases) {
        for (const size_t step : {size_t{1}, size_t{3}, size_t{4096}}) {
            EXPECT_EQ(Parse(body, step), expected) << why << ", in pieces of " << step;
        }
    }
}

TEST(Multipart, FindsTheBoundary) {
    EXPECT_EQ(MultipartBoundary("Multipart/Form-Data; charset=x; Boundary=\"a b\""), "a b");
    EXPECT_EQ(MultipartBoundary("multipart/form-data;boundary=ab;x"), "ab");
    for (const char* type : {"multipart/form-data", "multipart/form-data; boundary=",
                             "multipart/form-data; boundary=\"a\nb\"", "text/plain; boundary=a"}) {
        EXPECT_FALSE(MultipartBoundary(type)) << type;
    }
    EXPECT_FALSE(MultipartBoundary("multipart/form-data; boundary=" + std::string(71, 'b')));
}

TEST(MultipartFuzz, PiecesMakeNoDifference) {
    const std::array<std::string, 18> kPieces{"--B",
                                              "\r\n",
                                              "\n",
                                              "\r",
                                              "--",
                                              "-",
                                              " ",
                                              "--B--",
                                              "\r\n--B\r\n",
                                              "\r\n--B--",
                                              std::string(kDisposition) + "a\r\n\r\n",
                                              std::string(kDisposition) + "\"b\"; filename=\"c\"",
                                              "content-disposition:",
                                              "\"",
                                              ";",
                                              "\\\"",
                                              "\0"s,
                                              std::string(3000, 'x')};
    std::mt19937 random(20261121);
    for (int round = 0; round < 20000; ++round) {
        std::string body = random() % 4 == 0 ? "" : Part("a", "1");
        for (size_t count = random() % 16; count > 0; --count) {
            body += kPieces[random() % kPieces.size()];
        }
        if (random() % 3 == 0 && !body.empty()) {
            body[random() % body.size()] = static_cast<char>(random());
        }
        EXPECT_EQ(Parse(body, 1 + random() % 40), Parse(body, body.size() + 1)) << round;
    }
}

constexpr uint64_t kTestMaxBytes = 100000;

class LUploadDialog : public LWebDialogUploadFiles {
public:
    explicit LUploadDialog(LWebletForm& form) : LWebDialogUploadFiles(form, kTestMaxBytes) {
        SetTabName("t");
    }

protected:
    void Generate() override { StartRow().AddStatic("Picture").AddFileInput(5, "image/*"); }
    bool CmOk() override {
        std::string name, path, seen = GetText(1);
        for (size_t index = 0; GetUploadFile(index, name, path); ++index) {
            seen += FormatText("|%s:%s", name, ReadFile(path).value_or("unreadable"));
        }
        AnswerScript("saw '%J'", seen);
        return true;
    }
};

class Uploads : public LFrameworkTest {
protected:
    Uploads() {
        InstallFrameworkScripts();
        LWebletInstallScript("upload", WLWebDialogRun<LUploadDialog>);
        LWebletInstallPostScript("upload", [](LWebletForm& form) {
            LWebPostFileReceive(form, form.PostFiles(), kTestMaxBytes);
        });
        browser_.headers = "Content-Type: multipart/form-data; boundary=B\r\n";
    }
    static size_t FileCount() {
        std::error_code error;
        const std::filesystem::directory_iterator entries(UploadFolder(), error);
        return error ? 0 : static_cast<size_t>(std::distance(begin(entries), end(entries)));
    }
    LTestAnswer Post(const std::string& parts, const std::string& page = "upload") {
        const LFileDescriptor socket = browser_.Send("POST", page, parts + "--B--\r\n");
        LTestAnswer answer;
        while (LTestBrowser::Receive(socket, answer.body, 20000)) {
        }
        return answer;
    }
    const std::string ok_ = Part("submit", "  OK  ");
    LTestBrowser browser_ = LoggedOn();
};

TEST_F(Uploads, ReachTheDialogWithTheirFieldsAndAreGoneAfterwards) {
    const LTestAnswer page = browser_.Get("upload");
    EXPECT_TRUE(page.Has("uBrowserID = ") && page.Has("<script type='text/javascript' "
                                                      "src='postfile.js'></script>"));
    const std::string file(70000, '\xff');
    const LTestAnswer answer =
        Post(ok_ + Part("1", "\xc3\xa4 & \"x\"") + Part("5; filename=\"/a/b.png\"", "first") +
                 Part("6; filename=\"\"", "") + Part("7; filename=c", file),
             "upload?uBrowserID=1");
    EXPECT_TRUE(answer.Has("saw '\xc3\xa4 ")) << answer.body.substr(0, 300);
    EXPECT_TRUE(answer.Has("|b.png:first|c:"));
    EXPECT_TRUE(answer.Has(file));
    EXPECT_EQ(FileCount(), 0u);
}

TEST_F(Uploads, AFormThatIsNotMultipartIsReadAsUsual) {
    browser_.headers.clear();
    EXPECT_TRUE(browser_.Submit("upload", {{"1", "x"}}).Has("saw 'x'"));
}

TEST_F(Uploads, RefuseWhatIsTooMuchOrMakesNoSense) {
    const std::string refusal = "HTTP/1.1 500 Content Length Too Long\r\nConnection: close\r\n\r\n";
    EXPECT_EQ(Post(ok_ + Part("5; filename=a", std::string(100001, 'x'))).body, refusal);
    EXPECT_EQ(Post(ok_ + Part("1", std::string(3000001, 'x'))).body, refusal);
    EXPECT_EQ(Post(ok_ + std::string(3200000, 'x')).body, refusal) << "before it is read";
    EXPECT_EQ(Post("--B\r\nX").body, "") << "no end";
    browser_.headers = "Content-Type: multipart/form-data\r\n";
    EXPECT_EQ(Post(ok_).body, "") << "no boundary";
    EXPECT_EQ(FileCount(), 0u);
}

TEST_F(Uploads, StoreNothingForAStranger) {
    browser_.cookie.clear();
    const LFileDescriptor socket =
        browser_.Send("POST", "upload", Part("5; filename=a", "x") + std::string(200, 'x'));
    EXPECT_EQ(FileCount(), 0u);
    EXPECT_TRUE(Post(ok_ + Part("5; filename=a", "x")).Has("Your session is expired"));
}

TEST_F(Uploads, ShowHowFarTheyAreToTheirOwnSessionOnly) {
    LTestBrowser watcher = browser_, stranger = LoggedOn();
    watcher.headers.clear();
    LUploadProgress progress(browser_.cookie, "77", 500);
    progress.Add(123);
    EXPECT_EQ(watcher.Get("uploadProgress?uBrowserID=77").body,
              "{\"bytesRead\": 123, \"totalBytes\": 500}");
    EXPECT_EQ(stranger.Get("uploadProgress?uBrowserID=77").body,
              "{\"bytesRead\": 0, \"totalBytes\": 0}");
    EXPECT_EQ(LTestBrowser(web_).Get("uploadProgress?uBrowserID=77").body, "");
}

TEST_F(Uploads, ChosenOnATabAreKeptUntilReplacedOrDropped) {
    LWebletInstallScript("drop", [](LWebletForm& form) { DropTabData(form, "t"); });
    const std::string tab = Part("tabName", "t");
    EXPECT_TRUE(Post(tab + Part("1", "x") + Part("5; filename=a.png", "old"), "saveItemDialogTab")
                    .body.ends_with("\r\n\r\n"));
    Post(tab + Part("5; filename=b.png", "new"), "saveItemDialogTab");
    Post(tab + Part("5; filename=\"\"", ""), "saveItemDialogTab");
    EXPECT_EQ(FileCount(), 1u);
    EXPECT_TRUE(Post(ok_).Has("saw '|b.png:new'"));
    EXPECT_TRUE(Post(ok_ + Part("5; filename=c.png", "now")).Has("saw '|c.png:now'"));
    SweepUploads(LWebletSessionData::Folder());
    EXPECT_EQ(FileCount(), 1u) << "its session lives";
    browser_.headers.clear();
    browser_.Get("drop");
    EXPECT_EQ(FileCount(), 0u);
}

TEST_F(Uploads, KeptForASessionThatIsGoneAreSweptAway) {
    Post(Part("tabName", "t") + Part("5; filename=a", "x"), "saveItemDialogTab");
    std::filesystem::remove(LWebletSessionData::Folder() + "/" + browser_.cookie + ".sess");
    SweepUploads(LWebletSessionData::Folder());
    EXPECT_EQ(FileCount(), 0u);
}

}  // namespace
