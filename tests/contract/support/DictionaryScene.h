#pragma once

#import "CollectionDoubles.h"
#import "ValueScene.h"

#include "host/classes/Inspect.h"

#include <string>
#include <vector>

inline constexpr const char *setterDeclaration = "Value(key As Variant, Assigns _value As Variant)";
inline constexpr const char *getterDeclaration = "Value(key As Variant) As Variant";
inline constexpr const char *keyGetterDeclaration = "Key(index As Integer) As Variant";

/// The request for a method as it stands in the trace.
inline std::string request(const std::string &object, const char *declaration,
                           const char *answer = "pointer") {
    return "REALLoadObjectMethod(" + object + ", \"" + declaration + "\") = " + answer;
}

/// The entries as text, in order: 1: "a", nil: Dictionary#3.
inline std::vector<std::string> entriesOf(const host::ObjectRef &dictionary) {
    std::vector<std::string> result;
    for (const auto &[key, value] : host::dictionaryEntries(dictionary))
        result.push_back(describe(key) + ": " + describe(value));
    return result;
}

/// A host that has a Dictionary, and the lines of its trace that are about the Dictionary's
/// methods.
struct DictionaryScene : ValueScene {
    using ValueScene::ValueScene;

    /// In order, each as "Dictionary#1 set", "Dictionary#1 get", "Dictionary#1 key", and what is
    /// neither as it stands in the trace.
    [[nodiscard]] std::vector<std::string> methodRequests() const {
        const std::string start = "REALLoadObjectMethod(";
        std::vector<std::string> result;
        for (const std::string &line : host.calls()) {
            if (!line.starts_with(start))
                continue;
            const std::string object = line.substr(start.size(), line.find(',') - start.size());
            if (line.starts_with(start + object + ", \"" + setterDeclaration))
                result.push_back(object + " set");
            else if (line.starts_with(start + object + ", \"" + getterDeclaration))
                result.push_back(object + " get");
            else if (line.starts_with(start + object + ", \"" + keyGetterDeclaration))
                result.push_back(object + " key");
            else
                result.push_back(line);
        }
        return result;
    }
};
