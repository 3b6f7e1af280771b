#include "Cross/Util/StatgraphFile.h"

#include "Cross/Util/LogFile.h"
#include "Cross/engine/core/Text.h"
#include "Cross/engine/platform/Time.h"

#include <algorithm>

namespace {

constexpr unsigned int c_maxColumns = 128;

// A row under construction. It always has room for the commas of all columns, so that a field that does not
// fit leaves the others in their columns.
class Row {
public:
    void Begin(char const * time) {
        length = 0;
        commasToCome = c_maxColumns;
        append(time);
    }

    // Adds a field; at most c_maxColumns times.
    void Append(std::string_view field) {
        --commasToCome;
        append(length + field.size() + 1 + commasToCome < sizeof(line) ? field : std::string_view());
    }

    char const * Text() const { return line; }

private:
    void append(std::string_view field) {
        length += field.copy(line + length, field.size());
        line[length++] = ',';
        line[length] = '\0';
    }

    char line[4096];
    std::size_t length = 0;
    unsigned int commasToCome = c_maxColumns;
};

} // namespace

struct StatgraphFile::State {
    void BeginRow();
    void AppendColumns(StatGraph::Channel const * const * first, StatGraph::Channel const * const * last);
    void OpenColumns(StatGraph::Channel const * const * first, StatGraph::Channel const * const * last);
    void AppendValue(StatGraph::Channel const & channel);
    void WriteHead();

    LogFile log;
    std::string columns[c_maxColumns];
    unsigned int columnCount = 0;
    Row row;
    std::vector<bool> seen; // by the place of the channel in this update: it stands in the row
};

void StatgraphFile::State::BeginRow() {
    char time[32];
    text::PrintfCut(time, sizeof(time), "%.3f", Plat::Time::GetTimeMilliseconds() / 1000.0);
    row.Begin(time);
}

void StatgraphFile::State::AppendColumns(StatGraph::Channel const * const * first,
                                         StatGraph::Channel const * const * last) {
    for (unsigned int column = 0; column < columnCount; ++column) {
        std::string const & name = columns[column];
        auto const place = std::lower_bound(first, last, name, StatGraph::NameOrder());
        if (place != last && (*place)->name == name && (*place)->enabled) {
            AppendValue(**place);
            seen[static_cast<std::size_t>(place - first)] = true;
        } else {
            row.Append("");
        }
    }
}

void StatgraphFile::State::OpenColumns(StatGraph::Channel const * const * first,
                                       StatGraph::Channel const * const * last) {
    for (auto place = first; place != last && columnCount < c_maxColumns; ++place) {
        if (!(*place)->enabled || seen[static_cast<std::size_t>(place - first)])
            continue;
        columns[columnCount++] = (*place)->name;
        AppendValue(**place);
    }
}

void StatgraphFile::State::AppendValue(StatGraph::Channel const & channel) {
    char value[64];
    text::PrintfCut(value, sizeof(value), "%3.3f", static_cast<double>(channel.LatestSample()));
    row.Append(value);
}

void StatgraphFile::State::WriteHead() {
    row.Begin("time");
    for (unsigned int column = 0; column < columnCount; ++column)
        row.Append(columns[column]);
    log.puts(row.Text());
}

StatGraph::Sink * StatgraphFile::Create() { return new StatgraphFile; }

StatgraphFile::StatgraphFile() : state(std::make_unique<State>()) {}

StatgraphFile::~StatgraphFile() {
    if (state->columnCount > 0)
        state->WriteHead();
}

void StatgraphFile::OnUpdate(StatGraph::Channel const * const * first,
                             StatGraph::Channel const * const * last, bool) {
    if (!state->log.IsOpened())
        state->log.Create("statgraph", ".txt", true, false);
    state->seen.assign(static_cast<std::size_t>(last - first), false);
    state->BeginRow();
    state->AppendColumns(first, last);
    state->OpenColumns(first, last);
    if (state->columnCount > 0)
        state->log.puts(state->row.Text());
}
