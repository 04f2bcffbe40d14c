#pragma once

#import <Foundation/Foundation.h>

/// Gives one object a class of its own, below its present one, whose objects also claim to be a
/// kind of another class. Returns the object.
id alsoKindOf(id object, Class another);
