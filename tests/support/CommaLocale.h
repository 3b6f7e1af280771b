#pragma once

#include "tests/support/TemporaryFolder.h"

#include <locale.h>

// Puts the calling thread under a locale with a decimal comma while it lives. The locale is compiled for the
// occasion, since few test machines have one; where even the compiler of locales is missing, the thread gets
// a plain one.
class CommaLocale {
public:
    CommaLocale();
    CommaLocale(CommaLocale const &) = delete;
    CommaLocale & operator=(CommaLocale const &) = delete;
    ~CommaLocale();

    // Whether the thread is under it now.
    bool IsCurrent() const { return uselocale(nullptr) == locale; }

private:
    TemporaryFolder folder;
    locale_t locale;
};
