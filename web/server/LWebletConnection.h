// The two directions of one client's connection: buffered reading, sending within budgets.
#pragma once

#include <sys/uio.h>

#include <atomic>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/LFileDescriptor.h"
#include "platform/LSignalObject.h"
#include "platform/PollDeadline.h"
#include "platform/SocketIo.h"

// What a wait for the client came to.
enum class LClientWait { kSentMore, kSilent, kGone, kStopped };

// Belongs to one connection thread. When `stop` is set every wait for input ends at once, and the
// waits of an answer that is being sent soon after.
class LWebletConnection {
public:
    // `socket` is non-blocking. `stop` and `stopping` outlive the connection.
    LWebletConnection(LFileDescriptor socket, const LSignalObject& stop,
                      const std::atomic<bool>& stopping)
        : socket_(std::move(socket)), stop_(stop), stopping_(stopping) {}

    // Whether the server is ending. Costs nothing, unlike asking the stop signal: a client that
    // never lets us wait is to be told between two answers too.
    bool IsStopping() const { return stopping_.load(std::memory_order_relaxed); }
    // For a handler that waits for something else than the client.
    const LSignalObject& StopSignal() const { return stop_; }

    // Whether the server is ending and the answer that is being sent has had its last moments.
    bool MustBreakOff() { return IsStopping() && LastAnswerEnd().RemainingMs() == 0; }

    // Reads up to and with the next line feed into `line`, which then lacks the line feed and a
    // carriage return before it. kFailed when the line is longer than `maxBytes`, not whole after
    // `timeoutMs`, or when the client has gone.
    LSocketResult ReadLine(std::string& line, size_t maxBytes, int timeoutMs);
    // Appends exactly `size` bytes to `out`; `timeoutMs` is for all of them.
    LSocketResult ReadExactly(std::string& out, size_t size, int timeoutMs);
    // Reads at least one byte, at most what `out` takes; `count` tells how many.
    LSocketResult ReadSome(std::span<char> out, size_t& count, int timeoutMs);

    // Waits until the client sends something, which then is there to be read, or has gone.
    LClientWait WaitForClient(int timeoutMs);

    // Whether the client has sent more than was read so far, as far as this side knows.
    bool HasUnreadInput() const { return start_ < end_; }
    // A refusal leaves part of the request unread; the end of the connection then takes care that
    // the client still gets to read the answer.
    void SetInputLeft(bool isLeft) { inputLeft_ = isLeft; }
    bool IsInputLeft() const { return inputLeft_; }
    // The client gets no answer, so its end need not be gentle either.
    void ForgetInput() {
        start_ = end_ = 0;
        inputLeft_ = false;
    }

    // Sends all of `text`; `budgetMs` counts from the first time that the client cannot keep up.
    LSocketResult ProcessSend(std::string_view text, int budgetMs);
    // Sends the pieces with as few calls as possible, each with its own budget. They are used up.
    LSocketResult SendPieces(std::span<iovec> pieces, int pieceBudgetMs);

    // Sends the end and closes.
    void Close();

private:
    class LBudget;
    LSocketResult Fill(LBudget& budget);
    LSocketResult WaitForInput(LBudget& budget);
    LSocketResult WaitForRoom(LBudget& budget);
    const LDeadline& LastAnswerEnd();
    void Linger();

    LFileDescriptor socket_;
    const LSignalObject& stop_;
    const std::atomic<bool>& stopping_;
    // On the heap and only while there is something in it: thousands of connections wait.
    std::unique_ptr<char[]> buffer_;
    size_t start_ = 0, end_ = 0;  // what was received and not yet read
    bool inputLeft_ = false;
    bool hasAnswered_ = false;                // and not waited since
    std::optional<LDeadline> lastAnswerEnd_;  // set once it is known that the server ends
};
