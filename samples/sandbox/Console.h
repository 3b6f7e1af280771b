#pragma once

// The script console: lines run in the global script state.

#include <string>

// Runs one line, an expression or statements. Gives what it returned, separated by tabs, or the error's text.
struct ConsoleAnswer {
    bool good;
    std::string text;
};

ConsoleAnswer RunConsoleLine(std::string const & line);

// The lines of standard input.
class Console {
public:
    Console();
    Console(Console const &) = delete;
    Console & operator=(Console const &) = delete;
    ~Console();

    // Runs the next line and prints its answer, and the line itself when nobody typed it here. False when
    // none ran: at the end of the input, or, if not to `wait`, when none is there yet.
    bool RunNext(bool wait);

private:
    bool read(bool wait);

    std::string input; // what was read and did not run yet
    bool ended = false;
    bool isPrompted = false;
    bool const isTyped;
};
