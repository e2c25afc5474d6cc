// One line of the ledger: a trade, or a movement of an owner's goods or deposit. It is written once and never changed.
// Some 60 to 90 bytes, so that ten million of them stay usable: whole numbers are short when they are small, and an
// item's tag is kept once, under its hash. Any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "plugin/shopsystem/baseshop.h"
#include "plugin/shopsystem/shopitems.h"

namespace ledger {

// The numbers stand on the disk.
enum class kind : std::uint8_t {
    purchase = 1,  // of goods
    sale = 2,      // to a commission
    upload = 3,    // an owner's goods from here on
    taken = 4,     // pieces went back to who adjusted them
    replenish = 5,
    setstock = 6,  // by an operator, and no piece moved
    broken = 7,    // goods of an item that this server does not know were erased
    publish = 8,   // an owner's commissions from here on
    adjust = 9,    // the deposit follows what is wanted
    pickup = 10,
    undopurchase = 11,
    undosale = 12,
    keptfee = 13,  // the fee of an upload that was refused behind it
};
[[nodiscard]] constexpr bool istrade(kind what) { return what == kind::purchase || what == kind::sale; }
[[nodiscard]] constexpr bool isundo(kind what) { return what == kind::undopurchase || what == kind::undosale; }
[[nodiscard]] const char* nameof(kind what);  // "purchase"
[[nodiscard]] std::optional<kind> kindof(std::string_view name);

// What a record of a shop holds, as far as it can be counted: a good, or a commission.
struct rowstate {
    std::uint64_t tag = 0;                               // the hash of its text
    std::int64_t left = 0;                               // the stock, or what is still wanted
    std::int64_t waiting = 0, offer = 0, sponsored = 0;  // of a commission
    auto operator<=>(const rowstate&) const = default;
    // What somebody has paid for the commission and is still in it.
    [[nodiscard]] std::int64_t deposit() const;
};
[[nodiscard]] rowstate stateof(const shopsystem::shopitem& item);
[[nodiscard]] rowstate stateof(const shopsystem::recycleshopitem& item);

struct pile {
    std::uint64_t tag = 0;
    std::int64_t pieces = 0;
    bool operator==(const pile&) const = default;
};

struct entry {
    std::uint64_t number = 0;  // rising, in the order in which things happened; never another's
    std::int64_t time = 0;     // Unix seconds
    kind what = kind::purchase;
    std::string shop;         // the owner's xuid, or "systemshop"
    std::string actor;        // the xuid of who did it: buyer, seller, owner, operator
    bool isopshop = false;    // the shop of an operator: it gives and takes without end
    bool byoperator = false;  // who does it moves no money with a deposit
    std::uint64_t tag = 0;    // of the record's text
    std::int64_t pieces = 0, price = 0;
    // Money: what the actor has paid (a purchase, an owner's deposit) or got (a sale, with less deposit: negative).
    std::int64_t paid = 0;
    std::int64_t fee = 0;                   // in a purchase: part of what was paid; of an owner: beside it
    std::uint32_t revision = 0;             // the shop's behind it
    std::int32_t count = 0, volume = 0;     // the shop's two counters behind it
    std::optional<rowstate> before, after;  // the record; none: it was made, or has gone
    std::vector<pile> piles;                // what a sale took, by what it was
    std::uint64_t undoes = 0;
    std::string undoneby = {};  // the operator's xuid; the parties are those of the trade

    [[nodiscard]] shopsystem::shoptype section() const;
    bool operator==(const entry&) const = default;
};

[[nodiscard]] std::string encode(const entry& of);
// Throws platform::ReadError for bytes that are no entry.
[[nodiscard]] entry decode(std::uint64_t number, const std::string& bytes);

// Numbers as keys: in the order of their bytes.
[[nodiscard]] std::string keyof(std::uint64_t number);
[[nodiscard]] std::uint64_t numberof(const std::string& key);
[[nodiscard]] std::uint64_t hashof(std::string_view text);

// Goods that have one price: an item with its aux value, enchanted or not.
struct variant {
    std::string name;  // "minecraft:apple"
    std::int32_t aux = 0;
    bool enchanted = false;
    auto operator<=>(const variant&) const = default;
    [[nodiscard]] std::string text() const;  // "minecraft:apple:0", and "+" behind it for what is enchanted
};
[[nodiscard]] variant variantof(const std::string& itemnbt);
[[nodiscard]] variant readvariant(std::string_view text);

}  // namespace ledger
