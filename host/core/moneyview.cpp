// The money that is there, as one more view: what all accounts hold, and what the server gave out and took back. Read
// from the world's file by a connection of its own, so that nobody waits; what the pass under way moves is not in it
// yet.
#include <SQLiteCpp/SQLiteCpp.h>

#include <nlohmann/json.hpp>

#include "host/core/parts.h"
#include "host/world/worldparts.h"
#include "platform/clock.h"

namespace host {

using nlohmann::json;

namespace {

constexpr int patience = 1000;  // milliseconds, for somebody who has the file to himself
constexpr std::int64_t daylength = 86400;

class Ledgers {
public:
    explicit Ledgers(const std::string& path) : file_(path, SQLite::OPEN_READONLY, patience) {}

    [[nodiscard]] json rows() {
        if (file_.tableExists("llmoney_account")) accounts();
        scores();
        return std::move(rows_);
    }

private:
    void add(const std::string& name, const char* kind, std::string english, std::string chinese, std::int64_t value) {
        rows_.push_back({{"name", name},
                         {"kind", kind},
                         {"title", {{"en_US", std::move(english)}, {"zh_CN", std::move(chinese)}}},
                         {"value", value}});
    }

    void accounts() {
        SQLite::Statement all(file_,
                              "SELECT COUNT(*), TOTAL(balance), IFNULL(MAX(balance), 0), IFNULL((SELECT balance FROM "
                              "llmoney_account WHERE balance > 0 ORDER BY balance LIMIT 1 OFFSET (SELECT COUNT(*) / 2 "
                              "FROM llmoney_account WHERE balance > 0)), 0) FROM llmoney_account WHERE balance > 0");
        all.executeStep();
        add("accounts", "number", "Accounts with money", "有余额的账户", all.getColumn(0).getInt64());
        // A sum may be more than 64 bits can say; then its digits are rounded.
        add("circulation", "money", "Money in circulation", "流通货币总量", saturated(all.getColumn(1).getDouble()));
        add("largest", "money", "Largest account", "最高余额", all.getColumn(2).getInt64());
        add("middle", "money", "Middle account", "余额中位数", all.getColumn(3).getInt64());
        for (const int days : {1, 7, 30}) {
            const auto since = platform::unixseconds() - days * daylength;
            const auto day = std::to_string(days);
            add("given" + day, "money", "From the server in " + day + " d (deposits paid out)",
                day + "天内由服务器付出（含押金支付）", moved("payer", since));
            add("taken" + day, "money", "To the server in " + day + " d (deposits, fees)",
                day + "天内付给服务器（押金、手续费）", moved("payee", since));
        }
    }
    [[nodiscard]] std::int64_t moved(const std::string& side, std::int64_t since) {
        SQLite::Statement sum(file_, "SELECT TOTAL(value) FROM llmoney_history WHERE " + side + " = '' AND time >= ?");
        sum.bind(1, since);
        sum.executeStep();
        return saturated(sum.getColumn(0).getDouble());
    }
    [[nodiscard]] static std::int64_t saturated(double sum) {
        return sum >= 9.2e18 ? INT64_MAX : static_cast<std::int64_t>(sum);
    }

    void scores() {
        SQLite::Statement all(file_,
                              "SELECT objective, COUNT(*), SUM(value) FROM scores WHERE value <> 0 GROUP BY objective "
                              "ORDER BY objective");
        while (all.executeStep()) {
            const std::string name = all.getColumn(0).getString(), holders = all.getColumn(1).getString();
            add("score-" + name, "money", "Scores \"" + name + "\", of " + holders,
                "计分项“" + name + "”合计（" + holders + "人）", all.getColumn(2).getInt64());
        }
    }

    SQLite::Database file_;
    json rows_ = json::array();
};

}  // namespace

void Server::Parts::offermoneyview() {
    const json description = {
        {"title", {{"en_US", "Money in circulation"}, {"zh_CN", "流通货币"}}},
        {"about",
         {{"en_US", "What all accounts hold, and what has come from the server and gone back to it."},
          {"zh_CN", "全部账户的余额，以及由服务器发放和收回的货币。"}}},
        {"kind", "figures"},
        {"group", {{"en_US", "Figures"}, {"zh_CN", "统计"}}},
        {"refresh", 15}};
    views.offer({"money", description.dump(), [this](const std::string& query) {
                     if (json::parse(query) != json::object())
                         throw std::invalid_argument("the query of this view has no fields");
                     const auto rows = Ledgers((directory / "server.sqlite").string()).rows();
                     return json{{"rows", rows}}.dump(-1, ' ', false, json::error_handler_t::replace);
                 }});
}

}  // namespace host
