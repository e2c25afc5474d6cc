// What the market shows: views of the ledger and of the shops, and counts. All of it is read only, and on
// a host that shows nothing none of it is there. Server thread, while the plug-in is entered.
#pragma once

namespace ordomart {

void offerviews();

}  // namespace ordomart
