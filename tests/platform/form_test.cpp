// Forms as clients are sent them, and what counts as an answer.
#include "platform/form.h"

#include <gmock/gmock.h>

#include "platform/foreignjson.h"
#include "platform/formanswer.h"

using namespace platform::Form;
using nlohmann::json;

namespace {

CustomForm sample() {
    CustomForm form("T");
    form.addLabel("l", "text")
        .addInput("i", "in", "hint", "std")
        .addToggle("t", "on?", true)
        .addSlider("s", "many", 0, 10, 1, 3)
        .addDropdown("d", "which", {"a", "b"}, 1);
    return form;
}

}  // namespace

TEST(Forms, AreSentAsTheGameReadsThem) {
    SimpleForm simple("T", "C");
    simple.addButton("plain").addButton("local", "textures/ui/a").addButton("far", "https://example.org/a.png");
    EXPECT_EQ(json::parse(simple.tojson()), json::parse(R"({"type":"form","title":"T","content":"C","buttons":[
        {"text":"plain"},{"text":"local","image":{"type":"path","data":"textures/ui/a"}},
        {"text":"far","image":{"type":"url","data":"https://example.org/a.png"}}]})"));
    EXPECT_EQ(json::parse(SimpleForm("T", "C").tojson())["buttons"], json::array());
    EXPECT_EQ(json::parse(ModalForm("T", "C", "yes", "no").tojson()),
              json::parse(R"({"type":"modal","title":"T","content":"C","button1":"yes","button2":"no"})"));
    EXPECT_EQ(json::parse(sample().tojson()), json::parse(R"({"type":"custom_form","title":"T","content":[
        {"type":"label","text":"text"},{"type":"input","text":"in","placeholder":"hint","default":"std"},
        {"type":"toggle","text":"on?","default":true},{"type":"slider","text":"many","min":0,"max":10,"step":1,"default":3},
        {"type":"dropdown","text":"which","options":["a","b"],"default":1}]})"));
    EXPECT_NO_THROW((void)SimpleForm("\xff", "C").tojson());
}

TEST(FormAnswers, OfButtons) {
    SimpleForm simple("T", "C");
    simple.addButton("0").addButton("1");
    const std::pair<const char*, int> answers[] = {
        {"0", 0},      {"1", 1},    {"1\n", 1}, {"null", -1}, {"2", -1},   {"-1", -1},    {"true", -1},
        {"\"0\"", -1}, {"[0]", -1}, {"", -1},   {"0 0", -1},  {"0.5", -1}, {"1e300", -1}, {"18446744073709551615", -1}};
    for (const auto& [text, number] : answers) EXPECT_EQ(simple.readanswer(text), number) << text;
    EXPECT_EQ(SimpleForm("T", "C").readanswer("0"), -1);
    const ModalForm modal("T", "C", "yes", "no");
    const std::pair<const char*, int> choices[] = {{"true", 1}, {"false", 0}, {"null", -1}, {"1", -1}, {"{}", -1}};
    for (const auto& [text, number] : choices) EXPECT_EQ(modal.readanswer(text), number) << text;
}

TEST(FormAnswers, OfElements) {
    const auto answer = sample().readanswer(R"([null,"typed",false,7.0,0])");
    ASSERT_EQ(answer.size(), 5u);
    EXPECT_EQ(answer.at("i").getString(), "typed");
    EXPECT_FALSE(answer.at("t").getBool());
    EXPECT_EQ(answer.at("s").getInt(), 7);
    EXPECT_EQ(answer.at("d").getInt(), 0);

    for (const auto* text : {"null", "5", "{}", "[]", R"([null,"x",false,7])", R"([null,"x",false,7,0,0])",
                             R"(["","x",false,7,0])", R"([null,1,false,7,0])", R"([null,"x",0,7,0])",
                             R"([null,"x",false,11,0])", R"([null,"x",false,-1,0])", R"([null,"x",false,7.5,0])",
                             R"([null,"x",false,7,2])", R"([null,"x",false,7,"a"])", R"([null,"x",false,7,0)"}) {
        EXPECT_TRUE(sample().readanswer(text).empty()) << text;
        EXPECT_EQ(answerfits(sample().tojson(), text), std::string_view(text) == "null") << text;
    }
    EXPECT_TRUE(sample().readanswer(std::string(10000, '[')).empty());
    EXPECT_EQ(CustomForm("T").addDropdown("d", "none", {}).readanswer("[0]").at("d").getInt(), 0);
}

TEST(ForeignJson, IsReadToALimitedDepth) {
    const auto nested = [](int levels) {
        const auto count = static_cast<std::size_t>(levels);
        return std::string(count, '[') + std::string(count, ']');
    };
    EXPECT_EQ(platform::readforeignjson(R"({"a":[1,"[[["]})"), json::parse(R"({"a":[1,"[[["]})"));
    EXPECT_EQ(platform::readforeignjson(nested(platform::maxjsondepth)).dump(), nested(platform::maxjsondepth));
    const std::pair<std::string, const char*> refused[] = {
        {nested(platform::maxjsondepth + 1), "nested more than 64 levels deep"},
        {std::string(500'000, '['), "nested more than 64 levels deep"},
        {R"({"a":)" + nested(platform::maxjsondepth) + "}", "nested more than 64 levels deep"},
        {"", "is no JSON"},
        {"[1", "is no JSON"},
        {"1e999", "is no JSON"},
        {"\"\xff\"", "is no JSON"}};
    for (const auto& [text, told] : refused) {
        SCOPED_TRACE(text.substr(0, 20));
        try {
            (void)platform::readforeignjson(text);
            ADD_FAILURE() << "it was read";
        } catch (const platform::ForeignJsonError& e) {
            EXPECT_THAT(e.what(), testing::HasSubstr(told));
        }
    }
}
