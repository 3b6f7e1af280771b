#include "tools/StatsTrace.h"

#include "tools/Quote.h"

#include <charconv>

namespace {

// The shortest text that reads as this number again.
std::string floatText(float value) {
    char text[64];
    auto const [end, error] = std::to_chars(text, text + sizeof(text), value);
    return {text, error == std::errc() ? end : text};
}

} // namespace

bool WriteStatsTrace(StatsLog const & log, ByteStream & stream) {
    bool isWritten = BSWriteText(stream, "{\"traceEvents\":[", false);
    char const * separator = "\n";
    for (StatsChannel const & channel : log.channels) {
        std::string const begin = "{\"name\":" + QuoteJson(channel.name) + ",\"ph\":\"C\",\"pid\":1,\"ts\":";
        for (StatsSample const & sample : channel.samples) {
            std::string const microseconds = std::to_string(log.times[sample.row] * 1000);
            std::string const event =
                separator + begin + microseconds + ",\"args\":{\"value\":" + floatText(sample.value) + "}}";
            isWritten = isWritten && BSWriteText(stream, event.c_str(), false);
            separator = ",\n";
        }
    }
    return isWritten && BSWriteText(stream, "\n]}", true);
}
