// The operators' tools: bans and what they do to lists and open forms, the list of shops to manage, and the switch to
// the system shop.
#include "platform/host.h"
#include "platform/level.h"
#include "plugin/shopsystem/playershopstate.h"
#include "tests/market/forms_stage.h"

using namespace forms;

namespace {

constexpr std::int64_t start = 1767225600;  // where the manual clock begins

const std::string switchon =
    "SYSTEM: Successfully switched to the system shop management status. Open my shop to manage the system shop";
const std::string switchoff =
    "SYSTEM: Successfully restored to user shop management status. Open my shop to manage your own shop";

void switches(Actor& player, const char* menu = "ordomart formmenu") {
    player.dismisses().forgets().types(menu).presses("Switch managing the system shop");
}

}  // namespace

TEST(Ban, TakesOneOfTheOwnersShopsFromTheListsAndMakesOpenFormsStale) {
    const struct {
        const char *word, *section, *list, *row;
    } kinds[] = {{"sell", "sell", "Selling shops (form)", "apple"},
                 {"recycle", "recycles", "Recycle shops (form)", "bread"}};
    const struct {
        const char* rest;
        std::int64_t end;
        const char* reason;
    } bans[] = {{" \"bad prices\" 60", start + 60, "bad prices"}, {"", -1, "no reason"}};
    for (const int kind : {0, 1})
        for (const auto& ban : bans) {
            const auto &banned = kinds[kind], &other = kinds[1 - kind];
            SCOPED_TRACE(std::string(banned.word) + ban.rest);
            Stage stage;
            stage.writeshop(bob, {good("apple", 7, 10)}, {commission("bread", 3, 5)});
            stage.join("Bob", bob);
            Actor& admin = stage.join("Root", root, "en_US", desktop, 1);
            Actor& alice = stage.join("Alice", ada).setmoney(100);
            const auto order = fmt::format("ban {} Bob", banned.word);
            alice.types("ordomart " + order).types("ordomart un" + order);
            EXPECT_EQ(alice.replies(), "permission denied\npermission denied");
            alice.types("ordomart formmenu").presses(banned.list).presses(banned.row);

            admin.types("ordomart " + order + ban.rest);
            EXPECT_EQ(admin.replies(), "the shop has been banned");
            alice.fills(kind == 0 ? Answers{{"quantity", "1"}} : Answers{});
            EXPECT_EQ(alice.chat(), "Operation failed, shopinfo has been changed");
            EXPECT_EQ(formrows(alice, banned.list), "");
            EXPECT_EQ(formrows(alice, other.list), std::string(other.row) + " ");
            EXPECT_EQ(stage.shopfile(bob)[banned.section]["shopstate"],
                      json({{"isbaned", true}, {"bantimeend", ban.end}, {"banreason", ban.reason}}));

            stage.advance(61000);
            EXPECT_EQ(formrows(alice, banned.list), ban.end == -1 ? "" : std::string(banned.row) + " ");
            admin.forgets().types("ordomart un" + order);
            EXPECT_EQ(admin.replies(), "the shop has been unbanned");
            EXPECT_EQ(formrows(alice, banned.list), std::string(banned.row) + " ");
            EXPECT_EQ(stage.shopfile(bob)[banned.section]["shopstate"],
                      json({{"isbaned", false}, {"bantimeend", 0}, {"banreason", ""}}));
        }
}

TEST(Manage, TheListOfShopsAndTheOwnEntryThatEndsIt) {
    Stage stage;
    stage.writeshop(bob, nullptr, nullptr, {{"ownername", "Bob"}});
    stage.writeshop(root, nullptr, nullptr, {{"ownername", "Root"}});
    stage.writeshop("fair", nullptr, nullptr, {{"shopname", "The fair"}, {"ownername", "nobody"}});
    stage.writeshop("nameless", nullptr, nullptr, {{"shopname", ""}});
    stage.writeshop("systemshop", nullptr);
    stage.write("plugins/Ordomart/data/readme.txt", "no shop");
    stage.join("Bob", bob).leaves();
    Actor& admin = stage.join("Root", root, "en_US", desktop, 1);
    admin.types("ordomart manage");
    EXPECT_EQ(
        admin.form(),
        json({{"type", "custom_form"},
              {"title", "managemenu"},  // a key without a text
              {"content",
               {{{"type", "dropdown"},
                 {"text", "Select one to manage(warn: the shop maynot be create)"},
                 {"options", {"§aBob", "§aRoot", "The fair§c(Fake)", "nameless§c(Fake)", "systemshop's shop§c(Fake)"}},
                 {"default", 1}}}}}));
    admin.answers({4});
    switches(admin);
    EXPECT_EQ(admin.toasts(), switchoff) << "the system shop was his";
    for (const json& chosen : {json(4), json(0)}) {  // ended by the own entry, whatever he manages
        rests(stage);
        admin.dismisses().types("ordomart manage").answers({chosen});
        admin.dismisses().forgets().types("ordomart manage").fills({});
        EXPECT_EQ(admin.chat(), "resetsuccessfully");
        switches(admin);
        EXPECT_EQ(admin.toasts(), switchon);
        switches(admin);
    }
    admin.dismisses().forgets().types("ordomart manage").answers(nullptr);
    admin.types("ordomart manage").dies().answers({1});
    EXPECT_EQ(admin.chat(), deadtext);

    stage.write("plugins/Ordomart/data/.json", "{}");  // a file without a name leaves no form
    admin.revives().types("ordomart manage");
    EXPECT_TRUE(admin.form().is_null());
    EXPECT_NE(stage.log().find("[Ordomart][error] find null json in datajson! at openmanagesetstateform"),
              std::string::npos);
}

TEST(Manage, WhatTheListDoesNotOfferChoosesNobody) {
    Stage stage;
    stage.writeshop(bob, nullptr);
    stage.writeshop(root, nullptr);
    Actor& admin = stage.join("Root", root, "en_US", desktop, 1);
    for (const char* text :
         {"[2]", "[-1]", "[0.5]", "[4294967296]", "[\"0\"]", "[]", "[0,0]", "[null]", "0", "{}", ""}) {
        SCOPED_TRACE(text);
        admin.dismisses().forgets().types("ordomart manage");
        admin.look([&](client::ModelClient& c) { c.answer(text); });
        stage.server().settle();
        EXPECT_EQ(admin.chat() + admin.toasts(), "");
        admin.types("ordomart formmenu").presses("My shop (form)");
        EXPECT_NE(admin.formtext().find(":Root\n"), std::string::npos) << "his own";
    }
}

// Who was an operator when he chose, and is none any more.
TEST(Manage, WhoLosesHisRightsKeepsNobodysShop) {
    Stage stage;
    stage.writeshop(bob, nullptr);
    stage.writeshop(root, nullptr);
    Actor& admin = stage.join("Root", root, "en_US", desktop, 1);
    admin.types("ordomart manage").may(0).answers({0});
    EXPECT_EQ(admin.toasts(), denied);
    admin.may(1);
    switches(admin);
    EXPECT_EQ(admin.toasts(), switchon) << "it was nobody's shop";

    // At each look, and for good.
    stage.onserver([&] {
        const auto* player = platform::host().level->getPlayerByXuid(root);
        shopsystem::getplayershopstate(root).manage(bob);
        EXPECT_EQ(shopsystem::effectiveshop(player), bob);
        stage.server().world().setpermission("Root", 0);
        EXPECT_EQ(shopsystem::effectiveshop(player), root);
        stage.server().world().setpermission("Root", 1);
        EXPECT_EQ(shopsystem::effectiveshop(player), root);
    });
}

TEST(SystemShopSwitch, TurnsOnAndOffAndStaysInItsMenu) {
    Stage stage;
    Actor& admin = stage.join("Root", root, "en_US", desktop, 1);
    for (const auto& [menu, size] : {std::pair{"ordomart formmenu", 5U}, std::pair{"ordomart", 16U}})
        for (const auto& told : {switchon, switchoff}) {
            switches(admin, menu);
            EXPECT_EQ(admin.toasts(), told);
            EXPECT_EQ(admin.form()["buttons"].size(), size);
        }
    // The level counts when the button is pressed.
    admin.dismisses().forgets().types("ordomart formmenu");
    admin.may(0).presses("Switch managing the system shop");
    EXPECT_EQ(admin.toasts(), denied);
    EXPECT_TRUE(admin.form().is_null());
    switches(admin.may(1));
    EXPECT_EQ(admin.toasts(), switchon);
}
