#include "host/http/httpclient.h"

#include <httplib.h>

#include <thread>

#include "host/http/boundedstream.h"
#include "host/http/namelookup.h"
#include "host/http/webline.h"

namespace host {

namespace {

using Time = std::chrono::steady_clock;
constexpr auto look = std::chrono::milliseconds(20);  // from one look at a line to the next

constexpr int redirects[] = {301, 302, 303, 307, 308};

}  // namespace

// Rung when something has ended that somebody may be waiting for.
struct HttpClient::Bell {
    std::mutex mutex;
    std::condition_variable rings;
    bool stopping = false;
};

struct HttpClient::Call {
    const char* method;
    httplib::Headers headers;
    std::string body;
    bool followsredirects;
    Time::time_point deadline = {};
};

struct HttpClient::Answer {
    int status = 0;
    std::string text, location;
};

struct HttpClient::Destination {
    const WebUrl& url;
    const std::string& address;
    std::chrono::milliseconds time, timetoconnect;
};

HttpClient::HttpClient(std::string certificates, Complain complain)
    : certificates_(std::move(certificates)), complain_(std::move(complain)), bell_(std::make_shared<Bell>()) {}

void HttpClient::stop() {
    const std::lock_guard lock(bell_->mutex);
    bell_->stopping = true;
    bell_->rings.notify_all();
}

bool HttpClient::get(const std::string& url, int& status, std::string& result, int timeoutSeconds) {
    return call({"GET", {}, {}, true}, url, status, result, timeoutSeconds);
}

bool HttpClient::post(const std::string& url, const std::string& contenttype, const std::string& body, int& status,
                      std::string& result, int timeoutSeconds) {
    return call({"POST", {{"Content-Type", contenttype}}, body, false}, url, status, result, timeoutSeconds);
}

bool HttpClient::call(Call&& call, const std::string& url, int& status, std::string& result, int timeoutSeconds) {
    call.deadline = Time::now() + std::chrono::seconds(timeoutSeconds);
    std::optional<Answer> answer;
    // What is thrown in here is a want of threads or memory.
    const auto failure = failureof([&] {
        auto target = WebUrl::parse(url);
        for (int followed = 0; target; ++followed) {
            answer = fetch(call, *target);
            const bool leadson = answer && call.followsredirects && followed < mostredirects &&
                                 std::ranges::find(redirects, answer->status) != std::end(redirects);
            target = leadson ? target->redirectedto(answer->location) : std::nullopt;
        }
    });
    if (failure || !answer) return false;
    status = answer->status;
    result = std::move(answer->text);
    return true;
}

// On a thread that is left behind when it takes too long: it knows nothing but the bell and its own result. No
// addresses for a name that has none, when the time is over, and for a server that stops.
std::vector<std::string> HttpClient::lookup(const Call& call, const std::string& name) {
    struct Result {
        bool done = false;
        std::vector<std::string> addresses;
    };
    const auto result = std::make_shared<Result>();
    std::thread([bell = bell_, result, name] {
        std::vector<std::string> addresses;
        (void)failureof([&] { addresses = addressesof(name); });
        const std::lock_guard lock(bell->mutex);
        result->addresses = std::move(addresses);
        result->done = true;
        bell->rings.notify_all();
    }).detach();
    std::unique_lock lock(bell_->mutex);
    bell_->rings.wait_until(lock, call.deadline, [&] { return result->done || bell_->stopping; });
    return bell_->stopping ? std::vector<std::string>() : result->addresses;
}

namespace {

std::unique_ptr<httplib::ClientImpl> clientfor(const WebUrl& url, const std::string& certificates) {
    if (!url.tls) return std::make_unique<Bounded<httplib::ClientImpl>>(url.host, url.port);
    auto client = std::make_unique<Bounded<httplib::SSLClient>>(url.host, url.port);
    client->enable_server_certificate_verification(true);
    if (!certificates.empty()) client->set_ca_cert_path(certificates);
    return client;
}

bool isuntrusted(httplib::Error error) {
    return error == httplib::Error::SSLServerVerification || error == httplib::Error::SSLLoadingCerts;
}

bool isunreachable(httplib::Error error) {
    return error == httplib::Error::Connection || error == httplib::Error::ConnectionTimeout;
}

}  // namespace

// Talks to one of the addresses.
std::optional<HttpClient::Answer> HttpClient::exchange(const Call& call, const Destination& to, WebLine& line,
                                                       httplib::Error& error) {
    const auto client = clientfor(to.url, certificates_);
    client->set_hostname_addr_map({{to.url.host, to.address}});
    client->set_socket_options([&](socket_t socket) { line.hold(socket); });
    client->set_connection_timeout(to.timetoconnect);
    client->set_read_timeout(to.time);
    client->set_write_timeout(to.time);

    Answer answer;
    httplib::Request request;
    request.method = call.method;
    request.path = to.url.path;
    request.headers = call.headers;
    request.body = call.body;
    request.content_receiver = [&](const char* data, std::size_t size, std::uint64_t, std::uint64_t) {
        if (answer.text.size() + size > mosttext) return false;
        answer.text.append(data, size);
        return true;
    };
    httplib::Response response;
    const bool came = client->send(request, response, error);
    line.letgo();
    // A text without a length ends where the connection does, and so where it was cut.
    if (!came || line.wascut()) return {};
    answer.status = response.status;
    answer.location = response.get_header_value("Location");
    return answer;
}

// The addresses of a name are tried in turn, each with its share of the time that is left to connect.
std::optional<HttpClient::Answer> HttpClient::tryall(const Call& call, const WebUrl& url,
                                                     const std::vector<std::string>& addresses, WebLine& line) {
    auto untried = static_cast<int>(addresses.size());
    for (const auto& address : addresses) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(call.deadline - Time::now());
        if (left.count() <= 0 || line.wascut()) break;
        auto error = httplib::Error::Success;
        auto answer = exchange(call, {url, address, left, left / untried--}, line, error);
        if (isuntrusted(error)) complain_(url.host + ": the certificate does not verify, the call was given up");
        if (answer || !isunreachable(error)) return answer;
    }
    return {};
}

std::optional<HttpClient::Answer> HttpClient::fetch(const Call& call, const WebUrl& url) {
    const auto addresses = lookup(call, url.host);
    if (addresses.empty()) return {};
    WebLine line;
    std::optional<Answer> answer;
    bool done = false;
    std::jthread caller([&] {
        (void)failureof([&] { answer = tryall(call, url, addresses, line); });
        const std::lock_guard lock(bell_->mutex);
        done = true;
        bell_->rings.notify_all();
    });
    std::unique_lock lock(bell_->mutex);
    while (!bell_->rings.wait_for(lock, look, [&] { return done; }))
        if (bell_->stopping || Time::now() >= call.deadline) line.cut();
    return answer;
}

}  // namespace host
