// Any bytes as what a server sends, and a hand that clicks in between: pieces of a u16 length and a packet, and for the
// length 0 one byte that says what the hand does. Whatever the client is told and does, all it says can be read.
#include <cstdint>
#include <cstdlib>
#include <stdexcept>

#include "client/modelclient.h"
#include "platform/binarystream.h"
#include "platform/packets/codec.h"
#include "platform/packets/forms.h"
#include "platform/packets/messages.h"

using namespace platform;

namespace {

void readable(const std::string& packet) {
    const auto envelope = openpacket(packet);
    switch (static_cast<PacketId>(envelope.number)) {
        case PacketId::ContainerClose:
            return static_cast<void>(readpacket<ContainerClosePacket>(envelope.body));
        case PacketId::ItemStackRequest:
            return static_cast<void>(readpacket<ItemStackRequestPacket>(envelope.body));
        case PacketId::ModalFormResponse:
            return static_cast<void>(readpacket<ModalFormResponsePacket>(envelope.body));
        default:
            std::abort();
    }
}

void act(client::ModelClient& c, std::uint8_t what) {
    using enum ContainerName;
    constexpr ContainerName places[] = {hotbar,  inventory, combined,      armor,
                                        offhand, cursor,    createdoutput, blockentity};
    const auto place = places[what % std::size(places)];
    const auto* slots = slotsof(static_cast<std::uint8_t>(place));
    const int slot = slots != nullptr ? slots->first + what % (slots->last - slots->first + 1) : what;
    constexpr int doings = 8;
    switch (what % doings) {
        case 0:
            return c.click(place, slot);
        case 1:
            return c.rightclick(place, slot);
        case 2:
            return c.drop(place, slot);
        case 3:
            return c.swapwithcursor(place, slot);
        case 4:
            return c.move(place, slot, hotbar, 3, 1);
        case 5:
            return c.pickcreative(what / doings);
        case 6:
            return c.close();
        default:
            return c.answer("null");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const bool touch = size % 2 == 0;
    client::ModelClient c({{300, {"minecraft:apple", 64, 0, "Apple"}}}, touch, readable);
    BinaryStream in(std::string(reinterpret_cast<const char*>(data), size));
    try {
        while (in.unread() > 0) {
            const auto length = in.getUnsignedShort();
            try {
                if (length == 0)
                    act(c, in.getByte());
                else
                    c.receive(in.getRaw(length));
            } catch (const ReadError&) {
            } catch (const std::invalid_argument&) {
            }
        }
    } catch (const ReadError&) {
    }
    for (const auto container : {client::inventoryid, client::armorid, client::offhandid, client::uiid})
        for (int slot = -1; slot < 40; ++slot) {
            const auto& item = c.slot(container, slot);
            static_cast<void>(c.displayname(item) + c.itemname(item));
            static_cast<void>(client::ModelClient::lore(item));
        }
    return 0;
}
