// Events, replaceable functions and forms.
#include <optional>
#include <thread>

#include "platform/event.h"
#include "platform/form.h"
#include "platform/hook.h"
#include "platform/network.h"
#include "platform/packets/forms.h"
#include "platform/text.h"
#include "tests/conformance/conformance.h"

namespace conformance {

namespace Event = platform::Event;
using Words = std::vector<std::string>;

template <class P>
std::string sealed(const P& packet) {
    return platform::sealpacket(platform::topacket(packet));
}

template <class P>
std::optional<P> last(const std::vector<platform::Packet>& packets) {
    std::optional<P> found;
    for (const auto& packet : packets)
        if (packet.id() == P::number) found = platform::readpacket<P>(packet.body());
    return found;
}

TEST_P(Conformance, EventsComeInTheirOrder) {
    Words told;
    startwithplayer([&](platform::Host& services) {
        const auto online = [&services] {
            platform::ServerPlayer* const player = services.level->getPlayerByXuid(xuid);
            return player != nullptr && player->isReadyForContainer() ? " and is here" : "";
        };
        on<Event::RegCmdEvent>([&](const Event::RegCmdEvent& event) -> bool {
            told.emplace_back(event.registry != nullptr ? "commands" : "no commands");
            throw std::runtime_error("a listener that throws");
        });
        on<Event::RegCmdEvent>([&](const Event::RegCmdEvent&) {
            told.emplace_back("commands again");
            return false;
        });
        on<Event::RegCmdEvent>([&](const Event::RegCmdEvent&) {
            told.emplace_back("what was not let pass");
            return true;
        });
        on<Event::PlayerJoinEvent>([&, online](const Event::PlayerJoinEvent& event) {
            told.push_back(event.player->getRealName() + " joins" + online());
            return true;
        });
        on<Event::PlayerLeftEvent>([&, online](const Event::PlayerLeftEvent& event) {
            const bool here = services.level->getPlayer(event.player->sessionid()) == event.player;
            told.push_back(event.player->getXuid() + (here ? " leaves" : " has left"));
            return true;
        });
        on<Event::ServerStoppingEvent>([&](const Event::ServerStoppingEvent&) {
            told.push_back("stopping with " + std::to_string(services.level->getAllPlayers().size()));
            return true;
        });
    });
    server->stop();
    EXPECT_EQ(told, (Words{"commands", "commands again", "Tester joins and is here", std::string(xuid) + " leaves",
                           "stopping with 0"}));
}

// Replacements tell that they were called, and go on to what they have replaced.
Words called;
template <class Function, int number>
Function before = nullptr;

template <int number>
void choice(const std::string& code) {
    called.push_back(std::to_string(number) + " " + code);
    before<platform::ChooseLanguageFunction, number>(code);
}

void request(platform::ServerNetworkHandler* handler, const platform::NetworkIdentifier& id,
             const platform::ItemStackRequestPacket& packet) {
    platform::ServerPlayer* const player = handler->_getServerPlayer(id, 0);
    called.push_back(player != nullptr ? player->getRealName() : "nobody");
    for (const auto& one : packet.requests)
        called.push_back(std::to_string(one.id) + ":" + std::to_string(one.actions.size()));
    before<platform::HandleItemStackRequest, 0>(handler, id, packet);
}

template <int number, class Function>
int replace(platform::HookTable& hooks, const char* name, Function replacement) {
    return hooks.replace(hooks.find(name), reinterpret_cast<void**>(&before<Function, number>),
                         reinterpret_cast<void*>(replacement));
}

TEST_P(Conformance, ServerFunctionsAreReplacedAndChained) {
    called.clear();
    startwithplayer([](platform::Host& services) {
        namespace symbols = platform::symbols;
        platform::HookTable& hooks = *services.hooks;
        EXPECT_EQ(hooks.find("?no such function@@"), nullptr);
        EXPECT_NE(hooks.find(symbols::handleContainerClose), nullptr);
        int nothing = 0;
        EXPECT_NE(hooks.replace(&nothing, nullptr, &nothing), 0) << "not a function of the server";
        EXPECT_EQ(replace<1>(hooks, symbols::chooseLanguage, &choice<1>), 0);
        EXPECT_EQ(replace<2>(hooks, symbols::chooseLanguage, &choice<2>), 0);
        EXPECT_EQ(replace<0>(hooks, symbols::handleItemStackRequest, &request), 0);
    });
    server->onserver([] {
        const std::string code = platform::I18n::currentlanguage();
        ASSERT_FALSE(code.empty()) << "the server chooses a language when it starts";
        EXPECT_EQ(called, (Words{"2 " + code, "1 " + code}));
        called.clear();
        platform::I18n::chooseLanguage("zh_CN");
        EXPECT_EQ(called, (Words{"2 zh_CN", "1 zh_CN"}));
        EXPECT_EQ(platform::I18n::currentlanguage(), "zh_CN");
        called.clear();
    });
    platform::ItemStackRequestPacket two;
    two.requests = {{-3, {{}, {}}, {}, 0}, {-5, {{}}, {}, 0}};
    server->says(xuid, sealed(two));
    server->ticks(0);
    EXPECT_EQ(called, (Words{"Tester", "-3:2", "-5:1"}));
    const auto answer = last<platform::ItemStackResponsePacket>(server->hears(xuid));
    ASSERT_TRUE(answer) << "the server answers what the plug-in leaves to it";
    EXPECT_EQ(answer->responses.size(), 2U);
}

TEST_P(Conformance, AFormIsAnsweredOnceAndOnlyByWhatFits) {
    startwithplayer();
    const std::string form = platform::Form::SimpleForm("title", "").addButton("a").addButton("b").tojson();
    Words answers;
    const auto ask = [&] {
        static_cast<void>(server->hears(xuid));
        withplayer([&](platform::ServerPlayer& player) {
            const auto here = std::this_thread::get_id();
            player.sendForm(form, [&answers, here](platform::ServerPlayer* who, const std::string& json) {
                EXPECT_EQ(std::this_thread::get_id(), here);
                answers.push_back(who->getRealName() + " " + json);
            });
        });
        server->ticks(0);
        const auto sent = last<platform::ModalFormRequestPacket>(server->hears(xuid));
        EXPECT_TRUE(sent);
        return sent ? sent->formid : 0;
    };
    const auto answer = [&](std::uint32_t id, std::optional<std::string> json) {
        platform::ModalFormResponsePacket packet{id, std::move(json), {}};
        if (!packet.json) packet.reason = packet.closed;
        server->says(xuid, sealed(packet));
        server->ticks(0);
    };
    const auto first = ask(), second = ask();
    for (const char* misfit : {"2", "\"1\"", "[0]", "", "x"}) answer(first, misfit);
    EXPECT_TRUE(answers.empty());
    answer(second, "1");
    answer(second, "1");
    answer(first, std::nullopt);
    EXPECT_EQ(answers, (Words{"Tester 1", "Tester null"}));
    ask();
    server->leave(xuid);
    server->ticks(1);
    EXPECT_EQ(answers.size(), 2U) << "who has left answers nothing";
}

}  // namespace conformance
