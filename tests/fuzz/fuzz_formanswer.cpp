// Any text as the answer to a form with one element of each kind: what is taken lies within the elements' bounds.
#include <cstdint>
#include <cstdlib>

#include "platform/form.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace platform::Form;
    static const CustomForm form = [] {
        CustomForm made("title");
        made.addLabel("label", "text").addInput("input", "text").addToggle("toggle", "text");
        made.addSlider("slider", "text", -5, 64).addDropdown("dropdown", "text", {"a", "b"});
        return made;
    }();
    const std::string answer(reinterpret_cast<const char*>(data), size);
    const auto elements = form.readanswer(answer);
    if (elements.empty()) return 0;
    const int slider = elements.at("slider").getInt(), dropdown = elements.at("dropdown").getInt();
    if (elements.size() != 5 || slider < -5 || slider > 64 || dropdown < 0 || dropdown > 1) std::abort();
    return 0;
}
