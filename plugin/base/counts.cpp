#include "plugin/base/counts.h"

#include <string>
#include <vector>

namespace ordomart {

using namespace platform;

marketcounts counts;

void startcounts() {
    const auto tradesof = [](const std::string& kind) {
        const std::map<std::string, std::string> label = {{"kind", kind}};
        return marketcounts::tradecounts{
            Shown::counter({"ordomart_trades_total", "Trades, and trades taken back.", label}),
            Shown::counter({"ordomart_pieces_total", "Pieces that changed hands.", label}),
            Shown::counter({"ordomart_money_total", "Coins that changed hands.", label})};
    };
    counts.purchases = tradesof("purchase");
    counts.sales = tradesof("sale");
    counts.undone = tradesof("undo");
    counts.fees = Shown::counter({"ordomart_fees_total", "Coins kept as fees."});
    counts.saves = Shown::counter({"ordomart_shop_saves_total", "Shop files that were written."});
    counts.savefailures =
        Shown::counter({"ordomart_shop_save_failures_total", "Shop files that could not be written; tried again."});
    const std::vector<double> bounds = {0.0001, 0.0003, 0.001, 0.003, 0.01, 0.03, 0.1, 0.3, 1, 3, 10};
    const char* const kinds[] = {"sell", "recycles"};
    for (std::size_t kind = 0; kind < counts.making.size(); ++kind)
        counts.making[kind] = Shown::histogram(
            {"ordomart_list_seconds", "Time to find the rows of a list.", {{"kind", kinds[kind]}}}, bounds);
}

}  // namespace ordomart
