#import "ScriptedProcessInfo.h"

#include <objc/runtime.h>

#include <algorithm>

namespace {

std::vector<std::function<id()>> script; // the next answer last
IMP foundations = nullptr;

Method sharedObjectMethod() {
    return class_getClassMethod([NSProcessInfo class], @selector(processInfo));
}

id answerNext(id self, SEL selector) {
    if (script.empty())
        return reinterpret_cast<id (*)(id, SEL)>(foundations)(self, selector);
    const auto answer = std::move(script.back());
    script.pop_back();
    return answer();
}

} // namespace

ScriptedProcessInfo::ScriptedProcessInfo(std::vector<std::function<id()>> answers) {
    script = std::move(answers);
    std::ranges::reverse(script);
    foundations =
        method_setImplementation(sharedObjectMethod(), reinterpret_cast<IMP>(&answerNext));
}

ScriptedProcessInfo::~ScriptedProcessInfo() {
    method_setImplementation(sharedObjectMethod(), foundations);
    script.clear();
}

std::vector<std::function<id()>> ScriptedProcessInfo::times(std::size_t count, id object) {
    return {count, [object] { return object; }};
}

std::size_t ScriptedProcessInfo::left() const {
    return script.size();
}
