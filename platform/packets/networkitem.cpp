// The item on the wire, and its way to a stack and back.
//
//   item  = zigzag32 id, and unless that is 0: u16 count, varint aux, [bool, zigzag32 stack id], zigzag32 block runtime
//           id, varint length of: user data, places, breaks, and for the shield i64 blocking tick
//   user data = u16 0xffff, u8 1, little-endian compound | u16 0
//   places, breaks = i32 n, n times u16 length and text
#include "platform/packets/networkitem.h"

#include <limits>

#include "platform/host.h"
#include "platform/packets/codec.h"

namespace platform {

namespace {

constexpr std::uint16_t hasuserdata = 0xffff;
constexpr std::uint8_t userdataversion = 1;

template <class IO>
void extradata(IO& io, NetworkItem& item) {
    std::uint16_t marker = item.userdata ? hasuserdata : 0;
    io.u16(marker);
    if (marker == hasuserdata) {
        auto version = userdataversion;
        io.u8(version);
        if (version != userdataversion) throw ReadError("an item's user data has an unknown version");
        if constexpr (IO::reads) item.userdata.emplace();
        io.fixedtag(*item.userdata);
    } else if (marker != 0) {
        throw ReadError("an item's user data has an unknown form");
    }
    for (auto* names : {&item.canplaceon, &item.candestroy}) {
        io.fixedlist(*names, 2, [](auto& inner, std::string& name) { inner.shorttext(name); });
    }
    if (item.networkid == shieldnetworkid) io.i64(item.blockingtick);
}

struct NameList {
    std::string_view key;
    std::vector<std::string> NetworkItem::*names;
};
constexpr NameList namelists[] = {{"CanPlaceOn", &NetworkItem::canplaceon}, {"CanDestroy", &NetworkItem::candestroy}};

}  // namespace

template <class IO>
void itemfields(IO& io, NetworkItem& item, bool withstackid) {
    if constexpr (IO::reads) item = {};
    io.zigzag32(item.networkid);
    if (item.networkid == 0) return;
    io.u16(item.count);
    io.varint(item.aux);
    if (withstackid) io.optional(item.stackid, [](auto& inner, std::int32_t& id) { inner.zigzag32(id); });
    io.zigzag32(item.blockruntimeid);
    io.sized([&](auto& inner) { extradata(inner, item); });
}

template void itemfields(PacketWriter&, NetworkItem&, bool);
template void itemfields(PacketReader&, NetworkItem&, bool);

void BinaryStream::writeType(const NetworkItem& item) {
    PacketWriter io;
    auto copy = item;
    itemfields(io, copy, true);
    writeRaw(io.stream().bytes());
}

NetworkItem tonetwork(const ItemStack& stack) {
    NetworkItem item;
    if (stack.isNull()) return item;
    item.networkid = stack.getId();
    item.count = static_cast<std::uint16_t>(stack.getCount());
    item.aux = static_cast<std::uint16_t>(stack.getAuxValue());
    item.blockruntimeid = stack.getBlockRuntimeId();
    if (const auto* data = stack.getUserData()) item.userdata = *data;
    for (const auto& list : namelists) {
        const auto* names = stack.others().getList(list.key);
        if (names == nullptr) continue;
        for (const auto& name : names->items()) {
            if (const auto* text = name.as<std::string>()) (item.*list.names).push_back(*text);
        }
    }
    return item;
}

ItemStack fromnetwork(const NetworkItem& item) {
    const auto* info = host().items->byid(item.networkid);
    if (info == nullptr || item.count == 0) return {};
    CompoundTag tag;
    tag.putString("Name", info->name);
    tag.putShort("Damage", static_cast<std::int16_t>(item.aux));
    if (item.userdata) tag.put("tag", *item.userdata);
    for (const auto& list : namelists) {
        for (const auto& name : item.*list.names) tag.list(list.key).add(name);
    }
    auto stack = ItemStack::fromTag(tag);
    stack.set(item.count);
    return stack;
}

}  // namespace platform
