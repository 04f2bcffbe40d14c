#import "SharedObjectSubstitute.h"

#import "TracedObject.h"

#include <objc/runtime.h>

namespace {

struct Substitution {
    const host::Image *image = nullptr;
    std::vector<id> answers; // the next one last
    std::size_t requestsToAction = 0;
    std::function<void()> action;
    IMP foundations = nullptr;
};
Substitution substitution;

Method sharedObjectMethod() {
    return class_getClassMethod([NSProcessInfo class], @selector(processInfo));
}

id nextAnswer() {
    const id answer = substitution.answers.back();
    if (substitution.answers.size() > 1)
        substitution.answers.pop_back();
    return answer;
}

// A message send is a jump: the return address is the sender's.
id processInfo(id self, SEL selector) {
    if (!substitution.image->contains(__builtin_return_address(0)))
        return reinterpret_cast<id (*)(id, SEL)>(substitution.foundations)(self, selector);
    noteInTrace("[NSProcessInfo processInfo]");
    if (substitution.requestsToAction > 0) {
        --substitution.requestsToAction;
        if (substitution.requestsToAction == 0)
            substitution.action();
    }
    return nextAnswer();
}

} // namespace

SharedObjectSubstitute::SharedObjectSubstitute(const host::Image &image, id object) {
    substitution.image = &image;
    substitution.answers = {object};
    substitution.foundations =
        method_setImplementation(sharedObjectMethod(), reinterpret_cast<IMP>(&processInfo));
}

SharedObjectSubstitute::~SharedObjectSubstitute() {
    method_setImplementation(sharedObjectMethod(), substitution.foundations);
    substitution = {};
}

void SharedObjectSubstitute::answer(std::vector<id> objects) {
    substitution.answers.assign(objects.rbegin(), objects.rend());
}

void SharedObjectSubstitute::interrupt(std::size_t n, std::function<void()> action) {
    substitution.requestsToAction = n;
    substitution.action = std::move(action);
}
