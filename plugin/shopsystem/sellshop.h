// The selling half of an owner's file: goods, discounts, two counters. Records stay JSON; they are addressed by place.
#pragma once

#include "plugin/shopsystem/baseshop.h"
#include "plugin/shopsystem/shopitems.h"

namespace shopsystem {

class sellshop : public baseshop {
public:
    using baseshop::baseshop;
    bool loadfromjson(const json& section) override;
    bool savetojson(json& section) override;
    [[nodiscard]] shoptype kind() const override { return sell; }
    [[nodiscard]] goodsfield goods() override { return {"items", items}; }

    // Plain read; a default record out of range. A broken record throws shopfileerror.
    [[nodiscard]] shopitem getshopitem(int index) const;
    // With discount and snapshot; out of range logs and gives a default record.
    [[nodiscard]] globalsellshopitem getglobalshopitem(int index) const;
    // Text for the shop's front page. Removes discounts that have run out, and leaves out broken ones.
    [[nodiscard]] std::string getdiscountsummary();
    // No record has anything left; a broken one has not.
    [[nodiscard]] bool issoldout() const;
    // One line in the owner's log, in his language.
    void writetradelog(const json& record) const;
    // Whether `items` is an array that holds this place.
    [[nodiscard]] bool holds(int index) const;
    // Fills the player's sell list from all shops; off the server thread.
    static void prepareglobalsellshopfilterforplayer(const std::string& xuid);

    std::int32_t sellcount = 0;
    std::int32_t salesvolume = 0;
    json items, biditems, shopdiscount;
    bool isopshop = false;

private:
    void reportdiscounts() const;
};

// Sets realprice. False when a discount was broken and had to be left out.
bool applydiscount(shopitem& item, const json& shopdiscount);

}  // namespace shopsystem
