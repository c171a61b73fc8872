// Any bytes as the source list file: what is read is the same each time, and gone when the file is.

#include "app/Gui/Logic/Wideseek/WideseekModel.h"
#include "tests/fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const test::TempRoot root;
    static const host::Phone phone(
        {.root = root.path(), .driver = host::Driver::stepped, .ldapDelay = {}, .contactFiles = false, .log = {}});
    static NS_WS::CWideseekModel model;
    const auto sources = [] {
        NS_WS::WideseekCfgListData list;
        fuzz::require(model.GetEnableCfgList(&list));
        return list.listItem.size();
    };
    root.write("config/data/wideseek.xml", fuzz::textOf(data, size));
    const bool read = model.ReloadConfigure();
    const std::size_t count = sources();
    fuzz::require(read || count == 0);
    fuzz::require(model.ReloadConfigure() == read && sources() == count);
    std::filesystem::remove(root.path() / "config/data/wideseek.xml");
    fuzz::require(!model.ReloadConfigure() && sources() == 0);
    return 0;
}
