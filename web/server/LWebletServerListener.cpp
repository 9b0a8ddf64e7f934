#include "web/server/LWebletServerListener.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>
#include <memory>

#include "platform/SocketIo.h"
#include "service/control/LServiceLog.h"
#include "web/server/LWebletConnectionThread.h"
#include "web/server/WebletOutput.h"

namespace {

constexpr int kRetryMs = 30000;
constexpr int kBacklog = 50;
constexpr int kSendBufferBytes = 32768;
constexpr int kShortageMs = 100;

bool SetOption(int socket, int level, int option, int value) {
    return ::setsockopt(socket, level, option, &value, sizeof value) == 0;
}

// What no client is to blame for and what passes when another connection ends.
bool IsShortage(int error) {
    return error == EMFILE || error == ENFILE || error == ENOBUFS || error == ENOMEM;
}

}  // namespace

LWebletServerListener::~LWebletServerListener() {
    StopAndJoin();
    StopConnections();
}

void LWebletServerListener::Configure(uint16_t port, std::string webFolder) {
    port_ = port;
    webFolder_ = std::move(webFolder);
    boundPort_ = 0;
}

void LWebletServerListener::StopConnections() {
    stopping_ = true;
    connections_.StopAll();
    stopping_ = false;
    stopConnections_.Reset();
}

void LWebletServerListener::ThreadFunction() {
    do {
        const LFileDescriptor listening = Listen();
        if (listening.IsOpen()) AcceptClients(listening.Get());
        boundPort_ = 0;
    } while (!IsStopRequested() && !StopSignal().Wait(kRetryMs));
}

// Accepted sockets inherit the send buffer and the immediate sending of small pieces.
LFileDescriptor LWebletServerListener::Listen() {
    LFileDescriptor listening(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!listening.IsOpen()) return listening;
    SetOption(listening.Get(), SOL_SOCKET, SO_SNDBUF, kSendBufferBytes);
    SetOption(listening.Get(), SOL_SOCKET, SO_REUSEADDR, 1);
    SetOption(listening.Get(), IPPROTO_TCP, TCP_NODELAY, 1);
    if (!Bind(listening.Get()) || ::listen(listening.Get(), kBacklog) != 0) {
        if (errno == EADDRINUSE) {
            BindConflict();
        } else {
            LServiceLog(std::string("Webserver cannot listen: ") + std::strerror(errno), {},
                        kLogError);
        }
        listening.Close();
        return listening;
    }
    Listening(listening.Get());
    return listening;
}

bool LWebletServerListener::Bind(int socket) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port_);
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    return ::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

void LWebletServerListener::BindConflict() {
    bindConflict_ = true;
    LServiceLog("Webserver cannot bind to TCP/IP port.", {}, kLogError);
    LServiceLog(FormatText("Some other program may be using port %d.", port_), {}, kLogError);
}

void LWebletServerListener::Listening(int socket) {
    bindConflict_ = false;
    sockaddr_in address{};
    socklen_t size = sizeof address;
    if (::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) == 0) {
        boundPort_ = ntohs(address.sin_port);
    }
}

void LWebletServerListener::AcceptClients(int listening) {
    while (WaitReadable(listening, StopSignal()) == LSocketResult::kOk && AcceptClient(listening)) {
    }
}

// False when the listening socket is of no more use, or when the thread is to stop.
bool LWebletServerListener::AcceptClient(int listening) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    LFileDescriptor client(::accept4(listening, reinterpret_cast<sockaddr*>(&address), &size,
                                     SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (client.IsOpen()) {
        shortageTold_ = false;
        NewConnection(std::move(client), ntohl(address.sin_addr.s_addr));
        return true;
    }
    if (errno == ECONNABORTED || errno == EAGAIN || errno == EINTR) return true;
    if (IsShortage(errno)) return WaitOutShortage();
    LServiceLog("cannot accept web connections", std::strerror(errno), kLogError);
    return false;
}

// The clients that wait keep their place in the queue meanwhile: giving the port up for half a
// minute because somebody opened too many connections would turn everybody away.
bool LWebletServerListener::WaitOutShortage() {
    if (!shortageTold_) {
        LServiceLog("cannot accept a web connection yet", std::strerror(errno), kLogWarning);
    }
    shortageTold_ = true;
    return !StopSignal().Wait(kShortageMs);
}

void LWebletServerListener::NewConnection(LFileDescriptor socket, uint32_t address) {
    lastClientAddress_ = address;
    // Where no thread can be had the client sees its connection closed.
    connections_.Start(std::make_unique<LWebletConnectionThread>(
        std::move(socket), address, webFolder_, stopConnections_, stopping_));
}
