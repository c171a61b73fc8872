// Which contact sources a search covers, under which labels and in which order.
//
// The model reads "/config/data/wideseek.xml" when it is made and again on ReloadConfigure, and hands out the sources
// that take part. The controller owns it.
//
//     <root_wideseek>
//       <item id_name="local_directory_search" display_name="Contacts" enable="1" priority="1"/>
//       ...
//     </root_wideseek>
//
// Items are ordered by ascending priority, items of equal priority as they stand in the file. A disabled item has the
// priority 255 whatever the file says, and the first disabled item ends the list that is handed out: an enabled item
// behind it, with a priority of 255 or more, does not take part. Items are not checked: empty, unknown and repeated ids
// stay.
//
// Threads: any operation may be called from any thread. The file is read with no lock held; m_csItem guards the
// exchange of the list, so that a reader gets the list of before a reload or the one after it.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekCfgData.h"
#include "platform/BaseHelper.h"

#include <list>
#include <string>

namespace NS_WS {

class CWideseekModel {
public:
    // One item of the file.
    struct ConfigureItem {
        std::string strIdName;
        std::string strDisplayName;
        int iPriority = 255;
        bool bEnable = false;

        // Back to the values above.
        void Reset();

        // The order of the list: by priority and nothing else.
        static bool Compare(const ConfigureItem& a, const ConfigureItem& b);
    };

    // Reads the file. Throws std::bad_alloc without memory.
    CWideseekModel();
    ~CWideseekModel();

    CWideseekModel(const CWideseekModel&) = delete;
    CWideseekModel& operator=(const CWideseekModel&) = delete;

    // Reads the file again in place of what was read before. False when it is missing, malformed or without items; the
    // model is empty then. Throws std::bad_alloc without memory; what was read before stays then.
    bool ReloadConfigure();

    // Appends the sources that take part to pList, in order. False when pList is null. Throws std::bad_alloc without
    // memory; nothing is appended then.
    bool GetEnableCfgList(WideseekCfgListData* pList) const;

private:
    bool MyInit();
    bool MyFinal();

    // Reads the file and exchanges m_listItem for its items; for an empty list when it returns false.
    bool MyLoadConfigure();

    std::list<ConfigureItem> m_listItem CH_GUARDED_BY(m_csItem);
    mutable ETL_BaseHelper::chCriticalSection m_csItem;
};

} // namespace NS_WS
