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
    const Sum& waiting = share.waiting;
    if (packet.size() > longestpacket || waiting.packets >= mostpackets || waiting.bytes + packet.size() > mostbytes) {
        ++dropped_[connection];
        return false;
    }
    share.waiting.add(packet);
    waiting_.push_back({connection, std::move(packet)});
    return !share.usedup;
}

bool Inbox::Share::takes(const std::string& packet) {
    const bool first = taken.packets == 0;
    taken.add(packet);
    // The first that has to wait holds back what came behind it.
    usedup = usedup || taken.packets > mostinaround || (!first && taken.bytes > bytesinaround);
    if (!usedup) waiting.remove(packet);
    return !usedup;
}

std::deque<Inbox::Arrival> Inbox::take(bool newround) {
    std::lock_guard guard(lock_);
    if (newround)
        for (auto& [connection, share] : shares_) share.taken = {}, share.usedup = false;
    std::deque<Arrival> now, later;
    for (Arrival& arrival : waiting_)
        (shares_.at(arrival.connection).takes(arrival.packet) ? now : later).push_back(std::move(arrival));
    waiting_ = std::move(later);
    return now;
}

std::map<ConnectionId, std::uint64_t> Inbox::takedropped() {
    std::lock_guard guard(lock_);
    return std::exchange(dropped_, {});
}

}  // namespace host
