#pragma once

#include <string>
#include <vector>

/// One line of a plot, over a common horizontal axis.
struct Series {
    std::string name; // with its unit
    std::vector<double> values;
};

/// An SVG picture with a panel for each series, every panel from zero, so that what is flat looks
/// flat. The axis is labelled with its ends.
std::string plot(const std::string &title, const std::string &axis, double axisEnd,
                 const std::vector<Series> &series);
