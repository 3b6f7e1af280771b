// Video settings in a sectioned file, a camera preset in a key/value file; both changed, saved and read back.

#include "samples/sandbox/Checks.h"

#include "Cross/Util/ConfigFile.h"
#include "Cross/Util/KeyValueContainer.h"
#include "Cross/Util/KeyValueContainerIO.h"
#include "Cross/engine/filesystem/ByteStream.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "samples/sandbox/Files.h"

namespace {

// All entries, as "[section]key=value;".
std::string contentOf(ConfigFile const & file) {
    std::string content;
    for (unsigned int s = 0; s < file.GetSectionCount(); ++s) {
        content += std::string("[") + file.GetSectionAt(s) + "]";
        file.SetSection(file.GetSectionAt(s), nullptr, 0);
        for (unsigned int k = 0; k < file.GetKeyCount(); ++k) {
            std::string value;
            file.GetString(file.GetKeyAt(k), value);
            content += std::string(file.GetKeyAt(k)) + "=" + value + ";";
        }
    }
    return content;
}

void checkVideo(Report & report) {
    ConfigFile video;
    int width = 0;
    report.Expect(video.Load(WideRealPath("DATA:video.ini").c_str()) && video.GetInt("width", width) &&
                      width == 1280,
                  "the video settings say 1280 pixels");
    report.Expect(video.SetInt("width", 1920) && video.SetInt("height", 1080), "they can be changed");
    std::u16string const saved = WideRealPath("SCRATCH:video.ini");
    report.Expect(video.Save(saved.c_str()), "they are saved");
    ConfigFile again;
    report.Expect(again.Load(saved.c_str()) && contentOf(again) == contentOf(video),
                  "they come back as saved");
    report.Evidence("video settings came back: " + contentOf(again));
}

bool loadCamera(KeyValueContainer & camera, char const * path) {
    ByteStreamProxy const stream = FilePath::OpenStream(path, c_streamRead);
    return stream && KeyValueContainerIO::Load(camera, *stream, "camera");
}

bool saveCamera(KeyValueContainer const & camera, char const * path) {
    ByteStreamProxy const stream = FilePath::OpenStream(path, c_streamWrite);
    return stream && KeyValueContainerIO::Save(camera, *stream, "camera");
}

void checkCamera(Report & report) {
    KeyValueContainer camera, again;
    report.Expect(loadCamera(camera, "DATA:camera.lua") && camera.Retrieve("Distance") == 38.5f,
                  "the camera stands 38.5 away");
    camera.Set("distance", 40.1f);
    camera.SetString("title", "Wide \"view\"");
    report.Expect(saveCamera(camera, "SCRATCH:camera.lua") && loadCamera(again, "SCRATCH:camera.lua"),
                  "the preset is saved and loads");
    std::string title;
    again.RetrieveString("title", title);
    bool isEqual = again.Size() == camera.Size() && again.SizeString() == camera.SizeString() &&
                   title == "Wide \"view\"";
    for (unsigned int i = 0; i < camera.Size(); ++i)
        isEqual = isEqual && again.Retrieve(camera.At(i)) == camera.Retrieve(camera.At(i));
    report.Expect(isEqual, "the preset comes back as saved");
    report.Evidence("a camera preset of " + std::to_string(again.Size()) + " numbers and " +
                    std::to_string(again.SizeString()) + " texts came back");
}

} // namespace

void CheckConfigFiles(Report & report) {
    report.Begin(Subsystem::Configuration);
    checkVideo(report);
    checkCamera(report);
}
