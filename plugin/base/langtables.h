// The two text tables that the plug-in is built with. They fill "langs.json" when it is missing and complete it when
// keys are missing in it. The rows are kept as they were written, with their repetitions: where a key stands twice, the
// first row holds.
#pragma once

#include <span>

#include "platform/text.h"

namespace ordomart {

struct langrow {
    const char* key;
    const char* text;
};

[[nodiscard]] std::span<const langrow> englishrows();
[[nodiscard]] std::span<const langrow> chineserows();

// "en_US" and "zh_CN". Any thread.
[[nodiscard]] const platform::LangData& defaultlangdata();

}  // namespace ordomart
