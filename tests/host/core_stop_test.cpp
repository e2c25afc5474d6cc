// The end of a server: what it waits for and for how long, and what it says of what did not get to the disk.
#include <gmock/gmock.h>

#include <future>

#include "host/core/events.h"
#include "host/core/log.h"
#include "platform/background.h"
#include "platform/event.h"
#include "platform/schedule.h"
#include "tests/host/servertest.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

class CoreStop : public testing::Test {
protected:
    void start() {
        auto options = coretests::manually(directory);
        options.abandon = [this](const std::vector<std::string>& unsaved) {
            abandoned = unsaved;
            hold.set_value();
        };
        server = std::make_unique<host::Server>(options);
        server->start();
    }
    [[nodiscard]] std::vector<std::string> errors() const {
        std::vector<std::string> found;
        for (const auto& line : server->log().lines())
            if (line.level == platform::LogLevel::error) found.push_back(line.message);
        return found;
    }

    coretests::Directory directory;
    std::promise<void> hold;  // until the stop has given up
    std::vector<std::string> abandoned;
    std::unique_ptr<host::Server> server;
};

TEST_F(CoreStop, TellsWhatThePluginsSayTheyCouldNotSave) {
    start();
    server->events().listen([](const platform::Event::ServerStoppedEvent& event) {
        event.unsaved.push_back("100.json: the disk is full");
        return true;
    });
    server->stop();
    EXPECT_THAT(server->unsaved(), ElementsAre("100.json: the disk is full"));
    EXPECT_THAT(errors(), ElementsAre("Not saved: 100.json: the disk is full"));
    EXPECT_TRUE(abandoned.empty());
}

// A body that does not ask, a queue that stands, and a task that makes tasks; a save that the stop asks for all the
// same.
TEST_F(CoreStop, GivesUpWhatDoesNotEndWhenAllElseIsSaved) {
    start();
    const auto held = hold.get_future().share();
    std::thread queue;
    std::function<void()> again = [&again] { platform::Schedule::delay(again, 0); };
    bool saved = false;
    server->run([&] {
        platform::Background::start([held] { held.wait(); });
        queue = std::thread([held, handle = platform::Background::busy()]() mutable {
            held.wait();
            handle.reset();
        });
        platform::Schedule::delay(again, 0);
    });
    server->events().listen([&](const platform::Event::ServerStoppingEvent&) { return saved = true; });
    server->stop();
    queue.join();
    EXPECT_TRUE(saved);
    EXPECT_THAT(abandoned, ElementsAre("2 pieces of background work did not end"));
    EXPECT_EQ(server->unsaved(), abandoned);
    EXPECT_THAT(errors(), Contains(HasSubstr("Tasks that make tasks")));
}

}  // namespace
