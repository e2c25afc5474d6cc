// The layout that all views of goods and shops share, and what such a view is: a description. The machinery draws its
// pages (here), reads its clicks (clickgrammar.h) and fetches its rows (refresh.h); a view brings its rows, its buttons
// and where it leads.
//
//   inventory 9 to 34   one page of 26 rows          hotbar 0 and 8   previous and next page, where there is one
//   inventory 35        empty                        hotbar 2 to 6    the view's buttons
//   armour              the view's own               offhand          the sign that helps and leads back
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "plugin/chestmenu/decoration.h"
#include "plugin/chestmenu/menutable.h"
#include "plugin/shopsystem/listwalk.h"
#include "plugin/shopsystem/playershopstate.h"

namespace ordomart {

struct goodsview;

// A click that has been read, on its way to the view.
struct press {
    const goodsview& view;
    ServerPlayer* player;
    const ItemStackRequestAction& action;
    ListenRecorder* record;
};
// True ends the menu and makes the click its selection.
using pressed = bool (*)(const press& at);

// How a false stack looks. What is not set stays as the one before it had it, in a builder that draws several.
struct icon {
    const char* item;
    std::optional<std::int16_t> damage;
    const char* namekey;
    std::array<const char*, 2> lorekeys{};
    bool shines = true;
};

// Dresses the builder's stack with an icon whose texts are in the player's language, and loads it.
void dress(falsestack& builder, const ServerPlayer* player, const icon& look, int slot);

struct sound {
    const char* name = nullptr;  // null: silent
    float pitch = 1.0F;
};
inline constexpr sound clicksound{"random.click"};

enum class buttonrow { hotbar, armour };

struct viewbutton {
    int slot;
    icon look;  // without an item somebody else draws it
    // Gives the text where it depends on the player's state.
    const char* (*statekey)(const playershopstate&) = nullptr;
    sound heard = clicksound;
    bool byswap = false;  // answers to a swap from the cursor, too
    pressed act = nullptr;
    screen leadsto = screen::none;  // without `act`: the menu that is shown
    buttonrow row = buttonrow::hotbar;
    bool unlessbanned = false;  // a banned shop refuses the press
    // The press ends the menu, and this follows its close.
    void (*after)(ServerPlayer*) = nullptr;
};

// Who a refresh is for, as far as its thread needs to know. Taken on the server thread.
struct viewer {
    std::uint64_t session;
    std::string xuid, realname, language;
    std::string viewedshop, ownshop;  // the single shop in view; the one that his owner views act on
    bool reload;
    std::uint64_t picture;  // what the page is fetched for; painted only as long as it is awaited
};

// How a view's rows are fetched and its picture comes back to the server thread.
struct refreshplan {
    const char* place;             // names the view in the log
    std::optional<listkind> list;  // that is shown; a single shop's is that of the shop in view
    // What else has to be there, fetched on a builder's thread and not in a turn, when the list is made anew.
    void (*prepare)(const viewer&) = nullptr;
    bool preparesalways = false;
    void (*sort)(playershopstate&) = nullptr;  // each time
    const char* timeline = nullptr;
    bool timesalways = false;  // else only what was made anew
    // Draws what stands beside the page: the sign, the shop's card. When the list is made anew.
    void (*drawhead)(ServerPlayer*, const goodsview&) = nullptr;
    bool onetask = false;     // head and page each time, by one task
    std::uint64_t ticks = 0;  // until the task runs
};

struct goodsview {
    screen menu;
    backdrop behind = backdrop::blank;
    const char* helpkey;
    std::int32_t playershopstate::*page;
    std::size_t (*count)(ServerPlayer*);
    // Puts entry i on the builder's stack, and names it as no other entry is named, nor this one in another state.
    std::string (*row)(ServerPlayer*, falsestack& builder, std::size_t i);
    std::span<const viewbutton> buttons;  // in the order of drawing
    screen back;
    bool backblankstwice = false;
    bool lostpageisfirst = false;  // a page behind the end becomes page 0; else it is shown empty
    pressed choice = nullptr;      // on a listed entry; without it every choice ends the menu
    sound heardchoice = {};        // at such a click
    sound heardclose = {};         // when the menu has closed with something chosen
    void (*chosen)(ServerPlayer*, const pageentry&) = nullptr;  // what follows the choice of an entry
    plainhandler closed = nullptr;                              // in place of all that follows a close
    bool (*isbanned)(ServerPlayer*) = nullptr;                  // the shop that the buttons work on
    refreshplan plan;
};

// Shows the present page of the list as it is. From here on clicks on it count.
void drawpage(ServerPlayer* player, const goodsview& view);

// What a listed slot shows.
[[nodiscard]] pageentry entryat(const ListenRecorder& record, int slot);

// ---- heads
void drawsign(ServerPlayer* player, const goodsview& view);
void drawsignandcursor(ServerPlayer* player, const goodsview& view);  // the cursor's in double-click mode alone

// ---- buttons that views share
bool putsignoncursor(const press& at);
inline constexpr viewbutton spyglassbutton{5,
                                           {"minecraft:spyglass",
                                            {},
                                            "shopview.readonlymode",
                                            {"shopview.readonlymode.helper1", "shopview.readonlymode.helper2"}},
                                           nullptr,
                                           {"random.levelup", 2.0F},
                                           false,
                                           &putsignoncursor};

}  // namespace ordomart
