// Ctrl-C: a request to end, which the tool follows when it next looks.
#pragma once

namespace wideseek {

// From now on SIGINT and SIGTERM are remembered instead of ending the process; a second one ends it.
void catchInterrupts();

// The signal that came, or 0. Any thread.
int interruptedBy();

} // namespace wideseek
