#import "AlsoKindOf.h"

#import "ClassPairs.h"
#import "MethodFunctions.h"

#include <objc/runtime.h>

#include <map>
#include <string>

using Question = BOOL(id, SEL, Class);

// By the class made for it, what else an object claims to be. Classes live as long as the process.
static std::map<Class, Class> claims;

static BOOL isKindOfClass(id self, SEL selector, Class wanted) {
    const Class made = object_getClass(self);
    if (claims.at(made) == wanted)
        return YES;
    const IMP inherited =
        method_getImplementation(class_getInstanceMethod(class_getSuperclass(made), selector));
    return functionOf<Question>(inherited)(self, selector, wanted);
}

id alsoKindOf(id object, Class another) {
    const Class present = object_getClass(object);
    const Class made = makeClass(std::string(class_getName(present)) + "And" +
                                     class_getName(another) + std::to_string(claims.size()),
                                 present);
    claims[made] = another;
    class_addMethod(made, @selector(isKindOfClass:), implementationOf(isKindOfClass), "c@:#");
    object_setClass(object, made);
    return object;
}
