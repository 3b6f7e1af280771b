#include "tools/StatsTrace.h"

#include "tools/NumberText.h"
#include "tools/Quote.h"

bool WriteStatsTrace(StatsLog const & log, ByteStream & stream) {
    bool isWritten = BSWriteText(stream, "{\"traceEvents\":[", false);
    char const * separator = "\n";
    for (StatsChannel const & channel : log.channels) {
        std::string const begin = "{\"name\":" + QuoteJson(channel.name) + ",\"ph\":\"C\",\"pid\":1,\"ts\":";
        for (StatsSample const & sample : channel.samples) {
            std::string const microseconds = std::to_string(log.times[sample.row] * 1000);
            std::string const event =
                separator + begin + microseconds + ",\"args\":{\"value\":" + FloatText(sample.value) + "}}";
            isWritten = isWritten && BSWriteText(stream, event.c_str(), false);
            separator = ",\n";
        }
    }
    return isWritten && BSWriteText(stream, "\n]}", true);
}
