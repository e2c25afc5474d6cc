// One table says which words there are, where they stand in the grammar, who may use them and what they do.
#include "plugin/frame/command.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "platform/level.h"
#include "plugin/base/globals.h"
#include "plugin/base/screens.h"
#include "plugin/economy/offlinemoney.h"
#include "plugin/forms/openers.h"
#include "plugin/frame/handoverwords.h"
#include "plugin/frame/ledgerwords.h"
#include "plugin/frame/reload.h"
#include "plugin/shopsystem/playershopstate.h"
#include "plugin/shopsystem/shopfiles.h"

namespace ordomart {

namespace {

struct call {
    const OrdomartCommand& given;
    ServerPlayer* player;
    CommandOutput& output;
};

// ---- actions; one that returns anything but `opened` fails with the text of its word

using action = opresult (*)(const call&);

template <screen Which>
opresult open(const call& c) {
    return openscreen(Which, c.player);
}

// Somebody else's shop. Empty, with the caller told, when there is none or it is his own.
std::string findother(const call& c) {
    std::string xuid = resolveshopowner(*c.given.target);
    if (xuid == c.player->getXuid()) {
        c.output.error("you can not search yourself!!!");
        return {};
    }
    if (xuid.empty()) c.output.error("failed to find " + *c.given.target);
    return xuid;
}

template <screen List, screen Single>
opresult openbyshop(const call& c) {
    if (!c.given.target) return openscreen(List, c.player);
    if (const std::string xuid = findother(c); !xuid.empty()) openscreen(Single, c.player, {.shop = xuid});
    return opresult::opened;
}

opresult search(const call& c) {
    if (!c.given.searchtype) return opensearchitemform(c.player, sell, false);
    return searchbyfilter(c.player, *c.given.searchtype, c.given.filtertext, c.given.searchindescription,
                          c.given.searchintag, true);
}

opresult editfilter(const call& c) {
    setmyshopitemfiter(c.player);
    return opresult::opened;
}

opresult collectoffmoney(const call& c) {
    if (moneymode != 0) return opresult::refused;
    getoffmoney(c.player, true);
    return opresult::opened;
}

constexpr std::int64_t noend = -1;

// The answer says only that the order was handed over; the shop is changed once its file is read.
opresult orderban(const call& c, bool banned, const std::string& reason, std::int64_t seconds,
                  const std::string& accepted) {
    const std::string xuid = resolveshopowner(*c.given.target);
    if (xuid.empty()) {
        c.output.error("failed to find playerinfo:" + *c.given.target);
        return opresult::opened;
    }
    const opresult handed = setbanstate(c.player, *c.given.searchtype, xuid, banned, reason, seconds);
    if (handed != opresult::opened) return handed;
    const auto until = seconds == noend ? std::string() : fmt::format(" for {} s", seconds);
    logger.info("{} has {} the shop {} ({}){}", c.player->getRealName(), banned ? "banned" : "opened", xuid,
                sectionkey(*c.given.searchtype), banned ? until + ": " + reason : "");
    c.output.success(accepted);
    return handed;
}

opresult ban(const call& c) {
    return orderban(c, true, c.given.banreason.value_or("no reason"), c.given.bantime.value_or(noend),
                    "the shop has been banned");
}

opresult unban(const call& c) { return orderban(c, false, "No Reason", noend, "the shop has been unbanned"); }

opresult manage(const call& c) {
    if (!c.given.target) return openmanagesetstateform(c.player);
    const std::string xuid = findother(c);
    if (xuid.empty()) return opresult::opened;
    getplayershopstate(c.player->getXuid()).manage(xuid);
    c.output.addMessage("set manageid successfully! Remeber reset your manageid after done!");
    return openscreen(screen::myshop, c.player);
}

opresult resetmanage(const call& c) {
    getplayershopstate(c.player->getXuid()).manage(managesnobody);
    c.output.addMessage("reset manageid successfully");
    return opresult::opened;
}

opresult prices(const call& c) {
    askprices(c.player, c.given.item, c.output);
    return opresult::opened;
}

opresult trades(const call& c) {
    asktrades(c.player, c.given.target.value_or(""), c.output);
    return opresult::opened;
}

opresult undo(const call& c) {
    askundo(c.player, c.given.number, c.output);
    return opresult::opened;
}

constexpr int accepting = 1;

opresult audit(const call& c) {
    askaudit(c.player, c.given.option == accepting, c.output);
    return opresult::opened;
}

opresult reload(const call& c) {
    askreload(c.player, c.output);
    return opresult::opened;
}

opresult exportmarket(const call& c) {
    askexport(c.player, c.given.file, c.output);
    return opresult::opened;
}

opresult importmarket(const call& c) {
    askimport(c.player, c.given.file.value_or(""), c.output);
    return opresult::opened;
}

// ---- the words, their place in the grammar, and what they do

struct word {
    const char* enumeration;
    const char* text;
    int operation;  // 7 is nobody's
    bool operatorsonly;
    action run;
    const char* failure;
};

constexpr word words[] = {
    {"baseoperation", "recycle", 0, false, &open<screen::recycleshops>, "recyclemenu failed"},
    {"baseoperation", "buy", 2, false, &open<screen::sellshops>, "sellmenu failed"},
    {"baseoperation", "myshop", 4, false, &open<screen::myshop>, "myshop failed"},
    {"baseoperation", "myreshop", 5, false, &open<screen::myrecycleshop>, "myreshop failed"},
    {"baseoperation", "filter", 8, false, &editfilter, ""},
    {"baseoperation", "mainmenu", 9, false, &open<screen::mainmenuform>, "mainmenu failed"},
    {"baseoperation", "ordomenu", 10, false, &open<screen::ordomenu>, "ordomenu failed"},
    {"baseoperation", "formmenu", 11, false, &open<screen::shortmainmenuform>, "formmenu failed"},
    {"baseoperation", "getoffscores", 12, false, &collectoffmoney, "failed.your moneymode is 1(for LLmoney)"},
    {"baseoperation1", "buybyshop", 3, false, &openbyshop<screen::sellshoplist, screen::singlesellshop>,
     "failed to filter"},
    {"baseoperation1", "rebyshop", 1, false, &openbyshop<screen::recycleshoplist, screen::singlerecycleshop>,
     "failed to filter"},
    {"baseoperation2", "search", 6, false, &search, "failed to filter"},
    {"baseoperation3", "ban", 13, true, &ban, "failed to execute ban"},
    {"baseoperation3", "unban", 14, true, &unban, "failed to execute unban"},
    {"manageoption", "manage", 15, true, &manage, "mymanageshop failed"},
    {"manageoption", "resetmanage", 16, true, &resetmanage, ""},
    {"pricesoperation", "prices", 17, false, &prices, ""},
    {"undooperation", "undo", 18, true, &undo, ""},
    {"auditoperation", "audit", 19, true, &audit, ""},
    {"reloadoperation", "reload", 20, true, &reload, ""},
    {"exportoperation", "export", 21, true, &exportmarket, ""},
    {"importoperation", "import", 22, true, &importmarket, ""},
    {"tradesoperation", "trades", 23, true, &trades, ""},
};

// The bare command is the main menu, with a failure text of its own.
constexpr word bareword = {"", "", 0, false, &open<screen::mainmenuform>, "openformmainmenu failed"};

const word* find(int operation) {
    const auto* const found = std::ranges::find(words, operation, &word::operation);
    return found != std::end(words) ? found : nullptr;
}

using Kind = CommandParameter::Kind;

struct parameter {
    const char* name;
    Kind kind;
    const char* enumeration;
    bool optional;
    void (*put)(OrdomartCommand&, const CommandValue&);
};

template <class Value, auto Field>
void put(OrdomartCommand& command, const CommandValue& value) {
    command.*Field = std::get<Value>(value);
}

constexpr auto putoperation = &put<int, &OrdomartCommand::operation>;
constexpr auto putsearchtype = &put<int, &OrdomartCommand::searchtype>;
constexpr auto puttarget = &put<std::string, &OrdomartCommand::target>;

const std::vector<std::vector<parameter>> overloads = {
    {{"Operation", Kind::Enum, "baseoperation", true, putoperation}},
    {{"Operation", Kind::Enum, "baseoperation1", false, putoperation},
     {"playerxuid|playername", Kind::String, "", true, puttarget}},
    {{"Operation", Kind::Enum, "baseoperation2", false, putoperation},
     {"Operation", Kind::Enum, "searchtype", true, putsearchtype},
     {"filtetxt", Kind::String, "", false, &put<std::string, &OrdomartCommand::filtertext>},
     {"searchinitemtag", Kind::Bool, "", true, &put<bool, &OrdomartCommand::searchintag>},
     {"searchinitemdesc", Kind::Bool, "", true, &put<bool, &OrdomartCommand::searchindescription>}},
    {{"bans", Kind::Enum, "baseoperation3", false, putoperation},
     {"tp", Kind::Enum, "searchtype", false, putsearchtype},
     {"xuid|name", Kind::String, "", false, puttarget},
     {"banreason", Kind::String, "", true, &put<std::string, &OrdomartCommand::banreason>},
     {"bannedtime(seconds)", Kind::Int, "", true, &put<int, &OrdomartCommand::bantime>}},
    {{"manages", Kind::Enum, "manageoption", false, putoperation},
     {"playerxuid|playername", Kind::String, "", true, puttarget}},
    {{"prices", Kind::Enum, "pricesoperation", false, putoperation},
     {"item", Kind::String, "", true, &put<std::string, &OrdomartCommand::item>}},
    {{"undo", Kind::Enum, "undooperation", false, putoperation},
     {"number", Kind::Int, "", false, &put<int, &OrdomartCommand::number>}},
    {{"audit", Kind::Enum, "auditoperation", false, putoperation},
     {"then", Kind::Enum, "auditoption", true, &put<int, &OrdomartCommand::option>}},
    {{"reload", Kind::Enum, "reloadoperation", false, putoperation}},
    {{"export", Kind::Enum, "exportoperation", false, putoperation},
     {"name", Kind::String, "", true, &put<std::string, &OrdomartCommand::file>}},
    {{"import", Kind::Enum, "importoperation", false, putoperation},
     {"name", Kind::String, "", false, &put<std::string, &OrdomartCommand::file>}},
    {{"trades", Kind::Enum, "tradesoperation", false, putoperation},
     {"playerxuid|playername", Kind::String, "", true, puttarget}},
};

const char* const commandname = "ordomart";

}  // namespace

void registerordomart(CommandRegistry& registry) {
    registry.registerCommand(commandname, "a shopsystem based on Inventorycontainer UI", CommandPermissionLevel::Any, 0,
                             128);

    std::vector<std::pair<std::string, std::vector<std::pair<std::string, int>>>> enumerations;
    for (const word& row : words) {
        if (enumerations.empty() || enumerations.back().first != row.enumeration)
            enumerations.push_back({row.enumeration, {}});
        enumerations.back().second.emplace_back(row.text, row.operation);
    }
    enumerations.push_back({"searchtype", {{"sell", sell}, {"recycle", recycle}}});
    enumerations.push_back({"auditoption", {{"accept", accepting}}});
    for (const auto& [name, members] : enumerations) registry.registerEnum(name, members);

    for (const auto& overload : overloads) {
        std::vector<CommandParameter> parameters;
        for (const parameter& row : overload)
            parameters.push_back({row.name, row.kind, row.enumeration, row.optional,
                                  [store = row.put](Command& command, const CommandValue& value) {
                                      store(static_cast<OrdomartCommand&>(command), value);
                                  }});
        registry.registerOverload(
            commandname, [] { return std::make_unique<OrdomartCommand>(); }, std::move(parameters));
    }
}

std::string resolveshopowner(const std::string& target) {
    std::string xuid = PlayerInfo::getXuid(target);
    if (xuid.empty()) xuid = target;
    const auto keys = shopfilekeys();
    return !xuid.empty() && std::ranges::find(keys, xuid) != keys.end() ? xuid : std::string();
}

void OrdomartCommand::execute(const CommandOrigin& origin, CommandOutput& output) {
    ServerPlayer* const player = origin.getPlayer();
    if (player == nullptr) return output.error("you must execute as a player");

    const word* const found = operation ? find(*operation) : &bareword;
    if (found == nullptr) {
        output.success("\xB9\xBE\xB9\xBE\xB9\xBE");  // "咕咕咕" in GBK, as its consoles expect it
        return output.success("OK");
    }
    if (found->operatorsonly && origin.getPermissionsLevel() == CommandPermissionLevel::Any)
        return output.error("permission denied");
    if (found->run({*this, player, output}) != opresult::opened && *found->failure != '\0')
        output.error(found->failure);
}

}  // namespace ordomart
