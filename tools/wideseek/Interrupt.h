// Ctrl-C: a wish to end. The tool looks for it and ends; when it does not look, the process is ended all the same.
#pragma once

namespace wideseek {

// From now on SIGINT and SIGTERM are remembered. The process ends at a second one, and three seconds after the first
// one if it is still there, whatever holds it up. The terminal is then left as it was found here.
void catchInterrupts();

// The signal that came, or 0. Any thread.
int interruptedBy();

} // namespace wideseek
