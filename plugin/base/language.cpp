// The language file is loaded at the server's first language choice, which comes before any player can read a text.
#include "plugin/base/language.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "platform/files.h"
#include "platform/foreignjson.h"
#include "platform/hook.h"
#include "platform/host.h"
#include "platform/network.h"
#include "plugin/base/hooking.h"
#include "plugin/base/owntexts.h"

namespace ordomart {

std::atomic<I18nBase*> plugintranslation = nullptr;
bool langloaded = false;
std::string serverlanguage;

namespace {

constexpr const char* defaultlocale = "en_US";
void* serverschoice = nullptr;

void chooselanguage(const std::string& code) {
    if (serverlanguage.empty()) serverlanguage = code;
    if (!langloaded) {
        plugintranslation = Translation::loadI18nImpl(paths::langs, defaultlocale, alllangdata());
        langloaded = plugintranslation != nullptr;
        if (!langloaded) logger.error("langfile load failed");
    }
    reinterpret_cast<ChooseLanguageFunction>(serverschoice)(code);
}

// What a player reads as long as the language file cannot be loaded.
std::string builtintext(const std::string& locale, const std::string& key) {
    for (const std::string& table : {locale, std::string(defaultlocale)})
        if (const auto texts = alllangdata().find(table); texts != alllangdata().end())
            if (const auto text = texts->second.find(key); text != texts->second.end()) return text->second;
    return key;
}

// The server speaks another language for a moment.
class languageswitch {
public:
    explicit languageswitch(const std::string& locale) { I18n::chooseLanguage(locale); }
    ~languageswitch() { I18n::chooseLanguage(serverlanguage); }
    languageswitch(const languageswitch&) = delete;
    languageswitch& operator=(const languageswitch&) = delete;
};

}  // namespace

void hookchooselanguage() {
    installhook(symbols::chooseLanguage, &serverschoice, reinterpret_cast<void*>(&chooselanguage));
}

std::string tr(const Player* player, const std::string& key) { return tr(player->getLanguageCode(), key); }

std::string tr(const std::string& locale, const std::string& key) {
    const auto* const texts = plugintranslation.load();
    return texts != nullptr ? texts->get(key, locale) : builtintext(locale, key);
}

textsdraft drafttexts() {
    textsdraft draft;
    const auto fault = [&](const std::string& why) { draft.faults.push_back(paths::langs + ": " + why); };
    const auto text = host().files->read(paths::langs);
    if (!text) return fault(host().files->exists(paths::langs) ? "cannot be read" : "is missing"), draft;
    nlohmann::json document;
    try {
        document = readforeignjson(*text);
    } catch (const ForeignJsonError& e) {
        return fault(e.what()), draft;
    }
    if (!document.is_object()) return fault("an object of languages was expected"), draft;
    for (const auto& [locale, texts] : document.items()) {
        if (!texts.is_object()) fault(fmt::format("\"{}\" must be an object of texts", locale));
        if (!texts.is_object()) continue;
        for (const auto& [key, value] : texts.items()) {
            if (value.is_string())
                draft.texts[locale][key] = value.get<std::string>();
            else
                fault(fmt::format("\"{}\", key \"{}\": must be a text", locale, key));
        }
    }
    return draft;
}

bool takeover(const textsdraft& draft, textcount& counted) {
    auto* const fresh = Translation::loadI18nImpl(paths::langs, defaultlocale, alllangdata());
    if (fresh == nullptr) return false;
    // What is not in one of the two is there as in the default language.
    auto all = draft.texts;
    for (const auto& [locale, texts] : alllangdata()) all[locale].insert(texts.begin(), texts.end());
    for (const auto& [locale, texts] : all)
        for (const auto& [key, text] : texts) {
            ++counted.all;
            if (fresh->get(key, locale) != tr(locale, key)) ++counted.changed;
        }
    plugintranslation = fresh;
    langloaded = true;
    return true;
}

std::string itemhovertext(const ItemStack& stack, const std::string& locale) {
    const languageswitch switched(locale);
    return host().items->hovertext(stack);
}

std::string getitemhovertext(const ItemStack& stack, const std::string& language) {
    if (stack.isNull() || host().level == nullptr) return {};
    auto text = itemhovertext(stack, language);
    for (const auto& line : stack.getCustomLore()) text += "\n§5§o" + line + "§r";
    return text;
}

std::string itemlocalname(const ItemStack& stack, const std::string& locale) {
    return I18n::get(stack.getDescriptionId(), locale);
}

}  // namespace ordomart
