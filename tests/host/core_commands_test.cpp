// The command grammar, with the overloads of a shop command: optional parameters at the end and in the middle, texts in
// quotes, numbers at the edge of their range.
#include "host/core/commands.h"

#include <gmock/gmock.h>

#include "host/core/log.h"
#include "platform/host.h"
#include "tests/host/coretools.h"

namespace {

using platform::CommandParameter;
using testing::ElementsAre;
using Kind = CommandParameter::Kind;
using Level = platform::CommandPermissionLevel;

// Answers with what it was given: "name=value ..."
class Echo : public platform::Command {
public:
    std::string given;
    void execute(const platform::CommandOrigin& origin, platform::CommandOutput& output) override {
        if (given == " boom=1") throw std::runtime_error("it went off");
        if (origin.getPermissionsLevel() == Level::Owner) output.addMessage("as owner");
        output.success(given);
    }
};

CommandParameter parameter(const std::string& name, Kind kind, const std::string& enumname, bool optional) {
    return {name, kind, enumname, optional, [name](platform::Command& command, const platform::CommandValue& value) {
                auto& given = dynamic_cast<Echo&>(command).given;
                given += " " + name + "=";
                if (const auto* number = std::get_if<int>(&value)) given += std::to_string(*number);
                if (const auto* truth = std::get_if<bool>(&value)) given += *truth ? "yes" : "no";
                if (const auto* text = std::get_if<std::string>(&value)) given += "'" + *text + "'";
            }};
}

class CoreCommands : public testing::Test {
protected:
    void SetUp() override {
        commands.registerCommand("mart", "a market", Level::Any, 0, 128);
        commands.registerCommand("mend", "for operators", Level::Admin, 0, 128);
        commands.registerEnum("menu", {{"buy", 2}, {"filter", 8}});
        commands.registerEnum("byshop", {{"buybyshop", 3}});
        commands.registerEnum("find", {{"search", 6}});
        commands.registerEnum("kind", {{"sell", 0}, {"recycle", 1}});
        commands.registerEnum("bans", {{"ban", 13}, {"unban", 14}});
        commands.registerEnum("booms", {{"boom", 1}});
        overload("mart", {parameter("op", Kind::Enum, "menu", true)});
        overload("mart", {parameter("op", Kind::Enum, "byshop", false), parameter("who", Kind::String, "", true)});
        overload("mart", {parameter("op", Kind::Enum, "find", false), parameter("kind", Kind::Enum, "kind", true),
                          parameter("text", Kind::String, "", false), parameter("tag", Kind::Bool, "", true),
                          parameter("desc", Kind::Bool, "", true)});
        overload("mart", {parameter("op", Kind::Enum, "bans", false), parameter("kind", Kind::Enum, "kind", false),
                          parameter("who", Kind::String, "", false), parameter("why", Kind::String, "", true),
                          parameter("time", Kind::Int, "", true)});
        overload("mart", {parameter("boom", Kind::Enum, "booms", false)});
        overload("mend", {});
    }
    void overload(const std::string& command, std::vector<CommandParameter> parameters) {
        commands.registerOverload(
            command, [] { return std::make_unique<Echo>(); }, std::move(parameters));
    }
    // "+text" or "-text" for each message.
    std::string answer(const std::string& line, Level level = Level::Any) {
        std::string all;
        for (const auto& [success, text] : commands.execute(line, nullptr, level).messages) {
            all += (success ? "+" : "-") + text;
        }
        return all;
    }

    host::Commands commands;
};

TEST_F(CoreCommands, Grammar) {
    const struct {
        const char *line, *answer;
    } cases[] = {
        {"mart", "+"},
        {"/mart", "+"},
        {"  /mart   buy  ", "+ op=2"},
        {"mart buybyshop", "+ op=3"},
        {"mart buybyshop Steve", "+ op=3 who='Steve'"},
        {"mart buybyshop \"Big Steve\"", "+ op=3 who='Big Steve'"},
        {R"(mart buybyshop "a \"b\" \\ \n")", R"(+ op=3 who='a "b" \ \n')"},
        {"mart buybyshop \"\"", "+ op=3 who=''"},
        {"mart buybyshop 铁匠", "+ op=3 who='铁匠'"},
        {"mart search sell apple", "+ op=6 kind=0 text='apple'"},
        {"mart search apple", "+ op=6 text='apple'"},
        {"mart search \"sell\"", "+ op=6 text='sell'"},
        {"mart search recycle sell true false", "+ op=6 kind=1 text='sell' tag=yes desc=no"},
        {"mart search apple true", "+ op=6 text='apple' tag=yes"},
        {"mart ban sell Steve", "+ op=13 kind=0 who='Steve'"},
        {"mart ban sell Steve \"too dear\" 2147483647", "+ op=13 kind=0 who='Steve' why='too dear' time=2147483647"},
        {"mart unban recycle Steve x -2147483648", "+ op=14 kind=1 who='Steve' why='x' time=-2147483648"},
        {"mart ban sell Steve 60", "+ op=13 kind=0 who='Steve' why='60'"},
        // and what does not fit
        {"", "-Syntax error: Unexpected \"\": at \">><<\""},
        {"mart sel", "-Syntax error: Unexpected \"sel\": at \"mart >>sel<<\""},
        {"mart \"buy\"", "-Syntax error: Unexpected \"\"buy\"\": at \"mart >>\"buy\"<<\""},
        {"mart buy now", "-Syntax error: Unexpected \"now\": at \"mart buy >>now<<\""},
        {"/mart buybyshop a b c", "-Syntax error: Unexpected \"b\": at \"mart buybyshop a >>b<< c\""},
        {"mart search", "-Syntax error: Unexpected \"\": at \"mart search>><<\""},
        {"mart search sell", "-Syntax error: Unexpected \"\": at \"mart search sell>><<\""},
        {"mart search sell apple maybe",
         "-Syntax error: Unexpected \"maybe\": at \"mart search sell apple >>maybe<<\""},
        {"mart ban Steve sell", "-Syntax error: Unexpected \"Steve\": at \"mart ban >>Steve<< sell\""},
        {"mart ban sell a b 2147483648",
         "-Syntax error: Unexpected \"2147483648\": at \"mart ban sell a b >>2147483648<<\""},
        {"mart ban sell a b 1.5", "-Syntax error: Unexpected \"1.5\": at \"mart ban sell a b >>1.5<<\""},
        {"mart buybyshop \"a b", "-Syntax error: Unexpected \"\"a b\": at \"mart buybyshop >>\"a b<<\""},
        {"Mart",
         "-Unknown command: Mart. Please check that the command exists and that you have permission to use it."},
    };
    for (const auto& c : cases) EXPECT_EQ(answer(c.line), c.answer) << c.line;
}

TEST_F(CoreCommands, PermissionDecidesAndIsHandedOn) {
    EXPECT_THAT(answer("mend", Level::GameMasters), testing::StartsWith("-Unknown command: mend."));
    EXPECT_EQ(answer("mend", Level::Admin), "+");
    EXPECT_EQ(answer("mend", Level::Owner), "+as owner+");
}

TEST_F(CoreCommands, ACommandThatThrowsIsAnsweredAndLogged) {
    coretests::Directory directory;
    host::Log log(directory.path.string(), true, [] { return 0; });
    platform::Host services{.log = &log};
    platform::installhost(&services);
    const auto result = commands.execute("mart boom", nullptr, Level::Any);
    platform::installhost(nullptr);
    ASSERT_EQ(result.messages.size(), 1u);
    EXPECT_FALSE(result.messages[0].success);
    EXPECT_EQ(result.successcount, 0);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0].message, "The command \"mart boom\" failed: it went off");
}

TEST_F(CoreCommands, WrongRegistrationsAreRefused) {
    EXPECT_THROW(overload("smart", {}), std::invalid_argument);
    EXPECT_THROW(overload("mart", {parameter("op", Kind::Enum, "nothing", false)}), std::invalid_argument);
}

TEST_F(CoreCommands, Completion) {
    const struct {
        const char* line;
        std::vector<std::string> offers;  // "text hint"
    } cases[] = {
        {"/m", {"mart a market"}},
        {"/mart b", {"buy [op: menu]", "buybyshop <op: byshop>", "ban <op: bans>", "boom <boom: booms>"}},
        {"/mart buybyshop St", {" [who: string]"}},
        {"/mart search ", {"sell [kind: kind]", "recycle [kind: kind]", " <text: string>"}},
        {"/mart search sell x t", {"true [tag: bool]"}},
        {"/mart ban sell a b -", {" [time: int]"}},
        {"/mart ban sell a b x", {}},
        {"/mart buy ", {}},
        {"/nothing ", {}},
    };
    for (const auto& c : cases) {
        std::vector<std::string> offers;
        for (const auto& [text, hint] : commands.complete(c.line, Level::Any)) offers.push_back(text + " " + hint);
        EXPECT_EQ(offers, c.offers) << c.line;
    }
    EXPECT_EQ(commands.complete("", Level::Owner).size(), 2u);
}

TEST_F(CoreCommands, UsageHasALineForEachOverload) {
    EXPECT_THAT(commands.usage(), ElementsAre("/mart [op: menu]", "/mart <op: byshop> [who: string]",
                                              "/mart <op: find> [kind: kind] <text: string> [tag: bool] [desc: bool]",
                                              "/mart <op: bans> <kind: kind> <who: string> [why: string] [time: int]",
                                              "/mart <boom: booms>", "/mend"));
}

}  // namespace
