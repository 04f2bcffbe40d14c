#pragma once

// A report as text, written row by row while it is made: what was asked before a crash stands
// there.

#include "host/zkthost/Report.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zkthost {

/// How a report is to look.
struct TextStyle {
    bool colours = false;
    std::size_t width = 0; ///< columns that lines are folded at; 0: lines of any length
};

/// The style for standard output as it is now.
TextStyle styleOfOutput();

class ReportText {
public:
    explicit ReportText(const TextStyle &style);

    // Each writes to standard output. Throw OutputError.
    void head(const Report &report);
    /// The names and types of the rows to come: columns are as wide as they need.
    void section(std::string_view title, const std::vector<RowHead> &heads);
    void row(const ReportRow &row);
    /// A section whose rows are all known.
    void rows(std::string_view title, const std::vector<ReportRow> &rows);

private:
    std::size_t width_;
    std::string strong_;
    std::string faint_;
    std::string plain_;
    std::size_t nameWidth_ = 0;
    std::size_t typeWidth_ = 0;
};

} // namespace zkthost
