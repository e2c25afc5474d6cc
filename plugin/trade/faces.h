// The faces of a trade as records. The steps of a purchase and of a recycle sale are written once and ask their face
// how a failure is told, in which language, what is opened again and how success is shown.
#pragma once

#include <cstdint>
#include <string>

#include "platform/item.h"
#include "platform/player.h"
#include "plugin/base/screens.h"

namespace ordomart {

// What two faces of one kind have in common, whatever is traded. A chest tells a failure by a toast and opens its view
// again, asks the player's language anew at the answer, tests the revision before it reads a commission's entry, and
// shows success by toasts. A list tells a failure in the chat and opens nothing, keeps the language of its form, reads
// the entry first, and shows success in a dialog with two ways on.
struct facemanner {
    bool chest = false;
    bool showscustomlore = false;  // the item's own lore lines stand in the form
};

struct reopening {
    screen which = screen::none;
    bool refresh = true;
};

struct facerecord {
    facemanner manner;
    const char* place;     // names the form in the log
    reopening closed;      // the form was closed; also behind a failure that is a toast
    reopening goon;        // "continue", or at once where there is no dialog
    reopening leave = {};  // "exit", or the dialog was closed
};

void reopen(ServerPlayer* player, const reopening& menu, const std::string& shopxuid);

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
// In the chat, or by a toast.
void tell(const facerecord& face, ServerPlayer* player, const std::string& text);
void tellrefusal(const facerecord& face, ServerPlayer* player, const std::string& shopxuid, const std::string& text);
void tellsuccess(const facerecord& face, ServerPlayer* player, const std::string& shopxuid, const std::string& language,
                 const tradesuccess& success);

}  // namespace ordomart
