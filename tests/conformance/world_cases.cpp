// Scoreboard, items and what a player carries.
#include <limits>
#include <stdexcept>

#include "platform/scoreboard.h"
#include "tests/conformance/conformance.h"

namespace conformance {

using platform::ItemStack;

TEST_P(Conformance, ScoresOfPlayersAndOfNamesAreKeptApart) {
    startwithplayer();
    withplayer([&](platform::ServerPlayer& player) {
        platform::Scoreboard& board = *server->services().scoreboard;
        EXPECT_EQ(board.getObjective("gold"), nullptr);
        EXPECT_FALSE(board.addScore(player, "gold", 1));
        EXPECT_FALSE(board.setScore("gold", "somebody", 1));
        platform::Objective* const gold = board.newObjective("gold", "Gold");
        ASSERT_NE(gold, nullptr);
        EXPECT_EQ(board.getObjective("gold"), gold);
        EXPECT_EQ(gold->getName(), "gold");
        EXPECT_EQ(gold->getDisplayName(), "Gold");

        EXPECT_EQ(board.getScore(player, "gold"), 0);
        EXPECT_TRUE(board.addScore(player, "gold", 5));
        EXPECT_TRUE(board.reduceScore(player, "gold", 8));
        EXPECT_EQ(board.getScore(player, "gold"), -3);
        EXPECT_TRUE(gold->hasScore(board.getScoreboardId(player)));
        EXPECT_EQ(board.createScoreboardId(player), board.getScoreboardId(player));

        // A name may be that of a player, and is somebody else all the same.
        EXPECT_FALSE(board.getScoreboardId("Tester").isValid());
        EXPECT_THROW(static_cast<void>(board.getScore("gold", "Tester")), std::runtime_error);
        const auto id = board.createScoreboardId("Tester");
        EXPECT_TRUE(id.isValid());
        EXPECT_EQ(board.createScoreboardId("Tester"), id);
        EXPECT_FALSE(gold->hasScore(id));
        EXPECT_THROW(static_cast<void>(board.getScore("gold", "Tester")), std::runtime_error) << "an id is no score";
        bool worked = false;
        EXPECT_EQ(board.modifyPlayerScore(worked, id, *gold, 0, platform::PlayerScoreSetFunction::Add), 0);
        EXPECT_TRUE(worked);
        EXPECT_EQ(board.getScore("gold", "Tester"), 0);
        board.modifyPlayerScore(worked, {}, *gold, 1, platform::PlayerScoreSetFunction::Set);
        EXPECT_FALSE(worked);
        EXPECT_TRUE(board.setScore("gold", "Tester", 100));
        EXPECT_TRUE(board.reduceScore("gold", "Tester", 1));
        EXPECT_EQ(board.getScore("gold", "Tester"), 99);
        EXPECT_EQ(board.getScore(player, "gold"), -3);

        constexpr int most = std::numeric_limits<int>::max();
        EXPECT_TRUE(board.setScore("gold", "Tester", most));
        EXPECT_TRUE(board.addScore("gold", "Tester", 1));
        EXPECT_EQ(board.getScore("gold", "Tester"), std::numeric_limits<int>::min());
    });
}

TEST_P(Conformance, AnItemSurvivesSaveAndLoad) {
    start();
    server->onserver([&] {
        const auto tag = platform::CompoundTag::fromSNBT(
            "{Name:\"minecraft:diamond_sword\",Count:1b,Damage:0s,WasPickedUp:1b,CanDestroy:[\"minecraft:stone\"],"
            "tag:{Damage:7,display:{Name:\"Sting\",Lore:[\"old\"]},ench:[{id:9s,lvl:3s}]}}");
        ASSERT_TRUE(tag);
        const ItemStack sword = ItemStack::fromTag(*tag);
        ASSERT_FALSE(sword.isNull());
        EXPECT_EQ(sword.save(), *tag);
        EXPECT_EQ(sword.getMaxStackSize(), 1);
        EXPECT_GT(sword.getMaxDamage(), 7);
        EXPECT_NE(server->services().items->hovertext(sword).find("Sting"), std::string::npos);

        platform::ItemRegistry& items = *server->services().items;
        const auto* info = items.find("minecraft:diamond_sword");
        ASSERT_NE(info, nullptr);
        EXPECT_EQ(items.find("diamond_sword"), info);
        EXPECT_EQ(items.byid(sword.getId()), info);
        EXPECT_EQ(items.byid(0), nullptr);
        EXPECT_EQ(items.find("minecraft:no_such_item"), nullptr);
        ItemStack unknown = sword;
        unknown.load(*platform::CompoundTag::fromSNBT("{Name:\"minecraft:no_such_item\",Count:1b}"));
        EXPECT_TRUE(unknown.isNull());
        EXPECT_EQ(unknown.getId(), 0);
    });
}

TEST_P(Conformance, AnInventoryTakesWhatHasRoom) {
    startwithplayer();
    withplayer([](platform::ServerPlayer& player) {
        platform::PlayerInventory& slots = player.getSupplies();
        const int size = slots.getContainerSize();
        ASSERT_EQ(size, 36);
        const auto apples = [](int count) { return ItemStack::create("apple", count); };
        for (int i = 0; i < size; ++i) slots.setItem(i, apples(64));
        EXPECT_FALSE(slots.canAdd(apples(1)));
        EXPECT_TRUE(slots.add(ItemStack()));
        slots.setItem(20, apples(60));
        EXPECT_TRUE(slots.canAdd(apples(4)));
        EXPECT_FALSE(slots.canAdd(apples(5)));
        EXPECT_FALSE(slots.canAdd(ItemStack::create("dirt")));
        EXPECT_FALSE(slots.add(apples(5)));
        EXPECT_EQ(slots.getItem(20).getCount(), 60) << "no change without room";
        EXPECT_TRUE(slots.add(apples(4)));
        EXPECT_EQ(slots.getItem(20).getCount(), 64);

        slots.removeItem(20, 4);
        EXPECT_EQ(slots.getItem(20).getCount(), 60);
        slots.removeItem(20, 99);
        EXPECT_TRUE(slots.getItem(20).isNull()) << "at most what lies there";
        slots.setItem(3, ItemStack());
        EXPECT_TRUE(slots.canAdd(ItemStack::create("ender_pearl", 32))) << "two slots of 16";
        EXPECT_TRUE(slots.add(ItemStack::create("ender_pearl", 17)));
        EXPECT_EQ(slots.getItem(3).getCount() + slots.getItem(20).getCount(), 17);
        EXPECT_FALSE(slots.canAdd(ItemStack::create("ender_pearl", 16)));
        EXPECT_TRUE(slots.canAdd(ItemStack::create("ender_pearl", 15)));
    });
}

TEST_P(Conformance, PlayersAreFoundAndContainerIdsCounted) {
    startwithplayer();
    std::uint64_t session = 0;
    withplayer([&](platform::ServerPlayer& player) {
        session = player.sessionid();
        EXPECT_EQ(server->services().level->getPlayer(session), &player);
        EXPECT_EQ(server->services().level->getAllPlayers(), std::vector<platform::ServerPlayer*>{&player});
        EXPECT_EQ(server->services().level->getPlayerByXuid(""), nullptr);
        for (int last = player._nextContainerCounter(), i = 0; i < 250; ++i) {
            EXPECT_EQ(player._nextContainerCounter(), last == 99 ? 1 : last + 1);
            last = player.currentContainerCounter();
        }
    });
    platform::KnownPlayers& known = *server->services().knownplayers;
    server->leave(xuid);
    EXPECT_EQ(known.getXuid("Tester"), xuid);
    EXPECT_EQ(known.getXuid("tESTER"), xuid);
    EXPECT_EQ(known.fromXuid(xuid), "Tester");
    EXPECT_EQ(known.getXuid("Nobody") + known.fromXuid("1"), "");
    server->join("Tester", xuid);
    withplayer([&](platform::ServerPlayer& player) { EXPECT_NE(player.sessionid(), session); });
}

}  // namespace conformance
