#include "host/zkthost/PropertyLists.h"

#include "host/core/Cocoa.h"
#include "host/zkthost/ForeignExceptions.h"

#import <Foundation/Foundation.h>

namespace zkthost {

std::map<std::string, std::string> textsOfPropertyList(std::string_view bytes) {
    const host::AutoreleasePool pool;
    std::map<std::string, std::string> texts;
    // A damaged list raises.
    static_cast<void>(cocoaExceptionFrom([&] {
        NSData *data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
        id list = [NSPropertyListSerialization propertyListWithData:data
                                                            options:NSPropertyListImmutable
                                                             format:nullptr
                                                              error:nullptr];
        if (![list isKindOfClass:[NSDictionary class]])
            return;
        // NOLINTNEXTLINE(cppcoreguidelines-init-variables)
        for (id key in list) {
            id value = [list objectForKey:key];
            if ([key isKindOfClass:[NSString class]] && [value isKindOfClass:[NSString class]])
                texts[[key UTF8String]] = [value UTF8String];
        }
    }));
    return texts;
}

} // namespace zkthost
