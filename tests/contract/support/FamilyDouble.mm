#include "FamilyDouble.h"

#import <Foundation/Foundation.h>

#include <objc/runtime.h>

#include <stdexcept>
#include <string>

namespace {

std::function<void *()> registryAnswer;
std::function<void()> preparation;

void *answerRegistry(id, SEL) {
    return registryAnswer();
}

void prepare(id, SEL) {
    preparation();
}

template <class Function>
void addClassMethod(const char *name, Function *function, const char *types) {
    const auto method = reinterpret_cast<IMP>(reinterpret_cast<void (*)()>(function));
    Class metaclass = object_getClass([NSException class]);
    if (!class_addMethod(metaclass, sel_registerName(name), method, types))
        throw std::logic_error(std::string("NSException has +") + name + " already");
}

} // namespace

void familyDouble::addRegistry(std::function<void *()> answer) {
    registryAnswer = std::move(answer);
    addClassMethod("GetInstancesDictionaryZKT", answerRegistry, "^v@:");
}

void familyDouble::addPreparation(std::function<void()> action) {
    preparation = std::move(action);
    addClassMethod("PrepareNSExceptionZKT", prepare, "v@:");
}
