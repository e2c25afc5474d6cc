// One pass from per cent sign to per cent sign.
#include "client/texts.h"

namespace client {

std::string filled(std::string_view text, const std::vector<std::string>& parameters) {
    if (parameters.empty()) return std::string(text);
    std::string out;
    std::size_t next = 0;
    for (auto mark = text.find('%'); mark != std::string_view::npos; mark = text.find('%')) {
        out += text.substr(0, mark);
        text.remove_prefix(mark);
        const char kind = text.size() > 1 ? text[1] : '\0';
        const auto place = kind == 's' ? next : static_cast<std::size_t>(kind - '1');
        const bool numbered = kind >= '1' && kind <= '9';
        if (kind == '%') {
            out += '%';
        } else if ((kind == 's' || numbered) && place < parameters.size()) {
            out += parameters[place];
            if (kind == 's') ++next;
        } else {
            out += text[0];
            text.remove_prefix(1);
            continue;
        }
        text.remove_prefix(2);
        if (numbered && text.starts_with("$s")) text.remove_prefix(2);
    }
    return out.append(text);
}

}  // namespace client
