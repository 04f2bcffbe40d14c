#pragma once

// What a program of the host's language sees of its own process.

#include "host/Host.h"
#include "host/core/Json.h"

#include <optional>
#include <string>
#include <vector>

namespace zkthost {

/// One value, already put into words: a report outlives the host's objects.
struct ReportRow {
    std::string name;
    std::string type;
    std::string text;
    host::Json value = nullptr;
    std::optional<std::string> exception = {}; ///< what was raised instead
};

struct Report {
    std::string image;
    std::string format; ///< of the image
    std::optional<double> hostVersion;
    std::int32_t interfaceVersion = 0;
    std::string processInfo;                 ///< what the shared method gave
    std::vector<ReportRow> properties = {};  ///< of that object, in table order
    std::vector<ReportRow> environment = {}; ///< its entries, sorted by key; in "properties" too
    std::vector<ReportRow> arguments = {};   ///< of the process, by index
    std::vector<ReportRow> activity = {};    ///< one that was begun and ended for the report
    std::vector<ReportRow> shared = {};      ///< the other shared methods
    std::vector<ReportRow> constants = {};
};

/// Calls what there is to call. Throws UsageError when the plug-in registered no such class.
Report makeReport(host::Host &host, const host::Image &image);

std::string reportAsText(const Report &report, bool colours);
std::string reportAsJson(const Report &report, const host::Account &account);

host::Json accountAsJson(const host::Account &account);

} // namespace zkthost
