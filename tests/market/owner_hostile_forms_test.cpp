// What stops an owner's dialogs as forms: the state of the world at the answer, the numbers in it, money that is short
// or refuses, and clients that send what no screen of theirs could. A refused step leaves the books as they were; only
// the fee of a further record may be gone, and that is told.
#include <fmt/format.h>

#include "tests/market/books.h"
#include "tests/market/faultymoney.h"
#include "tests/market/forms_stage.h"

using namespace forms;

namespace {

using Roads = std::vector<std::string>;

const std::string system_ = "SYSTEM: ";
const std::string badprice =
    system_ + "The price you set is unreasonable (more than 9999999 or less than 0), please reset the reasonable price";
const std::string cannotsave =
    system_ + "The server cannot save at the moment, so the market is closed. Please try again later.";
const std::string paymentrefused =
    system_ + "The payment was refused, so nothing has been traded. If this goes on, please tell an operator.";
const std::string emptyhand = "ERROR empty hand";

// One of the owner's dialogs: the buttons from his menu to it, and an answer that would be taken.
struct road {
    const char* name;
    Roads buttons;
    Answers good;            // none: a form of two buttons
    Answers operators = {};  // where an operator's form is another one
    bool heldtorevision = true;
    bool heldtoban = false;
};
const std::string recycleside = "change to recyl";
const road upload{"upload", {"Put an item on sale", "Slot No. 0"}, {{"price", "5"}, {"Quantity", 3}}, {}, false, true};
const road adjust{"adjust", {"Adjust items on sale", "fruit"}, {{"Quantity", 4}}};
const road takeoff{"take off", {"Adjust items on sale", "fruit"}, {{"Quantity", 0}}};
const road replenish{"replenish", {"Restock", "fruit"}, {{"No.0", 4}}, {{"OP just set", "7"}}};
const road edit{"edit", {"Edit shop"}, {{"shop name", "Fair"}}, {}, false};
const road issue{"issue",
                 {recycleside, "New recycle commission", "Slot No. 0"},
                 {{"offer", "10"}, {"quantity you want", "2"}},
                 {},
                 false,
                 true};
const road increase{"increase", {recycleside, "Adjust recycle commissions", "wish"}, {{"quantity you want", "9"}}};
const road decrease{"decrease", {recycleside, "Adjust recycle commissions", "wish"}, {{"quantity you want", "2"}}};
const road end{"end", {recycleside, "Adjust recycle commissions", "wish"}, {{"quantity you want", "0"}}};
const road pickup{"pick up", {recycleside, "Pick up recycled items", "wish"}, {}};
const road* const roads[] = {&upload, &adjust,   &takeoff,  &replenish, &edit,
                             &issue,  &increase, &decrease, &end,       &pickup};

json fruit() { return good("apple", 5, 10, "fruit"); }
json wish() {
    auto record = commission("bread", 10, 5, "wish");
    record["nowhasrecyclenum"] = 3;
    record["recycleditemnbtlist"] = {snbt("bread", 3)};
    return record;
}
json many(const json& record, int n) { return json::array_t(static_cast<std::size_t>(n), record); }

// An operator, and one owner after the other with a fresh shop.
struct Market {
    Actor& owns(int records = 1) {
        if (owner != nullptr) owner->dismisses().leaves();
        const auto number = ++owners;
        const auto xuid = fmt::format("25354111{:08}", number);
        stage.writeshop(xuid, many(fruit(), records), many(wish(), records), {{"shopname", "Stall"}},
                        {{"shopname", "Stall"}});
        owner = &stage.join(fmt::format("Owner{}", number), xuid);
        return owner->setmoney(2000).gives(0, "apple", 20);
    }
    void opens(Actor& who, const road& way, std::size_t steps = 99) {
        who.dismisses().types("ordomart formmenu").presses("My shop (form)");
        for (std::size_t i = 0; i < std::min(steps, way.buttons.size()); ++i) who.presses(way.buttons[i]);
        who.forgets();
    }
    static void submits(Actor& who, const road& way) {
        if (way.good.empty()) {
            who.presses("yes");
        } else {
            const bool isother =
                !way.operators.empty() && who.formtext().find(way.operators[0].first) != std::string::npos;
            who.fills(isother ? way.operators : way.good);
        }
    }
    void manages() {
        rests(stage);
        olga.dismisses().types("ordomart manage " + owner->xuid());
        stage.ticks(6);
        olga.closes().forgets();
    }
    books photograph() { return {stage, {owner, &olga}}; }
    static std::string told(const Actor& who) {
        const auto chat = who.chat(), toasts = who.toasts();
        return chat + (chat.empty() || toasts.empty() ? "" : "\n") + toasts;
    }

    Market() { stage.writeshop(olga.xuid(), nullptr); }

    faulty::Money faulty;
    faulty::Stores stores;
    Stage stage{{.adjust = [this](platform::Host& host) {
        faulty.standbefore(host);
        host.stores = &stores;
    }}};
    Actor& olga = stage.join("Olga", "2535411000000009", "en_US", desktop, 1);
    Actor* owner = nullptr;
    int owners = 0;
};

}  // namespace

// Whatever the dialog, as long as its answer may not count.
TEST(OwnerForms, AnAnswerThatMayNotBeChangesNothing) {
    Market m;
    for (const auto* way : roads) {
        SCOPED_TRACE(way->name);
        m.owns();
        const auto before = m.photograph();
        const auto refuses = [&](const std::string& why, const std::string& told, const std::function<void()>& answer) {
            m.opens(*m.owner, *way);
            answer();
            EXPECT_EQ(m.told(*m.owner), told) << why;
            EXPECT_EQ(m.photograph().since(before), "[]") << why;
        };
        refuses("closed", "", [&] { m.owner->answers(nullptr); });
        refuses("dead", deadtext, [&] {
            m.owner->dies();
            m.submits(*m.owner, *way);
            m.owner->revives();
        });
        refuses("dead, closing", deadtext, [&] { m.owner->dies().answers(nullptr).revives(); });
        refuses("nothing can be saved", cannotsave, [&] {
            m.stores.why = "the disk is full";
            m.submits(*m.owner, *way);
            m.stores.why.clear();
        });
        for (const char* text : {"",
                                 "[]",
                                 "{}",
                                 "true1",
                                 "[null,",
                                 "[null]",
                                 "-1",
                                 "99",
                                 "1e400",
                                 "\"yes\"",
                                 "[\"5\",5,null,{}]",
                                 "[null,\"a\",\"b\",\"5\",\"t\",99,true]",
                                 "[null,\"a\",\"b\",\"5\",\"t\",-1,true]",
                                 "[null,\"a\",\"b\",\"5\",\"t\",2.5,true]",
                                 "[null,\"a\",\"b\",5,\"t\",2,true]",
                                 "[null,\"a\",\"b\",\"5\",\"t\",2,true,true]",
                                 "[null,\"\\ud800\",\"b\",\"5\",\"t\",2,true]",
                                 "[null,21]",
                                 "[null,\"a\",\"b\",\"5\",\"2\",\"t\",true,true,true,0]",
                                 "[\"a\",\"b\",\"c\",1]"})
            refuses(text, "", [&] { m.owner->answersraw(m.owner->formid(), text); });
        refuses("too long", "",
                [&] { m.owner->answersraw(m.owner->formid(), json(std::vector<int>(100000, 1)).dump()); });
        refuses("of a form that was never sent", "", [&] { m.owner->answersraw(4000000000U, "true"); });
        refuses("left in the middle", "", [&] {
            const auto who = m.owner->who();
            const auto id = m.owner->formid();
            m.owner->leaves();
            m.owner = &m.stage.join(who.name, who.xuid);
            m.owner->answersraw(id, way->good.empty() ? "true" : "[null,\"a\",\"b\",\"5\",\"t\",2,true]");
        });
    }
}

// The same form answered again, and forms that stayed open while the shop or the player's place in the world changed.
TEST(OwnerForms, ALateAnswerCountsByWhatIsTrueByThen) {
    Market m;
    for (const auto* way : roads) {
        SCOPED_TRACE(way->name);
        m.owns();
        m.opens(*m.owner, *way);
        const auto id = m.owner->formid();
        const auto shown = m.owner->form();
        m.submits(*m.owner, *way);
        const auto once = m.photograph();
        for (const char* text : {"true", "[null,\"a\",\"b\",\"5\",\"t\",1,true]"}) m.owner->answersraw(id, text);
        EXPECT_EQ(m.photograph().since(once), "[]") << "twice";

        for (const bool staysbanned : {false, true}) {
            SCOPED_TRACE(staysbanned);
            m.owns();
            m.opens(*m.owner, *way);
            bans(m.olga, m.owner->xuid());
            if (!staysbanned) bans(m.olga, m.owner->xuid(), false);
            const auto before = m.photograph();
            m.submits(*m.owner, *way);
            const bool isbanned = staysbanned && way->heldtoban;
            EXPECT_EQ(m.owner->formtext() == banned + "\n" + banned + "\nform\n", isbanned) << m.owner->formtext();
            EXPECT_EQ(m.told(*m.owner) == shopchanged, way->heldtorevision) << m.told(*m.owner);
            EXPECT_EQ(m.photograph().since(before) == "[]", isbanned || way->heldtorevision);
        }

        // Somebody else's shop, as deep as the dialog lies.
        for (std::size_t steps = 0; steps <= way->buttons.size(); ++steps) {
            SCOPED_TRACE(steps);
            m.owns();
            m.olga.gives(0, "apple", 20).setmoney(1000);
            m.manages();
            m.opens(m.olga, *way, steps);
            const auto before = m.photograph();
            m.olga.may(0);
            if (steps == way->buttons.size())
                m.submits(m.olga, *way);
            else
                m.olga.presses(way->buttons[steps]);
            EXPECT_EQ(m.told(m.olga), denied);
            if (steps < way->buttons.size()) {
                EXPECT_TRUE(m.olga.form().is_null()) << "led on";
            }
            EXPECT_EQ(m.photograph().since(before), "[]");
            m.olga.may(1);
        }
    }
}

// Numbers out of range, money that is short or refuses, stacks that are gone. `next` is the form that is in front
// behind it; "chest" the owner's chest view.
TEST(OwnerForms, ARefusedStepChangesNothingButAFeeThatIsTold) {
    enum happens { nothing, emptied, swapped, ban };
    const auto fee = [](const std::string& behind) { return "Stall: - §b500 §rLLmoney" + behind; };
    const auto lacks = [](int has, int needs) {
        return fmt::format("{}not engough money!({}/{})", system_, has, needs);
    };
    const std::string sellmenu = "My shop", commissions = "Adjust recycle commissions",
                      slots = "New recycle commission";
    const struct {
        const char* name;
        const road& way;
        int records, money;
        Answers answer;
        std::string told, next;
        happens meanwhile = nothing;
        const char* refuses = "";
        int cost = 0;
    } cases[] = {
        {"dear", upload, 1, 0, {{"price", "10000000"}}, badprice, sellmenu},
        {"below nothing", upload, 1, 0, {{"price", "-1"}}, badprice, sellmenu},
        {"beyond 32 bits", upload, 1, 0, {{"price", "4294967297"}}, badprice, sellmenu},
        {"emptied", upload, 1, 0, {}, emptyhand, "", emptied},
        {"swapped", upload, 37, 999, {}, slotschanged, upload.buttons[0], swapped},
        {"no fee", upload, 37, 499, {}, lacks(499, 500), sellmenu},
        {"fee, dear", upload, 37, 500, {{"price", "10000000"}}, fee("\n" + badprice), sellmenu, nothing, "", 500},
        {"fee, emptied", upload, 37, 500, {}, emptyhand + "\n" + fee(""), "", emptied, "", 500},
        {"fee, banned", upload, 37, 500, {}, fee(""), banned, ban, "", 500},
        {"fee refused", upload, 37, 500, {}, paymentrefused, upload.buttons[0], nothing, "LLMoneyReduce"},
        {"dear", adjust, 1, 0, {{"price", "100000000"}, {"Quantity", 4}}, badprice, "chest"},
        {"below nothing", takeoff, 1, 0, {{"price", "-1"}, {"Quantity", 0}}, badprice, "chest"},
        {"offer too high", issue, 1, 2000, {{"offer", "100000000"}}, badprice, slots},
        {"offer below nothing", issue, 1, 2000, {{"offer", "-1"}}, badprice, slots},
        {"too many", issue, 1, 2000, {{"quantity you want", "1000000000"}}, badprice, slots},
        {"none", issue, 1, 2000, {{"quantity you want", "0"}}, badprice, slots},
        {"less than none", issue, 1, 2000, {{"offer", "9"}, {"quantity you want", "-3"}}, badprice, slots},
        {"deposit", issue, 1, 999, {{"offer", "10"}, {"quantity you want", "100"}}, lacks(999, 1000), slots},
        {"fee", issue, 37, 499, {}, lacks(499, 500), slots},
        {"both", issue, 37, 1499, {{"offer", "10"}, {"quantity you want", "100"}}, lacks(1499, 1500), slots},
        {"refused", issue, 37, 1500, {{"offer", "10"}}, paymentrefused, slots, nothing, "LLMoneyReduce"},
        {"no banned fee", issue, 37, 499, {}, "", banned, ban},
        {"emptied", issue, 1, 2000, {}, slotschanged, slots, emptied},
        {"swapped", issue, 1, 2000, {}, slotschanged, slots, swapped},
        {"offer too high", increase, 1, 0, {{"offer", "100000000"}}, badprice, commissions},
        {"offer below nothing", end, 1, 0, {{"offer", "-1"}, {"quantity you want", "0"}}, badprice, commissions},
        {"too many", increase, 1, 0, {{"quantity you want", "1000000000"}}, badprice, commissions},
        {"money", increase, 1, 49, {{"quantity you want", "10"}}, lacks(49, 50), commissions},
        {"refused",
         increase,
         1,
         50,
         {{"quantity you want", "10"}},
         paymentrefused,
         commissions,
         nothing,
         "LLMoneyReduce"},
        {"not taken back",
         decrease,
         1,
         0,
         {{"quantity you want", "2"}},
         paymentrefused,
         commissions,
         nothing,
         "LLMoneyAdd"},
        {"not taken back", end, 1, 0, {{"quantity you want", "0"}}, paymentrefused, commissions, nothing, "LLMoneyAdd"},
    };
    Market m;
    for (const auto& c : cases) {
        SCOPED_TRACE(fmt::format("{}: {}", c.way.name, c.name));
        auto& owner = m.owns(c.records).setmoney(c.money);
        rests(m.stage);
        m.opens(owner, c.way);
        if (c.meanwhile == emptied) owner.loses(0);
        if (c.meanwhile == swapped) owner.gives(0, "diamond", 20);
        if (c.meanwhile == ban) bans(m.olga, owner.xuid());
        auto before = m.photograph();
        faulty::refuses = [&](std::string_view operation) { return operation == c.refuses; };
        owner.fills(c.answer);
        faulty::refuses = nullptr;
        m.stage.ticks(6);
        EXPECT_EQ(m.told(owner), c.told);
        EXPECT_EQ(owner.menuopen() ? "chest" : owner.form().is_null() ? "" : owner.form()["title"], c.next);
        EXPECT_TRUE(owner.sounds().empty());
        if (owner.menuopen()) owner.closes();
        auto after = m.photograph();
        if (c.cost != 0) {
            EXPECT_NE(m.stage.file("plugins/Ordomart/simpletrade.log").find(owner.xuid() + " pay 500"),
                      std::string::npos);
            before.pays(owner, c.cost);
            after.pays(owner, 0);
        }
        EXPECT_EQ(after.since(before), "[]");
    }
}

// A row that leads to no dialog says why, and stands in nobody's way.
TEST(OwnerForms, RowsThatAreNone) {
    Market m;
    m.owns();
    const std::string foreign =
        "catch checkrawitemvalid error: maybe your edited item is from a mod that not installed in your server";
    auto countless = good("apple", 5, 10), gem = good("{Count:1b,Damage:0s,Name:\"addon:gem\"}", 5, 10, "gem");
    countless.erase("shopitemleftnum");
    auto endless = commission("bread", 10, 5), jewel = commission("bread", 10, 5);
    endless.erase("recycleitemleftwanna");
    jewel["itemnbt"] = gem["itemnbt"];
    const std::string xuid = "2535411200000001";
    m.stage.writeshop(xuid, {countless, gem, "no record", fruit()}, {endless, jewel, "no record", wish()});
    m.owner = &m.stage.join("Rows", xuid);
    auto& owner = *m.owner;
    const auto before = m.photograph();
    for (const auto* way : {&adjust, &replenish, &increase})
        for (const auto& [row, told] :
             {std::pair{0, std::string("should not be invalid when getgitem")}, {1, foreign}, {2, ""}}) {
            SCOPED_TRACE(fmt::format("{} {}", way->name, row));
            m.opens(owner, *way, way->buttons.size() - 1);
            owner.answers(row);
            EXPECT_EQ(m.told(owner), told);
            EXPECT_TRUE(owner.form().is_null());
        }
    EXPECT_EQ(m.photograph().since(before), "[]");
    for (const auto* way : {&takeoff, &end}) {
        m.opens(owner, *way, way->buttons.size() - 1);
        const auto id = owner.formid();
        m.manages();
        m.opens(m.olga, *way);
        m.submits(m.olga, *way);
        const auto shorter = m.photograph();
        owner.answersraw(id, "3");
        EXPECT_EQ(m.told(owner), "wrong castindex");
        EXPECT_EQ(m.photograph().since(shorter), "[]");
    }
}
