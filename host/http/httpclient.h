// Calls to web services (platform/http.h), by cpp-httplib over OpenSSL. The library has a time-out for each step and
// none for a call, and holds a lock of its own while it connects; so each call runs on a thread of its own, and the
// caller watches over its connection and cuts it when the time is over or the server stops.
#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "host/core/guarded.h"
#include "host/http/weburl.h"
#include "platform/http.h"

namespace httplib {
enum class Error;
}

namespace host {

class WebLine;

class HttpClient : public platform::Http {
public:
    static constexpr std::size_t mosttext = 1 << 20;             // of a response, unpacked
    static constexpr std::uint64_t mostreceived = 2 * mosttext;  // with all its headers, as it comes over the line
    static constexpr int mostredirects = 5;

    // Certificates are verified against the file (PEM); empty: the system's store. One that does not verify is
    // complained of, since the market cannot tell it from a service that is away.
    HttpClient(std::string certificates, Complain complain);
    ~HttpClient() override { stop(); }
    bool get(const std::string& url, int& status, std::string& result, int timeoutSeconds) override;
    bool post(const std::string& url, const std::string& contenttype, const std::string& body, int& status,
              std::string& result, int timeoutSeconds) override;

    // Every call under way ends, and each one from now on fails at once.
    void stop();

private:
    struct Bell;
    struct Call;
    struct Answer;
    struct Destination;

    bool call(Call&& call, const std::string& url, int& status, std::string& result, int timeoutSeconds);
    [[nodiscard]] std::vector<std::string> lookup(const Call& call, const std::string& name);
    [[nodiscard]] std::optional<Answer> fetch(const Call& call, const WebUrl& url);
    [[nodiscard]] std::optional<Answer> tryall(const Call& call, const WebUrl& url,
                                               const std::vector<std::string>& addresses, WebLine& line);
    [[nodiscard]] std::optional<Answer> exchange(const Call& call, const Destination& to, WebLine& line,
                                                 httplib::Error& error);

    const std::string certificates_;
    const Complain complain_;
    const std::shared_ptr<Bell> bell_;  // shared with look-ups that nobody waits for any more
};

}  // namespace host
