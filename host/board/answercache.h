// Answers of views that are kept as long as what they hang on is what it was. Bounded in bytes; what was asked for
// least lately goes first. Any thread.
#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

namespace host {

class AnswerCache {
public:
    using Body = std::shared_ptr<const std::string>;
    explicit AnswerCache(std::size_t mostbytes = std::size_t{32} << 20) : mostbytes_(mostbytes) {}

    // What was kept for the question in that state; null when there is nothing, or it was another state.
    [[nodiscard]] Body find(const std::string& question, const std::string& state);
    void keep(const std::string& question, const std::string& state, Body body);
    [[nodiscard]] std::size_t bytes() const {
        const std::lock_guard lock(mutex_);
        return bytes_;
    }

private:
    struct Kept {
        std::string question, state;
        Body body;
        [[nodiscard]] std::size_t bytes() const {
            constexpr std::size_t beside = 256;
            return 2 * question.size() + state.size() + body->size() + beside;
        }
    };
    void drop(std::list<Kept>::iterator which);

    const std::size_t mostbytes_;
    mutable std::mutex mutex_;
    std::size_t bytes_ = 0;
    std::list<Kept> all_;  // the latest first
    std::unordered_map<std::string, std::list<Kept>::iterator> places_;
};

}  // namespace host
