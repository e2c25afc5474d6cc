// All rows of all shops of one kind, beside the shop objects: a block for each shop, on shelves in the order of the
// files. Who changes a shop says so, who asks for the shelves has what changed since decoded first. So opening a list
// costs what has changed, and nothing where nothing has.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include "platform/directorywatch.h"
#include "plugin/shopsystem/listfind.h"

namespace shopsystem {

class catalogue {
public:
    using question = std::function<bool()>;
    explicit catalogue(int kind) : kind_(kind) {}

    // In a turn: the shop is not what it was, or another object, or none.
    void changed(const std::string& xuid) { changed_.insert(xuid); }
    // Not on the server thread, not in a turn. Everything that changed before the call is in what it gives. `goeson` is
    // asked before each shop that has to be looked at; when it says no, the result is null and the rest is left to the
    // next one. With an owner's key only his shop is looked at.
    [[nodiscard]] std::shared_ptr<const shelves> uptodate(const question& goeson, const std::string& only = {});
    // Finds what the query asks for, or gives what somebody has found already.
    [[nodiscard]] std::shared_ptr<const foundrows> find(const std::shared_ptr<const shelves>& among, rowquery query);
    // Forgets all of it; nobody is looking.
    void clear();

private:
    struct infileorderless {
        bool operator()(const std::string& a, const std::string& b) const { return infileorder(a, b); }
    };
    using news = std::map<std::string, std::optional<shopgoods>, infileorderless>;  // none: gone

    void listen();
    [[nodiscard]] bool lookatall(const question& goeson, const std::string& only);
    [[nodiscard]] bool look(const std::string& xuid, bool istobeworkedon, news& changes);
    void apply(const news& changes);

    const int kind_;
    std::unordered_set<std::string> changed_;  // reached only in a turn

    std::mutex updating_;  // of what follows; turns are taken while it is held, so nobody in a turn may take it
    std::unique_ptr<platform::DirectoryWatch> watch_;
    std::unordered_set<std::string> told_;            // only by their files, which shops in the cache do not mind
    std::set<std::string, infileorderless> waiting_;  // to be looked at, until it has been

    std::mutex publishing_;  // of what follows, for a moment
    std::shared_ptr<const shelves> current_;
    std::vector<std::weak_ptr<const foundrows>> found_;
};

[[nodiscard]] catalogue& catalogueof(int kind);

}  // namespace shopsystem
