#ifndef KELADJUST_ENGINE_PLATFORM_MESSAGEWAIT_H
#define KELADJUST_ENGINE_PLATFORM_MESSAGEWAIT_H

#include "platform/Event.h"

namespace keladjust::platform {

/// Waits for an event without time limit; where windows hear from others by messages to the thread
/// that made them, those of the calling thread are answered meanwhile.
void waitAnsweringMessages(Event& event);

}  // namespace keladjust::platform

#endif
