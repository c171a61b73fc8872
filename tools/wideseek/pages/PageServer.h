// A phone whose search screen is another program: requests come as lines, pages go as lines.
//
// It uses the library as a screen does. Each request has a callback object of its own, detached when a newer request
// takes its place, so that every page goes out under the id of the request that it answers. All of it belongs to one
// thread, which is the phone's main thread while it waits for requests and pages. However long it runs, it holds the
// request that it serves and nothing of those before.
//
//     return PageServer(options, false).run();
#pragma once

#include "host/Phone.h"
#include "tools/wideseek/Library.h"
#include "tools/wideseek/pages/LineReader.h"
#include "tools/wideseek/pages/LineWriter.h"
#include "tools/wideseek/pages/PageRequest.h"
#include "tools/wideseek/sources/ProblemReport.h"
#include "tools/wideseek/sources/SourceAnswers.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace wideseek {

class PageServer {
public:
    // Starts phone and library, with standard input and output to serve. With abandons, the end of input gives up what
    // is outstanding; without, it is waited for. Throws std::runtime_error when the library cannot be started.
    PageServer(const host::PhoneOptions& options, bool abandons);
    ~PageServer();

    PageServer(const PageServer&) = delete;
    PageServer& operator=(const PageServer&) = delete;

    // Serves until the input ends, its reader goes away or the user interrupts; gives the exit code. What went wrong
    // beside the requests is written to the standard error output.
    int run();

private:
    struct Asked;

    bool isOver() const;
    bool waitForInput();
    bool look(std::chrono::milliseconds atMost);
    void serve(const std::vector<Line>& lines);
    void ask(std::size_t line, PageRequest request);
    void dismiss();
    void finish();
    void takePage(const WideseekListData& data);
    void failWithoutPage(const std::string& reason);
    void abandon(std::size_t line, const Json& id);
    void refuse(std::size_t line, const Json& id, const std::string& error);
    void reportProblems();
    void fail(const std::string& reason);

    SourceAnswers m_answers; // outlives the phone, which reports to it
    ProblemReport m_problems;
    host::Phone m_phone;
    Library m_library;
    LineReader m_input;
    LineWriter m_output;
    std::unique_ptr<Asked> m_asked; // the request that is being served
    const bool m_abandons;
    std::size_t m_lines = 0; // of the input, so far
    bool m_failed = false;   // something, for the exit code
};

} // namespace wideseek
