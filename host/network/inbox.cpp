#include "host/network/inbox.h"

#include <utility>

namespace host {

void Inbox::open(ConnectionId connection) {
    std::lock_guard guard(lock_);
    shares_.try_emplace(connection);
}

void Inbox::close(ConnectionId connection) {
    std::lock_guard guard(lock_);
    shares_.erase(connection);
    dropped_.erase(connection);
    std::erase_if(waiting_, [&](const Arrival& arrival) { return arrival.connection == connection; });
}

bool Inbox::put(ConnectionId connection, std::string packet) {
    std::lock_guard guard(lock_);
    const auto found = shares_.find(connection);
    if (found == shares_.end()) return false;
    Share& share = found->second;
    if (packet.size() > longestpacket || share.packets >= mostpackets || share.bytes + packet.size() > mostbytes) {
        ++dropped_[connection];
        return false;
    }
    ++share.packets;
    share.bytes += packet.size();
    waiting_.push_back({connection, std::move(packet)});
    return true;
}

std::deque<Inbox::Arrival> Inbox::take() {
    std::lock_guard guard(lock_);
    std::deque<Arrival> now, later;
    std::map<ConnectionId, Share> taken;
    for (Arrival& arrival : waiting_) {
        Share& part = taken[arrival.connection];
        part.bytes += arrival.packet.size();
        if (++part.packets > mostatonce || (part.packets > 1 && part.bytes > bytesatonce)) {
            part.packets = mostatonce;
            later.push_back(std::move(arrival));
            continue;
        }
        Share& share = shares_.at(arrival.connection);
        --share.packets;
        share.bytes -= arrival.packet.size();
        now.push_back(std::move(arrival));
    }
    waiting_ = std::move(later);
    return now;
}

std::map<ConnectionId, std::uint64_t> Inbox::takedropped() {
    std::lock_guard guard(lock_);
    return std::exchange(dropped_, {});
}

}  // namespace host
