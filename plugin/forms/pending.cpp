// Forms that have no file of their own yet: they refuse.
#include "plugin/forms/openers.h"

namespace ordomart {

opresult openOrdomyshopAsformmenu(ServerPlayer*, bool) { return opresult::refused; }
opresult openOrdomyrecycleshopAsformmenu(ServerPlayer*, bool) { return opresult::refused; }
opresult openOrdosystemshopAsformmenu(ServerPlayer*, bool) { return opresult::refused; }
opresult openOrdosystemshopsellAsformmenu(ServerPlayer*, bool) { return opresult::refused; }
opresult openOrdosystemshoprecycleAsformmenu(ServerPlayer*, bool) { return opresult::refused; }

}  // namespace ordomart
