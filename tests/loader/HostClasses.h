#pragma once

#import <Foundation/Foundation.h>

// What the images in images/ expect of the program that loads them, and what its tests share.

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

/// Answered in two registers of the floating-point unit, which no class of C++ is.
// NOLINTNEXTLINE(modernize-use-using): __extension__ stands before no 'using'.
__extension__ typedef _Complex long double ComplexLongDouble;

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
- (signed char)lowByteOf:(int)value;
- (unsigned char)lowUnsignedByteOf:(int)value;
- (short)lowHalfOf:(int)value;
- (unsigned short)lowUnsignedHalfOf:(int)value;
- (signed char)lowByteOf:(long)a
                       b:(long)b
                       c:(long)c
                       d:(long)d
                       e:(long)e
                       f:(long)f
                       g:(long)g
                       h:(long)h;
+ (signed char)lowByteOf:(int)value;
- (float)floatAnswer;
- (long double)longDoubleAnswer;
- (ComplexLongDouble)complexAnswer;
- (struct Large)largeAnswer:(double)scale;
- (struct Pair)pairAnswer;
- (struct Words)wordsAnswer;
- (struct Vector)vectorAnswer;
- (id)join:(NSString *)format, ...;
- (id)autoreleasedAnswer;
@end

/// An exception that counts how many of its kind live.
@interface CountedException : NSException
+ (int)living;
+ (CountedException *)make; // owned by the caller
@end

/// How often +initialize of TestAnswerer has run.
int answererInitialisations();

/// How many TestAnswerers live.
int livingAnswerers();
