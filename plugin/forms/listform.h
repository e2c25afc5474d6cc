// The paged list form, written once. A list is a description: whose rows, how a row reads, what a choice does, where
// the page buttons and the closing lead. The page number lives in the player's record; a page holds 26 rows.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "plugin/base/language.h"
#include "plugin/formparts/formtools.h"
#include "plugin/shopsystem/playershopstate.h"
#include "plugin/trade/trade.h"

namespace ordomart {

struct listform {
    const char* place;  // the opener's name, for the log
    const char* titlekey;
    const char* contentkey;  // filled with the page, the number of pages and the number of rows
    std::int32_t playershopstate::*page;
    std::function<std::size_t(ServerPlayer*)> size;
    std::function<std::string(ServerPlayer*, std::size_t row)> text;
    std::function<void(ServerPlayer*, std::size_t row)> choose;
    std::function<void(ServerPlayer*)> wrongrow;  // the list has become shorter than the row that was chosen
    std::function<void(ServerPlayer*)> turned;    // behind a page button
    std::function<void(ServerPlayer*)> closed;
    std::string header = {};  // in front of the content
};

void sendlistform(ServerPlayer* player, const listform& form);

// The name that a row's button begins with. `mark` stands behind it.
[[nodiscard]] std::string namepart(const std::string& language, const std::string& name, const std::string& itemnbt,
                                   const std::string& mark);
// The text of a row's button. `mark` stands behind the name.
[[nodiscard]] std::string rowtext(const std::string& language, const globalsellshopitem& row, const std::string& mark);
[[nodiscard]] std::string rowtext(const std::string& language, const globalrecycleshopitem& row,
                                  const std::string& mark);

// The rows of a list that shows one of the player's read lists. A chosen row is offered to him if its shop has not
// changed since the list was built.
template <class Row>
void showsreadlist(listform& form, readlist<Row> playershopstate::*rows,
                   std::string (*mark)(const std::string& language, const Row& row), tradeface face) {
    const auto listof = [rows](ServerPlayer* player) -> const readlist<Row>& {
        return getplayershopstate(player->getXuid()).*rows;
    };
    form.size = [listof](ServerPlayer* player) { return listof(player).size(); };
    form.text = [listof, mark](ServerPlayer* player, std::size_t i) {
        const auto& language = player->getLanguageCode();
        const Row row = listof(player).row(i);
        return rowtext(language, row, mark(language, row));
    };
    form.choose = [listof, face](ServerPlayer* player, std::size_t i) {
        const Row row = listof(player).row(i);
        if (isfresh(row)) {
            offertrade(player, row, face);
        } else {
            player->sendText(tr(player, "myshop.error.shopinfoupdate"));
        }
    };
}

}  // namespace ordomart
