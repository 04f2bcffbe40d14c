#pragma once

#import <Foundation/Foundation.h>

/// A new object of a class, released at the end.
template <class Class>
class OwnObject {
public:
    OwnObject() : object_([[Class alloc] init]) {}
    ~OwnObject() { [object_ release]; }
    OwnObject(const OwnObject &) = delete;
    OwnObject &operator=(const OwnObject &) = delete;

    Class *operator->() const { return object_; }
    operator Class *() const { return object_; }
    operator const void *() const { return object_; }

private:
    Class *object_;
};
