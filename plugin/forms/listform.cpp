// Building a page of a list and finding the row behind a button.
#include "plugin/forms/listform.h"

#include <algorithm>
#include <memory>

#include "plugin/economy/economymanager.h"

namespace ordomart {

namespace {

// The page that a form shows. Its buttons mean this page, whatever page the player is on when he presses them.
struct sentpage {
    std::int32_t number;
    bool hasprevious, hasnext;
};

void answered(ServerPlayer* player, const listform& form, const sentpage& sent, int button) {
    const auto turnto = [&](std::int32_t page) {
        getplayershopstate(player->getXuid()).*form.page = page;
        form.turned(player);
    };
    if (sent.hasprevious && button-- == 0) return turnto(sent.number - 1);
    if (sent.hasnext && button-- == 0) return turnto(sent.number + 1);
    const auto row = static_cast<std::size_t>(sent.number) * pagesize + static_cast<std::size_t>(button);
    if (row < form.size(player)) {
        form.choose(player, row);
    } else {
        form.wrongrow(player);
    }
}

std::string numberspart(const std::string& language, const char* countkey, std::int32_t count,
                        const std::string& price) {
    return fmt::format("\n§f§r{}:{}   {} {}/{}", tr(language, countkey), count, price, getmoneyname(),
                       tr(language, "measurement.entries"));
}

}  // namespace

std::string namepart(const std::string& language, const std::string& name, const std::string& itemnbt,
                     const std::string& mark) {
    return fmt::format("{}:{}§r§f(§a{}§f){}", tr(language, "shop.shopitemname"), name,
                       itemlocalname(itemfromsnbt(itemnbt), language), mark);
}

void sendlistform(ServerPlayer* player, const listform& list) {
    const auto count = list.size(player);
    const auto lastpage = static_cast<std::int32_t>(count / pagesize);
    // The list may have become shorter since the page was chosen.
    auto& page = getplayershopstate(player->getXuid()).*list.page;
    page = std::clamp(page, 0, lastpage);
    const sentpage sent{page, page > 0, page < lastpage};

    Form::SimpleForm form(tr(player, list.titlekey),
                          list.header + filled(tr(player, list.contentkey), page + 1, lastpage + 1, count));
    if (sent.hasprevious) form.addButton("\uE04DLast page\n上一页", "textures/ui/book_shiftleft_default.png");
    if (sent.hasnext) form.addButton("Next page\uE04F\n下一页", "textures/ui/book_shiftright_default.png");
    const auto first = static_cast<std::size_t>(page) * pagesize;
    for (auto row = first; row < std::min(first + pagesize, count); ++row) {
        // One that cannot be shown keeps its place, so that the others mean themselves.
        std::string text;
        envelopeat(list.place, [&] { text = list.text(player, row); });
        form.addButton(text);
    }

    sendform(player, form, {list.place, list.closed},
             [shared = std::make_shared<const listform>(list), sent](ServerPlayer* who, int button) {
                 answered(who, *shared, sent, button);
             });
}

std::string rowtext(const std::string& language, const globalsellshopitem& row, const std::string& mark) {
    const auto price = row.price != row.realprice ? fmt::format("§f§r§7{}§l-> §r§e{}", row.price, row.realprice)
                                                  : fmt::format("§f§r§e{}", row.realprice);
    return namepart(language, row.shopitemname, row.itemnbt, mark) +
           numberspart(language, "shopitem.leftnum", row.shopitemleftnum, price);
}

std::string rowtext(const std::string& language, const globalrecycleshopitem& row, const std::string& mark) {
    return namepart(language, row.recycleitemname, row.itemnbt, mark) + numberspart(language, "recycleshopitem.leftnum",
                                                                                    row.recycleitemleftwanna,
                                                                                    fmt::format("§f§r§e{}", row.offer));
}

}  // namespace ordomart
