#include "platform/Directory.h"

#include "host/PhoneCore.h"

#include <exception>
#include <string>

namespace host {

namespace {

// Counts what a source appended behind the first `before` contacts of hits.
void count(TraceEvent& event, const OxList<DirectorySearchData>& hits, std::uint32_t before) {
    const auto* node = hits.Begin();
    for (std::uint32_t i = 0; node != hits.End(); node = node->pNext, ++i) {
        if (i >= before) {
            ++event.contacts;
            for (const std::string* number :
                 {&node->value.strNumber1, &node->value.strNumber2, &node->value.strNumber3}) {
                event.numbers += number->empty() ? 0U : 1U;
            }
        }
    }
}

// Calls what a source does and turns a missing source and an exception into a failure with a reason.
template <typename Asked, typename Ask>
bool ask(const std::shared_ptr<Asked>& source, std::string& error, const Ask& call) {
    if (!source) {
        error = "the phone has no such source";
        return false;
    }
    try {
        return call(*source);
    } catch (const std::exception& exception) {
        error = exception.what();
        return false;
    }
}

void reportFailure(PhoneCore& phone, TraceEvent& event, std::string& error) {
    if (error.empty()) {
        error = "the source gives no reason";
    }
    event.failed = true;
    event.problem = error;
    phone.report(4, std::string(event.source) + ": the search for \"" + std::string(event.key) + "\" failed: " + error);
}

bool search(Source which, std::string_view sourceName, const std::string& function, WideseekItemListData* data) {
    const auto phone = currentPhone();
    if (!phone || !data) {
        return false;
    }
    phone->interrupt(function);
    TraceEvent event{.kind = TraceKind::sourceAsked, .source = sourceName, .key = data->strKey};
    phone->trace(event);
    const std::uint32_t before = data->listResult.Count();
    std::string error;
    const bool succeeded = ask(phone->source(which), error, [&](ContactSource& source) {
        return source.search(data->strKey, data->listResult, error);
    });
    event.kind = TraceKind::sourceAnswered;
    if (phone->isTraced()) {
        count(event, data->listResult, before);
    }
    if (!succeeded) {
        reportFailure(*phone, event, error);
    }
    phone->trace(event);
    phone->interrupt(function + ":answered");
    return succeeded;
}

} // namespace

} // namespace host

bool Directory_LocalDirWideseek(WideseekItemListData* pData) {
    return host::search(host::Source::localDirectory, "local directory", "Directory_LocalDirWideseek", pData);
}

bool Directory_LocalLogWideseek(WideseekItemListData* pData) {
    return host::search(host::Source::callLog, "call log", "Directory_LocalLogWideseek", pData);
}

bool RemoteDir_Wideseek(WideseekItemListData* pData) {
    return host::search(host::Source::remoteDirectory, "remote directory", "RemoteDir_Wideseek", pData);
}

bool BSFTDir_Wideseek(WideseekItemListData* pData) {
    return host::search(host::Source::broadSoftDirectory, "BroadSoft directory", "BSFTDir_Wideseek", pData);
}

int Directory_SearchCallLogRecentOutCall(OxVector<GeneralDirItemData>& vecItem, int iFromIndex, int iSearchCount) {
    const auto phone = host::currentPhone();
    if (!phone || iFromIndex < 0 || iSearchCount < 0) {
        return -1;
    }
    phone->interrupt("Directory_SearchCallLogRecentOutCall");
    host::TraceEvent event{.kind = host::TraceKind::sourceAsked, .source = "call log"};
    phone->trace(event);
    const int before = vecItem.Count();
    std::string error;
    int available = -1;
    const bool succeeded = host::ask(phone->recentCalls(), error, [&](host::RecentCalls& calls) {
        available = calls.outgoing(vecItem, iFromIndex, iSearchCount, error);
        return available >= 0;
    });
    event.kind = host::TraceKind::sourceAnswered;
    event.contacts = static_cast<std::size_t>(vecItem.Count() - before);
    event.numbers = event.contacts;
    if (!succeeded) {
        host::reportFailure(*phone, event, error);
    }
    phone->trace(event);
    phone->interrupt("Directory_SearchCallLogRecentOutCall:answered");
    return available;
}
