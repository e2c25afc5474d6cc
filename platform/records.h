// Tables of bytes by key that become durable together with everything else. The unit is the pass of the server thread:
// what is put or erased up to the end of a pass is on the disk with the inventories, scores and money that changed in
// that pass, or none of it is, whenever the program is killed. A pass that cannot be written is tried again as a whole.
//
// In a turn. The names of tables belong to whoever uses them. adapter.md tells what a host does that cannot give this.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

class Records {
public:
    // Called on the server thread when its pass is written, and once more for each further try: so that what changes
    // five times in a pass is written once. It must not put or erase.
    using Bytes = std::function<std::string()>;

    virtual ~Records() = default;
    virtual void put(const std::string& table, const std::string& key, Bytes bytes) = 0;
    virtual void erase(const std::string& table, const std::string& key) = 0;
    // What stands there by now, written or not.
    [[nodiscard]] virtual std::optional<std::string> get(const std::string& table, const std::string& key) = 0;
    // The keys of a table from one on (the empty text: from the first), in the order of their bytes, at most so many.
    [[nodiscard]] virtual std::vector<std::string> keys(const std::string& table, const std::string& from,
                                                        std::size_t most) = 0;
    // The rows of a table from one key on up to another, which is not among them (the empty text: to the end), at most
    // so many: the first ones, or backwards the last ones, the last in front. As they stand by now, written or not.
    struct Row {
        std::string key, bytes;
    };
    struct Range {
        std::string from = {}, until = {};
    };
    [[nodiscard]] virtual std::vector<Row> rows(const std::string& table, const Range& keys, std::size_t most,
                                                bool backwards = false) = 0;
    // False while what was put there has yet to be written.
    [[nodiscard]] virtual bool written(const std::string& table, const std::string& key) const = 0;
};

}  // namespace platform
