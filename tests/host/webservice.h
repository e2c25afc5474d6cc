// Web services on loopback, for whoever calls one: with TLS by certificates of an authority of their own, and without.
#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <httplib.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>
#include <signal.h>
#include <sys/socket.h>

#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace coretests {

using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
using Certificate = std::unique_ptr<X509, decltype(&X509_free)>;

// Whoever is hung up on while he still writes has an error, as in the server, and not a signal.
inline const auto nopipesignal = ::signal(SIGPIPE, SIG_IGN);

// Issues certificates that are good where its own file is trusted, and nowhere else.
class Authority {
public:
    Authority() : certificate_(issue("Test authority", key_.get(), "critical,CA:TRUE", {}, 3600)) {}

    [[nodiscard]] Certificate certify(const std::string& name, EVP_PKEY* key, long secondstolive = 3600) const {
        return issue(name, key, "critical,CA:FALSE", "DNS:" + name, secondstolive);
    }
    void write(const std::string& path) const {
        const std::unique_ptr<FILE, decltype(&fclose)> file(fopen(path.c_str(), "w"), &fclose);
        if (!file || PEM_write_X509(file.get(), certificate_.get()) != 1) throw std::runtime_error(path);
    }
    [[nodiscard]] static Key newkey() { return {EVP_EC_gen("P-256"), &EVP_PKEY_free}; }

private:
    [[nodiscard]] Certificate issue(const std::string& name, EVP_PKEY* key, const char* constraints,
                                    const std::string& names, long secondstolive) const {
        static long serial = 0;
        Certificate made(X509_new(), &X509_free);
        X509* const it = made.get();
        X509_set_version(it, X509_VERSION_3);
        ASN1_INTEGER_set(X509_get_serialNumber(it), ++serial);
        X509_gmtime_adj(X509_getm_notBefore(it), -7200);
        X509_gmtime_adj(X509_getm_notAfter(it), secondstolive);
        X509_set_pubkey(it, key);
        X509_NAME_add_entry_by_txt(X509_get_subject_name(it), "CN", MBSTRING_ASC,
                                   reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
        X509_set_issuer_name(it, X509_get_subject_name(certificate_ ? certificate_.get() : it));
        extend(it, NID_basic_constraints, constraints);
        if (!names.empty()) extend(it, NID_subject_alt_name, names.c_str());
        if (X509_sign(it, key_.get(), EVP_sha256()) == 0) throw std::runtime_error("no certificate for " + name);
        return made;
    }
    static void extend(X509* certificate, int what, const char* text) {
        const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
            X509V3_EXT_conf_nid(nullptr, nullptr, what, text), &X509_EXTENSION_free);
        if (!extension || X509_add_ext(certificate, extension.get(), -1) != 1) throw std::runtime_error(text);
    }

    const Key key_ = newkey();
    Certificate certificate_{nullptr, &X509_free};
};

// Answers what it is told to, and keeps what it was asked.
class WebService {
public:
    struct Asked {
        std::string method, path, type, body;
    };
    using Answer = std::function<void(const httplib::Request&, httplib::Response&)>;

    explicit WebService(Answer answer) : WebService(std::make_unique<httplib::Server>(), "http", std::move(answer)) {}
    WebService(const Authority& authority, Answer answer, const std::string& name = "localhost",
               long secondstolive = 3600)
        : WebService(secured(authority, name, secondstolive), "https", std::move(answer)) {}
    ~WebService() {
        server_->stop();
        listener_.join();
    }

    [[nodiscard]] const std::string& address() const { return address_; }  // "https://localhost:1234"
    [[nodiscard]] std::vector<Asked> asked() const {
        const std::lock_guard lock(mutex_);
        return asked_;
    }

private:
    WebService(std::unique_ptr<httplib::Server> server, const std::string& scheme, Answer answer)
        : server_(std::move(server)) {
        const auto answering = [this, answer = std::move(answer)](const auto& request, auto& response) {
            {
                const std::lock_guard lock(mutex_);
                asked_.push_back(
                    {request.method, request.target, request.get_header_value("Content-Type"), request.body});
            }
            answer(request, response);
        };
        server_->Get(".*", answering);
        server_->Post(".*", answering);
        server_->set_keep_alive_timeout(1);
        address_ = scheme + "://localhost:" + std::to_string(server_->bind_to_any_port("127.0.0.1"));
        listener_ = std::thread([this] { server_->listen_after_bind(); });
        while (!server_->is_running()) std::this_thread::yield();
    }
    static std::unique_ptr<httplib::Server> secured(const Authority& authority, const std::string& name, long seconds) {
        const Key key = Authority::newkey();
        return std::make_unique<httplib::SSLServer>(authority.certify(name, key.get(), seconds).get(), key.get());
    }

    std::unique_ptr<httplib::Server> server_;
    std::string address_;
    mutable std::mutex mutex_;
    std::vector<Asked> asked_;
    std::thread listener_;
};

// A service that takes every call and never says a word; after so many calls without an answer not even that.
class MuteService {
public:
    explicit MuteService(int backlog = 100) : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* const any = reinterpret_cast<sockaddr*>(&address);
        if (::bind(socket_, any, size) != 0 || ::listen(socket_, backlog) != 0 ||
            ::getsockname(socket_, any, &size) != 0)
            throw std::runtime_error("no listening socket");
        authority_ = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    }
    ~MuteService() { ::close(socket_); }
    MuteService(const MuteService&) = delete;
    MuteService& operator=(const MuteService&) = delete;
    [[nodiscard]] const std::string& authority() const { return authority_; }  // "127.0.0.1:1234"
    [[nodiscard]] int takecall() const { return ::accept(socket_, nullptr, nullptr); }

private:
    int socket_;
    std::string authority_;
};

}  // namespace coretests
