#include "host/api/viewcalls.h"

#include <fmt/format.h>

#include "host/core/views.h"
#include "host/server.h"
#include "platform/foreignjson.h"

namespace host {

using nlohmann::json;

json listviews(ApiCall& call) { return {{"views", call.server.views().descriptions()}}; }

json askview(ApiCall& call) {
    json query = json::object();
    for (const auto& [name, value] : call.fields)
        if (!value.empty() && !query.emplace(name, value).second)
            throw ApiError(400, fmt::format("the query has \"{}\" twice", name));
    const std::string& view = call.player;
    try {
        return platform::readforeignjson(
            call.server.views().ask(view, query.dump(-1, ' ', false, json::error_handler_t::replace)));
    } catch (const NoSuchView& e) {
        throw ApiError(404, e.what());
    } catch (const ViewsClosed& e) {
        throw ApiError(503, e.what());
    } catch (const std::invalid_argument& e) {
        throw ApiError(400, e.what());
    } catch (const std::exception& e) {
        throw ApiError(500, fmt::format("the view \"{}\" failed: {}", view, e.what()));
    }
}

}  // namespace host
