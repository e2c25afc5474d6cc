// Languages: the game's own texts (item names), and the plug-in's translation tables.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace platform {

// locale code -> text key -> text
using LangData = std::map<std::string, std::map<std::string, std::string>>;

class I18nBase {
public:
    virtual ~I18nBase() = default;
    // The text for the key. An empty locale is the default one; a locale or key not held falls back to the default
    // locale, and a key unknown there too comes back unchanged. Any thread.
    [[nodiscard]] virtual std::string get(const std::string& key, const std::string& locale) const = 0;
};

class Texts {
public:
    virtual ~Texts() = default;
    // A text of the game itself, such as an item's name, in the given language; unknown keys come back unchanged.
    [[nodiscard]] virtual std::string gametext(const std::string& key, const std::string& locale) const = 0;
    // The language the server holds at this moment; decides hover texts. Server thread.
    [[nodiscard]] virtual std::string currentlanguage() const = 0;
    // Loads (or creates from `defaults`) the language file and completes it with the keys of `defaults`, on disk too.
    // Null when the file cannot be read; a broken file is left as it is. The object lives as long as the server.
    virtual I18nBase* loadI18n(const std::string& path, const std::string& defaultlocale, const LangData& defaults) = 0;
};

namespace I18n {
// The server's language switch; goes through whatever replaced it (hook.h). Server thread.
void chooseLanguage(const std::string& code);
[[nodiscard]] std::string get(const std::string& key, const std::string& locale);
[[nodiscard]] std::string currentlanguage();
}  // namespace I18n

namespace Translation {
I18nBase* loadI18nImpl(const std::string& path, const std::string& defaultlocale, const LangData& defaults);
}

}  // namespace platform
