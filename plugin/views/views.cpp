#include "plugin/views/views.h"

#include "plugin/base/counts.h"
#include "plugin/views/viewparts.h"

namespace ordomart {

void offerviews() {
    startcounts();
    views::offerboardviews();
    views::offershopviews();
    views::offersumviews();
    views::offertradeviews();
}

}  // namespace ordomart
