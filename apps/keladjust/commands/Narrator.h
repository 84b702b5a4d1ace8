#ifndef KELADJUST_APP_COMMANDS_NARRATOR_H
#define KELADJUST_APP_COMMANDS_NARRATOR_H

#include "commands/Job.h"

namespace keladjust::app {

/// Tells the person at the keyboard how the run goes: a bar on a terminal, plain lines otherwise.
/// Errors and notices go to standard error, what was written to standard output.
class Narrator {
public:
    Narrator(std::size_t total, Chatter chatter, bool onTerminal);

    void begin();
    void tell(const JobReport& report);
    void end(bool interrupted);

    bool anyFailed() const { return failed_ > 0; }

private:
    void drawBar() const;
    void clearBar() const;

    std::size_t total_;
    Chatter chatter_;
    bool bar_;
    std::size_t done_ = 0;
    std::size_t failed_ = 0;
};

}  // namespace keladjust::app

#endif
