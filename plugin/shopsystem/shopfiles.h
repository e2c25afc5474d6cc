// The data files, one JSON object per owner with the members "sell" and "recycles". Any thread; not in a turn, since
// they read and write files.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "plugin/shopsystem/baseshop.h"
#include "plugin/shopsystem/jsonfields.h"

namespace shopsystem {

// A fault in the content of a shop file; the text begins with the file. One of the parser library's exceptions, so that
// whoever catches those catches it too.
class shopfileerror : public nlohmann::detail::exception {
public:
    shopfileerror(const std::string& path, const std::string& what) : exception(0, (path + ": " + what).c_str()) {}
};

[[nodiscard]] std::string shopfile(const std::string& xuid);  // its path
// "sell" or "recycles"; null for any other number.
[[nodiscard]] const char* sectionkey(int section);

// Runs the body on data of the owner's file; the library's exceptions leave it naming the file.
template <class Body>
decltype(auto) namingfile(const std::string& xuid, Body&& body) {
    try {
        return std::forward<Body>(body)();
    } catch (const shopfileerror&) {
        throw;
    } catch (const nlohmann::detail::exception& e) {
        throw shopfileerror(shopfile(xuid), e.what());
    }
}
// The same on data of one section, which is named too.
template <class Body>
decltype(auto) namingsection(const std::string& xuid, int section, Body&& body) {
    return namingfile(xuid, [&]() -> decltype(auto) { return namingplace(sectionkey(section), body); });
}

// `section` 0 gives the member "sell", 1 "recycles", anything else the whole document. A missing or empty file is made
// with the default content; a missing one gives null. Broken JSON throws shopfileerror, a file that is there and cannot
// be read std::runtime_error, both with the file untouched.
[[nodiscard]] json loadshopdata(const std::string& xuid, int section);

struct loadedsection {
    json content;
    bool isnewfile;  // there was none, or it was empty
};
[[nodiscard]] loadedsection loadsection(const std::string& xuid, int section);

// By which a file that has changed is known: what its file system says of it, or its content on a host that has no such
// thing. 0 for one that is not there.
[[nodiscard]] std::uint64_t filestamp(const std::string& xuid);

// Replaces one section and keeps the other as it stands on the disk. Where it does not stand there any more, it is what
// `other` gives; when this is null and the file has gone or is empty, it begins anew, which is told. Throws
// shopfileerror for a file that does not parse, std::runtime_error for one that cannot be read or written, both with
// the file untouched.
void saveshopdata(const std::string& xuid, const json& value, int section, const std::function<json()>& other = {});
void writedefaultshopfile(const std::string& xuid);

// The owner keys of all shop files, in listing order: the names that end in ".json", without it, so that the name
// ".json" gives an empty key.
[[nodiscard]] std::vector<std::string> shopfilekeys();

}  // namespace shopsystem
