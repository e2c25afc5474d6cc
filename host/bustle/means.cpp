#include "host/bustle/means.h"

#include <algorithm>

#include "host/bustle/visits.h"
#include "host/demo/demo.h"
#include "host/money.h"
#include "host/server.h"
#include "host/world/world.h"
#include "platform/level.h"
#include "platform/player.h"

namespace host {

namespace {

constexpr int slots = 36, leastfree = 12, kept = 12;
constexpr int harvests = 4;          // kinds of goods that he brings at a time
constexpr int harvestworth = 500;    // of a kind
constexpr int poor = demopurse / 5;  // with less he gets a purse again

void unpack(platform::PlayerInventory& bags) {
    int free = 0;
    for (int slot = 0; slot < slots; ++slot) free += bags.getItem(slot).isNull() ? 1 : 0;
    if (free >= leastfree) return;
    for (int slot = kept; slot < slots; ++slot) bags.setItem(slot, {});
}

void harvest(platform::PlayerInventory& bags, Person& person) {
    const auto& wares = person.craft->wares;
    for (int i = 0; i < harvests; ++i) {
        const Ware& ware = wares[static_cast<std::size_t>(person.dice.below(static_cast<int>(wares.size())))];
        const auto one = platform::ItemStack::create(ware.item, 1, static_cast<std::int16_t>(ware.aux));
        const int most = one.isNull() ? 0 : one.getMaxStackSize();
        const int count = std::min(most, 1 + harvestworth / ware.value);
        if (count > 0) bags.add(platform::ItemStack::create(ware.item, count, static_cast<std::int16_t>(ware.aux)));
    }
}

void pay(Server& server, const Person& person) {
    Money money(*server.services().libraries);
    if (money.there()) {
        if (money.get(person.who.xuid) < poor) money.set(person.who.xuid, demopurse);
    } else if (server.world().score(person.who.name, demoobjective) < poor) {
        server.world().setscore(person.who.name, demoobjective, demopurse);
    }
}

}  // namespace

std::string bustlerefusal(Server& server) {
    if (isdemo(server)) return {};
    return "a bustle is made up, with goods and coins out of nothing, and its trades stay in the books: it is only for "
           "a demo market. This server directory is none; start in a new one, without --empty";
}

void endow(Server& server, Person& person) {
    platform::ServerPlayer* const player = server.services().level->getPlayerByXuid(person.who.xuid);
    if (player == nullptr) return;
    unpack(player->getSupplies());
    harvest(player->getSupplies(), person);
    player->refreshInventory();
    pay(server, person);
}

}  // namespace host
