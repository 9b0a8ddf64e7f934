#include "web/framework/OneTimeTokens.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <deque>
#include <unordered_set>
#include <vector>

#include "datastore/CsvText.h"
#include "platform/LMutex.h"
#include "platform/RandomSource.h"
#include "web/server/LWebletForm.h"
#include "web/server/WebletOutput.h"

// A token is KEY-TIME.LETTERS: the session's key, which proves that a page of this session made it,
// and a stamp of its own, which says whether it was taken. The session keeps its key, the stamps
// taken last, and the youngest time among the stamps that it had to forget: a token as old as that
// cannot be told from a forgotten one and is refused.

namespace {

constexpr std::string_view kKeyName = "formKey";
constexpr std::string_view kSpentName = "formSpent";
constexpr std::string_view kForgottenName = "formForgotten";
constexpr size_t kMaxSpentInSession = 100;
constexpr size_t kMaxSpentInProcess = 10000;

// The stamps taken in this process. The session's lock is given up after some seconds of waiting;
// this set then still lets one request through only.
class LSpentStamps {
public:
    bool Insert(const std::string& stamp) {
        const LMutexLock lock(mutex_);
        if (!stamps_.insert(stamp).second) return false;
        order_.push_back(stamp);
        if (order_.size() > kMaxSpentInProcess) {
            stamps_.erase(order_.front());
            order_.pop_front();
        }
        return true;
    }
    void Remove(const std::string& stamp) {
        const LMutexLock lock(mutex_);
        stamps_.erase(stamp);
        std::erase(order_, stamp);
    }

private:
    LMutex mutex_;
    std::unordered_set<std::string> stamps_ L_GUARDED_BY(mutex_);
    std::deque<std::string> order_ L_GUARDED_BY(mutex_);  // oldest first
};

LSpentStamps& SpentStamps() {
    static LSpentStamps stamps;
    return stamps;
}

int64_t NowMs() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

int64_t TimeOf(std::string_view stamp) {
    int64_t time = 0;
    std::from_chars(stamp.data(), stamp.data() + stamp.size(), time);
    return time;
}

// The stamp of a token of this session; empty for any other text.
std::string StampOf(const LWebletSessionData& session, std::string_view token) {
    const std::string key = session.GetString(kKeyName);
    const size_t dash = token.find('-');
    if (key.empty() || dash == std::string_view::npos) return {};
    // A shared key of a session that only its own pages know: no need to hide how long this takes.
    if (token.substr(0, dash) != key || token.size() > 64) return {};
    return std::string(token.substr(dash + 1));
}

void RememberSpent(LWebletSessionData& session, std::vector<std::string> spent) {
    if (spent.size() > kMaxSpentInSession) {
        const int64_t forgotten =
            std::max(TimeOf(spent.front()), TimeOf(session.GetString(kForgottenName)));
        session.SetString(kForgottenName, FormatText("%d", forgotten));
        spent.erase(spent.begin());
    }
    session.SetString(kSpentName, FormatCsvRow(spent));
}

}  // namespace

std::string IssueOneTimeToken(LWebletForm& form) {
    LWebletSessionData& session = form.Session();
    if (!session.IsLoaded()) return {};
    if (!session.TestExists(kKeyName)) {
        session.SetDirty();  // another request may just have made the key
        if (!session.TestExists(kKeyName)) session.SetString(kKeyName, RandomLetters(24));
    }
    return FormatText("%s-%d.%s", session.GetString(kKeyName), NowMs(), RandomLetters(8));
}

LTokenAnswer TakeOneTimeToken(LWebletForm& form, std::string_view token) {
    LWebletSessionData& session = form.Session();
    if (!session.IsLoaded()) return LTokenAnswer::kUnknown;
    session.SetDirty();  // waits for a request that works with a token of this session
    const std::string stamp = StampOf(session, token);
    if (stamp.empty()) return LTokenAnswer::kUnknown;

    std::vector<std::string> spent = ParseCsvRow(session.GetString(kSpentName));
    if (std::find(spent.begin(), spent.end(), stamp) != spent.end()) return LTokenAnswer::kSpent;
    if (TimeOf(stamp) <= TimeOf(session.GetString(kForgottenName))) return LTokenAnswer::kUnknown;
    if (!SpentStamps().Insert(session.Id() + stamp)) return LTokenAnswer::kSpent;
    spent.push_back(stamp);
    RememberSpent(session, std::move(spent));
    return LTokenAnswer::kTaken;
}

void GiveBackOneTimeToken(LWebletForm& form, std::string_view token) {
    LWebletSessionData& session = form.Session();
    const std::string stamp = StampOf(session, token);
    if (stamp.empty()) return;
    std::vector<std::string> spent = ParseCsvRow(session.GetString(kSpentName));
    std::erase(spent, stamp);
    session.SetString(kSpentName, FormatCsvRow(spent));
    SpentStamps().Remove(session.Id() + stamp);
}
