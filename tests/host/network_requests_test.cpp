// The server's own handling of inventory requests: what is granted, what is refused, and that nothing appears or
// vanishes on the way.
#include <array>
#include <random>
#include <sstream>

#include "host/network/inventoryrequests.h"
#include "platform/packets/itemstackrequest.h"
#include "world_bare.h"

namespace {

using platform::ActionType;
using platform::ContainerName;
using Response = platform::ItemStackResponse;

constexpr std::int32_t requestid = -5;
constexpr const char* refused = "refused";

// Slots by our own number: 36 to 39 armour, 40 offhand, 41 cursor. Steps name them as clients do; "=own" is the number
// of the request itself, "=-3" any other, and without it the number that the stack has when the packet is made.
struct Case {
    const char *what, *before, *steps, *after;
    bool creative = false;
};
const Case cases[] = {
    {"a whole stack to the cursor", "0 apple*10", "take 10 hotbar:0 cursor:0", "41 apple*10"},
    {"half of it", "9 apple*10", "take 5 inventory:9 cursor:0", "9 apple*5, 41 apple*5"},
    {"onto its kind", "0 apple*60, 41 apple*10", "place 4 cursor:0 hotbar:0", "0 apple*64, 41 apple*6"},
    {"no more than a stack holds", "0 apple*60, 41 apple*10", "place 5 cursor:0 hotbar:0", refused},
    {"no more than lies there", "0 apple*10", "take 11 hotbar:0 cursor:0", refused},
    {"nothing is no amount", "0 apple*10", "take 0 hotbar:0 cursor:0", refused},
    {"nor is less than nothing", "0 apple*10", "take -1 hotbar:0 cursor:0", refused},
    {"not onto another item", "0 apple*10, 41 dirt*1", "place 1 cursor:0 hotbar:0", refused},
    {"not onto itself", "0 apple*10", "take 1 hotbar:0 hotbar:0", refused},
    {"nor under another name", "0 apple*10", "take 1 hotbar:0 combined:0", refused},
    {"an empty slot gives nothing", "", "take 1 hotbar:0 cursor:0", refused},
    {"combined names both", "3 apple*1, 30 dirt*1", "swap 0 combined:3 combined:30", "3 dirt*1, 30 apple*1"},
    {"a swap with an empty slot", "3 apple*1", "swap 0 hotbar:3 inventory:30", "30 apple*1"},
    {"a swap of nothing", "", "swap 0 hotbar:3 inventory:30", refused},
    {"hotbar ends at 8", "9 apple*1", "take 1 hotbar:9 cursor:0", refused},
    {"inventory begins at 9", "8 apple*1", "take 1 inventory:8 cursor:0", refused},
    {"and ends at 35", "36 diamond_helmet*1", "take 1 inventory:36 cursor:0", refused},
    {"the offhand is its slot 1", "40 shield*1", "take 1 offhand:1 cursor:0", "41 shield*1"},
    {"and no other", "40 shield*1", "take 1 offhand:0 cursor:0", refused},
    {"a screen that is not there", "0 apple*1", "place 1 hotbar:0 chest:0", refused},
    {"armour where it is worn", "41 diamond_boots*1", "place 1 cursor:0 armor:3", "39 diamond_boots*1"},
    {"but not elsewhere", "41 diamond_boots*1", "place 1 cursor:0 armor:0", refused},
    {"an apple is no hat", "0 apple*1, 36 diamond_helmet*1", "swap 0 hotbar:0 armor:0", refused},
    {"a wrong stack number", "0 apple*10", "take 1 hotbar:0=999999 cursor:0", refused},
    {"a number for an empty slot", "0 apple*10", "take 1 hotbar:0 cursor:0=999999", refused},
    {"a drop", "0 apple*10", "drop 4 hotbar:0", "0 apple*6"},
    {"a drop from the cursor", "41 apple*10", "drop 10 cursor:0", ""},
    {"more than there is", "0 apple*10", "drop 11 hotbar:0", refused},
    {"a locked stack stays", "0 locked*1", "take 1 hotbar:0 cursor:0", refused},
    {"also against a swap", "0 locked*1, 1 apple*1", "swap 0 hotbar:1 hotbar:0", refused},
    {"what must be kept may be moved", "0 kept*3", "take 3 hotbar:0 cursor:0", "41 apple*3"},
    {"but not dropped", "0 kept*3", "drop 1 hotbar:0", refused},
    {"no destroying in survival", "0 apple*10", "destroy 1 hotbar:0", refused},
    {"no eating by request", "0 apple*10", "consume 1 hotbar:0", refused},
    {"no picking in survival", "", "pick 1; take 1 created:50=0 cursor:0", refused},
    {"nothing comes of nothing", "", "take 1 created:50=0 cursor:0", refused},
    {"its own number for what it changed", "0 apple*9", "take 9 hotbar:0 cursor:0; place 9 cursor:0=own hotbar:1",
     "1 apple*9"},
    {"but not for what it did not", "0 apple*10", "take 1 hotbar:0=own cursor:0", refused},
    {"a late fault undoes the rest", "0 apple*10, 1 dirt*3",
     "take 5 hotbar:0 cursor:0; drop 1 hotbar:1; take 1 inventory:20 hotbar:3", refused},
    {"no actions", "0 apple*10", "", refused},
    {"a creative pick", "", "pick 1; result 0; take 3 created:50=0 hotbar:4", "4 first*3", true},
    {"no entry of that number", "", "pick 0; take 1 created:50=0 cursor:0", refused, true},
    {"nor that one", "", "pick 1000000; take 1 created:50=0 cursor:0", refused, true},
    {"a result without a pick", "", "result 0; take 1 created:50=0 cursor:0", refused, true},
    {"destroying", "0 apple*10", "destroy 4 hotbar:0", "0 apple*6", true},
    {"but not what is locked", "0 locked*1", "destroy 1 hotbar:0", refused, true},
};

struct Container {
    ContainerName name;
    int first;  // our number of its slot 0
};
const std::map<std::string, Container> containers = {
    {"hotbar", {ContainerName::hotbar, 0}},      {"inventory", {ContainerName::inventory, 0}},
    {"combined", {ContainerName::combined, 0}},  {"armor", {ContainerName::armor, 36}},
    {"offhand", {ContainerName::offhand, 39}},   {"cursor", {ContainerName::cursor, 41}},
    {"chest", {ContainerName::blockentity, 99}}, {"created", {ContainerName::createdoutput, 99}},
};
const std::map<std::string, ActionType> actions = {
    {"take", ActionType::take},         {"place", ActionType::place},        {"swap", ActionType::swap},
    {"drop", ActionType::drop},         {"destroy", ActionType::destroy},    {"consume", ActionType::consume},
    {"pick", ActionType::creativepick}, {"result", ActionType::craftresult},
};

std::vector<std::string> pieces(const std::string& text, char separator) {
    std::vector<std::string> all;
    std::istringstream in(text);
    for (std::string piece; std::getline(in, piece, separator);) {
        const auto begin = piece.find_first_not_of(' ');
        if (begin != std::string::npos) all.push_back(piece.substr(begin));
    }
    return all;
}

class Requests : public bare::BareWorld {
protected:
    Requests() {
        open();
        alice_ = &join("Alice", "1001");
    }
    host::Inventory& slots() { return alice_->inventory(); }

    ItemStack parsed(const std::string& text) {
        const auto star = text.find('*');
        const std::string name = text.substr(0, star), count = text.substr(star + 1);
        const auto lock = [&](const char* item, const char* mode) {
            return fromsnbt(std::string(R"({Name:"minecraft:)") + item + R"(",Count:)" + count +
                            R"(b,tag:{"minecraft:item_lock":)" + mode + "b}}");
        };
        if (name == "locked") return lock("diamond_sword", "1");
        if (name == "kept") return lock("apple", "2");
        ItemStack made = name == "first" ? host::itemtable().creativelist().at(0) : stack(name);
        made.set(std::stoi(count));
        return made;
    }
    void holds(const std::string& picture) {
        for (int i = 0; i < host::slotcount; ++i) slots().put(i, ItemStack());
        for (const std::string& slot : pieces(picture, ','))
            slots().put(std::stoi(slot), parsed(slot.substr(slot.find(' ') + 1)));
        world->flush();
    }
    std::string picture(bool withnumbers = false) {
        std::string text;
        for (int i = 0; i < host::slotcount; ++i) {
            const auto& slot = slots().slot(i);
            if (slot.stack.isNull()) continue;
            text += (text.empty() ? "" : ", ") + std::to_string(i) + " " + told(slot.stack);
            if (withnumbers) text += " #" + std::to_string(slot.stackid);
        }
        return text;
    }
    // Everything he has and everything on the ground, by item.
    std::map<std::string, int> goods() {
        std::map<std::string, int> sum;
        const auto count = [&](const ItemStack& s) {
            if (!s.isNull()) sum[s.getTypeName()] += s.getCount();
        };
        for (int i = 0; i < host::slotcount; ++i) count(slots().slot(i).stack);
        for (const auto& item : world->droppeditems()) count(item.stack);
        return sum;
    }

    platform::ItemStackRequestSlotInfo named(const std::string& text, std::int32_t request) {
        const auto colon = text.find(':'), equals = text.find('=');
        const Container& container = containers.at(text.substr(0, colon));
        const int slot = std::stoi(text.substr(colon + 1));
        const int index = container.first + slot;
        std::int32_t number = index < host::slotcount ? slots().slot(index).stackid : 0;
        if (equals != std::string::npos) {
            const std::string given = text.substr(equals + 1);
            number = given == "own" ? request : std::stoi(given);
        }
        return {static_cast<std::uint8_t>(container.name), static_cast<std::uint8_t>(slot), number};
    }
    Response ask(const std::string& steps, std::int32_t id = requestid) {
        platform::ItemStackRequest request;
        request.id = id;
        for (const std::string& step : pieces(steps, ';')) {
            const auto words = pieces(step, ' ');
            platform::ItemStackRequestAction action;
            action.type = static_cast<std::uint8_t>(actions.at(words.at(0)));
            action.amount = static_cast<std::int8_t>(std::stoi(words.at(1)));
            action.number = static_cast<std::uint32_t>(std::stoi(words.at(1)));
            if (words.size() > 2) action.source = named(words[2], id);
            if (words.size() > 3) action.destination = named(words[3], id);
            request.actions.push_back(action);
        }
        return host::answerrequest(*alice_, request);
    }

    host::ServerPlayerImpl* alice_;
};

TEST_F(Requests, aregrantedorrefusedasawhole) {
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        world->setgametype("Alice", c.creative ? 1 : 0);
        holds(c.before);
        const auto before = picture(true);
        const auto goodsbefore = goods();
        const Response answer = ask(c.steps);
        EXPECT_EQ(answer.requestid, requestid);
        EXPECT_TRUE(c.creative || goods() == goodsbefore);
        if (c.after == refused) {
            EXPECT_EQ(answer.result, Response::refused);
            EXPECT_EQ(picture(true), before);
        } else {
            EXPECT_EQ(answer.result, Response::accepted);
            const std::string after = picture();
            holds(c.after);
            EXPECT_EQ(after, picture());
        }
        // The answer told the client; a slot packet on top of it is for changes that it does not know of.
        EXPECT_TRUE(slots().unsent.none());
    }
}

TEST_F(Requests, theanswertellsnumbersandcounts) {
    holds("2 apple*10");
    slots().put(0, fromsnbt(R"({Name:"minecraft:diamond_sword",Count:1b,tag:{Damage:9,display:{Name:"Sting"}}})"));
    const auto sword = slots().slot(0).stackid;
    const Response answer = ask("take 1 hotbar:0 cursor:0; place 4 hotbar:2 hotbar:0=own");
    const auto find = [&](ContainerName name, int slot) {
        for (const auto& container : answer.containers)
            for (const auto& s : container.slots)
                if (container.container == static_cast<std::uint8_t>(name) && s.slot == slot) return s;
        ADD_FAILURE() << "no such slot in the answer";
        return platform::ItemStackResponseSlot();
    };
    EXPECT_EQ(answer.containers.size(), 2u);
    const auto held = find(ContainerName::cursor, 0);
    EXPECT_EQ(held.stackid, sword);
    EXPECT_EQ(held.customname, "Sting");
    EXPECT_EQ(held.durability, 9);
    const auto put = find(ContainerName::hotbar, 0);
    EXPECT_EQ(put.count, 4);
    EXPECT_EQ(put.stackid, slots().slot(0).stackid);
    EXPECT_EQ(find(ContainerName::hotbar, 2).count, 6);
    EXPECT_EQ(find(ContainerName::hotbar, 2).hotbarslot, 2);
}

TEST_F(Requests, maynameanearlierrequest) {
    holds("0 apple*10");
    EXPECT_EQ(ask("take 4 hotbar:0 cursor:0", -5).result, Response::accepted);
    EXPECT_EQ(ask("place 1 cursor:0=-5 hotbar:3", -7).result, Response::accepted);
    // What a later request changed is that request's.
    EXPECT_EQ(ask("place 1 cursor:0=-5 hotbar:4", -9).result, Response::refused);
    EXPECT_EQ(ask("place 3 cursor:0=-7 hotbar:4", -11).result, Response::accepted);
    // An emptied slot may be named so as well; what the server has changed since may not.
    EXPECT_EQ(ask("take 1 hotbar:4=-11 cursor:0=-11", -13).result, Response::accepted);
    alice_->getSupplies().setItem(4, stack("apple", 9));
    EXPECT_EQ(ask("drop 1 hotbar:4=-13", -15).result, Response::refused);
    EXPECT_EQ(picture(), "0 apple*6, 3 apple*1, 4 apple*9, 41 apple*1");
}

TEST_F(Requests, thedeadmovenothing) {
    holds("0 apple*10");
    world->setalive("Alice", false);
    EXPECT_EQ(ask("drop 1 hotbar:0").result, Response::refused);
}

// Whatever is asked for, in whatever order: goods are neither made nor lost, no slot holds what it cannot hold, and no
// two stacks bear one number.
TEST_F(Requests, nothingappearsorvanishes) {
    holds("0 apple*64, 1 apple*30, 9 ender_pearl*16, 10 ender_pearl*3, 20 kept*3, 36 diamond_helmet*1, 40 shield*1");
    const auto wanted = goods();
    std::mt19937 random(560);
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const auto any = [&](const auto& list) { return std::string(list[random() % std::size(list)]); };
    // Drops are rare, or there is soon nothing left to move.
    std::vector<std::string> verbs(40, "take");
    verbs.insert(verbs.end(), 40, "place");
    verbs.insert(verbs.end(), 20, "swap");
    verbs.insert(verbs.end(), {"drop", "destroy", "pick", "result"});
    const std::array places = {"hotbar:", "hotbar:",   "inventory:1", "inventory:1", "cursor:",
                               "cursor:", "combined:", "armor:",      "offhand:",    "created:"};
    const std::array numbers = {"", "", "", "", "", "", "", "", "", "=-3", "=-5", "=0"};
    const auto slot = [&] { return any(places) + std::to_string(below(3)) + any(numbers); };
    int granted = 0;
    for (int round = 0; round < 20'000; ++round) {
        std::string steps;
        for (int n = below(2); n >= 0; --n)
            steps += any(verbs) + " " + std::to_string(below(12) - 1) + " " + slot() + " " + slot() + ";";
        granted += ask(steps, round % 2 == 0 ? -3 : -5).result == Response::accepted ? 1 : 0;
        std::map<std::int32_t, int> seen;
        for (int i = 0; i < host::slotcount; ++i) {
            const auto& held = slots().slot(i);
            ASSERT_EQ(held.stack.isNull(), held.stackid == 0);
            ASSERT_LE(held.stack.getCount(), held.stack.getMaxStackSize());
            ASSERT_TRUE(held.stackid == 0 || ++seen[held.stackid] == 1) << "slot " << i;
        }
        ASSERT_TRUE(round % 100 != 0 || goods() == wanted) << "round " << round;
    }
    EXPECT_EQ(goods(), wanted);
    EXPECT_GT(granted, 500);  // else it tries nothing
}

}  // namespace
