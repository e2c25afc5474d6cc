// What people of a bustling market bring from outside: the goods of their craft, and money when they have run out of
// it. It is a demo's money; whoever holds a real market would make coins out of nothing.
#pragma once

#include <string>

namespace host {

class Server;
struct Person;

// Why this server must not have a bustle; empty when it may.
[[nodiscard]] std::string bustlerefusal(Server& server);
// Server thread; the person is online. What does not fit into his bags any more he has taken home before.
void endow(Server& server, Person& person);

}  // namespace host
