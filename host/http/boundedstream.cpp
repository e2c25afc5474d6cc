#include "host/http/boundedstream.h"

#include <algorithm>
#include <cstring>

namespace host {

namespace {

// After an interim response the library would read a second status line; nobody has asked for one.
bool isinterim(const std::string& statusline) { return statusline.size() > 9 && statusline[9] == '1'; }

}  // namespace

ssize_t BoundedStream::read(char* to, size_t size) {
    if (at_ == end_ && !fill()) return -1;
    const auto n = std::min(size, end_ - at_);
    std::memcpy(to, buffer_.data() + at_, n);
    at_ += n;
    return static_cast<ssize_t>(n);
}

// The end of the connection counts as read: zero bytes, and an empty buffer.
bool BoundedStream::fill() {
    const ssize_t got = tls_ != nullptr ? receivetls() : receive();
    if (got < 0) return false;
    at_ = 0;
    end_ = static_cast<std::size_t>(got);
    return admit(buffer_.data(), end_);
}

ssize_t BoundedStream::receive() {
    ssize_t got = 0;
    do got = ::recv(socket_, buffer_.data(), buffer_.size(), 0);
    while (got < 0 && errno == EINTR);
    return got;
}

// An end that the service has not signed is a failure: somebody else may have made it.
ssize_t BoundedStream::receivetls() {
    for (;;) {
        const int got = SSL_read(tls_, buffer_.data(), static_cast<int>(buffer_.size()));
        if (got > 0) return got;
        const int why = SSL_get_error(tls_, got);
        if (why != SSL_ERROR_WANT_READ) return why == SSL_ERROR_ZERO_RETURN ? 0 : -1;
    }
}

bool BoundedStream::admit(const char* bytes, std::size_t size) {
    received_ += size;
    if (received_ > mostbytes) return false;
    if (statusknown_) return true;
    const char* const lineend = std::find(bytes, bytes + size, '\n');
    statusline_.append(bytes, lineend);
    statusknown_ = lineend != bytes + size;
    return statusline_.size() <= moststatusline && !(statusknown_ && isinterim(statusline_));
}

ssize_t BoundedStream::write(const char* from, size_t size) {
    if (tls_ != nullptr) return SSL_write(tls_, from, static_cast<int>(std::min<size_t>(size, 1 << 20)));
    return ::send(socket_, from, size, MSG_NOSIGNAL);
}

}  // namespace host
