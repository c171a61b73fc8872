#include "app/Gui/Logic/Wideseek/WideseekModel.h"

#include "app/Gui/Logic/Wideseek/WideseekInternal.h"
#include "platform/SystemFile.h"

#include <pugixml.hpp>

#include <new>
#include <string>

namespace NS_WS {

namespace {

constexpr const char* CONFIG_FOLDER = "/config/data/";
constexpr const char* CONFIG_FILE = "wideseek.xml";
constexpr int PRIORITY_DISABLED = 255;

std::string ConfigPath() {
    std::string strPath = CONFIG_FOLDER;
    if (strPath.back() != '/') {
        strPath += '/';
    }
    return strPath + CONFIG_FILE;
}

CWideseekModel::ConfigureItem ItemOf(const pugi::xml_node& node) {
    CWideseekModel::ConfigureItem item;
    item.strIdName = node.attribute("id_name").value();
    item.strDisplayName = node.attribute("display_name").value();
    item.bEnable = node.attribute("enable").as_int(0) != 0;
    item.iPriority = item.bEnable ? node.attribute("priority").as_int(0) : PRIORITY_DISABLED;
    return item;
}

// Appends the items of the file. False when there is nothing to read.
bool ReadItems(std::list<CWideseekModel::ConfigureItem>& listItem) {
    const std::string strPath = SystemFile_GetRealPath(ConfigPath());
    if (strPath.empty()) {
        return false;
    }
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_file(strPath.c_str());
    if (result.status == pugi::status_out_of_memory) {
        // Not what the file says, so the list of before is still the best one.
        throw std::bad_alloc();
    }
    if (!result) {
        return false;
    }
    const pugi::xml_node nodeRoot = document.child("root_wideseek");
    if (!nodeRoot) {
        return false;
    }
    pugi::xml_node node = nodeRoot.child("item");
    if (!node) {
        return false;
    }
    // Every sibling counts, whatever its name.
    for (; node; node = node.next_sibling()) {
        listItem.push_back(ItemOf(node));
    }
    return true;
}

} // namespace

void CWideseekModel::ConfigureItem::Reset() {
    *this = ConfigureItem();
}

bool CWideseekModel::ConfigureItem::Compare(const ConfigureItem& a, const ConfigureItem& b) {
    return a.iPriority < b.iPriority;
}

CWideseekModel::CWideseekModel() {
    MyInit();
}

CWideseekModel::~CWideseekModel() {
    MyFinal();
}

bool CWideseekModel::ReloadConfigure() {
    return MyLoadConfigure();
}

bool CWideseekModel::GetEnableCfgList(WideseekCfgListData* pList) const {
    if (pList == nullptr) {
        return false;
    }
    std::list<WideseekCfgItemData> listEnabled;
    const CLock lock(m_csItem);
    for (const ConfigureItem& item : m_listItem) {
        if (!item.bEnable) {
            break;
        }
        listEnabled.push_back({item.strIdName, item.strDisplayName});
    }
    pList->listItem.splice(pList->listItem.end(), listEnabled);
    return true;
}

bool CWideseekModel::MyInit() {
    return MyLoadConfigure();
}

bool CWideseekModel::MyFinal() {
    return true;
}

bool CWideseekModel::MyLoadConfigure() {
    std::list<ConfigureItem> listItem;
    const bool bRead = ReadItems(listItem);
    listItem.sort(ConfigureItem::Compare);

    const CLock lock(m_csItem);
    m_listItem.swap(listItem);
    return bRead;
}

} // namespace NS_WS
