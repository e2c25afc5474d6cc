// Every text that a player reads, by key and locale; and the hover text of items, which the server makes in whatever
// language it holds at that moment.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "platform/item.h"
#include "platform/player.h"
#include "platform/text.h"
#include "plugin/base/globals.h"

namespace ordomart {

extern std::atomic<I18nBase*> plugintranslation;
extern bool langloaded;
extern std::string serverlanguage;  // the first language that the server ever chose

// Installed over the server's own language switch while the module loads.
void hookchooselanguage();

[[nodiscard]] std::string tr(const Player* player, const std::string& key);
[[nodiscard]] std::string tr(const std::string& locale, const std::string& key);

// The language file as it is now, checked and not in force. Any thread.
struct textsdraft {
    LangData texts;
    std::vector<std::string> faults;  // file, language, key and why
};
[[nodiscard]] textsdraft drafttexts();
// What a draft without faults holds is what is read from now on. Nothing is taken over, and it is false, when the file
// cannot be loaded any more. Server thread.
struct textcount {
    std::size_t all = 0, changed = 0;
};
bool takeover(const textsdraft& draft, textcount& counted);

// The item's hover text in a language, without its custom lore. Server thread, in one go.
[[nodiscard]] std::string itemhovertext(const ItemStack& stack, const std::string& locale);
// The same with its custom lore. Empty for the null stack and without a world.
[[nodiscard]] std::string getitemhovertext(const ItemStack& stack, const std::string& language);
// The item's name in a language, by its description id.
[[nodiscard]] std::string itemlocalname(const ItemStack& stack, const std::string& locale);

}  // namespace ordomart
