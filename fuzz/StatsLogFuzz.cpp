// Stat graph logs from outside: what reads has a picture without control bytes and without numbers that are
// none, and a trace with one event per sample.

#include "tests/support/StreamBytes.h"
#include "tools/StatsPlot.h"
#include "tools/StatsTrace.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <stdexcept>

namespace {

void demand(bool holds) {
    if (!holds)
        std::abort();
}

std::optional<StatsLog> read(std::string_view text) {
    FilledStream stream(text);
    try {
        return ReadStatsLog(stream);
    } catch (std::runtime_error const &) {
        return std::nullopt;
    }
}

std::size_t countOf(std::string const & text, std::string_view what) {
    std::size_t count = 0;
    for (std::size_t place = text.find(what); place != text.npos; place = text.find(what, place + 1))
        ++count;
    return count;
}

std::size_t sampleCount(StatsLog const & log) {
    std::size_t count = 0;
    for (StatsChannel const & channel : log.channels)
        count += channel.samples.size();
    return count;
}

void demandPicture(StatsLog const & log) {
    std::string const svg = PlotStats(log, "log");
    demand(svg.ends_with("</svg>\n"));
    demand(std::none_of(svg.begin(), svg.end(), [](char c) { return c >= 0 && c < ' ' && c != '\n'; }));
}

void demandNumbers(StatsLog log) {
    for (StatsChannel & channel : log.channels)
        channel.name.clear();
    std::string const svg = PlotStats(log, "");
    demand(svg.find("nan") == svg.npos);
    demand(svg.find("inf") == svg.npos);
}

void demandTrace(StatsLog const & log) {
    FilledStream json;
    demand(WriteStatsTrace(log, json));
    demand(countOf(json.Content(), ",\"ph\":\"C\",\"pid\":1,\"ts\":") == sampleCount(log));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    std::optional<StatsLog> const log = read({reinterpret_cast<char const *>(data), size});
    if (!log)
        return 0;
    demand(!log->times.empty() && !log->channels.empty());
    demand(std::is_sorted(log->times.begin(), log->times.end()));
    demandPicture(*log);
    demandNumbers(*log);
    demandTrace(*log);
    return 0;
}
