#include "Cross/Util/ConfigFile.h"
#include "Cross/Util/KeyValueContainer.h"
#include "Cross/Util/KeyValueContainerIO.h"
#include "Cross/Util/SystemConfig.h"
#include "Cross/engine/filesystem/ByteStream.h"
#include "Cross/engine/platform/Options.h"
#include "tests/support/AliasedFolder.h"

#include <gtest/gtest.h>

namespace {

unsigned int s_detail = 0;

void setTextureDetail(unsigned int detail) { s_detail = detail; }

// [listen]
class TextureDetail : public SystemConfig::Callback {
public:
    void OnChanged(Dictionary::Key const & key, unsigned int, unsigned int) override {
        // After a load the key is INVALID: read what counts now.
        (void)key;
        setTextureDetail(SystemConfig::Instance()->GetSetting(detailKey));
    }

    Dictionary::Key const detailKey = Dictionary::Instance().GetKey("textureDetail");
};

// [listen]

} // namespace

TEST(SettingsGuide, SystemSettings) {
    AliasedFolder const folder("SAVES");
    std::filesystem::path const before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    folder.WriteFile("sysconfig.lua",
                     "configuration = {"
                     "    { setting = 'textureDetail', value = 2, memoryUsed = { 8, 20, 48, 96 } },"
                     "    { setting = 'shadows', value = 1, valueType = 1 },"
                     "}");
    char const * const arguments[] = {"game", "-textureDetail=3"};
    Plat::Options::SetCommandLine(2, arguments);
    // [start]
    SystemConfig::Initialize(); // reads sysconfig.lua of the working folder
    SystemConfig & config = *SystemConfig::Instance();
    TextureDetail listener;
    unsigned int const id = config.RegisterCallback(&listener, {listener.detailKey});

    unsigned int const detail = config.GetSetting(listener.detailKey); // 3 with -textureDetail=3
    unsigned int const cost = config.GetEstimatedMemoryUsage(listener.detailKey, 3); // 96 MB, in kilobytes
    config.SetSetting(listener.detailKey, 1);                                        // calls the listener
    // [start]
    EXPECT_EQ(detail, 3u);
    EXPECT_EQ(cost, 96u * 1024);
    EXPECT_EQ(s_detail, 1u);

    // [save]
    config.Save("SAVES:user.lua");        // the old file stays when this fails
    config.Load("SAVES:user.lua", false); // and calls every listener once

    config.UnregisterCallback(id);
    SystemConfig::Shutdown();
    // [save]
    EXPECT_NE(folder.ReadFile("user.lua").find("\"texturedetail\""), std::string::npos);
    Plat::Options::SetCommandLine(0, nullptr);
    std::filesystem::current_path(before);
}

TEST(SettingsGuide, SectionedFile) {
    TemporaryFolder const folder;
    folder.WriteFile("video.ini", "[Video]\r\nWidth=1280\r\n");
    std::string const name = folder / "video.ini";
    char const * const path = name.c_str();
    // [sections]
    ConfigFile file(path); // a real path
    int width = 800;
    if (file.SetSection("video", nullptr, 0) && !file.GetInt("width", width))
        width = 800; // a failed read leaves 0
    file.SetInt("width", 1920);
    file.Save(nullptr); // where it came from
    // [sections]
    EXPECT_EQ(width, 1280);
    EXPECT_EQ(folder.ReadFile("video.ini"), "[video]\r\nwidth=1920\r\n\r\n");
}

TEST(SettingsGuide, KeyValueFile) {
    AliasedFolder const folder("SAVES");
    // [bag]
    KeyValueContainer camera;
    camera.Set("distance", 38.5f);
    camera.SetString("follows", "light_tank");
    {
        ByteStreamProxy const stream = FilePath::OpenStream("SAVES:camera.lua", c_streamWrite);
        KeyValueContainerIO::Save(camera, *stream, "camera");
    }
    float const distance = camera.Check("distance") ? camera.Retrieve("distance") : 20.0f;
    // [bag]
    EXPECT_EQ(distance, 38.5f);
    EXPECT_NE(folder.ReadFile("camera.lua").find("camera_strings"), std::string::npos);
}
