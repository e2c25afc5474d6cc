// The two form main menus and the two category menus: what they show, where their buttons lead, and what an operator's
// file may hold.
#include "platform/files.h"
#include "platform/host.h"
#include "tests/market/forms_stage.h"

using namespace forms;

namespace {

struct Button {
    const char *text, *image;
    bool isshort = false, foroperators = false;
};
constexpr Button buttons[] = {
    {"Buy", "textures/ui/icon_blackfriday.png"},
    {"Recycle", "textures/ui/icon_deals.png"},
    {"System selling shop", "textures/ui/ImpulseSquare.png"},
    {"System recycle shop", "textures/ui/ImpulseSquare.png"},
    {"Selling shops (form)", "textures/items/bed_light_blue.png", true},
    {"Recycle shops (form)", "textures/items/bed_brown.png", true},
    {"My shop (form)", "textures/items/stick.png", true},
    {"System shop (form)", "textures/ui/ImpulseSquare.png", true},
    {"Switch managing the system shop on or off", "textures/ui/op.png", true, true},
    {"My shop", "textures/ui/Friend2.png"},
    {"Search", "textures/ui/creative_icon.png"},
    {"View selling shops by owner", "textures/ui/icon_multiplayer.png"},
    {"View recycle shops by owner", "textures/ui/icon_multiplayer.png"},
    {"Purchase goods", "textures/gui/newgui/Language18.png"},
    {"Recycle items", "textures/gui/newgui/Language18.png"},
    {"Personal settings", "textures/ui/settings_glyph_color_2x.png"},
};

json shownbutton(const std::string& text, const std::string& image, const char* kind = "path") {
    return {{"text", text}, {"image", {{"type", kind}, {"data", image}}}};
}
std::size_t buttoncount(const Actor& player) { return player.form()["buttons"].size(); }

std::size_t count(const std::string& text, const std::string& part) {
    std::size_t n = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
    return n;
}

struct Categories {
    const char* button;
    std::string file;
    const char *title, *place;
};
const Categories sells{"Purchase goods", "plugins/Ordomart/sellform.json", "Selling shop", "readandopenOrdoformsemenu"};
const Categories recycles{"Recycle items", "plugins/Ordomart/recycleform.json", "Recycle shop",
                          "readandopenOrdoformremenu"};

void opens(Actor& player, const Categories& menu) { player.dismisses().types("ordomart").presses(menu.button); }

// The disk, but the category files cannot be opened just now.
struct Locked : platform::Files {
    platform::Files* disk = nullptr;
    bool exists(const std::string& path) const override { return disk->exists(path); }
    bool makeDirectory(const std::string& path) override { return disk->makeDirectory(path); }
    std::optional<std::string> read(const std::string& path) const override {
        return path.ends_with("form.json") ? std::nullopt : disk->read(path);
    }
    std::optional<std::string> readtail(const std::string& path, std::size_t most) const override {
        return disk->readtail(path, most);
    }
    bool replace(const std::string& path, std::string_view text) override { return disk->replace(path, text); }
    bool remove(const std::string& path) override { return disk->remove(path); }
    std::vector<std::string> list(const std::string& directory) const override { return disk->list(directory); }
};

}  // namespace

TEST(MainMenus, ButtonsByPermissionLevel) {
    for (const int level : {0, 1, 4}) {
        Stage stage;
        Actor& alice = stage.join("Alice", ada, "en_US", desktop, level);
        for (const std::string command : {"ordomart", "ordomart mainmenu", "ordomart formmenu"}) {
            SCOPED_TRACE(fmt::format("{} at level {}", command, level));
            json expected = json::array();
            for (const auto& button : buttons)
                if ((button.isshort || command != "ordomart formmenu") && (level > 0 || !button.foroperators))
                    expected.push_back(shownbutton(button.text, button.image));
            alice.types(command);
            EXPECT_EQ(alice.form()["title"], "Main menu");
            EXPECT_EQ(alice.form()["content"], "choose one to execute");
            EXPECT_EQ(alice.form()["buttons"], expected);
            alice.answers(nullptr);
            EXPECT_TRUE(alice.form().is_null()) << "closing it does nothing";
        }
        EXPECT_EQ(alice.replies() + alice.chat(), "");
    }
}

TEST(MainMenus, EachButtonLeadsWhereItSays) {
    Stage stage;
    stage.writeshop(bob, {good("apple", 7, 10, "Apples")}, {commission("bread", 3, 5, "Breads")});
    Actor& alice = stage.join("Alice", ada);
    const struct {
        int button;
        const char *sign, *form, *chat;
    } cases[] = {{0, "Choose an item to buy it", "", ""},
                 {1, "Choose a commission to sell your items to it", "", ""},
                 {4, "", "Apples", ""},
                 {5, "", "Breads", ""},
                 {9, "", "Enter what to search for", ""},
                 {12, "", "武器工具类", ""},
                 {13, "", "原矿类", ""},
                 {14, "", "", "咕咕咕"}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.button);
        alice.dismisses().forgets().types("ordomart").answers(each.button);
        stage.ticks(6);
        EXPECT_EQ(alice.menuopen() ? named(alice, offhandid, 0) : "", each.sign);
        EXPECT_EQ(alice.form().is_null(), std::string(each.form).empty());
        EXPECT_NE(alice.formtext().find(each.form), std::string::npos) << alice.formtext();
        EXPECT_EQ(alice.chat(), each.chat);
        if (alice.menuopen()) alice.closes();
        rests(stage);
    }
    alice.forgets().types("ordomart").dies().answers(14);
    EXPECT_EQ(alice.chat(), deadtext);
}

TEST(MainMenus, AClosedListGoesBackToTheMenuThatItCameFrom) {
    Stage stage;
    Actor& alice = stage.join("Alice", ada);
    for (const char* list : {"Selling shops (form)", "Recycle shops (form)"})
        for (const auto& [command, size] :
             {std::pair{"ordomart", 15U}, std::pair{"ordomart formmenu", 4U}, std::pair{"ordomart", 15U}}) {
            SCOPED_TRACE(std::string(command) + ", " + list);
            alice.types(command).presses(list);
            EXPECT_EQ(buttoncount(alice), 0U);
            alice.answers(nullptr);
            EXPECT_EQ(buttoncount(alice), size);
            alice.answers(nullptr);
        }
}

TEST(CategoryMenus, AMissingFileIsWrittenToTheLetterAndShown) {
    const std::string explanations = R"([
    {
        "example": true,
        "exampleex": "这是一个示例",
        "imagepath": "引用材质路径，分为网络url和本地路径(只支持/)。字符串类型",
        "imagepathex": "textures/items/diamond.png：将使用textures/items/diamond.png的钻石物品icon作为图片",
        "searchlvl": "0x4|0x1：对应在物品名称和物品tag中搜寻",
        "searchtaginfo": "_ore：将匹配所有包含_ore的信息；_ore$：匹配为_ore的信息；diamond${||}_ingot{||}emerald$：将匹配为diamond或包含_ingot或为emerald的信息",
        "titlename": "此项填按钮名称。字符串类型",
        "titlenameex": "这是一个按钮：你将看到按钮名称为'这是一个按钮'"
    })";
    const auto entry = [](const char* title, const char* image, const char* text) {
        return fmt::format(R"(,
    {{
        "imagepath": "textures/{}.png",
        "searchlvl": 4,
        "searchtaginfo": "{}",
        "titlename": "{}"
    }})",
                           image, text, title);
    };
    const auto ores = entry("原矿类", "blocks/diamond_ore", "_ore{||}raw_");
    const auto minerals = entry("矿物类", "items/diamond",
                                "diamond${||}_ingot{||}netherite_scrap${||}coal${||}charcoal${||}emerald${||}quartz$"
                                "{||}amethyst_shard${||}redstone${||}lapis_lazuli$");
    const auto armour = entry("装备类", "items/diamond_chestplate", "_chestplate{||}_helmet{||}_leggings{||}_boots");
    const auto tools =
        entry("武器工具类", "items/diamond_sword",
              "_sword{||}_pickaxe{||}_axe{||}_shovel{||}_hoe{||}bow${||}crossbow${||}trident${||}fishing_rod$");
    const auto materials =
        entry("木材类", "blocks/planks_oak", "planks${||}_planks{||}log") +
        entry("石材类", "blocks/stone", "stone${||}stonebrick${||}blackstone${||}deepslate${||}basalt");
    const auto food =
        entry("食物类", "items/potato", "cooked_{||}baked_{||}_stew{||}bread${||}_pie{||}cookie${||}cake");
    Stage stage;
    Actor& alice = stage.join("Alice", ada);
    for (const auto& [menu, content] :
         {std::pair{sells, explanations + minerals + armour + tools + materials + food + "\n]"},
          std::pair{recycles, explanations + ores + minerals + materials + "\n]"}}) {
        opens(alice, menu);
        EXPECT_EQ(stage.file(menu.file), content);
        EXPECT_EQ(alice.form()["title"], menu.title);
        EXPECT_EQ(alice.form()["content"], "");
        json shown = json::array();
        for (const auto& each : json::parse(content))
            if (!each.contains("example")) shown.push_back(shownbutton(each["titlename"], each["imagepath"]));
        EXPECT_EQ(alice.form()["buttons"], shown);
        EXPECT_EQ(count(stage.log(), "[warn] Can't open file" + menu.file + ",try load default setting..."), 1U);
    }
    alice.answers(nullptr);
    EXPECT_TRUE(alice.form().is_null());
}

TEST(CategoryMenus, AnEditCountsAtOnceAndAButtonSearchesTheChestList) {
    Stage stage;
    stage.writeshop(bob, rubies(), {commission("bread", 3, 5, "ruby bread"), commission("apple", 3, 5)});
    Actor& alice = stage.join("Alice", ada);
    const struct {
        const Categories& menu;
        int level;
        const char *text, *found;
    } cases[] = {{sells, 1, "ruby", "apple "},
                 {sells, 2, "ruby", "bread "},
                 {sells, 4, "ruby", "stone "},
                 {sells, 5, "ruby", "apple stone "},
                 {sells, 7, "ruby", "apple bread stone "},
                 {sells, 0, "ruby", ""},
                 {sells, 4, "ruby${||}bread$", "bread stone "},
                 {recycles, 1, "ruby", "bread "}};
    for (const auto& each : cases) {
        SCOPED_TRACE(fmt::format("{}, level {}, {}", each.menu.file, each.level, each.text));
        const json entry = {{"titlename", "Mine"},     {"imagepath", "https://example.org/a.png"},
                            {"searchlvl", each.level}, {"searchtaginfo", each.text},
                            {"example", false},        {"more", 1}};
        stage.write(each.menu.file, json::array({{{"example", true}}, entry}).dump());
        opens(alice, each.menu);
        EXPECT_EQ(alice.form()["buttons"], json::array({shownbutton("Mine", entry["imagepath"], "url")}));
        alice.answers(0);
        stage.ticks(6);
        EXPECT_EQ(named(alice, offhandid, 0),
                  &each.menu == &sells ? "Choose an item to buy it" : "Choose a commission to sell your items to it");
        EXPECT_EQ(chestrows(alice), each.found);
        alice.closes();
        rests(stage);
    }
}

TEST(CategoryMenus, WhatAFileMayNotHold) {
    Stage stage;
    Actor& alice = stage.join("Alice", ada);
    const std::string entry = R"([{"imagepath": "", "searchtaginfo": "x", )";
    const std::string broken[] = {"",
                                  "[{]",
                                  "[] []",
                                  R"(["Mine"])",
                                  entry + R"("titlename": "Mine"}])",
                                  entry + R"("titlename": "Mine", "searchlvl": "4"}])",
                                  entry + R"("titlename": 5, "searchlvl": 4}])",
                                  entry + R"("titlename": "Mine", "searchlvl": 4, "example": "true"}, 7])"};
    std::size_t lines = 0;
    for (const auto& content : broken) {
        SCOPED_TRACE(content);
        ++lines;
        for (const auto& menu : {sells, recycles}) {
            stage.write(menu.file, content);
            opens(alice, menu);
            EXPECT_TRUE(alice.form().is_null());
            const auto line = fmt::format("[Ordomart][error] An error occurred while {}, [", menu.place);
            EXPECT_EQ(count(stage.log(), line), lines);
            EXPECT_EQ(stage.file(menu.file), content);
        }
    }
    stage.write(sells.file, "[]");
    opens(alice, sells);
    EXPECT_EQ(alice.form()["buttons"], json::array());
    EXPECT_EQ(alice.chat(), "");
}

TEST(CategoryMenus, AFileThatCannotBeOpenedIsToldOfAndLeftAlone) {
    Locked files;
    Stage stage({.adjust = [&](platform::Host& host) { files.disk = std::exchange(host.files, &files); }});
    stage.write(sells.file, "[]");
    stage.write(recycles.file + "/in the way", "");
    Actor& alice = stage.join("Alice", ada);
    for (const auto& menu : {sells, recycles}) {
        opens(alice.forgets(), menu);
        EXPECT_TRUE(alice.form().is_null());
        EXPECT_EQ(alice.chat(), "failed to open" + menu.file);
        EXPECT_EQ(count(stage.log(), "[Ordomart][error] Can't open file " + menu.file), 1U);
    }
    EXPECT_EQ(stage.file(sells.file), "[]");
}
