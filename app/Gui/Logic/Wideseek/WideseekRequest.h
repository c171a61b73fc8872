// A request as a caller makes it: one value that is handed to the search once, whole.
//
//     CWideseekRequest request(pCallback);
//     request.SetFromIndex(0);
//     request.SetSearchCount(10);
//     request.SetKey("5");
//     pAction->HandOver(std::move(request));
#pragma once

#include <string>

namespace NS_TA {
class CTaskActionCallbackBase;
}

namespace NS_WS {

class CWideseekRequest {
public:
    // pCallback, which may be null, receives the page. Not owned.
    explicit CWideseekRequest(NS_TA::CTaskActionCallbackBase* pCallback = nullptr) : m_pCallback(pCallback) {}

    // The key as typed; it is converted here.
    void SetKey(const std::string& strKey);

    // Exchanges the converted and the typed key for these two, which needs no memory.
    void SwapKeys(std::string& strKey, std::string& strRawKey) noexcept {
        m_strKey.swap(strKey);
        m_strRawKey.swap(strRawKey);
    }

    // Which rows are wanted: index of the first one and how many.
    void SetFromIndex(int iFromIndex) { m_iFromIndex = iFromIndex; }
    int GetFromIndex() const { return m_iFromIndex; }
    void SetSearchCount(int iSearchCount) { m_iSearchCount = iSearchCount; }
    int GetSearchCount() const { return m_iSearchCount; }

    // Whom the page is for; nobody any more, once that has been forgotten.
    NS_TA::CTaskActionCallbackBase* GetCallback() const { return m_pCallback; }
    void ForgetCallback() { m_pCallback = nullptr; }

private:
    std::string m_strKey; // converted
    std::string m_strRawKey;
    int m_iFromIndex = 0;
    int m_iSearchCount = 0;
    NS_TA::CTaskActionCallbackBase* m_pCallback;
};

} // namespace NS_WS
