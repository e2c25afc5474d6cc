// A file of lines read from its beginning to its end, put together again and handed on piece by piece. The walk sees to
// it that each line stands where its kind may stand, and that nothing is missing or doubled; what the pieces mean is
// for those who take them. Background threads.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "plugin/handover/linefile.h"
#include "plugin/handover/lines.h"

namespace handover {

using linecounts = std::map<std::string, std::int64_t>;  // by kind; the first and the last line are not counted

inline constexpr const char* discountskey = "shopdiscount";
[[nodiscard]] json takeout(json& object, const char* key);  // the member's value, null where there is none
[[nodiscard]] std::string moneyhere();                      // "LLMoney", or "scoreboard:" and the objective's name

// What takes the pieces. What it throws is told with the line.
class linetaker {
public:
    virtual ~linetaker() = default;
    virtual void market(const json&) {}
    // Records of a shop, which comes behind them.
    virtual void good(const json&) {}
    virtual void discount(const json&) {}
    virtual void commission(const json&) {}
    virtual void shop(const shopline& head, const json& section) = 0;
    virtual void opening(const shopline& of, const ledger::shopbooks& books) = 0;
    virtual void item(const std::string& text) = 0;
    virtual void entry(const ledger::entry& one) = 0;
    virtual void sum(const sumline& one) = 0;
};

class filewalk {
public:
    filewalk(const std::string& path, linetaker& to) : lines_(path), name_(nameof(path)), to_(to) {}
    // One line; false behind the last. Throws std::runtime_error that names file, line and key.
    bool step();
    [[nodiscard]] std::uint64_t number() const { return lines_.number(); }
    [[nodiscard]] std::uint64_t shopat() const { return shopat_; }    // the line with which the last shop began
    [[nodiscard]] std::uint64_t sum() const { return lines_.sum(); }  // behind the last line
    [[nodiscard]] const linecounts& counts() const { return counts_; }

private:
    enum class part { begin, shops, ledger, days, end };
    struct rule {
        const char* kind;
        part to;  // where the file is behind it; it may stand anywhere before
        void (filewalk::*take)(const json&);
    };
    static const rule rules[];

    void take(const std::string& text);
    void takemarket(const json& value);
    void takeshop(const json& value);
    void takegood(const json& value);
    void takediscount(const json& value);
    void takecommission(const json& value);
    void takeopening(const json& value);
    void takeitem(const json& value);
    void takeentry(const json& value);
    void takeday(const json& value);
    void takeend(const json& value);
    void takerecord(const char* key, std::int64_t& left, const json& record);
    void shopisread();

    linereader lines_;
    const std::string name_;
    linetaker& to_;
    part at_ = part::begin;
    linecounts counts_;
    shopline shop_;  // the last one
    json section_;   // its own, as far as it has been read
    std::int64_t goodsleft_ = 0, discountsleft_ = 0;
    bool isshopdue_ = false, mayopen_ = false;
    std::uint64_t shopat_ = 0, faultat_ = 0;  // lines; 0: where a fault is, is where the walk is
};

}  // namespace handover
