#include "host/zkthost/ReportText.h"

#include "host/zkthost/Columns.h"
#include "host/zkthost/Output.h"

#include <algorithm>

namespace zkthost {

TextStyle styleOfOutput() {
    return {.colours = wantsColours(), .width = terminalWidth()};
}

ReportText::ReportText(const TextStyle &style)
    : width_(style.width), strong_(style.colours ? "\033[1m" : ""),
      faint_(style.colours ? "\033[2m" : ""), plain_(style.colours ? "\033[0m" : "") {}

void ReportText::head(const Report &report) {
    print(strong_ + report.className + plain_ + '\n' + faint_ + "  " + printable(report.image) +
          " (" + report.format + ", " + report.processor + "), interface version " +
          std::to_string(report.interfaceVersion) + "\n  Foundation is that of " +
          report.foundation + ", on Linux: a Mac's tells other things of the system" + plain_ +
          "\n\n  processInfo gives " + printable(report.processInfo) + "\n");
}

void ReportText::section(std::string_view title, const std::vector<RowHead> &heads) {
    nameWidth_ = 0;
    typeWidth_ = 0;
    for (const RowHead &head : heads) {
        nameWidth_ = std::max(nameWidth_, displayWidth(printable(head.name)));
        typeWidth_ = std::max(typeWidth_, displayWidth(head.type));
    }
    print("\n" + strong_ + std::string(title) + plain_ + "\n");
}

void ReportText::row(const ReportRow &row) {
    constexpr std::size_t leastValueWidth = 24;
    const std::size_t before = 2 + nameWidth_ + 2 + typeWidth_ + 2;
    const std::string name = "  " + padded(printable(row.name), nameWidth_ + 2);
    const std::string start = name + faint_ + padded(row.type, typeWidth_) + plain_;
    if (width_ == 0) {
        print(start + "  " + printable(row.text) + "\n");
        return;
    }
    // Without room beside its name a value stands below it.
    const bool beside = width_ >= before + leastValueWidth;
    const std::size_t indentation = beside ? before : 6;
    const std::size_t room = width_ > indentation ? width_ - indentation : 1;
    std::string text = beside ? start : name + faint_ + row.type + plain_;
    bool isFirst = true;
    for (const std::string &line : folded(printable(row.text), room)) {
        text += isFirst && beside ? "  " : "\n" + std::string(indentation, ' ');
        text += line;
        isFirst = false;
    }
    print(text + "\n");
}

void ReportText::rows(std::string_view title, const std::vector<ReportRow> &rows) {
    if (rows.empty())
        return;
    section(title, {rows.begin(), rows.end()});
    for (const ReportRow &each : rows)
        row(each);
}

} // namespace zkthost
