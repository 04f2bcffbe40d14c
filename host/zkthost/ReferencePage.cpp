// The reference as one page of HTML.

#include "host/zkthost/Reference.h"

#include <md4c-html.h>

#include <stdexcept>
#include <string_view>

namespace zkthost {

namespace {

constexpr const char *beginning = R"page(<!DOCTYPE html>
<!-- Made by zkthost describe --words: change the words, not this file. -->
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Reference</title>
<style>
:root { color-scheme: light dark; --ink: #1d1d1f; --paper: #fff; --soft: #f2f2f5; --line: #d0d0d6; --link: #0057b8; }
@media (prefers-color-scheme: dark) {
  :root { --ink: #e6e6ea; --paper: #1b1b1e; --soft: #29292e; --line: #46464d; --link: #7db7ff; }
}
body { margin: 0 auto; padding: 1rem; max-width: 52rem; color: var(--ink); background: var(--paper); font: 1rem/1.5 system-ui, sans-serif; }
a { color: var(--link); }
code, pre { font-family: ui-monospace, monospace; font-size: 0.9em; background: var(--soft); overflow-wrap: anywhere; }
pre { padding: 0.5rem 0.75rem; white-space: pre-wrap; }
table { border-collapse: collapse; }
th, td { padding: 0.25rem 0.6rem; border: 1px solid var(--line); text-align: left; vertical-align: top; }
td p { margin: 0; }
h4 { margin-bottom: 0.25rem; }
#search { box-sizing: border-box; width: 100%; padding: 0.5rem; font: inherit; }
[hidden] { display: none; }
</style>
</head>
<body>
<h1>Reference</h1>
<p id="finder" hidden><input id="search" type="search" placeholder="Search" aria-label="Search"></p>
<p id="nothing" hidden>Nothing has all these words.</p>
)page";

// Without scripts the page shows everything and no field. "#search=heat" in the address searches.
constexpr const char *end = R"page(<script>
const field = document.getElementById("search");
const entries = [...document.querySelectorAll(".entry")];
const texts = new Map(entries.map(entry => [entry, entry.textContent.toLowerCase()]));
const hasEntry = part => part.querySelector(".entry:not([hidden])") !== null;
function search() {
  const words = field.value.toLowerCase().split(/\s+/).filter(word => word !== "");
  for (const entry of entries) entry.hidden = !words.every(word => texts.get(entry).includes(word));
  for (const part of document.querySelectorAll(".group, .chapter")) part.hidden = !hasEntry(part);
  for (const text of document.querySelectorAll(".introduction")) text.hidden = words.length > 0;
  document.getElementById("nothing").hidden = hasEntry(document);
}
function searchFromAddress() {
  field.value = new URLSearchParams(location.hash.slice(1)).get("search") ?? "";
  search();
  document.getElementById(location.hash.slice(1))?.scrollIntoView(); // it was hidden until now
}
document.getElementById("finder").hidden = false;
field.addEventListener("input", search);
addEventListener("hashchange", searchFromAddress);
searchFromAddress();
</script>
</body>
</html>
)page";

std::string escaped(std::string_view text) {
    std::string html;
    for (const char c : text)
        switch (c) {
        case '&':
            html += "&amp;";
            break;
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '"':
            html += "&quot;";
            break;
        default:
            html += c;
        }
    return html;
}

/// Words are Markdown alone: HTML in them is text.
std::string htmlOf(const std::string &markdown) {
    std::string html;
    const auto append = [](const MD_CHAR *text, MD_SIZE size, void *to) {
        static_cast<std::string *>(to)->append(text, size);
    };
    if (md_html(markdown.data(), static_cast<MD_SIZE>(markdown.size()), append, &html,
                MD_FLAG_TABLES | MD_FLAG_NOHTML, 0) != 0)
        throw std::runtime_error("md4c could not read: " + markdown);
    return html;
}

std::string code(const std::string &text) {
    return "<code>" + escaped(text) + "</code>";
}

/// "class="entry" id="NSProcessInfoZKT.hostName""
std::string attributesOf(const ReferenceChapter &chapter, const ReferenceEntry &entry) {
    std::string id = chapter.title + '.' + entry.name;
    for (char &c : id)
        if (c == ' ')
            c = '-';
    return R"(class="entry" id=")" + escaped(id) + '"';
}

std::string rowAsHtml(const ReferenceChapter &chapter, const ReferenceEntry &entry) {
    return "<tr " + attributesOf(chapter, entry) + "><td>" + code(entry.declaration) + "</td><td>" +
           escaped(entry.note) + "</td><td>" + htmlOf(entry.words) + "</td></tr>\n";
}

std::string entryAsHtml(const ReferenceChapter &chapter, const ReferenceEntry &entry) {
    std::string html =
        "<article " + attributesOf(chapter, entry) + ">\n<h4>" + escaped(entry.name) + "</h4>\n";
    if (!entry.declaration.empty())
        html += "<pre>" + code(entry.declaration) + "</pre>\n";
    return html + htmlOf(entry.note) + htmlOf(entry.words) + "</article>\n";
}

std::string groupAsHtml(const ReferenceChapter &chapter, const ReferenceGroup &group) {
    std::string html = "<section class=\"group\">\n";
    if (!group.title.empty())
        html += "<h3>" + escaped(group.title) + "</h3>\n";
    if (group.isTable)
        html += "<table>\n<tr><th>Declaration</th><th>Value</th><th>Meaning</th></tr>\n";
    for (const ReferenceEntry &entry : group.entries)
        html += group.isTable ? rowAsHtml(chapter, entry) : entryAsHtml(chapter, entry);
    return html + (group.isTable ? "</table>\n" : "") + "</section>\n";
}

} // namespace

std::string referenceAsHtml(const std::vector<ReferenceChapter> &chapters) {
    std::string html = beginning;
    html += "<ul>\n";
    for (const ReferenceChapter &chapter : chapters)
        html += "<li><a href=\"#" + escaped(chapter.title) + "\">" + escaped(chapter.title) +
                "</a></li>\n";
    html += "</ul>\n";
    for (const ReferenceChapter &chapter : chapters) {
        html += R"(<section class="chapter" id=")" + escaped(chapter.title) + "\">\n<h2>" +
                escaped(chapter.title) + "</h2>\n<div class=\"introduction\">\n" +
                htmlOf(chapter.introduction) + "</div>\n";
        for (const ReferenceGroup &group : chapter.groups)
            html += groupAsHtml(chapter, group);
        html += "</section>\n";
    }
    return html + end;
}

} // namespace zkthost
