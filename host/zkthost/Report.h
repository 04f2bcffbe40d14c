#pragma once

// What a program of the host's language sees of its own process.

#include "host/Host.h"
#include "host/core/Json.h"

#include <optional>
#include <string>
#include <vector>

namespace zkthost {

class ReportText;

/// What is known of a row before its value is asked for.
struct RowHead {
    std::string name;
    std::string type;
};

/// One value, already put into words: a report outlives the host's objects.
struct ReportRow : RowHead {
    std::string text;
    host::Json value = nullptr;
    std::optional<std::string> exception = {}; ///< what was raised instead
};

struct Report {
    std::string className;
    std::string image;
    std::string format;    ///< of the image
    std::string processor; ///< whose part of the image runs: "x86_64"
    std::optional<double> hostVersion;
    std::int32_t interfaceVersion = 0;
    std::string foundation;                  ///< whose it is: a Mac's has other values
    std::string processInfo;                 ///< what the shared method gave
    std::vector<ReportRow> properties = {};  ///< of that object, in table order
    std::vector<ReportRow> environment = {}; ///< its entries, sorted by key
    std::vector<ReportRow> arguments = {};   ///< of the process, by index
    std::vector<ReportRow> activity = {};    ///< one that was begun and ended for the report
    std::vector<ReportRow> shared = {};      ///< the other shared methods
    std::vector<ReportRow> constants = {};
};

/// Calls what there is to call, and writes each value at once where `text` is not null. Throws
/// UsageError when the plug-in registered no such class, and OutputError.
Report makeReport(host::Host &host, const host::Image &image, ReportText *text);

std::string reportAsJson(const Report &report, const host::Account &account);

host::Json accountAsJson(const host::Account &account);

} // namespace zkthost
