#include "FamilyDouble.h"

#import <Foundation/Foundation.h>

#include <objc/runtime.h>

#include <bit>
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

void addClassMethod(const char *name, IMP function, const char *types) {
    Class metaclass = object_getClass([NSException class]);
    if (!class_addMethod(metaclass, sel_registerName(name), function, types))
        throw std::logic_error(std::string("NSException has +") + name + " already");
}

} // namespace

void familyDouble::addRegistry(std::function<void *()> answer) {
    registryAnswer = std::move(answer);
    addClassMethod("GetInstancesDictionaryZKT", std::bit_cast<IMP>(&answerRegistry), "^v@:");
}

void familyDouble::addPreparation(std::function<void()> action) {
    preparation = std::move(action);
    addClassMethod("PrepareNSExceptionZKT", std::bit_cast<IMP>(&prepare), "v@:");
}
