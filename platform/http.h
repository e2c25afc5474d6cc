// Calls to web services. Any thread but the server's, since a call blocks until it has its answer or its time is over.
#pragma once

#include <string>

namespace platform {

class Http {
public:
    virtual ~Http() = default;
    // A call to an "http://" or "https://" address. True when a response has come, whole and of whatever status; its
    // status and text are then in `status` and `result`. False, with both as they were, when none has: an address that
    // is none, nobody there, a certificate that does not verify, a response beyond the host's limit, or the time over.
    // The time is that of the whole call, from the look-up of the name to the last byte. Throws nothing of its own.
    //
    // With https the certificate is always verified, for the name in the address and against the system's store.
    // A get follows redirects, a few of them and to https only; what is not followed is the response. A post follows
    // none. A server that stops ends the calls under way, and from then on each fails at once: work that hangs on
    // a slow service never keeps a server from stopping.
    virtual bool get(const std::string& url, int& status, std::string& result, int timeoutSeconds) = 0;
    virtual bool post(const std::string& url, const std::string& contenttype, const std::string& body, int& status,
                      std::string& result, int timeoutSeconds) = 0;
};

// The same on the installed host; false where it has no such service.
bool HttpGetSync(const std::string& url, int& status, std::string& result, int timeoutSeconds);
bool HttpPostSync(const std::string& url, const std::string& contenttype, const std::string& body, int& status,
                  std::string& result, int timeoutSeconds);

}  // namespace platform
