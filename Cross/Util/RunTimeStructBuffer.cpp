#include "Cross/Util/RunTimeStructBuffer.h"

#include <cstring>

namespace RunTimeStruct {

Buffer::Buffer(Buffer const & other) { copyFrom(other); }

Buffer & Buffer::operator=(Buffer const & other) {
    if (this != &other)
        copyFrom(other);
    return *this;
}

Buffer::~Buffer() { Reset(); }

bool Buffer::Setup(Layout const & newLayout) { return setup(newLayout.GetInternalLayout()); }

void Buffer::Reset() {
    if (data)
        layout->FreeBufferData(data);
    data = nullptr;
    size = 0;
    layoutID = c_noLayoutID;
    layout.reset();
}

LayoutMember const * Buffer::FindMember(Dictionary::Key const & key) const {
    return layout ? layout->FindMember(key) : nullptr;
}

bool Buffer::setup(boost::shared_ptr<InternalLayout> const & newLayout) {
    if (newLayout == layout || (layout && *layout == *newLayout))
        return true;
    void * const block = newLayout->AllocBufferData();
    Reset();
    layout = newLayout;
    layoutID = layout->GetLayoutID();
    data = static_cast<char *>(block);
    size = layout->GetDataSize();
    return true;
}

// Gives false, and leaves the ref alone, without a layout.
bool Buffer::searchMember(Ref const & ref) const {
    if (!layout)
        return false;
    LayoutMember const * const member = layout->FindMember(ref.GetKey());
    ref.UpdateLast(layout->GetLayoutID(), member ? member->offset : c_noOffset);
    return true;
}

void Buffer::copyFrom(Buffer const & other) {
    if (!other.layout)
        return Reset();
    setup(other.layout);
    if (data)
        std::memcpy(data, other.data, size);
    layoutID = other.layoutID;
}

} // namespace RunTimeStruct
