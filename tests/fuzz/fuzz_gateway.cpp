// Any bytes as what a gateway says: the first chooses how the rest is cut into pieces. However they come, the same is
// understood, and nothing is asked for before the login or in a session that never was.
#include <cstdint>
#include <cstdlib>
#include <set>

#include "host/network/gateway/talk.h"

using namespace host;

namespace {

class Wishes : public GatewayWishes {
public:
    void login(const std::string& token, const std::string&) override {
        if (in_) std::abort();
        if (token != "t") throw BadFrame("the token is wrong");
        in_ = true;
        heard += "login;";
    }
    void open(std::uint64_t session, OpenRequest request) override { begin(session, "open " + request.player.name); }
    void refuse(std::uint64_t session, const std::string&) override { begin(session, "refuse"); }
    void packet(std::uint64_t session, std::string packet) override {
        goon(session, "packet " + std::to_string(packet.size()));
    }
    void close(std::uint64_t session, std::string reason) override { goon(session, "close " + reason); }
    std::string heard;

private:
    void begin(std::uint64_t session, const std::string& what) {
        if (!in_ || session <= last_) std::abort();
        last_ = session;
        heard += what + ";";
    }
    void goon(std::uint64_t session, const std::string& what) {
        if (!in_ || session == 0 || session > last_) std::abort();
        heard += what + ";";
    }
    bool in_ = false;
    std::uint64_t last_ = 0;
};

std::string understood(std::string_view bytes, std::size_t piece) {
    Wishes wishes;
    GatewayTalk talk(wishes);
    FrameReader reader;
    try {
        for (; !bytes.empty(); bytes.remove_prefix(std::min(piece, bytes.size()))) {
            reader.add(bytes.substr(0, piece));
            while (auto frame = reader.next()) talk.hear(std::move(*frame));
        }
    } catch (const BadFrame&) {
        wishes.heard += "bad";
    }
    return wishes.heard;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    if (understood(bytes, data[0] + std::size_t{1}) != understood(bytes, bytes.size())) std::abort();
    return 0;
}
