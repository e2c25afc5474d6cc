// Any bytes as a packet: the header, then the body as each kind of packet. What is read is written and read again.
#include <cstdint>
#include <cstdlib>

#include "platform/packets/blocks.h"
#include "platform/packets/containers.h"
#include "platform/packets/forms.h"
#include "platform/packets/messages.h"

using namespace platform;

namespace {

template <class... P>
struct Kinds {
    static void read(std::string_view body) { (one<P>(body), ...); }

private:
    template <class Kind>
    static void one(std::string_view body) {
        std::string written;
        try {
            written = topacket(readpacket<Kind>(body)).body();
        } catch (const ReadError&) {
            return;
        }
        if (topacket(readpacket<Kind>(written)).body() != written) std::abort();
    }
};

using All =
    Kinds<TextPacket, UpdateBlockPacket, ContainerOpenPacket, ContainerClosePacket, InventoryContentPacket,
          InventorySlotPacket, BlockActorDataPacket, SetPlayerGameTypePacket, CommandRequestPacket, CommandOutputPacket,
          PlaySoundPacket, MobEquipmentPacket, ModalFormRequestPacket, ModalFormResponsePacket, CreativeContentPacket,
          ItemStackRequestPacket, ItemStackResponsePacket, ToastRequestPacket>;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    All::read(bytes);
    try {
        All::read(openpacket(bytes).body);
    } catch (const ReadError&) {
    }
    return 0;
}
