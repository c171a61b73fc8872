#include "app/Gui/Logic/Wideseek/WideseekPage.h"

#include "app/Gui/Logic/Wideseek/WideseekInternal.h"

#include <cstddef>
#include <utility>

namespace NS_WS {

namespace {

// A few screens.
constexpr std::size_t MAX_SPARE_ROWS = 64;

void Assign(WideseekItemData& row, const ItemData& item) {
    row.strName = item.strName;
    row.strNumber = item.strNumber;
    row.strExtra1 = item.strExtra1;
    row.strExtra2 = item.strExtra2;
    row.iExtra = item.iExtra;
}

} // namespace

CWideseekPage::CWideseekPage() : m_pResultList(nullptr) {
}

CWideseekPage::~CWideseekPage() {
    Final();
}

void CWideseekPage::Init() {
    if (m_pResultList == nullptr) {
        auto* pResultList = WS_NEW("app/Gui/Logic/Wideseek/WideseekAction") WideseekListData;
        const CLock lock(m_csPage);
        m_pResultList = pResultList;
    }
}

void CWideseekPage::Final() {
    WS_DELETE("app/Gui/Logic/Wideseek/WideseekAction", std::exchange(m_pResultList, nullptr));
}

void CWideseekPage::SetPosition(int iFromIndex, int iSearchCount) {
    m_iFromIndex = iFromIndex;
    m_iSearchCount = iSearchCount;
}

void CWideseekPage::Begin() {
    std::list<WideseekItemData> listFormer;
    if (m_pResultList != nullptr) {
        const CLock lock(m_csPage);
        m_pResultList->listItem.swap(listFormer);
    }
    MyReuse(listFormer);
    MyReuse(m_pageNext.listItem);
}

void CWideseekPage::Append(const ItemData& item) {
    Assign(MyNewRow(m_pageNext.listItem), item);
}

void CWideseekPage::Publish(const std::string& strKey, int iTotalCount) {
    m_pageNext.strKey = strKey;
    m_pageNext.iFromIndex = GetFromIndex();
    m_pageNext.iSearchCount = GetSearchCount();
    m_pageNext.iTotalCount = iTotalCount;
    if (m_pResultList != nullptr) {
        const CLock lock(m_csPage);
        std::swap(*m_pResultList, m_pageNext);
    }
}

void CWideseekPage::CopyTo(WideseekListData& page) {
    if (m_pResultList == nullptr) {
        return;
    }
    for (const WideseekItemData& row : m_pResultList->listItem) {
        MyNewRow(page.listItem) = row;
    }
    page.strKey = m_pResultList->strKey;
    page.iFromIndex = m_pResultList->iFromIndex;
    page.iSearchCount = m_pResultList->iSearchCount;
    page.iTotalCount = m_pResultList->iTotalCount;
}

void CWideseekPage::Prepare() {
    if (m_pResultList == nullptr) {
        return;
    }
    for (const WideseekItemData& row : m_pResultList->listItem) {
        if (m_listSpare.size() >= m_pResultList->listItem.size() || m_listSpare.size() >= MAX_SPARE_ROWS / 2) {
            return;
        }
        m_listSpare.push_back(row);
    }
}

WideseekListData CWideseekPage::Copy() const {
    const CLock lock(m_csPage);
    return m_pResultList != nullptr ? *m_pResultList : WideseekListData();
}

WideseekItemData& CWideseekPage::MyNewRow(std::list<WideseekItemData>& listItem) {
    if (m_listSpare.empty()) {
        return listItem.emplace_back();
    }
    listItem.splice(listItem.end(), m_listSpare, m_listSpare.begin());
    return listItem.back();
}

void CWideseekPage::MyReuse(std::list<WideseekItemData>& listItem) {
    while (!listItem.empty() && m_listSpare.size() < MAX_SPARE_ROWS) {
        m_listSpare.splice(m_listSpare.end(), listItem, listItem.begin());
    }
    listItem.clear();
}

} // namespace NS_WS
