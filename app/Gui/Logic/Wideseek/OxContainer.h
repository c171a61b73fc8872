// The two containers in which the phone's directory modules hand over what they found.
//
// Their members and order are part of the agreement with those modules, like a wire format. Neither is copied: a record
// is filled by one side and read by the other, once.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

// A doubly linked list between two sentinel nodes. Elements run from m_pHead->pNext up to, not including, m_pTail.
template <typename T> class OxList {
public:
    // An element with its neighbours.
    struct _inner_node {
        _inner_node* pNext = nullptr;
        _inner_node* pPrev = nullptr;
        T value{};
    };

    OxList() : m_pHead(nullptr), m_pTail(nullptr), m_uCount(0) {
        auto pHead = std::make_unique<_inner_node>();
        m_pTail = new _inner_node;
        m_pHead = pHead.release();
        m_pHead->pNext = m_pTail;
        m_pTail->pPrev = m_pHead;
    }

    ~OxList() {
        Clear();
        delete m_pHead;
        delete m_pTail;
        m_pHead = nullptr;
        m_pTail = nullptr;
    }

    OxList(const OxList&) = delete;
    OxList& operator=(const OxList&) = delete;

    // Appends value.
    void PushBack(T value) { EmplaceBack() = std::move(value); }

    // Appends an element as T constructs it and gives it out to be filled where it lies.
    T& EmplaceBack() {
        auto* pNode = new _inner_node;
        pNode->pPrev = m_pTail->pPrev;
        pNode->pNext = m_pTail;
        m_pTail->pPrev->pNext = pNode;
        m_pTail->pPrev = pNode;
        ++m_uCount;
        return pNode->value;
    }

    // Frees all elements, the last one first.
    void Clear() {
        while (m_uCount > 0) {
            _inner_node* pNode = m_pTail->pPrev;
            pNode->pPrev->pNext = m_pTail;
            m_pTail->pPrev = pNode->pPrev;
            delete pNode;
            --m_uCount;
        }
    }

    // The node of the first element, or the tail.
    _inner_node* Begin() { return m_pHead->pNext; }
    const _inner_node* Begin() const { return m_pHead->pNext; }

    // The tail, behind the last element.
    const _inner_node* End() const { return m_pTail; }

    // How many elements there are.
    std::uint32_t Count() const { return m_uCount; }

private:
    _inner_node* m_pHead;
    _inner_node* m_pTail;
    std::uint32_t m_uCount;
};

// An array of pointers to elements that live in heap blocks of their own; a slot may be null. Each element is made with
// plain new and belongs to the vector, which deletes it.
template <typename T> class OxVector {
public:
    OxVector() : m_ppItem(new T*[0]), m_iCount(0), m_iCapacity(0) {}

    ~OxVector() {
        for (int i = 0; m_ppItem != nullptr && i < m_iCount; ++i) {
            delete m_ppItem[i];
            m_ppItem[i] = nullptr;
        }
        delete[] m_ppItem;
        m_ppItem = nullptr;
        m_iCount = 0;
        m_iCapacity = 0;
    }

    OxVector(const OxVector&) = delete;
    OxVector& operator=(const OxVector&) = delete;

    // Appends pItem, which may be null and belongs to the vector from now on, whether or not there is memory for it.
    void PushBack(T* pItem) {
        std::unique_ptr<T> pOwned(pItem);
        if (m_iCount >= m_iCapacity) {
            MyGrow();
        }
        m_ppItem[m_iCount] = pOwned.release();
        ++m_iCount;
    }

    // How many slots there are.
    int Count() const { return m_iCount; }

    // The element in slot iIndex (0 to Count() - 1), or null.
    const T* At(int iIndex) const { return m_ppItem[iIndex]; }

private:
    void MyGrow() {
        const int iCapacity = m_iCapacity < 8 ? 8 : m_iCapacity * 2;
        T** ppItem = new T*[static_cast<std::uint32_t>(iCapacity)];
        for (int i = 0; i < m_iCount; ++i) {
            ppItem[i] = m_ppItem[i];
        }
        delete[] m_ppItem;
        m_ppItem = ppItem;
        m_iCapacity = iCapacity;
    }

    T** m_ppItem;
    int m_iCount;
    int m_iCapacity;
};
