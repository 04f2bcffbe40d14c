#pragma once

#include "LoadedPlugin.h"

#import <Foundation/Foundation.h>

/// A host and the image's conversions of Cocoa objects into host values.
struct ValueScene : LoadedPlugin {
    explicit ValueScene(const host::HostOptions &options = {}) : LoadedPlugin(options) {}

    /// Owns the reference that the conversion gives; nothing for nil.
    host::ObjectRef convert(id object) { return host::ObjectRef::adopt(convertObject(object)); }
    host::ObjectRef convertDictionary(id dictionary) {
        return host::ObjectRef::adopt(convertEntries(dictionary));
    }

    host::ObjectHandle (*const convertObject)(id) =
        imageFunction<host::ObjectHandle(id)>(image, "NewVariantFromNSObject");
    host::ObjectHandle (*const convertEntries)(id) =
        imageFunction<host::ObjectHandle(id)>(image, "NSDictionaryRB");
};
