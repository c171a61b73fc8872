// Ctrl-C: a wish to end, which the tool fulfils when it next looks, and which is fulfilled for it when it does not
// look.
#pragma once

namespace wideseek {

// From now on SIGINT and SIGTERM are remembered. The process ends at a second one, and three seconds after the first
// one if it is still there, whatever holds it up. The terminal is then left as it was found here.
void catchInterrupts();

// The signal that came, or 0. Any thread.
int interruptedBy();

} // namespace wideseek
