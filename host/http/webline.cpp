#include "host/http/webline.h"

#include <sys/socket.h>

namespace host {

void WebLine::hold(int socket) {
    const std::lock_guard lock(mutex_);
    socket_ = Descriptor(::fcntl(socket, F_DUPFD_CLOEXEC, 0));
    if (cut_) ::shutdown(socket_.number(), SHUT_RDWR);
}

void WebLine::letgo() {
    const std::lock_guard lock(mutex_);
    socket_.close();
}

void WebLine::cut() {
    const std::lock_guard lock(mutex_);
    cut_ = true;
    if (socket_.isopen()) ::shutdown(socket_.number(), SHUT_RDWR);
}

bool WebLine::wascut() const {
    const std::lock_guard lock(mutex_);
    return cut_;
}

}  // namespace host
