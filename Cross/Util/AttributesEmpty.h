#pragma once

// AttributesEmpty: a reader with nothing to read, for code that takes attributes when there are none. Every
// read fails, numbers and flags stay as they were, texts become empty, and there are no tables to enter.
//
// Threads and lifetime: it stands alone and may go at any time.

#include "Cross/Util/AttributesInterface.h"

class CROSS_UTIL_API AttributesEmpty : public AttributesInterface {
public:
    explicit AttributesEmpty(char const * debugName);

    bool AttributeExists(std::uint32_t key) const override;
    bool AttributeExists(char const * name) const override;
    bool GetNumber(std::uint32_t key, int & value) const override;
    bool GetNumber(std::uint32_t key, float & value) const override;
    bool GetNumber(char const * name, float min, float max, float & value) const override;
    bool GetNumber(char const * name, float & value) const override;
    bool GetNumber(char const * name, int & value) const override;
    bool GetBool(std::uint32_t key, bool & value) const override;
    bool GetBool(char const * name, bool & value) const override;
    bool GetString(std::uint32_t key, char * buffer, unsigned int size) const override;
    bool GetString(char const * name, char * buffer, unsigned int size) const override;
    bool GetWString(std::uint32_t key, char16_t * buffer, unsigned int size) const override;
    bool GetWString(char const * name, char16_t * buffer, unsigned int size) const override;
    bool TableExists(std::uint32_t key) const override;
    bool TableExists(char const * name) const override;
    void TablePush(std::uint32_t key) override;
    void TablePush(char const * name) override;
    void TablePop() override;
    void TableRootPush() override;
    void TableRootPop() override;
    unsigned int GetCount() const override;
    std::uint32_t GetAt(unsigned int index) const override;
};
