#include "Cross/Util/DictionaryLoad.h"

#include "Cross/engine/core/Types.h"
#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/filesystem/Chunky.h"

#include <stdexcept>
#include <string>

namespace {

constexpr std::uint32_t c_chunkId = FourCC("DICT");
constexpr std::uint32_t c_chunkVersion = 1;

std::uint32_t countOf(Dictionary const & dictionary) {
    std::uint32_t count = 0;
    dictionary.ForEach([&count](Dictionary::Key, char const *) { ++count; });
    return count;
}

// Gives false, and traces it, when the text of the entry has another key here.
bool loadEntry(Chunky & chunky, Dictionary & dictionary) {
    std::uint32_t storedKey;
    chunky.Read(storedKey);
    char text[128];
    chunky.ReadString(text, sizeof(text));
    std::uint32_t const key = dictionary.GetKey(text).GetValue();
    if (key == storedKey)
        return true;
    dbTimeStampedTracefAux(
        "Mismatched key values found when loading string data.  String '%s' has values %d in DB "
        "and %d in string file.",
        text, static_cast<int>(key), static_cast<int>(storedKey));
    return false;
}

} // namespace

bool DictionaryLoad::Save(ByteStreamProxy & stream, Dictionary const & dictionary) {
    Chunky chunky(stream.Get(), 0);
    chunky.WriteDataChunk(c_chunkId, c_chunkVersion, -1);
    chunky.Write(countOf(dictionary));
    dictionary.ForEach([&chunky](Dictionary::Key key, char const * text) {
        chunky.Write(key.GetValue());
        chunky.WriteString(text);
    });
    chunky.PopChunk();
    if (!stream->Flush()) {
        stream->Discard();
        throw std::runtime_error(std::string(stream->GetStreamName()) + ": the dictionary cannot be written");
    }
    return true;
}

bool DictionaryLoad::Load(ByteStreamProxy & stream, Dictionary & dictionary) {
    Chunky chunky(stream.Get(), 0);
    chunky.ReadDataChunk(c_chunkId, c_chunkVersion);
    std::uint32_t count;
    chunky.Read(count);
    bool allMatch = true;
    for (; count > 0; --count)
        allMatch = loadEntry(chunky, dictionary) && allMatch;
    chunky.PopChunk();
    return allMatch;
}
