#include "Plot.h"

#include <algorithm>
#include <sstream>

namespace {

constexpr double width = 720;
constexpr double panelHeight = 110;
constexpr double panelGap = 40;
constexpr double left = 20;
constexpr double top = 50;

void writePolyline(std::ostream &picture, const std::vector<double> &values, double panelTop,
                   double highest) {
    const double step =
        values.size() > 1 ? (width - 2 * left) / static_cast<double>(values.size() - 1) : 0;
    picture << "<polyline fill='none' stroke='#1f6feb' stroke-width='1.5' points='";
    for (std::size_t i = 0; i < values.size(); ++i)
        picture << left + step * static_cast<double>(i) << ','
                << panelTop + panelHeight * (1 - (highest > 0 ? values[i] / highest : 0)) << ' ';
    picture << "'/>\n";
}

void writePanel(std::ostream &picture, const Series &series, double panelTop) {
    const double highest = series.values.empty() ? 0 : std::ranges::max(series.values);
    picture << "<text x='" << left << "' y='" << panelTop - 6 << "'>" << series.name << ", at most "
            << highest << "</text>\n"
            << "<rect x='" << left << "' y='" << panelTop << "' width='" << width - 2 * left
            << "' height='" << panelHeight << "' fill='none' stroke='#d0d7de'/>\n";
    writePolyline(picture, series.values, panelTop, highest * 1.1);
}

} // namespace

std::string plot(const std::string &title, const std::string &axis, double axisEnd,
                 const std::vector<Series> &series) {
    std::ostringstream picture;
    picture.precision(12);
    picture << "<svg xmlns='http://www.w3.org/2000/svg' width='" << width << "' height='"
            << top + static_cast<double>(series.size()) * (panelHeight + panelGap)
            << "' font-family='sans-serif' font-size='12'>\n"
            << "<rect width='100%' height='100%' fill='white'/>\n"
            << "<text x='" << left << "' y='22'>" << title << "</text>\n";
    double panelTop = top;
    for (const Series &each : series) {
        writePanel(picture, each, panelTop);
        panelTop += panelHeight + panelGap;
    }
    const double axisY = panelTop - panelGap + 16;
    picture << "<text x='" << left << "' y='" << axisY << "'>0</text>\n"
            << "<text x='" << width - left << "' y='" << axisY << "' text-anchor='end'>" << axisEnd
            << ' ' << axis << "</text>\n</svg>\n";
    return picture.str();
}
