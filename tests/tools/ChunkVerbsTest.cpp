#include "tests/support/ChunkFiles.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/ChunkList.h"

#include "Cross/Util/BasicMeshIO.h"
#include "Cross/Util/BinaryConfigIO.h"
#include "Cross/Util/BoundVolumeIO.h"

#include <gtest/gtest.h>

namespace {

// A folder with a data chunk in it, and a volume behind: every word is one to see in a dump.
std::string smallFile(PlatformType platform) {
    return ChunkFile(platform, [](Chunky & file) {
        file.WriteFolderChunkName(FourCC("MENU"), 1, "top");
        WriteData(file, 7, 2, "seventeen letters");
        file.PopChunk();
        BoundVolumeIO::Save(file, BoundVolume());
    });
}

void writeDictionary(Chunky & file) {
    file.WriteDataChunk(FourCC("DICT"), 1, -1);
    file.Write(std::uint32_t{1});
    file.Write(std::uint32_t{0x12AB97D0});
    file.WriteString("speed");
    file.PopChunk();
}

void writeTable(Chunky & file, std::string const & image) {
    file.WriteDataChunk(FourCC("AEGD"), 1, -1);
    file.Write(std::uint32_t{0xCBF43926});
    file.Write(static_cast<std::uint32_t>(image.size()));
    file.WriteBytes(image.data(), static_cast<unsigned int>(image.size()));
    file.PopChunk();
}

// Native; with a byte between two values that nothing uses.
std::string sampleTable() {
    BinaryConfigCreator creator;
    creator.SetNumber("speed", 1.5f);
    creator.SetBool("on", true);
    creator.SetString("tag", "a");
    creator.SetWString("wide", u"\u0100"); // whose low byte is none of a terminator
    creator.TablePush("sub", false);
    creator.SetNumber("x", -1);
    creator.TablePop();
    BinaryConfig table;
    BinaryConfigIO::CreateBinaryConfig(creator, table, 1);
    return {static_cast<char const *>(table.GetBinaryConfigData()), table.GetBinaryConfigDataSize()};
}

void writeOldVolume(Chunky & file) {
    file.WriteDataChunk(FourCC("BVOL"), 1, -1);
    file.Write(true);
    file.Write(true);
    float const numbers[19] = {};
    file.Write(numbers, 19);
    file.PopChunk();
}

// Every kind of content that has notes of its own.
std::string fileOfAllKinds(PlatformType platform) {
    FilledStream stream;
    Chunky file(stream, platform);
    writeDictionary(file);
    writeTable(file, sampleTable());
    writeTable(file, "123456789");
    writeOldVolume(file);
    BoundVolume volume;
    volume.SetSphere({{1, 2, 3}, 4});
    BoundVolumeIO::Save(file, volume);
    writeTable(file, "");
    BasicMeshIO::SaveList(file, {{{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {0, 1, 2}, {}}, "tri"}, {}});
    return stream.Content();
}

// The meanings of a file's bytes, a line each, once it is sure that every byte has one.
std::string meanings(std::string const & bytes) {
    FilledStream stream(bytes);
    std::string text;
    unsigned int next = 0;
    AnnotateChunks(stream, ListChunks(stream), [&](ByteNote const & note) {
        EXPECT_EQ(note.offset, next) << note.meaning;
        next = note.offset + note.size;
        text += note.meaning + '\n';
    });
    EXPECT_EQ(next, bytes.size()) << text;
    return text;
}

std::string listed(TemporaryFolder const & folder, std::string const & bytes, std::string const & option) {
    folder.WriteFile("a.chunks", bytes);
    std::vector<std::string> arguments{"chunk", "list", folder / "a.chunks"};
    if (!option.empty())
        arguments.push_back(option);
    ToolResult const result = RunTool(arguments);
    EXPECT_EQ(result.code, result.out.find("good") < 20 ? 0 : 1) << result.out;
    EXPECT_EQ(result.err, "");
    return result.out;
}

} // namespace

TEST(ChunkList, ShowsTheTree) {
    TemporaryFolder const folder;
    std::string const file = folder / "a.chunks";
    EXPECT_EQ(listed(folder, smallFile(1), ""),
              "good: " + file +
                  ": 3 chunks, 97 bytes, platform 1\n"
                  "    offset      bytes       body  % of file  chunk\n"
                  "        16         60         37       61.9  folder \"MENU\" version 1 \"top\"\n"
                  "        39         37         17       38.1      data \"0x00000007\" version 2\n"
                  "        76         21          1       21.6  data \"BVOL\" version 2\n");
    EXPECT_EQ(
        listed(folder, smallFile(1), "--json"),
        "{\"verdict\": \"good\", \"file\": \"" + file +
            "\", \"bytes\": 97, \"platform\": 1, \"chunks\": [\n"
            "{\"offset\": 16, \"bytes\": 60, \"percent\": 61.9, \"kind\": \"folder\", \"id\": \"MENU\", "
            "\"version\": 1, \"name\": \"top\", \"body\": 37, \"chunks\": [\n"
            "{\"offset\": 39, \"bytes\": 37, \"percent\": 38.1, \"kind\": \"data\", \"id\": "
            "\"0x00000007\", \"version\": 2, \"name\": \"\", \"body\": 17}]},\n"
            "{\"offset\": 76, \"bytes\": 21, \"percent\": 21.6, \"kind\": \"data\", \"id\": \"BVOL\", "
            "\"version\": 2, \"name\": \"\", \"body\": 1}\n]}\n");
    EXPECT_EQ(RunTool({"chunk", "list", folder / "none"}).code, 2);
}

TEST(ChunkList, ShowsEveryByte) {
    TemporaryFolder const folder;
    std::string const dump = listed(folder, smallFile(2), "--hex");
    EXPECT_EQ(dump.substr(dump.find('\n') + 1),
              "         0  58 43 48 4B 0D 0A 1A 0A                          magic\n"
              "         8  01 00 00 00                                      format 1\n"
              "        12  02 00 00 00                                      platform 2\n"
              "        16  00 00 00 01                                      folder\n"
              "        20  4D 45 4E 55                                      \"MENU\"\n"
              "        24  00 00 00 01                                      version 1\n"
              "        28  00 00 00 25                                      bytes of body 37\n"
              "        32  00 00 00 03                                      bytes of name 3\n"
              "        36  74 6F 70                                         name \"top\"\n"
              "        39  00 00 00 02                                      data chunk\n"
              "        43  00 00 00 07                                      \"0x00000007\"\n"
              "        47  00 00 00 02                                      version 2\n"
              "        51  00 00 00 11                                      bytes of body 17\n"
              "        55  00 00 00 00                                      bytes of name 0\n"
              "        59  73 65 76 65 6E 74 65 65 6E 20 6C 65 74 74 65 72  data\n"
              "        75  73\n"
              "        76  00 00 00 02                                      data chunk\n"
              "        80  42 56 4F 4C                                      \"BVOL\"\n"
              "        84  00 00 00 02                                      version 2\n"
              "        88  00 00 00 01                                      bytes of body 1\n"
              "        92  00 00 00 00                                      bytes of name 0\n"
              "        96  00                                               is valid false\n");
}

TEST(ChunkList, NotesTellWhatTheLibraryStores) {
    std::string const text = meanings(fileOfAllKinds(1));
    for (char const * const content : {
             "\ntexts 1\nkey 0x12AB97D0\ntext of 5 bytes\n\"speed\"\n",
             "\ntable of 5 fields\nfield 0x12AB97D0, its value at 145\n",
             "\n0x12AB97D0: Float 1.5\n0xB8ED05D9: Bool true\n0xD8DAF8B2: String \"a\"\nunused\n"
             "0xE1B972C1: WString \"\xC4\x80\"\n0xFF6AAAAD: table of 1 field\n"
             "field 0xD6D9AF33, its value at 173\n0xD6D9AF33: Integer -1\n",
             "\ncrc 0xCBF43926\nbytes of image 9\nno sound table: at ",
             "\nimage of an attribute table\n",
             "\nbytes of image 0\nno sound table: at ",
             "\nhas a sphere true\nis valid true\nsphere centre 0 0 0\nsphere radius 0\nbox centre 0 0 0\n",
             "\nis valid true\nbox centre 1 2 3\nbox extents 4 4 4\nbox axis 1 0 0\nbox axis 0 1 0\nbox axis "
             "0 0 1\n",
             "\nmeshes 2\n",
             "\nmesh of 3 bytes\n\"tri\"\n",
             "\nvertices 3\nindices 3\nvertex 0 0 0 0\nvertex 1 1 0 0\nvertex 2 0 1 0\ntriangle 0 0 1 2\n",
         })
        EXPECT_NE(text.find(content), std::string::npos) << content << "\nin\n" << text;
    EXPECT_EQ(meanings(fileOfAllKinds(2)).find("platform 2"), text.find("platform 1"));
}

TEST(ChunkList, EveryByteIsToldOnceInDamagedFilesToo) {
    for (std::string const & file : {smallFile(1), fileOfAllKinds(1), fileOfAllKinds(2)})
        for (std::size_t i = 0; i < file.size(); ++i) {
            SCOPED_TRACE(i);
            meanings(file.substr(0, i));
            for (char const mask : {'\x01', '\x80', '\xFF'}) {
                std::string damaged = file;
                damaged[i] = static_cast<char>(damaged[i] ^ mask);
                meanings(damaged);
            }
        }
}

TEST(ChunkList, IdsAreLettersWhereAllCanBeSeen) {
    EXPECT_EQ(ChunkIdText(FourCC("A~!z")), "A~!z");
    EXPECT_EQ(ChunkIdText(FourCC("AB C")), "0x41422043");
    EXPECT_EQ(ChunkIdText(FourCC("ABC\x7F")), "0x4142437F");
    EXPECT_EQ(ChunkIdText(FourCC("AB\"C")), "0x41422243");
    EXPECT_EQ(ChunkIdText(FourCC("AB\\C")), "0x41425C43");
}

TEST(ChunkList, ReasonsLeaveThePlaceOut) {
    FilledStream stream;
    std::pair<char const *, char const *> const c_cases[] = {
        {"chunk 'ITEM' at offset 39 of 'RamStream': no data: none", "no data: none"},
        {"'RamStream' is gone", "'RamStream' is gone"},
        {"out of memory: none is left", "out of memory: none is left"},
    };
    for (auto const & [message, reason] : c_cases)
        EXPECT_EQ(ChunkReason(std::runtime_error(message), stream), reason);
}

TEST(ChunkList, DamageIsShownInItsPlace) {
    std::tuple<std::size_t, char const *, char const *> const c_cases[] = {
        // place in the small file, what stands there instead, what is listed
        // in a folder: the chunks behind the folder are still there
        {39, "07",
         "        16         60         37       61.9  folder \"MENU\" version 1 \"top\"\n"
         "        39         37         37       38.1      damaged: kind 7 is neither folder nor data\n"
         "        76         21          1       21.6  data \"BVOL\" version 2\n"},
        {51, "10",
         "        16         60         37       61.9  folder \"MENU\" version 1 \"top\"\n"
         "        39         36         16       37.1      data \"0x00000007\" version 2\n"
         "        75          1          1        1.0      damaged: the 1 byte left is too few for "
         "a chunk\n"
         "        76         21          1       21.6  data \"BVOL\" version 2\n"},
        // what is too large is shown with what is there of it
        {28, "FF",
         "        16         81         58       83.5  folder \"MENU\" version 1 \"top\", damaged: size 255 "
         "exceeds the 58 bytes left\n"
         "        39         37         17       38.1      data \"0x00000007\" version 2\n"
         "        76         21          1       21.6      data \"BVOL\" version 2\n"},
        {4, "0A",
         "         0         97         97      100.0  damaged: the chunk file was damaged by a "
         "conversion of its line ends\n"},
    };
    TemporaryFolder const folder;
    for (auto const & [offset, digits, chunks] : c_cases) {
        std::string const bytes = FromHex(digits);
        std::string const text = listed(folder, smallFile(1).replace(offset, bytes.size(), bytes), "");
        EXPECT_EQ(text.find("damaged: "), 0u);
        EXPECT_EQ(text.substr(text.find("% of file  chunk\n") + 17), chunks);
    }
    EXPECT_NE(listed(folder, "", "--json")
                  .find("\n{\"offset\": 0, \"bytes\": 0, \"percent\": 0.0, \"damage\": "
                        "\"only 0 of the 16 bytes of a chunk file's header are there\"}"),
              std::string::npos);
    // what a data chunk holds may end early without damage to the chunks
    EXPECT_NE(meanings(smallFile(1).replace(96, 1, 1, '\1'))
                  .find("is valid true\nends early: the chunk is too short for its content\n"),
              std::string::npos);
}

// The text grows with the file, not with its square.
TEST(ChunkList, DeepFilesStayShort) {
    FilledStream stream;
    Chunky file(stream, 1);
    constexpr unsigned int c_depth = 3000;
    for (unsigned int i = 0; i < c_depth; ++i)
        file.WriteFolderChunkName(FourCC("DEEP"), 1, nullptr);
    for (unsigned int i = 0; i < c_depth; ++i)
        file.PopChunk();
    TemporaryFolder const folder;
    std::string const text = listed(folder, stream.Content(), "");
    EXPECT_LT(text.size(), c_depth * 250);
    EXPECT_NE(text.find(" (depth 2999) folder \"DEEP\" version 1\n"), std::string::npos);
    EXPECT_LT(listed(folder, stream.Content(), "--json").size(), c_depth * 250);
}
