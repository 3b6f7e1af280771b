#include "Cross/Util/Dca.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/core/Types.h"
#include "Cross/engine/filesystem/PathText.h"

#include <cstdlib>

constinit dca::Key const dca::Key::INVALID;

constinit ast::smallvector<dca::Key, 1024> s_numberToKeyVector;

namespace dca {

namespace {

// The one form in which a name is stored.
struct NormalisedName {
    explicit NormalisedName(char const * name) {
        text::CopyCut(text, sizeof(text), name);
        text::ToLower(text);
        fs::BracketConvert(text);
    }

    char text[c_maxPath];
};

Key keyOfText(unsigned int number) {
    char text[64] = {};
    text::PrintfCut(text, sizeof(text), "%d", static_cast<int>(number));
    return GetKey(text);
}

// Makes room for all numbers at once. At process end the keys go before the dictionary does, which is why the
// dictionary is brought up first.
void openNumbers() {
    Dictionary::Instance();
    std::atexit([] { s_numberToKeyVector.clear(); });
    while (s_numberToKeyVector.size() < s_numberToKeyVector.capacity())
        s_numberToKeyVector.push_back(Key::INVALID);
}

} // namespace

Key GetKey(char const * name) {
    return name ? Key(Dictionary::Instance().GetKey(NormalisedName(name).text)) : Key::INVALID;
}

bool FindKey(char const * name, Key & key) {
    Dictionary::Key found;
    bool const isKnown = name && Dictionary::Instance().FindKey(NormalisedName(name).text, found);
    key = Key(found);
    return isKnown;
}

char const * GetString(Key const & key) { return Dictionary::Instance().GetString(key); }

Key GetKeyForNumber(unsigned int number) {
    if (number >= s_numberToKeyVector.capacity())
        return keyOfText(number);
    if (number >= s_numberToKeyVector.size())
        openNumbers();
    Key & key = s_numberToKeyVector[number];
    if (key == Key::INVALID)
        key = keyOfText(number);
    return key;
}

} // namespace dca
