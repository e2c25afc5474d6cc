// The same goods as a table of SQLite in memory, asked as somebody would who keeps the market in it: statements that
// are prepared once, partial indexes that hold only what is shown and all that an order and the count need, and an
// index of trigrams for parts of texts.
#pragma once

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/listgoods.h"

namespace listgoods {

inline constexpr int pagerows = 26;

// Of one list: how many it has, and what stands on the page, which must be the same for all who are asked.
struct answer {
    std::size_t hits = 0;
    std::int64_t prices = 0;
    bool operator==(const answer&) const = default;
};

class table {
public:
    table(int shops, int goods) : db_(":memory:", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE) {
        db_.exec(
            "CREATE TABLE goods (id INTEGER PRIMARY KEY, owner INTEGER, place INTEGER, shopname TEXT, name TEXT,"
            " describe TEXT, tag TEXT, price INTEGER, leftnum INTEGER, nbt TEXT, visible INTEGER)");
        SQLite::Transaction all(db_);
        SQLite::Statement add(db_, "INSERT INTO goods VALUES (NULL,?,?,?,?,?,?,?,?,?,?)");
        foreachgood(shops, goods, [&](int shop, int place, const good& of) {
            const bool isshown = of.left != 0 && !of.isprivate && !isbanned(shop);
            add.bind(1, shop), add.bind(2, place), add.bind(3, fmt::format("Shop {}", shop)), add.bind(4, of.name);
            add.bind(5, of.describe), add.bind(6, of.tag), add.bind(7, realprice(shop, of)), add.bind(8, of.left);
            add.bind(9, of.nbt), add.bind(10, isshown ? 1 : 0);
            add.exec();
            add.reset();
        });
        for (const char* index : {"byprice ON goods(price, owner)", "byname ON goods(name, owner)",
                                  "byleft ON goods(leftnum, owner)", "bytag ON goods(tag, price, owner)"})
            db_.exec(fmt::format("CREATE INDEX {} WHERE visible", index));
        all.commit();
        db_.exec("ANALYZE");
    }

    void addtrigrams() {
        db_.exec(
            "CREATE VIRTUAL TABLE texts USING fts5(name, describe, tag, content='',"
            " tokenize='trigram case_sensitive 1')");
        db_.exec(
            "INSERT INTO texts(rowid, name, describe, tag) SELECT id, name, describe, tag FROM goods WHERE visible");
        db_.exec("INSERT INTO texts(texts) VALUES ('optimize')");
    }

    // By the indexes: the page, and the count beside it.
    answer indexed(const std::string& order, const std::string& tag, std::size_t page) {
        answer got{.hits = count(tag)};
        got.prices = pageof(order, tag, page);
        return got;
    }
    std::int64_t pageof(const std::string& order, const std::string& tag, std::size_t page) {
        auto& ask =
            prepared(fmt::format("SELECT {} FROM goods WHERE visible AND owner<>?1{} ORDER BY {}"
                                 " LIMIT {} OFFSET ?3",
                                 columns, tag.empty() ? "" : " AND tag=?2", order, pagerows));
        ask.bind(1, ownshop);
        if (!tag.empty()) ask.bind(2, tag);
        ask.bind(3, static_cast<std::int64_t>(page * pagerows));
        std::int64_t prices = 0;
        while (ask.executeStep()) prices += readrow(ask);
        ask.reset();
        return prices;
    }
    // By one statement that gives the hits in the order of the list: they are counted, and those of the page fetched.
    // That is half of what a page and a count cost where each has to look for them.
    answer scanned(const std::vector<std::string>& fields, const std::vector<std::string>& parts, std::size_t page) {
        std::string test;
        for (const auto& field : fields)
            for (std::size_t i = 0; i < parts.size(); ++i)
                test += fmt::format("{}instr({},?{})>0", test.empty() ? "" : " OR ", field, i + 2);
        auto& ask = prepared("SELECT id FROM goods NOT INDEXED WHERE visible AND owner<>?1 AND (" + test +
                             ") ORDER BY price, id");
        for (std::size_t i = 0; i < parts.size(); ++i) ask.bind(static_cast<int>(i) + 2, parts[i]);
        return collected(ask, page);
    }
    answer bytrigrams(const std::vector<std::string>& fields, const std::vector<std::string>& parts, std::size_t page) {
        std::string match;
        for (const auto& part : parts) match += fmt::format("{}\"{}\"", match.empty() ? "" : " OR ", part);
        auto& ask = prepared(
            "SELECT g.id FROM texts CROSS JOIN goods g ON g.id = texts.rowid WHERE texts MATCH ?2 AND g.owner<>?1"
            " ORDER BY g.price, g.id");
        ask.bind(2, fmt::format("{{{}}} : ({})", fmt::join(fields, " "), match));
        return collected(ask, page);
    }

private:
    static constexpr const char* columns = "owner, place, shopname, name, describe, tag, price, leftnum, nbt";

    std::size_t count(const std::string& tag) {
        auto& ask = prepared(std::string("SELECT count(*) FROM goods WHERE visible AND owner<>?1") +
                             (tag.empty() ? "" : " AND tag=?2"));
        ask.bind(1, ownshop);
        if (!tag.empty()) ask.bind(2, tag);
        ask.executeStep();
        const auto found = static_cast<std::size_t>(ask.getColumn(0).getInt64());
        ask.reset();
        return found;
    }
    answer collected(SQLite::Statement& ask, std::size_t page) {
        ask.bind(1, ownshop);
        std::vector<std::int64_t> shown;
        answer got;
        for (; ask.executeStep(); ++got.hits)
            if (got.hits / pagerows == page) shown.push_back(ask.getColumn(0).getInt64());
        ask.reset();
        auto& row = prepared(fmt::format("SELECT {} FROM goods WHERE id=?1", columns));
        for (const auto id : shown) {
            row.bind(1, id);
            row.executeStep();
            got.prices += readrow(row);
            row.reset();
        }
        return got;
    }
    // All of it as the texts that a page is made of.
    static std::int64_t readrow(SQLite::Statement& row) {
        for (const int text : {2, 3, 4, 5, 8}) (void)row.getColumn(text).getString();
        return row.getColumn(6).getInt64();
    }
    SQLite::Statement& prepared(const std::string& text) {
        auto& known = prepared_[text];
        if (known == nullptr) known = std::make_unique<SQLite::Statement>(db_, text);
        return *known;
    }

    SQLite::Database db_;
    std::map<std::string, std::unique_ptr<SQLite::Statement>> prepared_;
};

}  // namespace listgoods
