// Calls to web services: whom they trust, where they follow, and that nobody out there can hold them or fill the
// memory.
#include <gmock/gmock.h>

#include <future>

#include "host/http/httpclient.h"
#include "tests/host/coretools.h"
#include "tests/host/webservice.h"

namespace {

using coretests::Authority;
using coretests::MuteService;
using coretests::WebService;
using host::HttpClient;
using host::WebUrl;
using testing::ElementsAre;
using testing::HasSubstr;

class Http : public testing::Test {
protected:
    Http() { authority.write(trusted); }

    // "status text", or "none" when there was no response and status and text were left alone.
    static std::string got(HttpClient& client, const std::string& url, int seconds = 10) {
        int status = -1;
        std::string text = "untouched";
        const bool came = client.get(url, status, text, seconds);
        if (!came) return status == -1 && text == "untouched" ? "none" : "touched";
        return std::to_string(status) + " " + text;
    }

    coretests::Directory directory;
    coretests::Complaints complaints;
    const Authority authority;
    const std::string trusted = (directory.path / "trusted.pem").string();
    HttpClient client{trusted, complaints.complain};
};

TEST_F(Http, AnswersComeAsTheyAre) {
    const WebService service(authority, [](const auto& request, auto& response) {
        response.status = request.path == "/refused" ? 403 : 200;
        response.set_content("<" + request.method + request.body + ">", "text/plain");
    });
    EXPECT_EQ(got(client, service.address() + "/here?a=1#part"), "200 <GET>");
    EXPECT_EQ(got(client, service.address()), "200 <GET>");
    EXPECT_EQ(got(client, service.address() + "/refused"), "403 <GET>");
    int status = 0;
    std::string text;
    EXPECT_TRUE(client.post(service.address() + "/in", "application/json", "{}", status, text, 10));
    EXPECT_EQ(text, "<POST{}>");
    const auto asked = service.asked();
    EXPECT_EQ(asked.at(0).path, "/here?a=1");
    EXPECT_EQ(asked.at(1).path, "/");
    EXPECT_EQ(asked.at(3).type, "application/json");
}

TEST_F(Http, OnlyACertificateThatVerifiesIsTrusted) {
    const auto hello = [](const auto&, auto& response) { response.set_content("hello", "text/plain"); };
    const Authority stranger;
    const WebService good(authority, hello), foreign(stranger, hello), othername(authority, hello, "elsewhere"),
        expired(authority, hello, "localhost", -3600);
    EXPECT_EQ(got(client, good.address()), "200 hello");
    HttpClient bysystem({}, complaints.complain), bynothing(trusted + ".missing", complaints.complain);
    EXPECT_EQ(got(bysystem, good.address()), "none");
    EXPECT_EQ(got(bynothing, good.address()), "none");
    for (const auto* service : {&foreign, &othername, &expired}) EXPECT_EQ(got(client, service->address()), "none");
    for (const auto* service : {&foreign, &othername, &expired})
        EXPECT_TRUE(service->asked().empty()) << "nothing is said to somebody who is not trusted";
    EXPECT_EQ(complaints.lines,
              std::vector<std::string>(5, "localhost: the certificate does not verify, the call was given up"));
}

TEST_F(Http, RedirectsLeadOverTlsAndToAnEnd) {
    std::string elsewhere;
    const auto lead = [&](const httplib::Request& request, httplib::Response& response) {
        static const std::map<std::string, std::string> signs = {
            {"/moved", "/there"}, {"/loop", "/loop"}, {"/scheme", "ftp://localhost/"}, {"/relative", "there"}};
        const auto sign = signs.find(request.path);
        const std::string target = sign != signs.end() ? sign->second : elsewhere;
        if (request.path != "/there") response.set_redirect(target);
        response.set_content(request.path, "text/plain");
    };
    const WebService secure(authority, lead), plain(lead);
    elsewhere = plain.address() + "/there";
    EXPECT_EQ(got(client, secure.address() + "/moved"), "200 /there");
    EXPECT_EQ(got(client, secure.address() + "/down"), "302 /down");
    EXPECT_EQ(got(client, secure.address() + "/scheme"), "302 /scheme");
    EXPECT_EQ(got(client, secure.address() + "/relative"), "302 /relative");
    EXPECT_EQ(got(client, plain.address() + "/moved"), "302 /moved");
    auto before = secure.asked().size();
    EXPECT_EQ(got(client, secure.address() + "/loop"), "302 /loop");
    EXPECT_EQ(secure.asked().size() - before, 1 + HttpClient::mostredirects);
    elsewhere = secure.address() + "/there";
    EXPECT_EQ(got(client, plain.address() + "/up"), "200 /there");

    before = secure.asked().size();
    int status = 0;
    std::string text;
    EXPECT_TRUE(client.post(secure.address() + "/moved", "text/plain", "x", status, text, 10));
    EXPECT_EQ(status, 302);
    EXPECT_EQ(secure.asked().size() - before, 1);
}

// A line of plain bytes, so that a response may be as it should never be.
class RawService {
public:
    RawService(const std::string& head, const std::string& more)
        : thread_([this, head, more] {
              const int line = listening_.takecall();
              line_.set_value(line);
              ::send(line, head.data(), head.size(), MSG_NOSIGNAL);
              while (::send(line, more.data(), more.size(), MSG_NOSIGNAL) > 0) {
                  if (more.size() < 100) std::this_thread::sleep_for(std::chrono::milliseconds(50));
              }
          }) {}
    ~RawService() {
        const int line = line_.get_future().get();
        ::shutdown(line, SHUT_RDWR);
        thread_.join();
        ::close(line);
    }
    [[nodiscard]] std::string address() const { return "http://" + listening_.authority(); }

private:
    MuteService listening_;
    std::promise<int> line_;
    std::thread thread_;
};

TEST_F(Http, NoResponseIsLongerThanItMayBe) {
    const std::string ok = "HTTP/1.1 200 OK\r\n", flood(64 * 1024, 'x');
    struct {
        const char* name;
        std::string head, more;
    } const cases[] = {
        {"text without an end", ok + "\r\n", flood},
        {"a header without an end", ok + "X: ", flood},
        {"headers without an end", ok, "X: " + std::string(200, 'x') + "\r\n"},
        {"a status line without an end", "HTTP/1.1 200 ", flood},
        {"a long status line", "HTTP/1.1 200 " + flood + "\r\n\r\n", "x"},
        {"another behind the first", "HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 " + flood + "\r\n\r\n", "x"},
    };
    for (const auto& c : cases) {
        const RawService service(c.head, c.more);
        EXPECT_EQ(got(client, service.address(), 100), "none") << c.name;
    }
    const WebService service([](const httplib::Request& request, httplib::Response& response) {
        response.set_content(std::string(HttpClient::mosttext + (request.path == "/more" ? 1 : 0), 'x'), "text/plain");
    });
    EXPECT_EQ(got(client, service.address()).size(), HttpClient::mosttext + 4);
    EXPECT_EQ(got(client, service.address() + "/more"), "none");
}

TEST_F(Http, TheTimeIsThatOfTheWholeCall) {
    const MuteService mute;
    for (const char* scheme : {"http://", "https://"}) EXPECT_EQ(got(client, scheme + mute.authority(), 1), "none");
    const RawService dripping("HTTP/1.1 200 OK\r\n", "X");
    EXPECT_EQ(got(client, dripping.address(), 1), "none");
    const RawService drippingtext("HTTP/1.1 200 OK\r\n\r\n", "X");
    EXPECT_EQ(got(client, drippingtext.address(), 1), "none");
    EXPECT_EQ(got(client, "http://" + mute.authority(), 0), "none");
    EXPECT_EQ(got(client, "http://" + mute.authority(), -1), "none");
}

// Each of these calls would take ten minutes.
TEST_F(Http, AStopEndsWhatIsUnderWay) {
    const MuteService mute, full(0);
    const WebService slow(authority, [](const auto&, httplib::Response& response) {
        response.set_chunked_content_provider("text/plain", [](std::size_t, httplib::DataSink& sink) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            return sink.write("x", 1);
        });
    });
    std::vector<std::future<std::string>> calls;
    const auto calling = [&](const std::string& url) {
        calls.push_back(std::async(std::launch::async, [this, url] { return got(client, url, 600); }));
    };
    // The second and third connect to a queue that is full.
    for (int i = 0; i < 3; ++i) calling("http://" + full.authority());
    calling("http://" + mute.authority());
    calling("https://" + mute.authority());
    calling(slow.address());
    while (slow.asked().empty()) std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    client.stop();
    for (auto& call : calls) EXPECT_EQ(call.get(), "none");
    EXPECT_EQ(got(client, slow.address(), 600), "none");
    EXPECT_EQ(slow.asked().size(), 1U) << "nobody is called by a server that has stopped";
}

TEST_F(Http, NobodyThere) {
    std::string gone;
    { gone = "http://" + MuteService().authority(); }
    EXPECT_EQ(got(client, gone), "none");
    for (const char* none : {"", "here", "ftp://localhost/", "http://", "http:///", "http://localhost:0/",
                             "http://localhost:70000/", "http://localhost:80x/", "https://user@localhost/",
                             "http://local host/", "http://localhost/a\r\nHost: b", "http://[::1/", "http://[x]/"})
        EXPECT_EQ(got(client, none), "none") << none;
    EXPECT_THAT(complaints.lines, ElementsAre());
}

TEST(HttpUrl, IsReadInItsParts) {
    const WebUrl numbered{.tls = false, .host = "::1", .port = 8080, .path = "/?q"};
    EXPECT_EQ(WebUrl::parse("HTTP://[::1]:8080?q"), numbered);
    EXPECT_EQ(WebUrl::parse("https://a.b"), (WebUrl{true, "a.b", 443, "/"}));
    EXPECT_EQ(WebUrl::parse("https://[::1]:9/x")->redirectedto("/y"), (WebUrl{true, "::1", 9, "/y"}));
    EXPECT_EQ(WebUrl::parse("https://a")->redirectedto("//b/c"), (WebUrl{true, "b", 443, "/c"}));
    EXPECT_EQ(WebUrl::parse("http://a")->redirectedto("//b/c"), std::nullopt);
}

}  // namespace
