// The cache of shop objects. Files are the store, objects the working copies. Reached only in a turn; a reference that
// it gives is good for the operation at hand.
#pragma once

#include <memory>
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
    // Background threads, not in a turn: brings a shop in, with reading and parsing outside of the turn, so that a
    // following getshop finds it. Throws what getshop throws.
    void bringin(const std::string& xuid, int type);
    // In a turn: as if every shop in the cache had been asked for.
    void askforall(int type);
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
