// The two category menus: one button for each entry of a file that the operator edits, read anew at each opening. A
// missing file is written once, with the default entries. A broken file, or one that cannot be opened, gives a log line
// and no menu, and is never overwritten.
#include <exception>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "platform/files.h"
#include "platform/host.h"
#include "plugin/base/language.h"
#include "plugin/formparts/formtools.h"
#include "plugin/forms/categorydefaults.h"
#include "plugin/forms/openers.h"
#include "plugin/shopsystem/baseshop.h"

namespace ordomart {

namespace {

// The entries that are given, or the default ones.
template <json (*defaults)()>
json formdata(std::optional<json> given) {
    return given ? *std::move(given) : defaults();
}
constexpr auto sellformdata = formdata<defaultsellcategories>;
constexpr auto recycleformdata = formdata<defaultrecyclecategories>;

struct categorymenu {
    const char* place;
    const char* file;
    const char* titlekey;
    shoptype searchtype;
    json (*data)(std::optional<json>);
    const char* errorplace;
};

constexpr categorymenu sellmenu{"readandopensellFormmenu",  "sellform.json", "sellmenu", sell, sellformdata,
                                "readandopenOrdoformsemenu"};
constexpr categorymenu recyclemenu{
    "readandopenrecycleFormmenu", "recycleform.json", "recyclemenu", recycle, recycleformdata,
    "readandopenOrdoformremenu"};

// The bits of searchlvl.
enum searchlevel { initemname = 1, initemdesc = 2, initemtag = 4 };

struct categorybutton {
    std::string text;
    int level;
    std::string title, image;
};

// Nothing for an entry that only explains the format. Throws the library's errors.
std::optional<categorybutton> readcategory(const json& entry) {
    if (entry.contains("example") && entry["example"] == true) return std::nullopt;
    return categorybutton{entry.at("searchtaginfo"), entry.at("searchlvl"), entry.at("titlename"),
                          entry.at("imagepath")};
}

// Nothing when the file can neither be opened nor made; the player has been told.
std::optional<json> readcategories(ServerPlayer* player, const categorymenu& menu) {
    const auto path = paths::base + menu.file;
    if (const auto content = host().files->read(path)) return menu.data(json::parse(*content));
    logger.warn("Can't open file{},try load default setting...", path);
    json standard = menu.data({});
    // A file that is there, but cannot be opened just now, must not be taken for a missing one and replaced.
    if (host().files->exists(path) || !host().files->replace(path, standard.dump(4))) {
        logger.error("Can't open file {}", path);
        player->sendText("failed to open" + path);
        return {};
    }
    return standard;
}

opresult readandopen(ServerPlayer* player, const categorymenu& menu) {
    try {
        const auto entries = readcategories(player, menu);
        if (!entries) return opresult::refused;

        Form::SimpleForm form(tr(player, menu.titlekey), "");
        std::vector<categorybutton> categories;
        for (const auto& entry : *entries) {
            const auto one = readcategory(entry);
            if (!one) continue;
            categories.push_back(*one);
            form.addButton(one->title, one->image);
        }
        sendform(player, form, {menu.place}, [categories, type = menu.searchtype](ServerPlayer* who, int button) {
            const auto& chosen = categories.at(static_cast<std::size_t>(button));
            searchbyfilter(who, type, chosen.text, (chosen.level & initemdesc) != 0, (chosen.level & initemtag) != 0,
                           (chosen.level & initemname) != 0);
        });
        return opresult::opened;
    } catch (const std::exception& error) {
        logger.error("An error occurred while {}, {}", menu.errorplace, error.what());
        return opresult::refused;
    }
}

}  // namespace

std::vector<std::string> categoryfaults() {
    std::vector<std::string> faults;
    for (const categorymenu& menu : {sellmenu, recyclemenu}) {
        const auto path = paths::base + menu.file;
        const auto content = host().files->read(path);
        // One that is missing is made when it is first wanted.
        if (!content && !host().files->exists(path)) continue;
        std::string place;
        try {
            if (!content) throw std::runtime_error("cannot be read");
            std::size_t number = 0;
            const json entries = json::parse(*content);
            for (const auto& entry : entries) {
                place = fmt::format("[{}]: ", number++);
                (void)readcategory(entry);
            }
        } catch (const std::exception& e) {
            faults.push_back(fmt::format("{}: {}{}", path, place, e.what()));
        }
    }
    return faults;
}

opresult readandopensellFormmenu(ServerPlayer* player) { return readandopen(player, sellmenu); }
opresult readandopenrecycleFormmenu(ServerPlayer* player) { return readandopen(player, recyclemenu); }

}  // namespace ordomart
