#include "Cross/engine/memory/ModuleHook.h"

#include "Cross/Util/RunTimeStruct.h"

#include <gtest/gtest.h>
#include <optional>

TEST(ModuleHook, AModuleIsRegisteredWhileAnyObjectOfItLives) {
    static int const s_inThisModule = 0;
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
    void const * const inLibrary = RunTimeStruct::GetTypeInfo_float();
    EXPECT_TRUE(MMOverloads::IsRegistered(MMAPIHook::ModuleFromAddress(inLibrary)));
}
