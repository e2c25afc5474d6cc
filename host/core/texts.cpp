// A translation file is one JSON object: locale code to an object from text key to text. It belongs to the operator:
// what he wrote stays, missing keys are added, and a file that does not read is left as it is, until it has changed.
#include "host/core/texts.h"

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "host/world/items.h"

namespace host {

namespace {

using nlohmann::json;

platform::LangData parse(const std::string& content) {
    platform::LangData data;
    const auto document = json::parse(content);
    if (!document.is_object()) throw std::runtime_error("an object of languages was expected");
    for (const auto& [locale, texts] : document.items()) {
        if (!texts.is_object()) throw std::runtime_error("\"" + locale + "\" must be an object of texts");
        auto& table = data[locale];
        for (const auto& [key, text] : texts.items()) {
            if (!text.is_string()) throw std::runtime_error("\"" + locale + "\", \"" + key + "\" must be a text");
            table[key] = text.get<std::string>();
        }
    }
    return data;
}

// True when something was missing.
bool complete(platform::LangData& data, const platform::LangData& defaults) {
    bool changed = false;
    for (const auto& [locale, texts] : defaults) {
        auto& table = data[locale];
        const auto before = table.size();
        table.insert(texts.begin(), texts.end());
        changed |= table.size() != before;
    }
    return changed;
}

std::string directoryof(const std::string& path) { return path.substr(0, path.find_last_of('/') + 1); }

}  // namespace

const std::string* Translations::find(const std::string& key, const std::string& locale) const {
    const auto table = data_.find(locale);
    if (table == data_.end()) return nullptr;
    const auto text = table->second.find(key);
    return text == table->second.end() ? nullptr : &text->second;
}

std::string Translations::get(const std::string& key, const std::string& locale) const {
    const auto* text = find(key, locale);
    if (text == nullptr) text = find(key, defaultlocale_);
    return text != nullptr ? *text : key;
}

std::string GameTexts::gametext(const std::string& key, const std::string& locale) const {
    const auto text = itemtable().gametext(key, locale.starts_with("zh") ? "zh_CN" : "en_US");
    return text.empty() ? key : text;
}

std::optional<platform::LangData> GameTexts::read(const std::string& path) {
    const auto& files = files_();
    if (!files.exists(path)) return platform::LangData();
    // Before the content, so that a change in between is seen the next time.
    const auto stamp = files.stamp(path);
    const auto known = broken_.find(path);
    if (stamp && known != broken_.end() && known->second == *stamp) return std::nullopt;
    const auto content = files.read(path);
    platform::LangData data;
    if (!content) complain_(path + ": cannot be read");
    if (content && guarded(complain_, path, [&] { data = parse(*content); })) return data;
    if (stamp) broken_[path] = *stamp;
    return std::nullopt;
}

platform::I18nBase* GameTexts::loadI18n(const std::string& path, const std::string& defaultlocale,
                                        const platform::LangData& defaults) {
    auto& files = files_();
    auto data = read(path);
    if (!data) return nullptr;
    if (complete(*data, defaults) || !files.exists(path)) {
        const bool written = files.makeDirectory(directoryof(path)) && files.replace(path, json(*data).dump(4) + "\n");
        if (!written) complain_(path + ": cannot be written; it stays without the texts that are new");
    }
    return &loaded_.emplace_back(std::move(*data), defaultlocale);
}

}  // namespace host
