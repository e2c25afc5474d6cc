// The tool box for false stacks: an item's tag tree is edited, loaded into a stack and sent to one client. No real
// container is touched. Server thread, but for the tag tree helpers.
#pragma once

#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/item.h"
#include "platform/player.h"
#include "plugin/base/globals.h"

namespace ordomart {

// Container ids of the packets that paint the inventory screen.
namespace layout {
inline constexpr std::uint32_t inventory = 0, offhand = 119, armour = 120, selected = 122, ui = 124;
inline constexpr std::uint32_t cursorslot = 0;  // of ui
inline constexpr int slots = 36;
inline constexpr int firstlisted = 9, lastlisted = 34;  // where goods are shown
inline constexpr int offhandclick = 1;                  // the offhand's slot, as clicks tell it
}  // namespace layout

// ---- tag tree. What is missing on the way down, or is of another type, is made.
void setitemlock(CompoundTag& item);
void setitemname(CompoundTag& item, const std::string& name);  // which item it is
void setdisplayname(CompoundTag& item, const std::string& text);
void addloreline(CompoundTag& item, const std::string& line);
void addlorelines(CompoundTag& item, std::string_view text);  // one line for each piece between newlines
void clearlore(CompoundTag& item);                            // the list stays
void setshine(CompoundTag& item);                             // an empty enchantment list
void clearshine(CompoundTag& item);

// ---- stacks
[[nodiscard]] CompoundTag basestack();
[[nodiscard]] std::shared_ptr<ItemStack> makeitemstack(const char* name, int count);

// The builder of a view: one compound and one stack for all that it draws, so that what is not set anew stays.
struct falsestack {
    CompoundTag tag = basestack();
    std::shared_ptr<ItemStack> stack = makeitemstack("diamond", 1);

    void load() { stack->load(tag); }
    // A shop's good: as it is stored; and, after its lines were added, as a single piece.
    void startgood(const std::string& itemnbt);
    void finishgood();
    void sendto(ServerPlayer* player, std::uint32_t containerid, std::uint32_t slot) const;
};

// ---- one client's screen
void sendcontainercontent(ServerPlayer* player, std::uint32_t containerid, const std::vector<ItemStack>& stacks);
void sendcontainerslot(ServerPlayer* player, std::uint32_t containerid, std::uint32_t slot, const ItemStack& stack);
void sendcontainerclose(ServerPlayer* player, std::uint8_t containerid);  // asks for it: the client answers
void sendplayergametype(ServerPlayer* player, int gametype);
void clearplayerview(ServerPlayer* player);
void clearplayerviewcontainers(ServerPlayer* player, std::initializer_list<std::uint32_t> containerids);

// The sign that helps and leads back: in the offhand, and on the cursor of a client that cannot click.
inline constexpr const char* backlore[] = {"myshop.returnback"};
void sendhelpsign(ServerPlayer* player, const char* namekey, std::span<const char* const> lorekeys = backlore);
void setcursorsign(ServerPlayer* player, bool show);

}  // namespace ordomart
