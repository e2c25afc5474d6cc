// Lines of the trade logs, all through the one trade logger, which is pointed at the right file before each.
#include "plugin/shopsystem/tradelog.h"

#include <fmt/format.h>

#include "platform/files.h"
#include "platform/host.h"
#include "plugin/base/guards.h"
#include "plugin/base/language.h"
#include "plugin/errands/tradereport.h"
#include "plugin/shopsystem/itemidentity.h"
#include "plugin/shopsystem/recycleshop.h"
#include "plugin/shopsystem/sellshop.h"

namespace shopsystem {

using ordomart::tradelogger;

namespace {

constexpr std::size_t mostlogbytes = 5000;

std::string logpath(const std::string& xuid, const char* suffix) { return ordomart::paths::log + xuid + suffix; }

std::string itemtail(const json& record) {
    return (record.at("isenchanted").get<bool>() ? "(enchanted) * " : " * ") +
           std::to_string(record.at("tradecount").get<std::int64_t>());
}

// Enchanted goods have no market price that would tell anybody anything.
void report(int type, const json& record) {
    if (!record.at("isenchanted").get<bool>())
        ordomart::whenwritten([type, record] { ordomart::uploadtrade(type, record); });
}

// Where a text that was cut at its front begins again with a whole line.
std::size_t firstlineend(const std::string& text) {
    for (const char* lineend : {"\r\n", "\n"})
        if (const auto found = text.find(lineend); found != std::string::npos) return found;
    return 0;
}

}  // namespace

void writeshopline(const std::string& xuid, const char* suffix, const std::string& message) {
    ordomart::whenwritten([path = logpath(xuid, suffix), message] {
        tradelogger.setFile(path, true);
        tradelogger.put(LogLevel::info, message);
    });
}

std::string readeventlog(const std::string& xuid, const char* suffix) {
    const std::string path = logpath(xuid, suffix);
    auto text = host().files->readtail(path, mostlogbytes + 1);
    if (!text) {
        ordomart::debuglogger.error("cant find {0},try check logs!", path);
        return "failed to open";
    }
    if (text->size() <= mostlogbytes) return *std::move(text);
    text->erase(0, text->size() - mostlogbytes);
    return text->substr(firstlineend(*text));
}

std::string tradesentence(const std::string& locale, const char* key, const std::string& player, std::int64_t money,
                          const std::string& item, const std::string& shopname) {
    const auto fill = [&](const std::string& text) {
        return fmt::format(fmt::runtime(text), player, money, item, shopname);
    };
    const std::string text = ordomart::tr(locale, key);
    try {
        return fill(text);
    } catch (const fmt::format_error& e) {
        ordomart::logger.error("The text of \"{}\" for \"{}\" cannot be filled: {}", key, locale, e.what());
        return fill(key);
    }
}

json traderecord(const CompoundTag& itemtag, const std::string& itemnbt, std::int64_t pieces, std::int64_t money) {
    return {{"itemname", itemtag.getString("Name")},
            {"itemdamage", itemtag.getShort("Damage")},
            {"itemunbreakvalue", gettagdamage(itemtag)},
            {"tradecount", pieces},
            {"transmoney", money},
            {"isenchanted", !getenchlist(itemtag).empty()},
            {"rawitemnbt", itemnbt}};
}

void sellshop::writetradelog(const json& record) const {
    const std::string item = record.at("shopitemname").get<std::string>() + "(" +
                             record.at("itemname").get<std::string>() + ":" +
                             std::to_string(record.at("itemdamage").get<int>()) + ")" + itemtail(record);
    writeshopline(
        xuid, ".log",
        tradesentence(ownerlang, purchasesentence, record.at("prplayername"), record.at("transmoney"), item, shopname));
    report(0, record);
}

void recycleshop::writetradelog(const json& record) const {
    const int damage = record.at("itemdamage").get<int>();
    const std::string item = record.at("itemname").get<std::string>() + ":" +
                             (damage == -1 ? "?" : std::to_string(damage)) + itemtail(record);
    writeshopline(
        xuid, ".relog",
        tradesentence(ownerlang, recyclesentence, record.at("replayername"), record.at("transmoney"), item, shopname));
    report(1, record);
}

}  // namespace shopsystem
