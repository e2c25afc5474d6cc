// The text form: what is read, what is refused, and that what is written reads back as the same tree.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <nlohmann/json.hpp>
#include <random>

#include "tests/platform/values.h"

using namespace platform;

namespace {

struct Reading {
    const char* text;
    const char* written;
};
const Reading readings[] = {
    {"{}", "{}"},
    {" { a : 1b , \"b\" : 2S,'c':-3,d:4L } ", "{a:1b,b:2s,c:-3,d:4l}"},
    {"{z:1,a:2,m:3}", "{a:2,m:3,z:1}"},
    {"{a:1,a:2}", "{a:2}"},
    {"{f:1.5f,d:1.5,e:-2d,g:1e3f,h:.5}", "{d:1.5d,e:-2d,f:1.5f,g:1000f,h:0.5d}"},
    {"{t:true,f:false,q:\"true\"}", "{f:0b,q:\"true\",t:1b}"},
    {"{a:apple,b:07,c:1e5,d:1.2.3,e:12abc}", "{a:\"apple\",b:\"07\",c:\"1e5\",d:\"1.2.3\",e:\"12abc\"}"},
    {"{\"minecraft:item_lock\":1b,\"\":0}", "{\"\":0,\"minecraft:item_lock\":1b}"},
    {"{a:'it\\'s \"so\"',b:\"\\\\n\\n\\t\\u0041\\u4e2d\\ud83d\\ude00\\s\"}",
     "{a:\"it's \\\"so\\\"\",b:\"\\\\n\\n\\tA\u4e2d\U0001F600 \"}"},
    {"{a:\"\\x01\\xffz\\xc3\"}", "{a:\"\\x01\\xffz\\xc3\"}"},
    {"{a:[B;1b,-2],b:[I;1,2],c:[L;5000000000,1l],d:[B;],e:[ I; ]}",
     "{a:[B;1b,-2b],b:[I;1,2],c:[L;5000000000l,1l],d:[B;],e:[I;]}"},
    {"{a:[],b:[1,2],c:[[],[a]],d:[{x:1},{}],e:[\"B\"]}", "{a:[],b:[1,2],c:[[],[\"a\"]],d:[{x:1},{}],e:[\"B\"]}"},
    {"{a:-128b,b:127b,c:32767s,d:-2147483648,e:9223372036854775807l}",
     "{a:-128b,b:127b,c:32767s,d:-2147483648,e:9223372036854775807l}"},
    {"{a:NaNf,b:Infinityd,c:-Infinityf}", "{a:NaNf,b:Infinityd,c:-Infinityf}"},
};

const char* const refusals[] = {
    "",
    "apple",
    "[1]",
    "{",
    "{a:1",
    "{a:}",
    "{:1}",
    "{a 1}",
    "{a:1,}",
    "{a:1}}",
    "{a:1} b",
    "{a:[1,2s]}",
    "{a:[1,]}",
    "{a:[1 2]}",
    "{a:\"x}",
    "{a:'x\"}",
    "{a:\"\\q\"}",
    "{a:\"\\\"}",
    "{a:128b}",
    "{a:-129b}",
    "{a:32768s}",
    "{a:2147483648}",
    "{a:9223372036854775808l}",
    "{a:1.0e999}",
    "{a:1e39f}",
    "{a:[B;300]}",
    "{a:[B;1s]}",
    "{a:[I;1b]}",
    "{a:[I;x]}",
    "{a:[Q;1]}",
    "{a:\"\\ud800\"}",
    "{a:\"\\u12\"}",
    "{a:\"\\xg0\"}",
    "{a:[B;1b}",
};

}  // namespace

TEST(Snbt, ReadsAndWrites) {
    for (const auto& [text, written] : readings) {
        const auto tag = CompoundTag::fromSNBT(text);
        ASSERT_TRUE(tag) << text;
        EXPECT_EQ(tag->toSNBT(), written) << text;
        const auto again = CompoundTag::fromSNBT(written);
        ASSERT_TRUE(again) << written;
        EXPECT_EQ(again->toSNBT(), written);
    }
}

TEST(Snbt, RefusesWhatIsMalformed) {
    for (const auto* text : refusals) EXPECT_FALSE(CompoundTag::fromSNBT(text)) << text;
}

TEST(Snbt, RefusesEveryPrefix) {
    const std::string whole = "{a:[{b:\"x\\n\"},{}],c:[I;1,2],d:1.5f}";
    for (std::size_t n = 0; n < whole.size(); ++n) EXPECT_FALSE(CompoundTag::fromSNBT(whole.substr(0, n))) << n;
}

TEST(Snbt, DepthIsLimited) {
    const auto nested = [](std::size_t lists) {
        return "{a:" + values::repeated("[", lists) + values::repeated("]", lists) + "}";
    };
    EXPECT_TRUE(CompoundTag::fromSNBT(nested(511)));
    EXPECT_FALSE(CompoundTag::fromSNBT(nested(512)));
    EXPECT_FALSE(CompoundTag::fromSNBT(nested(10000)));
    EXPECT_FALSE(CompoundTag::fromSNBT(values::repeated("{a:", 10000)));
}

TEST(Snbt, NumbersComeBackBitForBit) {
    std::mt19937_64 random(560);
    for (int i = 0; i < 20000; ++i) {
        const auto wide = std::bit_cast<double>(random());
        const auto narrow = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        CompoundTag tag;
        if (!std::isnan(wide)) tag.put("d", wide);
        if (!std::isnan(narrow)) tag.put("f", narrow);
        ASSERT_EQ(CompoundTag::fromSNBT(tag.toSNBT()), tag) << tag.toSNBT();
    }
}

TEST(Snbt, AnyBytesMakeValidText) {
    std::mt19937 random(1);
    for (int i = 0; i < 2000; ++i) {
        std::string text;
        for (int n = 0; n < 12; ++n) text += static_cast<char>(random());
        CompoundTag tag;
        tag.putString(text, text);
        const auto written = tag.toSNBT();
        EXPECT_NO_THROW((void)nlohmann::json(written).dump());  // throws for what is no UTF-8
        EXPECT_EQ(CompoundTag::fromSNBT(written), tag);
    }
}
