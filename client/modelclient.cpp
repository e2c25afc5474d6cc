// What the client understands: one table of packets, and the reading of item texts.
#include "client/modelclient.h"

#include <algorithm>

#include "client/texts.h"
#include "platform/packets/blocks.h"
#include "platform/packets/containers.h"
#include "platform/packets/forms.h"
#include "platform/packets/messages.h"

namespace client {

using namespace platform;

// One operation per packet.
struct ModelClient::Incoming {
    static void text(ModelClient& c, TextPacket& p) {
        const auto said = filled(p.message, p.parameters);
        c.chat.push_back(p.source.empty() ? said : "<" + p.source + "> " + said);
    }
    static void toast(ModelClient& c, ToastRequestPacket& p) {
        c.toasts.push_back({std::move(p.title), std::move(p.content)});
    }
    static void sound(ModelClient& c, PlaySoundPacket& p) {
        c.sounds.push_back({std::move(p.name), p.volume, p.pitch});
    }
    static void reply(ModelClient& c, CommandOutputPacket& p) {
        for (const auto& message : p.messages) {
            c.replies.push_back({message.success, filled(message.id, message.parameters)});
        }
    }
    static void gametype(ModelClient& c, SetPlayerGameTypePacket& p) { c.gametype_ = p.gametype; }
    static void form(ModelClient& c, ModalFormRequestPacket& p) {
        if (std::ranges::find(c.forms_, p.formid, &PendingForm::id) != c.forms_.end())
            throw ReadError("form " + std::to_string(p.formid) + " is open already");
        c.forms_.push_back({p.formid, std::move(p.json)});
    }

    static void open(ModelClient& c, ContainerOpenPacket& p) {
        c.container_ = OpenContainer{p.containerid, p.type, p.position.x, p.position.y, p.position.z};
    }
    // The server's wish is answered; its echo of a close of our own means nothing any more.
    static void close(ModelClient& c, ContainerClosePacket& p) {
        if (p.serverside && c.container_ && c.container_->id == p.containerid) c.close();
    }
    static void content(ModelClient& c, InventoryContentPacket& p) {
        c.screen_.paint(p.containerid, std::move(p.items));
    }
    static void slot(ModelClient& c, InventorySlotPacket& p) {
        // a slot beyond any container stays beyond it as an int
        const auto index = static_cast<int>(std::min<std::uint32_t>(p.slot, 0xffff));
        c.screen_.paint(Place{p.containerid, index}, std::move(p.item));
    }
    static void response(ModelClient& c, ItemStackResponsePacket& p) {
        for (const auto& response : p.responses) c.screen_.take(response);
    }
    static void creativecontent(ModelClient& c, CreativeContentPacket& p) {
        c.creative_.clear();
        for (auto& entry : p.entries) c.creative_[entry.id] = std::move(entry.item);
    }
    // The screen shows no blocks.
    static void block(ModelClient&, UpdateBlockPacket&) {}
    static void blockdata(ModelClient&, BlockActorDataPacket&) {}

    struct Route {
        PacketId id;
        void (*run)(ModelClient&, std::string_view body);
    };
    template <class P, void (*handle)(ModelClient&, P&)>
    static constexpr Route to() {
        return {P::number, [](ModelClient& c, std::string_view body) {
                    auto packet = readpacket<P>(body);
                    handle(c, packet);
                }};
    }
    static const Route routes[];
};

const ModelClient::Incoming::Route ModelClient::Incoming::routes[] = {
    to<TextPacket, text>(),
    to<ToastRequestPacket, toast>(),
    to<PlaySoundPacket, sound>(),
    to<CommandOutputPacket, reply>(),
    to<SetPlayerGameTypePacket, gametype>(),
    to<ModalFormRequestPacket, form>(),
    to<ContainerOpenPacket, open>(),
    to<ContainerClosePacket, close>(),
    to<InventoryContentPacket, content>(),
    to<InventorySlotPacket, slot>(),
    to<ItemStackResponsePacket, response>(),
    to<CreativeContentPacket, creativecontent>(),
    to<UpdateBlockPacket, block>(),
    to<BlockActorDataPacket, blockdata>(),
};

ModelClient::ModelClient(ItemNames names, bool touch, Send send)
    : names_(std::move(names)), touch_(touch), send_(std::move(send)) {}

void ModelClient::receive(std::string_view packet) {
    const auto envelope = openpacket(packet);
    if (envelope.sender != 0 || envelope.target != 0) throw ReadError("a packet for a further player of this client");
    const auto route = std::find_if(std::begin(Incoming::routes), std::end(Incoming::routes),
                                    [&](const auto& r) { return static_cast<int>(r.id) == envelope.number; });
    if (route == std::end(Incoming::routes)) {
        throw ReadError("packet " + std::to_string(envelope.number) + " is none that a client is sent");
    }
    if (recordpackets) packets.push_back({route->id, std::string(envelope.body)});
    route->run(*this, envelope.body);
}

std::string ModelClient::itemname(const NetworkItem& item) const {
    const auto found = names_.find(item.networkid);
    return found != names_.end() ? found->second.name : std::string();
}

std::string ModelClient::displayname(const NetworkItem& item) const {
    const auto* display = item.userdata ? item.userdata->getCompound("display") : nullptr;
    if (display != nullptr && !display->getString("Name").empty()) return display->getString("Name");
    const auto found = names_.find(item.networkid);
    if (found == names_.end()) return {};
    const auto byaux = found->second.byaux.find(item.aux);
    return byaux != found->second.byaux.end() ? byaux->second : found->second.displayname;
}

std::vector<std::string> ModelClient::lore(const NetworkItem& item) {
    std::vector<std::string> lines;
    const auto* display = item.userdata ? item.userdata->getCompound("display") : nullptr;
    const auto* list = display != nullptr ? display->getList("Lore") : nullptr;
    if (list == nullptr) return lines;
    for (const auto& line : list->items()) {
        if (const auto* text = line.as<std::string>()) lines.push_back(*text);
    }
    return lines;
}

bool ModelClient::shines(const NetworkItem& item) { return item.userdata && item.userdata->getList("ench") != nullptr; }

bool ModelClient::locked(const NetworkItem& item) {
    return item.userdata && item.userdata->getByte("minecraft:item_lock") == 1;
}

int ModelClient::maxstack(const NetworkItem& item) const {
    const auto found = names_.find(item.networkid);
    return found != names_.end() ? found->second.maxstack : ItemName{}.maxstack;
}

}  // namespace client
