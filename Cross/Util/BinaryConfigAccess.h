#pragma once

// The one way into the private parts of BinaryConfig and BinaryConfigCreator, for the code of this library
// that carries images or needs more than the public reads. Private to the library.

#include "Cross/Util/BinaryConfig.h"
#include "Cross/Util/BinaryConfigCreator.h"

namespace BCInternal {

class Access {
public:
    using Entry = BinaryConfigCreator::InternalEntry;

    static Entry const & Root(BinaryConfigCreator const & creator) { return *creator.root; }

    // The image is never longer than that.
    static std::uint64_t ImageBound(BinaryConfigCreator const & creator) { return creator.imageBound; }

    static std::uint32_t & CRC(BinaryConfig & config) { return config.crc; }

    static void SetData(BinaryConfig & config, ast::scoped_array<char> & holder, unsigned int size) {
        config.SetData(holder, size);
    }

    static void SetFilename(BinaryConfig & config, char const * name) { config.SetFilename(name); }
};

} // namespace BCInternal
