// Turns the rows into the sorted maps that the translation facility takes; filled by inserting, so that the first of
// two rows with one key stands.
#include "plugin/base/langtables.h"

#include <string>

namespace ordomart {

const platform::LangData& defaultlangdata() {
    static const platform::LangData data = [] {
        platform::LangData made;
        for (const auto& row : englishrows()) made["en_US"].emplace(row.key, row.text);
        for (const auto& row : chineserows()) made["zh_CN"].emplace(row.key, row.text);
        return made;
    }();
    return data;
}

}  // namespace ordomart
