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
    {owntext::takingover,
     "The shops of another market are being taken in, so the market is closed for a moment. Please try again soon.",
     "正在接收另一个市场的商店，商店暂停交易，请稍后再试。"},
    {owntext::slotschanged, "Some of the slots hold something else by now. Nothing was taken from them.",
     "部分格子里的物品已经变了，这些格子里的物品没有被收走。"},
    {owntext::toomanypieces, "That is more than can be handed over at once. Take a smaller number at a time.",
     "数量太多，无法一次交付，请分几次进行。"},
    {owntext::stackskept, "Stored stacks that cannot be handed out on this server stay in the commission: {0}.",
     "有{0}组物品目前无法在本服务器上领取，仍保留在该回收委托中。"},
    {owntext::offmoneystays, "Your offline money could not be paid out. It stays where it is; please try again later.",
     "离线金钱暂时无法领取，仍为你保留，请稍后再试。"},
    {owntext::awaytitle, "§eWhile you were away:§r", "§e你离开期间：§r"},
    {owntext::awaysales, "Sales of your shop: {0}, pieces: {1}, §a+ {2}§r {3}",
     "你的商店成交{0}笔，售出{1}件，收入§a{2}§r{3}"},
    {owntext::awaypurchases, "Sales to your commissions: {0}, pieces: {1}, paid with {2} {3} of your deposits",
     "你的回收委托成交{0}笔，收到{1}件，从押金中支付{2}{3}"},
    {owntext::awaysoldout, "Sold out: {0}", "已售罄：{0}"},
    {owntext::awayfull, "Complete, ready to be picked up: {0}", "已收满，可以领取：{0}"},
    {owntext::andmore, "{0} and {1} more", "{0}等，另有{1}项"},
    {owntext::enchantedname, "{0} (enchanted)", "{0}（附魔）"},
    {owntext::pricestitle, "§e{0}§r: prices in {1}", "§e{0}§r的成交价（单位：{1}）"},
    {owntext::pricesdays, "{0} d", "近{0}天"},
    {owntext::pricesline, "{0}: §a{1}§r ({2} to {3}), trades: {4}, pieces: {5}, money: {6}",
     "{0}：中位价§a{1}§r（{2}～{3}），成交{4}笔，共{5}件，总额{6}"},
    {owntext::pricesnone, "{0}: no trade", "{0}：没有成交"},
    {owntext::pricesnever, "Not traded within the last 30 days.", "近30天没有成交记录。"},
    {owntext::pricesoffers, "Cheapest offers now:", "当前最低售价："},
    {owntext::pricescommissions, "Best commissions now:", "当前最高回收价："},
    {owntext::pricesoffer, "§a{0}§r, {1} left: {2}§r", "§a{0}§r，{1}件：{2}§r"},
    {owntext::pricesunknown, "There is no item called {0}.", "没有名为“{0}”的物品。"},
    {owntext::pricesempty, "Take an item in your hand, or name one: ordomart prices apple",
     "请手持物品，或输入物品名称，例如：ordomart prices apple"},
    {owntext::noledger, "This server keeps no ledger.", "本服务器没有交易账本。"},
    {owntext::tradestitle, "§7The newest trades, by their numbers:§r", "§7最近的交易（按编号）：§r"},
    {owntext::tradesnone, "There is no such trade in the ledger.", "账本中没有这样的交易。"},
    {owntext::tradesbought, "§e{0}§r §7{1}§r {2} bought {3} x {4} from {5} for {6} {7}",
     "§e{0}§r §7{1}§r {2}从{5}的商店购买{4}×{3}，支付{6}{7}"},
    {owntext::tradessold, "§e{0}§r §7{1}§r {2} sold {3} x {4} to {5} for {6} {7}",
     "§e{0}§r §7{1}§r {2}向{5}的商店出售{4}×{3}，获得{6}{7}"},
    {owntext::tradesundo, "§e{0}§r §7{1}§r trade {2} was undone", "§e{0}§r §7{1}§r 撤销了交易{2}"},
    {owntext::tradesundone, "{0} §7(undone by entry {1})§r", "{0} §7（已被记录{1}撤销）§r"},
    {owntext::undoaway, "{0} is not here, or is dead.", "{0}不在线或已死亡。"},
    {owntext::undopieces, "{0} lacks {1} of {2} x {3}.", "{0}缺少{3}：应退{2}件，还差{1}件。"},
    {owntext::undomoney, "{0} has {1} of {2} {3}.", "{0}的余额不足：需要{2}{3}，只有{1}{3}。"},
    {owntext::undostored, "Not in the commission of {0} any more: {1} of {2} x {3}.",
     "{0}的回收委托中{3}已被取走：应退{2}件，还差{1}件。"},
    {owntext::undocommission, "The commission for {0} at {1} is not there any more.",
     "收购{0}、单价{1}的回收委托已不存在。"},
    {owntext::undooffer, "The commission for {0} does not pay {1} any more.", "{0}的回收委托单价已不是{1}。"},
    {owntext::undounknown, "{0} cannot be handed out on this server, or not so much at once.",
     "{0}目前无法在本服务器上发放，或数量太多无法一次发放。"},
    {owntext::undonone, "There is no entry {0} in the ledger.", "账本中没有编号为{0}的记录。"},
    {owntext::undonotrade, "Entry {0} is no trade, but: {1}.", "编号{0}的记录不是交易（{1}）。"},
    {owntext::undotwice, "Trade {0} is undone already, by entry {1}.", "交易{0}已被撤销（记录{1}）。"},
    {owntext::undodone, "Trade {0} is undone, as entry {7}: {1} x {2} for {3} {4}, {5} in the shop of {6}.",
     "交易{0}已撤销（记录{7}）：{5}在{6}的商店，{2}{1}件，金额{3}{4}。"},
    {owntext::undotold, "An operator has undone trade {0}: {1} x {2} for {3} {4}, {5} in the shop of {6}.",
     "管理员撤销了交易{0}：{5}在{6}的商店，{2}{1}件，金额{3}{4}。"},
    {"ledger.kind.purchase", "bought", "购买"},
    {"ledger.kind.sale", "sold to a commission", "出售给回收委托"},
    {"ledger.kind.upload", "offered", "上架"},
    {"ledger.kind.taken", "taken back", "取回"},
    {"ledger.kind.replenish", "replenished", "补货"},
    {"ledger.kind.setstock", "stock set", "设置库存"},
    {"ledger.kind.broken", "unknown goods erased", "清除未知物品"},
    {"ledger.kind.publish", "commission placed", "发布回收委托"},
    {"ledger.kind.adjust", "commission adjusted", "调整回收委托"},
    {"ledger.kind.pickup", "picked up", "领取回收物"},
    {"ledger.kind.undo purchase", "purchase undone", "撤销购买"},
    {"ledger.kind.undo sale", "sale undone", "撤销出售"},
    {"ledger.kind.kept fee", "fee kept", "手续费"},
    {owntext::auditbegins, "The audit has begun.", "对账已开始。"},
    {owntext::auditruns, "An audit is running already.", "对账正在进行中。"},
    {owntext::auditends, "The audit has ended. Entries: {0}, shops: {1}, differences: {2}.",
     "对账完成：共{0}条记录、{1}个商店，发现{2}处差异。"},
    {owntext::auditaccepted, "Taken as they are from now on: {0} of the shops.", "已按现状接受{0}个商店。"},
    {owntext::auditmore, "{0} more in the log.", "另有{0}处差异，详见日志。"},
    {owntext::reloadruns, "Settings and texts are being read already.", "正在重新读取设置和文本。"},
    {owntext::reloadrefused,
     "Nothing has changed, since something is wrong in the files:", "文件中有错误，设置和文本均未改变："},
    {owntext::reloadfault, "{0}", "{0}"},
    {owntext::reloadchanged, "{0}: {1} -> {2}", "{0}：{1} → {2}"},
    {owntext::reloadwaits, "{0}: {1} -> {2} takes effect at the next start.", "{0}：{1} → {2}，下次启动时生效。"},
    {owntext::reloaddone, "Settings and texts are read again. New settings: {0}, new texts: {1} of {2}.",
     "设置和文本已重新读取：更新了{0}项设置，{2}条文本中有{1}条更新。"},
    {owntext::handoverruns, "An export, an import or an audit is running already.", "导出、导入或对账正在进行中。"},
    {owntext::handovername, "\"{0}\" is no name for a file: 1 to 64 letters, digits, - and _.",
     "“{0}”不能用作文件名：只能用字母、数字、-和_，1到64个字符。"},
    {owntext::exportbegins, "The market is being written to {0}.", "正在将市场导出到{0}。"},
    {owntext::exportshops, "{0}: shops ({1}), goods ({2}) and commissions ({3}) are written, the ledger follows.",
     "{0}：已写入{1}个商店、{2}件商品和{3}个回收委托，接着写入账本。"},
    {owntext::exportdone, "{0} is complete. Shops: {1}, goods: {2}, commissions: {3}, entries of the ledger: {4}.",
     "{0}导出完成：{1}个商店，{2}件商品，{3}个回收委托，{4}条账本记录。"},
    {owntext::exportthere, "{0} is there already, and is not written over.", "{0}已存在，不会被覆盖。"},
    {owntext::exportfailed, "There is no file, since the market could not be written: {0}",
     "导出失败，没有生成文件：{0}"},
    {owntext::importbegins, "{0} is being checked.", "正在检查{0}。"},
    {owntext::importmissing, "There is no {0}.", "没有{0}这个文件。"},
    {owntext::importmoney,
     "{0} comes from a market with other money ({1}, here {2}); all prices stay the numbers they are.",
     "{0}来自使用另一种货币的市场（{1}，本服务器为{2}），所有价格的数字保持不变。"},
    {owntext::importchecked,
     "{0} is sound and is being taken in. Shops: {1}, goods: {2}, commissions: {3}, entries: {4}.",
     "{0}检查无误，正在导入：{1}个商店，{2}件商品，{3}个回收委托，{4}条账本记录。"},
    {owntext::importdone,
     "{0} is taken in. Shops: {1}, goods: {2}, commissions: {3}, entries of the ledger: {4}. Money is not part of it: "
     "all balances are as they were.",
     "{0}导入完成：{1}个商店，{2}件商品，{3}个回收委托，{4}条账本记录。金钱不在其中，所有人的余额不变。"},
    {owntext::importrefused, "Nothing has been taken in: {0}", "没有导入任何内容：{0}"},
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
