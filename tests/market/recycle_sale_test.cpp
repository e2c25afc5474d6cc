// Selling to a commission: the list, the form with a slider for each slot that matches, and what the answer does or
// refuses to do.
#include <fmt/format.h>

#include "platform/host.h"
#include "platform/level.h"
#include "plugin/forms/openers.h"
#include "plugin/shopsystem/playershopstate.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/trade/trade.h"
#include "tests/market/chest_stage.h"

using namespace chest;

namespace {

const std::string cid = "2535400000000003";
const std::string changed = "Operation failed, shopinfo has been changed";

// From the command to the form of the row that shows the title.
void picks(Actor& seller, const std::string& title) {
    seller.dismisses().types("ordomart formmenu").presses("Recycle shops (form)").presses(title);
}

// Nothing, when the item has no name.
void puts(Stage& stage, Actor& player, int slot, const std::string& item, int count) {
    stage.onserver(
        [&] { stage.server().world().setitem(player.who().name, slot, platform::ItemStack::create(item, count)); });
}

json recycles(Stage& stage, const std::string& owner = bob) { return stage.shopfile(owner)["recycles"]; }

std::string stored(const json& record) {
    std::string stacks;
    for (const auto& text : record["recycleditemnbtlist"]) {
        const auto tag = platform::CompoundTag::fromSNBT(text.get<std::string>()).value();
        stacks += fmt::format("{}*{} ", tag.getString("Name").substr(10), tag.getByte("Count"));
    }
    return stacks;
}

// "slot*most" of every slider, which stands at its most.
std::string sliders(const Actor& seller) {
    std::string all;
    const json form = seller.form();
    for (const auto& element : form["content"]) {
        if (element["type"] != "slider") continue;
        const std::string text = element["text"], slot = text.substr(14, text.find("§r】") - 14);
        EXPECT_EQ(text, "【§bSlot No." + slot + "§r】\nQuantity to sell");
        EXPECT_EQ(json::array({element["min"], element["step"], element["default"]}), json({0, 1, element["max"]}));
        all += fmt::format("{}{}*{}", all.empty() ? "" : " ", slot, element["max"].get<int>());
    }
    return all;
}

enum flags { none = 0, damage = 1, ench = 2, nbt = 4 };

json wish(const std::string& title, const std::string& itemnbt, int set, int wanted = 100) {
    json record = commission("apple", 7, wanted, title);
    record.update({{"itemnbt", itemnbt},
                   {"filterauxordamage", (set & damage) != 0},
                   {"filterench", (set & ench) != 0},
                   {"filteritemnbt", (set & nbt) != 0}});
    return record;
}

std::string sword(const std::string& data, int aux = 0, bool pickedup = false, int count = 1) {
    return fmt::format("{{Count:{}b,Damage:{}s,Name:\"minecraft:diamond_sword\",WasPickedUp:{}b{}}}", count, aux,
                       pickedup ? 1 : 0, data.empty() ? "" : ",tag:{" + data + "}");
}
const std::string apple = R"({Count:1b,Damage:0s,Name:"minecraft:apple",WasPickedUp:0b})", plain = sword(""),
                  worn5 = sword("Damage:5"), worn9 = sword("Damage:9"), aux3 = sword("", 3),
                  sharp1 = sword("ench:[{id:9s,lvl:1s}]"), sharp2 = sword("ench:[{id:9s,lvl:2s}]");

}  // namespace

TEST(RecycleSale, FromTheListToTheOwnersStore) {
    Stage stage;
    json wanted = wish("Apples", apple, ench, 100);
    wanted.update({{"recycleitemdescribe", "ripe"},
                   {"recycleitemtag", "fruit"},
                   {"nowhasrecyclenum", 2},
                   {"recycleditemnbtlist", {snbt("apple", 2)}}});
    stage.writeshop(bob, nullptr, wanted, json::object(),
                    {{"shopname", "Bob's"}, {"ownerlang", "zh_CN"}, {"recycleamount", 2}, {"recyclecost", 14}});
    Actor& alice = stage.join("Alice", ada).setmoney(50);
    alice.gives(3, "apple", 64).gives(4, "stone", 9).gives(35, "apple", 5);

    alice.types("ordomart formmenu").presses("Recycle shops (form)");
    const json list = alice.form();
    EXPECT_EQ(list["title"], "Recycle shop");
    EXPECT_EQ(list["content"], "Current page 1. There are 1 pages in total, and 1 recycle-commissions are searched");
    EXPECT_EQ(list["buttons"][0]["text"],
              "Item name:Apples§r§f(§aApple§f)\n§f§rStill wanted:100   §f§r§e7 LLmoney/one");
    alice.presses("Apples");
    const json form = alice.form();
    EXPECT_EQ(form["title"], "Sell items");
    std::vector<std::string> labels;
    for (const auto& element : form["content"])
        if (element["type"] == "label") labels.push_back(element["text"]);
    EXPECT_EQ(labels, (std::vector<std::string>{
                          "§f§r§bYour money§f : §e50\uE102", "Apple", "§f§rDamage and aux value match: \uE0A1",
                          "§f§rEnchantments match: \uE0A0", "§f§rNBT matches exactly: \uE0A1",
                          "§f§r§l§f===========================",
                          "§f§rItem name:§bApples§f§r\n§d§l§oripe§f§r\n§f§r§b【§2fruit§b】§f§r\n"
                          "Damage:§40§f/§20§f§r\nStill wanted:100§f§r\nRecycled:2§f§r\n§e7 LLmoney/one§f§r\n"
                          "§d§oFrom:Bob's§f§r\n",
                          "Slots with items that fit:"}));
    EXPECT_EQ(sliders(alice), "3*64 35*5");

    alice.answers(nullptr);  // back to the list as it was
    alice.presses("Apples").fills({{"Slot No.3§r", 30}});
    const json result = alice.form();
    EXPECT_EQ(result["title"], "recycle successfully!");
    EXPECT_EQ(result["content"], "玩家 Alice 在 Bob's 回收物品 minecraft:apple*35 获得金钱 245");
    EXPECT_EQ(alice.sounds(), std::vector<std::string>{"mob.villager.yes"});
    EXPECT_EQ(alice.money(), 295);
    EXPECT_EQ(alice.has(3) + alice.has(35), "minecraft:apple*34");

    alice.presses("Continue");
    EXPECT_NE(alice.formtext().find("wanted:65 "), std::string::npos) << "a new list: " << alice.formtext();
    alice.presses("Apples").fills({{"Slot No.3§r", 0}});
    alice.presses("Exit");
    EXPECT_EQ(alice.form()["title"], "Main menu");

    const json shop = recycles(stage);
    EXPECT_EQ(shop["recycleamount"], 37);
    EXPECT_EQ(shop["recyclecost"], 259);
    EXPECT_EQ(shop["recycleitems"][0]["recycleitemleftwanna"], 65);
    EXPECT_EQ(shop["recycleitems"][0]["nowhasrecyclenum"], 37);
    EXPECT_EQ(stored(shop["recycleitems"][0]), "apple*2 apple*30 apple*5 ");
    const auto log = stage.file("plugins/Ordomart/log/" + bob + ".relog");
    for (const char* line : {"玩家 Alice 在 Bob's 回收物品 minecraft:apple:? * 35 获得金钱 245",
                             "玩家 Alice 在 Bob's 回收物品 minecraft:apple:? * 0 获得金钱 0"})
        EXPECT_NE(log.find(line), std::string::npos) << "a sale of nothing is one too: " << log;
    EXPECT_NE(stage.log().find("[debuglogger][info] total query time:"), std::string::npos);
}

TEST(RecycleSale, TakesFromSlotToSlotUntilNothingIsWanted) {
    struct change {
        int slot = 4;
        const char* item = "apple";
        int count = 30;
    };
    constexpr bool op = true;
    const struct {
        const char* name;
        bool isop;
        int wanted;
        std::array<int, 3> asked;
        change meanwhile;
        int pieces;
        const char* store;
        const char* left;
    } cases[] = {
        {"all of it", !op, 200, {64, 30, 5}, {}, 99, "apple*64 apple*30 apple*5 ", ""},
        {"cut where it fills", !op, 70, {64, 30, 5}, {}, 70, "apple*64 apple*6 ", "4:24 35:5 "},
        {"exactly full", !op, 64, {64, 30, 5}, {}, 64, "apple*64 ", "4:30 35:5 "},
        {"nothing", !op, 10, {0, 0, 0}, {}, 0, "", "3:64 4:30 35:5 "},
        {"an emptied slot", !op, 200, {64, 30, 5}, {4, ""}, 69, "apple*64 apple*5 ", ""},
        {"a shrunk slot", !op, 200, {64, 30, 5}, {3, "apple", 2}, 37, "apple*2 apple*30 apple*5 ", ""},
        {"a grown slot", !op, 200, {0, 30, 5}, {35, "apple", 9}, 35, "apple*30 apple*5 ", "3:64 35:4 "},
        {"another item by now", !op, 200, {0, 30, 5}, {4, "stone", 64}, 5, "apple*5 ", "3:64 4:64 "},
        {"nothing but another item", !op, 200, {0, 30, 0}, {4, "dirt", 64}, 0, "", "3:64 4:64 35:5 "},
        {"nor for an operator", op, 200, {0, 30, 5}, {4, "dirt", 64}, 5, "", "3:64 4:64 "},
        {"an operator's shop", op, 2, {64, 1, 0}, {}, 65, "", "4:29 35:5 "},
        {"an operator wants less than none", op, -1, {64, 30, 5}, {}, 0, "", "3:64 4:30 35:5 "},
    };
    constexpr int slots[] = {3, 4, 35};
    Stage stage;
    Actor& alice = stage.join("Alice", ada);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        stage.writeshop(c.name, nullptr, wish(c.name, apple, none, c.wanted), json::object(), {{"isopshop", c.isop}});
        alice.setmoney(0).gives(3, "apple", 64).gives(4, "apple", 30).gives(35, "apple", 5);
        picks(alice, c.name);
        EXPECT_EQ(alice.formtext().find("§f§r§o§6【OPSHOP】§f§r\n") != std::string::npos, c.isop);
        puts(stage, alice, c.meanwhile.slot, c.meanwhile.item, c.meanwhile.count);
        alice.forgets().fills({{"Slot No.3§r", c.asked[0]}, {"Slot No.4§r", c.asked[1]}, {"Slot No.35§r", c.asked[2]}});
        EXPECT_EQ(alice.money(), c.pieces * 7);
        const bool junk = !std::string("apple").starts_with(c.meanwhile.item);
        EXPECT_EQ(alice.chat(),
                  junk ? "Some of the slots hold something else by now. Nothing was taken from them." : "");
        EXPECT_EQ(alice.form().is_null(), junk && c.pieces == 0);
        std::string left;
        for (const int slot : slots) {
            if (const auto has = alice.has(slot); !has.empty())
                left += fmt::format("{}:{} ", slot, has.substr(has.find('*') + 1));
            alice.loses(slot);
        }
        EXPECT_EQ(left, c.left);
    }
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const json shop = recycles(stage, c.name);
        const json& record = shop["recycleitems"][0];
        EXPECT_EQ(record["recycleitemleftwanna"], c.isop ? c.wanted : c.wanted - c.pieces);
        EXPECT_EQ(record["nowhasrecyclenum"], c.isop ? 0 : c.pieces);
        EXPECT_EQ(stored(record), c.store);
        EXPECT_EQ(shop["recycleamount"], c.pieces);
        EXPECT_EQ(shop["recyclecost"], c.pieces * 7);
    }
}

TEST(RecycleSale, OffersTheSlotsThatTheCommissionAsksFor) {
    const std::string both = sword("ench:[{id:17s,lvl:3s},{id:9s,lvl:1s}]"), named = sword("display:{Name:\"Cutter\"}"),
                      pickednamed = sword("display:{Name:\"Cutter\"}", 0, true);
    const struct {
        const char* name;
        std::string wanted;
        int set;
        std::vector<std::string> slots;  // "" leaves one empty
        const char* shown;
    } cases[] = {
        {"name alone", plain, none, {worn9, apple, "", sharp2, sword("", 3, true, 9)}, "0*1 3*1 4*9"},
        {"aux", plain, damage, {aux3, plain}, "1*1"},
        {"the first worn one", plain, damage, {worn5, worn9, plain, sword("Damage:5", 0, true, 100)}, "0*1 3*100"},
        {"one without wear in front", plain, damage, {plain, worn5, plain}, "0*1 1*1"},
        {"a marker is no wear", sword("Damage:-114514"), damage, {worn5, plain}, "0*1"},
        {"stored wear", worn5, damage, {worn9, worn5, plain}, "1*1"},
        {"another item's wear", apple, damage, {worn5, apple}, "1*1"},
        {"enchantments", sharp1, ench, {sharp2, both, plain, sharp1}, "1*1 3*1"},
        {"no enchantments", plain, ench, {sharp2, plain}, "0*1 1*1"},
        {"the whole item", named, nbt, {plain, named, pickednamed, sharp1}, "1*1 2*1"},
        {"a picked-up template", pickednamed, nbt, {named, pickednamed}, "0*1 1*1"},
        {"the whole item but for wear", plain, nbt | damage | ench, {worn5, worn9}, "0*1"},
        {"the template's count", sword("", 0, false, 64), nbt, {plain, aux3}, "0*1"},
        {"nothing fits", apple, none, {plain}, ""},
    };
    Stage stage;
    json wishes = json::array();
    for (const auto& c : cases) wishes.push_back(wish(c.name, c.wanted, c.set));
    stage.writeshop(bob, nullptr, wishes);
    Actor& alice = stage.join("Alice", ada);
    for (const auto& c : cases) {
        for (int slot = 0; slot < 5; ++slot) alice.loses(slot);
        for (std::size_t i = 0; i < c.slots.size(); ++i)
            if (!c.slots[i].empty()) alice.gives(static_cast<int>(i), c.name, 1, c.slots[i]);
        picks(alice, std::string(":") + c.name + "§");
        EXPECT_EQ(sliders(alice), c.shown) << c.name;
    }
    alice.fills({});  // without a slider, too
    EXPECT_NE(alice.formtext().find("gain 0 for minecraft:apple*0 from"), std::string::npos) << alice.formtext();
}

// The record of a sale tells of the template, and of that what the commission asks for.
TEST(RecycleSale, TheOwnersLogNamesWhatWasAskedFor) {
    const struct {
        const char* name;
        std::string wanted;
        int set;
        std::string given;
        const char* told;
    } cases[] = {
        {"1", sharp1, none, aux3, "diamond_sword:? * 1"},
        {"2", aux3, damage, sword("ench:[{id:9s,lvl:1s}]", 3), "diamond_sword:3 * 1"},
        {"3", sharp1, ench, sharp1, "diamond_sword:?(enchanted) * 1"},
        {"4", plain, ench | damage, sharp1, "diamond_sword:0 * 1"},
        {"5", sharp1, nbt, sharp1, "diamond_sword:0(enchanted) * 1"},
    };
    Stage stage;
    json wishes = json::array();
    for (const auto& c : cases) wishes.push_back(wish(c.name, c.wanted, c.set));
    stage.writeshop(bob, nullptr, wishes, json::object(), {{"shopname", "Bob's"}});
    Actor& alice = stage.join("Alice", ada);
    for (const auto& c : cases) {
        alice.gives(0, c.name, 1, c.given);
        picks(alice, std::string(":") + c.name + "§");
        alice.fills({});
        EXPECT_EQ(alice.form()["content"], "Player Alice gain 7 for minecraft:diamond_sword*1 from Bob's");
        const auto log = stage.file("plugins/Ordomart/log/" + bob + ".relog");
        EXPECT_TRUE(log.ends_with(fmt::format("Player Alice gain 7 for minecraft:{} from Bob's\r\n", c.told))) << log;
    }
}

TEST(RecycleSale, RefusalsLeaveEverythingAsItWas) {
    Stage stage;
    json gone = wish("Gem", "{Count:1b,Damage:0s,Name:\"addon:gem\",WasPickedUp:0b}", none);
    stage.writeshop(bob, nullptr, {wish("Apples", apple, none), gone});
    Actor& alice = stage.join("Alice", ada).setmoney(0).gives(0, "apple", 10);
    Actor& carl = stage.join("Carl", cid).setmoney(0).gives(0, "apple", 10);

    picks(alice, "Gem");
    EXPECT_EQ(alice.chat(),
              "catch checkrawitemvalid error: maybe your recycling item is from a mod that not installed in your "
              "server");
    EXPECT_TRUE(alice.form().is_null());

    picks(alice, "Apples");
    alice.forgets().dies().fills({});
    EXPECT_EQ(alice.chat(), "Dead people don't have permission to perform any operations!");
    EXPECT_TRUE(alice.form().is_null());
    picks(alice.revives(), "Apples");
    carl.types("ordomart formmenu").presses("Recycle shops (form)");
    alice.forgets().fills({{"Slot No.0§r", 4}});
    carl.presses("Apples");  // a list as old as the other's form
    EXPECT_EQ(carl.chat(), changed);
    EXPECT_TRUE(carl.form().is_null());
    picks(carl, "Apples");
    picks(alice, "Apples");
    carl.forgets().fills({{"Slot No.0§r", 1}});
    alice.forgets().fills({});
    EXPECT_EQ(alice.chat(), changed);
    EXPECT_TRUE(alice.form().is_null());
    EXPECT_EQ(alice.has(0), "minecraft:apple*6");
    EXPECT_EQ(alice.money() * 100 + carl.money(), 2807);
    EXPECT_EQ(recycles(stage)["recycleamount"], 5);
}

// He paid when he published, so that a sale moves nothing of his; and since it is no transfer, it is not taxed.
TEST(RecycleSale, CostsTheOwnerNothingHereOrAway) {
    for (const bool llmoney : {true, false}) {
        SCOPED_TRACE(llmoney);
        Stage stage({.config = {{"tax", 20}}, .llmoney = llmoney});
        stage.writeshop(bob, nullptr, wish("Apples", apple, none));
        Actor& alice = stage.join("Alice", ada).setmoney(0).gives(0, "apple", 10);
        const auto sells = [&] {
            picks(alice, "Apples");
            alice.fills({{"Slot No.0§r", 2}});
        };
        sells();
        EXPECT_EQ(alice.money(), 14);
        EXPECT_EQ(recycles(stage)["recycleitems"][0]["nowhasrecyclenum"], 2);
        Actor& owner = stage.join("Bob", bob).setmoney(40);
        sells();
        EXPECT_EQ(alice.money(), 28);
        EXPECT_EQ(owner.money(), 40);
        owner.types("ordomart getoffscores");
        EXPECT_EQ(owner.money(), 40);
        EXPECT_EQ(stage.file("plugins/Ordomart/simpletrade.log").find(" pay "), std::string::npos);
    }
}

// Nobody's menu changes a shop without a mark of change; a file that somebody edits can.
TEST(RecycleSale, ARecordThatIsGoneOrAnotherUnderAnOpenForm) {
    using shopsystem::globalruntimeshopmanager;
    constexpr auto list = ordomart::tradeface::formlist, chest = ordomart::tradeface::globalchest;
    const struct {
        const char* shop;
        ordomart::tradeface face;
        bool erased, marked;
        std::string told;
    } cases[] = {
        {"gone1", list, true, true, changed},
        {"gone2", list, true, false, changed},
        {"gone3", chest, true, false, "catcherror for recycle:Operation failed, item has been changed"},
        {"dearer1", list, false, false, changed},
        {"dearer2", chest, false, false, "SYSTEM: " + changed},
    };
    Stage stage({.llmoney = false});
    ordomart::moneymode = 0;
    Actor& alice = stage.join("Alice", ada).setmoney(5).gives(0, "apple", 10);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.shop);
        stage.writeshop(c.shop, nullptr, wish("Apples", apple, none));
        const auto shop = [&]() -> shopsystem::recycleshop& { return globalruntimeshopmanager.getrecycleshop(c.shop); };
        stage.onserver([&] {
            ordomart::offertrade(platform::host().level->getPlayerByXuid(ada), shop().getglobalrecycleitem(0), c.face);
            if (c.erased)
                shop().recycleitems.erase(0);
            else
                shop().recycleitems[0]["offer"] = 6;
            if (c.marked) shop().markshopchanged();
        });
        alice.forgets().fills({});
        EXPECT_EQ(alice.chat() + alice.toasts(), c.told);
        EXPECT_TRUE(alice.form().is_null());
        stage.onserver([&] { EXPECT_EQ(shop().recycleamount, 0); });
    }
    EXPECT_EQ(alice.has(0) + std::to_string(alice.money()), "minecraft:apple*105");

    // The same one step earlier: a list that has become shorter under its form.
    stage.writeshop("gone4", nullptr, wish("Pears", apple, none));
    stage.onserver(
        [&] { ordomart::openOrdorecycleshopAsformmenu(platform::host().level->getPlayerByXuid(ada), true); });
    stage.onserver([&] { shopsystem::getplayershopstate(ada).recyclereadlist.clear(); });
    alice.forgets().presses("Pears");
    EXPECT_TRUE(alice.form().is_null() && alice.chat().empty());
    for (const char* line : {"[Ordomart][info] An error occurred while parsing the ordomart data, [json.exception.",
                             "[Ordomart][error] wrong castindex in "})
        EXPECT_NE(stage.log().find(line), std::string::npos) << line;
}
