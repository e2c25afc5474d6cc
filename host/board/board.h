// The board: a page, and the same as JSON, for everybody, without a token, of those views alone that hold nothing
// private. It reads; nothing can be done by it. Addresses and forms are told in docs/board.md.
#pragma once

#include <memory>
#include <string>

#include "host/board/ratelimit.h"

namespace host {

class Server;

struct BoardOptions {
    std::string host = "127.0.0.1";
    int port = 0;  // 0: any free one
    Rate rate = {};
};

class Board {
public:
    Board(Server& server, BoardOptions options);
    ~Board();  // stops

    // Throws StartError when the port is taken.
    void start();
    // Before the server's stop.
    void stop();
    [[nodiscard]] int port() const;
    [[nodiscard]] std::string address() const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace host
