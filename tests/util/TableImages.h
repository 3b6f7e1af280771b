#pragma once

#include "Cross/Util/BinaryConfigIO.h"
#include "Cross/engine/core/Types.h"
#include "tests/support/ChunkFiles.h"

#include <string>

// The worked example of docs/formats.md: speed = 1.5, on = true, tag = "ab" and a table sub with x = -1, for
// platform 1.
inline constexpr unsigned char c_exampleImage[80] = {
    0x04, 0x00, 0x00, 0x00,                                                 // 4 fields
    0xD0, 0x97, 0xAB, 0x12, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, // speed: Float at 0
    0xD9, 0x05, 0xED, 0xB8, 0x02, 0x00, 0x00, 0x00, 0x04, 0x00, 0x00, 0x00, // on: Bool at 4
    0xB2, 0xF8, 0xDA, 0xD8, 0x03, 0x00, 0x00, 0x00, 0x05, 0x00, 0x00, 0x00, // tag: String at 5
    0xAD, 0xAA, 0x6A, 0xFF, 0x64, 0x00, 0x00, 0x00, 0x08, 0x00, 0x00, 0x00, // sub: Table at 8
    0x00, 0x00, 0xC0, 0x3F,                                                 // 1.5
    0x01,                                                                   // true
    0x61, 0x62, 0x00,                                                       // "ab"
    0x01, 0x00, 0x00, 0x00,                                                 // sub: 1 field
    0x33, 0xAF, 0xD9, 0xD6, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, // x: Integer at 0
    0xFF, 0xFF, 0xFF, 0xFF,                                                 // -1
};

inline std::string ExampleImage() {
    return {reinterpret_cast<char const *>(c_exampleImage), sizeof(c_exampleImage)};
}

inline void FillExample(BinaryConfigCreator & creator) {
    creator.SetNumber("speed", 1.5f);
    creator.SetBool("on", true);
    creator.SetString("tag", "ab");
    creator.TablePush("sub", false);
    creator.SetNumber("x", -1);
    creator.TablePop();
}

inline std::string ImageOf(BinaryConfig const & config) {
    return {static_cast<char const *>(config.GetBinaryConfigData()), config.GetBinaryConfigDataSize()};
}

inline std::string FlattenedImage(BinaryConfigCreator const & creator, unsigned int platform = 1) {
    BinaryConfig config;
    BinaryConfigIO::CreateBinaryConfig(creator, config, platform);
    return ImageOf(config);
}

// The contents of a table file; `size` is what the file says of the image.
inline std::string TableFile(std::string const & image, std::uint32_t crc, std::uint32_t size,
                             std::uint32_t id = FourCC("AEGD"), std::uint32_t version = 1) {
    FilledStream body;
    ByteStreamAdapter words(body, nullptr);
    words.Write(crc);
    words.Write(size);
    return ChunkFile(1, [&](Chunky & file) { WriteData(file, id, version, body.Content() + image); });
}

inline std::string TableFile(std::string const & image) {
    return TableFile(image, 0x12345678, static_cast<std::uint32_t>(image.size()));
}

inline bool LoadBytes(std::string const & file, BinaryConfig & config) {
    FilledStream stream(file);
    return BinaryConfigIO::Load(stream, config);
}

inline bool LoadImage(std::string const & image, BinaryConfig & config) {
    return LoadBytes(TableFile(image), config);
}
