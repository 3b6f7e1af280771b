#include "Cross/engine/memory/ModuleHook.h"

#include <cstring>
#include <gtest/gtest.h>
#include <link.h>
#include <optional>

namespace {

int const s_inThisModule = 0;

// Where the first loaded module is whose path holds `name`; null when there is none.
void * findModule(char const * name) {
    struct Search {
        char const * name;
        void * base;
    } search = {name, nullptr};

    dl_iterate_phdr(
        [](dl_phdr_info * info, std::size_t, void * context) {
            Search & search = *static_cast<Search *>(context);
            if (!std::strstr(info->dlpi_name, search.name))
                return 0;
            search.base = MMAPIHook::ModuleFromAddress(reinterpret_cast<void const *>(info->dlpi_addr));
            return 1;
        },
        &search);
    return search.base;
}

} // namespace

TEST(ModuleHook, AModuleIsRegisteredWhileAnyObjectOfItLives) {
    void * const module = MMAPIHook::ModuleFromAddress(&s_inThisModule);
    EXPECT_FALSE(MMOverloads::IsRegistered(module));
    {
        std::optional<MMOverloads> first(module);
        MMOverloads const second(module);
        first.reset();
        EXPECT_TRUE(MMOverloads::IsRegistered(module));
    }
    EXPECT_FALSE(MMOverloads::IsRegistered(module));
    MMOverloads const none(nullptr);
    EXPECT_FALSE(MMOverloads::IsRegistered(nullptr));
}

TEST(ModuleHook, TheUtilityLibraryRegistersItself) {
    void * const library = findModule("libcrossutil");
    ASSERT_NE(library, nullptr);
    EXPECT_TRUE(MMOverloads::IsRegistered(library));
}
