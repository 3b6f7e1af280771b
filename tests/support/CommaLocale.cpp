#include "tests/support/CommaLocale.h"

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace {

// Null when the locale cannot be compiled here.
locale_t compileLocale(TemporaryFolder const & folder) {
    folder.WriteFile("source",
                     "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \"\"\ngrouping -1\nEND LC_NUMERIC\n");
    // The status only tells that the source has no other categories; what counts is whether the locale loads.
    std::string const compile =
        "localedef -c -i '" + folder / "source" + "' '" + folder / "comma" + "' >/dev/null 2>&1";
    [[maybe_unused]] int const status = std::system(compile.c_str());
    // By way of the process's locale: newlocale leaks the search path that it reads here.
    setenv("LOCPATH", folder.Path().c_str(), 1);
    bool const loaded = setlocale(LC_NUMERIC, "comma") != nullptr;
    unsetenv("LOCPATH");
    locale_t const locale = loaded ? duplocale(LC_GLOBAL_LOCALE) : nullptr;
    setlocale(LC_NUMERIC, "C");
    return locale;
}

} // namespace

CommaLocale::CommaLocale() : locale(compileLocale(folder)) {
    if (!locale)
        locale = newlocale(LC_ALL_MASK, "C.UTF-8", nullptr);
    if (!locale)
        throw std::runtime_error("no locale");
    uselocale(locale);
}

CommaLocale::~CommaLocale() {
    uselocale(LC_GLOBAL_LOCALE);
    freelocale(locale);
}
