#include "tests/web/server/LTestServer.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cstdlib>

#include "datastore/UserSettings.h"

LTestClient::LTestClient(uint16_t port)
    : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const auto* generic = reinterpret_cast<const sockaddr*>(&address);
    if (::connect(socket_.Get(), generic, sizeof address) != 0) socket_.Close();
}

void LTestClient::Send(std::string_view text) const {
    while (!text.empty()) {
        const ssize_t count = ::send(socket_.Get(), text.data(), text.size(), MSG_NOSIGNAL);
        if (count <= 0) return;
        text.remove_prefix(static_cast<size_t>(count));
    }
}

void LTestClient::EndInput() const { ::shutdown(socket_.Get(), SHUT_WR); }

bool LTestClient::Receive(int timeoutMs) {
    pollfd entry{socket_.Get(), POLLIN, 0};
    if (ended_ || ::poll(&entry, 1, timeoutMs) <= 0) return false;
    std::array<char, 65536> buffer;
    const ssize_t count = ::recv(socket_.Get(), buffer.data(), buffer.size(), 0);
    if (count <= 0) {
        ended_ = true;
        return false;
    }
    received_.append(buffer.data(), static_cast<size_t>(count));
    return true;
}

std::string LTestClient::ReadToEnd(int timeoutMs) {
    const auto start = std::chrono::steady_clock::now();
    for (;;) {
        const int left = timeoutMs - static_cast<int>(Elapsed(start).count());
        if (left <= 0 || !Receive(left)) break;
    }
    return std::exchange(received_, {});
}

std::string LTestClient::ReadAnswer() {
    size_t head = std::string::npos;
    while ((head = received_.find("\r\n\r\n")) == std::string::npos) {
        if (!Receive(10000)) return std::exchange(received_, {});
    }
    size_t size = head + 4;
    const size_t length = received_.find("Content-Length: ");
    if (length < head) size += std::strtoull(received_.c_str() + length + 16, nullptr, 10);
    while (received_.size() < size && Receive(10000)) {
    }
    const std::string answer = received_.substr(0, size);
    received_.erase(0, size);
    return answer;
}

bool LTestWeblet::WaitUntilListening() const {
    return Eventually([this] { return BoundPort() != 0; });
}

LTestServer::LTestServer() {
    EXPECT_TRUE(LUserSettingSetString("WebServer", "Enabled", "1"));
    home.WriteFile(WebFile("a.css"), "body {}");
    weblet.StartServer();
    EXPECT_TRUE(weblet.WaitUntilListening());
}

std::string LTestServer::WebFile(std::string_view name) const {
    return "data/Quillmarsh/Shared/Web/" + std::string(name);
}

std::string LTestServer::Ask(std::string_view request) const {
    LTestClient client = Connect();
    client.Send(request);
    return client.ReadToEnd();
}

std::string Get(std::string_view path, std::string_view headers) {
    return "GET " + std::string(path) + " HTTP/1.1\r\nHost: localhost\r\n" + std::string(headers) +
           "\r\n";
}

std::string Post(std::string_view path, std::string_view body, std::string_view headers) {
    return "POST " + std::string(path) +
           " HTTP/1.1\r\nHost: localhost\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\n" + std::string(headers) + "\r\n" + std::string(body);
}

std::string BodyOf(const std::string& answer) {
    const size_t head = answer.find("\r\n\r\n");
    return head == std::string::npos ? std::string() : answer.substr(head + 4);
}
