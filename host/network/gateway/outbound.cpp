#include "host/network/gateway/outbound.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

namespace host {

namespace {

std::string because(std::string_view reason) {
    return nlohmann::json{{"reason", reason}}.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace

void Outbound::put(ToGateway operation, std::string_view payload) {
    const std::lock_guard lock(mutex_);
    add(operation, 0, payload);
}

void Outbound::open(std::uint64_t session, std::string_view payload) {
    const std::lock_guard lock(mutex_);
    sessions_.try_emplace(session);
    add(ToGateway::opened, session, payload);
}

void Outbound::refuse(std::uint64_t session, std::string_view reason) {
    const std::lock_guard lock(mutex_);
    add(ToGateway::refused, session, because(reason));
}

void Outbound::close(std::uint64_t session, std::string_view reason) {
    const std::lock_guard lock(mutex_);
    if (sessions_.erase(session) != 0) add(ToGateway::close, session, because(reason));
}

bool Outbound::packet(std::uint64_t session, std::string_view packet) {
    const std::lock_guard lock(mutex_);
    const auto found = sessions_.find(session);
    if (found == sessions_.end()) return true;
    if (packet.size() > longestpayload) {
        end(session, fmt::format("a packet of {} bytes is too long for the network", packet.size()));
        return false;
    }
    if (found->second + packet.size() > limits_.ofsession) {
        end(session, "too slow: what was sent is not taken");
        return false;
    }
    add(ToGateway::packet, session, packet);
    return true;
}

void Outbound::forget(std::uint64_t session) {
    const std::lock_guard lock(mutex_);
    drop(session);
}

void Outbound::end(std::uint64_t session, std::string_view reason) {
    drop(session);
    add(ToGateway::close, session, because(reason));
}

void Outbound::drop(std::uint64_t session) {
    sessions_.erase(session);
    std::erase_if(waiting_, [&](const Waiting& one) {
        const bool dropped = one.session == session && one.operation == ToGateway::packet;
        if (dropped) all_ -= one.bytes.size();
        return dropped;
    });
}

void Outbound::add(ToGateway operation, std::uint64_t session, std::string_view payload) {
    if (overflown_) return;
    waiting_.push_back({operation, session, frame(operation, session, payload)});
    const std::size_t size = waiting_.back().bytes.size();
    if (const auto found = sessions_.find(session); found != sessions_.end()) found->second += size;
    all_ += size;
    sincepulse_ = true;
    overflown_ = all_ > limits_.ofall;
    if (overflown_) waiting_.clear();
}

bool Outbound::pulse() {
    const std::lock_guard lock(mutex_);
    if (!sincepulse_) return false;
    add(ToGateway::pulse, 0, {});
    sincepulse_ = false;
    return true;
}

std::string Outbound::take(std::size_t bytes) {
    const std::lock_guard lock(mutex_);
    std::string taken;
    while (!waiting_.empty() && taken.size() < bytes) {
        const Waiting& one = waiting_.front();
        taken += one.bytes;
        all_ -= one.bytes.size();
        if (const auto found = sessions_.find(one.session); found != sessions_.end()) found->second -= one.bytes.size();
        waiting_.pop_front();
    }
    return taken;
}

bool Outbound::overflown() const {
    const std::lock_guard lock(mutex_);
    return overflown_;
}

}  // namespace host
