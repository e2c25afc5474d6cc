// The model client against a server made by hand: what it shows, what it sends, and how it takes a refusal.
#include "client/modelclient.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/packets/containers.h"
#include "platform/packets/forms.h"
#include "platform/packets/messages.h"

using namespace platform;
using client::inventoryid;
using client::uiid;

namespace {

constexpr std::int32_t apple = 300, book = 301, sign = 302;

NetworkItem stack(std::int32_t id, std::uint16_t count, std::optional<std::int32_t> stackid = std::nullopt) {
    return {id, count, 0, stackid};
}

class Talk : public testing::Test {
protected:
    explicit Talk(bool touch = false) : c(names(), touch, [this](std::string packet) { sent.push_back(packet); }) {}

    template <class P>
    void tell(const P& packet) {
        c.receive(sealpacket(topacket(packet)));
    }
    void put(std::uint32_t container, std::uint32_t slot, NetworkItem item) {
        tell(InventorySlotPacket{container, slot, std::move(item)});
    }
    void refuse(std::int32_t id) { tell(ItemStackResponsePacket{{{ItemStackResponse::refused, id, {}}}}); }
    void accept(std::int32_t id, std::vector<ItemStackResponseContainer> containers) {
        tell(ItemStackResponsePacket{{{ItemStackResponse::accepted, id, std::move(containers)}}});
    }
    // The last packet that was sent.
    template <class P>
    P last() {
        const auto opened = openpacket(sent.at(sent.size() - 1));
        EXPECT_EQ(opened.number, static_cast<int>(P::number));
        return readpacket<P>(opened.body);
    }
    std::string shown(std::uint32_t container, int slot) {
        const auto& item = c.slot(container, slot);
        return item.networkid == 0 ? "" : c.displayname(item) + "*" + std::to_string(item.count);
    }
    std::string goods(int slot) { return shown(inventoryid, slot); }
    std::string cursor() { return shown(uiid, 0); }

    std::vector<std::string> sent;
    client::ModelClient c;

private:
    static client::ItemNames names() {
        return {{apple, {"minecraft:apple", 64, 0, "Apple", {{14, "Red Apple"}}}},
                {book, {"minecraft:book", 64, 0, "Book"}},
                {sign, {"minecraft:oak_sign", 16, 0, "Sign"}}};
    }
};

class TouchTalk : public Talk {
protected:
    TouchTalk() : Talk(true) {}
};

// "take 5 29/9>59/0" for each action of the request, and its stack ids if it has any
std::string told(const ItemStackRequest& request) {
    static const std::map<int, std::string> words = {{0, "take"}, {1, "place"}, {2, "swap"},
                                                     {3, "drop"}, {14, "pick"}, {19, "result"}};
    std::string text;
    const auto slot = [](const ItemStackRequestSlotInfo& s) {
        return std::to_string(s.container) + "/" + std::to_string(s.slot) +
               (s.stackid != 0 ? "#" + std::to_string(s.stackid) : "");
    };
    for (const auto& action : request.actions) {
        if (!text.empty()) text += ", ";
        text += words.at(action.type) + " " + std::to_string(action.amount) + " " + slot(action.source) + ">" +
                slot(action.destination);
    }
    return text;
}

}  // namespace

TEST_F(Talk, MovesAsTheyAreSentAndForeseen) {
    put(inventoryid, 9, stack(apple, 5, 7));
    put(inventoryid, 3, stack(book, 1, 8));
    put(inventoryid, 20, stack(apple, 62, 9));
    using enum ContainerName;
    const auto click = [this](ContainerName container, int slot) { c.click(container, slot); };
    const auto rightclick = [this](ContainerName container, int slot) { c.rightclick(container, slot); };
    const auto drop = [this](ContainerName container, int slot) { c.drop(container, slot); };
    const struct {
        std::function<void(ContainerName, int)> does;
        ContainerName container;
        int slot;
        const char *request, *there, *held;
    } steps[] = {
        {click, inventory, 9, "take 5 29/9#7>59/0", "", "Apple*5"},
        {click, inventory, 20, "place 2 59/0#-1>29/20#9", "Apple*64", "Apple*3"},
        {click, inventory, 20, "swap 0 59/0#-3>29/20#-3", "Apple*3", "Apple*64"},
        {click, hotbar, 3, "swap 0 59/0#-5>28/3#8", "Apple*64", "Book*1"},
        {click, armor, 0, "place 1 59/0#-7>6/0", "Book*1", ""},
        {rightclick, inventory, 20, "take 2 29/20#-5>59/0", "Apple*1", "Apple*2"},
        {rightclick, inventory, 10, "place 1 59/0#-11>29/10", "Apple*1", "Apple*1"},
        {drop, cursor, 0, "drop 1 59/0#-13>0/0", "", ""},
        {[this](auto...) { c.move(hotbar, 3, offhand, 1, 60); }, offhand, 1, "place 60 28/3#-7>34/1", "Apple*60", ""},
        {[this](auto...) { c.move(offhand, 1, cursor, 0, 1); }, cursor, 0, "take 1 34/1#-17>59/0", "Apple*1",
         "Apple*1"},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.request);
        step.does(step.container, step.slot);
        EXPECT_EQ(told(last<ItemStackRequestPacket>().requests.at(0)), step.request);
        const auto place = client::placeof(static_cast<std::uint8_t>(step.container), step.slot).value();
        EXPECT_EQ(shown(place.container, place.index), step.there);
        EXPECT_EQ(this->cursor(), step.held);
    }
    c.drop(cursor, 0);
    const auto before = sent.size();
    click(inventory, 30);
    rightclick(inventory, 30);
    drop(inventory, 30);
    EXPECT_EQ(sent.size(), before) << "an empty slot and an empty cursor";
}

TEST_F(Talk, SaysNothingThatNoClientCouldSay) {
    tell(ContainerOpenPacket{5, -1, {}, -1});
    tell(ModalFormRequestPacket{1, "{}"});
    put(inventoryid, 9, stack(apple, 5, 7));
    put(inventoryid, 10, stack(apple, 200));
    using enum ContainerName;
    const std::vector<ItemStackRequest> twins = {{-3, {}}, {-3, {}}}, crowd(65);
    const std::function<void()> unsaid[] = {
        [&] { c.click(inventory, 8); },
        [&] { c.click(inventory, 9 + 256); },
        [&] { c.rightclick(hotbar, -1); },
        [&] { c.drop(static_cast<ContainerName>(61), 0); },
        [&] { c.drop(inventory, 10); },
        [&] { c.swapwithcursor(offhand, 0); },
        [&] { c.move(inventory, 9, inventory, 36, 1); },
        [&] { c.move(inventory, 9, cursor, 0, 0); },
        [&] { c.move(inventory, 9, cursor, 0, 257); },
        [&] { c.request(twins); },
        [&] { c.request(crowd); },
        [&] { c.pickcreative(1); },
        [&] { c.command("say \xff"); },
        [&] { c.answer("\"\xc3\""); },
        [&] { c.answer(2, "1"); },
    };
    int number = 0;
    for (const auto& say : unsaid) EXPECT_THROW(say(), std::invalid_argument) << number++;
    EXPECT_TRUE(sent.empty());
    EXPECT_EQ(goods(9) + shown(uiid, 0), "Apple*5");
    EXPECT_EQ(c.forms().size(), 1u);
}

TEST_F(Talk, ARefusalBringsNothingBackThatTheServerHasPaintedOver) {
    put(inventoryid, 9, stack(apple, 5));
    c.click(ContainerName::inventory, 9);
    tell(InventoryContentPacket{inventoryid, std::vector<NetworkItem>(36)});
    put(inventoryid, 10, stack(book, 1));
    refuse(-1);
    EXPECT_EQ(goods(9), "");
    EXPECT_EQ(goods(10), "Book*1");
    EXPECT_EQ(cursor(), "");
}

TEST_F(Talk, AnswersToChainedClicksComeInOrder) {
    put(inventoryid, 9, stack(apple, 5, 7));
    c.click(ContainerName::inventory, 9);
    c.click(ContainerName::inventory, 10);
    refuse(-1);
    EXPECT_EQ(goods(9), "Apple*5");
    EXPECT_EQ(goods(10), "Apple*5") << "the second click is not answered yet";
    for (const int id : {-3, -1}) {  // nobody waits for the second any more
        refuse(id);
        EXPECT_EQ(goods(9), "Apple*5");
        EXPECT_EQ(c.slot(inventoryid, 9).stackid, 7);
        EXPECT_EQ(goods(10) + cursor(), "");
    }

    c.click(ContainerName::inventory, 9);
    c.rightclick(ContainerName::inventory, 10);
    accept(-5, {{59, {{0, 0, 5, 70}}}, {29, {{9, 9, 0, 0}}}});
    EXPECT_EQ(cursor(), "Apple*4") << "what the second click has taken stays taken";
    refuse(-7);
    EXPECT_EQ(cursor(), "Apple*5");
    EXPECT_EQ(c.cursor().stackid, 70);
    EXPECT_EQ(goods(10), "");

    c.move(ContainerName::cursor, 0, ContainerName::inventory, 20, 2);
    accept(-9, {{59, {{0, 0, 1, 70}}}, {29, {{20, 20, 4, 71}}}});
    EXPECT_EQ(cursor(), "Apple*1") << "what the server says of counts and ids counts";
    EXPECT_EQ(goods(20), "Apple*4");
    EXPECT_EQ(c.slot(inventoryid, 20).stackid, 71);
}

TEST_F(TouchTalk, ADoubleTapWithAFullCursorIsAPair) {
    put(inventoryid, 9, stack(apple, 5));
    c.click(ContainerName::inventory, 9);
    EXPECT_EQ(told(last<ItemStackRequestPacket>().requests.at(0)), "take 5 29/9>59/0");
    refuse(-1);

    put(uiid, 0, stack(sign, 1));
    c.click(ContainerName::inventory, 9);
    const auto pair = last<ItemStackRequestPacket>();
    ASSERT_EQ(pair.requests.size(), 2u);
    EXPECT_EQ(told(pair.requests[0]), "swap 0 59/0>29/9");
    EXPECT_EQ(told(pair.requests[1]), "take 1 29/9#-3>59/0#-3");
    EXPECT_EQ(goods(9), "Sign*1");
    tell(ItemStackResponsePacket{{{ItemStackResponse::refused, pair.requests[0].id, {}},
                                  {ItemStackResponse::refused, pair.requests[1].id, {}}}});
    EXPECT_EQ(goods(9), "Apple*5");
    EXPECT_EQ(cursor(), "Sign*1");

    c.swapwithcursor(ContainerName::hotbar, 2);
    const auto lone = last<ItemStackRequestPacket>();
    ASSERT_EQ(lone.requests.size(), 1u);
    EXPECT_EQ(told(lone.requests[0]), "swap 0 59/0>28/2");
}

TEST_F(Talk, ACreativePickIsThreeActions) {
    tell(CreativeContentPacket{{{4, stack(book, 1)}, {9, stack(sign, 1)}}});
    c.pickcreative(9);
    const auto request = last<ItemStackRequestPacket>().requests.at(0);
    EXPECT_EQ(told(request), "pick 0 0/0>0/0, result 0 0/0>0/0, take 16 60/50#-1>59/0");
    EXPECT_EQ(request.actions[0].number, 9u);
    EXPECT_EQ(request.actions[1].results, std::vector<NetworkItem>{stack(sign, 1)});
    EXPECT_EQ(cursor(), "Sign*16");
    refuse(-1);
    EXPECT_EQ(cursor(), "");
}

TEST_F(Talk, RawRequestsKeepTheirIds) {
    std::vector<ItemStackRequest> requests(3);
    requests[1].id = 40;
    EXPECT_EQ(c.request(requests), (std::vector<std::int32_t>{-1, 40, -3}));
    EXPECT_EQ(last<ItemStackRequestPacket>().requests.at(1).id, 40);
}

TEST_F(Talk, ContentIsTakenAsItComes) {
    put(inventoryid, 35, stack(apple, 1));
    for (const auto id : {client::offhandid, client::armorid, inventoryid, client::selectedid}) {
        tell(InventoryContentPacket{id, std::vector<NetworkItem>(36)});
    }
    EXPECT_EQ(goods(35), "");
    put(inventoryid, 9, stack(book, 2));
    tell(InventoryContentPacket{client::offhandid, {stack(sign, 1)}});
    tell(InventoryContentPacket{client::selectedid, {stack(apple, 1)}});
    EXPECT_EQ(shown(client::offhandid, 0), "Sign*1");
    EXPECT_EQ(goods(9), "Book*2");
    EXPECT_EQ(goods(0), "");
    put(inventoryid, 0xffffffff, stack(apple, 1));
    EXPECT_EQ(shown(inventoryid, -1), "");
    EXPECT_EQ(shown(55, 3), "");
}

TEST_F(Talk, AnItemIsReadOffItsUserData) {
    auto item = stack(apple, 1);
    EXPECT_EQ(c.displayname(item), "Apple");
    item.aux = 14;
    EXPECT_EQ(c.displayname(item), "Red Apple");
    EXPECT_FALSE(client::ModelClient::shines(item));
    item.userdata =
        CompoundTag::fromSNBT("{display:{Name:\"§bShop\",Lore:[\"one\",\"\"]},ench:[],\"minecraft:item_lock\":1b}");
    put(inventoryid, 0, item);
    const auto& shown = c.slot(inventoryid, 0);
    EXPECT_EQ(c.itemname(shown), "minecraft:apple");
    EXPECT_EQ(c.displayname(shown), "§bShop");
    EXPECT_EQ(client::ModelClient::lore(shown), (std::vector<std::string>{"one", ""}));
    EXPECT_TRUE(client::ModelClient::shines(shown));
    EXPECT_TRUE(client::ModelClient::locked(shown));
}

TEST_F(Talk, AContainerClosesWhenTheServerAsksAndSaysSo) {
    tell(ContainerClosePacket{5, true});
    EXPECT_TRUE(sent.empty()) << "nothing is open yet";
    tell(ContainerOpenPacket{5, -1, {1, 2, 3}, -1});
    ASSERT_TRUE(c.container());
    EXPECT_EQ(c.container()->type, -1);
    EXPECT_EQ(c.container()->z, 3);
    tell(ContainerClosePacket{4, true});
    EXPECT_TRUE(c.container()) << "another one is meant";
    tell(ContainerClosePacket{5, true});
    EXPECT_FALSE(c.container());
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(last<ContainerClosePacket>().containerid, 5);
    EXPECT_FALSE(last<ContainerClosePacket>().serverside);

    tell(ContainerOpenPacket{6, -1, {}, -1});
    c.close();
    EXPECT_EQ(last<ContainerClosePacket>().containerid, 6);
    tell(ContainerClosePacket{6, false});
    c.close();
    EXPECT_EQ(sent.size(), 2u) << "nothing is open any more";
}

TEST_F(Talk, FormsQueueBehindEachOther) {
    EXPECT_THROW(c.answer("1"), std::invalid_argument);
    for (std::uint32_t id = 1; id <= 3; ++id) tell(ModalFormRequestPacket{id, "{}"});
    ASSERT_EQ(c.forms().size(), 3u);
    c.answer("[null,\"x\"]");
    EXPECT_EQ(last<ModalFormResponsePacket>().formid, 1u);
    EXPECT_EQ(last<ModalFormResponsePacket>().json, "[null,\"x\"]");
    EXPECT_EQ(last<ModalFormResponsePacket>().reason, std::nullopt);
    EXPECT_EQ(c.forms().front().id, 2u);
    c.answer(3, "null");
    EXPECT_EQ(last<ModalFormResponsePacket>().json, std::nullopt);
    EXPECT_EQ(last<ModalFormResponsePacket>().reason, ModalFormResponsePacket::closed);
    EXPECT_THROW(c.answer(3, "null"), std::invalid_argument);
    EXPECT_EQ(c.forms().size(), 1u);
}

TEST_F(Talk, HearsAndTypes) {
    tell(TextPacket{TextType::raw, false, "", "plain 100%"});
    tell(TextPacket{TextType::chat, false, "Bob", "hi"});
    tell(TextPacket{TextType::translation, true, "", "%2$s of %s, %2, %9, %%, %", {"a", "b"}});
    EXPECT_EQ(std::vector(c.chat.begin(), c.chat.end()),
              (std::vector<std::string>{"plain 100%", "<Bob> hi", "b of a, b, %9, %, %"}));
    tell(ToastRequestPacket{"SYSTEM", "no"});
    EXPECT_EQ(c.toasts.at(0).content, "no");
    tell(PlaySoundPacket{"random.click", {0, 64, 0}, 1, 2});
    EXPECT_EQ(c.sounds.at(0).pitch, 2);
    tell(SetPlayerGameTypePacket{1});
    EXPECT_EQ(c.gametype(), 1);
    tell(CommandOutputPacket{{}, 3, 0, {{false, "bad %s", {"word"}}, {true, "fine", {}}}});
    EXPECT_FALSE(c.replies.at(0).success);
    EXPECT_EQ(c.replies.at(0).text, "bad word");
    EXPECT_TRUE(c.replies.at(1).success);
    c.command("ordomart buy");
    EXPECT_EQ(last<CommandRequestPacket>().line, "/ordomart buy");
    c.command("/list");
    EXPECT_EQ(last<CommandRequestPacket>().line, "/list");
}

TEST(HeardLines, AreToldOnceWhateverIsDropped) {
    client::Heard<int> heard;
    constexpr int most = client::Heard<int>::mostkept;
    std::vector<int> told;
    std::uint64_t seen = 0;
    const auto tell = [&] {
        const auto fresh = heard.from(seen);
        told.assign(fresh.begin(), fresh.end());
        seen = heard.total();
        return told.empty() ? std::pair(-1, -1) : std::pair(told.front(), told.back());
    };
    auto hear = [&, next = 0](int n) mutable {
        while (n-- > 0) heard.push_back(next++);
    };
    EXPECT_EQ(tell(), std::pair(-1, -1));
    hear(most);
    EXPECT_EQ(tell(), std::pair(0, most - 1));
    hear(3);  // the first three go
    EXPECT_EQ(heard.size(), most);
    EXPECT_EQ(tell(), std::pair(most, most + 2));
    EXPECT_EQ(tell(), std::pair(-1, -1));
    hear(1);
    heard.clear();
    EXPECT_EQ(tell(), std::pair(-1, -1)) << "cleared before it was told";
    hear(2);
    EXPECT_EQ(tell(), std::pair(most + 4, most + 5));
    hear(most + 5);
    EXPECT_EQ(tell(), std::pair(most + 11, 2 * most + 10)) << "the oldest went untold";
    seen = 1'000'000;  // counted of another client
    EXPECT_EQ(tell(), std::pair(-1, -1));
}

TEST_F(Talk, WhatItCannotReadIsAFault) {
    tell(ModalFormRequestPacket{7, "{}"});
    const Packet game = topacket(SetPlayerGameTypePacket{1});
    const std::string faults[] = {
        "",
        sealpacket(Packet(PacketId::InventoryContent, "\xff")),
        sealpacket(Packet(PacketId::CommandRequest)),  // not for clients
        sealpacket(game, 0, 1),                        // for the second player of a split screen
        sealpacket(game, 1),
        sealpacket(topacket(SetPlayerGameTypePacket{7})),
        sealpacket(topacket(ContainerOpenPacket{128, -1, {}, -1})),
        sealpacket(topacket(InventorySlotPacket{128, 0, stack(apple, 1)})),
        sealpacket(topacket(ModalFormRequestPacket{7, "{}"})),  // open already
        sealpacket(topacket(TextPacket{TextType::raw, false, "", "\xff"})),
    };
    int number = 0;
    for (const auto& fault : faults) EXPECT_THROW(c.receive(fault), ReadError) << number++;
    EXPECT_EQ(c.gametype(), 0);
    EXPECT_FALSE(c.container());
    EXPECT_EQ(c.forms().size(), 1u);
    EXPECT_TRUE(c.chat.empty());
    c.recordpackets = true;
    c.receive(sealpacket(game));
    ASSERT_EQ(c.packets.size(), 1u);
    EXPECT_EQ(c.packets[0].id, PacketId::SetPlayerGameType);
    EXPECT_EQ(c.packets[0].body, "\x02");
}
