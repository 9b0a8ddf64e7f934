#include "platform/HangDetector.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>

namespace {

// A text that may be read while it is written: the reader then sees some of both.
template <size_t kSize>
class LOpenText {
public:
    void Set(std::string_view text) {
        const size_t size = std::min(text.size(), kSize - 1);
        for (size_t i = 0; i < size; ++i) bytes_[i].store(text[i], std::memory_order_relaxed);
        bytes_[size].store('\0', std::memory_order_relaxed);
    }
    size_t CopyTo(char* out) const {
        size_t size = 0;
        while (size < kSize - 1) {
            const char byte = bytes_[size].load(std::memory_order_relaxed);
            if (byte == '\0') break;
            out[size++] = static_cast<unsigned char>(byte) < ' ' ? '?' : byte;
        }
        return size;
    }

private:
    std::array<std::atomic<char>, kSize> bytes_{};
};

struct LSlot {
    std::atomic<int> thread{0};  // 0: free
    LOpenText<8> name;
    LOpenText<48> status;
};

constexpr size_t kMaxThreads = 512;
std::array<LSlot, kMaxThreads> slots;
std::atomic<uint32_t> command{0};
thread_local LSlot* ownSlot = nullptr;

LSlot* TakeSlot() {
    for (LSlot& slot : slots) {
        int isFree = 0;
        if (slot.thread.load(std::memory_order_relaxed) == 0 &&
            slot.thread.compare_exchange_strong(isFree, ::gettid())) {
            return &slot;
        }
    }
    return nullptr;
}

char* PutNumber(char* out, uint32_t number) {
    std::array<char, 10> digits{};
    size_t count = 0;
    do {
        digits[count++] = static_cast<char>('0' + number % 10);
        number /= 10;
    } while (number != 0);
    while (count > 0) *out++ = digits[--count];
    return out;
}

char* PutText(char* out, std::string_view text) { return std::copy(text.begin(), text.end(), out); }

void WriteLine(int fd, const char* begin, char* end) {
    *end++ = '\n';
    [[maybe_unused]] const ssize_t written =
        ::write(fd, begin, static_cast<size_t>(end - begin));  // best effort
}

}  // namespace

LHangDetectorThread::LHangDetectorThread(std::string_view name) {
    ownSlot = TakeSlot();
    if (ownSlot != nullptr) ownSlot->name.Set(name);
}

LHangDetectorThread::~LHangDetectorThread() {
    if (ownSlot == nullptr) return;
    ownSlot->name.Set("");
    ownSlot->thread = 0;
    ownSlot = nullptr;
}

LHangDetectorStatus::LHangDetectorStatus(std::string_view status) {
    if (ownSlot != nullptr) ownSlot->status.Set(status);
}

LHangDetectorStatus::~LHangDetectorStatus() {
    if (ownSlot != nullptr) ownSlot->status.Set("");
}

void LHangDetectorSetCommand(uint32_t code) { command = code; }

void LHangDetectorReport(int fd) {
    const int error = errno;
    std::array<char, 100> line{};
    for (const LSlot& slot : slots) {
        const int thread = slot.thread.load(std::memory_order_relaxed);
        if (thread == 0) continue;
        char* end = PutText(line.data(), "thread ");
        end = PutText(PutNumber(end, static_cast<uint32_t>(thread)), " ");
        end += slot.name.CopyTo(end);
        *end++ = ' ';
        end += slot.status.CopyTo(end);
        WriteLine(fd, line.data(), end);
    }
    WriteLine(fd, line.data(), PutNumber(PutText(line.data(), "command "), command));
    errno = error;
}
