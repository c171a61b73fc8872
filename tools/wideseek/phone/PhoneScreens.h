// The texts of the screens beside the phone's search screen.
#pragma once

#include "tools/wideseek/SourceTrace.h"
#include "tools/wideseek/phone/PhoneView.h"

#include <string>
#include <vector>

namespace wideseek {

TextScreen helpScreen();

// The contact in full (null: none), what each source answered to the search, and what went wrong so far.
TextScreen detailsScreen(const WideseekItemData* contact, const std::vector<SourceTrace>& sources,
                         const std::vector<std::string>& problems);

} // namespace wideseek
