// Building a page of a list and finding the row behind a button.
#include "plugin/forms/listform.h"

#include <algorithm>
#include <memory>

#include "plugin/economy/economymanager.h"

namespace ordomart {

namespace {

enum pagebuttons : unsigned { lastpagebutton = 1, nextpagebutton = 2 };

void answered(ServerPlayer* player, const listform& form, unsigned pagebuttons, int button) {
    auto& page = getplayershopstate(player->getXuid()).*form.page;
    if ((pagebuttons & lastpagebutton) != 0 && button-- == 0) {
        page = std::max(page - 1, 0);
        form.turned(player);
        return;
    }
    if ((pagebuttons & nextpagebutton) != 0 && button-- == 0) {
        ++page;
        form.turned(player);
        return;
    }
    const auto row = static_cast<std::size_t>(page) * pagesize + static_cast<std::size_t>(button);
    if (row < form.size(player)) {
        form.choose(player, row);
    } else {
        form.wrongrow(player);
    }
}

std::string namepart(const std::string& language, const std::string& name, const std::string& itemnbt,
                     const std::string& mark) {
    return fmt::format("{}:{}§r§f(§a{}§f){}", tr(language, "shop.shopitemname"), name,
                       itemlocalname(itemfromsnbt(itemnbt), language), mark);
}

std::string numberspart(const std::string& language, const char* countkey, std::int32_t count,
                        const std::string& price) {
    return fmt::format("\n§f§r{}:{}   {} {}/{}", tr(language, countkey), count, price, getmoneyname(),
                       tr(language, "measurement.entries"));
}

}  // namespace

void sendlistform(ServerPlayer* player, const listform& list) {
    const auto page = getplayershopstate(player->getXuid()).*list.page;
    const auto count = list.size(player);
    const auto lastpage = static_cast<std::int32_t>(count / pagesize);

    Form::SimpleForm form(tr(player, list.titlekey),
                          list.header + filled(tr(player, list.contentkey), page + 1, lastpage + 1, count));
    unsigned pagebuttons = 0;
    if (page > 0) {
        form.addButton("\uE04DLast page\n上一页", "textures/ui/book_shiftleft_default.png");
        pagebuttons |= lastpagebutton;
    }
    if (page < lastpage) {
        form.addButton("Next page\uE04F\n下一页", "textures/ui/book_shiftright_default.png");
        pagebuttons |= nextpagebutton;
    }
    const auto first = static_cast<std::size_t>(page) * pagesize;
    for (auto row = first; row < std::min(first + pagesize, count); ++row) form.addButton(list.text(player, row));

    sendform(player, form, {list.place, list.closed},
             [shared = std::make_shared<const listform>(list), pagebuttons](ServerPlayer* who, int button) {
                 answered(who, *shared, pagebuttons, button);
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
