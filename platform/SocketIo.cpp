#include "platform/SocketIo.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "platform/PollDeadline.h"

namespace {

constexpr size_t kMaxSocketPath = 104;
// A service that hangs takes no connections off its queue; its clients must not hang with it.
constexpr int kConnectTimeoutSeconds = 10;

LSocketResult WaitFor(int fd, short events, const LSignalObject& stop, const LDeadline& deadline) {
    std::array<pollfd, 2> entries{{{stop.ReadDescriptor(), POLLIN, 0}, {fd, events, 0}}};
    if (PollUntil(entries.data(), entries.size(), deadline) <= 0) return LSocketResult::kFailed;
    if (entries[0].revents != 0) return LSocketResult::kStopped;
    return (entries[1].revents & POLLNVAL) != 0 ? LSocketResult::kFailed : LSocketResult::kOk;
}

sockaddr_un UnixAddress(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.data(), path.size());  // callers cut it to fit
    return address;
}

LFileDescriptor UnixSocket(int flags) {
    return LFileDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0));
}

bool BindAndListen(int fd, const std::string& path, int backlog) {
    const sockaddr_un address = UnixAddress(path);
    if (::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return false;
    if (::chmod(path.c_str(), 0777) == 0 && ::listen(fd, backlog) == 0) return true;
    ::unlink(path.c_str());
    return false;
}

bool Connect(int fd, const sockaddr_un& address) {
    int result = 0;
    do {
        result = ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

}  // namespace

bool PrepareSocket(int fd) {
    const int status = ::fcntl(fd, F_GETFL);
    const int flags = ::fcntl(fd, F_GETFD);
    return status >= 0 && flags >= 0 && ::fcntl(fd, F_SETFL, status | O_NONBLOCK) == 0 &&
           ::fcntl(fd, F_SETFD, flags | FD_CLOEXEC) == 0;
}

LSocketResult WaitReadable(int fd, const LSignalObject& stop, int timeoutMs) {
    return WaitFor(fd, POLLIN, stop, LDeadline(timeoutMs));
}

LSocketResult WaitWritable(int fd, const LSignalObject& stop, int timeoutMs) {
    return WaitFor(fd, POLLOUT, stop, LDeadline(timeoutMs));
}

LSocketResult ReceiveExactly(int fd, void* buffer, size_t size, const LSignalObject& stop,
                             int timeoutMs) {
    const LDeadline deadline(timeoutMs);
    auto* next = static_cast<char*>(buffer);
    while (size > 0) {
        const LSocketResult wait = WaitFor(fd, POLLIN, stop, deadline);
        if (wait != LSocketResult::kOk) return wait;
        const ssize_t count = ::recv(fd, next, size, MSG_DONTWAIT);
        if (count < 0 && (errno == EAGAIN || errno == EINTR)) continue;
        if (count <= 0) return LSocketResult::kFailed;
        next += count;
        size -= static_cast<size_t>(count);
    }
    return LSocketResult::kOk;
}

LFileDescriptor AcceptSocket(int listening) {
    int fd = -1;
    do {
        fd = ::accept4(listening, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    } while (fd < 0 && errno == EINTR);
    return LFileDescriptor(fd);
}

LFileDescriptor ListenUnix(const std::string& path, int backlog) {
    const std::string cut = path.substr(0, kMaxSocketPath);
    ::unlink(cut.c_str());
    LFileDescriptor listening = UnixSocket(SOCK_NONBLOCK);
    if (listening.IsOpen() && !BindAndListen(listening.Get(), cut, backlog)) listening.Close();
    return listening;
}

LFileDescriptor ConnectUnix(const std::string& path) {
    LFileDescriptor socket = UnixSocket(0);
    if (!socket.IsOpen()) return socket;
    const timeval timeout{kConnectTimeoutSeconds, 0};
    ::setsockopt(socket.Get(), SOL_SOCKET, SO_SNDTIMEO, &timeout, sizeof timeout);
    const sockaddr_un address = UnixAddress(path.substr(0, kMaxSocketPath));
    if (!Connect(socket.Get(), address) || !PrepareSocket(socket.Get())) socket.Close();
    return socket;
}
