// The tree itself, and its two binary forms against bytes written by hand.
#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/binarystream.h"
#include "tests/platform/values.h"

using namespace platform;
using values::bytes;
using values::snbt;

TEST(Tags, GettersNeverMistakeATypeForAnother) {
    auto tag = snbt("{b:1b,s:2s,i:3,l:4l,t:\"x\",list:[1],c:{}}");
    EXPECT_EQ(tag.getByte("b"), 1);
    EXPECT_EQ(tag.getByte("i", 9), 9);
    EXPECT_EQ(tag.getShort("s"), 2);
    EXPECT_EQ(tag.getInt("missing", -114514), -114514);
    EXPECT_EQ(tag.getInt("s", -114514), -114514);
    EXPECT_EQ(tag.getInt64("l"), 4);
    EXPECT_EQ(tag.getString("i"), "");
    EXPECT_EQ(tag.getCompound("list"), nullptr);
    // a value of another type makes room
    tag.compound("i").putInt("x", 1);
    tag.list("c").add(std::string("y"));
    EXPECT_EQ(tag.toSNBT(), "{b:1b,c:[\"y\"],i:{x:1},l:4l,list:[1],s:2s,t:\"x\"}");
    EXPECT_TRUE(tag.erase("t"));
    EXPECT_FALSE(tag.erase("t"));
}

TEST(Tags, AListHoldsOneType) {
    ListTag list;
    list.add(1);
    EXPECT_THROW(list.add(std::string("x")), std::invalid_argument);
    list.clear();
    list.add(std::string("x"));
    EXPECT_EQ(list.elementtype(), TagType::String);
}

namespace {

struct Form {
    const char* text;
    const char* fixed;
    const char* network;
};
const Form forms[] = {
    {"{}", "0a 00 00 00", "0a 00 00"},
    {"{Count:1b,Damage:3s}", "0a 00 00 01 05 00 'Count' 01 02 06 00 'Damage' 03 00 00",
     "0a 00 01 05 'Count' 01 02 06 'Damage' 03 00 00"},
    {"{a:-2,b:300l}", "0a 00 00 03 01 00 'a' fe ff ff ff 04 01 00 'b' 2c 01 00 00 00 00 00 00 00",
     "0a 00 03 01 'a' 03 04 01 'b' d8 04 00"},
    {"{d:1d,f:1f}", "0a 00 00 06 01 00 'd' 00 00 00 00 00 00 f0 3f 05 01 00 'f' 00 00 80 3f 00",
     "0a 00 06 01 'd' 00 00 00 00 00 00 f0 3f 05 01 'f' 00 00 80 3f 00"},
    {"{s:\"hi\"}", "0a 00 00 08 01 00 's' 02 00 'hi' 00", "0a 00 08 01 's' 02 'hi' 00"},
    {"{l:[\"x\",\"\"],n:[]}", "0a 00 00 09 01 00 'l' 08 02 00 00 00 01 00 'x' 00 00 09 01 00 'n' 00 00 00 00 00 00",
     "0a 00 09 01 'l' 08 04 01 'x' 00 09 01 'n' 00 00 00"},
    {"{b:[B;-1b],i:[I;1],l:[L;-1l]}",
     "0a 00 00 07 01 00 'b' 01 00 00 00 ff 0b 01 00 'i' 01 00 00 00 01 00 00 00"
     "0c 01 00 'l' 01 00 00 00 ff ff ff ff ff ff ff ff 00",
     "0a 00 07 01 'b' 02 ff 0b 01 'i' 02 02 0c 01 'l' 02 01 00"},
    {"{c:{},e:[{x:1b}]}", "0a 00 00 0a 01 00 'c' 00 09 01 00 'e' 0a 01 00 00 00 01 01 00 'x' 01 00 00",
     "0a 00 0a 01 'c' 00 09 01 'e' 0a 02 01 01 'x' 01 00 00"},
};

}  // namespace

TEST(BinaryTags, BothFormsAsWrittenByHand) {
    for (const auto& form : forms) {
        const auto tag = snbt(form.text);
        EXPECT_EQ(tag.toBinary(), bytes(form.fixed)) << form.text;
        EXPECT_EQ(tag.toNetwork(), bytes(form.network)) << form.text;
        EXPECT_EQ(CompoundTag::fromBinary(bytes(form.fixed)), tag) << form.text;
        EXPECT_EQ(CompoundTag::fromNetwork(bytes(form.network)), tag) << form.text;
    }
}

TEST(BinaryTags, TruncatedOrLengthenedIsRefused) {
    for (const auto& form : forms) {
        const auto fixed = bytes(form.fixed), network = bytes(form.network);
        for (std::size_t n = 0; n < fixed.size(); ++n) EXPECT_FALSE(CompoundTag::fromBinary(fixed.substr(0, n)));
        for (std::size_t n = 0; n < network.size(); ++n) EXPECT_FALSE(CompoundTag::fromNetwork(network.substr(0, n)));
        EXPECT_FALSE(CompoundTag::fromBinary(fixed + "x"));
        std::size_t used = 0;
        EXPECT_TRUE(CompoundTag::fromBinary(fixed + "x", &used));
        EXPECT_EQ(used, fixed.size());
    }
}

TEST(BinaryTags, HostileBytesAreRefused) {
    const std::string hostile[] = {
        bytes("0a 00 00 09 01 00 'a' 0a ff ff ff 7f 00"),  // two billion compounds
        bytes("0a 00 00 09 01 00 'a' 00 ff ff ff 7f 00"),  // as many tags of no type, which take no room
        bytes("0a 00 00 09 01 00 'a' 01 ff ff ff ff 00"),  // minus one
        bytes("0a 00 00 0c 01 00 'a' ff ff ff 1f 00"),     // numbers
        bytes("0a 00 00 0d 01 00 'a' 00"),                 // no such type
        bytes("0a 00 00 08 ff ff 'a' 00"),                 // a long key
        bytes("08 00 00 00 00"),                           // no compound
        bytes("0a 00 00") + values::repeated(bytes("0a 00 00"), 10000),
        bytes("0a 00 00 09 00 00") + values::repeated(bytes("09 01 00 00 00"), 10000),
    };
    for (const auto& one : hostile) EXPECT_FALSE(CompoundTag::fromBinary(one));
    EXPECT_FALSE(CompoundTag::fromNetwork(bytes("0a 00 09 01 'a' 0a fe ff ff ff 0f 00")));
    EXPECT_FALSE(CompoundTag::fromNetwork(bytes("0a 00 08 ff ff ff ff 0f 'a' 00")));
    EXPECT_FALSE(CompoundTag::fromNetwork(bytes("0a 00 03 01 'a' ff ff ff ff ff 01 00")));  // a varint of six bytes
}

TEST(BinaryTags, DepthIsLimited) {
    const auto nested = [](std::size_t compounds) {
        return bytes("0a 00 00") + values::repeated(bytes("0a 00 00"), compounds - 1) +
               values::repeated(bytes("00"), compounds);
    };
    EXPECT_TRUE(CompoundTag::fromBinary(nested(512)));
    EXPECT_FALSE(CompoundTag::fromBinary(nested(513)));
}

TEST(BinaryTags, KeysInAnyOrderAndTwice) {
    const auto tag = CompoundTag::fromBinary(bytes("0a 00 00 01 01 00 'z' 01 01 01 00 'a' 02 01 01 00 'z' 03 00"));
    ASSERT_TRUE(tag);
    EXPECT_EQ(tag->toSNBT(), "{a:2b,z:3b}");
}

TEST(BinaryTags, ATextTooLongForTheFixedFormIsNotCutSilently) {
    CompoundTag tag;
    tag.putString("a", std::string(65536, 'x'));
    EXPECT_THROW((void)tag.toBinary(), std::length_error);
    EXPECT_EQ(CompoundTag::fromNetwork(tag.toNetwork()), tag);
}

TEST(BinaryTags, ATolerantReadKeepsWhatCameBeforeTheFault) {
    // A chest whose `x` has lost its value: the header of the next field is taken for it, and a bad type follows.
    const auto chest = bytes(
        "01 08 00 'Findable' 00 09 05 00 'Items' 00 00 00 00 00 08 02 00 'id' 05 00 'Chest' 01 09 00 'isMovable' 01"
        "03 01 00 78 03 01 00 79 68 00 00 00 03 01 00 7a 03 00 00 00 00 00");
    ASSERT_EQ(chest.size(), 72u);
    EXPECT_EQ(readtoleranttag(chest).toSNBT(), "{Findable:0b,Items:[],id:\"Chest\",isMovable:1b,x:2030043395}");

    const auto skull = bytes(
        "01 05 00 'Count' 01 02 06 00 'Damage' 03 00 08 04 00 'Name' 0f 00 'minecraft:skull' 01 0b 00 'WasPickedUp' 00"
        "00 00");
    ASSERT_EQ(skull.size(), 61u);
    const std::string whole = "{Count:1b,Damage:3s,Name:\"minecraft:skull\",WasPickedUp:0b}";
    EXPECT_EQ(readtoleranttag(skull).toSNBT(), whole);
    EXPECT_EQ(readtoleranttag(bytes("0a 00 00") + skull).toSNBT(), whole);

    // inside of nested tags too
    EXPECT_EQ(
        readtoleranttag(bytes("0a 01 00 'a' 01 01 00 'b' 01 09 01 00 'c' 03 02 00 00 00 07 00 00 00 08 00")).toSNBT(),
        "{a:{b:1b,c:[7]}}");
    EXPECT_EQ(readtoleranttag("").toSNBT(), "{}");
}
