#include "app/Gui/Logic/Wideseek/WideseekFilterOrder.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <numeric>
#include <utility>

namespace NS_WS {

namespace {

using Place = std::vector<FilterPlace>::iterator;

// So few are put in order without memory beside them.
constexpr std::ptrdiff_t FEW_ROWS = 32;

// From so many on, it takes less time to deal them out byte by byte than to compare them.
constexpr std::ptrdiff_t MANY_ROWS = 512;

// From so many on, rows that begin alike are put in order by what follows.
constexpr std::ptrdiff_t MANY_ALIKE = 4;

// A common beginning of more names than this is rare, and then rows are compared after all.
constexpr std::size_t LONGEST_START = 64;

// The bytes of a name from uFrom on, as many as there is room for, which compare as the names do where they differ.
std::uint64_t BytesFrom(const std::string& strName, std::size_t uFrom) {
    std::uint64_t uBytes = 0;
    for (std::size_t i = uFrom; i < uFrom + sizeof uBytes; ++i) {
        uBytes = uBytes << 8U | (i < strName.size() ? static_cast<unsigned char>(strName[i]) : 0U);
    }
    return uBytes;
}

// What is equal stays as it stands.
template <typename Before> void Sort(Place itFirst, Place itEnd, Before isBefore) {
    if (itEnd - itFirst > FEW_ROWS) {
        if (!std::is_sorted(itFirst, itEnd, isBefore)) {
            std::stable_sort(itFirst, itEnd, isBefore);
        }
        return;
    }
    for (Place it = itFirst; it != itEnd; ++it) {
        std::rotate(std::upper_bound(itFirst, it, *it, isBefore), it, std::next(it));
    }
}

// Deals the places out by one byte of their names after the other, from the last to the first: a radix sort. A byte
// that all have alike needs no dealing. What is equal stays as it stands.
void DealOut(Place itFirst, Place itEnd) {
    constexpr std::size_t BYTES = sizeof itFirst->uNameBytes;
    using Counts = std::array<std::uint32_t, 256>;
    const auto byteOf = [](const FilterPlace& place, std::size_t uByte) {
        return static_cast<unsigned char>(place.uNameBytes >> 8U * uByte);
    };
    std::array<Counts, BYTES> arrCount{};
    for (Place it = itFirst; it != itEnd; ++it) {
        for (std::size_t uByte = 0; uByte < BYTES; ++uByte) {
            ++arrCount[uByte][byteOf(*it, uByte)];
        }
    }
    const auto uPlaces = static_cast<std::size_t>(itEnd - itFirst);
    std::vector<FilterPlace> vecDealt(uPlaces);
    FilterPlace* pFrom = &*itFirst;
    FilterPlace* pTo = vecDealt.data();
    for (std::size_t uByte = 0; uByte < BYTES; ++uByte) {
        Counts& count = arrCount[uByte];
        if (count[byteOf(*pFrom, uByte)] == uPlaces) {
            continue;
        }
        std::exclusive_scan(count.begin(), count.end(), count.begin(), 0U);
        for (std::size_t i = 0; i < uPlaces; ++i) {
            pTo[count[byteOf(pFrom[i], uByte)]++] = pFrom[i];
        }
        std::swap(pFrom, pTo);
    }
    if (pFrom == vecDealt.data()) {
        std::copy(vecDealt.begin(), vecDealt.end(), itFirst);
    }
}

// The names of the places are alike up to uFrom, and the places hold their bytes from there on. A last byte of 0 says
// that they end there. Looking at each row once for its next bytes is less work than comparing rows with each other.
void SortByName(Place itFirst, Place itEnd, std::size_t uFrom) {
    if (itEnd - itFirst >= MANY_ROWS) {
        DealOut(itFirst, itEnd);
    } else {
        Sort(itFirst, itEnd, [](const FilterPlace& a, const FilterPlace& b) { return a.uNameBytes < b.uNameBytes; });
    }
    const std::size_t uNext = uFrom + sizeof itFirst->uNameBytes;
    while (itFirst != itEnd) {
        const Place itAlike = itFirst;
        while (itFirst != itEnd && itFirst->uNameBytes == itAlike->uNameBytes) {
            FetchAhead(&*itFirst, &*itFirst + (itEnd - itFirst));
            ++itFirst;
        }
        if (itFirst - itAlike < MANY_ALIKE || (itAlike->uNameBytes & 0xFFU) == 0 || uNext >= LONGEST_START) {
            Sort(itAlike, itFirst, [](const FilterPlace& a, const FilterPlace& b) { return *a.itRow < *b.itRow; });
            continue;
        }
        std::for_each(itAlike, itFirst, [&](FilterPlace& p) { p.uNameBytes = BytesFrom(p.itRow->strName, uNext); });
        SortByName(itAlike, itFirst, uNext);
    }
}

} // namespace

CFilterOrder InFilterOrder(const std::list<ItemData>& listItem) {
    std::vector<FilterPlace> vecPlace;
    vecPlace.reserve(listItem.size());
    for (auto it = listItem.begin(); it != listItem.end(); ++it) {
        vecPlace.push_back({BytesFrom(it->strName, 0), it});
    }
    SortByName(vecPlace.begin(), vecPlace.end(), 0);
    return CFilterOrder(std::move(vecPlace));
}

} // namespace NS_WS
