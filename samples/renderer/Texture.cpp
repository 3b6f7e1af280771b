#include "samples/renderer/Texture.h"

#include <cstddef>

std::shared_ptr<Texture const> Texture::Of(Image const & image) {
    if (!image.data)
        return nullptr;
    return std::make_shared<Texture const>(Texture{
        image.width, image.height, {image.data, image.data + std::size_t{image.width} * image.height}});
}
