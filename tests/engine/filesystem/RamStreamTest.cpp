#include "tests/support/HeapLimit.h"
#include "tests/support/StreamBytes.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <stdexcept>

namespace {

TEST(RamStream, GrowsAndOverwrites) {
    RamStream stream;
    ASSERT_TRUE(stream.Open(1, c_streamWrite));
    std::string expected;
    void const * buffer = nullptr;
    int moves = 0;
    for (int i = 0; i < 1000; ++i) {
        std::string const line = "line " + std::to_string(i) + "\n";
        EXPECT_EQ(stream.Write(line.data(), static_cast<unsigned int>(line.size())), line.size());
        expected += line;
        moves += buffer != stream.GetBuffer();
        buffer = stream.GetBuffer();
    }
    EXPECT_LE(moves, 14); // to 16 KiB in steps of two
    stream.SetPos(stream.GetLen() - 1);
    stream.Write("ab", 2); // across the end
    expected.replace(expected.size() - 1, 1, "ab");
    EXPECT_EQ(std::string(static_cast<char *>(stream.GetBuffer()), stream.GetLen()), expected);
}

TEST(RamStream, ReadsToTheEndAndFillsAGapWithZeros) {
    FilledStream stream("abcdef");
    char buffer[8] = "";
    EXPECT_EQ(stream->Read(buffer, 4), 4u);
    EXPECT_EQ(stream->Read(buffer, 4), 2u); // the rest
    EXPECT_EQ(std::string(buffer, 4), "efcd");
    stream->SetPos(8);
    EXPECT_EQ(stream->Read(buffer, 4), 0u);
    EXPECT_EQ(stream->GetLen(), 6u); // moving alone does not write
    stream->Write("g", 1);
    EXPECT_EQ(stream.Content(), std::string("abcdef\0\0g", 9));

    std::unique_ptr<char[]> const bytes(static_cast<char *>(stream->Detach()));
    EXPECT_EQ(std::string(bytes.get(), 3), "abc");
    EXPECT_FALSE(stream->IsOpen());
    ASSERT_TRUE(stream->Open(0, c_streamWrite));
    EXPECT_EQ(stream->Write("x", 1), 1u);
    EXPECT_EQ(stream.Content(), "x");
}

TEST(RamStream, OnlyAnOpenWriterTakesBytes) {
    RamStream stream;
    EXPECT_EQ(stream.Write("x", 1), 0u);
    EXPECT_TRUE(stream.Open(0x1000, c_streamRead));
    EXPECT_EQ(stream.Write("x", 1), 0u);
    EXPECT_FALSE(stream.Open(0x1000, 3));
    EXPECT_FALSE(stream.IsOpen());
    EXPECT_TRUE(stream.Open(0x1000, c_streamWrite));
    stream.Discard();
    EXPECT_EQ(stream.Write("y", 1), 0u);
    EXPECT_FALSE(stream.Open(0x1000, c_streamWrite));
}

TEST(RamStream, WhatItCannotHoldChangesNothing) {
    FilledStream stream("abc");
    char const more[100] = {};
    HeapLimit const limit(sizeof more - 1);
    EXPECT_THROW(stream->Write(more, sizeof more), std::bad_alloc);
    EXPECT_EQ(stream->GetPos(), 0u);
    stream->SetPos(0xFFFFFFFF);
    EXPECT_THROW(stream->Write("x", 1), std::length_error);
    EXPECT_EQ(stream.Content(), "abc");
    EXPECT_THROW(stream->Open(sizeof more, c_streamWrite), std::bad_alloc);
    EXPECT_FALSE(stream->IsOpen());
}

} // namespace
