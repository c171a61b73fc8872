#include "platform/Directory.h"

#include "host/PhoneCore.h"
#include "host/sources/Failure.h"
#include "host/sources/SourceNames.h"

#include <exception>
#include <string>
#include <string_view>

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
    try {
        if (!source) {
            error = "the phone has no such source";
            return false;
        }
        return call(*source);
    } catch (...) {
        error = reasonOfCurrentException();
        return false;
    }
}

void reportFailure(PhoneCore& phone, TraceEvent& event, const std::string& error) {
    event.failed = true;
    event.problem = error.empty() ? "the source gives no reason" : std::string_view(error);
    phone.tell(4, [&] {
        return std::string(event.source) + ": the search for \"" + std::string(event.key) +
               "\" failed: " + std::string(event.problem);
    });
}

bool search(Source which, std::string_view name, WideseekItemListData* data) {
    const auto phone = currentPhone();
    if (!phone || !data) {
        return false;
    }
    phone->interrupt(PlatformFunction::searchDirectory);
    TraceEvent event{.kind = TraceKind::sourceAsked, .source = name, .key = data->strKey};
    phone->trace(event);
    const std::uint32_t before = data->listResult.Count();
    std::string error;
    const bool succeeded = ask(phone->source(which).get(), error, [&](ContactSource& source) {
        return source.search(data->strKey, data->listResult, error);
    });
    event.kind = TraceKind::sourceAnswered;
    if (phone->traceSink) {
        count(event, data->listResult, before);
    }
    if (succeeded) {
        event.problem = error;
    } else {
        reportFailure(*phone, event, error);
    }
    phone->trace(event);
    phone->interrupt(PlatformFunction::searchDirectory, PlatformCall::Moment::answered);
    return succeeded;
}

} // namespace

} // namespace host

bool Directory_LocalDirWideseek(WideseekItemListData* pData) {
    return host::search(host::Source::localDirectory, host::sourceName::localDirectory, pData);
}

bool Directory_LocalLogWideseek(WideseekItemListData* pData) {
    return host::search(host::Source::callLog, host::sourceName::callLog, pData);
}

bool RemoteDir_Wideseek(WideseekItemListData* pData) {
    return host::search(host::Source::remoteDirectory, host::sourceName::remoteDirectory, pData);
}

bool BSFTDir_Wideseek(WideseekItemListData* pData) {
    return host::search(host::Source::broadSoftDirectory, host::sourceName::broadSoftDirectory, pData);
}

int Directory_SearchCallLogRecentOutCall(OxVector<GeneralDirItemData>& vecItem, int iFromIndex, int iSearchCount) {
    const auto phone = host::currentPhone();
    if (!phone || iFromIndex < 0 || iSearchCount < 0) {
        return -1;
    }
    phone->interrupt(host::PlatformFunction::recentCalls);
    host::TraceEvent event{.kind = host::TraceKind::sourceAsked, .source = host::sourceName::callLog};
    phone->trace(event);
    const int before = vecItem.Count();
    std::string error;
    int available = -1;
    const bool succeeded = host::ask(phone->recentCalls.get(), error, [&](host::RecentCalls& calls) {
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
    phone->interrupt(host::PlatformFunction::recentCalls, host::PlatformCall::Moment::answered);
    return available;
}
