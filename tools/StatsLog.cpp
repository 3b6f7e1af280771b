#include "tools/StatsLog.h"

#include "tools/LineReader.h"
#include "tools/NumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

namespace {

constexpr std::size_t c_longestLine = 4096 + 1; // CR LF may have been put in place of LF
constexpr std::size_t c_mostChannels = 128;
constexpr std::uint64_t c_clockPeriod = std::uint64_t(1) << 32; // milliseconds

// Decimal notation only; false unless all of the field is the number.
template <class Number>
bool parseNumber(std::string_view field, Number & number) {
    char const * const last = field.data() + field.size();
    auto const [end, error] = std::from_chars(field.data(), last, number, std::chars_format::fixed);
    return error == std::errc() && end == last;
}

class LogReader {
public:
    explicit LogReader(ByteStream & stream)
        : reader(stream, c_longestLine, "is longer than a row of a stat graph's log"),
          streamName(stream.GetStreamName()) {}

    StatsLog Run() {
        while (reader.Next())
            takeLine();
        if (log.times.empty())
            throw std::runtime_error(streamName + ": holds no rows, as when no channel was enabled");
        nameChannels();
        return std::move(log);
    }

private:
    void takeLine() {
        if (!reader.HasEnd()) {
            note("is cut and left out");
            return;
        }
        split(reader.Line());
        if (hasNames)
            reader.Fail("stands behind the row of names");
        if (fields[0] == "time")
            takeNames();
        else
            takeRow();
    }

    void note(std::string const & what) {
        log.notes.push_back("line " + std::to_string(reader.Number()) + " " + what);
    }

    void split(std::string_view line) {
        fields.clear();
        for (std::size_t begin = 0; begin < line.size();) {
            std::size_t const end = line.find(',', begin);
            if (end == std::string_view::npos)
                reader.Fail("does not end in a comma");
            fields.push_back(line.substr(begin, end - begin));
            begin = end + 1;
        }
        if (fields.size() < 2)
            reader.Fail("is no row of a stat graph's log");
    }

    void takeNames() {
        hasNames = true;
        names.assign(fields.begin() + 1, fields.end());
    }

    void takeRow() {
        addTime();
        addColumns(fields.size() - 1);
        for (std::size_t column = 0; column < log.channels.size(); ++column)
            if (!fields[column + 1].empty())
                addSample(log.channels[column], fields[column + 1]);
    }

    void addTime() {
        double seconds = 0.0;
        if (!parseNumber(fields[0], seconds) || !(seconds >= 0.0 && seconds < c_clockPeriod / 1000.0))
            reader.Fail("does not begin with a time");
        auto const clock = static_cast<std::uint64_t>(std::llround(seconds * 1000.0));
        if (clock < previousClock && previousClock - clock <= c_clockPeriod / 2)
            reader.Fail("goes back in time");
        if (clock < previousClock)
            wraps += c_clockPeriod;
        previousClock = clock;
        log.times.push_back(wraps + clock);
    }

    void addColumns(std::size_t count) {
        if (count < log.channels.size())
            reader.Fail("has fewer fields than the row above");
        if (count > c_mostChannels)
            reader.Fail("has more than 128 channels");
        log.channels.resize(count);
    }

    void addSample(StatsChannel & channel, std::string_view field) {
        float value = 0.0f;
        if (!parseNumber(field, value))
            reader.Fail("has a field that is no number");
        if (std::isfinite(value))
            channel.samples.push_back({static_cast<std::uint32_t>(log.times.size() - 1), value});
        else
            ++channel.notFinite;
    }

    void nameChannels() {
        if (!hasNames)
            log.notes.push_back("the row of names is missing, as after a crash: channels are numbered");
        else if (names.size() != log.channels.size())
            note("has " + CountText(names.size(), "name", "names") + " for " +
                 CountText(log.channels.size(), "channel", "channels") +
                 ", as when one holds a comma: they are numbered");
        bool const areUsable = names.size() == log.channels.size();
        for (std::size_t i = 0; i < log.channels.size(); ++i)
            log.channels[i].name =
                areUsable && !names[i].empty() ? names[i] : "channel " + std::to_string(i + 1);
    }

    LineReader reader;
    std::string streamName;
    StatsLog log;
    std::vector<std::string_view> fields; // of the present line, the time first
    std::vector<std::string> names;
    bool hasNames = false;
    std::uint64_t previousClock = 0;
    std::uint64_t wraps = 0; // milliseconds
};

float percentile(std::vector<float> & values, std::size_t percent) {
    std::size_t const rank = (values.size() * percent + 99) / 100;
    auto const place = values.begin() + static_cast<std::ptrdiff_t>(rank - 1);
    std::nth_element(values.begin(), place, values.end());
    return *place;
}

} // namespace

StatsLog ReadStatsLog(ByteStream & stream) { return LogReader(stream).Run(); }

StatsSummary Summarize(std::vector<StatsSample> const & samples) {
    std::vector<float> values;
    values.reserve(samples.size());
    double sum = 0.0;
    for (StatsSample const & sample : samples) {
        values.push_back(sample.value);
        sum += static_cast<double>(sample.value);
    }
    auto const [least, greatest] = std::minmax_element(values.begin(), values.end());
    StatsSummary summary{*least, *greatest, sum / static_cast<double>(values.size()), 0.0f, 0.0f};
    summary.percent95 = percentile(values, 95);
    summary.percent99 = percentile(values, 99);
    return summary;
}
