// JSON lines to a file descriptor, each handed over whole and at once.
//
// One thread. Writing waits for a slow reader, and signals do not cut it short. The process ignores SIGPIPE, so that a
// reader who has gone away is an error like others.
#pragma once

#include "tools/wideseek/JsonLine.h"

namespace wideseek {

class LineWriter {
public:
    // The descriptor stays the caller's.
    explicit LineWriter(int descriptor) : m_descriptor(descriptor) {}

    // After a failure, nothing is written any more. Bytes that are not UTF-8 become U+FFFD.
    void write(const Json& object);

    // Why writing failed (errno); 0: it did not. EPIPE: the reader has gone away.
    int error() const { return m_error; }

    // The reader is known to have gone away.
    void close();

private:
    const int m_descriptor;
    int m_error = 0;
};

} // namespace wideseek
