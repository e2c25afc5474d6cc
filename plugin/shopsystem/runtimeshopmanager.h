// The cache of shop objects. Files are the store, objects the working copies. Reached only in a turn; a reference that
// it gives is good for the operation at hand.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "plugin/shopsystem/recycleshop.h"
#include "plugin/shopsystem/sellshop.h"
#include "plugin/shopsystem/shopfiles.h"

namespace shopsystem {

class runtimeshopmanager {
public:
    runtimeshopmanager();
    ~runtimeshopmanager();

    // A shop of a kind that is known here, and of one that is only known at run time. A shop that is not in the cache
    // is read; throws shopfileerror for a file that does not parse or has wrong types in it, std::runtime_error for one
    // that is there and cannot be read, and then brings nothing in.
    sellshop& getsellshop(const std::string& xuid);
    recycleshop& getrecycleshop(const std::string& xuid);
    baseshop& getshop(const std::string& xuid, int type);
    // Null for a shop that is not in the cache; reads nothing.
    [[nodiscard]] baseshop* cached(const std::string& xuid, int type);
    // The owners of all shops that are in the cache, of either kind. In a turn.
    [[nodiscard]] std::set<std::string> cachedowners();
    // Background threads, not in a turn: brings a shop in, with reading and parsing outside of the turn, so that a
    // following getshop finds it. Throws what getshop throws.
    void bringin(const std::string& xuid, int type);
    // Background threads, not in a turn: `use` is given the shop in a turn, to look at. One that is not in the cache is
    // read for that alone and not kept. Throws what getshop throws.
    void glance(const std::string& xuid, int type, const std::function<void(baseshop&)>& use);
    // The revision of a shop that was read from its file for a list alone; nothing when it is in the cache, which
    // stands above its file. As shoptable::readaside.
    [[nodiscard]] std::optional<std::uint32_t> readaside(const std::string& xuid, int type, std::uint64_t stamp,
                                                         bool issame);
    // The present revision, to hold a row against. Waits for no file where the shop has been seen in this run: it is
    // brought in beside the server, since somebody is about to work on it.
    [[nodiscard]] std::uint32_t revisionof(const std::string& xuid, int type);
    // One pass over both maps, each second, on the server thread; touches no file.
    void tick();
    // Orderly stop: enqueues a save of whatever has not reached its file. As often as something may have changed.
    void savealldirty();
    // The end of it: a line for each shop whose file could not be written.
    void tellunsaved(std::vector<std::string>& unsaved);

private:
    struct maps;
    std::unique_ptr<maps> maps_;
};

extern runtimeshopmanager globalruntimeshopmanager;

}  // namespace shopsystem
