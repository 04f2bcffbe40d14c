// Handlers of a class that this system does not have.
#import <Foundation/Foundation.h>

__attribute__((objc_exception, weak_import))
@interface AbsentClass : NSObject
@end

using Callback = void (*)();

extern "C" {

int catchesAbsent(Callback callback) {
    @try {
        callback();
    } @catch (AbsentClass *) {
        return 1;
    } @catch (id) {
        return 2;
    }
    return 0;
}

int catchesOnlyAbsent(Callback callback) {
    @try {
        callback();
    } @catch (AbsentClass *) {
        return 1;
    }
    return 0;
}

bool absentClassIsNil() {
    return [AbsentClass class] == Nil;
}
}
