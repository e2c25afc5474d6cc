// The faces of a trade as records. The steps of a purchase and of a recycle sale are written once and ask their face
// how a failure is told, in which language, what is opened again and how success is shown.
#pragma once

#include <cstdint>
#include <string>

#include "platform/item.h"
#include "platform/player.h"
#include "plugin/frame/guards.h"

namespace ordomart {

// What two faces of one kind have in common, whatever is traded.
struct facemanner {
    bool toasts;           // a failure is a toast, and the view is opened again; else it is chat text and nothing opens
    bool freshlanguage;    // the player's language is asked anew at the answer; else it is the one of the form
    bool revisionfirst;    // a commission's entry is read behind the revision test; else in front of it
    bool resultdialog;     // success is a dialog with two ways on; else toasts, and the view is opened again
    bool showscustomlore;  // the item's own lore lines stand in the form
};

inline constexpr facemanner listmanner{false, false, false, true, false};
inline constexpr facemanner systemlistmanner{false, false, false, true, true};
inline constexpr facemanner chestmanner{true, true, true, false, false};

using reopening = void (*)(ServerPlayer*, const std::string& shopxuid);

struct facerecord {
    facemanner manner;
    const char* place;  // names the form in the log
    reopening closed;   // the form was closed; also behind a failure that is a toast
    reopening goon;     // "continue", or at once where there is no dialog
    reopening leave;    // "exit", or the dialog was closed
};

// The ways to reopen, as values for the tables.
template <opresult (*open)(ServerPlayer*)>
void reopens(ServerPlayer* player, const std::string&) {
    open(player);
}
template <opresult (*open)(ServerPlayer*, bool), bool flag>
void reopens(ServerPlayer* player, const std::string&) {
    open(player, flag);
}
template <opresult (*open)(ServerPlayer*, const std::string&)>
void reopens(ServerPlayer* player, const std::string& shopxuid) {
    open(player, shopxuid);
}

struct tradesuccess {
    const char* titlekey;
    bool saystitle;  // beside a toast, the title goes out as chat text
    std::string message, shopname;
    char sign;
    std::int64_t amount;
};

[[nodiscard]] std::string answerlanguage(const facerecord& face, const ServerPlayer* player,
                                         const std::string& formlanguage);
[[nodiscard]] std::string hovertextfor(const facerecord& face, const ItemStack& stack, const std::string& language);
void tellrefusal(const facerecord& face, ServerPlayer* player, const std::string& shopxuid, const std::string& text);
void tellsuccess(const facerecord& face, ServerPlayer* player, const std::string& shopxuid, const std::string& language,
                 const tradesuccess& success);

}  // namespace ordomart
