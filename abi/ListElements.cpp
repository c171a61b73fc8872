// The records that are elements of a std::list, which libabigail does not look into. scripts/checks/abi.sh compiles
// this to have their layout compared, too.
#include "app/Gui/Logic/Wideseek/WideseekCfgData.h"
#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "platform/Ldap.h"

void listElements(const WideseekItemData&, const CallLogSearchData&, const Attribute&, const NS_TA::LdapResultItem&,
                  const NS_WS::WideseekCfgItemData&);

void listElements(const WideseekItemData&, const CallLogSearchData&, const Attribute&, const NS_TA::LdapResultItem&,
                  const NS_WS::WideseekCfgItemData&) {
}
