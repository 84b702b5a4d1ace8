#include "commands/Narrator.h"

#include <iostream>

#include "text/PathText.h"

namespace keladjust::app {

namespace {

constexpr std::size_t barWidth = 40;

}  // namespace

Narrator::Narrator(std::size_t total, Chatter chatter, bool onTerminal)
    : total_(total),
      chatter_(chatter),
      bar_(onTerminal && chatter == Chatter::normal && total > 1) {}

void Narrator::begin() {
    drawBar();
}

void Narrator::tell(const JobReport& report) {
    if (report.cancelled) return;
    clearBar();
    ++done_;
    const std::string name = textOf(report.plan->input);
    if (chatter_ != Chatter::quiet) {
        for (const std::string& notice : report.notices) {
            std::cerr << "keladjust: " << name << ": notice: " << notice << '\n';
        }
    }
    if (report.shortOfMemory || !report.failure.empty()) {
        ++failed_;
        std::cerr << "keladjust: " << name << ": ";
        if (report.shortOfMemory) {
            std::cerr
                << "not enough memory; close other programs, use --jobs 1 or a smaller picture";
        } else {
            std::cerr << report.failure;
        }
        std::cerr << std::endl;
    }
    if (chatter_ == Chatter::verbose && !report.details.empty()) {
        std::cout << name << ": " << report.details << '\n';
    }
    if (chatter_ != Chatter::quiet && !bar_) {
        for (const auto& path : report.written) {
            std::cout << name << " -> " << textOf(path) << std::endl;
        }
    }
    drawBar();
}

void Narrator::end(bool interrupted) {
    clearBar();
    if (interrupted) {
        std::cerr << "keladjust: interrupted; " << done_ << " of " << total_
                  << " pictures are done\n";
    } else if (chatter_ != Chatter::quiet && total_ > 1 && failed_ > 0) {
        std::cerr << "keladjust: " << failed_ << " of " << total_ << " pictures failed\n";
    } else if (bar_) {
        std::cerr << total_ << " pictures are done\n";
    }
}

void Narrator::drawBar() const {
    if (!bar_) return;
    const std::size_t full = barWidth * done_ / total_;
    std::cerr << '\r' << '[' << std::string(full, '#') << std::string(barWidth - full, '-') << "] "
              << done_ << '/' << total_ << std::flush;
}

void Narrator::clearBar() const {
    if (bar_) std::cerr << '\r' << std::string(barWidth + 24, ' ') << '\r';
}

}  // namespace keladjust::app
