#include "tests/support/ReasonOf.h"
#include "tests/support/StreamBytes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/StatsPlot.h"
#include "tools/StatsTrace.h"

#include <gtest/gtest.h>

#include <regex>
#include <sstream>

namespace {

StatsLog read(std::string const & text) {
    FilledStream stream(text);
    return ReadStatsLog(stream);
}

// Channels as "name row:value ... !not finite;", times, and the notes, a line each.
std::string shown(StatsLog const & log) {
    std::ostringstream text;
    for (StatsChannel const & channel : log.channels) {
        text << channel.name;
        for (StatsSample const & sample : channel.samples)
            text << ' ' << sample.row << ':' << sample.value;
        text << " !" << channel.notFinite << ';';
    }
    for (std::uint64_t const time : log.times)
        text << ' ' << time;
    for (std::string const & note : log.notes)
        text << '\n' << note;
    return text.str();
}

// The points of the line of a plot with one channel, as "x,y" in pixels from the plot's top left corner.
std::vector<std::pair<double, double>> pointsOf(std::string const & svg) {
    std::size_t const begin = svg.find(" d=\"", svg.find("stroke-linecap"));
    std::string const path = svg.substr(begin, svg.find('"', begin + 4) - begin);
    std::regex const point("[ML]([0-9.]+),([0-9.]+)");
    std::vector<std::pair<double, double>> points;
    for (std::sregex_iterator match(path.begin(), path.end(), point), last; match != last; ++match)
        points.emplace_back(std::stod((*match)[1]) - 90.0, std::stod((*match)[2]) - 84.0);
    return points;
}

// What the labels of one axis show, a blank behind each.
std::string labelsOf(std::string const & svg, char const * place) {
    std::regex const label(std::string("<text ") + place + "[^>]*>([^<]*)<");
    std::string labels;
    for (std::sregex_iterator match(svg.begin(), svg.end(), label), last; match != last; ++match)
        labels += (*match)[1].str() + ' ';
    return labels;
}

std::string const c_crash = "\nthe row of names is missing, as after a crash: channels are numbered";

} // namespace

TEST(StatsLog, ReadsWhatTheSinkWrites) {
    std::pair<std::string, std::string> const c_cases[] = {
        // columns open at the right; an empty field is a gap; names come last
        {"1.000,0.500,\n1.016,,-2.000,\ntime,a,b \xC3\x84,\n", "a 0:0.5 !0;b \xC3\x84 1:-2 !0; 1000 1016"},
        {"1.000,0.500,\r\ntime,a,\r\n", "a 0:0.5 !0; 1000"},
        // a crash takes the names, and perhaps a part of a row
        {"1.000,0.500,\n", "channel 1 0:0.5 !0; 1000" + c_crash},
        {"1.000,0.500,\n1.016,0.", "channel 1 0:0.5 !0; 1000\nline 2 is cut and left out" + c_crash},
        {"1.000,0.500,\ntime,a,", "channel 1 0:0.5 !0; 1000\nline 2 is cut and left out" + c_crash},
        // names that did not fit are empty; one with a comma moves the others
        {"1.000,1.000,2.000,\ntime,,b,\n", "channel 1 0:1 !0;b 0:2 !0; 1000"},
        {"1.000,1.000,\ntime,a,b,\n",
         "channel 1 0:1 !0; 1000\n"
         "line 2 has 2 names for 1 channel, as when one holds a comma: they are numbered"},
        {"1.000,inf,\n1.016,-nan,\n1.033,1.000,\ntime,a,\n", "a 2:1 !2; 1000 1016 1033"},
        // the clock wraps after 2^32 milliseconds, each time
        {"4294967.290,1,\n0.006,1,\n4000000.000,1,\n0.001,1,\ntime,a,\n",
         "a 0:1 1:1 2:1 3:1 !0; 4294967290 4294967302 8294967296 8589934593"},
        // the longest row
        {"1.000," + std::string(4088, '0') + ",\r\n", "channel 1 0:0 !0; 1000" + c_crash},
        {"1.000,340282346638528859811704183484516925440.000,\ntime,a,\n", "a 0:3.40282e+38 !0; 1000"},
    };
    for (auto const & [text, log] : c_cases)
        EXPECT_EQ(shown(read(text)), log) << text;
}

TEST(StatsLog, RefusesWhatNoSinkWrites) {
    std::string const row = "1.000,0.500,\n", noRow = "is no row of a stat graph's log";
    std::string wide = "1.000,";
    for (int i = 0; i < 129; ++i)
        wide += "1,";
    std::pair<std::string, char const *> const c_cases[] = {
        {"", "holds no rows, as when no channel was enabled"},
        {"time,a,\n", "holds no rows"},
        {"time,a", "holds no rows"},
        {row + "\n" + row, "line 2: is no row of a stat graph's log"},
        {row + "1.016,\n", "line 2: is no row of a stat graph's log"},
        {row + "1.016,0.500\n", "line 2: does not end in a comma"},
        {std::string("\x7F"
                     "ELF\0\n\xFF",
                     7),
         "line 1: does not end in a comma"},
        {std::string("\0,\0,\n", 5), "line 1: does not begin with a time"},
        {"-1.000,0.5,\n", "line 1: does not begin with a time"},
        {"4294967.296,0.5,\n", "line 1: does not begin with a time"},
        {"nan,0.5,\n", "line 1: does not begin with a time"},
        {row + "0.999,0.500,\n", "line 2: goes back in time"},
        {"1.000,1,2,\n" + row, "line 2: has fewer fields than the row above"},
        {wide + "\n", "line 1: has more than 128 channels"},
        {"1.000,0x10,\n", "line 1: has a field that is no number"},
        {"1.000, 1,\n", "line 1: has a field that is no number"},
        {"1.000,1" + std::string(40, '0') + ",\n", "line 1: has a field that is no number"},
        {row + "time,a,\n" + row, "line 3: stands behind the row of names"},
        {row + std::string(10'000'000, '1'), "line 2: is longer than a row of a stat graph's log"},
        {"1.000," + std::string(4090, '0') + ",\n" + row,
         "line 1: is longer than a row of a stat graph's log"},
    };
    for (auto const & [text, reason] : c_cases) {
        std::string const told = ReasonOf([&text = text] { read(text); });
        EXPECT_NE(told.find(reason), std::string::npos) << told << "\n" << text.substr(0, 100);
    }
}

TEST(StatsLog, SummarizesByRank) {
    std::vector<StatsSample> samples;
    for (std::uint32_t i = 0; i < 211; ++i)
        samples.push_back({i, static_cast<float>(i * 77 % 211 + 1)}); // 1 to 211, mixed
    StatsSummary const summary = Summarize(samples);
    EXPECT_EQ(summary.least, 1.0f);
    EXPECT_EQ(summary.greatest, 211.0f);
    EXPECT_EQ(summary.average, 106.0);
    EXPECT_EQ(summary.percent95, 201.0f) << "200.45 samples are not enough";
    EXPECT_EQ(summary.percent99, 209.0f);
    EXPECT_EQ(Summarize({{0, 3.0f}}).percent99, 3.0f);
}

// A million rows come down to two points per column of pixels, and the one spike is still there.
TEST(StatsPlot, KeepsSpikesOfAMillionRows) {
    StatsLog log;
    log.channels.resize(1);
    for (std::uint32_t row = 0; row < 1'000'000; ++row) {
        log.times.push_back(row);
        if (row % 2 == 0) // gaps within a column of pixels are none
            log.channels[0].samples.push_back(
                {row, row == 500'000 ? 100.0f : 20.0f + static_cast<float>(row % 3)});
    }
    auto const points = pointsOf(PlotStats(log, "t"));
    EXPECT_GT(points.size(), 2000u);
    EXPECT_LE(points.size(), 2162u);
    auto const top = std::min_element(points.begin(), points.end(),
                                      [](auto const & a, auto const & b) { return a.second < b.second; });
    EXPECT_NEAR(top->second, 0.0, 0.01) << "100 is the top of the axis";
    EXPECT_NEAR(top->first, 540.0, 0.01);
    EXPECT_NEAR(points.front().second, 120.0 - 1.2 * 20.0, 2.5);
}

TEST(StatsPlot, BreaksTheLineAtGapsAndShowsEveryName) {
    StatsLog log =
        read("5.000,1.000,\n5.500,,\n6.000,3.000,nan,\n7.000,4.000,,\ntime,a<b & \x01\"\xFF\uFFFF,none,\n" +
             std::string());
    std::string const svg = PlotStats(log, "<title>" + std::string(54, 't'));
    EXPECT_NE(svg.find("d=\"M90.00,174.00m-2,0h4M630.00,114.00L1170.00,84.00\""), std::string::npos) << svg;
    EXPECT_NE(svg.find("<text x=\"84.00\" y=\"88.00\" text-anchor=\"end\" fill=\"#444\">4</text>"),
              std::string::npos)
        << "the label stands where the line has this value";
    EXPECT_NE(svg.find(">a&lt;b &amp; \uFFFD\"\uFFFD\uFFFD</text>"), std::string::npos);
    EXPECT_NE(svg.find(">&lt;title&gt;" + std::string(53, 't') + "\u2026</text>"), std::string::npos);
    EXPECT_NE(svg.find("minimum 1 \u00A0 average 2.667 \u00A0 95% 4 \u00A0 99% 4 \u00A0 maximum 4"),
              std::string::npos);
    EXPECT_NE(svg.find("no samples \u00A0 not finite 1"), std::string::npos);
    EXPECT_NE(svg.find(">seconds since the first row</text>"), std::string::npos);
}

TEST(StatsPlot, AxesHaveRoundSteps) {
    std::tuple<char const *, char const *, char const *> const c_cases[] = {
        // rows, labels from the bottom and from the left
        {"0.000,1,\n12.000,4,\n", "0 1 2 3 4 ", "0 1 2 3 4 5 6 7 8 9 10 11 12 "},
        {"5.000,-3,\n5.030,7,\n", "-5 0 5 10 ", "0 0.005 0.01 0.015 0.02 0.025 0.03 "},
        // values that lie closer to each other than to 0 do without it
        {"0.000,1000.25,\n7.000,1000.75,\n", "1000.2 1000.4 1000.6 1000.8 ", "0 1 2 3 4 5 6 7 "},
        {"0.000,-1000.25,\n7.000,-1000.75,\n", "-1000.8 -1000.6 -1000.4 -1000.2 ", "0 1 2 3 4 5 6 7 "},
        // one value alone does not
        {"0.000,-5,\n300.000,-5,\n", "-6 -4 -2 0 ", "0 50 100 150 200 250 300 "},
        {"0.000,0,\n300.000,0,\n", "0 0.5 1 ", "0 50 100 150 200 250 300 "},
    };
    for (auto const & [text, values, times] : c_cases) {
        std::string const svg = PlotStats(read(text), "t");
        EXPECT_EQ(labelsOf(svg, "x=\"84.00\""), values) << text;
        EXPECT_EQ(labelsOf(svg, "[^>]*\"middle\""), times) << text;
    }
}

// One row, values at the ends of float, and values that differ in the last digit have an axis too.
TEST(StatsPlot, EveryRangeHasAnAxis) {
    std::string const huge = "340282346638528859811704183484516925440.000,";
    for (std::string const & text :
         {"0.000,0.000,\n" + std::string(), "0.000,-" + huge + "\n0.000," + huge + "\n",
          "0.000,16777216.000,\n4294967.295,16777215.000,\n" + std::string()}) {
        std::string const svg = PlotStats(read(text), "t");
        EXPECT_EQ(svg.find("nan"), std::string::npos) << svg;
        EXPECT_EQ(svg.find("inf"), std::string::npos) << svg;
        for (auto const & [x, y] : pointsOf(svg))
            EXPECT_TRUE(x >= 0.0 && x <= 1080.0 && y >= 0.0 && y <= 120.0) << svg;
    }
}

TEST(StatsVerbs, PlotAndTraceWriteTheirFiles) {
    TemporaryFolder const folder;
    folder.WriteFile("log.txt", "1.000,0.100,\n1.016,nan,2.000,\ntime,a\",b,\n");
    folder.WriteFile("bad.txt", "x\n");
    std::string const log = folder / "log.txt", bad = folder / "bad.txt", none = folder / "none.txt";
    std::string const svg = folder / "out.svg", json = folder / "out.json", nowhere = folder / "bad.txt/out";
    auto const run = [](char const * verb, std::string const & file, std::string const & target) {
        ToolResult const result = RunTool({"stats", verb, file, target});
        return std::to_string(result.code) + " " + result.out + result.err;
    };
    std::string const what =
        ": 2 channels, 2 rows, 2 samples\nwarning: " + log + ": 1 sample is no finite number and left out\n";
    EXPECT_EQ(run("plot", log, svg), "0 good: " + svg + what);
    EXPECT_EQ(folder.ReadFile("out.svg").substr(0, 5), "<svg ");
    EXPECT_EQ(run("trace", log, json), "0 good: " + json + what);
    std::string const trace =
        "{\"traceEvents\":[\n"
        "{\"name\":\"a\\\"\",\"ph\":\"C\",\"pid\":1,\"ts\":1000000,\"args\":{\"value\":0.1}},\n"
        "{\"name\":\"b\",\"ph\":\"C\",\"pid\":1,\"ts\":1016000,\"args\":{\"value\":2}}\n"
        "]}\n";
    EXPECT_EQ(folder.ReadFile("out.json"), trace);

    EXPECT_EQ(run("plot", none, svg), "2 failed: " + none + ": does not exist\n");
    EXPECT_EQ(run("trace", bad, json), "2 failed: " + bad + ": line 1: does not end in a comma\n");
    EXPECT_EQ(run("trace", log, nowhere), "2 failed: " + nowhere + ": cannot be written\n");
    EXPECT_EQ(run("plot", log, log), "2 failed: " + log + ": would overwrite the log\n");
    EXPECT_EQ(folder.ReadFile("out.json"), trace) << "a failure leaves what was there";
}

TEST(StatsVerbs, SummaryTellsNumbersPerChannel) {
    TemporaryFolder const folder;
    folder.WriteFile("log.txt", "1.000,0.125,\n1.016,0.375,nan,\ntime,a\xFF\",b,\n");
    std::string const log = folder / "log.txt";
    EXPECT_EQ(RunTool({"stats", "summary", log}).out,
              "good: " + log +
                  ": 2 channels, 2 rows, 2 samples\n"
                  "   samples     minimum     average         95%         99%     maximum  channel\n"
                  "         2       0.125       0.250       0.375       0.375       0.375  \"a\\xFF\\\"\"\n"
                  "         0" +
                  std::string(60, ' ') + "  \"b\"\n");
    EXPECT_EQ(RunTool({"stats", "summary", "--json", log}).out,
              "{\"verdict\": \"good\", \"file\": \"" + log +
                  "\", \"rows\": 2, \"milliseconds\": 16, \"channels\": ["
                  "{\"name\": \"a\uFFFD\\\"\", \"samples\": 2, \"notFinite\": 0, \"minimum\": 0.125, "
                  "\"average\": 0.25, \"percent95\": 0.375, \"percent99\": 0.375, \"maximum\": 0.375}, "
                  "{\"name\": \"b\", \"samples\": 0, \"notFinite\": 1}], "
                  "\"warnings\": [\"1 sample is no finite number and left out\"]}\n");
}
