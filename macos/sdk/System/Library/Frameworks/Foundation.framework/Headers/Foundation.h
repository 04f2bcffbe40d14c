// Umbrella header of Foundation.

#pragma once
#pragma clang system_header

#include <CoreFoundation/CoreFoundation.h>

#include <Foundation/NSObjCRuntime.h>

#ifdef __OBJC__
#include <Foundation/NSAffineTransform.h>
#include <Foundation/NSArray.h>
#include <Foundation/NSAutoreleasePool.h>
#include <Foundation/NSCalendarDate.h>
#include <Foundation/NSData.h>
#include <Foundation/NSDate.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSEnumerator.h>
#include <Foundation/NSError.h>
#include <Foundation/NSException.h>
#include <Foundation/NSGeometry.h>
#include <Foundation/NSIndexSet.h>
#include <Foundation/NSInvocation.h>
#include <Foundation/NSJSONSerialization.h>
#include <Foundation/NSKeyValueObserving.h>
#include <Foundation/NSNull.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSOtherClasses.h>
#include <Foundation/NSPathUtilities.h>
#include <Foundation/NSProcessInfo.h>
#include <Foundation/NSPropertyList.h>
#include <Foundation/NSRange.h>
#include <Foundation/NSSet.h>
#include <Foundation/NSString.h>
#include <Foundation/NSTask.h>
#include <Foundation/NSTimeZone.h>
#include <Foundation/NSURL.h>
#include <Foundation/NSURLDownload.h>
#include <Foundation/NSUserNotification.h>
#include <Foundation/NSValue.h>
#endif
