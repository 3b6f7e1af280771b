#pragma once

// DictionaryLoad: keeps a dictionary in a chunk, so that keys in data files can be checked against those of
// the running program. A key depends on which of two colliding texts came first: keys out of a file hold good
// only where this check does.
//
// The chunk "DICT", version 1: the number of entries, a 32-bit word; then each entry by ascending key, its
// key as such a word and its text.
//
// Failures of the stream and of the chunk file throw, derived from std::exception. Threads: those of the
// stream and the dictionary. Lifetime: the stream stays the caller's, in its proxy.

#include "Cross/Util/Dictionary.h"
#include "Cross/engine/core/Export.h"
#include "Cross/engine/filesystem/ByteStream.h"

class CROSS_UTIL_API DictionaryLoad {
public:
    // Writes a chunk file from the position of the stream on, and flushes it. Always true.
    static bool Save(ByteStreamProxy & stream, Dictionary const & dictionary);

    // Stores all texts of the chunk in the dictionary, beside those that are there already. False when one of
    // them has another key than in the file; each is traced. Texts are read up to 127 bytes: a longer one is
    // cut and has another key. After an exception the texts that were read stay.
    static bool Load(ByteStreamProxy & stream, Dictionary & dictionary);
};
