#include "tools/wideseek/pages/PageServer.h"

#include "app/Gui/Logic/Wideseek/modWideseek.h"
#include "tools/wideseek/ExitCode.h"
#include "tools/wideseek/Interrupt.h"
#include "tools/wideseek/Page.h"
#include "tools/wideseek/PhoneArguments.h"
#include "tools/wideseek/Screen.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <optional>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace wideseek {

namespace {

using Clock = std::chrono::steady_clock;

// Nothing but a request brings pages while the phone is idle; changed files are told of after this long.
constexpr std::chrono::milliseconds idleTurn(200);

// How late a request may be seen while pages can come.
constexpr std::chrono::milliseconds busyTurn(1);

Json replyTo(std::size_t line, const Json& id) {
    return {{"id", id}, {"request", line}};
}

} // namespace

struct PageServer::Asked {
    Asked(std::size_t number, Json caller, Screen::PageHandler onPage)
        : line(number), id(std::move(caller)), screen(std::move(onPage)) {}
    ~Asked() { Wideseek_ResetCallBack(&screen); }

    Asked(const Asked&) = delete;
    Asked& operator=(const Asked&) = delete;

    const std::size_t line;
    const Json id;
    const Clock::time_point handedOver = Clock::now();
    std::size_t pages = 0;
    bool isAnswered = false; // with a page, or with a word on why there is none
    Screen screen;
};

PageServer::PageServer(const host::PhoneOptions& options, bool abandons)
    : m_problems(sourceListOf(options.root)), m_phone(options), m_input(STDIN_FILENO), m_output(STDOUT_FILENO),
      m_abandons(abandons) {
    m_phone.setTrace(&m_answers);
    m_phone.watchSourceList();
}

PageServer::~PageServer() = default;

int PageServer::run() {
    reportProblems();
    while (!m_input.hasEnded() && !isOver()) {
        if (waitForInput()) {
            serve(m_input.read());
        }
        reportProblems();
    }
    if (!isOver()) {
        finish();
    }
    if (m_input.error() != 0) {
        fail(std::string("the input could not be read: ") + std::strerror(m_input.error()));
    }
    if (m_output.error() != 0 && m_output.error() != EPIPE) {
        fail(std::string("the output could not be written: ") + std::strerror(m_output.error()));
    }
    if (const std::string failure = m_answers.failure(); !failure.empty()) {
        fail(failure);
    }
    return m_failed ? exitCode::failure : exitCode::success;
}

bool PageServer::isOver() const {
    return interruptedBy() != 0 || m_output.error() != 0;
}

// True when there is something to read. Pages are taken meanwhile.
bool PageServer::waitForInput() {
    if (m_phone.isIdle()) {
        failWithoutPage("it got no page though its search has ended; --log shows more");
        return look(idleTurn);
    }
    bool isThere = false;
    m_phone.kernel().serveMain(
        [&] {
            isThere = look(std::chrono::milliseconds::zero());
            return isThere || isOver();
        },
        busyTurn);
    return isThere;
}

// Waits at most so long for something to read, which the end of input is as well; sees a reader go.
bool PageServer::look(std::chrono::milliseconds atMost) {
    std::array<pollfd, 2> ends = {pollfd{STDIN_FILENO, POLLIN, 0}, pollfd{STDOUT_FILENO, 0, 0}};
    if (poll(ends.data(), ends.size(), static_cast<int>(atMost.count())) <= 0) {
        return false;
    }
    if ((ends[1].revents & (POLLERR | POLLHUP)) != 0) {
        m_output.close();
    }
    return ends[0].revents != 0;
}

// The newest request counts. Those that it overtakes before they are handed over are not handed over at all, so a
// caller who writes faster than sources answer makes no queue.
void PageServer::serve(const std::vector<Line>& lines) {
    std::optional<PageRequest> newest;
    std::size_t lineOfNewest = 0;
    for (const Line& line : lines) {
        PageRequest request = readRequest(line);
        ++m_lines;
        if (!request.error.empty()) {
            refuse(m_lines, request.id, request.error);
            continue;
        }
        if (newest) {
            abandon(lineOfNewest, newest->id);
        }
        newest = std::move(request);
        lineOfNewest = m_lines;
    }
    if (newest) {
        dismiss();
        ask(lineOfNewest, std::move(*newest));
    }
}

void PageServer::ask(std::size_t line, PageRequest request) {
    m_asked =
        std::make_unique<Asked>(line, std::move(request.id), [this](const WideseekListData& data) { takePage(data); });
    if (!Wideseek_SearchUnion(request.key, request.from, request.count, &m_asked->screen)) {
        failWithoutPage("the search library did not take it; it has no memory left");
    }
}

void PageServer::dismiss() {
    const std::unique_ptr<Asked> before = std::exchange(m_asked, nullptr);
    if (before && !before->isAnswered) {
        abandon(before->line, before->id);
    }
}

// The input has ended.
void PageServer::finish() {
    if (m_abandons) {
        dismiss();
        return;
    }
    const auto isFinished = [this] {
        look(std::chrono::milliseconds::zero());
        return isOver() || m_phone.isIdle();
    };
    const bool inTime = m_phone.kernel().serveMain(isFinished, longestSettling(m_phone.options()));
    if (!isOver()) {
        failWithoutPage(inTime ? "it got no page though its search has ended; --log shows more"
                               : "it got no page in time; --log shows more");
    }
    if (!inTime) {
        fail("a source has not answered in time, so a late page may be missing; --log shows more");
    }
    reportProblems();
}

// For the request that is being served: those before it have no callback object any more.
void PageServer::takePage(const WideseekListData& data) {
    const std::chrono::duration<double, std::milli> taken = Clock::now() - m_asked->handedOver;
    m_asked->isAnswered = true;
    m_answers.notePage(data.strKey);
    Json reply = {{"id", m_asked->id}};
    reply.update(jsonOf({m_asked->line - 1, m_asked->pages++ > 0, taken.count(), data}));
    m_output.write(reply);
}

// Where the request that is being served has had no answer at all.
void PageServer::failWithoutPage(const std::string& reason) {
    if (m_asked && !m_asked->isAnswered) {
        m_asked->isAnswered = true;
        refuse(m_asked->line, m_asked->id, reason);
    }
}

void PageServer::abandon(std::size_t line, const Json& id) {
    Json reply = replyTo(line, id);
    reply["abandoned"] = true;
    m_output.write(reply);
}

void PageServer::refuse(std::size_t line, const Json& id, const std::string& error) {
    m_failed = true;
    Json reply = replyTo(line, id);
    reply["error"] = error;
    m_output.write(reply);
}

void PageServer::reportProblems() {
    m_problems.tellOf(m_phone);
    for (const auto& [source, problem] : m_answers.takeProblems()) {
        m_problems.tell(problem, source + ": ");
    }
}

void PageServer::fail(const std::string& reason) {
    m_failed = true;
    std::cerr << "wideseek: " << reason << std::endl;
}

} // namespace wideseek
