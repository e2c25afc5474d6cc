#include "host/board/answercache.h"

#include <utility>

namespace host {

AnswerCache::Body AnswerCache::find(const std::string& question, const std::string& state) {
    const std::lock_guard lock(mutex_);
    const auto place = places_.find(question);
    if (place == places_.end()) return nullptr;
    if (place->second->state != state) {
        drop(place->second);
        return nullptr;
    }
    all_.splice(all_.begin(), all_, place->second);
    return place->second->body;
}

void AnswerCache::keep(const std::string& question, const std::string& state, Body body) {
    Kept kept{question, state, std::move(body)};
    const std::size_t size = kept.bytes();
    const std::lock_guard lock(mutex_);
    if (const auto place = places_.find(question); place != places_.end()) drop(place->second);
    if (size > mostbytes_) return;
    all_.push_front(std::move(kept));
    places_.emplace(question, all_.begin());
    bytes_ += size;
    while (bytes_ > mostbytes_) drop(std::prev(all_.end()));
}

void AnswerCache::drop(std::list<Kept>::iterator which) {
    bytes_ -= which->bytes();
    places_.erase(which->question);
    all_.erase(which);
}

}  // namespace host
