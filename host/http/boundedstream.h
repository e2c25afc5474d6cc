// What comes in from a web service, before anybody has made sense of it. The library matches the status line with a
// regular expression that takes some hundred bytes of the stack for each character, and keeps as many headers as it is
// sent: a service, or a stranger on a road without TLS, could end the server with one line. So the library reads
// through this, which breaks off a response that no honest service sends.
#pragma once

#include <httplib.h>

#include <array>
#include <cstdint>
#include <string>

namespace host {

class BoundedStream : public httplib::Stream {
public:
    static constexpr std::size_t moststatusline = 512;
    static constexpr std::uint64_t mostbytes = 1 << 21;  // of a whole response, headers too

    // Blocks in each step; whoever sets a time cuts the connection.
    BoundedStream(socket_t socket, SSL* tls) : socket_(socket), tls_(tls) {}
    [[nodiscard]] bool is_readable() const override { return true; }
    [[nodiscard]] bool is_writable() const override { return true; }
    ssize_t read(char* to, size_t size) override;
    ssize_t write(const char* from, size_t size) override;
    void get_remote_ip_and_port(std::string&, int&) const override {}
    void get_local_ip_and_port(std::string&, int&) const override {}
    [[nodiscard]] socket_t socket() const override { return socket_; }

private:
    bool fill();
    ssize_t receive();
    ssize_t receivetls();
    bool admit(const char* bytes, std::size_t size);

    const socket_t socket_;
    SSL* const tls_;
    std::array<char, 4096> buffer_;
    std::size_t at_ = 0, end_ = 0;
    std::uint64_t received_ = 0;
    std::string statusline_;
    bool statusknown_ = false;
};

// A client of the library that reads so.
template <class Client>
class Bounded : public Client {
public:
    using Client::Client;

private:
    bool process_socket(const typename Client::Socket& socket, std::function<bool(httplib::Stream&)> use) override {
        BoundedStream stream(socket.sock, socket.ssl);
        return use(stream);
    }
};

}  // namespace host
