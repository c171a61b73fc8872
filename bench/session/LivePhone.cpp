#include "bench/session/LivePhone.h"

#include "app/Gui/Logic/Wideseek/WideseekCBData.h"
#include "app/Gui/Logic/Wideseek/WideseekController.h"
#include "app/Gui/Logic/Wideseek/modWideseek.h"
#include "host/contacts/FileDirectory.h"

#include <optional>
#include <stdexcept>
#include <thread>
#include <utility>

namespace bench {

namespace {

constexpr std::chrono::seconds longestWait(60);

// A file that was written a moment ago is read again at every question, as it might still change unseen.
constexpr std::chrono::milliseconds untilFilesSettle(100);

class NoContacts : public host::ContactSource {
public:
    bool search(const std::string&, OxList<DirectorySearchData>&, std::string&) override { return true; }
};

std::filesystem::path written(const Population& population, const std::filesystem::path& root) {
    writePhone(population, root);
    std::this_thread::sleep_for(untilFilesSettle);
    return root;
}

template <typename Call> Nanoseconds timeOf(const Call& call) {
    const auto start = Clock::now();
    call();
    return Clock::now() - start;
}

} // namespace

void LivePhone::Screen::OnTaskActionCallback(NS_TA::CTaskAction* pAction) {
    if (pAction->GetTypeId() == NS_WS::CWideseekCBData::TYPE_ID) {
        at = Clock::now();
        ++pages;
        page = static_cast<NS_WS::CWideseekCBData*>(pAction)->GetResultList();
    }
}

void LivePhone::Trace::onTrace(const host::TraceEvent& event) {
    using host::TraceKind;
    if (event.kind == TraceKind::requestStarted || event.kind == TraceKind::requestFinished) {
        isWorking = event.kind == TraceKind::requestStarted;
    }
    if (watcher && (event.kind == TraceKind::sourceAsked || event.kind == TraceKind::sourceAnswered)) {
        watcher(event.kind == TraceKind::sourceAsked);
    }
}

LivePhone::LivePhone(const Population& population)
    : m_phone({.root = written(population, m_root.path()),
               .driver = host::Driver::live,
               .ldapDelay = {},
               .contactFiles = true,
               .log = {}}) {
    const auto over = [this](const char* file) {
        return std::make_shared<host::FileDirectory>(m_root.path() / file, host::ProblemSink());
    };
    m_local = over("config/contacts/local_directory.csv");
    m_calls = over(callLogContacts);
    setContacts(m_local, m_calls);
    if (!Wideseek_PreInit()) {
        throw std::runtime_error("the search library could not be started: no memory for it");
    }
    type("0"); // reads the files
    const auto problems = m_phone.problems();
    if (!problems.empty()) {
        throw std::runtime_error(problems.front());
    }
}

LivePhone::~LivePhone() {
    Wideseek_ResetCallBack(&m_screen);
    NS_WS::CWideseekController::ReleaseInstance();
}

void LivePhone::setContacts(const std::shared_ptr<host::ContactSource>& local,
                            const std::shared_ptr<host::ContactSource>& calls) {
    m_phone.setSource(host::Source::localDirectory, local);
    m_phone.setSource(host::Source::callLog, calls);
}

void LivePhone::begin() {
    const auto none = std::make_shared<NoContacts>();
    setContacts(none, none);
    m_clearings.push_back(type("").page);
    m_emptyRequests.push_back(type("").page);
    setContacts(m_local, m_calls);
}

void LivePhone::request(const std::string& key) {
    if (!Wideseek_SearchUnion(key, 0, pageSize, &m_screen)) {
        throw std::runtime_error("the search library did not take the key \"" + key + "\"");
    }
}

void LivePhone::await(const std::string& key, const std::function<bool()>& finished) {
    if (!m_phone.kernel().serveMain(finished, longestWait)) {
        throw std::runtime_error("no page came for the key \"" + key + "\"");
    }
}

Took LivePhone::type(const std::string& key) {
    host::Kernel& kernel = m_phone.kernel();
    const std::size_t pagesBefore = m_screen.pages;
    std::optional<Clock::time_point> end; // written and read on the main thread
    const auto noteEnd = [&kernel, &end] {
        kernel.post(nullptr, {}, {}, "end of work", [&end, now = Clock::now()] { end = now; });
    };
    const auto start = Clock::now();
    request(key);
    kernel.post(kernel.findThread(host::Kernel::searchThread), {}, {}, "end of work", noteEnd);
    await(key, [&] { return end && m_screen.pages != pagesBefore; });
    return {m_screen.at - start, *end - start};
}

Nanoseconds LivePhone::typeBurst(const std::vector<std::string>& keys, Nanoseconds gap) {
    auto start = Clock::now();
    for (const std::string& key : keys) {
        std::this_thread::sleep_until(start + gap);
        start = Clock::now();
        request(key);
    }
    m_screen.page.strKey.clear();
    await(keys.back(), [&] { return m_screen.page.strKey == keys.back() && m_phone.isIdle(); });
    return m_screen.at - start;
}

Page LivePhone::page() const {
    Page page{static_cast<std::size_t>(m_screen.page.iTotalCount), {}};
    for (const WideseekItemData& row : m_screen.page.listItem) {
        page.rows.push_back({row.strName, row.strNumber});
    }
    return page;
}

void LivePhone::timeCalls(const std::string& key, CallerTimes& times) {
    Screen other;
    times.detach.push_back(timeOf([&] { Wideseek_ResetCallBack(&other); }));
    times.reset.push_back(timeOf([] { Wideseek_ResetKey(); }));
    times.handOver.push_back(timeOf([&] { request(key); }));
}

LivePhone::CallerTimes LivePhone::callerAtRest(const std::string& key, std::size_t rounds) {
    CallerTimes times;
    for (std::size_t round = 0; round < rounds; ++round) {
        timeCalls(key, times);
        await(key, [this] { return m_phone.isIdle(); });
    }
    return times;
}

// Each round comes in at another place of the search.
LivePhone::CallerTimes LivePhone::callerDuringSearch(const std::string& key, std::size_t rounds) {
    begin();
    const Nanoseconds whole = type(key).work;
    m_phone.setTrace(&m_trace);
    CallerTimes times;
    for (std::size_t round = 0; round < rounds; ++round) {
        begin();
        request(key);
        std::this_thread::sleep_for(whole * round / rounds);
        const CallerTimes before = times;
        const bool wasWorking = m_trace.isWorking;
        timeCalls(key, times);
        if (!wasWorking || !m_trace.isWorking) {
            times = before;
        }
        await(key, [this] { return m_phone.isIdle(); });
    }
    m_phone.setTrace(nullptr);
    return times;
}

void LivePhone::watchSources(std::function<void(bool inSource)> watcher) {
    m_trace.watcher = std::move(watcher);
    m_phone.setTrace(m_trace.watcher ? &m_trace : nullptr);
}

} // namespace bench
