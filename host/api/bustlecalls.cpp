#include "host/api/bustlecalls.h"

#include "host/api/bodyfields.h"
#include "host/bustle/bustle.h"
#include "host/bustle/cast.h"

namespace host {

using nlohmann::json;

json showbustle(ApiCall& call) {
    const Bustle::State state = call.bustle.state();
    return {{"players", state.players},
            {"most", mostaround},
            {"here", state.here},
            {"trades", state.trades},
            {"refusal", state.refusal}};
}

json startbustle(ApiCall& call) {
    const auto players = field<int>(call.body, "players");
    const auto seed = field(call.body, "seed", std::uint64_t{Bustle::usualseed});
    if (const std::string why = call.bustle.state().refusal; !why.empty()) throw ApiError(409, why);
    call.bustle.start(players, seed);
    return showbustle(call);
}

json stopbustle(ApiCall& call) {
    call.bustle.stop();
    return showbustle(call);
}

}  // namespace host
