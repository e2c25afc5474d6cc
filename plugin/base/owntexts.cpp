#include "plugin/base/owntexts.h"

#include "plugin/base/langtables.h"

namespace ordomart {

namespace {

constexpr struct {
    const char *key, *english, *chinese;
} rows[] = {
    {owntext::paymentrefused,
     "The payment was refused, so nothing has been traded. If this goes on, please tell an operator.",
     "支付未能完成，交易已取消，你的金钱和物品都没有变化。如果一直如此，请联系管理员。"},
    {owntext::cannotsave, "The server cannot save at the moment, so the market is closed. Please try again later.",
     "服务器暂时无法保存数据，商店已暂停交易，请稍后再试。"},
    {owntext::slotschanged, "Some of the slots hold something else by now. Nothing was taken from them.",
     "部分格子里的物品已经变了，这些格子里的物品没有被收走。"},
    {owntext::toomanypieces, "That is more than can be handed over at once. Take a smaller number at a time.",
     "数量太多，无法一次交付，请分几次进行。"},
    {owntext::stackskept, "{0} stored stacks cannot be handed out on this server. They stay in the commission.",
     "有{0}组物品目前无法在本服务器上领取，仍保留在该回收委托中。"},
    {owntext::offmoneystays, "Your offline money could not be paid out. It stays where it is; please try again later.",
     "离线金钱暂时无法领取，仍为你保留，请稍后再试。"},
    {owntext::awaytitle, "§eWhile you were away:§r", "§e你离开期间：§r"},
    {owntext::awaysales, "Your shop sold {1} pieces in {0} trades: §a+ {2}§r {3}",
     "你的商店成交{0}笔，售出{1}件，收入§a{2}§r{3}"},
    {owntext::awaypurchases, "Your commissions took in {1} pieces in {0} trades, paid with {2} {3} of your deposits",
     "你的回收委托成交{0}笔，收到{1}件，从押金中支付{2}{3}"},
    {owntext::awaysoldout, "Sold out: {0}", "已售罄：{0}"},
    {owntext::awayfull, "Complete, ready to be picked up: {0}", "已收满，可以领取：{0}"},
    {owntext::andmore, "{0} and {1} more", "{0}等，另有{1}项"},
};

}  // namespace

const platform::LangData& alllangdata() {
    static const platform::LangData data = [] {
        platform::LangData made = defaultlangdata();
        for (const auto& row : rows) {
            made["en_US"].emplace(row.key, row.english);
            made["zh_CN"].emplace(row.key, row.chinese);
        }
        return made;
    }();
    return data;
}

}  // namespace ordomart
