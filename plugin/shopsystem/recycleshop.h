// The buying half of an owner's file: commissions that are paid for when they are published, and the stacks that came
// in and wait to be picked up. The operations that the forms and the chest views share stand in commissions.h.
#pragma once

#include "plugin/shopsystem/baseshop.h"
#include "plugin/shopsystem/shopitems.h"

namespace shopsystem {

class recycleshop : public baseshop {
public:
    using baseshop::baseshop;
    bool loadfromjson(const json& section) override;
    bool savetojson(json& section) override;
    [[nodiscard]] shoptype kind() const override { return recycle; }
    [[nodiscard]] goodsfield goods() override { return {"recycleitems", recycleitems}; }

    // A default record out of range. A broken record throws shopfileerror.
    [[nodiscard]] recycleshopitem getrecycleitem(int index) const;
    // With snapshot; out of range logs and gives a default record.
    [[nodiscard]] globalrecycleshopitem getglobalrecycleitem(int index) const;
    // No record wants anything; a broken one does not.
    [[nodiscard]] bool isfulfilled() const;
    void writetradelog(const json& record) const;
    [[nodiscard]] bool holds(int index) const;
    static void prepareglobalrecycleshopfilterforplayer(const std::string& xuid);

    std::int32_t recycleamount = 0;
    std::int32_t recyclecost = 0;
    json recycleitems;
    bool isopshop = false;
};

}  // namespace shopsystem
