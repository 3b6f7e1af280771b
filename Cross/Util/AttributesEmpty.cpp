#include "Cross/Util/AttributesEmpty.h"

AttributesEmpty::AttributesEmpty(char const * debugName) : AttributesInterface(debugName) {}

bool AttributesEmpty::AttributeExists(std::uint32_t) const { return false; }

bool AttributesEmpty::AttributeExists(char const *) const { return false; }

bool AttributesEmpty::GetNumber(std::uint32_t, int &) const { return false; }

bool AttributesEmpty::GetNumber(std::uint32_t, float &) const { return false; }

bool AttributesEmpty::GetNumber(char const *, float, float, float &) const { return false; }

bool AttributesEmpty::GetNumber(char const *, float &) const { return false; }

bool AttributesEmpty::GetNumber(char const *, int &) const { return false; }

bool AttributesEmpty::GetBool(std::uint32_t, bool &) const { return false; }

bool AttributesEmpty::GetBool(char const *, bool &) const { return false; }

bool AttributesEmpty::GetString(std::uint32_t, char * buffer, unsigned int) const {
    buffer[0] = '\0';
    return false;
}

bool AttributesEmpty::GetString(char const *, char * buffer, unsigned int) const {
    buffer[0] = '\0';
    return false;
}

bool AttributesEmpty::GetWString(std::uint32_t, char16_t * buffer, unsigned int) const {
    buffer[0] = u'\0';
    return false;
}

bool AttributesEmpty::GetWString(char const *, char16_t * buffer, unsigned int) const {
    buffer[0] = u'\0';
    return false;
}

bool AttributesEmpty::TableExists(std::uint32_t) const { return false; }

bool AttributesEmpty::TableExists(char const *) const { return false; }

void AttributesEmpty::TablePush(std::uint32_t) {}

void AttributesEmpty::TablePush(char const *) {}

void AttributesEmpty::TablePop() {}

void AttributesEmpty::TableRootPush() {}

void AttributesEmpty::TableRootPop() {}

unsigned int AttributesEmpty::GetCount() const { return 0; }

std::uint32_t AttributesEmpty::GetAt(unsigned int) const { return 0; }
