// Objective-C exceptions, caught and thrown.
#import <Foundation/Foundation.h>

namespace {

using Callback = void (*)();

struct CleanUp {
    int *count;
    ~CleanUp() { ++*count; }
};

} // namespace

extern "C" {

id catchesException(Callback callback, int *count) {
    @try {
        const CleanUp cleanUp{count};
        callback();
    } @catch (NSException *exception) {
        return exception;
    } @finally {
        *count += 100;
    }
    return nil;
}

id catchesAnyObject(Callback callback, int *count) {
    @try {
        const CleanUp cleanUp{count};
        callback();
    } @catch (id object) {
        return object;
    }
    return nil;
}

int catchesEverythingElse(Callback callback, int *count) {
    @try {
        const CleanUp cleanUp{count};
        callback();
    } @catch (NSException *) {
        return 1;
    } @catch (...) {
        return 2;
    }
    return 0;
}

int catchesByClass(Callback callback) {
    @try {
        callback();
    } @catch (NSString *) {
        return 1;
    } @catch (NSNumber *) {
        return 2;
    } @catch (NSException *) {
        return 3;
    }
    return 0;
}

void onlyFinally(Callback callback, int *count) {
    @try {
        const CleanUp cleanUp{count};
        callback();
    } @finally {
        *count += 100;
    }
}

void passes(Callback callback, int *count) {
    const CleanUp cleanUp{count};
    callback();
}

void rethrowsObject(Callback callback, int *count) {
    @try {
        callback();
    } @catch (NSException *) {
        *count += 1;
        @throw;
    } @finally {
        *count += 10;
    }
}

int rethrowsObjectWithin(Callback callback) {
    int seen = 0;
    @try {
        @try {
            callback();
        } @catch (NSException *) {
            seen += 1;
            @try {
                @throw;
            } @catch (id) {
                seen += 10;
            } @
            throw;
        }
    } @catch (NSException *) {
        seen += 100;
    }
    return seen;
}

// Rethrown out of two handlers at once.
int rethrowsObjectOutOfBoth(Callback callback) {
    int seen = 0;
    @try {
        @try {
            callback();
        } @catch (NSException *) {
            const CleanUp outer{&seen};
            @try {
                @throw;
            } @catch (id) {
                const CleanUp inner{&seen};
                @throw;
            }
        }
    } @catch (NSException *) {
        seen += 100;
    }
    return seen;
}

void throwsObject(id object) {
    @throw object;
}

id catchesThrown(id object) {
    @try {
        throwsObject(object);
    } @catch (id caught) {
        return caught;
    }
    return nil;
}

// The clean-up on the way drops the thrower's reference.
id catchesReleased(id object) {
    @try {
        @try {
            throwsObject(object);
        } @finally {
            [object release];
        }
    } @catch (NSException *caught) {
        return [[caught reason] retain];
    }
    return nil;
}

void replacesObject(Callback callback, id other) {
    @try {
        callback();
    } @catch (NSException *) {
        @throw other;
    }
}

// Within a handler, others come and go.
int catchesObjectsWithin(Callback first, Callback second) {
    int seen = 0;
    @try {
        first();
    } @catch (id) {
        seen += 1;
        @try {
            second();
        } @catch (id) {
            seen += 10;
        } @
        try {
            @throw;
        } @catch (id) {
            seen += 100;
        }
    }
    return seen;
}

int handlesObjectWhileCalling(Callback first, Callback second) {
    @try {
        first();
    } @catch (id) {
        second();
        return 1;
    }
    return 0;
}

int synchronises(id object, Callback callback) {
    @synchronized(object) {
        callback();
    }
    return 1;
}
}
