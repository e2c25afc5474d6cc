#include "host/api/heardlines.h"

#include <algorithm>

namespace host {

void HeardLines::add(const std::string& player, std::vector<nlohmann::json> lines) {
    if (lines.empty()) return;
    const std::lock_guard guard(lock_);
    Lines& his = byplayer_[player];
    for (nlohmann::json& what : lines) {
        all_.push_back(std::make_shared<const Heard>(++last_, player, std::move(what)));
        his.push_back(all_.back());
    }
    for (; all_.size() > mostkept; all_.pop_front()) {
        // The oldest of all is the oldest of its player.
        const auto owner = byplayer_.find(all_.front()->player);
        owner->second.pop_front();
        if (owner->second.empty()) byplayer_.erase(owner);
    }
}

std::vector<SharedHeard> HeardLines::after(std::uint64_t number) const {
    const std::lock_guard guard(lock_);
    const auto first = std::ranges::upper_bound(all_, number, {}, &Heard::number);
    return {first, all_.end()};
}

std::vector<SharedHeard> HeardLines::after(std::uint64_t number, const std::string& player, std::size_t most) const {
    const std::lock_guard guard(lock_);
    const auto found = byplayer_.find(player);
    if (found == byplayer_.end()) return {};
    const Lines& his = found->second;
    const auto first = std::ranges::upper_bound(his, number, {}, &Heard::number);
    const auto tail = his.size() > most ? his.end() - static_cast<std::ptrdiff_t>(most) : his.begin();
    return {std::max(first, tail), his.end()};
}

}  // namespace host
