#ifndef KELADJUST_APP_COMMANDS_INTERRUPT_H
#define KELADJUST_APP_COMMANDS_INTERRUPT_H

namespace keladjust::app {

/// From now on the first Ctrl-C only asks to stop; a second one ends the program at once.
void catchInterrupts();

/// Whether there was a Ctrl-C.
bool interrupted();

}  // namespace keladjust::app

#endif
