// What a backup costs a server that goes on: how long the server thread stands still at the instant, and how long
// somebody waits who asks it for a piece of work again and again, while shop files are replaced, a log is written and
// the world changes all the time.
//   bench_backup [shops] [goods per shop] [ending]   (default: 10000 shops of 50, .tar)
#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "host/server.h"
#include "platform/files.h"
#include "platform/logger.h"
#include "platform/records.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double milliseconds(Clock::duration time) { return std::chrono::duration<double, std::milli>(time).count(); }

std::string shoppath(int number) { return fmt::format("plugins/Ordomart/data/25354{:011}.json", number); }

// Asks the server thread for nothing, again and again, until it is told to end.
class Asking {
public:
    explicit Asking(host::Server& server)
        : thread_([this, &server] {
              while (!over_) {
                  const auto began = Clock::now();
                  server.run([] {});
                  waits_.push_back(milliseconds(Clock::now() - began));
                  std::this_thread::sleep_for(std::chrono::milliseconds(1));
              }
          }) {}
    ~Asking() { end(); }
    std::string result() {
        end();
        std::ranges::sort(waits_);
        return fmt::format("median {:.2f} ms, 99 % {:.2f} ms, worst {:.2f} ms", waits_[waits_.size() / 2],
                           waits_[waits_.size() * 99 / 100], waits_.back());
    }

private:
    void end() {
        over_ = true;
        if (thread_.joinable()) thread_.join();
    }
    std::atomic<bool> over_ = false;
    std::vector<double> waits_;
    std::thread thread_;
};

}  // namespace

int main(int count, char** values) {
    const int shops = count > 1 ? std::stoi(values[1]) : 10'000, goods = count > 2 ? std::stoi(values[2]) : 50;
    const std::string ending = count > 3 ? values[3] : ".tar";
    const fs::path directory = fs::temp_directory_path() / fmt::format("bench_backup{}", ::getpid());
    const std::string shop(static_cast<std::size_t>(goods) * 400, 's');
    fs::create_directories(directory / "plugins/Ordomart/data");
    for (int i = 0; i < shops; ++i) std::ofstream(directory / shoppath(i)) << shop;
    {
        host::ServerOptions options;
        options.directory = directory.string();
        options.module = MODULE_PATH;
        options.moneylibrary = LLMONEY_PATH;
        options.quiet = true;
        host::Server server(options);
        server.start();
        server.run([&] {
            for (int i = 0; i < shops; ++i)
                server.services().records->put("bench", std::to_string(i), [&] { return shop.substr(0, 2000); });
        });
        std::atomic<bool> over = false;
        std::atomic<int> replaced = 0;
        std::thread saves([&] {
            for (int i = 0; !over; i = (i + 7919) % shops) {
                server.services().files->replace(shoppath(i), shop);
                platform::Logger("Bench").info("{}", i);
                server.run([&] { server.services().records->put("bench", std::to_string(i), [&] { return shop; }); });
                ++replaced;
            }
        });
        std::this_thread::sleep_for(std::chrono::seconds(3));
        for (int i = 0; i < 5; ++i) {
            Asking asking(server);
            std::this_thread::sleep_for(std::chrono::seconds(1));
            fmt::print("a second without a backup: {}\n", asking.result());
        }
        for (int i = 0; i < 5; ++i) {
            const auto file = directory.string() + ending;
            const int before = replaced;
            const auto began = Clock::now();
            Asking asking(server);
            const auto report = server.backup(file);
            const double took = milliseconds(Clock::now() - began);
            fmt::print("{} files, {:.0f} MB in {:.2f} s, {} saves meanwhile; stood still {:.2f} ms; {}\n", report.files,
                       static_cast<double>(report.bytes) / 1e6, took / 1e3, replaced - before,
                       static_cast<double>(report.stopped.count()) / 1e3, asking.result());
            fs::remove(file);
        }
        over = true;
        saves.join();
    }
    fs::remove_all(directory);
}
