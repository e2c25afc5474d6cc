// Requests and responses on the wire.
#include "platform/packets/itemstackrequest.h"

#include <algorithm>

#include "platform/packets/codec.h"

namespace platform {

namespace {

template <class IO>
void slotinfo(IO& io, ItemStackRequestSlotInfo& slot) {
    io.u8(slot.container);
    io.u8(slot.slot);
    io.zigzag32(slot.stackid);
}

template <class IO>
void ingredient(IO& io, ItemStackRequestIngredient& item) {
    io.u8(item.kind);
    switch (item.kind) {
        case 0:
            break;
        case 1:
            io.u16(item.networkid);
            if (item.networkid != 0) io.u16(item.aux);
            break;
        case 2:
            io.text(item.text);
            io.u8(item.version);
            break;
        case 3:
            io.text(item.text);
            break;
        case 4:
            io.text(item.text);
            io.u16(item.aux);
            break;
        default:
            throw ReadError("an ingredient is of an unknown kind");
    }
    io.zigzag32(item.count);
}

template <class IO>
void amount(IO& io, ItemStackRequestAction& action) {
    io.i8(action.amount);
    slotinfo(io, action.source);
}

template <class IO>
void transfer(IO& io, ItemStackRequestAction& action) {
    amount(io, action);
    slotinfo(io, action.destination);
}

template <class IO>
void swap(IO& io, ItemStackRequestAction& action) {
    slotinfo(io, action.source);
    slotinfo(io, action.destination);
}

template <class IO>
void drop(IO& io, ItemStackRequestAction& action) {
    amount(io, action);
    bool randomly = action.flag != 0;
    io.boolean(randomly);
    action.flag = randomly ? 1 : 0;
}

template <class IO>
void create(IO& io, ItemStackRequestAction& action) {
    io.u8(action.flag);
}

template <class IO>
void nothing(IO&, ItemStackRequestAction&) {}

template <class IO>
void beaconpayment(IO& io, ItemStackRequestAction& action) {
    io.zigzag32(action.extra[0]);
    io.zigzag32(action.extra[1]);
}

template <class IO>
void mineblock(IO& io, ItemStackRequestAction& action) {
    for (auto& number : action.extra) io.zigzag32(number);
}

template <class IO>
void onenumber(IO& io, ItemStackRequestAction& action) {
    io.varint(action.number);
}

template <class IO>
void craftauto(IO& io, ItemStackRequestAction& action) {
    io.varint(action.number);
    io.u8(action.times);
    io.list(action.ingredients, 2, [](auto& inner, auto& item) { ingredient(inner, item); });
}

template <class IO>
void craftoptional(IO& io, ItemStackRequestAction& action) {
    io.varint(action.number);
    io.i32(action.extra[0]);
}

template <class IO>
void grindstone(IO& io, ItemStackRequestAction& action) {
    io.varint(action.number);
    auto cost = static_cast<std::uint32_t>(action.extra[0]);
    io.varint(cost);
    action.extra[0] = static_cast<std::int32_t>(cost);
}

template <class IO>
void loom(IO& io, ItemStackRequestAction& action) {
    io.text(action.text);
}

template <class IO>
void craftresult(IO& io, ItemStackRequestAction& action) {
    io.list(action.results, 1, creativeitemelement);
    io.u8(action.times);
}

// By action type, from 0.
template <class IO>
constexpr void (*actionbodies[])(IO&, ItemStackRequestAction&) = {
    transfer<IO>,       // take
    transfer<IO>,       // place
    swap<IO>,           // swap
    drop<IO>,           // drop
    amount<IO>,         // destroy
    amount<IO>,         // consume
    create<IO>,         // create
    transfer<IO>,       // placeincontainer
    transfer<IO>,       // takefromcontainer
    nothing<IO>,        // labtable
    beaconpayment<IO>,  // beaconpayment
    mineblock<IO>,      // mineblock
    onenumber<IO>,      // craftrecipe
    craftauto<IO>,      // craftrecipeauto
    onenumber<IO>,      // creativepick
    craftoptional<IO>,  // craftoptional
    grindstone<IO>,     // grindstone
    loom<IO>,           // loom
    nothing<IO>,        // craftnonimplemented
    craftresult<IO>,    // craftresult
};

template <class IO>
void actionfields(IO& io, ItemStackRequestAction& action) {
    io.u8(action.type);
    if (action.type >= std::size(actionbodies<IO>)) {
        throw ReadError("action type " + std::to_string(action.type) + " is unknown");
    }
    actionbodies<IO>[action.type](io, action);
}

// Counts are looked at before anything is made of them: an action may be one byte on the wire and is far more here.
struct RequestCounts {
    std::size_t requests = 0, actions = 0;
    void allow() const {
        if (requests <= ItemStackRequestPacket::mostrequests && actions <= ItemStackRequestPacket::mostactions) return;
        throw ReadError(std::to_string(requests) + " requests with " + std::to_string(actions) + " actions");
    }
};

template <class IO>
void requestfields(IO& io, ItemStackRequest& request, RequestCounts& counts) {
    io.zigzag32(request.id);
    io.list(
        request.actions, 1, [](auto& inner, auto& action) { actionfields(inner, action); },
        [&](std::size_t n) {
            counts.actions += n;
            counts.allow();
        });
    io.list(request.filterstrings, 1, textelement);
    io.i32(request.cause);
}
constexpr std::size_t leastrequest = 7;

template <class IO>
void responseslot(IO& io, ItemStackResponseSlot& slot) {
    io.u8(slot.slot);
    io.u8(slot.hotbarslot);
    io.u8(slot.count);
    io.zigzag32(slot.stackid);
    io.text(slot.customname);
    io.zigzag32(slot.durability);
}
constexpr std::size_t leastresponseslot = 6;

template <class IO>
void responsefields(IO& io, ItemStackResponse& response) {
    io.u8(response.result);
    io.zigzag32(response.requestid);
    if (response.result != ItemStackResponse::accepted) return;
    io.list(response.containers, 2, [](auto& inner, ItemStackResponseContainer& container) {
        inner.u8(container.container);
        inner.list(container.slots, leastresponseslot, [&](auto& slots, auto& slot) {
            responseslot(slots, slot);
            slots.demand(isslot(container.container, slot.slot), "an answer about a slot that is none");
        });
    });
}

}  // namespace

const ContainerSlots* slotsof(std::uint8_t container) {
    const auto* found = std::ranges::find(ownslots, static_cast<ContainerName>(container), &ContainerSlots::name);
    return found == std::end(ownslots) ? nullptr : found;
}

bool isslot(std::uint8_t container, int slot) {
    const auto* own = slotsof(container);
    const bool known = container <= static_cast<std::uint8_t>(ContainerName::createdoutput);
    return own != nullptr ? own->holds(slot) : known && slot >= 0 && slot <= 255;
}

template <class IO>
void ItemStackRequestPacket::fields(IO& io) {
    RequestCounts counts;
    io.list(
        requests, leastrequest,
        [&](auto& inner, auto& request) {
            requestfields(inner, request, counts);
            const auto same = [&](const ItemStackRequest& r) { return &r != &request && r.id == request.id; };
            if (IO::reads && std::ranges::any_of(requests, same))
                throw ReadError("two requests of the number " + std::to_string(request.id));
        },
        [&](std::size_t n) {
            counts.requests = n;
            counts.allow();
        });
}

template <class IO>
void ItemStackResponsePacket::fields(IO& io) {
    io.list(responses, 2, [](auto& inner, auto& response) { responsefields(inner, response); });
}

template <class IO>
void ContainerClosePacket::fields(IO& io) {
    containernumber(io, containerid);
    io.boolean(serverside);
}

template void ItemStackRequestPacket::fields(PacketWriter&);
template void ItemStackRequestPacket::fields(PacketReader&);
template void ItemStackResponsePacket::fields(PacketWriter&);
template void ItemStackResponsePacket::fields(PacketReader&);
template void ContainerClosePacket::fields(PacketWriter&);
template void ContainerClosePacket::fields(PacketReader&);

}  // namespace platform
