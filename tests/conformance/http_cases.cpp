// Calls to web services. Whether a host verifies certificates is its own to test.
#include <atomic>

#include "platform/background.h"
#include "platform/event.h"
#include "platform/http.h"
#include "tests/conformance/conformance.h"
#include "tests/host/webservice.h"

namespace conformance {

TEST_P(Conformance, AWebServiceIsCalledFromABackgroundThread) {
    const coretests::WebService service([](const httplib::Request& request, httplib::Response& response) {
        response.status = request.method == "GET" ? 404 : 201;
        response.set_content(request.method + request.body, "text/plain");
    });
    start();
    int answered = 0, found = -1, posted = -1, nobody = -1;
    std::string page, receipt, nothing = "nothing";
    server->onserver([&] {
        platform::Background::start([&] {
            answered += platform::HttpGetSync(service.address() + "/page", found, page, 10) ? 1 : 0;
            answered +=
                platform::HttpPostSync(service.address() + "/", "text/plain", "body", posted, receipt, 10) ? 1 : 0;
            answered += platform::HttpGetSync("no address", nobody, nothing, 10) ? 100 : 0;
        });
    });
    server->ticks(1);
    EXPECT_EQ(answered, 2);
    EXPECT_EQ(found, 404);
    EXPECT_EQ(page, "GET");
    EXPECT_EQ(posted, 201);
    EXPECT_EQ(receipt, "POSTbody");
    EXPECT_EQ(nobody, -1);
    EXPECT_EQ(nothing, "nothing");
    const auto asked = service.asked();
    ASSERT_EQ(asked.size(), 2U);
    EXPECT_EQ(asked[1].type, "text/plain");
}

// Ten minutes each, if it did.
TEST_P(Conformance, AStopDoesNotWaitForAnswers) {
    const coretests::MuteService mute;
    start();
    std::atomic<int> ended = 0;
    const auto call = [&] {
        int status = -1;
        std::string text;
        EXPECT_FALSE(platform::HttpGetSync("http://" + mute.authority(), status, text, 600));
        ++ended;
    };
    server->onserver([&] {
        platform::Background::start([&] {
            for (int i = 0; i < 3; ++i) call();
        });
        platform::Background::start(call);
    });
    server->stop();
    EXPECT_EQ(ended, 4);
}

}  // namespace conformance
