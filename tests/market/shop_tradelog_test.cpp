// The lines of the trade logs, and the end of a log that its owner reads.
#include <gtest/gtest.h>

#include "plugin/shopsystem/itemidentity.h"
#include "plugin/shopsystem/recycleshop.h"
#include "plugin/shopsystem/sellshop.h"
#include "plugin/shopsystem/tradelog.h"
#include "tests/market/shophost.h"

using namespace shopsystem;
using market_tests::json;
using market_tests::ShopHost;

namespace {

TEST(TradeLog, LinesAreInTheOwnersLanguage) {
    const ShopHost host;
    const auto tag = platform::CompoundTag::fromSNBT("{Name:\"minecraft:apple\",Damage:4s,Count:1b}").value();
    struct {
        const char* language;
        json changes;
        const char* purchase;
        const char* recycling;
    } const cases[] = {
        {"en_US",
         {},
         "Player Ada paid 5000000000 for My apple(minecraft:apple:4) * 3 from {Bob}.",
         "Player Ada gain 5000000000 for minecraft:apple:4 * 3 from {Bob}"},
        {"zh_CN",
         {{"isenchanted", true}, {"itemdamage", -1}},
         "玩家Ada花费5000000000从{Bob}买走了My apple(minecraft:apple:-1)(enchanted) * 3",
         "玩家 Ada 在 {Bob} 回收物品 minecraft:apple:?(enchanted) * 3 获得金钱 5000000000"},
        {"",
         {{"tradecount", 0}},
         "Player Ada paid 5000000000 for My apple(minecraft:apple:4) * 0 from {Bob}.",
         "Player Ada gain 5000000000 for minecraft:apple:4 * 0 from {Bob}"},
    };
    for (const auto& c : cases) {
        json record = traderecord(tag, "", 3, 5'000'000'000);
        record.update({{"prplayername", "Ada"}, {"replayername", "Ada"}, {"shopitemname", "My apple"}});
        if (!c.changes.is_null()) record.update(c.changes);
        sellshop sells("bob");
        recycleshop recycles("bob");
        for (baseshop* shop : {static_cast<baseshop*>(&sells), static_cast<baseshop*>(&recycles)}) {
            shop->ownerlang = c.language;
            shop->shopname = "{Bob}";
        }
        sells.writetradelog(record);
        EXPECT_EQ(host.log.lines.back(), std::string("Ordomartlogger 1 ") + c.purchase);
        recycles.writetradelog(record);
        EXPECT_EQ(host.log.lines.back(), std::string("Ordomartlogger 1 ") + c.recycling);
    }
    EXPECT_EQ(traderecord(tag, "", 1, 1)["itemunbreakvalue"], nodamage);
}

TEST(TradeLog, TheEndOfALongLogBeginsWithALineEnd) {
    ShopHost host;
    const std::string a(4000, 'a'), b(900, 'b');
    struct {
        const char* name;
        std::string content, shown;
    } const cases[] = {
        {"short", "first\nsecond\n", "first\nsecond\n"},
        {"5000 bytes", a + "\n" + std::string(999, 'c'), a + "\n" + std::string(999, 'c')},
        {"5001 bytes", a + "\r\n" + std::string(999, 'c'), "\r\n" + std::string(999, 'c')},
        {"plain line ends", a + "\n" + b + "\n" + b + "\n", "\n" + b + "\n" + b + "\n"},
        {"no line end", a + b + b, (a + b + b).substr(800)},
    };
    for (const auto& c : cases) {
        host.disk.contents[ordomart::paths::log + "bob.relog"] = c.content;
        EXPECT_EQ(readeventlog("bob", ".relog"), c.shown) << c.name;
    }
    EXPECT_EQ(readeventlog("bob", ".log"), "failed to open");
    EXPECT_EQ(host.told("cant find plugins/Ordomart/log/bob.log,try check logs!"), 1);
}

}  // namespace
