#include "tools/wideseek/Library.h"

#include "app/Gui/Logic/Wideseek/WideseekController.h"
#include "app/Gui/Logic/Wideseek/modWideseek.h"

#include <stdexcept>

namespace wideseek {

Library::Library() {
    if (!Wideseek_PreInit()) {
        throw std::runtime_error("the search library could not be started: no memory for it");
    }
}

Library::~Library() {
    NS_WS::CWideseekController::ReleaseInstance();
}

} // namespace wideseek
