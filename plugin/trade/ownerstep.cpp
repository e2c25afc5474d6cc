#include "plugin/trade/ownerstep.h"

#include <nlohmann/json.hpp>

#include "plugin/economy/economymanager.h"
#include "plugin/economy/marketopen.h"
#include "plugin/shopsystem/playershopstate.h"

namespace shopsystem {

ownerresult refused(refusal why) {
    ownerresult result;
    result.why = why;
    return result;
}

bool mayrun(const Player& player, const std::string& shopxuid) {
    return player.getXuid() == shopxuid || isoperator(player);
}

refusal mayact(const Player& player, const std::string& shopxuid) {
    if (!ordomart::marketopen()) return refusal::marketclosed;
    return mayrun(player, shopxuid) ? refusal::none : refusal::denied;
}

ownerresult mustown(const std::string& xuid, std::int64_t needed, refusal why) {
    const auto has = ordomart::moneyof(xuid);
    if (!has) return refused(refusal::paymentrefused);
    ownerresult result;
    result.has = *has;
    result.needed = needed;
    if (result.has < needed) result.why = why;
    return result;
}

bool paysfee(const Player& player, const nlohmann::json& records) {
    return !isoperator(player) && records.is_array() &&
           static_cast<std::int64_t>(records.size()) > ordomart::maxfreeslot;
}

std::int64_t recordfee(const Player& player, const nlohmann::json& records) {
    return paysfee(player, records) ? ordomart::extraslotcost : 0;
}

}  // namespace shopsystem
