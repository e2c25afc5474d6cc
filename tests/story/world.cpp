#include "tests/story/world.h"

#include "platform/clock.h"
#include "platform/packets/forms.h"
#include "platform/packets/packet.h"
#include "platform/records.h"

namespace {
void (*showshop)(const std::string& xuid, bool forget, nlohmann::json& seen) = nullptr;
std::string (*auditmarket)() = nullptr;
}  // namespace
extern "C" __attribute__((visibility("default"))) void takeshowshop(decltype(showshop) look,
                                                                    decltype(auditmarket) audit) {
    showshop = look;
    auditmarket = audit;
}

namespace story {

namespace {

constexpr const char* kinds[] = {
    R"({Count:1b,Damage:0s,Name:"minecraft:apple",WasPickedUp:0b})",
    R"({Count:1b,Damage:0s,Name:"minecraft:apple",WasPickedUp:1b})",
    R"({Count:1b,Damage:0s,Name:"minecraft:ender_pearl",WasPickedUp:0b})",
    R"({Count:1b,Damage:0s,Name:"minecraft:diamond_sword",WasPickedUp:0b})",
    R"({Count:1b,Damage:0s,Name:"minecraft:diamond_sword",WasPickedUp:0b,tag:{Damage:5}})",
    R"({Count:1b,Damage:0s,Name:"minecraft:diamond_sword",WasPickedUp:0b,tag:{Damage:9,ench:[{id:9s,lvl:1s}]}})",
    R"({Count:1b,Damage:0s,Name:"minecraft:iron_boots",WasPickedUp:0b})",
    R"({Count:1b,Damage:0s,Name:"minecraft:clock",WasPickedUp:0b})",  // may not be sold
    R"({Count:1b,Damage:0s,Name:"minecraft:stone",WasPickedUp:0b})"};
constexpr std::size_t stone = std::size(kinds) - 1;
constexpr int slots = 41;

// What is typed into an input, by its hint. A number may be one that no trade takes.
constexpr const char* tags[] = {"stone", "stone", "diamond_sword"};
constexpr const char* discounts[] = {"%50", "%80", "%50", "%10", "-1", "-3", "-100000", "%150", "", "half"};
constexpr const char* durations[] = {"20", "60", "200", "600", "7200", "0"};
constexpr const char* numbers[] = {"1", "1", "2", "3", "4", "5", "7",  "0",  "0",  "1",  "1",         "2",   "2",
                                   "3", "3", "4", "5", "6", "8", "12", "30", "64", "-3", "100000000", "many"};
constexpr struct {
    const char* hint;
    std::span<const char* const> texts;
} hints[] = {{"input number", numbers},     {"input itemtag", tags},     {"discount format", discounts},
             {"input duration", durations}, {"input description", tags}, {"input itemicon", {}}};

}  // namespace

platform::ItemStack stackof(const std::string& snbt) {
    const auto tag = platform::CompoundTag::fromSNBT(snbt);
    return tag ? platform::ItemStack::fromTag(*tag) : platform::ItemStack();
}

void count(pieces& all, const platform::ItemStack& stack, std::int64_t times) {
    if (stack.isNull()) return;
    const auto* data = stack.getUserData();
    const auto key = fmt::format("{}:{}{}", stack.getTypeName(), stack.getAuxValue(), data ? data->toSNBT() : "");
    if ((all[key] += stack.getCount() * times) == 0) all.erase(key);
}

bool isbanned(const json& shop, std::int64_t now) {
    const auto& state = shop["shopstate"];
    return state.is_object() && state.value("isbaned", false) &&
           (state["bantimeend"] == -1 || state["bantimeend"].get<std::int64_t>() >= now);
}

json lasting(json shop, std::int64_t now) {
    if (!isbanned(shop, now)) shop.erase("shopstate");
    shop.erase("ownername");
    shop.erase("ownerlang");
    return shop;
}

std::string World::xuid(std::size_t who) {
    return who == systemshop ? "systemshop" : fmt::format("253540000000010{}", who);
}

std::string World::shopfile(std::size_t who) { return "plugins/Ordomart/data/" + xuid(who) + ".json"; }

World::World(bool llmoney) : World(llmoney, {}, host::ServerOptions().manualclock, 0) {}

World::World(bool llmoney, const std::filesystem::path& directory, std::int64_t clock, int firstname)
    : llmoney_(llmoney),
      stage_({.config = {{"moneymode", llmoney ? 1 : 0},
                         {"tax", tax},
                         {"extraslotcost", slotcost},
                         {"maxfreeslot", freeslots},
                         {"enablesystemshopinglobalshop", true}},
              .llmoney = llmoney,
              .adjust = faulty_.adjust(),
              .module = STORY_MODULE_PATH,
              .directory = directory,
              .clock = clock}),
      names_(firstname) {
    const bool isnew = !stage_.exists(shopfile(0));
    if (isnew) writeshops();
    for (std::size_t who = 0; who < players; ++who) {
        join(who);
        if (isnew) equips(who);
    }
    stage_.onserver([&] {
        for (std::size_t who = 0; who < players; ++who) stage_.server().world().setalive(name(who), true);
    });
    stage_.server().settle();
}

void World::writeshops() const {
    // The first comes last: by its file a world that has begun is known.
    for (std::size_t who = parties; who-- > 0;) {
        if (who != theoperator) {
            stage_.writeshop(xuid(who), nullptr);
            continue;
        }
        // The operator begins with a shop without limits, as plain players cannot have it.
        stage_.writeshop(xuid(who), {stage::good("apple", 3, 20, "n-1"), stage::good("ender_pearl", 5, 9, "n-2")},
                         {stage::commission("stone", 1, 500, "n-3"), stage::commission("apple", 2, 90, "n-4")},
                         {{"isopshop", true}}, {{"isopshop", true}});
    }
}

void World::equips(std::size_t who) {
    actors_[who]->setmoney(who == theoperator ? 50 : 300);
    // Little room is left, so that what is handed over falls to the ground now and then.
    stage_.onserver([&] {
        for (int slot = 0; slot < 36; ++slot)
            if (slot < 8 || slot > 13) put(who, slot, std::min<std::size_t>(static_cast<std::size_t>(slot), stone), 63);
    });
}

World::~World() { faulty::refuses = nullptr; }

void World::join(std::size_t who) {
    constexpr struct {
        const char* language;
        int device;
    } clients[players] = {{"en_US", 7}, {"zh_CN", 1}, {"en_US", 1}, {"en_US", 7}};
    actors_[who] =
        &stage_.join(name(who), xuid(who), clients[who].language, clients[who].device, isoperator(who) ? 1 : 0);
}

void World::put(std::size_t who, int slot, std::size_t kind, int number) {
    auto stack = kind <= stone ? stackof(kinds[kind]) : platform::ItemStack();
    if (!stack.isNull()) stack.set(1 + number % stack.getMaxStackSize());
    stage_.server().world().setitem(name(who), slot, stack);
}

void World::collectsupplies(pieces& all, std::size_t who) {
    for (int slot = 0; slot < slots; ++slot) count(all, stage_.server().world().item(name(who), slot));
}

std::int64_t World::score(std::size_t who) {
    auto& scores = *stage_.server().services().scoreboard;
    const auto account = "a" + xuid(who);
    const std::int64_t waiting =
        scores.getScoreboardId(account).isValid() ? scores.getScore("helpermoney", account) : 0;
    return waiting + (who < players ? stage_.server().world().score(name(who), "money") : 0);
}

picture World::look() {
    picture seen;
    for (std::size_t who = 0; llmoney_ && who < parties; ++who) seen.money[who] = stage_.money(xuid(who));
    stage_.onserver([&] {
        seen.now = platform::unixseconds();
        for (const auto& dropped : stage_.server().world().droppeditems()) count(seen.ground, dropped.stack);
        for (std::size_t who = 0; who < parties; ++who) {
            if (!llmoney_) seen.money[who] = score(who);
            json shop;
            showshop(xuid(who), false, shop);
            seen.shops[who] = {std::move(shop["sell"]), std::move(shop["recycles"])};
            seen.revisions[who] = {shop["revisions"][0], shop["revisions"][1]};
            if (who == systemshop) continue;
            seen.hands[who] = luggage_[who];
            if (ishere(who)) collectsupplies(seen.hands[who], who);
        }
    });
    return seen;
}

std::uint64_t World::lastentry() {
    std::uint64_t number = 0;
    stage_.onserver([&] {
        const auto last = stage_.server().services().records->rows("ledger", {}, 1, true);
        if (!last.empty()) number = std::stoull(last.front().key);
    });
    return number;
}

std::string World::audit() {
    std::string lines;
    stage_.onserver([&] { lines = auditmarket(); });
    return lines;
}

// ---- forms

const std::vector<dialog>& World::pending(std::size_t who) {
    constexpr std::size_t most = 5;  // nobody leaves open more than he can remember
    auto& known = known_[who];
    std::vector<dialog> fresh;
    actor(who).look([&](client::ModelClient& c) {
        while (c.forms().size() > most) c.answer("null");
        std::erase_if(known, [&](const auto& d) {
            return std::ranges::find(c.forms(), d.id, &client::PendingForm::id) == c.forms().end();
        });
        for (const auto& form : c.forms())
            if (std::ranges::find(known, form.id, &dialog::id) == known.end())
                fresh.push_back({form.id, json::parse(form.json), {}, {}});
    });
    if (fresh.empty()) return known;
    const auto now = revisions();
    for (auto& form : fresh) {
        form.seen = now;
        known.push_back(std::move(form));
    }
    return known;
}

allrevisions World::revisions() {
    allrevisions all{};
    stage_.onserver([&] {
        for (std::size_t who = 0; who < parties; ++who) {
            json shop;
            showshop(xuid(who), false, shop);
            all[who] = {shop["revisions"][0], shop["revisions"][1]};
        }
    });
    return all;
}

json World::fill(const json& element, Dice& dice) {
    const std::string type = element["type"];
    if (type == "toggle") return dice.below(4) != 0;
    if (type == "dropdown") return dice.below(element["options"].size());
    if (type == "slider") return element["max"].get<int>() * dice.below(5) / 4;
    if (type != "input") return nullptr;
    const std::string hint = element["placeholder"];
    if (hint == "input name") return fmt::format("n{}", ++names_);
    for (const auto& [words, texts] : hints)
        if (hint.starts_with(words))
            return texts.empty() ? "" : texts[static_cast<std::size_t>(dice.below(texts.size()))];
    const std::string standard = element.value("default", "");
    return standard.empty() ? json("n") : json(numbers[static_cast<std::size_t>(dice.below(std::size(numbers)))]);
}

void World::answers(std::size_t who, const dialog& asked, Dice& dice) {
    const std::string type = asked.form["type"];
    json answer;
    if (type == "modal") answer = !dice.oneof(5);
    if (type == "form" && !asked.form["buttons"].empty()) answer = dice.below(asked.form["buttons"].size());
    if (type == "custom_form")
        for (const auto& element : asked.form["content"]) answer.push_back(fill(element, dice));
    answers(who, asked, answer);
}

void World::answers(std::size_t who, const dialog& asked, const json& answer) {
    last_[who] = asked;
    last_[who]->answer = answer;
    answered_ = last_[who];
    onanswer(*answered_);
    actor(who).look([&](client::ModelClient& c) { c.answer(asked.id, answer.dump()); });
    stage_.server().settle();
}

void World::answersagain(std::size_t who) {
    if (!last_[who]) return;
    actor(who).look([&](client::ModelClient& c) {
        platform::ModalFormResponsePacket packet{last_[who]->id, last_[who]->answer.dump(), {}};
        c.sendraw(platform::sealpacket(platform::topacket(packet)));
    });
    stage_.server().settle();
}

// ---- from outside

void World::begins() { answered_.reset(); }

void World::comesorgoes(std::size_t who) {
    if (const auto away = std::ranges::find(actors_, nullptr); away != actors_.end()) {
        who = static_cast<std::size_t>(away - actors_.begin());
        luggage_[who].clear();
        return join(who);
    }
    stage_.onserver([&] { collectsupplies(luggage_[who], who); });
    actors_[who]->leaves();
    actors_[who] = nullptr;
    last_[who].reset();
    known_[who].clear();
}

void World::saves(bool forget) {
    stage_.onserver([&] {
        json seen;
        for (std::size_t who = 0; forget && who < parties; ++who) showshop(xuid(who), true, seen);
    });
    stage_.seconds(4);
}

void World::diesorlives(std::size_t who) {
    if (const auto dead = std::ranges::find(alive_, false); dead != alive_.end())
        who = static_cast<std::size_t>(dead - alive_.begin());
    alive_[who] = !alive_[who];
    stage_.onserver([&] { stage_.server().world().setalive(name(who), alive_[who]); });
}

void World::loseskeepsrights() {
    rights_ = !rights_;
    stage_.onserver([&] { stage_.server().world().setpermission(name(theoperator), rights_ ? 1 : 0); });
}

void World::puts(std::size_t who, Dice& dice) {
    stage_.onserver([&] {
        for (int i = 0; i < 3; ++i) put(who, dice.below(40), dice.random() % (stone + 3), dice.below(64));
    });
    if (dice.oneof(3)) actor(who).setmoney(dice.below(400));
}

bool World::filesareright(const picture& seen) {
    for (std::size_t who = 0; who < parties; ++who) {
        const auto file = json::parse(stage_.file(shopfile(who)));
        for (const auto kind : {sells, recycles})
            if (lasting(file[kind == sells ? "sell" : "recycles"], seen.now) !=
                lasting(seen.shops[who][kind], seen.now))
                return false;
    }
    return true;
}

}  // namespace story
