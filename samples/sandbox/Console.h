#pragma once

// The script console: lines run in the global script state.

#include <string>

// Runs one line, an expression or statements. Gives what it returned, separated by tabs, or the error's text.
struct ConsoleAnswer {
    bool good;
    std::string text;
};

ConsoleAnswer RunConsoleLine(std::string const & line);

// Reads lines from standard input until its end and prints each answer.
void RunConsole();
