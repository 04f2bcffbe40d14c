// Message sends of every kind of arguments and answers, and constant strings.
#import <Foundation/Foundation.h>
#import <objc/runtime.h>

struct Large {
    double values[6];
};

struct Pair {
    double first, second;
};

struct Words {
    long first, second;
};

struct Vector {
    double x, y, z, w;
};

/// Implemented by the program that loads the image.
@interface TestAnswerer : NSObject
+ (int)classAnswer;
- (int)sumOf:(int)a b:(int)b c:(int)c d:(int)d e:(int)e f:(int)f g:(long)g h:(long)h;
- (double)productOf:(double)a
                  b:(double)b
                  c:(double)c
                  d:(double)d
                  e:(double)e
                  f:(double)f
                  g:(double)g
                  h:(double)h
                  i:(double)i;
- (double)mix:(int)a b:(double)b c:(float)c d:(long)d e:(char)e f:(struct Large)f;
- (signed char)smallAnswer;
- (float)floatAnswer;
- (long double)longDoubleAnswer;
- (_Complex long double)complexAnswer;
- (struct Large)largeAnswer:(double)scale;
- (struct Pair)pairAnswer;
- (struct Words)wordsAnswer;
- (struct Vector)vectorAnswer;
- (id)join:(NSString *)format, ...;
- (id)unknownToEveryone;
@end

extern "C" {

int sendsToClass() {
    return [TestAnswerer classAnswer];
}

int sendsIntegers(TestAnswerer *target) {
    return [target sumOf:1 b:2 c:3 d:4 e:5 f:6 g:7 h:8];
}

double sendsDoubles(TestAnswerer *target) {
    return [target productOf:1.5 b:2 c:3 d:0.5 e:4 f:5 g:0.25 h:8 i:2];
}

double sendsMixture(TestAnswerer *target) {
    const Large large = {{1, 2, 3, 4, 5, 6}};
    return [target mix:1 b:2.5 c:0.25f d:-4 e:5 f:large];
}

int sendsForSmall(TestAnswerer *target) {
    return [target smallAnswer];
}

float sendsForFloat(TestAnswerer *target) {
    return [target floatAnswer];
}

long double sendsForLongDouble(TestAnswerer *target) {
    return [target longDoubleAnswer];
}

_Complex long double sendsForComplex(TestAnswerer *target) {
    return [target complexAnswer];
}

Large sendsForLarge(TestAnswerer *target, double scale) {
    return [target largeAnswer:scale];
}

Pair sendsForPair(TestAnswerer *target) {
    return [target pairAnswer];
}

Words sendsForWords(TestAnswerer *target) {
    return [target wordsAnswer];
}

Vector sendsForVector(TestAnswerer *target) {
    return [target vectorAnswer];
}

id sendsVariableArguments(TestAnswerer *target) {
    return [target join:@"%d %.2f %@ %.1f", 3, 4.25, @"five", 6.5];
}

id sendsUnknown(TestAnswerer *target) {
    return [target unknownToEveryone];
}

long lengthOf(NSString *text) {
    return static_cast<long>([text length]);
}

SEL selectorOfLength() {
    return @selector(length);
}

bool answersLength(id object) {
    return [object respondsToSelector:@selector(length)];
}

id shortLiteral() {
    return @"literal";
}

id emptyLiteral() {
    return @"";
}

id wideLiteral() {
    return @"Gr\u00fc\u00dfe \U0001F600";
}

const char *classNameOf(id object) {
    return object_getClassName(object);
}

Class classOf(id object) {
    return object_getClass(object);
}

Class superclassOf(Class cls) {
    return class_getSuperclass(cls);
}

Class classNamed(const char *name) {
    return static_cast<Class>(objc_getClass(name));
}

SEL selectorNamed(const char *name) {
    return sel_registerName(name);
}

void drainsPool(void (*callback)(void)) {
    @autoreleasepool {
        callback();
    }
}

id boxes(int value) {
    NSAutoreleasePool *const pool = [[NSAutoreleasePool alloc] init];
    NSNumber *const number = [[NSNumber numberWithInt:value] retain];
    [pool release];
    return [number autorelease];
}
}
