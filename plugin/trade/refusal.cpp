// One row for each reason, but for the one that says itself why.
#include "plugin/trade/refusal.h"

#include "plugin/base/language.h"
#include "plugin/base/owntexts.h"
#include "plugin/economy/marketopen.h"

namespace shopsystem {

namespace {

using namespace ordomart;

constexpr struct {
    refusal why;
    const char* key;
} texts[] = {
    {refusal::badquantity, "sellshop.error.invalid"},
    {refusal::toomany, owntext::toomanypieces},
    {refusal::badnumbers, "myshop.error.invalidprice"},
    {refusal::banned, "shop.banned"},
    {refusal::feeshort, "money.notenough"},
    {refusal::moneyshort, "money.notenough"},
    {refusal::shopchanged, "myshop.error.shopinfoupdate"},
    {refusal::recordgone, "myshop.error.itemchanged"},
    {refusal::itembroken, "myshop.error.itemchanged"},
    {refusal::slotsempty, "ERROR empty hand"},
    {refusal::slotschanged, owntext::slotschanged},
    {refusal::denied, "permission.deny"},
    {refusal::paymentrefused, owntext::paymentrefused},
};

}  // namespace

std::string refusaltext(refusal why, const std::string& language) {
    if (why == refusal::marketclosed) return tr(language, closedtext());
    for (const auto& text : texts)
        if (text.why == why) return tr(language, text.key);
    return {};
}

}  // namespace shopsystem
