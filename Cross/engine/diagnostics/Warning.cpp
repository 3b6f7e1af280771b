#include "Cross/engine/diagnostics/Warning.h"

#include "Cross/engine/diagnostics/Letters.h"
#include "Cross/engine/diagnostics/Message.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <mutex>
#include <vector>

namespace {

struct Registration {
    std::uint32_t category;
    dbWarningHandler handler;

    bool operator==(Registration const &) const = default;
};

class Handlers {
public:
    // Immortal: static destructors raise warnings too.
    static Handlers & Instance() {
        static Handlers & handlers = *new Handlers;
        return handlers;
    }

    void Add(Registration const & registration) {
        std::lock_guard const guard(lock);
        if (registration.handler && !has(registration))
            registrations.push_back(registration);
    }

    void Remove(Registration const & registration) {
        std::lock_guard const guard(lock);
        std::erase(registrations, registration);
    }

    bool Has(Registration const & registration) const {
        std::lock_guard const guard(lock);
        return has(registration);
    }

    // The registrations for one category, in the order in which they came.
    std::vector<Registration> Find(std::uint32_t category) const {
        std::vector<Registration> found;
        std::lock_guard const guard(lock);
        std::copy_if(registrations.begin(), registrations.end(), std::back_inserter(found),
                     [category](Registration const & each) { return each.category == category; });
        return found;
    }

private:
    bool has(Registration const & registration) const {
        return std::find(registrations.begin(), registrations.end(), registration) != registrations.end();
    }

    mutable std::mutex lock;
    std::vector<Registration> registrations;
};

// Cuts a text at its line ends, in place.
std::vector<char const *> splitLines(char * text) {
    std::vector<char const *> lines = {text};
    while (char * const end = std::strchr(text, '\n')) {
        *end = '\0';
        text = end + 1;
        lines.push_back(text);
    }
    return lines;
}

// A warning that nobody handles stays one line, however many it has.
void printToStderr(std::uint32_t category, char * text) {
    char letters[5];
    dbDecode4Letters(letters, category);
    std::replace(text, text + std::strlen(text), '\n', ' ');
    std::fprintf(stderr, "Warning %s: %s\n", letters, text);
}

} // namespace

void dbWarningfAux(std::uint32_t category, char const * format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    Message message(format, arguments);
    va_end(arguments);

    Handlers const & handlers = Handlers::Instance();
    std::vector<Registration> const called = handlers.Find(category);
    if (called.empty()) {
        printToStderr(category, message.Text());
        return;
    }
    std::vector<char const *> const lines = splitLines(message.Text());
    for (Registration const & each : called)
        if (handlers.Has(each)) // an earlier handler may have removed it
            each.handler(lines.data(), static_cast<unsigned int>(lines.size()), category);
}

void dbWarningHandlerAdd(std::uint32_t category, dbWarningHandler handler) {
    Handlers::Instance().Add({category, handler});
}

void dbWarningHandlerRmv(std::uint32_t category, dbWarningHandler handler) {
    Handlers::Instance().Remove({category, handler});
}
