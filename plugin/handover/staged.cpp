#include "plugin/handover/staged.h"

#include <utility>

#include "plugin/shopsystem/shoprecords.h"

namespace handover {

namespace {

constexpr int mostpieces = 1000;
constexpr std::size_t mostbytes = std::size_t{128} << 10;

enum class piece : std::uint8_t { shop = 1, opening, item, entry, sum };

void begin(platform::BinaryStream& out, piece what) { out.writeByte(static_cast<std::uint8_t>(what)); }
void writenumber(platform::BinaryStream& out, std::uint64_t number) {
    out.writeVarInt64(static_cast<std::int64_t>(number));
}
std::uint64_t getnumber(platform::BinaryStream& in) { return static_cast<std::uint64_t>(in.getVarInt64()); }

}  // namespace

void stager::shop(const shopline& head, const json& section) {
    std::string bytes;
    json::to_msgpack(section, bytes);
    begin(out_, piece::shop);
    out_.writeString(head.owner);
    out_.writeByte(static_cast<std::uint8_t>(head.section));
    out_.writeString(bytes);
    ++pieces_;
}

void stager::opening(const shopline& of, const ledger::shopbooks& books) {
    auto moved = books;
    moved.number = numbers_.before(books.number);
    begin(out_, piece::opening);
    out_.writeString(of.owner);
    out_.writeByte(static_cast<std::uint8_t>(of.section));
    out_.writeString(ledger::encode(moved));
    ++pieces_;
}

void stager::item(const std::string& text) {
    begin(out_, piece::item);
    out_.writeString(text);
    ++pieces_;
}

void stager::entry(const ledger::entry& one) {
    begin(out_, piece::entry);
    writenumber(out_, numbers_.before(one.number));
    // 0: what it undoes is not in the file, and no number of this market may stand for it.
    writenumber(out_, numbers_.contains(one.undoes) ? numbers_.before(one.undoes) + 1 : 0);
    out_.writeString(ledger::encode(one));
    ++pieces_;
}

void stager::sum(const sumline& one) {
    begin(out_, piece::sum);
    out_.writeByte(static_cast<std::uint8_t>(one.kind));
    out_.writeVarInt64(one.day);
    out_.writeString(one.of);
    out_.writeString(ledger::encode(one.sum));
    ++pieces_;
}

bool stager::isfull() const { return pieces_ >= mostpieces || out_.bytes().size() >= mostbytes; }

std::string stager::take() {
    pieces_ = 0;
    return std::exchange(out_, {}).bytes();
}

void takeover(const std::string& staged, std::uint64_t base) {
    platform::BinaryStream in(staged);
    while (in.unread() != 0) {
        switch (static_cast<piece>(in.getByte())) {
            case piece::shop: {
                const auto owner = in.getString();
                const int section = in.getByte();
                shopsystem::putsection(owner, section, json::from_msgpack(in.getString()));
                break;
            }
            case piece::opening: {
                const auto owner = in.getString();
                const int section = in.getByte();
                auto books = ledger::decodebooks(in.getString());
                books.number += base;
                ledger::takein(owner, section, books);
                break;
            }
            case piece::item:
                ledger::takein(in.getString());
                break;
            case piece::entry: {
                const auto number = base + getnumber(in), undoes = getnumber(in);
                auto one = ledger::decode(number, in.getString());
                one.undoes = undoes != 0 ? base + undoes - 1 : 0;
                ledger::takein(one);
                break;
            }
            case piece::sum: {
                const auto kind = static_cast<ledger::sumof>(in.getByte());
                const auto day = in.getVarInt64();
                const auto of = in.getString();
                ledger::takein(kind, day, of, ledger::decodesum(in.getString()));
                break;
            }
            default:
                throw platform::ReadError("no such piece of a market");
        }
    }
}

}  // namespace handover
