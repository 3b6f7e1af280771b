// Dictionary chunks from outside: loading ends in a result or an exception, and what was loaded comes back
// from its own chunk with the same keys.

#include "Cross/Util/DictionaryLoad.h"
#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/filesystem/RamStream.h"

#include <cstdlib>
#include <exception>

namespace {

ByteStreamProxy memoryStream() {
    auto * const stream = new RamStream;
    stream->Open(64, c_streamWrite);
    return ByteStreamProxy(stream);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    dbTraceSetSink([](char const *, void *) {}, nullptr);
    ByteStreamProxy stream = memoryStream();
    stream->Write(data, static_cast<unsigned int>(size));
    stream->SetPos(0);
    Dictionary dictionary(true), copy(true);
    try {
        DictionaryLoad::Load(stream, dictionary);
    } catch (std::exception const &) {}
    ByteStreamProxy saved = memoryStream();
    DictionaryLoad::Save(saved, dictionary);
    saved->SetPos(0);
    DictionaryLoad::Load(saved, copy);
    dictionary.ForEach([&copy](Dictionary::Key, char const * text) {
        Dictionary::Key key;
        if (!copy.FindKey(text, key))
            std::abort();
    });
    return 0;
}
