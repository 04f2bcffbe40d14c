#pragma once

#import <Foundation/Foundation.h>

/// Data that answers what the test says, be it true or not. Both messages are lines of the host's
/// trace: [data bytes], [data length].
@interface DataDouble : NSData {
@public
    const void *pointer; // borrowed
    unsigned long size;
    void (*onBytes)(); // runs behind the line of "bytes"; may throw; null: nothing
}
@end
