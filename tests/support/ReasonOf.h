#pragma once

#include <exception>
#include <string>

// The text of the exception that an operation throws; "no exception" where it throws none.
template <class Operation>
std::string ReasonOf(Operation const & operation) {
    try {
        operation();
    } catch (std::exception const & error) {
        return error.what();
    }
    return "no exception";
}
