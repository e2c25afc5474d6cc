// What the client does, as the packets that its kind of client sends for it.
#include <algorithm>
#include <limits>
#include <stdexcept>

#include "client/modelclient.h"
#include "platform/packets/codec.h"
#include "platform/packets/containers.h"
#include "platform/packets/forms.h"
#include "platform/packets/messages.h"

namespace client {

using namespace platform;

namespace {

constexpr auto cursorname = ContainerName::cursor;
constexpr int cursorslot = 0, createdslot = 50;

ItemStackRequestAction actionof(ActionType type) {
    ItemStackRequestAction action;
    action.type = static_cast<std::uint8_t>(type);
    return action;
}

ItemStackRequest requestof(std::int32_t id, ItemStackRequestAction action) {
    ItemStackRequest request;
    request.id = id;
    request.actions.push_back(std::move(action));
    return request;
}

std::int8_t amountof(int count) {
    if (count < 1 || count > std::numeric_limits<std::int8_t>::max())
        throw std::invalid_argument("a client cannot move " + std::to_string(count) + " pieces");
    return static_cast<std::int8_t>(count);
}

}  // namespace

template <class P>
std::string ModelClient::sealed(const P& packet) {
    const auto made = topacket(packet);
    try {
        (void)readpacket<P>(made.body());
    } catch (const ReadError& e) {
        throw std::invalid_argument(std::string("no client could say that: ") + e.what());
    }
    return sealpacket(made);
}

void ModelClient::command(const std::string& line) {
    CommandRequestPacket packet;
    packet.line = line.starts_with('/') ? line : "/" + line;
    send_(sealed(packet));
}

// ---- the inventory

std::int32_t ModelClient::newrequestid() {
    const auto id = nextrequest_;
    nextrequest_ -= 2;
    return id;
}

const NetworkItem& ModelClient::shown(ContainerName container, int slot) const {
    const auto name = static_cast<std::uint8_t>(container);
    if (!isslot(name, slot))
        throw std::invalid_argument("container " + std::to_string(name) + " has no slot " + std::to_string(slot));
    const auto place = placeof(name, slot);
    return screen_.at(place.value_or(Place{inventoryid, -1}));
}

ItemStackRequestSlotInfo ModelClient::slotinfo(ContainerName container, int slot) const {
    return {static_cast<std::uint8_t>(container), static_cast<std::uint8_t>(slot),
            shown(container, slot).stackid.value_or(0)};
}

ItemStackRequestAction ModelClient::transfer(ContainerName from, int fromslot, ContainerName to, int toslot,
                                             int count) const {
    auto action = actionof(to == cursorname ? ActionType::take : ActionType::place);
    action.amount = amountof(count);
    action.source = slotinfo(from, fromslot);
    action.destination = slotinfo(to, toslot);
    return action;
}

ItemStackRequestAction ModelClient::swap(ContainerName container, int slot) const {
    auto action = actionof(ActionType::swap);
    action.source = slotinfo(cursorname, cursorslot);
    action.destination = slotinfo(container, slot);
    return action;
}

std::vector<std::int32_t> ModelClient::request(std::vector<ItemStackRequest> requests) {
    std::vector<std::int32_t> ids;
    for (auto& one : requests) {
        if (one.id == 0) one.id = newrequestid();
        ids.push_back(one.id);
    }
    const ItemStackRequestPacket packet{0, std::move(requests)};
    auto bytes = sealed(packet);
    for (const auto& one : packet.requests) screen_.predict(one);
    send_(std::move(bytes));
    return ids;
}

void ModelClient::click(ContainerName container, int slot) {
    const int there = shown(container, slot).count;
    if (cursor().networkid == 0) {
        if (there > 0) move(container, slot, cursorname, cursorslot, there);
    } else if (!touch_) {
        putdown(container, slot, cursor().count);
    } else {
        // The first tap has put the cursor's stack down before the second one takes up what lies there by then.
        auto first = requestof(newrequestid(), swap(container, slot));
        screen_.predict(first);
        const int count = shown(container, slot).count;
        auto second = requestof(newrequestid(), transfer(container, slot, cursorname, cursorslot, count));
        screen_.predict(second);
        send_(sealed(ItemStackRequestPacket{0, {std::move(first), std::move(second)}}));
    }
}

// At most so many pieces of the cursor's stack, or the whole stack against what lies there.
void ModelClient::putdown(ContainerName container, int slot, int most) {
    const auto& there = shown(container, slot);
    const bool takes = there.networkid == 0 || stackable(there, cursor());
    const int count = std::min({most, static_cast<int>(cursor().count), maxstack(cursor()) - there.count});
    if (takes && count > 0) {
        move(cursorname, cursorslot, container, slot, count);
    } else {
        swapwithcursor(container, slot);
    }
}

void ModelClient::rightclick(ContainerName container, int slot) {
    const int there = shown(container, slot).count;
    if (cursor().networkid != 0) {
        putdown(container, slot, 1);
    } else if (there > 0) {
        move(container, slot, cursorname, cursorslot, (there + 1) / 2);
    }
}

void ModelClient::drop(ContainerName container, int slot) {
    const int there = shown(container, slot).count;
    if (there == 0) return;
    auto action = actionof(ActionType::drop);
    action.amount = amountof(there);
    action.source = slotinfo(container, slot);
    request({requestof(0, std::move(action))});
}

void ModelClient::swapwithcursor(ContainerName container, int slot) { request({requestof(0, swap(container, slot))}); }

void ModelClient::move(ContainerName from, int fromslot, ContainerName to, int toslot, int count) {
    request({requestof(0, transfer(from, fromslot, to, toslot, count))});
}

void ModelClient::pickcreative(std::uint32_t entry) {
    const auto found = creative_.find(entry);
    if (found == creative_.end()) {
        throw std::invalid_argument("the creative list has no entry " + std::to_string(entry));
    }
    const auto& item = found->second;
    ItemStackRequest picked;
    picked.id = newrequestid();
    auto pick = actionof(ActionType::creativepick);
    pick.number = entry;
    auto result = actionof(ActionType::craftresult);
    result.results.push_back(item);
    result.times = 1;
    auto take = transfer(ContainerName::createdoutput, createdslot, cursorname, cursorslot, maxstack(item));
    // what the request makes goes by the request's number
    take.source.stackid = picked.id;
    picked.actions = {std::move(pick), std::move(result), std::move(take)};
    request({std::move(picked)});
}

void ModelClient::holds(int slot) {
    if (slot < 0 || slot > 8) throw std::invalid_argument("the hotbar has no slot " + std::to_string(slot));
    const auto place = static_cast<std::uint8_t>(slot);
    send_(sealed(MobEquipmentPacket{1, this->slot(inventoryid, slot), place, place, 0}));
}

// ---- screens and forms

void ModelClient::close() {
    if (!container_) return;
    const ContainerClosePacket packet{container_->id, false};
    container_.reset();
    send_(sealed(packet));
}

void ModelClient::openinventory() {
    if (!container_) container_ = OpenContainer{};
}

void ModelClient::answer(const std::string& json) {
    if (forms_.empty()) throw std::invalid_argument("no form is there to be answered");
    answer(forms_.front().id, json);
}

void ModelClient::answer(std::uint32_t formid, const std::string& json) {
    const auto form = std::find_if(forms_.begin(), forms_.end(), [&](const PendingForm& f) { return f.id == formid; });
    if (form == forms_.end()) throw std::invalid_argument("form " + std::to_string(formid) + " is not there");
    ModalFormResponsePacket packet{formid, {}, {}};
    if (json != "null") packet.json = json;
    if (!packet.json) packet.reason = ModalFormResponsePacket::closed;
    auto bytes = sealed(packet);
    forms_.erase(form);
    send_(std::move(bytes));
}

}  // namespace client
