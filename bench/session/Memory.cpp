#include "bench/session/Memory.h"

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "bench/session/Heap.h"
#include "bench/session/LivePhone.h"
#include "platform/CommonAPI.h"

#include <map>
#include <set>
#include <utility>

namespace bench {

namespace {

using Item = NS_WS::CWideseekAction::ItemData;

// Of a red-black tree and of a doubly linked list, beside the value.
constexpr std::size_t treeLinks = 4 * sizeof(void*);
constexpr std::size_t listLinks = 2 * sizeof(void*);
constexpr std::size_t nodeBytes = listLinks + sizeof(Item) + treeLinks + sizeof(std::map<Item, int>::value_type);

constexpr const char* everybody = "4"; // in every main number
constexpr const char* everybodyStill = "49";
constexpr const char* nobody = "nobody at all";

std::size_t charactersOutside(const std::string& text) {
    return text.size() > std::string().capacity() ? text.size() + 1 : 0;
}

// Of all rows of these contacts.
std::size_t bytesOfRows(const Population& population) {
    std::set<std::pair<std::string, std::string>> seen;
    std::size_t bytes = 0;
    for (const auto& contacts : population) {
        for (const DirectorySearchData& contact : contacts) {
            const std::string keypadForm = CommonUnits_ToKeyString(contact.strName);
            for (const std::string* number : {&contact.strNumber1, &contact.strNumber2, &contact.strNumber3}) {
                if (!number->empty() && seen.emplace(contact.strName, *number).second) {
                    bytes += nodeBytes;
                    for (const std::string* text : {&contact.strName, &contact.strNumber1, &contact.strNumber2,
                                                    &contact.strNumber3, &contact.strExtra, &keypadForm}) {
                        bytes += charactersOutside(*text);
                    }
                }
            }
        }
    }
    return bytes;
}

} // namespace

MemoryUse measureMemory(Population population) {
    population[buddies].clear();
    LivePhone phone(population);
    phone.begin();
    phone.type(nobody);
    HeapMeter meter;
    phone.watchSources(HeapMeter::setApart);
    phone.type(everybody);
    const HeapCount full = meter.count();
    meter.restart();
    phone.type(everybodyStill);
    const HeapCount narrowed = meter.count();
    meter.restart();
    phone.type(everybodyStill);
    const HeapCount repeated = meter.count();
    phone.watchSources(nullptr);

    MemoryUse use;
    use.rows = phone.page().total;
    const auto perRow = [rows = static_cast<double>(use.rows)](auto sum) { return static_cast<double>(sum) / rows; };
    use.bytesHeld = perRow(full.bytes);
    use.bytesOfRow = perRow(bytesOfRows(population));
    use.bytesAtPeak = perRow(full.peak);
    use.madePerRow = perRow(full.allocations);
    use.madeBySources = perRow(full.allocationsApart);
    use.madeByNarrowing = static_cast<double>(narrowed.allocations + narrowed.allocationsApart);
    use.madeByRepeat = static_cast<double>(repeated.allocations + repeated.allocationsApart);
    return use;
}

} // namespace bench
