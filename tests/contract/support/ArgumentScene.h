#pragma once

#include "LoadedPlugin.h"
#import "TracedList.h"

#include "host/classes/Inspect.h"

#include <utility>

/// A host and an instance around an object whose arguments a test chooses.
struct ArgumentScene : LoadedPlugin {
    explicit ArgumentScene(std::vector<id> elements, host::HostOptions options = {})
        : LoadedPlugin(std::move(options)) {
        list->elements = std::move(elements);
        own->arguments = list;
        host.clearTrace();
    }

    host::Outcome arguments() { return host.call(info, "arguments"); }
    host::Outcome argument(std::int64_t index) { return host.call(info, "argument", {index}); }
    /// In UTF-8, "" for nil.
    std::vector<std::string> texts(host::ObjectHandle array) const {
        std::vector<std::string> result;
        for (const host::Value &element : host::arrayElements(array))
            result.push_back(element.text());
        return result;
    }

    OwnObject<TracedList> list;
    Traced own{"own"};
    InstanceAround info{host, own};
};
