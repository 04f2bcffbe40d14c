#include "convert/Values.h"

#include "bridge/CFString2RBString.h"
#include "bridge/NSURLRBFile.h"
#include "frame/HeldUntilReset.h"

REALobjectStruct *newStringVariant(NSString *string) {
    StringReference text{CFString2RBString((CFStringRef)string)};
    ObjectReference variant{REALNewVariantString(text.get())};
    text.reset();
    return variant.handOver();
}

REALobjectStruct *newURLValue(NSURL *url) {
    if (REALobjectStruct *folderItem = NSURLRBFile((CFURLRef)url))
        return folderItem;
    return newStringVariant([url absoluteString]);
}
