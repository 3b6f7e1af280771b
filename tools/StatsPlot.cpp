#include "tools/StatsPlot.h"

#include "tools/NumberText.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/core/Utf.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace {

// Pixels.
constexpr double c_left = 90.0;
constexpr double c_plotWidth = 1080.0;
constexpr double c_width = c_left + c_plotWidth + 30.0;
constexpr double c_headHeight = 60.0;
constexpr double c_legendHeight = 24.0;
constexpr double c_plotHeight = 120.0;
constexpr double c_panelHeight = c_legendHeight + c_plotHeight + 40.0;
constexpr double c_footHeight = 20.0;

constexpr char const * c_lineColours[] = {"#1f6fb4", "#c4451c", "#2a8a3c", "#8a4fb0",
                                          "#a86a00", "#b02a6b", "#0f8a8a", "#555555"};

std::string numberText(double number) {
    std::string formatted;
    text::Printf(formatted, "%.10g", number);
    return formatted;
}

std::string pixelText(double pixels) {
    std::string formatted;
    text::Printf(formatted, "%.2f", pixels);
    return formatted;
}

std::string pointText(double x, double y) { return pixelText(x) + "," + pixelText(y); }

// Text as XML takes it, cut to what a legend has room for.
std::string escaped(std::string_view raw) {
    constexpr std::size_t c_longest = 60;
    std::u16string text = utf::ToUtf16(raw);
    if (text.size() > c_longest)
        text = text.substr(0, c_longest) + u'\u2026';
    std::u16string escaped;
    for (char16_t const unit : text) {
        if (unit == u'&')
            escaped += u"&amp;";
        else if (unit == u'<')
            escaped += u"&lt;";
        else if (unit == u'>') // "]]>" may not stand in a text
            escaped += u"&gt;";
        else
            escaped += unit < 0x20 || unit >= 0xFFFE ? u'\uFFFD' : unit;
    }
    return utf::ToUtf8(escaped);
}

// What an axis shows, with a label at each multiple of the step.
struct Axis {
    double low, high, step;

    double Share(double value) const { return (value - low) / (high - low); }

    std::vector<double> Labels() const {
        std::vector<double> labels;
        auto const last = std::llround(std::floor(high / step + 1e-6));
        for (auto i = std::llround(std::ceil(low / step - 1e-6)); i <= last; ++i)
            labels.push_back(static_cast<double>(i) * step);
        return labels;
    }
};

// 1, 2 or 5 times a power of ten, so that at most `count` of them cover the range.
double niceStep(double range, int count) {
    double const least = range / count;
    double const power = std::pow(10.0, std::floor(std::log10(least)));
    for (double const factor : {1.0, 2.0, 5.0})
        if (factor * power >= least)
            return factor * power;
    return 10.0 * power;
}

// From 0 on, unless all values lie closer to each other than to 0.
Axis valueAxis(double least, double greatest) {
    bool const isFarFromZero = greatest > least && (least > greatest / 2.0 || greatest < least / 2.0);
    double low = isFarFromZero ? least : std::min(least, 0.0);
    double high = isFarFromZero ? greatest : std::max(greatest, 0.0);
    if (high == low)
        high = 1.0;
    double const step = niceStep(high - low, 4);
    low = std::floor(low / step) * step;
    high = std::ceil(high / step) * step;
    return {low, high, step};
}

class Plot {
public:
    explicit Plot(StatsLog const & log) : log(log), seconds(timeAxis(log)) {}

    std::string Draw(std::string const & title) {
        double const height =
            c_headHeight + c_panelHeight * static_cast<double>(log.channels.size()) + c_footHeight;
        svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + pixelText(c_width) + "\" height=\"" +
              pixelText(height) + "\" font-family=\"sans-serif\" font-size=\"12\">\n" +
              "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
        drawHead(title);
        for (std::size_t i = 0; i < log.channels.size(); ++i)
            drawPanel(log.channels[i], c_lineColours[i % std::size(c_lineColours)],
                      c_headHeight + c_panelHeight * static_cast<double>(i));
        drawText(c_left + c_plotWidth, height - 12.0, "end", "seconds since the first row");
        return std::move(svg) + "</svg>\n";
    }

private:
    static Axis timeAxis(StatsLog const & log) {
        double const duration =
            static_cast<double>(std::max<std::uint64_t>(log.times.back() - log.times.front(), 1)) / 1000.0;
        return {0.0, duration, niceStep(duration, 12)};
    }

    // `content` is escaped.
    void drawText(double x, double y, char const * anchor, std::string const & content,
                  std::string const & attributes = "fill=\"#444\"") {
        svg += "<text x=\"" + pixelText(x) + "\" y=\"" + pixelText(y) + "\" text-anchor=\"" + anchor + "\" " +
               attributes + ">" + content + "</text>\n";
    }

    void drawLine(double x1, double y1, double x2, double y2, char const * colour) {
        svg +=
            "<path d=\"M" + pointText(x1, y1) + "L" + pointText(x2, y2) + "\" stroke=\"" + colour + "\"/>\n";
    }

    void drawHead(std::string const & title) {
        drawText(c_left, 24.0, "start", escaped(title), "font-size=\"16\" font-weight=\"bold\"");
        drawText(c_left, 44.0, "start",
                 CountText(log.times.size(), "row", "rows") + " in " + numberText(seconds.high) +
                     " seconds, from " + numberText(static_cast<double>(log.times.front()) / 1000.0) + " on");
    }

    void drawPanel(StatsChannel const & channel, char const * colour, double top) {
        drawText(c_left, top + 14.0, "start", escaped(channel.name),
                 std::string("font-weight=\"bold\" fill=\"") + colour + "\"");
        std::string const lost =
            channel.notFinite > 0 ? "not finite " + std::to_string(channel.notFinite) : "";
        double const plotTop = top + c_legendHeight;
        if (channel.samples.empty()) {
            drawText(c_left + c_plotWidth, top + 14.0, "end", "no samples \u00A0 " + lost);
            drawTimes(plotTop);
            return;
        }
        StatsSummary const summary = Summarize(channel.samples);
        drawText(c_left + c_plotWidth, top + 14.0, "end", legend(summary) + lost, "fill=\"#222\"");
        Axis const values = valueAxis(summary.least, summary.greatest);
        drawValues(values, plotTop);
        drawTimes(plotTop);
        svg += std::string("<path fill=\"none\" stroke-width=\"1.2\" stroke-linejoin=\"round\" "
                           "stroke-linecap=\"round\" stroke=\"") +
               colour + "\" d=\"" + curve(channel.samples, values, plotTop) + "\"/>\n";
    }

    static std::string legend(StatsSummary const & summary) {
        std::string legend;
        auto const add = [&legend](char const * what, double value) {
            double const rounded = std::round(value * 1000.0) / 1000.0; // as the log has its samples
            legend += std::string(what) + " " + numberText(rounded) + " \u00A0 ";
        };
        add("minimum", summary.least);
        add("average", summary.average);
        add("95%", summary.percent95);
        add("99%", summary.percent99);
        add("maximum", summary.greatest);
        return legend;
    }

    void drawValues(Axis const & values, double top) {
        for (double const value : values.Labels()) {
            double const y = top + c_plotHeight * (1.0 - values.Share(value));
            drawLine(c_left, y, c_left + c_plotWidth, y, "#ddd");
            drawText(c_left - 6.0, y + 4.0, "end", numberText(value));
        }
    }

    void drawTimes(double top) {
        double const bottom = top + c_plotHeight;
        for (double const second : seconds.Labels()) {
            double const x = c_left + c_plotWidth * seconds.Share(second);
            drawLine(x, top, x, bottom, "#eee");
            drawText(x, bottom + 16.0, "middle", numberText(second));
        }
        drawLine(c_left, bottom, c_left + c_plotWidth, bottom, "#888");
        drawLine(c_left, top, c_left, bottom, "#888");
    }

    std::string curve(std::vector<StatsSample> const & samples, Axis const & values, double top) const {
        std::string path;
        for (std::size_t begin = 0, end = 0; begin < samples.size(); begin = end) {
            for (end = begin + 1; end < samples.size() && !isGap(samples[end - 1], samples[end]);)
                ++end;
            path += unbrokenCurve(spikes({samples.data() + begin, end - begin}), values, top);
        }
        return path;
    }

    // Rows without a sample are not seen within a column of pixels.
    bool isGap(StatsSample const & before, StatsSample const & after) const {
        return after.row != before.row + 1 && columnOf(after) != columnOf(before);
    }

    // Of the samples that share a column of pixels the least and the greatest, in their order.
    std::vector<StatsSample> spikes(std::span<StatsSample const> samples) const {
        std::vector<StatsSample> kept;
        for (std::size_t begin = 0, end = 0; begin < samples.size(); begin = end) {
            StatsSample least = samples[begin], greatest = least;
            for (end = begin + 1; end < samples.size() && columnOf(samples[end]) == columnOf(samples[begin]);
                 ++end) {
                least = samples[end].value < least.value ? samples[end] : least;
                greatest = samples[end].value > greatest.value ? samples[end] : greatest;
            }
            kept.push_back(least.row < greatest.row ? least : greatest);
            if (least.row != greatest.row)
                kept.push_back(least.row < greatest.row ? greatest : least);
        }
        return kept;
    }

    int columnOf(StatsSample const & sample) const { return static_cast<int>(xOf(sample)); }

    double xOf(StatsSample const & sample) const {
        double const second = static_cast<double>(log.times[sample.row] - log.times.front()) / 1000.0;
        return c_left + c_plotWidth * seconds.Share(second);
    }

    // A sample between two gaps is a short dash.
    std::string unbrokenCurve(std::vector<StatsSample> const & samples, Axis const & values,
                              double top) const {
        std::string path;
        for (StatsSample const & sample : samples)
            path += (path.empty() ? "M" : "L") +
                    pointText(xOf(sample), top + c_plotHeight * (1.0 - values.Share(sample.value)));
        return path + (samples.size() == 1 ? "m-2,0h4" : "");
    }

    StatsLog const & log;
    Axis seconds;
    std::string svg;
};

} // namespace

std::string PlotStats(StatsLog const & log, std::string const & title) { return Plot(log).Draw(title); }
