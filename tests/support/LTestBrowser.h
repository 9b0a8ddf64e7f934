// A weblet in a home of its own, and a browser that keeps its cookie and speaks plain sockets.
#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "datastore/RecordText.h"
#include "datastore/UserSettings.h"
#include "platform/LFileDescriptor.h"
#include "tests/support/LTempFolder.h"
#include "web/server/LWebletServer.h"

using LTestFields = std::vector<std::pair<std::string, std::string>>;

struct LTestAnswer {
    std::string head, body;

    int Status() const { return head.size() > 12 ? std::stoi(head.substr(9, 3)) : 0; }
    // Where a redirect leads; empty for any other answer.
    std::string Location() const {
        const size_t start = head.find("\r\nLocation: ");
        if (start == std::string::npos) return {};
        return head.substr(start + 12, head.find("\r\n", start + 12) - start - 12);
    }
    bool Has(std::string_view text) const { return body.find(text) != std::string::npos; }
    // The text between `before` and the next `after`; empty when there is none.
    std::string Between(std::string_view before, std::string_view after) const {
        const size_t start = body.find(before);
        if (start == std::string::npos) return {};
        const size_t end = body.find(after, start + before.size());
        return body.substr(start + before.size(), end - start - before.size());
    }
    // The value of a hidden field.
    std::string Hidden(const std::string& name) const {
        std::string value = Between("name='" + name + "' value='", "'");
        return value.empty() ? Between("name=" + name + " value='", "'") : value;
    }
};

// A server that listens on a free port.
class LTestWeb : private LWebletServer {
public:
    LTestWeb() {
        EXPECT_TRUE(LUserSettingSetString("WebServer", "Enabled", "1"));
        StartServer();
        for (int i = 0; i < 2000 && BoundPort() == 0; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        EXPECT_NE(BoundPort(), 0);
    }
    ~LTestWeb() override { StopServer(); }
    uint16_t Port() const { return BoundPort(); }

protected:
    uint16_t ListenPort() const override { return 0; }
};

class LTestBrowser {
public:
    explicit LTestBrowser(const LTestWeb& web) : port_(web.Port()) {}

    std::string cookie;   // the session id; empty: none
    std::string headers;  // further header lines of every request, each ended by CR LF

    LTestAnswer Get(std::string_view page) { return Ask("GET", page, {}); }
    LTestAnswer Post(std::string_view page, const LTestFields& fields) {
        std::string body;
        for (const auto& [name, value] : fields) {
            body += (body.empty() ? "" : "&") + EncodeText(name) + "=" + EncodeText(value);
        }
        return Ask("POST", page, body);
    }
    // As the script of a dialog sends it: the label is not encoded.
    LTestAnswer Submit(std::string_view page, const LTestFields& fields,
                       std::string_view label = "  OK  ") {
        std::string body;
        for (const auto& [name, value] : fields) {
            body += EncodeText(name) + "=" + EncodeText(value) + "&";
        }
        return Ask("POST", page, body + "submit=" + std::string(label));
    }

    // Sends the request's text without waiting for the answer.
    LFileDescriptor Send(std::string_view method, std::string_view page, std::string_view body) {
        LFileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port_);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(
            ::connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
            0);
        std::string text = std::string(method) + " /" + std::string(page) +
                           " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n" + headers;
        if (!cookie.empty()) text += "Cookie: quillmarsh_sess=" + cookie + "\r\n";
        if (method == "POST") text += "Content-Length: " + std::to_string(body.size()) + "\r\n";
        text += "\r\n" + std::string(body);
        EXPECT_EQ(::send(socket.Get(), text.data(), text.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(text.size()));
        return socket;
    }
    // What comes within `timeoutMs`; true while the connection may bring more.
    static bool Receive(const LFileDescriptor& socket, std::string& out, int timeoutMs) {
        pollfd entry{socket.Get(), POLLIN, 0};
        if (::poll(&entry, 1, timeoutMs) <= 0) return false;
        std::array<char, 65536> buffer;
        const ssize_t count = ::recv(socket.Get(), buffer.data(), buffer.size(), 0);
        if (count > 0) out.append(buffer.data(), static_cast<size_t>(count));
        return count > 0;
    }

private:
    LTestAnswer Ask(std::string_view method, std::string_view page, std::string_view body) {
        const LFileDescriptor socket = Send(method, page, body);
        std::string text;
        while (Receive(socket, text, 20000)) {
        }
        LTestAnswer answer;
        const size_t head = text.find("\r\n\r\n");
        answer.head = text.substr(0, head == std::string::npos ? head : head + 4);
        if (head != std::string::npos) answer.body = text.substr(head + 4);
        TakeCookie(answer.body);
        return answer;
    }
    // The logon hands the session out by script.
    void TakeCookie(const std::string& body) {
        constexpr std::string_view kStart = "document.cookie = 'quillmarsh_sess=";
        const size_t start = body.find(kStart);
        if (start == std::string::npos) return;
        cookie = body.substr(start + kStart.size(), body.find(';', start) - start - kStart.size());
    }

    uint16_t port_;
};
