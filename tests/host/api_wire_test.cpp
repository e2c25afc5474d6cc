// The control API byte by byte: requests that are none, callers who take their time, streams that nobody reads.
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <thread>

#include "host/core/descriptor.h"
#include "tests/host/apiserver.h"

namespace {

using testing::HasSubstr;

class ApiWire : public coretests::ApiTest {};

// A connection, byte by byte.
class RawCaller {
public:
    explicit RawCaller(int port) : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        if (::connect(socket_.number(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
            throw std::runtime_error("no connection");
    }
    // What was closed meanwhile takes nothing.
    void sends(std::string_view bytes) const {
        (void)::send(socket_.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    }
    void isdone() const { ::shutdown(socket_.number(), SHUT_WR); }
    // Up to the text, or the end.
    std::string hears(const std::string& until = "\r\n\r\n") {
        char buffer[16384];
        std::size_t at = 0, looked = 0;
        while ((at = heard_.find(until, looked)) == std::string::npos) {
            looked = heard_.size() - std::min(heard_.size(), until.size());
            const auto got = ::recv(socket_.number(), buffer, sizeof buffer, 0);
            if (got <= 0) return std::exchange(heard_, {});
            heard_.append(buffer, static_cast<std::size_t>(got));
        }
        std::string text = heard_.substr(0, at + until.size());
        heard_.erase(0, text.size());
        return text;
    }
    // The number in the answer's first line; 0 when the connection ends without one.
    int status() {
        const std::string first = hears();
        return first.starts_with("HTTP/1.1 ") ? std::stoi(first.substr(9)) : 0;
    }

private:
    host::Descriptor socket_;
    std::string heard_;
};

TEST_F(ApiWire, AnswersEveryKindOfMalformedRequest) {
    const std::string host = "Host: 127.0.0.1:" + std::to_string(api.port()) + "\r\n",
                      token = "Authorization: Bearer " + api.token() + "\r\n", known = host + token,
                      get = "GET /api/server HTTP/1.1\r\n", post = "POST /api/speed HTTP/1.1\r\n";
    const struct {
        const char* what;
        std::string bytes;
        int status;
    } requests[] = {
        {"nothing", "", 0},
        {"a line end only", "\r\n\r\n", 0},
        {"half a head", get + host, 0},
        {"no words", "x\r\n\r\n", 400},
        {"a word too many", "GET / / HTTP/1.1\r\n" + host + "\r\n", 400},
        {"another version", "GET / HTTP/2.0\r\n" + host + "\r\n", 400},
        {"a method that is none", "G\x01T / HTTP/1.1\r\n" + host + "\r\n", 400},
        {"a proxy's address", "GET http://127.0.0.1/ HTTP/1.1\r\n" + host + "\r\n", 400},
        {"a percent sign alone", "GET /api/%4 HTTP/1.1\r\n" + host + "\r\n", 400},
        {"one in the query", "GET /?a=%gg HTTP/1.1\r\n" + host + "\r\n", 400},
        {"a header without a colon", get + host + "what\r\n\r\n", 400},
        {"a header that goes on", get + host + "A: b\r\n c\r\n\r\n", 400},
        {"a blank before the colon", get + "Host : 127.0.0.1\r\n\r\n", 400},
        {"a zero byte", get + host + std::string("A: \0\r\n\r\n", 8), 400},
        {"two hosts", get + host + "Host: evil\r\n\r\n", 400},
        {"two lengths", post + known + "Content-Length: 2\r\nContent-Length: 3\r\n\r\n{}", 400},
        {"a length that is none", post + known + "Content-Length: -1\r\n\r\n", 400},
        {"a length beyond numbers", post + known + "Content-Length: 99999999999999999999\r\n\r\n", 413},
        {"a long body", post + known + "Content-Length: 1048577\r\n\r\n", 413},
        {"a long body of a stranger", post + host + "Content-Length: 1048577\r\n\r\n", 401},
        {"chunks", post + known + "Transfer-Encoding: chunked\r\n\r\n2\r\n{}\r\n0\r\n\r\n", 411},
        {"a head without end", get + "A: " + std::string(20'000, 'x'), 431},
        {"no host", get + token + "\r\n", 403},
        {"half a body", post + known + "Content-Length: 9\r\n\r\n{", 0},
        {"an old version", "GET / HTTP/1.0\r\n" + host + "\r\n", 200},
        {"line ends before it", "\r\n\r\n" + get + known + "\r\n", 200},
        {"only the head of a file", "HEAD / HTTP/1.1\r\n" + host + "\r\n", 200},
        {"many ranges", get + known + "Range: bytes=0-0,0-0,0-0,0-0\r\n\r\n", 200},
        {"names in any case", get + "hOsT: 127.0.0.1:" + std::to_string(api.port()) + "\r\n" + token + "\r\n", 200},
    };
    for (const auto& request : requests) {
        SCOPED_TRACE(request.what);
        RawCaller raw(api.port());
        raw.sends(request.bytes);
        raw.isdone();
        EXPECT_EQ(raw.status(), request.status);
    }
    // One behind the other, without waiting; a body that is waited with.
    RawCaller raw(api.port());
    raw.sends(get + known + "\r\n" + post + known + "Expect: 100-continue\r\nContent-Length: 14\r\n\r\n");
    EXPECT_EQ(raw.status(), 200);
    EXPECT_THAT(raw.hears(), HasSubstr("HTTP/1.1 100 "));
    raw.sends(R"({"paused":true})");
    EXPECT_EQ(raw.status(), 400) << "cut short by its length";
    EXPECT_EQ(caller->get("/api/server").status, 200);
}

TEST_F(ApiWire, SlowStrangersStopNobody) {
    const std::string host = "Host: 127.0.0.1:" + std::to_string(api.port()) + "\r\n";
    std::vector<std::unique_ptr<RawCaller>> slow;
    for (int i = 0; i < 200; ++i) {
        slow.push_back(std::make_unique<RawCaller>(api.port()));
        if (i % 3 > 0) slow.back()->sends(i % 3 > 1 ? "GET / HTTP/1.1\r\n" : "");
        ASSERT_EQ(caller->get("/api/server").status, 200);
    }
    EXPECT_EQ(slow[0]->status(), 0) << "the oldest had to go for the last";
    RawCaller body(api.port());
    body.sends("POST /api/speed HTTP/1.1\r\n" + host + "Authorization: Bearer " + api.token() +
               "\r\nContent-Length: 9\r\n\r\n{");
    EXPECT_EQ(caller->get("/api/server").status, 200);
    EXPECT_EQ(slow[197]->status(), 408) << "and the others' time comes to its end";
    EXPECT_EQ(slow[198]->status(), 0);
    EXPECT_EQ(body.status(), 408);
    EXPECT_EQ(caller->get("/api/server").status, 200);
}

TEST_F(ApiWire, EventStreamsAreLimitedAndStopNoCalls) {
    joins("Alice");
    const std::string rest =
        "token=" + api.token() + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(api.port()) + "\r\n\r\n";
    const auto opened = [&](const std::string& wish = "") {
        auto stream = std::make_unique<RawCaller>(api.port());
        stream->sends("GET /api/events?" + wish + rest);
        return stream;
    };
    std::vector<std::unique_ptr<RawCaller>> streams;
    for (int i = 0; i < 32; ++i) {
        streams.push_back(opened(i < 3 ? "player=Alice&" : ""));
        ASSERT_EQ(streams.back()->status(), 200);
    }
    const auto refused = opened();
    EXPECT_EQ(refused->status(), 503);
    EXPECT_THAT(refused->hears("}"), HasSubstr("32 event streams are open already"));
    EXPECT_EQ(caller->get("/api/server").status, 200);
    EXPECT_THAT(streams[0]->hears("event: client"), HasSubstr("event: server"));

    // A place is free as soon as its stream has been left.
    streams.pop_back();
    int status = 503;
    for (int i = 0; i < 200 && status == 503; ++i) {
        const auto next = opened();
        status = next->status();
        if (status == 503) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(status, 200);

    // Who does not read is told when he reads, and costs the others nothing.
    for (int i = 0; i < 3000; ++i) says({std::to_string(i) + std::string(1000, 'x')});
    streams[0]->hears("2999x");
    streams[1]->hears("2999x");
    api.stop();
    EXPECT_THAT(streams[2]->hears("no end but the connection's"), HasSubstr("event: heard"));
}

}  // namespace
