// The texts of the game, the language that the server holds, and the translation files of plug-ins.
#pragma once

#include <deque>
#include <map>
#include <string>

#include "host/core/guarded.h"
#include "platform/files.h"
#include "platform/text.h"

namespace host {

// One translation table; unchanging once it is loaded.
class Translations : public platform::I18nBase {
public:
    Translations(platform::LangData data, std::string defaultlocale)
        : data_(std::move(data)), defaultlocale_(std::move(defaultlocale)) {}
    [[nodiscard]] std::string get(const std::string& key, const std::string& locale) const override;

private:
    [[nodiscard]] const std::string* find(const std::string& key, const std::string& locale) const;
    const platform::LangData data_;
    const std::string defaultlocale_;
};

class GameTexts : public platform::Texts {
public:
    // `files` is asked for at each use, since a test may put its own in place.
    GameTexts(std::function<platform::Files&()> files, Complain complain)
        : files_(std::move(files)), complain_(std::move(complain)) {}
    // The game's languages are English and Chinese ("zh_CN"); "zh_TW" takes the latter, any other the former.
    [[nodiscard]] std::string gametext(const std::string& key, const std::string& locale) const override;
    [[nodiscard]] std::string currentlanguage() const override { return language_; }
    platform::I18nBase* loadI18n(const std::string& path, const std::string& defaultlocale,
                                 const platform::LangData& defaults) override;
    void setlanguage(const std::string& code) { language_ = code; }

private:
    // Nothing when it does not read, which is told once for each content.
    std::optional<platform::LangData> read(const std::string& path);

    const std::function<platform::Files&()> files_;
    const Complain complain_;
    std::string language_;
    std::deque<Translations> loaded_;
    std::map<std::string, platform::FileStamp> broken_;  // by path
};

}  // namespace host
